#include "shell/lifecycle.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include "XPLMPlugin.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "aircraft/adapters.h"
#include "base/folders.h"
#include "base/log.h"
#include "base/version.h"
#include "bridge/catalogue/misc_actions.h"
#include "bridge/catalogue/throttle_actions.h"
#include "bridge/cycles.h"
#include "bridge/reader_groups.h"
#include "bridge/registry.h"
#include "bridge/slew.h"
#include "bridge/stations.h"
#include "controls/axes.h"
#include "controls/buttons.h"
#include "custom/custom.h"
#include "net/net.h"
#include "net/permissions.h"
#include "net/relay.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "offsets/window_server.h"
#include "panels/layout.h"
#include "panels/panels.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/socket.h"
#include "platform/system.h"
#include "pushback/pushback.h"
#include "settings/settings.h"
#include "shell/advice.h"
#include "shell/atc_texts.h"
#include "shell/flight_loops.h"
#include "shell/frame_callbacks.h"
#include "shell/menu.h"
#include "shell/override_watch.h"
#include "status/status_page.h"
#include "traffic/traffic.h"

namespace {

constexpr size_t identitySize = 256;
constexpr char separatorLine[] = "--------------------------------------------------\n";

// How far the host has taken us. A call that does not fit does nothing: a host may enable twice, stop without
// disabling, or send messages whenever it likes.
enum class Stage { Unloaded, Started, Enabled };
Stage stage = Stage::Unloaded;

bool clientModeAtEnable;  // disable acts on the mode that enable chose
bool threadsStarted;      // once per load
bool deferredStartRan;    // once per enable
bool socketLibraryOpen;
XPLMProbeRef terrainProbe;

void CopyIdentity(char* target, const char* text) { std::snprintf(target, identitySize, "%s", text); }

// A line with the time stamp in front, as most shutdown lines have it.
void LogStamped(const char* text) {
  char stamp[timeStampSize];
  LogLine("%s %s\n", TimeStamp(stamp), text);
}

// Where a lower room calls a higher one: the dispatcher the user's own offsets, the catalogue pushback.
void ConnectRooms() {
  ConnectCustomOffsets();
  ConnectPushback();
}

// A service whose thread, or what it waits with, the system does not give is missing until the next load.
void TellStarted(bool started, const char* fine, const char* failed, const char* loss) {
  if (started) return LogLine("%s\n", fine);
  LogLine("%s\n", failed);
  LogOwn("TAVRIX->The system gives no thread or event, %s: %s, and reload the plug-in\n", loss, shortageRemedy);
}

void StartThreads() {
  if constexpr (windowServerExists) {
    TellStarted(StartWindowServer(), "TAVRIX->Create KORL Thread OK!", "TAVRIX->Create KORL Thread failed!",
                "local clients cannot connect");
  }
  TellStarted(StartButtonThread(), "TAVRIX->Create Joystick Thread OK!",
              "TAVRIX->Create Joystick Thread failed!", "assigned joystick buttons and axes do nothing");
  const bool networkOpen = OpenNetworkServer();
  if (!networkOpen) OpenAlertWindow(networkAlertText);
  const bool networkRuns = networkOpen && StartNetworkServer();
  const bool trafficRuns = StartTrafficThread();
  if (!StartAircraftModelThread()) {
    LogOwn("TAVRIX->Create aircraft model thread failed! The simulator's own thread does its work: %s\n",
           shortageRemedy);
  }
  if (settings.statusPage != PageAccess::Off &&
      !StartStatusPage(SystemFolder().c_str(), settings.statusPage == PageAccess::Local)) {
    LogOwn("TAVRIX->Create HTTP thread failed! There is no status page: %s, and reload the plug-in\n",
           shortageRemedy);
  }
  constexpr char failed[] = "TAVFARNET->Create Socket thread failed!";
  if (networkOpen) {
    TellStarted(networkRuns, "TAVFARNET->Create Socket thread OK!", failed, "network clients cannot connect");
  } else {
    LogLine("%s\n", failed);  // why was told
  }
  TellStarted(trafficRuns, "TAVRIX->Create ATC thread OK!", "TAVRIX->Create ATC thread failed!",
              "other aircraft are not shown");
}

void CentreRudder() { FireCommand(XPLMFindCommand("sim/flight_controls/rudder_ctr")); }

float DeferredStart(float, float, int, void*) {
  // Some hosts call a loop again that an exception has passed through.
  if (std::exchange(deferredStartRan, true)) return 0;
  try {
    if (threadsStarted) {
      TellThreadsWait(true);
      LogOwn("TAVRIX->Threads already started once, reload the plug-in to start them again\n");
    } else {
      threadsStarted = true;
      RunAllSteps({LoadAircraftList, StartThreads, CentreRudder});
    }
  } catch (...) {
    PassForeignException();
  }
  return 0;
}

// What the user's settings let others do, so that a refusal is no riddle.
void LogPermissions() {
  constexpr const char* pageWords[] = {"All", "Local", "Off"};
  LogOwn("TAVRIX->Allowed clients: %s; network writes: %s; status page: %s\n", AllowedClientsText().c_str(),
         settings.networkWrites != 0 ? "Yes" : "No", pageWords[static_cast<size_t>(settings.statusPage)]);
}

void EnableClientMode() {
  LogLine("TAVRIX->TAVRIX2TAVRIX mode active\n");
  OpenRelay(RelayRole::Receiver);
  RegisterClientFlightLoops();
}

void EnableServerMode() {
  OpenRelay(RelayRole::Sender);
  LogLine("TAVRIX->TAVRIX2TAVRIX mode not active, init flightloops\n");
  ForgetStations();
  anythingPending = 1;  // flags that were raised while nobody applied them
  AwaitFirstCycles();
  deferredStartRan = false;
  RegisterFlightLoops(DeferredStart);
  if (terrainProbe == nullptr) terrainProbe = XPLMCreateProbe(xplm_ProbeY);
  if (terrainProbe == nullptr) {
    LogOwn("TAVRIX->The simulator gives no terrain probe: enable the plug-in again; nothing else is missing\n");
  }
  RecogniseXSquawkBox();
  BindReaders();
  LogLine("TAVRIX->Init pushback functions\n");
  InitPushback();
  LoadButtonAssignments();
  LoadAxisAssignments();
}

void DisableClientMode() {
  UnregisterClientFlightLoops();
  StopRelayThread();
  CloseRelay();
}

void StopPushbackStep() {
  LogStamped("TAVRIX->Stopping pushback.....");
  StopPushback();
}

void StopServerThreads() {
  LogStamped("TAVRIX->Closing KORL main window.....");
  StopNetworkServer();
  StopAircraftModelThread();
  if constexpr (windowServerExists) {
    LogStamped("TAVRIX->Closing KORLMain Thread......");
    StopWindowServer();
  }
  LogStamped("TAVRIX->Closing Joystick Thread......");
  StopButtonThread();
  LogStamped("TAVRIX->Closing ATC Thread......");
  StopTrafficThread();
  CloseRelay();
}

void DisableServerMode() {
  // In the middle everything of the simulator that we hold is given back: overrides, held commands, slew.
  RunAllSteps({UnregisterFlightLoops, StopPushbackStep, ClearSlew, StopAxisWrites, ReleaseOverrides,
               ReleaseStarters, ReleaseContactAtc, StopServerThreads});
}

void BeginDisable() {
  LogLine("%s", separatorLine);
  LogStamped("TAVRIX->Starting deinit");
  if (!StatusPageRuns()) return;
  LogStamped("TAVRIX->Stopping HTTP.....");
  StopStatusPage();
}

void DisableMode() { clientModeAtEnable ? DisableClientMode() : DisableServerMode(); }

// Nobody writes any more: what clients changed last is saved, too.
void SaveChanges() {
  TakeAtcTexts(MonotonicNanoseconds());
  SaveWaitingSettings();
  LogLine("TAVRIX->Release critical sections\n");
}

void ReleaseLocks() {
  ReleaseTraffic();
  DeleteAxes();
  DeleteButtons();
  DeleteLocks();
  LogLine("TAVRIX->Purging TAVRIXOffsets.cfg\n");
}

void EndDisable() {
  LogStamped("TAVRIX deinit OK!");
  LogStamped("TAVRIX Disable !");
  readTrace = 0;
  writeTrace = 0;
  DisableWindows();
  FlushLogs();
}

void LoadListForTraffic() {
  if (TrafficRuns()) LoadAircraftList();
}

void DestroyTerrainProbe() {
  if (terrainProbe != nullptr) XPLMDestroyProbe(terrainProbe);
  terrainProbe = nullptr;
}

void EndStop() {
  if (socketLibraryOpen) CloseSocketLibrary();
  socketLibraryOpen = false;
  CloseLogs();
}

}  // namespace

