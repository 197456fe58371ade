// Words for stored numbers: on and off of switches, and the places of levers and selectors. Pure; any thread.
#pragma once
#include <string>
#include <string_view>

#include "offset_names.h"

namespace ctl {

// The number that a word stands for in this row: one of its choices, or of the pairs of number and word in its
// meaning ("gear lever: 0 up, 16383 down"); the beginning of a word is enough when only one has it. Returns
// true, or false when the row has no such word.
bool FindWord(const OffsetName& row, std::string_view word, int64_t* number);
// The word for a number of this row, "" when it has none; switches show theirs as their value.
std::string WordFor(const OffsetName& row, int64_t number);
// "0 up, 16383 down", for a message; "" when the row has no words.
std::string WordsText(const OffsetName& row);

}  // namespace ctl
