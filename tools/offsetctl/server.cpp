#include "server.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "net/frame.h"
#include "request_block.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint16_t requestPort = 65000, burstPort = 65100;
constexpr NetAddress announceGroup = {0xEFC0000A, 54942};  // 239.192.0.10
constexpr int scanPauseMs = 20;
constexpr int announcePauseMs = 1000;
constexpr uint32_t rollingCycles = 1000;
constexpr size_t receiveSize = 65535;
constexpr int splitFrameMs = 50, patientMs = 500;  // how long the rest of a frame may take
constexpr size_t segmentSize = 1400;

Clock::time_point In(int milliseconds) { return Clock::now() + std::chrono::milliseconds(milliseconds); }

int MillisecondsTo(Clock::time_point time) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(time - Clock::now()).count();
  return static_cast<int>(std::clamp<long long>(left + 1, 0, 1000));
}

// --- Sending -------------------------------------------------------------------------------------------

bool IsLost(Server* server) {
  // A sequence of its own: the same in every run and with every library.
  server->random = server->random * 1664525 + 1013904223;
  return (server->random >> 16) % 100 < server->trouble.lossPercent;
}

void Send(Server* server, const std::vector<uint8_t>& frame) {
  for (const ServedClient& client : server->clients) {
    if (!IsLost(server)) SendDatagram(server->sender, client.peer, frame.data(), frame.size());
  }
}

void SendSpareBlock(Server* server) {
  const std::vector<uint8_t> nothing(pictureBlockSize);
  Send(server, MakeFrame(static_cast<uint8_t>(frameFirstBlock + pictureBlocks), nothing.data(), nothing.size(),
                         endBlock));
}

void SendChanges(Server* server) {
  std::vector<ByteChange> changes;
  for (uint32_t at = 0; at < offsetMemorySize && changes.size() < mostChanges; ++at) {
    if (server->memory[at] == server->told[at]) continue;
    server->told[at] = server->memory[at];
    changes.push_back({at, server->memory[at]});
  }
  if (!changes.empty()) Send(server, ChangeFrame(changes));
}

// One block of a full burst; the changes wait meanwhile.
void SendNextBlock(Server* server) {
  const auto block = static_cast<uint32_t>(server->nextBlock++);
  if (server->trouble.lostBlocks & (1u << block)) {
    server->trouble.lostBlocks &= ~(1u << block);
  } else {
    Send(server, BlockFrame(server->memory, block));
  }
  if (server->nextBlock == static_cast<int>(pictureBlocks)) {
    server->nextBlock = -1;
    ++server->bursts;
    server->scanAt = Clock::now();
  }
  server->blockAt = In(server->trouble.blockPauseMs);
}

void RunCycle(Server* server) {
  SendChanges(server);
  server->scanAt = In(scanPauseMs);
  if (++server->cycles == rollingCycles) {
    server->cycles = 0;
    if (server->rolling >= pictureBlocks) {
      SendSpareBlock(server);
      server->rolling = 0;
    } else {
      Send(server, BlockFrame(server->memory, server->rolling++));
    }
  }
  if (!server->burstDue) return;
  server->burstDue = false;
  server->nextBlock = 0;
  server->blockAt = In(server->trouble.blockPauseMs);
}

// --- Requests ------------------------------------------------------------------------------------------

void Store(Server* server, const ServedWrite& write) {
  std::copy(write.bytes.begin(), write.bytes.end(), server->memory.begin() + write.offset);
}

void TakeWrite(Server* server, uint32_t offset, const uint8_t* bytes, uint32_t size) {
  if (FirstReadOnly(KnownOffsets(), offset, 1) == offset) return;
  const Trouble& trouble = server->trouble;
  ServedWrite write = {offset, {bytes, bytes + size}, In(trouble.writeDelayMs)};
  server->writes.push_back(write);
  if (trouble.replacesWrites && size == sizeof(uint16_t)) {
    const int32_t replaced = LoadFrom<uint16_t>(bytes) + trouble.replacement;
    StoreTo(write.bytes.data(), static_cast<uint16_t>(replaced));
  }
  if (trouble.writeDelayMs > 0) {
    server->delayed.push_back(write);
  } else {
    Store(server, write);
  }
}

// Returns false when the list is broken; the records before that place have been served.
bool TakeRecords(Server* server, const uint8_t* list, size_t size) {
  for (size_t at = 0; at + 4 <= size;) {
    const uint32_t kind = LoadFrom<uint32_t>(list + at);
    if (kind == 0) return true;
    const size_t header = kind == static_cast<uint32_t>(RecordKind::Read) ? 16 : 12;
    if (kind > static_cast<uint32_t>(RecordKind::Write) || size - at < header) return false;
    const uint32_t offset = LoadFrom<uint32_t>(list + at + 4), length = LoadFrom<uint32_t>(list + at + 8);
    if (offset > offsetMemorySize || length > offsetMemorySize - offset || length > size - at - header)
      return false;
    if (kind == static_cast<uint32_t>(RecordKind::Write)) TakeWrite(server, offset, list + at + header, length);
    at += header + length;
  }
  return false;
}

