#include "controls/axes.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "base/locks.h"
#include "base/log.h"
#include "base/log_quiet.h"
#include "controls/axis_writes.h"
#include "platform/clock.h"

namespace {

constexpr int framesPerAsking = 120;
constexpr float absent = std::numeric_limits<float>::quiet_NaN();

// Nanoseconds.
constexpr int64_t oneSecond = 1'000'000'000;
constexpr int64_t silence = oneSecond / 2;  // so long without a reading: the device is gone
constexpr int64_t firstRetry = oneSecond / 4, longestRetry = 2 * oneSecond;
// Shares of an axis's way.
constexpr double takeOverMove = 0.01;
constexpr double choosingMove = 0.25;
constexpr double catchUpRate = 1;        // a second
constexpr double longestStepTime = 0.1;  // seconds; of a round after a pause

struct Plan {
  AxisAssignment controls[axisControlCount];
  uint32_t number = 0;  // counts the changes
};

Lock axisLock;  // guards all up to the blank line
Plan plan;
float told[maxAxes];   // readings: from the simulator, or, for windows, from the devices
size_t toldCount;      // of them by the simulator
unsigned overridesOn;  // the simulator's, as the last frame that was asked told them
uint32_t toldPlan;     // the plan that was there then
AxisMove lastMove;
float baselines[maxAxes];  // of choosing by moving
AxisInput followed;        // axis whose ends are wanted
AxisEnds ends;

std::atomic<uint32_t> roundDue;     // by a frame
std::atomic<uint32_t> roundWanted;  // by the last round: something goes on though no reading changes
std::atomic<uint32_t> isAskedFor;   // by a window
std::atomic<unsigned> untried;      // overrides that a control may yet need
std::atomic<uint32_t> newPlan;      // not in force yet

// Simulator's thread.
AllAxisSettings inFile;
bool anyAssigned;
int askedFrames;

// --- The joystick thread's own
// ----------------------------------------------------------------------------------

struct InputState {
  bool seen = false;     // gave a reading since it was assigned
  bool waits = true;     // takes over when it is moved from `reference`
  bool gone = false;     // has given no reading for a while
  bool catches = false;  // is on its way from the value in force
  bool acts = false;     // has a value in force
  bool known = false;    // had one before its control was assigned anew: it counts beside the other axis's
  int64_t silentSince = 0;
  double reference = 0, reading = 0, value = 0;
};
struct ControlState {
  InputState inputs[2];
  bool written = false;
  int detent = 0;
};
struct Device {
  bool missing = false;
  int64_t gap = 0, nextTry = 0;
};

Plan inForce;
ControlState states[axisControlCount];
AxisOutput outputs[axisControlCount];
Device devices[axisJoysticks];
float readings[maxAxes];
bool wasAskedFor;
int64_t lastRound;
unsigned tried;  // overrides that have been asked for

struct Round {
  int64_t now;
  double elapsed;  // seconds
  bool goesOn = false;
  std::string gone[axisJoysticks], back[axisJoysticks];  // names of controls
  unsigned overrides = 0;                                // that the controls need from now on
};

// An axis that a control keeps when it is assigned anew: where it stands is known, in the new terms; it takes
// over when it is moved.
void KeepInputs(const ControlState& before, const AxisAssignment& old, const AxisAssignment& next,
                ControlState* after) {
  after->detent = before.detent;
  for (size_t which = 0; which < 2; ++which) {
    for (size_t former = 0; former < 2; ++former) {
      const InputState& kept = before.inputs[former];
      if (next.inputs[which] != old.inputs[former] || !(kept.acts || kept.known)) continue;
      InputState& state = after->inputs[which];
      state = kept;
      state.waits = state.known = true;
      state.acts = kept.acts && kept.waits;  // a device that was gone: the control glides when it is moved
      state.catches = false;
      if (!kept.waits) state.reference = kept.reading;
      state.value = Deflect(next.tunes[which], next.travel, kept.reading);
      break;
    }
  }
}

// Once the overrides have been told that are on since it was made.
void TakePlan() {
  Plan next;
  {
    const LockScope lock(&axisLock);
    if (plan.number == inForce.number || toldPlan != plan.number) return;
    next = plan;
  }
  for (size_t i = 0; i < axisControlCount; ++i) {
    if (next.controls[i] == inForce.controls[i]) continue;
    ControlState state;
    KeepInputs(states[i], inForce.controls[i], next.controls[i], &state);
    states[i] = state;
    // What waits for its turn at the same place goes on.
    const AxisAssignment &one = inForce.controls[i], &other = next.controls[i];
    if (!std::equal(std::begin(one.targets), std::end(one.targets), other.targets)) outputs[i] = {};
  }
  inForce = next;
}

// After each reading, under the lock.
void FollowEnds() {
  if (!IsAssigned(followed)) return;
  const double reading = static_cast<double>(told[PlaceOf(followed)]);
  if (!IsReading(reading)) return;
  ends.low = std::fmin(ends.low, reading);
  ends.high = std::fmax(ends.high, reading);
}

void ReadDevices(Round* round) {
  if constexpr (systemHasJoysticks) {
    bool needed[axisJoysticks] = {};
    if (isAskedFor.load() != 0) std::fill(std::begin(needed), std::end(needed), true);
    for (const AxisAssignment& control : inForce.controls) {
      for (const AxisInput& input : control.inputs) {
        if (control.targetCount > 0 && IsAssigned(input)) needed[input.joystick] = true;
      }
    }
    for (int joystick = 0; joystick < axisJoysticks; ++joystick) {
      Device& device = devices[joystick];
      float axes[joystickAxes];
      std::fill(std::begin(axes), std::end(axes), absent);
      if (needed[joystick] && (!device.missing || round->now >= device.nextTry)) {
        device.missing = !ReadJoystick(joystick, axes);
        // A device that is not there is slow to say so.
        device.gap = device.missing ? std::clamp(device.gap * 2, firstRetry, longestRetry) : 0;
        device.nextTry = round->now + device.gap;
      }
      std::copy(std::begin(axes), std::end(axes), readings + joystick * joystickAxes);
    }
    const LockScope lock(&axisLock);
    std::copy(std::begin(readings), std::end(readings), told);
    FollowEnds();
  } else {
    const LockScope lock(&axisLock);
    std::copy(std::begin(told), std::end(told), readings);
  }
}

// Which axis a person moves, for windows.
void WatchMoves() {
  const bool isAsked = isAskedFor.load() != 0, isNew = isAsked && !wasAskedFor;
  wasAskedFor = isAsked;
  if (!isAsked) return;
  const LockScope lock(&axisLock);
  if (isNew) std::fill(std::begin(baselines), std::end(baselines), absent);
  for (int place = 0; place < maxAxes; ++place) {
    const float reading = told[place];
    float& baseline = baselines[place];
    if (!IsReading(static_cast<double>(reading))) continue;
    if (std::isnan(baseline)) baseline = reading;
    if (std::fabs(static_cast<double>(reading - baseline)) < choosingMove) continue;
    baseline = reading;
    lastMove = {{place / axesOfJoystick, place % axesOfJoystick}, lastMove.count + 1};
  }
}

void AddName(std::string* names, size_t control) {
  *names += (names->empty() ? "" : ", ") + NameOfControl(control);
}

// Follows one axis. Returns whether it acts in this round.
bool Follow(size_t control, size_t which, Round* round) {
  const AxisAssignment& assignment = inForce.controls[control];
  const AxisInput& input = assignment.inputs[which];
  InputState& state = states[control].inputs[which];
  if (!IsAssigned(input)) return false;
  const double reading = static_cast<double>(readings[PlaceOf(input)]);
  if (!IsReading(reading)) {
    if (state.gone) return false;
    if (state.silentSince == 0) state.silentSince = round->now;
    if (round->now - state.silentSince < silence) {
      round->goesOn = true;
      return false;
    }
    state.gone = state.waits = true;
    state.seen = state.catches = false;
    AddName(&round->gone[input.joystick], control);
    return false;
  }
  const bool wasSilent = std::exchange(state.silentSince, 0) != 0;
  if (state.gone) AddName(&round->back[input.joystick], control);
  state.gone = false;
  if (!state.seen) state.reference = reading;
  state.seen = true;
  const AxisTune& tune = assignment.tunes[which];
  if (state.waits) {
    const double way = tune.calibration.high - tune.calibration.low;
    if (std::fabs(reading - state.reference) < takeOverMove * way) return false;
    state.waits = false;
    state.reading = reading;
    if (state.acts) {  // from what it has left in force, beginning with the next round
      state.catches = round->goesOn = true;
      return true;
    }
    state.acts = true;
    state.value = Deflect(tune, assignment.travel, reading);
  }
  state.reading = reading;
  const double deflection = Deflect(tune, assignment.travel, reading);
  if (wasSilent) state.catches = true;  // nobody knows what it did meanwhile
  if (state.catches) {
    const double step = catchUpRate * round->elapsed;
    state.value += std::clamp(deflection - state.value, -step, step);
    state.catches = state.value != deflection;
    round->goesOn = round->goesOn || state.catches;
  } else {
    state.value = deflection;
  }
  return true;
}

double ValueInForce(const ControlState& state, Travel travel) {
  const InputState &own = state.inputs[0], &combined = state.inputs[1];
  if (!combined.acts && !combined.known) return own.value;
  return Combine(travel, own.acts || own.known ? own.value : 0, combined.value);
}

void FollowControl(size_t control, Round* round) {
  const AxisAssignment& assignment = inForce.controls[control];
  if (assignment.targetCount == 0) return;
  ControlState& state = states[control];
  const bool ownActs = Follow(control, 0, round), combinedActs = Follow(control, 1, round);
  if (!ownActs && !combinedActs) return;
  double deflection = ValueInForce(state, assignment.travel);
  if (assignment.detents > 0) {
    state.detent =
        NextDetent({assignment.bounds, static_cast<size_t>(assignment.detents)}, state.detent, deflection);
    deflection = static_cast<double>(state.detent) / (assignment.detents - 1);
  }
  const AxisTarget& target = assignment.targets[0];
  const double number = NumberOf(target, assignment.travel, deflection);
  AxisOutput& output = outputs[control];
  if (state.written && !IsNews(target, output.number, number)) return;
  state.written = true;
  output.number = Rounded(target, number);
  output.due = (1u << assignment.targetCount) - 1;
  round->overrides |= assignment.overrides & ~tried;
}

void WriteAll(Round* round) {
  OverrideChange change;
  for (const AxisAssignment& control : inForce.controls) {
    if (control.targetCount > 0) change.needed |= control.overrides;
  }
  change.taken = round->overrides;
  change.isDue = round->overrides != 0 || (tried & ~change.needed) != 0;
  tried = (tried & change.needed) | round->overrides;
  untried = change.needed & ~tried;
  if (change.isDue) {
    const LockScope lock(&axisLock);
    change.present = overridesOn;
  }
  if (WriteAxes(inForce.controls, outputs, change)) round->goesOn = true;
}

// A loose plug comes and goes.
void TellGone(const Round& round) {
  static QuietMinute lines = {.what = "TAVRIX->Joysticks came and went", .most = 30, .began = 0, .turns = 0};
  const bool any =
      std::any_of(std::begin(round.gone), std::end(round.gone), [](auto& names) { return !names.empty(); }) ||
      std::any_of(std::begin(round.back), std::end(round.back), [](auto& names) { return !names.empty(); });
  if (!any || !TakeLogTurn(&lines)) return;
  for (int joystick = 0; joystick < axisJoysticks; ++joystick) {
    if (!round.gone[joystick].empty())
      LogOwn("TAVRIX->Joystick %i gives no readings (%s): what was set last stays\n", joystick,
             round.gone[joystick].c_str());
    if (!round.back[joystick].empty())
      LogOwn("TAVRIX->Joystick %i is there again (%s): an axis takes over when it is moved\n", joystick,
             round.back[joystick].c_str());
  }
}

void ForgetThreadState() {
  inForce = {};
  std::fill(std::begin(states), std::end(states), ControlState{});
  std::fill(std::begin(outputs), std::end(outputs), AxisOutput{});
  std::fill(std::begin(devices), std::end(devices), Device{});
  std::fill(std::begin(readings), std::end(readings), absent);
  wasAskedFor = false;
  lastRound = 0;
  tried = 0;
}

void AskForAxes() {
  askedFrames = framesPerAsking;
  isAskedFor = 1;
}

// Two controls that write to the same place: whichever is moved last counts, which nobody wants.
void TellShared(const Plan& made) {
  for (size_t i = 0; i < axisControlCount; ++i) {
    for (size_t k = 0; k < i; ++k) {
      const AxisAssignment &one = made.controls[k], &other = made.controls[i];
      const bool shared = std::any_of(one.targets, one.targets + one.targetCount, [&](const AxisTarget& a) {
        return std::any_of(other.targets, other.targets + other.targetCount, [&](const AxisTarget& b) {
          return a.offset < b.offset + b.size && b.offset < a.offset + a.size;
        });
      });
      if (shared)
        LogOwn("TAVRIX->The axes %s and %s move the same bytes: the one that is moved last counts\n",
               NameOfControl(k).c_str(), NameOfControl(i).c_str());
    }
  }
}

}  // namespace

