// Flight controls: what must be given back when the program stops. Simulator's thread.
#pragma once

// Switches off those joystick and throttle overrides that a client's write at 0x310A switched on, and
// stores 0 there. At disable, while the locks still exist; no lock held.
void ReleaseOverrides();
