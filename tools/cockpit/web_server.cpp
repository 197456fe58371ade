#include "cockpit/web_server.h"

#include <algorithm>

#include "cockpit/web_connection.h"
#include "offsetctl/show.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr size_t mostConnections = 200;  // served at a time; one beyond them is told so
constexpr size_t mostRefused = 50;       // being told so at a time; others are closed at once
constexpr uint32_t headerLimit = 32 * 1024;
constexpr uint64_t bodyLimit = 64 * 1024;
constexpr seconds firstLimit{3};  // for the header of a request while none has been accepted
constexpr seconds idleLimit{30}, readLimit{10}, answerLimit{10}, lingerLimit{2};
constexpr size_t mostLingering = 1 << 20;  // bytes that are read and thrown away at a connection's end
constexpr milliseconds tick{20};

}  // namespace

Connection::Connection(Web* owner, tcp::socket socket, bool refuse)
    : web(owner), stream(std::move(socket)), isRefused(refuse), since(WebNow(*web)), timer(web->io) {
  web->refused += isRefused;
}

Connection::~Connection() { web->refused -= isRefused; }

namespace {

void Close(const Peer& peer) {
  beast::error_code ignored;
  peer->timer.cancel(ignored);
  peer->stream.socket().close(ignored);
}

// --- Requests and answers ----------------------------------------------------------------------------------

void ReadNext(const Peer& peer);
void HandOver(const Peer& peer, const PutRequest& put);

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
  peer->isServed = false;
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
  for (const Pairs& headers : {CommonHeaders(peer->request.target), answer.headers}) {
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
  peer->request.target = "/api";
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

// Takes what the header says, before a body's chunks can bring fields of their own. Returns true, or false when
// it has been answered: where a body of another coding ends is anybody's guess.
bool TakeHeader(const Peer& peer) {
  const auto& message = peer->parser->get();
  WebRequest& request = peer->request;
  request = {std::string(message.method_string()), std::string(message.target()), {}, ""};
  bool isPlain = true, hasCoding = false;
  for (const auto& field : message) {
    request.headers.emplace_back(std::string(field.name_string()), std::string(field.value()));
    if (field.name() != http::field::transfer_encoding) continue;
    isPlain = isPlain && !hasCoding && beast::iequals(field.value(), "chunked");
    hasCoding = true;
  }
  DropOwnHost(&request);
  peer->isKept = message.keep_alive() && !peer->isRefused && isPlain;
  peer->isHead = message.method() == http::verb::head;
  peer->isOld = message.version() < 11;
  if (isPlain) return true;
  SendRefusal(peer, {400, "a body comes whole or in chunks, in no other coding", "Transfer-Encoding",
                     "send Content-Length, or Transfer-Encoding: chunked"});
  return false;
}

// The address by which the client came in is one of our own: the computer may have got it since the start.
void LearnAddress(const Peer& peer) {
  beast::error_code fault;
  asio::ip::address address = peer->stream.socket().local_endpoint(fault).address();
  if (address.is_v6() && address.to_v6().is_v4_mapped()) {
    address = asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
  }
  std::vector<std::string>& hosts = peer->web->site.access.hosts;
  const std::string name = address.is_v6() ? "[" + address.to_string() + "]" : address.to_string();
  if (!fault && std::find(hosts.begin(), hosts.end(), name) == hosts.end()) hosts.push_back(name);
}

void Handle(const Peer& peer) {
  Web* web = peer->web;
  LearnAddress(peer);
  WebRequest& request = peer->request;
  request.body = std::move(peer->parser->get().body());
  peer->parser.reset();
  if (peer->isRefused) {
    return SendRefusal(peer, {503, "200 connections are open, which is the limit", "connections",
                              "close other pages that show the cockpit"});
  }
  Refusal ignored = {};
  if (IsFromHere(request, web->site.access, &ignored) && HasToken(request, web->site.access)) {
    peer->isAccepted = peer->isServed = true;
    peer->since = WebNow(*web);
  }
  Outcome outcome = Answer(request, web->site, web->mirror, web->streams.size(), WebNow(*web));
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
      return BeginStream(peer, outcome);
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
  peer->stream.expires_after(peer->isRefused ? lingerLimit : peer->isAccepted ? readLimit : firstLimit);
  http::async_read_header(peer->stream, peer->buffer, *peer->parser, [peer](beast::error_code fault, size_t) {
    Guard(peer, [&] {
      if (fault) return AnswerBroken(peer, fault);
      if (!TakeHeader(peer)) return;
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
  peer->isServed = false;
  peer->parser.emplace();
  peer->parser->header_limit(headerLimit);
  peer->parser->body_limit(bodyLimit);
  if (peer->buffer.size() > 0) return ReadHeader(peer);
  peer->stream.expires_after(peer->isRefused ? lingerLimit : peer->isAccepted ? idleLimit : firstLimit);
  peer->stream.async_read_some(peer->buffer.prepare(4096), [peer](beast::error_code fault, size_t size) {
    Guard(peer, [&] {
      if (fault) return Close(peer);
      peer->buffer.commit(size);
      if (peer->isAccepted) peer->since = WebNow(*peer->web);
      ReadHeader(peer);
    });
  });
}

// --- Writes ------------------------------------------------------------------------------------------------

void HandOver(const Peer& peer, const PutRequest& put) {
  Web* web = peer->web;
  SourceOrder order = {.kind = OrderKind::Write, .id = ++web->lastId, .seconds = put.wait + 1};
  for (const Item& item : put.items) order.writes.push_back({item.offset, item.bytes});
  web->writes.push_back({BeginWrite(put, web->site.names, web->mirror, WebNow(*web)), peer});
  web->writes.back().write.id = order.id;
  GiveOrder(order, web->source);
}

// Answers every write that can be.
void SettleWrites(Web* web, const std::vector<uint64_t>& echoed) {
  const double now = WebNow(*web);
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
    if (result.status == 200) return WriteSent(web->mirror, WebNow(*web), &web->writes[i].write);
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
    Send(peer, {.body = StatusJson(web->mirror, web->streams.size(), WebNow(*web))});
  });
}

// --- The whole ---------------------------------------------------------------------------------------------

void TakeBatchHere(Web* web, const Batch& batch) {
  ApplyBatch(batch, WebNow(*web), &web->mirror);
  BatchTaken(web->source);
  for (const OrderResult& result : batch.results) TakeResult(web, result);
  SettleWrites(web, batch.echoed);
  PumpAll(web);
}

// Finds a place for one more. Among 200 the one that has never been accepted longest gives up its own, else the
// one that has been idle longest: nobody locks others out by connecting. Returns false when all are being
// served.
bool MakeRoom(Web* web) {
  std::erase_if(web->connections, [](const auto& connection) { return connection.expired(); });
  size_t open = 0;
  Peer idlest;
  const auto rank = [](const Peer& peer) { return std::pair(peer->isAccepted, peer->since); };
  for (const auto& connection : web->connections) {
    const Peer peer = connection.lock();
    if (!peer || peer->isRefused || !peer->stream.socket().is_open()) continue;
    ++open;
    if (!peer->isServed && (!idlest || rank(peer) < rank(idlest))) idlest = peer;
  }
  if (open < mostConnections) return true;
  if (idlest) Close(idlest);
  return idlest != nullptr;
}

void Accept(Web* web) {
  web->acceptor.async_accept([web](beast::error_code fault, tcp::socket socket) {
    if (fault == asio::error::operation_aborted) return;
    try {
      const bool hasRoom = !fault && MakeRoom(web);
      if (hasRoom || (!fault && web->refused < mostRefused)) {
        beast::error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        const Peer peer = std::make_shared<Connection>(web, std::move(socket), !hasRoom);
        web->connections.push_back(peer);
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
  if (WebNow(*web) - web->sweptAt < 1) return;
  web->sweptAt = WebNow(*web);
  std::erase_if(web->watched, [](const auto& value) { return value.second.expired(); });
}

}  // namespace

double WebNow(const Web& web) { return std::chrono::duration<double>(Clock::now() - web.start).count(); }

void EndConnection(const Peer& peer) {
  std::erase(peer->web->streams, peer);
  Close(peer);
}

std::shared_ptr<Web> OpenWeb(const std::string& address, unsigned port, std::string* error) {
  auto web = std::make_shared<Web>();
  beast::error_code fault;
  const tcp::endpoint endpoint(asio::ip::make_address(address, fault), static_cast<uint16_t>(port));
  if (!fault) web->acceptor.open(endpoint.protocol(), fault);
#if defined(_WIN32)
  // No other program can take the port over.
  using Exclusive = asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>;
  if (!fault) web->acceptor.set_option(Exclusive(true), fault);
#else
  // A port of a server that has just ended is free again. On Windows this would share it with one that runs.
  if (!fault) web->acceptor.set_option(asio::socket_base::reuse_address(true), fault);
#endif
  // All addresses are those of IPv4, too.
  const bool isAnyV6 = endpoint.address().is_v6() && endpoint.address().is_unspecified();
  if (!fault && isAnyV6) web->acceptor.set_option(asio::ip::v6_only(false), fault);
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
