// What the parts of this room share: the table's layout, sources and models, slots. Not for other rooms.
#pragma once
#include <atomic>
#include <cstdint>
#include <limits>

#include "platform/event.h"
#include "platform/thread.h"

constexpr uint32_t maxSlots = 96;
constexpr uint32_t positionedPlanes = 19;  // other aircraft with position datarefs of their own
constexpr uint32_t trafficHeaderOffset = 0xF000, trafficHeaderSize = 128;
constexpr uint32_t trafficEntryOffset = 0xF080, trafficEntrySize = 40;
constexpr uint32_t flightRecordOffset = 0xD840, flightRecordSize = 20;
constexpr uint32_t nearestField = 0x7E;  // in the header
constexpr int slotRoundMs = 200;

// --- Sources: traffic lock ----------------------------------------------------------------------------
// A place for the distance. The position cycle writes degrees; the first slot thread that comes by turns
// them into radians where they stand, once, and the others find them so.
struct Place {
  float latitude, longitude;
  bool inRadians;
};
enum class OnGround : uint8_t { Untold, No, Yes };
struct PlaneSource {
  float latitude, longitude;  // degrees, for the entry
  float altitude;             // metres above sea level
  uint16_t heading;           // degrees, 0 to 359
  uint16_t groundSpeed;       // knots
  int16_t verticalSpeed;      // m/s
  int16_t pitch, bank;        // degrees
  bool known;                 // false: the simulator publishes no position for this aircraft
  Place place;
  // What only newer simulators tell (targets.h).
  uint32_t serial;  // identifies it to clients, instead of the slot's number; 0: not told
  OnGround ground;
  bool named;     // the entry's text is this one, not the model's name
  char text[14];  // flight identifier, or type where it has none; zeros behind
};
extern PlaneSource planeSources[maxSlots];
extern Place userPlace;

// Models of the aircraft by their number in the simulator; 0, the user's own, stays empty. Traffic lock.
constexpr uint32_t maxModels = maxSlots + 1;
constexpr uint32_t modelNameSize = 256, modelPathSize = 512;
extern char modelNames[maxModels][modelNameSize];
extern char modelPaths[maxModels][modelPathSize];

// --- Distances: traffic slot lock -----------------------------------------------------------------------
constexpr int32_t noDistance = std::numeric_limits<int32_t>::max();
struct SlotDistance {
  int32_t distance;  // to the user's aircraft, 0.1 km
  uint32_t entry;    // offset of the slot's entry
};
extern SlotDistance slotDistances[maxSlots];
// Distance in 0.1 km between two places in radians, truncated; exact at the poles, across the antimeridian
// and for equal places. Pure.
int32_t DistanceBetween(const Place& a, const Place& b);
// Turns degrees into radians where they stand, once.
void ConvertPlace(Place* place);

// --- Counts and flags: any thread -----------------------------------------------------------------------
extern std::atomic<uint32_t> aircraftCount;   // active aircraft, the user's included
extern std::atomic<uint32_t> countChanged;    // raised when that was counted again, taken by the manager
extern std::atomic<uint32_t> listBeingBuilt;  // models are on their way into the tables

// --- Slots: the manager thread, but for what is atomic ----------------------------------------------------
struct Slot {
  Thread thread;
  Event wake;  // ends the pause between two rounds
  uint32_t index;
  uint32_t serial;               // identifies the aircraft to clients; a slot made anew gets a new one
  std::atomic<uint32_t> run;     // 0: the thread clears its entry and ends
  std::atomic<uint32_t> retire;  // 1: the entry is no longer refreshed, and the thread ends after 5 rounds
  std::atomic<uint32_t> ended;   // the thread is done and waits to be joined
};
extern Slot slots[maxSlots];
// Each slot thread's rounds; the manager copies them into the header.
extern std::atomic<uint8_t> slotRounds[maxSlots];

// A number that no aircraft has had. Any thread.
uint32_t NewSerial();
// Starts a slot's thread; the slot must have been joined. Returns true, or false when the system refuses.
bool StartSlot(uint32_t index);
// Tells it to end; it clears its entry at once.
void EndSlot(uint32_t index);
// Joins its thread if there is one, and gives its event back.
void JoinSlot(uint32_t index);

// --- Manager --------------------------------------------------------------------------------------------
extern uint32_t activeSlots;
// A client's own entry, as it was last written at 0x1F80.
extern uint8_t clientEntry[trafficEntrySize];
// Sets the table up and makes a slot for each aircraft that is there.
void BeginManager();
// One round: at most one slot more or less, then nearest aircraft and header.
void RunManagerRound();
// Ends and joins all slots.
void EndManager();
