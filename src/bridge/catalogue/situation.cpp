// Situation and movie files: a client writes the file's name, then the command.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "XPLMUtilities.h"
#include "base/log.h"
#include "base/log_quiet.h"
#include "bridge/catalogue.h"
#include "platform/clock.h"

namespace {

constexpr uint32_t nameOffset = 0x3F04;
constexpr uint32_t nameSize = 252;
constexpr uint32_t loadCountOffset = 0x3F02;

// Whether the name that was written last is that of a situation.
bool nameIsSituation = false;

// Cuts the name at its first zero byte and clears what is left of an older, longer one.
void ApplyName(const OffsetRow&, const Staged& staged) {
  char name[nameSize] = {};
  const size_t width = std::min<size_t>(staged.width, nameSize - 1);
  const void* end = std::memchr(staged.bytes, 0, width);
  const size_t length =
      end == nullptr ? width : static_cast<size_t>(static_cast<const uint8_t*>(end) - staged.bytes);
  std::memcpy(name, staged.bytes, length);
  nameIsSituation = std::strstr(name, ".sit") != nullptr;
  CopyToMemory(nameOffset, nameSize, name);
}

// A client must reach no file but situations and movies below the simulator's folder.
bool IsHarmless(std::string_view name) {
  const bool isRelative = !name.starts_with('/') && !name.starts_with('\\');
  const bool hasEnding = name.ends_with(".sit") || name.ends_with(".smo");
  const bool climbs = name.find("..") != std::string_view::npos || name.find(':') != std::string_view::npos;
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
  return isRelative && hasEnding && !climbs && std::none_of(name.begin(), name.end(), isControl);
}

// At most one line a second and ten a minute: a client may write the command as often as it likes.
bool MayTell() {
  constexpr int64_t pauseNanoseconds = 1'000'000'000;
  static int64_t nextLine = 0;
  static QuietMinute lines = {
      .what = "TAVRIX->Situation files could not be used", .most = 10, .began = 0, .turns = 0};
  const int64_t now = MonotonicNanoseconds();
  if (now < nextLine) return false;
  nextLine = now + pauseNanoseconds;
  return TakeLogTurn(&lines);
}

void TellRefused(const char* name) {
  if (!MayTell()) return;
  LogOwn(
      "TAVRIX->Situation file \"%s\" of a client is refused: the name at 0x3F04 must end in .sit or .smo, be "
      "relative to the simulator's folder and hold neither \"..\" nor \":\" nor control characters\n",
      EscapedForLog(name).c_str());
}

void TellFailed(const char* what, const char* name, const char* remedy) {
  if (!MayTell()) return;
  LogOwn("TAVRIX->The simulator could not %s the situation file \"%s\" for a client: %s\n", what,
         EscapedForLog(name).c_str(), remedy);
}

void ApplyCommand(const OffsetRow&, const Staged& staged) {
  char name[nameSize];
  CopyFromMemory(nameOffset, nameSize, name);
  name[nameSize - 1] = 0;
  XPLMDataFileType kind = 0;
  if (nameIsSituation && std::strstr(name, ".sit") != nullptr) kind = xplm_DataFile_Situation;
  if (!nameIsSituation && std::strstr(name, ".smo") != nullptr) kind = xplm_DataFile_ReplayMovie;
  if (kind == 0 || !IsHarmless(name)) {
    TellRefused(name);
    return;
  }
  if (staged.integer != 0) {
    if (XPLMSaveDataFile(kind, name) == 0) TellFailed("save", name, "look whether its folder can be written");
    return;
  }
  if (XPLMLoadDataFile(kind, name) == 0) {
    TellFailed("load", name, "look whether it lies in the simulator's folder");
    return;
  }
  uint16_t count = 0;
  CopyFromMemory(loadCountOffset, sizeof count, &count);
  ++count;
  CopyToMemory(loadCountOffset, sizeof count, &count);
}

constexpr Choice situationCommands[] = {{0, "load"}, {1, "save"}};

// The name stands before the command, so that a client may stage both for the same frame.
constexpr OffsetRow rows[] = {
    {.offset = nameOffset,
     .type = Stored::Text,
     .length = nameSize,
     .name = "situation_file",
     .meaning = "name of a situation (.sit) or movie (.smo) file",
     .show = Show::Text,
     .write = {.apply = ApplyName},
     .dispatch = DispatchAction::StageText,
     .note =
         "relative to the simulator's folder, without '..' and ':'; at most 251 characters; other names are "
         "refused"},
    {.offset = 0x3F00,
     .type = Stored::U16,
     .name = "situation_command",
     .meaning = "loads or saves the file at 0x3F04",
     .choices = situationCommands,
     .write = {.apply = ApplyCommand},
     .dispatch = DispatchAction::StageAlways,
     .note = "any value but 0 saves; taken at every write, also of the value that stands there; send the name "
             "in a record of its own"},
    {.offset = loadCountOffset,
     .type = Stored::U16,
     .name = "situation_loads",
     .meaning = "files loaded so far",
     .readOnly = true},
};

}  // namespace

const RowTable situationRows = {"Situation files", rows};
