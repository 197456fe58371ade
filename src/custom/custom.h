// The room custom/: what the user's file "TAVRIXOffsets.cfg" makes of offsets, by datarefs, expressions and
// commands of the user's own choice. Grammar and expressions (custom_parser.h, expression.h) are pure and know
// nothing but the records.
//
// The simulator's thread owns the tables: it loads and frees them, refreshes entries from them and applies
// what clients wrote. The dispatcher, on any thread, reaches them only while they are published, with the
// offset lock held, and may withdraw them at any moment; the simulator's thread frees them later, so
// nobody ever walks freed tables. Pending writes point into the tables and are dropped together with them.
// An entry that the simulator's thread is refreshing meanwhile is stored only while its tables are still
// published.
#pragma once
#include <cstdint>
#include <span>
#include <string_view>

#include "custom/custom_records.h"

// --- Simulator's thread, no lock held ---------------------------------------------------------------
// Frees what is loaded, reads the file, looks up its datarefs and commands and publishes the tables. Every
// failure is logged and leaves empty tables.
void LoadCustomOffsets();
// Withdraws and frees the tables, drops pending writes and ends the commands that are held down.
void ClearCustomOffsets();
// The latter with its log line, and both with a log line each, as the user asks for it in a window.
void ClearCustomOffsetsByUser();
void ReloadCustomOffsets();
// What is loaded: entries by their kind, and the datarefs and commands named there that the simulator did not
// have at that moment, each once, in the order of the tables. All empty while nothing is loaded.
struct CustomSummary {
  size_t offsets, datarefs, commands;
  std::span<const std::string_view> unresolved;  // until the next load
  size_t faultyLines;  // of the file; their entries count all the same, as far as they could be read
  const char* fault;   // why the last load found no file or nothing in it, "" if it did; until the next load
};
CustomSummary SummariseCustomOffsets();
// Does the reload that a client has asked for (through the dispatcher), with its log lines. Once a frame.
void TakeCustomReload();
// Forgets reloads that clients have asked for, and that one was done lately. At enable, before the file is
// loaded.
void ForgetCustomRequests();
// Refreshes the entries of one group (1 to 8), in table order. Values are computed with no lock held; storing
// only tries the offset lock. What finds it busy is tried once more at the end and then waits for the group's
// next turn.
void RefreshCustomOffsets(int group);
// Carries out the pending command and the pending dataref write. Once a frame, behind all other writers.
void ApplyPendingCustomWrites();
// The dataref's value by its kind; 0 for an unknown kind, a null handle or an element that does not exist.
double ReadDatarefValue(const CustomDatarefEntry& dataref);

// Hands this room's functions to the dispatcher, which knows nothing of it. At start, before anybody can write.
void ConnectCustomOffsets();

// --- Any thread, offset lock held --------------------------------------------------------------------
// The published entry at an offset, by its low 16 bits; null for none.
const CustomOffsetEntry* FindCustomOffset(uint32_t offset);
const CustomCommandEntry* FindCustomCommand(uint32_t offset);
