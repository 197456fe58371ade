// Words for stored numbers: on and off of switches, and the places of levers and selectors. Pure; any thread.
#pragma once
#include <string>
#include <string_view>

#include "offset_names.h"

namespace ctl {

// Bits go by their names, several of them with "+" between: "navigation+beacon", "on" all of them, "off".

// The number that a word stands for in this row: one of its choices, or of the pairs of number and word in its
// meaning ("gear lever: 0 up, 16383 down"); the beginning of a word is enough when only one has it. Returns
// true, or false when the row has no such word.
bool FindWord(const OffsetName& row, std::string_view word, int64_t* number);
// The word for a number of this row, those of its bits that are set, "" when it has none; switches show theirs
// as their value.
std::string WordFor(const OffsetName& row, int64_t number);
// "0 up, 16383 down" or "navigation + beacon, on, off", for a message; "" when the row has no words.
std::string WordsText(const OffsetName& row);

}  // namespace ctl
