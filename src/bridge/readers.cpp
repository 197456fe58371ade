// Readers: tight groups of catalogue rows that are read, converted and stored together.
#include <algorithm>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/encode.h"
#include "bridge/reader_groups.h"

RefreshCounters refreshCounters;

namespace {

constexpr size_t groupRows = 32;
constexpr uint64_t neverRead = 0x7FF8DEADBEEF0001;  // a NaN that no simulator value has
constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);

// One row as a frame needs it: a cache line each, so that a cycle walks few of them.
struct alignas(64) Item {
  // Reads the simulator (or takes `value`, what the item before has read), converts, keeps the stored form.
  // Returns 1 when that differs from before. Chosen once by accessor and type: no decisions in a frame.
  int (*run)(Item& item, double* value);
  XPLMDataRef handle;
  uint64_t lastValue, lastWord;  // bits of the value converted last, and the stored form it gave
  double factor, add;
  union {
    double (*convert)(double value);                      // null: factor and add
    int (*read)(const OffsetRow& row, double* value);     // when `run` is null
  };
  uint32_t offset;
  int16_t element;
  Accessor accessor;
  Stored type;
  uint8_t width;
};

struct Group {
  uint32_t first, count;  // items
  uint32_t generation;    // of the memory when the group was last stored
  bool stored;            // the memory got every item's `lastWord`
};

std::vector<Item> items;
std::vector<const OffsetRow*> rowOf;  // row of each item
std::vector<Group> groups[cycleCount];
char textBytes[256];

bool SameSource(const Source& a, const Source& b) {
  return a.block == b.block && a.index == b.index && a.accessor == b.accessor && a.element == b.element;
}

template <Accessor accessor>
double ReadAs(const Item& item) {
  if (item.handle == nullptr) return 0;
  if constexpr (accessor == Accessor::Float) {
    return static_cast<double>(XPLMGetDataf(item.handle));
  } else if constexpr (accessor == Accessor::Int) {
    return XPLMGetDatai(item.handle);
  } else if constexpr (accessor == Accessor::FloatArray) {
    float value = 0;
    XPLMGetDatavf(item.handle, &value, item.element, 1);
    return static_cast<double>(value);
  } else {
    return ReadNumber(item.handle, item.accessor, item.element);
  }
}

int Keep(Item& item, uint64_t word) {
  const int differs = word != item.lastWord;
  item.lastWord = word;
  return differs;
}

// Accessor::None stands for "the same dataref as the item before".
template <Accessor accessor, Stored type>
int RunLinear(Item& item, double* value) {
  if constexpr (accessor != Accessor::None) *value = ReadAs<accessor>(item);
  return Keep(item, EncodedWord(type, *value * item.factor + item.add));
}

// With a conversion function; most of these values stand still from one run to the next.
template <Accessor accessor>
int RunConverted(Item& item, double* value) {
  if constexpr (accessor != Accessor::None) *value = ReadAs<accessor>(item);
  const auto bits = std::bit_cast<uint64_t>(*value);
  if (bits == item.lastValue) return 0;
  item.lastValue = bits;
  return Keep(item, EncodedWord(item.type, item.convert(*value)));
}

using Run = int (*)(Item& item, double* value);

template <Accessor accessor>
Run ChooseByType(Stored type) {
  switch (type) {
    case Stored::U8: return RunLinear<accessor, Stored::U8>;
    case Stored::S8: return RunLinear<accessor, Stored::S8>;
    case Stored::U16: return RunLinear<accessor, Stored::U16>;
    case Stored::S16: return RunLinear<accessor, Stored::S16>;
    case Stored::U32: return RunLinear<accessor, Stored::U32>;
    case Stored::S32: return RunLinear<accessor, Stored::S32>;
    case Stored::S64: return RunLinear<accessor, Stored::S64>;
    case Stored::F32: return RunLinear<accessor, Stored::F32>;
    case Stored::F64:
    case Stored::Text: break;
  }
  return RunLinear<accessor, Stored::F64>;
}

template <Accessor accessor>
Run ChooseForAccessor(const Item& item) {
  return item.convert != nullptr ? RunConverted<accessor> : ChooseByType<accessor>(item.type);
}

