#include "aircraft/adapters.h"

#include <cstring>
#include <string>

#include "XPLMPlugin.h"
#include "base/log.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/identity.h"
#include "bridge/reader_groups.h"
#include "bridge/registry.h"
#include "platform/exceptions.h"

namespace {

constexpr XPLMPluginID noPlugin = -1;  // 0 is the simulator itself, and some hosts answer it for none

// Plug-ins under which recognised add-ons run.
struct AdapterPlugins {
  XPLMPluginID x737, xSquawkBox, pilotEdge, ec135;
};
AdapterPlugins plugins = {noPlugin, noPlugin, noPlugin, noPlugin};

// Messages to XSquawkBox. It tells only those who have subscribed, and takes what they want as flags.
constexpr int subscribeMessage = 0x01000001;
constexpr int unsubscribeMessage = 0x01000002;
constexpr intptr_t networkAudioWeatherText = 1 | 2 | 4 | 8;

// A handle of a dataref whose publisher has gone may still be found; it offers no type then.
bool IsPublished(const char* name) {
  XPLMDataRef handle = XPLMFindDataRef(name);
  return handle != nullptr && XPLMGetDataRefTypes(handle) != xplmType_Unknown;
}

// How each add-on is known by the simulator, and what its datarefs and commands begin with; empty: none of its
// own.
struct Names {
  AddOn addOn;
  const char* signature;
  const char* dataRefs;
  const char* commands;
};
constexpr Names x737 = {AddOn::X737, "bs.x737.plugin", "x737/", ""};
constexpr Names xSquawkBox = {AddOn::XSquawkBox, "vatsim.protodev.clients.xsquawkbox", "xsquawkbox/", ""};
constexpr Names pilotEdge = {AddOn::PilotEdge, "com.pilotedge.plugin.xplane", "pilotedge/", "PilotEdge/"};
constexpr Names ixeg733 = {AddOn::Ixeg733, "", "ixeg/733/", "ixeg/733/"};
constexpr Names b738Extended = {AddOn::B738Extended, "", "laminar/B738/", "laminar/B738/"};
constexpr Names b738Stock = {AddOn::B738Stock, "", "", ""};
constexpr Names ec135 = {AddOn::Ec135, "rotorsim.ec135.management", "", ""};

// Names that no row reads yet, looked up with the others.
[[maybe_unused]] constexpr Source unreadNames[] = {
    Float<"ixeg/733/misc/seatbelt_act">,   Fitting<"laminar/B738/tab/credits">,
    Fitting<"laminar/B738/tab/page">,      Fitting<"laminar/B738/tab/power">,
    Int<"pilotedge/radio/rx_status">,      Int<"pilotedge/radio/tx_status">,
    Fitting<"pilotedge/status/connected">, Bytes<"xsquawkbox/input/user_msg">,
};
[[maybe_unused]] constexpr const Command* unreadCommands[] = {&commandOf<"PilotEdge/Connect">,
                                                              &commandOf<"PilotEdge/Disconnect">};

bool handlesChanged;  // since the readers took them last

bool& LoadedOf(const Names& names) { return loadedAddOns[static_cast<size_t>(names.addOn)]; }

void Drop(const Names& names) {
  if (names.dataRefs[0] != 0) DropNamesOf(names.dataRefs);
  if (names.commands[0] != 0) DropNamesOf(names.commands);
  LoadedOf(names) = false;
  handlesChanged = true;
}

// Rows follow what has come or gone.
void BindChangedReaders() {
  if (!handlesChanged) return;
  handlesChanged = false;
  BindReaders();
}

// Follows a plug-in: true when it has appeared (or has been reloaded) since the last call; its names are
// dropped when it is gone.
bool HasAppeared(const Names& names, XPLMPluginID* plugin) {
  const XPLMPluginID answer = XPLMFindPluginBySignature(names.signature);
  const XPLMPluginID found = answer > 0 ? answer : noPlugin;
  if (found == *plugin && LoadedOf(names) == (found != noPlugin)) return false;
  if (LoadedOf(names)) Drop(names);
  *plugin = found;
  handlesChanged = true;
  return LoadedOf(names) = found != noPlugin;
}

// The same for an add-on that is known by what it publishes or by its title.
bool HasAppeared(const Names& names, bool present) {
  if (present == LoadedOf(names)) return false;
  if (LoadedOf(names)) Drop(names);
  handlesChanged = true;
  return LoadedOf(names) = present;
}

bool TitleIsStockB738() {
  constexpr char wanted[] = "Boeing B737-800 ";  // the blank belongs to it
  char title[sizeof wanted - 1];
  CopyFromMemory(aircraftTitleOffset, sizeof title, title);
  return std::memcmp(title, wanted, sizeof title) == 0;
}

void RecogniseX737() {
  if (!HasAppeared(x737, &plugins.x737)) return;
  LookUpDataRefsOf(x737.dataRefs);
  LogLine("x737 found pluginID=%i, datarefs loaded\n", plugins.x737);
}

void RecognisePilotEdge() {
  if (!HasAppeared(pilotEdge, &plugins.pilotEdge)) return;
  LookUpDataRefsOf(pilotEdge.dataRefs);
  LogLine("Init pilotEdge dataref Block OK!\n");
  LookUpCommandsOf(pilotEdge.commands);
  LogLine("Init pilotEdge command Block OK!\n");
}

void RecogniseIxeg() {
  if (!HasAppeared(ixeg733, IsPublished("ixeg/733/misc/seatbelt_act"))) {
    if (!IsLoaded(AddOn::Ixeg733)) ixegThrottleTaken = false;
    return;
  }
  char time[timeStampSize];
  LookUpDataRefsOf(ixeg733.dataRefs);
  LogLine("%s IXEG found, datarefs loaded\n", TimeStamp(time));
  LookUpCommandsOf(ixeg733.commands);
  LogLine("IXEG found, commands loaded\n");
}

void RecogniseExtendedB738() {
  const bool present = IsPublished("laminar/B738/tab/credits") || IsPublished("laminar/B738/tab/page") ||
                       IsPublished("laminar/B738/tab/power");
  if (!HasAppeared(b738Extended, present)) return;
  char time[timeStampSize];
  LookUpDataRefsOf(b738Extended.dataRefs);
  LogLine("%s Extended 737-800 found, datarefs loaded\n", TimeStamp(time));
  LookUpCommandsOf(b738Extended.commands);
  LogLine("%s Extended 737-800 found, commands loaded\n", TimeStamp(time));
}

// No name of its own is known: the flag alone tells the rows that this is a 737-800.
void RecogniseStockB738() {
  if (!HasAppeared(b738Stock, TitleIsStockB738())) return;
  char time[timeStampSize];
  LogLine("%s Stock 737-800 found, datarefs loaded\n", TimeStamp(time));
  LogLine("%s Stock 737-800 found, commands loaded\n", TimeStamp(time));
}

// What the log was told last about the user's aircraft: its title, and the adapters that serve it.
struct ToldAircraft {
  bool told;  // since enable
  char title[aircraftTextSize];
  AddOnSet addOns;
};
ToldAircraft toldAircraft;

std::string NamesOfAdapters() {
  struct Name {
    AddOn addOn;
    const char* name;
  };
  // Aircraft alone: network clients say so themselves.
  constexpr Name names[] = {{AddOn::X737, "x737"},
                            {AddOn::Ixeg733, "IXEG 737"},
                            {AddOn::B738Extended, "Extended 737-800"},
                            {AddOn::B738Stock, "Stock 737-800"},
                            {AddOn::Ec135, "EC135"}};
  std::string list;
  for (const Name& name : names) {
    if (IsLoaded(name.addOn)) list += (list.empty() ? "" : ", ") + std::string(name.name);
  }
  return list;
}

// Says which aircraft is loaded and which adapter serves it, when that is news.
void TellAircraft() {
  ToldAircraft now = {};
  now.told = true;
  CopyFromMemory(aircraftTitleOffset, sizeof now.title, now.title);
  now.title[sizeof now.title - 1] = '\0';
  now.addOns = loadedAddOns;
  now.addOns[static_cast<size_t>(AddOn::XSquawkBox)] = now.addOns[static_cast<size_t>(AddOn::PilotEdge)] =
      false;
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
  for (const Names* names : {&x737, &ixeg733, &b738Extended, &b738Stock, &ec135}) Drop(*names);
  plugins.x737 = noPlugin;
  plugins.ec135 = noPlugin;
  ixegThrottleTaken = false;
}

// Each for itself: one whose accessors throw does not hide the others.
void Recognise() {
  RunAllSteps({RecogniseX737, RecogniseXSquawkBox, RecognisePilotEdge, RecogniseIxeg, RecogniseExtendedB738,
               RecogniseStockB738});
}

}  // namespace

