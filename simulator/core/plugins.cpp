// The plug-ins' life: load, start, enable, messages, disable, stop, unload, and what they must not leave.
#include <algorithm>
#include <cstdio>

#include "XPLMPlugin.h"
#include "core/core.h"

namespace sim {

std::vector<std::unique_ptr<Plugin>> plugins;
int currentPlugin = 0;
bool reloadWanted = false;

namespace {

int lastId = 0;
std::string aircraftSignature;  // of the plug-in that the aircraft brought

bool Fail(const Plugin& plugin, const std::string& why) {
  std::fprintf(stderr, "standin: %s: %s\n", plugin.file.c_str(), why.c_str());
  std::fflush(stderr);
  return false;
}

template <class F>
bool Resolve(const Plugin& plugin, const char* name, F* function) {
  *function = reinterpret_cast<F>(ModuleSymbol(plugin.module, name));
  return *function != nullptr;
}

bool Load(Plugin* plugin) {
  if (!plugin->module && plugin->entry.start) return true;  // linked into the program
  for (auto& other : plugins) {
    if (other->module && other->file == plugin->file) return Fail(*plugin, "is given twice");
  }
  std::string why;
  InPlugin inside(plugin->id);  // its static constructors may call us
  plugin->module = LoadModule(plugin->file, &why);
  if (!plugin->module) return Fail(*plugin, "cannot be loaded: " + why);
  PluginEntry& entry = plugin->entry;
  const char* missing = nullptr;
  if (!Resolve(*plugin, "XPluginStart", &entry.start)) missing = "XPluginStart";
  if (!Resolve(*plugin, "XPluginStop", &entry.stop)) missing = "XPluginStop";
  if (!Resolve(*plugin, "XPluginEnable", &entry.enable)) missing = "XPluginEnable";
  if (!Resolve(*plugin, "XPluginDisable", &entry.disable)) missing = "XPluginDisable";
  if (!Resolve(*plugin, "XPluginReceiveMessage", &entry.message)) missing = "XPluginReceiveMessage";
  if (missing) return Fail(*plugin, std::string("does not export ") + missing);
  GiveHooks(*plugin);
  return true;
}

bool Start(Plugin* plugin) {
  char name[256] = "", signature[256] = "", description[256] = "";
  NothingThrown(plugin->id, "XPluginStart",
                [&] { plugin->started = plugin->entry.start(name, signature, description) != 0; });
  for (char* text : {name, signature, description}) text[255] = 0;
  plugin->name = name;
  plugin->description = description;
  if (!plugin->started) return Fail(*plugin, "refused to start");
  Plugin* other = FindPluginBySignature(signature);
  plugin->signature = signature;
  if (other && other != plugin) return Fail(*plugin, "its signature is taken: " + plugin->signature);
  return true;
}

bool Enable(Plugin* plugin) {
  if (plugin->pretended || plugin->enabled) return true;
  if (!plugin->started) return false;
  NothingThrown(plugin->id, "XPluginEnable", [&] { plugin->enabled = plugin->entry.enable() != 0; });
  return plugin->enabled;
}

void Disable(Plugin* plugin) {
  if (plugin->pretended || !plugin->enabled) return;
  NothingThrown(plugin->id, "XPluginDisable", [&] { plugin->entry.disable(); });
  plugin->enabled = false;
}

void Leftover(int count, const char* what, const std::string& which) {
  if (count == 0) return;
  std::string why = std::string(what) + " left: " + FormatInt(count);
  Breach("XPluginStop", (which.empty() ? why : why + " (" + which + ')').c_str());
}

// What a plug-in has to remove by itself before its stop ends.
struct BelongingRow {
  const char* what = "";
  int (*drop)(int owner, std::string* which) = nullptr;
};
constexpr BelongingRow belongingRows[] = {
    {.what = "flight loops", .drop = DropLoops},
    {.what = "begun commands", .drop = DropHeldCommands},
    {.what = "command handlers", .drop = DropCommandHandlers},
    {.what = "data accessors", .drop = DropAccessors},
    {.what = "probes", .drop = DropProbes},
    {.what = "windows", .drop = DropWindows},
    {.what = "drawing callbacks", .drop = DropDrawCallbacks},
    {.what = "key sniffers", .drop = DropKeySniffers},
    {.what = "hot keys", .drop = DropHotKeys},
    {.what = "camera control", .drop = DropCamera},
};

// Removes what is still there of the plug-in. What it should have removed itself is a breach, unless it
// never got to its stop.
void Clean(Plugin* plugin, bool report) {
  constexpr size_t kinds = std::size(belongingRows);
  int left[kinds];
  std::string which[kinds];
  for (size_t i = 0; i < kinds; ++i) left[i] = belongingRows[i].drop(plugin->id, &which[i]);
  DropMenus(plugin->id);
  DropPlanes(plugin->id);
  DropObjects(plugin->id);
  for (size_t i = 0; report && i < kinds; ++i) Leftover(left[i], belongingRows[i].what, which[i]);
}

// Anything that the plug-in calls from now on comes after its stop.
bool Unload(Plugin* plugin) {
  if (!plugin->module) return true;
  callerThread = 0;
  UnloadModule(plugin->module);
  callerThread = CurrentThread();
  plugin->module = nullptr;
  plugin->entry = {};
  if (!ModuleInMemory(plugin->file)) return true;
  Breach("unload", (plugin->file + " stays in memory").c_str());
  return false;
}

bool StartAll() {
  for (size_t i = 0; i < plugins.size(); ++i) {
    Plugin* plugin = plugins[i].get();
    if (!plugin->pretended && (!Load(plugin) || !Start(plugin))) return false;
  }
  EnablePlugins();
  return true;
}

Plugin* Add(const std::string& file) {
  plugins.push_back(std::make_unique<Plugin>());
  plugins.back()->id = ++lastId;
  plugins.back()->file = file;
  return plugins.back().get();
}

}  // namespace

int CallingPlugin() {
  if (currentPlugin != 0 || plugins.empty()) return currentPlugin;
  return plugins[0]->pretended ? 0 : plugins[0]->id;
}

// While its own code is running a plug-in is called back whatever its state: it asked for it.
bool MayCall(int id) { return id == currentPlugin || PluginEnabled(id); }

Plugin* FindPlugin(int id) {
  for (auto& plugin : plugins) {
    if (plugin->id == id) return plugin.get();
  }
  return nullptr;
}

Plugin* FindPluginBySignature(const std::string& signature) {
  for (auto& plugin : plugins) {
    if (plugin->signature == signature) return plugin.get();
  }
  return nullptr;
}

bool PluginEnabled(int id) {
  Plugin* plugin = FindPlugin(id);
  return id == 0 || (plugin && plugin->enabled);
}

void TellThrown(int id, const char* from, const char* what) {
  const Plugin* plugin = FindPlugin(id);
  std::fprintf(stderr, "standin: %s: an exception came out of %s: %s\n",
               plugin ? plugin->file.c_str() : "a plug-in", from, what);
  std::fflush(stderr);
}

bool StartPlugins(const Options& options) {
  if (options.linked) {
    Plugin* plugin = Add(SystemFolder() + "linked.xpl");
    plugin->entry = *options.linked;
  }
  for (const std::string& file : options.plugins) Add(AbsolutePath(file));
  FollowAircraftPlugin();
  return StartAll();
}

bool EnablePlugins() {
  bool all = true;
  for (size_t i = 0; i < plugins.size(); ++i) all &= Enable(plugins[i].get());
  return all;
}

void DisablePlugins() {
  for (size_t i = 0; i < plugins.size(); ++i) Disable(plugins[i].get());
}

bool EnablePlugin(int id) {
  Plugin* plugin = FindPlugin(id);
  return plugin && Enable(plugin);
}

void DisablePlugin(int id) {
  if (Plugin* plugin = FindPlugin(id)) Disable(plugin);
}

bool StopPlugins() {
  bool any = false;
  DisablePlugins();
  std::vector<bool> stopped;
  for (auto& plugin : plugins) {
    stopped.push_back(plugin->started);
    if (!plugin->started) continue;
    any = true;
    NothingThrown(plugin->id, "XPluginStop", [&] { plugin->entry.stop(); });
    plugin->started = false;
  }
  for (size_t i = 0; i < stopped.size(); ++i) Clean(plugins[i].get(), stopped[i]);
  if (widgetHooks) {
    if (any) Leftover(widgetHooks->count(), "widgets", "");
    widgetHooks->purge();
  }
  errorCallback = nullptr;
  bool clean = true;
  for (auto& plugin : plugins) {
    if (!plugin->pretended) clean &= Unload(plugin.get());
  }
  return clean;
}

void ForgetPlugins() {
  plugins.clear();
  lastId = 0;
  aircraftSignature.clear();
  reloadWanted = false;
  ForgetFaults();
}

bool ReloadPlugins(std::string* why) {
  reloadWanted = false;
  // A module that stays is started once more all the same, with what it remembers: so does the simulator.
  const bool gone = StopPlugins();
  const bool started = StartAll();
  if (!started) *why = "a plug-in could not be loaded or refused to start";
  if (!gone) *why = "a module stays in memory";
  return gone && started;
}

void PretendPlugin(const std::string& signature, bool on) {
  Plugin* known = FindPluginBySignature(signature);
  if (on && !known) {
    Plugin* plugin =
        Add(SystemFolder() + "Resources" + kSeparator + "plugins" + kSeparator + signature + ".xpl");
    plugin->name = plugin->signature = signature;
    plugin->description = "pretended";
    plugin->pretended = plugin->enabled = true;
    WorldPluginPretended(signature, true);
  } else if (!on && known && known->pretended) {
    WorldPluginPretended(signature, false);
    std::erase_if(plugins, [&](auto& plugin) { return plugin.get() == known; });
  }
}

void FollowAircraftPlugin() {
  std::string now = WorldAircraftPluginSignature();
  if (now == aircraftSignature) return;
  if (!aircraftSignature.empty()) PretendPlugin(aircraftSignature, false);
  if (!now.empty()) PretendPlugin(now, true);
  aircraftSignature = now;
}

void TellPlugins(int message, intptr_t param) {
  constexpr struct {
    int message, since;
  } kNewer[] = {{kPlaneUnloaded, 900}, {kWillWritePrefs, 1000}, {kLiveryLoaded, 1000}};
  for (auto& row : kNewer) {
    if (row.message == message && FindVersion(running.version)->told < row.since) return;
  }
  SendPluginMessage(XPLM_PLUGIN_XPLANE, XPLM_NO_PLUGIN_ID, message, param);
}

void TellPlaneLoaded(int index) {
  TellPlugins(XPLM_MSG_PLANE_LOADED, index);
  TellPlugins(kLiveryLoaded, index);
}

int SendPluginMessage(int from, int to, int message, intptr_t param) {
  int delivered = 0;
  for (size_t i = 0; i < plugins.size(); ++i) {
    Plugin* plugin = plugins[i].get();
    if (plugin->pretended || !plugin->enabled || (to != XPLM_NO_PLUGIN_ID && to != plugin->id)) continue;
    NothingThrown(plugin->id, "XPluginReceiveMessage",
                  [&] { plugin->entry.message(from, message, reinterpret_cast<void*>(param)); });
    ++delivered;
  }
  return delivered;
}

}  // namespace sim
