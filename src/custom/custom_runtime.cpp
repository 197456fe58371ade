// Custom offsets while the simulator runs: refreshing entries, staging client writes, applying them.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "bridge/catalogue.h"
#include "bridge/cycles.h"
#include "custom/custom.h"
#include "custom/custom_state.h"
#include "custom/custom_values.h"
#include "custom/expression.h"
#include "offsets/memory.h"

namespace {

constexpr uint32_t batchItems = 16;
constexpr double writeOnlyValue = 77;  // what the offset of a refreshed write-only entry shows

double ValueOf(const CustomTables& tables, const CustomOffsetEntry& entry) {
  if (entry.access == CustomAccess::Write) return writeOnlyValue;
  return RunExpression(tables.operations.data() + entry.read.first, entry.read.count, 0, ReadDatarefValue);
}

// Stores the bytes of `count` items; offset lock held.
void StoreItems(CustomRefreshItem* items, uint32_t count, const uint8_t (*bytes)[8]) {
  for (uint32_t i = 0; i < count; ++i) {
    std::memcpy(offsetMemory.bytes + items[i].entry->offset, bytes[i], items[i].entry->size);
    std::memcpy(items[i].last, bytes[i], sizeof items[i].last);
  }
}

void RunBatch(const CustomTables& tables, CustomRefreshItem* items, CustomRefreshBatch* batch) {
  uint8_t bytes[batchItems][8];
  bool changed = batch->shared || !batch->stored;
  for (uint32_t i = 0; i < batch->count; ++i) {
    EncodeCustomValue(items[i].entry->type, ValueOf(tables, *items[i].entry), bytes[i]);
    changed = changed || std::memcmp(bytes[i], items[i].last, sizeof items[i].last) != 0;
  }
  // Nobody but us has touched the memory since these very bytes were stored: they are there.
  if (!changed && batch->generation == memoryGeneration.load(std::memory_order_relaxed)) {
    refreshCounters.stored++;
    return;
  }
  if (TryEnterLock(&offsetLock) == 0) {
    refreshCounters.dropped++;
    return;
  }
  // A client may have withdrawn the tables while we computed: its clear must be the last word.
  if (publishedTables.load(std::memory_order_relaxed) == &tables) {
    StoreItems(items, batch->count, bytes);
    batch->generation = memoryGeneration.load(std::memory_order_relaxed);
    batch->stored = true;
  }
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
}

bool IsRefreshed(const CustomOffsetEntry& entry) {
  return entry.number >= 1 && entry.number <= customRefreshGroups && entry.size > 0;
}

// How many refreshed things cover each byte that a 16-bit offset can reach, the catalogue's rows included.
std::vector<uint8_t> CountRefreshes(const CustomTables& tables) {
  std::vector<uint8_t> count(0x10000 + 8);
  const auto cover = [&count](uint32_t offset, uint32_t size) {
    for (uint32_t at = offset; at < offset + size && at < count.size(); ++at) {
      if (count[at] < 2) ++count[at];
    }
  };
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (row.cycle != Cycle::None) cover(row.offset, StoredWidth(row));
    }
  }
  for (const CustomOffsetEntry& entry : tables.offsets) {
    if (IsRefreshed(entry)) cover(entry.offset, entry.size);
  }
  return count;
}

void SetDataref(const CustomDatarefEntry& dataref, double value) {
  if (dataref.handle == nullptr) return;
  const bool whole =
      dataref.kind == datarefInt || dataref.kind == datarefIntArray || dataref.kind == datarefData;
  if (!whole && !std::isfinite(value)) return;  // the simulator must not meet a NaN
  switch (dataref.kind) {
    case datarefInt:
      XPLMSetDatai(dataref.handle, TruncateTo32(value));
      break;
    case datarefFloat:
      XPLMSetDataf(dataref.handle, static_cast<float>(value));
      break;
    case datarefDouble:
      XPLMSetDatad(dataref.handle, value);
      break;
    case datarefFloatArray: {
      auto single = static_cast<float>(value);
      XPLMSetDatavf(dataref.handle, &single, dataref.index, 1);
      break;
    }
    case datarefIntArray: {
      int single = TruncateTo32(value);
      XPLMSetDatavi(dataref.handle, &single, dataref.index, 1);
      break;
    }
    case datarefData: {
      auto byte = static_cast<uint8_t>(TruncateTo32(value));
      XPLMSetDatab(dataref.handle, &byte, dataref.index, 1);
      break;
    }
    case datarefNone:
      break;
  }
}

void End(CommandAction* action) {
  if (!action->held) return;
  action->held = false;
  XPLMCommandEnd(action->handle);
}

void Act(CommandAction* action, double value) {
  if (action->handle == nullptr) return;
  if (value != action->value) {
    if (action->mode == 0) End(action);
  } else if (action->mode == 1) {
    XPLMCommandOnce(action->handle);
  } else if (!action->held) {
    action->held = true;
    XPLMCommandBegin(action->handle);
  }
}

