// The console: one command a line, one answer line. Commands run between frames.
#include <cmath>
#include <cstdio>
#include <fstream>

#include "XPLMNavigation.h"
#include "XPLMPlugin.h"
#include "core/core.h"
#include "core/display.h"

namespace sim {
namespace {

// Words of the line: words[0] is the command.
struct Line {
  std::vector<std::string> words;
  std::vector<bool> quoted;
};

std::string Ok(const std::string& answer) { return answer.empty() ? "ok" : "ok " + answer; }
std::string Error(const std::string& why) { return "error: " + why; }

bool Count(const std::string& word, int64_t least, int64_t most, int64_t* value) {
  return ParseInt(word, value) && *value >= least && *value <= most;
}

std::string Get(const Line& line) {
  int index = -1;
  DataRef* ref = FindByText(line.words[1], &index);
  return ref ? PrintDataRef(ref, index) : Error("unknown name: " + line.words[1]);
}

std::string Set(const Line& line) {
  int index = -1;
  DataRef* ref = FindByText(line.words[1], &index);
  if (!ref) return Error("unknown name: " + line.words[1]);
  std::string why = SetDataRef(ref, index, line.words, line.quoted, 2);
  return why.empty() ? "ok" : Error(why);
}

std::string Axis(const Line& line) {
  DataRef* axes = FindLive("sim/joystick/joystick_axis_values");
  if (!axes) return Error("this version has no list of joystick axes");
  int64_t axis = 0;
  if (!Count(line.words[1], 0, axes->count - 1, &axis)) {
    return Error("the axes are 0 to " + std::to_string(axes->count - 1));
  }
  double value = 0;
  if (!ParseDouble(line.words[2], &value) || !(value >= 0 && value <= 1)) {
    return Error("an axis stands at 0 to 1, not at " + line.words[2]);
  }
  std::string why = SetDataRef(axes, static_cast<int>(axis), line.words, line.quoted, 2);
  return why.empty() ? "ok" : Error(why);
}

std::string Define(const Line& line) {
  const std::string& name = line.words[1];
  Kind kind;
  int count = 0;
  if (!ParseShape(line.words[2], &kind, &count)) {
    return Error("the type is int, float, double, int[N], float[N] or byte[N], not " + line.words[2]);
  }
  if (FindLive(name)) return Error(name + " exists already");
  DataRef* ref = Publish(name.c_str(), kind, count, true);
  if (!ref) return Error(name + " cannot be published");
  std::string why = line.words.size() > 3 ? SetDataRef(ref, -1, line.words, line.quoted, 3) : "";
  if (why.empty()) return "ok";
  Withdraw(ref);
  return Error(why);
}

std::string Undefine(const Line& line) {
  DataRef* ref = FindLive(line.words[1]);
  if (!ref) return Error("unknown name: " + line.words[1]);
  if (ref->provider) return Error(line.words[1] + " belongs to a plug-in");
  Withdraw(ref);
  return "ok";
}

std::string MakeCommand(const Line& line) {
  PublishCommandIfMissing(line.words[1]);
  return "ok";
}

std::string Frames(const Line& line) {
  int64_t count = 0;
  if (!Count(line.words[1], 0, 1000000000, &count)) return Error("not a number of frames: " + line.words[1]);
  ConsoleFrames(static_cast<int>(count));
  return "ok";
}

std::string Calls(const Line&) { return Ok(TakeCalls()); }
std::string Writes(const Line&) { return Ok(TakeWrites()); }
std::string Loops(const Line&) { return Ok(DescribeLoops()); }

std::string Perf(const Line&) { return Ok(TakePerf()); }

std::string Late(const Line&) { return Ok(TakeLate()); }

std::string Stall(const Line& line) {
  double seconds = 0;
  if (!ParseDouble(line.words[1], &seconds) || !(seconds >= 0 && seconds <= 3600)) {
    return Error("not 0 to 3600 seconds: " + line.words[1]);
  }
  StallNextFrame(seconds);
  return "ok";
}

std::string FailOn(const Line& line) { return FailConsole({line.words.begin() + 1, line.words.end()}); }

std::string ClockJump(const Line& line) {
  double seconds = 0;
  if (!ParseDouble(line.words[1], &seconds) || !(std::abs(seconds) <= 1e9)) {
    return Error("not a number of seconds: " + line.words[1]);
  }
  const std::string why = JumpClock(seconds);
  return why.empty() ? "ok" : Error(why);
}

std::string Screen(const Line& line) {
  int64_t size[2] = {};
  for (size_t i = 0; i < 2; ++i) {
    if (!Count(line.words[i + 1], kLeastScreen[i], kLargestScreen[i], &size[i])) {
      return Error(i ? "the screen is 480 to 2880 pixels high" : "the screen is 640 to 5120 pixels wide");
    }
  }
  SetScreen(static_cast<int>(size[0]), static_cast<int>(size[1]));
  return "ok";
}

std::string Planes(const Line& line) {
  int64_t count = 0;
  if (!Count(line.words[1], 1, 128, &count)) return Error("the number of planes is 1 to 128");
  SetActivePlanes(static_cast<int>(count));
  return "ok";
}

std::string Message(const Line& line) {
  int64_t message = 0, param = 0;
  int from = XPLM_PLUGIN_XPLANE;
  if (!Count(line.words[1], INT32_MIN, UINT32_MAX, &message)) return Error("not a message: " + line.words[1]);
  if (!Count(line.words[2], INT64_MIN, INT64_MAX, &param)) return Error("not a parameter: " + line.words[2]);
  if (line.words.size() > 3) {
    Plugin* sender =
        line.words.size() == 5 && line.words[3] == "from" ? FindPluginBySignature(line.words[4]) : nullptr;
    if (!sender) return Error("no such sender");
    from = sender->id;
  }
  int number = static_cast<int>(static_cast<uint32_t>(message));
  int delivered = SendPluginMessage(from, XPLM_NO_PLUGIN_ID, number, static_cast<intptr_t>(param));
  return delivered > 0 ? "ok" : Error("disabled");
}

std::string Pretend(const Line& line) {
  bool on = line.words[2] == "on";
  if (!on && line.words[2] != "off") return Error("on or off, not " + line.words[2]);
  Plugin* known = FindPluginBySignature(line.words[1]);
  if (known && !known->pretended) return Error(line.words[1] + " is loaded in earnest");
  PretendPlugin(line.words[1], on);
  return "ok";
}

std::string Aircraft(const Line& line) {
  return ChangeAircraft(line.words[1]) ? "ok" : Error("unknown aircraft: " + line.words[1]);
}

struct NavTypeRow {
  const char* word = "";
  XPLMNavType type = xplm_Nav_Unknown;
};
constexpr NavTypeRow navTypeRows[] = {
    {.word = "airport", .type = xplm_Nav_Airport}, {.word = "ndb", .type = xplm_Nav_NDB},
    {.word = "vor", .type = xplm_Nav_VOR},         {.word = "ils", .type = xplm_Nav_ILS},
    {.word = "loc", .type = xplm_Nav_Localizer},   {.word = "gs", .type = xplm_Nav_GlideSlope},
    {.word = "om", .type = xplm_Nav_OuterMarker},  {.word = "mm", .type = xplm_Nav_MiddleMarker},
    {.word = "im", .type = xplm_Nav_InnerMarker},  {.word = "fix", .type = xplm_Nav_Fix},
    {.word = "dme", .type = xplm_Nav_DME},
};
// Every type that an aid of the database can have: those with one bit set.
constexpr bool NavTypesAreComplete() {
  XPLMNavType all = 0;
  for (const NavTypeRow& row : navTypeRows) all |= row.type;
  return all == xplm_Nav_LatLon - 1;
}
static_assert(NavTypesAreComplete());

std::string Navaid(const Line& line) {
  if (line.words.size() == 2 && line.words[1] == "clear") {
    ClearNavAids();
    return "ok";
  }
  if (line.words.size() != 9)
    return Error("navaid TYPE ID FREQ LAT LON HEIGHT HEADING \"NAME\", or navaid clear");
  NavAid aid;
  for (const NavTypeRow& row : navTypeRows) {
    if (line.words[1] == row.word) aid.type = row.type;
  }
  if (aid.type == 0) return Error("unknown type: " + line.words[1]);
  int64_t freq = 0;
  if (!Count(line.words[3], 0, INT32_MAX, &freq)) return Error("not a frequency: " + line.words[3]);
  double numbers[4] = {};
  for (size_t i = 0; i < 4; ++i) {
    if (!ParseDouble(line.words[4 + i], &numbers[i])) return Error("not a number: " + line.words[4 + i]);
  }
  aid.id = line.words[2];
  aid.freq = static_cast<int>(freq);
  aid.lat = static_cast<float>(numbers[0]);
  aid.lon = static_cast<float>(numbers[1]);
  aid.height = static_cast<float>(numbers[2]);
  aid.heading = static_cast<float>(numbers[3]);
  aid.name = line.words[8];
  AddNavAid(aid);
  return "ok";
}

std::string Convert(const Line& line, decltype(&LocalToWorld) convert) {
  double in[3] = {}, out[3] = {};
  for (size_t i = 0; i < 3; ++i) {
    if (!ParseDouble(line.words[1 + i], &in[i])) return Error("not a number: " + line.words[1 + i]);
  }
  convert(in[0], in[1], in[2], &out[0], &out[1], &out[2]);
  return Ok(FormatDouble(out[0]) + ' ' + FormatDouble(out[1]) + ' ' + FormatDouble(out[2]));
}

std::string World(const Line& line) { return Convert(line, LocalToWorld); }
std::string Local(const Line& line) { return Convert(line, WorldToLocal); }

std::string EnableAll(const Line&) { return EnablePlugins() ? "ok" : Error("refused to be enabled"); }

std::string DisableAll(const Line&) {
  DisablePlugins();
  return "ok";
}

std::string Reload(const Line&) {
  std::string why;
  return ReloadPlugins(&why) ? "ok" : Error(why);
}

std::string MenuItem(const Line& line) {
  std::string item;
  for (size_t i = 1; i < line.words.size(); ++i) item += (i > 1 ? " " : "") + line.words[i];
  return MenuConsole(item);
}

std::string Quit(const Line&) {
  quitWanted = true;
  return "ok";
}

constexpr size_t any = 1000000;  // number of words
struct CommandRow {
  const char* name = "";
  const char* usage = "";      // what follows the name
  size_t least = 0, most = 0;  // words that follow
  std::string (*run)(const Line&) = nullptr;
  const char* about = "";
};
constexpr CommandRow commandRows[] = {
    {.name = "get",
     .usage = "NAME",
     .least = 1,
     .most = 1,
     .run = Get,
     .about = "value of a dataref, of one element as NAME[I]"},
    {.name = "set",
     .usage = "NAME VALUE...",
     .least = 2,
     .most = any,
     .run = Set,
     .about = "sets it as the simulator would; text in double quotes"},
    {.name = "axis",
     .usage = "N VALUE",
     .least = 2,
     .most = 2,
     .run = Axis,
     .about = "moves axis N of the joystick to VALUE, 0 to 1 from end to end"},
    {.name = "define",
     .usage = "NAME TYPE [VALUE]",
     .least = 2,
     .most = any,
     .run = Define,
     .about = "publishes one: int, float, double, int[N], float[N], byte[N]"},
    {.name = "undefine",
     .usage = "NAME",
     .least = 1,
     .most = 1,
     .run = Undefine,
     .about = "withdraws a dataref"},
    {.name = "command",
     .usage = "NAME",
     .least = 1,
     .most = 1,
     .run = MakeCommand,
     .about = "creates a command"},
    {.name = "frames",
     .usage = "N",
     .least = 1,
     .most = 1,
     .run = Frames,
     .about = "runs N frames, then answers"},
    {.name = "calls",
     .run = Calls,
     .about = "commands, keys and the like that plug-ins fired since the last calls"},
    {.name = "writes", .run = Writes, .about = "datarefs that plug-ins set since the last writes"},
    {.name = "planes",
     .usage = "N",
     .least = 1,
     .most = 1,
     .run = Planes,
     .about = "number of active aircraft"},
    {.name = "message",
     .usage = "ID PARAM [from SIGNATURE]",
     .least = 2,
     .most = 4,
     .run = Message,
     .about = "sends a message to the plug-ins"},
    {.name = "plugin",
     .usage = "SIGNATURE on|off",
     .least = 2,
     .most = 2,
     .run = Pretend,
     .about = "pretends that such a plug-in is loaded"},
    {.name = "aircraft",
     .usage = "NAME",
     .least = 1,
     .most = 1,
     .run = Aircraft,
     .about = "changes the user's aircraft"},
    {.name = "navaid",
     .usage = "TYPE ID FREQ LAT LON HEIGHT HEADING \"NAME\"",
     .least = 1,
     .most = 8,
     .run = Navaid,
     .about = "adds one; navaid clear removes all"},
    {.name = "world",
     .usage = "X Y Z",
     .least = 3,
     .most = 3,
     .run = World,
     .about = "LAT LON ALT of a local point"},
    {.name = "local", .usage = "LAT LON ALT", .least = 3, .most = 3, .run = Local, .about = "X Y Z of a place"},
    {.name = "enable", .run = EnableAll, .about = "enables the plug-ins"},
    {.name = "disable", .run = DisableAll, .about = "disables them"},
    {.name = "reload", .run = Reload, .about = "stops, unloads, loads and starts them"},
    {.name = "menu",
     .usage = "[\"ITEM\"]",
     .most = any,
     .run = MenuItem,
     .about = "all menu items, or chooses one"},
    {.name = "loops", .run = Loops, .about = "registered flight loops"},
    {.name = "perf",
     .run = Perf,
     .about = "what plug-ins cost since the last perf: time in flight loops, simulator calls"},
    {.name = "late",
     .run = Late,
     .about = "frames since the last late: filled by plug-ins, begun late, and the latest"},
    {.name = "stall",
     .usage = "SECONDS",
     .least = 1,
     .most = 1,
     .run = Stall,
     .about = "the next frame takes so long"},
    {.name = "clock",
     .usage = "SECONDS",
     .least = 1,
     .most = 1,
     .run = ClockJump,
     .about = "the wall clock that plug-ins built for it see jumps by so much"},
    {.name = "fail",
     .usage = "FUNCTION N [TIMES]",
     .most = 4,
     .run = FailOn,
     .about = "the N-th call from now by a plug-in fails as documented, and TIMES - 1 more"},
    {.name = "fail system",
     .usage = "KIND N [TIMES]",
     .most = 4,
     .run = FailOn,
     .about = "its N-th creation of a thread, event, socket, window or file (builds for tests only)"},
    {.name = "fail off", .run = FailOn, .about = "nothing fails; \"fail\" alone tells what still waits"},
    {.name = "screen",
     .usage = "W H",
     .least = 2,
     .most = 2,
     .run = Screen,
     .about = "size of the screen, 640 480 to 5120 2880 (at first 1024 768); windows stay"},
    {.name = "quit", .run = Quit, .about = "stops the plug-ins and ends"},
};

// Words that the widget library answers.
struct WidgetCommandRow {
  const char* name = "";
  const char* usage = "";
  const char* about = "";
};
constexpr WidgetCommandRow widgetCommandRows[] = {
    {.name = "widgets",
     .about = "plug-ins' windows and what is in them; a box without a text has its caption's"},
    {.name = "press",
     .usage = "[\"WINDOW\"] \"LABEL\"",
     .about = "presses a button or box: by its text, else by the caption right or left of it"},
    {.name = "type",
     .usage = "[\"WINDOW\"] \"LABEL\" \"TEXT\"",
     .about = "replaces the text of the nearest field right of a label by keys, return last"},
    {.name = "key",
     .usage = "NAME",
     .about = "a key (enter, escape, tab, backtab, up, f1 ...) for the widget with the keyboard, else for the "
              "simulator"},
    {.name = "close", .usage = "\"WINDOW\"", .about = "uses the close box"},
    {.name = "picture",
     .usage = "FILE",
     .about = "draws the windows, up to the screen's edges, into a file that ends in .png or .svg"},
};

// Answers must stay one line, whatever a name or a reason holds.
std::string OneLine(std::string answer) {
  for (char& c : answer) {
    if (c == '\n' || c == '\r' || c == 0) c = ' ';
  }
  return answer;
}

std::string Run(const std::string& text) {
  size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string::npos || text[begin] == '#') return "ok";
  size_t end = std::min(text.find_first_of(" \t", begin), text.size());
  std::string name = text.substr(begin, end - begin);
  for (const WidgetCommandRow& widget : widgetCommandRows) {
    if (name != widget.name) continue;
    if (!widgetHooks) return Error("there is no widget library");
    size_t rest = std::min(text.find_first_not_of(" \t", end), text.size());
    std::string answer;
    widgetHooks->console(widget.name, text.substr(rest).c_str(), &answer);
    return answer;
  }
  for (const CommandRow& command : commandRows) {
    if (name != command.name) continue;
    Line line;
    if (!SplitWords(text.c_str(), &line.words, &line.quoted)) return Error("a quote is not closed");
    if (line.words.size() - 1 < command.least || line.words.size() - 1 > command.most) {
      return Error(*command.usage ? name + ' ' + command.usage : name + " takes no arguments");
    }
    std::string answer;
    const bool fine = NothingThrown(0, "a console command", [&] { answer = command.run(line); });
    return fine ? answer : Error("a plug-in threw an exception");
  }
  return Error("unknown command: " + name);
}

}  // namespace

