// The room settings/: the settings file "TAVRIX.ini", the user's settings in sections of "key = value" lines.
//
// The file lies in the plug-in's folder. All of it is read at enable, missing keys are completed with
// their defaults, and single keys are rewritten when a window or a client changes them; what clients change
// waits for a quiet moment, as they may do so every frame. A rewrite goes through a temporary file that takes
// the old one's place in one step, so a kill at any moment leaves either the old or the new file.
//
// Everything here is for the simulator's thread alone (settings_text.h is pure, for any thread). An unreadable
// or unwritable file is never fatal: a log line tells, once for each reason, and the defaults hold. What is no
// plain file (a folder, a pipe, a device) is neither read nor replaced, and no rewrite makes the file larger
// than what is read again (4 MB).
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

constexpr int maxSettingValue = 130;  // characters; longer values are cut when written
constexpr int maxFlapDetents = 10;

struct FlapDetent {
  double values[3];  // NaN: left out, as in "0.5,,0.6"
  int count;         // numbers given, 0 for an empty value (values[0] is 0 then)
};

// Who may see the status page.
enum class PageAccess { All, Local, Off };

struct Settings {
  int tuneValue;
  char serverAddress[20];
  bool clientMode;
  std::string allowedClients;  // addresses and networks, "" everyone
  bool networkWrites;
  PageAccess statusPage;
  char atcNumber[maxSettingValue + 1];
  char atcTailNumber[maxSettingValue + 1];
  char atcAirlineName[maxSettingValue + 1];
  char atcAircraftType[maxSettingValue + 1];
  double pushbackMaxSpeed;
  double toeBrakeNullZone;
  bool flapsActive;
  int flapDetents;  // 2..10
  FlapDetent flapDetent[maxFlapDetents];
};

extern Settings settings;

// Tells where the file lies (full path, shorter than 1,000 characters). Called once at start.
void SetSettingsPath(const char* path);
// Why the settings file could not be read or written last, in words that follow a colon; "" after a success.
const char* SettingsFault();
// Looks a key up within its section and copies the value (cut to size - 1) into the buffer. Returns the
// length of the value found; 0 for an empty value, -1 when the key, the section or the file is missing
// (the buffer is then "").
int ReadSetting(const char* section, const char* key, char* buffer, size_t size);
// Reads the whole file into `text`, for callers that want many keys (NextSettingLine and FindSetting of
// settings_text.h take it apart). Returns 1, 0 when there is no file, or -1 when it cannot be read (a log
// line tells why); `text` is empty then.
int ReadSettingsText(std::string* text);
// Sets one key, making section and key when missing; all other lines stay as they are. Values are cut at
// control characters and to 130 characters. A file that has vanished since it was read or written last is made
// anew as it was then, one that has never been there with all defaults. Returns true, or
// false (old file in place, a log line tells why). `settings` does not change.
bool WriteSetting(const char* section, const char* key, const char* value);
// The same for a key that a client changes, perhaps often: ReadSetting knows the value at once, the file gets
// it later, two seconds after the last change and ten seconds after the first one at the latest, all such keys
// in one rewrite (a WriteSetting takes them along). `now` is monotonic time in ns. Returns true, or
// false for names that no settings file can hold (a log line tells).
bool KeepSetting(const char* section, const char* key, const char* value, int64_t now);
// Whether changes wait to be written.
bool SettingsWait();
// Writes them when it is time to. What fails is tried again a minute later. Once a frame.
void SaveSettingsWhenDue(int64_t now);
// Writes them now (at disable). Returns true when nothing waits any more, or false (they wait on).
bool SaveWaitingSettings();
// Sets `settings` to the defaults, then creates a missing file, reads every key of the table and writes
// the default of each that is missing, all in one rewrite. A number of flap detents that is out of range leaves
// the previous one. Always leaves usable settings; returns true, or false
// when the file could neither be read nor written. An existing file that cannot be read is not touched.
bool ReadAllSettings();
