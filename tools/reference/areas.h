// Layouts that several offsets make up together, and words that stand alone: what no row of the catalogue says.
// Pure.
#pragma once
#include <cstdint>
#include <span>

#include "bridge/catalogue.h"

struct AreaField {
  uint32_t at;  // from the area's first byte
  Stored type;
  uint32_t length = 0;  // of texts
  const char* name = "";
  const char* meaning = "";
  const char* unit = "";
  double scale = 1;  // unit value = stored x scale
  const char* positive = "";
  const char* reference = "";
};

// A record, or `count` of them, one each `step` bytes.
struct Area {
  const char* name;
  uint32_t offset, size;
  uint32_t count = 1, step = 0;
  const char* write;  // "yes", "no"
  const char* meaning;
  std::span<const AreaField> fields;
};
std::span<const Area> Areas();

// A word with a meaning of its own that no page of a subject lists.
struct SpecialWord {
  uint32_t offset;
  Stored type;
  const char* name;
  const char* write;  // "yes", "no", "read-only"
  const char* value;  // what stands there
  const char* meaning;
};
std::span<const SpecialWord> SpecialWords();
