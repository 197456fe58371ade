// Navigation aids around the field and what the receivers show of them.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "flight/flight.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

namespace {

enum Type {
  Airport = 1,
  Ndb = 2,
  Vor = 4,
  Ils = 8,
  Loc = 16,
  Gs = 32,
  Om = 64,
  Mm = 128,
  Im = 256,
  Fix = 512,
  Dme = 1024
};

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
    {.type = Airport, .id = "XTAV", .name = "Standin Field"},
    {.type = Airport, .id = "XTAE", .along = 52000, .right = 21000, .height = 510, .name = "Eastwood"},
    {.type = Ndb, .id = "SN", .freq = 375, .along = -8900, .heading = 0, .name = "Standin NDB"},
    {.type = Ndb,
     .id = "EW",
     .freq = 416,
     .along = 52000,
     .right = 21000,
     .height = 510,
     .name = "Eastwood NDB"},
    {.type = Vor,
     .id = "STV",
     .freq = 11380,
     .along = 900,
     .right = 1200,
     .heading = -magneticVariation,
     .name = "Standin VOR/DME"},
    {.type = Vor,
     .id = "EWD",
     .freq = 11625,
     .along = 49000,
     .right = 26000,
     .height = 640,
     .heading = -magneticVariation,
     .name = "Eastwood VOR/DME"},
    {.type = Ils,
     .id = "ISF",
     .freq = 10950,
     .along = 1700,
     .heading = runwayCourse,
     .name = "Standin Field 07 ILS"},
    {.type = Loc,
     .id = "ISW",
     .freq = 11090,
     .along = -1700,
     .heading = runwayCourse + 180,
     .name = "Standin Field 25 LOC"},
    {.type = Gs,
     .id = "ISF",
     .freq = 10950,
     .along = -1200,
     .right = 120,
     .heading = 300000 + runwayCourse,
     .name = "Standin Field 07 GS"},
    {.type = Om, .id = "OM", .along = -8900, .heading = runwayCourse, .name = "Standin Field 07 OM"},
    {.type = Mm, .id = "MM", .along = -2600, .heading = runwayCourse, .name = "Standin Field 07 MM"},
    {.type = Im, .id = "IM", .along = -1850, .heading = runwayCourse, .name = "Standin Field 07 IM"},
    {.type = Fix, .id = "SABLE", .along = -18000, .height = 0, .name = "SABLE"},
    {.type = Fix, .id = "NORTA", .along = 6000, .right = -14000, .height = 0, .name = "NORTA"},
    {.type = Dme, .id = "STV", .freq = 11380, .along = 900, .right = 1200, .name = "Standin VOR/DME DME"},
    {.type = Dme,
     .id = "EWD",
     .freq = 11625,
     .along = 49000,
     .right = 26000,
     .height = 640,
     .name = "Eastwood VOR/DME DME"},
    {.type = Dme, .id = "ISF", .freq = 10950, .along = -1200, .right = 120, .name = "Standin Field 07 DME-ILS"},
};

// What a receiver is tuned to, found anew once a second, on a new frequency and when the list changes.
struct Receiver {
  int freq = -1;
  int station = -1, glide = -1, dme = -1;  // indices into NavAids(), -1 none in reach
};
Receiver nav[2], adf[2];
double nextSearch = 0;

struct Sight {         // from the aircraft to an aid
  double bearing = 0;  // degrees true
  double metres = 0;   // along the ground
  double slant = 0;
};

Sight Look(const NavAid& aid, double x, double z, double altitude) {
  double ax, ay, az;
  WorldToLocal(static_cast<double>(aid.lat), static_cast<double>(aid.lon), static_cast<double>(aid.height), &ax,
               &ay, &az);
  Sight sight;
  double east = ax - x, south = az - z;
  sight.metres = std::hypot(east, south);
  sight.slant = std::hypot(sight.metres, static_cast<double>(aid.height) - altitude);
  sight.bearing = std::atan2(east, -south) * radToDeg;
  return sight;
}

double Wrap180(double angle) { return std::remainder(angle, 360.0); }

double RangeOf(int type) {
  switch (type) {
    case Vor:
      return 150000;
    case Ndb:
      return 110000;
    case Gs:
      return 25000;
    default:
      return 60000;
  }
}

int Nearest(int types, int freq, double x, double z, double altitude) {
  int best = -1;
  double bestDistance = 1e12;
  const std::vector<NavAid>& aids = NavAids();
  for (size_t i = 0; i < aids.size(); i++) {
    if ((aids[i].type & types) == 0 || aids[i].freq != freq) continue;
    Sight sight = Look(aids[i], x, z, altitude);
    // Written so that a position that is not a number receives nothing.
    if (!(sight.slant <= RangeOf(aids[i].type)) || !(sight.slant < bestDistance)) continue;
    best = static_cast<int>(i);
    bestDistance = sight.slant;
  }
  return best;
}

