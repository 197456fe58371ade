// The ages that the simulator can be started in, by number and by what plug-ins are told. What each of them
// publishes is the world's (world/age_table.cpp).
#include <algorithm>
#include <iterator>

#include "core/core.h"

namespace sim {
namespace {

// Row 0 is what runs when no age is asked for.
constexpr Version versionRows[] = {
    {.number = 0, .told = 1042, .api = 210},     {.number = 860, .told = 860, .api = 103},
    {.number = 920, .told = 920, .api = 200},    {.number = 955, .told = 955, .api = 200},
    {.number = 1004, .told = 1004, .api = 210},  {.number = 1042, .told = 1042, .api = 210},
    {.number = 1110, .told = 11100, .api = 300}, {.number = 1140, .told = 11400, .api = 302},
    {.number = 1200, .told = 12000, .api = 400}, {.number = 1210, .told = 12100, .api = 410},
};

}  // namespace

const Version* FindVersion(int number) {
  const auto* found = std::find_if(std::begin(versionRows), std::end(versionRows),
                                   [number](const Version& row) { return row.number == number; });
  return found == std::end(versionRows) ? nullptr : found;
}

std::string ListVersions() {
  std::string list;
  for (const Version& row : versionRows) {
    if (row.number == 0) continue;
    if (!list.empty()) list += ", ";
    list += FormatInt(row.number);
  }
  return list;
}

}  // namespace sim
