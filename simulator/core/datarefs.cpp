// Datarefs: the records, the console's view of them, and the list of what plug-ins wrote.
#include "core/datarefs.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "core/table.h"

namespace sim {
namespace {

std::unordered_map<std::string, std::unique_ptr<DataRef>> byName;  // withdrawn ones included
std::vector<DataRef*> live;                                        // in order of publishing

constexpr size_t kKeptWrites = 100000;
struct Write {
  DataRef* ref;
  int index;  // kWhole, element, or offset into the bytes
  enum : uint8_t { Int, Float, Double, Text } type;
  bool ignored;
  union {
    int asInt;
    float asFloat;
    double asDouble;
  };
  std::string text;
};
std::vector<Write> writes;  // a ring once it is full: `oldest` is the next one to be replaced
size_t oldest = 0;

Write& NextWrite(DataRef* ref, int index, bool ignored) {
  if (writes.size() < kKeptWrites) {
    writes.emplace_back();
    Write& added = writes.back();
    added.ref = ref, added.index = index, added.ignored = ignored;
    return added;
  }
  Write& reused = writes[oldest];
  oldest = (oldest + 1) % kKeptWrites;
  reused.ref = ref, reused.index = index, reused.ignored = ignored;
  return reused;
}

std::string PrintWrite(const Write& write) {
  std::string line = write.ref->name;
  bool text = write.type == Write::Text;
  if (write.index != (text ? 0 : kWhole)) {
    line += '[' + FormatInt(write.index) + ']';
  }
  line += '=';
  switch (write.type) {
    case Write::Int:
      line += FormatInt(write.asInt);
      break;
    case Write::Float:
      line += FormatFloat(write.asFloat);
      break;
    case Write::Double:
      line += FormatDouble(write.asDouble);
      break;
    case Write::Text:
      line += Quote(write.text);
      break;
  }
  return write.ignored ? line + " (ignored)" : line;
}

void Shape(DataRef* ref, Kind kind, int count) {
  size_t size = static_cast<size_t>(count);
  ref->kind = kind;
  ref->count = count;
  ref->ints.assign(kind == Kind::Int || kind == Kind::IntArray ? size : 0, 0);
  ref->floats.assign(kind == Kind::Float || kind == Kind::FloatArray ? size : 0, 0.0f);
  ref->doubles.assign(kind == Kind::Double ? size : 0, 0.0);
  ref->bytes.assign(kind == Kind::Bytes ? size : 0, 0);
}

bool IsScalar(Kind kind) { return kind == Kind::Int || kind == Kind::Float || kind == Kind::Double; }

std::string PrintElement(const DataRef* ref, size_t i) {
  switch (ref->kind) {
    case Kind::Int:
    case Kind::IntArray:
      return FormatInt(ref->ints[i]);
    case Kind::Float:
    case Kind::FloatArray:
      return FormatFloat(ref->floats[i]);
    case Kind::Double:
      return FormatDouble(ref->doubles[i]);
    case Kind::Bytes:
      return FormatInt(ref->bytes[i]);
  }
  return "";
}

// One value, checked against the element's type. With store = false it is only checked.
std::string SetElement(DataRef* ref, size_t i, const std::string& word, bool store) {
  bool wantsInt = ref->kind == Kind::Int || ref->kind == Kind::IntArray || ref->kind == Kind::Bytes;
  if (wantsInt) {
    int64_t value = 0;
    bool byte = ref->kind == Kind::Bytes;
    if (!ParseInt(word, &value)) return "not an integer: " + word;
    if (byte ? value < 0 || value > 255 : value < INT32_MIN || value > INT32_MAX)
      return "out of range: " + word;
    if (store && byte) ref->bytes[i] = static_cast<uint8_t>(value);
    if (store && !byte) ref->ints[i] = static_cast<int>(value);
    return "";
  }
  double value = 0;
  if (!ParseDouble(word, &value)) return "not a number: " + word;
  if (store && ref->kind == Kind::Double) ref->doubles[i] = value;
  if (store && ref->kind != Kind::Double) ref->floats[i] = static_cast<float>(value);
  return "";
}

// Words of the console for the kinds; an array's length follows in brackets.
struct ShapeRow {
  Kind kind = Kind::Int;
  const char* word = "";
  bool array = false;
};
constexpr ShapeRow shapeRows[] = {
    {.kind = Kind::Int, .word = "int"},
    {.kind = Kind::Float, .word = "float"},
    {.kind = Kind::Double, .word = "double"},
    {.kind = Kind::IntArray, .word = "int", .array = true},
    {.kind = Kind::FloatArray, .word = "float", .array = true},
    {.kind = Kind::Bytes, .word = "byte", .array = true},
};
static_assert(IsTableOf<&ShapeRow::kind>(shapeRows, Kind::Bytes));

}  // namespace

void RecordWrite(DataRef* ref, int index, int value, bool ignored) {
  Write& write = NextWrite(ref, index, ignored);
  write.type = Write::Int, write.asInt = value;
}
void RecordWrite(DataRef* ref, int index, float value, bool ignored) {
  Write& write = NextWrite(ref, index, ignored);
  write.type = Write::Float, write.asFloat = value;
}
void RecordWrite(DataRef* ref, int index, double value, bool ignored) {
  Write& write = NextWrite(ref, index, ignored);
  write.type = Write::Double, write.asDouble = value;
}
void RecordText(DataRef* ref, int offset, const void* text, int length, bool ignored) {
  Write& write = NextWrite(ref, offset, ignored);
  write.type = Write::Text;
  write.text.assign(static_cast<const char*>(text), static_cast<size_t>(length));
}

std::string TakeWrites() {
  std::string list;
  for (size_t i = 0; i < writes.size(); ++i) Join(&list, PrintWrite(writes[(oldest + i) % writes.size()]));
  writes.clear();
  oldest = 0;
  return list;
}

void ResetData() {
  writes = {};
  oldest = 0;
  live = {};
  byName.clear();
}

DataRef* Publish(const char* name, Kind kind, int count, bool writable) {
  std::unique_ptr<DataRef>& slot = byName[name];
  if (!slot) {
    slot = std::make_unique<DataRef>();
    slot->name = name;
  }
  DataRef* ref = slot.get();
  if (ref->live) {
    return !ref->provider && ref->kind == kind && ref->count == count ? ref : nullptr;
  }
  Shape(ref, kind, count);
  ref->writable = writable;
  ref->live = true;
  live.push_back(ref);
  return ref;
}

void Withdraw(DataRef* ref) {
  if (!ref || !ref->live) return;
  ref->live = false;
  ref->onSet = nullptr;
  ref->filterInt = nullptr;
  live.erase(std::find(live.begin(), live.end(), ref));
}

DataRef* FindLive(const std::string& name) {
  auto found = byName.find(name);
  return found != byName.end() && found->second->live ? found->second.get() : nullptr;
}

const std::vector<DataRef*>& AllDataRefs() { return live; }

DataRef* FindByText(const std::string& text, int* index) {
  *index = -1;
  if (DataRef* exact = FindLive(text)) return exact;
  size_t open = text.rfind('[');
  if (open == std::string::npos || text.back() != ']') return nullptr;
  int64_t number = 0;
  if (!ParseInt(text.substr(open + 1, text.size() - open - 2), &number) || number < 0 || number > INT32_MAX) {
    return nullptr;
  }
  *index = static_cast<int>(number);
  return FindLive(text.substr(0, open));
}

void AfterSet(DataRef* ref, int first, int touched) {
  if (ref->onSet) ref->onSet(ref, first, touched);
  if (ref->shared) TellShares(ref);
}

std::string PrintDataRef(DataRef* ref, int index) {
  if (ref->provider) {
    DataRef copy;  // as the plug-in answers now
    SnapshotProvider(ref, &copy);
    return PrintDataRef(&copy, index);
  }
  if (index >= ref->count || (index >= 0 && IsScalar(ref->kind) && index > 0)) return "error: no such element";
  if (index >= 0) return "ok " + PrintElement(ref, static_cast<size_t>(index));
  if (ref->kind == Kind::Bytes) return "ok " + Quote(std::string(ref->bytes.begin(), ref->bytes.end()));
  std::string line = "ok";
  for (size_t i = 0; i < static_cast<size_t>(ref->count); ++i) line += ' ' + PrintElement(ref, i);
  return line;
}

std::string SetDataRef(DataRef* ref, int index, const std::vector<std::string>& words,
                       const std::vector<bool>& quoted, size_t first) {
  if (words.size() <= first) return "a value is missing";
  if (ref->provider) {
    DataRef copy;
    SnapshotProvider(ref, &copy);
    std::string why = SetDataRef(&copy, index, words, quoted, first);
    if (why.empty()) StoreProvider(ref, copy);
    return why;
  }
  size_t from = index < 0 ? 0 : static_cast<size_t>(index);
  size_t room = static_cast<size_t>(ref->count);
  if (from >= room && !(from == 0 && room == 0)) return "no such element";
  size_t given = words.size() - first;
  if (quoted[first]) {
    const std::string& text = words[first];
    if (ref->kind != Kind::Bytes) return "this dataref holds no text";
    if (given > 1) return "one text only";
    if (text.size() > room - from)
      return "the text is longer than " + FormatInt(static_cast<int64_t>(room - from)) + " bytes";
    std::fill(ref->bytes.begin() + static_cast<std::ptrdiff_t>(from), ref->bytes.end(), uint8_t{0});
    std::copy(text.begin(), text.end(), ref->bytes.begin() + static_cast<std::ptrdiff_t>(from));
    AfterSet(ref, static_cast<int>(from), static_cast<int>(room - from));
    return "";
  }
  if (index >= 0 && given > 1) return "one value only";
  if (given > room - from) return "more values than elements";
  for (bool store : {false, true}) {  // all or nothing
    for (size_t i = 0; i < given; ++i) {
      std::string why = SetElement(ref, from + i, words[first + i], store);
      if (!why.empty()) return why;
    }
  }
  AfterSet(ref, static_cast<int>(from), static_cast<int>(given));
  return "";
}

bool ParseShape(const std::string& text, Kind* kind, int* count) {
  size_t open = text.find('[');
  std::string type = text.substr(0, open);
  bool array = open != std::string::npos;
  *count = 1;
  if (array) {
    int64_t number = 0;
    if (text.back() != ']' || !ParseInt(text.substr(open + 1, text.size() - open - 2), &number)) return false;
    if (number < 1 || number > 1000000) return false;
    *count = static_cast<int>(number);
  }
  for (const ShapeRow& row : shapeRows) {
    if (type != row.word || array != row.array) continue;
    *kind = row.kind;
    return true;
  }
  return false;
}

void StoreNumber(DataRef* ref, double value) {
  if (ref->kind == Kind::Float) ref->floats[0] = static_cast<float>(value);
  if (ref->kind == Kind::Double) ref->doubles[0] = value;
}

}  // namespace sim
