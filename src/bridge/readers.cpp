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
  // Copied from the row, so that a frame walks this array alone.
  Stored type;
  uint32_t width;
  uint32_t offset;
  double factor, add;
  double (*convert)(double value);
  int (*read)(const OffsetRow& row, double* value);
};

struct Group {
  uint32_t first, count;  // items
  uint32_t generation;    // of the memory when the group was last stored
  bool stored;            // `last` holds what the memory got
  uint64_t last[groupRows];
};

// What one run of a group has gathered before it takes the lock.
struct Gathered {
  uint64_t words[groupRows];
  uint32_t left;  // bit i: row i is left as it is
};

std::vector<Item> items;
std::vector<Group> groups[cycleCount];
char textBytes[256];

bool SameSource(const Source& a, const Source& b) {
  return a.block == b.block && a.index == b.index && a.accessor == b.accessor && a.element == b.element;
}

Item MakeItem(const OffsetRow& row, const OffsetRow* before) {
  Item item = {&row,       nullptr, Accessor::None, 0,           false,   row.type, StoredWidth(row),
               row.offset, row.factor, row.add,     row.convert, row.read};
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
  uint64_t differing = group.stored ? 0 : 1;
  const Item* item = items.data() + group.first;
  for (uint32_t i = 0; i < group.count; i++, item++) {
    double converted = 0;
    if (item->read != nullptr) {
      if (item->read(*item->row, &converted) == 0) {
        gathered->left |= 1U << i;
        continue;
      }
    } else {
      if (!item->again) value = ReadNumber(*item->handle, item->accessor, item->element);
      converted = item->convert != nullptr ? item->convert(value) : value * item->factor + item->add;
    }
    gathered->words[i] = EncodedWord(item->type, converted);
    differing |= gathered->words[i] ^ group.last[i];
  }
  return differing != 0;
}

void StoreWord(uint32_t offset, uint32_t width, uint64_t word) {
  uint8_t* place = offsetMemory.bytes + offset;
  switch (width) {
    case 1: std::memcpy(place, &word, 1); break;
    case 2: std::memcpy(place, &word, 2); break;
    case 4: std::memcpy(place, &word, 4); break;
    default: std::memcpy(place, &word, 8); break;
  }
}

void RunGroup(Group& group) {
  if (items[group.first].type == Stored::Text) {
    RunText(items[group.first]);
    return;
  }
  Gathered gathered;
  gathered.left = 0;
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
  const Item* item = items.data() + group.first;
  for (uint32_t i = 0; i < group.count; i++, item++) {
    if ((gathered.left >> i & 1) != 0) continue;
    StoreWord(item->offset, item->width, gathered.words[i]);
    group.last[i] = gathered.words[i];
  }
  group.generation = memoryGeneration.load(std::memory_order_relaxed);
  LeaveLock(&offsetLock);
  group.stored = true;
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
