// The flight room of the stand-in simulator: moves the user's aircraft, one step per frame, and derives
// every cockpit value from that movement. A step runs in this order: take over what plug-ins have set
// (position, attitude, velocity, rates, fuel), levers and surfaces, engines and fuel, the pilot or the
// autopilot at the controls, forces and movement, then all indications.
//
// Inner axes: north, east, down for the world; forward, right, down for the body; metres, m/s, radians
// inside, the datarefs' own units outside. Deterministic: the same frames give the same flight.
#pragma once
#include "world/world.h"

namespace sim {

// --- Called by the world --------------------------------------------------------------------------
void FlightStart();            // state, hooks and start position; after the datarefs are bound
void FlightAircraftChanged();  // `aircraft` points at another row: weights, fuel, speed, engines
double FlightTime();           // simulated seconds flown since the start (stands still while paused)

// --- State ----------------------------------------------------------------------------------------
struct Vec {
  double n = 0, e = 0, d = 0;  // world: north, east, down; body: forward, right, down
};

struct Flight {
  double time = 0;
  double zulu = 0;                     // seconds since midnight UTC
  float shownZulu = -1;                // what the dataref held last
  Vec velocity;                        // over the ground, world axes
  double q[4] = {1, 0, 0, 0};          // attitude, scalar first
  double phi = 0, theta = 0, psi = 0;  // of q, radians
  Vec rate;                            // body rates P, Q, R, rad/s
  Vec rateChange;                      // rad/s2
  Vec acceleration;                    // of the velocity, world axes, m/s2
  double mass = 1;
  double fuel[9] = {};
  Air air;
  double airspeed = 0, indicated = 0;  // m/s
  double alpha = 0, beta = 0;
  double lift = 0;              // lift coefficient in use
  double liftLimit = 1.5;       // at which the wing stalls
  double alphaNeutral = 0.035;  // angle of attack that a centred elevator asks for
  double thrust = 0;            // newtons, all engines
  bool ground = false;          // wheels touch
  double groundHeight = 0;      // terrain above sea level
  // Commands in use this frame, -1..1: nose up, right wing down, nose right.
  double elevator = 0, aileron = 0, rudder = 0;
  double flap = 0, gear = 1, speedBrake = 0;  // as deployed
  double brake = 0;                           // 0..1
  double pilotBrake = 0;
  bool keyBrake[3] = {};  // held: left, right, both
};
extern Flight flight;

// Who moves a lever: the built-in pilot leaves alone what somebody else has touched.
struct Hands {
  bool throttle = false, flaps = false, gear = false, trim = false;
};
extern Hands hands;

// --- Autopilot modes (bits of autopilot_state) -----------------------------------------------------
enum : int {
  apAutothrottle = 1,
  apHeading = 2,
  apLeveler = 4,
  apSpeedByPitch = 8,
  apVerticalSpeed = 16,
  apAltitudeArmed = 32,
  apLevelChange = 64,
  apPitch = 128,
  apNavArmed = 256,
  apNav = 512,
  apGlideArmed = 1024,
  apGlide = 2048,
  apFmsArmed = 4096,
  apFms = 8192,
  apAltitude = 16384,
  apTogaLateral = 32768,
  apTogaVertical = 65536,
  apVnavArmed = 131072,
  apVnav = 262144,
};
constexpr int apLateral = apHeading | apLeveler | apNav | apTogaLateral;
constexpr int apVertical =
    apSpeedByPitch | apVerticalSpeed | apLevelChange | apPitch | apGlide | apAltitude | apTogaVertical | apVnav;
// The state after the buttons of all bits of `wanted` have been pressed once.
int PressedState(int state, int wanted);
void PressModes(int modes);  // presses them on the panel
void DisconnectAutopilot();
void PressBackCourse();
void HookAutopilot();
double NavDeflection();  // NAV 1 needle in dots, as the autopilot uses it (back course reversed)
void StepModes();        // captures: armed modes become engaged ones

// --- Parts of a step ------------------------------------------------------------------------------
void TakeOverSetValues();           // model.cpp
void Move(double dt);               // model.cpp: forces and movement
void ShowMovement();                // instruments.cpp: position, attitude, speeds, forces
void ShowClocks(double simulated);  // time of day, cabin
void StepLevers(double dt);         // controls.cpp: flaps, gear, speed brake, brakes, surfaces
void HookControls();                // controls.cpp: twins of levers, hands on levers
void RequestFlaps(double ratio);    // as a hand would
void RequestGear(bool down);
void StepEngines(double dt);  // engines.cpp
void StartEngines();          // running, at the throttle's setting
void HoldStarter(int engine, bool held);
double ThrottleForThrust(double newtons);  // lever ratio 0..1 that gives it, all engines together
void SetThrottles(double ratio);           // as the pilot or the autothrottle
double ReadThrottle(int engine);           // what the engine gets
void StepPilot(double dt);                 // pilot.cpp: fills elevator, aileron, rudder, throttles
void PilotStart(bool atField);             // pilot.cpp: from now on circuits here
void PilotLost();                          // position was set from outside: decide anew where to fly

// Where the pilot's circuit over the field begins: local metres, heading in degrees.
void CircuitStart(double* x, double* z, double* heading);

double EmptyMass();  // without fuel, kg
// Lift that the wing gives at an angle of attack (coefficient), and the angle for a lift.
double LiftAt(double alpha);
double AngleForLift(double lift);
double DragCoefficient(double lift);

// Attitude from and to angles in radians.
void QuaternionOf(double phi, double theta, double psi, double q[4]);
void AnglesOf(const double q[4], double* phi, double* theta, double* psi);
Vec BodyOf(const double q[4], const Vec& world);
Vec WorldOf(const double q[4], const Vec& body);

// Angle within -pi..pi.
double WrapPi(double angle);

}  // namespace sim
