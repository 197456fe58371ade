// The dispatcher: every client write, local or remote, passes through it before its bytes are copied into
// the offset memory. It decides offset by offset whether the write means anything to the simulator, stages
// the new value for the write cycle, or takes an immediate action. Reads never pass through it.
//
// It never calls the simulator: whatever needs the simulator's thread is left as a flag or a record that
// the write cycle takes.
#pragma once
#include <atomic>
#include <cstdint>

constexpr uint32_t relayRecordOffset = 0x11125;
constexpr uint32_t relayRecordSize = 120;
constexpr uint32_t weatherAreaOffset = 0xC800;
constexpr uint32_t atcTextSize = 12;
constexpr uint32_t atcNumberOffset = 0x3130;
constexpr uint32_t atcTailNumberOffset = 0x313C;
// A 1 asks for the user's offsets file to be read again; at the second one a log line says so.
constexpr uint32_t customReloadOffset = 0x6F0D;
constexpr uint32_t customClearOffset = 0x6F0E;

// A client's relay record, kept until the relay takes it. Under the offset lock; `waiting` may be read by
// any thread.
struct RelayRecordStore {
  std::atomic<uint32_t> waiting;
  uint8_t bytes[relayRecordSize];
};
extern RelayRecordStore relayRecordStore;

// A client's own traffic entry: a write record that begins there raises the flag, the traffic manager takes
// it. Any thread.
constexpr uint32_t clientEntryOffset = 0x1F80;
constexpr uint32_t clientEntrySize = 40;
extern std::atomic<uint32_t> clientEntryWritten;

// What the records of one request have left for its end. Kept by whoever serves the request, so that several
// server threads do not end each other's.
struct RequestMarks {
  bool weatherArea;  // the area from 0xC800 was written
};

// The weather area from 0xC800 is acted on only after the whole request that wrote it: FinishRequest raises
// this, the write cycle takes it.
extern std::atomic<uint32_t> weatherBlockReady;

// New ATC number and tail number that the write cycle saves into the settings file. Under the offset lock.
struct AtcTexts {
  std::atomic<uint32_t> changed;  // bit 0 number, bit 1 tail number
  char number[atcTextSize + 1];
  char tailNumber[atcTextSize + 1];
};
extern AtcTexts atcTexts;

// How the dispatcher treats an offset; derived from the catalogue when the cycles are built.
enum class DispatchAction : uint8_t {
  None,            // no meaning for writes: ends the walk
  Stage,           // compare, stage, raise the flag
  StageAlways,     // without the comparison (a command whose 0 is the start content)
  StageText,       // as wide as the rest of the record, up to the width; the remainder is zero
  StageTwoOrFour,  // 4 bytes when the record holds them, else 2
  AtcNumber,
  AtcTailNumber,
  WeatherArea,
  RelayRecord,
  TrafficEntry,
  CustomReload,  // a changed 1 asks for the user's offsets file to be read again
};

// What became of a write at one offset among the user's own entries.
struct CustomOutcome {
  uint32_t offsetSize;   // bytes of the custom offset, which ends the look-ups; 0 for none
  uint32_t commandSize;  // bytes of the command, which lets the fixed offset have the value too; 0 for none
};
// What became of an own write's ticket.
enum class TicketState : uint8_t {
  Waits,
  Done,      // taken by the write cycle, or a newer write of the same place took its turn
  Replaced,  // another one took its turn: the simulator never saw it
};
// Functions of the user's own entries, whose room stands above this one. Called on any thread, with the offset
// lock held.
struct CustomHooks {
  // Offers a client's write; `data` holds `supplied` bytes, not yet copied into the memory. The bytes that an
  // entry has beyond them are taken from the memory. A ticket other than 0 marks an own write
  // (DispatchOwnWrite).
  CustomOutcome (*offer)(uint32_t offset, const uint8_t* data, uint32_t supplied, uint32_t ticket);
  // Whether a write to that range would take the turn of one that waits for another place.
  bool (*isTaken)(uint32_t offset, uint32_t size);
  TicketState (*lookAfter)(uint32_t ticket);
  // A client asks for the file to be read again, at one of the two offsets above.
  void (*requestReload)(uint32_t offset);
};
// Connects the user's own entries (ConnectCustomOffsets does); until then there are none. Simulator's thread,
// at start, before anybody can write.
void ConnectDispatcher(const CustomHooks& hooks);

// Forgets all entries. Simulator's thread, at start.
void ResetDispatchTable();
// Makes an offset dispatchable, `width` bytes wide (1 to 252). Simulator's thread, at start.
void AddDispatchEntry(uint32_t offset, uint32_t width, DispatchAction action);

// Forgets what clients left for the simulator's thread apart from staged values: weather area, relay record,
// traffic entry, ATC texts. Simulator's thread, at enable, before anybody can write.
void ClearRequestMarks();

// Walks a client's write of `size` bytes at `offset`; `data` is private memory (never the client's own).
// offset + size lies within the offset memory. A value is staged when it differs from the one that still waits
// there, or, with none waiting, from the offset memory; bytes that the write does not supply are taken from
// the same place. Any thread, offset lock held; call it before the bytes are copied into the offset memory.
// `marks` are the request's own. Returns true when every byte was recognised, false when the walk stopped at an
// offset without a meaning for writes (the bytes behind it are not examined).
bool DispatchWrite(uint32_t offset, uint32_t size, const uint8_t* data, RequestMarks* marks);
// How a pending flag is raised.
constexpr uint32_t byClient = 1, byOwnWrite = 2;
// The same for a write of our own that must arrive, as that of a joystick axis: it is staged also when the same
// bytes stand there already, as what a refresh shows need not be what the simulator goes by (a toe brake while
// the parking brake is set, a lever while the engine is in reverse). Returns false, with nothing done, while
// among the user's own entries a write for another place waits, as only one can: to be tried again in a later
// frame. `ticket` gets 0, or the number by which StateOfOwnWrite tells what becomes of a write that waits
// there.
bool DispatchOwnWrite(uint32_t offset, uint32_t size, const uint8_t* data, RequestMarks* marks,
                      uint32_t* ticket);
// Any thread, offset lock held. Of the last ticket alone that was given for each place.
TicketState StateOfOwnWrite(uint32_t ticket);
// What clients have last left in a range: the offset memory, with the staged values that still wait on top of
// it. Any thread, offset lock held.
void CopyLatest(uint32_t offset, uint32_t size, void* bytes);

// Ends a request: a weather area that it wrote is ready now. Any thread.
void FinishRequest(const RequestMarks& marks);
