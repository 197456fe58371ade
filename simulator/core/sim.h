// The stand-in simulator's inner interface: what its own parts (data, flight, world, widgets, console,
// host) tell each other. Plug-ins never see it; they see the exported XPLM and XPWidgets functions.
//
// Everything here runs on the simulator's own thread, the one that called SimStart.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Functions of the core library that the host program and the widget library call.
#if defined(SIM_CORE_BUILD) && defined(_WIN32)
#define SIM_API __declspec(dllexport)
#elif defined(SIM_CORE_BUILD)
#define SIM_API __attribute__((visibility("default")))
#else
#define SIM_API
#endif

namespace sim {

// ---------------------------------------------------------------------------------------------
// Datarefs. A record lives for the whole run once it exists, so a handle stays valid: a withdrawn
// dataref reads 0 and revives when the name is published again.
enum class Kind : uint8_t { Int, Float, Double, IntArray, FloatArray, Bytes };

struct DataRef {
  std::string name;
  Kind kind = Kind::Int;
  int count = 1;          // elements (bytes for Kind::Bytes), 1 for scalars
  bool writable = false;  // plug-ins may set it
  bool live = false;      // published at the moment
  // Storage: exactly one is used, sized `count`. Element 0 is the value of a scalar. A double dataref
  // can be read and written with the float accessor as well.
  std::vector<int> ints;
  std::vector<float> floats;
  std::vector<double> doubles;
  std::vector<uint8_t> bytes;
  // Called after a value was set by a plug-in or the console (never by the flight model), with the
  // elements touched; may be null. Used for datarefs whose setting is an action (autopilot_state).
  void (*onSet)(DataRef* self, int first, int touched) = nullptr;
  // Called before a plug-in's set takes effect on an Int scalar: returns the value to store.
  int (*filterInt)(DataRef* self, int wanted) = nullptr;
  // Accessors of the plug-in that offers this dataref (kind is Bytes and count 0 then); null for our own.
  struct Provider* provider = nullptr;
  bool shared = false;  // somebody wants to be told of changes
};

// Publishes a dataref of the given shape with zero content, or revives a withdrawn one. A live one of
// the same shape is returned as it is; a live one of another shape returns null.
DataRef* Publish(const char* name, Kind kind, int count, bool writable);
void Withdraw(DataRef* ref);
// The live dataref of exactly this name, else null.
DataRef* FindLive(const std::string& name);
// All live ones, in order of publishing.
const std::vector<DataRef*>& AllDataRefs();

// ---------------------------------------------------------------------------------------------
// Commands. `action` (may be null) is the simulator's own effect, run with phase 0 begin, 1 each frame
// while held, 2 end.
using CommandAction = void (*)(int phase, int tag);
void PublishCommand(const char* name, CommandAction action, int tag);

// ---------------------------------------------------------------------------------------------
// The world: implemented in simulator/world and simulator/flight, called by the core.

// Publishes every dataref and command that the simulator itself has, with sensible start values on the
// ground or in flight as the flight mode wants, and fills navigation database and aircraft table.
// `version` is the age whose datarefs these are, 0 for all.
void WorldStart(bool circuitFlight, int activePlanes, int version);
// Whether such an aircraft exists (the names of --aircraft).
bool WorldKnowsAircraft(const std::string& name);
// Makes NAME the user's aircraft: engine type, title, file, the add-on's plug-in signature, datarefs and
// commands. The datarefs of the previous aircraft are withdrawn; its commands stay, as commands do. The core
// sends message 102 afterwards.
void WorldSelectAircraft(const std::string& name);
// Signature of the plug-in that the selected aircraft brings ("" for none).
const char* WorldAircraftPluginSignature();
// A plug-in is pretended to have come or gone: its datarefs and commands do, too.
void WorldPluginPretended(const std::string& signature, bool on);
// One frame of flight: dt seconds of simulated time (0 while paused is not called). The core has already
// advanced total_running_time_sec, and calls flight loops before this.
void WorldStep(double dt);
// Keys and buttons by public number (pause, autopilot modes, gear up and down ...): the effect. Other numbers
// have none.
void WorldKey(int key);
void WorldButton(int button, bool pressed);
// Number of active aircraft has changed (1..128, the user's included).
void WorldSetActivePlanes(int count);
// Name (file name) and full path of aircraft n, n from 0; false when there is none.
bool WorldAircraftModel(int index, std::string* fileName, std::string* path);
// World <-> local conversion around the reference point.
void WorldToLocal(double lat, double lon, double alt, double* x, double* y, double* z);
void LocalToWorld(double x, double y, double z, double* lat, double* lon, double* alt);
// Terrain height above sea level, metres, below a local point.
double WorldGround(double x, double z);

// Navigation database: types and units as XPLMGetNavAidInfo gives them.
struct NavAid {
  int type = 0;  // XPLMNavType
  std::string id;
  int freq = 0;
  float lat = 0, lon = 0, height = 0, heading = 0;
  std::string name;
};
std::vector<NavAid>& NavAids();  // like-typed aids lie together; owned by the core
void WorldNavAidsChanged();      // the console added one or cleared the list

// ---------------------------------------------------------------------------------------------
// Core services for the other parts.

// True while the simulation is paused: WorldStep is not called, everything else goes on. WorldKey(0)
// toggles it; false at every start.
extern bool paused;
double RunningTime();  // total_running_time_sec
// Folder that plug-ins see as the system folder (native separators, trailing one included).
const std::string& SystemFolder();
// A broken rule: prints "standin: breach: FUNCTION: WHY" and ends the host with status 3, or only prints
// with --tolerant. Any thread.
SIM_API void Breach(const char* function, const char* why);
// Every exported function begins with this: breach when called from another thread than the simulator's
// or after the plug-in was stopped.
SIM_API void CheckCaller(const char* function);
// The same for functions that draw, which belong into the drawing callbacks alone.
SIM_API void CheckDrawing(const char* function);
// On while other code than the frame's has plug-ins draw.
SIM_API void SetDrawing(bool on);
// Whether this call of an exported function, from a plug-in, has to fail as its documentation allows: somebody
// has ordered it. Only for functions that faults.cpp lists.
SIM_API bool Fails(const char* function);
// Everything that Breach has told since the last call of this, as "FUNCTION: WHY" (tolerant mode). Any thread.
SIM_API std::vector<std::string> TakeBreaches();
// Datarefs and commands that were looked up by name since the program began.
SIM_API uint64_t LookUps();
// Calls of the dataref accessors with a null handle: harmless, but a plug-in should not need them.
SIM_API uint64_t NullHandles();
// Identifier of the plug-in whose code is running. Outside of any callback (a test that calls on its own)
// the first plug-in, 0 when there is none.
SIM_API int CallingPlugin();

// Pixels that each character of every font takes: as they are measured, so they are drawn into pictures.
constexpr int kLetterWidth = 6, kLetterHeight = 10;
// Pixels of the screen, as the last `screen` line of the console set them.
SIM_API void GetScreen(int* width, int* height);

// ---------------------------------------------------------------------------------------------
// The widget library is a separate file; it hooks itself into the core when it is loaded.
struct WidgetHooks {
  // Runs a console command of the widget family (widgets, press, type, key, close, picture). `arguments` is
  // the rest of the line. Fills the whole answer line ("ok ..." or "error: ...").
  void (*console)(const char* command, const char* arguments, std::string* answer);
  // Number of widgets that exist (breach when some are left after stop).
  int (*count)();
  // Destroys everything that is left (tolerant mode, before the plug-in is unloaded).
  void (*purge)();
};
SIM_API void SetWidgetHooks(const WidgetHooks* hooks);
// Splits a console line into words; "quoted words" keep blanks, with \" \\ \n \xHH escapes. False
// when a quote is not closed. `quoted[i]` tells whether word i stood in quotes.
SIM_API bool SplitWords(const char* line, std::vector<std::string>* words, std::vector<bool>* quoted);
// Text in console quoting: "..." with escapes, cut at the first NUL.
SIM_API std::string Quote(const std::string& text);

// ---------------------------------------------------------------------------------------------
// Host interface: the host program and the native tests drive the simulator through these.
struct PluginEntry {  // entry points of a plug-in linked into the program (tests)
  int (*start)(char*, char*, char*);
  void (*stop)();
  int (*enable)();
  void (*disable)();
  void (*message)(int from, int message, void* param);
};
struct Options {
  std::vector<std::string> plugins;  // files
  const PluginEntry* linked = nullptr;
  std::string root;
  std::string reportedRoot;  // what plug-ins are told instead, as it stands; tests
  double rate = 60;          // 0: frames only on the console's word
  bool circuit = true;
  std::string aircraft = "jet";
  int planes = 1;
  // Age of the simulator: 860, 920, 955, 1004, 1042, 1110, 1140, 1200 or 1210. 0: says 1042 and publishes
  // every name that any age has.
  int version = 0;
  std::string define;  // file
  double seconds = -1;
  bool tolerant = false;
};
// One age of the simulator that Options::version may name.
struct Version {
  int number = 0;  // as it is asked for
  int told = 0;    // by XPLMGetVersions: five digits from 11 on
  int api = 0;     // level of the plug-in interface, likewise
};
// The age of that number, null when there is none; 0 is the one that has every name.
SIM_API const Version* FindVersion(int number);
// "860, 920, ...", for messages.
std::string ListVersions();
// Starts the simulator and its plug-ins, in the stated order. Returns 0 or the exit status for the host.
SIM_API int SimStart(const Options& options);
// Runs one console line and returns the answer (without line end).
SIM_API std::string SimCommand(const std::string& line);
// Runs frames back to back, each of 1/60 s of simulated time (tests and --rate 0).
SIM_API void SimFrames(int count);
// Disables, stops and unloads the plug-ins and forgets everything. Returns the exit status so far.
SIM_API int SimStop();
// The whole host program: options, plug-ins, console loop, frames in real time. Returns the exit status.
SIM_API int SimMain(int argc, char** argv);

}  // namespace sim
