#include "offsets/locks.h"

Lock offsetLock;
Lock traceLock;
Lock trafficLock;
Lock trafficSlotLock;
Lock spareLock;
Lock clientListLock;

int CreateLocks() {
  for (Lock* lock : {&offsetLock, &traceLock, &trafficLock, &trafficSlotLock, &spareLock, &clientListLock}) {
    if (CreateLock(lock)) continue;
    DeleteLocks();
    return 0;
  }
  return 1;
}

void DeleteLocks() {
  for (Lock* lock : {&offsetLock, &traceLock, &trafficSlotLock, &trafficLock, &spareLock, &clientListLock}) {
    DeleteLock(lock);
  }
}
