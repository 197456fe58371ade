// The catalogue as a whole: what it holds against a list of its own (catalogue_expected.inc), that reading
// and writing are inverse, that it lives without datarefs, and that a frame neither looks up nor allocates.
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMUtilities.h"
#include "bridge/catalogue/losses.h"
#include "bridge/stations.h"
#include "offsets/request_walk.h"
#include "row_harness.h"
#include "shell/override_watch.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZED 1
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                         void (*)(const volatile void*));
#endif

namespace {

std::atomic<bool> countAllocations;
std::atomic<uint64_t> allocations;

void NoteAllocation() {
  if (countAllocations) allocations++;
}

uint64_t AllocationsOf(void (*work)()) {
  const uint64_t before = allocations;
  countAllocations = true;
  work();
  countAllocations = false;
  return allocations - before;
}

}  // namespace

// Sanitizers bring operators of their own, which find mismatched pairs: there their hook counts instead. Not
// inlined, lest the compiler take these for a mismatched pair.
#ifndef SANITIZED
[[gnu::noinline]] void* operator new(size_t size) {
  NoteAllocation();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { std::free(memory); }
#endif

namespace {

#include "catalogue_expected.inc"

constexpr uint8_t paint[2] = {0x55, 0xAA};

std::vector<const OffsetRow*> AllRows() {
  std::vector<const OffsetRow*> all;
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) all.push_back(&row);
  }
  return all;
}

bool IsRefreshed(const OffsetRow& row) { return row.cycle != Cycle::None; }
testing::Message At(uint32_t offset) { return testing::Message() << "offset 0x" << std::hex << offset; }

using Callback = float (*)(float, float, int, void*);
struct Loop {
  const char* name;
  Cycle cycle;
  int frames;
  Callback run;
};
constexpr Loop loops[] = {
    {"1", Cycle::C1, 1, RefreshCycle1},
    {"3", Cycle::C3, 3, RefreshCycle3},
    {"7", Cycle::C7, 7, RefreshCycle7},
    {"13", Cycle::C13, 13, RefreshCycle13},
    {"31n", Cycle::C31Navigation, 31, RefreshCycle31Navigation},
    {"31", Cycle::C31, 31, RefreshCycle31},
    {"59", Cycle::C59, 59, RefreshCycle59},
    {"157", Cycle::C157, 157, RefreshCycle157},
    {"313", Cycle::C313, 313, RefreshCycle313},
};

// The readers alone; the second navigation radio shows what the navigation cycle has tuned.
void RunCycle(Cycle cycle) {
  if (cycle == Cycle::C31 || cycle == Cycle::C31Navigation) TuneStations();
  rows::Refresh(cycle);
}

void RunAllCycles() {
  for (const Loop& loop : loops) loop.run(0, 0, 0, nullptr);
}

// `count` frames as the simulator makes them.
void RunFrames(int count) {
  for (int frame = 1; frame <= count; frame++) {
    WriteCycle(0, 0, 0, nullptr);
    for (const Loop& loop : loops) {
      if (frame % loop.frames == 0) loop.run(0, 0, 0, nullptr);
    }
    ButtonCycle(0, 0, 0, nullptr);
    if (frame % 6 == 0) MultiplayerCycle(0, 0, 0, nullptr);
    if (frame % 60 == 0) OverrideWatch(0, 0, 0, nullptr);
  }
}

void Paint(uint8_t byte) {
  LockScope lock(&offsetLock);
  std::memset(offsetMemory.bytes, byte, offsetMemorySize);
}

std::vector<uint8_t> Snapshot() {
  std::vector<uint8_t> bytes(offsetMemorySize);
  CopyFromMemory(0, offsetMemorySize, bytes.data());
  return bytes;
}

using Catalogued = rows::Harness;

// --- What it holds --------------------------------------------------------------------------------------

