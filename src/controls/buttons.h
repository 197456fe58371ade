// The room controls/: joystick buttons and axes (axes.h) that write offsets. When the user presses or releases
// an assigned button, a value is written, or one bit set, cleared or toggled, in an offset of 1, 2 or 4 bytes.
//
// The simulator's thread watches the buttons every frame and queues each change; a thread of its own carries
// the changes out, each write going through the dispatcher like a client's. Queue and table lie under a lock
// that is known to this room alone and is never held together with another one.
#pragma once
#include <cstdint>
#include <string>

#include "platform/event.h"

constexpr int maxButtons = 1600;

// One button's assignment. Values are the number to write or, for the bit actions, the bit (modulo 32); a
// negative one means no action. Flags act when they are 1, the `nothing` ones whenever they are not 0.
struct ButtonAssignment {
  int32_t offset;  // inactive unless above 0
  int32_t size;    // 1, 2 or 4 bytes
  int32_t pressedValue, releasedValue;
  int32_t setOnPress = 0, setOnRelease = 0;
  int32_t clearOnPress = 0, clearOnRelease = 0;
  int32_t nothingOnPress = 0, nothingOnRelease = 0;
  int32_t toggleOnPress = 0, toggleOnRelease = 0;
  bool operator==(const ButtonAssignment&) const = default;
};
constexpr ButtonAssignment noAssignment = {.offset = -1, .size = -1, .pressedValue = -1, .releasedValue = -1};

// --- Simulator's thread, no lock held -----------------------------------------------------------------
// Makes the wake event and forgets button states and queued changes. At enable, after the program's locks.
// Returns true, or false when the system refuses.
bool CreateButtons();
// Gives them back. At disable, after StopButtonThread.
void DeleteButtons();
// Returns true, or false when no thread could be made.
bool StartButtonThread();
// Lets it go through a round: a frame has something for it (axes.h).
void WakeButtonThread();
// Ends and joins the thread; nothing happens when it was not started.
void StopButtonThread();
// Fills the table from the settings file, which is read once. Assignments that cannot work are left inactive,
// with a log line each.
void LoadButtonAssignments();
// The settings window's save: writes the button's line and loads again. Returns true, or false when the number
// is no button or the file could not be written.
bool SaveButtonAssignment(int button, const ButtonAssignment& assignment);
// The settings window's clear: writes a line of zeros, which marks the button as not assigned.
bool ClearButtonAssignment(int button);
// What is in force for a button; noAssignment for a number that is none.
ButtonAssignment AssignmentOfButton(int button);
// Why the button's line in the settings file is not used, in words that follow a colon; null when it is, or
// there is none.
const char* RefusalOfButton(int button);
// Whether anybody wants to know the buttons in this frame: one is assigned, or the last pressed one has been
// asked for lately. Every frame; while it says no the simulator need not be asked for them.
bool WantsButtons();
// Takes the states of the first `count` buttons (not 0: held down; the others count as released), queues
// what has changed since the last call and wakes the thread. Every frame.
void WatchButtons(const int* states, int count);
// The button that was pressed last, -1 for none since enable, and how many presses have been seen since the
// module was loaded, so that the same button is noticed again. Asking keeps the buttons watched for the next
// two seconds or so; a press before that may have gone unseen while no button was assigned.
struct ButtonPress {
  int button;
  uint32_t count;
};
ButtonPress LastButtonPress();
// Whether the thread carries changes out: false in client mode, when it could not be made, and after disable
// and enable, as it is started once a load.
bool ButtonThreadRuns();
// Why an assignment with an offset cannot work, in words that follow a colon, or null.
const char* FaultOfAssignment(const ButtonAssignment& assignment);

// "" or, when waiting for changes has failed since enable, what the thread says about it. Any thread.
std::string ButtonStatus();

// --- The button's thread ---------------------------------------------------------------------------
// One round: waits for the event, then carries out the queued changes in their order. A wait that fails is
// told by ButtonStatus, and in the log once; the changes stay queued then, and a pause keeps the thread from
// spinning.
void RunButtonRound(Event* wake);
