#include "custom/custom_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "custom/expression.h"

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view separators = " \t\n\r";
constexpr std::string_view whiteSpace = " \t\n\r\v\f";

struct TypeWord {
  std::string_view word;
  CustomType type;
  uint8_t size;
};
constexpr TypeWord typeWords[] = {
    {.word = "UINT8", .type = CustomType::U8, .size = 1},
    {.word = "SINT8", .type = CustomType::S8, .size = 1},
    {.word = "UINT16", .type = CustomType::U16, .size = 2},
    {.word = "SINT16", .type = CustomType::S16, .size = 2},
    {.word = "UINT32", .type = CustomType::U32, .size = 4},
    {.word = "SINT32", .type = CustomType::S32, .size = 4},
    {.word = "UINT64", .type = CustomType::U64, .size = 8},
    {.word = "SINT64", .type = CustomType::S64, .size = 8},
    {.word = "FLOAT32", .type = CustomType::F32, .size = 4},
    {.word = "FLOAT64", .type = CustomType::F64, .size = 8},
};

struct KindWord {
  std::string_view word;
  Accessor kind;
};
constexpr KindWord kindWords[] = {
    {.word = "int", .kind = Accessor::Int},           {.word = "float", .kind = Accessor::Float},
    {.word = "double", .kind = Accessor::Double},     {.word = "floatarray", .kind = Accessor::FloatArray},
    {.word = "intarray", .kind = Accessor::IntArray}, {.word = "data", .kind = Accessor::Bytes},
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Takes a physical line, without its line end. Returns 1, 0 at the end, -1 when it is too long.
int TakePhysicalLine(CustomFileReader* reader, std::string_view* line) {
  if (reader->rest.empty()) return 0;
  const size_t end = reader->rest.find('\n');
  *line = reader->rest.substr(0, end);
  reader->rest.remove_prefix(end == std::string_view::npos ? reader->rest.size() : end + 1);
  if (reader->line++ == 0 && line->starts_with(byteOrderMark)) line->remove_prefix(byteOrderMark.size());
  if (line->ends_with('\r')) line->remove_suffix(1);
  if (line->size() > maxCustomLineLength) return -1;
  *line = line->substr(0, line->find('\0'));  // a text ends at its first NUL
  return 1;
}

size_t LengthWithoutEnd(std::string_view text) { return text.find_last_not_of(whiteSpace) + 1; }
std::string_view WithoutEnd(std::string_view text) { return text.substr(0, LengthWithoutEnd(text)); }
void StripEnd(std::string* text) { text->resize(LengthWithoutEnd(*text)); }

CustomLineKind KindOf(std::string_view word) {
  if (word.starts_with("Offset")) return CustomLineKind::Offset;
  if (word.starts_with("Dataref")) return CustomLineKind::Dataref;
  if (word.starts_with("Command")) return CustomLineKind::Command;
  return CustomLineKind::Other;
}

CustomToken Place(std::string_view token, const CustomLine& line) {
  const auto start = static_cast<size_t>(token.data() - line.text.data());
  const auto behind = std::upper_bound(line.pieces.begin(), line.pieces.end(), start,
                                       [](size_t at, const CustomPiece& piece) { return at < piece.start; });
  const CustomPiece& piece = *(behind - 1);  // the first one begins at 0
  return {token, piece.line, static_cast<uint32_t>(start - piece.start + 1)};
}

// Notes that the text goes on with a new physical line; those that have left nothing in the text are forgotten.
void AddPiece(CustomLine* line, uint32_t number) {
  const size_t start = line->text.size();
  while (!line->pieces.empty() && line->pieces.back().start >= start) line->pieces.pop_back();
  line->pieces.push_back({start, number});
}

void SplitTokens(CustomLine* line) {
  std::string_view rest = line->text;
  for (;;) {
    const size_t start = rest.find_first_not_of(separators);
    if (start == std::string_view::npos) return;
    rest.remove_prefix(start);
    if (rest.front() == '#') {
      line->comment = true;
      return;
    }
    const std::string_view word = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(word.size());
    const CustomToken token = Place(word, *line);
    if (word.size() > maxCustomTokenLength) {
      if (line->fault == CustomLineFault::None) line->faulty = token;
      line->fault = CustomLineFault::TokenTooLong;
    }
    if (line->tokens.size() == maxCustomTokens) {
      if (line->fault == CustomLineFault::None) line->faulty = token;
      line->fault = CustomLineFault::TooManyTokens;
      return;
    }
    line->tokens.push_back(token);
  }
}

// Texts are kept in one block; the file's own size bounds it, as every token is followed by a separator.
struct TextStore {
  char* at;
};

std::string_view Keep(TextStore* store, std::string_view text) {
  text.copy(store->at, text.size());
  store->at[text.size()] = '\0';
  const std::string_view kept(store->at, text.size());
  store->at += text.size() + 1;
  return kept;
}

std::string_view TokenOf(const CustomLine& line, size_t index) {
  return index < line.tokens.size() ? line.tokens[index].text : std::string_view();
}

void AddOffset(const CustomLine& line, TextStore* store, CustomTables* tables) {
  CustomOffsetEntry entry = {};
  ParseCustomOffset(TokenOf(line, 1), &entry.offset);
  FindCustomType(TokenOf(line, 2), &entry.type, &entry.size);
  ParseCustomInteger(TokenOf(line, 3), &entry.number);
  FindCustomAccess(TokenOf(line, 4), &entry.access);
  entry.tokenCount = static_cast<int32_t>(line.tokens.size()) - 5;
  entry.firstToken = static_cast<uint32_t>(tables->tokens.size());
  for (size_t i = 5; i < line.tokens.size(); ++i) tables->tokens.push_back(Keep(store, line.tokens[i].text));
  tables->offsets.push_back(entry);
}

void AddDataref(const CustomLine& line, TextStore* store, CustomTables* tables) {
  CustomDatarefEntry entry = {};
  entry.alias = Keep(store, TokenOf(line, 1));
  const std::string_view path = TokenOf(line, 2);
  const size_t bracket = path.find('[');
  if (bracket != std::string_view::npos) ParseCustomInteger(path.substr(bracket + 1), &entry.index);
  entry.path = Keep(store, path.substr(0, bracket)).data();
  FindCustomKind(TokenOf(line, 3), &entry.kind);
  tables->datarefs.push_back(entry);
}

void AddCommand(const CustomLine& line, TextStore* store, CustomTables* tables) {
  CustomCommandEntry entry = {};
  ParseCustomOffset(TokenOf(line, 1), &entry.offset);
  FindCustomType(TokenOf(line, 2), &entry.type, &entry.size);
  const size_t count = line.tokens.size();
  entry.actionCount = static_cast<int32_t>(count) - 5;
  entry.firstGroup = static_cast<uint32_t>(tables->actions.size());
  if (count >= 4) {
    entry.groupCount = static_cast<uint32_t>((count - 4) / 3 + 1);
    for (size_t i = 0; i < entry.groupCount; ++i) {
      CommandAction action = {};
      ParseCustomInteger(TokenOf(line, 3 + 3 * i), &action.mode);
      ParseCustomNumber(TokenOf(line, 4 + 3 * i), &action.value);
      action.name = Keep(store, TokenOf(line, 5 + 3 * i)).data();
      tables->actions.push_back(action);
    }
  }
  tables->commands.push_back(entry);
}

void Sort(CustomTables* tables) {
  std::stable_sort(tables->offsets.begin(), tables->offsets.end(), [](const auto& a, const auto& b) {
    return static_cast<int16_t>(a.offset) < static_cast<int16_t>(b.offset);
  });
  std::stable_sort(tables->datarefs.begin(), tables->datarefs.end(),
                   [](const auto& a, const auto& b) { return a.alias < b.alias; });
  std::stable_sort(tables->commands.begin(), tables->commands.end(),
                   [](const auto& a, const auto& b) { return a.offset < b.offset; });
  for (const CustomOffsetEntry& entry : tables->offsets) {
    tables->offsetKeys.push_back(static_cast<int16_t>(entry.offset));
  }
  for (const CustomCommandEntry& entry : tables->commands) tables->commandKeys.push_back(entry.offset);
}

}  // namespace

