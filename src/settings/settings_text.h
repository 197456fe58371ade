// The settings file as text: finding and replacing keys, and reading values. Pure functions without state,
// files or simulator; any thread.
//
// Lines end in "\n" or "\r\n", the last one perhaps in nothing; a byte order mark before the first is
// skipped. A section header is "[name]", a key line is "key = value" with any blanks around its parts.
// Everything else, lines that begin with ";" or "#" included, is kept but never looked at.
//
// Names are compared as they stand first. Only when no such key exists is the case of the letters A to Z
// disregarded, so that a hand-edited "atc number" is found and no second key is made beside it. When a key
// stands several times, the first one counts; a section may be split over the file.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

struct FlapDetent;

enum class SettingLineKind { section, key, other };

struct SettingLine {
  SettingLineKind kind;
  std::string_view name;   // section or key, without blanks around
  std::string_view value;  // of a key: without blanks around, cut at the first control character
  std::string_view whole;  // the line with its line end
};

// Takes the next line off `rest`. Returns true, or false at the end of the text.
bool NextSettingLine(std::string_view* rest, SettingLine* line);
// Looks a key up. Returns true and the value (part of `text`), or false when key or section is missing.
bool FindSetting(std::string_view text, std::string_view section, std::string_view key,
                 std::string_view* value);
// The same for many keys in one walk over the text.
struct SettingQuery {
  std::string_view section, key;
  std::string_view value;  // part of the text
  bool found;
};
void FindSettings(std::string_view text, std::span<SettingQuery> queries);
// Whether the names can be written and found again: not empty, no blanks around, no control characters, no
// "]" in a section, no "=" in a key, which must not begin like a header or a comment either.
bool AreSettingNames(std::string_view section, std::string_view key);
// Whether both name the same key, the case of letters disregarded.
bool AreSameSettings(std::string_view section, std::string_view key, std::string_view otherSection,
                     std::string_view otherKey);
// Returns the text with the key set. Every other line stays byte for byte; a replaced line keeps its line
// end; a new key goes behind the last line of its section that is not blank, a new section to the end of
// the text. The value is cut as CutSettingValue does it. The names must be writable (AreSettingNames).
std::string SetSettingInText(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value);
// The same for many keys, none of them twice (whatever the case of its letters), in one walk over the text;
// new keys and sections come in the order of the changes.
struct SettingChange {
  std::string_view section, key, value;
};
std::string SetSettingsInText(std::string_view text, std::span<const SettingChange> changes);
// The value up to its first control character, at most maxSettingValue bytes.
std::string_view CutSettingValue(std::string_view value);

// Leading decimal digits with an optional sign, after blanks; 0 without digits, saturated at the limits.
int ParseInteger(std::string_view text);
// Leading number with a decimal point, whatever the locale; 0 when there is none or it is not finite.
double ParseNumber(std::string_view text);
// Whether it is "Yes" or "YES".
bool ParseYesNo(std::string_view text);
// Up to three numbers separated by commas; what follows the third is ignored. One that is left out is NaN.
// Empty when one of the three is no number; `isGood` (may be null) gets whether they all are.
FlapDetent ParseFlapDetent(std::string_view text, bool* isGood = nullptr);
