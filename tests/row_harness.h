// Harness for tests of catalogue rows: the stand-in simulator without a plug-in, and the program's names,
// readers and writers filled as at start. Tests set datarefs, run one refresh cycle and look at the offset
// memory, or write offsets as a client does, run the writers and look at datarefs and fired commands.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

#include "aircraft/adapters.h"
#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/cycles.h"
#include "bridge/registry.h"
#include "bridge/slew.h"
#include "core/sim.h"
#include "custom/custom.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "pushback/pushback.h"
#include "settings/settings.h"
#include "shell/frame_callbacks.h"

namespace rows {

using enum Stored;

// Of the request that the writes below belong to.
inline RequestMarks marks;

inline void LookUp() {
  LookUpDataRefs();
  LookUpCommands();
  BuildCycles();
}

// Starts everything; `missing` names datarefs that the simulator does not publish this time, `version` is its
// age (0: all of them at once). What a test before has left in program-wide variables is forgotten.
inline void Start(const char* aircraft = "jet", std::initializer_list<const char*> missing = {},
                  const std::string& root = "", int version = 0) {
  sim::Options options;
  options.root = root;
  options.version = version;
  options.rate = 0;
  options.circuit = false;
  options.aircraft = aircraft;
  ASSERT_EQ(sim::SimStart(options), 0);
  for (const char* name : missing) {
    ASSERT_NE(sim::FindLive(name), nullptr) << name;
    sim::Withdraw(sim::FindLive(name));
  }
  ASSERT_TRUE(CreateLocks());
  ForgetCustomRequests();
  SetSettingsPath("");  // changes that could not be saved
  marks = {};
  ConnectPushback();
  InitMemoryBlocks();
  LookUp();
  RecogniseAircraft();
  AbortPushback();
  ClearSlew();
  sim::SimCommand("calls");
  sim::SimCommand("writes");
}

inline void Stop() {
  AbortPushback();  // a row may have started it
  ClearSlew();
  ReleaseOverrides();
  ResetAdapters();
  DeleteLocks();
  sim::SimStop();
}

inline void Restart(const char* aircraft, std::initializer_list<const char*> missing = {}) {
  Stop();
  Start(aircraft, missing);
}

struct Harness : testing::Test {
  void SetUp() override { Start(); }
  void TearDown() override { Stop(); }
};

// "name[3]" is element 3, unless a dataref has that very name.
inline std::pair<sim::DataRef*, size_t> Find(const std::string& name) {
  sim::DataRef* ref = sim::FindLive(name);
  const size_t bracket = name.find('[');
  if (ref != nullptr || bracket == std::string::npos) return {ref, 0};
  return {sim::FindLive(name.substr(0, bracket)), std::stoul(name.substr(bracket + 1))};
}

// Sets one element of a dataref, read-only ones too, as the simulator itself would.
inline void Set(const std::string& name, double value) {
  const auto [ref, element] = Find(name);
  ASSERT_NE(ref, nullptr) << name;
  if (!ref->ints.empty()) ref->ints.at(element) = static_cast<int>(value);
  if (!ref->floats.empty()) ref->floats.at(element) = static_cast<float>(value);
  if (!ref->doubles.empty()) ref->doubles.at(element) = value;
  if (!ref->bytes.empty()) ref->bytes.at(element) = static_cast<uint8_t>(value);
}

inline double Get(const std::string& name) {
  const auto [ref, element] = Find(name);
  EXPECT_NE(ref, nullptr) << name;
  if (ref == nullptr) return 0;
  if (!ref->ints.empty()) return ref->ints.at(element);
  if (!ref->floats.empty()) return static_cast<double>(ref->floats.at(element));
  return ref->doubles.empty() ? ref->bytes.at(element) : ref->doubles.at(element);
}

// Set while the simulator is to know no name at all (start_names_test.cpp has the look-ups).
inline bool nothingIsPublished = false;

// Several at once.
struct Value {
  std::string name;
  double value;
  double tolerance = 1e-6;
};
inline void SetAll(std::initializer_list<Value> values) {
  for (const Value& each : values) Set(each.name, each.value);
}
inline void ExpectAll(std::initializer_list<Value> values) {
  for (const Value& each : values) EXPECT_NEAR(Get(each.name), each.value, each.tolerance) << each.name;
}

// Commands, keys, buttons and spoken texts since the last call, as the stand-in's console lists them.
inline std::string Calls() {
  const std::string answer = sim::SimCommand("calls");
  return answer.size() > 3 ? answer.substr(3) : "";
}

inline void Refresh(Cycle cycle) { RunReaders(cycle); }

// Bytes as they stand in the offset memory.
template <typename T>
T Read(uint32_t offset) {
  LockScope lock(&offsetLock);
  return Load<T>(offset);
}
inline std::string ReadString(uint32_t offset, uint32_t size) {
  char text[257] = {};
  CopyFromMemory(offset, size, text);
  return text;
}

// The number that a catalogue type means there.
inline double ReadAs(Stored type, uint32_t offset) {
  uint8_t bytes[8] = {};
  CopyFromMemory(offset, sizeof bytes, bytes);
  return DecodeNumber(type, bytes);
}
struct Shown {
  uint32_t offset;
  Stored type;
  double value;
  double tolerance = 0;
};
inline void ExpectShown(std::initializer_list<Shown> values, const char* why = "") {
  for (const Shown& each : values) {
    EXPECT_NEAR(ReadAs(each.type, each.offset), each.value, each.tolerance)
        << "offset 0x" << std::hex << each.offset << ' ' << why;
  }
}

// A client's write of plain bytes: dispatched, then copied. Returns what the dispatcher said.
inline bool WriteBytes(uint32_t offset, const void* data, uint32_t size) {
  LockScope lock(&offsetLock);
  const bool known = DispatchWrite(offset, size, static_cast<const uint8_t*>(data), &marks);
  std::memcpy(offsetMemory.bytes + offset, data, size);
  return known;
}

template <typename T>
bool Write(uint32_t offset, T value) {
  return WriteBytes(offset, &value, sizeof value);
}

// Bytes of a number as a client sends it in a catalogue type; returns how many.
inline uint32_t Encode(Stored type, double value, uint8_t bytes[8]) {
  const auto put = [bytes](const auto& number) {
    std::memcpy(bytes, &number, sizeof number);
    return static_cast<uint32_t>(sizeof number);
  };
  switch (type) {
    case U8:
      return put(static_cast<uint8_t>(static_cast<int32_t>(value)));
    case S8:
      return put(static_cast<int8_t>(value));
    case U16:
      return put(static_cast<uint16_t>(static_cast<int32_t>(value)));
    case S16:
      return put(static_cast<int16_t>(value));
    case U32:
      return put(static_cast<uint32_t>(static_cast<int64_t>(value)));
    case S32:
      return put(static_cast<int32_t>(value));
    case S64:
      return put(static_cast<int64_t>(value));
    case F32:
      return put(static_cast<float>(value));
    case F64:
      return put(value);
    case Text:
      break;
  }
  ADD_FAILURE() << "a text is no number";
  return 0;
}

// A client's write of a number, then the writers of one frame.
inline bool WriteAs(Stored type, uint32_t offset, double value) {
  uint8_t bytes[8] = {};
  const uint32_t width = Encode(type, value, bytes);
  const bool known = WriteBytes(offset, bytes, width);
  RunWriters();
  return known;
}

// The same of a value that the memory does not hold yet, whatever it holds.
inline void WriteNew(uint32_t offset, Stored type, double value) {
  uint8_t bytes[8] = {};
  const uint32_t width = Encode(type, value, bytes);
  bytes[0] = static_cast<uint8_t>(~bytes[0]);
  CopyToMemory(offset, width, bytes);
  EXPECT_TRUE(WriteAs(type, offset, value)) << std::hex << offset;
}

template <typename T>
void WriteAndRun(uint32_t offset, T value) {
  EXPECT_TRUE(Write<T>(offset, value)) << std::hex << offset;
  RunWriters();
}

// Readers of one dataref: with it at `value`, the offset holds `expected` after the refresh.
struct ReadCase {
  uint32_t offset;
  Stored type;
  double value;
  double expected;
  double tolerance = 0;
};
inline void CheckReads(const std::string& dataref, Cycle cycle, std::initializer_list<ReadCase> cases) {
  const double before = Get(dataref);
  for (const ReadCase& test : cases) {
    SCOPED_TRACE(testing::Message() << "offset 0x" << std::hex << test.offset << ", " << dataref << " = "
                                    << test.value);
    Set(dataref, test.value);
    Refresh(cycle);
    EXPECT_NEAR(ReadAs(test.type, test.offset), test.expected, test.tolerance);
  }
  Set(dataref, before);
}

// Writers of one dataref: after a client wrote `value`, it holds `expected`. It starts from elsewhere, so that
// an unchanged dataref is no success.
struct WriteCase {
  uint32_t offset;
  Stored type;
  double value;
  double expected;
  double tolerance = 0;
  double before = 0.37;
};
inline void CheckWrites(const std::string& dataref, std::initializer_list<WriteCase> cases) {
  for (const WriteCase& test : cases) {
    SCOPED_TRACE(testing::Message() << "offset 0x" << std::hex << test.offset << ", " << dataref << ", written "
                                    << test.value);
    Set(dataref, test.before);
    WriteNew(test.offset, test.type, test.value);
    EXPECT_NEAR(Get(dataref), test.expected, test.tolerance);
  }
}

// What is fired by one write after the other.
struct CallCase {
  uint32_t offset;
  Stored type;
  double value;
  const char* calls;
};
inline void CheckCalls(std::initializer_list<CallCase> cases) {
  Calls();
  for (const CallCase& test : cases) {
    WriteNew(test.offset, test.type, test.value);
    EXPECT_EQ(Calls(), test.calls) << std::hex << test.offset << " = " << test.value;
  }
}

}  // namespace rows