int NextCustomLine(CustomFileReader* reader, CustomLine* line) {
  for (;;) {
    line->text.clear();
    line->tokens.clear();
    line->pieces.clear();
    line->kind = CustomLineKind::Other;
    line->fault = CustomLineFault::None;
    line->faulty = {};
    line->comment = line->cutShort = false;
    std::string_view physical;
    const int first = TakePhysicalLine(reader, &physical);
    line->firstLine = line->lastLine = reader->line;
    if (first <= 0) return first;
    physical = WithoutEnd(physical);
    if (physical.empty()) continue;
    line->text = physical;
    line->pieces.push_back({0, reader->line});
    while (line->text.ends_with('_')) {
      line->text.pop_back();
      const int next = TakePhysicalLine(reader, &physical);
      line->lastLine = reader->line;
      if (next < 0) return -1;
      if (next == 0) {
        line->cutShort = true;
        StripEnd(&line->text);
        continue;
      }
      AddPiece(line, reader->line);
      line->text += physical;
      StripEnd(&line->text);
      if (line->text.size() > maxCustomLineLength) return -1;
    }
    SplitTokens(line);
    if (line->tokens.empty() && !line->comment) continue;
    line->kind = line->tokens.empty() ? CustomLineKind::Other : KindOf(line->tokens.front().text);
    return 1;
  }
}

