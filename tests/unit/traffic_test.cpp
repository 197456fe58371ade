// Traffic: the table in the offset memory, distances, slots coming and going, both threads.
#include "traffic/traffic.h"

#include <cmath>
#include <functional>
#include <numbers>

#include "offsetctl/traffic_rows.h"
#include "platform/clock.h"
#include "row_harness.h"
#include "test_tools.h"
#include "traffic/traffic_state.h"

namespace {

using rows::Read;
using rows::Set;

constexpr const char* plane = "sim/multiplayer/position/plane";
constexpr uint32_t header = 0xF000, nearest = 0xF07E;

uint32_t Entry(uint32_t slot) { return 0xF080 + 40 * slot; }
uint32_t Record(uint32_t slot) { return 0xD840 + 20 * slot; }

void WaitUntil(const char* what, const std::function<bool()>& condition) {
  ASSERT_TRUE(tools::WaitUntil(condition)) << "not in time: " << what;
}

// The test plays the manager thread: it alone starts, ends and joins slots.
class Traffic : public testing::Test {
 protected:
  void SetUp() override {
    rows::Start();
    ASSERT_TRUE(InitTraffic());
    clientEntryWritten = 0;
    Set("sim/flightmodel/position/latitude", 48.0);
    Set("sim/flightmodel/position/longitude", 11.0);
  }
  void TearDown() override {
    EndManager();
    ReleaseTraffic();
    rows::Stop();
  }

