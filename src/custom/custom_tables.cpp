// The life of the custom tables: finding and reading the file, looking up names, publishing, withdrawing.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "base/folders.h"
#include "base/log.h"
#include "base/log_quiet.h"
#include "custom/custom.h"
#include "custom/custom_check.h"
#include "custom/custom_parser.h"
#include "custom/custom_state.h"
#include "custom/expression.h"
#include "offsets/memory.h"
#include "platform/clock.h"
#include "platform/exceptions.h"
#include "platform/system.h"

CustomTables* loadedTables;
std::string customLoadFault;
size_t customFaultyLines;
std::atomic<const CustomTables*> publishedTables;
PendingCustomWrite pendingWrite;
CustomCommandWrite pendingCommand;
uint32_t lostWriteTicket, lostCommandTicket;
std::atomic<uint32_t> customPending;
uint32_t customEndCount;

namespace {

constexpr size_t largestFile = 64u << 20;    // bytes; what is larger is no file of ours
constexpr size_t largestChecked = 1u << 20;  // bytes; in a larger one the faults are not looked for
constexpr size_t mostFindings = 1000;        // that are kept to be told, notes included
constexpr size_t mostFaultLines = 20;        // of the log
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

// Clients can ask for the file without end: then its faults are told so many times a minute only (more than a
// person who works on it, or `offsetctl map`, comes to).
QuietMinute reloadLines = {
    .what = "TAVRIX->TAVRIXOffsets.cfg was read again", .most = 30, .began = 0, .turns = 0};
bool tells = true;

std::string FilePath() { return PluginFolder() + "TAVRIXOffsets.cfg"; }

// The file could not be read: the defined line, then what was wrong and what to do about it.
void TellUnreadable(const std::string& path, const std::string& reason) {
  customLoadFault = "TAVRIXOffsets.cfg cannot be read: " + reason;
  if (!tells) return;
  LogLine(errorLine);
  LogOwn("TAVRIX->Can't read %s: %s; there are no offsets of your own until the file is read again\n",
         EscapedControls(path).c_str(), reason.c_str());
}

// Files that an editor has stored in a way that makes no lines for us: they load, as nothing.
// Returns whether it is one.
bool TellStrangeText(const std::string& path, std::string_view text) {
  const char* fault = nullptr;
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
    fault = "it is stored as UTF-16, save it as ANSI or UTF-8 text";
  } else if (text.find('\r') != std::string_view::npos && text.find('\n') == std::string_view::npos) {
    fault = "its lines end in carriage returns alone, save it with the line ends of Windows or Unix";
  }
  if (fault == nullptr) return false;
  customLoadFault = std::string("no lines are found in TAVRIXOffsets.cfg: ") + fault;
  if (tells) LogOwn("TAVRIX->No lines are found in %s: %s\n", EscapedControls(path).c_str(), fault);
  return true;
}

// Returns true, or false when it has told why not.
bool ReadWholeFile(const std::string& path, std::string* text) {
  OpenFailure failure;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenPlainFile(path.c_str(), OpenMode::Read, &failure),
                                                   std::fclose);
  if (!file && failure.missing) {
    customLoadFault = "there is no file TAVRIXOffsets.cfg";
    if (!tells) return false;
    LogLine(errorLine);
    LogOwn("TAVRIX->There is no file %s: that is fine unless you want offsets of your own\n",
           EscapedControls(path).c_str());
    return false;
  }
  if (!file) {
    const char* remedy =
        failure.remedy != nullptr ? failure.remedy : "make it a text file that your user may read";
    TellUnreadable(path, failure.reason + ", " + remedy);
    return false;
  }
  char part[16384];
  size_t length = 0;
  while ((length = std::fread(part, 1, sizeof part, file.get())) > 0) {
    text->append(part, length);
    if (text->size() > largestFile) {
      TellUnreadable(path, "it is larger than 64 MB, put your own file there");
      return false;
    }
  }
  if (std::ferror(file.get()) == 0) return true;
  TellUnreadable(path, SystemErrorText());
  return false;
}