bool CreateAxes() {
  if (!CreateLock(&axisLock)) return false;
  plan = {};
  std::fill(std::begin(told), std::end(told), absent);
  toldCount = 0;
  overridesOn = 0;
  toldPlan = 0;
  lastMove.input = {};
  std::fill(std::begin(baselines), std::end(baselines), absent);
  followed = {};
  roundDue = roundWanted = isAskedFor = 0;
  untried = newPlan = 0;
  BeginAxisWrites();
  for (size_t control = 0; control < axisControlCount; ++control)
    inFile[control] = DefaultAxisSettings(control);
  anyAssigned = false;
  askedFrames = 0;
  ForgetThreadState();
  return true;
}

void DeleteAxes() {
  DeleteLock(&axisLock);
  anyAssigned = false;
  askedFrames = 0;
}

void LoadAxisAssignments() {
  ReadAxisSettings(inFile);
  Plan made;
  const bool anyBefore = anyAssigned;
  anyAssigned = false;
  for (size_t control = 0; control < axisControlCount; ++control) {
    made.controls[control] = MakeAssignment(control, inFile[control]);
    if (made.controls[control].targetCount > 0) anyAssigned = true;
  }
  TellShared(made);
  if (!anyAssigned && !anyBefore) return;
  const LockScope lock(&axisLock);
  made.number = plan.number + 1;
  plan = made;
  newPlan = 1;
  roundWanted = 1;  // a control may have gone
}

