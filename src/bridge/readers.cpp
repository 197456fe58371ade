// Readers: the rows of a refresh cycle are read, converted and stored together.
//
// A cycle runs in passes, each a few long loops that do one thing, because that is what a processor is fast
// at: all calls to the simulator, the rows' own functions, all conversions type by type, and at last the
// stores, in tight groups of rows with the lock held for one group at a time. What a frame needs of the
// rows is laid out for these passes beforehand.
#include <algorithm>
#include <vector>

#include "bridge/cycles.h"
#include "bridge/encode.h"
#include "bridge/reader_groups.h"

RefreshCounters refreshCounters;

namespace {

constexpr size_t groupRows = 32;  // at most so many are stored under one lock
constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);
constexpr uint16_t zeroNumber = 0;  // place of the 0 that a row without handle reads

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
  uint16_t from;  // number that is converted
  uint16_t group;
  uint32_t bit;  // of its place, in the group's `left`
};

// stored = encoded (number x factor + add)
struct Item {
  double factor, add;
  uint32_t number;
};

using Encode = void (*)(const Item* item, size_t count, const double* numbers, uint8_t* bytes);
// Items of one type that stand together.
struct Segment {
  Encode encode;
  size_t count, bytes;
};

// Where an item's bytes go, and where they lie until then.
struct Place {
  uint32_t offset;
  uint16_t from, width;
};

struct Group {
  uint32_t first;                      // of its places, widest first
  uint32_t eights, fours, twos, ones;  // so many of each width
  uint32_t left;                       // bit n: its n-th place is left as it is in this run
  bool missed;                         // found the lock busy in this run
};

struct Text {
  const OffsetRow* row;
  bool missed;
  char bytes[256];  // what the row gave in this run
};

// A row with where it was laid.
struct Laid {
  const OffsetRow* row;
  size_t group, place, item, from;
};

struct Reader {
  std::vector<Laid> rows;  // numbers, in the catalogue's order
  std::vector<Text> texts;
  // Laid out when the handles are bound:
  std::vector<Fetch> fetches;  // by accessor, so many of each kind:
  size_t floatElements, floats, ints;
  std::vector<Derivation> derivations;
  std::vector<Item> items;  // by type
  std::vector<Segment> segments;
  std::vector<Group> groups;
  std::vector<Place> places;  // group by group
  // Of the run: a 0, what the simulator gave, what functions made of it; and all that is to be stored.
  std::vector<float> elements;
  std::vector<double> numbers;
  std::vector<uint8_t> bytes;
};

Reader readers[cycleCount];

// --- Building -----------------------------------------------------------------------------------------

bool HasReader(const OffsetRow& row) {
  return row.cycle != Cycle::None &&
         (row.read != nullptr || row.readText != nullptr || row.source.block != Block::None);
}

// In a group the wide values are stored first: a row that lies within an earlier, wider one still ends up
// on top of it. Rows that overlap in any other way must not stand in one group.
bool MayFollow(const OffsetRow& row, const OffsetRow& earlier) {
  const uint32_t width = StoredWidth(row);
  const uint32_t earlierWidth = StoredWidth(earlier);
  return row.offset >= earlier.offset + earlierWidth || earlier.offset >= row.offset + width ||
         width < earlierWidth;
}

using Rows = std::vector<Laid*>;

bool FitsInto(const Rows& group, const Rows& piece) {
  return group.size() + piece.size() <= groupRows && std::all_of(piece.begin(), piece.end(), [&](Laid* laid) {
           return std::all_of(group.begin(), group.end(),
                              [&](const Laid* other) { return MayFollow(*laid->row, *other->row); });
         });
}

// The rows of one subject, cut where a group ends: a subject that fits into one group is never torn.
void CutSubject(Laid* first, Laid* end, std::vector<Rows>* pieces) {
  Rows piece;
  for (; first != end; first++) {
    if (!FitsInto(piece, {first})) {
      pieces->push_back(piece);
      piece.clear();
    }
    piece.push_back(first);
  }
  if (!piece.empty()) pieces->push_back(piece);
}

