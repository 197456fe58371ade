#if !defined(_WIN32)

#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "port_owner.h"

namespace ctl {

namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;
using Folder = std::unique_ptr<DIR, int (*)(DIR*)>;

// The system's number of the socket that has the port; 0 when there is none.
unsigned long SocketOf(PortKind kind, uint16_t port) {
  constexpr unsigned listening = 0x0A;
  const File file(std::fopen(kind == PortKind::Tcp ? "/proc/net/tcp" : "/proc/net/udp", "r"), std::fclose);
  char line[512];
  while (file && std::fgets(line, sizeof line, file.get()) != nullptr) {
    unsigned local = 0, state = 0;
    unsigned long inode = 0;
    // sl local:port remote:port state queues timer retransmits uid timeout inode
    if (std::sscanf(line, " %*d: %*x:%x %*x:%*x %x %*x:%*x %*x:%*x %*x %*u %*d %lu", &local, &state, &inode) !=
        3)
      continue;
    if (local == port && (kind == PortKind::Udp || state == listening)) return inode;
  }
  return 0;
}

bool HasSocket(const std::string& process, const std::string& wanted) {
  const std::string path = "/proc/" + process + "/fd";
  const Folder folder(opendir(path.c_str()), closedir);
  for (const dirent* entry = nullptr; folder && (entry = readdir(folder.get())) != nullptr;) {
    char target[64];
    const ssize_t size = readlink((path + "/" + entry->d_name).c_str(), target, sizeof target);
    if (size > 0 && wanted == std::string(target, static_cast<size_t>(size))) return true;
  }
  return false;
}

std::string NameOf(const std::string& process) {
  const File file(std::fopen(("/proc/" + process + "/comm").c_str(), "r"), std::fclose);
  char name[64] = "";
  if (!file || std::fgets(name, sizeof name, file.get()) == nullptr) return "process " + process;
  name[std::strcspn(name, "\n")] = 0;
  return std::string(name) + " (process " + process + ")";
}

}  // namespace

std::string OwnerOfPort(PortKind kind, uint16_t port) {
  const unsigned long inode = SocketOf(kind, port);
  if (inode == 0) return "";
  const std::string wanted = "socket:[" + std::to_string(inode) + "]";
  const Folder folder(opendir("/proc"), closedir);
  for (const dirent* entry = nullptr; folder && (entry = readdir(folder.get())) != nullptr;) {
    const std::string process = entry->d_name;
    if (process.find_first_not_of("0123456789") == std::string::npos && HasSocket(process, wanted)) {
      return NameOf(process);
    }
  }
  return "a program of another user";
}

}  // namespace ctl

#endif