void RecogniseXSquawkBox() {
  const bool before = IsLoaded(AddOn::XSquawkBox);
  const bool appeared = HasAppeared(xSquawkBox, &plugins.xSquawkBox);
  if (appeared || before != IsLoaded(AddOn::XSquawkBox)) xSquawkBoxState = {};
  if (!appeared) return;
  LookUpDataRefsOf(xSquawkBox.dataRefs);
  LoadedOf(xSquawkBox) = false;  // until it has answered: it is tried again when its accessors throw
  ReadText(Bytes<"xsquawkbox/vers/string">, xSquawkBoxState.version, sizeof xSquawkBoxState.version);
  xSquawkBoxState.versionNumber = ReadInt(Int<"xsquawkbox/vers/number">);
  LoadedOf(xSquawkBox) = true;
  LogLine("XSB found pluginID=%i, datarefs loaded\n", plugins.xSquawkBox);
  XPLMSendMessageToPlugin(plugins.xSquawkBox, subscribeMessage,
                          reinterpret_cast<void*>(networkAudioWeatherText));
}

void RecogniseAircraft() { RunAllSteps({Recognise, BindChangedReaders, TellAircraft}); }

void RunEc135Adapter() {
  // No name of its own is known either: its offsets stay on the stock datarefs.
  if (!HasAppeared(ec135, &plugins.ec135)) return;
  LogOwn("TAVRIX->EC135 found pluginID=%i, stock datarefs stay in use\n", plugins.ec135);
  BindChangedReaders();
}

