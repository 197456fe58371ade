// Position, attitude, ground and altimeter. Writers run in this order: position before attitude.
#include <cmath>

#include "bridge/catalogue.h"
#include "bridge/catalogue/reposition.h"
#include "bridge/catalogue/units.h"

namespace {

// In this order of operations 90 degrees is exact.
double LatitudeWord(double degrees) { return degrees * quarterMeridian / 90 * twoTo32; }

// The antimeridian is stored as -180: +180 does not fit, and both are the same line.
double LongitudeWord(double degrees) {
  const double word = degrees * twoTo64 / 360;
  return word >= twoTo64 / 2 ? word - twoTo64 : word;
}

// The whole metres are the upper half of the fine altitude: below the sea they are one less, not truncated.
double WholeMetres(double metres) { return std::floor(std::trunc(metres * twoTo32) / twoTo32); }

// A full turn starts again at 0.
double HeadingWord(double degrees) {
  if (degrees < 0) degrees += 360;
  return std::fmod(std::trunc(degrees * twoTo32 / 360), twoTo32);
}

constexpr char inLocalAxes[] = "the simulator keeps places in local axes: reads back within a centimetre or so";
constexpr char inSinglePrecision[] = "the simulator keeps attitude in single precision";

double groundMetres;  // height of the ground above the sea

void TakeGround() {
  groundMetres = ReadSource(Double<"sim/flightmodel/position/elevation">) -
                 ReadSource(Float<"sim/flightmodel/position/y_agl">);
}

// Clients choose the altimeter's unit by the word at 0x0C18: 2 is metres. While the lock is busy the unit of
// the last look counts.
uint16_t altimeterUnit;

bool ReadAltimeter(const OffsetRow&, double* value) {
  TryCopyFromMemory(0x0C18, sizeof(altimeterUnit), &altimeterUnit);
  const double feet = ReadSource(Float<"sim/cockpit2/gauges/indicators/altitude_ft_pilot">);
  *value = altimeterUnit == 2 ? feet * metresPerFoot : feet;
  return true;
}

constexpr OffsetRow rows[] = {
    {.offset = 0x0558,
     .type = Stored::U32,
     .name = "reposition",
     .meaning = "opens a repositioning: forgets the last one",
     .write = {.apply = ApplyNewReposition},
     .dispatch = DispatchAction::StageTwoOrFour},
    {.offset = 0x0560,
     .type = Stored::S64,
     .name = "latitude",
     .meaning = "latitude",
     .positive = "north",
     .unit = "deg",
     .unitScale = 90 / (quarterMeridian * twoTo32),
     .cycle = Cycle::C1,
     .source = Double<"sim/flightmodel/position/latitude">,
     .convert = LatitudeWord,
     .write = {.group = ApplyPosition},
     .limits = {-quarterMeridian * twoTo32, quarterMeridian* twoTo32},
     .tolerance = {.steps = 48e6},
     .lossy = inLocalAxes,
     .note = "degrees x 10001750 x 2^32 / 90; moves the aircraft, with what else of the position is written"},
    {.offset = 0x0568,
     .type = Stored::S64,
     .name = "longitude",
     .meaning = "longitude",
     .positive = "east",
     .unit = "deg",
     .unitScale = 360 / twoTo64,
     .cycle = Cycle::C1,
     .source = Double<"sim/flightmodel/position/longitude">,
     .convert = LongitudeWord,
     .write = {.group = ApplyPosition},
     .tolerance = {.steps = 5.2e9},
     .lossy = inLocalAxes,
     .note = "degrees x 2^64 / 360; +180 is stored as -180"},
    {.offset = 0x0570,
     .type = Stored::S64,
     .name = "altitude",
     .meaning = "altitude above the sea",
     .reference = "mean sea level",
     .unit = "m",
     .unitScale = 1 / twoTo32,
     .cycle = Cycle::C1,
     .source = Double<"sim/flightmodel/position/elevation">,
     .factor = twoTo32,
     .write = {.group = ApplyPosition},
     .tolerance = {.steps = 43e6},
     .lossy = inLocalAxes,
     .note = "metres x 2^32; four bytes written here change the fraction of a metre only"},
    {.offset = 0x0574,
     .type = Stored::S32,
     .name = "altitude_m",
     .meaning = "altitude above the sea, whole metres",
     .reference = "mean sea level",
     .unit = "m",
     .cycle = Cycle::C1,
     .source = Double<"sim/flightmodel/position/elevation">,
     .convert = WholeMetres,
     .write = {.group = ApplyPosition},
     .tolerance = {.steps = 1},
     .lossy = inLocalAxes,
     .note = "upper half of the fine altitude; written alone it means exactly that many metres"},
    {.offset = 0x0578,
     .type = Stored::S32,
     .name = "pitch",
     .meaning = "pitch",
     .positive = "nose down",
     .unit = "deg",
     .unitScale = 360 / twoTo32,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/theta">,
     .factor = -(twoTo32 / 360),
     .write = {.group = ApplyAttitude},
     .tolerance = {.steps = 256},
     .lossy = inSinglePrecision},
    {.offset = 0x2F70,
     .type = Stored::F64,
     .name = "indicator_pitch",
     .meaning = "attitude indicator pitch",
     .positive = "nose down",
     .unit = "deg",
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/theta">,
     .factor = -1},
    {.offset = 0x057C,
     .type = Stored::S32,
     .name = "bank",
     .meaning = "bank",
     .positive = "left wing down",
     .unit = "deg",
     .unitScale = 360 / twoTo32,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/phi">,
     .factor = -(twoTo32 / 360),
     .write = {.group = ApplyAttitude},
     .tolerance = {.steps = 256},
     .lossy = inSinglePrecision},
    {.offset = 0x2F78,
     .type = Stored::F64,
     .name = "indicator_bank",
     .meaning = "attitude indicator bank",
     .positive = "left wing down",
     .unit = "deg",
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/phi">,
     .factor = -1},
    {.offset = 0x0580,
     .type = Stored::U32,
     .name = "heading",
     .meaning = "true heading",
     .reference = "true north",
     .unit = "deg",
     .unitScale = 360 / twoTo32,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/psi">,
     .convert = HeadingWord,
     .write = {.group = ApplyAttitude},
     .tolerance = {.steps = 256},
     .lossy = inSinglePrecision},
    {.offset = 0x0020,
     .type = Stored::S32,
     .name = "ground_altitude",
     .meaning = "height of the ground above the sea",
     .reference = "mean sea level",
     .unit = "m",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C1,
     .factor = 256,
     .prepared = &groundMetres,
     .inputs = sourcesOf<Double<"sim/flightmodel/position/elevation">, Float<"sim/flightmodel/position/y_agl">>,
     .prepare = TakeGround},
    {.offset = 0x0B4C,
     .type = Stored::S16,
     .name = "ground_altitude_m",
     .meaning = "height of the ground above the sea, whole metres",
     .reference = "mean sea level",
     .unit = "m",
     .cycle = Cycle::C1,
     .prepared = &groundMetres,
     .inputs = sourcesOf<Double<"sim/flightmodel/position/elevation">, Float<"sim/flightmodel/position/y_agl">>,
     .prepare = TakeGround},
    {.offset = 0x31E4,
     .type = Stored::S32,
     .name = "radio_altitude",
     .meaning = "height above the ground",
     .reference = "ground",
     .unit = "m",
     .unitScale = 1.0 / 65536,
     .cycle = Cycle::C1,
     .source = Float<"sim/flightmodel/position/y_agl">,
     .factor = 65536,
     .readOnly = true},
    {.offset = 0x3324,
     .type = Stored::S32,
     .name = "indicated_altitude",
     .meaning = "altimeter reading",
     .reference = "altimeter setting",
     .unit = "ft",
     .cycle = Cycle::C1,
     .read = ReadAltimeter,
     .inputs = sourcesOf<Float<"sim/cockpit2/gauges/indicators/altitude_ft_pilot">>,
     .note = "metres while the word at 0x0C18 is 2"},
    {.offset = 0x02A0,
     .type = Stored::S16,
     .name = "magnetic_variation",
     .meaning = "magnetic variation",
     .positive = "east",
     .unit = "deg",
     .unitScale = 1 / angle16,
     .cycle = Cycle::C313,
     .source = Float<"sim/flightmodel/position/magnetic_variation">,
     .factor = -angle16},
};

}  // namespace

const RowTable positionRows = {"Position and attitude", rows};
