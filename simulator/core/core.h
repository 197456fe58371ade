// The core's inner interface: what its own files tell each other. The core keeps datarefs, commands,
// flight loops, menus, plug-ins and messages, offers them to plug-ins as the XPLM functions, and runs the
// frames and the console.
//
// Simulator's thread only, but for what says otherwise. A plug-in is known by its identifier, 1 and up;
// 0 is the simulator.
#pragma once
#include <atomic>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "core/host_system.h"
#include "core/sim.h"

namespace sim {

// --- Callers -------------------------------------------------------------------------------------
// The thread that may call us; 0 while nobody may (nothing started, or plug-ins being unloaded).
extern std::atomic<uintptr_t> callerThread;
void CallerBreach(const char* function);
extern uint64_t callsMade;  // of exported XPLM functions, from the thread that may
// Beginning of every exported function, cheap enough for the dataref accessors.
inline void Check(const char* function) {
  if (CurrentThread() != callerThread.load(std::memory_order_relaxed)) [[unlikely]] {
    CallerBreach(function);
  } else {
    ++callsMade;
  }
}

extern uint64_t lookUps;  // by name, of datarefs and commands

// --- Plug-ins ------------------------------------------------------------------------------------
struct Plugin {
  int id = 0;
  std::string name, signature, description, file;
  void* module = nullptr;
  PluginEntry entry = {};
  bool started = false;
  bool enabled = false;
  bool pretended = false;    // only its name is known: the console or the aircraft brought it
  bool nativePaths = false;  // wants forward slashes
  bool reflections = false;
};
extern std::vector<std::unique_ptr<Plugin>> plugins;
extern int currentPlugin;  // whose code is running, 0 none
Plugin* FindPlugin(int id);
Plugin* FindPluginBySignature(const std::string& signature);
bool PluginEnabled(int id);
// Whether a plug-in may be called back: not when it is disabled or gone.
bool MayCall(int id);
// A callback of plug-in `id` runs while this lives.
struct InPlugin {
  explicit InPlugin(int id) : saved(currentPlugin) { currentPlugin = id; }
  ~InPlugin() { currentPlugin = saved; }
  InPlugin(const InPlugin&) = delete;
  InPlugin& operator=(const InPlugin&) = delete;
  int saved;
};
// A line on standard error: an exception came out of the plug-in's code, `from` there.
void TellThrown(int plugin, const char* from, const char* what);
// Calls the plug-in's code. What it throws, its own or what another plug-in threw through it, ends here and is
// told; false then. It is no breach: whoever called on the way may be innocent.
template <class Call>
bool NothingThrown(int plugin, const char* from, Call call) {
  try {
    InPlugin inside(plugin);
    call();
    return true;
  } catch (const std::exception& thrown) {
    TellThrown(plugin, from, thrown.what());
  } catch (...) {
    TellThrown(plugin, from, "something that is no standard exception");
  }
  return false;
}
// Load and start all, then enable all. False with a line on standard error when one fails.
bool StartPlugins(const Options& options);
// Disables, stops and unloads all; checks for what they left. False when a module stays in memory.
bool StopPlugins();
bool EnablePlugins();  // false when one refuses
void DisablePlugins();
bool EnablePlugin(int id);
void DisablePlugin(int id);
void ForgetPlugins();  // after StopPlugins
bool ReloadPlugins(std::string* why);
extern bool reloadWanted;  // a plug-in asked for it; done before the next frame
void PretendPlugin(const std::string& signature, bool on);
void FollowAircraftPlugin();  // pretends the add-on plug-in that the aircraft brings
// Number of plug-ins that got it. `to` -1 means all.
int SendPluginMessage(int from, int to, int message, intptr_t param);
// Messages of the simulator that not every age has.
constexpr int kPlaneUnloaded = 106, kWillWritePrefs = 107, kLiveryLoaded = 108;
// The simulator's own messages, to all; one that this run's age does not know yet is not sent.
void TellPlugins(int message, intptr_t param);
void TellPlaneLoaded(int index);  // and its livery

// What the rest of the core keeps for plug-in `owner` is dropped; returns how many there were that the
// plug-in should have removed itself, and names one of them.
int DropLoops(int owner, std::string* which);
int DropCommandHandlers(int owner, std::string* which);
int DropHeldCommands(int owner, std::string* which);
int DropAccessors(int owner, std::string* which);
int DropProbes(int owner, std::string* which);
int DropWindows(int owner, std::string* which);
int DropDrawCallbacks(int owner, std::string* which);
int DropKeySniffers(int owner, std::string* which);
int DropHotKeys(int owner, std::string* which);
int DropCamera(int owner, std::string* which);
void DropObjects(int owner);
void DropMenus(int owner);
void DropPlanes(int owner);

// --- Datarefs, as the console sees them ------------------------------------------------------------
void ResetData();
// Finds "NAME" or "NAME[I]": *index is -1 when the whole dataref is meant.
DataRef* FindByText(const std::string& text, int* index);
std::string PrintDataRef(DataRef* ref, int index);
// Sets from words of a console line; an empty text means success, else why not.
std::string SetDataRef(DataRef* ref, int index, const std::vector<std::string>& words,
                       const std::vector<bool>& quoted, size_t first);
// "int", "float[8]" ...
bool ParseShape(const std::string& text, Kind* kind, int* count);
std::string TakeWrites();
// Stores into a Float or Double scalar, whatever else it is is left alone.
void StoreNumber(DataRef* ref, double value);

// --- Commands and what else plug-ins fire ------------------------------------------------------------
void ResetCommands();
void ContinueHeldCommands();
void LogCall(std::string text);
std::string TakeCalls();
// A command that nobody acts on, unless there is one of the name.
void PublishCommandIfMissing(const std::string& name);

// --- Flight loops and time ---------------------------------------------------------------------------
extern double elapsed;  // seconds since start
extern int cycle;       // frames since start
void ResetLoops();
void RunLoops(int phase, double sinceLastFrame);
std::string DescribeLoops();
// The end of a frame, for what TakePerf tells.
void CountFrame();
// The start of a frame of real time, so many seconds after it was due.
void CountLateness(double seconds);
// What plug-ins cost since the last call of this or the start: "frames N callbacks N calls N ns N max-ns N".
// Callbacks are flight loops that ran, ns the time in them, max-ns that of the frame with most of it; calls
// are those of XPLM functions from anywhere in a plug-in.
std::string TakePerf();
// How punctual frames were since the last call of this or the start: "frames N over N late N latest-ns N". Over
// are frames with more time in flight loops than a frame's period (that of the rate, 1/60 s at rate 0); late
// are frames of real time that began more than a period after they were due, latest-ns is the most: whatever
// took the time, the processor's other users included.
std::string TakeLate();

// --- Faults on order -----------------------------------------------------------------------------------
// Tells a plug-in that is built for it whom to ask before it creates something of the system's.
void GiveHooks(const Plugin& plugin);
// The words behind `fail` on the console; returns the whole answer.
std::string FailConsole(std::vector<std::string> words);
void ForgetFaults();
// The wall clock that such plug-ins see jumps. An empty text means success, else why not.
std::string JumpClock(double seconds);

// --- Menus, navigation, aircraft -----------------------------------------------------------------------
void ResetMenus();
std::string MenuConsole(const std::string& item);
void ResetNavigation();
// Adds a record behind the others of its type.
void AddNavAid(const NavAid& aid);
void ClearNavAids();
// As the console wants it, who may exceed what has existed so far; tells world and plug-ins.
void SetActivePlanes(int count);
void ResetPlanes(int count);
void ResetFlightPlan();
void ResetObjects();
// Objects that were asked for are there now, and scenery that was to be loaded again: the plug-ins are told.
void FinishLoads();
// The user chose another view: a plug-in that has the camera until then loses it.
void ChangeView();
// Selects the aircraft and tells the plug-ins. False when there is none of that name.
bool ChangeAircraft(const std::string& name);

// --- Frames ------------------------------------------------------------------------------------------
extern Options running;  // of this run
// One frame at `now` seconds of simulated time.
void Frame(double now);
// Runs `count` frames as `frames N` does: back to back, or in real time at a rate. A stop signal ends it.
void ConsoleFrames(int count);
// The next frame takes so many seconds of real time, 0 no longer than it needs. A stop signal ends it.
void StallNextFrame(double seconds);
void ResetPace();
extern const WidgetHooks* widgetHooks;
extern bool quitWanted;
// A line or two for every console command.
std::string ConsoleHelp();
// Runs the lines of a --define file; an empty text means success, else file, line and reason.
std::string RunDefinitions(const std::string& file);
void StorePath(const std::string& path, char* out, size_t size);  // in the caller's path style
extern void (*errorCallback)(const char* message);

// --- Text --------------------------------------------------------------------------------------------
std::string FormatInt(int64_t value);
std::string FormatFloat(float value);  // shortest that reads back, always with a point
std::string FormatDouble(double value);
bool ParseInt(const std::string& text, int64_t* value);  // decimal or 0x
bool ParseDouble(const std::string& text, double* value);
void CopyText(const std::string& text, char* out, size_t size);  // out may be null
void Join(std::string* list, const std::string& item);           // with "; " between

}  // namespace sim
