#include "shell/override_watch.h"

#include "bridge/sources.h"
#include "offsets/memory.h"

OverrideState overrideState;

namespace {

constexpr Source overrides[4] = {
    Int<"sim/operation/override/override_joystick_pitch">, Int<"sim/operation/override/override_joystick_roll">,
    Int<"sim/operation/override/override_joystick_heading">, Int<"sim/operation/override/override_throttles">};
constexpr uint32_t crashOffset = 0x0840;
constexpr int crashCalls = 5;  // of the watch, until the crash word is cleared

int crashCountdown = -1;  // calls left; -1: none
uint16_t crashWord;
bool crashWordDue;  // not stored yet: the lock was busy

void StoreCrashWord() {
  if (!TryEnterLock(&offsetLock)) return;  // again at the next call
  Store<uint16_t>(crashOffset, crashWord);
  LeaveLock(&offsetLock);
  crashWordDue = false;
}

}  // namespace

float OverrideWatch(float, float, int, void*) {
  overrideState = {IsOn(overrides[0]), IsOn(overrides[1]), IsOn(overrides[2]), IsOn(overrides[3])};
  if (crashCountdown > 0 && --crashCountdown == 0) {
    crashCountdown = -1;
    crashWord = 0;
    crashWordDue = true;
  }
  if (crashWordDue) StoreCrashWord();
  return 1.0F;
}

int OverridesOn() {
  int on = 0;
  for (int bit = 0; bit < 4; ++bit) on |= IsOn(overrides[bit]) ? 1 << bit : 0;
  return on;
}

void BeginCrashCountdown() { crashCountdown = crashCalls; }

void SetCrashed() {
  crashWord = 1;
  crashCountdown = crashCalls;
  LockScope lock(&offsetLock);
  Store<uint16_t>(crashOffset, crashWord);
  crashWordDue = false;
}
