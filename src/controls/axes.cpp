#include "controls/axes.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/log.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

constexpr uint32_t overrideOffset = 0x310A;
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
AxisMove lastMove;

std::atomic<uint32_t> roundDue;     // by a frame
std::atomic<uint32_t> roundWanted;  // by the last round: something goes on though no reading changes
std::atomic<uint32_t> isAskedFor;   // by a window
std::atomic<unsigned> untried;      // overrides that a control may yet need, and askAnew
constexpr unsigned askAnew = 0x100;

// Under the offset lock.
bool mayWrite;
unsigned held;  // overrides that we have switched on

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
  int64_t silentSince = 0;
  double reference = 0, value = 0;
};
struct ControlState {
  InputState inputs[2];
  bool written = false;
  double last = 0;  // what was written
  int detent = 0;
};
struct Device {
  bool missing = false;
  int64_t gap = 0, nextTry = 0;
};

Plan inForce;
ControlState states[axisControlCount];
Device devices[axisJoysticks];
float readings[maxAxes];
float baselines[maxAxes];  // of choosing by moving
bool wasAskedFor;
int64_t lastRound;
unsigned tried;  // overrides that have been asked for

struct Write {
  size_t control;
  double number;
};
struct Round {
  int64_t now;
  double elapsed;  // seconds
  bool goesOn = false;
  std::string gone[axisJoysticks], back[axisJoysticks];  // names of controls
  Write writes[axisControlCount];
  size_t writeCount = 0;
  unsigned overrides = 0;  // that the controls need from now on
};

void TakePlan() {
  Plan next;
  {
    const LockScope lock(&axisLock);
    if (plan.number == inForce.number) return;
    next = plan;
  }
  for (size_t i = 0; i < axisControlCount; ++i) {
    if (next.controls[i] == inForce.controls[i]) continue;
    states[i] = {};
  }
  inForce = next;
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
  } else {
    const LockScope lock(&axisLock);
    std::copy(std::begin(told), std::end(told), readings);
  }
}

