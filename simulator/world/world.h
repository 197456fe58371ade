// The world of the stand-in simulator: what is published before anything flies. Its room holds the flat
// table of datarefs and commands, the aircraft that can be chosen with their add-ons, the reference
// airport with its navaids, the weather at a height, the other aircraft, and the projection between world
// and local coordinates. The flight room (flight/flight.h) moves the user's aircraft through it.
//
// Everything runs on the simulator's own thread. Units: metres, seconds, kilograms, degrees, m/s, unless a
// name says otherwise; headings are true, clockwise from north.
#pragma once
#include <numbers>
#include <span>

#include "core/sim.h"

namespace sim {

constexpr double pi = std::numbers::pi;
constexpr double degToRad = pi / 180;
constexpr double radToDeg = 180 / pi;
constexpr double ktToMs = 1852.0 / 3600;
constexpr double ftToM = 0.3048;
constexpr double gravity = 9.80665;

// --- Tables ---------------------------------------------------------------------------------------
struct DataRefRow {
  const char* name = "";
  Kind kind = Kind::Float;
  int count = 1;
  bool writable = false;
  double start = 0;       // every element
  const char* text = "";  // start content of Kind::Bytes
  const char* unit = "";  // for the reader of the table
};
extern const std::span<const DataRefRow> datarefRows;

// Publishes one row with its start value and returns its record; a name that is live already with another
// shape (the console may do that) is left as it is and null is returned.
DataRef* PublishRow(const DataRefRow& row);

// Element i of a dataref of the stated kind. A record that the console has redefined with another shape
// gives a dummy, so that the flight model neither fails nor writes past an end.
float& F(DataRef* ref, int i = 0);
int& I(DataRef* ref, int i = 0);
double& D(DataRef* ref, int i = 0);
void SetText(DataRef* ref, const char* text);
// Element i of a dataref of any numeric kind; integers lose the fraction.
void StoreElement(DataRef* ref, int i, double value);

void PublishCommands();  // every stock command

// --- Aircraft -------------------------------------------------------------------------------------
// Figures of one aircraft. The flight model's coefficients are chosen for a plausible feel, not taken
// from any type's data.
struct Aircraft {
  const char* name = "";       // as --aircraft takes it
  const char* title = "";      // acf_descrip
  const char* file = "";       // file name of the model
  const char* folder = "";     // below the system folder, with '/' as separator
  const char* signature = "";  // plug-in that comes with the aircraft
  int engineType = 5;          // codes of acf_en_type
  int engines = 2;
  int tanks = 1;
  double tankShare[9] = {1};  // of the capacity
  double emptyKg = 0, payloadKg = 0, fuelMaxKg = 0, fuelStartKg = 0, maxKg = 0;
  double wingArea = 0;      // m2
  double dragZero = 0.025;  // zero-lift drag coefficient
  double dragLift = 0.045;  // per lift coefficient squared
  double liftZero = 0.25;   // lift coefficient at angle of attack 0, flaps in
  double liftMax = 1.5;     // clean
  double flapLift = 0.9, flapDrag = 0.08, flapDegrees = 40, gearDrag = 0.02, brakeDrag = 0.06;
  double maxThrust = 0;                           // newtons per engine, at rest at sea level
  double thrustFade = 0;                          // share of thrust lost at Vne (propellers)
  double fuelFlow = 0;                            // kg/s per engine at full power
  double vne = 0, circuitKt = 0, approachKt = 0;  // knots indicated
  double circuitHeight = 0;                       // metres above the airport
  double gearHeight = 1;                          // reference point above ground on the wheels, metres
  double wheelBase = 5;
  bool retractable = false;
  bool mixture = false;
  double redlineRad = 0;  // propeller or rotor at full power, rad/s
  double torqueMaxNm = 0;
};
extern const std::span<const Aircraft> aircraftTable;
extern const Aircraft* aircraft;  // the user's, never null

// Publishes what the add-on of the aircraft brings and withdraws what the previous one brought.
void PublishAddon(const Aircraft& which);
// The records of an earlier run are gone: nothing is to be withdrawn.
void ForgetAddon();
// Once per frame: copies flight values into the add-on's own datarefs (temperatures, fuel), and what its
// switches that are looked at then do.
void StepAddon();

// --- Reference airport, terrain, navaids ----------------------------------------------------------
// Runway 07 of the field: centre at the reference point, 3,000 m long.
constexpr double refLat = 47.80, refLon = 9.30;  // degrees
constexpr double fieldElevation = 432;           // metres above sea level
constexpr double runwayCourse = 70;              // degrees true
constexpr double runwayHalf = 1500;              // metres
// Magnetic bearing = true bearing + this (the dataref counts west positive).
constexpr double magneticVariation = -2.5;

void FillNavAids();
// Tunes the receivers and fills every radio indication; `now` is simulated seconds since the start.
void StepRadios(double now);

// --- Air ------------------------------------------------------------------------------------------
struct Air {
  double windEast = 0, windNorth = 0;  // m/s, where it blows to
  double temperature = 15;             // degrees Celsius
  double rho = 1.225;                  // kg/m3
  double sound = 340;                  // m/s
  double pressureInHg = 29.92;
};
// The air at a height above sea level by the weather datarefs; fills the ambient datarefs as well.
Air AirAt(double altitude);

// --- Other aircraft -------------------------------------------------------------------------------
void PublishPlanes(int active);
// Moves the other aircraft to where they are `now` seconds after the start.
void StepPlanes(double now);

// True while the flight model derives values, false when every value stays as set.
extern bool circuitFlight;
extern int activePlanes;  // the user's included

}  // namespace sim