// The offsets of a list, each with the words of the head (up to its colon) that stands before it.
template <typename Take>
void ForEachOffset(const char* list, const Take& take) {
  std::istringstream lines(list);
  std::string line, head;
  while (std::getline(lines, line)) {
    if (const size_t colon = line.find(':'); colon != std::string::npos) {
      head = line.substr(0, colon);
      line.erase(0, colon + 1);
    }
    std::istringstream words(line);
    for (std::string word; words >> word;) {
      const size_t dash = word.find('-');
      const auto first = static_cast<uint32_t>(std::stoul(word, nullptr, 16));
      const auto last = dash == std::string::npos ? first : std::stoul(word.substr(dash + 1), nullptr, 16);
      for (uint32_t at = first; at <= last; at++) take(head, at);
    }
  }
}

std::string TypeName(const OffsetRow& row) {
  constexpr const char* names[] = {"u8", "s8", "u16", "s16", "u32", "s32", "s64", "f32", "f64", "text"};
  return names[static_cast<size_t>(row.type)] + (row.type == Stored::Text ? std::to_string(row.length) : "");
}

TEST_F(Catalogued, RefreshesEachOffsetInItsCycleAlone) {
  std::map<uint32_t, const OffsetRow*> rowAt;
  for (const OffsetRow* row : AllRows()) EXPECT_TRUE(rowAt.emplace(row->offset, row).second) << At(row->offset);
  // The whole metres are the upper half of the fine altitude and a row as well.
  uint32_t end = 0;
  for (const auto& [offset, row] : rowAt) {
    EXPECT_TRUE(offset >= end || offset == 0x0574) << At(offset) << " overlaps the row before";
    end = offset + StoredWidth(*row);
    EXPECT_LE(end, offsetMemorySize);
  }

  std::vector<Cycle> refreshedIn(offsetMemorySize, Cycle::None);
  size_t count = 0;
  ForEachOffset(refreshed, [&](const std::string& head, uint32_t offset) {
    const auto row = rowAt.find(offset);
    ASSERT_NE(row, rowAt.end()) << At(offset);
    const auto loop = std::find_if(std::begin(loops), std::end(loops), [&](const Loop& each) {
      return static_cast<int>(each.cycle) == static_cast<int>(row->second->cycle);
    });
    ASSERT_NE(loop, std::end(loops)) << At(offset);
    std::istringstream words(head);
    std::string cycle, type;
    words >> cycle >> type;
    EXPECT_EQ(loop->name, cycle) << At(offset);
    EXPECT_EQ(TypeName(*row->second), type) << At(offset);
    std::fill_n(refreshedIn.begin() + offset, StoredWidth(*row->second), loop->cycle);
    count++;
  });
  EXPECT_EQ(count, static_cast<size_t>(std::count_if(rowAt.begin(), rowAt.end(), [](const auto& entry) {
              return IsRefreshed(*entry.second);
            })));

  // What a cycle touches, whatever the memory held before.
  rows::Set("sim/flightmodel/failures/onground_any", 0);  // else the touchdown speed stands still
  RunAllCycles();
  for (const Loop& loop : loops) {
    std::array<std::vector<uint8_t>, 2> after;
    for (size_t pass = 0; pass < 2; pass++) {
      Paint(paint[pass]);
      rows::Refresh(loop.cycle);
      after[pass] = Snapshot();
    }
    for (uint32_t at = 0; at < offsetMemorySize; at++) {
      const bool touched = after[0][at] != paint[0] || after[1][at] != paint[1];
      EXPECT_EQ(touched, refreshedIn[at] == loop.cycle) << At(at) << " in cycle " << loop.name;
    }
  }
}

// Bytes that a long write at the offset is taken for there, 0 for none: where the walk asks for the user's own
// entries a second time.
uint32_t DispatchedWidth(uint32_t offset) {
  static std::vector<uint32_t> asked;
  asked.clear();
  ConnectDispatcher({.offer =
                         [](uint32_t at, const uint8_t*, uint32_t supplied, uint32_t) {
                           asked.push_back(at);
                           return CustomOutcome{.offsetSize = asked.size() > 1 ? supplied : 0,
                                                .commandSize = 0};
                         },
                     .isTaken = [](uint32_t, uint32_t) { return false; },
                     .lookAfter = [](uint32_t) { return TicketState::Done; },
                     .requestReload = [](uint32_t) {}});
  const std::vector<uint8_t> bytes(std::min<uint32_t>(300, offsetMemorySize - offset), 1);
  const bool known = rows::WriteBytes(offset, bytes.data(), static_cast<uint32_t>(bytes.size()));
  ConnectCustomOffsets();
  if (asked.size() > 1) return asked[1] - offset;
  return known ? static_cast<uint32_t>(bytes.size()) : 0;
}

