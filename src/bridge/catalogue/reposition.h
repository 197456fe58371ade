// Moving and turning the aircraft on a client's word: position, attitude, body velocity, airspeed.
//
// The simulator takes a position only in its local axes (metres: x east, y up, z south) and an attitude
// only as a quaternion. Requests that belong together (latitude with longitude, pitch with bank) are taken
// in one hold of the offset lock, so that a client's record is never applied half. The writers' order
// matters: position, then attitude, then velocities, which follow the new heading.
//
// All of it runs on the simulator's thread with no lock held; the quaternion functions are pure.
#pragma once
#include "bridge/catalogue.h"

// Degrees: pitch positive nose up, bank positive right wing down, true heading.
struct Attitude {
  double pitch, bank, heading;
};
// Unit quaternion in the simulator's element order, scalar part first.
struct Quaternion {
  double e0, e1, e2, e3;
};
// The last position and attitude that clients asked for: degrees and metres above sea level.
struct RepositionRecord {
  double latitude, longitude, altitude, pitch, bank, heading;
};
extern RepositionRecord repositionRecord;

Quaternion EulerToQuaternion(const Attitude& attitude);
// Heading and bank come back within -180..180, pitch within -90..90.
Attitude QuaternionToEuler(const Quaternion& quaternion);

// The aircraft's quaternion as the simulator has it; all 0 when it publishes none.
Quaternion ReadQuaternion();
// Sets it; nothing happens when the simulator publishes none.
void SetQuaternion(const Quaternion& quaternion);

// Writers. Group of latitude, longitude and altitude (0x0560, 0x0568, 0x0570, 0x0574).
void ApplyPosition();
// Group of pitch, bank and heading (0x0578, 0x057C, 0x0580).
void ApplyAttitude();
// 0x0558: forgets the last request.
void ApplyNewReposition(const OffsetRow& row, const Staged& staged);
// 0x3090: forward body velocity, ft/s; side and vertical parts stay as they are.
void ApplyBodyVelocity(const OffsetRow& row, const Staged& staged);
// 0x02BC: airspeed, knots x 128, as level flight along the heading.
void ApplyAirspeed(const OffsetRow& row, const Staged& staged);
