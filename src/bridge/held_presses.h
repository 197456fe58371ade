// Buttons and spring-loaded switches that are pressed for a moment: an add-on that looks at them once a frame,
// or that moves the switch first and acts when it has arrived, does not see a press that ends where it began.
//
// Simulator's thread, no lock held.
#pragma once
#include <cstdint>

#include "bridge/sources.h"

// Presses wait or are held; else a frame has nothing to do here.
extern uint32_t heldPresses;

// A switch that is pressed in several ways, by the address of anything that belongs to it alone.
using Control = const void*;

// Begins the command, so many times, and ends it some frames later each. Presses of the same control wait for
// each other; what waits there already is forgotten, as the newest wish counts. Null: the command is its own
// control. One that is not published does nothing.
void HoldCommand(const Command& command, Control control = nullptr, int times = 1);
// Sets a spring-loaded switch and back to 0, its centre, some frames later. The dataref is its own control.
void HoldSource(const Source& source, double value);
// Forgets what waits at a control; what is held there is held on.
void ForgetWaitingPresses(Control control);
// The command that is held at a control at the moment; null when none is.
XPLMCommandRef HeldCommand(Control control);
// Once a frame: ends what was held long enough, and begins what waits.
void StepHeldPresses();
// Ends all that is held and forgets what waits: when the aircraft goes, and at disable.
void ReleaseHeldPresses();
