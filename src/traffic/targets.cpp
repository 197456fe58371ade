#include "traffic/targets.h"

#include <algorithm>
#include <cstring>

#include "bridge/sources.h"
#include "traffic/whole.h"

namespace {

constexpr int places = 64;
constexpr int wordSize = 8;                    // characters a place of a text array
constexpr uint32_t knownByPlace = 0x80000000;  // else by address, which has 24 bits
constexpr Source countSource = Int<"sim/cockpit2/tcas/indicators/tcas_num_acf">;
constexpr Source latitudeSource = FloatElement<"sim/cockpit2/tcas/targets/position/lat">(0);
constexpr Source longitudeSource = FloatElement<"sim/cockpit2/tcas/targets/position/lon">(0);
constexpr Source groundSource = IntElement<"sim/cockpit2/tcas/targets/position/weight_on_wheels">(0);
constexpr Source addressSource = IntElement<"sim/cockpit2/tcas/targets/modeS_id">(0);
constexpr Source flightSource = Bytes<"sim/cockpit2/tcas/targets/flight_id">;
constexpr Source typeSource = Bytes<"sim/cockpit2/tcas/targets/icao_type">;

// The arrays as they were read: degrees, metres, metres a second.
struct Targets {
  float latitude[places], longitude[places], altitude[places];
  float east[places], south[places], climb[places];
  float heading[places], pitch[places], bank[places];
  int address[places], onGround[places];
  char flight[places * wordSize], type[places * wordSize];
};

struct Field {
  Source source;
  float (Targets::*values)[places];
};
constexpr Field fields[] = {
    {.source = latitudeSource, .values = &Targets::latitude},
    {.source = longitudeSource, .values = &Targets::longitude},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/ele">(0), .values = &Targets::altitude},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/vx">(0), .values = &Targets::east},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/vz">(0), .values = &Targets::south},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/vy">(0), .values = &Targets::climb},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/psi">(0), .values = &Targets::heading},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/the">(0), .values = &Targets::pitch},
    {.source = FloatElement<"sim/cockpit2/tcas/targets/position/phi">(0), .values = &Targets::bank},
};

uint32_t slotAircraft[targetPlanes];  // who has which slot; 0 nobody

void Fetch(Targets* targets) {
  for (const Field& field : fields) {
    if (HandleOf(field.source) != nullptr)
      XPLMGetDatavf(HandleOf(field.source), targets->*field.values, 0, places);
  }
  if (HandleOf(addressSource) != nullptr) XPLMGetDatavi(HandleOf(addressSource), targets->address, 0, places);
  if (HandleOf(groundSource) != nullptr) XPLMGetDatavi(HandleOf(groundSource), targets->onGround, 0, places);
  if (HandleOf(flightSource) != nullptr)
    XPLMGetDatab(HandleOf(flightSource), targets->flight, 0, sizeof targets->flight);
  if (HandleOf(typeSource) != nullptr)
    XPLMGetDatab(HandleOf(typeSource), targets->type, 0, sizeof targets->type);
}

bool IsUsed(const Targets& targets, int place) {
  return targets.address[place] != 0 || targets.latitude[place] != 0 || targets.longitude[place] != 0;
}

// The simulator's own count includes the user's aircraft. A place in use behind the last one counted shows a
// count without it.
uint32_t CountOthers(const Targets& targets) {
  int others = places - 1;
  if (HandleOf(countSource) == nullptr) {
    while (others > 0 && !IsUsed(targets, others)) others--;
    return static_cast<uint32_t>(others);
  }
  const int told = std::clamp(ReadInt(countSource), 0, places);
  if (told == 0) return 0;
  return static_cast<uint32_t>(told < places && IsUsed(targets, told) ? told : told - 1);
}

// An address that an earlier place has as well is nobody's.
uint32_t AircraftAt(const Targets& targets, int place) {
  const int address = targets.address[place];
  const int* const begin = targets.address + 1;
  const bool known =
      address > 0 && std::find(begin, targets.address + place, address) == targets.address + place;
  return known ? static_cast<uint32_t>(address) : knownByPlace | static_cast<uint32_t>(place);
}

// A place's text without what pads it; returns its length.
size_t WordAt(const char* texts, int place, const char** word) {
  *word = texts + place * wordSize;
  size_t length = strnlen(*word, wordSize);
  while (length > 0 && (*word)[length - 1] == ' ') length--;
  return length;
}

PlaneSource PlaneAt(const Targets& targets, int place) {
  PlaneSource plane = {};
  plane.known = IsUsed(targets, place);
  plane.latitude = Single(static_cast<double>(targets.latitude[place]));
  plane.longitude = Single(static_cast<double>(targets.longitude[place]));
  plane.altitude = Single(static_cast<double>(targets.altitude[place]));
  SetMotion(&plane, {.heading = static_cast<double>(targets.heading[place]),
                     .east = static_cast<double>(targets.east[place]),
                     .south = static_cast<double>(targets.south[place]),
                     .climb = static_cast<double>(targets.climb[place]),
                     .pitch = static_cast<double>(targets.pitch[place]),
                     .bank = static_cast<double>(targets.bank[place])});
  plane.ground = targets.onGround[place] != 0 ? OnGround::Yes : OnGround::No;
  if (HandleOf(groundSource) == nullptr) plane.ground = OnGround::Untold;
  const char* word = nullptr;
  size_t length = WordAt(targets.flight, place, &word);
  if (length == 0) length = WordAt(targets.type, place, &word);
  std::memcpy(plane.text, word, length);
  return plane;
}

}  // namespace

bool TargetsExist() { return HandleOf(latitudeSource) != nullptr && HandleOf(longitudeSource) != nullptr; }

void ForgetTargets() { std::fill_n(slotAircraft, targetPlanes, 0U); }

uint32_t ReadTargets(PlaneSource (&planes)[targetPlanes]) {
  Targets targets = {};
  Fetch(&targets);
  const uint32_t others = CountOthers(targets);
  int placeOf[targetPlanes] = {};  // by slot, 0 none
  // Those who have a slot keep it, the others take what is free.
  int newcomers[targetPlanes];
  uint32_t newcomerCount = 0, shown = 0;
  for (int place = 1; place < places && shown < others; place++) {
    if (!IsUsed(targets, place)) continue;
    shown++;
    const uint32_t* const slot = std::find(slotAircraft, slotAircraft + others, AircraftAt(targets, place));
    if (slot != slotAircraft + others) {
      placeOf[slot - slotAircraft] = place;
    } else {
      newcomers[newcomerCount++] = place;
    }
  }
  const int* next = newcomers;
  for (uint32_t slot = 0; slot < targetPlanes; slot++) {
    if (slot < others && placeOf[slot] == 0 && next != newcomers + newcomerCount) placeOf[slot] = *next++;
    const int place = placeOf[slot];
    slotAircraft[slot] = place != 0 ? AircraftAt(targets, place) : 0;
    if (slot >= others) continue;
    planes[slot] = place != 0 ? PlaneAt(targets, place) : PlaneSource{};
    planes[slot].named = true;  // also where one is counted that has no place
    planes[slot].aircraft = slotAircraft[slot];
  }
  return others;
}