// Fills up the groups, large pieces first, because every group costs a lock.
void FormGroups(std::vector<Rows> pieces) {
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Rows& a, const Rows& b) { return a.size() > b.size(); });
  std::vector<Rows> groups;
  for (const Rows& piece : pieces) {
    auto group =
        std::find_if(groups.begin(), groups.end(), [&](const Rows& other) { return FitsInto(other, piece); });
    if (group == groups.end()) group = groups.insert(group, Rows{});
    for (Laid* laid : piece) laid->group = static_cast<size_t>(group - groups.begin());
    group->insert(group->end(), piece.begin(), piece.end());
  }
}

void TakeRows(Cycle cycle, Reader* reader) {
  std::vector<size_t> subjectEnds;
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (row.cycle != cycle || !HasReader(row)) continue;
      if (row.type == Stored::Text) {
        reader->texts.push_back({&row, false, {}});
      } else {
        reader->rows.push_back({&row, 0, 0, 0, 0});
      }
    }
    subjectEnds.push_back(reader->rows.size());
  }
  std::vector<Rows> pieces;
  Laid* const rows = reader->rows.data();
  size_t begin = 0;
  for (size_t end : subjectEnds) {
    CutSubject(rows + begin, rows + end, &pieces);
    begin = end;
  }
  FormGroups(pieces);
}

template <Stored type, typename T>
void EncodeAs(const Item* item, size_t count, const double* numbers, uint8_t* bytes) {
  for (size_t i = 0; i < count; i++) {
    const auto word = static_cast<T>(EncodedWord(type, numbers[item[i].number] * item[i].factor + item[i].add));
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

// One call for all rows that read the same; kinds in the order of FetchNumbers.
void LayOutFetches(Reader* reader) {
  std::vector<Fetch> all;
  for (const Laid& laid : reader->rows) {
    if (!IsFetched(laid.row)) continue;
    const Fetch fetch = FetchOf(laid.row);
    const auto same = [&](const Fetch& known) { return SameCall(known, fetch); };
    if (std::none_of(all.begin(), all.end(), same)) all.push_back(fetch);
  }
  reader->fetches.clear();
  const auto take = [&](auto belongs) {
    const size_t before = reader->fetches.size();
    std::copy_if(all.begin(), all.end(), std::back_inserter(reader->fetches), belongs);
    return reader->fetches.size() - before;
  };
  reader->floatElements = take([](const Fetch& f) { return f.accessor == Accessor::FloatArray; });
  reader->floats = take([](const Fetch& f) { return f.accessor == Accessor::Float; });
  reader->ints = take([](const Fetch& f) { return f.accessor == Accessor::Int; });
  take([](const Fetch& f) {
    return f.accessor != Accessor::FloatArray && f.accessor != Accessor::Float && f.accessor != Accessor::Int;
  });
  reader->elements.assign(reader->floatElements, 0);
}

uint16_t NumberOf(const Reader& reader, const OffsetRow* row) {
  if (!IsFetched(row)) return zeroNumber;
  const Fetch fetch = FetchOf(row);
  const auto known = std::find_if(reader.fetches.begin(), reader.fetches.end(),
                                  [&](const Fetch& other) { return SameCall(other, fetch); });
  return static_cast<uint16_t>(zeroNumber + 1 + (known - reader.fetches.begin()));
}

// Wide types first, which aligns all of them.
bool ComesBefore(const OffsetRow* a, const OffsetRow* b) {
  return StoredWidth(*a) != StoredWidth(*b) ? StoredWidth(*a) > StoredWidth(*b) : a->type < b->type;
}

void LayOutItems(Reader* reader) {
  Rows sorted;
  for (Laid& laid : reader->rows) sorted.push_back(&laid);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Laid* a, const Laid* b) { return ComesBefore(a->row, b->row); });
  reader->items.clear();
  reader->segments.clear();
  size_t from = 0;
  for (Laid* laid : sorted) {
    const OffsetRow& row = *laid->row;
    laid->item = reader->items.size();
    laid->from = from;
    reader->items.push_back({row.factor, row.add, NumberOf(*reader, &row)});
    const Encode encode = EncoderOf(row.type);
    if (reader->segments.empty() || reader->segments.back().encode != encode) {
      reader->segments.push_back({encode, 0, 0});
    }
    reader->segments.back().count++;
    reader->segments.back().bytes += StoredWidth(row);
    from += StoredWidth(row);
  }
  reader->bytes.assign(from, 0);
}

