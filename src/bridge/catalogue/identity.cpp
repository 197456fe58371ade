// Texts that name aircraft, program and pilot.
#include "bridge/catalogue/identity.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "XPLMPlanes.h"
#include "XPLMUtilities.h"
#include "bridge/catalogue.h"

namespace {

bool ReadTitle(const OffsetRow&, char* text) {
  ReadText(Bytes<"sim/aircraft/view/acf_descrip">, text, aircraftTextSize);
  return true;
}

bool SamePathCharacter(char a, char b) {
  if (a == '\\') a = '/';
  if (b == '\\') b = '/';
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// The aircraft's file without the simulator's own folder in front.
bool ReadAircraftFile(const OffsetRow& row, char* text) {
  char file[512] = {};
  char path[1024] = {};
  char folder[1024] = {};
  XPLMGetNthAircraftModel(XPLM_USER_AIRCRAFT, file, path);
  XPLMGetSystemPath(folder);
  path[sizeof path - 1] = 0;
  folder[sizeof folder - 1] = 0;
  const size_t length = std::strlen(folder);
  const char* shown = path;
  if (std::strlen(path) >= length && std::equal(folder, folder + length, path, SamePathCharacter)) {
    shown = path + length;
  }
  std::memcpy(text, shown, std::min<size_t>(std::strlen(shown), row.length - 1U));
  return true;
}

constexpr OffsetRow rows[] = {
    {.offset = aircraftTitleOffset,
     .type = Stored::Text,
     .length = aircraftTextSize,
     .name = "aircraft",
     .meaning = "title of the aircraft",
     .show = Show::Text,
     .cycle = Cycle::C313,
     .readText = ReadTitle},
    {.offset = 0x3C00,
     .type = Stored::Text,
     .length = aircraftTextSize,
     .name = "aircraft_file",
     .meaning = "file of the aircraft, without the simulator's folder",
     .show = Show::Text,
     .cycle = Cycle::C59,
     .readText = ReadAircraftFile},
    {.offset = 0x3E00,
     .type = Stored::Text,
     .length = 256,
     .name = "simulator_folder",
     .meaning = "folder of the simulator",
     .show = Show::Text,
     .note = "in the form that the asking client can open"},
    {.offset = 0x3130,
     .type = Stored::Text,
     .length = 12,
     .name = "atc_number",
     .meaning = "flight number for traffic control",
     .show = Show::Text,
     .dispatch = DispatchAction::AtcNumber,
     .note = "a write is kept in the settings"},
    {.offset = 0x313C,
     .type = Stored::Text,
     .length = 12,
     .name = "atc_tail_number",
     .meaning = "tail number for traffic control",
     .show = Show::Text,
     .dispatch = DispatchAction::AtcTailNumber,
     .note = "a write is kept in the settings"},
    {.offset = 0x6F03,
     .type = Stored::Text,
     .length = 8,
     .name = "version",
     .meaning = "version of this program",
     .show = Show::Text,
     .readOnly = true,
     .note = "not terminated"},
    {.offset = 0x3304,
     .type = Stored::U32,
     .name = "version_word",
     .member = 1,
     .meaning = "version word that clients ask for",
     .show = Show::Bits,
     .readOnly = true},
    {.offset = 0x3308,
     .type = Stored::U32,
     .name = "version_word",
     .member = 2,
     .meaning = "version word that clients ask for",
     .show = Show::Bits,
     .readOnly = true},
};

}  // namespace

void ReadAircraftTitle(char (&title)[aircraftTextSize]) {
  std::memset(title, 0, sizeof title);
  ReadTitle(rows[0], title);
  const size_t length = std::strlen(title);
  std::memset(title + length, 0, sizeof title - length);
}

void StoreAircraftTitle() {
  char title[aircraftTextSize];
  ReadAircraftTitle(title);
  CopyToMemory(aircraftTitleOffset, sizeof title, title);
}

const RowTable identityRows = {"Identity", rows};
