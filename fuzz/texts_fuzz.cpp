// Fuzz target: short texts, of people and of others. The first letter says what the rest of the input is. What
// people type for the client tool: an item (i), an assignment (a), the words of a command line (o, one a line),
// a number with its unit (u), a number (n), words to search for (s); what a program prints (l). It is refused
// in a sentence, or lies within the memory and reads back from the text by which it is shown. On the way to
// logs, windows and clients: any text (e), a list of allowed clients (c), shared folders (p). What is escaped
// can be read back and steers no terminal.
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "base/log.h"
#include "net/address.h"
#include "net/permissions.h"
#include "offsetctl/command_lines.h"
#include "offsetctl/confirm.h"
#include "offsetctl/encode.h"
#include "offsetctl/item.h"
#include "offsetctl/names.h"
#include "offsetctl/numbers.h"
#include "offsetctl/options.h"
#include "offsetctl/process.h"
#include "offsetctl/show.h"
#include "offsetctl/units.h"
#include "offsets/memory.h"
#include "require.h"

namespace {

using namespace ctl;

void CheckShown(Item item) {
  // Quotes and brackets as JSON has them; nothing in it ends the line.
  const std::string json = ItemJson(item);
  Require(json.starts_with('{') && json.ends_with('}') && json.find('\n') == std::string::npos);
  Require(ItemLine(item).size() > item.shown.size());
  std::vector<uint8_t> before(item.size);
  for (size_t i = 0; i < before.size(); ++i) before[i] = static_cast<uint8_t>(i * 37);
  Require(!ChangeLine(item, before.data(), item.bytes.data()).empty());
  item.bytes = before;
  Require(ItemLine(item).size() > item.shown.size());
}

void CheckPlace(const Item& item) {
  Require(item.size > 0 && item.offset < ctl::offsetMemorySize &&
          item.size <= ctl::offsetMemorySize - item.offset);
  Require(item.bytes.size() == item.size && !TypeText(item.type, item.size).empty());
  Require(item.row == nullptr || (item.row->offset == item.offset && item.row->length == item.size));
}

void CheckItem(std::string_view text) {
  Item item, again;
  std::string error;
  if (!ParseItem(text, KnownOffsets(), &item, &error)) return Require(!error.empty());
  CheckPlace(item);
  Require(ParseItem(item.shown + ":" + TypeText(item.type, item.size), KnownOffsets(), &again, &error));
  Require(again.offset == item.offset && again.type == item.type && again.size == item.size);
  CheckShown(item);
}

bool IsNan(const Item& item) {
  return !IsInteger(item.type) && item.type != ValueType::Hex && item.type != ValueType::Text &&
         std::isnan(StoredNumber(item));
}

void CheckAssignment(std::string_view text) {
  Item item, again;
  std::string error;
  if (!ParseAssignment(text, KnownOffsets(), &item, &error)) return Require(!error.empty());
  CheckPlace(item);
  Require(FirstReadOnly(KnownOffsets(), item.offset, item.size) == ctl::offsetMemorySize);
  CheckShown(item);
  // Shown as it was written, it has been followed.
  Require(Follows(CheckOf(item, KnownOffsets(), std::vector<uint8_t>(item.size).data()), item.bytes.data()));
  // Texts are shown up to their first zero.
  if (item.type == ValueType::Text) {
    const void* end = std::memchr(item.bytes.data(), 0, item.size);
    if (end != nullptr) {
      std::fill(item.bytes.begin() + (static_cast<const uint8_t*>(end) - item.bytes.data()), item.bytes.end(),
                uint8_t{0});
    }
  }
  const std::string typed = item.shown + ":" + TypeText(item.type, item.size) + "=" +
                            (item.type == ValueType::Hex ? "hex:" : "") + StoredText(item);
  Require(ParseAssignment(typed, KnownOffsets(), &again, &error));
  Require(again.bytes == item.bytes || (IsNan(again) && IsNan(item)));
}

void CheckOptions(std::string_view text) {
  std::vector<std::string> words;
  while (!text.empty()) words.emplace_back(Cut(&text, "\n"));
  Options options;
  std::string error;
  if (!ParseOptions(words, &options, &error)) return Require(!error.empty());
  Require(options.command != Command::None && !HelpText(options.command).empty());
  const CommandLine* line = LineOf(options.command);
  Require(line != nullptr);
  if (!options.help) Require(options.items.size() >= line->fewest && options.items.size() <= line->most);
  Require(options.timeout >= 0.01 && options.timeout <= 3600 && options.rate >= 0.01 && options.rate <= 1000);
  Require(options.seconds >= 0 && options.seconds <= 1e6 && options.speed >= 0.01 && options.speed <= 1000);
  Require(options.port <= 65535);
}

void CheckQuantity(std::string_view text) {
  double number = 0, there = 0, back = 0;
  std::string_view unit;
  if (!SplitQuantity(text, &number, &unit)) return;
  Require(!std::isnan(number));
  for (const char* to : {"ft", "kt", "hPa", "deg", "lb", "%", "MHz", "deg C"}) {
    if (!ConvertUnit(number, unit, to, &there)) continue;
    Require(ConvertUnit(there, to, unit, &back));
    const double off = std::fabs(back - number), most = 1e-9 * std::max(1.0, std::fabs(number));
    Require(off <= most + 1e-9 || !std::isfinite(there) || !std::isfinite(back) || std::fabs(there) < 1e-300);
    UnitsLike(unit);
  }
}

void CheckNumber(std::string_view text) {
  WholeNumber whole = {}, wholeAgain = {};
  if (ParseWhole(text, &whole)) {
    Require(ParseWhole((whole.negative ? "-" : "") + WholeText(whole.magnitude), &wholeAgain));
    Require(wholeAgain.negative == whole.negative && wholeAgain.magnitude == whole.magnitude);
    Require(ParseWhole(HexText(whole.magnitude, 4), &wholeAgain) && wholeAgain.magnitude == whole.magnitude);
  }
  uint32_t number = 7;
  if (ParseUnsigned(text, 1000, &number)) {
    Require(number <= 1000 && number == whole.magnitude);
  } else {
    Require(number == 7);
  }
  double real = 0, realAgain = 0;
  if (ParseReal(text, &real)) {
    Require(ParseReal(RealText(real), &realAgain));
    Require(std::isnan(real) ? std::isnan(realAgain) : real == realAgain);
    FixedText(real, 3);
  }
  std::vector<uint8_t> bytes, bytesAgain;
  if (ParseBytes(text, &bytes)) {
    Require(ParseBytes("hex:" + BytesText(bytes.data(), bytes.size()), &bytesAgain) && bytesAgain == bytes);
  }
}

// The same lines, wherever what a program prints is cut into two.
void CheckLines(std::string_view text) {
  std::string all(text);
  const std::vector<std::string> lines = CutLines(&all);
  for (size_t at = 0; at <= text.size(); at += 1 + text.size() / 16) {
    std::string part(text.substr(0, at));
    std::vector<std::string> some = CutLines(&part);
    part += text.substr(at);
    for (const std::string& line : CutLines(&part)) some.push_back(line);
    Require(some == lines && part == all);
  }
}

void CheckSearch(std::string_view text) {
  std::vector<std::string> words;
  for (std::string_view rest = text; !rest.empty();) words.emplace_back(Cut(&rest, " "));
  for (const OffsetName* row : Search(KnownOffsets(), words)) {
    Require(FindByName(KnownOffsets(), row->name) != nullptr);
  }
  for (const std::string& name : NearestNames(KnownOffsets(), text.substr(0, 64), 3)) {
    Require(FindByName(KnownOffsets(), name) != nullptr);
  }
}

// --- On the way to logs, windows and clients ---

int DigitOf(char letter) { return letter <= '9' ? letter - '0' : letter - 'A' + 10; }

std::string Unescaped(std::string_view text) {
  std::string plain;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\') {
      plain += text[at];
      continue;
    }
    Require(++at < text.size());
    if (text[at] == 'x') {
      Require(at + 2 < text.size());
      plain += static_cast<char>(DigitOf(text[at + 1]) * 16 + DigitOf(text[at + 2]));
      at += 2;
    } else {
      const char letter = text[at];
      Require(letter == 'n' || letter == 'r' || letter == 't' || letter == '\\');
      plain += letter == 'n' ? '\n' : letter == 'r' ? '\r' : letter == 't' ? '\t' : letter;
    }
  }
  return plain;
}

