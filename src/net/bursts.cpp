// The burst thread: sends the offset memory to all clients, in blocks when somebody has connected and as lists
// of changes from then on. It lives while at least one client is connected.
#include <cstring>

#include "base/log.h"
#include "net/change_scan.h"
#include "net/frame.h"
#include "net/server.h"
#include "offsets/memory.h"
#include "platform/clock.h"

namespace {

constexpr uint32_t blockSize = 16384;
constexpr uint32_t blockCount = offsetMemorySize / blockSize;
constexpr int sendQueue = 1 << 20;
constexpr int blockPauseMs = 10;
constexpr int changePauseMs = 20;
constexpr uint32_t socketCycles = 50;     // change cycles between two tries for a socket
constexpr uint32_t rollingCycles = 1000;  // change cycles between two rolling blocks

enum class State { FullBurst, RollingBlock, Changes };

// Private to the burst thread; a new one starts only after the previous was joined.
Thread burstThread;
uint8_t blockFrame[blockSize + frameOverhead];
uint8_t changeFrame[changeEntriesSize + frameOverhead];

// The client list lock is held for one frame to all clients, so that none is removed meanwhile. A client that
// cannot be reached does not keep the others from getting it.
void SendToAll(Socket* socket, const uint8_t* frame, size_t size) {
  LockScope lock(&clientListLock);
  for (const ClientSlot& slot : clientSlots) {
    if (slot.inUse) SendDatagram(socket, frame, size, slot.peer);
  }
}

void SendBlock(Socket* socket, uint32_t index) {
  uint8_t* payload = blockFrame + frameHeaderSize;
  if (index < blockCount) {
    const ServerLockScope lock;
    std::memcpy(payload, offsetMemory.bytes + index * blockSize, blockSize);
  } else {
    std::memset(payload, 0, blockSize);  // behind the synchronised area there is nothing
  }
  SendToAll(socket, blockFrame,
            FinishFrame(blockFrame, static_cast<uint8_t>(frameFirstBlock + index), blockSize, endBlock));
}

void SendChanges(Socket* socket) {
  const uint32_t count = ScanChanges(changeFrame + frameHeaderSize);
  if (count == 0) return;
  SendToAll(socket, changeFrame, FinishFrame(changeFrame, frameChanges, count * changeEntrySize, endChanges));
}

bool TryBurstSocket(Socket* socket) {
  if (!OpenSocket(socket, Transport::Datagram) || !BindSocket(socket, {serverIp, burstPort})) return false;
  // Room for a round of blocks to all clients: what does not fit is dropped, as nothing waits for a link.
  SetSendQueue(socket, sendQueue);
  return true;
}

void OpenBurstSocket(Socket* socket) {
  if (TryBurstSocket(socket)) return;
  const int error = SocketErrorNumber();
  if (!MayTellClients()) return;
  LogNetwork("TAVFARNET->tXsyncBurstThread bind() failed %i\n", error);
  LogOwn("%s\n", AdviseOnFailure("UDP", burstPort, error).c_str());
}

bool TakeNewClient() {
  LockScope lock(&clientListLock);
  return newClient.exchange(0) != 0;
}

// The mark is cleared under the same lock under which a client is added: whoever comes now finds it cleared
// and gets a new burst thread, whose port is free.
bool EndWhenAlone(Socket* socket) {
  LockScope lock(&clientListLock);
  if (burstRunning.load() != 0 && CountClients() > 0) return false;
  CloseSocket(socket);
  burstRunning = 0;
  return true;
}

uint32_t BurstProcedure(void*) {
  Socket socket;
  OpenBurstSocket(&socket);
  State state = State::FullBurst;
  uint32_t rollingIndex = 0;
  uint32_t cycles = 0;
  do {
    switch (state) {
      case State::FullBurst:
        for (rollingIndex = 0; rollingIndex < blockCount; ++rollingIndex) {
          SleepMilliseconds(blockPauseMs);
          SendBlock(&socket, rollingIndex);
        }
        state = State::Changes;
        break;
      case State::RollingBlock:
        SendBlock(&socket, rollingIndex);
        rollingIndex = rollingIndex >= blockCount ? 0 : rollingIndex + 1;
        state = State::Changes;
        break;
      case State::Changes:
        SendChanges(&socket);
        SleepMilliseconds(changePauseMs);
        if (++cycles == rollingCycles) {
          cycles = 0;
          state = State::RollingBlock;
        }
        if (TakeNewClient()) state = State::FullBurst;
        // The system had no socket left: again once a second.
        if (socket.handle == -1 && cycles % socketCycles == 0 && TryBurstSocket(&socket))
          state = State::FullBurst;
        FollowPeerNames();
        break;
    }
  } while (!EndWhenAlone(&socket));
  if (MayTellClients()) LogNetwork("SocketI->Closing burst thread \n");
  return 0;
}

}  // namespace

bool StartBursts() {
  if (StartThread(&burstThread, BurstProcedure, nullptr)) return true;
  burstRunning = 0;
  return false;
}

bool BurstsNeedJoin() { return burstThread.started.load() != 0; }

void JoinBursts() { JoinThread(&burstThread); }
