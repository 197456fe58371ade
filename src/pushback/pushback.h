// The room pushback/: tows the aircraft on a client's word (a command at 0x31F4) until the parking brake is
// set.
//
// While it runs, the aircraft's local velocity and, in a turn, its attitude are written every frame, with
// joystick, gear brakes and artificial stability overridden; the overrides are given back whenever it ends.
// After a stop the aircraft rolls out over a few frames. The user's settings say how fast it goes and how
// sharply it turns. Everything here runs on the simulator's thread with no lock held.
#pragma once
#include <cstdint>

constexpr int pushbackStraight = 0, pushbackTurnUp = 1, pushbackTurnDown = 2, pushbackOff = 3;

// Pushback as clients see it: 0 straight, 1 turning with the heading increasing, 2 decreasing, 3 off.
extern int pushbackMode;

// Hands this room's functions to the rows of the catalogue, which know nothing of it. At start.
void ConnectPushback();
// Finds the datarefs, reads the settings, registers the distance monitor (called every second). At enable.
void InitPushback();
// Ends pushback, gives the overrides back, unregisters the monitor. At disable; does nothing when not begun.
void StopPushback();
// Reads both settings (section "PUSHBACK SETTINGS"); a missing key is written with its default. After the
// settings window has changed one.
void LoadPushbackSettings();

// A client's command: 0, 1, 2 start in that mode unless the parking brake is set, 3 stops, anything above
// starts straight.
void CommandPushback(uint32_t command);
// What the window shows.
enum class BrakeEffect : uint8_t { None, Refused, Ended };
struct PushbackView {
  bool begun;         // commands are taken: InitPushback has run
  int mode;           // pushbackMode
  double speed;       // that is applied, m/s along the heading, negative is backwards; 0 while nothing moves
  BrakeEffect brake;  // what the parking brake, which is still set, did to the last command
  double maxSpeed;    // settings
  float maxTurnSpeed;
};
PushbackView LookAtPushback();
// One frame's work; every frame.
void PushbackStep();
// The aircraft has crashed: ends pushback at once, without rolling out; the next turn begins slowly again.
void AbortPushback();
