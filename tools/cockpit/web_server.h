// The web cockpit's HTTP server: connections, streams, time-outs, bounds. One thread runs all of it and alone
// knows the mirror.
#pragma once
#include <chrono>
#include <memory>
#include <string>

#include "cockpit/answers.h"
#include "cockpit/source.h"

namespace ctl {

struct Web;

// Listens at that address (dotted, or an IPv6 one) and port; 0 is any free one. Null with a line in `error`
// when that is not possible.
std::shared_ptr<Web> OpenWeb(const std::string& address, unsigned port, std::string* error);
unsigned PortOf(const Web& web);
// Names by which this computer knows itself, in small letters.
std::string ComputerName();
// Whether that is an address, and whether only this computer reaches it.
bool ReadAddress(const std::string& text, bool* isLoopback, bool* isAny);
// Takes a batch of the source to the server's thread; any thread, while there is a server.
void TakeBatch(Web* web, Batch batch);
// Serves until `stopRequested`. Nothing that a client does ends it.
void RunWeb(Web* web, const Site& site, Source* source, std::chrono::steady_clock::time_point start,
            bool (*stopRequested)());

}  // namespace ctl
