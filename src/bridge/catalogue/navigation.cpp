// Navigation receivers: what is tuned, where it stands, what the needles show.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/units.h"
#include "bridge/stations.h"

namespace {

// Units of the stored positions: 32 bits, 10001750 a quarter of the meridian, 2^32 the full turn.
constexpr double latitudeUnits = quarterMeridian / 90;
constexpr double longitudeUnits = twoTo32 / 360;
constexpr double needleUnitsPerDot = 50.9;  // 2.5 dots are the full 127
constexpr Source heading = Float<"sim/flightmodel/position/psi">;
constexpr Source magneticVariation =
    Float<"sim/flightmodel/position/magnetic_variation">;  // degrees, west positive
constexpr Source dmeDistance[2] = {Float<"sim/cockpit/radios/nav1_dme_dist_m">,
                                   Float<"sim/cockpit/radios/nav2_dme_dist_m">};  // nautical miles
constexpr Source hasDme[2] = {Int<"sim/cockpit/radios/nav1_has_dme">, Int<"sim/cockpit/radios/nav2_has_dme">};

const NavRadio& Radio(const OffsetRow& row) { return navRadios[row.member - 1]; }

// --- Texts ---------------------------------------------------------------------------------------------
void CopyCut(char* text, const char* from, size_t longest) {
  std::memcpy(text, from, std::min(std::strlen(from), longest));
}

constexpr size_t longestIdent = 5;
bool ReadNavIdent(const OffsetRow& row, char* text) {
  CopyCut(text, Radio(row).ident, longestIdent);
  return true;
}
bool ReadNavName(const OffsetRow& row, char* text) {
  CopyCut(text, Radio(row).station.name, 24);  // the last of 25 bytes is always 0
  return true;
}
constexpr Source adfIdent[2] = {Bytes<"sim/cockpit2/radios/indicators/adf1_nav_id">,
                                Bytes<"sim/cockpit2/radios/indicators/adf2_nav_id">};
bool ReadAdfIdent(const OffsetRow& row, char* text) {
  char ident[longestIdent + 1];
  ReadText(adfIdent[row.member - 1], ident, sizeof ident);
  CopyCut(text, ident, longestIdent);
  return true;
}

// Four characters: "05.2" below 100 miles, "123." from there on. Made from the same truncated tenths that
// the number shows, so that 99.96 does not grow to five characters.
bool ReadDmeText(const OffsetRow& row, char* text) {
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
  return true;
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

bool ReadBeaconLatitude(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).latitude * latitudeUnits;
  return true;
}
bool ReadBeaconLongitude(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).longitude * longitudeUnits;
  return true;
}
bool ReadBeaconHeight(const OffsetRow& row, double* value) {
  *value = Beacon(Radio(row)).height;
  return true;
}
bool ReadLocalizerLatitude(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).latitude * latitudeUnits;
  return true;
}
bool ReadLocalizerLongitude(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).longitude * longitudeUnits;
  return true;
}
bool ReadLocalizerHeight(const OffsetRow& row, double* value) {
  *value = LocalizerOf(Radio(row)).height;
  return true;
}
bool ReadReciprocalCourse(const OffsetRow& row, double* value) {
  const Transmitter& localizer = LocalizerOf(Radio(row));
  *value = localizer.found ? Wrapped(localizer.heading + 180) * angle16 : 0;
  return true;
}

// --- Bit words -----------------------------------------------------------------------------------------
bool ReadLocalizerWord(const OffsetRow& row, double* value) {
  const NavRadio& radio = Radio(row);
  *value = (ReceivesLocalizer(radio) ? 0x02 : 0) | (radio.type != stationNone ? 0x80 : 0);
  return true;
}
bool ReadCodeWord(const OffsetRow& row, double* value) {
  const NavRadio& radio = Radio(row);
  *value = (IsOn(hasDme[row.member - 1]) ? 0x01 : 0) | (radio.type == stationNone ? 0x08 : 0) |
           (radio.type == stationIls ? 0x40 : 0) | (ReceivesLocalizer(radio) ? 0x80 : 0);
  return true;
}
bool ReadSignal(const OffsetRow& row, double* value) {
  *value = Radio(row).type != stationNone ? 256 : 0;
  return true;
}
bool ReadRadioStatus(const OffsetRow&, double* value) {
  *value = (navRadios[0].type != stationNone ? 0x0002 : 0) | (navRadios[1].type != stationNone ? 0x0004 : 0) |
           (adfRadios[0].type != stationNone ? 0x0008 : 0) | (IsOn(hasDme[0]) ? 0x0010 : 0) |
           (IsOn(hasDme[1]) ? 0x0020 : 0) | (navRadios[0].type == stationIls ? 0x0040 : 0) |
           (adfRadios[1].type != stationNone ? 0x0400 : 0) | (navRadios[1].type == stationIls ? 0x0800 : 0);
  return true;
}