// Serves what has come as far as it is whole; `all` also what will not be completed any more.
void TakeFrames(Server* server, ServedClient* client, bool all) {
  std::vector<uint8_t>& buffer = client->buffer;
  const size_t whole = all ? buffer.size() : ServableSize(buffer.data(), buffer.size(), receiveSize);
  for (size_t at = 0; at < whole;) {
    ReceivedFrame frame;
    if (!ParseFrame(buffer.data(), whole, at, &frame) ||
        (frame.type == frameRequestList && !TakeRecords(server, frame.payload, frame.length))) {
      ++server->brokenFrames;
      break;  // what stands behind a broken frame is dropped with it
    }
    at += frame.length + frameOverhead;
  }
  buffer.erase(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(whole));
}

// Returns false when the connection has ended.
bool Receive(Server* server, ServedClient* client) {
  if (client->stream == noSocket) return true;  // a place that is only taken
  std::vector<uint8_t>& buffer = client->buffer;
  const int patience = buffer.size() >= segmentSize ? patientMs : splitFrameMs;
  uint8_t part[16384];
  const size_t room = std::min(sizeof part, receiveSize - buffer.size());
  if (WaitReadable(client->stream, noSocket, 0) != 0) {
    const int received = ReceiveStream(client->stream, part, room);
    if (received <= 0) return false;
    buffer.insert(buffer.end(), part, part + received);
    client->lastReceived = Clock::now();
    TakeFrames(server, client, false);
  } else if (!buffer.empty() && Clock::now() - client->lastReceived > std::chrono::milliseconds(patience)) {
    TakeFrames(server, client, true);
  }
  return true;
}

// --- Connections ---------------------------------------------------------------------------------------

void SetDoor(Server* server) {
  const bool listens = server->trouble.door == Door::Closing ||
                       (server->trouble.door == Door::Open && server->clients.size() < mostServed);
  if (!listens && server->listener != noSocket) {
    CloseSocket(server->listener);
    server->listener = noSocket;
  } else if (listens && server->listener == noSocket) {
    std::string unused;
    server->listener = OpenListener({server->ip, requestPort}, &unused);
  }
}

void Accept(Server* server) {
  NetAddress peer = {};
  while (server->listener != noSocket) {
    const SocketHandle stream = AcceptStream(server->listener, &peer);
    if (stream == noSocket) return;
    if (server->trouble.door == Door::Closing || server->clients.size() >= mostServed) {
      ResetStream(stream);
      ++server->turnedAway;
      continue;
    }
    server->clients.push_back({stream, peer, {}, Clock::now()});
    ++server->accepted;
    server->burstDue = true;
    SetDoor(server);
  }
}

void ReceiveAll(Server* server) {
  std::erase_if(server->clients, [server](ServedClient& client) {
    if (Receive(server, &client)) return false;
    CloseSocket(client.stream);
    return true;
  });
}

void RunTimers(Server* server) {
  const Clock::time_point now = Clock::now();
  std::erase_if(server->delayed, [server, now](const ServedWrite& write) {
    if (write.due > now) return false;
    Store(server, write);
    return true;
  });
  if (now >= server->announceAt) {
    server->announceAt = In(announcePauseMs);
    const std::vector<uint8_t> frame = MakeFrame(frameAnnounce, nullptr, 0, endAnnounce);
    SendDatagram(server->sender, announceGroup, frame.data(), frame.size());
  }
  if (server->nextBlock >= 0) {
    if (now >= server->blockAt) SendNextBlock(server);
  } else if (now >= server->scanAt) {
    RunCycle(server);
  }
}

}  // namespace

void SetWord(Server* server, uint32_t offset, uint16_t value) {
  StoreTo(server->memory.data() + offset, value);
}

uint16_t WordOf(const Server& server, uint32_t offset) {
  return LoadFrom<uint16_t>(server.memory.data() + offset);
}

bool OpenServer(uint32_t ip, Server* server, std::string* error) {
  server->ip = ip;
  std::string reason;
  server->listener = OpenListener({ip, requestPort}, &reason);
  const char* port = "TCP port 65000";
  if (server->listener != noSocket) {
    server->sender = OpenSender({ip, burstPort}, &reason);
    port = "UDP port 65100";
  }
  if (server->sender != noSocket) return true;
  *error = "cannot take ";
  *error += port;
  *error += " of " + IpText(ip);
  *error += " (" + reason;
  *error += "): it must be an address of this computer, and no simulator or other replay may serve it";
  CloseServer(server);
  return false;
}

void Serve(Server* server, int milliseconds) {
  const Clock::time_point end = In(milliseconds);
  do {
    SetDoor(server);
    const Clock::time_point timer = server->nextBlock >= 0 ? server->blockAt : server->scanAt;
    std::vector<SocketHandle> sockets = {server->listener};
    for (const ServedClient& client : server->clients) sockets.push_back(client.stream);
    WaitAnyReadable(sockets, MillisecondsTo(std::min(end, timer)));
    Accept(server);
    ReceiveAll(server);
    RunTimers(server);
  } while (Clock::now() < end);
}

void DropClients(Server* server) {
  for (const ServedClient& client : server->clients) CloseSocket(client.stream);
  server->clients.clear();
}

void SendToClients(Server* server, SocketHandle from, const std::vector<uint8_t>& frame) {
  for (const ServedClient& client : server->clients) {
    SendDatagram(from, client.peer, frame.data(), frame.size());
  }
}

void CloseServer(Server* server) {
  DropClients(server);
  CloseSocket(server->listener);
  CloseSocket(server->sender);
  server->listener = server->sender = noSocket;
}

}  // namespace ctl
