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
// all.
class Order {
 public:
  Order(SystemKind wanted, int number, int times = 1) : kind(wanted), first(number), last(number + times - 1) {
    current = this;
    static constexpr FaultHooks hooks = {.fails = [](SystemKind asked) { return current->Take(asked); },
                                         .clockJump = [] { return int64_t{0}; }};
    UseFaultHooks(&hooks);
  }
  ~Order() { UseFaultHooks(nullptr); }
  Order(const Order&) = delete;
  Order& operator=(const Order&) = delete;
  bool Taken() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return count >= first;
  }

 private:
  bool Take(SystemKind asked) {
    const std::lock_guard<std::mutex> lock(mutex);
    return asked == kind && ++count >= first && count <= last;
  }
  static inline Order* current = nullptr;
  SystemKind kind;
  int first, last, count = 0;
  mutable std::mutex mutex;
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
