#include "net/client_table.h"

#include <cstring>

ClientSlot clientSlots[maxClients];
std::atomic<uint32_t> publishedClientCount;

namespace {

uint16_t nextNumber;

}  // namespace

uint32_t CountClients() {
  uint32_t count = 0;
  for (const ClientSlot& slot : clientSlots) count += slot.inUse;
  return count;
}

int AddClient(const SocketAddress& peer, const char* name) {
  for (uint32_t i = 0; i < maxClients; ++i) {
    ClientSlot& slot = clientSlots[i];
    if (slot.inUse != 0) continue;
    slot.inUse = 1;
    slot.number = nextNumber++;
    slot.peer = peer;
    const size_t length = strnlen(name, peerNameSize - 1);
    std::memcpy(slot.name, name, length);
    slot.name[length] = '\0';
    return static_cast<int>(i);
  }
  return -1;
}

int FindClient(uint16_t number) {
  for (uint32_t i = 0; i < maxClients; ++i) {
    if (clientSlots[i].inUse != 0 && clientSlots[i].number == number) return static_cast<int>(i);
  }
  return -1;
}

void RemoveClient(uint16_t number) {
  const int index = FindClient(number);
  if (index >= 0) clientSlots[index].inUse = 0;
}

void ClearClients() {
  for (ClientSlot& slot : clientSlots) slot = {};
}

void PublishClientCount() { publishedClientCount = CountClients(); }
