#include "platform/exceptions.h"

#include <cxxabi.h>

#include <exception>
#include <typeinfo>

#include "platform/system.h"

namespace {

// The module that holds the run time's own types: this one, or in tests the shared run time.
const void* RunTimeModule() { return ModuleOf(&typeid(std::exception)); }

void RunFrom(void (*const* step)(), void (*const* end)()) {
  for (; step != end; ++step) {
    try {
      (*step)();
    } catch (...) {
      if (IsOwnException()) continue;
      RunFrom(step + 1, end);
      throw;
    }
  }
}

}  // namespace

void PrepareExceptions() {
  // Volatile: the compiler leaves out a look whose answer nobody wants.
  [[maybe_unused]] const volatile int thrown = std::uncaught_exceptions();
}

bool IsOwnException() {
  // Null for what is no C++ exception: one of another language, or a thread's forced end.
  const std::type_info* const type = abi::__cxa_current_exception_type();
  if (type == nullptr) return false;
  const void* const module = ModuleOf(type);
  return module != nullptr && (module == RunTimeModule() || module == ModuleOf(&typeid(IsOwnException)));
}

void PassForeignException() {
  if (!IsOwnException()) throw;
}

void RunAllSteps(std::initializer_list<void (*)()> steps) { RunFrom(steps.begin(), steps.end()); }
