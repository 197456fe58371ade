#include "shell/advice.h"

#include <algorithm>

#include "base/log.h"
#include "net/address.h"
#include "platform/addresses.h"

namespace {

constexpr uint32_t loopbackNetwork = 127;

std::string Setting(const std::string& address) { return "Server Address = " + address; }

std::string LocalOnly() { return "for clients on this computer alone: " + Setting("127.0.0.1"); }

std::string List(const std::vector<uint32_t>& own) {
  std::string list;
  for (const uint32_t ip : own) list += (list.empty() ? "" : ", ") + AddressText(ip);
  return list;
}

}  // namespace

std::string AddressAdvice(const std::vector<uint32_t>& own, std::string_view configured) {
  uint32_t ip = 0;
  const std::string text(configured);
  const bool valid = ParseAddress(text.c_str(), &ip);
  const std::string set = "TAVRIX.ini has " + Setting(EscapedForLog(text)) + ", ";
  const std::string addresses =
      own.empty() ? "This computer has no network address" : "This computer's addresses: " + List(own);
  const std::string change = own.empty() ? ""
                                         : "for clients on other computers put one of them into TAVRIX.ini: " +
                                               Setting(AddressText(own[0]));
  if (valid && std::find(own.begin(), own.end(), ip) != own.end()) {
    return addresses + "; " + set + "which is one of them and what clients use; " + LocalOnly();
  }
  if (valid && ip >> 24 == loopbackNetwork) {
    return addresses + "; " + set + "which clients on this computer alone can use" +
           (change.empty() ? "" : "; " + change);
  }
  return addresses + "; " + set + (valid ? "which is not this computer's" : "which is no address") +
         ": no client can connect over the network; " + (change.empty() ? "" : change + ", ") + LocalOnly();
}

void LogAddresses(const char* configured) {
  try {
    LogOwn("TAVRIX->%s\n", AddressAdvice(ListAddresses(), configured).c_str());
  } catch (...) {
    LogOwn("TAVRIX->Out of memory while looking for this computer's addresses\n");
  }
}
