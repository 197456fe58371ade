// Custom offsets while the simulator runs: refreshing, client writes, commands, reloads.
#include <atomic>
#include <charconv>
#include <chrono>
#include <limits>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "core/more_api.h"
#include "custom/custom_parser.h"
#include "custom_harness.h"

namespace {

using custom::Load;
using custom::WriteFrame;
using rows::Calls;
using rows::Get;
using rows::Read;
using rows::Set;
using rows::Write;

constexpr char psi[] = "sim/flightmodel/position/psi";
constexpr char park[] = "sim/flightmodel/controls/parkbrake";
const std::string aliases =
    "Dataref psi sim/flightmodel/position/psi float\nDataref park sim/flightmodel/controls/parkbrake float\n";

std::string Hex(int offset) {
  char text[8];
  return {text, std::to_chars(text, text + sizeof text, offset, 16).ptr};
}

using CustomRuntime = custom::Harness;

TEST_F(CustomRuntime, EachGroupFollowsItsCycle) {
  using Callback = float (*)(float, float, int, void*);
  const Callback cycles[] = {RefreshCycle1,  RefreshCycle7,  RefreshCycle13,  RefreshCycle31Navigation,
                             RefreshCycle31, RefreshCycle59, RefreshCycle157, RefreshCycle313};
  std::string text = aliases;
  for (int group = 0; group < 10; ++group) {
    text += "Offset 66C" + std::to_string(group) + " UINT8 " + std::to_string(group) + " r $psi 1 +\n";
  }
  RefreshCycle1(0, 0, 0, nullptr);  // with what a test before has left due
  Load(text);
  for (int cycle = 0; cycle < 8; ++cycle) {
    Set(psi, 10 * (cycle + 1));
    cycles[cycle](0, 0, 0, nullptr);
    for (int group = 0; group < 10; ++group) {
      const bool done = group >= 1 && group <= cycle + 1;
      EXPECT_EQ(Read<uint8_t>(0x66C0 + static_cast<uint32_t>(group)), done ? 10 * group + 1 : 0) << group;
    }
  }
}

TEST_F(CustomRuntime, RefreshStoresTypesAndQuirks) {
  Set(psi, 270.6);
  Load(aliases +
       "Dataref none no/such float\nDataref odd sim/time/paused text\n"
       "Dataref n sim/joystick/joystick_button_values[1599] intarray\n"
       "Dataref past sim/joystick/joystick_button_values[1600] intarray\n"
       "Offset 9000 UINT16 1 r $psi\nOffset 66C0 SINT8 1 r $psi\nOffset 66C2 FLOAT32 1 r $psi\n"
       "Offset 66C8 UINT16 1 w >psi @\nOffset 66CA UINT8 1 r $x\nOffset 66CB UINT8 1 r\n"
       "Offset 66CC uint8 1 r 5\nOffset 66D0 FLOAT64 1 r $none 1 + $odd $n $past + + +\n");
  Set("sim/joystick/joystick_button_values[1599]", 8);
  RefreshCustomOffsets(1);
  rows::ExpectShown({{0x9000, rows::U16, 270}, {0x66C0, rows::S8, 14}, {0x66C2, rows::F32, 270.6, 1e-4}});
  rows::ExpectShown({{0x66C8, rows::U16, 77}, {0x66CA, rows::U8, 111}, {0x66CB, rows::U8, 88}});
  rows::ExpectShown({{0x66CC, rows::U8, 0}, {0x66D0, rows::F64, 9}});
  // Stored again when a client has changed the bytes, though the value is the same.
  Write<uint8_t>(0x66C0, 3);
  RefreshCustomOffsets(1);
  EXPECT_EQ(Read<int8_t>(0x66C0), 14);
  Set(psi, 20);
  RefreshCustomOffsets(1);
  EXPECT_EQ(Read<uint16_t>(0x9000), 20);
}

// Two entries and a fixed row over the same bytes: the later refresh shows, whether its value changed or not.
TEST_F(CustomRuntime, SharedBytesAreStoredEveryTime) {
  Load("Offset 66C0 UINT16 1 r 258\nOffset 66C1 UINT8 2 r 9\nOffset 02BC UINT32 1 r 12345\n");
  for (int i = 0; i < 3; ++i) {
    Set("sim/flightmodel/position/indicated_airspeed", 100 + i);
    RefreshCycle1(0, 0, 0, nullptr);
    EXPECT_EQ(Read<uint32_t>(0x02BC), 12345u);
    EXPECT_EQ(Read<uint16_t>(0x66C0), 258);
    RefreshCycle7(0, 0, 0, nullptr);
    EXPECT_EQ(Read<uint16_t>(0x66C0), 0x0902);
  }
}

TEST_F(CustomRuntime, BusyLockIsTriedAgainAtTheEndThread) {
  // An entry of the second batch reads a dataref whose owner makes the holder let the lock go.
  static tools::LockHolder holder;
  XPLMDataRef owned = XPLMRegisterDataAccessor(
      "t/lets_go", xplmType_Int, 0,
      [](void*) {
        holder.LetGo();
        return 5;
      },
      nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
      nullptr, nullptr);
  // Of the two entries over 0x671F the later one shows, also when only the batch of the earlier one was missed.
  std::string text = "Dataref go t/lets_go int\n";
  for (int i = 0; i < 32; ++i) text += "Offset " + Hex(0x6700 + i) + " UINT8 1 r 3\n";
  text += "Offset 671F UINT16 1 r 1284\nOffset 6740 UINT8 1 r $go\n";
  Load(text);
  holder.Take(&offsetLock);
  const RefreshCounters before = refreshCounters;
  RefreshCustomOffsets(1);
  EXPECT_EQ(refreshCounters.dropped, before.dropped) << "it was free at the second try";
  EXPECT_EQ(refreshCounters.stored, before.stored + 2);
  EXPECT_EQ(Read<uint8_t>(0x6700), 3);
  EXPECT_EQ(Read<uint16_t>(0x671F), 1284);
  EXPECT_EQ(Read<uint8_t>(0x6740), 5);
  ClearCustomOffsets();
  XPLMUnregisterDataAccessor(owned);
}

TEST_F(CustomRuntime, BusyLockSkipsTheRefreshThread) {
  Load("Offset 66C0 UINT8 1 r 5\n");
  tools::LockHolder holder;
  holder.Take(&offsetLock);
  const uint64_t dropped = refreshCounters.dropped;
  RefreshCustomOffsets(1);  // must not wait: the holder waits for us
  EXPECT_EQ(refreshCounters.dropped, dropped + 1);
  holder.LetGo();
  EXPECT_EQ(Read<uint8_t>(0x66C0), 0);
  RefreshCustomOffsets(1);
  EXPECT_EQ(Read<uint8_t>(0x66C0), 5);
}

TEST_F(CustomRuntime, ClientWritesSetDatarefs) {
  sim::Publish("t/int", sim::Kind::Int, 1, true);
  sim::Publish("t/double", sim::Kind::Double, 1, true);
  sim::Publish("t/floats", sim::Kind::FloatArray, 4, true);
  sim::Publish("t/ints", sim::Kind::IntArray, 4, true);
  sim::Publish("t/bytes", sim::Kind::Bytes, 4, true);
  Load(aliases +
       "Dataref i t/int int\nDataref d t/double double\nDataref fa t/floats[2] floatarray\n"
       "Dataref ia t/ints[3] intarray\nDataref b t/bytes[1] data\nDataref none no/such int\n"
       "Offset 66C0 SINT16 0 w >psi @ 2 /\nOffset 66C2 FLOAT64 0 rw 0 >i @\nOffset 66CA FLOAT64 0 w >d @\n"
       "Offset 66D2 UINT8 0 w >fa @\nOffset 66D3 SINT8 0 w >ia @\nOffset 66D4 UINT16 0 w >b @\n"
       "Offset 66D6 UINT8 0 w >psi 1 >x 2 >park 0.5 $psi * >y 3\nOffset 66D7 UINT8 0 r 0 >psi @\n"
       "Offset 66D8 UINT8 0 w >psi\nOffset 66D9 UINT8 0 w >none @\nOffset 66DA uint8 0 w >psi @\n");
  Set(psi, 3);
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  // Second time the same: already there. Then a byte of the word: its high byte stays. Both 66D2 and 66D3 in
  // one request: one slot, the later one counts. Extended offsets are searched by their low 16 bits.
  const std::tuple<uint32_t, Stored, double, const char*> cases[] = {
      {0x66D6, rows::U8, 9, "sim/flightmodel/controls/parkbrake=1.5"},
      {0x66C0, rows::S16, -90, "sim/flightmodel/position/psi=-45.0"},
      {0x66C0, rows::S16, -90, ""},
      {0x66C0, rows::U8, 0xA8, "sim/flightmodel/position/psi=-44.0"},
      {0x66C2, rows::F64, -3e9, "t/int=-2147483648"},
      {0x66C2, rows::F64, 2.9, "t/int=2"},
      {0x66CA, rows::F64, 0.25, "t/double=0.25"},
      {0x66CA, rows::F64, none, ""},
      {0x66D2, rows::U8, 200, "t/floats[2]=200.0"},
      {0x66D3, rows::S8, -5, "t/ints[3]=-5"},
      {0x66D7, rows::U8, 9, ""},
      {0x66D8, rows::U8, 9, "sim/flightmodel/position/psi=88.0"},
      {0x66D9, rows::U8, 9, ""},
      {0x66D2, rows::U16, 0x0607, "t/ints[3]=6"},
      {0x166C0, rows::S16, 8, "sim/flightmodel/position/psi=4.0"}};
  for (const auto& [offset, type, value, expected] : cases) {
    uint8_t bytes[8];
    const uint32_t width = rows::Encode(type, value, bytes);
    EXPECT_EQ(rows::WriteBytes(offset, bytes, width), 1) << expected;
    WriteFrame();
    EXPECT_EQ(custom::Writes(), expected) << std::hex << offset;
    WriteFrame();
    EXPECT_EQ(custom::Writes(), "") << "applied once";
  }
  Write<uint16_t>(0x66D4, 0x1FF);
  WriteFrame();
  EXPECT_EQ(Get("t/bytes[1]"), 0xFF);
  EXPECT_EQ(custom::Writes(), "t/bytes[1]=\"\\xFF\"") << "and nothing behind it";
  // An entry of size 0 is passed over, and nothing fixed lies there either.
  for (const uint32_t offset : {0x66DAU, 0x1FFFFU}) EXPECT_EQ(Write<uint8_t>(offset, 1), 0);
}

TEST_F(CustomRuntime, CommandsByMode) {
  for (const char* name : {"c/a", "c/b", "c/c"}) sim::PublishCommand(name, nullptr, 0);
  Load(
      "Command 66C0 UINT8 0 1 c/a 1 2 c/b 7 3 c/c 1 2 no/such\nCommand 66C1 uint8 1 1 c/b\n"
      "Command 0BC8 SINT16 1 32767 c/b\n");
  const auto framed = [] { return WriteFrame(), Calls(); };
  // Held once, ended by any other value, other modes never end.
  const std::pair<uint8_t, const char*> steps[] = {
      {1, "begin c/a"}, {1, ""}, {2, "end c/a; once c/b"}, {0, ""},        {3, "begin c/c"},
      {4, ""},          {3, ""}, {1, "begin c/a"},         {5, "end c/a"}, {1, "begin c/a"}};
  for (const auto& [value, calls] : steps) {
    Write(0x66C0, value);
    EXPECT_EQ(framed(), calls) << int{value};
  }
  for (const uint8_t value : {uint8_t{2}, uint8_t{9}}) Write(0x66C0, value);
  EXPECT_EQ(framed(), "end c/a") << "only the last value of a frame counts";
  Write<uint8_t>(0x66C1, 1);
  EXPECT_EQ(framed(), "") << "an unknown type has no bytes that could differ";
  // A fixed offset stays one beside its command.
  EXPECT_EQ(Write<int16_t>(0x0BC8, 32767), 1);
  EXPECT_EQ(framed(), "once c/b");
  EXPECT_EQ(Get(park), 1);
  Write<uint8_t>(0x66C0, 1);
  framed();
  ClearCustomOffsets();
  EXPECT_EQ(Calls(), "end c/a; end c/c");
}

// A request that covers several offsets goes on behind a command's own bytes.
TEST_F(CustomRuntime, CommandsAdvanceTheWalk) {
  for (const char* name : {"c/a", "c/b"}) sim::PublishCommand(name, nullptr, 0);
  Load(aliases +
       "Command 66C0 UINT32 1 1 c/a\nOffset 66C4 UINT16 0 w >psi @\nCommand 66C6 UINT8 1 5 c/b\n"
       "Command 66D0 uint8 1 1 c/a\nCommand 0BC8 UINT32 1 1 c/a\n");
  // Offset, bytes, what the dispatcher answers, datarefs set.
  const std::tuple<const char*, uint32_t, std::vector<uint8_t>, int, const char*> cases[] = {
      {"all of them", 0x66C0, {1, 0, 0, 0, 90, 0, 5}, 1, "sim/flightmodel/position/psi=90.0"},
      {"cut within the command", 0x66C0, {2, 0}, 1, ""},
      {"something meaningless behind it", 0x66C6, {6, 1}, 0, ""},
      {"a type that is none has no bytes to go on by", 0x66D0, {1, 1}, 0, ""},
      // The fixed offset's two bytes, not the command's four: the next one is 0x0BCA, which means nothing.
      {"fixed beside it", 0x0BC8, {255, 127, 1, 0}, 0, "sim/flightmodel/controls/parkbrake=1.0"}};
  for (const auto& [what, offset, bytes, whole, writes] : cases) {
    EXPECT_EQ(rows::WriteBytes(offset, bytes.data(), static_cast<uint32_t>(bytes.size())), whole) << what;
    WriteFrame();
    EXPECT_EQ(custom::Writes(), writes) << what;
  }
  EXPECT_EQ(Calls(), "once c/b") << "one slot: the later command of the request";
}

// One command waits at a time, but no key stays down because of another command.
TEST_F(CustomRuntime, EndsOfHeldCommandsOutliveTheirWrite) {
  for (const char* name : {"c/a", "c/b", "c/c", "c/d"}) sim::PublishCommand(name, nullptr, 0);
  Load(
      "Command 66C0 UINT8 0 1 c/a 0 2 c/b\nCommand 66C1 UINT8 0 1 c/c\nCommand 66C2 UINT8 1 1 c/d\n"
      "Command 66C3 UINT8 2 1 c/d\n");
  // Writes as "last digit of the offset = value": those of frames before, one each, and those of one frame.
  const std::tuple<const char*, std::string, std::string, const char*> cases[] = {
      {"end, then another command", "0=1", "0=0 2=1", "end c/a; once c/d"},
      {"two ends displaced", "0=1 1=1", "1=0 0=0 2=1", "end c/c; end c/a; once c/d"},
      {"an end displaces an end", "0=2 1=1", "0=0 1=0", "end c/b; end c/c"},
      {"only the end of it", "0=1", "0=2 2=1", "end c/a; once c/d"},
      {"a begin is displaced as ever", "", "0=1 2=1", "once c/d"},
      {"the begin displaced, then the end", "", "0=1 2=1 0=0", ""},
      {"begin and end", "", "0=1 0=0", ""},
      {"end and begin: held all the time", "0=1", "0=0 0=1", ""},
      {"the same with another between", "0=1", "0=0 2=1 0=1", ""},
      {"and displaced again at last", "0=1", "0=0 2=1 0=1 0=3 2=1", "end c/a"},
      {"nothing is held", "", "0=9 2=1", "once c/d"},
      {"of its own offset: replaced", "0=1", "0=0 0=2", "end c/a; begin c/b"},
      {"other modes never end", "3=1", "3=0 2=1", "once c/d"}};
  for (const auto& [what, before, frame, calls] : cases) {
    ClearCustomOffsets();
    LoadCustomOffsets();
    for (uint32_t offset = 0x66C0; offset < 0x66C4; ++offset) CopyToMemory(offset, 1, "");
    for (const std::string* writes : {&before, &frame}) {
      Calls();
      for (size_t at = 0; at < writes->size(); at += 4) {
        Write(0x66C0 + static_cast<uint32_t>((*writes)[at] - '0'),
              static_cast<uint8_t>((*writes)[at + 2] - '0'));
        if (writes == &before) WriteFrame();
      }
    }
    WriteFrame();
    EXPECT_EQ(Calls(), calls) << what;
    WriteFrame();
    EXPECT_EQ(Calls(), "") << what << ": once";
  }
}

// A client that asks again and again: the first reload at once, then one a second for all who asked, during
// which the offsets stay in use.
TEST_F(CustomRuntime, ReloadFloodIsOneReloadASecond) {
  using Clock = std::chrono::steady_clock;
  Load(aliases + "Offset 66C0 UINT8 1 r 1\n");
  OpenLogs(custom::Folder().c_str(), nullptr);
  const auto ask = [](uint32_t offset) {
    Write<uint8_t>(offset, 0);
    Write<uint8_t>(offset, 1);
  };
  const std::string pair = "Clear TAVRIXOffsets.cfg by user\nReload TAVRIXOffsets.cfg\n";
  const auto first = Clock::now();
  for (int i = 0; i < 1000; ++i) ask(customClearOffset);
  EXPECT_EQ(custom::Log(), "") << "no line while the lock is held";
  EXPECT_EQ(FindCustomOffset(0x66C0), nullptr);
  WriteFrame();
  EXPECT_EQ(custom::Log(), pair);
  EXPECT_NE(FindCustomOffset(0x66C0), nullptr);
  EXPECT_EQ(Read<uint8_t>(customClearOffset), 0);
  // Within the second: kept, and the entry of the new file comes with the second reload.
  custom::WriteFile(aliases + "Offset 66C1 UINT8 1 r 2\n");
  ask(customReloadOffset);
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  while (FindCustomOffset(0x66C1) == nullptr && Clock::now() < deadline) {
    for (int i = 0; i < 100; ++i) ask(customClearOffset);
    EXPECT_TRUE(FindCustomOffset(0x66C0) != nullptr || FindCustomOffset(0x66C1) != nullptr);
    WriteFrame();
  }
  EXPECT_GE(Clock::now() - first, std::chrono::seconds(1));
  EXPECT_EQ(custom::Log(), pair + pair);
  EXPECT_EQ(FindCustomOffset(0x66C0), nullptr);
  EXPECT_EQ(Read<uint8_t>(customClearOffset), 0);
  RefreshCycle1(0, 0, 0, nullptr);
  EXPECT_EQ(Read<uint8_t>(customReloadOffset), 0);
  // The window's button is at once all the same.
  custom::WriteFile(aliases + "Offset 66C2 UINT8 1 r 2\n");
  ReloadCustomOffsets();
  EXPECT_NE(FindCustomOffset(0x66C2), nullptr);
}

TEST_F(CustomRuntime, ReloadsAgainAndAgain) {
  const auto file = [](int value) {
    return aliases + "Offset 66C0 UINT8 1 rw " + std::to_string(value) + " >psi @\n";
  };
  Load(file(1));
  for (int round = 2; round < 6; ++round) {
    const uint32_t request = round == 4 ? customReloadOffset : customClearOffset;
    custom::WriteFile(file(round));
    ForgetCustomRequests();  // as if the last one were long ago
    OpenLogs(custom::Folder().c_str(), nullptr);
    Write<uint8_t>(0x66C0, 200);  // pending, dropped with the tables
    EXPECT_EQ(Write<uint8_t>(request, 2), 1);
    EXPECT_EQ(custom::Log(), "") << "only 1 asks";
    EXPECT_EQ(Write<uint8_t>(request, 1), 1);
    EXPECT_EQ(FindCustomOffset(0x66C0), nullptr) << "gone at once";
    RefreshCustomOffsets(1);
    EXPECT_EQ(Read<uint8_t>(0x66C0), 200);
    WriteFrame();
    EXPECT_EQ(custom::Writes(), "");
    EXPECT_EQ(custom::Log(),
              std::string(request == customClearOffset ? "Clear TAVRIXOffsets.cfg by user\n" : "") +
                  "Reload TAVRIXOffsets.cfg\n");
    EXPECT_EQ(Read<uint8_t>(customClearOffset), 0);
    RefreshCycle1(0, 0, 0, nullptr);
    EXPECT_EQ(Read<uint8_t>(customReloadOffset), 0);
    EXPECT_EQ(Read<uint8_t>(0x66C0), round);
  }
  OpenLogs(custom::Folder().c_str(), nullptr);
  ReloadCustomOffsets();
  EXPECT_EQ(custom::Log(), "Clear TAVRIXOffsets.cfg by user\nReload TAVRIXOffsets.cfg\n");
  EXPECT_NE(FindCustomOffset(0x66C0), nullptr);
}

// Clients write values, commands and reload requests while frames run.
TEST_F(CustomRuntime, ReloadRaceThreads) {
  for (const char* name : {"c/a", "c/b"}) sim::PublishCommand(name, nullptr, 0);
  std::string text = aliases + "Command 6700 UINT8 0 1 c/a 1 2 c/b\n";
  for (int i = 0; i < 50; ++i) text += "Offset " + Hex(0x6800 + 8 * i) + " FLOAT64 1 rw $psi 1 + >psi @\n";
  Load(text);
  std::atomic<bool> run = true;
  std::atomic<uint32_t> frame = 0;
  std::vector<std::thread> clients;
  for (uint32_t client = 0; client < 3; ++client) {
    clients.emplace_back([&run, &frame, client] {
      for (uint32_t i = client; run; ++i) {
        Write<double>(0x6800 + 8 * (i % 50), i);
        Write<uint8_t>(0x6700, static_cast<uint8_t>(i % 4));
        if (frame % 8 == client) Write<uint8_t>(client == 1 ? customReloadOffset : customClearOffset, 1);
      }
    });
  }
  // Slow systems start the clients late: frames go on until two reloads were seen, at most 20 s.
  const auto reloaded = [] {
    const std::string log = custom::Log();
    return log.find("Reload") != log.rfind("Reload");
  };
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  for (; frame < 400 || (!reloaded() && std::chrono::steady_clock::now() < deadline); ++frame) {
    WriteFrame();
    RefreshCycle1(0, 0, 0, nullptr);
  }
  run = false;
  for (std::thread& client : clients) client.join();
  WriteFrame();
  EXPECT_TRUE(reloaded()) << "more than once";
  // All is in order again.
  for (const uint8_t value : {uint8_t{0}, uint8_t{1}}) {
    Write<uint8_t>(0x6700, value);
    WriteFrame();
    RefreshCustomOffsets(1);
  }
  Set(psi, 41);
  RefreshCustomOffsets(1);
  EXPECT_EQ(Read<double>(0x6800), 42);
  Calls();
  ClearCustomOffsets();
  EXPECT_EQ(Calls(), "end c/a");
}

// A write of our own waits its turn behind one for another place, and learns what became of it.
TEST_F(CustomRuntime, OwnWritesWaitTheirTurn) {
  custom::Load(
      "Dataref a sim/cockpit/misc/vacuum float\nOffset 66C0 UINT8 0 w >a @\nOffset 66C2 UINT8 0 w >a @\n"
      "Command 66D0 UINT8 1 5 sim/x\nCommand 66D2 UINT8 1 5 sim/y\n");
  const auto write = [](uint32_t offset, uint32_t* ticket) {
    const LockScope lock(&offsetLock);
    const uint8_t value = 5;
    return DispatchOwnWrite(offset, 1, &value, &rows::marks, ticket);
  };
  const auto state = [](uint32_t ticket) {
    const LockScope lock(&offsetLock);
    return StateOfOwnWrite(ticket);
  };
  for (const uint32_t first : {0x66C0U, 0x66D0U}) {
    uint32_t ticket = 0, newer = 0, other = 0;
    ASSERT_TRUE(write(first, &ticket));
    EXPECT_NE(ticket, 0U);
    EXPECT_EQ(state(ticket), TicketState::Waits);
    EXPECT_FALSE(write(first + 2, &other)) << "another place of that kind";
    EXPECT_TRUE(write(first, &newer)) << "the same place";
    EXPECT_NE(newer, ticket);
    uint32_t of[2] = {};
    EXPECT_TRUE(write(first ^ 0x10, &of[0])) << "the other kind";
    EXPECT_FALSE(write((first ^ 0x10) + 2, &of[1]));
    EXPECT_EQ(state(newer), TicketState::Waits);
    rows::Write<uint8_t>(first + 2, 9);  // a client does not wait
    EXPECT_EQ(state(newer), TicketState::Replaced);
    EXPECT_EQ(state(of[0]), TicketState::Waits);
    custom::WriteFrame();
    EXPECT_EQ(state(of[0]), TicketState::Done);
    EXPECT_TRUE(write(first + 2, &other)) << "its turn";
    custom::WriteFrame();
    EXPECT_EQ(state(other), TicketState::Done);
    // A reload forgets what waits.
    ASSERT_TRUE(write(first, &ticket));
    ASSERT_TRUE(write(first ^ 0x10, &of[0]));
    ClearCustomOffsets();
    EXPECT_EQ(state(ticket), TicketState::Replaced);
    EXPECT_EQ(state(of[0]), TicketState::Replaced);
    LoadCustomOffsets();
    rows::Write<uint8_t>(first + 2, 0);
    custom::WriteFrame();
  }
}

}  // namespace