  static void Begin(int planes) {
    Planes(planes);
    BeginManager();
    Rounds();
  }
  static void Planes(int count) {
    ASSERT_EQ(sim::SimCommand("planes " + std::to_string(count)), "ok");
    LoadAircraftList();
  }
  static void PutPlane(int number, double latitude, double longitude) {
    Set(plane + std::to_string(number) + "_lat", latitude);
    Set(plane + std::to_string(number) + "_lon", longitude);
  }
  // A whole round of every slot after this call, then one of the manager.
  static void Rounds() {
    WaitUntil("the positions, when no slot thread is reading them", [] { return FillTrafficPositions(); });
    for (uint32_t slot = 0; slot < activeSlots; ++slot) {
      const uint8_t before = slotRounds[slot].load();
      WaitUntil("slot round", [&] {
        SignalEvent(&slots[slot].wake);
        return static_cast<uint8_t>(slotRounds[slot].load() - before) >= 2;
      });
    }
    RunManagerRound();
  }
  static void Settle(uint32_t wanted) {
    WaitUntil("slots settled", [&] {
      RunManagerRound();
      return activeSlots == wanted;
    });
  }
};

// --- Distance ---------------------------------------------------------------------------------------------

TEST(TrafficDistance, RightAndFiniteEverywhere) {
  const struct {
    float latitudeA, longitudeA, latitudeB, longitudeB;
    double degrees;  // of arc between them
  } cases[] = {
      {48, 11, 48, 11, 0},          {47.123456F, -122.654321F, 47.123456F, -122.654321F, 0},
      {90, 0, 90, 137, 0},          {-90, 20, -90, -160, 0},
      {90, 0, -90, 0, 180},         {0, 0, 0, 180, 180},
      {0, 179.9F, 0, -179.9F, 0.2}, {0, -180, 0, 180, 0},
      {89.5F, 0, 89.5F, 180, 1},    {10, 25, 20, 25, 10},
      {0, 0, 0, 0.005F, 0.005},  // 0.56 km: not lost in single precision
      {45, 0, 45, 90, 60},
  };
  for (const auto& test : cases) {
    Place a = {test.latitudeA, test.longitudeA, 0}, b = {test.latitudeB, test.longitudeB, 0};
    ConvertPlace(&a);
    ConvertPlace(&b);
    const double expected = test.degrees * std::numbers::pi / 180 * 63710;
    EXPECT_NEAR(DistanceBetween(a, b), expected, 1.0) << test.latitudeA << " " << test.longitudeA;
    EXPECT_EQ(DistanceBetween(a, b), DistanceBetween(b, a));
  }
}

// --- Table ------------------------------------------------------------------------------------------------

TEST_F(Traffic, EntryAndRecordByteForByte) {
  Planes(2);
  PutPlane(1, 48.25, -11.5);
  Set("sim/multiplayer/position/plane1_el", 1000);
  const struct {
    double psi, east, south, climb, pitch, bank;
    uint16_t heading, speed;
    int16_t vertical, angleA, angleB;
  } cases[] = {
      {90.9, 30, -40, 5.9, 10.9, -20.9, 16384, 97, 985, 1820, -3640},
      {359.99, 0, 0, -3.5, -89.5, 180, 65353, 0, -591, -16201, 32767},
      {360, 0, 1, 500, 90, -180, 0, 1, 32767, 16384, -32768},  // saturated, never wrapped
      {-90, 1e9, 0, -500, NAN, 0, 49152, 65535, -32768, 0, 0},
  };
  BeginManager();
  for (const auto& test : cases) {
    SCOPED_TRACE(test.psi);
    const std::string first = std::string(plane) + "1_";
    rows::SetAll({{first + "psi", test.psi},
                  {first + "v_x", test.east},
                  {first + "v_z", test.south},
                  {first + "v_y", test.climb},
                  {first + "the", test.pitch},
                  {first + "phi", test.bank}});
    const uint16_t foreign = 0xBEEF;  // not ours to write
    CopyToMemory(Entry(0) + 38, 2, &foreign);
    Rounds();
    const double serial = slots[0].serial;
    rows::ExpectShown({{Entry(0), rows::U32, serial},
                       {Entry(0) + 4, rows::F32, 48.25},
                       {Entry(0) + 8, rows::F32, -11.5},
                       {Entry(0) + 12, rows::F32, 3280.839, 1e-3},
                       {Entry(0) + 16, rows::U16, double(test.heading)},
                       {Entry(0) + 18, rows::U16, double(test.speed)},
                       {Entry(0) + 20, rows::S16, double(test.vertical)},
                       {Entry(0) + 36, rows::U16, 0x8C00},
                       {Entry(0) + 38, rows::U16, double(foreign)},
                       {Record(0), rows::U32, serial},
                       {Record(0) + 4, rows::U16, 14},
                       {Record(0) + 6, rows::S16, double(test.angleA)},
                       {Record(0) + 18, rows::S16, double(test.angleB)}});
    EXPECT_EQ(std::memcmp(offsetMemory.bytes + Record(0) + 8, "EDDMEDDT\0\0", 10), 0);
  }
  PutPlane(1, 1e300, -1e300);  // no float holds them
  Rounds();
  rows::ExpectShown({{Entry(0) + 4, rows::F32, 0}, {Entry(0) + 8, rows::F32, 0}});
  EXPECT_GE(slotDistances[0].distance, 0);
}

TEST_F(Traffic, EntriesStayInDegreesBetweenTwoPositions) {
  Planes(3);
  PutPlane(1, 48.0, 11.0);
  PutPlane(2, 48.5, 11.0);
  BeginManager();
  Rounds();
  for (int i = 0; i < 4; ++i) {  // no new positions: the shared ones must not be converted again
    for (uint32_t slot = 0; slot < 2; ++slot) {
      const uint8_t before = slotRounds[slot].load();
      WaitUntil("round", [&] {
        SignalEvent(&slots[slot].wake);
        return slotRounds[slot].load() != before;
      });
    }
    EXPECT_EQ(Read<float>(Entry(1) + 4), 48.5F);
    const LockScope lock(&trafficSlotLock);
    EXPECT_EQ(slotDistances[0].distance, 0);
    EXPECT_NEAR(slotDistances[1].distance, 555, 1);
  }
}

TEST_F(Traffic, HeaderForEveryCount) {
  const struct {
    int planes;
    uint16_t slots;
  } cases[] = {{1, 0}, {5, 4}, {2, 1}, {120, 96}, {97, 96}, {1, 0}};
  Begin(1);
  for (const auto& test : cases) {
    Planes(test.planes);
    Settle(test.slots);
    Rounds();
    const uint16_t change = Read<uint16_t>(header + 6);
    RunManagerRound();
    EXPECT_EQ(Read<uint32_t>(header), 0x00600028U);
    EXPECT_EQ(Read<uint16_t>(header + 4), test.slots);
    EXPECT_EQ(Read<uint16_t>(header + 6), static_cast<uint16_t>(change + 10));
    EXPECT_EQ(Read<uint8_t>(header + 0x68), 'P');
    for (uint32_t slot = 0; slot < maxSlots; ++slot) {
      if (slot < test.slots) {
        EXPECT_NE(Read<uint32_t>(Entry(slot)), 0U) << slot;
      } else {
        WaitUntil("entry cleared", [&] { return Read<uint32_t>(Entry(slot)) == 0; });
        EXPECT_EQ(Read<uint32_t>(Record(slot)), 0U) << slot;
      }
    }
  }
  RunManagerRound();
  EXPECT_EQ(Read<uint16_t>(nearest), 0);
}

TEST_F(Traffic, BusyPositionsAreToldAndTakenAtTheNextCall) {
  Begin(2);
  tools::LockHolder holder;
  holder.Take(&trafficLock);
  EXPECT_FALSE(FillTrafficPositions());
  holder.LetGo();
  EXPECT_TRUE(FillTrafficPositions());
}

TEST_F(Traffic, OneSlotARoundFromTheTopDownWithNewSerials) {
  Begin(5);
  EXPECT_EQ(activeSlots, 4U);
  const uint32_t lastSerial = slots[3].serial;
  Planes(2);
  for (uint32_t left = 3; left >= 1; --left) {
    RunManagerRound();
    EXPECT_EQ(activeSlots, left);
    EXPECT_EQ(Read<uint16_t>(header + 4), left);
    WaitUntil("cleared", [&] { return Read<uint32_t>(Entry(left)) == 0; });
    EXPECT_NE(Read<uint32_t>(Entry(left - 1)), 0U);
  }
  RunManagerRound();
  EXPECT_EQ(activeSlots, 1U);
  Planes(3);
  Settle(2);
  EXPECT_EQ(slots[1].serial, lastSerial + 1);
}

TEST_F(Traffic, NearestChangesAsAircraftPass) {
  Begin(4);
  const struct {
    double latitude1, latitude2, latitude3;
    uint32_t nearest;
  } cases[] = {
      {48.3, 48.2, 48.1, Entry(2)},
      {48.3, 48.05, 48.1, Entry(1)},
      {48.0, 48.05, 48.1, Entry(0)},
      {48.2, 48.2, 48.2, Entry(0)},  // equally far: the first
      {56.9, 57.1, 58, Entry(0)},    // 990 km, 1,012 km
      {57.1, 58, 70, 0},             // nobody within 1,000 km
  };
  for (const auto& test : cases) {
    PutPlane(1, test.latitude1, 11);
    PutPlane(2, test.latitude2, 11);
    PutPlane(3, test.latitude3, 11);
    Rounds();
    EXPECT_EQ(Read<uint16_t>(nearest), test.nearest) << test.latitude1;
  }
}

TEST_F(Traffic, AircraftWithoutPositionAndForeignEntriesAreNotNear) {
  Set("sim/flightmodel/position/latitude", 0);
  Set("sim/flightmodel/position/longitude", 0);
  Planes(25);  // only 19 have a position
  for (int number = 1; number <= 19; ++number) PutPlane(number, 5, 5 + number);
  BeginManager();
  Rounds();
  EXPECT_EQ(Read<uint16_t>(nearest), Entry(0));
  const uint32_t invented = 77;
  CopyToMemory(Entry(60), 4, &invented);
  RunManagerRound();
  EXPECT_EQ(Read<uint16_t>(nearest), Entry(0));
}

TEST_F(Traffic, ClientEntryIsTakenOnlyFromItsFirstByte) {
  Begin(1);
  uint8_t record[41] = {};
  for (uint8_t i = 0; i < 41; ++i) record[i] = static_cast<uint8_t>(i + 1);
  const struct {
    uint32_t offset, size, taken;
  } cases[] = {{0x1F80, 40, 1}, {0x1F80, 4, 1}, {0x1F81, 39, 0}, {0x1F7F, 41, 0}};
  for (const auto& test : cases) {
    rows::WriteBytes(test.offset, record, test.size);
    EXPECT_EQ(clientEntryWritten.load(), test.taken) << std::hex << test.offset;
    EXPECT_EQ(pendingFlags.flags[0x1F80], 0U);
    std::memset(clientEntry, 0, sizeof clientEntry);
    RunManagerRound();
    EXPECT_EQ(clientEntry[0], test.taken != 0 ? 1 : 0);
    EXPECT_EQ(clientEntryWritten.load(), 0U);
  }
}

TEST_F(Traffic, RetiringSlotStopsRefreshingAndEnds) {
  Begin(2);
  slots[0].retire = 1;
  // A round that had begun before may still refresh the entry.
  const uint8_t before = slotRounds[0].load();
  WaitUntil("ended", [] {
    SignalEvent(&slots[0].wake);
    return slots[0].ended.load() != 0;
  });
  EXPECT_GE(static_cast<uint8_t>(slotRounds[0].load() - before), 5);
  EXPECT_EQ(Read<uint32_t>(Entry(0)), 0U);
}

TEST_F(Traffic, ModelsAreCutClearedAndReloaded) {
  Begin(5);
  char text[15] = {};
  CopyFromMemory(Entry(0) + 22, 14, text);
  EXPECT_STREQ(text, std::string(modelNames[1]).substr(0, 14).c_str());
  EXPECT_NE(text[0], 0);
  EXPECT_NE(std::string(modelPaths[4]).find(modelNames[4]), std::string::npos);
  EXPECT_EQ(modelNames[0][0], 0);
  Planes(2);
  EXPECT_NE(modelNames[1][0], 0);
  EXPECT_EQ(modelNames[2][0], 0);
  EXPECT_EQ(modelPaths[4][0], 0);
  Planes(128);
  EXPECT_NE(modelNames[maxModels - 1][0], 0);
}

TEST_F(Traffic, ThousandsOfChangesLeaveNothingBehind) {
  Begin(3);
  const auto change = [](int times) {
    for (int i = 0; i < times; ++i) {
      aircraftCount = i % 2 == 0 ? 4 : 2;
      countChanged = 1;
      Settle(aircraftCount - 1);
    }
    aircraftCount = 3;
    countChanged = 1;
    Settle(2);
    WaitUntil("joined", [] {
      RunManagerRound();
      return slots[2].thread.started.load() == 0;
    });
  };
  change(50);
  const int threads = CountProcessThreads(), handles = CountProcessHandles();
  [[maybe_unused]] const int64_t memory = ProcessMemoryBytes();
  change(1500);  // two slots each
  EXPECT_EQ(CountProcessThreads(), threads);
  EXPECT_EQ(CountProcessHandles(), handles);
#if !defined(__SANITIZE_ADDRESS__)  // which keeps freed memory; it finds leaks by itself
  EXPECT_LT(ProcessMemoryBytes() - memory, 2 * 1024 * 1024);
#endif
}

// What the client tool makes of the table.
TEST_F(Traffic, MonitorShowsRangesNearestFirst) {
  uint8_t table[ctl::trafficSize] = {};
  EXPECT_EQ(ctl::TrafficLines(table, 48, 11, 2), (std::vector<std::string>{"Traffic      0 aircraft", "", ""}));
  Planes(4);
  PutPlane(1, 49, 11);
  PutPlane(2, 48, 10.5);
  PutPlane(3, 48, 13);
  BeginManager();
  Rounds();
  CopyFromMemory(ctl::trafficOffset, ctl::trafficSize, table);
  const std::vector<std::string> lines = ctl::TrafficLines(table, 48, 11, 2);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "Traffic      3 aircraft");
  EXPECT_NE(lines[1].find("20.1 nm at 270"), std::string::npos) << lines[1];
  EXPECT_NE(lines[2].find("60.0 nm at   0"), std::string::npos) << lines[2];
}