TEST_F(Catalogued, DispatchesWhatHasAWriter) {
  std::vector<uint32_t> widths(offsetMemorySize);
  std::set<uint32_t> expected, written;
  ForEachOffset(dispatched, [&](const std::string& head, uint32_t offset) {
    widths[offset] = static_cast<uint32_t>(std::stoul(head));
    expected.insert(offset);
  });
  for (uint32_t offset = 0; offset < offsetMemorySize; offset++)
    EXPECT_EQ(DispatchedWidth(offset), widths[offset]) << At(offset);
  ForEachOffset(withoutWriter, [&](const std::string&, uint32_t offset) { expected.erase(offset); });
  for (const OffsetRow* row : AllRows()) {
    if (HasWriter(*row)) written.insert(row->offset);
  }
  EXPECT_EQ(written, expected);
}

// A write record of one byte for every offset: each arrives but those at read-only bytes.
TEST_F(Catalogued, PassesOverWritesOfReadOnlyBytes) {
  const std::vector<uint8_t> before = Snapshot();
  std::vector<uint8_t> request;
  for (uint32_t at = 0; at < offsetMemorySize; at++) {
    const uint32_t header[] = {recordWrite, at, 1};
    const auto* bytes = reinterpret_cast<const uint8_t*>(header);
    request.insert(request.end(), bytes, bytes + sizeof header);
    request.push_back(static_cast<uint8_t>(~before[at]));
  }
  request.insert(request.end(), sizeof recordEnd, 0);
  const auto scratch = std::make_unique<RequestScratch>();
  ASSERT_TRUE(ServeRecords(request.data(), request.size(), PathSource::Local, 1, scratch.get()));
  const std::vector<uint8_t> after = Snapshot();
  std::set<uint32_t> expected, kept;
  ForEachOffset(readOnly, [&](const std::string&, uint32_t at) { expected.insert(at); });
  EXPECT_EQ(expected.size(), 108u);
  for (uint32_t at = 0; at < offsetMemorySize; at++) {
    if (after[at] == before[at]) kept.insert(at);
  }
  EXPECT_EQ(kept, expected);
}

TEST_F(Catalogued, EndsTheWalkAtAnOffsetWithoutMeaning) {
  const struct {
    uint32_t offset, size;
    int known;
  } walks[] = {{0x0BC0, 2, 1}, {0x0BC0, 4, 0}, {0x0BB2, 2, 1}, {0x0BB2, 3, 0}, {0x0560, 24, 1}, {0x0560, 40, 0},
               {0x0BC2, 2, 0}, {0x0238, 1, 0}, {0x0E9A, 6, 1}, {0x3104, 1, 1}, {0x6DA8, 3, 1},  {0x6DA8, 4, 0}};
  for (const auto& walk : walks) {
    const uint8_t data[64] = {};
    EXPECT_EQ(rows::WriteBytes(walk.offset, data, walk.size), walk.known)
        << At(walk.offset) << " " << walk.size;
  }
}

