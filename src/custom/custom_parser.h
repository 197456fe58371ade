// The grammar of the offsets file: lines, continuation, comments, tokens, and the records they make.
//
// Pure: no simulator, no files, no state. The plug-in loads through it, and the check for authors reads the
// very same lines with the place of every token.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "custom/custom_records.h"

constexpr size_t maxCustomLineLength = 4095;  // characters of a physical line, and of a joined one
constexpr size_t maxCustomTokens = 256;       // of a line
constexpr size_t maxCustomTokenLength = 255;

// By the first token's first characters: "Offsets" counts as "Offset".
enum class CustomLineKind : uint8_t { Offset, Dataref, Command, Other };
enum class CustomLineFault : uint8_t { None, TooManyTokens, TokenTooLong };

struct CustomToken {
  std::string_view text;
  uint32_t line, column;  // where it begins in the file, from 1
};

// A stretch of a joined line: where it begins, and the physical line it came from.
struct CustomPiece {
  size_t start;
  uint32_t line;
};

// Use one for all lines of a file: it keeps its memory.
struct CustomLine {
  std::string text;                 // joined
  std::vector<CustomToken> tokens;  // before the comment; at most maxCustomTokens
  CustomLineKind kind;
  CustomLineFault fault;
  CustomToken faulty;               // the token at fault
  uint32_t firstLine, lastLine;     // physical lines it was made of
  bool comment;                     // it ends in a comment
  bool cutShort;                    // the file ends where a continuation was to come
  std::vector<CustomPiece> pieces;  // of the text; at most one a character
};

// Where reading stands. Begin with {text, 0}.
struct CustomFileReader {
  std::string_view rest;
  uint32_t line;  // physical lines taken so far
};

// Takes the next line that has tokens or a comment. Returns 1, 0 at the end of the file, or -1 for a
// physical or joined line that is too long (`firstLine` and `lastLine` tell which).
int NextCustomLine(CustomFileReader* reader, CustomLine* line);

// Words of the grammar. Return true, or false for an unknown word (the results are 0 or None then).
bool FindCustomType(std::string_view word, CustomType* type, uint8_t* size);
bool FindCustomKind(std::string_view word, Accessor* kind);
bool FindCustomAccess(std::string_view word, CustomAccess* access);
// Numbers as far as the text is one. They return how many characters were read; 0 leaves 0 as the value.
// Hexadecimal with or without 0x, low 16 bits; decimal with sign, saturated; floating point with sign and
// exponent, a decimal point whatever the locale, no words such as "inf".
size_t ParseCustomOffset(std::string_view text, uint16_t* value);
size_t ParseCustomInteger(std::string_view text, int32_t* value);
size_t ParseCustomNumber(std::string_view text, double* value);

// Reads a whole file into the tables, sorts them and compiles the expressions; handles stay null and the
// refresh groups empty. Lines with a fault (CustomLineFault) are left out. Returns true, or false when a line
// is too long: the tables are empty then, and `tooLong` (may be null) is its number.
bool ParseCustomFile(std::string_view text, CustomTables* tables, uint32_t* tooLong = nullptr);
// The entry of that alias, or null.
const CustomDatarefEntry* FindCustomAlias(const std::vector<CustomDatarefEntry>& datarefs,
                                          std::string_view alias);
