#include "core/host_system.h"

#include <atomic>
#include <cstdio>
#include <filesystem>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>
#endif

namespace sim {
namespace {

std::atomic<bool> stopWanted{false};

std::string BaseName(const std::string& path) {
  size_t cut = path.find_last_of("/\\");
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

std::string Offset(const char* file, const void* base, const void* address) {
  char text[32];
  std::snprintf(text, sizeof text, "+0x%llx",
                static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(address) -
                                                reinterpret_cast<uintptr_t>(base)));
  return BaseName(file) + text;
}

}  // namespace

bool StopWanted() { return stopWanted.load(std::memory_order_relaxed); }

#ifdef _WIN32

const char kSeparator = '\\';

namespace {

HMODULE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const char*>(&stopWanted), &module);
  return module;
}

BOOL WINAPI OnConsoleEvent(DWORD) {
  stopWanted = true;
  return TRUE;
}

bool UnderWine() {
  HMODULE ntdll = GetModuleHandleA("ntdll.dll");
  return ntdll && GetProcAddress(ntdll, "wine_get_version");
}

}  // namespace

uintptr_t CurrentThread() { return GetCurrentThreadId(); }

void* LoadModule(const std::string& path, std::string* why) {
  // The simulator's libraries lie beside the program and are in memory already, so names resolve.
  HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (!module) *why = "system error " + std::to_string(GetLastError());
  return module;
}

void* ModuleSymbol(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void UnloadModule(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

bool ModuleInMemory(const std::string& path) { return GetModuleHandleA(path.c_str()) != nullptr; }

void* SimulatorSymbol(const char* name) {
  FARPROC found = GetProcAddress(OwnModule(), name);
  for (const char* library : {"XPWidgets.dll", "XPWidgets_64.dll"}) {
    HMODULE module = found ? nullptr : GetModuleHandleA(library);
    if (module) found = GetProcAddress(module, name);
  }
  return reinterpret_cast<void*>(found);
}

std::string DescribeAddress(void* address) {
  HMODULE module = nullptr;
  char path[MAX_PATH] = "?";
  if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         static_cast<const char*>(address), &module)) {
    GetModuleFileNameA(module, path, sizeof path);
  }
  return Offset(path, module, address);
}

std::string AbsolutePath(const std::string& path) {
  // Under Wine a path from the outside begins with a slash: drive Z holds the whole file system.
  std::string given = !path.empty() && path[0] == '/' && UnderWine() ? "Z:" + path : path;
  char full[1024];
  DWORD length = GetFullPathNameA(given.c_str(), sizeof full, full, nullptr);
  return length > 0 && length < sizeof full ? std::string(full, length) : given;
}

void PrepareProgram() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
  // Nothing in the program needs the widget library by name, yet its console commands must be there.
  if (!LoadLibraryA(sizeof(void*) == 8 ? "XPWidgets_64.dll" : "XPWidgets.dll")) {
    std::fputs("standin: the widget library is not beside the program\n", stderr);
  }
}

int ReadStandardInput(char* buffer, int size) {
  DWORD got = 0;
  if (!ReadFile(GetStdHandle(STD_INPUT_HANDLE), buffer, static_cast<DWORD>(size), &got, nullptr)) return 0;
  return static_cast<int>(got);
}

void EndAtOnce(int status) {
  std::fflush(stdout);
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
  for (;;) Sleep(1000);  // not reached: the call above does not return
}

#else

const char kSeparator = '/';

namespace {

void OnSignal(int) { stopWanted.store(true, std::memory_order_relaxed); }

}  // namespace

uintptr_t CurrentThread() { return static_cast<uintptr_t>(pthread_self()); }

void* LoadModule(const std::string& path, std::string* why) {
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) *why = dlerror();
  return module;
}

void* ModuleSymbol(void* module, const char* name) { return dlsym(module, name); }

void UnloadModule(void* module) { dlclose(module); }

bool ModuleInMemory(const std::string& path) {
  void* module = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (module) dlclose(module);
  return module != nullptr;
}

void* SimulatorSymbol(const char* name) { return dlsym(RTLD_DEFAULT, name); }

std::string DescribeAddress(void* address) {
  Dl_info info;
  if (!dladdr(address, &info)) return Offset("?", nullptr, address);
  if (info.dli_sname && info.dli_saddr == address) return info.dli_sname;
  return Offset(info.dli_fname, info.dli_fbase, address);
}

std::string AbsolutePath(const std::string& path) {
  std::error_code failure;
  std::filesystem::path full = std::filesystem::absolute(path, failure);
  return failure ? path : full.lexically_normal().string();
}

void PrepareProgram() {
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

int ReadStandardInput(char* buffer, int size) {
  for (;;) {
    ssize_t got = read(STDIN_FILENO, buffer, static_cast<size_t>(size));
    if (got < 0 && errno == EINTR && !StopWanted()) continue;
    return got > 0 ? static_cast<int>(got) : 0;
  }
}

void EndAtOnce(int status) {
  std::fflush(stdout);
  std::fflush(stderr);
  _exit(status);
}

#endif

}  // namespace sim
