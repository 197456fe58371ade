// Navigation aids around the field and what the receivers show of them.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "XPLMNavigation.h"
#include "flight/flight.h"
#include "world/distance.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

namespace {

// Place in runway terms: metres along the runway course from its centre, metres to the right of it.
struct AidRow {
  int type = 0;
  const char* id = "";
  int freq = 0;  // kHz for NDB, else 10 kHz
  double along = 0, right = 0;
  double height = fieldElevation;
  double heading = 0;
  const char* name = "";
};

// Like-typed ones lie together.
const AidRow aidRows[] = {
    {.type = xplm_Nav_Airport, .id = "XTAV", .name = "Standin Field"},
    {.type = xplm_Nav_Airport, .id = "XTAE", .along = 52000, .right = 21000, .height = 510, .name = "Eastwood"},
    {.type = xplm_Nav_NDB, .id = "SN", .freq = 375, .along = -8900, .heading = 0, .name = "Standin NDB"},
    {.type = xplm_Nav_NDB,
     .id = "EW",
     .freq = 416,
     .along = 52000,
     .right = 21000,
     .height = 510,
     .name = "Eastwood NDB"},
    {.type = xplm_Nav_VOR,
     .id = "STV",
     .freq = 11380,
     .along = 900,
     .right = 1200,
     .heading = -magneticVariation,
     .name = "Standin VOR/DME"},
    {.type = xplm_Nav_VOR,
     .id = "EWD",
     .freq = 11625,
     .along = 49000,
     .right = 26000,
     .height = 640,
     .heading = -magneticVariation,
     .name = "Eastwood VOR/DME"},
    {.type = xplm_Nav_ILS,
     .id = "ISF",
     .freq = 10950,
     .along = 1700,
     .heading = runwayCourse,
     .name = "Standin Field 07 ILS"},
    {.type = xplm_Nav_Localizer,
     .id = "ISW",
     .freq = 11090,
     .along = -1700,
     .heading = runwayCourse + 180,
     .name = "Standin Field 25 LOC"},
    {.type = xplm_Nav_GlideSlope,
     .id = "ISF",
     .freq = 10950,
     .along = -1200,
     .right = 120,
     .heading = 300000 + runwayCourse,
     .name = "Standin Field 07 GS"},
    {.type = xplm_Nav_OuterMarker,
     .id = "OM",
     .along = -8900,
     .heading = runwayCourse,
     .name = "Standin Field 07 OM"},
    {.type = xplm_Nav_MiddleMarker,
     .id = "MM",
     .along = -2600,
     .heading = runwayCourse,
     .name = "Standin Field 07 MM"},
    {.type = xplm_Nav_InnerMarker,
     .id = "IM",
     .along = -1850,
     .heading = runwayCourse,
     .name = "Standin Field 07 IM"},
    {.type = xplm_Nav_Fix, .id = "SABLE", .along = -18000, .height = 0, .name = "SABLE"},
    {.type = xplm_Nav_Fix, .id = "NORTA", .along = 6000, .right = -14000, .height = 0, .name = "NORTA"},
    {.type = xplm_Nav_DME,
     .id = "STV",
     .freq = 11380,
     .along = 900,
     .right = 1200,
     .name = "Standin VOR/DME DME"},
    {.type = xplm_Nav_DME,
     .id = "EWD",
     .freq = 11625,
     .along = 49000,
     .right = 26000,
     .height = 640,
     .name = "Eastwood VOR/DME DME"},
    {.type = xplm_Nav_DME,
     .id = "ISF",
     .freq = 10950,
     .along = -1200,
     .right = 120,
     .name = "Standin Field 07 DME-ILS"},
};

// What a receiver is tuned to, found anew once a second, on a new frequency and when the list changes.
struct Receiver {
  int freq = -1;
  int station = -1, glide = -1, dme = -1;  // indices into NavAids(), -1 none in reach
};
Receiver nav[2], adf[2];
double nextSearch = 0;

struct Eye {  // where the aircraft is
  double x = 0, z = 0, altitude = 0;
  double heading = 0;  // degrees true
};

struct Sight {         // from the aircraft to an aid
  double bearing = 0;  // degrees true
  double metres = 0;   // along the ground
  double slant = 0;
};

Sight Look(const NavAid& aid, const Eye& eye) {
  double ax, ay, az;
  WorldToLocal(static_cast<double>(aid.lat), static_cast<double>(aid.lon), static_cast<double>(aid.height), &ax,
               &ay, &az);
  Sight sight;
  double east = ax - eye.x, south = az - eye.z;
  sight.metres = Distance(east, south);
  sight.slant = Distance(sight.metres, static_cast<double>(aid.height) - eye.altitude);
  sight.bearing = std::atan2(east, -south) * radToDeg;
  return sight;
}

double Wrap180(double angle) { return std::remainder(angle, 360.0); }

double RangeOf(int type) {
  switch (type) {
    case xplm_Nav_VOR:
      return 150000;
    case xplm_Nav_NDB:
      return 110000;
    case xplm_Nav_GlideSlope:
      return 25000;
    default:
      return 60000;
  }
}

// Index of the nearest one in reach, -1 none.
int Nearest(int types, int freq, const Eye& eye) {
  int best = -1;
  double bestDistance = 1e12;
  const std::vector<NavAid>& aids = NavAids();
  for (size_t i = 0; i < aids.size(); i++) {
    if ((aids[i].type & types) == 0 || aids[i].freq != freq) continue;
    Sight sight = Look(aids[i], eye);
    // Written so that a position that is not a number receives nothing.
    if (!(sight.slant <= RangeOf(aids[i].type)) || !(sight.slant < bestDistance)) continue;
    best = static_cast<int>(i);
    bestDistance = sight.slant;
  }
  return best;
}

void Search(const Eye& eye) {
  for (int i = 0; i < 2; i++) {
    int freq = I(refs.navFreq[i]);
    bool works = I(refs.failNav[i]) != 6;
    nav[i].freq = freq;
    nav[i].station = works ? Nearest(xplm_Nav_VOR | xplm_Nav_ILS | xplm_Nav_Localizer, freq, eye) : -1;
    nav[i].glide = works ? Nearest(xplm_Nav_GlideSlope, freq, eye) : -1;
    nav[i].dme = works ? Nearest(xplm_Nav_DME, freq, eye) : -1;
    adf[i].freq = I(refs.adfFreq[i]);
    adf[i].station = I(refs.failAdf[i]) != 6 ? Nearest(xplm_Nav_NDB, adf[i].freq, eye) : -1;
  }
}

const NavAid* AidAt(int index) { return index >= 0 ? &NavAids()[static_cast<size_t>(index)] : nullptr; }

float Dots(double value) { return static_cast<float>(std::clamp(value, -2.5, 2.5)); }

// Codes of nav_type.
enum : int { codeNone = 0, codeNdb = 2, codeVor = 3, codeIls = 4, codeLocalizer = 5, codeDme = 12 };

// What one navigation receiver indicates.
struct Needles {
  float hdef = 0, vdef = 0;  // dots
  float direction = 0;       // of the station, degrees from the nose
  float slope = 0;           // degrees
  int fromTo = 0;            // 1 to, 2 from
  bool glide = false;        // the slope is received
  int code = codeNone;
  double courseTrue = 0;
};

// The needle across: positive when the course lies to the right.
void SeeCourse(const NavAid& aid, const Eye& eye, Needles* needles) {
  Sight sight = Look(aid, eye);
  needles->direction = static_cast<float>(Wrap180(sight.bearing - eye.heading));
  bool vor = aid.type == xplm_Nav_VOR;
  needles->code = vor ? codeVor : aid.type == xplm_Nav_ILS ? codeIls : codeLocalizer;
  if (!vor) needles->courseTrue = static_cast<double>(aid.heading);
  double off = Wrap180(sight.bearing - needles->courseTrue);
  bool to = std::fabs(off) <= 90;
  needles->fromTo = to ? 1 : 2;
  // Full scale, 2.5 dots, is 10 degrees of a VOR and 2.5 degrees of a localizer.
  needles->hdef = Dots((to ? off : -Wrap180(off + 180)) / (vor ? 4 : 1));
}

void SeeSlope(const NavAid& aid, const Eye& eye, Needles* needles) {
  Sight sight = Look(aid, eye);
  double packed = static_cast<double>(aid.heading);  // slope in degrees x 100,000 + course
  double angle = std::floor(packed / 1000) / 100;
  double course = packed - angle * 100000;
  if (!(std::fabs(Wrap180(sight.bearing - course)) < 30 && angle > 0)) return;
  needles->glide = true;
  needles->slope = static_cast<float>(angle);
  double own = std::atan2(eye.altitude - static_cast<double>(aid.height), sight.metres) * radToDeg;
  needles->vdef = Dots((own - angle) / 0.28);  // positive: the path lies below
}

void ShowNav(int i, const Eye& eye) {
  const NavAid* station = AidAt(nav[i].station);
  const NavAid* glide = AidAt(nav[i].glide);
  const NavAid* dme = AidAt(nav[i].dme);
  Needles needles;
  needles.courseTrue = static_cast<double>(F(refs.navObs[i])) - magneticVariation;
  if (station != nullptr) SeeCourse(*station, eye, &needles);
  if (glide != nullptr && needles.code == codeIls) SeeSlope(*glide, eye, &needles);
  F(refs.navHdef[i]) = needles.hdef;
  F(refs.navVdef[i]) = needles.vdef;
  F(refs.navDir[i]) = needles.direction;
  F(refs.navSlope[i]) = needles.slope;
  I(refs.navFromTo[i]) = needles.fromTo;
  I(refs.navCdi[i]) = needles.glide ? 1 : 0;
  I(refs.navHasDme[i]) = dme != nullptr ? 1 : 0;
  F(refs.navDme[i]) = dme != nullptr ? static_cast<float>(Look(*dme, eye).slant / 1852) : 0.0F;
  I(refs.navType, i) = needles.code == codeNone && dme != nullptr ? codeDme : needles.code;
  if (i == 1) F(refs.nav2Course) = static_cast<float>(std::fmod(needles.courseTrue + 360, 360));
  SetText(refs.navId[i], station != nullptr ? station->id.c_str() : "");
}

void ShowAdf(int i) {
  const NavAid* station = AidAt(adf[i].station);
  SetText(refs.adfId[i], station != nullptr ? station->id.c_str() : "");
  I(refs.navType, 2 + i) = station != nullptr ? codeNdb : codeNone;
}

struct MarkerRow {
  int type = 0;
  double reach = 0;  // metres along the ground
  DataRef** lamp = nullptr;
};
constexpr MarkerRow markerRows[] = {
    {.type = xplm_Nav_OuterMarker, .reach = 900, .lamp = &refs.marker[0]},
    {.type = xplm_Nav_MiddleMarker, .reach = 450, .lamp = &refs.marker[1]},
    {.type = xplm_Nav_InnerMarker, .reach = 250, .lamp = &refs.marker[2]},
};

void ShowMarkers(const Eye& eye) {
  for (const MarkerRow& row : markerRows) {
    bool over = false;
    for (const NavAid& aid : NavAids()) {
      if (aid.type != row.type) continue;
      Sight sight = Look(aid, eye);
      over |= sight.metres < row.reach && sight.slant < 1500;
    }
    I(*row.lamp) = over ? 1 : 0;
  }
}

}  // namespace

