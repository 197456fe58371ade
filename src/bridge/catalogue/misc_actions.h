// Requests that hold something in the simulator.
#pragma once

// Ends the contact-ATC command when a client holds it: at disable, and whenever nobody is left to end it.
// Simulator's thread, no lock held.
void ReleaseContactAtc();
