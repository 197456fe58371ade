// Lays the rows of each refresh cycle out for being run.
#include "bridge/reader_layout.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "base/bytes.h"
#include "bridge/cycles.h"
#include "bridge/encode.h"
#include "bridge/reader_groups.h"

Reader readers[cycleCount];
uint32_t readerBindings;

namespace {

constexpr auto firstCycle = static_cast<size_t>(Cycle::C1);
constexpr size_t groupRows = 32;  // at most so many are stored under one lock
constexpr double nothing = 0;     // what a row without handle reads

bool HasReader(const OffsetRow& row) {
  return row.cycle != Cycle::None &&
         (row.read != nullptr || row.readText != nullptr || row.prepared != nullptr ||
          row.source.ref != nullptr || !row.variants.empty());
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

// In the catalogue's order, so that the groups are the same whatever the order in which functions run.
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
void EncodeAs(const Item* item, size_t count, uint8_t* bytes) {
  for (size_t i = 0; i < count; i++) {
    StoreTo(bytes + i * sizeof(T),
            static_cast<T>(EncodedWord(type, *item[i].number * item[i].factor + item[i].add)));
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

// Whether a row's number is what the simulator answers for one source.
bool IsFetched(const OffsetRow& row) {
  return ActiveRead(row) == nullptr && ActivePrepared(row) == nullptr && HandleOf(ActiveSource(row)) != nullptr;
}

// The variant that shows a row's switch at the moment; null for other rows.
const Variant* ShownSwitch(const OffsetRow& row) {
  const Variant& variant = ShowingVariant(row);
  return variant.read == nullptr && IsSwitch(variant) ? &variant : nullptr;
}

bool IsDerived(const OffsetRow& row) { return ActiveRead(row) != nullptr || ActiveConvert(row) != nullptr; }

// Each snapshot that a row of the cycle looks at, once.
void LayOutPrepares(Reader* reader) {
  reader->prepares.clear();
  for (const Laid& laid : reader->rows) {
    const Prepare prepare = laid.row->prepare;
    const auto known = std::find(reader->prepares.begin(), reader->prepares.end(), prepare);
    if (prepare != nullptr && known == reader->prepares.end()) reader->prepares.push_back(prepare);
  }
}

template <typename Known>
void AddOnce(std::vector<Known>* known, const Known& one) {
  if (std::find(known->begin(), known->end(), one) == known->end()) known->push_back(one);
}

std::vector<XPLMDataRef> HandlesOf(const std::vector<DataRef*>& refs) {
  std::vector<XPLMDataRef> handles;
  handles.reserve(refs.size());
  for (const DataRef* ref : refs) handles.push_back(ref->handle);
  return handles;
}

void AddArray(Reader* reader, const Source& source) {
  const auto known = std::find_if(reader->arrays.begin(), reader->arrays.end(),
                                  [&](const ArrayFetch& array) { return array.ref == source.ref; });
  if (known == reader->arrays.end()) {
    reader->arrays.push_back({source.ref->handle, source.ref, 0, source.element + 1});
  } else {
    known->count = std::max(known->count, source.element + 1);
  }
}

// Whether the first cycle has the answer already when another cycle runs.
bool IsShared(const Reader& reader, const Source& source) {
  return &reader != &readers[firstCycle] && source.ref->shared.accessor == source.accessor &&
         source.element < source.ref->shared.count;
}

void AddFetch(Reader* reader, const Source& stated) {
  if (HandleOf(stated) == nullptr) return;
  const Source source = Resolved(stated);
  if (IsShared(*reader, source)) return;
  if (source.accessor == Accessor::FloatArray) {
    AddArray(reader, source);
  } else if (source.accessor == Accessor::Float) {
    AddOnce(&reader->floatRefs, source.ref);
  } else if (source.accessor == Accessor::Int) {
    AddOnce(&reader->intRefs, source.ref);
  } else {
    AddOnce(&reader->others, source);
  }
}

// One call for all rows that read the same dataref, unless the first cycle makes it.
void LayOutFetches(Reader* reader) {
  reader->arrays.clear();
  reader->floatRefs.clear();
  reader->intRefs.clear();
  reader->others.clear();
  for (const Laid& laid : reader->rows) {
    if (IsFetched(*laid.row)) AddFetch(reader, ActiveSource(*laid.row));
    // Only the first cycle's answers are found by functions (ReadSource).
    if (reader != &readers[firstCycle]) continue;
    for (const Source& source : laid.row->inputs) AddFetch(reader, source);
  }
  reader->floatHandles = HandlesOf(reader->floatRefs);
  reader->intHandles = HandlesOf(reader->intRefs);
  int elements = 0;
  for (ArrayFetch& array : reader->arrays) {
    array.first = elements;
    elements += array.count;
  }
  const auto derived = static_cast<size_t>(std::count_if(
      reader->rows.begin(), reader->rows.end(), [](const Laid& laid) { return IsDerived(*laid.row); }));
  reader->elements.assign(static_cast<size_t>(elements), 0);
  reader->numbers.assign(reader->elements.size() + reader->floatRefs.size() + reader->intRefs.size() +
                             reader->others.size() + derived,
                         0);
}

template <typename Known>
size_t PlaceAmong(const std::vector<Known>& known, const Known& one) {
  return static_cast<size_t>(std::find(known.begin(), known.end(), one) - known.begin());
}

// Where a source's number lies once the fetches are done.
const double* NumberOf(const Reader& reader, const Source& stated) {
  const Source source = Resolved(stated);
  if (IsShared(reader, source)) return source.ref->shared.answer + source.element;
  const double* number = reader.numbers.data();
  for (const ArrayFetch& array : reader.arrays) {
    if (array.ref == source.ref) return number + array.first + source.element;
  }
  number += reader.elements.size();
  if (source.accessor == Accessor::Float) return number + PlaceAmong(reader.floatRefs, source.ref);
  number += reader.floatRefs.size();
  if (source.accessor == Accessor::Int) return number + PlaceAmong(reader.intRefs, source.ref);
  return number + reader.intRefs.size() + PlaceAmong(reader.others, source);
}

// What a row's number is made of.
const double* InputOf(const Reader& reader, const OffsetRow& row) {
  if (const double* prepared = ActivePrepared(row); prepared != nullptr) return prepared;
  return IsFetched(row) ? NumberOf(reader, ActiveSource(row)) : &nothing;
}

// A number that is not a dataref of the row's own keeps its sign when it is 0, as one that a function makes
// does.
double AddOf(const OffsetRow& row) {
  const bool isOwn = row.source.ref != nullptr && ActiveSource(row) == row.source;
  return !isOwn && row.add == 0 ? -0.0 : row.add;
}

void LayOutItems(Reader* reader) {
  Rows sorted;
  for (Laid& laid : reader->rows) sorted.push_back(&laid);
  // Wide types first, which aligns all of them.
  const auto key = [](const Laid* laid) {
    return std::tuple(-static_cast<int>(StoredWidth(*laid->row)), laid->row->type, laid->row->offset);
  };
  std::sort(sorted.begin(), sorted.end(), [&](const Laid* a, const Laid* b) { return key(a) < key(b); });
  reader->items.clear();
  reader->segments.clear();
  size_t from = 0;
  for (Laid* laid : sorted) {
    const OffsetRow& row = *laid->row;
    laid->item = reader->items.size();
    laid->from = from;
    reader->items.push_back({row.factor * UnitFactor(row), AddOf(row), InputOf(*reader, row)});
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

void LayOutDerivations(Reader* reader) {
  reader->derivations.clear();
  const double* number = reader->numbers.data() + reader->elements.size() + reader->floatRefs.size() +
                         reader->intRefs.size() + reader->others.size();
  for (const Laid& laid : reader->rows) {
    const OffsetRow& row = *laid.row;
    if (!IsDerived(row)) continue;
    reader->derivations.push_back({ShownSwitch(row), ActiveRead(row), ActiveConvert(row), InputOf(*reader, row),
                                   &row, static_cast<uint32_t>(laid.group), 1U << laid.place});
    // A row's function has the last word: times 1 plus -0 leaves every number as it is, -0 too.
    reader->items[laid.item] = {1, -0.0, number++};
  }
}

// The first cycle's answers count for all cycles of its frame: they are found where it puts them.
void ShareAnswers(const Reader& reader) {
  const double* answer = reader.numbers.data();
  for (const ArrayFetch& array : reader.arrays) {
    array.ref->shared = {Accessor::FloatArray, array.count, answer + array.first};
  }
  answer += reader.elements.size();
  for (DataRef* ref : reader.floatRefs) ref->shared = {Accessor::Float, 1, answer++};
  for (DataRef* ref : reader.intRefs) ref->shared = {Accessor::Int, 1, answer++};
  for (const Source& source : reader.others) {
    if (source.element == 0) source.ref->shared = {source.accessor, 1, answer};
    answer++;
  }
}

}  // namespace

void BuildReaders(RowOrder order) {
  refreshCounters = {};
  for (size_t cycle = 0; cycle < cycleCount; cycle++) {
    readers[cycle] = {};
    TakeRows(static_cast<Cycle>(cycle), &readers[cycle]);
    if (order != nullptr) order(&readers[cycle].rows);
  }
  BindReaders();
}

void BindReaders() {
  ++readerBindings;
  ForgetReads();
  for (DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) ref->shared = {};
  LayOutFetches(&readers[firstCycle]);
  ShareAnswers(readers[firstCycle]);
  for (Reader& reader : readers) {
    LayOutPrepares(&reader);
    if (&reader != &readers[firstCycle]) LayOutFetches(&reader);
    LayOutItems(&reader);
    LayOutPlaces(&reader);
    LayOutDerivations(&reader);
  }
}
