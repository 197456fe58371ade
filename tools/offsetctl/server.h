// A network server without a simulator: what a client sees of the plug-in's, for replays and for trying
// clients. Main thread; nothing runs but within Serve().
#pragma once
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "names.h"
#include "picture.h"
#include "sockets.h"

namespace ctl {

constexpr size_t mostServed = 8;  // clients at a time

// What the server does with those who knock.
enum class Door {
  Open,    // serves up to eight
  Shut,    // nobody listens: connections are refused
  Closing  // takes connections and closes them at once, as for clients that are not allowed
};

// How the server differs from one that works well.
struct Trouble {
  Door door = Door::Open;
  uint32_t lossPercent = 0;     // of the datagrams, by a sequence that is the same in every run
  unsigned lostBlocks = 0;      // bit k: block k of the next full burst is lost, once
  int blockPauseMs = 10;        // between two blocks of a burst
  int writeDelayMs = 0;         // what a client writes shows so much later
  bool replacesWrites = false;  // as `replacement` says, before anything is shown
  int32_t replacement = 0;      // is added to a written word of 16 bits
};

// A write record as it was served.
struct ServedWrite {
  uint32_t offset;
  std::vector<uint8_t> bytes;
  std::chrono::steady_clock::time_point due;
};

struct ServedClient {
  SocketHandle stream;
  NetAddress peer;
  std::vector<uint8_t> buffer;  // a frame that has begun to come
  std::chrono::steady_clock::time_point lastReceived;
};

struct Server {
  uint32_t ip = 0;
  Trouble trouble;
  std::vector<uint8_t> memory = std::vector<uint8_t>(offsetMemorySize);
  std::vector<ServedClient> clients;
  // What has happened so far.
  std::vector<ServedWrite> writes;  // in the order received
  uint32_t accepted = 0, turnedAway = 0;
  uint32_t brokenFrames = 0;  // that a client has sent
  uint32_t bursts = 0;        // full ones that have been sent
  // The rest is Serve()'s own.
  SocketHandle listener = noSocket, sender = noSocket;
  std::vector<uint8_t> told = std::vector<uint8_t>(offsetMemorySize);  // as the clients know it
  std::vector<ServedWrite> delayed;
  bool burstDue = false;
  int nextBlock = -1;  // of the burst that goes on
  uint32_t cycles = 0, rolling = mostServed, random = 1;
  std::chrono::steady_clock::time_point blockAt, scanAt, announceAt;
};

// Listens at an address of this computer. Returns true, or false with a line in `error` that says what to do.
bool OpenServer(uint32_t ip, Server* server, std::string* error);
// Serves for that long: accepts clients, takes their requests, sends blocks, changes and announcements.
void Serve(Server* server, int milliseconds);
// Every client's connection ends, as when the simulator does.
void DropClients(Server* server);
// A frame to every client, whatever it is, from that socket and past the loss.
void SendToClients(Server* server, SocketHandle from, const std::vector<uint8_t>& frame);
void CloseServer(Server* server);

// Stores a value of 16 bits, as the simulator would.
void SetWord(Server* server, uint32_t offset, uint16_t value);
uint16_t WordOf(const Server& server, uint32_t offset);

}  // namespace ctl
