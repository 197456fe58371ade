#include "shell/flight_loops.h"

#include <exception>

#include "XPLMProcessing.h"
#include "net/relay.h"
#include "shell/frame_callbacks.h"
#include "shell/override_watch.h"

namespace {

// A callback must let no exception out; after one it is simply due again in a second.
template <XPLMFlightLoop_f loop>
float Guarded(float sinceCall, float sinceLoop, int counter, void* reference) {
  try {
    return loop(sinceCall, sinceLoop, counter, reference);
  } catch (...) {
    return 1.0F;
  }
}

struct Loop {
  XPLMFlightLoop_f callback;
  float firstInterval;  // positive seconds, negative frames
};
constexpr Loop loops[] = {
    {Guarded<WriteCycle>, 1.0F},       {Guarded<RefreshCycle1>, 0.5F},
    {Guarded<RefreshCycle3>, 0.5F},    {Guarded<RefreshCycle7>, 0.6F},
    {Guarded<RefreshCycle13>, 0.5F},   {Guarded<RefreshCycle31Navigation>, 1.0F},
    {Guarded<RefreshCycle31>, 1.0F},   {Guarded<RefreshCycle59>, 1.0F},
    {Guarded<RefreshCycle157>, 1.0F},  {Guarded<RefreshCycle313>, 1.0F},
    {Guarded<OverrideWatch>, 1.0F},    {Guarded<ButtonCycle>, 1.0F},
    {Guarded<MultiplayerCycle>, 0.2F},
};

float RelayStarter(float, float, int, void*) {
  StartRelayThread();
  return 0;
}

float RelayFrame(float, float, int, void*) {
  ApplyRelayRecord();
  return -1;
}

constexpr Loop clientLoops[] = {
    {Guarded<RelayStarter>, -1.0F},
    {Guarded<RelayFrame>, 1.0F},
};

XPLMFlightLoop_f registeredStart;
bool registered;
bool clientRegistered;

}  // namespace

void RegisterFlightLoops(XPLMFlightLoop_f deferredStart) {
  if (registered) return;
  registeredStart = deferredStart;
  XPLMRegisterFlightLoopCallback(deferredStart, -1.0F, nullptr);
  for (const Loop& loop : loops) XPLMRegisterFlightLoopCallback(loop.callback, loop.firstInterval, nullptr);
  registered = true;
}

void UnregisterFlightLoops() {
  if (!registered) return;
  for (const Loop& loop : loops) XPLMUnregisterFlightLoopCallback(loop.callback, nullptr);
  XPLMUnregisterFlightLoopCallback(registeredStart, nullptr);
  registered = false;
}

void RegisterClientFlightLoops() {
  if (clientRegistered) return;
  for (const Loop& loop : clientLoops) {
    XPLMRegisterFlightLoopCallback(loop.callback, loop.firstInterval, nullptr);
  }
  clientRegistered = true;
}

void UnregisterClientFlightLoops() {
  if (!clientRegistered) return;
  for (const Loop& loop : clientLoops) XPLMUnregisterFlightLoopCallback(loop.callback, nullptr);
  clientRegistered = false;
}
