#include "shell/flight_loops.h"

#include "XPLMProcessing.h"
#include "XPLMUtilities.h"
#include "base/log.h"
#include "net/relay.h"
#include "panels/panels.h"
#include "platform/exceptions.h"
#include "shell/frame_callbacks.h"
#include "shell/override_watch.h"

namespace {

// After an exception of our own a callback is simply due again in a second.
template <XPLMFlightLoop_f loop>
constexpr XPLMFlightLoop_f guarded = Guarded<loop, 1>::Call;

struct Loop {
  XPLMFlightLoop_f callback;
  float firstInterval;  // positive seconds, negative frames
};
constexpr Loop loops[] = {
    {guarded<WriteCycle>, 1.0F},       {guarded<RefreshCycle1>, 0.5F},
    {guarded<RefreshCycle3>, 0.5F},    {guarded<RefreshCycle7>, 0.6F},
    {guarded<RefreshCycle13>, 0.5F},   {guarded<RefreshCycle31Navigation>, 1.0F},
    {guarded<RefreshCycle31>, 1.0F},   {guarded<RefreshCycle59>, 1.0F},
    {guarded<RefreshCycle157>, 1.0F},  {guarded<RefreshCycle313>, 1.0F},
    {guarded<OverrideWatch>, 1.0F},    {guarded<ButtonCycle>, 1.0F},
    {guarded<MultiplayerCycle>, 0.2F},
};

float RelayStarter(float, float, int, void*) {
  StartRelayThread();
  return 0;
}

float RelayFrame(float, float, int, void*) {
  ReportLostLines(XPLMDebugString);
  ApplyRelayRecord();
  FollowPanels();
  return -1;
}

constexpr Loop clientLoops[] = {
    {guarded<RelayStarter>, -1.0F},
    {guarded<RelayFrame>, 1.0F},
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
