#include "aircraft/adapters.h"

#include <bit>
#include <cstring>
#include <string>

#include "XPLMPlugin.h"
#include "aircraft/names.h"
#include "base/log.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/identity.h"
#include "bridge/catalogue/throttle_actions.h"
#include "bridge/held_presses.h"
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

constexpr AddOn aircraftAddOns[] = {AddOn::X737, AddOn::B738Extended, AddOn::B738Stock, AddOn::Ixeg733,
                                    AddOn::Ec135};

bool handlesChanged;  // since the readers took them last

// Runs of the 313-frame cycle in which names that are not there are looked up again: the first ones, then at
// each power of two.
constexpr uint32_t eachRunUntil = 8;
uint32_t runsSince[static_cast<size_t>(AddOn::Count)];  // since an add-on was recognised

bool& LoadedOf(AddOn addOn) { return loadedAddOns[static_cast<size_t>(addOn)]; }

void Drop(AddOn addOn) {
  LoadedOf(addOn) = false;
  emptyAddOns[static_cast<size_t>(addOn)] = false;
  runsSince[static_cast<size_t>(addOn)] = 0;
  ForgetUnserved(addOn);
  DropNamesOf(addOn);
  handlesChanged = true;
}

// Ends a look-up: how many of its names an add-on publishes, and which it does not: an older or newer version
// of it, mostly. The simulator's own 737-800 is known by its title alone: that of an older simulator has no
// names, and its balance is the 737's all the same.
void TellNames(AddOn addOn) {
  constexpr size_t longest = 600;
  const NamesFound& found = NamesFoundOf(addOn);
  emptyAddOns[static_cast<size_t>(addOn)] = found.own == 0 && addOn != AddOn::B738Stock;
  std::string missing;
  size_t listed = 0;
  while (listed < found.missing.size() && missing.size() < longest) {
    missing += (listed == 0 ? "; not found: " : ", ") + std::string(found.missing[listed]);
    ++listed;
  }
  if (listed < found.missing.size())
    missing += " and " + std::to_string(found.missing.size() - listed) + " more";
  LogOwn("TAVRIX->%s: %d of %d names found%s\n", NameOf(addOn), found.found, found.total, missing.c_str());
}

void LookUpLateNames() {
  for (const AddOn addOn : aircraftAddOns) {
    if (!IsLoaded(addOn) || NamesFoundOf(addOn).missing.empty()) continue;
    const uint32_t run = runsSince[static_cast<size_t>(addOn)]++;
    if (run == 0 || (run > eachRunUntil && !std::has_single_bit(run)) || !LookUpMissingOf(addOn)) continue;
    ForgetUnserved(addOn);
    handlesChanged = true;
    TellNames(addOn);
  }
}

// Rows follow what has come or gone.
void BindChangedReaders() {
  if (!handlesChanged) return;
  handlesChanged = false;
  BindReaders();
}

// Follows a plug-in: true when it has appeared (or has been reloaded) since the last call; its names are
// dropped when it is gone. Numbers of 0 (the simulator itself) and below are no plug-in's.
bool HasAppeared(AddOn addOn, const char* signature, XPLMPluginID* plugin) {
  const XPLMPluginID answer = XPLMFindPluginBySignature(signature);
  const XPLMPluginID found = answer > 0 ? answer : noPlugin;
  if (found == *plugin && IsLoaded(addOn) == (found != noPlugin)) return false;
  if (IsLoaded(addOn)) Drop(addOn);
  *plugin = found;
  handlesChanged = true;
  return LoadedOf(addOn) = found != noPlugin;
}

// The same for an add-on that is known by what it publishes or by its title.
bool HasAppeared(AddOn addOn, bool present) {
  if (present == IsLoaded(addOn)) return false;
  if (IsLoaded(addOn)) Drop(addOn);
  handlesChanged = true;
  return LoadedOf(addOn) = present;
}