void CheckEscapes(std::string_view text) {
  const std::string forLog = EscapedForLog(text);
  for (const char letter : forLog) Require(letter >= ' ' && letter <= '~');
  Require(Unescaped(forLog) == text);
  for (const char letter : EscapedControls(text)) {
    Require(static_cast<unsigned char>(letter) >= ' ' && letter != 0x7F);
  }
  const std::string json = JsonString(std::string(text));
  Require(json.size() >= 2 && json.front() == '"' && json.back() == '"');
  for (size_t i = 1; i + 1 < json.size(); ++i) {
    Require(json[i] >= ' ' && json[i] <= '~' && json[i] != '"');
    if (json[i] == '\\') ++i;
  }
}

void CheckAddress(std::string_view text) {
  uint32_t ip = 0, again = 0;
  if (!ParseAddress(std::string(text).c_str(), &ip)) return;
  Require(ParseAddress(AddressText(ip).c_str(), &again) && again == ip);
}

// Nobody gets in who does not by the list as it is told, which is shortened when it is long.
void CheckPermissions(std::string_view text) {
  constexpr uint32_t callers[] = {0x7F000001, 0xC0A80005, 0x0A000507, 0};
  PreparePermissions(std::string(text), true);
  const std::string told = AllowedClientsText();
  bool allowed[std::size(callers)] = {};
  for (size_t i = 0; i < std::size(callers); ++i) allowed[i] = IsClientAllowed(callers[i]);
  if (told == "everyone" || told == "nobody") {
    for (const bool each : allowed) Require(each == (told == "everyone"));
    return;
  }
  if (told.find(" more") != std::string::npos) return;
  PreparePermissions(told, true);
  for (size_t i = 0; i < std::size(callers); ++i) Require(IsClientAllowed(callers[i]) == allowed[i]);
}

