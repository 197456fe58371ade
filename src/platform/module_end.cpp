// Linked into the plug-in file alone. The C++ run time stands in the module itself, and the memory that it
// takes at load, for exceptions that are thrown when there is no more, it would never return: every reload
// would leave it behind (70 KiB).
#include <cstdlib>

namespace __gnu_cxx {
void __freeres();  // of the run time's support library, made for memory checkers; no header declares it
}

namespace {

// Runs after the destructors of all objects of the module.
#if defined(_WIN32)
// There the destructors are called in the reverse order of their registration.
[[gnu::constructor(101)]] void ArrangeEnd() {
  std::atexit([] { __gnu_cxx::__freeres(); });
}
#else
[[gnu::destructor(101)]] void End() { __gnu_cxx::__freeres(); }
#endif

}  // namespace
