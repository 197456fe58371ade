#include "aircraft/adapters.h"

#include <cstring>
#include <string>

#include "XPLMPlugin.h"
#include "aircraft/adapters_table.h"
#include "base/log.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/identity.h"

AdapterState adapters;
B738Commands b738Commands;
PilotEdgeCommands pilotEdgeCommands;
int ixegThrottleOverrideOn;

namespace {

constexpr XPLMPluginID noPlugin = -1;  // 0 is the simulator itself

// Plug-ins under which recognised add-ons run.
struct AdapterPlugins {
  XPLMPluginID x737, xSquawkBox, pilotEdge, ec135;
};
AdapterPlugins plugins = {noPlugin, noPlugin, noPlugin, noPlugin};

// Messages to XSquawkBox. It tells only those who have subscribed, and takes what they want as flags.
constexpr int subscribeMessage = 0x01000001;
constexpr int unsubscribeMessage = 0x01000002;
constexpr intptr_t networkAudioWeatherText = 1 | 2 | 4 | 8;

XPLMDataRef* PlaceOf(const Source& slot) {
  return (slot.block == Block::Primary ? DataRefMemBlock : AuxDataRefMemBlock) + slot.index;
}

void LookUpDataRefsOf(const AdapterNames& names) {
  for (const AdapterDataRef& dataRef : names.dataRefs) *PlaceOf(dataRef.slot) = XPLMFindDataRef(dataRef.name);
}
void LookUpCommandsOf(const AdapterNames& names) {
  for (const AdapterCommand& command : names.commands) *command.handle = XPLMFindCommand(command.name);
}
void Drop(const AdapterNames& names) {
  for (const AdapterDataRef& dataRef : names.dataRefs) *PlaceOf(dataRef.slot) = nullptr;
  for (const AdapterCommand& command : names.commands) *command.handle = nullptr;
}

// A handle of a dataref whose publisher has gone may still be found; it offers no type then.
int IsPublished(const char* name) {
  XPLMDataRef handle = XPLMFindDataRef(name);
  return handle != nullptr && XPLMGetDataRefTypes(handle) != xplmType_Unknown;
}

// Follows a plug-in: 1 when it has appeared (or has been reloaded) since the last call. Sets `loaded` and
// drops the names when it is gone.
int HasAppeared(const char* signature, const AdapterNames& names, XPLMPluginID* plugin, int* loaded) {
  const XPLMPluginID found = XPLMFindPluginBySignature(signature);
  if (found == *plugin && *loaded == (found != noPlugin)) return 0;
  if (*loaded) Drop(names);
  *plugin = found;
  *loaded = found != noPlugin;
  return *loaded;
}

// The same for an add-on that is known by what it publishes or by its title.
int HasAppeared(int present, const AdapterNames& names, int* loaded) {
  if (present == *loaded) return 0;
  if (*loaded) Drop(names);
  *loaded = present;
  return present;
}

int TitleIsStockB738() {
  constexpr char wanted[] = "Boeing B737-800 ";  // the blank belongs to it
  char title[sizeof wanted - 1];
  CopyFromMemory(aircraftTitleOffset, sizeof title, title);
  return std::memcmp(title, wanted, sizeof title) == 0;
}

void RecogniseX737() {
  if (!HasAppeared("bs.x737.plugin", x737Names, &plugins.x737, &adapters.x737)) return;
  LookUpDataRefsOf(x737Names);
  LogLine("x737 found pluginID=%i, datarefs loaded\n", plugins.x737);
}

void RecognisePilotEdge() {
  if (!HasAppeared("com.pilotedge.plugin.xplane", pilotEdgeNames, &plugins.pilotEdge, &adapters.pilotEdge)) {
    return;
  }
  LookUpDataRefsOf(pilotEdgeNames);
  LogLine("Init pilotEdge dataref Block OK!\n");
  LookUpCommandsOf(pilotEdgeNames);
  LogLine("Init pilotEdge command Block OK!\n");
}

void RecogniseIxeg() {
  if (!HasAppeared(IsPublished("ixeg/733/misc/seatbelt_act"), ixegNames, &adapters.ixeg733)) {
    if (!adapters.ixeg733) ixegThrottleOverrideOn = 0;
    return;
  }
  char time[timeStampSize];
  LookUpDataRefsOf(ixegNames);
  LogLine("%s IXEG found, datarefs loaded\n", TimeStamp(time));
  LookUpCommandsOf(ixegNames);
  LogLine("IXEG found, commands loaded\n");
}

void RecogniseExtendedB738() {
  const int present = IsPublished("laminar/B738/tab/credits") || IsPublished("laminar/B738/tab/page") ||
                      IsPublished("laminar/B738/tab/power");
  if (!HasAppeared(present, b738Names, &adapters.b738Extended)) return;
  char time[timeStampSize];
  LookUpDataRefsOf(b738Names);
  LogLine("%s Extended 737-800 found, datarefs loaded\n", TimeStamp(time));
  LookUpCommandsOf(b738Names);
  LogLine("%s Extended 737-800 found, commands loaded\n", TimeStamp(time));
}

// No name of its own is known: the flag alone tells the rows that this is a 737-800.
void RecogniseStockB738() {
  if (!HasAppeared(TitleIsStockB738(), AdapterNames{}, &adapters.b738Stock)) return;
  char time[timeStampSize];
  LogLine("%s Stock 737-800 found, datarefs loaded\n", TimeStamp(time));
  LogLine("%s Stock 737-800 found, commands loaded\n", TimeStamp(time));
}

// What the log was told last about the user's aircraft: its title, and the adapters that serve it.
struct ToldAircraft {
  int told;  // since enable
  char title[aircraftTextSize];
  AdapterState adapters;
};
ToldAircraft toldAircraft;

std::string NamesOfAdapters() {
  struct Name {
    int AdapterState::*loaded;
    const char* name;
  };
  // Aircraft alone: network clients say so themselves.
  constexpr Name names[] = {{&AdapterState::x737, "x737"},
                            {&AdapterState::ixeg733, "IXEG 737"},
                            {&AdapterState::b738Extended, "Extended 737-800"},
                            {&AdapterState::b738Stock, "Stock 737-800"},
                            {&AdapterState::ec135, "EC135"}};
  std::string list;
  for (const Name& name : names) {
    if (adapters.*name.loaded) list += (list.empty() ? "" : ", ") + std::string(name.name);
  }
  return list;
}

// Says which aircraft is loaded and which adapter serves it, when that is news.
void TellAircraft() {
  ToldAircraft now = {};
  now.told = 1;
  CopyFromMemory(aircraftTitleOffset, sizeof now.title, now.title);
  now.title[sizeof now.title - 1] = '\0';
  now.adapters = adapters;
  now.adapters.xSquawkBox = now.adapters.pilotEdge = 0;
  if (std::memcmp(&now, &toldAircraft, sizeof now) == 0) return;
  toldAircraft = now;
  const std::string names = NamesOfAdapters();
  const std::string title = now.title[0] == '\0' ? "without a title" : '"' + EscapedForLog(now.title) + '"';
  LogOwn("TAVRIX->Aircraft %s: %s\n", title.c_str(),
         names.empty() ? "no adapter of its own, the simulator's standard values are used"
                       : ("served by the adapter for " + names).c_str());
}

// What comes and goes with the user's aircraft. The network clients stay.
void DropAircraft() {
  Drop(x737Names);
  Drop(ixegNames);
  Drop(b738Names);
  plugins.x737 = noPlugin;
  plugins.ec135 = noPlugin;
  adapters.x737 = adapters.ixeg733 = adapters.b738Extended = adapters.b738Stock = adapters.ec135 = 0;
  ixegThrottleOverrideOn = 0;
}

void Recognise() {
  RecogniseX737();
  RecogniseXSquawkBox();
  RecognisePilotEdge();
  RecogniseIxeg();
  RecogniseExtendedB738();
  RecogniseStockB738();
}

}  // namespace