bool TitleIsStockB738() {
  constexpr char wanted[] = "Boeing B737-800 ";  // the blank belongs to it
  char title[sizeof wanted - 1];
  CopyFromMemory(aircraftTitleOffset, sizeof title, title);
  return std::memcmp(title, wanted, sizeof title) == 0;
}

void RecogniseX737() {
  if (!HasAppeared(AddOn::X737, "bs.x737.plugin", &plugins.x737)) return;
  LookUpDataRefsOf(AddOn::X737);
  LogLine("x737 found pluginID=%i, datarefs loaded\n", plugins.x737);
  LookUpCommandsOf(AddOn::X737);
  TellNames(AddOn::X737);
}

void RecognisePilotEdge() {
  if (!HasAppeared(AddOn::PilotEdge, "com.pilotedge.plugin.xplane", &plugins.pilotEdge)) return;
  LookUpDataRefsOf(AddOn::PilotEdge);
  LogLine("Init pilotEdge dataref Block OK!\n");
  LookUpCommandsOf(AddOn::PilotEdge);
  LogLine("Init pilotEdge command Block OK!\n");
  TellNames(AddOn::PilotEdge);
}

void RecogniseIxeg() {
  const bool present = IsPublished("ixeg/733/misc/seatbelt_act");
  if (!present && IsLoaded(AddOn::Ixeg733)) ReleaseIxegLevers();  // while their handles are known
  if (!HasAppeared(AddOn::Ixeg733, present)) return;
  char time[timeStampSize];
  LookUpDataRefsOf(AddOn::Ixeg733);
  LogLine("%s IXEG found, datarefs loaded\n", TimeStamp(time));
  if (LookUpCommandsOf(AddOn::Ixeg733)) LogLine("IXEG found, commands loaded\n");
  TellNames(AddOn::Ixeg733);
}

void RecogniseExtendedB738() {
  const bool present = IsPublished("laminar/B738/tab/credits") || IsPublished("laminar/B738/tab/page") ||
                       IsPublished("laminar/B738/tab/power");
  if (!HasAppeared(AddOn::B738Extended, present)) return;
  char time[timeStampSize];
  LookUpDataRefsOf(AddOn::B738Extended);
  LogLine("%s Extended 737-800 found, datarefs loaded\n", TimeStamp(time));
  if (LookUpCommandsOf(AddOn::B738Extended)) {
    LogLine("%s Extended 737-800 found, commands loaded\n", TimeStamp(time));
  }
  TellNames(AddOn::B738Extended);
}

// That of an older simulator has the title and publishes nothing of its own.
void RecogniseStockB738() {
  if (!HasAppeared(AddOn::B738Stock, TitleIsStockB738())) return;
  char time[timeStampSize];
  LookUpDataRefsOf(AddOn::B738Stock);
  LogLine("%s Stock 737-800 found, datarefs loaded\n", TimeStamp(time));
  if (LookUpCommandsOf(AddOn::B738Stock)) {
    LogLine("%s Stock 737-800 found, commands loaded\n", TimeStamp(time));
  }
  TellNames(AddOn::B738Stock);
}

// What the log was told last about the user's aircraft: its title, and the adapters that serve it.
struct ToldAircraft {
  bool told;  // since enable
  char title[aircraftTextSize];
  AddOnSet addOns;  // that serve it
};
ToldAircraft toldAircraft;

// Of aircraft alone: network clients say so themselves.
std::string NamesOfAdapters() {
  std::string list;
  for (const AddOn addOn : {AddOn::X737, AddOn::Ixeg733, AddOn::B738Extended, AddOn::B738Stock, AddOn::Ec135}) {
    if (Serves(addOn)) list += (list.empty() ? "" : ", ") + std::string(NameOf(addOn));
  }
  return list;
}

