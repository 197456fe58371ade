#include "traffic/targets.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

#include "bridge/sources.h"
#include "traffic/whole.h"

namespace {

constexpr int places = 64;
constexpr int wordSize = 8;  // characters a place of a text array
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

// Who has which slot, and the number by which clients know him; key 0: nobody.
struct Occupant {
  uint64_t key;
  uint32_t serial;
};
Occupant occupants[targetPlanes];

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

// A place without an address that has moved nowhere is empty; what lies nowhere on earth is no aircraft.
bool IsUsed(const Targets& targets, int place) {
  const float latitude = targets.latitude[place], longitude = targets.longitude[place];
  if (!(std::abs(latitude) <= 90) || !(std::abs(longitude) <= 180)) return false;
  return targets.address[place] != 0 || latitude != 0 || longitude != 0;
}

// The simulator's own count includes the user's aircraft; places beyond it hold what has left. Where it counts
// as many as there are in the places of others, it is one without the user. No more than are there.
uint32_t CountOthers(const Targets& targets) {
  int used = 0;
  for (int place = 1; place < places; place++) used += IsUsed(targets, place);
  if (HandleOf(countSource) == nullptr) return static_cast<uint32_t>(used);
  const int told = std::clamp(ReadInt(countSource), 0, places);
  return static_cast<uint32_t>(told == used ? used : std::clamp(told - 1, 0, used));
}

// A place's text without what pads it; returns its length.
size_t WordAt(const char* texts, int place, const char** word) {
  *word = texts + place * wordSize;
  size_t length = strnlen(*word, wordSize);
  while (length > 0 && (*word)[length - 1] == ' ') length--;
  return length;
}

// What an aircraft is known by: its address, else its flight identifier, else its place. What an earlier place
// has as well is nobody's.
uint64_t KeyAt(const Targets& targets, int place) {
  constexpr uint64_t byAddress = uint64_t{1} << 62, byFlight = uint64_t{2} << 62;
  const int address = targets.address[place];
  const int* const begin = targets.address + 1;
  if (address > 0 && std::find(begin, targets.address + place, address) == targets.address + place) {
    return byAddress | static_cast<uint64_t>(address);
  }
  const char* flight = nullptr;
  const size_t length = WordAt(targets.flight, place, &flight);
  bool isOwn = length != 0;
  for (int other = 1; isOwn && other < place; other++) {
    const char* word = nullptr;
    isOwn = WordAt(targets.flight, other, &word) != length || std::memcmp(word, flight, length) != 0;
  }
  if (!isOwn) return static_cast<uint64_t>(place);
  uint64_t text = 0;
  for (size_t i = 0; i < length; i++) text = text * 131 + static_cast<uint8_t>(flight[i]);
  return byFlight | text >> 2;
}

PlaneSource PlaneAt(const Targets& targets, int place) {
  PlaneSource plane = {};
  plane.known = plane.named = true;
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

bool TargetsExist() {
  return HandleOf(latitudeSource) != nullptr && FittingOf(*latitudeSource.ref) == Accessor::FloatArray &&
         HandleOf(longitudeSource) != nullptr;
}

void ForgetTargets() { std::fill_n(occupants, targetPlanes, Occupant{}); }

uint32_t ReadTargets(PlaneSource (&planes)[targetPlanes]) {
  Targets targets = {};
  Fetch(&targets);
  const uint32_t others = CountOthers(targets);
  int placeOf[targetPlanes] = {};  // by slot, 0 none
  Occupant newcomers[targetPlanes];
  int newPlaces[targetPlanes] = {};
  uint32_t newcomerCount = 0, shown = 0;
  // Those who have a slot keep it. Those whose slot goes, and those who have come, take what is free.
  for (int place = 1; place < places && shown < others; place++) {
    if (!IsUsed(targets, place)) continue;
    shown++;
    const uint64_t key = KeyAt(targets, place);
    const Occupant* const known = std::find_if(std::begin(occupants), std::end(occupants),
                                               [&](const Occupant& one) { return one.key == key; });
    const auto slot = static_cast<uint32_t>(known - occupants);
    if (slot < others) {
      placeOf[slot] = place;
    } else {
      newcomers[newcomerCount] = {key, slot < targetPlanes ? known->serial : NewSerial()};
      newPlaces[newcomerCount++] = place;
    }
  }
  uint32_t next = 0;
  for (uint32_t slot = 0; slot < targetPlanes; slot++) {
    if (slot >= others) {
      occupants[slot] = {};
      continue;
    }
    if (placeOf[slot] == 0) {
      occupants[slot] = newcomers[next];
      placeOf[slot] = newPlaces[next++];
    }
    planes[slot] = PlaneAt(targets, placeOf[slot]);
    planes[slot].serial = occupants[slot].serial;
  }
  return others;
}