void Search(double x, double z, double altitude) {
  for (int i = 0; i < 2; i++) {
    int freq = I(refs.navFreq[i]);
    bool works = I(refs.failNav[i]) != 6;
    nav[i].freq = freq;
    nav[i].station = works ? Nearest(Vor | Ils | Loc, freq, x, z, altitude) : -1;
    nav[i].glide = works ? Nearest(Gs, freq, x, z, altitude) : -1;
    nav[i].dme = works ? Nearest(Dme, freq, x, z, altitude) : -1;
    adf[i].freq = I(refs.adfFreq[i]);
    adf[i].station = I(refs.failAdf[i]) != 6 ? Nearest(Ndb, adf[i].freq, x, z, altitude) : -1;
  }
}

float Dots(double value) { return static_cast<float>(std::clamp(value, -2.5, 2.5)); }

// Needles of one navigation receiver.
void ShowNav(int i, double x, double z, double altitude, double heading) {
  const std::vector<NavAid>& aids = NavAids();
  const Receiver& receiver = nav[i];
  float hdef = 0, vdef = 0, direction = 0, slope = 0;
  int fromTo = 0, glide = 0, code = 0;
  double courseTrue = static_cast<double>(F(refs.navObs[i])) - magneticVariation;
  const char* id = "";
  if (receiver.station >= 0) {
    const NavAid& aid = aids[static_cast<size_t>(receiver.station)];
    Sight sight = Look(aid, x, z, altitude);
    id = aid.id.c_str();
    direction = static_cast<float>(Wrap180(sight.bearing - heading));
    if (aid.type == Vor) {
      code = 3;
      // Positive: the course lies to the right. Full scale, 2.5 dots, is 10 degrees.
      double off = Wrap180(sight.bearing - courseTrue);
      bool to = std::fabs(off) <= 90;
      fromTo = to ? 1 : 2;
      hdef = Dots((to ? off : -Wrap180(off + 180)) / 4);
    } else {
      code = aid.type == Ils ? 4 : 5;
      courseTrue = static_cast<double>(aid.heading);
      double off = Wrap180(sight.bearing - courseTrue);
      bool front = std::fabs(off) <= 90;
      fromTo = front ? 1 : 2;
      hdef = Dots(front ? off : -Wrap180(off + 180));
    }
  }
  if (receiver.glide >= 0 && code == 4) {
    const NavAid& aid = aids[static_cast<size_t>(receiver.glide)];
    Sight sight = Look(aid, x, z, altitude);
    double packed = static_cast<double>(aid.heading);  // slope in degrees x 100,000 + course
    double angle = std::floor(packed / 1000) / 100;
    double course = packed - angle * 100000;
    if (std::fabs(Wrap180(sight.bearing - course)) < 30 && angle > 0) {
      glide = 1;
      slope = static_cast<float>(angle);
      double own = std::atan2(altitude - static_cast<double>(aid.height), sight.metres) * radToDeg;
      vdef = Dots((own - angle) / 0.28);  // positive: the path lies below
    }
  }
  F(refs.navHdef[i]) = hdef;
  F(refs.navVdef[i]) = vdef;
  F(refs.navDir[i]) = direction;
  F(refs.navSlope[i]) = slope;
  I(refs.navFromTo[i]) = fromTo;
  I(refs.navCdi[i]) = glide;
  bool dme = receiver.dme >= 0;
  I(refs.navHasDme[i]) = dme ? 1 : 0;
  F(refs.navDme[i]) =
      dme ? static_cast<float>(Look(aids[static_cast<size_t>(receiver.dme)], x, z, altitude).slant / 1852)
          : 0.0F;
  if (code == 0 && dme) code = 12;
  I(refs.navType, i) = code;
  if (i == 1) F(refs.nav2Course) = static_cast<float>(std::fmod(courseTrue + 360, 360));
  SetText(refs.navId[i], id);
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
  double x = D(refs.x), z = D(refs.z), altitude = D(refs.elevation);
  double heading = static_cast<double>(F(refs.psi));
  bool retuned = false;
  for (int i = 0; i < 2; i++) {
    retuned |= nav[i].freq != I(refs.navFreq[i]) || adf[i].freq != I(refs.adfFreq[i]);
  }
  if (retuned || now >= nextSearch || now + 1 < nextSearch) {
    Search(x, z, altitude);
    nextSearch = now + 1;
  }
  for (int i = 0; i < 2; i++) {
    ShowNav(i, x, z, altitude, heading);
    bool heard = adf[i].station >= 0;
    SetText(refs.adfId[i], heard ? NavAids()[static_cast<size_t>(adf[i].station)].id.c_str() : "");
    I(refs.navType, 2 + i) = heard ? 2 : 0;
  }
  I(refs.navType, 5) = nav[0].dme >= 0 || nav[1].dme >= 0 ? 12 : 0;
  int over[3] = {0, 0, 0};
  for (const NavAid& aid : NavAids()) {
    if ((aid.type & (Om | Mm | Im)) == 0) continue;
    Sight sight = Look(aid, x, z, altitude);
    double reach = aid.type == Om ? 900 : aid.type == Mm ? 450 : 250;
    if (sight.metres < reach && sight.slant < 1500) over[aid.type == Om ? 0 : aid.type == Mm ? 1 : 2] = 1;
  }
  for (int i = 0; i < 3; i++) I(refs.marker[i]) = over[i];
}

}  // namespace sim
