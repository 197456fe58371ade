// The network way: a TCP connection takes requests to the server, datagrams bring the offset memory back.
// Main thread; a thread of its own receives between open and close.
#pragma once
#include <string>
#include <vector>

#include "transport.h"

namespace ctl {

struct NetSettings {
  std::string host;         // name or dotted address
  bool confirm;             // a write waits until the server shows the written bytes
  bool (*stopRequested)();  // true ends every wait
};

// The transport to that server. Reads answer from the picture that the datagrams give, the first one waits
// until all blocks of it have come. A write is the last thing that an open transport does.
const Transport* NetTransport(const NetSettings& settings);

// Listens for servers that announce themselves: ends after `settleMs` of hearing no new one since the first, or
// after `timeoutMs`. Returns their addresses in the order heard; none, with a line in `error`, on failure.
std::vector<std::string> FindServers(int settleMs, int timeoutMs, bool (*stopRequested)(), std::string* error);

}  // namespace ctl
