// A check for tables that have a row for each number of an enumeration.
#pragma once
#include <cstddef>

namespace sim {

// Whether row i of the table has i in its member `Key`, and the last row has `last`: then a number is the
// index of its row.
template <auto Key, class Row, size_t N, class Number>
constexpr bool IsTableOf(const Row (&rows)[N], Number last) {
  for (size_t i = 0; i < N; i++) {
    if (static_cast<size_t>(rows[i].*Key) != i) return false;
  }
  return static_cast<size_t>(last) + 1 == N;
}

}  // namespace sim