// --- Simulators that tell of other aircraft in arrays -----------------------------------------------------

// Published as the simulators from 11.50 on do it.
class TrafficTargets : public Traffic {
 protected:
  static constexpr const char* stem = "sim/cockpit2/tcas/targets/";
  void SetUp() override {
    Traffic::SetUp();
    for (const char* name : {"position/lat", "position/lon", "position/ele", "position/vx", "position/vy",
                             "position/vz", "position/psi", "position/the", "position/phi"}) {
      Define(std::string(stem) + name + " float[64]");
    }
    Define(std::string(stem) + "position/weight_on_wheels int[64]");
    Define(std::string(stem) + "modeS_id int[64]");
    Define(std::string(stem) + "flight_id byte[512]");
    Define(std::string(stem) + "icao_type byte[512]");
    Define("sim/cockpit2/tcas/indicators/tcas_num_acf int");
    rows::LookUp();
  }
  static void Define(const std::string& what) { ASSERT_EQ(sim::SimCommand("define " + what), "ok"); }
  static void Put(const std::string& field, int place, double value) {
    Set(stem + field + "[" + std::to_string(place) + "]", value);
  }
  static void PutText(const std::string& field, int place, const std::string& text) {
    for (size_t i = 0; i < 8; ++i) {
      Set(stem + field + "[" + std::to_string(static_cast<size_t>(place) * 8 + i) + "]",
          i < text.size() ? text[i] : 0);
    }
  }
  struct Aircraft {
    int place, address;
    const char *flight, *type;
    double latitude;
  };
  // What stands at these places; all others are empty. `count` as the simulator tells it.
  static void Fly(int count, std::initializer_list<Aircraft> list) {
    for (int place = 0; place < 8; ++place) Fly({place, 0, "", "", 0});
    for (const Aircraft& aircraft : list) Fly(aircraft);
    Set("sim/cockpit2/tcas/indicators/tcas_num_acf", count);
    WaitUntil("positions", [] { return FillTrafficPositions(); });
  }
  static void Fly(const Aircraft& aircraft) {
    Put("modeS_id", aircraft.place, aircraft.address);
    Put("position/lat", aircraft.place, aircraft.latitude);
    PutText("flight_id", aircraft.place, aircraft.flight);
    PutText("icao_type", aircraft.place, aircraft.type);
  }
  // Texts of the entries that are shown, in the order of their slots.
  static std::vector<std::string> Shown(uint32_t wanted) {
    Settle(wanted);
    Rounds();
    std::vector<std::string> texts;
    for (uint32_t slot = 0; slot < wanted; ++slot) {
      char text[15] = {};
      CopyFromMemory(Entry(slot) + 22, 14, text);
      texts.push_back(text);
    }
    return texts;
  }
};
using Texts = std::vector<std::string>;

