// The room base/: what every room above leans on: the program's locks (this header), the logs (log.h), the
// version texts, the folders, numbers in bytes. It knows nothing of offsets or of any room above. Log lines and
// locks are for any thread; the folders ask the simulator and are for its thread.
//
// This header: the program's locks, and the one place that states their order.
//
// They live from enable to disable, created in the order below, deleted as DeleteLocks does it.
//
// Lock order (a thread that holds one may take only those below it):
//   1. client list lock   (network client table)
//   2. traffic lock       (list of other aircraft)
//   3. traffic slot lock  (slots of the traffic threads)
//   4. offset lock        (offset memory, pending values and flags, request counters)
// The trace lock is taken only with no other lock held. The spare lock is never entered. No simulator call
// is ever made while any of them is held, and nothing blocks under the offset lock: log lines are written, and
// a client's own memory is filled, after it is left. Log lines may be written with any other of them held: the
// log's own lock is the innermost of all and is known to the log alone.
#pragma once
#include <atomic>
#include <cstdint>

#include "platform/lock.h"

extern Lock offsetLock;
extern Lock traceLock;
extern Lock trafficLock;
extern Lock trafficSlotLock;
extern Lock spareLock;
extern Lock clientListLock;

// Raised by the simulator's thread for the few microseconds in which it stores refreshed values or takes staged
// ones: whoever serves clients lets it go first, so that clients who never pause neither make it wait nor make
// it drop values. Holding it up is a courtesy, not a lock: it bounds nobody's correctness.
extern std::atomic<uint32_t> simulatorTurn;
struct SimulatorTurn {
  SimulatorTurn() { simulatorTurn.store(1, std::memory_order_relaxed); }
  ~SimulatorTurn() { simulatorTurn.store(0, std::memory_order_relaxed); }
  SimulatorTurn(const SimulatorTurn&) = delete;
  SimulatorTurn& operator=(const SimulatorTurn&) = delete;
};
// Enters the offset lock for a scope of a thread other than the simulator's, after its turn.
struct ServerLockScope {
  ServerLockScope() {
    if (simulatorTurn.load(std::memory_order_relaxed) != 0) WaitForSimulator();
    EnterLock(&offsetLock);
  }
  ~ServerLockScope() { LeaveLock(&offsetLock); }
  ServerLockScope(const ServerLockScope&) = delete;
  ServerLockScope& operator=(const ServerLockScope&) = delete;
  static void WaitForSimulator();
};

// Creates the six locks. Simulator's thread, at enable. False when the system refuses one (those made
// are deleted again).
bool CreateLocks();
// Deletes them: offset, trace, traffic slot, traffic, spare, client list. Simulator's thread, at disable,
// after every thread that uses them has been joined.
void DeleteLocks();
