#include "bridge/catalogue/reposition.h"

#include <algorithm>
#include <cmath>

#include "XPLMGraphics.h"
#include "bridge/catalogue/units.h"
#include "bridge/slew.h"
#include "offsets/memory.h"

RepositionRecord repositionRecord;

namespace {

constexpr Source attitudeQuaternion = FloatElement<"sim/flightmodel/position/q">(0);
constexpr Source localVx = Float<"sim/flightmodel/position/local_vx">,
                 localVy = Float<"sim/flightmodel/position/local_vy">,
                 localVz = Float<"sim/flightmodel/position/local_vz">;

// Takes a staged value when its flag is up, else what the offset memory holds. Offset lock held.
template <typename T>
T TakeLocked(uint32_t offset, bool* taken) {
  if (pendingFlags.flags[offset] == 0) return Load<T>(offset);
  pendingFlags.flags[offset] = 0;
  *taken = true;
  return LoadPending<T>(offset);
}

void SetLocalVelocity(double x, double y, double z) {
  SetSource(localVx, x);
  SetSource(localVy, y);
  SetSource(localVz, z);
}

}  // namespace

Quaternion EulerToQuaternion(const Attitude& attitude) {
  const double a = attitude.heading * radians / 2;
  const double b = attitude.pitch * radians / 2;
  const double c = attitude.bank * radians / 2;
  const double sinA = std::sin(a), cosA = std::cos(a);
  const double sinB = std::sin(b), cosB = std::cos(b);
  const double sinC = std::sin(c), cosC = std::cos(c);
  return {cosA * cosB * cosC + sinA * sinB * sinC, cosA * cosB * sinC - sinA * sinB * cosC,
          cosA * sinB * cosC + sinA * cosB * sinC, sinA * cosB * cosC - cosA * sinB * sinC};
}

Attitude QuaternionToEuler(const Quaternion& q) {
  // Rounding can carry the argument a little past 1 when the nose points straight up or down.
  const double sine = std::clamp(2 * (q.e0 * q.e2 - q.e1 * q.e3), -1.0, 1.0);
  return {std::asin(sine) / radians,
          std::atan2(2 * (q.e0 * q.e1 + q.e2 * q.e3), 1 - 2 * (q.e1 * q.e1 + q.e2 * q.e2)) / radians,
          std::atan2(2 * (q.e0 * q.e3 + q.e1 * q.e2), 1 - 2 * (q.e2 * q.e2 + q.e3 * q.e3)) / radians};
}

Quaternion ReadQuaternion() {
  float q[4] = {};
  if (const XPLMDataRef handle = HandleOf(attitudeQuaternion)) XPLMGetDatavf(handle, q, 0, 4);
  return {q[0], q[1], q[2], q[3]};
}

void SetQuaternion(const Quaternion& quaternion) {
  const XPLMDataRef handle = HandleOf(attitudeQuaternion);
  if (!handle) return;
  float q[4] = {static_cast<float>(quaternion.e0), static_cast<float>(quaternion.e1),
                static_cast<float>(quaternion.e2), static_cast<float>(quaternion.e3)};
  XPLMSetDatavf(handle, q, 0, 4);
}

void ApplyPosition() {
  bool taken = false;
  bool fineAltitude = false;
  int64_t latitude, longitude, altitude;
  {
    LockScope scope(&offsetLock);
    latitude = TakeLocked<int64_t>(0x0560, &taken);
    longitude = TakeLocked<int64_t>(0x0568, &taken);
    altitude = TakeLocked<int64_t>(0x0570, &fineAltitude);
    // Whole metres alone mean exactly that many metres; beside a full altitude they are part of it.
    bool wholeMetres = false;
    const int32_t metres = TakeLocked<int32_t>(0x0574, &wholeMetres);
    if (wholeMetres && !fineAltitude) altitude = static_cast<int64_t>(metres) * (int64_t{1} << 32);
    taken = taken || fineAltitude || wholeMetres;
  }
  if (!taken) return;
  repositionRecord.latitude =
      std::clamp(static_cast<double>(latitude) * 90 / (quarterMeridian * twoTo32), -90.0, 90.0);
  repositionRecord.longitude = static_cast<double>(longitude) * 360 / twoTo64;
  repositionRecord.altitude = static_cast<double>(altitude) / twoTo32;

  double x = 0, y = 0, z = 0;
  XPLMWorldToLocal(repositionRecord.latitude, repositionRecord.longitude, repositionRecord.altitude, &x, &y,
                   &z);
  SetSource(Double<"sim/flightmodel/position/local_x">, x);
  SetSource(Double<"sim/flightmodel/position/local_y">, y);
  SetSource(Double<"sim/flightmodel/position/local_z">, z);
  MoveFreeze(x, z);
}

void ApplyAttitude() {
  bool taken = false;
  int32_t pitch, bank;
  uint32_t heading;
  {
    LockScope scope(&offsetLock);
    pitch = TakeLocked<int32_t>(0x0578, &taken);
    bank = TakeLocked<int32_t>(0x057C, &taken);
    heading = TakeLocked<uint32_t>(0x0580, &taken);
  }
  if (!taken) return;
  const Attitude attitude = {pitch * -(360 / twoTo32), bank * -(360 / twoTo32), heading * (360 / twoTo32)};
  repositionRecord.pitch = attitude.pitch;
  repositionRecord.bank = attitude.bank;
  repositionRecord.heading = attitude.heading;
  SetQuaternion(EulerToQuaternion(attitude));
  // With its path override on, the simulator draws from the three angles and not from the quaternion.
  if (IsOn(IntElement<"sim/operation/override/override_planepath">(0))) {
    SetSource(Float<"sim/flightmodel/position/theta">, attitude.pitch);
    SetSource(Float<"sim/flightmodel/position/phi">, attitude.bank);
    SetSource(Float<"sim/flightmodel/position/psi">, attitude.heading);
  }
}

void ApplyNewReposition(const OffsetRow&, const Staged&) { repositionRecord = {}; }

void ApplyBodyVelocity(const OffsetRow&, const Staged& staged) {
  // Body axes: x right, y up, z back.
  const double bx = ReadSource(Float<"sim/flightmodel/forces/vx_acf_axis">);
  const double by = ReadSource(Float<"sim/flightmodel/forces/vy_acf_axis">);
  const double bz = -staged.number * metresPerFoot;
  const Attitude attitude = QuaternionToEuler(ReadQuaternion());
  const double phi = attitude.bank * radians;
  const double theta = attitude.pitch * radians;
  const double psi = attitude.heading * radians;
  const double x1 = bx * std::cos(phi) + by * std::sin(phi);
  const double y1 = by * std::cos(phi) - bx * std::sin(phi);
  const double y2 = y1 * std::cos(theta) - bz * std::sin(theta);
  const double z2 = bz * std::cos(theta) + y1 * std::sin(theta);
  SetLocalVelocity(x1 * std::cos(psi) - z2 * std::sin(psi), y2, z2 * std::cos(psi) + x1 * std::sin(psi));
}

void ApplyAirspeed(const OffsetRow&, const Staged& staged) {
  const double speed = staged.number / 128 / knotsPerMetre;
  const double psi = QuaternionToEuler(ReadQuaternion()).heading * radians;
  SetLocalVelocity(speed * std::sin(psi), 0, -speed * std::cos(psi));
}
