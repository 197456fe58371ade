// Readers: tight groups of catalogue rows that are read, converted and stored together.
#include <algorithm>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/reader_groups.h"

RefreshCounters refreshCounters;

namespace {

constexpr size_t groupRows = 16;
constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);

struct Item {
  const OffsetRow* row;
  XPLMDataRef* handle;  // place of the handle in the registry; null for rows with a function
  Accessor accessor;
  int element;
  bool again;  // the same dataref as the item before: its value is used again
  uint32_t width;
};

struct Group {
  uint32_t first, count;  // items
  uint32_t generation;    // of the memory when the group was last stored
  bool stored;            // `last` holds what the memory got
  uint8_t last[groupRows][8];
};

// What one run of a group has gathered before it takes the lock.
struct Gathered {
  uint8_t bytes[groupRows][8];
  bool store[groupRows];
};

std::vector<Item> items;
std::vector<Group> groups[cycleCount];
char textBytes[256];

bool SameSource(const Source& a, const Source& b) {
  return a.block == b.block && a.index == b.index && a.accessor == b.accessor && a.element == b.element;
}

Item MakeItem(const OffsetRow& row, const OffsetRow* before) {
  Item item = {&row, nullptr, Accessor::None, 0, false, StoredWidth(row)};
  if (row.read != nullptr || row.readText != nullptr || row.source.block == Block::None) return item;
  const bool primary = row.source.block == Block::Primary;
  item.handle = (primary ? DataRefMemBlock : AuxDataRefMemBlock) + row.source.index;
  item.accessor = row.source.accessor;
  item.element = row.source.element;
  item.again = before != nullptr && before->read == nullptr && before->readText == nullptr &&
               SameSource(before->source, row.source);
  return item;
}

bool HasReader(const OffsetRow& row) {
  return row.cycle != Cycle::None &&
         (row.read != nullptr || row.readText != nullptr || row.source.block != Block::None);
}

void AddSubject(const RowTable& table, Cycle cycle) {
  std::vector<Group>& list = groups[static_cast<size_t>(cycle)];
  const OffsetRow* before = nullptr;  // of the group being filled
  size_t filled = 0;
  for (const OffsetRow& row : table.rows) {
    if (row.cycle != cycle || !HasReader(row)) continue;
    const bool text = row.type == Stored::Text;
    if (text || before == nullptr || filled == groupRows) {
      list.push_back({static_cast<uint32_t>(items.size()), 0, 0, false, {}});
      before = nullptr;
      filled = 0;
    }
    items.push_back(MakeItem(row, before));
    list.back().count++;
    filled++;
    before = text ? nullptr : &row;
  }
}

double Convert(const OffsetRow& row, double value) {
  return row.convert != nullptr ? row.convert(value) : value * row.factor + row.add;
}

void RunText(const Item& item) {
  std::memset(textBytes, 0, sizeof textBytes);
  if (item.row->readText == nullptr || item.row->readText(*item.row, textBytes) == 0) return;
  if (TryEnterLock(&offsetLock) == 0) {
    refreshCounters.dropped++;
    return;
  }
  std::memcpy(offsetMemory.bytes + item.row->offset, textBytes, item.width);
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
}

// Reads and converts with no lock held. Returns true when something differs from what was stored last.
bool Gather(const Group& group, Gathered* gathered) {
  double value = 0;
  bool changed = !group.stored;
  for (uint32_t i = 0; i < group.count; i++) {
    const Item& item = items[group.first + i];
    double converted = 0;
    gathered->store[i] = true;
    if (item.row->read != nullptr) {
      gathered->store[i] = item.row->read(*item.row, &converted) != 0;
    } else {
      if (!item.again) value = ReadNumber(*item.handle, item.accessor, item.element);
      converted = Convert(*item.row, value);
    }
    if (!gathered->store[i]) {
      std::memcpy(gathered->bytes[i], group.last[i], sizeof group.last[i]);
      continue;
    }
    EncodeNumber(*item.row, converted, gathered->bytes[i]);
    changed = changed || std::memcmp(gathered->bytes[i], group.last[i], item.width) != 0;
  }
  return changed;
}

void RunGroup(Group& group) {
  if (items[group.first].row->type == Stored::Text) {
    RunText(items[group.first]);
    return;
  }
  Gathered gathered = {};
  const bool changed = Gather(group, &gathered);
  // Nobody but us has touched the memory since these very bytes were stored: they are there.
  if (!changed && group.generation == memoryGeneration.load(std::memory_order_relaxed)) {
    refreshCounters.stored++;
    return;
  }
  if (TryEnterLock(&offsetLock) == 0) {
    refreshCounters.dropped++;
    return;
  }
  bool all = true;
  for (uint32_t i = 0; i < group.count; i++) {
    const Item& item = items[group.first + i];
    all = all && gathered.store[i];
    if (!gathered.store[i]) continue;
    std::memcpy(offsetMemory.bytes + item.row->offset, gathered.bytes[i], item.width);
    std::memcpy(group.last[i], gathered.bytes[i], sizeof group.last[i]);
  }
  group.generation = memoryGeneration.load(std::memory_order_relaxed);
  LeaveLock(&offsetLock);
  group.stored = all;
  refreshCounters.stored++;
}

}  // namespace

void BuildReaders() {
  items.clear();
  refreshCounters = {};
  for (size_t cycle = 0; cycle < cycleCount; cycle++) {
    groups[cycle].clear();
    if (static_cast<Cycle>(cycle) == Cycle::None) continue;
    for (const RowTable* table : Catalogue()) AddSubject(*table, static_cast<Cycle>(cycle));
  }
}

void ForgetStoredValues() {
  for (std::vector<Group>& list : groups) {
    for (Group& group : list) group.stored = false;
  }
}

void RunReaders(Cycle cycle) {
  for (Group& group : groups[static_cast<size_t>(cycle)]) RunGroup(group);
}
