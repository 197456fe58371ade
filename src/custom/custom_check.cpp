#include "custom/custom_check.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <unordered_set>

#include "custom/custom_parser.h"
#include "custom/expression.h"

namespace {

// The line that defines an offset, for each byte of it.
struct Owner {
  uint32_t offset, line;  // line 0: nobody
};
constexpr size_t ownerCount = 0x10000 + 8;  // the last offset may be eight bytes wide

struct Check {
  CustomReport report;
  size_t mostKept;
  std::vector<CustomDatarefEntry> datarefs;          // sorted by alias
  std::map<std::string, bool, std::less<>> aliases;  // of the file; true when used
  std::map<uint32_t, uint32_t> commandLines;         // offset and line
  std::vector<Owner> owners;
  std::unordered_set<uint32_t> faultyLines;
  std::unordered_set<std::string_view> missing;  // names that the simulator did not find
  const CustomCheckNeeds* needs;
};

std::string WholeText(uint64_t value) { return std::to_string(value); }
std::string WholeText(int64_t value) { return std::to_string(value); }

std::string HexText(uint32_t offset) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X", offset);
  return text;
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

void Add(Check* check, const CustomToken& at, bool note, std::string text) {
  if (!note) {
    check->report.faults++;
    check->faultyLines.insert(at.line);
  }
  if (check->report.findings.size() >= check->mostKept) return;
  check->report.findings.push_back(
      {.line = at.line, .column = at.column, .note = note, .text = std::move(text)});
}

void Tell(Check* check, const CustomToken& at, std::string text) { Add(check, at, false, std::move(text)); }
void Note(Check* check, const CustomToken& at, std::string text) { Add(check, at, true, std::move(text)); }

void CheckFound(Check* check, const CustomToken& token, std::string_view name, const char* what) {
  if (!check->missing.contains(name)) return;
  Tell(check, token,
       std::string("the simulator did not find the ") + what + " " + Quoted(name) +
           ": correct the name, or ignore this if it belongs to another aircraft");
}

// --- Offsets -------------------------------------------------------------------------------------------

void CheckOffsetToken(Check* check, const CustomToken& token) {
  uint16_t offset = 0;
  const size_t read = ParseCustomOffset(token.text, &offset);
  std::string_view digits = token.text.substr(0, read);
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
  if (read != token.text.size()) {
    Tell(check, token,
         Quoted(token.text) + " is no hexadecimal offset and is read as " + HexText(offset) +
             ": write four digits such as 66C0");
  } else if (digits.find_first_not_of('0') != std::string_view::npos &&
             digits.size() - digits.find_first_not_of('0') > 4) {
    Tell(check, token, Quoted(token.text) + " is cut to " + HexText(offset) + ": offsets end at FFFF");
  }
}

// Returns the size, 0 for an unknown type.
uint32_t CheckType(Check* check, const CustomToken& token) {
  CustomType type = CustomType::U8;
  uint8_t size = 0;
  if (FindCustomType(token.text, &type, &size)) return size;
  Tell(check, token,
       "unknown type " + Quoted(token.text) +
           ", the line has no effect: write UINT8, SINT8, UINT16, SINT16, UINT32, SINT32, UINT64, "
           "SINT64, FLOAT32 or FLOAT64");
  return 0;
}

// Of several owners of a byte the first one is told.
void CheckOwnRanges(Check* check, const CustomToken& token, uint32_t offset, uint32_t size) {
  uint32_t told = 0;  // a line
  for (uint32_t at = offset; at < offset + size; ++at) {
    Owner& other = check->owners[at];
    if (other.line == 0) {
      other = {offset, token.line};
      continue;
    }
    if (other.line == told) continue;
    told = other.line;
    Tell(check, token,
         (other.offset == offset ? "offset " : "the bytes of offset ") + HexText(offset) +
             (other.offset == offset ? " is defined in line " : " belong also to line ") +
             WholeText(uint64_t{other.line}) + " already: choose another one");
  }
}

void CheckFixedOffsets(Check* check, const CustomToken& token, uint32_t offset, uint32_t size) {
  if (!check->needs->fixedFault) return;
  const std::string fault = check->needs->fixedFault(offset, size);
  if (!fault.empty()) Tell(check, token, fault);
}

// The two request bytes that have the file read again.
void CheckRequestBytes(Check* check, const CustomToken& token, uint32_t offset, uint32_t size) {
  for (const uint32_t request : {0x6F0Du, 0x6F0Eu}) {
    if (request >= offset && request < offset + size) {
      Tell(check, token,
           "hides " + HexText(request) + ", which has this file read again: choose another offset");
      return;
    }
  }
}

// --- Numbers and expressions -----------------------------------------------------------------------------

// Returns the number as it is read.
double CheckNumber(Check* check, const CustomToken& token) {
  double value = 0;
  const size_t read = ParseCustomNumber(token.text, &value);
  if (read == token.text.size()) return value;
  if (read == 0) {
    Tell(check, token,
         Quoted(token.text) +
             " is neither a number nor an operator and counts as 0: for a dataref write $ and its alias");
  } else {
    Tell(check, token,
         "of " + Quoted(token.text) + " only " + Quoted(token.text.substr(0, read)) +
             " is read: write numbers like 0.5, 1e6 or -3");
  }
  return value;
}

int32_t CheckInteger(Check* check, const CustomToken& token, const char* what) {
  int32_t value = 0;
  if (ParseCustomInteger(token.text, &value) != token.text.size()) {
    Tell(check, token,
         std::string(what) + " " + Quoted(token.text) + " is no whole number and is read as " +
             WholeText(int64_t{value}));
  }
  return value;
}

struct Tokens {
  const CustomLine* line;
  std::vector<std::string_view> texts;  // of the expressions
  const CustomToken& At(int32_t index) const {
    const size_t at = 5 + static_cast<size_t>(index);
    return at < line->tokens.size() ? line->tokens[at] : line->tokens.back();
  }
};

void CheckExpression(Check* check, const Tokens& tokens, int32_t first, const CustomToken& place) {
  const auto count = static_cast<int32_t>(tokens.texts.size());
  std::vector<Operation> operations;
  const CompileOutcome outcome =
      CompileExpression(tokens.texts.data(), first, count, check->datarefs, &operations);
  const CustomToken& at = outcome.token < count ? tokens.At(outcome.token) : place;
  if (outcome.failure == resultNoAlias) {
    Tell(check, at,
         "the expression always gives 111: no Dataref line defines the alias " + Quoted(at.text.substr(1)));
  } else if (outcome.failure == resultTooFewValues) {
    Tell(check, at,
         "the expression always gives 222: " + Quoted(at.text) + " finds only " +
             WholeText(int64_t{outcome.depth}) + " value(s) before it");
  } else if (outcome.failure == resultOverflow) {
    Tell(check, at, "the expression always gives 99: it keeps more than 256 values");
  } else if (outcome.failure == resultNoValue && outcome.token == first) {
    Tell(check, place,
         "the expression always gives 88: it is empty, write at least one value such as $alias or @");
  } else if (outcome.failure == resultNoValue) {
    Tell(check, place,
         "the expression always gives 88: it leaves " + WholeText(int64_t{outcome.depth}) +
             " values instead of one, an operator is missing");
  }
}

void CheckExpressions(Check* check, const CustomLine& line, CustomAccess access) {
  Tokens tokens = {&line, {}};
  for (size_t i = 5; i < line.tokens.size(); ++i) tokens.texts.push_back(line.tokens[i].text);
  const auto count = static_cast<int32_t>(tokens.texts.size());
  const bool reads = access != CustomAccess::Write;
  if (reads) CheckExpression(check, tokens, 0, line.tokens.size() > 5 ? tokens.At(0) : line.tokens.front());
  int32_t targets = 0;
  bool used = reads;  // whether the tokens at hand are evaluated
  for (int32_t i = 0; i < count; ++i) {
    const CustomToken& token = tokens.At(i);
    const bool alias = token.text.size() >= 2 && token.text.front() == '$';
    if (IsWriteTarget(token.text) || alias) {
      const auto found = check->aliases.find(token.text.substr(1));
      if (found != check->aliases.end()) found->second = true;
      if (alias) continue;
      if (found == check->aliases.end()) {
        Tell(check, token,
             "nothing is written: no Dataref line defines the alias " + Quoted(token.text.substr(1)));
      }
      used = access != CustomAccess::Read;
      ++targets;
      if (targets == 2) Note(check, token, "of several targets only the last one is written");
      if (used) {
        CheckExpression(check, tokens, i + 1, token);
      } else {
        Note(check, token, "with access r this target is never written: write rw to let clients write it");
      }
    } else if (used && FindOperator(token.text) == Op::Number && token.text != "PI") {
      CheckNumber(check, token);
    }
  }
  if (access != CustomAccess::Read && targets == 0) {
    Tell(check, line.tokens[4],
         Quoted(line.tokens[4].text) +
             " lets clients write, but no target says what: add >alias and an expression such as @");
  }
}

// --- Lines -----------------------------------------------------------------------------------------------

void CheckOffsetLine(Check* check, const CustomLine& line) {
  if (line.tokens.size() < 6) {
    Tell(check, line.tokens.front(),
         "the line is incomplete: Offset HEXOFFSET TYPE GROUP r|w|rw EXPRESSION..., " +
             WholeText(uint64_t{line.tokens.size()}) + " word(s) found");
    if (line.tokens.size() < 5) return;
  }
  uint16_t offset = 0;
  ParseCustomOffset(line.tokens[1].text, &offset);
  CheckOffsetToken(check, line.tokens[1]);
  const uint32_t size = CheckType(check, line.tokens[2]);
  const int32_t group = CheckInteger(check, line.tokens[3], "the refresh group");
  CustomAccess access = CustomAccess::Read;
  if (!FindCustomAccess(line.tokens[4].text, &access)) {
    Tell(check, line.tokens[4],
         "unknown access " + Quoted(line.tokens[4].text) + " counts as r: write r, w or rw in small letters");
  }
  const bool refreshed = group >= 1 && group <= 8;
  if (!refreshed && access != CustomAccess::Write) {
    Tell(check, line.tokens[3], "the offset is never refreshed: the refresh group is 1 (every frame) to 8");
  } else if (refreshed && access == CustomAccess::Write) {
    Note(check, line.tokens[3], "a write-only offset with a refresh group shows 77: write 0 to leave it alone");
  }
  if (size > 0) {
    CheckOwnRanges(check, line.tokens[1], offset, size);
    CheckFixedOffsets(check, line.tokens[1], offset, size);
    CheckRequestBytes(check, line.tokens[1], offset, size);
  }
  if (line.tokens.size() > 5) CheckExpressions(check, line, access);
}

void CheckDatarefLine(Check* check, const CustomLine& line) {
  if (line.tokens.size() != 4) {
    const CustomToken& at = line.tokens.size() > 4 ? line.tokens[4] : line.tokens.front();
    Tell(check, at,
         "a Dataref line has four words: Dataref ALIAS PATH KIND, " + WholeText(uint64_t{line.tokens.size()}) +
             " found");
    if (line.tokens.size() < 4) return;
  }
  const std::string_view path = line.tokens[2].text;
  const size_t bracket = path.find('[');
  CheckFound(check, line.tokens[2], path.substr(0, bracket), "dataref");
  Accessor kind = Accessor::None;
  if (!FindCustomKind(line.tokens[3].text, &kind)) {
    Tell(check, line.tokens[3],
         "unknown kind " + Quoted(line.tokens[3].text) +
             ", the dataref reads 0: write int, float, double, floatarray, intarray or data");
  }
  const bool array = kind == Accessor::FloatArray || kind == Accessor::IntArray || kind == Accessor::Bytes;
  if (bracket == std::string_view::npos) return;
  int32_t index = 0;
  const std::string_view inside = path.substr(bracket + 1);
  const size_t read = ParseCustomInteger(inside, &index);
  if (read == 0 || inside.substr(read) != "]" || index < 0) {
    Tell(check, line.tokens[2],
         "the element behind \"[\" is read as " + WholeText(int64_t{index}) + ": write it like " +
             std::string(path.substr(0, bracket)) + "[3]");
  } else if (kind != Accessor::None && !array) {
    Tell(check, line.tokens[3],
         "kind " + Quoted(line.tokens[3].text) + " ignores the element: write " +
             (kind == Accessor::Int ? "intarray" : "floatarray"));
  }
}

// Whether a client can write bytes of this type that mean the value.
bool CanHold(CustomType type, double value) {
  constexpr double bits[] = {8, 7, 16, 15, 32, 31, 64, 63};
  if (type == CustomType::F64) return true;
  if (type == CustomType::F32) return static_cast<double>(static_cast<float>(value)) == value;
  const auto index = static_cast<size_t>(type);
  const double low = index % 2 == 1 ? -std::exp2(bits[index]) : 0;
  return value == std::trunc(value) && value >= low && value < std::exp2(bits[index]);
}

void CheckGroup(Check* check, const CustomLine& line, size_t first, const CustomToken& typeToken) {
  const CustomToken& modeToken = line.tokens[first];
  const int32_t mode = CheckInteger(check, modeToken, "the mode");
  if (mode != 0 && mode != 1) {
    Tell(check, modeToken,
         "mode " + Quoted(modeToken.text) +
             " begins the command and never ends it: write 1 (once) or 0 (held down)");
  }
  if (first + 1 >= line.tokens.size()) return;
  const CustomToken& valueToken = line.tokens[first + 1];
  CustomType type = CustomType::U8;
  uint8_t size = 0;
  const double value = CheckNumber(check, valueToken);
  if (FindCustomType(typeToken.text, &type, &size) && !CanHold(type, value)) {
    Tell(check, valueToken,
         "a " + std::string(typeToken.text) + " never has the value " + std::string(valueToken.text) +
             ": the command never runs");
  }
  if (first + 2 < line.tokens.size())
    CheckFound(check, line.tokens[first + 2], line.tokens[first + 2].text, "command");
}

void CheckCommandLine(Check* check, const CustomLine& line) {
  const size_t count = line.tokens.size();
  if (count < 6 || count % 3 != 0) {
    Tell(check, count > 3 ? line.tokens.back() : line.tokens.front(),
         "a Command line is Command HEXOFFSET TYPE and then groups of three words, MODE VALUE COMMAND: " +
             WholeText(uint64_t{count}) + " words found");
    if (count < 3) return;
  }
  uint16_t offset = 0;
  ParseCustomOffset(line.tokens[1].text, &offset);
  CheckOffsetToken(check, line.tokens[1]);
  const uint32_t size = CheckType(check, line.tokens[2]);
  const auto [known, fresh] = check->commandLines.emplace(offset, line.tokens[1].line);
  if (!fresh) {
    Tell(check, line.tokens[1],
         "commands of offset " + HexText(offset) + " stand in line " + WholeText(uint64_t{known->second}) +
             " already: put all groups into one line, continued with _");
  }
  CheckRequestBytes(check, line.tokens[1], offset, size);
  for (size_t first = 3; first < count; first += 3) CheckGroup(check, line, first, line.tokens[2]);
}

void CheckKeyword(Check* check, const CustomLine& line) {
  const CustomToken& word = line.tokens.front();
  if (line.kind == CustomLineKind::Other) {
    Tell(check, word,
         "unknown word " + Quoted(word.text) +
             ", the line is ignored: lines begin with Offset, Dataref, Command or #");
    return;
  }
  const size_t length = line.kind == CustomLineKind::Offset ? 6 : 7;
  if (word.text.size() > length) {
    Note(check, word, Quoted(word.text) + " counts as " + Quoted(word.text.substr(0, length)));
  }
}

// A comment takes what is joined to it.
void CheckContinuation(Check* check, const CustomLine& line) {
  const CustomToken at = {{}, line.firstLine, 1};
  if (line.comment && line.lastLine > line.firstLine) {
    Tell(check, at,
         "a line with a comment ends in \"_\": the next line belongs to the comment, end it differently");
  } else if (line.cutShort) {
    Tell(check, at, "the file ends where \"_\" announces another line: remove the \"_\"");
  }
}

void CheckLine(Check* check, const CustomLine& line) {
  CheckContinuation(check, line);
  if (line.tokens.empty()) return;
  CheckKeyword(check, line);
  if (line.kind == CustomLineKind::Other) return;
  if (line.fault != CustomLineFault::None) {
    Tell(check, line.faulty,
         line.fault == CustomLineFault::TooManyTokens
             ? "the line has more than 256 words and is left out: split it"
             : "the word has more than 255 characters, the line is left out: shorten it");
    return;
  }
  switch (line.kind) {
    case CustomLineKind::Offset:
      CheckOffsetLine(check, line);
      break;
    case CustomLineKind::Dataref:
      CheckDatarefLine(check, line);
      break;
    default:
      CheckCommandLine(check, line);
      break;
  }
}

// First pass: every alias, wherever it stands.
void CollectAliases(Check* check, std::string_view text) {
  CustomFileReader reader = {text, 0};
  CustomLine line;
  while (NextCustomLine(&reader, &line) > 0) {
    if (line.kind != CustomLineKind::Dataref || line.fault != CustomLineFault::None || line.tokens.size() < 2) {
      continue;
    }
    const auto [place, fresh] = check->aliases.emplace(line.tokens[1].text, false);
    if (!fresh) Tell(check, line.tokens[1], "the alias " + Quoted(line.tokens[1].text) + " is defined twice");
  }
  for (const auto& [alias, used] : check->aliases) {
    check->datarefs.push_back(
        {.alias = alias, .path = "", .handle = nullptr, .index = 0, .kind = Accessor::None});
  }
}

void TellUnused(Check* check, std::string_view text) {
  CustomFileReader reader = {text, 0};
  CustomLine line;
  while (NextCustomLine(&reader, &line) > 0) {
    if (line.kind != CustomLineKind::Dataref || line.tokens.size() < 2) continue;
    const auto found = check->aliases.find(line.tokens[1].text);
    if (found == check->aliases.end() || found->second) continue;
    Note(check, line.tokens[1], "no expression uses the alias " + Quoted(line.tokens[1].text));
  }
}

}  // namespace