TEST_F(TrafficTargets, NumberAndTextsAreThoseOfTheArrays) {
  Planes(7);  // the simulator's own list does not count
  Fly(1, {});
  BeginManager();
  const struct {
    int count;
    std::initializer_list<Aircraft> list;
    Texts texts;
  } cases[] = {
      {1, {}, {}},
      {0, {}, {}},
      {3, {{1, 11, "DLH4KP", "A320", 48.1}, {2, 12, "", "B738", 48.2}}, {"DLH4KP", "B738"}},
      {2,
       {{1, 11, "DLH4KP", "A320", 48.1}, {2, 12, "  ", "B738", 48.2}},
       {"DLH4KP", "B738"}},                                                           // without the user
      {2, {{1, 0, "N1", "", 48.1}}, {"N1"}},                                          // no address
      {3, {{1, 5, "EIGHTCHR", "", 1}, {2, 5, "TWIN", "", 2}}, {"EIGHTCHR", "TWIN"}},  // one address twice
      {3, {{1, 11, "ONE", "", 48.1}, {3, 13, "THREE", "", 48.3}}, {"ONE", "THREE"}},  // a place between is free
      {2, {{1, 11, "ONE", "", 48.1}, {2, 12, "LEFT", "", 48.2}, {3, 13, "LEFT", "", 48.3}}, {"ONE"}},  // stale
      {3, {{1, 11, "NOWHERE", "", NAN}, {2, 12, "FAR", "", 1e30}, {3, 13, "ONE", "", 48.1}}, {"ONE"}},
      {200, {{1, 11, "ONE", "", 48.1}}, {"ONE"}},
      {-5, {{1, 11, "ONE", "", 48.1}}, {}},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.count);
    Fly(test.count, test.list);
    EXPECT_EQ(Shown(static_cast<uint32_t>(test.texts.size())), test.texts);
  }
}

