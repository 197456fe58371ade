// Names of clients by reverse look-up. A name server may take seconds to answer or never do so; nothing waits
// for it: a client is called "unknown" until its name comes. Each slot has one look-up at a time.
#include <cstring>

#include "net/address.h"
#include "net/server.h"
#include "platform/clock.h"
#include "platform/detached.h"
#include "platform/system.h"

namespace {

constexpr int stopWaitMs = 500;  // for all look-ups together
constexpr int64_t msInNs = 1000000;

// A look-up's question and answer; it travels with the work.
struct Question {
  SocketAddress peer;
  uint16_t number;  // of the client it was asked for
  bool found;
  char name[peerNameSize];
};
static_assert(sizeof(Question) <= maxDetachedData);

struct Look {
  DetachedWork* work;
  Question question;
};
Look looks[maxClients];  // client list lock

void LookUp(void* data) {
  auto* question = static_cast<Question*>(data);
  // Of its own, as it may outlive the plug-in's use of the library.
  const bool opened = OpenSocketLibrary();
  question->found = LookUpPeerName(question->peer, question->name, sizeof question->name);
  if (opened) CloseSocketLibrary();
}

// The slot's client has left meanwhile, perhaps for another one: the answer is nobody's then.
void TakeAnswer(const Question& question, ClientSlot* client) {
  if (!client->inUse || client->number != question.number || client->peer.ip != question.peer.ip) return;
  client->nameWanted = false;
  if (question.found) std::memcpy(client->name, question.name, sizeof client->name);
}

}  // namespace

void FollowPeerNames() {
  const LockScope lock(&clientListLock);
  for (uint32_t i = 0; i < maxClients; ++i) {
    Look& look = looks[i];
    ClientSlot& client = clientSlots[i];
    if (look.work != nullptr && FinishDetached(&look.work, 0, &look.question))
      TakeAnswer(look.question, &client);
    if (look.work != nullptr || !client.inUse || !client.nameWanted) continue;
    look.question = {client.peer, client.number, false, {}};
    look.work = StartDetached(LookUp, &look.question, sizeof look.question);
    if (look.work != nullptr) continue;
    client.nameWanted = false;
    if (MayTellClients()) {
      LogNetwork("TAVFARNET->The system gives no thread to look up the name of %s: it stays \"unknown\"; %s\n",
                 AddressText(client.peer.ip).c_str(), shortageRemedy);
    }
  }
}

void EndPeerNames() {
  const int64_t deadline = MonotonicNanoseconds() + stopWaitMs * msInNs;
  for (Look& look : looks) {
    const int64_t left = deadline - MonotonicNanoseconds();
    if (look.work != nullptr)
      FinishDetached(&look.work, static_cast<int>(left > 0 ? left / msInNs : 0), &look.question);
    LeaveDetached(&look.work);
  }
}