TEST(CatalogueTexts, AreThereAndUnique) {
  std::set<std::string> names, subjects;
  for (const RowTable* table : Catalogue())
    EXPECT_TRUE(subjects.insert(table->subject != nullptr ? table->subject : "").second);
  for (const OffsetRow* row : AllRows()) {
    SCOPED_TRACE(At(row->offset));
    EXPECT_NE(row->meaning[0], 0);
    if (row->name[0] != 0) {
      const std::string name = row->name + (row->member != 0 ? std::to_string(row->member) : "") +
                               std::string(static_cast<size_t>(row->copy), 'c');
      EXPECT_TRUE(names.insert(name).second) << name;
      EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_0123456789"), std::string::npos) << name;
    }
    EXPECT_TRUE(std::isfinite(row->unitScale) && row->unitScale != 0 && std::isfinite(row->unitBias));
    EXPECT_EQ(row->type == Stored::Text, row->length != 0);
    EXPECT_TRUE(row->show != Show::Text || row->type == Stored::Text);
    if (row->show == Show::Flag || row->show == Show::Bits) {
      EXPECT_STREQ(row->unit, "");
    }
    if (row->show == Show::Bcd) {
      EXPECT_EQ(StoredWidth(*row), 2u);
    }
    // Where a value comes from, and where it goes, is said once.
    const int sources = (row->source.ref != nullptr) + (row->read != nullptr) + (row->readText != nullptr) +
                        (row->prepared != nullptr);
    EXPECT_LE(sources, 1);
    EXPECT_LE((row->write.target.ref != nullptr) + (row->write.apply != nullptr) +
                  (row->write.group != nullptr) + row->write.staged,
              1);
    EXPECT_LE(row->write.low, row->write.high);
    if (row->lossy[0] != 0) {
      EXPECT_TRUE(HasWriter(*row) || row->dispatch != DispatchAction::Stage);
    }
    EXPECT_LE(row->limits.low, row->limits.high);
    // A tolerance is told by a reason, and numbers stand for one thing each.
    EXPECT_TRUE(row->lossy[0] != 0 || (row->tolerance.steps == 0 && row->tolerance.share == 0));
    std::set<int> numbers;
    std::set<std::string> choices;
    for (const Choice& choice : row->choices) {
      EXPECT_TRUE(numbers.insert(choice.number).second && choices.insert(choice.name).second) << choice.name;
      if (row->show == Show::Bits) {
        EXPECT_LE(choice.number + choice.width, static_cast<int>(8 * StoredWidth(*row))) << choice.name;
      }
    }
  }
}

// --- There and back -------------------------------------------------------------------------------------

std::vector<double> Samples(const OffsetRow& row) {
  std::vector<double> values = {0, 1, 2, 3, 0.5, 77.1, 16383, -1, -0.25, -1000};
  if (row.type == Stored::F32 || row.type == Stored::F64) return values;
  const double turn = std::exp2(8 * StoredWidth(row));
  values.insert(values.end(), {turn / 3, turn / 2 - 1, turn / 2, turn - 1, -turn / 2});
  uint64_t random = row.offset + 1;
  for (int i = 0; i < 24; i++) {
    random = random * 6364136223846793005 + 1442695040888963407;
    values.push_back(static_cast<double>(random >> 11) * 0x1p-53 * turn - turn / 2);
  }
  return values;
}

// Whether the value that a client writes comes back, one step of the encoding aside.
bool ComesBack(const OffsetRow& row, double value) {
  rows::WriteAs(row.type, row.offset, value == 0 ? 1 : 0);
  uint8_t bytes[8] = {};
  rows::Encode(row.type, value, bytes);
  const double written = DecodeNumber(row.type, bytes);
  rows::WriteAs(row.type, row.offset, written);
  RunCycle(row.cycle);
  const double read = rows::ReadAs(row.type, row.offset);
  const bool scaled = row.factor != 1 || row.convert != nullptr || row.read != nullptr;
  const double step = row.type == Stored::F32              ? std::abs(written) * 0x1p-23
                      : row.type == Stored::F64            ? std::abs(written) * 0x1p-52
                      : row.show == Show::Number && scaled ? 1
                                                           : 0;
  return std::abs(read - written) <= step;
}

// Whether what ComesBack has written and read differs no more than the row says of values within its limits.
bool IsNear(const OffsetRow& row, double value) {
  uint8_t bytes[8] = {};
  rows::Encode(row.type, value, bytes);
  const double written = DecodeNumber(row.type, bytes);
  if (written < row.limits.low || written > row.limits.high) return true;
  double off = std::abs(rows::ReadAs(row.type, row.offset) - written);
  if (row.tolerance.wraps) off = std::min(off, std::exp2(8 * StoredWidth(row)) - off);
  return off <= row.tolerance.steps + row.tolerance.share * std::abs(written);
}

