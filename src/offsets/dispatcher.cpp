#include "offsets/dispatcher.h"

#include <algorithm>
#include <cstring>

#include "offsets/memory.h"

RelayRecordStore relayRecordStore;
std::atomic<uint32_t> clientEntryWritten;
std::atomic<uint32_t> weatherBlockReady;
AtcTexts atcTexts;

namespace {

constexpr uint32_t maxWidth = 252;

struct DispatchEntry {
  DispatchAction action;
  uint8_t width;
  bool overlapped;  // another entry covers some of its bytes: their staged values are one
};
DispatchEntry table[offsetMemorySize];  // one entry an offset: no search

void Raise(uint32_t offset, const uint8_t* bytes, uint32_t width, uint32_t by) {
  std::memcpy(pendingValues.bytes + offset, bytes, width);
  pendingFlags.flags[offset] = by;
  anythingPending.store(1, std::memory_order_relaxed);
}

void KeepAtcText(uint32_t bit, char (&text)[atcTextSize + 1], const uint8_t* bytes) {
  std::memcpy(text, bytes, atcTextSize);
  text[atcTextSize] = 0;
  atcTexts.changed.fetch_or(bit);
}

uint32_t EndOf(uint32_t offset) { return offset + table[offset].width; }

// Calls `see` for every entry that covers bytes of the range.
template <typename See>
void ForEntriesWithin(uint32_t offset, uint32_t size, See see) {
  for (uint32_t at = offset > maxWidth ? offset - maxWidth : 0; at < offset + size; ++at) {
    if (table[at].width != 0 && EndOf(at) > offset) see(at);
  }
}

CustomHooks customHooks = {
    .offer = [](uint32_t, const uint8_t*, uint32_t, uint32_t) { return CustomOutcome{}; },
    .isTaken = [](uint32_t, uint32_t) { return false; },
    .lookAfter = [](uint32_t) { return TicketState::Done; },
    .requestReload = [](uint32_t) {},
};

uint32_t lastTicket;  // under the offset lock

// A ticket other than 0: a write of our own.
bool Walk(uint32_t offset, uint32_t size, const uint8_t* data, uint32_t ticket, RequestMarks* marks) {
  const uint32_t by = ticket != 0 ? byOwnWrite : byClient;
  uint32_t done = 0;
  while (done < size) {
    const uint32_t at = offset + done;
    const CustomOutcome custom = customHooks.offer(at, data + done, size - done, ticket);
    if (custom.offsetSize != 0) {
      done += custom.offsetSize;
      continue;
    }
    const DispatchEntry entry = table[at];
    if (entry.action == DispatchAction::None) {
      if (custom.commandSize == 0) return false;
      done += custom.commandSize;
      continue;
    }
    const uint32_t supplied = size - done;
    uint32_t width = entry.width;
    if (entry.action == DispatchAction::StageTwoOrFour) width = supplied >= 4 ? 4 : 2;

    // A value that waits for the write cycle counts, not the memory, where a refresh may have put the
    // simulator's own value back meanwhile: else the way back to that value would be no change.
    uint8_t mixed[maxWidth];
    const uint8_t* latest = (pendingFlags.flags[at] != 0 ? pendingValues.bytes : offsetMemory.bytes) + at;
    if (entry.overlapped) {
      CopyLatest(at, width, mixed);
      latest = mixed;
    }
    // The new value: what the client supplied, and the missing bytes.
    uint8_t value[maxWidth];
    const uint32_t given = std::min(width, supplied);
    std::memcpy(value, data + done, given);
    if (given < width) {
      if (entry.action == DispatchAction::StageText) {
        std::memset(value + given, 0, width - given);
      } else {
        std::memcpy(value + given, latest + given, width - given);
      }
    }
    const bool differs = std::memcmp(value, latest, width) != 0;

    switch (entry.action) {
      case DispatchAction::StageAlways:
        Raise(at, value, width, by);
        break;
      case DispatchAction::AtcNumber:
        if (differs) KeepAtcText(1, atcTexts.number, value);
        break;
      case DispatchAction::AtcTailNumber:
        if (differs) KeepAtcText(2, atcTexts.tailNumber, value);
        break;
      case DispatchAction::WeatherArea:
        marks->weatherArea = true;
        break;
      case DispatchAction::RelayRecord:
        std::memcpy(relayRecordStore.bytes, value, relayRecordSize);
        relayRecordStore.waiting = 1;
        break;
      case DispatchAction::TrafficEntry:
        if (done == 0) clientEntryWritten = 1;
        break;
      case DispatchAction::CustomReload:
        if (differs && value[0] == 1) customHooks.requestReload(at);
        break;
      default:
        if (differs || ticket != 0) Raise(at, value, width, by);
        break;
    }
    done += entry.action == DispatchAction::StageText ? given : width;
  }
  return true;
}

}  // namespace

void ConnectDispatcher(const CustomHooks& hooks) { customHooks = hooks; }

void ClearRequestMarks() {
  weatherBlockReady = 0;
  relayRecordStore.waiting = 0;
  clientEntryWritten = 0;
  atcTexts.changed = 0;
}

void ResetDispatchTable() {
  ClearRequestMarks();
  for (DispatchEntry& entry : table) entry = {DispatchAction::None, 0, false};
}

void AddDispatchEntry(uint32_t offset, uint32_t width, DispatchAction action) {
  table[offset] = {action, static_cast<uint8_t>(std::min(width, maxWidth)), false};
  ForEntriesWithin(offset, table[offset].width, [offset](uint32_t other) {
    if (other != offset) table[other].overlapped = table[offset].overlapped = true;
  });
}

bool DispatchWrite(uint32_t offset, uint32_t size, const uint8_t* data, RequestMarks* marks) {
  return Walk(offset, size, data, 0, marks);
}

bool DispatchOwnWrite(uint32_t offset, uint32_t size, const uint8_t* data, RequestMarks* marks,
                      uint32_t* ticket) {
  if (customHooks.isTaken(offset, size)) return false;
  if (++lastTicket == 0) ++lastTicket;
  Walk(offset, size, data, lastTicket, marks);
  *ticket = customHooks.lookAfter(lastTicket) == TicketState::Waits ? lastTicket : 0;
  return true;
}

TicketState StateOfOwnWrite(uint32_t ticket) { return customHooks.lookAfter(ticket); }

void CopyLatest(uint32_t offset, uint32_t size, void* bytes) {
  std::memcpy(bytes, offsetMemory.bytes + offset, size);
  ForEntriesWithin(offset, size, [&](uint32_t at) {
    if (pendingFlags.flags[at] == 0) return;
    const uint32_t first = std::max(at, offset);
    const uint32_t end = std::min(EndOf(at), offset + size);
    std::memcpy(static_cast<uint8_t*>(bytes) + (first - offset), pendingValues.bytes + first, end - first);
  });
}

void FinishRequest(const RequestMarks& marks) {
  if (marks.weatherArea) weatherBlockReady = 1;
}