Run ChooseRun(const Item& item, bool again) {
  if (again) return ChooseForAccessor<Accessor::None>(item);
  switch (item.accessor) {
    case Accessor::Float: return ChooseForAccessor<Accessor::Float>(item);
    case Accessor::Int: return ChooseForAccessor<Accessor::Int>(item);
    case Accessor::FloatArray: return ChooseForAccessor<Accessor::FloatArray>(item);
    default: return ChooseForAccessor<Accessor::Any>(item);
  }
}

Item MakeItem(const OffsetRow& row, const OffsetRow* before) {
  Item item = {};
  item.lastValue = neverRead;
  item.factor = row.factor;
  item.add = row.add;
  item.offset = row.offset;
  item.element = static_cast<int16_t>(row.source.element);
  item.accessor = row.source.accessor;
  item.type = row.type;
  item.width = static_cast<uint8_t>(std::min<uint32_t>(StoredWidth(row), 255));
  if (row.read != nullptr) {
    item.read = row.read;
  } else {
    item.convert = row.convert;
    item.run = ChooseRun(item, before != nullptr && before->read == nullptr &&
                                   SameSource(before->source, row.source));
  }
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
      list.push_back({static_cast<uint32_t>(items.size()), 0, 0, false});
      before = nullptr;
      filled = 0;
    }
    items.push_back(MakeItem(row, before));
    rowOf.push_back(&row);
    list.back().count++;
    filled++;
    before = text ? nullptr : &row;
  }
}

void RunText(const OffsetRow& row) {
  std::memset(textBytes, 0, sizeof textBytes);
  if (row.readText == nullptr || row.readText(row, textBytes) == 0) return;
  if (TryEnterLock(&offsetLock) == 0) {
    refreshCounters.dropped++;
    return;
  }
  std::memcpy(offsetMemory.bytes + row.offset, textBytes, row.length);
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
}

// Reads and converts with no lock held. Returns true when something differs from the run before.
bool Gather(const Group& group, uint32_t* left) {
  double value = 0;
  int differs = 0;
  Item* item = items.data() + group.first;
  for (uint32_t i = 0; i < group.count; i++, item++) {
    if (item->run != nullptr) {
      differs |= item->run(*item, &value);
      continue;
    }
    double derived = 0;
    if (item->read(*rowOf[group.first + i], &derived) != 0) {
      differs |= Keep(*item, EncodedWord(item->type, derived));
    } else {
      *left |= 1U << i;
    }
  }
  return differs != 0;
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
  const Item* item = items.data() + group.first;
  if (item->type == Stored::Text) {
    RunText(*rowOf[group.first]);
    return;
  }
  uint32_t left = 0;  // bit i: item i is left as it is
  const bool differs = Gather(group, &left);
  // Nobody but us has touched the memory since these very bytes were stored: they are there.
  if (!differs && group.stored && group.generation == memoryGeneration.load(std::memory_order_relaxed)) {
    refreshCounters.stored++;
    return;
  }
  if (TryEnterLock(&offsetLock) == 0) {
    group.stored = false;
    refreshCounters.dropped++;
    return;
  }
  for (uint32_t i = 0; i < group.count; i++, item++) {
    if ((left >> i & 1) == 0) StoreWord(item->offset, item->width, item->lastWord);
  }
  group.generation = memoryGeneration.load(std::memory_order_relaxed);
  LeaveLock(&offsetLock);
  group.stored = true;
  refreshCounters.stored++;
}

}  // namespace

void BuildReaders() {
  items.clear();
  rowOf.clear();
  refreshCounters = {};
  for (size_t cycle = 0; cycle < cycleCount; cycle++) {
    groups[cycle].clear();
    if (static_cast<Cycle>(cycle) == Cycle::None) continue;
    for (const RowTable* table : Catalogue()) AddSubject(*table, static_cast<Cycle>(cycle));
  }
  BindReaders();
}

void BindReaders() {
  for (size_t i = 0; i < items.size(); i++) {
    items[i].handle = items[i].run == nullptr ? nullptr : HandleOf(rowOf[i]->source);
    items[i].lastValue = neverRead;
  }
  for (std::vector<Group>& list : groups) {
    for (Group& group : list) group.stored = false;
  }
}

void RunReaders(Cycle cycle) {
  for (Group& group : groups[static_cast<size_t>(cycle)]) RunGroup(group);
}