void RecogniseXSquawkBox() {
  const int before = adapters.xSquawkBox;
  const int appeared = HasAppeared("vatsim.protodev.clients.xsquawkbox", xSquawkBoxNames, &plugins.xSquawkBox,
                                   &adapters.xSquawkBox);
  if (appeared || before != adapters.xSquawkBox) xSquawkBoxState = {};
  if (!appeared) return;
  LookUpDataRefsOf(xSquawkBoxNames);
  ReadText(xsbVersString.block, xsbVersString.index, xSquawkBoxState.version, sizeof xSquawkBoxState.version);
  xSquawkBoxState.versionNumber = ReadInt(xsbNumber);
  LogLine("XSB found pluginID=%i, datarefs loaded\n", plugins.xSquawkBox);
  XPLMSendMessageToPlugin(plugins.xSquawkBox, subscribeMessage,
                          reinterpret_cast<void*>(networkAudioWeatherText));
}

void RecogniseAircraft() {
  Recognise();
  TellAircraft();
}

void RunEc135Adapter() {
  // No name of its own is known either: its offsets stay on the stock datarefs.
  if (!HasAppeared("rotorsim.ec135.management", AdapterNames{}, &plugins.ec135, &adapters.ec135)) return;
  LogOwn("TAVRIX->EC135 found pluginID=%i, stock datarefs stay in use\n", plugins.ec135);
}

void DetectLoadedAircraft() {
  DropAircraft();
  StoreAircraftTitle();
  Recognise();
  RunEc135Adapter();
  TellAircraft();
}

void ResetAdapters() {
  if (adapters.xSquawkBox) XPLMSendMessageToPlugin(plugins.xSquawkBox, unsubscribeMessage, nullptr);
  DropAircraft();
  Drop(xSquawkBoxNames);
  Drop(pilotEdgeNames);
  plugins = {noPlugin, noPlugin, noPlugin, noPlugin};
  adapters = {};
  xSquawkBoxState = {};
  toldAircraft = {};
}

void ReleaseIxegThrottleOverride() {
  if (!ixegThrottleOverrideOn) return;
  ixegThrottleOverrideOn = 0;
  char time[timeStampSize];
  SetSource(ixegTavrixThro1, 0);
  SetSource(ixegTavrixThro2, 0);
  LogLine("%s disabling IXEG throttle overwrite OK!\n", TimeStamp(time));
}

void ReceiveAdapterMessage(int from, int message, void* parameter) {
  if (adapters.xSquawkBox && from == plugins.xSquawkBox) ReceiveXSquawkBoxMessage(message, parameter);
}
