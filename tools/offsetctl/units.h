// Units that people type behind a number, and how they convert into each other. Pure; any thread.
#pragma once
#include <string>
#include <string_view>

namespace ctl {

// Splits "118.705MHz" or "5000 ft" into the number and what follows it. Returns true, or false when the text
// does not begin with a number. "inf" and "nan" are none.
bool SplitQuantity(std::string_view text, double* number, std::string_view* unit);
// Converts between two units by their names, letters in either case ("ft", "hPa", "deg C"). Returns true, or
// false when one is not known or they measure different things.
bool ConvertUnit(double value, std::string_view from, std::string_view to, double* converted);
// Units that convert to this one, for a message: "m, km, ft". Empty when there are none.
std::string UnitsLike(std::string_view unit);

}  // namespace ctl
