#include "offsets/dispatcher.h"

#include <algorithm>
#include <cstring>

#include "custom/custom.h"
#include "offsets/memory.h"

RelayRecordStore relayRecordStore;
std::atomic<uint32_t> clientEntryWritten;
std::atomic<uint32_t> weatherBlockRequested;
std::atomic<uint32_t> weatherBlockReady;
AtcTexts atcTexts;

namespace {

constexpr uint32_t maxWidth = 252;

struct DispatchEntry {
  DispatchAction action;
  uint8_t width;
};
DispatchEntry table[offsetMemorySize];  // one entry an offset: no search

void Raise(uint32_t offset, const uint8_t* bytes, uint32_t width) {
  std::memcpy(pendingValues.bytes + offset, bytes, width);
  pendingFlags.flags[offset] = 1;
  anythingPending.store(1, std::memory_order_relaxed);
}

void KeepAtcText(uint32_t bit, char (&text)[atcTextSize + 1], const uint8_t* bytes) {
  std::memcpy(text, bytes, atcTextSize);
  text[atcTextSize] = 0;
  atcTexts.changed.fetch_or(bit);
}

// Hands a value to the user's own entries at this offset. Returns how far the walk goes on, 0 when there is no
// custom offset (a command alone does not end the look-ups).
uint32_t DispatchCustom(uint32_t at, const uint8_t* data, uint32_t supplied) {
  uint8_t value[8];
  const auto take = [&](uint32_t offset, uint32_t size) {
    const uint32_t given = std::min(size, supplied);
    std::memcpy(value, data, given);
    std::memcpy(value + given, offsetMemory.bytes + offset + given, size - given);
    return value;
  };
  if (const CustomCommandEntry* command = FindCustomCommand(at)) {
    WriteCommandOffset(*command, take(command->offset, command->size));
  }
  const CustomOffsetEntry* entry = FindCustomOffset(at);
  if (entry == nullptr || entry->size == 0) return 0;
  WriteCustomOffset(*entry, take(entry->offset, entry->size));
  return entry->size;
}

}  // namespace

void ResetDispatchTable() {
  weatherBlockRequested = 0;
  weatherBlockReady = 0;
  relayRecordStore.waiting = 0;
  atcTexts.changed = 0;
  for (DispatchEntry& entry : table) entry = {DispatchAction::None, 0};
  AddDispatchEntry(0x3130, atcTextSize, DispatchAction::AtcNumber);
  AddDispatchEntry(0x313C, atcTextSize, DispatchAction::AtcTailNumber);
  AddDispatchEntry(weatherAreaOffset, 1, DispatchAction::WeatherArea);
  AddDispatchEntry(relayRecordOffset, relayRecordSize, DispatchAction::RelayRecord);
  AddDispatchEntry(clientEntryOffset, clientEntrySize, DispatchAction::TrafficEntry);
  AddDispatchEntry(customReloadOffset, 1, DispatchAction::CustomReload);
  AddDispatchEntry(customClearOffset, 1, DispatchAction::CustomReload);
}

void AddDispatchEntry(uint32_t offset, uint32_t width, DispatchAction action) {
  table[offset] = {action, static_cast<uint8_t>(std::min(width, maxWidth))};
}

uint32_t DispatchWidth(uint32_t offset) { return table[offset].width; }

int DispatchWrite(uint32_t offset, uint32_t size, const uint8_t* data) {
  uint32_t done = 0;
  while (done < size) {
    const uint32_t at = offset + done;
    if (const uint32_t custom = DispatchCustom(at, data + done, size - done); custom != 0) {
      done += custom;
      continue;
    }
    const DispatchEntry entry = table[at];
    if (entry.action == DispatchAction::None) return 0;
    const uint32_t supplied = size - done;
    uint32_t width = entry.width;
    if (entry.action == DispatchAction::StageTwoOrFour) width = supplied >= 4 ? 4 : 2;

    // The new value: what the client supplied, missing bytes from the offset memory.
    uint8_t value[maxWidth];
    const uint32_t given = std::min(width, supplied);
    std::memcpy(value, data + done, given);
    if (given < width) {
      if (entry.action == DispatchAction::StageText) {
        std::memset(value + given, 0, width - given);
      } else {
        std::memcpy(value + given, offsetMemory.bytes + at + given, width - given);
      }
    }
    const bool differs = std::memcmp(value, offsetMemory.bytes + at, width) != 0;

    switch (entry.action) {
      case DispatchAction::StageAlways:
        Raise(at, value, width);
        break;
      case DispatchAction::AtcNumber:
        if (differs) KeepAtcText(1, atcTexts.number, value);
        break;
      case DispatchAction::AtcTailNumber:
        if (differs) KeepAtcText(2, atcTexts.tailNumber, value);
        break;
      case DispatchAction::WeatherArea:
        weatherBlockRequested = 1;
        break;
      case DispatchAction::RelayRecord:
        std::memcpy(relayRecordStore.bytes, value, relayRecordSize);
        relayRecordStore.waiting = 1;
        break;
      case DispatchAction::TrafficEntry:
        if (done == 0) clientEntryWritten = 1;
        break;
      case DispatchAction::CustomReload:
        if (differs && value[0] == 1) RequestCustomReload(at);
        break;
      default:
        if (differs) Raise(at, value, width);
        break;
    }
    done += entry.action == DispatchAction::StageText ? given : width;
  }
  return 1;
}

void FinishRequest() {
  if (weatherBlockRequested.exchange(0) != 0) weatherBlockReady = 1;
}