void LayOutPlaces(Reader* reader) {
  Rows sorted;
  for (Laid& laid : reader->rows) sorted.push_back(&laid);
  std::stable_sort(sorted.begin(), sorted.end(), [](const Laid* a, const Laid* b) {
    return a->group != b->group ? a->group < b->group : StoredWidth(*a->row) > StoredWidth(*b->row);
  });
  reader->groups.clear();
  reader->places.clear();
  for (Laid* laid : sorted) {
    const auto number = static_cast<uint32_t>(reader->places.size());
    if (laid->group == reader->groups.size()) reader->groups.push_back({number, 0, 0, 0, 0, 0, false});
    Group& group = reader->groups.back();
    const uint32_t width = StoredWidth(*laid->row);
    laid->place = number - group.first;
    reader->places.push_back(
        {laid->row->offset, static_cast<uint16_t>(laid->from), static_cast<uint16_t>(width)});
    (width == 8 ? group.eights : width == 4 ? group.fours : width == 2 ? group.twos : group.ones)++;
  }
}

// In the catalogue's order: some rows use what the row before them has read.
void LayOutDerivations(Reader* reader) {
  reader->derivations.clear();
  uint32_t number = zeroNumber + 1 + static_cast<uint32_t>(reader->fetches.size());
  for (const Laid& laid : reader->rows) {
    if (laid.row->read == nullptr && laid.row->convert == nullptr) continue;
    Item& item = reader->items[laid.item];
    reader->derivations.push_back({laid.row->read, laid.row->convert, laid.row,
                                   static_cast<uint16_t>(item.number), static_cast<uint16_t>(laid.group),
                                   1U << laid.place});
    // Times 1 plus -0 leaves every number as it is, -0 too.
    item = {1, -0.0, number};
    number++;
  }
  reader->numbers.assign(number, 0);
}

// --- Running ------------------------------------------------------------------------------------------

// Fills the numbers from the simulator and returns where they end. No lock held.
double* FetchNumbers(Reader& reader) {
  const Fetch* fetch = reader.fetches.data();
  const Fetch* const end = fetch + reader.fetches.size();
  float* const elements = reader.elements.data();
  const size_t elementCount = reader.floatElements;
  for (size_t i = 0; i < elementCount; i++, fetch++) {
    elements[i] = 0;  // stays when the array is shorter
    XPLMGetDatavf(fetch->handle, &elements[i], fetch->element, 1);
  }
  double* const first = reader.numbers.data() + zeroNumber + 1;
  double* number = first + elementCount;
  for (const Fetch* last = fetch + reader.floats; fetch != last; fetch++) {
    *number++ = static_cast<double>(XPLMGetDataf(fetch->handle));
  }
  for (const Fetch* last = fetch + reader.ints; fetch != last; fetch++) *number++ = XPLMGetDatai(fetch->handle);
  for (; fetch != end; fetch++) *number++ = ReadNumber(fetch->handle, fetch->accessor, fetch->element);
  // The elements last: a load right behind the store of the same bytes would wait for it.
  for (size_t i = 0; i < elementCount; i++) first[i] = static_cast<double>(elements[i]);
  return number;
}

// Runs the rows' functions; marks the places that are left as they are. No lock held.
void Derive(Reader& reader, double* number) {
  for (const Derivation& derivation : reader.derivations) {
    if (derivation.read == nullptr) {
      *number++ = derivation.convert(reader.numbers[derivation.from]);
      continue;
    }
    double value = 0;
    if (derivation.read(*derivation.row, &value) == 0) reader.groups[derivation.group].left |= derivation.bit;
    *number++ = value;
  }
}

