#include "settings/settings.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/system.h"
#include "settings/settings_text.h"
#include "shell/log.h"
#include "shell/version.h"

Settings settings;

namespace {

constexpr size_t longestPath = 1000;
constexpr size_t largestFile = 4u << 20;  // bytes; what is larger is no settings file
constexpr char temporarySuffix[] = ".tmp";

char settingsPath[longestPath];

enum class Kind {
  integer,     // int
  text,        // char[maxSettingValue + 1]
  address,     // char[sizeof Settings::serverAddress]
  yesNo,       // int
  axis,        // AxisCombination
  number,      // double
  active,      // int: 1 for "Active"
  detents,     // int, taken from 2 to maxFlapDetents only
  flapDetent,  // FlapDetent
  list,        // std::string
  pageAccess,  // PageAccess
};

struct Row {
  const char* section;
  const char* key;
  const char* byDefault;
  Kind kind;
  void* target;  // member of `settings`, of the kind's type
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
    {general, "Tune value", "0", Kind::integer, &settings.tuneValue},
    {general, addressKey, "192.168.0.1", Kind::address, settings.serverAddress},
    {general, "TAVRIX2TAVRIX Client mode", "No", Kind::yesNo, &settings.clientMode},
    {general, "Allowed clients", "", Kind::list, &settings.allowedClients},
    {general, "Network writes", "Yes", Kind::yesNo, &settings.networkWrites},
    {general, "Status page", "All", Kind::pageAccess, &settings.statusPage},
    {atc, "ATC Number", "LH 5363", Kind::text, settings.atcNumber},
    {atc, "ATC Tail Number", "D-ABIB", Kind::text, settings.atcTailNumber},
    {atc, "ATC Airline name", "Lufthansa", Kind::text, settings.atcAirlineName},
    {atc, "ATC Aircraft type", "Boeing 737-800", Kind::text, settings.atcAircraftType},
    {axes, "Invert Elevator Axis", "No", Kind::yesNo, &settings.invertElevator},
    {axes, "Invert Aileron Axis", "No", Kind::yesNo, &settings.invertAileron},
    {axes, "Invert Rudder Axis", "No", Kind::yesNo, &settings.invertRudder},
    {axes, "Combine Rudder Axis", notAssigned, Kind::axis, &settings.combineRudder},
    {axes, "Combine Aileron Axis", notAssigned, Kind::axis, &settings.combineAileron},
    {axes, "Combine Elevator Axis", notAssigned, Kind::axis, &settings.combineElevator},
    {axes, "Combine Tiller Axis", notAssigned, Kind::axis, &settings.combineTiller},
    {axes, "Combine Left Toebrake Axis", notAssigned, Kind::axis, &settings.combineLeftToeBrake},
    {axes, "Combine Right Toebrake Axis", notAssigned, Kind::axis, &settings.combineRightToeBrake},
    {pushback, "MaxSpeed", "-1.5", Kind::number, &settings.pushbackMaxSpeed},
    {other, "ToeBrakeNullZonePercent", "0.10", Kind::number, &settings.toeBrakeNullZone},
    {flaps, "Flap Settings", "Inactive", Kind::active, &settings.flapsActive},
    {flaps, "Number of Detends", "02", Kind::detents, &settings.flapDetents},
    {flaps, "Flap detend 1", "", Kind::flapDetent, &settings.flapDetent[0]},
    {flaps, "Flap detend 2", "", Kind::flapDetent, &settings.flapDetent[1]},
    {flaps, "Flap detend 3", "", Kind::flapDetent, &settings.flapDetent[2]},
    {flaps, "Flap detend 4", "", Kind::flapDetent, &settings.flapDetent[3]},
    {flaps, "Flap detend 5", "", Kind::flapDetent, &settings.flapDetent[4]},
    {flaps, "Flap detend 6", "", Kind::flapDetent, &settings.flapDetent[5]},
    {flaps, "Flap detend 7", "", Kind::flapDetent, &settings.flapDetent[6]},
    {flaps, "Flap detend 8", "", Kind::flapDetent, &settings.flapDetent[7]},
    {flaps, "Flap detend 9", "", Kind::flapDetent, &settings.flapDetent[8]},
    {flaps, "Flap detend 10", "", Kind::flapDetent, &settings.flapDetent[9]},
};

// Copies a text, cut to size - 1, and terminates it.
void CopyText(char* buffer, size_t size, std::string_view text) {
  if (size == 0) return;
  const size_t length = text.size() < size ? text.size() : size - 1;
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

// A word that is none of the three shows the page to nobody: the user wanted to restrict it.
void TakePageAccess(const Row& row, std::string_view value) {
  PageAccess access = PageAccess::Off;
  if (value == "All") {
    access = PageAccess::All;
  } else if (value == "Local") {
    access = PageAccess::Local;
  } else if (value != "Off") {
    LogOwn("TAVRIX->\"%s\" in TAVRIX.ini is All, Local or Off, not %s: it counts as Off\n", row.key,
           EscapedForLog(value).c_str());
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
      *static_cast<int*>(row.target) = ParseYesNo(value);
      break;
    case Kind::axis:
      *static_cast<AxisCombination*>(row.target) = ParseAxis(value);
      break;
    case Kind::number:
      *static_cast<double*>(row.target) = ParseNumber(value);
      break;
    case Kind::active:
      *static_cast<int*>(row.target) = value == "Active" ? 1 : 0;
      break;
    case Kind::detents: {
      const int count = ParseInteger(value);
      if (count >= 2 && count <= maxFlapDetents) *static_cast<int*>(row.target) = count;
      break;
    }
    case Kind::list:
      *static_cast<std::string*>(row.target) = value;
      break;
    case Kind::pageAccess:
      TakePageAccess(row, value);
      break;
    case Kind::flapDetent:
      *static_cast<FlapDetent*>(row.target) = ParseFlapDetent(value);
      break;
  }
}

std::string DefaultText() {
  std::string text = "TAVRIX Version ";
  text += pluginVersion;
  text += " ini file\n\n";
  for (const char* section : sections) {
    text += '[';
    text += section;
    text += "]\n";
  }
  for (const Row& row : rows) text = SetSettingInText(text, row.section, row.key, row.byDefault);
  return text;
}

int ReportUnreadable(const char* reason, const char* remedy) {
  LogOwn("TAVRIX->Can't read the settings file %s (%s): %s; the defaults are used and the file is left alone\n",
         settingsPath, reason, remedy);
  return -1;
}

int ReportUnwritable(const char* path, const std::string& reason) {
  LogOwn(
      "TAVRIX->Can't write the settings file %s (%s): make the file and its folder writable for your user; "
      "changes "
      "of the settings are lost at the end of this session\n",
      path, reason.c_str());
  return 0;
}

// As ReadSettingsText, but what the system throws comes through.
int LoadText(std::string* text) {
  text->clear();
  errno = 0;
  FILE* file = std::fopen(settingsPath, "rb");
  if (!file && errno == ENOENT) return 0;
  if (!file) return ReportUnreadable(SystemErrorText().c_str(), "make it readable for your user");
  std::string read;
  char part[4096];
  size_t length = 0;
  while (read.size() <= largestFile && (length = std::fread(part, 1, sizeof part, file)) > 0) {
    try {
      read.append(part, length);
    } catch (...) {
      std::fclose(file);
      throw;
    }
  }
  const bool failed = std::ferror(file) != 0;
  const std::string reason = failed ? SystemErrorText() : "";
  std::fclose(file);
  if (failed) return ReportUnreadable(reason.c_str(), "make it a readable text file");
  if (read.size() > largestFile)
    return ReportUnreadable("it is larger than 4 MB", "delete it or restore your own");
  if (read.starts_with("\xFF\xFE") || read.starts_with("\xFE\xFF")) {
    return ReportUnreadable("it is stored as UTF-16", "save it as ANSI or UTF-8 text");
  }
  *text = std::move(read);
  return 1;
}

// Writes the whole file: into a temporary file beside it, down to the disk, then under its name.
int SaveText(const std::string& text) {
  if (settingsPath[0] == '\0') return ReportUnwritable("TAVRIX.ini", "its path is missing or too long");
  const std::string temporary = std::string(settingsPath) + temporarySuffix;
  FILE* file = std::fopen(temporary.c_str(), "wb");
  if (!file) return ReportUnwritable(temporary.c_str(), SystemErrorText());
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size() && FlushToDisk(file);
  std::string reason = written ? "" : SystemErrorText();
  const bool closed = std::fclose(file) == 0;
  if (written && !closed) reason = SystemErrorText();
  if (written && closed) {
    if (ReplaceFile(temporary.c_str(), settingsPath)) return 1;
    reason = SystemErrorText();
  }
  std::remove(temporary.c_str());
  return ReportUnwritable(settingsPath, reason);
}

// The misspelled key counts while the right one is missing or holds the default, which is what an older
// file gets at the first start: the second start must not lose the address that the first one used.
std::string_view ChooseAddress(std::string_view text, const Row& row, std::string_view value) {
  std::string_view legacy;
  if (value != row.byDefault || !FindSetting(text, row.section, legacyAddressKey, &legacy)) return value;
  return legacy.empty() ? value : legacy;
}

int ReadAll() {
  settings = {};
  for (const Row& row : rows) Take(row, row.byDefault);
  std::string text;
  const int loaded = LoadText(&text);
  if (loaded < 0) return 0;
  if (loaded == 0) return SaveText(DefaultText());
  std::string completed = text;
  for (const Row& row : rows) {
    std::string_view value = row.byDefault;
    if (!FindSetting(text, row.section, row.key, &value)) {
      completed = SetSettingInText(completed, row.section, row.key, row.byDefault);
    }
    if (row.kind == Kind::address) value = ChooseAddress(text, row, value);
    Take(row, value);
  }
  if (completed != text) SaveText(completed);
  return 1;
}

int ReportException(const char* what) {
  LogOwn("TAVRIX->Out of memory while %s the settings file %s\n", what, settingsPath);
  return 0;
}

}  // namespace

void SetSettingsPath(const char* path) {
  // A path cut short would name another file: none then.
  CopyText(settingsPath, sizeof settingsPath, std::strlen(path) < sizeof settingsPath ? path : "");
}

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
    if (LoadText(&text) <= 0 || !FindSetting(text, section, key, &value)) return -1;
    CopyText(buffer, size, value);
    return static_cast<int>(value.size());
  } catch (...) {
    ReportException("reading");
    return -1;
  }
}

int WriteSetting(const char* section, const char* key, const char* value) {
  if (!AreSettingNames(section, key)) {
    LogOwn("TAVRIX->The setting \"%s\" of section \"%s\" has no name that a settings file can hold\n", key,
           section);
    return 0;
  }
  try {
    std::string text;
    const int loaded = LoadText(&text);
    if (loaded < 0) return 0;
    if (loaded == 0) text = DefaultText();
    const std::string changed = SetSettingInText(text, section, key, value);
    return loaded == 1 && changed == text ? 1 : SaveText(changed);
  } catch (...) {
    return ReportException("writing");
  }
}

int CreateDefaultSettings() {
  try {
    return SaveText(DefaultText());
  } catch (...) {
    return ReportException("writing");
  }
}

int ReadAllSettings() {
  try {
    return ReadAll();
  } catch (...) {
    return ReportException("reading");
  }
}
