// The camera: in the cockpit of the user's aircraft, or where the plug-in that has it wants it.
#include "XPLMCamera.h"
#include "core/core.h"
#include "core/display.h"

namespace sim {
namespace {

struct Control {
  int owner;
  XPLMCameraControlDuration howLong;
  XPLMCameraControl_f fn;  // null: nobody has it
  void* ref;
};
Control control;
XPLMCameraPosition_t placed;  // by that plug-in, in the last frame

float Number(const char* name) {
  const DataRef* ref = FindLive(name);
  if (!ref) return 0;
  return ref->kind == Kind::Double  ? static_cast<float>(ref->doubles[0])
         : ref->kind == Kind::Float ? ref->floats[0]
                                    : 0;
}

XPLMCameraPosition_t InCockpit() {
  return {.x = Number("sim/flightmodel/position/local_x"),
          .y = Number("sim/flightmodel/position/local_y"),
          .z = Number("sim/flightmodel/position/local_z"),
          .pitch = Number("sim/flightmodel/position/theta"),
          .heading = Number("sim/flightmodel/position/psi"),
          .roll = Number("sim/flightmodel/position/phi"),
          .zoom = 1};
}

// Whoever has it loses it, and is told.
void TakeAway() {
  const Control before = control;
  control = {};
  if (!before.fn || !MayCall(before.owner)) return;
  NothingThrown(before.owner, "the camera's callback", [&] { before.fn(nullptr, 1, before.ref); });
}

}  // namespace

void PlaceCamera() {
  if (!control.fn || !MayCall(control.owner)) return;
  const Control now = control;
  XPLMCameraPosition_t place = placed;
  int wanted = 0;
  const bool answered =
      NothingThrown(now.owner, "the camera's callback", [&] { wanted = now.fn(&place, 0, now.ref); });
  if (control.fn != now.fn || control.ref != now.ref) return;  // given away meanwhile
  if (answered && wanted != 0) {
    placed = place;
  } else {
    control = {};
  }
}

void ResetCamera() { control = {}; }

void ChangeView() {
  if (control.howLong == xplm_ControlCameraUntilViewChanges) TakeAway();
}

int DropCamera(int owner, std::string*) {
  if (!control.fn || control.owner != owner) return 0;
  control = {};
  return 1;
}

}  // namespace sim

void XPLMControlCamera(XPLMCameraControlDuration howLong, XPLMCameraControl_f fn, void* ref) {
  sim::Check("XPLMControlCamera");
  if (!fn) return;
  XPLMReadCameraPosition(&sim::placed);
  sim::TakeAway();
  sim::control = {sim::CallingPlugin(), howLong, fn, ref};
}

void XPLMDontControlCamera(void) {
  sim::Check("XPLMDontControlCamera");
  if (sim::control.owner == sim::CallingPlugin()) sim::control = {};
}

int XPLMIsCameraBeingControlled(XPLMCameraControlDuration* howLong) {
  sim::Check("XPLMIsCameraBeingControlled");
  if (howLong && sim::control.fn) *howLong = sim::control.howLong;
  return sim::control.fn != nullptr;
}

void XPLMReadCameraPosition(XPLMCameraPosition_t* place) {
  sim::Check("XPLMReadCameraPosition");
  if (place) *place = sim::control.fn ? sim::placed : sim::InCockpit();
}