TEST_F(TrafficTargets, EntryHoldsSpeedAttitudeAndTheGround) {
  Fly(3, {{1, 11, "ONE", "", 48.25}, {2, 12, "TWO", "", 48.5}});
  const struct {
    const char* field;
    double first, second;
  } values[] = {
      {"position/lon", -11.5, 170},  {"position/ele", 1000, 0},    {"position/psi", 90.9, -90},
      {"position/vx", 30, 0},        {"position/vz", -40, 0},      {"position/vy", 5.9, -3.5},
      {"position/the", 10.9, -89.5}, {"position/phi", -20.9, NAN}, {"position/weight_on_wheels", 0, 1}};
  for (const auto& value : values) {
    Put(value.field, 1, value.first);
    Put(value.field, 2, value.second);
  }
  BeginManager();
  Rounds();
  rows::ExpectShown({{Entry(0) + 4, rows::F32, 48.25},
                     {Entry(0) + 8, rows::F32, -11.5},
                     {Entry(0) + 12, rows::F32, 3280.839, 1e-3},
                     {Entry(0) + 16, rows::U16, 16384},
                     {Entry(0) + 18, rows::U16, 97},
                     {Entry(0) + 20, rows::S16, 985},
                     {Record(0) + 6, rows::S16, 1820},
                     {Record(0) + 18, rows::S16, -3640},
                     {Entry(0) + 36, rows::U16, 0x8C00},
                     {Entry(0) + 38, rows::U8, 0},
                     {Entry(1) + 16, rows::U16, 49152},
                     {Entry(1) + 20, rows::S16, -591},
                     {Record(1) + 18, rows::S16, 0},
                     {Entry(1) + 38, rows::U8, 1}});
  EXPECT_EQ(std::memcmp(offsetMemory.bytes + Record(1) + 8, "EDDMEDDT\0\0", 10), 0);
}

