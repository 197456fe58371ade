// Navigation receivers: what is tuned, where it stands, what the needles show.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "bridge/catalogue.h"
#include "bridge/catalogue/angles.h"
#include "bridge/stations.h"

namespace {

// Units of the stored positions: 32 bits, 10001750 a quarter of the meridian, 2^32 the full turn.
constexpr double latitudeUnits = 10001750.0 / 90;
constexpr double longitudeUnits = 65536.0 * 65536.0 / 360;
constexpr double needleUnitsPerDot = 50.9;  // 2.5 dots are the full 127
constexpr Source heading = FloatAt(0x0580);
constexpr Source magneticVariation = FloatAt(0x02A0);                  // degrees, west positive
constexpr Source dmeDistance[2] = {FloatAt(0x0C29), FloatAt(0x0C33)};  // nautical miles
constexpr Source hasDme[2] = {IntAt(0x0C4D), IntAt(0x0C70)};

const NavRadio& Radio(const OffsetRow& row) { return navRadios[row.member - 1]; }

int ReadOne(const OffsetRow&, double* value) {
  *value = 1;
  return 1;
}

// --- Texts ---------------------------------------------------------------------------------------------
void CopyCut(char* text, const char* from, size_t longest) {
  std::memcpy(text, from, std::min(std::strlen(from), longest));
}

constexpr size_t longestIdent = 5;
int ReadNavIdent(const OffsetRow& row, char* text) {
  CopyCut(text, Radio(row).ident, longestIdent);
  return 1;
}
int ReadNavName(const OffsetRow& row, char* text) {
  CopyCut(text, Radio(row).station.name, 24);  // the last of 25 bytes is always 0
  return 1;
}
int ReadAdfIdent(const OffsetRow& row, char* text) {
  char ident[longestIdent + 1];
  ReadText(Block::Primary, row.offset, ident, sizeof ident);
  CopyCut(text, ident, longestIdent);
  return 1;
}

// Four characters: "05.2" below 100 miles, "123." from there on. Made from the same truncated tenths that
// the number shows, so that 99.96 does not grow to five characters.
int ReadDmeText(const OffsetRow& row, char* text) {
  const double distance = ReadSource(dmeDistance[row.member - 1]);
  const double tenths = std::isnan(distance) ? 0 : std::clamp(distance * 10, 0.0, 9999.0);
  const int t = static_cast<int>(static_cast<float>(tenths));  // the number's own rounding
  const auto digit = [t](int unit) { return static_cast<char>('0' + t / unit % 10); };
  if (t < 1000) {
    const char shown[] = {digit(100), digit(10), '.', digit(1)};
    std::memcpy(text, shown, sizeof shown);
  } else {
    const char shown[] = {digit(1000), digit(100), digit(10), '.'};
    std::memcpy(text, shown, sizeof shown);
  }
  return 1;
}

// --- Transmitters --------------------------------------------------------------------------------------
// On an ILS the position of the glide-slope transmitter, else that of the station.
const Transmitter& Beacon(const NavRadio& radio) {
  return radio.glideSlope.found ? radio.glideSlope : radio.station;
}
// The localizer; all zero for other stations.
const Transmitter& LocalizerOf(const NavRadio& radio) {
  static const Transmitter none = {};
  return ReceivesLocalizer(radio) ? radio.station : none;
}

int ReadBeaconLatitude(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).latitude * latitudeUnits;
  return 1;
}
int ReadBeaconLongitude(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).longitude * longitudeUnits;
  return 1;
}
int ReadBeaconHeight(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).height;
  return 1;
}
int ReadLocalizerLatitude(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).latitude * latitudeUnits;
  return 1;
}
int ReadLocalizerLongitude(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).longitude * longitudeUnits;
  return 1;
}
int ReadLocalizerHeight(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).height;
  return 1;
}
int ReadReciprocalCourse(const OffsetRow& row, double* value) {
  const Transmitter& localizer = LocalizerOf(Radio(row));
  *value = localizer.found ? Wrapped(localizer.heading + 180) * angle16 : 0;
  return 1;
}