void FillNavAids() {
  std::vector<NavAid>& aids = NavAids();
  aids.clear();
  double course = runwayCourse * degToRad;
  for (const AidRow& row : aidRows) {
    double east = row.along * std::sin(course) + row.right * std::cos(course);
    double north = row.along * std::cos(course) - row.right * std::sin(course);
    double lat, lon, alt;
    LocalToWorld(east, 0, -north, &lat, &lon, &alt);
    NavAid aid;
    aid.type = row.type;
    aid.id = row.id;
    aid.freq = row.freq;
    aid.lat = static_cast<float>(lat);
    aid.lon = static_cast<float>(lon);
    aid.height = static_cast<float>(row.height);
    aid.heading = static_cast<float>(row.heading);
    aid.name = row.name;
    aids.push_back(aid);
  }
}

void WorldNavAidsChanged() {
  // Indices of the old list are void.
  for (int i = 0; i < 2; i++) nav[i] = adf[i] = Receiver{};
  nextSearch = 0;
}

void StepRadios(double now) {
  Eye eye = {.x = D(refs.x),
             .z = D(refs.z),
             .altitude = D(refs.elevation),
             .heading = static_cast<double>(F(refs.psi))};
  bool retuned = false;
  for (int i = 0; i < 2; i++) {
    retuned |= nav[i].freq != I(refs.navFreq[i]) || adf[i].freq != I(refs.adfFreq[i]);
  }
  if (retuned || now >= nextSearch || now + 1 < nextSearch) {
    Search(eye);
    nextSearch = now + 1;
  }
  for (int i = 0; i < 2; i++) {
    ShowNav(i, eye);
    ShowAdf(i);
  }
  I(refs.navType, 5) = nav[0].dme >= 0 || nav[1].dme >= 0 ? codeDme : codeNone;
  ShowMarkers(eye);
}

}  // namespace sim