// --- Bearings ------------------------------------------------------------------------------------------
constexpr Source bearingToStation[2] = {Float<"sim/cockpit/radios/nav1_dir_degt">,
                                        Float<"sim/cockpit/radios/nav2_dir_degt">};  // relative to the nose

bool ReadRadial(const OffsetRow& row, double* value) {
  const double magneticBearing =
      ReadSource(heading) + ReadSource(bearingToStation[row.member - 1]) + ReadSource(magneticVariation);
  *value = Wrapped(magneticBearing + 180) * angle16;  // from the station
  return true;
}
bool ReadRelativeBearing(const OffsetRow& row, double* value) {
  const double bearing = ReadSource(bearingToStation[row.member - 1]) + ReadSource(magneticVariation);
  *value = std::trunc(Wrapped(bearing));
  return true;
}

// --- Rows ----------------------------------------------------------------------------------------------
// Where the offsets of one NAV radio lie. Both radios have the same set, in no regular distance.
struct NavPlaces {
  Cycle cycle;
  uint32_t beaconLatitude, beaconLongitude, beaconHeight;
  uint32_t localizerLatitude, localizerLongitude, localizerHeight;
  uint32_t reciprocal, slope;
  Source slopeSource;
  std::span<const Source> identInputs;
  uint32_t localizerWord, codeWord, available, ident, name;
};
constexpr NavPlaces places[2] = {
    {.cycle = Cycle::C31Navigation,
     .beaconLatitude = 0x085C,
     .beaconLongitude = 0x0864,
     .beaconHeight = 0x086C,
     .localizerLatitude = 0x0874,
     .localizerLongitude = 0x0878,
     .localizerHeight = 0x087C,
     .reciprocal = 0x0870,
     .slope = 0x0872,
     .slopeSource = Float<"sim/cockpit/radios/nav1_slope_degt">,
     .identInputs =
         sourcesOf<Bytes<"sim/cockpit2/radios/indicators/nav1_nav_id">, Int<"sim/cockpit/radios/nav1_freq_hz">>,
     .localizerWord = 0x0C4A,
     .codeWord = 0x0C4D,
     .available = 0x07A0,
     .ident = 0x3000,
     .name = 0x3006},
    {.cycle = Cycle::C31,
     .beaconLatitude = 0x0858,
     .beaconLongitude = 0x0860,
     .beaconHeight = 0x0868,
     .localizerLatitude = 0x084C,
     .localizerLongitude = 0x0850,
     .localizerHeight = 0x0854,
     .reciprocal = 0x0844,
     .slope = 0x0846,
     .slopeSource = Float<"sim/cockpit/radios/nav2_slope_degt">,
     .identInputs =
         sourcesOf<Bytes<"sim/cockpit2/radios/indicators/nav2_nav_id">, Int<"sim/cockpit/radios/nav2_freq_hz">>,
     .localizerWord = 0x0C5A,
     .codeWord = 0x0C70,
     .available = 0x07A4,
     .ident = 0x301F,
     .name = 0x3025},
};
constexpr Choice localizerBits[] = {{1, "localizer tuned"}, {7, "station received"}};
constexpr Choice codeBits[] = {{0, "DME"}, {3, "no signal"}, {6, "glide slope"}, {7, "localizer"}};

