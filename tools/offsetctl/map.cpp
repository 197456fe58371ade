// offsetctl map: an offset for any dataref, through the offsets file of the running plug-in.
#include <chrono>
#include <cmath>

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

// Adds the lines and has them read. When the simulator has no such dataref the file is put back.
int AddLines(const Options& options, const Transport& transport, const Mapping& mapping,
             const std::string& folder, const std::string& before, bool existed) {
  const std::string path = Joined(folder, "TAVRIXOffsets.cfg");
  Log log = {Joined(folder, "TAVRIX.txt"), 0};
  std::string text, error;
  if (ReadTextFile(log.path, &text)) log.before = text.size();
  if (!AppendToFile(path, mapping.lines)) return Report(exitUsage, "cannot write " + path);
  if (!Reload(options, transport, log, &error)) {
    return StopRequested() ? exitDone : Report(exitNoAnswer, "added to " + path + ", but " + error);
  }
  const std::string& dataref = options.items[0];
  const std::string plain = dataref.substr(0, dataref.find('['));
  WaitForStop(pollSeconds);
  if (NewsIn(log).find("Dataref " + plain + " not found.") == std::string::npos) return exitDone;
  // An empty file would be told as one that is missing: only what was there is put back.
  WriteTextFile(path, existed ? before : "# offsets of your own\n");
  Reload(options, transport, log, &error);
  return Report(exitUsage, "the simulator has no dataref " + plain +
                               ": check its name, or load the aircraft that it belongs to; nothing was added");
}

}  // namespace

int RunMap(const Options& options, const Transport& transport) {
  const MapRequest request = {options.items[0], options.items[1],
                              options.items.size() > 2 ? options.items[2] : ""};
  Mapping mapping;
  std::string error, folder, text;
  // First without the file: a wrong word needs no server.
  if (!PlanMapping("", KnownOffsets(), request, &mapping, &error)) return Report(exitUsage, error);
  int status = exitDone;
  if (!FindFolder(options, transport, &folder, &error, &status)) {
    return StopRequested() ? exitDone : Report(status, error);
  }
  const std::string path = Joined(folder, "TAVRIXOffsets.cfg");
  const bool exists = IsFile(path);
  if (exists && !ReadTextFile(path, &text)) return Report(exitUsage, "cannot read " + path);
  if (!PlanMapping(text, KnownOffsets(), request, &mapping, &error)) return Report(exitUsage, error);
  if (!mapping.exists) status = AddLines(options, transport, mapping, folder, text, exists);
  if (status != exitDone || StopRequested()) return status;
  Item item = ItemOf(mapping);
  if (!ReadValue(options, transport, &item, &error)) return ReportFailure(error);
  std::printf("%s %s: %s\n", request.dataref.c_str(), mapping.exists ? "is there already" : "is added",
              ItemLine(item).c_str());
  return exitDone;
}

}  // namespace ctl
