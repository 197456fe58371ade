// The room traffic/: tells clients about the other aircraft in the simulation, in a table of the offset memory.
//
// The table has three parts: a header of 128 bytes at 0xF000 (entry size, capacity, number of active slots,
// change counter, one round counter per slot, offset of the nearest aircraft's entry), an entry of 40 bytes
// per aircraft from 0xF080 and a flight record of 20 bytes per aircraft from 0xD840. Aircraft n of the
// simulator (the user's own is 0) has slot n - 1; there are 96 slots.
//
// The simulator's thread keeps the list of aircraft models (aircraft_list.cpp) and the positions
// (positions.cpp). A manager thread (manager.cpp) runs one slot thread for each other aircraft (slots.cpp),
// which rewrites its entry every 200 ms. None of these threads ever calls the simulator. Sources and models
// lie under the traffic lock, distances under the traffic slot lock; nobody holds two locks at once.
//
// Simulators from 11.50 on tell of up to 63 others in arrays (targets.cpp), which then serve instead of the
// position datarefs of 19: with call signs, and in a slot that follows its aircraft.
//
// Everything here is for the simulator's thread with no lock held, unless it says otherwise.
#pragma once
#include <cstdint>

// Clears positions, models and slots. At enable, after the program's locks. Returns true, or false when the
// system refuses the list's own lock.
bool InitTraffic();
// Gives that lock back. At disable, when both threads have ended.
void ReleaseTraffic();

// Counts the aircraft and asks for the model of each other one; the aircraft-model thread puts them into the
// tables (without that thread it is done here). When an aircraft was loaded and when their number changed.
void LoadAircraftList();
// Takes the positions of the user's aircraft and of the others, 19 of which have any (63 where the simulator
// has the arrays, which also give their number), for the slot threads. Returns true, or false when a slot
// thread is just reading them: the old ones stand, try again at the next frame.
bool FillTrafficPositions();
// Whether the manager thread runs: somebody wants the positions.
bool TrafficRuns();

// The manager thread; it makes and ends the slot threads. Starting returns true, or false when the system
// refuses. Stopping joins all of them and takes 100 ms, and 400 ms more with slots.
bool StartTrafficThread();
void StopTrafficThread();
// The thread that moves gathered model names into the tables.
bool StartAircraftModelThread();
void StopAircraftModelThread();
