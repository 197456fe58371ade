// A slot thread: one other aircraft's entry and flight record, rewritten every 200 ms.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/log.h"
#include "offsets/memory.h"
#include "traffic/traffic_state.h"

Slot slots[maxSlots];
std::atomic<uint8_t> slotRounds[maxSlots];
SlotDistance slotDistances[maxSlots];

namespace {

constexpr float radiansPerDegree = 0.01745329238474369F;
constexpr double earthRadius = 63710.0;  // 0.1 km
constexpr double degreesToWord = 65536.0 / 360;
constexpr double feetPerMetre = 3.280839;
constexpr double verticalSpeedUnit = 197.0;  // m/s to ft/min
constexpr uint16_t recordKind = 14;
constexpr uint16_t textEndAndState = 0x8C00;
constexpr uint32_t textSize = 14;
constexpr uint32_t entryBytes = 38;        // the last two are left to whoever writes them
constexpr uint32_t groundEntryBytes = 39;  // but where the simulator tells who is on the ground
constexpr uint32_t roundsToRetire = 5;

// The table's records, little-endian, byte for byte.
struct Entry {
  uint32_t id;
  float latitude, longitude;  // degrees
  float altitude;             // feet
  uint16_t heading;           // 65536 is a full turn
  uint16_t groundSpeed;       // knots
  int16_t verticalSpeed;      // ft/min
  char text[textSize];
  uint16_t endAndState;
  uint8_t onGround;  // 1, or 0 in flight
  uint8_t unused;
};
static_assert(sizeof(Entry) == trafficEntrySize);

struct FlightRecord {
  uint32_t id;
  uint16_t kind;
  int16_t angleA;  // pitch, 65536 is a full turn
  char origin[4], destination[4];
  uint16_t zero;
  int16_t angleB;  // bank
};
static_assert(sizeof(FlightRecord) == flightRecordSize);

struct Work {
  Entry entry;
  FlightRecord record;
  uint32_t writtenBytes;
  uint32_t retiredRounds;
};

// Grows as long as the module lives: a slot made anew is a new aircraft to clients.
std::atomic<uint32_t> lastSerial;

int16_t Saturated(double value) { return static_cast<int16_t>(std::clamp(value, -32768.0, 32767.0)); }

uint32_t EntryAt(uint32_t index) { return (trafficEntryOffset + trafficEntrySize * index) & 0xFFFF; }

void StoreRecords(const Work& work, uint32_t index) {
  const uint32_t recordAt = (flightRecordOffset + flightRecordSize * index) & 0xFFFF;
  const ServerLockScope lock;
  std::memcpy(offsetMemory.bytes + EntryAt(index), &work.entry, work.writtenBytes);
  std::memcpy(offsetMemory.bytes + recordAt, &work.record, sizeof work.record);
}

void StoreDistance(uint32_t index, int32_t distance) {
  const LockScope lock(&trafficSlotLock);
  slotDistances[index] = {distance, EntryAt(index)};
}

void Fill(Work* work, const PlaneSource& source, uint32_t serial) {
  Entry& entry = work->entry;
  entry.id = serial;
  entry.latitude = source.latitude;
  entry.longitude = source.longitude;
  entry.altitude = static_cast<float>(static_cast<double>(source.altitude) * feetPerMetre);
  entry.heading = static_cast<uint16_t>(source.heading * degreesToWord);
  entry.groundSpeed = source.groundSpeed;
  entry.verticalSpeed = Saturated(source.verticalSpeed * verticalSpeedUnit);
  entry.endAndState = textEndAndState;
  entry.onGround = source.ground == OnGround::Yes ? 1 : 0;
  work->writtenBytes = source.ground == OnGround::Untold ? entryBytes : groundEntryBytes;
  FlightRecord& record = work->record;
  record.id = serial;
  record.kind = recordKind;
  record.angleA = Saturated(source.pitch * degreesToWord);
  std::memcpy(record.origin, "EDDM", sizeof record.origin);
  std::memcpy(record.destination, "EDDT", sizeof record.destination);
  record.zero = 0;
  record.angleB = Saturated(source.bank * degreesToWord);
}

void RunSlotRound(Slot& slot, Work* work) {
  PlaneSource source;
  Place user;
  {
    const LockScope lock(&trafficLock);
    ConvertPlace(&userPlace);
    ConvertPlace(&planeSources[slot.index].place);
    source = planeSources[slot.index];
    user = userPlace;
    std::memcpy(work->entry.text, source.named ? source.text : modelNames[slot.index + 1], textSize);
  }
  const bool hasLeft = source.named && !source.known;  // and may be shown in another slot already
  Fill(work, source, hasLeft ? 0 : source.serial != 0 ? source.serial : slot.serial);
  StoreRecords(*work, slot.index);
  StoreDistance(slot.index, source.known ? DistanceBetween(user, source.place) : noDistance);
}

uint32_t SlotProcedure(void* argument) {
  Slot& slot = *static_cast<Slot*>(argument);
  Work work = {};
  work.writtenBytes = entryBytes;
  while (slot.run.load() != 0) {
    if (slot.retire.load() == 0) {
      RunSlotRound(slot, &work);
    } else if (++work.retiredRounds >= roundsToRetire) {
      slot.run = 0;
    }
    slotRounds[slot.index].fetch_add(1, std::memory_order_relaxed);
    WaitEvent(&slot.wake, slotRoundMs);
  }
  work.entry.id = 0;
  work.entry.latitude = work.entry.longitude = 0;
  work.record.id = 0;
  work.record.angleA = work.record.angleB = 0;
  StoreRecords(work, slot.index);
  StoreDistance(slot.index, noDistance);
  LogLine("%07.3f TAVRIX->Closing Slot Thread No. %02i......\n", static_cast<double>(PublishedRunningTime()),
          static_cast<int>(slot.index));
  slot.ended = 1;
  return 0;
}

}  // namespace

void ConvertPlace(Place* place) {
  if (place->inRadians) return;
  place->latitude *= radiansPerDegree;
  place->longitude *= radiansPerDegree;
  place->inRadians = true;
}

int32_t DistanceBetween(const Place& a, const Place& b) {
  const double latitudeA = static_cast<double>(a.latitude), latitudeB = static_cast<double>(b.latitude);
  const double turn = static_cast<double>(b.longitude) - static_cast<double>(a.longitude);
  const double cosine =
      std::sin(latitudeA) * std::sin(latitudeB) + std::cos(latitudeA) * std::cos(latitudeB) * std::cos(turn);
  // Rounding can carry it a little past 1 for equal or opposite places.
  return static_cast<int32_t>(std::acos(std::clamp(cosine, -1.0, 1.0)) * earthRadius);
}

uint32_t NewSerial() { return ++lastSerial; }

bool StartSlot(uint32_t index) {
  Slot& slot = slots[index];
  if (!CreateAutoEvent(&slot.wake)) return false;
  slot.index = index;
  slot.serial = NewSerial();
  slot.retire = 0;
  slot.ended = 0;
  slot.run = 1;
  slotRounds[index] = 0;
  if (StartThread(&slot.thread, SlotProcedure, &slot)) return true;
  slot.run = 0;
  CloseEvent(&slot.wake);
  return false;
}

void EndSlot(uint32_t index) {
  slots[index].run = 0;
  SignalEvent(&slots[index].wake);
}

void JoinSlot(uint32_t index) {
  Slot& slot = slots[index];
  if (slot.thread.started.load() == 0) return;
  JoinThread(&slot.thread);
  CloseEvent(&slot.wake);
}