TEST_F(TrafficTargets, SlotFollowsItsAircraftAndANewOneIsANewId) {
  const Aircraft one = {1, 11, "ONE", "", 48.1}, two = {2, 12, "TWO", "", 48.2},
                 three = {3, 13, "THREE", "", 48.3};
  Fly(4, {one, two, three});
  BeginManager();
  EXPECT_EQ(Shown(3), (Texts{"ONE", "TWO", "THREE"}));
  const auto ids = [] {
    return std::vector{Read<uint32_t>(Entry(0)), Read<uint32_t>(Entry(1)), Read<uint32_t>(Entry(2))};
  };
  const auto before = ids();
  Fly(4, {{1, 13, "THREE", "", 48.3}, {2, 11, "ONE", "", 48.1}, {3, 12, "TWO", "", 48.2}});  // sorted anew
  EXPECT_EQ(Shown(3), (Texts{"ONE", "TWO", "THREE"}));
  EXPECT_EQ(ids(), before);
  Fly(4, {one, {2, 14, "FOUR", "", 48.2}, three});  // the second has gone, another has come
  EXPECT_EQ(Shown(3), (Texts{"ONE", "FOUR", "THREE"}));
  EXPECT_EQ(Read<uint32_t>(Entry(0)), before[0]);
  EXPECT_EQ(Read<uint32_t>(Entry(2)), before[2]);
  EXPECT_GT(Read<uint32_t>(Entry(1)), before[2]);
  Fly(3, {{1, 14, "FOUR", "", 48.2}, {2, 13, "THREE", "", 48.3}});  // the first has gone: a slot less
  EXPECT_EQ(Shown(2), (Texts{"THREE", "FOUR"}));
  EXPECT_EQ(Read<uint32_t>(Entry(0)), before[2]);  // in another slot it is still itself
  // Without addresses by their flight identifiers.
  Fly(4, {{1, 0, "FIVE", "", 48.1}, {2, 0, "SIX", "", 48.2}, {3, 0, "SEVEN", "", 48.3}});
  EXPECT_EQ(Shown(3), (Texts{"FIVE", "SIX", "SEVEN"}));
  const auto sixAndSeven = ids();
  Fly(3, {{1, 0, "SIX", "", 48.2}, {2, 0, "SEVEN", "", 48.3}});
  EXPECT_EQ(Shown(2), (Texts{"SEVEN", "SIX"}));
  EXPECT_EQ(Read<uint32_t>(Entry(0)), sixAndSeven[2]);
  EXPECT_EQ(Read<uint32_t>(Entry(1)), sixAndSeven[1]);
}

