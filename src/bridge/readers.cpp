// Readers: the rows of a refresh cycle are read, converted and stored together.
//
// A cycle runs in passes, each a few long loops that do one thing, because that is what a processor is fast
// at: all calls to the simulator, the rows' own functions, all conversions type by type, and at last the
// stores, in tight groups of rows with the lock held for one group at a time. What a frame needs of the
// rows is laid out for these passes beforehand.
#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

#include "base/bytes.h"
#include "bridge/cycles.h"
#include "bridge/encode.h"
#include "bridge/reader_groups.h"
#include "offsets/memory.h"

RefreshCounters refreshCounters;

namespace {

constexpr size_t groupRows = 32;  // at most so many are stored under one lock
constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);
constexpr double nothing = 0;  // what a row without handle reads

// One call to the simulator, unless an earlier cycle of the frame has made it.
struct Fetch {
  DataRef* ref;
  Accessor accessor;
};

// How a number lies in memory: computed, or kept of a dataref as the simulator gave it.
enum class Form : uint8_t { Number, Single, Whole };

// The number of a row with a function: its own reading, or a conversion that is more than a factor.
struct Derivation {
  ReadRow read;  // null: `convert`
  Convert convert;
  const OffsetRow* row;
  const void* from;  // number that is converted
  Form form;
  uint32_t group;
  uint32_t bit;  // of its place, in the group's `left`
};

// Items in a row whose numbers have one form.
struct FormRun {
  Form form;
  size_t count;
};

// Converts numbers that lie in a row into stored bytes.
using Encode = void (*)(const double* values, size_t count, uint8_t* bytes);
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
  std::vector<Prepare> prepares;  // each once
  std::vector<Fetch> fetches;     // by accessor, so many of the common kinds:
  size_t floatArrays, floats, ints;
  std::vector<Derivation> derivations;
  // Items, by type and form: stored = encoded (number x factor + add)
  std::vector<const void*> numbers;
  std::vector<double> factors, adds;
  std::vector<FormRun> runs;
  std::vector<Segment> segments;
  std::vector<Group> groups;
  std::vector<Place> places;  // group by group
  // Of the run: what functions made of what the simulator gave, the items' numbers, and all that is to be
  // stored.
  std::vector<double> derived;
  std::vector<double> values;
  std::vector<uint8_t> bytes;
};

Reader readers[cycleCount];

// --- Building -----------------------------------------------------------------------------------------

