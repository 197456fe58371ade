// The navigation radios as the navigation cycle found them, and the ground stations they receive.
//
// At the start of each navigation cycle frequencies, station types and identifiers are read once, and the
// station of each NAV radio is looked up in the simulator's navigation database (by frequency and kind alone in
// versions that do not publish the identifier, which then is the found station's). That search walks the
// whole database, so its result is kept until the radio or the place of the aircraft has changed. The rows
// of both 31-frame cycles read what stands here; the second cycle is registered after the first, so it
// never finds the records empty.
//
// Simulator's thread only, no lock held.
#pragma once

// Codes of the received station, as the simulator's navigation data numbers them. 0: nothing received.
enum StationType : int {
  stationNone = 0,
  stationNdb = 2,
  stationVor = 3,
  stationIls = 4,        // localizer that belongs to an ILS
  stationLocalizer = 5,  // localizer alone
  stationIlsDme = 12,
  stationDme = 13,
};

// A transmitter of the database. All zero when there is none.
struct Transmitter {
  bool found;
  double latitude, longitude;  // degrees
  double height;               // metres above sea level
  double heading;              // degrees true; meaningful for localizers only
  char ident[32];
  char name[256];
};

struct NavRadio {
  int frequency;  // tens of kilohertz: 11030 is 110.30 MHz
  int type;       // StationType
  char ident[32];
  Transmitter station;
  Transmitter glideSlope;  // position and height only
};
struct AdfRadio {
  int frequency;  // kilohertz
  int type;
};

extern NavRadio navRadios[2];
extern AdfRadio adfRadios[2];

// 1 when the radio receives a localizer, with or without glide slope.
inline int ReceivesLocalizer(const NavRadio& radio) {
  return radio.type == stationIls || radio.type == stationLocalizer;
}

// Reads the radios and looks their stations up where needed. Called at the start of the navigation cycle,
// before its readers.
void TuneStations();
// Forgets stations and search results, so that the next call searches anew (at enable).
void ForgetStations();
