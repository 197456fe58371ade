// Pieces of the pages that several of them have. Pure.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "bridge/catalogue.h"

// "0x0330": four digits or more.
std::string Hex(uint32_t offset);
// A text for a cell of a table.
std::string TableCell(const std::string& text);
// The shortest text that reads back.
std::string Number(double value);
// A string literal for C++ and JSON alike; the catalogue holds plain ASCII.
std::string Quoted(const std::string& text);
// What clients call the row.
std::string RowName(const OffsetRow& row);
// The dataref's name, with the element of an array; "" for none.
std::string SourceName(const Source& source);
// The tables that stand in the page: a subject each.
std::vector<const RowTable*> ListedTables();
