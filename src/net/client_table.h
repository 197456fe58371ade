// The eight network clients that are connected.
//
// The table is guarded by the client list lock: every function here is called with it held, on any thread. A
// client is known by its slot. Its number counts the connections of the process and is for people alone: it has
// 16 bits and wraps. A copy of the count is published for windows and status displays, which never take the
// lock.
#pragma once
#include <atomic>
#include <cstdint>

#include "platform/socket.h"

constexpr uint32_t maxClients = 8;
constexpr size_t peerNameSize = 1025;

struct ClientSlot {
  bool inUse;
  uint16_t number;
  SocketAddress peer;       // bursts go to this address and port
  char name[peerNameSize];  // "unknown" until its look-up has answered
  bool nameWanted;          // the look-up has not answered
};

extern ClientSlot clientSlots[maxClients];
// The next client's number.
extern uint16_t nextClientNumber;

// Copy of the number of slots in use; any thread, no lock.
extern std::atomic<uint32_t> publishedClientCount;

uint32_t CountClients();
// The first free slot, or -1 when all are in use.
int FindFreeSlot();
// Puts a client into a free slot and gives it the next number.
void AddClient(uint32_t slot, const SocketAddress& peer);
// Frees a slot; one that is free stays so.
void RemoveClient(uint32_t slot);
// Forgets all clients; the numbers go on from where they were.
void ClearClients();
// Publishes the count as it is now.
void PublishClientCount();
