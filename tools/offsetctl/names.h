// Looking up the offsets that the plug-in knows by name. Pure; any thread.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "offset_names.h"

namespace ctl {

constexpr uint32_t offsetMemorySize = 0x20000;

// The table made from the plug-in's catalogue.
NameTable KnownOffsets();

// The text with A to Z made small.
std::string LowerCase(std::string_view text);
// The row of that name (letters in either case), or null.
const OffsetName* FindByName(const NameTable& names, std::string_view name);
// The row whose value starts at that offset, one with a name first, or null.
const OffsetName* FindByOffset(const NameTable& names, uint32_t offset);
// The first read-only offset among `size` bytes from `offset`, or offsetMemorySize when there is none.
uint32_t FirstReadOnly(const NameTable& names, uint32_t offset, uint32_t size);
// Names of rows, at most `most`, that look like a name which is not known, the likeliest first; names that have
// nothing to do with it are left out.
std::vector<std::string> NearestNames(const NameTable& names, std::string_view wanted, size_t most);
// The same with an ending for a message: ": did you mean ias, tas?" or ": see offsetctl list".
std::string NearestText(const NameTable& names, std::string_view wanted);
// Named rows, in order, for which every word is part of name, meaning, unit or subject (letters in either case)
// or spells the offset where they start; all of them without a word.
std::vector<const OffsetName*> Search(const NameTable& names, const std::vector<std::string>& words);

}  // namespace ctl
