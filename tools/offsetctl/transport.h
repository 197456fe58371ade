// How the tool reaches the offset memory of a running plug-in. One way at a time, on one thread.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

// One stretch of the offset memory and the bytes that come from it or go to it.
struct Transfer {
  uint32_t offset;
  uint32_t size;
  uint8_t* bytes;
};

struct WriteCheck;

struct Transport {
  const char* title;  // names the way, for the monitor
  // Finds the server, or connects to it. `timeoutMs` bounds every call from here on. Returns true, or false
  // with a line in `error`.
  bool (*open)(int timeoutMs, std::string* error);
  // Both return true, or false with a line in `error` when the server is gone, refused or did not answer in
  // time. Of several requests that a long list needs, the first may have been served by then. `readOffsets`
  // also ends, with false, soon after Ctrl-C.
  bool (*readOffsets)(const std::vector<Transfer>& transfers, std::string* error);
  bool (*writeOffsets)(const std::vector<Transfer>& transfers, std::string* error);
  // Writes, and waits until every check (one a transfer) is done: until the server has shown the written bytes
  // or what Follows() accepts. Returns true, or false with a line in `error`; `shown` of each check is filled
  // in either case. Null when the way has nothing better than reading again. Both writes are the last thing
  // that an open transport does.
  bool (*writeConfirmed)(const std::vector<Transfer>& transfers, std::vector<WriteCheck>* checks,
                         std::string* error);
  // Seconds since anything came from the server, which sends with every frame of the simulator, a paused one,
  // too. Null when the way has an answer to every read.
  double (*silence)();
  // Gives everything back. Does nothing when it is not open.
  void (*close)();
};

// The window server of the plug-in on this computer; null on systems that have none.
const Transport* LocalTransport();

}  // namespace ctl