bool IsThere(const char* path) { return path[0] == '\\' && path[1] == '\\' && path[2] != 'x'; }

// Lines: folder, computer, then NAME=FOLDER of each share.
void CheckShares(std::string_view text) {
  const std::string folder(Cut(&text, "\n")), computer(Cut(&text, "\n"));
  std::vector<SharedFolder> shares;
  while (!text.empty()) {
    std::string_view line = Cut(&text, "\n");
    const std::string name(Cut(&line, "="));
    shares.push_back({name, std::string(line)});
  }
  const std::string shown = NetworkFolder(folder, computer, shares, IsThere);
  Require(shown.size() < 256);
  Require(shown == folder.substr(0, 255) || shown.starts_with("\\\\" + computer.substr(0, 253)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text = TextOf(data + 1, size - 1);
  switch (data[0]) {
    case 'i':
      CheckItem(text);
      break;
    case 'a':
      CheckAssignment(text);
      break;
    case 'o':
      CheckOptions(text);
      break;
    case 'u':
      CheckQuantity(text);
      break;
    case 'n':
      CheckNumber(text);
      break;
    case 'l':
      CheckLines(text);
      break;
    case 's':
      CheckSearch(text);
      break;
    case 'e':
      CheckEscapes(text);
      break;
    case 'c':
      CheckAddress(text);
      CheckPermissions(text);
      break;
    case 'p':
      CheckShares(text);
      break;
    default:
      break;
  }
  return 0;
}
