// What the targets share: a property that must hold, and the input as text.
#pragma once
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// Says where and ends the program when the condition does not hold.
inline void Require(bool condition, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (condition) return;
  std::fprintf(stderr, "%s:%d: this must hold, and does not\n", file, line);
  std::abort();
}

inline std::string_view TextOf(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Takes the text up to the end mark off its beginning, and drops the mark.
inline std::string_view Cut(std::string_view* text, std::string_view end) {
  const std::string_view part = text->substr(0, text->find(end));
  text->remove_prefix(std::min(part.size() + end.size(), text->size()));
  return part;
}
