// Buttons and spring-loaded switches that are pressed for a moment: an add-on that looks at them once a frame,
// or that moves the switch first and acts when it has arrived, does not see a press that ends where it began.
//
// Simulator's thread, no lock held.
#pragma once
#include <cstdint>

#include "bridge/sources.h"

// Presses wait or are held; else a frame has nothing to do here.
extern uint32_t heldPresses;

// Begins the command now and ends it some frames later; a command that is held already is pressed again after
// that. One that is not published does nothing. A flood of presses is cut.
void HoldCommand(const Command& command);
// Sets a spring-loaded switch now and back to 0, its centre, some frames later.
void HoldSource(const Source& source, double value);
// Once a frame: ends what was held long enough, and begins what waits.
void StepHeldPresses();
// Ends all that is held and forgets what waits: when the aircraft goes, and at disable.
void ReleaseHeldPresses();