bool HasReader(const OffsetRow& row) {
  return row.cycle != Cycle::None &&
         (row.read != nullptr || row.readText != nullptr || row.prepared != nullptr ||
          ActiveSource(row).ref != nullptr || !row.variants.empty());
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

double NumberAt(const void* number, Form form) {
  return form == Form::Number   ? *static_cast<const double*>(number)
         : form == Form::Single ? static_cast<double>(*static_cast<const float*>(number))
                                : *static_cast<const int*>(number);
}

// Simple loops over numbers in a row: the compiler makes them work on several at a time.
template <Stored type, typename T>
void EncodeAs(const double* values, size_t count, uint8_t* bytes) {
  for (size_t i = 0; i < count; i++) {
    StoreTo(bytes + i * sizeof(T), static_cast<T>(EncodedWord(type, values[i])));
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

bool IsFetched(const OffsetRow* row) {
  return row->read == nullptr && row->prepared == nullptr && ActiveVariant(*row).read == nullptr &&
         HandleOf(ActiveSource(*row)) != nullptr;
}

Form FormOf(const OffsetRow* row) {
  if (!IsFetched(row)) return Form::Number;
  switch (ActiveSource(*row).accessor) {
    case Accessor::Float:
    case Accessor::FloatArray:
      return Form::Single;
    case Accessor::Int:
    case Accessor::IntArray:
      return Form::Whole;
    default:
      return Form::Number;
  }
}

// Each snapshot that a row of the cycle looks at, once.
void LayOutPrepares(Reader* reader) {
  reader->prepares.clear();
  for (const Laid& laid : reader->rows) {
    const Prepare prepare = laid.row->prepare;
    const auto known = std::find(reader->prepares.begin(), reader->prepares.end(), prepare);
    if (prepare != nullptr && known == reader->prepares.end()) reader->prepares.push_back(prepare);
  }
}

// One call for all rows that read the same dataref; kinds in the order of FetchNumbers.
void LayOutFetches(Reader* reader) {
  std::vector<Fetch> all;
  for (const Laid& laid : reader->rows) {
    if (!IsFetched(laid.row)) continue;
    const Source source = ActiveSource(*laid.row);
    const auto same = [&](const Fetch& known) { return known.ref == source.ref; };
    if (source.element < keptElements && std::none_of(all.begin(), all.end(), same)) {
      all.push_back({source.ref, source.accessor});
    }
  }
  reader->fetches.clear();
  const auto take = [&](auto belongs) {
    const size_t before = reader->fetches.size();
    std::copy_if(all.begin(), all.end(), std::back_inserter(reader->fetches), belongs);
    return reader->fetches.size() - before;
  };
  reader->floatArrays = take([](const Fetch& f) { return f.accessor == Accessor::FloatArray; });
  reader->floats = take([](const Fetch& f) { return f.accessor == Accessor::Float; });
  reader->ints = take([](const Fetch& f) { return f.accessor == Accessor::Int; });
  take([](const Fetch& f) {
    return f.accessor != Accessor::FloatArray && f.accessor != Accessor::Float && f.accessor != Accessor::Int;
  });
}

// Where a row's number lies once the fetches are done, and in which form.
const void* NumberOf(const OffsetRow* row) {
  if (row->prepared != nullptr) return row->prepared;
  if (!IsFetched(row)) return &nothing;
  const Source source = ActiveSource(*row);
  const KeptValue& kept = source.ref->kept;
  switch (FormOf(row)) {
    case Form::Single:
      return &kept.floats[std::min(source.element, keptElements - 1)];
    case Form::Whole:
      return &kept.ints[std::min(source.element, keptElements - 1)];
    case Form::Number:
      break;
  }
  return &kept.number;
}

// Far elements of an array, which are not kept, are read one by one.
bool ReadFarElement(const OffsetRow& row, double* value) {
  const double number = ReadSource(ActiveSource(row));
  *value = row.convert != nullptr ? row.convert(number) : number * row.factor + row.add;
  return true;
}

ReadRow ReadOf(const OffsetRow* row) {
  if (row->read != nullptr) return row->read;
  if (ActiveVariant(*row).read != nullptr) return ActiveVariant(*row).read;
  return IsFetched(row) && ActiveSource(*row).element >= keptElements ? ReadFarElement : nullptr;
}

// The form in which a row's number is encoded: those with a function have computed one.
Form EncodedForm(const OffsetRow* row) {
  return ReadOf(row) != nullptr || row->convert != nullptr ? Form::Number : FormOf(row);
}

// Wide types first, which aligns all of them.
bool ComesBefore(const OffsetRow* a, const OffsetRow* b) {
  return std::tuple(-static_cast<int>(StoredWidth(*a)), a->type, EncodedForm(a)) <
         std::tuple(-static_cast<int>(StoredWidth(*b)), b->type, EncodedForm(b));
}

void LayOutItems(Reader* reader) {
  Rows sorted;
  for (Laid& laid : reader->rows) sorted.push_back(&laid);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const Laid* a, const Laid* b) { return ComesBefore(a->row, b->row); });
  reader->numbers.clear();
  reader->factors.clear();
  reader->adds.clear();
  reader->runs.clear();
  reader->segments.clear();
  size_t from = 0;
  for (Laid* laid : sorted) {
    const OffsetRow& row = *laid->row;
    laid->item = reader->numbers.size();
    laid->from = from;
    reader->numbers.push_back(NumberOf(&row));
    reader->factors.push_back(row.factor);
    reader->adds.push_back(row.add);
    if (reader->runs.empty() || reader->runs.back().form != EncodedForm(&row)) {
      reader->runs.push_back({EncodedForm(&row), 0});
    }
    reader->runs.back().count++;
    const Encode encode = EncoderOf(row.type);
    if (reader->segments.empty() || reader->segments.back().encode != encode) {
      reader->segments.push_back({encode, 0, 0});
    }
    reader->segments.back().count++;
    reader->segments.back().bytes += StoredWidth(row);
    from += StoredWidth(row);
  }
  reader->values.assign(sorted.size(), 0);
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

void LayOutDerivations(Reader* reader) {
  reader->derivations.clear();
  const auto isDerived = [](const Laid& laid) {
    return ReadOf(laid.row) != nullptr || laid.row->convert != nullptr;
  };
  const auto count = std::count_if(reader->rows.begin(), reader->rows.end(), isDerived);
  reader->derived.assign(static_cast<size_t>(count), 0);
  const double* number = reader->derived.data();
  for (const Laid& laid : reader->rows) {
    if (!isDerived(laid)) continue;
    reader->derivations.push_back({ReadOf(laid.row), laid.row->convert, laid.row, reader->numbers[laid.item],
                                   FormOf(laid.row), static_cast<uint32_t>(laid.group), 1U << laid.place});
    // Times 1 plus -0 leaves every number as it is, -0 too.
    reader->numbers[laid.item] = number++;
    reader->factors[laid.item] = 1;
    reader->adds[laid.item] = -0.0;
  }
}

// --- Running ------------------------------------------------------------------------------------------

// Asks the simulator for what no earlier cycle of this frame has asked for. No lock held.
void FetchNumbers(const Reader& reader) {
  const uint32_t frame = keptFrame;
  const Fetch* fetch = reader.fetches.data();
  const Fetch* const end = fetch + reader.fetches.size();
  for (const Fetch* last = fetch + reader.floatArrays; fetch != last; fetch++) {
    if (fetch->ref->frame != frame) KeepFloats(*fetch->ref);
  }
  for (const Fetch* last = fetch + reader.floats; fetch != last; fetch++) {
    if (fetch->ref->frame != frame) KeepFloat(*fetch->ref);
  }
  for (const Fetch* last = fetch + reader.ints; fetch != last; fetch++) {
    if (fetch->ref->frame != frame) KeepInt(*fetch->ref);
  }
  for (; fetch != end; fetch++) {
    if (fetch->ref->frame != frame) Keep(*fetch->ref, fetch->accessor);
  }
}

// Runs the rows' functions; marks the places that are left as they are. No lock held.
void Derive(Reader& reader) {
  double* number = reader.derived.data();
  for (const Derivation& derivation : reader.derivations) {
    if (derivation.read == nullptr) {
      *number++ = derivation.convert(NumberAt(derivation.from, derivation.form));
      continue;
    }
    double value = 0;
    if (!derivation.read(*derivation.row, &value)) reader.groups[derivation.group].left |= derivation.bit;
    *number++ = value;
  }
}

void EncodeItems(Reader& reader) {
  double* const values = reader.values.data();
  const void* const* number = reader.numbers.data();
  double* value = values;
  for (const FormRun& run : reader.runs) {
    const double* const end = value + run.count;
    switch (run.form) {
      case Form::Number:
        while (value != end) *value++ = *static_cast<const double*>(*number++);
        break;
      case Form::Single:
        while (value != end) *value++ = static_cast<double>(*static_cast<const float*>(*number++));
        break;
      case Form::Whole:
        while (value != end) *value++ = *static_cast<const int*>(*number++);
        break;
    }
  }
  const double* const factors = reader.factors.data();
  const double* const adds = reader.adds.data();
  const size_t count = reader.values.size();
  for (size_t i = 0; i < count; i++) values[i] = values[i] * factors[i] + adds[i];
  const double* from = values;
  uint8_t* bytes = reader.bytes.data();
  for (const Segment& segment : reader.segments) {
    segment.encode(from, segment.count, bytes);
    from += segment.count;
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
    text.missed =
        text.row->readText != nullptr && text.row->readText(*text.row, text.bytes) && MissedText(text, false);
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
    LayOutPrepares(&reader);
    LayOutFetches(&reader);
    LayOutItems(&reader);
    LayOutPlaces(&reader);
    LayOutDerivations(&reader);
  }
}

void RunReaders(Cycle cycle, bool sameFrame) {
  Reader& reader = readers[static_cast<size_t>(cycle)];
  const KeepReads keep(!sameFrame);
  for (const Prepare prepare : reader.prepares) prepare();
  FetchNumbers(reader);
  Derive(reader);
  const SimulatorTurn turn;
  EncodeItems(reader);
  const bool groupsMissed = StoreGroups(reader);
  const bool textsMissed = RunTexts(reader);
  if (groupsMissed || textsMissed) StoreMissed(reader);
  for (Group& group : reader.groups) group.left = 0;
}
