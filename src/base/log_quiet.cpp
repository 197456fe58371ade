#include "base/log_quiet.h"

#include "platform/clock.h"

bool TakeLogTurn(QuietTable* table, uint64_t key) {
  constexpr int64_t minute = 60 * INT64_C(1000000000);
  const int64_t now = MonotonicNanoseconds();
  QuietTable::Entry* place = nullptr;
  for (QuietTable::Entry& entry : table->entries) {
    if (entry.used && now - entry.time >= minute) entry.used = false;
    if (entry.used && entry.key == key) return false;
    if (!entry.used && place == nullptr) place = &entry;
  }
  if (place == nullptr) return false;
  *place = {key, now, true};
  return true;
}
