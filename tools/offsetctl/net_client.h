// The network way: a TCP connection takes requests to the server, datagrams bring the offset memory back.
// One thread, the same from open to close; a thread of its own receives between open and close.
#pragma once
#include <string>
#include <vector>

#include "recording.h"
#include "transport.h"

namespace ctl {

struct NetSettings {
  std::string host;         // name or dotted address
  bool (*stopRequested)();  // true ends every wait
  bool keepsFrames;         // for TakeFrames
};

// The transport to that server. Reads answer from the picture that the datagrams give, the first one waits
// until all blocks of it have come.
const Transport* NetTransport(const NetSettings& settings);

// Takes the frames that have come since the last call, each with its time since the transport was opened. Waits
// up to `timeoutMs` for one. Returns true, or false with a line in `error` when the server has gone; frames
// that came before are taken then, too.
bool TakeFrames(int timeoutMs, std::vector<RecordedFrame>* frames, std::string* error);

// Sends writes and goes on: unlike the transport's own, for a connection that stays. Nothing tells when the
// server has taken them but that they show. Returns true, or false with a line in `error` when the server has
// gone.
bool SendWrites(const std::vector<Transfer>& transfers, std::string* error);

// Listens for servers that announce themselves: ends after `settleMs` of hearing no new one since the first, or
// after `timeoutMs`. Returns their addresses in the order heard; none, with a line in `error`, on failure.
std::vector<std::string> FindServers(int settleMs, int timeoutMs, bool (*stopRequested)(), std::string* error);

}  // namespace ctl