// Which axis a person moves, for windows.
void WatchMoves() {
  const bool isAsked = isAskedFor.load() != 0;
  if (isAsked && !wasAskedFor) std::fill(std::begin(baselines), std::end(baselines), absent);
  wasAskedFor = isAsked;
  if (!isAsked) return;
  for (int place = 0; place < maxAxes; ++place) {
    const float reading = readings[place];
    float& baseline = baselines[place];
    if (!IsReading(static_cast<double>(reading))) continue;
    if (std::isnan(baseline)) baseline = reading;
    if (std::fabs(static_cast<double>(reading - baseline)) < choosingMove) continue;
    baseline = reading;
    const LockScope lock(&axisLock);
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
  state.silentSince = 0;
  if (state.gone) AddName(&round->back[input.joystick], control);
  state.gone = false;
  if (!state.seen) state.reference = reading;
  state.seen = true;
  const AxisTune& tune = assignment.tunes[which];
  if (state.waits) {
    const double way = tune.calibration.high - tune.calibration.low;
    if (std::fabs(reading - state.reference) < takeOverMove * way) return false;
    state.waits = false;
    if (state.acts) {  // from what it has left in force, beginning with the next round
      state.catches = round->goesOn = true;
      return true;
    }
    state.acts = true;
  }
  const double deflection = Deflect(tune, assignment.travel, reading);
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
  if (!combined.acts) return own.value;
  return Combine(travel, own.acts ? own.value : 0, combined.value);
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
  if (state.written && !IsNews(target, state.last, number)) return;
  state.written = true;
  state.last = Rounded(target, number);
  round->writes[round->writeCount++] = {control, state.last};
  round->overrides |= assignment.overrides & ~tried;
}

// As a client's request does it; the offset lock is held.
void WriteBytes(uint32_t offset, uint32_t size, const uint8_t* bytes, RequestMarks* marks) {
  DispatchWrite(offset, size, bytes, marks);
  std::memcpy(offsetMemory.bytes + offset, bytes, size);
}

// Switches overrides on and off at their offset. A write there sets all four: those that are on by somebody
// else's doing stay on.
void WriteOverrides(unsigned on, unsigned off, unsigned foreign, RequestMarks* marks) {
  uint8_t present = 0;
  CopyLatest(overrideOffset, 1, &present);
  const unsigned before = present | (foreign & ~off);
  held |= on & ~before;
  const auto byte = static_cast<uint8_t>((before | on) & ~off);
  if (byte != present) WriteBytes(overrideOffset, 1, &byte, marks);
}

void WriteAll(const Round& round) {
  unsigned needed = 0, foreign = 0;
  for (const AxisAssignment& control : inForce.controls) {
    if (control.targetCount > 0) needed |= control.overrides;
  }
  const bool returns = (tried & ~needed) != 0;
  tried = (tried & needed) | round.overrides;
  untried = needed & ~tried;
  if (round.writeCount == 0 && !returns) return;
  {
    const LockScope lock(&axisLock);
    foreign = overridesOn;
  }
  RequestMarks marks = {};
  {
    const ServerLockScope lock;
    if (!mayWrite) return;
    const unsigned returned = held & ~needed;
    held &= needed;
    if (returned != 0 || round.overrides != 0) WriteOverrides(round.overrides, returned, foreign, &marks);
    for (size_t i = 0; i < round.writeCount; ++i) {
      const AxisAssignment& control = inForce.controls[round.writes[i].control];
      uint8_t bytes[8];
      EncodeNumber(control.targets[0], round.writes[i].number, bytes);
      for (int k = 0; k < control.targetCount; ++k) {
        WriteBytes(control.targets[k].offset, control.targets[k].size, bytes, &marks);
      }
    }
  }
  FinishRequest(marks);
}

void TellGone(const Round& round) {
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
        return std::any_of(other.targets, other.targets + other.targetCount,
                           [&](const AxisTarget& b) { return a.offset == b.offset; });
      });
      if (shared)
        LogOwn("TAVRIX->The axes %s and %s move the same offset: the one that is moved last counts\n",
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
  lastMove.input = {};
  roundDue = roundWanted = isAskedFor = 0;
  untried = 0;
  {
    const LockScope lock(&offsetLock);
    mayWrite = true;
    held = 0;
  }
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

void StopAxisWrites() {
  const LockScope lock(&offsetLock);
  mayWrite = false;
  // What still waits must not take them at the next enable.
  if (pendingFlags.flags[overrideOffset] != 0)
    pendingValues.bytes[overrideOffset] &= static_cast<uint8_t>(~held);
}

void LoadAxisAssignments() {
  ReadAxisSettings(inFile);
  Plan made;
  unsigned overrides = askAnew;
  const bool anyBefore = anyAssigned;
  anyAssigned = false;
  for (size_t control = 0; control < axisControlCount; ++control) {
    made.controls[control] = MakeAssignment(control, inFile[control]);
    if (made.controls[control].targetCount == 0) continue;
    anyAssigned = true;
    overrides |= made.controls[control].overrides;
  }
  TellShared(made);
  if (!anyAssigned && !anyBefore) return;
  untried = overrides;
  const LockScope lock(&axisLock);
  made.number = plan.number + 1;
  plan = made;
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

bool WantsAxisOverrides() { return untried.load(std::memory_order_relaxed) != 0; }

bool WatchAxes(std::span<const float> given, int overrides) {
  bool changed = roundWanted.exchange(0) != 0 || systemHasJoysticks;
  {
    const LockScope lock(&axisLock);
    if (overrides != overridesNotTold) overridesOn = static_cast<unsigned>(overrides);
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
  WriteAll(round);
  TellGone(round);
  if (round.goesOn) roundWanted = 1;
}
