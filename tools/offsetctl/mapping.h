// What `offsetctl map` adds to an offsets file. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "names.h"

namespace ctl {

struct MapRequest {
  std::string dataref;  // with [N] for an element of an array
  std::string kind;     // as a Dataref line says it
  std::string offset;   // hexadecimal; "" for the next free place
};

struct Mapping {
  uint32_t offset;
  ValueType type;
  uint32_t size;
  bool exists;        // a line of the file shows the dataref already
  std::string lines;  // what to put at the end of the file else
};

// Where the dataref goes, in a file of that text. Returns true, or false with a sentence in `error` for a word
// that is wrong, an offset that is taken, or when no place is left.
bool PlanMapping(std::string_view file, const NameTable& names, const MapRequest& request, Mapping* mapping,
                 std::string* error);

}  // namespace ctl