int StartPlugin(char* name, char* signature, char* description) {
  CopyIdentity(name, "TAVRIX/TAVFARNET");
  CopyIdentity(signature, "TAVRIX/TAVFARNET.");
  CopyIdentity(description, "A plugin that emulates morven.dll and FARNET.");
  if (stage != Stage::Unloaded) return 1;
  stage = Stage::Started;
  PrepareExceptions();
  TellThreadsWait(false);
  threadsStarted = false;  // a module that could not be unloaded starts once more with what it had
  readTrace = 0;
  writeTrace = 0;

  const std::string folder = PluginFolder();
  OpenLogs(folder.c_str(), [](const char* line) { XPLMDebugString(line); });
  LogBoth("%s %s\n", pluginTitle, buildWord);
  LogBoth("%s %s\n", networkTitle, buildWord);
  socketLibraryOpen = OpenSocketLibrary();
  if (!socketLibraryOpen) LogOwn("TAVFARNET->The system's socket library does not start: no network clients\n");
  SetSettingsPath((folder + "TAVRIX.ini").c_str());

  BuildMenu();

  int programInterface = 0;
  XPLMHostApplicationID host = 0;
  XPLMGetVersions(&simulatorVersion, &programInterface, &host);  // rows go by it

  LogLine("Start Init!\n");
  ConnectRooms();
  InitMemoryBlocks();
  LookUpDataRefs();
  LookUpCommands();
  BuildCycles();

  LogBoth("%s%i\n", simulatorVersionLabel, simulatorVersion);

  PlaceStartValues();
  PrepareFolders(ReportedSystemFolder().c_str());
  FlushLogs();
  return 1;
}

