// The room net/: clients on other computers read and write the offset memory.
//
// Clients connect by TCP (port 65000) and send request lists; what they may know of the offset memory goes to
// each of them by UDP from port 65100: the whole of it in blocks when somebody has connected, then the
// changes about fifty times a second. A multicast datagram announces the server once a second. At most eight
// clients; a ninth is served as soon as one of them leaves. Relay records (relay.h) keep several simulators
// in step.
//
// Threads: accept (server.cpp), one receive thread for each client (sessions.cpp), bursts (bursts.cpp),
// announcement (announce.cpp). Each socket belongs to one of them, which alone closes it; all are joined by
// StopNetworkServer. The functions below are for the simulator's thread; between Open and Stop nothing here
// is touched by anybody else but those threads.
#pragma once
#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

// Takes the server address of the settings (cut to 19 characters), forgets subscriptions and what was
// reported to clients. At enable, when no thread of the room runs.
void PrepareNetwork(const char* serverAddress);
// Opens the TCP and the announcement socket and logs how that went. Returns true, or false when one of them
// cannot be had: networkStatusText and networkAlertText tell then, and nothing is left open.
bool OpenNetworkServer();
// Starts the accept thread, which starts the others. Returns true, or false when the system refuses (the
// sockets are closed then). After OpenNetworkServer.
bool StartNetworkServer();
// Tells all threads to end, joins them and closes everything; two of the pauses in it (100 ms each) let
// connections settle. Nothing happens when the server was not started.
void StopNetworkServer();

// Number of connected clients as it was published last. Any thread, no lock.
uint32_t ConnectedClients();
// Whether clients are accepted, and whether the server announces itself. Any thread, no lock.
bool NetworkServerRuns();
bool AnnouncementRuns();
// The connected clients as "ADDRESS NAME", in the order of their slots. Never waits: returns false, with the
// list as it was, when the client list lock is busy. Any thread, no lock held, while the locks exist.
bool TryListClients(std::vector<std::string>* clients);

// " FAILED ! Wrong IP address" after a failed start, else "".
extern char networkStatusText[32];
// The same failure's reason, as short as a window has room for: what failed, why, what to do; else "".
extern char networkReasonText[160];
// What was tried and which setting to change, for the alert window; "" without failure.
extern char networkAlertText[200];