// --- Bit words -----------------------------------------------------------------------------------------
int ReadLocalizerWord(const OffsetRow& row, double* value) {
  const NavRadio& radio = Radio(row);
  *value = (ReceivesLocalizer(radio) ? 0x02 : 0) | (radio.type != stationNone ? 0x80 : 0);
  return 1;
}
int ReadCodeWord(const OffsetRow& row, double* value) {
  const NavRadio& radio = Radio(row);
  *value = (IsOn(hasDme[row.member - 1]) ? 0x01 : 0) | (radio.type == stationNone ? 0x08 : 0) |
           (radio.type == stationIls ? 0x40 : 0) | (ReceivesLocalizer(radio) ? 0x80 : 0);
  return 1;
}
int ReadSignal(const OffsetRow& row, double* value) {
  *value = Radio(row).type != stationNone ? 256 : 0;
  return 1;
}
int ReadRadioStatus(const OffsetRow&, double* value) {
  *value = (navRadios[0].type != stationNone ? 0x0002 : 0) | (navRadios[1].type != stationNone ? 0x0004 : 0) |
           (adfRadios[0].type != stationNone ? 0x0008 : 0) | (IsOn(hasDme[0]) ? 0x0010 : 0) |
           (IsOn(hasDme[1]) ? 0x0020 : 0) | (navRadios[0].type == stationIls ? 0x0040 : 0) |
           (adfRadios[1].type != stationNone ? 0x0400 : 0) | (navRadios[1].type == stationIls ? 0x0800 : 0);
  return 1;
}

// --- Bearings ------------------------------------------------------------------------------------------
constexpr Source bearingToStation[2] = {FloatAt(0x0C50), FloatAt(0x0C60)};  // relative to the nose

int ReadRadial(const OffsetRow& row, double* value) {
  const double magneticBearing =
      ReadSource(heading) + ReadSource(bearingToStation[row.member - 1]) + ReadSource(magneticVariation);
  *value = Wrapped(magneticBearing + 180) * angle16;  // from the station
  return 1;
}
int ReadRelativeBearing(const OffsetRow& row, double* value) {
  const double bearing = ReadSource(bearingToStation[row.member - 1]) + ReadSource(magneticVariation);
  *value = std::trunc(Wrapped(bearing));
  return 1;
}

// --- Rows ----------------------------------------------------------------------------------------------
using ReadNumberOf = int (*)(const OffsetRow& row, double* value);

constexpr OffsetRow Derived(uint32_t offset, Stored type, const char* name, int member, const char* meaning,
                            Cycle cycle, ReadNumberOf read) {
  return {.offset = offset,
          .type = type,
          .name = name,
          .member = member,
          .meaning = meaning,
          .cycle = cycle,
          .read = read};
}
constexpr OffsetRow Measured(uint32_t offset, Stored type, const char* name, int member, const char* meaning,
                             const char* unit, double unitScale, double unitBias, Cycle cycle,
                             ReadNumberOf read) {
  OffsetRow row = Derived(offset, type, name, member, meaning, cycle, read);
  row.unit = unit;
  row.unitScale = unitScale;
  row.unitBias = unitBias;
  return row;
}
constexpr OffsetRow BitWord(uint32_t offset, Stored type, const char* name, int member, const char* meaning,
                            Cycle cycle, ReadNumberOf read, const char* note) {
  OffsetRow row = Derived(offset, type, name, member, meaning, cycle, read);
  row.show = Show::Bits;
  row.note = note;
  return row;
}
constexpr OffsetRow StationText(uint32_t offset, uint16_t length, const char* name, int member,
                                const char* meaning, Cycle cycle, int (*read)(const OffsetRow&, char*)) {
  return {.offset = offset,
          .type = Stored::Text,
          .length = length,
          .name = name,
          .member = member,
          .meaning = meaning,
          .show = Show::Text,
          .cycle = cycle,
          .readText = read};
}

// A needle and its unrounded copy.
constexpr OffsetRow Needle(uint32_t offset, Stored type, uint32_t slot, const char* name, int member,
                           const char* meaning) {
  return {.offset = offset,
          .type = type,
          .name = name,
          .member = member,
          .meaning = meaning,
          .unit = "dots",
          .unitScale = 1 / needleUnitsPerDot,
          .cycle = Cycle::C1,
          .source = FloatAt(slot),
          .factor = needleUnitsPerDot};
}

constexpr OffsetRow Plain(uint32_t offset, Stored type, uint32_t slot, const char* name, int member,
                          const char* meaning, Cycle cycle) {
  return {.offset = offset,
          .type = type,
          .name = name,
          .member = member,
          .meaning = meaning,
          .cycle = cycle,
          .source = IntAt(slot)};
}

constexpr OffsetRow Obs(uint32_t offset, int member) {
  return {.offset = offset,
          .type = Stored::U16,
          .name = "obs",
          .member = member,
          .meaning = "omni bearing selector",
          .unit = "deg",
          .cycle = Cycle::C7,
          .source = FloatAt(offset),
          .write = {.target = FloatAt(offset)},
          .note = "whole degrees magnetic; 360 stays 360"};
}