TEST(CatalogueRoundTrip, WritesReadBackUnlessTheRowSaysOtherwise) {
  for (const OffsetRow* row : AllRows()) {
    if (!IsRefreshed(*row) || !HasWriter(*row)) continue;
    SCOPED_TRACE(At(row->offset) << " " << row->name << row->member);
    rows::Start();  // every row from the same state
    rows::Set("sim/flightmodel/controls/parkbrake", 0);
    rows::Set("sim/aircraft/weight/acf_m_empty", 0);
    rows::Set("sim/aircraft/overflow/acf_num_tanks", 9);
    for (int tank = 0; tank < 9; ++tank) {
      rows::Set("sim/aircraft/overflow/acf_tank_rat[" + std::to_string(tank) + "]", 1.0 / 9);
    }
    RunAllCycles();
    bool exact = true;
    // Places and attitudes are set together, within their own ranges: tests of their own.
    const bool isNear = row->tolerance.steps + row->tolerance.share > 0 && row->write.group == nullptr &&
                        (row->write.target.ref == nullptr || HandleOf(row->write.target) != nullptr);
    for (const double value : Samples(*row)) {
      const bool back = ComesBack(*row, value);
      if (isNear) {
        EXPECT_TRUE(back || IsNear(*row, value)) << value;
      }
      exact &= back;
      const bool isSwitch = std::string_view(row->lossy) == flagLoss;  // off and on come back all the same
      if (row->lossy[0] == 0 || (isSwitch && (value == 0 || value == 1))) {
        EXPECT_TRUE(back) << value;
      }
    }
    if (row->lossy[0] != 0) {
      EXPECT_FALSE(exact) << "every value came back, yet: " << row->lossy;
    }
    rows::Stop();
  }
}

// The way back to the value that the simulator has is a change too while another value waits, though a refresh
// has shown the simulator's own value again meanwhile; and when that other value was applied in between.
TEST(CatalogueRoundTrip, ValueWrittenBackIsTheOneThatCounts) {
  for (const OffsetRow* row : AllRows()) {
    if (!IsRefreshed(*row) || !HasWriter(*row) || row->type == Stored::Text) continue;
    const bool isSwitch = std::string_view(row->lossy) == flagLoss;
    if (row->lossy[0] != 0 && !isSwitch) continue;
    SCOPED_TRACE(At(row->offset) << " " << row->name << row->member);
    rows::Start();
    rows::Set("sim/flightmodel/controls/parkbrake", 0);
    RunAllCycles();
    rows::WriteAs(row->type, row->offset, 1);
    RunCycle(row->cycle);
    uint8_t shown[8] = {}, other[8] = {};
    CopyFromMemory(row->offset, sizeof shown, shown);
    const uint32_t width = rows::Encode(row->type, isSwitch ? 0 : 2, other);
    const struct {
      bool refreshed, applied;  // before the value is written back
    } cases[] = {{false, false}, {true, false}, {true, true}};
    for (const auto& test : cases) {
      rows::WriteBytes(row->offset, other, width);
      if (test.refreshed) RunCycle(row->cycle);
      if (test.applied) RunWriters();
      rows::WriteBytes(row->offset, shown, width);
      RunWriters();
      RunCycle(row->cycle);
      const double step = row->show == Show::Number ? 1 : 0;
      EXPECT_NEAR(rows::ReadAs(row->type, row->offset), DecodeNumber(row->type, shown), step);
    }
    rows::Stop();
  }
}

// --- Without datarefs -----------------------------------------------------------------------------------