// --- Threads ------------------------------------------------------------------------------------------------

class TrafficThreads : public testing::Test {
 protected:
  void SetUp() override {
    rows::Start();
    ASSERT_TRUE(InitTraffic());
  }
  void TearDown() override {
    StopAircraftModelThread();
    StopTrafficThread();
    ReleaseTraffic();
    rows::Stop();
  }
};

TEST_F(TrafficThreads, AllSlotsWhilePositionsModelsAndClientsChangeThenStopInTime) {
  const int threads = tools::CountThreads();
  sim::SimCommand("planes 97");
  LoadAircraftList();
  ASSERT_TRUE(StartTrafficThread());
  ASSERT_TRUE(StartAircraftModelThread());
  WaitUntil("96 slots", [] {
    const uint8_t byte = 1;
    rows::WriteBytes(0x1F80, &byte, 1);
    FillTrafficPositions();
    return Read<uint16_t>(header + 4) == 96 && Read<uint32_t>(Entry(95)) != 0;
  });
  for (int i = 0; i < 200; ++i) {
    if (i % 20 == 0) LoadAircraftList();
    FillTrafficPositions();
    Read<uint16_t>(nearest);
  }
  WaitUntil("models", [] { return listBeingBuilt.load() == 0; });
  sim::SimCommand("planes 90");
  LoadAircraftList();
  WaitUntil("one slot less", [] { return Read<uint16_t>(header + 4) < 96; });
  const int64_t begun = MonotonicNanoseconds();
  StopAircraftModelThread();
  StopTrafficThread();
  EXPECT_LT(MonotonicNanoseconds() - begun, (500 + 1000) * int64_t{1000000});  // 500 ms are pauses by design
  EXPECT_EQ(CountProcessThreads(), threads);
  for (uint32_t slot = 0; slot < maxSlots; ++slot) EXPECT_EQ(Read<uint32_t>(Entry(slot)), 0U) << slot;
  EXPECT_EQ(Read<uint16_t>(header + 4), 0);
}

TEST_F(TrafficThreads, WithoutOtherAircraftStoppingWaitsForNothing) {
  LoadAircraftList();
  ASSERT_TRUE(StartTrafficThread());
  WaitUntil("a round", [] { return Read<uint16_t>(header + 2) == 96; });
  const int64_t begun = MonotonicNanoseconds();
  StopTrafficThread();
  EXPECT_LT(MonotonicNanoseconds() - begun, 1200 * int64_t{1000000});
  EXPECT_FALSE(TrafficRuns());
  StopTrafficThread();  // twice does no harm
}

}  // namespace
