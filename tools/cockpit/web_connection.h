// The records of the web cockpit's HTTP server, and what its two files tell each other. The server's thread
// alone.
#pragma once
// clang-format off
#include <utility>  // before Asio, which forgets it with this compiler
// clang-format on

#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cockpit/answers.h"
#include "cockpit/source.h"

namespace ctl {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;

struct Web;

// Of a connection that has become a stream.
struct EventStream {
  double pause = 0.05;  // seconds from one event to the next
  std::optional<ValueStream> values;
  std::optional<ChangeStream> changes;
  double lastAt = -1000, statusAt = -1000;
  double ringsAt = -1000;  // the timer
  bool wasConnected = false;
  bool isWriting = false;
  std::string text;  // being written
};

struct Connection {
  Connection(Web* owner, tcp::socket socket, bool refuse);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Web* web;
  beast::tcp_stream stream;
  beast::flat_buffer buffer;
  std::optional<http::request_parser<http::string_body>> parser;
  http::response<http::string_body> response;
  WebRequest request;   // that is read or answered; its header fields alone, no chunk trailers
  bool isKept = false;  // the connection goes on behind the answer
  bool isHead = false;
  bool isOld = false;       // its client speaks HTTP/1.0
  const bool isRefused;     // one beyond the limit
  bool isAccepted = false;  // it has sent a request that this server may answer, with the token
  bool isServed = false;    // an answer is worked on, or a stream is open
  double since = 0;         // when it came; once accepted its last sign of life; seconds
  size_t lingered = 0;
  std::optional<EventStream> events;
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
  size_t refused = 0;  // connections; they outlive the rest
  asio::io_context io{1};
  tcp::acceptor acceptor{io};
  asio::steady_timer ticker{io};
  asio::steady_timer acceptPause{io};
  std::vector<std::weak_ptr<Connection>> connections;
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
  std::chrono::steady_clock::time_point start;
};

// Seconds since the program's start.
double WebNow(const Web& web);
// Ends a connection, a stream or not.
void EndConnection(const Peer& peer);
// Runs a step of a connection. What it throws (memory, what a part does not expect) ends that connection alone.
template <typename Step>
void Guard(const Peer& peer, Step step) {
  try {
    step();
  } catch (...) {
    EndConnection(peer);
  }
}

// Makes the connection a stream, as the outcome says.
void BeginStream(const Peer& peer, const Outcome& outcome);
// Sends on all streams what is due.
void PumpAll(Web* web);

}  // namespace ctl
