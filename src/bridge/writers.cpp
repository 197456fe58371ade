// Writers: what client writes do to the simulator, applied on its own thread in a fixed order.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/held_presses.h"
#include "bridge/writer_list.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/exceptions.h"

namespace {

struct Writer {
  const OffsetRow* row;  // null for a group
  void (*group)();
  uint32_t width;
  std::vector<uint32_t> offsets;  // whose flags it looks at
  bool shows;                     // what is taken stands in the memory until the next refresh
  bool due;                       // in this run
};

std::vector<Writer> writers;

uint32_t WriteWidth(const OffsetRow& row) { return row.write.width != 0 ? row.write.width : StoredWidth(row); }

// A double that is not a number has no meaning in the simulator: the write is consumed without effect.
bool IsUsable(Stored type, double number) {
  return (type != Stored::F32 && type != Stored::F64) || std::isfinite(number);
}

void Apply(const OffsetRow& row, const uint8_t* bytes, uint32_t width, bool own) {
  const double number = DecodeNumber(row.type, bytes);
  if (!IsUsable(row.type, number)) return;
  const WriteRule& write = row.write;
  const Staged staged = {number, DecodeInteger(row.type, bytes), bytes, width, own};
  if (ActsOn(ActingVariant(row))) {
    ApplyVariant(row, staged);
  } else if (write.apply != nullptr) {
    write.apply(row, staged);
  } else {
    SetSource(write.target, TargetNumber(row, number));
  }
}

void RunWriter(const Writer& writer) {
  if (writer.group != nullptr) {
    writer.group();
    return;
  }
  uint8_t bytes[256] = {};
  bool own = false;
  {
    const SimulatorTurn turn;
    const LockScope lock(&offsetLock);
    if (pendingFlags.flags[writer.row->offset] == 0) return;
    own = pendingFlags.flags[writer.row->offset] == byOwnWrite;
    pendingFlags.flags[writer.row->offset] = 0;
    std::memcpy(bytes, pendingValues.bytes + writer.row->offset, writer.width);
    // A refresh may have put the simulator's former value back meanwhile. A client that writes that very value
    // next must not find it there, as it is not the simulator's any more.
    if (writer.shows) std::memcpy(offsetMemory.bytes + writer.row->offset, bytes, writer.width);
  }
  Apply(*writer.row, bytes, writer.width, own);
}

void ApplyStaged() {
  // Frames in which no client has written pass here: the mark is raised together with any flag.
  if (anythingPending.load(std::memory_order_relaxed) == 0) return;
  // One look at all flags: the lock is entered again only for those that are up.
  {
    const SimulatorTurn turn;
    LockScope lock(&offsetLock);
    anythingPending.store(0, std::memory_order_relaxed);
    for (Writer& writer : writers) {
      writer.due = std::any_of(writer.offsets.begin(), writer.offsets.end(),
                               [](uint32_t offset) { return pendingFlags.flags[offset] != 0; });
    }
  }
  try {
    for (const Writer& writer : writers) {
      if (writer.due) RunWriter(writer);
    }
  } catch (...) {
    anythingPending.store(1, std::memory_order_relaxed);  // those behind it have their turn in the next frame
    throw;
  }
}

}  // namespace

void BuildWriters() {
  writers.clear();
  ResetDispatchTable();
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (row.write.group != nullptr) {
        const auto known = std::find_if(writers.begin(), writers.end(),
                                        [&](const Writer& writer) { return writer.group == row.write.group; });
        if (known != writers.end()) {
          known->offsets.push_back(row.offset);
        } else {
          writers.push_back({nullptr, row.write.group, 0, {row.offset}, false, false});
        }
      } else if (HasWriter(row)) {
        writers.push_back(
            {&row, nullptr, WriteWidth(row), {row.offset}, row.dispatch == DispatchAction::Stage, false});
      } else if (row.dispatch == DispatchAction::Stage) {
        continue;
      }
      AddDispatchEntry(row.offset, WriteWidth(row), row.dispatch);
    }
  }
}

void RunWriters() {
  if (heldPresses == 0) {
    ApplyStaged();
  } else {
    RunAllSteps({StepHeldPresses, ApplyStaged});
  }
}
