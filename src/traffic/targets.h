// Newer simulators (11.50 and later) tell of other aircraft in arrays of 64 places, in which those of online
// networks and of traffic add-ons appear with their call signs; place 0 is the user's own. Inner header of the
// room. Simulator's thread, no lock held.
#pragma once
#include <cstdint>

#include "traffic/traffic_state.h"

constexpr uint32_t targetPlanes = 63;  // other aircraft that have a place

// Whether the simulator publishes the arrays.
bool TargetsExist();
// Reads all places. An aircraft keeps its number for clients as long as it is there, whatever place it has
// moved to, and its slot as long as there are slots up to it. It is known by its transponder's address, else by
// its flight identifier, else by its place. Fills planes[0] to planes[number - 1] and returns the number of
// other aircraft, at most 63.
uint32_t ReadTargets(PlaneSource (&planes)[targetPlanes]);
// Forgets which aircraft has which slot.
void ForgetTargets();
