// Linked into the plug-in file alone. The C++ run time stands in the module itself, and what it has taken at
// load (memory kept for exceptions that are thrown when there is no more) it returns at the process's end at
// the earliest: without this every reload would leave it behind.

namespace __gnu_cxx {
void __freeres();  // of the run time's support library, made for memory checkers; no header declares it
}

namespace {

// The lowest priority: runs at unloading, after every destructor of the module's own objects.
[[gnu::destructor(101)]] void FreeRunTime() { __gnu_cxx::__freeres(); }

}  // namespace
