// Custom offsets: what the user's file "TAVRIXOffsets.cfg" makes of offsets, by datarefs, expressions and
// commands of the user's own choice.
//
// The simulator's thread owns the tables: it loads and frees them, refreshes entries from them and applies
// what clients wrote. The dispatcher, on any thread, reaches them only while they are published, with the
// offset lock held, and may withdraw them at any moment; the simulator's thread frees them later, so
// nobody ever walks freed tables. Pending writes point into the tables and are dropped together with them.
// An entry that the simulator's thread is refreshing meanwhile is stored only while its tables are still
// published.
#pragma once
#include <cstdint>
#include <string_view>

#include "custom/custom_records.h"

// --- Simulator's thread, no lock held ---------------------------------------------------------------
// Frees what is loaded, reads the file, looks up its datarefs and commands and publishes the tables. Every
// failure is logged and leaves empty tables.
void LoadCustomOffsets();
// Withdraws and frees the tables, drops pending writes and ends the commands that are held down.
void ClearCustomOffsets();
// Both, with a log line each, as the user asks for it in a window.
void ReloadCustomOffsets();
// Does the reload that a client has asked for (RequestCustomReload), with its log lines. Once a frame.
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

// --- Any thread, offset lock held --------------------------------------------------------------------
// The published entry at an offset, by its low 16 bits; null for none.
const CustomOffsetEntry* FindCustomOffset(uint32_t offset);
const CustomCommandEntry* FindCustomCommand(uint32_t offset);
// A client writes `data`, as many bytes as the entry is wide, before they are copied into the memory. Bytes
// that are already there do nothing; else the write or the command waits for ApplyPendingCustomWrites,
// replacing one that waits already. A command that is replaced by that of another offset still ends what it
// would have ended.
void WriteCustomOffset(const CustomOffsetEntry& entry, const uint8_t* data);
void WriteCommandOffset(const CustomCommandEntry& entry, const uint8_t* data);
// A client asks for the file to be read again: the tables are withdrawn at once, the simulator's thread
// loads them in the next frame. Within a second after a client's last load the tables stay in use until the
// second is over: then one load serves all who asked. The offset says which of the two request bytes it was;
// writes at customClearOffset have a log line of their own, and its byte returns to 0 when the tables are
// there.
constexpr uint32_t customReloadOffset = 0x6F0D;
constexpr uint32_t customClearOffset = 0x6F0E;
void RequestCustomReload(uint32_t offset);
