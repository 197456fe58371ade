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
  std::string alias;  // of the Dataref line, that one or ours
  std::string lines;  // what to put at the end of the file else
};

// Where the dataref goes, in a file of that text. Returns true, or false with a sentence in `error` for a word
// that is wrong, an offset that is taken, or when no place is left.
bool PlanMapping(std::string_view file, const NameTable& names, const MapRequest& request, Mapping* mapping,
                 std::string* error);
// What the plug-in's log says of its last load about a dataref under that alias: "" when it reads it, else what
// is wrong. `dataref` as in the request.
std::string LoadFault(std::string_view log, std::string_view dataref, std::string_view alias);
// The text without these lines, which `offsetctl map` has added. Returns true, or false when they are not in
// it.
bool TakeOut(const std::string& lines, std::string* text);

}  // namespace ctl
