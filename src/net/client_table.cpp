#include "net/client_table.h"

#include <cstring>

ClientSlot clientSlots[maxClients];
uint16_t nextClientNumber;
std::atomic<uint32_t> publishedClientCount;

uint32_t CountClients() {
  uint32_t count = 0;
  for (const ClientSlot& slot : clientSlots) count += slot.inUse ? 1 : 0;
  return count;
}

int FindFreeSlot() {
  for (uint32_t i = 0; i < maxClients; ++i) {
    if (!clientSlots[i].inUse) return static_cast<int>(i);
  }
  return -1;
}

void AddClient(uint32_t slot, const SocketAddress& peer) {
  ClientSlot& client = clientSlots[slot];
  client.inUse = true;
  client.number = nextClientNumber++;
  client.peer = peer;
  std::strcpy(client.name, "unknown");
  client.nameWanted = true;
}

void RemoveClient(uint32_t slot) { clientSlots[slot].inUse = false; }

void ClearClients() {
  for (ClientSlot& slot : clientSlots) slot = {};
}

void PublishClientCount() { publishedClientCount = CountClients(); }
