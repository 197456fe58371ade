// What the stand-in needs of the operating system. host_system.cpp is the one file of the simulator that
// has two versions of things.
#pragma once
#include <cstdint>
#include <string>

namespace sim {

// Number of the calling thread, never 0. Cheap: every exported function asks for it.
uintptr_t CurrentThread();

// Plug-in files. LoadModule returns null and says why on failure. Simulator's thread.
void* LoadModule(const std::string& path, std::string* why);
void* ModuleSymbol(void* module, const char* name);
void UnloadModule(void* module);
bool ModuleInMemory(const std::string& path);
// A function of the simulator's own libraries, null when there is none of this name.
void* SimulatorSymbol(const char* name);
// "name" or "file+0x12ab" of a function in a loaded module.
std::string DescribeAddress(void* address);

// Absolute, with native separators, "." and ".." resolved; does not ask whether it exists.
std::string AbsolutePath(const std::string& path);
extern const char kSeparator;

// Once, at the beginning of the host program: line ends as written, signals, widget library.
void PrepareProgram();
// A signal has asked for the end.
bool StopWanted();
// Blocking read of standard input by the reader thread: number of bytes, 0 at the end.
int ReadStandardInput(char* buffer, int size);
// Ends the process without running anything of the plug-ins or the C++ runtime. Any thread.
[[noreturn]] void EndAtOnce(int status);

}  // namespace sim
