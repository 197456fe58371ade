#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/locks.h"
#include "bridge/catalogue.h"
#include "bridge/sources.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

PlaneSource planeSources[maxSlots];
Place userPlace;

namespace {

constexpr double knotsPerMetre = 1.94384;
constexpr Source userLatitude = DoubleAt(0x0560), userLongitude = DoubleAt(0x0568);

// Saturated at the type's limits; what is no number is 0.
template <typename T>
T Whole(double value) {
  if (!std::isfinite(value)) return 0;
  return static_cast<T>(std::clamp(value, static_cast<double>(std::numeric_limits<T>::min()),
                                   static_cast<double>(std::numeric_limits<T>::max())));
}

float Single(double value) { return std::isfinite(value) ? static_cast<float>(value) : 0; }

// The handles of an aircraft stand at the offsets of its entry and flight record.
PlaneSource ReadPlane(uint32_t slot) {
  const uint32_t entry = trafficEntryOffset + trafficEntrySize * slot;
  const uint32_t record = flightRecordOffset + flightRecordSize * slot;
  PlaneSource plane = {};
  if (DataRefMemBlock[entry + 4] == nullptr || DataRefMemBlock[entry + 8] == nullptr) return plane;
  plane.known = true;
  plane.latitude = Single(ReadSource(DoubleAt(entry + 4)));
  plane.longitude = Single(ReadSource(DoubleAt(entry + 8)));
  plane.altitude = Single(ReadSource(DoubleAt(entry + 12)));
  const double heading = std::fmod(ReadSource(FloatAt(entry + 16)), 360);
  plane.heading = static_cast<uint16_t>(Whole<uint16_t>(heading < 0 ? heading + 360 : heading) % 360);
  const double east = ReadSource(FloatAt(entry + 18));
  const double south = ReadSource(FloatAt(entry + 19));
  plane.groundSpeed = Whole<uint16_t>(std::hypot(east, south) * knotsPerMetre);
  plane.verticalSpeed = Whole<int16_t>(ReadSource(FloatAt(entry + 20)));
  plane.pitch = Whole<int16_t>(ReadSource(FloatAt(record + 6)));
  plane.bank = Whole<int16_t>(ReadSource(FloatAt(record + 18)));
  plane.place = {plane.latitude, plane.longitude, false};
  return plane;
}

}  // namespace

bool FillTrafficPositions() {
  const uint32_t others = std::clamp(aircraftCount.load(), 1U, maxModels) - 1;
  const uint32_t positioned = std::min(others, positionedPlanes);
  PlaneSource planes[positionedPlanes];
  for (uint32_t slot = 0; slot < positioned; ++slot) planes[slot] = ReadPlane(slot);
  const Place user = {Single(ReadSource(userLatitude)), Single(ReadSource(userLongitude)), false};

  if (TryEnterLock(&trafficLock) == 0) return false;
  std::copy_n(planes, positioned, planeSources);
  // The slot of an aircraft that has gone shows its last place until it is removed, but is nowhere near.
  for (uint32_t slot = positioned; slot < positionedPlanes; ++slot) planeSources[slot].known = false;
  userPlace = user;
  LeaveLock(&trafficLock);
  return true;
}
