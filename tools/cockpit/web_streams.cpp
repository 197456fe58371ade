#include <algorithm>
#include <cstdio>

#include "cockpit/web_connection.h"

namespace ctl {

namespace {

constexpr std::chrono::seconds streamLimit{5};  // for one write
constexpr int streamBuffer = 128 * 1024;        // the system's, so that little is on its way to a slow reader
constexpr double statusPause = 1;

void Pump(const Peer& peer);

// The value that all streams share which ask for it by that name.
std::shared_ptr<Watched> Share(Web* web, const Item& item) {
  const auto known = web->watched.find(item.shown);
  std::shared_ptr<Watched> watched = known == web->watched.end() ? nullptr : known->second.lock();
  if (watched) return watched;
  watched = std::make_shared<Watched>(Watched{.item = item});
  web->watched[item.shown] = watched;
  return watched;
}

// One chunk of the answer, bare for a client that knows no chunks. Nothing else is written until it is through.
void WriteChunk(const Peer& peer, const std::string& head, const std::string& data) {
  EventStream& events = *peer->events;
  char size[24];
  std::snprintf(size, sizeof size, "%zX\r\n", data.size());
  events.text = peer->isOld ? head + data : head + size + data + "\r\n";
  events.isWriting = true;
  peer->stream.expires_after(streamLimit);
  asio::async_write(peer->stream, asio::buffer(events.text), [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      peer->events->isWriting = false;
      if (fault) return EndConnection(peer);
      Pump(peer);
    });
  });
}

// Unless the timer rings before that time anyway.
void PumpAt(const Peer& peer, double time) {
  EventStream& events = *peer->events;
  const double now = WebNow(*peer->web);
  if (events.ringsAt > now && events.ringsAt <= time) return;
  events.ringsAt = std::max(time, now);
  peer->timer.expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
      std::chrono::duration<double>(events.ringsAt - now)));
  peer->timer.async_wait([peer](beast::error_code fault) {
    if (!fault) Guard(peer, [&] { Pump(peer); });
  });
}

// Sends what is due; what comes while a write is under way or before the rate allows it is merged.
void Pump(const Peer& peer) {
  constexpr double early = 0.0005;  // a timer's inaccuracy
  EventStream& events = *peer->events;
  if (events.isWriting || !peer->stream.socket().is_open()) return;
  Web* web = peer->web;
  const double now = WebNow(*web);
  std::string text;
  if (now - events.statusAt >= statusPause - early || events.wasConnected != web->mirror.connected) {
    text = StatusEvent(web->mirror, web->streams.size(), now);
    events.statusAt = now;
    events.wasConnected = web->mirror.connected;
  }
  const bool hasNews =
      events.values ? HasNews(*events.values, web->mirror) : HasNews(*events.changes, web->mirror);
  if (hasNews && now - events.lastAt >= events.pause - early) {
    const std::string event = events.values ? ValuesEvent(web->mirror, now, &*events.values)
                                            : ChangesEvent(web->mirror, now, &*events.changes);
    if (!event.empty()) events.lastAt = now;
    text += event;
  }
  const double next =
      hasNews && events.lastAt + events.pause > now ? events.lastAt + events.pause : now + statusPause;
  if (!text.empty()) return WriteChunk(peer, "", text);
  PumpAt(peer, std::min(next, events.statusAt + statusPause));
}

// The client has nothing to say; its end is noticed here.
void WatchStream(const Peer& peer) {
  peer->stream.async_read_some(asio::buffer(peer->spare), [peer](beast::error_code fault, size_t) {
    if (fault) return EndConnection(peer);
    WatchStream(peer);
  });
}

}  // namespace

void BeginStream(const Peer& peer, const Outcome& outcome) {
  Web* web = peer->web;
  EventStream& events = peer->events.emplace();
  events.pause = 1 / outcome.rate;
  if (outcome.deed == Deed::ValueStream) {
    events.values.emplace();
    for (const Item& item : outcome.items) events.values->values.push_back(Share(web, item));
  } else {
    events.changes.emplace();
  }
  std::string head =
      "HTTP/1.1 200 OK\r\nServer: TAVRIX\r\nContent-Type: text/event-stream\r\nConnection: close\r\n";
  if (!peer->isOld) head += "Transfer-Encoding: chunked\r\n";
  for (const auto& [name, value] : CommonHeaders(peer->request.target)) head += name + ": " + value + "\r\n";
  beast::error_code ignored;
  peer->stream.socket().set_option(tcp::no_delay(true), ignored);
  peer->stream.socket().set_option(tcp::socket::send_buffer_size(streamBuffer), ignored);
  web->streams.push_back(peer);
  peer->stream.expires_never();
  WatchStream(peer);
  // The status first, which says whether values can come at all.
  events.wasConnected = web->mirror.connected;
  events.statusAt = WebNow(*web);
  WriteChunk(peer, head + "\r\n", StatusEvent(web->mirror, web->streams.size(), WebNow(*web)));
}

void PumpAll(Web* web) {
  const std::vector<Peer> streams = web->streams;
  for (const Peer& peer : streams) {
    Guard(peer, [&] { Pump(peer); });
  }
}

}  // namespace ctl
