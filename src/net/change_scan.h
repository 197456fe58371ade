// The change scan: finds the bytes of the offset memory that changed since they were last reported.
//
// The shadow copy holds every byte as last reported. It belongs to the burst thread; only ClearShadow is
// for the simulator's thread, at enable, when no burst thread runs.
#pragma once
#include <cstddef>
#include <cstdint>

constexpr size_t changeEntrySize = 6;            // bank, 0, offset (16 bits), value, 0
constexpr uint32_t wantedChangeEntries = 10922;  // the scan ends once it has found more
constexpr size_t changeEntriesSize = (wantedChangeEntries + 1) * changeEntrySize;

// All zero, as the offset memory is at start.
void ClearShadow();
// Writes one entry for each changed byte, in the order of offsets, into `entries` (changeEntriesSize bytes)
// and takes the new values into the shadow copy. Ends early, with a log line, after one entry more than
// wanted; the bytes behind are found by the next scan. Burst thread with no lock held: takes the offset lock
// for a few hundred nanoseconds at a time. Returns the number of entries.
uint32_t ScanChanges(uint8_t* entries);
