// offsetctl map: an offset for any dataref, through the offsets file of the running plug-in.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "check.h"
#include "commands.h"
#include "console.h"
#include "files.h"
#include "mapping.h"
#include "numbers.h"
#include "show.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t folderOffset = 0x3E00, folderSize = 0x100;
constexpr uint32_t reloadOffset = 0x6F0E;  // 1 asks for reading the file again, 0 when it is done
constexpr double pollSeconds = 0.05;
constexpr double firstValueSeconds = 1;  // after which a 0 is taken for the dataref's value

int Milliseconds(double seconds) { return static_cast<int>(std::ceil(seconds * 1000)); }

// One request with the server, from connecting to closing.
bool Exchange(const Options& options, const Transport& transport, bool writing,
              const std::vector<Transfer>& transfers, std::string* error) {
  if (!transport.open(Milliseconds(options.timeout), error)) return false;
  const bool done =
      writing ? transport.writeOffsets(transfers, error) : transport.readOffsets(transfers, error);
  transport.close();
  return done;
}

// Returns true, or false with a line in `error` and the status in `status`.
bool FindFolder(const Options& options, const Transport& transport, std::string* folder, std::string* error,
                int* status) {
  std::string named = options.folder;
  if (named.empty()) {
    std::vector<uint8_t> bytes(folderSize);
    *status = exitNoAnswer;
    if (!Exchange(options, transport, false, {{folderOffset, folderSize, bytes.data()}}, error)) return false;
    named = reinterpret_cast<const char*>(bytes.data());
    named = named.substr(0, folderSize);
  }
  *folder = PluginFolderIn(named);
  *status = folder->empty() ? exitUsage : exitDone;
  if (!folder->empty()) return true;
  *error = "no folder Resources/plugins/TAVRIX in \"" + named +
           "\" as this computer sees it: name the folder with " + "--folder";
  return false;
}

struct Log {
  std::string path;
  size_t before;  // its size when we came
};

// What the log says since then.
std::string NewsIn(const Log& log) {
  std::string text;
  if (!ReadTextFile(log.path, &text) || text.size() < log.before) return text;  // begun anew
  return text.substr(log.before);
}

size_t SizeOfLog(const Log& log) {
  std::string text;
  return ReadTextFile(log.path, &text) ? text.size() : 0;
}

// Has the plug-in read its file again. Returns true when its log says so, or when there is no log to look into.
bool Reload(const Options& options, const Transport& transport, const Log& log, std::string* error) {
  uint8_t one = 1;
  if (!Exchange(options, transport, true, {{reloadOffset, 1, &one}}, error)) return false;
  if (!IsFile(log.path)) return !WaitForStop(firstValueSeconds);
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(Milliseconds(options.timeout));
  while (Clock::now() < end) {
    const std::string news = NewsIn(log);
    if (news.find("Reload TAVRIXOffsets.cfg") != std::string::npos) return true;
    if (WaitForStop(pollSeconds)) return false;
  }
  *error = "the plug-in has not read TAVRIXOffsets.cfg again within " + RealText(options.timeout) +
           " s: is it disabled, or does another simulator run?";
  return false;
}

bool ReadValue(const Options& options, const Transport& transport, Item* item, std::string* error) {
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(Milliseconds(firstValueSeconds));
  if (!transport.open(Milliseconds(options.timeout), error)) return false;
  bool done = true, isZero = true;
  while (done && isZero && Clock::now() < end && !WaitForStop(pollSeconds)) {
    done = transport.readOffsets({{item->offset, item->size, item->bytes.data()}}, error);
    for (const uint8_t byte : item->bytes) isZero = isZero && byte == 0;
  }
  transport.close();
  return done;
}

Item ItemOf(const Mapping& mapping) {
  Item item;
  item.shown = HexText(mapping.offset, 4) + ":" + TypeText(mapping.type, mapping.size);
  item.offset = mapping.offset;
  item.type = mapping.type;
  item.size = mapping.size;
  item.bytes.assign(mapping.size, 0);
  return item;
}

// Takes our lines out again, whatever else was added meanwhile, and has the file read. Ctrl-C waits until it is
// done.
bool PutBack(const Options& options, const Transport& transport, const Mapping& mapping, const Log& log,
             const std::string& path) {
  HoldStop(true);
  std::string text, unused;
  bool done = ReadTextFile(path, &text) && TakeOut(mapping.lines, &text);
  // An empty file would be told as one that is missing.
  done = done && WriteTextFile(path, text.empty() ? "# offsets of your own\n" : text);
  if (done) Reload(options, transport, {log.path, SizeOfLog(log)}, &unused);
  HoldStop(false);
  return done;
}