constexpr std::array<OffsetRow, 13> TunedRows(int member) {
  const NavPlaces& at = places[member - 1];
  const Cycle cycle = at.cycle;
  return {{
      {.offset = at.beaconLatitude,
       .type = Stored::S32,
       .name = "nav_latitude",
       .member = member,
       .meaning = "latitude of the station, on an ILS of the glide slope",
       .positive = "north",
       .unit = "deg",
       .unitScale = 1 / latitudeUnits,
       .cycle = cycle,
       .read = ReadBeaconLatitude},
      {.offset = at.beaconLongitude,
       .type = Stored::S32,
       .name = "nav_longitude",
       .member = member,
       .meaning = "longitude of the same",
       .positive = "east",
       .unit = "deg",
       .unitScale = 1 / longitudeUnits,
       .cycle = cycle,
       .read = ReadBeaconLongitude},
      {.offset = at.beaconHeight,
       .type = Stored::S32,
       .name = "nav_elevation",
       .member = member,
       .meaning = "elevation of the same",
       .reference = "mean sea level",
       .unit = "m",
       .cycle = cycle,
       .read = ReadBeaconHeight},
      {.offset = at.localizerLatitude,
       .type = Stored::S32,
       .name = "localizer_latitude",
       .member = member,
       .meaning = "latitude of the localizer, 0 without one",
       .positive = "north",
       .unit = "deg",
       .unitScale = 1 / latitudeUnits,
       .cycle = cycle,
       .read = ReadLocalizerLatitude},
      {.offset = at.localizerLongitude,
       .type = Stored::S32,
       .name = "localizer_longitude",
       .member = member,
       .meaning = "longitude of the localizer",
       .positive = "east",
       .unit = "deg",
       .unitScale = 1 / longitudeUnits,
       .cycle = cycle,
       .read = ReadLocalizerLongitude},
      {.offset = at.localizerHeight,
       .type = Stored::S32,
       .name = "localizer_elevation",
       .member = member,
       .meaning = "elevation of the localizer",
       .reference = "mean sea level",
       .unit = "m",
       .cycle = cycle,
       .read = ReadLocalizerHeight},
      {.offset = at.reciprocal,
       .type = Stored::U16,
       .name = "localizer_reciprocal",
       .member = member,
       .meaning = "reciprocal course of the localizer; 0 without one",
       .reference = "true north",
       .unit = "deg",
       .unitScale = 1 / angle16,
       .cycle = cycle,
       .read = ReadReciprocalCourse},
      {.offset = at.slope,
       .type = Stored::S16,
       .name = "glide_slope_angle",
       .member = member,
       .meaning = "glide-slope inclination",
       .positive = "upwards",
       .unit = "deg",
       .unitScale = 1 / angle16,
       .cycle = cycle,
       .source = at.slopeSource,
       .factor = -angle16},
      {.offset = at.localizerWord,
       .type = Stored::U8,
       .name = "localizer_bits",
       .member = member,
       .meaning = "localizer and signal",
       .choices = localizerBits,
       .show = Show::Bits,
       .cycle = cycle,
       .read = ReadLocalizerWord},
      {.offset = at.codeWord,
       .type = Stored::U8,
       .name = "nav_code",
       .member = member,
       .meaning = "station code",
       .choices = codeBits,
       .show = Show::Bits,
       .cycle = cycle,
       .read = ReadCodeWord},
      {.offset = at.available,
       .type = Stored::U32,
       .name = "has_nav",
       .member = member,
       .meaning = "NAV receiver available, always 1",
       .cycle = cycle,
       .prepared = &one},
      {.offset = at.ident,
       .type = Stored::Text,
       .length = 6,
       .name = "nav_ident",
       .member = member,
       .meaning = "station identifier",
       .show = Show::Text,
       .cycle = cycle,
       .readText = ReadNavIdent,
       .inputs = at.identInputs,
       .elsewhere = "before 9.55 that of the station found by its frequency"},
      {.offset = at.name,
       .type = Stored::Text,
       .length = 25,
       .name = "nav_name",
       .member = member,
       .meaning = "station name",
       .show = Show::Text,
       .cycle = cycle,
       .readText = ReadNavName},
  }};
}

constexpr Choice toFrom[] = {{0, "off"}, {1, "to"}, {2, "from"}};
constexpr Choice signals[] = {{0, "none"}, {256, "received"}};
constexpr Choice statusBits[] = {
    {1, "NAV1 received"}, {2, "NAV2 received"},        {3, "ADF1 received"},  {4, "NAV1 has DME"},
    {5, "NAV2 has DME"},  {6, "NAV1 tuned to an ILS"}, {10, "ADF2 received"}, {11, "NAV2 tuned to an ILS"}};

