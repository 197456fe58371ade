#if defined(_WIN32)

#include <winsock2.h>  // which brings windows.h with it

#include <cstring>
#include <vector>

#include "port_owner.h"

namespace ctl {

namespace {

// As the system's library lays its tables out; it is asked for by name, since the oldest systems lack it.
struct TcpRow {
  DWORD state, localAddress, localPort, remoteAddress, remotePort, process;
};
struct UdpRow {
  DWORD localAddress, localPort, process;
};
constexpr DWORD listening = 2;
constexpr ULONG tcpListenersWithOwner = 3, udpWithOwner = 1;
using GetTable = DWORD(WINAPI*)(void*, DWORD*, BOOL, ULONG, ULONG, ULONG);

template <typename Row>
DWORD FindProcess(const std::vector<uint8_t>& table, uint16_t port) {
  DWORD count = 0;
  if (table.size() < sizeof count) return 0;
  std::memcpy(&count, table.data(), sizeof count);
  for (size_t i = 0; i < count && sizeof count + (i + 1) * sizeof(Row) <= table.size(); ++i) {
    Row row;
    std::memcpy(&row, table.data() + sizeof count + i * sizeof row, sizeof row);
    if (ntohs(static_cast<uint16_t>(row.localPort)) == port) return row.process;
  }
  return 0;
}

// The file's name of a process; "" when the system does not tell.
std::string NameOf(DWORD process) {
  using GetName = DWORD(WINAPI*)(HANDLE, char*, DWORD);
  constexpr DWORD limitedInformation = 0x1000;
  const HMODULE library = LoadLibraryA("psapi.dll");
  if (library == nullptr) return "";
  std::string name;
  const auto getName =
      reinterpret_cast<GetName>(reinterpret_cast<void*>(GetProcAddress(library, "GetProcessImageFileNameA")));
  const HANDLE handle = OpenProcess(limitedInformation, FALSE, process);
  char path[MAX_PATH] = "";
  if (getName != nullptr && handle != nullptr && getName(handle, path, sizeof path) > 0) {
    name = path;
    name = name.substr(name.find_last_of('\\') + 1);
  }
  if (handle != nullptr) CloseHandle(handle);
  FreeLibrary(library);
  return name;
}

}  // namespace

std::string OwnerOfPort(PortKind kind, uint16_t port) {
  const HMODULE library = LoadLibraryA("iphlpapi.dll");
  if (library == nullptr) return "";
  const bool isTcp = kind == PortKind::Tcp;
  const auto getTable = reinterpret_cast<GetTable>(
      reinterpret_cast<void*>(GetProcAddress(library, isTcp ? "GetExtendedTcpTable" : "GetExtendedUdpTable")));
  std::vector<uint8_t> table;
  DWORD size = 0;
  for (int attempt = 0; getTable != nullptr && attempt < 5; ++attempt) {
    table.resize(size);
    const DWORD result = getTable(table.empty() ? nullptr : table.data(), &size, FALSE, AF_INET,
                                  isTcp ? tcpListenersWithOwner : udpWithOwner, 0);
    if (result == NO_ERROR) break;
    if (result != ERROR_INSUFFICIENT_BUFFER) size = 0;
  }
  FreeLibrary(library);
  const DWORD process = isTcp ? FindProcess<TcpRow>(table, port) : FindProcess<UdpRow>(table, port);
  if (process == 0) return "";
  const std::string number = "process " + std::to_string(process);
  const std::string name = NameOf(process);
  return name.empty() ? number : name + " (" + number + ")";
}

}  // namespace ctl

#endif