// The groups of an entry whose slots are among its first `actionCount`.
uint32_t ActiveGroups(const CustomCommandEntry& entry) {
  return entry.actionCount <= 0 ? 0
                                : std::min(entry.groupCount, static_cast<uint32_t>(entry.actionCount + 2) / 3);
}

}  // namespace

void BuildCustomRefresh(CustomTables* tables) {
  const std::vector<uint8_t> count = CountRefreshes(*tables);
  for (const CustomOffsetEntry& entry : tables->offsets) {
    if (!IsRefreshed(entry)) continue;
    CustomRefreshGroup& group = tables->refresh[entry.number - 1];
    if (group.batches.empty() || group.batches.back().count == batchItems) {
      group.batches.push_back({static_cast<uint32_t>(group.items.size()), 0, 0, false, false});
    }
    CustomRefreshBatch& batch = group.batches.back();
    for (uint32_t at = entry.offset; at < uint32_t{entry.offset} + entry.size; ++at) {
      batch.shared = batch.shared || count[at] > 1;
    }
    group.items.push_back({&entry, {}});
    ++batch.count;
  }
}

void RefreshCustomOffsets(int group) {
  CustomTables* tables = loadedTables;
  if (tables == nullptr || publishedTables.load(std::memory_order_relaxed) != tables) return;
  CustomRefreshGroup& refreshed = tables->refresh[group - 1];
  for (CustomRefreshBatch& batch : refreshed.batches) {
    RunBatch(*tables, refreshed.items.data() + batch.first, &batch);
  }
}

void RefreshCustomOffset(const CustomOffsetEntry& entry) {
  if (loadedTables == nullptr || entry.size == 0) return;
  CustomRefreshItem item = {&entry, {}};
  CustomRefreshBatch batch = {0, 1, 0, false, false};
  RunBatch(*loadedTables, &item, &batch);
}

double ReadDatarefValue(const CustomDatarefEntry& dataref) {
  if (dataref.handle == nullptr) return 0;
  switch (dataref.kind) {
    case datarefInt:
      return XPLMGetDatai(dataref.handle);
    case datarefFloat:
      return static_cast<double>(XPLMGetDataf(dataref.handle));
    case datarefDouble:
      return XPLMGetDatad(dataref.handle);
    case datarefFloatArray: {
      float value = 0;
      XPLMGetDatavf(dataref.handle, &value, dataref.index, 1);
      return static_cast<double>(value);
    }
    case datarefIntArray: {
      int value = 0;
      XPLMGetDatavi(dataref.handle, &value, dataref.index, 1);
      return value;
    }
    case datarefData: {
      uint8_t value = 0;
      XPLMGetDatab(dataref.handle, &value, dataref.index, 1);
      return value;
    }
    case datarefNone:
      break;
  }
  return 0;
}

void WriteCustomOffset(const CustomOffsetEntry& entry, const uint8_t* data) {
  assert(HoldsLock(&offsetLock));
  if (std::memcmp(data, offsetMemory.bytes + entry.offset, entry.size) == 0) return;
  if (entry.access == CustomAccess::Read || entry.writeTarget == nullptr) return;
  pendingWrite = {entry.writeTarget, entry.write, DecodeCustomValue(entry.type, data)};
  customPending.store(1, std::memory_order_relaxed);
}

void WriteCommandOffset(const CustomCommandEntry& entry, const uint8_t* data) {
  assert(HoldsLock(&offsetLock));
  if (std::memcmp(data, offsetMemory.bytes + entry.offset, entry.size) == 0) return;
  pendingCommand = {&entry, DecodeCustomValue(entry.type, data)};
  customPending.store(1, std::memory_order_relaxed);
}

void ApplyPendingCustomWrites() {
  if (customPending.load(std::memory_order_relaxed) == 0) return;
  PendingCustomWrite write = {};
  PendingCustomCommand command = {};
  {
    const LockScope lock(&offsetLock);
    customPending.store(0, std::memory_order_relaxed);
    std::swap(write, pendingWrite);
    std::swap(command, pendingCommand);
  }
  // A client may withdraw the tables from here on; only this thread frees them.
  if (command.entry != nullptr) {
    CommandAction* actions = loadedTables->actions.data() + command.entry->firstGroup;
    for (uint32_t i = 0; i < ActiveGroups(*command.entry); ++i) Act(&actions[i], command.value);
  }
  if (write.target != nullptr) {
    const Operation* operations = loadedTables->operations.data() + write.expression.first;
    SetDataref(*write.target, RunExpression(operations, write.expression.count, write.input, ReadDatarefValue));
  }
}

void EndHeldCommands(CustomTables* tables) {
  for (CommandAction& action : tables->actions) End(&action);
}
