#include <algorithm>
#include <cstring>

#include "XPLMPlanes.h"
#include "base/locks.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "traffic/targets.h"
#include "traffic/traffic.h"
#include "traffic/traffic_state.h"

char modelNames[maxModels][modelNameSize];
char modelPaths[maxModels][modelPathSize];
std::atomic<uint32_t> aircraftCount;
std::atomic<uint32_t> countChanged;
std::atomic<uint32_t> listBeingBuilt;

namespace {

constexpr uint32_t messageModelsGathered = 0x8001;  // of the numbers that are free for programs

// Models as the simulator told them last, on their way into the tables. The lock is known to this file alone
// and never held together with another one or across a call into the simulator.
Lock gatherLock;
char gatheredNames[maxModels][modelNameSize];
char gatheredPaths[maxModels][modelPathSize];

Thread modelThread;
Event modelThreadReady;
std::atomic<uint32_t> modelRun;
std::atomic<uint32_t> gatheredWaiting;  // raised after gathering, taken by who moves it into the tables

// Moves what was gathered into the tables. Model thread, or the simulator's while that does not run.
void TakeGathered() {
  static char names[maxModels][modelNameSize];
  static char paths[maxModels][modelPathSize];
  {
    const LockScope lock(&gatherLock);
    std::memcpy(names, gatheredNames, sizeof names);
    std::memcpy(paths, gatheredPaths, sizeof paths);
  }
  {
    const LockScope lock(&trafficLock);
    std::memcpy(modelNames, names, sizeof names);
    std::memcpy(modelPaths, paths, sizeof paths);
  }
  listBeingBuilt = 0;
}

uint32_t ModelProcedure(void*) {
  PrepareThreadMessages();
  SignalEvent(&modelThreadReady);
  // On Windows every program can post messages to the thread, the quit message too: they wake it and say
  // nothing.
  while (modelRun.load() != 0) {
    uint32_t message = 0;
    uintptr_t value = 0;
    if (WaitThreadMessage(-1, &message, &value) < 0) SleepMilliseconds(100);  // out of order: do not spin
    if (modelRun.load() != 0 && gatheredWaiting.exchange(0) != 0) TakeGathered();
  }
  return 0;
}

// Index 0, the user's own aircraft, and those that are not there stay empty.
void GatherModel(int index, bool exists) {
  char name[modelNameSize] = "";
  char path[modelPathSize] = "";
  if (exists) XPLMGetNthAircraftModel(index, name, path);
  name[modelNameSize - 1] = 0;
  path[modelPathSize - 1] = 0;
  const LockScope lock(&gatherLock);
  std::strncpy(gatheredNames[index], name, modelNameSize);  // pads with zeros
  std::strncpy(gatheredPaths[index], path, modelPathSize);
}

// Told whatever comes of the look at the aircraft, and after it.
struct TellOfChange {
  ~TellOfChange() { countChanged = 1; }
};

}  // namespace

bool InitTraffic() {
  if (!CreateLock(&gatherLock)) return false;
  std::memset(modelNames, 0, sizeof modelNames);
  std::memset(modelPaths, 0, sizeof modelPaths);
  std::fill_n(planeSources, maxSlots, PlaneSource{});
  userPlace = {};
  ForgetTargets();
  for (uint32_t i = 0; i < maxSlots; ++i) {
    slots[i].index = i;
    slotDistances[i] = {noDistance, 0};
  }
  aircraftCount = 1;
  countChanged = 0;
  listBeingBuilt = 0;
  return true;
}

void ReleaseTraffic() { DeleteLock(&gatherLock); }

void LoadAircraftList() {
  const TellOfChange tell;
  int total = 0, active = 0;
  XPLMPluginID controller = 0;
  XPLMCountAircraft(&total, &active, &controller);
  listBeingBuilt = 1;
  const int known = std::min(active, static_cast<int>(maxModels));
  for (int index = 1; index < static_cast<int>(maxModels); ++index) GatherModel(index, index < known);
  gatheredWaiting = 1;
  // A thread that cannot be told has a full queue, and comes to look with the next message of it.
  if (!PostMessageToThread(&modelThread, messageModelsGathered, 0) && modelThread.started.load() == 0) {
    gatheredWaiting = 0;
    TakeGathered();
  }
  if (!TargetsExist()) aircraftCount = static_cast<uint32_t>(std::max(active, 1));
  FillTrafficPositions();  // a new slot begins where its aircraft is
}

bool StartAircraftModelThread() {
  if (!CreateAutoEvent(&modelThreadReady)) return false;
  modelRun = 1;
  const bool started = StartThread(&modelThread, ModelProcedure, nullptr);
  if (started) {
    WaitEvent(&modelThreadReady, -1);  // a message to a thread without a queue is lost
  } else {
    modelRun = 0;
  }
  CloseEvent(&modelThreadReady);
  return started;
}

void StopAircraftModelThread() {
  if (modelThread.started.load() == 0) return;
  modelRun = 0;
  PostMessageToThread(&modelThread, messageQuit, 0);  // with a full queue the next message ends it
  JoinThread(&modelThread);
}
