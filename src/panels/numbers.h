// Numbers as users type them into fields, whatever the system's language: a point, no blanks, nothing behind
// them. Pure functions, any thread.
#pragma once
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <type_traits>

// Takes the whole text as a number (an integer in `base`, or a finite float). Returns false when it is none or
// does not fit; `value` is untouched then.
template <typename Number, typename... Base>
bool ReadNumberText(std::string_view text, Number* value, Base... base) {
  Number read = {};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read, base...);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  if constexpr (std::is_floating_point_v<Number>) {
    if (!std::isfinite(read)) return false;
  }
  *value = read;
  return true;
}

// The shortest text that reads back as the number.
template <typename Number>
std::string NumberText(Number value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}
