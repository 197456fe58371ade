// The room status/: the status page, a web server on TCP port 4321 that shows version, frame rate and a few
// flight values to any browser, one connection at a time, and asks it to reload the page every second.
//
// Start and Stop are for the simulator's thread. Everything else runs on the page's own thread, which owns
// its sockets and its log "httpLog.txt" in the simulator's folder. The page reloads itself every second: a
// browser is logged once a minute, and the log begins anew before it reaches 1 MiB.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

constexpr uint16_t statusPort = 4321;

// Values as they stand in the offset memory.
struct StatusValues {
  uint16_t framePeriod = 0;     // s x 32768
  int32_t groundElevation = 0;  // m x 256
  int32_t groundSpeed = 0;      // m/s x 65536
  int32_t verticalSpeed = 0;    // m/s x 256
  double pitch = 0, bank = 0;   // degrees
  uint32_t heading = 0;         // degrees x 2^32 / 360
};

// Starts the thread. `systemFolder` is the simulator's folder as it reports it; `localOnly` shows the page to
// browsers on this computer alone (http://127.0.0.1:4321). Returns true, or false when the system refuses.
bool StartStatusPage(const char* systemFolder, bool localOnly = false);
// Whether it runs: from a successful start until StopStatusPage has returned.
bool StatusPageRuns();
// Whether browsers are answered: not while the port belongs to another program. Any thread.
bool StatusPageAnswers();
// Ends the thread, whatever it waits for, and joins it. Nothing happens when it was not started.
void StopStatusPage();

// The answer to a request, in the pieces that are sent one by one. Pure function, any thread.
std::vector<std::string> StatusPagePieces(const StatusValues& values);