CustomReport CheckCustomFile(std::string_view text, const CustomCheckNeeds& needs, size_t mostFindings) {
  Check check = {};
  check.needs = &needs;
  check.mostKept = mostFindings;
  check.owners.resize(ownerCount);
  check.missing.insert(needs.missing.begin(), needs.missing.end());
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
    Tell(&check, {{}, 1, 1},
         "the file is stored as UTF-16 and nothing of it is understood: save it as ANSI or UTF-8");
    check.report.faultyLines = 1;
    return check.report;
  }
  CollectAliases(&check, text);
  CustomFileReader reader = {text, 0};
  CustomLine line;
  int result = 0;
  while ((result = NextCustomLine(&reader, &line)) > 0) CheckLine(&check, line);
  if (result < 0) {
    Tell(&check, {{}, line.firstLine, 1},
         "the line has more than 4095 characters, continued lines included: the whole file is refused, split "
         "it");
  } else {
    TellUnused(&check, text);
  }
  std::stable_sort(check.report.findings.begin(), check.report.findings.end(),
                   [](const CustomFinding& a, const CustomFinding& b) {
                     return a.line != b.line ? a.line < b.line : a.column < b.column;
                   });
  check.report.faultyLines = check.faultyLines.size();
  return std::move(check.report);
}