constexpr OffsetRow otherRows[] = {
    {.offset = 0x0C48,
     .type = Stored::S8,
     .name = "cdi",
     .member = 1,
     .meaning = "course needle",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav1_hdef_dot">,
     .factor = needleUnitsPerDot,
     .readOnly = true},
    {.offset = 0x2AAC,
     .type = Stored::F32,
     .name = "cdi_exact",
     .member = 1,
     .meaning = "course needle, unrounded",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav1_hdef_dot">,
     .factor = needleUnitsPerDot},
    {.offset = 0x0C49,
     .type = Stored::S8,
     .name = "gsi",
     .member = 1,
     .meaning = "glide-slope needle",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav1_vdef_dot">,
     .factor = needleUnitsPerDot,
     .readOnly = true},
    {.offset = 0x2AB0,
     .type = Stored::F32,
     .name = "gsi_exact",
     .member = 1,
     .meaning = "glide-slope needle, unrounded",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav1_vdef_dot">,
     .factor = needleUnitsPerDot},
    {.offset = 0x0C59,
     .type = Stored::S8,
     .name = "cdi",
     .member = 2,
     .meaning = "course needle",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav2_hdef_dot">,
     .factor = needleUnitsPerDot,
     .readOnly = true},
    {.offset = 0x2AB4,
     .type = Stored::F32,
     .name = "cdi_exact",
     .member = 2,
     .meaning = "course needle, unrounded",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav2_hdef_dot">,
     .factor = needleUnitsPerDot},
    {.offset = 0x0C6E,
     .type = Stored::S8,
     .name = "gsi",
     .member = 2,
     .meaning = "glide-slope needle",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav2_vdef_dot">,
     .factor = needleUnitsPerDot,
     .readOnly = true},
    {.offset = 0x2AB8,
     .type = Stored::F32,
     .name = "gsi_exact",
     .member = 2,
     .meaning = "glide-slope needle, unrounded",
     .unit = "dots",
     .unitScale = 1 / needleUnitsPerDot,
     .cycle = Cycle::C1,
     .source = Float<"sim/cockpit/radios/nav2_vdef_dot">,
     .factor = needleUnitsPerDot},

    {.offset = 0x0C50,
     .type = Stored::U16,
     .name = "radial",
     .member = 1,
     .meaning = "radial from the station",
     .reference = "magnetic north",
     .unit = "deg",
     .unitScale = 1 / angle16,
     .cycle = Cycle::C3,
     .read = ReadRadial,
     .readOnly = true},
    {.offset = 0x0C60,
     .type = Stored::U16,
     .name = "radial",
     .member = 2,
     .meaning = "radial from the station",
     .reference = "magnetic north",
     .unit = "deg",
     .unitScale = 1 / angle16,
     .cycle = Cycle::C3,
     .read = ReadRadial,
     .readOnly = true},
    {.offset = 0x0C56,
     .type = Stored::U16,
     .name = "nav_bearing",
     .member = 1,
     .meaning = "relative bearing to the station",
     .reference = "nose of the aircraft",
     .unit = "deg",
     .cycle = Cycle::C3,
     .read = ReadRelativeBearing},
    {.offset = 0x0C5C,
     .type = Stored::U16,
     .name = "nav_bearing",
     .member = 2,
     .meaning = "relative bearing to the station",
     .reference = "nose of the aircraft",
     .unit = "deg",
     .cycle = Cycle::C3,
     .read = ReadRelativeBearing},
    {.offset = 0x0BAC,
     .type = Stored::U16,
     .name = "inner_marker",
     .meaning = "over the inner marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = Int<"sim/cockpit/misc/over_inner_marker">},
    {.offset = 0x0BAE,
     .type = Stored::U16,
     .name = "middle_marker",
     .meaning = "over the middle marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = Int<"sim/cockpit/misc/over_middle_marker">},
    {.offset = 0x0BB0,
     .type = Stored::U16,
     .name = "outer_marker",
     .meaning = "over the outer marker",
     .show = Show::Flag,
     .cycle = Cycle::C3,
     .source = Int<"sim/cockpit/misc/over_outer_marker">},

    {.offset = 0x0C4E,
     .type = Stored::U16,
     .name = "obs",
     .member = 1,
     .meaning = "omni bearing selector",
     .reference = "magnetic north",
     .unit = "deg",
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit/radios/nav1_obs_degm">,
     .write = {.target = Float<"sim/cockpit/radios/nav1_obs_degm">},
     .note = "whole degrees; 360 stays 360"},
    {.offset = 0x0C5E,
     .type = Stored::U16,
     .name = "obs",
     .member = 2,
     .meaning = "omni bearing selector",
     .reference = "magnetic north",
     .unit = "deg",
     .cycle = Cycle::C7,
     .source = Float<"sim/cockpit/radios/nav2_obs_degm">,
     .write = {.target = Float<"sim/cockpit/radios/nav2_obs_degm">},
     .note = "whole degrees; 360 stays 360"},

    {.offset = 0x0300,
     .type = Stored::U16,
     .name = "dme",
     .member = 1,
     .meaning = "DME distance",
     .unit = "nm",
     .unitScale = 0.1,
     .cycle = Cycle::C13,
     .source = Float<"sim/cockpit/radios/nav1_dme_dist_m">,
     .factor = 10},
    {.offset = 0x0306,
     .type = Stored::U16,
     .name = "dme",
     .member = 2,
     .meaning = "DME distance",
     .unit = "nm",
     .unitScale = 0.1,
     .cycle = Cycle::C13,
     .source = Float<"sim/cockpit/radios/nav2_dme_dist_m">,
     .factor = 10},
    {.offset = 0x0C4B,
     .type = Stored::U8,
     .name = "to_from",
     .member = 1,
     .meaning = "to or from the station",
     .choices = toFrom,
     .cycle = Cycle::C13,
     .source = Int<"sim/cockpit/radios/nav1_fromto">},
    {.offset = 0x0C5B,
     .type = Stored::U8,
     .name = "to_from",
     .member = 2,
     .meaning = "to or from the station",
     .choices = toFrom,
     .cycle = Cycle::C13,
     .source = Int<"sim/cockpit/radios/nav2_fromto">},
    {.offset = 0x0C4C,
     .type = Stored::U8,
     .name = "glide_slope",
     .member = 1,
     .meaning = "glide slope received",
     .cycle = Cycle::C13,
     .source = Int<"sim/cockpit/radios/nav1_CDI">},
    {.offset = 0x0C6F,
     .type = Stored::U8,
     .name = "glide_slope",
     .member = 2,
     .meaning = "glide slope received",
     .cycle = Cycle::C13,
     .source = Int<"sim/cockpit/radios/nav2_CDI">},
    {.offset = 0x0C29,
     .type = Stored::Text,
     .length = 5,
     .name = "dme_text",
     .member = 1,
     .meaning = "DME distance as text",
     .show = Show::Text,
     .cycle = Cycle::C13,
     .readText = ReadDmeText},
    {.offset = 0x0C33,
     .type = Stored::Text,
     .length = 5,
     .name = "dme_text",
     .member = 2,
     .meaning = "DME distance as text",
     .show = Show::Text,
     .cycle = Cycle::C13,
     .readText = ReadDmeText},

    {.offset = 0x3300,
     .type = Stored::U16,
     .name = "radio_status",
     .meaning = "radio status",
     .choices = statusBits,
     .show = Show::Bits,
     .cycle = Cycle::C31Navigation,
     .read = ReadRadioStatus},

    {.offset = 0x303E,
     .type = Stored::Text,
     .length = 6,
     .name = "adf_ident",
     .member = 1,
     .meaning = "station identifier",
     .show = Show::Text,
     .cycle = Cycle::C59,
     .readText = ReadAdfIdent,
     .inputs = sourcesOf<adfIdent[0]>},
    {.offset = 0x02DC,
     .type = Stored::Text,
     .length = 6,
     .name = "adf_ident",
     .member = 2,
     .meaning = "station identifier",
     .show = Show::Text,
     .cycle = Cycle::C59,
     .readText = ReadAdfIdent,
     .inputs = sourcesOf<adfIdent[1]>},
    {.offset = 0x0C52,
     .type = Stored::U32,
     .name = "nav_signal",
     .member = 1,
     .meaning = "signal strength",
     .choices = signals,
     .cycle = Cycle::C59,
     .read = ReadSignal},
    {.offset = 0x0C62,
     .type = Stored::U32,
     .name = "nav_signal",
     .member = 2,
     .meaning = "signal strength",
     .choices = signals,
     .cycle = Cycle::C59,
     .read = ReadSignal},
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
