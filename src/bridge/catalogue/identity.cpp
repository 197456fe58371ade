// Texts that name aircraft, program and pilot.
#include "bridge/catalogue/identity.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "XPLMPlanes.h"
#include "XPLMUtilities.h"
#include "bridge/catalogue.h"

namespace {

int ReadTitle(const OffsetRow&, char* text) {
  ReadText(Block::Auxiliary, 0x0101, text, aircraftTextSize);
  return 1;
}

int SamePathCharacter(char a, char b) {
  if (a == '\\') a = '/';
  if (b == '\\') b = '/';
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// The aircraft's file without the simulator's own folder in front.
int ReadAircraftFile(const OffsetRow& row, char* text) {
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
  return 1;
}

constexpr OffsetRow Words(uint32_t offset, uint16_t length, const char* name, const char* meaning,
                          const char* note = "") {
  return {.offset = offset,
          .type = Stored::Text,
          .length = length,
          .name = name,
          .meaning = meaning,
          .show = Show::Text,
          .note = note};
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
    Words(0x3E00, 256, "simulator_folder", "folder of the simulator",
          "in the form that the asking client can open"),
    Words(0x3130, 12, "atc_number", "flight number for traffic control", "a write is kept in the settings"),
    Words(0x313C, 12, "atc_tail_number", "tail number for traffic control", "a write is kept in the settings"),
    Words(0x6F03, 8, "version", "version of this program", "not terminated"),
    {.offset = 0x3304,
     .type = Stored::U32,
     .name = "version_word",
     .member = 1,
     .meaning = "version word that clients ask for",
     .show = Show::Bits},
    {.offset = 0x3308,
     .type = Stored::U32,
     .name = "version_word",
     .member = 2,
     .meaning = "version word that clients ask for",
     .show = Show::Bits},
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
