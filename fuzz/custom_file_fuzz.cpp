// Fuzz target: the offsets file. Whatever it holds, loading stays inside its limits, the tables are sorted and
// every expression of every entry runs.
#include <algorithm>
#include <cstring>

#include "custom/custom_parser.h"
#include "custom/expression.h"
#include "require.h"

namespace {

double ReadIndex(const CustomDatarefEntry& dataref) { return dataref.index; }

void CheckEntry(const CustomTables& tables, const CustomOffsetEntry& entry) {
  Require(entry.size <= 8);
  Require(entry.tokenCount <= static_cast<int32_t>(maxCustomTokens) - 5);
  Require(entry.read.first + entry.read.count <= tables.operations.size());
  RunExpression(tables.operations.data() + entry.read.first, entry.read.count, 0, ReadIndex);
  if (entry.writeTarget != nullptr) {
    RunExpression(tables.operations.data() + entry.write.first, entry.write.count, 1, ReadIndex);
    Require(FindCustomAlias(tables.datarefs, entry.writeTarget->alias) != nullptr);
  }
}

// Every token lies where the line and column say.
void CheckPlaces(std::string_view text) {
  CustomFileReader reader = {text, 0};
  CustomLine line;
  uint32_t before = 0;
  while (NextCustomLine(&reader, &line) > 0) {
    Require(line.firstLine > before && line.lastLine >= line.firstLine);
    before = line.lastLine;
    Require(line.tokens.size() <= maxCustomTokens && line.text.size() <= maxCustomLineLength);
    for (const CustomToken& token : line.tokens) {
      Require(!token.text.empty() && token.text.front() != '#');
      Require(token.line >= line.firstLine && token.line <= line.lastLine && token.column >= 1);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CheckPlaces(text);
  CustomTables tables;
  if (!ParseCustomFile(text, &tables)) {
    Require(tables.offsets.empty() && tables.datarefs.empty() && tables.commands.empty());
    return 0;
  }
  Require(std::is_sorted(tables.offsetKeys.begin(), tables.offsetKeys.end()));
  Require(std::is_sorted(tables.commandKeys.begin(), tables.commandKeys.end()));
  for (const CustomOffsetEntry& entry : tables.offsets) CheckEntry(tables, entry);
  for (const CustomDatarefEntry& entry : tables.datarefs) {
    Require(entry.alias.size() <= maxCustomTokenLength && std::strlen(entry.path) <= maxCustomTokenLength);
  }
  for (const CustomCommandEntry& entry : tables.commands) {
    Require(entry.firstGroup + entry.groupCount <= tables.actions.size());
    for (uint32_t i = 0; i < entry.groupCount; ++i) {
      Require(std::strlen(tables.actions[entry.firstGroup + i].name) <= maxCustomTokenLength);
    }
  }
  return 0;
}
