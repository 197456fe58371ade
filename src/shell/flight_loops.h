// The flight loops with their first intervals, in the order in which they are registered. Simulator's thread.
#pragma once

// Registers all of them: the deferred start, the write cycle, the refresh loops.
void RegisterFlightLoops(float (*deferredStart)(float, float, int, void*));
// Unregisters those that are registered; nothing happens to the others.
void UnregisterFlightLoops();
// The two loops of client mode: the relay's start and its frame step.
void RegisterClientFlightLoops();
void UnregisterClientFlightLoops();
