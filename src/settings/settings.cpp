#include "settings/settings.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/log.h"
#include "base/version.h"
#include "platform/system.h"
#include "settings/settings_text.h"

Settings settings;

namespace {

constexpr size_t longestPath = 1000;
constexpr size_t largestFile = 4u << 20;  // bytes; what is larger is no settings file
constexpr char temporarySuffix[] = ".tmp";

// Nanoseconds. A disk that refuses is not asked every few seconds, as each try may hold up the simulator.
constexpr int64_t second = 1'000'000'000;
constexpr int64_t quietTime = 2 * second;     // after the last change
constexpr int64_t longestWait = 10 * second;  // after the first one
constexpr int64_t retryTime = 60 * second;    // after a failed save

char settingsPath[longestPath];

enum class Kind {
  integer,     // int
  text,        // char[maxSettingValue + 1]
  address,     // char[sizeof Settings::serverAddress]
  yesNo,       // bool
  number,      // double
  active,      // bool: "Active"
  detents,     // int, taken from 2 to maxFlapDetents only
  flapDetent,  // FlapDetent
  list,        // std::string
  pageAccess,  // PageAccess
  kept,        // none: another room reads it
};

struct Row {
  const char* section;
  const char* key;
  const char* byDefault;
  Kind kind;
  void* target = nullptr;  // member of `settings`, of the kind's type
};

constexpr char general[] = "TAVRIX SETTINGS";
constexpr char atc[] = "TAVRIX ATC SETTINGS";
constexpr char axes[] = "TAVRIX AXIS SETTINGS";
constexpr char pushback[] = "PUSHBACK SETTINGS";
constexpr char other[] = "OTHER SETTINGS";
constexpr char flaps[] = "TAVRIX FLAPS SETTINGS";

constexpr const char* sections[] = {general, atc, axes, pushback, other, flaps};

constexpr char addressKey[] = "Server Address";
// Older versions wrote the key like this; files that were never rewritten keep their address under it.
constexpr char legacyAddressKey[] = "Server Adress";
constexpr char notAssigned[] = "Not assigned";

// In the order in which a new file lists them.
constexpr Row rows[] = {
    {.section = general,
     .key = "Tune value",
     .byDefault = "0",
     .kind = Kind::integer,
     .target = &settings.tuneValue},
    {.section = general,
     .key = addressKey,
     .byDefault = "192.168.0.1",
     .kind = Kind::address,
     .target = settings.serverAddress},
    {.section = general,
     .key = "TAVRIX2TAVRIX Client mode",
     .byDefault = "No",
     .kind = Kind::yesNo,
     .target = &settings.clientMode},
    {.section = general,
     .key = "Allowed clients",
     .byDefault = "",
     .kind = Kind::list,
     .target = &settings.allowedClients},
    {.section = general,
     .key = "Network writes",
     .byDefault = "Yes",
     .kind = Kind::yesNo,
     .target = &settings.networkWrites},
    {.section = general,
     .key = "Status page",
     .byDefault = "All",
     .kind = Kind::pageAccess,
     .target = &settings.statusPage},
    {.section = atc,
     .key = "ATC Number",
     .byDefault = "LH 5363",
     .kind = Kind::text,
     .target = settings.atcNumber},
    {.section = atc,
     .key = "ATC Tail Number",
     .byDefault = "D-ABIB",
     .kind = Kind::text,
     .target = settings.atcTailNumber},
    {.section = atc,
     .key = "ATC Airline name",
     .byDefault = "Lufthansa",
     .kind = Kind::text,
     .target = settings.atcAirlineName},
    {.section = atc,
     .key = "ATC Aircraft type",
     .byDefault = "Boeing 737-800",
     .kind = Kind::text,
     .target = settings.atcAircraftType},
    {.section = axes, .key = "Invert Elevator Axis", .byDefault = "No", .kind = Kind::kept},
    {.section = axes, .key = "Invert Aileron Axis", .byDefault = "No", .kind = Kind::kept},
    {.section = axes, .key = "Invert Rudder Axis", .byDefault = "No", .kind = Kind::kept},
    {.section = axes, .key = "Combine Rudder Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = axes, .key = "Combine Aileron Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = axes, .key = "Combine Elevator Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = axes, .key = "Combine Tiller Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = axes, .key = "Combine Left Toebrake Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = axes, .key = "Combine Right Toebrake Axis", .byDefault = notAssigned, .kind = Kind::kept},
    {.section = pushback,
     .key = "MaxSpeed",
     .byDefault = "-1.5",
     .kind = Kind::number,
     .target = &settings.pushbackMaxSpeed},
    {.section = other,
     .key = "ToeBrakeNullZonePercent",
     .byDefault = "0.10",
     .kind = Kind::number,
     .target = &settings.toeBrakeNullZone},
    {.section = flaps,
     .key = "Flap Settings",
     .byDefault = "Inactive",
     .kind = Kind::active,
     .target = &settings.flapsActive},
    {.section = flaps,
     .key = "Number of Detends",
     .byDefault = "02",
     .kind = Kind::detents,
     .target = &settings.flapDetents},
    {.section = flaps,
     .key = "Flap detend 1",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[0]},
    {.section = flaps,
     .key = "Flap detend 2",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[1]},
    {.section = flaps,
     .key = "Flap detend 3",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[2]},
    {.section = flaps,
     .key = "Flap detend 4",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[3]},
    {.section = flaps,
     .key = "Flap detend 5",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[4]},
    {.section = flaps,
     .key = "Flap detend 6",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[5]},
    {.section = flaps,
     .key = "Flap detend 7",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[6]},
    {.section = flaps,
     .key = "Flap detend 8",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[7]},
    {.section = flaps,
     .key = "Flap detend 9",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[8]},
    {.section = flaps,
     .key = "Flap detend 10",
     .byDefault = "",
     .kind = Kind::flapDetent,
     .target = &settings.flapDetent[9]},
};

// Copies a text, cut to size - 1, and terminates it.
void CopyText(char* buffer, size_t size, std::string_view text) {
  if (size == 0) return;
  const size_t length = text.size() < size ? text.size() : size - 1;
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

// A value that has no meaning is told, with what holds instead.
void TellUnusable(const Row& row, std::string_view value, const char* is, const char* instead) {
  LogOwn("TAVRIX->\"%s\" in TAVRIX.ini is %s, not %s: %s\n", row.key, is, EscapedForLog(value).c_str(),
         instead);
}

// A word that is none of the three shows the page to nobody: the user wanted to restrict it.
void TakePageAccess(const Row& row, std::string_view value) {
  PageAccess access = PageAccess::Off;
  if (value == "All") {
    access = PageAccess::All;
  } else if (value == "Local") {
    access = PageAccess::Local;
  } else if (value != "Off") {
    TellUnusable(row, value, "All, Local or Off", "it counts as Off");
  }
  *static_cast<PageAccess*>(row.target) = access;
}

void Take(const Row& row, std::string_view value) {
  switch (row.kind) {
    case Kind::integer:
      *static_cast<int*>(row.target) = ParseInteger(value);
      break;
    case Kind::text:
      CopyText(static_cast<char*>(row.target), maxSettingValue + 1, value);
      break;
    case Kind::address:
      CopyText(static_cast<char*>(row.target), sizeof settings.serverAddress, value);
      break;
    case Kind::yesNo:
      *static_cast<bool*>(row.target) = ParseYesNo(value);
      break;
    case Kind::kept:
      break;
    case Kind::number:
      *static_cast<double*>(row.target) = ParseNumber(value);
      break;
    case Kind::active:
      *static_cast<bool*>(row.target) = value == "Active";
      if (value != "Active" && value != "Inactive")
        TellUnusable(row, value, "Active or Inactive", "it counts as Inactive");
      break;
    case Kind::detents: {
      const int count = ParseInteger(value);
      if (count >= 2 && count <= maxFlapDetents) {
        *static_cast<int*>(row.target) = count;
      } else {
        TellUnusable(row, value, "2 to 10", "what was in force stays");
      }
      break;
    }
    case Kind::list:
      *static_cast<std::string*>(row.target) = value;
      break;
    case Kind::pageAccess:
      TakePageAccess(row, value);
      break;
    case Kind::flapDetent: {
      bool isGood = false;
      *static_cast<FlapDetent*>(row.target) = ParseFlapDetent(value, &isGood);
      if (!isGood) TellUnusable(row, value, "up to three numbers", "it counts as empty");
      break;
    }
  }
}

std::string DefaultText() {
  std::string text = pluginTitle;
  text += " ini file\n\n";
  for (const char* section : sections) {
    text += '[';
    text += section;
    text += "]\n";
  }
  for (const Row& row : rows) text = SetSettingInText(text, row.section, row.key, row.byDefault);
  return text;
}

// Reasons that the log has told already: the file is looked at several times at enable, and a client may change
// settings every frame. Forgotten as soon as the file can be read or written, and at every enable.
char toldUnreadable[300], toldUnwritable[300];
// The last one, for the windows.
char fault[400];

// The file as it was read or written last, all of it, buttons and comments included: what is in force.
std::string lastText;

// Whether the reason is a new one.
bool IsNews(char (&told)[300], const std::string& reason) {
  const std::string kept = reason.substr(0, sizeof told - 1);
  if (kept == told) return false;
  CopyText(told, sizeof told, kept);
  return true;
}

void SetFault(const char* what, const std::string& reason) {
  std::snprintf(fault, sizeof fault, "TAVRIX.ini cannot be %s (%s)", what, reason.c_str());
}

int ReportUnreadable(const std::string& reason, const char* remedy) {
  SetFault("read", reason);
  if (!IsNews(toldUnreadable, reason)) return -1;
  LogOwn("TAVRIX->Can't read the settings file %s (%s): %s; the defaults are used and the file is left alone\n",
         EscapedControls(settingsPath).c_str(), reason.c_str(), remedy);
  return -1;
}

// Without a remedy: the usual one.
bool ReportUnwritable(const char* path, const std::string& reason, const char* remedy = nullptr) {
  SetFault("written", reason);
  if (!IsNews(toldUnwritable, reason)) return false;
  LogOwn(
      "TAVRIX->Can't write the settings file %s (%s): %s; changes of the settings are lost at the end of this "
      "session\n",
      EscapedControls(path).c_str(), reason.c_str(),
      remedy != nullptr ? remedy : "make the file and its folder writable for your user");
  return false;
}

// As ReadSettingsText, but what the system throws comes through.
int LoadText(std::string* text) {
  text->clear();
  OpenFailure failure;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(OpenPlainFile(settingsPath, OpenMode::Read, &failure),
                                                   std::fclose);
  if (!file) {
    if (failure.missing) return 0;
    return ReportUnreadable(failure.reason, failure.remedy != nullptr
                                                ? failure.remedy
                                                : "make it a text file that your user may read");
  }
  std::string read;
  char part[16384];
  size_t length = 0;
  while (read.size() <= largestFile && (length = std::fread(part, 1, sizeof part, file.get())) > 0) {
    read.append(part, length);
  }
  if (std::ferror(file.get()) != 0) return ReportUnreadable(SystemErrorText(), "make it a readable text file");
  if (read.size() > largestFile)
    return ReportUnreadable("it is larger than 4 MB", "delete it or restore your own");
  if (read.starts_with("\xFF\xFE") || read.starts_with("\xFE\xFF")) {
    return ReportUnreadable("it is stored as UTF-16", "save it as ANSI or UTF-8 text");
  }
  toldUnreadable[0] = fault[0] = '\0';
  lastText = read;
  *text = std::move(read);
  return 1;
}

// Writes the whole file: into a temporary file beside it, down to the disk, then under its name.
bool SaveText(const std::string& text) {
  if (settingsPath[0] == '\0') return ReportUnwritable("TAVRIX.ini", "its path is missing or too long");
  if (text.size() > largestFile) {
    return ReportUnwritable(settingsPath, "it would grow beyond 4 MB and could not be read again",
                            "remove lines from it that are not needed");
  }
  if (!IsFileOrNothing(settingsPath)) {
    return ReportUnwritable(settingsPath, "no plain file stands under its name", "move away what stands there");
  }
  const std::string temporary = std::string(settingsPath) + temporarySuffix;
  OpenFailure failure;
  FILE* file = OpenPlainFile(temporary.c_str(), OpenMode::Empty, &failure);
  if (!file) return ReportUnwritable(temporary.c_str(), failure.reason, failure.remedy);
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size() && FlushToDisk(file);
  const char* remedy = SystemErrorRemedy();
  std::string reason = written ? "" : SystemErrorText();
  const bool closed = std::fclose(file) == 0;
  if (written && !closed) {
    remedy = SystemErrorRemedy();
    reason = SystemErrorText();
  }
  if (written && closed) {
    if (ReplaceFile(temporary.c_str(), settingsPath)) {
      toldUnwritable[0] = fault[0] = '\0';
      lastText = text;
      return true;
    }
    remedy = SystemErrorRemedy();
    reason = SystemErrorText();
  }
  std::remove(temporary.c_str());
  return ReportUnwritable(settingsPath, reason, remedy);
}

// Changes that are not in the file yet, each key once, in the order of their first change.
struct WaitingSetting {
  std::string section, key, value;
};
std::vector<WaitingSetting> waiting;
int64_t firstChange, lastChange, triedAt;  // monotonic, ns
bool saveFailed;                           // at triedAt

WaitingSetting* FindWaiting(std::string_view section, std::string_view key) {
  for (WaitingSetting& change : waiting) {
    if (AreSameSettings(change.section, change.key, section, key)) return &change;
  }
  return nullptr;
}

// The waiting changes, without the one of that name.
std::vector<SettingChange> WaitingBut(std::string_view section, std::string_view key) {
  std::vector<SettingChange> changes;
  for (const WaitingSetting& change : waiting) {
    if (AreSameSettings(change.section, change.key, section, key)) continue;
    changes.push_back({change.section, change.key, change.value});
  }
  return changes;
}

void ForgetWaiting() {
  waiting.clear();
  saveFailed = false;
}

// Writes the changes, which hold all waiting ones, in one rewrite of the file.
bool SaveChanges(std::span<const SettingChange> changes) {
  std::string text;
  const int loaded = LoadText(&text);
  if (loaded < 0) return false;
  if (loaded == 0) text = lastText.empty() ? DefaultText() : lastText;
  const std::string changed = SetSettingsInText(text, changes);
  if ((loaded == 0 || changed != text) && !SaveText(changed)) return false;
  ForgetWaiting();
  return true;
}

// The misspelled key counts while the right one is missing or holds the default, which is what an older
// file gets at the first start: the second start must not lose the address that the first one used.
std::string_view ChooseAddress(const Row& row, std::string_view value, const SettingQuery& legacy) {
  return value == row.byDefault && legacy.found && !legacy.value.empty() ? legacy.value : value;
}

bool ReadAll() {
  const Settings previous = settings;
  settings = {};
  for (const Row& row : rows) Take(row, row.byDefault);
  toldUnreadable[0] = toldUnwritable[0] = '\0';
  std::string file;
  const int loaded = LoadText(&file);
  if (loaded < 0) return false;
  if (loaded == 0) return SaveText(DefaultText());
  // Changes that could not be saved in the session before still count.
  const std::string text = waiting.empty() ? file : SetSettingsInText(file, WaitingBut({}, {}));

  constexpr size_t count = std::size(rows);
  SettingQuery queries[count + 1];
  for (size_t i = 0; i < count; ++i) queries[i] = {rows[i].section, rows[i].key, {}, false};
  queries[count] = {general, legacyAddressKey, {}, false};
  FindSettings(text, queries);
  std::vector<SettingChange> missing;
  for (size_t i = 0; i < count; ++i) {
    const Row& row = rows[i];
    std::string_view value = row.byDefault;
    if (queries[i].found) {
      value = queries[i].value;
    } else {
      missing.push_back({row.section, row.key, row.byDefault});
    }
    if (row.kind == Kind::address) value = ChooseAddress(row, value, queries[count]);
    // A number that is not taken leaves the previous one, which was read at an enable before.
    if (row.kind == Kind::detents && previous.flapDetents != 0) settings.flapDetents = previous.flapDetents;
    Take(row, value);
  }
  const std::string completed = missing.empty() ? text : SetSettingsInText(text, missing);
  if (completed == file || SaveText(completed)) ForgetWaiting();
  return true;
}

bool CanBeWritten(const char* section, const char* key) {
  if (AreSettingNames(section, key)) return true;
  std::snprintf(fault, sizeof fault, "no settings file can hold a key of that name");
  LogOwn("TAVRIX->The setting \"%s\" of section \"%s\" has no name that a settings file can hold\n",
         EscapedForLog(key).c_str(), EscapedForLog(section).c_str());
  return false;
}

bool ReportException(const char* what) {
  std::snprintf(fault, sizeof fault, "the memory is used up");
  LogOwn("TAVRIX->Out of memory while %s the settings file %s\n", what, EscapedControls(settingsPath).c_str());
  return false;
}

}  // namespace

void SetSettingsPath(const char* path) {
  // A path cut short would name another file: none then.
  CopyText(settingsPath, sizeof settingsPath, std::strlen(path) < sizeof settingsPath ? path : "");
  ForgetWaiting();
  lastText.clear();
  fault[0] = '\0';
}

const char* SettingsFault() { return fault; }

int ReadSettingsText(std::string* text) {
  try {
    return LoadText(text);
  } catch (...) {
    ReportException("reading");
    return -1;
  }
}

int ReadSetting(const char* section, const char* key, char* buffer, size_t size) {
  CopyText(buffer, size, "");
  try {
    std::string text;
    std::string_view value;
    if (const WaitingSetting* change = FindWaiting(section, key)) {
      value = change->value;
    } else if (LoadText(&text) <= 0 || !FindSetting(text, section, key, &value)) {
      return -1;
    }
    CopyText(buffer, size, value);
    return static_cast<int>(value.size());
  } catch (...) {
    ReportException("reading");
    return -1;
  }
}

bool WriteSetting(const char* section, const char* key, const char* value) {
  if (!CanBeWritten(section, key)) return false;
  try {
    std::vector<SettingChange> changes = WaitingBut(section, key);
    changes.push_back({section, key, value});
    return SaveChanges(changes);
  } catch (...) {
    return ReportException("writing");
  }
}

bool KeepSetting(const char* section, const char* key, const char* value, int64_t now) {
  if (!CanBeWritten(section, key)) return false;
  try {
    std::string kept(CutSettingValue(value));
    if (waiting.empty()) firstChange = now;
    if (WaitingSetting* change = FindWaiting(section, key)) {
      change->value = std::move(kept);
    } else {
      waiting.push_back({section, key, std::move(kept)});
    }
    lastChange = now;
    return true;
  } catch (...) {
    return ReportException("changing");
  }
}

bool SettingsWait() { return !waiting.empty(); }

void SaveSettingsWhenDue(int64_t now) {
  if (waiting.empty()) return;
  if (now - lastChange < quietTime && now - firstChange < longestWait) return;
  if (saveFailed && now - triedAt < retryTime) return;
  triedAt = now;
  SaveWaitingSettings();
}

bool SaveWaitingSettings() {
  if (waiting.empty()) return true;
  saveFailed = true;
  try {
    return SaveChanges(WaitingBut({}, {}));
  } catch (...) {
    return ReportException("writing");
  }
}

bool ReadAllSettings() {
  try {
    return ReadAll();
  } catch (...) {
    return ReportException("reading");
  }
}