// Adds the lines and has them read. When the simulator has no such dataref, or keeps it otherwise, or Ctrl-C
// comes, the file is put back.
int AddLines(const Options& options, const Transport& transport, const Mapping& mapping,
             const std::string& folder, const std::string& before) {
  const std::string path = Joined(folder, "TAVRIXOffsets.cfg");
  Log log = {Joined(folder, "TAVRIX.txt"), 0};
  log.before = SizeOfLog(log);
  if (!WriteTextFile(path, before + mapping.lines)) {
    return Report(exitUsage, "cannot write " + path + ": is it protected, or the disk full? It is as before");
  }
  std::string error, fault;
  const bool isRead = Reload(options, transport, log, &error) && !WaitForStop(pollSeconds);
  if (!isRead && !StopRequested()) return Report(exitNoAnswer, "added to " + path + ", but " + error);
  if (isRead) fault = LoadFault(NewsIn(log), options.items[0], mapping.alias);
  if (isRead && fault.empty()) return exitDone;
  const bool isBack = PutBack(options, transport, mapping, log, path);
  const std::string end =
      isBack ? "; nothing was added" : "; the lines in " + path + " could not be taken out again";
  return isRead ? Report(exitUsage, fault + end) : Report(exitNoAnswer, "stopped" + end);
}

// With the lock on the file: reads it, and adds to it what is missing. Returns the exit status.
int MapInFile(const Options& options, const Transport& transport, const MapRequest& request,
              const std::string& folder, Mapping* mapping) {
  const std::string path = Joined(folder, "TAVRIXOffsets.cfg");
  std::string text, error;
  if (IsFile(path) && !ReadTextFile(path, &text)) return Report(exitUsage, "cannot read " + path);
  if (!PlanMapping(text, KnownOffsets(), request, mapping, &error)) return Report(exitUsage, error);
  return mapping->exists ? exitDone : AddLines(options, transport, *mapping, folder, text);
}

// One after the other: two at once would take the same place, or tell of each other's reload.
bool WaitForLock(const Options& options, const std::string& path) {
  constexpr double staleSeconds = 60;
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(Milliseconds(options.timeout));
  while (!TakeLock(path, std::max(staleSeconds, 4 * options.timeout))) {
    if (Clock::now() >= end || WaitForStop(pollSeconds)) return false;
  }
  return true;
}

}  // namespace

int RunMap(const Options& options, const Transport& transport) {
  const MapRequest request = {options.items[0], options.items[1],
                              options.items.size() > 2 ? options.items[2] : ""};
  Mapping mapping;
  std::string error, folder, log;
  // First without the file: a wrong word needs no server.
  if (!PlanMapping("", KnownOffsets(), request, &mapping, &error)) return Report(exitUsage, error);
  int status = exitDone;
  const bool isFound = FindFolder(options, transport, &folder, &error, &status);
  const std::string lock = Joined(folder, "TAVRIXOffsets.cfg.lock");
  const bool isLocked = isFound && !StopRequested() && WaitForLock(options, lock);
  if (StopRequested()) {
    if (isLocked) GiveLock(lock);
    return Report(exitNoAnswer, "stopped before anything was added");
  }
  if (!isFound) return Report(status, error);
  if (!isLocked) {
    return Report(exitNoAnswer, "cannot make " + lock +
                                    ": another offsetctl map is at work (delete the file when " +
                                    "there is none), or the folder is protected");
  }
  status = MapInFile(options, transport, request, folder, &mapping);
  GiveLock(lock);
  if (status != exitDone) return status;
  Item item = ItemOf(mapping);
  const std::string place = request.dataref + (mapping.exists ? " is there already: " : " is added: ");
  if (!ReadValue(options, transport, &item, &error) || StopRequested()) {
    return Report(exitNoAnswer, place + item.shown + ", but " +
                                    (StopRequested() ? "stopped before its value was read" : error));
  }
  std::printf("%s%s\n", place.c_str(), ItemLine(item).c_str());
  if (!mapping.exists || !ReadTextFile(Joined(folder, "TAVRIX.txt"), &log)) return exitDone;
  const std::string fault = LoadFault(log, request.dataref, mapping.alias);
  return fault.empty() ? exitDone : Report(exitNoAnswer, fault);
}

}  // namespace ctl
