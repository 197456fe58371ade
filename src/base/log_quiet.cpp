#include "base/log_quiet.h"

#include "base/log.h"
#include "platform/clock.h"

namespace {

constexpr int64_t minuteLength = 60 * INT64_C(1000000000);

}  // namespace

bool TakeLogTurn(QuietTable* table, uint64_t key) {
  const int64_t now = MonotonicNanoseconds();
  QuietTable::Entry* place = nullptr;
  for (QuietTable::Entry& entry : table->entries) {
    if (entry.used && now - entry.time >= minuteLength) entry.used = false;
    if (entry.used && entry.key == key) return false;
    if (!entry.used && place == nullptr) place = &entry;
  }
  if (place == nullptr) return false;
  *place = {key, now, true};
  return true;
}

bool TakeLogTurn(QuietMinute* minute) {
  const int64_t now = MonotonicNanoseconds();
  int64_t began = minute->began.load();
  if ((began <= LogsOpenedAt() || now - began >= minuteLength) &&
      minute->began.compare_exchange_strong(began, now)) {
    minute->turns = 0;
  }
  const uint32_t turn = minute->turns.fetch_add(1);
  if (turn < minute->most) return true;
  if (turn == minute->most) {
    LogOwn("%s more than %u times within a minute: the rest of the minute is not told\n", minute->what,
           minute->most);
  }
  return false;
}
