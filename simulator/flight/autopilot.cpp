// The autopilot's mode logic: what a press of a mode button does, and when armed modes engage.
#include <cmath>

#include "flight/flight.h"
#include "world/refs.h"

namespace sim {

namespace {

bool backCourse = false;

// One press of the button of a single mode.
int Press(int state, int mode) {
  switch (mode) {
    case apAutothrottle:
    case apAltitudeArmed:
    case apFmsArmed:
    case apVnavArmed:
      return state ^ mode;
    case apNavArmed:
      return (state & (apNavArmed | apNav)) != 0 ? state & ~(apNavArmed | apNav) : state | apNavArmed;
    case apGlideArmed:
      return (state & (apGlideArmed | apGlide)) != 0 ? state & ~(apGlideArmed | apGlide) : state | apGlideArmed;
    case apNav:
    case apGlide:
    case apVnav:
    case apFms:
      // Engage by themselves once armed; a press can only end them, unless the autopilot is overridden.
      if ((state & mode) == 0 && I(refs.overrideAutopilot) == 0) return state;
      break;
    default:
      break;
  }
  if ((state & mode) != 0) return state & ~mode;
  if ((mode & apLateral) != 0) state &= ~apLateral;
  if ((mode & apVertical) != 0) state &= ~apVertical;
  return state | mode;
}

int FilterState(DataRef* self, int wanted) { return PressedState(I(self), wanted); }

void StateChanged(DataRef* self, int, int) { I(refs.apAutothrottle) = (I(self) & apAutothrottle) != 0 ? 1 : 0; }

void AutothrottleChanged(DataRef* self, int, int) {
  I(refs.apState) = I(self) > 0 ? I(refs.apState) | apAutothrottle : I(refs.apState) & ~apAutothrottle;
}

void ModeChanged(DataRef* self, int, int) {
  if (I(self) <= 0) I(refs.apState) &= apAutothrottle;  // disconnected: no mode stays on
}

}  // namespace

int PressedState(int state, int wanted) {
  for (int mode = 1; mode <= apVnav; mode <<= 1) {
    if ((wanted & mode) != 0) state = Press(state, mode);
  }
  return state;
}

void PressModes(int modes) {
  I(refs.apState) = PressedState(I(refs.apState), modes);
  if (circuitFlight) StateChanged(refs.apState, 0, 1);
}

void DisconnectAutopilot() {
  I(refs.apMode) = 0;
  I(refs.apState) = 0;
  I(refs.apAutothrottle) = 0;
}

void PressBackCourse() { backCourse = !backCourse; }

// Pressing works whether anything flies or not.
void HookAutopilot() {
  backCourse = false;
  refs.apState->filterInt = FilterState;
  if (!circuitFlight) return;
  refs.apState->onSet = StateChanged;
  refs.apAutothrottle->onSet = AutothrottleChanged;
  refs.apMode->onSet = ModeChanged;
}

double NavDeflection() {
  double dots = static_cast<double>(F(refs.navHdef[0]));
  return backCourse ? -dots : dots;
}

void StepModes() {
  int& state = I(refs.apState);
  double altitude = D(refs.elevation) / ftToM;
  double off = static_cast<double>(F(refs.apAltitude)) - altitude;
  double climb = -flight.velocity.d / ftToM;  // ft/s
  bool capturing = std::fabs(off) < std::fmax(50, std::fabs(climb) * 8);
  if (((state & apAltitudeArmed) != 0 || (state & apLevelChange) != 0) && capturing) {
    state = (state & ~(apVertical | apAltitudeArmed)) | apAltitude;
  }
  bool received = I(refs.navType, 0) >= 3 && I(refs.navType, 0) <= 5;
  if ((state & apNavArmed) != 0 && received && std::fabs(NavDeflection()) < 2) {
    state = (state & ~(apLateral | apNavArmed)) | apNav;
  }
  if ((state & apNav) != 0 && !received) state = (state & ~apNav) | apLeveler;
  bool glide = I(refs.navCdi[0]) != 0;
  if ((state & apGlideArmed) != 0 && glide && std::fabs(F(refs.navVdef[0])) < 0.4F) {
    state = (state & ~(apVertical | apGlideArmed | apAltitudeArmed)) | apGlide;
  }
  if ((state & apGlide) != 0 && !glide) state = (state & ~apGlide) | apPitch;
}

}  // namespace sim
