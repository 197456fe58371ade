#include "base/locks.h"

#include "platform/clock.h"

Lock offsetLock;
Lock traceLock;
Lock trafficLock;
Lock trafficSlotLock;
Lock spareLock;
Lock clientListLock;
std::atomic<uint32_t> simulatorTurn;

// The simulator's thread may itself have to wait for a processor: then its turn is passed over after a while.
void ServerLockScope::WaitForSimulator() {
  constexpr int longestTurn = 200;
  for (int i = 0; i < longestTurn && simulatorTurn.load(std::memory_order_relaxed) != 0; ++i) GiveWay();
}

bool CreateLocks() {
  for (Lock* lock : {&offsetLock, &traceLock, &trafficLock, &trafficSlotLock, &spareLock, &clientListLock}) {
    if (CreateLock(lock)) continue;
    DeleteLocks();
    return false;
  }
  return true;
}

void DeleteLocks() {
  for (Lock* lock : {&offsetLock, &traceLock, &trafficSlotLock, &trafficLock, &spareLock, &clientListLock}) {
    DeleteLock(lock);
  }
}
