#include "platform/addresses.h"

#include <winsock2.h>
// winsock2.h first
#include <windows.h>
#include <ws2tcpip.h>

#include <algorithm>

// Asked of a socket: the address library that newer programs use would be one more to import.
std::vector<uint32_t> ListAddresses() {
  std::vector<uint32_t> addresses;
  const SOCKET asked = socket(AF_INET, SOCK_DGRAM, 0);
  if (asked == INVALID_SOCKET) return addresses;
  std::vector<INTERFACE_INFO> list(64);
  DWORD bytes = 0;
  const int failed =
      WSAIoctl(asked, SIO_GET_INTERFACE_LIST, nullptr, 0, list.data(),
               static_cast<DWORD>(list.size() * sizeof(INTERFACE_INFO)), &bytes, nullptr, nullptr);
  closesocket(asked);
  if (failed) return addresses;
  list.resize(std::min<size_t>(list.size(), bytes / sizeof(INTERFACE_INFO)));
  for (const INTERFACE_INFO& entry : list) {
    if ((entry.iiFlags & IFF_UP) == 0 || (entry.iiFlags & IFF_LOOPBACK) != 0) continue;
    const uint32_t ip = ntohl(entry.iiAddress.AddressIn.sin_addr.s_addr);
    if (ip == 0 || std::find(addresses.begin(), addresses.end(), ip) != addresses.end()) continue;
    addresses.push_back(ip);
  }
  return addresses;
}
