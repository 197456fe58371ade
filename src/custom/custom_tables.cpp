// The life of the custom tables: finding and reading the file, looking up names, publishing, withdrawing.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <memory>
#include <string>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "custom/custom.h"
#include "custom/custom_parser.h"
#include "custom/custom_state.h"
#include "custom/expression.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "shell/log.h"

CustomTables* loadedTables;
std::atomic<const CustomTables*> publishedTables;
PendingCustomWrite pendingWrite;
CustomCommandWrite pendingCommand;
std::atomic<uint32_t> customPending;
uint32_t customEndCount;

namespace {

constexpr size_t largestFile = 64u << 20;  // bytes; what is larger is no file of ours
constexpr char errorLine[] = "Error reading TAVRIXOffsets.cfg\n";
constexpr char clearLine[] = "Clear TAVRIXOffsets.cfg by user\n";
constexpr char reloadLine[] = "Reload TAVRIXOffsets.cfg\n";

// What clients ask for: bits, set under the offset lock.
constexpr uint32_t reloadAsked = 1;
constexpr uint32_t clearAsked = 2;
constexpr uint32_t withdrawn = 4;  // the tables were withdrawn for it: do it in the next frame
std::atomic<uint32_t> requests;
// Before this time requests are collected. Under the offset lock.
constexpr int64_t pauseNanoseconds = 1'000'000'000;
int64_t nextReload;

std::string FilePath() {
  char systemPath[1024] = "";
  XPLMGetSystemPath(systemPath);
  std::string path = std::string(systemPath) + "Resources/plugins/TAVRIX/";
  std::replace(path.begin(), path.end(), '/', XPLMGetDirectorySeparator()[0]);
  return path + "TAVRIXOffsets.cfg";
}

int ReadWholeFile(const std::string& path, std::string* text) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) return 0;
  char part[16384];
  size_t length = 0;
  while ((length = std::fread(part, 1, sizeof part, file.get())) > 0) {
    text->append(part, length);
    if (text->size() > largestFile) return 0;
  }
  return std::ferror(file.get()) == 0;
}

void TellSkipped(uint32_t line, CustomLineFault fault) {
  LogOwn("TAVRIX->TAVRIXOffsets.cfg line %i is left out: %s\n", static_cast<int>(line),
         fault == CustomLineFault::TooManyTokens ? "it has more than 256 words"
                                                 : "one of its words has more than 255 characters");
}

void LookUpDatarefs(CustomTables* tables) {
  for (CustomDatarefEntry& entry : tables->datarefs) {
    entry.handle = XPLMFindDataRef(entry.path);
    if (entry.handle == nullptr) LogLine("Dataref %s not found.\n", entry.path);
  }
}

void LookUpActions(CustomTables* tables) {
  for (const CustomCommandEntry& entry : tables->commands) {
    for (int32_t slot = 0; slot < entry.actionCount; ++slot) {
      const auto group = static_cast<uint32_t>(slot / 3);
      // The slots between groups are blank, and told like any other name that does not exist.
      const bool blank = slot % 3 != 0 || group >= entry.groupCount;
      CommandAction* action = blank ? nullptr : &tables->actions[entry.firstGroup + group];
      if (action != nullptr) action->handle = XPLMFindCommand(action->name);
      if (blank || action->handle == nullptr) LogLine("Command %s not found.\n", blank ? "" : action->name);
    }
  }
}

// Makes the tables unreachable and forgets what points into them. Offset lock held.
void Withdraw() {
  publishedTables = nullptr;
  pendingWrite = {};
  pendingCommand = {};
  customEndCount = 0;
}

void Load() {
  std::string text;
  auto tables = std::make_unique<CustomTables>();
  if (!ReadWholeFile(FilePath(), &text) || !ParseCustomFile(text, tables.get(), TellSkipped)) {
    LogLine(errorLine);
    return;
  }
  LookUpDatarefs(tables.get());
  LookUpActions(tables.get());
  PrepareCustomTables(tables.get());
  loadedTables = tables.release();
  const LockScope lock(&offsetLock);
  // A client may have withdrawn the tables before these were read: they wait for its load then.
  if ((requests & withdrawn) == 0) publishedTables = loadedTables;
}

template <typename Key>
size_t Find(const std::vector<Key>& keys, Key key) {
  const auto found = std::lower_bound(keys.begin(), keys.end(), key);
  return found != keys.end() && *found == key ? static_cast<size_t>(found - keys.begin()) : keys.size();
}

}  // namespace

void LoadCustomOffsets() {
  ClearCustomOffsets();
  try {
    Load();
  } catch (...) {
    LogLine(errorLine);
  }
}

void ClearCustomOffsets() {
  {
    const LockScope lock(&offsetLock);
    Withdraw();
  }
  if (loadedTables == nullptr) return;
  EndHeldCommands(loadedTables);
  delete loadedTables;
  loadedTables = nullptr;
}

void ReloadCustomOffsets() {
  LogLine(clearLine);
  ClearCustomOffsets();
  LogLine(reloadLine);
  LoadCustomOffsets();
}

void ForgetCustomRequests() {
  requests = 0;
  nextReload = 0;
}

void RequestCustomReload(uint32_t offset) {
  uint32_t asked = reloadAsked;
  if (offset == customClearOffset) {
    Store<uint8_t>(customClearOffset, 0);
    asked = clearAsked;
  }
  if (requests == 0 && MonotonicNanoseconds() >= nextReload) {
    Withdraw();
    asked |= withdrawn;
  }
  requests.fetch_or(asked);
}

void TakeCustomReload() {
  const uint32_t waiting = requests.load(std::memory_order_relaxed);
  if (waiting == 0) return;
  // This thread alone sets the time.
  if ((waiting & withdrawn) == 0 && MonotonicNanoseconds() < nextReload) return;
  uint32_t taken = 0;
  {
    const LockScope lock(&offsetLock);
    taken = requests.exchange(0);
    nextReload = std::numeric_limits<int64_t>::max();  // what is asked for during the load waits
  }
  if ((taken & clearAsked) != 0) LogLine(clearLine);
  LogLine(reloadLine);
  LoadCustomOffsets();
  const LockScope lock(&offsetLock);
  nextReload = MonotonicNanoseconds() + pauseNanoseconds;
  if ((taken & clearAsked) == 0 || (requests & clearAsked) != 0) return;
  Store<uint8_t>(customClearOffset, 0);  // the client's own 1 was copied over the dispatcher's 0
}

const CustomOffsetEntry* FindCustomOffset(uint32_t offset) {
  const CustomTables* tables = publishedTables.load(std::memory_order_relaxed);
  if (tables == nullptr) return nullptr;
  const size_t found = Find(tables->offsetKeys, static_cast<int16_t>(offset));
  return found < tables->offsets.size() ? &tables->offsets[found] : nullptr;
}

const CustomCommandEntry* FindCustomCommand(uint32_t offset) {
  const CustomTables* tables = publishedTables.load(std::memory_order_relaxed);
  if (tables == nullptr) return nullptr;
  const size_t found = Find(tables->commandKeys, static_cast<uint16_t>(offset));
  return found < tables->commands.size() ? &tables->commands[found] : nullptr;
}

const CustomTables* LoadedCustomTables() { return loadedTables; }

double EvaluateExpression(const std::string_view* tokens, int32_t first, int32_t count, double input) {
  static const std::vector<CustomDatarefEntry> none;
  return EvaluateTokens(tokens, first, count, input, loadedTables != nullptr ? loadedTables->datarefs : none,
                        ReadDatarefValue);
}
