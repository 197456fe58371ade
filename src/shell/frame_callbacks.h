// The frame callbacks: what the plug-in does in which frame, room by room in its order. They keep the offset
// memory current, apply what clients wrote and let every room take its turn.
//
// All of it runs on the simulator's thread with no lock held. Each callback has the simulator's signature and
// returns its next interval (positive seconds, negative frames). flight_loops.h registers them.
#pragma once

float WriteCycle(float, float, int, void*);
float RefreshCycle1(float, float, int, void*);
float RefreshCycle3(float, float, int, void*);
float RefreshCycle7(float, float, int, void*);
float RefreshCycle13(float, float, int, void*);
float RefreshCycle31Navigation(float, float, int, void*);
float RefreshCycle31(float, float, int, void*);
float RefreshCycle59(float, float, int, void*);
float RefreshCycle157(float, float, int, void*);
float RefreshCycle313(float, float, int, void*);
float ButtonCycle(float, float, int, void*);
float MultiplayerCycle(float, float, int, void*);

// Enable in server mode: every cycle runs within the first second anyway, the navigation cycle once more soon.
void AwaitFirstCycles();
// The user's aircraft was loaded: the navigation cycle runs again soon after its next run, and the next frame
// refreshes the rows of every cycle, as nearly all of the slow ones hang on the aircraft.
void RefreshForNewAircraft();
