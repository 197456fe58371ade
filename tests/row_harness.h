// Harness for tests of catalogue rows: the stand-in simulator without a plug-in, and the program's registry,
// readers and writers filled as at start. Tests set datarefs, run one refresh cycle and look at the offset
// memory, or write offsets as a client does, run the writers and look at datarefs and fired commands.
#pragma once
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "aircraft/adapters.h"
#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/cycles.h"
#include "bridge/reader_groups.h"
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

// Of the request that the writes below belong to.
inline RequestMarks marks;

// Starts everything; `missing` names datarefs that the simulator does not publish this time. What a test before
// has left in program-wide variables is forgotten.
inline void Start(const char* aircraft = "jet", std::initializer_list<const char*> missing = {},
                  const std::string& root = "") {
  sim::Options options;
  options.root = root;
  options.rate = 0;
  options.circuit = false;
  options.aircraft = aircraft;
  ASSERT_EQ(sim::SimStart(options), 0);
  for (const char* name : missing) {
    ASSERT_NE(sim::FindLive(name), nullptr) << name;
    sim::Withdraw(sim::FindLive(name));
  }
  ASSERT_EQ(CreateLocks(), 1);
  ConnectPushback();
  ConnectCustomOffsets();
  ForgetCustomRequests();
  SetSettingsPath("");  // changes that could not be saved
  marks = {};
  InitMemoryBlocks();
  LookUpDataRefs();
  LookUpCommands();
  BuildCycles();
  RecogniseAircraft();
  BindReaders();
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

// Sets one element of a dataref, read-only ones too, as the simulator itself would.
inline void Set(const std::string& name, double value, size_t element = 0) {
  sim::DataRef* ref = sim::FindLive(name);
  ASSERT_NE(ref, nullptr) << name;
  switch (ref->kind) {
    case sim::Kind::Int:
    case sim::Kind::IntArray:
      ref->ints.at(element) = static_cast<int>(value);
      break;
    case sim::Kind::Float:
    case sim::Kind::FloatArray:
      ref->floats.at(element) = static_cast<float>(value);
      break;
    case sim::Kind::Double:
      ref->doubles.at(element) = value;
      break;
    case sim::Kind::Bytes:
      ref->bytes.at(element) = static_cast<uint8_t>(value);
      break;
  }
}

inline double Get(const std::string& name, size_t element = 0) {
  const sim::DataRef* ref = sim::FindLive(name);
  EXPECT_NE(ref, nullptr) << name;
  if (ref == nullptr) return 0;
  switch (ref->kind) {
    case sim::Kind::Int:
    case sim::Kind::IntArray:
      return ref->ints.at(element);
    case sim::Kind::Float:
    case sim::Kind::FloatArray:
      return static_cast<double>(ref->floats.at(element));
    case sim::Kind::Double:
      return ref->doubles.at(element);
    case sim::Kind::Bytes:
      return ref->bytes.at(element);
  }
  return 0;
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

// The number that a catalogue type means there.
inline double ReadAs(Stored type, uint32_t offset) {
  uint8_t bytes[8] = {};
  CopyFromMemory(offset, sizeof bytes, bytes);
  return DecodeNumber(type, bytes);
}

// A client's write of plain bytes: dispatched, then copied. Returns what the dispatcher said.
inline int WriteBytes(uint32_t offset, const void* data, uint32_t size) {
  LockScope lock(&offsetLock);
  const int known = DispatchWrite(offset, size, static_cast<const uint8_t*>(data), &marks);
  std::memcpy(offsetMemory.bytes + offset, data, size);
  return known;
}

template <typename T>
int Write(uint32_t offset, T value) {
  return WriteBytes(offset, &value, sizeof value);
}

// Bytes of a number as a client sends it in a catalogue type; numbers that are none go through.
inline uint32_t Encode(Stored type, double value, uint8_t bytes[8]) {
  OffsetRow row;
  row.type = type;
  if (type == Stored::F64) {
    std::memcpy(bytes, &value, sizeof value);
  } else {
    EncodeNumber(row, value, bytes);
  }
  return StoredWidth(row);
}

// A client's write of a number, then the writers of one frame.
inline int WriteAs(Stored type, uint32_t offset, double value) {
  uint8_t bytes[8] = {};
  const uint32_t width = Encode(type, value, bytes);
  const int known = WriteBytes(offset, bytes, width);
  RunWriters();
  return known;
}

template <typename T>
void WriteAndRun(uint32_t offset, T value) {
  EXPECT_EQ(Write<T>(offset, value), 1) << std::hex << offset;
  RunWriters();
}

// One reader: with the dataref at `value`, the offset holds `expected` after the refresh.
struct ReadCase {
  uint32_t offset;
  Stored type;
  Cycle cycle;
  const char* dataref;
  double value;
  double expected;
  double tolerance = 0;
  size_t element = 0;
};
inline void CheckRead(const ReadCase& test) {
  SCOPED_TRACE(testing::Message() << "offset 0x" << std::hex << test.offset << ", " << test.dataref << " = "
                                  << test.value);
  const double before = Get(test.dataref, test.element);
  Set(test.dataref, test.value, test.element);
  Refresh(test.cycle);
  EXPECT_NEAR(ReadAs(test.type, test.offset), test.expected, test.tolerance);
  Set(test.dataref, before, test.element);
}

// One writer: after a client wrote `value`, the dataref holds `expected`. It starts from elsewhere, so that
// an unchanged dataref is no success.
struct WriteCase {
  uint32_t offset;
  Stored type;
  double value;
  const char* dataref;
  double expected;
  double tolerance = 0;
  size_t element = 0;
  double before = 0.37;
};
inline void CheckWrite(const WriteCase& test) {
  SCOPED_TRACE(testing::Message() << "offset 0x" << std::hex << test.offset << ", " << test.dataref
                                  << ", written " << test.value);
  Set(test.dataref, test.before, test.element);
  // Whatever the memory holds, the written value differs from it.
  uint8_t bytes[8] = {};
  const uint32_t width = Encode(test.type, test.value, bytes);
  bytes[0] = static_cast<uint8_t>(~bytes[0]);
  CopyToMemory(test.offset, width, bytes);
  EXPECT_EQ(WriteAs(test.type, test.offset, test.value), 1);
  EXPECT_NEAR(Get(test.dataref, test.element), test.expected, test.tolerance);
}

}  // namespace rows
