// Readers: tight groups of catalogue rows that are read, converted and stored together.
//
// A group runs in three passes, each a short loop that does one thing, because that is what a processor is
// fast at: all calls to the simulator, then all conversions, then (with the lock held) all stores. What a
// frame needs of a row is laid out for that beforehand, sorted by width and type.
#include <algorithm>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/encode.h"
#include "bridge/reader_groups.h"

RefreshCounters refreshCounters;

namespace {

constexpr uint32_t groupRows = 32;
constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);

// A group's numbers of one run: 0 for rows whose handle is null, what the simulator gave, what functions
// made of it.
constexpr uint32_t zeroSlot = 0;
constexpr uint32_t firstFetched = 1;
constexpr uint32_t firstDerived = firstFetched + groupRows;
constexpr uint32_t slotCount = firstDerived + groupRows;

// One call to the simulator.
struct Fetch {
  XPLMDataRef handle;
  int element;
  Accessor accessor;
};

// The number of a row with a function: its own reading, or a conversion that is more than a factor.
struct Derivation {
  int (*read)(const OffsetRow& row, double* value);  // null: `convert`
  double (*convert)(double value);
  const OffsetRow* row;
  uint8_t from;  // slot that is converted
  uint8_t to;
  uint8_t item;  // in its group
};

// stored = encoded (slot x factor + add)
struct Item {
  double factor, add;
  uint32_t offset;
  uint8_t slot, width;
};

using Encode = void (*)(const Item* item, uint32_t count, const double* slots, uint8_t* bytes);
// Items of one type that stand together.
struct Segment {
  Encode encode;
  uint16_t count, bytes;
};

struct Group {
  const OffsetRow* text;               // a row of text alone, else null
  std::vector<const OffsetRow*> rows;  // up to groupRows numbers
  // Laid out when the handles are bound:
  std::vector<Fetch> fetches;  // by accessor, so many of each kind:
  uint32_t floatElements, floats, ints;
  std::vector<Derivation> derivations;
  std::vector<Item> items;             // widest first
  std::vector<Segment> segments;       // of items
  uint32_t eights, fours, twos, ones;  // items of each width
};

std::vector<Group> groups[cycleCount];
char textBytes[256];

// --- Building -----------------------------------------------------------------------------------------

bool HasReader(const OffsetRow& row) {
  return row.cycle != Cycle::None &&
         (row.read != nullptr || row.readText != nullptr || row.source.block != Block::None);
}

// In a group the wide values are stored first: a row that lies within an earlier, wider one still ends up
// on top of it, any other overlap needs a group of its own.
bool FitsInto(const Group& group, const OffsetRow& row) {
  const uint32_t width = StoredWidth(row);
  return group.rows.size() < groupRows &&
         std::none_of(group.rows.begin(), group.rows.end(), [&](const OffsetRow* other) {
           const uint32_t otherWidth = StoredWidth(*other);
           return row.offset < other->offset + otherWidth && other->offset < row.offset + width &&
                  width >= otherWidth;
         });
}

// Small subjects share a group, so that a cycle takes the lock a few times only; no subject that fits into
// one group is torn.
void AddSubject(const RowTable& table, Cycle cycle) {
  std::vector<const OffsetRow*> rows;
  for (const OffsetRow& row : table.rows) {
    if (row.cycle == cycle && HasReader(row)) rows.push_back(&row);
  }
  std::vector<Group>& list = groups[static_cast<size_t>(cycle)];
  bool fresh = list.empty() || (rows.size() <= groupRows && list.back().rows.size() + rows.size() > groupRows);
  for (const OffsetRow* row : rows) {
    const bool text = row->type == Stored::Text;
    if (fresh || text || list.back().text != nullptr || !FitsInto(list.back(), *row)) {
      list.emplace_back();
      fresh = false;
    }
    if (text) {
      list.back().text = row;
    } else {
      list.back().rows.push_back(row);
    }
  }
}

template <Stored type, typename T>
void EncodeAs(const Item* item, uint32_t count, const double* slots, uint8_t* bytes) {
  for (uint32_t i = 0; i < count; i++) {
    const auto word = static_cast<T>(EncodedWord(type, slots[item[i].slot] * item[i].factor + item[i].add));
    std::memcpy(bytes + i * sizeof word, &word, sizeof word);
  }
}

