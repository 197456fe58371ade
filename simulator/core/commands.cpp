// Commands by name and by number, data files, speech: what plug-ins fire, with a list of it.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unordered_map>

#include "XPLMUtilities.h"
#include "core/core.h"

namespace sim {
namespace {

struct Handler {
  int owner;
  XPLMCommandCallback_f fn;
  void* refcon;
  bool before;
};

struct Command {
  std::string name, description;
  CommandAction action = nullptr;
  int tag = 0;
  std::vector<Handler> handlers;  // in order of registration
  std::vector<int> holders;       // plug-ins that have begun and not ended it, once per begin
};

std::unordered_map<std::string, std::unique_ptr<Command>> commands;
std::vector<Command*> held;
constexpr size_t kKeptCalls = 100000;
std::deque<std::string> calls;

Command* Make(const std::string& name) {
  std::unique_ptr<Command>& slot = commands[name];
  if (!slot) {
    slot = std::make_unique<Command>();
    slot->name = name;
  }
  return slot.get();
}

// The handlers of one side, until one of them wants nobody else to see it. They may register and
// unregister others meanwhile, so each is called only if it is still there.
bool RunHandlers(Command* command, int phase, bool before) {
  const std::vector<Handler> now = command->handlers;
  for (const Handler& handler : now) {
    if (handler.before != before) continue;
    bool there = std::any_of(command->handlers.begin(), command->handlers.end(), [&](const Handler& other) {
      return other.fn == handler.fn && other.refcon == handler.refcon && other.before == before;
    });
    if (!there || !MayCall(handler.owner)) continue;
    InPlugin inside(handler.owner);
    if (!handler.fn(command, phase, handler.refcon)) return false;
  }
  return true;
}

void Run(Command* command, int phase) {
  if (!RunHandlers(command, phase, true)) return;
  if (command->action) command->action(phase, command->tag);
  RunHandlers(command, phase, false);
}

void Release(Command* command, std::vector<int>::iterator holder) {
  command->holders.erase(holder);
  if (!command->holders.empty()) return;
  held.erase(std::find(held.begin(), held.end(), command));
  Run(command, xplm_CommandEnd);
}

// The command of a handle; a null handle is a breach.
Command* Given(XPLMCommandRef handle, const char* function) {
  if (!handle) Breach(function, "null command handle");
  return static_cast<Command*>(handle);
}

// Where a situation or movie lies: below the system folder. Empty, so that no file can be opened, without a
// name and in a run without a system folder.
std::filesystem::path DataFile(const std::string& name) {
  if (name.empty() || running.root.empty()) return {};
  return SystemFolder() + name;
}

}  // namespace

void PublishCommand(const char* name, CommandAction action, int tag) {
  Command* command = Make(name);
  command->action = action;
  command->tag = tag;
}

void PublishCommandIfMissing(const std::string& name) { Make(name); }

void ResetCommands() {
  commands.clear();
  held.clear();
  calls.clear();
}

void ContinueHeldCommands() {
  const std::vector<Command*> now = held;
  for (Command* command : now) {
    if (std::find(held.begin(), held.end(), command) == held.end()) continue;
    NothingThrown(0, "a command handler", [&] { Run(command, xplm_CommandContinue); });
  }
}

int DropCommandHandlers(int owner, std::string* which) {
  size_t dropped = 0;
  for (auto& [name, command] : commands) {
    size_t here =
        std::erase_if(command->handlers, [&](const Handler& handler) { return handler.owner == owner; });
    if (here > 0) *which = name;
    dropped += here;
  }
  return static_cast<int>(dropped);
}

int DropHeldCommands(int owner, std::string* which) {
  int dropped = 0;
  const std::vector<Command*> now = held;
  for (Command* command : now) {
    for (;;) {
      auto holder = std::find(command->holders.begin(), command->holders.end(), owner);
      if (holder == command->holders.end()) break;
      *which = command->name;
      ++dropped;
      NothingThrown(0, "a command handler", [&] { Release(command, holder); });
    }
  }
  return dropped;
}

void LogCall(std::string text) {
  if (calls.size() == kKeptCalls) calls.pop_front();
  calls.push_back(std::move(text));
}

std::string TakeCalls() {
  std::string list;
  for (const std::string& call : calls) Join(&list, call);
  calls.clear();
  return list;
}

}  // namespace sim

XPLMCommandRef XPLMFindCommand(const char* name) {
  sim::Check("XPLMFindCommand");
  if (sim::Fails("XPLMFindCommand")) return nullptr;
  sim::lookUps++;
  auto found = sim::commands.find(name ? name : "");
  return found != sim::commands.end() ? found->second.get() : nullptr;
}

