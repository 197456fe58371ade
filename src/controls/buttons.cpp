#include "controls/buttons.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "base/bytes.h"
#include "base/log.h"
#include "controls/axes.h"
#include "controls/button_settings.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/system.h"
#include "platform/thread.h"

namespace {

struct Change {
  int32_t button;
  bool pressed;
};
// A ring: the frames between two wake-ups of the thread are few.
constexpr uint32_t queueSize = 4096;
constexpr int waitErrorPauseMs = 100;

Lock buttonLock;  // guards all up to the blank line
ButtonAssignment assignments[maxButtons];
Change queue[queueSize];
uint32_t queueHead, queueLength;
bool listening;  // the thread takes changes
char status[40];

Event wakeEvent;
Thread buttonThread;
std::atomic<uint32_t> buttonRun;

// Simulator's thread.
int rawStates[maxButtons];    // as the simulator gave them last
bool heldStates[maxButtons];  // whose changes have been queued
ButtonPress lastPress = {-1, 0};
bool anyAssigned;  // a button writes an offset
int askedFrames;   // so many frames more the last pressed button may be asked for
bool isPaused;     // nobody has looked at the buttons for a while
constexpr int framesPerAsking = 120;

// Puts a change at the queue's end; the button lock is held. Returns false when it is full: the change is found
// again in the next frame.
bool Enqueue(Change change) {
  if (!listening) return true;
  if (queueLength == queueSize) return false;
  queue[(queueHead + queueLength++) % queueSize] = change;
  return true;
}

bool TakeChange(Change* change, ButtonAssignment* assignment) {
  const LockScope lock(&buttonLock);
  if (queueLength == 0) return false;
  *change = queue[queueHead];
  *assignment = assignments[change->button];
  queueHead = (queueHead + 1) % queueSize;
  --queueLength;
  return true;
}

// What a change of the button does, for either direction.
struct Action {
  int32_t value;
  bool set, clear, toggle;
  bool nothing;
  bool clearsFirst;  // the bit is cleared before the other steps
};

Action ActionOf(const ButtonAssignment& a, bool pressed) {
  if (pressed) {
    return {.value = a.pressedValue,
            .set = a.setOnPress == 1,
            .clear = a.clearOnPress == 1,
            .toggle = a.toggleOnPress == 1,
            .nothing = a.nothingOnPress != 0,
            .clearsFirst = false};
  }
  // On release a 4-byte offset loses the bit first, so that toggling always leaves it set.
  return {.value = a.releasedValue,
          .set = a.setOnRelease == 1,
          .clear = a.clearOnRelease == 1,
          .toggle = a.toggleOnRelease == 1,
          .nothing = a.nothingOnRelease != 0,
          .clearsFirst = a.size == 4};
}

uint32_t ChangeBit(uint32_t current, const Action& action) {
  const uint32_t bit = 1u << (action.value % 32);
  if (action.clearsFirst) current &= ~bit;
  if (action.set) current |= bit;
  if (action.clear) current &= ~bit;
  if (action.toggle) current ^= bit;
  return current;
}

void Act(const ButtonAssignment& assignment, bool pressed) {
  const Action action = ActionOf(assignment, pressed);
  if (assignment.offset <= 0 || action.value < 0 || action.nothing) return;
  const auto offset = static_cast<uint32_t>(assignment.offset);
  const auto size = static_cast<uint32_t>(assignment.size);
  auto value = static_cast<uint32_t>(action.value);
  RequestMarks marks = {};
  {
    const ServerLockScope lock;
    if (action.set || action.clear || action.toggle) {
      // Bits that another button has just written count, though a refresh may have covered them in the memory.
      uint32_t current = 0;
      CopyLatest(offset, size, &current);
      value = ChangeBit(current, action);
    }
    uint8_t bytes[sizeof value];
    StoreTo(bytes, value);
    DispatchWrite(offset, size, bytes, &marks);
    std::memcpy(offsetMemory.bytes + offset, bytes, size);
  }
  FinishRequest(marks);
}

void TellWaitError(int error) {
  constexpr char format[] = "Wait error (%d)\n";
  bool first = false;
  {
    const LockScope lock(&buttonLock);
    first = status[0] == '\0';
    std::snprintf(status, sizeof status, format, error);
  }
  if (first) LogLine(format, error);
}

uint32_t ButtonProcedure(void*) {
  while (buttonRun.load() != 0) {
    RunButtonRound(&wakeEvent);
    RunAxisRound();
  }
  return 0;
}

void SetListening(bool on) {
  const LockScope lock(&buttonLock);
  listening = on;
  queueHead = queueLength = 0;
}

bool IsButton(int button) { return button >= 0 && button < maxButtons; }

}  // namespace

