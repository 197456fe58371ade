// The room aircraft/: aircraft and plug-ins that publish systems of their own, which the simulator's stock
// datarefs do not cover. Each is recognised at run time; its datarefs and commands are then looked up, and the
// rows that have a variant for it switch over (bridge/catalogue.h). When it goes away, or another aircraft is
// loaded, its handles become null again and the rows are back at the stock datarefs. The readers take their
// handles anew then.
//
// The look-ups are made at recognition. Names that are not there then are looked up again in the next runs of
// the 313-frame cycle, later at growing distances, because some add-ons publish a part of them late; names that
// were found never again while the add-on stays. The names stand in names.cpp; which offsets follow which
// add-on by which of them is told in docs/aircraft.md.
//
// Everything here: simulator's thread, no lock held.
#pragma once
#include <cstdint>
#include <vector>

#include "bridge/add_ons.h"

// Tests for every add-on but the EC135; called in the 313-frame cycle after its readers, which refresh the
// aircraft title that one of the tests looks at. Logs one line per block of names that it loads, and one that
// names the aircraft and its adapters whenever these differ from what the log was told last since enable.
void RecogniseAircraft();
// The same for the EC135, in the 59-frame cycle.
void RunEc135Adapter();
// The same for the network client XSquawkBox alone, at enable; its notifications are subscribed to.
void RecogniseXSquawkBox();
// Another aircraft of the user was loaded (message 102, parameter 0): drops what belongs to the previous
// one, stores the new title and tests at once, so that no row reads the old aircraft's handles.
void DetectLoadedAircraft();
// Drops every add-on, network clients included (at disable). Logs nothing.
void ResetAdapters();
// How many of an add-on's names the simulator knows, as far as they were looked up; all 0 while it is not
// loaded. The texts are constants.
struct NamesFound {
  int found = 0, own = 0, total = 0;  // own: without the simulator's
  std::vector<const char*> missing;
};
const NamesFound& NamesFoundOf(AddOn addOn);
// Gives the IXEG 737 its throttles back when a client had taken them, with a log line (at disable, before
// ResetAdapters).
void ReleaseIxegThrottleOverride();

// --- XSquawkBox ----------------------------------------------------------------------------------------
// What the network client has told. The texts are copied while its message is being delivered: they are not
// valid at any other time.
struct XSquawkBoxState {
  int connected, receiving, transmitting;                                               // 1: yes
  uint32_t frequencyChanges, metarsReceived, textsReceived, commandsTyped, aboutShown;  // notifications so far
  char callsign[64];  // station asked for last, and its frequency in kHz, 0 unknown
  int frequency;
  char metar[1024];
  char from[64], text[1024];
  char command[512];  // as typed by the user; left for XSquawkBox to act on
  char version[64];
  int versionNumber;  // version x 100
};
extern XSquawkBoxState xSquawkBoxState;

// A message of another plug-in: hands it to the adapter it belongs to; messages of plug-ins that are not
// recognised are ignored.
void ReceiveAdapterMessage(int from, int message, void* parameter);
// Takes one of its notifications, 0x80000001 to 0x80000009; others are ignored. An integer parameter is the
// pointer's value itself.
void ReceiveXSquawkBoxMessage(int message, void* parameter);
