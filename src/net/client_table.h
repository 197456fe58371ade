// The eight network clients that are connected.
//
// The table is guarded by the client list lock: every function here is called with it held, on any thread.
// Client numbers count the connections of the process and are never used again. A copy of the count is
// published for windows and status displays, which never take the lock.
#pragma once
#include <atomic>
#include <cstdint>

#include "platform/socket.h"

constexpr uint32_t maxClients = 8;
constexpr size_t peerNameSize = 1025;

struct ClientSlot {
  uint32_t inUse;
  uint16_t number;
  SocketAddress peer;  // bursts go to this address and port
  char name[peerNameSize];
};

extern ClientSlot clientSlots[maxClients];

// Copy of the number of slots in use; any thread, no lock.
extern std::atomic<uint32_t> publishedClientCount;

uint32_t CountClients();
// Takes the first free slot and gives it the next client number. Returns the slot's index, or -1 when all
// are in use. The name is cut to the slot's size.
int AddClient(const SocketAddress& peer, const char* name);
// Index of the slot that a client number holds, or -1.
int FindClient(uint16_t number);
// Frees the slot of a client number; a number that holds none changes nothing.
void RemoveClient(uint16_t number);
// Forgets all clients; the numbers go on from where they were.
void ClearClients();
// Publishes the count as it is now.
void PublishClientCount();