Encode EncoderOf(Stored type) {
  switch (type) {
    case Stored::U8:
      return EncodeAs<Stored::U8, uint8_t>;
    case Stored::S8:
      return EncodeAs<Stored::S8, uint8_t>;
    case Stored::U16:
      return EncodeAs<Stored::U16, uint16_t>;
    case Stored::S16:
      return EncodeAs<Stored::S16, uint16_t>;
    case Stored::U32:
      return EncodeAs<Stored::U32, uint32_t>;
    case Stored::S32:
      return EncodeAs<Stored::S32, uint32_t>;
    case Stored::S64:
      return EncodeAs<Stored::S64, uint64_t>;
    case Stored::F32:
      return EncodeAs<Stored::F32, uint32_t>;
    case Stored::F64:
    case Stored::Text:
      break;
  }
  return EncodeAs<Stored::F64, uint64_t>;
}

bool IsFetched(const OffsetRow* row) { return row->read == nullptr && HandleOf(row->source) != nullptr; }

bool SameCall(const Fetch& a, const Fetch& b) {
  return a.handle == b.handle && a.accessor == b.accessor && a.element == b.element;
}
Fetch FetchOf(const OffsetRow* row) {
  return {HandleOf(row->source), row->source.element, row->source.accessor};
}

// One call for all rows of the group that read the same; kinds in the order of FetchNumbers.
void LayOutFetches(Group* group) {
  std::vector<Fetch> all;
  for (const OffsetRow* row : group->rows) {
    if (!IsFetched(row)) continue;
    const Fetch fetch = FetchOf(row);
    if (std::none_of(all.begin(), all.end(), [&](const Fetch& known) { return SameCall(known, fetch); })) {
      all.push_back(fetch);
    }
  }
  group->fetches.clear();
  const auto take = [&](auto belongs) {
    const size_t before = group->fetches.size();
    std::copy_if(all.begin(), all.end(), std::back_inserter(group->fetches), belongs);
    return static_cast<uint32_t>(group->fetches.size() - before);
  };
  group->floatElements = take([](const Fetch& f) { return f.accessor == Accessor::FloatArray; });
  group->floats = take([](const Fetch& f) { return f.accessor == Accessor::Float; });
  group->ints = take([](const Fetch& f) { return f.accessor == Accessor::Int; });
  take([](const Fetch& f) {
    return f.accessor != Accessor::FloatArray && f.accessor != Accessor::Float && f.accessor != Accessor::Int;
  });
}

uint8_t SlotOf(const Group& group, const OffsetRow* row) {
  if (!IsFetched(row)) return zeroSlot;
  const Fetch fetch = FetchOf(row);
  const auto known = std::find_if(group.fetches.begin(), group.fetches.end(),
                                  [&](const Fetch& other) { return SameCall(other, fetch); });
  return static_cast<uint8_t>(firstFetched + (known - group.fetches.begin()));
}

void LayOutItems(Group* group) {
  std::vector<const OffsetRow*> sorted = group->rows;
  std::stable_sort(sorted.begin(), sorted.end(), [](const OffsetRow* a, const OffsetRow* b) {
    return StoredWidth(*a) != StoredWidth(*b) ? StoredWidth(*a) > StoredWidth(*b) : a->type < b->type;
  });
  group->items.clear();
  group->segments.clear();
  group->eights = group->fours = group->twos = group->ones = 0;
  for (const OffsetRow* row : sorted) {
    const uint32_t width = StoredWidth(*row);
    group->items.push_back(
        {row->factor, row->add, row->offset, SlotOf(*group, row), static_cast<uint8_t>(width)});
    (width == 8 ? group->eights : width == 4 ? group->fours : width == 2 ? group->twos : group->ones)++;
    const Encode encode = EncoderOf(row->type);
    if (group->segments.empty() || group->segments.back().encode != encode)
      group->segments.push_back({encode, 0, 0});
    group->segments.back().count++;
    group->segments.back().bytes = static_cast<uint16_t>(group->segments.back().bytes + width);
  }
  // Functions in the catalogue's order: some rows use what the row before them has read.
  group->derivations.clear();
  for (const OffsetRow* row : group->rows) {
    if (row->read == nullptr && row->convert == nullptr) continue;
    const auto number = static_cast<uint8_t>(std::find(sorted.begin(), sorted.end(), row) - sorted.begin());
    Item& item = group->items[number];
    const auto slot = static_cast<uint8_t>(firstDerived + group->derivations.size());
    group->derivations.push_back({row->read, row->convert, row, item.slot, slot, number});
    // Times 1 plus -0 leaves every number as it is, -0 too.
    item.factor = 1;
    item.add = -0.0;
    item.slot = slot;
  }
}

