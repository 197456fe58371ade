// The situations of `offsetctl conform`: each one starts with the client that knows nothing yet.
#include <algorithm>

#include "conform.h"
#include "numbers.h"

namespace ctl {

namespace {

constexpr double promptly = 5;            // seconds, where nothing goes wrong
constexpr double patiently = 15;          // with lost datagrams, reconnecting
constexpr int quietMs = 500;              // in which nothing should come any more
constexpr uint32_t otherOffset = 0x5000;  // that the client does not watch

bool Sees(const Bench& bench, uint32_t offset, uint16_t value, size_t from = 0) {
  for (size_t i = from; i < bench.seen.size(); ++i) {
    if (bench.seen[i].offset == offset && bench.seen[i].value == value) return true;
  }
  return false;
}

std::string Word(uint32_t offset, uint16_t value) { return HexText(offset, 4) + " " + std::to_string(value); }

// What the client has made known last of an offset, for messages.
std::string LastOf(const Bench& bench, uint32_t offset) {
  for (size_t i = bench.seen.size(); i-- > 0;) {
    if (bench.seen[i].offset == offset) return "its last line is \"" + Word(offset, bench.seen[i].value) + "\"";
  }
  return "it has printed no line of it";
}

std::string HowItEnded(const Bench& bench) {
  std::string text = "it ended with status " + std::to_string(bench.status);
  std::string line = bench.client.errorText.substr(0, bench.client.errorText.find_first_of("\r\n"));
  return line.empty() ? text + " and said nothing" : text + ": " + line;
}

// Waits until the client has printed a value. Returns "" or what is wrong.
std::string Expect(Bench* bench, uint32_t offset, uint16_t value, double seconds, size_t from = 0) {
  const auto seen = [&] { return Sees(*bench, offset, value, from); };
  if (RunUntil(bench, seconds, [&] { return seen() || bench->ended; }) && seen()) return "";
  if (bench->ended) return HowItEnded(*bench);
  return "\"" + Word(offset, value) + "\" has not come within " + RealText(seconds) + " s; " +
         LastOf(*bench, offset);
}

std::string ExpectFirst(Bench* bench, double seconds) {
  const std::string wrong = Expect(bench, watchedLow, WordOf(bench->server, watchedLow), seconds);
  return !wrong.empty() ? wrong : Expect(bench, watchedHigh, WordOf(bench->server, watchedHigh), seconds);
}

std::string Change(Bench* bench, uint32_t offset, uint16_t value) {
  SetWord(&bench->server, offset, value);
  return Expect(bench, offset, value, promptly);
}

void TellToWrite(Bench* bench, uint32_t offset, uint16_t value) {
  SendLine(&bench->client, "write " + HexText(offset, 4) + " " + std::to_string(value));
}

// What the client has written, whole and once. Returns "" or what is wrong.
std::string ExpectWritten(Bench* bench, uint32_t offset, uint16_t value) {
  const auto done = [bench] { return !bench->server.writes.empty() || bench->server.brokenFrames > 0; };
  RunUntil(bench, promptly, done);
  if (bench->server.brokenFrames > 0) return "a frame that it has sent is broken, or came in pieces";
  if (bench->server.writes.empty()) return "it has written nothing";
  const ServedWrite& write = bench->server.writes[0];
  const std::vector<uint8_t> wanted = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
  if (write.offset == offset && write.bytes == wanted) return "";
  return "told to write " + Word(offset, value) + ", it has written " +
         BytesText(write.bytes.data(), std::min<size_t>(write.bytes.size(), 16)) + " to " +
         HexText(write.offset, 4);
}

std::string ExpectOneWrite(const Bench& bench) {
  const size_t count = bench.server.writes.size();
  return count == 1 ? "" : "it has written " + std::to_string(count) + " times instead of once";
}

// Told to end, the client ends.
std::string ExpectEnd(Bench* bench) {
  CloseInput(&bench->client);
  if (!RunUntil(bench, promptly, [bench] { return bench->ended; })) {
    return "it does not end when its input does";
  }
  return bench->status == 0 ? "" : HowItEnded(*bench);
}

// Where it may either go on trying or give up with a line: Returns whether it has given up well, and what is
// wrong in `wrong` when it has given up badly.
bool HasGivenUp(const Bench& bench, std::string* wrong) {
  if (!bench.ended) return false;
  const bool said = bench.client.errorText.find_first_not_of(" \r\n\t") != std::string::npos;
  if (bench.status == 0 || !said) {
    *wrong = "it gave up without a line on standard error and a status other than 0: " + HowItEnded(bench);
  }
  return true;
}

// The value in the end, or a client that gives up well.
std::string ExpectOrGivingUp(Bench* bench, uint32_t offset, uint16_t value) {
  std::string wrong = Expect(bench, offset, value, patiently), given;
  return HasGivenUp(*bench, &given) ? given : wrong;
}

// --- Situations ----------------------------------------------------------------------------------------

std::string RunPlain(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  if (wrong.empty()) wrong = Change(bench, watchedLow, 1001);
  if (wrong.empty()) wrong = Change(bench, watchedHigh, 65535);
  if (!wrong.empty()) return wrong;
  TellToWrite(bench, watchedLow, 4321);
  wrong = ExpectWritten(bench, watchedLow, 4321);
  if (wrong.empty()) wrong = Expect(bench, watchedLow, 4321, promptly);
  if (wrong.empty()) wrong = ExpectOneWrite(*bench);
  if (!wrong.empty()) return wrong;
  wrong = ExpectEnd(bench);
  if (!wrong.empty()) return wrong;
  const bool isGone = RunUntil(bench, promptly, [bench] { return bench->server.clients.empty(); });
  return isGone ? "" : "its connection is still open though it has ended";
}

void PrepareLoss(Bench* bench) {
  bench->server.trouble.lossPercent = 20;
  // The blocks of both watched words and the last one.
  bench->server.trouble.lostBlocks =
      1u << (watchedLow / pictureBlockSize) | 1u << (watchedHigh / pictureBlockSize) | 1u << 7;
}

std::string RunLoss(Bench* bench) {
  const std::string wrong = ExpectFirst(bench, patiently);
  return wrong.empty() ? ExpectEnd(bench) : wrong + "; blocks were lost on their way";
}

std::string RunLostEcho(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  if (!wrong.empty()) return wrong;
  bench->server.trouble.lossPercent = 100;
  TellToWrite(bench, watchedHigh, 3000);
  wrong = ExpectWritten(bench, watchedHigh, 3000);
  if (!wrong.empty()) return wrong;
  Run(bench, 100);  // the echo is sent, and lost
  bench->server.trouble.lossPercent = 0;
  wrong = Expect(bench, watchedHigh, 3000, patiently);
  return wrong.empty() ? ExpectOneWrite(*bench) : wrong + "; the echo was lost on its way";
}

void PrepareLate(Bench* bench) { bench->server.trouble.blockPauseMs = 30; }

std::string RunLate(Bench* bench) {
  // The flight is under way: both words change while the blocks come.
  uint16_t value = firstLow;
  const auto begun = [bench] { return bench->server.bursts > 0 || bench->ended; };
  while (!RunUntil(bench, 0.03, begun) && value < firstLow + 300) SetWord(&bench->server, watchedLow, ++value);
  for (int i = 0; i < 20; ++i) {
    SetWord(&bench->server, watchedLow, ++value);
    Run(bench, 30);
  }
  std::string wrong = Expect(bench, watchedLow, value, promptly);
  if (wrong.empty()) wrong = Expect(bench, watchedHigh, firstHigh, promptly);
  if (!wrong.empty()) return wrong;
  // Somebody else connects: all blocks once more, in which nothing is new.
  const size_t before = bench->seen.size();
  const uint32_t bursts = bench->server.bursts;
  bench->server.burstDue = true;
  RunUntil(bench, promptly, [bench, bursts] { return bench->server.bursts > bursts; });
  Run(bench, quietMs);
  if (bench->seen.size() > before) {
    const Seen& seen = bench->seen[before];
    return "it prints \"" + Word(seen.offset, seen.value) + "\" for blocks in which nothing has changed";
  }
  return Change(bench, watchedHigh, 2001);
}

std::string RunRestart(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  if (!wrong.empty()) return wrong;
  bench->server.trouble.door = Door::Shut;
  DropClients(&bench->server);
  SetWord(&bench->server, watchedLow, 5000);
  Run(bench, 2000);
  bench->server.trouble.door = Door::Open;
  return ExpectOrGivingUp(bench, watchedLow, 5000);
}

// Takes all eight places.
void TakePlaces(Bench* bench) {
  for (size_t i = 0; i < mostServed; ++i) {
    bench->server.clients.push_back({noSocket, {bench->server.ip, 9}, {}, {}});
  }
}

std::string RunFull(Bench* bench) {
  std::string wrong;
  RunUntil(bench, 3, [bench] { return bench->ended; });
  if (HasGivenUp(*bench, &wrong)) return wrong;
  if (!bench->seen.empty()) return "it prints values that it cannot have";
  bench->server.clients.pop_back();
  return ExpectOrGivingUp(bench, watchedHigh, firstHigh);
}

std::string RunNinth(Bench* bench) {
  std::string wrong;
  RunUntil(bench, 4, [bench] { return bench->ended; });
  if (HasGivenUp(*bench, &wrong)) return wrong;
  if (!bench->seen.empty()) return "it prints values that it cannot have";
  CloseInput(&bench->client);
  return RunUntil(bench, promptly, [bench] { return bench->ended; }) ? ""
                                                                     : "it does not end when its input does";
}

void PrepareRefused(Bench* bench) { bench->server.trouble.door = Door::Closing; }

std::string RunRefused(Bench* bench) {
  constexpr uint32_t mostTries = 10;
  std::string wrong;
  RunUntil(bench, 4, [bench] { return bench->ended; });
  const uint32_t tries = bench->server.turnedAway;
  if (tries > mostTries)
    return "it has knocked " + std::to_string(tries) + " times in 4 s: once a second is enough";
  if (HasGivenUp(*bench, &wrong)) return wrong;
  bench->server.trouble.door = Door::Open;
  return ExpectOrGivingUp(bench, watchedHigh, firstHigh);
}

void PrepareSlow(Bench* bench) {
  bench->server.trouble.blockPauseMs = 300;
  bench->server.trouble.writeDelayMs = 2500;
}

std::string RunSlow(Bench* bench) {
  std::string wrong = ExpectFirst(bench, patiently);
  if (!wrong.empty()) return wrong + "; a block comes each 0.3 s";
  constexpr uint32_t mostConnections = 7;  // one, and one a second to ask for new blocks
  const uint32_t connections = bench->server.accepted;
  if (connections > mostConnections) {
    return "it has connected " + std::to_string(connections) +
           " times in less than 5 s: ask for new blocks once a second at most";
  }
  bench->server.trouble.blockPauseMs = 10;
  TellToWrite(bench, watchedLow, 777);
  wrong = ExpectWritten(bench, watchedLow, 777);
  if (wrong.empty()) wrong = Expect(bench, watchedLow, 777, patiently);
  return wrong.empty() ? ExpectOneWrite(*bench) : wrong;
}

void PrepareRefresh(Bench* bench) {
  bench->server.trouble.replacesWrites = true;
  bench->server.trouble.replacement = -2;
}

std::string RunRefresh(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  if (!wrong.empty()) return wrong;
  TellToWrite(bench, watchedLow, 6000);
  wrong = ExpectWritten(bench, watchedLow, 6000);
  if (wrong.empty()) wrong = Expect(bench, watchedLow, 5998, promptly);
  if (!wrong.empty()) return wrong;
  Run(bench, 3000);
  if (Sees(*bench, watchedLow, 6000))
    return "it prints the value that it has written, which the server never showed";
  wrong = ExpectOneWrite(*bench);
  return wrong.empty() ? Change(bench, watchedLow, 1234) : wrong + ": the simulator made another value of it";
}

struct StrangeFrame {
  const char* what;
  std::vector<uint8_t> bytes;
};

// Datagrams that no client may believe.
std::vector<StrangeFrame> StrangeFrames(const std::vector<uint8_t>& good) {
  const auto broken = [&good](size_t at, uint8_t value) {
    std::vector<uint8_t> frame = good;
    frame[at] = value;
    return frame;
  };
  const std::vector<uint8_t> memory(offsetMemorySize, 0xEE);
  std::vector<uint8_t> spare = BlockFrame(memory, watchedLow / pictureBlockSize), cut = spare;
  spare[0] = 14;
  cut.resize(cut.size() / 2);
  return {{"a wrong length", broken(2, 6)},
          {"a wrong length copy", broken(good.size() - 4, 6)},
          {"a wrong end marker", broken(good.size() - 1, 0)},
          {"an unknown type", broken(0, 99)},
          {"the spare block", spare},
          {"half a block", cut},
          {"nine bytes", {good.begin(), good.begin() + 9}},
          {"nothing in it", {}}};
}

std::string RunStrange(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  const std::vector<uint8_t> good = ChangeFrame({{watchedLow, 0xEE}, {watchedHigh, 0xEE}});
  const size_t before = bench->seen.size();
  const auto believes = [bench, before] { return bench->seen.size() > before; };
  for (const StrangeFrame& frame : StrangeFrames(good)) {
    SendToClients(&bench->server, bench->server.sender, frame.bytes);
    Run(bench, 50);
    if (wrong.empty() && believes()) wrong = std::string("it believes a datagram with ") + frame.what;
  }
  // Anybody can send to an open port: another address of this computer does.
  std::string unused;
  const SocketHandle stranger = OpenSender({bench->server.ip ^ 0x40, 0}, &unused);
  if (stranger != noSocket) SendToClients(&bench->server, stranger, good);
  CloseSocket(stranger);
  Run(bench, quietMs);
  if (wrong.empty() && believes())
    wrong = "it believes a datagram that does not come from the server's address";
  return wrong.empty() ? Change(bench, watchedHigh, 2002) : wrong;
}

std::string RunBusy(Bench* bench) {
  std::string wrong = ExpectFirst(bench, promptly);
  if (!wrong.empty()) return wrong;
  // Some thousand bytes change each cycle, for two seconds.
  for (uint16_t i = 1; i <= 100; ++i) {
    for (uint32_t at = 0; at < 4000; ++at) bench->server.memory[otherOffset + at] = static_cast<uint8_t>(i);
    SetWord(&bench->server, watchedHigh, static_cast<uint16_t>(firstHigh + i));
    Run(bench, 20);
  }
  return Expect(bench, watchedHigh, firstHigh + 100, promptly);
}

constexpr Situation situations[] = {
    {"plain", "nothing goes wrong", "shows both values and their changes, writes once, ends when told", nullptr,
     RunPlain},
    {"loss", "a fifth of the datagrams is lost, and blocks of the first burst",
     "opens a second connection and closes it when blocks are missing for a second", PrepareLoss, RunLoss},
    {"lost-echo", "the echo of a write is lost",
     "asks for new blocks when no echo comes within a second, and does not write again", nullptr, RunLostEcho},
    {"late", "values change while the blocks come, then another client connects",
     "keeps what came last; blocks without a change are no news", PrepareLate, RunLate},
    {"restart", "the server goes and comes back after 2 s",
     "connects again, or ends with a line on standard error", nullptr, RunRestart},
    {"full", "eight clients are there, one leaves after 3 s",
     "tries again at its leisure, or ends with a line on standard error", TakePlaces, RunFull},
    {"ninth", "eight clients are there and stay", "tries again, or ends with a line; shows nothing meanwhile",
     TakePlaces, RunNinth},
    {"refused", "connections are closed at once, for 4 s",
     "tries again once a second at most, or ends with a line", PrepareRefused, RunRefused},
    {"slow", "a block comes each 0.3 s, an echo after 2.5 s",
     "waits as long as something comes, and does not write again", PrepareSlow, RunSlow},
    {"refresh", "the simulator makes another value of what is written",
     "shows that one, and does not write again", PrepareRefresh, RunRefresh},
    {"strange", "broken frames, a spare block, a frame from elsewhere", "passes over them", nullptr,
     RunStrange},
    {"busy", "thousands of bytes change in every cycle", "receives all the time", nullptr, RunBusy},
};

}  // namespace

std::span<const Situation> Situations() { return situations; }

}  // namespace ctl