int EnablePlugin() {
  if (stage == Stage::Unloaded) return 0;
  if (stage == Stage::Enabled) return 1;
  stage = Stage::Enabled;
  ClearRequestMarks();
  ForgetCustomRequests();
  ReadAllSettings();
  clientModeAtEnable = settings.clientMode != 0;
  PublishAtcTexts();
  ReopenMainLog();
  LogLine("%s", separatorLine);
  LogStamped("TAVRIX Enable !");
  LogLine("TAVFARSERVER Enable !\n");
  LogLine("TAVRIX->Reading TAVRIXOffsets.cfg\n");
  LoadCustomOffsets();
  LogLine("TAVRIX->Initialise critical sections\n");
  if (!CreateLocks() || !CreateButtons() || !CreateAxes() || !InitTraffic()) {
    DeleteAxes();
    DeleteButtons();
    DeleteLocks();
    ClearCustomOffsets();
    stage = Stage::Started;
    LogOwn("TAVRIX->The system refuses the locks: the plug-in stays disabled; %s, and enable it again\n",
           shortageRemedy);
    return 0;
  }
  EnableWindows();
  BeginCrashCountdown();
  PrepareNetwork(settings.serverAddress);
  PreparePermissions(settings.allowedClients, settings.networkWrites != 0);
  if (clientModeAtEnable) {
    EnableClientMode();
  } else {
    EnableServerMode();
    LogAddresses(settings.serverAddress);
  }
  LogPermissions();
  return 1;
}

void DisablePlugin() {
  if (stage != Stage::Enabled) return;
  stage = Stage::Started;
  RunAllSteps({BeginDisable, DisableMode, SaveChanges, ClearCustomOffsets, ReleaseLocks,
               ReleaseIxegThrottleOverride, ResetAdapters, EndDisable});
}

void StopPlugin() {
  if (stage == Stage::Unloaded) return;
  RunAllSteps({DisablePlugin, UnregisterFlightLoops, StopPushback, UnregisterClientFlightLoops,
               DestroyTerrainProbe, DestroyMenuAndWindows, EndStop});
  stage = Stage::Unloaded;
}

void ReceivePluginMessage(int from, int message, void* parameter) {
  if (stage != Stage::Enabled) return;
  if (from != XPLM_PLUGIN_XPLANE) {
    ReceiveAdapterMessage(from, message, parameter);
    return;
  }
  switch (message) {
    case XPLM_MSG_PLANE_LOADED:
      if (reinterpret_cast<intptr_t>(parameter) != 0 || clientModeAtEnable) break;
      RunAllSteps({LoadListForTraffic, DetectLoadedAircraft, RefreshForNewAircraft});
      break;
    case XPLM_MSG_PLANE_CRASHED:
      AbortPushback();
      SetCrashed();
      break;
    case XPLM_MSG_AIRPLANE_COUNT_CHANGED:
      LoadListForTraffic();
      break;
    default:
      break;
  }
}