XPLMCommandRef XPLMCreateCommand(const char* name, const char* description) {
  sim::Check("XPLMCreateCommand");
  if (sim::Fails("XPLMCreateCommand")) return nullptr;
  if (!name || !*name) return nullptr;
  sim::Command* command = sim::Make(name);
  if (command->description.empty() && description) command->description = description;
  return command;
}

void XPLMCommandOnce(XPLMCommandRef handle) {
  sim::Check("XPLMCommandOnce");
  sim::Command* command = sim::Given(handle, "XPLMCommandOnce");
  if (!command) return;
  sim::LogCall("once " + command->name);
  sim::Run(command, xplm_CommandBegin);
  sim::Run(command, xplm_CommandEnd);
}

void XPLMCommandBegin(XPLMCommandRef handle) {
  sim::Check("XPLMCommandBegin");
  sim::Command* command = sim::Given(handle, "XPLMCommandBegin");
  if (!command) return;
  sim::LogCall("begin " + command->name);
  command->holders.push_back(sim::CallingPlugin());
  if (command->holders.size() > 1) return;  // somebody holds it down already
  sim::held.push_back(command);
  sim::Run(command, xplm_CommandBegin);
}

void XPLMCommandEnd(XPLMCommandRef handle) {
  sim::Check("XPLMCommandEnd");
  sim::Command* command = sim::Given(handle, "XPLMCommandEnd");
  if (!command) return;
  auto holder = std::find(command->holders.begin(), command->holders.end(), sim::CallingPlugin());
  if (holder == command->holders.end()) {
    sim::Breach("XPLMCommandEnd", (command->name + " was not begun").c_str());
    return;
  }
  sim::LogCall("end " + command->name);
  sim::Release(command, holder);
}

void XPLMRegisterCommandHandler(XPLMCommandRef handle, XPLMCommandCallback_f fn, int before, void* refcon) {
  sim::Check("XPLMRegisterCommandHandler");
  sim::Command* command = sim::Given(handle, "XPLMRegisterCommandHandler");
  if (command && fn) command->handlers.push_back({sim::CallingPlugin(), fn, refcon, before != 0});
}

void XPLMUnregisterCommandHandler(XPLMCommandRef handle, XPLMCommandCallback_f fn, int before, void* refcon) {
  sim::Check("XPLMUnregisterCommandHandler");
  sim::Command* command = sim::Given(handle, "XPLMUnregisterCommandHandler");
  if (!command) return;
  auto same = [&](const sim::Handler& handler) {
    return handler.fn == fn && handler.before == (before != 0) && handler.refcon == refcon;
  };
  auto found = std::find_if(command->handlers.begin(), command->handlers.end(), same);
  if (found != command->handlers.end()) command->handlers.erase(found);
}

void XPLMCommandKeyStroke(XPLMCommandKeyID key) {
  sim::Check("XPLMCommandKeyStroke");
  sim::LogCall("key " + sim::FormatInt(key));
  sim::WorldKey(key);
  if (key >= xplm_key_forward && key <= xplm_key_fullscrn2) sim::ChangeView();
}

void XPLMCommandButtonPress(XPLMCommandButtonID button) {
  sim::Check("XPLMCommandButtonPress");
  sim::LogCall("press " + sim::FormatInt(button));
  sim::WorldButton(button, true);
}

void XPLMCommandButtonRelease(XPLMCommandButtonID button) {
  sim::Check("XPLMCommandButtonRelease");
  sim::LogCall("release " + sim::FormatInt(button));
  sim::WorldButton(button, false);
}

int XPLMLoadDataFile(XPLMDataFileType type, const char* path) {
  sim::Check("XPLMLoadDataFile");
  if (sim::Fails("XPLMLoadDataFile")) return 0;
  sim::LogCall("load " + sim::FormatInt(type) + ' ' + (path ? path : ""));
  if (!path) return type == xplm_DataFile_ReplayMovie;  // empties the replay
  std::error_code failure;
  return std::filesystem::is_regular_file(sim::DataFile(path), failure);
}

int XPLMSaveDataFile(XPLMDataFileType type, const char* path) {
  sim::Check("XPLMSaveDataFile");
  if (sim::Fails("XPLMSaveDataFile")) return 0;
  sim::LogCall("save " + sim::FormatInt(type) + ' ' + (path ? path : ""));
  std::ofstream file(sim::DataFile(path ? path : ""), std::ios::binary);
  file << "standin " << type << '\n';
  return static_cast<bool>(file.flush());
}

void XPLMSpeakString(const char* text) {
  sim::Check("XPLMSpeakString");
  sim::LogCall("speak " + sim::Quote(text ? text : ""));
}
