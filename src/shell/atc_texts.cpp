#include "shell/atc_texts.h"

#include <algorithm>
#include <cstring>

#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "settings/settings.h"

void PublishAtcTexts() {
  const auto publish = [](uint32_t offset, const char* text) {
    char field[atcTextSize] = {};
    std::copy_n(text, std::min<size_t>(std::strlen(text), atcTextSize), field);
    std::copy_n(field, atcTextSize, offsetMemory.bytes + offset);
  };
  publish(atcNumberOffset, settings.atcNumber);
  publish(atcTailNumberOffset, settings.atcTailNumber);
}

void TakeAtcTexts(int64_t now) {
  if (atcTexts.changed.load(std::memory_order_relaxed) == 0) return;
  uint32_t changed = 0;
  char number[atcTextSize + 1];
  char tailNumber[atcTextSize + 1];
  {
    LockScope lock(&offsetLock);
    changed = atcTexts.changed.exchange(0);
    std::memcpy(number, atcTexts.number, sizeof number);
    std::memcpy(tailNumber, atcTexts.tailNumber, sizeof tailNumber);
  }
  constexpr char section[] = "TAVRIX ATC SETTINGS";
  if ((changed & 1) != 0) {
    std::memcpy(settings.atcNumber, number, sizeof number);
    KeepSetting(section, "ATC Number", number, now);
  }
  if ((changed & 2) != 0) {
    std::memcpy(settings.atcTailNumber, tailNumber, sizeof tailNumber);
    KeepSetting(section, "ATC Tail Number", tailNumber, now);
  }
}
