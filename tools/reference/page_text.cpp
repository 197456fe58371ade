#include "reference/page_text.h"

#include <charconv>

std::string Hex(uint32_t offset) {
  char text[16];
  std::string digits(text, std::to_chars(text, text + sizeof text, offset, 16).ptr);
  for (char& letter : digits) {
    if (letter >= 'a') letter = static_cast<char>(letter - 'a' + 'A');
  }
  return "0x" + (digits.size() < 4 ? std::string(4 - digits.size(), '0') : "") + digits;
}

std::string TableCell(const std::string& text) {
  std::string cell;
  for (const char letter : text) {
    if (letter == '|') cell += '\\';
    cell += letter;
  }
  return cell;
}

std::string Number(double value) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "\"";
}

std::string RowName(const OffsetRow& row) {
  std::string name = row.name;
  if (row.member != 0) name += std::to_string(row.member);
  if (row.copy != 0) name += "_copy";
  return row.copy > 1 ? name + std::to_string(row.copy) : name;
}

std::vector<const RowTable*> ListedTables() {
  std::vector<const RowTable*> tables;
  for (const RowTable* table : Catalogue()) {
    if (table->subject != nullptr) tables.push_back(table);
  }
  return tables;
}

std::string SourceName(const Source& source) {
  const std::string name = source.ref == nullptr ? "" : source.ref->name;
  const bool isArray = IsArray(source.accessor);
  return name.empty() || !isArray ? name : name + "[" + std::to_string(source.element) + "]";
}
