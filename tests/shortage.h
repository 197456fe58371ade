// The system refuses on order, in tests: the platform layer is linked as it is built for tavrix_faults.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <mutex>

#include "core/fault_hooks.h"
#include "platform/system.h"
#include "test_tools.h"

extern "C" void UseFaultHooks(const FaultHooks* hooks);

namespace shortage {

// While it lives: the `number`th creation of that kind, from any thread, and those behind it fail, `times` in
// all. One at a time. What threads look at outlives it.
class Order {
 public:
  Order(SystemKind kind, int number, int times = 1) {
    static constexpr FaultHooks hooks = {.fails = Take, .clockJump = [] { return int64_t{0}; }};
    Give({kind, number, number + times - 1, 0});
    UseFaultHooks(&hooks);
  }
  ~Order() { Give(nothing); }
  Order(const Order&) = delete;
  Order& operator=(const Order&) = delete;
  bool Taken() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return state.count >= state.first;
  }

 private:
  struct State {
    SystemKind kind;
    int first, last, count;
  };
  static void Give(const State& given) {
    const std::lock_guard<std::mutex> lock(mutex);
    state = given;
  }
  static bool Take(SystemKind asked) {
    const std::lock_guard<std::mutex> lock(mutex);
    return asked == state.kind && ++state.count >= state.first && state.count <= state.last;
  }
  static inline std::mutex mutex;
  static constexpr State nothing = {SystemKind::Thread, 1, 0, 0};
  static inline State state = nothing;
};

// Each creation in `start` fails in its turn: `start` says so by what it returns and leaves nothing behind. In
// the end nothing fails, and `stop` follows. At least `least` of them have to be found.
inline void RefuseEach(const char* what, SystemKind kind, int least, const std::function<bool()>& start,
                       const std::function<void()>& stop) {
  SCOPED_TRACE(what);
  const int threads = tools::CountThreads(), handles = CountProcessHandles();
  // One that has been joined may still be on its way out.
  const auto fewThreads = [&] { return tools::WaitUntil([&] { return tools::CountThreads() <= threads; }); };
  int refused = 0;
  for (;; ++refused) {
    Order order(kind, refused + 1);
    if (start()) break;
    EXPECT_TRUE(order.Taken()) << refused;
    EXPECT_TRUE(fewThreads()) << refused;
    EXPECT_EQ(onWindows ? handles : CountProcessHandles(), handles) << refused;
    ASSERT_LT(refused, 30);
  }
  stop();
  EXPECT_GE(refused, least);
  EXPECT_TRUE(fewThreads());
}

}  // namespace shortage
