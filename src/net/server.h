// What the threads of the network server share. Internal to this room.
#pragma once
#include <atomic>
#include <cstdint>
#include <string>

#include "base/log.h"
#include "net/client_table.h"
#include "offsets/request_walk.h"
#include "platform/socket.h"
#include "platform/thread.h"

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
// Whether the lines about a client that comes or goes are due: clients can do so without end. Any thread.
bool MayTellClients();
// Whether the last connection could not be accepted for want of handles, threads or memory. Any thread.
bool IsShortOfResources();
// A line of advice after a failed call on a port: what was tried, why it failed, what to do. Takes the system's
// error number. Returns the text without the line end.
std::string AdviseOnFailure(const char* transport, uint16_t port, int error);
// The same in few words, for a window.
std::string ShortReason(const char* transport, uint16_t port, int error);

// --- sessions.cpp: one receive thread for each slot of the client table --------------------------------
enum class SessionStart { Done, NoHandle, NoThread };
// Joins the thread of the slot's previous client, which has freed the slot. Accept thread, no lock held.
void JoinSession(uint32_t slot);
// Takes an accepted connection over into the slot's session and starts its thread; the slot was joined and has
// its client. Accept thread, no lock held. In case of failure the connection is closed and the slot still
// taken.
SessionStart StartSession(uint32_t slot, Socket* connection);
// Ends all sessions: forgets every client, wakes and joins the threads. Accept thread, or the simulator's after
// that one was joined; no lock held.
void EndSessions();
// Takes one received buffer apart into frames and serves them, until the first that is none. Any thread, no
// lock held; the buffer's content is changed.
void ServeFrames(uint8_t* buffer, size_t size, RequestScratch* scratch);
// Forgets all subscriptions.
void ClearSubscriptions();
// Whether a client has marked the offset.
bool IsSubscribed(uint32_t offset);

// --- bursts.cpp -------------------------------------------------------------------------------------------
// Starts the burst thread, whose mark is set and whose predecessor was joined. Accept thread, no lock held.
// Returns true, or false with the mark cleared.
bool StartBursts();
// Whether a burst thread was started and not joined. As JoinBursts, with any lock held.
bool BurstsNeedJoin();
// Waits for the end of the burst thread, whose mark is cleared. Accept thread, and the simulator's after that
// one was joined; no lock held.
void JoinBursts();

// --- peer_names.cpp ---------------------------------------------------------------------------------------
// Takes the names that look-ups have found and begins those that are wanted; never waits. Burst thread, no lock
// held.
void FollowPeerNames();
// Ends the look-ups; those that still run after half a second are left alone. Simulator's thread, when all
// threads of the room have ended.
void EndPeerNames();

// --- announce.cpp -----------------------------------------------------------------------------------------
// Opens the announcement socket. Simulator's thread. Returns true, or false (the caller closes it).
bool OpenAnnouncement();
void CloseAnnouncement();
// Announces once a second on a thread of its own. Accept thread. Returns true, or false when the
// system refuses.
bool StartAnnouncement();
// Ends the thread at once and closes the socket.
void StopAnnouncement();
