// What the threads of the network server share. Internal to this room.
#pragma once
#include <atomic>
#include <cstdint>
#include <string>

#include "net/client_table.h"
#include "offsets/request_walk.h"
#include "platform/socket.h"
#include "platform/thread.h"
#include "shell/log.h"

constexpr uint16_t requestPort = 65000;
constexpr uint16_t burstPort = 65100;
constexpr uint16_t announcePort = 54942;

extern uint32_t serverIp;           // 0 when the setting holds no address; set before the threads start
extern char serverAddressText[20];  // the setting itself
extern std::atomic<uint32_t> serverRunning;
extern std::atomic<uint32_t> clientThreadsRunning;
extern std::atomic<uint32_t>
    burstRunning;                        // cleared by the burst thread under the client list lock, or by stop
extern std::atomic<uint32_t> newClient;  // a full burst is due; changed under the client list lock

// A main-log line with the time stamp in front: "hh:mm:ss:mmm " and the text.
void LogNetwork(const char* format, ...) TAVRIX_PRINTF(1, 2);
// A line of advice after a failed call on a port: what was tried, why it failed, what to do. Takes the system's
// error number. Returns the text without the line end.
std::string AdviseOnFailure(const char* transport, uint16_t port, int error);

// --- sessions.cpp: one receive thread for each slot of the client table --------------------------------
// Takes an accepted connection over into the slot's session and starts its thread. Accept thread, client list
// lock held. Returns 1, or 0 when the system refuses (the connection is closed then).
int StartSession(uint32_t slot, Socket* connection);
// Ends all sessions: wakes and forgets every client under the client list lock, then joins the threads. Accept
// thread, or the simulator's after that one was joined; no lock held.
void EndSessions();
// Takes one received buffer apart into frames and serves them, until the first that is none. Any thread, no
// lock held; the buffer's content is changed.
void ServeFrames(uint8_t* buffer, size_t size, RequestScratch* scratch);
// Forgets all subscriptions.
void ClearSubscriptions();
// 1 when a client has marked the offset.
int IsSubscribed(uint32_t offset);

// --- bursts.cpp -------------------------------------------------------------------------------------------
// Starts the burst thread with its mark set; a previous one, which has cleared the mark, is joined before.
// Accept thread, client list lock held. Returns 1 or 0.
int StartBursts();
// Waits for the burst thread's end. Simulator's thread, after burstRunning was cleared.
void JoinBursts();

// --- announce.cpp -----------------------------------------------------------------------------------------
// Opens the announcement socket. Simulator's thread. Returns 1 or 0 (closed again).
int OpenAnnouncement();
void CloseAnnouncement();
// Announces once a second on a thread of its own. Accept thread. Returns 1 or 0.
int StartAnnouncement();
// Ends the thread at once and closes the socket.
void StopAnnouncement();
