#include "cockpit/web_server.h"

// Asio needs it first with this compiler.
#include <algorithm>
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <cstdio>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "offsetctl/show.h"

namespace ctl {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr size_t mostConnections = 200;  // served at a time; one beyond them is told so
constexpr size_t mostRefused = 50;       // being told so at a time; others are closed at once
constexpr uint32_t headerLimit = 32 * 1024;
constexpr uint64_t bodyLimit = 64 * 1024;
constexpr seconds idleLimit{30}, readLimit{10}, answerLimit{10}, streamLimit{5}, lingerLimit{2};
constexpr size_t mostLingering = 1 << 20;  // bytes that are read and thrown away at a connection's end
constexpr milliseconds tick{20};
constexpr int streamBuffer = 128 * 1024;  // the system's, so that little is on its way to a slow reader
constexpr double statusPause = 1;

struct Stream {
  double pause = 0.05;  // seconds from one event to the next
  std::optional<ValueStream> values;
  std::optional<ChangeStream> changes;
  double lastAt = -1000, statusAt = -1000;
  double ringsAt = -1000;  // the timer
  bool wasConnected = false;
  bool isWriting = false;
  std::string text;  // being written
};

}  // namespace

struct Connection {
  Connection(Web* owner, tcp::socket socket);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Web* web;
  beast::tcp_stream stream;
  beast::flat_buffer buffer;
  std::optional<http::request_parser<http::string_body>> parser;
  http::response<http::string_body> response;
  std::string target;   // of the request that is answered
  bool isKept = false;  // the connection goes on behind the answer
  bool isHead = false;
  bool isRefused = false;  // one beyond the limit
  size_t lingered = 0;
  std::optional<Stream> events;
  asio::steady_timer timer;  // of the stream's next event
  char spare[512] = {};      // what a stream's client sends is thrown away
};

using Peer = std::shared_ptr<Connection>;

struct WaitingWrite {
  PendingWrite write;
  Peer peer;
};

// Everything below is the server thread's own.
struct Web {
  size_t served = 0, refused = 0;  // connections; they outlive the rest
  asio::io_context io{1};
  tcp::acceptor acceptor{io};
  asio::steady_timer ticker{io};
  asio::steady_timer acceptPause{io};
  std::vector<Peer> streams;
  std::vector<WaitingWrite> writes;
  std::unordered_map<uint64_t, Peer> orders;  // that wait for their result
  std::map<std::string, std::weak_ptr<Watched>, std::less<>> watched;
  uint64_t lastId = 0;
  double sweptAt = 0;
  Mirror mirror;
  Site site;
  Source* source = nullptr;
  bool (*stopRequested)() = nullptr;
  Clock::time_point start;
};

Connection::Connection(Web* owner, tcp::socket socket) : web(owner), stream(std::move(socket)), timer(web->io) {
  isRefused = web->served >= mostConnections;
  ++(isRefused ? web->refused : web->served);
}

Connection::~Connection() { --(isRefused ? web->refused : web->served); }

namespace {

double Now(const Web& web) { return std::chrono::duration<double>(Clock::now() - web.start).count(); }

void Close(const Peer& peer) {
  beast::error_code ignored;
  peer->timer.cancel(ignored);
  peer->stream.socket().close(ignored);
}

void EndStream(const Peer& peer) {
  std::erase(peer->web->streams, peer);
  Close(peer);
}

// Runs a step of a connection. What it throws (memory, what a part does not expect) ends that connection alone.
template <typename Step>
void Guard(const Peer& peer, Step step) {
  try {
    step();
  } catch (...) {
    EndStream(peer);
  }
}

// --- Requests and answers ----------------------------------------------------------------------------------

void ReadNext(const Peer& peer);
void HandOver(const Peer& peer, const PutRequest& put);
void BeginStream(const Peer& peer, Outcome outcome);
void PumpAll(Web* web);

// Reads on until the client has closed too: else what it still sends would wipe out the answer on its way.
void Linger(const Peer& peer) {
  peer->stream.async_read_some(asio::buffer(peer->spare), [peer](beast::error_code fault, size_t size) {
    peer->lingered += size;
    if (fault || peer->lingered > mostLingering) return Close(peer);
    Linger(peer);
  });
}

void Finish(const Peer& peer) {
  beast::error_code fault;
  peer->stream.socket().shutdown(tcp::socket::shutdown_send, fault);
  if (fault) return Close(peer);
  peer->stream.expires_after(lingerLimit);
  Linger(peer);
}

void Send(const Peer& peer, WebAnswer answer) {
  auto& response = peer->response;
  response = {};
  response.version(11);
  response.result(answer.status);
  response.set(http::field::server, "TAVRIX");
  if (answer.status != 303) response.set(http::field::content_type, answer.type);
  for (const Pairs& headers : {CommonHeaders(peer->target), answer.headers}) {
    for (const auto& [name, value] : headers) response.set(name, value);
  }
  response.keep_alive(peer->isKept);
  response.body() = std::move(answer.body);
  response.prepare_payload();
  if (peer->isHead) response.body().clear();  // the length stays
  peer->stream.expires_after(answerLimit);
  http::async_write(peer->stream, response, [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      if (fault) return Close(peer);
      if (!peer->isKept) return Finish(peer);
      ReadNext(peer);
    });
  });
}