constexpr OffsetRow Slope(uint32_t offset, int member, Cycle cycle) {
  return {.offset = offset,
          .type = Stored::S16,
          .name = "glide_slope_angle",
          .member = member,
          .meaning = "glide-slope inclination, negative downwards",
          .unit = "deg",
          .unitScale = 1 / angle16,
          .cycle = cycle,
          .source = FloatAt(offset),
          .factor = -angle16};
}

// Where the offsets of one NAV radio lie. Both radios have the same set, in no regular distance.
struct NavPlaces {
  Cycle cycle;
  uint32_t beaconLatitude, beaconLongitude, beaconHeight;
  uint32_t localizerLatitude, localizerLongitude, localizerHeight;
  uint32_t reciprocal, slope, localizerWord, codeWord, available, ident, name;
};
constexpr NavPlaces places[2] = {
    {Cycle::C31Navigation, 0x085C, 0x0864, 0x086C, 0x0874, 0x0878, 0x087C, 0x0870, 0x0872, 0x0C4A, 0x0C4D,
     0x07A0, 0x3000, 0x3006},
    {Cycle::C31, 0x0858, 0x0860, 0x0868, 0x084C, 0x0850, 0x0854, 0x0844, 0x0846, 0x0C5A, 0x0C70, 0x07A4, 0x301F,
     0x3025},
};
constexpr const char* localizerBits = "bit 1 localizer tuned, 7 station received";
constexpr const char* codeBits = "bit 0 DME, 3 no signal, 6 glide slope, 7 localizer";

constexpr std::array<OffsetRow, 13> TunedRows(int member) {
  const NavPlaces& at = places[member - 1];
  const Cycle cycle = at.cycle;
  return {
      Measured(at.beaconLatitude, Stored::S32, "nav_latitude", member,
               "latitude of the station, on an ILS of the glide slope", "deg", 1 / latitudeUnits, 0, cycle,
               ReadBeaconLatitude),
      Measured(at.beaconLongitude, Stored::S32, "nav_longitude", member, "longitude of the same", "deg",
               1 / longitudeUnits, 0, cycle, ReadBeaconLongitude),
      Measured(at.beaconHeight, Stored::S32, "nav_elevation", member, "elevation of the same", "m", 1, 0, cycle,
               ReadBeaconHeight),
      Measured(at.localizerLatitude, Stored::S32, "localizer_latitude", member,
               "latitude of the localizer, 0 without one", "deg", 1 / latitudeUnits, 0, cycle,
               ReadLocalizerLatitude),
      Measured(at.localizerLongitude, Stored::S32, "localizer_longitude", member, "longitude of the localizer",
               "deg", 1 / longitudeUnits, 0, cycle, ReadLocalizerLongitude),
      Measured(at.localizerHeight, Stored::S32, "localizer_elevation", member, "elevation of the localizer",
               "m", 1, 0, cycle, ReadLocalizerHeight),
      Measured(at.reciprocal, Stored::U16, "localizer_reciprocal", member,
               "reciprocal course of the localizer, true; 0 without one", "deg", 1 / angle16, 0, cycle,
               ReadReciprocalCourse),
      Slope(at.slope, member, cycle),
      BitWord(at.localizerWord, Stored::U8, "localizer_bits", member, "localizer and signal", cycle,
              ReadLocalizerWord, localizerBits),
      BitWord(at.codeWord, Stored::U8, "nav_code", member, "station code", cycle, ReadCodeWord, codeBits),
      Derived(at.available, Stored::U32, "has_nav", member, "NAV receiver available, always 1", cycle, ReadOne),
      StationText(at.ident, 6, "nav_ident", member, "station identifier", cycle, ReadNavIdent),
      StationText(at.name, 25, "nav_name", member, "station name", cycle, ReadNavName),
  };
}