// --- Running ------------------------------------------------------------------------------------------

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

// Fills the slots from the simulator. No lock held.
void FetchNumbers(const Group& group, double* slots) {
  const Fetch* fetch = group.fetches.data();
  const Fetch* const end = fetch + group.fetches.size();
  float elements[groupRows];
  const uint32_t elementCount = group.floatElements;
  for (uint32_t i = 0; i < elementCount; i++, fetch++) {
    elements[i] = 0;  // stays when the array is shorter
    XPLMGetDatavf(fetch->handle, &elements[i], fetch->element, 1);
  }
  double* slot = slots + firstFetched + elementCount;
  for (const Fetch* last = fetch + group.floats; fetch != last; fetch++) {
    *slot++ = static_cast<double>(XPLMGetDataf(fetch->handle));
  }
  for (const Fetch* last = fetch + group.ints; fetch != last; fetch++) *slot++ = XPLMGetDatai(fetch->handle);
  for (; fetch != end; fetch++) *slot++ = ReadNumber(fetch->handle, fetch->accessor, fetch->element);
  // The elements last: a load right behind the store of the same bytes would wait for it.
  for (uint32_t i = 0; i < elementCount; i++) slots[firstFetched + i] = static_cast<double>(elements[i]);
}

// Runs the rows' functions. Returns bit n for item n that is left as it is.
uint32_t Derive(const Group& group, double* slots) {
  uint32_t left = 0;
  for (const Derivation& derivation : group.derivations) {
    if (derivation.read == nullptr) {
      slots[derivation.to] = derivation.convert(slots[derivation.from]);
      continue;
    }
    double value = 0;
    if (derivation.read(*derivation.row, &value) == 0) left |= 1U << derivation.item;
    slots[derivation.to] = value;
  }
  return left;
}

// Copies values of one width to their places; returns what lies behind them.
template <typename T>
const uint8_t* StoreAs(const Item* item, uint32_t count, const uint8_t* bytes) {
#pragma GCC unroll 4
  for (uint32_t i = 0; i < count; i++, bytes += sizeof(T)) {
    std::memcpy(offsetMemory.bytes + item[i].offset, bytes, sizeof(T));
  }
  return bytes;
}

// The lock is held.
void StoreBytes(const Group& group, const uint8_t* bytes, uint32_t left) {
  const Item* item = group.items.data();
  if (left != 0) {
    for (size_t i = 0; i < group.items.size(); bytes += item[i].width, i++) {
      if ((left >> i & 1) == 0) std::memcpy(offsetMemory.bytes + item[i].offset, bytes, item[i].width);
    }
    return;
  }
  bytes = StoreAs<uint64_t>(item, group.eights, bytes);
  item += group.eights;
  bytes = StoreAs<uint32_t>(item, group.fours, bytes);
  item += group.fours;
  bytes = StoreAs<uint16_t>(item, group.twos, bytes);
  item += group.twos;
  StoreAs<uint8_t>(item, group.ones, bytes);
}

void RunGroup(Group& group) {
  if (group.text != nullptr) {
    RunText(*group.text);
    return;
  }
  double slots[slotCount];
  slots[zeroSlot] = 0;
  FetchNumbers(group, slots);
  const uint32_t left = Derive(group, slots);

  alignas(8) uint8_t bytes[groupRows * sizeof(double)];
  const Item* item = group.items.data();
  uint8_t* to = bytes;
  for (const Segment& segment : group.segments) {
    segment.encode(item, segment.count, slots, to);
    item += segment.count;
    to += segment.bytes;
  }
  if (TryEnterLock(&offsetLock) == 0) {
    refreshCounters.dropped++;
    return;
  }
  StoreBytes(group, bytes, left);
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
}

}  // namespace

void BuildReaders() {
  refreshCounters = {};
  for (size_t cycle = 0; cycle < cycleCount; cycle++) {
    groups[cycle].clear();
    if (static_cast<Cycle>(cycle) == Cycle::None) continue;
    for (const RowTable* table : Catalogue()) AddSubject(*table, static_cast<Cycle>(cycle));
  }
  BindReaders();
}

void BindReaders() {
  for (std::vector<Group>& list : groups) {
    for (Group& group : list) {
      LayOutFetches(&group);
      LayOutItems(&group);
    }
  }
}

void RunReaders(Cycle cycle) {
  for (Group& group : groups[static_cast<size_t>(cycle)]) RunGroup(group);
}
