// Faults on order: the N-th call of a function, or the N-th creation of something of the system's, fails.
// Orders outlive a reload of the plug-ins, so that their start can be made to fail.
#include <algorithm>
#include <atomic>
#include <mutex>

#include "core/core.h"
#include "core/fault_hooks.h"

namespace sim {
namespace {

// Functions whose documentation knows a failure, and that look here: Fails(name).
constexpr const char* fallible[] = {
    "XPLMFindDataRef",
    "XPLMGetDataRefTypes",
    "XPLMGetDatavi",
    "XPLMGetDatavf",
    "XPLMGetDatab",
    "XPLMRegisterDataAccessor",
    "XPLMFindCommand",
    "XPLMCreateCommand",
    "XPLMLoadDataFile",
    "XPLMSaveDataFile",
    "XPLMFindPluginBySignature",
    "XPLMFindNavAid",
    "XPLMGetFirstNavAid",
    "XPLMFindPluginsMenu",
    "XPLMCreateMenu",
    "XPLMAppendMenuItem",
    "XPLMCreateProbe",
    "XPLMProbeTerrainXYZ",
    "XPLMCreateFlightLoop",
    "XPLMCountAircraft",
    "XPLMGetNthAircraftModel",
    "XPLMMeasureString",
    "XPCreateWidget",
    "XPFindRootWidget",
    "XPGetWidgetDescriptor",
    "XPGetWidgetWithFocus",
    "XPSetKeyboardFocus",
};
constexpr const char* kinds[] = {"thread", "event", "socket", "window", "file"};  // as SystemKind
const std::string kSystem = "system ";

struct Order {
  std::string what;     // a function, or "system KIND"
  int64_t waiting = 0;  // calls that go well before
  int64_t failing = 0;  // calls that fail then
};
std::mutex orderLock;
std::vector<Order> orders;
std::atomic<bool> anyOrder{false};
std::atomic<int64_t> clockJump{0};  // milliseconds

bool Take(const std::string& what) {
  const std::lock_guard<std::mutex> lock(orderLock);
  const auto order = std::find_if(orders.begin(), orders.end(), [&](const Order& o) { return o.what == what; });
  if (order == orders.end()) return false;
  if (order->waiting > 0) {
    --order->waiting;
    return false;
  }
  if (--order->failing == 0) orders.erase(order);
  anyOrder = !orders.empty();
  return true;
}

constexpr FaultHooks hooks = {
    .fails = [](SystemKind kind) { return anyOrder && Take(kSystem + kinds[static_cast<size_t>(kind)]); },
    .clockJump = [] { return clockJump.load(); }};

template <size_t N>
std::string List(const char* const (&names)[N]) {
  std::string list;
  for (const char* name : names) list += (list.empty() ? "" : ", ") + std::string(name);
  return list;
}

template <size_t N>
bool Knows(const char* const (&names)[N], const std::string& wanted) {
  return std::any_of(std::begin(names), std::end(names), [&](const char* name) { return wanted == name; });
}

UseFaultHooksProc HooksOf(const Plugin& plugin) {
  if (!plugin.module) return nullptr;
  return reinterpret_cast<UseFaultHooksProc>(ModuleSymbol(plugin.module, useFaultHooksName));
}

std::string NoHooks() {
  const bool any = std::any_of(plugins.begin(), plugins.end(), [](auto& each) { return HooksOf(*each); });
  return any ? "" : "no plug-in that is loaded is built for that (tavrix_faults is)";
}

// An earlier order for the same is replaced. An empty text means success, else why not.
std::string OrderFault(const std::string& what, const std::string& kind, int64_t number, int64_t times) {
  if (what == "system") {
    if (!Knows(kinds, kind)) return "the kinds are " + List(kinds) + ", not " + kind;
    if (const std::string why = NoHooks(); !why.empty()) return why;
  } else if (!Knows(fallible, what)) {
    return what + " cannot fail; these can: " + List(fallible);
  }
  const std::string name = kind.empty() ? what : kSystem + kind;
  const std::lock_guard<std::mutex> lock(orderLock);
  std::erase_if(orders, [&](const Order& order) { return order.what == name; });
  orders.push_back({.what = name, .waiting = number - 1, .failing = times});
  anyOrder = true;
  return "";
}

// "NAME N; ..." of those that still wait, N being the call that fails.
std::string DescribeFaults() {
  const std::lock_guard<std::mutex> lock(orderLock);
  std::string list;
  for (const Order& order : orders) Join(&list, order.what + ' ' + FormatInt(order.waiting + 1));
  return list;
}

}  // namespace

bool Fails(const char* function) { return anyOrder && CallingPlugin() != 0 && Take(function); }

void GiveHooks(const Plugin& plugin) {
  if (const UseFaultHooksProc use = HooksOf(plugin)) use(&hooks);
}

void ForgetFaults() {
  const std::lock_guard<std::mutex> lock(orderLock);
  orders.clear();
  anyOrder = false;
}

std::string FailConsole(std::vector<std::string> words) {
  const std::string usage = "error: fail FUNCTION N [TIMES], fail system KIND N [TIMES], fail off or fail";
  if (words.empty()) {
    const std::string waiting = DescribeFaults();
    return waiting.empty() ? "ok" : "ok " + waiting;
  }
  if (words.size() == 1 && words[0] == "off") {
    ForgetFaults();
    return "ok";
  }
  const size_t named = words[0] == "system" ? 2 : 1;
  if (words.size() == named + 1) words.emplace_back("1");
  int64_t number = 0, times = 0;
  if (words.size() != named + 2 || !ParseInt(words[named], &number) || !ParseInt(words[named + 1], &times) ||
      number < 1 || times < 1) {
    return usage;
  }
  const std::string why = OrderFault(words[0], named == 2 ? words[1] : "", number, times);
  return why.empty() ? "ok" : "error: " + why;
}

std::string JumpClock(double seconds) {
  if (const std::string why = NoHooks(); !why.empty()) return why;
  clockJump += static_cast<int64_t>(seconds * 1000);
  return "";
}

}  // namespace sim
