// What the aircraft calls itself. Simulator's thread, no lock held.
#pragma once
#include <cstdint>

constexpr uint32_t aircraftTitleOffset = 0x3D00;
constexpr uint32_t aircraftTextSize = 256;  // zero padded, at most 255 characters

// Reads the title of the user's aircraft from the simulator; fills all of the buffer.
void ReadAircraftTitle(char (&title)[aircraftTextSize]);
// Stores the title in the offset memory now (it is refreshed every 313 frames otherwise), waiting for the
// offset lock: for the moment when another aircraft was loaded.
void StoreAircraftTitle();