bool SaveAxisSettings(size_t control, const AxisSettings& changed) {
  const bool written = WriteAxisSettings(control, inFile[control], changed);
  LoadAxisAssignments();
  return written;
}

const AxisSettings& AxisSettingsOf(size_t control) { return inFile[control]; }

bool WantsAxes() {
  if (askedFrames > 0 && --askedFrames == 0) isAskedFor = 0;
  return anyAssigned || askedFrames > 0 || roundWanted.load(std::memory_order_relaxed) != 0;
}

bool WantsAxisOverrides() {
  return untried.load(std::memory_order_relaxed) != 0 || newPlan.load(std::memory_order_relaxed) != 0;
}

bool WatchAxes(std::span<const float> given, int overrides) {
  bool changed = roundWanted.exchange(0) != 0 || systemHasJoysticks;
  {
    const LockScope lock(&axisLock);
    if (overrides != overridesNotTold) {
      overridesOn = static_cast<unsigned>(overrides);
      toldPlan = plan.number;
    }
    if constexpr (!systemHasJoysticks) {
      const size_t count = std::min(given.size(), static_cast<size_t>(maxAxes));
      // Bytes, as a reading that is no number counts as the same as before, too.
      if (std::memcmp(given.data(), told, count * sizeof(float)) != 0) {
        std::copy_n(given.data(), count, told);
        changed = true;
      }
      if (count != toldCount) {
        std::fill(told + count, told + maxAxes, absent);
        toldCount = count;
        changed = true;
      }
      FollowEnds();
    }
  }
  if (changed) roundDue = 1;
  return changed;
}

