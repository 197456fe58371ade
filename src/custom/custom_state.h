// Inner state of the custom offsets, shared by the files of this room alone.
#pragma once
#include <atomic>
#include <cstdint>

#include "custom/custom_records.h"

// A client's write to a custom offset: the expression is evaluated when it is applied, as that reads
// datarefs.
struct PendingCustomWrite {
  const CustomDatarefEntry* target;  // null: nothing pending
  Expression expression;
  double input;  // the written value
};
struct PendingCustomCommand {
  const CustomCommandEntry* entry;  // null: nothing pending
  double value;
};

// Owned by the simulator's thread; null before the first load and while there is nothing.
extern CustomTables* loadedTables;
// The same while clients may reach it. Changed under the offset lock.
extern std::atomic<const CustomTables*> publishedTables;
// Under the offset lock.
extern PendingCustomWrite pendingWrite;
extern PendingCustomCommand pendingCommand;
// Raised under the offset lock with either pending slot, so that frames without any pass without the lock.
extern std::atomic<uint32_t> customPending;
// Bits of reloads that clients ask for; set under the offset lock.
constexpr uint32_t reloadAsked = 1, clearAsked = 2;
extern std::atomic<uint32_t> customRequests;

// Sorts the refreshed entries of the tables into groups and batches. Simulator's thread.
void BuildCustomRefresh(CustomTables* tables);
// Ends every command that is held down. Simulator's thread, no lock held.
void EndHeldCommands(CustomTables* tables);
