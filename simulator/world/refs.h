// Handles of the datarefs that the flight model and the world read or write, found once at the start so
// that a frame costs no look-ups. Never null after BindRefs.
#pragma once
#include "core/sim.h"

namespace sim {

struct Refs {
  // Position and attitude
  DataRef *latitude, *longitude, *elevation, *x, *y, *z, *vx, *vy, *vz, *ax, *ay, *az, *q, *theta, *phi, *psi;
  DataRef *rollRate, *pitchRate, *yawRate, *rollRateRad, *pitchRateRad, *yawRateRad;
  DataRef *rollAcceleration, *pitchAcceleration, *yawAcceleration;
  DataRef *groundspeed, *trueAirspeed, *indicatedAirspeed, *verticalSpeed, *verticalSpeedFpm, *aboveGround;
  DataRef *alpha, *beta, *mach, *slip, *gNormal, *gSide, *gAxial, *bodyVx, *bodyVy, *bodyVz, *variation;
  DataRef *onGround, *stallWarning, *altimeter, *radioAltimeter, *turnRate, *nosewheel, *tireSteer, *distance;
  // Controls
  DataRef *yokePitch, *yokePitchTwin, *yokeRoll, *yokeYaw, *yokeYawTwin, *elevatorTrim, *aileronTrim,
      *rudderTrim, *rudderTrimTwin, *flapRequest, *flapRatio;
  DataRef *slats, *flapLeft1, *flapRight1, *flapLeft2, *flapRight2, *elevatorDeg, *aileronDeg, *rudderDeg;
  DataRef *speedBrakeRequest, *speedBrakeRatio, *parkBrake, *brakeLeft, *brakeRight, *gearHandle, *gearDeploy;
  DataRef *overridePath, *overrideJoystick, *overridePitch, *overrideRoll, *overrideYaw, *overrideThrottles;
  DataRef *overrideGearBrake, *overrideAutopilot, *yawDamper, *landingLights;
  // Engines, fuel, weight
  DataRef *throttle, *engineThrottle, *throttleUse, *mixture, *propMode, *running, *starter, *ignition,
      *reverse;
  DataRef *n1, *n2, *egt, *itt, *fuelFlow, *oilPressure, *oilTemperature, *epr, *torque, *thrust, *manifold;
  DataRef *propRad, *propRpm, *engineRpm, *propPitch, *apuSwitch, *apuRunning, *apuN1;
  DataRef* failEngine[4];
  DataRef *fuel, *fuelTotal, *massFixed, *massJettison, *massEmpty, *massTotal;
  // Autopilot
  DataRef *apMode, *apState, *apHeading, *apAltitude, *apVerticalSpeed, *apSpeed, *apSpeedIsMach,
      *apAutothrottle;
  DataRef *directorPitch, *directorRoll;
  // Radios: two navigation and two direction finding receivers
  DataRef *navFreq[2], *navObs[2], *navHdef[2], *navVdef[2], *navFromTo[2], *navDir[2], *navDme[2],
      *navHasDme[2];
  DataRef *navCdi[2], *navSlope[2], *navId[2], *failNav[2], *adfFreq[2], *adfId[2], *failAdf[2];
  DataRef *nav2Course, *navType, *marker[3];  // outer, middle, inner
  // Weather, time
  DataRef *cloudType[3], *windAltitude[3], *windDirection[3], *windSpeed[3];
  DataRef *windHere, *windFromHere, *temperatureSea, *temperatureHere, *barometerSea, *barometerSetting;
  DataRef *rho, *sigma, *soundSpeed, *friction;
  DataRef *zulu, *localTime, *date, *simSpeed, *paused;
  DataRef *cabinAltitude, *cabinAltitudeSet, *cabinRateSet;
};
extern Refs refs;
void BindRefs();

}  // namespace sim
