#include "mapping.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <vector>

#include "custom/custom_parser.h"
#include "numbers.h"

namespace ctl {

namespace {

constexpr uint32_t firstFree = 0x66C0, lastFree = 0x66FF;  // for people's own
constexpr uint32_t lastOffset = 0xFFFF;
constexpr size_t mostElementDigits = 6;

// How each kind is stored.
struct KindLine {
  const char* kind;
  const char* word;  // of the file
  ValueType type;
  uint32_t size;
  bool isArray;
};
constexpr KindLine kindLines[] = {
    {"int", "SINT32", ValueType::S32, 4, false},     {"float", "FLOAT32", ValueType::F32, 4, false},
    {"double", "FLOAT64", ValueType::F64, 8, false}, {"floatarray", "FLOAT32", ValueType::F32, 4, true},
    {"intarray", "SINT32", ValueType::S32, 4, true}, {"data", "UINT8", ValueType::U8, 1, true},
};

struct Taken {
  uint32_t offset, size, line;
};

// What the file has already.
struct OwnFile {
  std::map<std::string, std::string, std::less<>> datarefs;  // path and kind by alias
  std::vector<Taken> taken;
  std::map<uint32_t, std::string> shown;  // by offset, the alias that the line shows
  bool isCut = false;                     // its last line was to go on
};

bool Fail(const std::string& text, std::string* error) {
  *error = text;
  return false;
}

OwnFile ReadOwnFile(std::string_view text) {
  OwnFile file;
  CustomFileReader reader = {text, 0};
  CustomLine line;
  while (NextCustomLine(&reader, &line) == 1) {
    const std::vector<CustomToken>& tokens = line.tokens;
    file.isCut = line.cutShort;
    if (line.kind == CustomLineKind::Dataref && tokens.size() >= 2) {
      // A line that lacks words has its alias all the same.
      const bool isWhole = tokens.size() >= 4;
      file.datarefs.emplace(tokens[1].text,
                            isWhole ? std::string(tokens[2].text) + " " + std::string(tokens[3].text) : "");
    }
    if ((line.kind != CustomLineKind::Offset && line.kind != CustomLineKind::Command) || tokens.size() < 3)
      continue;
    uint16_t offset = 0;
    CustomType type = CustomType::U8;
    uint8_t size = 0;
    ParseCustomOffset(tokens[1].text, &offset);
    if (!FindCustomType(tokens[2].text, &type, &size)) continue;
    file.taken.push_back({offset, size, tokens[1].line});
    const bool isPlain = line.kind == CustomLineKind::Offset && tokens.size() >= 6 &&
                         tokens[5].text.starts_with('$') &&
                         (tokens.size() == 6 || tokens[6].text.starts_with('>'));
    if (isPlain) file.shown.emplace(offset, tokens[5].text.substr(1));
  }
  return file;
}

// Why an offset cannot be taken; "" when it can.
std::string Objection(const OwnFile& file, const NameTable& names, uint32_t offset, uint32_t size) {
  const std::string place = HexText(offset, 4);
  if (offset + size > lastOffset + 1) return place + " leaves no room: offsets of your own end at 0xFFFF";
  for (const Taken& other : file.taken) {
    if (offset < other.offset + other.size && other.offset < offset + size) {
      return place + " is taken by line " + WholeText(uint64_t{other.line}) + " of the file";
    }
  }
  for (const OffsetName& row : names.rows) {
    if (offset < row.offset + row.length && row.offset < offset + size) {
      return place + " has a fixed meaning: " + row.meaning;
    }
  }
  for (const OffsetArea& area : names.areas) {
    if (offset <= area.last && area.first < offset + size) {
      return place + " is part of the plug-in's area " + area.name + ", " + HexText(area.first, 4) + " to " +
             HexText(area.last, 4);
    }
  }
  return FirstReadOnly(names, offset, size) != offsetMemorySize ? place + " is read-only" : "";
}

bool CheckDataref(const std::string& dataref, const KindLine& kind, std::string* error) {
  // No control characters either: a terminal would obey them, and a NUL ends the file's line.
  const bool isOneWord = std::none_of(dataref.begin(), dataref.end(),
                                      [](unsigned char byte) { return byte <= ' ' || byte == 0x7F; }) &&
                         !dataref.starts_with('#') && !dataref.ends_with('_') &&
                         dataref.size() <= maxCustomTokenLength;
  if (!isOneWord || dataref.find('/') == std::string::npos) {
    return Fail(Quote(dataref) + " is no dataref: they look like sim/flightmodel/position/psi", error);
  }
  const size_t bracket = dataref.find('[');
  if (bracket == std::string::npos && dataref.find(']') == std::string::npos) return true;
  const std::string element = bracket == std::string::npos ? "" : dataref.substr(bracket + 1);
  const bool isNumber = element.size() >= 2 && element.size() <= mostElementDigits + 1 &&
                        element.back() == ']' && element.find_first_not_of("0123456789") == element.size() - 1;
  if (!isNumber) {
    return Fail(Quote(dataref) + ": an element is a number from 0 in brackets at the end, like [3]", error);
  }
  if (!kind.isArray) {
    return Fail(
        std::string("an element of an array needs the kind floatarray, intarray or data, not ") + kind.kind,
        error);
  }
  return true;
}

bool ParseOwnOffset(const std::string& text, uint32_t* offset, std::string* error) {
  const std::string digits = text.starts_with("0x") || text.starts_with("0X") ? text.substr(2) : text;
  uint32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto parsed = std::from_chars(digits.data(), end, value, 16);
  if (digits.empty() || parsed.ptr != end) {
    return Fail(Quote(text) + " is no hexadecimal offset, like 66C0", error);
  }
  if (parsed.ec != std::errc() || value > lastOffset) {
    return Fail(Quote(text) + " is too high: offsets of your own end at FFFF", error);
  }
  *offset = value;
  return true;
}

// Values of 4 and 8 bytes stand where clients in C can reach them as a record.
bool ChooseOffset(const OwnFile& file, const NameTable& names, Mapping* mapping, std::string* error) {
  for (uint32_t offset = firstFree; offset <= lastFree; offset += mapping->size) {
    mapping->offset = offset;
    if (offset + mapping->size <= lastFree + 1 && Objection(file, names, offset, mapping->size).empty())
      return true;
  }
  return Fail("66C0 to 66FF are full: give an OFFSET that is free", error);
}

}  // namespace

bool PlanMapping(std::string_view text, const NameTable& names, const MapRequest& request, Mapping* mapping,
                 std::string* error) {
  const auto* kind = std::find_if(std::begin(kindLines), std::end(kindLines),
                                  [&request](const KindLine& line) { return request.kind == line.kind; });
  if (kind == std::end(kindLines)) {
    return Fail("no kind " + Quote(request.kind) + ": int, float, double, floatarray, intarray or data", error);
  }
  if (!CheckDataref(request.dataref, *kind, error)) return false;
  *mapping = {.offset = 0, .type = kind->type, .size = kind->size, .exists = false, .alias = "", .lines = ""};
  uint32_t wanted = 0;
  if (!request.offset.empty() && !ParseOwnOffset(request.offset, &wanted, error)) return false;
  const OwnFile file = ReadOwnFile(text);
  const std::string wantedDataref = request.dataref + " " + request.kind;
  for (const auto& [offset, alias] : file.shown) {
    const auto found = file.datarefs.find(alias);
    if (found == file.datarefs.end() || found->second != wantedDataref) continue;
    if (!request.offset.empty() && offset != wanted) continue;
    mapping->offset = offset;
    mapping->exists = true;
    mapping->alias = alias;
    return true;
  }
  if (!request.offset.empty()) {
    mapping->offset = wanted;
    const std::string objection = Objection(file, names, wanted, kind->size);
    if (!objection.empty()) return Fail(objection + ": choose another one, or none to have one chosen", error);
  } else if (!ChooseOffset(file, names, mapping, error)) {
    return false;
  }
  const std::string digits = HexText(mapping->offset, 4).substr(2);
  std::string alias = "map" + digits;
  while (file.datarefs.contains(alias)) alias += "x";
  mapping->alias = alias;
  // A line that ends in "_" would go on in ours: the empty one ends it, and with "__" only a comment does.
  mapping->lines = std::string(text.empty() || text.ends_with('\n') ? "" : "\n") + (file.isCut ? " #" : "") +
                   "\n# added by offsetctl map\n" + "Dataref " + alias + " " + wantedDataref + "\nOffset " +
                   digits + " " + kind->word + " 1 rw $" + alias + " >" + alias + " @\n";
  return true;
}

std::string LoadFault(std::string_view log, std::string_view dataref, std::string_view alias) {
  for (const std::string_view begin : {"Reading TAVRIXOffsets.cfg", "Reload TAVRIXOffsets.cfg"}) {
    const size_t at = log.rfind(begin);
    if (at != std::string_view::npos) log.remove_prefix(at);
  }
  const std::string plain(dataref.substr(0, dataref.find('[')));
  if (log.find("Dataref " + plain + " not found.") != std::string_view::npos) {
    return "the simulator has no dataref " + plain +
           ": check its name, or load the aircraft that it belongs to";
  }
  const std::string misfit = "Dataref " + plain + " of the alias \"" + std::string(alias) + "\" in ";
  const size_t at = log.find(misfit);
  if (at == std::string_view::npos) return "";
  std::string_view rest = log.substr(at + misfit.size());
  rest = rest.substr(0, rest.find_first_of("\r\n"));
  const size_t blank = rest.find(' ');  // behind the file's name
  return plain + (blank == std::string_view::npos ? "" : std::string(rest.substr(blank)));
}

bool TakeOut(const std::string& lines, std::string* text) {
  const size_t at = text->rfind(lines);
  if (at == std::string::npos) return false;
  text->erase(at, lines.size());
  return true;
}

}  // namespace ctl
