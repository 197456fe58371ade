// Inner state of the custom offsets, shared by the files of this room alone.
#pragma once
#include <atomic>
#include <cstdint>
#include <string>

#include "custom/custom_records.h"
#include "offsets/dispatcher.h"

// A client's write to a custom offset: the expression is evaluated when it is applied, as that reads
// datarefs.
struct PendingCustomWrite {
  const CustomDatarefEntry* target;  // null: nothing pending
  Expression expression;
  double input;  // the written value
  uint32_t offset;
  uint32_t ticket;  // of an own write, else 0
};

// Owned by the simulator's thread; null before the first load and while there is nothing.
extern CustomTables* loadedTables;
// What came of the last load, for CustomSummary. Simulator's thread.
extern std::string customLoadFault;
extern size_t customFaultyLines;
// The tables while clients may reach them. Changed under the offset lock.
extern std::atomic<const CustomTables*> publishedTables;
// Under the offset lock.
extern PendingCustomWrite pendingWrite;
extern CustomCommandWrite pendingCommand;  // entry null: nothing pending
// Of the own writes that lost their turn last: to another offset's write, to another command's, or with the
// tables.
extern uint32_t lostWriteTicket, lostCommandTicket;
// Raised under the offset lock with either pending slot, so that frames without any pass without the lock.
extern std::atomic<uint32_t> customPending;
// How much of the published tables' `endList` is in use. Under the offset lock.
extern uint32_t customEndCount;

// For the dispatcher (CustomHooks). Any thread, offset lock held.
// A client writes at an offset. Bytes that are already there do nothing; else the write or the command waits
// for ApplyPendingCustomWrites, replacing one that waits already. A command that is replaced by that of another
// offset still ends what it would have ended. An own write (`ticket` not 0) counts also when the bytes are
// there.
CustomOutcome OfferCustomWrite(uint32_t offset, const uint8_t* data, uint32_t supplied, uint32_t ticket);
bool IsCustomTurnTaken(uint32_t offset, uint32_t size);
TicketState LookAfterCustomTicket(uint32_t ticket);
// A client asks for the file to be read again: the tables are withdrawn at once, the simulator's thread
// loads them in the next frame. Within a second after a client's last load the tables stay in use until the
// second is over: then one load serves all who asked. Writes at customClearOffset have a log line of their own,
// and its byte returns to 0 when the tables are there.
void RequestCustomReload(uint32_t offset);

// Makes what the tables need at run time: the refresh groups and room for displaced commands. Simulator's
// thread, before they are published.
void PrepareCustomTables(CustomTables* tables);
// Ends every command that is held down. Simulator's thread, no lock held.
void EndHeldCommands(CustomTables* tables);