double AxisReading(const AxisInput& input) {
  AskForAxes();
  if (!IsAssigned(input)) return std::numeric_limits<double>::quiet_NaN();
  const LockScope lock(&axisLock);
  return static_cast<double>(told[PlaceOf(input)]);
}

AxisMove LastAxisMove() {
  AskForAxes();
  const LockScope lock(&axisLock);
  return lastMove;
}

AxisMove WatchForAxisMove() {
  AskForAxes();
  const LockScope lock(&axisLock);
  std::copy(std::begin(told), std::end(told), baselines);
  return lastMove;
}

void FollowAxisEnds(const AxisInput& input) {
  const LockScope lock(&axisLock);
  followed = input;
  ends = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
}

AxisEnds FollowedAxisEnds() {
  const LockScope lock(&axisLock);
  return ends;
}

void RunAxisRound() {
  if (roundDue.exchange(0) == 0) return;
  Round round;
  round.now = MonotonicNanoseconds();
  const double elapsed = static_cast<double>(round.now - lastRound) / static_cast<double>(oneSecond);
  round.elapsed = std::clamp(elapsed, 0.0, longestStepTime);
  lastRound = round.now;
  TakePlan();
  ReadDevices(&round);
  WatchMoves();
  for (size_t control = 0; control < axisControlCount; ++control) FollowControl(control, &round);
  WriteAll(&round);
  TellGone(round);
  if (round.goesOn) roundWanted = 1;
  const LockScope lock(&axisLock);
  if (plan.number == inForce.number) newPlan = 0;
}