// Says which aircraft is loaded and which adapter serves it, when that is news.
void TellAircraft() {
  ToldAircraft now = {};
  now.told = true;
  CopyFromMemory(aircraftTitleOffset, sizeof now.title, now.title);
  now.title[sizeof now.title - 1] = '\0';
  for (const AddOn addOn : aircraftAddOns) now.addOns[static_cast<size_t>(addOn)] = Serves(addOn);
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
  ReleaseHeldPresses();
  ForgetTypes();
  for (const AddOn addOn : aircraftAddOns) Drop(addOn);
  plugins.x737 = noPlugin;
  plugins.ec135 = noPlugin;
  ForgetIxegLevers();
}

// Each for itself: one whose accessors throw does not hide the others.
void Recognise() {
  RunAllSteps({RecogniseX737, RecogniseXSquawkBox, RecognisePilotEdge, RecogniseIxeg, RecogniseExtendedB738,
               RecogniseStockB738});
}

}  // namespace

void RecogniseXSquawkBox() {
  const bool before = IsLoaded(AddOn::XSquawkBox);
  const bool appeared =
      HasAppeared(AddOn::XSquawkBox, "vatsim.protodev.clients.xsquawkbox", &plugins.xSquawkBox);
  if (appeared || before != IsLoaded(AddOn::XSquawkBox)) xSquawkBoxState = {};
  if (!appeared) return;
  LookUpDataRefsOf(AddOn::XSquawkBox);
  LoadedOf(AddOn::XSquawkBox) = false;  // until it has answered: it is tried again when its accessors throw
  ReadText(Bytes<"xsquawkbox/vers/string">, xSquawkBoxState.version, sizeof xSquawkBoxState.version);
  xSquawkBoxState.versionNumber = ReadInt(Int<"xsquawkbox/vers/number">);
  LoadedOf(AddOn::XSquawkBox) = true;
  LogLine("XSB found pluginID=%i, datarefs loaded\n", plugins.xSquawkBox);
  XPLMSendMessageToPlugin(plugins.xSquawkBox, subscribeMessage,
                          reinterpret_cast<void*>(networkAudioWeatherText));
  TellNames(AddOn::XSquawkBox);
}

void RecogniseAircraft() { RunAllSteps({Recognise, LookUpLateNames, BindChangedReaders, TellAircraft}); }

void RunEc135Adapter() {
  if (!HasAppeared(AddOn::Ec135, "rotorsim.ec135.management", &plugins.ec135)) {
    BindChangedReaders();
    return;
  }
  const bool dataRefs = LookUpDataRefsOf(AddOn::Ec135), commands = LookUpCommandsOf(AddOn::Ec135);
  LogOwn("TAVRIX->EC135 found pluginID=%i, %s\n", plugins.ec135,
         dataRefs && commands ? "datarefs and commands loaded"
         : dataRefs           ? "datarefs loaded"
         : commands           ? "commands loaded"
                              : "but none of its names");
  TellNames(AddOn::Ec135);
  BindChangedReaders();
}

void DetectLoadedAircraft() {
  RunAllSteps({DropAircraft, StoreAircraftTitle, Recognise, RunEc135Adapter, BindChangedReaders, TellAircraft});
}

void ResetAdapters() {
  const XPLMPluginID subscribedAt = IsLoaded(AddOn::XSquawkBox) ? plugins.xSquawkBox : noPlugin;
  DropAircraft();
  Drop(AddOn::XSquawkBox);
  Drop(AddOn::PilotEdge);
  plugins = {noPlugin, noPlugin, noPlugin, noPlugin};
  loadedAddOns = emptyAddOns = {};
  xSquawkBoxState = {};
  toldAircraft = {};
  if (subscribedAt != noPlugin) XPLMSendMessageToPlugin(subscribedAt, unsubscribeMessage, nullptr);
}

void ReleaseIxegThrottleOverride() {
  if (!ReleaseIxegLevers()) return;
  char time[timeStampSize];
  LogLine("%s disabling IXEG throttle overwrite OK!\n", TimeStamp(time));
}

void ReceiveAdapterMessage(int from, int message, void* parameter) {
  if (IsLoaded(AddOn::XSquawkBox) && from == plugins.xSquawkBox) ReceiveXSquawkBoxMessage(message, parameter);
}