std::string SimCommand(const std::string& line) {
  size_t length = line.size();
  while (length > 0 && (line[length - 1] == '\r' || line[length - 1] == '\n')) --length;
  std::string answer = OneLine(Run(line.substr(0, length)));
  std::string why;
  if (reloadWanted && !ReloadPlugins(&why)) std::fprintf(stderr, "standin: reload: %s\n", why.c_str());
  return answer;
}

std::string ConsoleHelp() {
  std::string help;
  auto add = [&help](std::string line, const char* usage, const char* about) {
    constexpr size_t aboutColumn = 32;
    if (*usage) line += std::string(" ") + usage;
    if (line.size() + 2 > aboutColumn) {
      help += line + '\n';
      line.clear();
    }
    line.resize(aboutColumn, ' ');
    help += line + about + '\n';
  };
  for (const CommandRow& command : commandRows)
    add(std::string("  ") + command.name, command.usage, command.about);
  for (const WidgetCommandRow& widget : widgetCommandRows)
    add(std::string("  ") + widget.name, widget.usage, widget.about);
  return help;
}

std::string RunDefinitions(const std::string& file) {
  std::ifstream in(AbsolutePath(file));
  if (!in) return file + ": cannot be read";
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    while (!line.empty() && line.back() == '\r') line.pop_back();
    size_t begin = std::min(line.find_first_not_of(" \t"), line.size());
    size_t end = std::min(line.find_first_of(" \t", begin), line.size());
    std::string name = line.substr(begin, end - begin);
    bool allowed = name.empty() || name[0] == '#' || name == "define" || name == "command";
    std::string answer = allowed ? SimCommand(line) : Error("only define and command may stand here");
    if (answer != "ok") return file + ':' + FormatInt(number) + ": " + answer;
  }
  return "";
}

}  // namespace sim