void SendRefusal(const Peer& peer, const Refusal& refusal) { Send(peer, AnswerOf(refusal)); }

// The request could not be read to its end.
void AnswerBroken(const Peer& peer, beast::error_code fault) {
  peer->isKept = peer->isHead = false;
  peer->target = "/api";
  if (fault == http::error::header_limit || fault == http::error::buffer_overflow) {
    return SendRefusal(peer, {413, "the header has more than 32 KB", "header", "ask for less at once"});
  }
  if (fault == http::error::body_limit) {
    return SendRefusal(peer, {413, "the body has more than 64 KB", "body", "write in several requests"});
  }
  const bool isMalformed = fault.category() == http::make_error_code(http::error::bad_method).category() &&
                           fault != http::error::end_of_stream && fault != http::error::partial_message;
  if (!isMalformed) return Close(peer);
  SendRefusal(peer, {400, "that is no HTTP request", "request", "speak HTTP/1.1"});
}

WebRequest RequestOf(http::request<http::string_body>* message) {
  WebRequest request;
  request.method = std::string(message->method_string());
  request.target = std::string(message->target());
  for (const auto& field : *message) {
    request.headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
  }
  request.body = std::move(message->body());
  return request;
}

void Handle(const Peer& peer) {
  Web* web = peer->web;
  auto message = peer->parser->release();
  peer->parser.reset();
  peer->isKept = message.keep_alive() && !peer->isRefused;
  peer->isHead = message.method() == http::verb::head;
  const WebRequest request = RequestOf(&message);
  peer->target = request.target;
  if (peer->isRefused) {
    return SendRefusal(peer, {503, "200 connections are open, which is the limit", "connections",
                              "close other pages that show the cockpit"});
  }
  Outcome outcome = Answer(request, web->site, web->mirror, web->streams.size(), Now(*web));
  switch (outcome.deed) {
    case Deed::Reply:
      return Send(peer, std::move(outcome.answer));
    case Deed::Write:
      return HandOver(peer, outcome.put);
    case Deed::Order:
      outcome.order.id = ++web->lastId;
      web->orders[outcome.order.id] = peer;
      return GiveOrder(outcome.order, web->source);
    case Deed::ValueStream:
    case Deed::ChangeStream:
      return BeginStream(peer, std::move(outcome));
  }
}

void ReadBody(const Peer& peer) {
  peer->stream.expires_after(readLimit);
  http::async_read(peer->stream, peer->buffer, *peer->parser, [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      if (fault) return AnswerBroken(peer, fault);
      Handle(peer);
    });
  });
}

void ReadHeader(const Peer& peer) {
  peer->stream.expires_after(peer->isRefused ? lingerLimit : readLimit);
  http::async_read_header(peer->stream, peer->buffer, *peer->parser, [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      if (fault) return AnswerBroken(peer, fault);
      if (beast::iequals(peer->parser->get()[http::field::expect], "100-continue")) {
        // Its client waits for this before it sends the body.
        static constexpr char goOn[] = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(peer->stream, asio::buffer(goOn, sizeof goOn - 1),
                          [peer](beast::error_code broken, size_t) {
                            Guard(peer, [&] { return broken ? Close(peer) : ReadBody(peer); });
                          });
        return;
      }
      ReadBody(peer);
    });
  });
}

// An open connection may be idle for longer than a request may take.
void ReadNext(const Peer& peer) {
  peer->parser.emplace();
  peer->parser->header_limit(headerLimit);
  peer->parser->body_limit(bodyLimit);
  if (peer->buffer.size() > 0) return ReadHeader(peer);
  peer->stream.expires_after(peer->isRefused ? lingerLimit : idleLimit);
  peer->stream.async_read_some(peer->buffer.prepare(4096), [peer](beast::error_code fault, size_t size) {
    Guard(peer, [&] {
      if (fault) return Close(peer);
      peer->buffer.commit(size);
      ReadHeader(peer);
    });
  });
}