bool FindCustomType(std::string_view word, CustomType* type, uint8_t* size) {
  *type = CustomType::U8;
  *size = 0;
  for (const TypeWord& row : typeWords) {
    if (word != row.word) continue;
    *type = row.type;
    *size = row.size;
    return true;
  }
  return false;
}

bool FindCustomKind(std::string_view word, Accessor* kind) {
  *kind = Accessor::None;
  for (const KindWord& row : kindWords) {
    if (word == row.word) *kind = row.kind;
  }
  return *kind != Accessor::None;
}

bool FindCustomAccess(std::string_view word, CustomAccess* access) {
  *access = word == "w" ? CustomAccess::Write : word == "rw" ? CustomAccess::ReadWrite : CustomAccess::Read;
  return word == "r" || *access != CustomAccess::Read;
}

size_t ParseCustomOffset(std::string_view text, uint16_t* value) {
  *value = 0;
  size_t at = text.starts_with("0x") || text.starts_with("0X") ? 2 : 0;
  const size_t digits = at;
  for (; at < text.size() && HexDigit(text[at]) >= 0; ++at) {
    *value = static_cast<uint16_t>(*value << 4 | HexDigit(text[at]));
  }
  return at == digits && digits == 2 ? 1 : at;  // of "0x" alone the 0 is a number
}

size_t ParseCustomInteger(std::string_view text, int32_t* value) {
  *value = 0;
  size_t at = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  const bool negative = at == 1 && text[0] == '-';
  if (at == text.size() || !IsDigit(text[at])) return 0;
  constexpr int64_t high = std::numeric_limits<int32_t>::max();
  int64_t sum = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at)
    sum = std::min<int64_t>(sum * 10 + text[at] - '0', high + 1);
  *value = static_cast<int32_t>(negative ? -sum : std::min(sum, high));
  return at;
}

size_t ParseCustomNumber(std::string_view text, double* value) {
  *value = 0;
  size_t at = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  const bool negative = at == 1 && text[0] == '-';
  const size_t digit = at + (at < text.size() && text[at] == '.' ? 1 : 0);
  if (digit >= text.size() || !IsDigit(text[digit])) return 0;  // no words: neither nan nor inf
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + at, end, *value);
  const std::string_view read(text.data() + at, static_cast<size_t>(stop - text.data()) - at);
  if (error == std::errc::result_out_of_range) {
    // Tokens are too short to leave the range without a large exponent: its sign says which way.
    const bool tiny = read.find("e-") != std::string_view::npos || read.find("E-") != std::string_view::npos;
    *value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
  }
  if (negative) *value = -*value;
  return at + read.size();
}

bool ParseCustomFile(std::string_view text, CustomTables* tables, uint32_t* tooLong) {
  *tables = {};
  // Three texts of a line may be missing and cost their NUL all the same.
  const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  tables->text = std::make_unique_for_overwrite<char[]>(text.size() + 3 * lines);
  TextStore store = {tables->text.get()};
  CustomFileReader reader = {text, 0};
  CustomLine line;
  int result = 0;
  while ((result = NextCustomLine(&reader, &line)) > 0) {
    if (line.fault != CustomLineFault::None) continue;
    switch (line.kind) {
      case CustomLineKind::Offset:
        AddOffset(line, &store, tables);
        break;
      case CustomLineKind::Dataref:
        AddDataref(line, &store, tables);
        break;
      case CustomLineKind::Command:
        AddCommand(line, &store, tables);
        break;
      case CustomLineKind::Other:
        break;
    }
  }
  if (result < 0) {
    *tables = {};
    if (tooLong != nullptr) *tooLong = line.lastLine;
    return false;
  }
  Sort(tables);
  CompileCustomTables(tables);
  return true;
}

const CustomDatarefEntry* FindCustomAlias(const std::vector<CustomDatarefEntry>& datarefs,
                                          std::string_view alias) {
  const auto found =
      std::lower_bound(datarefs.begin(), datarefs.end(), alias,
                       [](const auto& entry, std::string_view key) { return entry.alias < key; });
  return found != datarefs.end() && found->alias == alias ? &*found : nullptr;
}
