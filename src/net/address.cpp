#include "net/address.h"

#include <charconv>
#include <cstring>

bool ParseAddress(const char* text, uint32_t* ip) {
  const char* at = text;
  const char* end = text + std::strlen(text);
  uint32_t result = 0;
  for (int part = 0; part < 4; ++part) {
    if (part > 0 && (at == end || *at++ != '.')) return false;
    uint8_t value = 0;
    const auto [next, error] = std::from_chars(at, end, value);
    if (error != std::errc() || next - at > 3) return false;
    result = result << 8 | value;
    at = next;
  }
  if (at != end) return false;
  *ip = result;
  return true;
}

std::string AddressText(uint32_t ip) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    if (shift < 24) text += '.';
    text += std::to_string(ip >> shift & 0xFF);
  }
  return text;
}

uint32_t BroadcastAddress(uint32_t ip) { return ip | 0xFF; }