// --- Writes ------------------------------------------------------------------------------------------------

void HandOver(const Peer& peer, const PutRequest& put) {
  Web* web = peer->web;
  SourceOrder order = {.kind = OrderKind::Write, .id = ++web->lastId, .seconds = put.wait + 1};
  for (const Item& item : put.items) order.writes.push_back({item.offset, item.bytes});
  web->writes.push_back({BeginWrite(put, web->site.names, web->mirror, Now(*web)), peer});
  web->writes.back().write.id = order.id;
  GiveOrder(order, web->source);
}

// Answers every write that can be.
void SettleWrites(Web* web, const std::vector<uint64_t>& echoed) {
  const double now = Now(*web);
  for (size_t i = 0; i < web->writes.size();) {
    WaitingWrite& waiting = web->writes[i];
    const bool isEchoed = std::find(echoed.begin(), echoed.end(), waiting.write.id) != echoed.end();
    if (!UpdateWrite(web->mirror, now, isEchoed, &waiting.write)) {
      ++i;
      continue;
    }
    const WaitingWrite done = std::move(waiting);
    web->writes.erase(web->writes.begin() + static_cast<std::ptrdiff_t>(i));
    Guard(done.peer, [&] { Send(done.peer, {.body = WriteJson(done.write, web->mirror, now)}); });
  }
}

// What the source says about a write or an order.
void TakeResult(Web* web, const OrderResult& result) {
  const Refusal refusal = {result.status, result.error, result.where, result.remedy};
  for (size_t i = 0; i < web->writes.size(); ++i) {
    if (web->writes[i].write.id != result.id) continue;
    if (result.status == 200) return WriteSent(web->mirror, Now(*web), &web->writes[i].write);
    const Peer peer = web->writes[i].peer;
    web->writes.erase(web->writes.begin() + static_cast<std::ptrdiff_t>(i));
    return Guard(peer, [&] { SendRefusal(peer, refusal); });
  }
  const auto order = web->orders.find(result.id);
  if (order == web->orders.end()) return;
  const Peer peer = order->second;
  web->orders.erase(order);
  Guard(peer, [&] {
    if (result.status != 200) return SendRefusal(peer, refusal);
    Send(peer, {.body = StatusJson(web->mirror, web->streams.size(), Now(*web))});
  });
}

// --- Streams -----------------------------------------------------------------------------------------------

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

// One chunk of the answer. Nothing else is written until it is through.
void WriteChunk(const Peer& peer, const std::string& head, const std::string& data) {
  Stream& events = *peer->events;
  char size[24];
  std::snprintf(size, sizeof size, "%zX\r\n", data.size());
  events.text = head + size + data + "\r\n";
  events.isWriting = true;
  peer->stream.expires_after(streamLimit);
  asio::async_write(peer->stream, asio::buffer(events.text), [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      peer->events->isWriting = false;
      if (fault) return EndStream(peer);
      Pump(peer);
    });
  });
}

// Unless the timer rings before that time anyway.
void PumpAt(const Peer& peer, double time) {
  Stream& events = *peer->events;
  const double now = Now(*peer->web);
  if (events.ringsAt > now && events.ringsAt <= time) return;
  events.ringsAt = std::max(time, now);
  peer->timer.expires_after(
      std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(events.ringsAt - now)));
  peer->timer.async_wait([peer](beast::error_code fault) {
    if (!fault) Guard(peer, [&] { Pump(peer); });
  });
}

// Sends what is due; what comes while a write is under way or before the rate allows it is merged.
void Pump(const Peer& peer) {
  constexpr double early = 0.0005;  // a timer's inaccuracy
  Stream& events = *peer->events;
  if (events.isWriting || !peer->stream.socket().is_open()) return;
  Web* web = peer->web;
  const double now = Now(*web);
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
    if (fault) return EndStream(peer);
    WatchStream(peer);
  });
}

void BeginStream(const Peer& peer, Outcome outcome) {
  Web* web = peer->web;
  Stream& events = peer->events.emplace();
  events.pause = 1 / outcome.rate;
  if (outcome.deed == Deed::ValueStream) {
    events.values.emplace();
    for (const Item& item : outcome.items) events.values->values.push_back(Share(web, item));
  } else {
    events.changes.emplace();
  }
  std::string head =
      "HTTP/1.1 200 OK\r\nServer: TAVRIX\r\nContent-Type: text/event-stream\r\n"
      "Transfer-Encoding: chunked\r\nConnection: close\r\n";
  for (const auto& [name, value] : CommonHeaders(peer->target)) head += name + ": " + value + "\r\n";
  beast::error_code ignored;
  peer->stream.socket().set_option(tcp::no_delay(true), ignored);
  peer->stream.socket().set_option(tcp::socket::send_buffer_size(streamBuffer), ignored);
  web->streams.push_back(peer);
  peer->stream.expires_never();
  WatchStream(peer);
  // The status first, which says whether values can come at all.
  events.wasConnected = web->mirror.connected;
  events.statusAt = Now(*web);
  WriteChunk(peer, head + "\r\n", StatusEvent(web->mirror, web->streams.size(), Now(*web)));
}

