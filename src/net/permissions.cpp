#include "net/permissions.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

#include "base/log.h"
#include "base/log_quiet.h"
#include "net/address.h"
#include "platform/lock.h"
#include "platform/system.h"

namespace {

// Of a list that is too long for a log line.
constexpr size_t mostTold = 5, mostShown = 20, longestWord = 60;

struct AllowedNetwork {
  uint32_t ip, mask;
};
std::vector<AllowedNetwork> allowed;
bool everybody = true;
bool writesAllowed = true;

// "10.0.5.7" or "10.0.5.0/24". Returns true, or false for anything else.
bool ParseNetwork(std::string_view text, AllowedNetwork* network) {
  const size_t slash = text.find('/');
  int bits = 32;
  if (slash != std::string_view::npos) {
    const std::string_view number = text.substr(slash + 1);
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), bits);
    if (error != std::errc() || end != number.data() + number.size() || bits < 0 || bits > 32) return false;
  }
  uint32_t ip = 0;
  if (!ParseAddress(std::string(text.substr(0, slash)).c_str(), &ip)) return false;
  network->mask = bits == 0 ? 0 : UINT32_MAX << (32 - bits);
  network->ip = ip & network->mask;
  return true;
}

int PrefixLength(uint32_t mask) {
  int bits = 0;
  for (; mask != 0; mask <<= 1) ++bits;
  return bits;
}

QuietTable told;
Lock toldLock;  // guards it; known to this file alone, nothing else is entered while it is held

bool IsDue(Refusal refusal, uint32_t ip) {
  const LockScope lock(&toldLock);
  return TakeLogTurn(&told, static_cast<uint64_t>(refusal) << 32 | ip);
}

}  // namespace

void PreparePermissions(const std::string& allowedClients, bool networkWrites) {
  constexpr std::string_view separators = ", \t;";
  if (!CreateLock(&toldLock)) {  // lives as long as the module
    LogOwn("TAVFARNET->The system gives no lock for the lines about refusals, they may come twice: %s\n",
           shortageRemedy);
  }
  told = {};
  allowed.clear();
  writesAllowed = networkWrites;
  everybody = true;
  std::string_view rest = allowedClients;
  size_t faults = 0;
  for (;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
    if (rest.empty()) break;
    everybody = false;
    const std::string_view word = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(word.size());
    AllowedNetwork network = {};
    if (ParseNetwork(word, &network)) {
      allowed.push_back(network);
    } else if (++faults <= mostTold) {
      LogOwn(
          "TAVFARNET->\"Allowed clients\" in TAVRIX.ini: %s is neither an address like 192.168.0.10 nor a "
          "network "
          "like 192.168.0.0/24 and lets nobody in; correct it and reload the plug-in\n",
          EscapedForLog(word.substr(0, longestWord)).c_str());
    }
  }
  if (faults > mostTold) {
    LogOwn("TAVFARNET->\"Allowed clients\" in TAVRIX.ini: %u more entries like that\n",
           static_cast<unsigned>(faults - mostTold));
  }
}

bool IsClientAllowed(uint32_t ip) {
  return everybody || std::any_of(allowed.begin(), allowed.end(), [ip](const AllowedNetwork& network) {
           return (ip & network.mask) == network.ip;
         });
}

bool AreNetworkWritesAllowed() { return writesAllowed; }

std::string AllowedClientsText() {
  if (everybody) return "everyone";
  if (allowed.empty()) return "nobody";
  std::string text;
  for (const AllowedNetwork& network : allowed) {
    if (&network == &allowed[0] + mostShown) {
      return text + " and " + std::to_string(allowed.size() - mostShown) + " more";
    }
    if (!text.empty()) text += ", ";
    text += AddressText(network.ip);
    if (network.mask != UINT32_MAX) text += '/' + std::to_string(PrefixLength(network.mask));
  }
  return text;
}

void LogRefusal(Refusal refusal, uint32_t ip) {
  if (!IsDue(refusal, ip)) return;
  const std::string address = AddressText(ip);
  if (refusal == Refusal::Client) {
    LogOwn("TAVFARNET->Refused %s: it is not among \"Allowed clients\" in TAVRIX.ini\n", address.c_str());
  } else {
    LogOwn("TAVFARNET->Refused what %s writes: \"Network writes\" in TAVRIX.ini is not Yes\n", address.c_str());
  }
}
