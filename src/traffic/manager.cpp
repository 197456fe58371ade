#include <algorithm>
#include <cstring>
#include <utility>

#include "base/bytes.h"
#include "base/log.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/system.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

uint32_t activeSlots;
uint8_t clientEntry[trafficEntrySize];

namespace {

constexpr uint32_t sizeAndCapacity = 0x00600028;  // 40 bytes an entry, 96 entries
constexpr uint32_t countField = 0x04, changeField = 0x06, roundsField = 0x08, markField = 0x68;
constexpr int32_t farthest = 10000;  // 1,000 km in 0.1 km: nothing beyond is near
constexpr uint16_t changeStep = 10;

Thread managerThread;
Event managerWake;
std::atomic<uint32_t> managerRun;

// The manager thread's own.
bool settling;  // slots and aircraft do not agree yet
bool toldShortage;
uint16_t changeCounter;
uint16_t nearestEntry;

uint32_t WantedSlots() { return std::clamp(aircraftCount.load(), 1U, maxSlots + 1) - 1; }

// Returns false when the slot's former thread has not ended yet: then it is for the next round.
bool AddSlot() {
  const uint32_t index = activeSlots;
  if (slots[index].thread.started.load() != 0) return false;
  if (!StartSlot(index)) {
    if (std::exchange(toldShortage, true)) return false;
    LogOwn(
        "TAVRIX->The system gives no thread for slot %02i: aircraft from there on are shown as soon as there "
        "is "
        "one; %s\n",
        static_cast<int>(index), shortageRemedy);
    return false;
  }
  toldShortage = false;
  ++activeSlots;
  return true;
}

// One slot at most is added or removed in a round.
void Settle() {
  for (uint32_t i = activeSlots; i < maxSlots; ++i) {
    if (slots[i].ended.load() != 0) JoinSlot(i);
  }
  if (countChanged.exchange(0) != 0) settling = true;
  if (!settling) return;
  const uint32_t wanted = WantedSlots();
  if (wanted > activeSlots) {
    AddSlot();
  } else if (wanted < activeSlots) {
    EndSlot(--activeSlots);
  }
  if (wanted == activeSlots) settling = false;
}

void TakeClientEntry() {
  if (clientEntryWritten.exchange(0) == 0) return;
  const ServerLockScope lock;
  std::memcpy(clientEntry, offsetMemory.bytes + clientEntryOffset, sizeof clientEntry);
}

// Offset of the entry of the nearest aircraft, 0 when none is near.
uint16_t FindNearest() {
  uint32_t ids[maxSlots];
  {
    const ServerLockScope lock;
    for (uint32_t i = 0; i < maxSlots; ++i) ids[i] = Load<uint32_t>(trafficEntryOffset + trafficEntrySize * i);
  }
  int32_t nearest = farthest;
  uint32_t entry = 0;
  const LockScope lock(&trafficSlotLock);
  for (uint32_t i = 0; i < maxSlots; ++i) {
    if (ids[i] == 0 || slotDistances[i].distance >= nearest) continue;
    nearest = slotDistances[i].distance;
    entry = slotDistances[i].entry;
  }
  return static_cast<uint16_t>(entry);
}

void StoreHeader() {
  uint8_t header[trafficHeaderSize] = {};
  StoreTo(header, sizeAndCapacity);
  StoreTo(header + countField, static_cast<uint16_t>(activeSlots));
  StoreTo(header + changeField, changeCounter);
  for (uint32_t i = 0; i < maxSlots; ++i) {
    header[roundsField + i] = slotRounds[i].load(std::memory_order_relaxed);
  }
  header[markField] = 'P';
  StoreTo(header + nearestField, nearestEntry);
  const ServerLockScope lock;
  std::memcpy(offsetMemory.bytes + trafficHeaderOffset, header, sizeof header);
}

uint32_t ManagerProcedure(void*) {
  while (managerRun.load() != 0 && listBeingBuilt.load() != 0) WaitEvent(&managerWake, 10);
  BeginManager();
  while (managerRun.load() != 0) {
    RunManagerRound();
    WaitEvent(&managerWake, slotRoundMs);
  }
  EndManager();
  SleepMilliseconds(100);
  return 0;
}

}  // namespace

void BeginManager() {
  activeSlots = 0;
  toldShortage = false;
  nearestEntry = 0;
  for (std::atomic<uint8_t>& rounds : slotRounds) rounds = 0;
  countChanged = 0;
  const uint32_t wanted = WantedSlots();
  while (activeSlots < wanted && AddSlot()) {
  }
  settling = activeSlots < wanted;  // one that could not be had is tried again in every round
}

void RunManagerRound() {
  Settle();
  TakeClientEntry();
  nearestEntry = FindNearest();
  changeCounter = static_cast<uint16_t>(changeCounter + changeStep);
  StoreHeader();
}

void EndManager() {
  LogLine("TAVRIX->%02i ATC Threads active......\n", static_cast<int>(activeSlots));
  for (uint32_t i = 0; i < activeSlots; ++i) EndSlot(i);
  for (uint32_t i = 0; i < maxSlots; ++i) JoinSlot(i);
  if (activeSlots != 0) SleepMilliseconds(300);
  LogLine("Done\n");
  activeSlots = 0;
  nearestEntry = 0;
  StoreHeader();
}

bool TrafficRuns() { return managerRun.load() != 0; }

bool StartTrafficThread() {
  if (!CreateAutoEvent(&managerWake)) return false;
  managerRun = 1;
  if (StartThread(&managerThread, ManagerProcedure, nullptr)) return true;
  managerRun = 0;
  CloseEvent(&managerWake);
  return false;
}

void StopTrafficThread() {
  managerRun = 0;
  if (managerThread.started.load() == 0) return;
  SignalEvent(&managerWake);
  SleepMilliseconds(100);
  JoinThread(&managerThread);
  CloseEvent(&managerWake);
}