TEST(CatalogueWithoutDatarefs, StoresWhatZeroGivesAndConsumesWrites) {
  std::array<std::vector<uint8_t>, 2> shown;
  const uint64_t nullHandles = sim::NullHandles();
  for (const bool published : {true, false}) {
    sim::Options options;
    options.rate = 0;
    options.circuit = false;
    options.tolerant = true;
    ASSERT_EQ(sim::SimStart(options), 0);
    const std::vector<sim::DataRef*> all = sim::AllDataRefs();
    for (sim::DataRef* ref : all) {
      std::fill(ref->ints.begin(), ref->ints.end(), 0);
      std::fill(ref->floats.begin(), ref->floats.end(), 0.0F);
      std::fill(ref->doubles.begin(), ref->doubles.end(), 0.0);
      std::fill(ref->bytes.begin(), ref->bytes.end(), uint8_t{0});
    }
    rows::nothingIsPublished = !published;
    ASSERT_TRUE(CreateLocks());
    InitMemoryBlocks();
    rows::LookUp();
    rows::nothingIsPublished = false;
    Paint(0x55);
    rows::Write<uint8_t>(0x0609, 0);  // no readers of this run, but the magnetos ask for the engine type
    RunAllCycles();
    RunAllCycles();
    const uint16_t noCount = 0;
    CopyToMemory(0x337E, 2, &noCount);  // the frame counter goes on
    shown[published] = Snapshot();

    if (!published) {
      ForEachOffset(dispatched, [&](const std::string& head, uint32_t offset) {
        std::vector<uint8_t> value(static_cast<size_t>(std::stoi(head)));
        for (uint32_t i = 0; i < value.size(); i++) value[i] = static_cast<uint8_t>(~shown[0][offset + i]);
        rows::WriteBytes(offset, value.data(), static_cast<uint32_t>(value.size()));
      });
      CopyToMemory(0x3380, 1, "x");
      RunFrames(2);
      for (const OffsetRow* row : AllRows()) EXPECT_EQ(pendingFlags.flags[row->offset], 0u) << At(row->offset);
      EXPECT_EQ(sim::SimCommand("writes"), "ok");
    }
    for (const std::string& breach : sim::TakeBreaches()) ADD_FAILURE() << breach;
    EXPECT_EQ(sim::NullHandles(), nullHandles);
    rows::Stop();
  }
  for (uint32_t at = 0; at < offsetMemorySize; at++) EXPECT_EQ(shown[0][at], shown[1][at]) << At(at);
}

// --- A frame's cost -------------------------------------------------------------------------------------

TEST_F(Catalogued, FramesNeitherLookUpNorAllocate) {
#ifdef SANITIZED
  static const int hooked = __sanitizer_install_malloc_and_free_hooks(
      [](const volatile void*, size_t) { NoteAllocation(); }, [](const volatile void*) {});
  ASSERT_GT(hooked, 0);
#endif
  // The stand-in makes temporary texts when it is asked for a name; the slow cycles ask it for these.
  const uint64_t every59 = AllocationsOf([] {
    char file[512], path[1024];
    XPLMGetNthAircraftModel(XPLM_USER_AIRCRAFT, file, path);
    XPLMGetSystemPath(path);
    XPLMFindPluginBySignature("rotorsim.ec135.management");
  });
  const uint64_t every313 = AllocationsOf([] {
    for (const char* name :
         {"bs.x737.plugin", "vatsim.protodev.clients.xsquawkbox", "com.pilotedge.plugin.xplane"})
      XPLMFindPluginBySignature(name);
    for (const char* name : {"ixeg/733/misc/seatbelt_act", "laminar/B738/tab/credits", "laminar/B738/tab/page",
                             "laminar/B738/tab/power"})
      XPLMFindDataRef(name);
  });
  RunFrames(626);
  const uint64_t lookUps = sim::LookUps();
  EXPECT_EQ(AllocationsOf([] { RunFrames(58); }), 0u);
  EXPECT_EQ(sim::LookUps(), lookUps);
  // Two runs of the 313-frame cycle, each of which tests four names of add-ons.
  EXPECT_EQ(AllocationsOf([] { RunFrames(626); }), 626 / 59 * every59 + 2 * every313);
  EXPECT_EQ(sim::LookUps(), lookUps + 2 * 4);
  EXPECT_GT(AllocationsOf([] { ::operator delete(::operator new(1)); }), 0u);  // the counter counts
}

}  // namespace
