// What the starter rows hold beyond one write. Simulator's thread, with no lock held.
#pragma once

// Releases every starter button that a magneto write holds down. At disable; harmless when none is held.
void ReleaseStarters();

// Gives the IXEG 737 its two throttle inputs back that client writes have taken: sets 0 where nobody else has
// set one since, else leaves it to whoever did. Returns whether one was set. At disable, and before the handles
// go.
bool ReleaseIxegLevers();
// Its inputs are gone: there is nothing to give back.
void ForgetIxegLevers();
