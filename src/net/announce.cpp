// Announcement: an empty frame to a multicast group once a second, so that clients find the server.
#include "net/frame.h"
#include "net/net.h"
#include "net/server.h"
#include "platform/event.h"

namespace {

constexpr SocketAddress group = {0xEFC0000A, announcePort};  // 239.192.0.10
constexpr int announcePauseMs = 1000;

Thread announceThread;
std::atomic<uint32_t> announceRunning;
Event announceStop;
Socket announceSocket;  // the simulator's thread until the announce thread runs, then that one's

uint32_t AnnounceProcedure(void*) {
  uint8_t frame[frameOverhead];
  const size_t size = FinishFrame(frame, frameAnnounce, 0, endAnnounce);
  while (announceRunning.load() != 0) {
    SendDatagram(&announceSocket, frame, size, group);
    WaitEvent(&announceStop, announcePauseMs);
  }
  return 0;
}

}  // namespace

bool OpenAnnouncement() {
  if (!OpenSocket(&announceSocket, Transport::Datagram)) return false;
  // Sending works from any port: a failed bind does not matter.
  BindSocket(&announceSocket, {serverIp, announcePort});
  if (serverIp == 0 || !SetMulticastInterface(&announceSocket, serverIp)) return false;
  LogNetwork("Granting multicast to %s\n", serverAddressText);
  return true;
}

void CloseAnnouncement() { CloseSocket(&announceSocket); }

bool StartAnnouncement() {
  if (!CreateAutoEvent(&announceStop)) return false;
  announceRunning = 1;
  if (StartThread(&announceThread, AnnounceProcedure, nullptr)) return true;
  announceRunning = 0;
  return false;
}

bool AnnouncementRuns() { return announceRunning.load() != 0; }

void StopAnnouncement() {
  announceRunning = 0;
  SignalEvent(&announceStop);
  JoinThread(&announceThread);
  CloseEvent(&announceStop);
  CloseAnnouncement();
}