// A line for each fault, up to a limit. What is loaded does not depend on them.
void TellFaults(std::string_view text) {
  if (text.size() > largestChecked) {
    if (!tells) return;
    LogOwn(
        "TAVRIX->TAVRIXOffsets.cfg is larger than 1 MB and its lines are not examined here: run offsetctl "
        "check "
        "TAVRIXOffsets.cfg\n");
    return;
  }
  const CustomReport report = CheckCustomFile(text, {}, mostFindings);
  customFaultyLines = report.faultyLines;
  if (!tells) return;
  size_t told = 0;
  for (const CustomFinding& finding : report.findings) {
    if (finding.note || told == mostFaultLines) continue;
    LogOwn("TAVRIX->TAVRIXOffsets.cfg line %u: %s\n", finding.line, EscapedControls(finding.text).c_str());
    ++told;
  }
  if (report.faults > told) {
    LogOwn("TAVRIX->TAVRIXOffsets.cfg has %s faults more: run offsetctl check TAVRIXOffsets.cfg\n",
           std::to_string(report.faults - told).c_str());
  }
}

// The words of the file, the simulator's bits for them, and how many elements a dataref has.
struct KindFacts {
  Accessor kind;
  const char* word;
  XPLMDataTypeID type;
  int (*elements)(XPLMDataRef);  // null for scalars
};
constexpr KindFacts kindFacts[] = {
    {Accessor::Int, "int", xplmType_Int, nullptr},
    {Accessor::Float, "float", xplmType_Float, nullptr},
    {Accessor::Double, "double", xplmType_Double, nullptr},
    {Accessor::FloatArray, "floatarray", xplmType_FloatArray,
     [](XPLMDataRef ref) { return XPLMGetDatavf(ref, nullptr, 0, 0); }},
    {Accessor::IntArray, "intarray", xplmType_IntArray,
     [](XPLMDataRef ref) { return XPLMGetDatavi(ref, nullptr, 0, 0); }},
    {Accessor::Bytes, "data", xplmType_Data, [](XPLMDataRef ref) { return XPLMGetDatab(ref, nullptr, 0, 0); }},
};

// A line for a dataref that reads 0 because it is kept in another way than its line says. Its owner may have
// gone, or may not have filled it yet: nothing is known then.
void TellMisfit(const CustomDatarefEntry& entry) {
  const XPLMDataTypeID types = XPLMGetDataRefTypes(entry.handle);
  std::string kept;
  const KindFacts* stated = nullptr;
  for (const KindFacts& facts : kindFacts) {
    if ((types & facts.type) != 0) kept += (kept.empty() ? "" : ", ") + std::string(facts.word);
    if (facts.kind == entry.kind) stated = &facts;
  }
  if (stated == nullptr || kept.empty()) return;
  std::string fault;
  if ((types & stated->type) == 0) {
    fault = "is kept as " + kept + ", not as " + stated->word;
  } else if (stated->elements != nullptr) {
    const int elements = stated->elements(entry.handle);
    if (elements <= 0 || (entry.index >= 0 && entry.index < elements)) return;
    fault = "has " + std::to_string(elements) + " elements, counted from 0, and none of number " +
            std::to_string(entry.index);
  }
  if (fault.empty()) return;
  LogOwn("TAVRIX->Dataref %s of the alias \"%s\" in TAVRIXOffsets.cfg %s: it reads 0\n",
         EscapedControls(entry.path).c_str(), EscapedControls(entry.alias).c_str(), fault.c_str());
}

void LookUpDatarefs(CustomTables* tables) {
  for (CustomDatarefEntry& entry : tables->datarefs) {
    entry.handle = XPLMFindDataRef(entry.path);
    if (!tells) continue;
    if (entry.handle != nullptr) TellMisfit(entry);
    if (entry.handle != nullptr) continue;
    LogLine("Dataref %s not found.\n", EscapedControls(entry.path).c_str());
    if (*entry.path != '\0') continue;
    LogOwn("TAVRIX->The Dataref line of the alias \"%s\" in TAVRIXOffsets.cfg names no dataref\n",
           EscapedControls(entry.alias).c_str());
  }
}

// Offsets whose blank slots the last lines of the log have told.
struct BlankRun {
  static constexpr size_t mostNamed = 8;
  std::vector<uint16_t> offsets;

  void Add(uint16_t offset) {
    if (offsets.empty() || offsets.back() != offset) offsets.push_back(offset);
  }
  void End() {
    if (offsets.empty()) return;
    std::string list;
    for (size_t i = 0; i < std::min(offsets.size(), mostNamed); ++i) {
      char text[16];
      std::snprintf(text, sizeof text, "%s0x%04X", i == 0 ? "" : ", ", offsets[i]);
      list += text;
    }
    if (offsets.size() > mostNamed) list += " and " + std::to_string(offsets.size() - mostNamed) + " more";
    LogOwn(
        "TAVRIX->Commands without a name are the blanks between the groups of a Command line, which is normal; "
        "here of offset %s\n",
        list.c_str());
    offsets.clear();
  }
};

