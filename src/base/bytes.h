// Numbers in bytes at any alignment, little-endian as every machine is that this program runs on. The one way
// in which records, frames and memory blocks are taken apart and put together. Pure; any thread.
#pragma once
#include <cstdint>
#include <cstring>

// The number that stands at `from`; reads sizeof(T) bytes, the caller has checked that they are there.
template <typename T>
T LoadFrom(const void* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}
// Puts the number at `to`; writes sizeof(T) bytes.
template <typename T>
void StoreTo(void* to, T value) {
  std::memcpy(to, &value, sizeof value);
}
