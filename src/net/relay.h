// Relay: single dataref writes that keep several simulators on one network in step.
//
// A client writes a relay record to its extended offset (offsets/dispatcher.h). The write cycle applies it to
// this simulator and, when the record asks for it, broadcasts it. An instance in client mode receives such
// broadcasts and applies them; it passes none on.
// One record waits at a time: a newer one that comes before the next frame takes its place.
//
// All functions are for the simulator's thread, with no lock held, unless they say otherwise.
#pragma once
#include <cstddef>
#include <cstdint>

#include "offsets/dispatcher.h"

constexpr uint16_t relayPort = 54945;
constexpr size_t relayFrameSize = relayRecordSize + 10;

// Where the parts of a record stand: name (NUL-terminated), forward flag, array index, values.
constexpr size_t relayNameSize = 100;
constexpr size_t relayForwardAt = 100;
constexpr size_t relayIndexAt = 101;
constexpr size_t relayIntAt = 104;
constexpr size_t relayFloatAt = 108;
constexpr size_t relayDoubleAt = 112;

enum class RelayRole { Sender, Receiver };

// Opens the relay socket on the address that PrepareNetwork took, and logs how that went. The sender
// broadcasts to that address's network; the receiver binds the address, which must be this computer's.
// Returns true, or false without socket: sending and receiving then do nothing.
bool OpenRelay(RelayRole role);
// Why nothing can be received or sent, as networkReasonText; "" while it works, or before the first OpenRelay.
extern char relayReasonText[160];
// After StopRelayThread.
void CloseRelay();
// Starts the thread that receives records into the record store. Returns true, or false when the system
// refuses.
bool StartRelayThread();
// Wakes the thread, gives it 200 ms and joins it. The pause is made without a thread too.
void StopRelayThread();

// Applies the waiting record, if there is one; once per frame. A name that the simulator does not know, a type
// that is none of the single ones, and a number that is not finite set nothing.
void ApplyRelayRecord();

// Pure functions, any thread.
void BuildRelayFrame(const uint8_t* record, uint8_t* frame);
// Returns true with the record (relayRecordSize bytes), or false with the record all zero when either length
// field is not the record's size.
bool ParseRelayFrame(const uint8_t* datagram, size_t size, uint8_t* record);