void PumpAll(Web* web) {
  const std::vector<Peer> streams = web->streams;
  for (const Peer& peer : streams) {
    Guard(peer, [&] { Pump(peer); });
  }
}

// --- The whole ---------------------------------------------------------------------------------------------

void TakeBatchHere(Web* web, const Batch& batch) {
  ApplyBatch(batch, Now(*web), &web->mirror);
  BatchTaken(web->source);
  for (const OrderResult& result : batch.results) TakeResult(web, result);
  SettleWrites(web, batch.echoed);
  PumpAll(web);
}

void Accept(Web* web) {
  web->acceptor.async_accept([web](beast::error_code fault, tcp::socket socket) {
    if (fault == asio::error::operation_aborted) return;
    try {
      if (!fault && (web->served < mostConnections || web->refused < mostRefused)) {
        beast::error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        const Peer peer = std::make_shared<Connection>(web, std::move(socket));
        Guard(peer, [&] { ReadNext(peer); });
      }
    } catch (...) {  // no memory for one more connection
    }
    if (!fault) return Accept(web);
    // No handles are left, or a client has gone at once: trying again right away would take all the time.
    web->acceptPause.expires_after(milliseconds(50));
    web->acceptPause.async_wait([web](beast::error_code stopped) {
      if (!stopped) Accept(web);
    });
  });
}

void Tick(Web* web) {
  if (web->stopRequested()) return web->io.stop();
  // First of all: whatever the rest throws, the next one comes.
  web->ticker.expires_after(tick);
  web->ticker.async_wait([web](beast::error_code fault) {
    if (!fault) Tick(web);
  });
  SettleWrites(web, {});
  if (Now(*web) - web->sweptAt < 1) return;
  web->sweptAt = Now(*web);
  std::erase_if(web->watched, [](const auto& value) { return value.second.expired(); });
}

}  // namespace

std::shared_ptr<Web> OpenWeb(const std::string& address, unsigned port, std::string* error) {
  auto web = std::make_shared<Web>();
  beast::error_code fault;
  const tcp::endpoint endpoint(asio::ip::make_address(address, fault), static_cast<uint16_t>(port));
  if (!fault) web->acceptor.open(endpoint.protocol(), fault);
#if !defined(_WIN32)
  // A port of a server that has just ended is free again. On Windows this would share it with one that runs.
  if (!fault) web->acceptor.set_option(asio::socket_base::reuse_address(true), fault);
#endif
  if (!fault) web->acceptor.bind(endpoint, fault);
  if (!fault) web->acceptor.listen(asio::socket_base::max_listen_connections, fault);
  if (!fault) return web;
  *error = "cannot listen at " + address + ", TCP port " + std::to_string(port) + " (" + fault.message() +
           "): choose another --port, or end the program that has it";
  return nullptr;
}

unsigned PortOf(const Web& web) { return web.acceptor.local_endpoint().port(); }

std::string ComputerName() {
  beast::error_code fault;
  const std::string name = asio::ip::host_name(fault);
  return fault ? "" : LowerText(name);
}

bool ReadAddress(const std::string& text, bool* isLoopback, bool* isAny) {
  beast::error_code fault;
  const asio::ip::address address = asio::ip::make_address(text, fault);
  *isLoopback = !fault && address.is_loopback();
  *isAny = !fault && address.is_unspecified();
  return !fault;
}

void TakeBatch(Web* web, Batch batch) {
  asio::post(web->io, [web, held = std::make_shared<Batch>(std::move(batch))] { TakeBatchHere(web, *held); });
}

void RunWeb(Web* web, const Site& site, Source* source, Clock::time_point start, bool (*stopRequested)()) {
  web->site = site;
  web->source = source;
  web->start = start;
  web->stopRequested = stopRequested;
  Accept(web);
  Tick(web);
  while (!web->io.stopped()) {
    try {
      web->io.run();
    } catch (...) {  // no memory for a batch: what it told comes with the next change
      BatchTaken(source);
    }
  }
}

}  // namespace ctl