void DetectLoadedAircraft() {
  RunAllSteps({DropAircraft, StoreAircraftTitle, Recognise, RunEc135Adapter, BindChangedReaders, TellAircraft});
}

void ResetAdapters() {
  const XPLMPluginID subscribedAt = IsLoaded(AddOn::XSquawkBox) ? plugins.xSquawkBox : noPlugin;
  DropAircraft();
  Drop(xSquawkBox);
  Drop(pilotEdge);
  plugins = {noPlugin, noPlugin, noPlugin, noPlugin};
  loadedAddOns = {};
  xSquawkBoxState = {};
  toldAircraft = {};
  if (subscribedAt != noPlugin) XPLMSendMessageToPlugin(subscribedAt, unsubscribeMessage, nullptr);
}

void ReleaseIxegThrottleOverride() {
  if (!ixegThrottleTaken) return;
  ixegThrottleTaken = false;
  char time[timeStampSize];
  SetSource(Fitting<"ixeg/733/hardware/tavrix_thro1">, 0);
  SetSource(Fitting<"ixeg/733/hardware/tavrix_thro2">, 0);
  LogLine("%s disabling IXEG throttle overwrite OK!\n", TimeStamp(time));
}

void ReceiveAdapterMessage(int from, int message, void* parameter) {
  if (IsLoaded(AddOn::XSquawkBox) && from == plugins.xSquawkBox) ReceiveXSquawkBoxMessage(message, parameter);
}