void LookUpActions(CustomTables* tables) {
  BlankRun blanks;
  for (const CustomCommandEntry& entry : tables->commands) {
    for (int32_t slot = 0; slot < entry.actionCount; ++slot) {
      const auto group = static_cast<uint32_t>(slot / 3);
      // The slots between groups are blank, and told like any other name that does not exist.
      if (slot % 3 != 0 || group >= entry.groupCount) {
        if (!tells) continue;
        LogLine("Command %s not found.\n", "");
        blanks.Add(entry.offset);
        continue;
      }
      CommandAction* action = &tables->actions[entry.firstGroup + group];
      action->handle = XPLMFindCommand(action->name);
      if (action->handle != nullptr || !tells) continue;
      blanks.End();
      LogLine("Command %s not found.\n", EscapedControls(action->name).c_str());
    }
  }
  blanks.End();
}

// Makes the tables unreachable and forgets what points into them. Offset lock held.
void Withdraw() {
  publishedTables = nullptr;
  if (pendingWrite.ticket != 0) lostWriteTicket = pendingWrite.ticket;
  if (pendingCommand.ticket != 0) lostCommandTicket = pendingCommand.ticket;
  pendingWrite = {};
  pendingCommand = {};
  customEndCount = 0;
}

// The end of a load that clients asked for, whatever comes of it.
struct FinishReload {
  uint32_t taken;
  ~FinishReload() {
    tells = true;
    const LockScope lock(&offsetLock);
    nextReload = MonotonicNanoseconds() + pauseNanoseconds;
    if ((taken & clearAsked) == 0 || (requests & clearAsked) != 0) return;
    Store<uint8_t>(customClearOffset, 0);  // the client's own 1 was copied over the dispatcher's 0
  }
};

void Load() {
  const std::string path = FilePath();
  std::string text;
  auto tables = std::make_unique<CustomTables>();
  if (!ReadWholeFile(path, &text)) return;
  const bool strange = TellStrangeText(path, text);
  uint32_t tooLong = 0;
  if (!ParseCustomFile(text, tables.get(), &tooLong)) {
    TellUnreadable(path, "line " + std::to_string(tooLong) + " has more than " +
                             std::to_string(maxCustomLineLength) + " characters, make it shorter");
    return;
  }
  if (!strange) TellFaults(text);
  LookUpDatarefs(tables.get());
  LookUpActions(tables.get());
  PrepareCustomTables(tables.get());
  loadedTables = tables.release();
  const LockScope lock(&offsetLock);
  // A client may have withdrawn the tables before these were read: they wait for its load then.
  if ((requests & withdrawn) == 0) publishedTables = loadedTables;
}

}  // namespace

void LoadCustomOffsets() {
  ClearCustomOffsets();
  try {
    Load();
  } catch (...) {
    PassForeignException();
    // Short enough to need no memory of its own.
    if (customLoadFault.empty()) customLoadFault = "out of memory";
    LogLine(errorLine);
    LogOwn("TAVRIX->Out of memory while reading TAVRIXOffsets.cfg\n");
  }
}

void ClearCustomOffsets() {
  {
    const LockScope lock(&offsetLock);
    Withdraw();
  }
  customLoadFault.clear();
  customFaultyLines = 0;
  const std::unique_ptr<CustomTables> ended(std::exchange(loadedTables, nullptr));
  if (ended != nullptr) EndHeldCommands(ended.get());
}

void ClearCustomOffsetsByUser() {
  LogLine(clearLine);
  ClearCustomOffsets();
}

void ReloadCustomOffsets() {
  ClearCustomOffsetsByUser();
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
  tells = TakeLogTurn(&reloadLines);
  if (tells && (taken & clearAsked) != 0) LogLine(clearLine);
  if (tells) LogLine(reloadLine);
  const FinishReload finish = {taken};
  LoadCustomOffsets();
}

void ConnectCustomOffsets() {
  ConnectDispatcher({.offer = OfferCustomWrite,
                     .isTaken = IsCustomTurnTaken,
                     .lookAfter = LookAfterCustomTicket,
                     .requestReload = RequestCustomReload});
}