bool CreateButtons() {
  if (!CreateLock(&buttonLock)) return false;
  if (!CreateAutoEvent(&wakeEvent)) {
    DeleteLock(&buttonLock);
    return false;
  }
  std::fill_n(rawStates, maxButtons, 0);
  std::fill_n(heldStates, maxButtons, false);
  std::fill_n(assignments, maxButtons, noAssignment);
  anyAssigned = false;
  lastPress.button = -1;
  askedFrames = 0;
  isPaused = false;
  queueHead = queueLength = 0;
  status[0] = '\0';
  return true;
}

void DeleteButtons() {
  CloseEvent(&wakeEvent);
  DeleteLock(&buttonLock);
}

bool StartButtonThread() {
  buttonRun = 1;
  SetListening(true);
  if (StartThread(&buttonThread, ButtonProcedure, nullptr)) return true;
  buttonRun = 0;
  SetListening(false);
  return false;
}

void WakeButtonThread() { SignalEvent(&wakeEvent); }

void StopButtonThread() {
  buttonRun = 0;
  if (buttonThread.started.load() == 0) return;
  SetListening(false);
  SignalEvent(&wakeEvent);
  SleepMilliseconds(100);
  JoinThread(&buttonThread);
}

void LoadButtonAssignments() {
  static ButtonAssignment loaded[maxButtons];
  ReadButtonSettings(loaded);
  anyAssigned = std::any_of(std::begin(loaded), std::end(loaded),
                            [](const ButtonAssignment& assignment) { return assignment.offset > 0; });
  const LockScope lock(&buttonLock);
  std::copy_n(loaded, maxButtons, assignments);
}

bool WantsButtons() {
  if (askedFrames > 0) --askedFrames;
  isPaused = isPaused || (!anyAssigned && askedFrames == 0);
  return anyAssigned || askedFrames > 0;
}

bool SaveButtonAssignment(int button, const ButtonAssignment& assignment) {
  if (!IsButton(button)) return false;
  const bool written = WriteButtonSetting(button, assignment);
  LoadButtonAssignments();
  return written;
}

bool ClearButtonAssignment(int button) { return SaveButtonAssignment(button, {}); }

ButtonAssignment AssignmentOfButton(int button) {
  if (!IsButton(button)) return noAssignment;
  const LockScope lock(&buttonLock);
  return assignments[button];
}

void WatchButtons(const int* states, int count) {
  count = std::clamp(count, 0, maxButtons);
  if (isPaused) {
    // What has been pressed meanwhile was nobody's business: only changes from here on count.
    isPaused = false;
    std::fill(std::copy_n(states, count, rawStates), rawStates + maxButtons, 0);
    std::transform(rawStates, rawStates + maxButtons, heldStates, [](int state) { return state != 0; });
    return;
  }
  // Nearly always nothing has changed since the last frame.
  if (std::equal(states, states + count, rawStates) &&
      std::all_of(rawStates + count, rawStates + maxButtons, [](int state) { return state == 0; })) {
    return;
  }
  std::copy_n(states, count, rawStates);
  std::fill(rawStates + count, rawStates + maxButtons, 0);
  bool changed = false;
  {
    const LockScope lock(&buttonLock);
    for (int button = 0; button < maxButtons; ++button) {
      const bool held = rawStates[button] != 0;
      if (held == heldStates[button]) continue;
      if (!Enqueue({button, held})) {
        rawStates[button] = heldStates[button] ? 1 : 0;  // differs again in the next frame
        continue;
      }
      heldStates[button] = held;
      changed = true;
      if (held) lastPress = {button, lastPress.count + 1};
    }
  }
  if (changed) SignalEvent(&wakeEvent);
}

ButtonPress LastButtonPress() {
  askedFrames = framesPerAsking;
  return lastPress;
}

bool ButtonThreadRuns() { return buttonThread.started.load() != 0; }

std::string ButtonStatus() {
  const LockScope lock(&buttonLock);
  return status;
}

void RunButtonRound(Event* wake) {
  if (!WaitEvent(wake, -1)) {
    TellWaitError(SystemErrorNumber());
    SleepMilliseconds(waitErrorPauseMs);
    return;
  }
  Change change = {};
  ButtonAssignment assignment = {};
  while (TakeChange(&change, &assignment)) Act(assignment, change.pressed);
}