void EncodeItems(Reader& reader) {
  const Item* item = reader.items.data();
  uint8_t* bytes = reader.bytes.data();
  for (const Segment& segment : reader.segments) {
    segment.encode(item, segment.count, reader.numbers.data(), bytes);
    item += segment.count;
    bytes += segment.bytes;
  }
}

template <typename T>
const Place* StoreAs(const Place* place, uint32_t count, const uint8_t* bytes) {
  const Place* const end = place + count;
#pragma GCC unroll 4
  for (; place != end; place++) std::memcpy(offsetMemory.bytes + place->offset, bytes + place->from, sizeof(T));
  return end;
}

// The lock is held.
void StoreGroup(const Group& group, const Place* place, const uint8_t* bytes) {
  if (group.left != 0) {
    for (size_t i = 0; i < group.eights + group.fours + group.twos + group.ones; i++, place++) {
      if ((group.left >> i & 1) == 0) {
        std::memcpy(offsetMemory.bytes + place->offset, bytes + place->from, place->width);
      }
    }
    return;
  }
  place = StoreAs<uint64_t>(place, group.eights, bytes);
  place = StoreAs<uint32_t>(place, group.fours, bytes);
  place = StoreAs<uint16_t>(place, group.twos, bytes);
  StoreAs<uint8_t>(place, group.ones, bytes);
}

// Stores under the lock unless that is busy, and counts. Returns whether it was missed.
template <typename Store>
bool Missed(bool lastTry, Store store) {
  if (TryEnterLock(&offsetLock) == 0) {
    if (lastTry) refreshCounters.dropped++;
    return true;
  }
  store();
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
  return false;
}

bool MissedGroup(const Reader& reader, const Group& group, bool lastTry) {
  return Missed(lastTry, [&] { StoreGroup(group, &reader.places[group.first], reader.bytes.data()); });
}

bool MissedText(const Text& text, bool lastTry) {
  return Missed(lastTry,
                [&] { std::memcpy(offsetMemory.bytes + text.row->offset, text.bytes, text.row->length); });
}

// Returns whether anything was missed.
bool StoreGroups(Reader& reader) {
  bool missed = false;
  for (Group& group : reader.groups) missed |= group.missed = MissedGroup(reader, group, false);
  return missed;
}

bool RunTexts(Reader& reader) {
  bool missed = false;
  for (Text& text : reader.texts) {
    std::memset(text.bytes, 0, sizeof text.bytes);
    text.missed = text.row->readText != nullptr && text.row->readText(*text.row, text.bytes) != 0 &&
                  MissedText(text, false);
    missed |= text.missed;
  }
  return missed;
}

// What has found the lock busy is tried once more; a client that holds it is done soon. Groups behind the first
// one that was missed are stored again: where rows overlap, the later one must show.
void StoreMissed(Reader& reader) {
  bool behind = false;
  for (const Group& group : reader.groups) {
    if (group.missed) {
      MissedGroup(reader, group, true);
      behind = true;
    } else if (behind && TryEnterLock(&offsetLock) != 0) {
      StoreGroup(group, &reader.places[group.first], reader.bytes.data());
      LeaveLock(&offsetLock);
    }
  }
  for (const Text& text : reader.texts) {
    if (text.missed) MissedText(text, true);
  }
}

}  // namespace

void BuildReaders() {
  refreshCounters = {};
  for (size_t cycle = 0; cycle < cycleCount; cycle++) {
    readers[cycle] = {};
    TakeRows(static_cast<Cycle>(cycle), &readers[cycle]);
  }
  BindReaders();
}

void BindReaders() {
  for (Reader& reader : readers) {
    LayOutFetches(&reader);
    LayOutItems(&reader);
    LayOutPlaces(&reader);
    LayOutDerivations(&reader);
  }
}

void RunReaders(Cycle cycle) {
  Reader& reader = readers[static_cast<size_t>(cycle)];
  Derive(reader, FetchNumbers(reader));
  const SimulatorTurn turn;
  EncodeItems(reader);
  const bool groupsMissed = StoreGroups(reader);
  const bool textsMissed = RunTexts(reader);
  if (groupsMissed || textsMissed) StoreMissed(reader);
  for (Group& group : reader.groups) group.left = 0;
}