constexpr OffsetRow otherRows[] = {
    Needle(0x0C48, Stored::S8, 0x0C48, "cdi", 1, "course needle"),
    Needle(0x2AAC, Stored::F32, 0x0C48, "cdi_exact", 1, "course needle, unrounded"),
    Needle(0x0C49, Stored::S8, 0x0C49, "gsi", 1, "glide-slope needle"),
    Needle(0x2AB0, Stored::F32, 0x0C49, "gsi_exact", 1, "glide-slope needle, unrounded"),
    Needle(0x0C59, Stored::S8, 0x0C59, "cdi", 2, "course needle"),
    Needle(0x2AB4, Stored::F32, 0x0C59, "cdi_exact", 2, "course needle, unrounded"),
    Needle(0x0C6E, Stored::S8, 0x0C6E, "gsi", 2, "glide-slope needle"),
    Needle(0x2AB8, Stored::F32, 0x0C6E, "gsi_exact", 2, "glide-slope needle, unrounded"),

    Measured(0x0C50, Stored::U16, "radial", 1, "radial, magnetic, from the station", "deg", 1 / angle16, 0,
             Cycle::C3, ReadRadial),
    Measured(0x0C60, Stored::U16, "radial", 2, "radial, magnetic, from the station", "deg", 1 / angle16, 0,
             Cycle::C3, ReadRadial),
    Measured(0x0C56, Stored::U16, "nav_bearing", 1, "relative bearing to the station", "deg", 1, 0, Cycle::C3,
             ReadRelativeBearing),
    Measured(0x0C5C, Stored::U16, "nav_bearing", 2, "relative bearing to the station", "deg", 1, 0, Cycle::C3,
             ReadRelativeBearing),
    {.offset = 0x0BAC,
     .type = Stored::U16,
     .name = "inner_marker",
     .meaning = "over the inner marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = IntAt(0x0BAC)},
    {.offset = 0x0BAE,
     .type = Stored::U16,
     .name = "middle_marker",
     .meaning = "over the middle marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = IntAt(0x0BAE)},
    {.offset = 0x0BB0,
     .type = Stored::U16,
     .name = "outer_marker",
     .meaning = "over the outer marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = IntAt(0x0BB0)},

    Obs(0x0C4E, 1),
    Obs(0x0C5E, 2),

    {.offset = 0x0300,
     .type = Stored::U16,
     .name = "dme",
     .member = 1,
     .meaning = "DME distance",
     .unit = "nm",
     .unitScale = 0.1,
     .cycle = Cycle::C13,
     .source = FloatAt(0x0C29),
     .factor = 10},
    {.offset = 0x0306,
     .type = Stored::U16,
     .name = "dme",
     .member = 2,
     .meaning = "DME distance",
     .unit = "nm",
     .unitScale = 0.1,
     .cycle = Cycle::C13,
     .source = FloatAt(0x0C33),
     .factor = 10},
    Plain(0x0C4B, Stored::U8, 0x0C4B, "to_from", 1, "0 off, 1 to, 2 from", Cycle::C13),
    Plain(0x0C5B, Stored::U8, 0x0C5B, "to_from", 2, "0 off, 1 to, 2 from", Cycle::C13),
    Plain(0x0C4C, Stored::U8, 0x0C4C, "glide_slope", 1, "glide slope received", Cycle::C13),
    Plain(0x0C6F, Stored::U8, 0x0C6F, "glide_slope", 2, "glide slope received", Cycle::C13),
    StationText(0x0C29, 5, "dme_text", 1, "DME distance as text", Cycle::C13, ReadDmeText),
    StationText(0x0C33, 5, "dme_text", 2, "DME distance as text", Cycle::C13, ReadDmeText),

    BitWord(0x3300, Stored::U16, "radio_status", 0, "radio status", Cycle::C31Navigation, ReadRadioStatus,
            "bit 1 NAV1, 2 NAV2, 3 ADF1, 10 ADF2 receive a station; 4, 5 NAV1, NAV2 have DME; 6, 11 are tuned "
            "to an ILS"),

    StationText(0x303E, 6, "adf_ident", 1, "station identifier", Cycle::C59, ReadAdfIdent),
    StationText(0x02DC, 6, "adf_ident", 2, "station identifier", Cycle::C59, ReadAdfIdent),
    Derived(0x0C52, Stored::U32, "nav_signal", 1, "signal strength, 0 or 256", Cycle::C59, ReadSignal),
    Derived(0x0C62, Stored::U32, "nav_signal", 2, "signal strength, 0 or 256", Cycle::C59, ReadSignal),
};

constexpr auto tuned1 = TunedRows(1);
constexpr auto tuned2 = TunedRows(2);
constexpr size_t otherCount = std::size(otherRows);

constexpr auto rows = [] {
  std::array<OffsetRow, otherCount + tuned1.size() + tuned2.size()> all = {};
  auto end = std::copy(std::begin(otherRows), std::end(otherRows), all.begin());
  end = std::copy(tuned1.begin(), tuned1.end(), end);
  std::copy(tuned2.begin(), tuned2.end(), end);
  return all;
}();

}  // namespace

const RowTable navigationRows = {"Navigation", rows};
