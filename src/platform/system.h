// The room platform/: the operating system behind plain functions. One header a subject (locks, threads and
// their messages, events, sockets, addresses, clock, detached work, and the facts below), with the same
// functions for both systems in posix/ and win32/. Nothing else knows the system, but for
// offsets/window_server.cpp.
//
// It knows no other room, neither logs nor calls the simulator, and reports failure by what it returns. Each
// header says which thread may call: making and ending locks, threads and sockets is for the thread that owns
// them, entering, signalling, waking and asking for any.
//
// This header: facts about this computer and its file system, and the few file operations that differ by
// system; any thread. Paths are in the system's own form; on Windows in the active code page, as the simulator
// gives them.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

struct SharedFolder {
  std::string name;    // share name
  std::string folder;  // local folder that is shared
};

constexpr bool onWindows =
#if defined(_WIN32)
    true;
#else
    false;
#endif
constexpr char pathSeparator = onWindows ? '\\' : '/';

// This computer's network name, at most 16 characters; "" when the system does not tell.
std::string ComputerName();
// Folders that this computer shares over the network, read from the registry on Windows ("PATH=" values,
// compared regardless of case); empty elsewhere. Never fails: what cannot be read is left out.
std::vector<SharedFolder> ListSharedFolders();
// Whether the path names an existing directory.
bool IsDirectory(const char* path);
// Whether a plain file stands under the path, or nothing at all: only then may a file be put there.
bool IsFileOrNothing(const char* path);
// The folder's text with a separator at its end, put there only when none stands there; "" stays "".
std::string WithSeparator(std::string folder);

enum class OpenMode { Read, Empty, Append };
struct OpenFailure {
  bool missing;                  // to be read, and not there
  std::string reason;            // for a log line
  const char* remedy = nullptr;  // as SystemErrorRemedy
};
// Opens a plain file, without any conversion of its bytes; Empty and Append make it when it is missing.
// Whatever else stands under the name (a folder, a pipe, a device, a socket) is refused: it is neither waited
// for nor changed. Returns null on failure and fills `failure`.
FILE* OpenPlainFile(const char* path, OpenMode mode, OpenFailure* failure);
// Makes a folder and the missing ones above it. Returns true when it exists afterwards.
bool CreateFolders(const char* path);
// Writes everything of the stream down to the disk (not only to the system's cache). Returns true, or false
// when it cannot.
bool FlushToDisk(FILE* file);
// Puts `from` in the place of `to` in one step, so that at every moment either the old or the new content
// stands under the name. Returns true, or false with both files as they were.
bool ReplaceFile(const char* from, const char* to);
// Last system error as text, for log lines, and as the system's own number.
std::string SystemErrorText();
int SystemErrorNumber();
// What the user can do about the last system error, for log lines; null when that depends on what was tried.
const char* SystemErrorRemedy();
constexpr char shortageRemedy[] =
    "close other programs and plug-ins, the system has run short of what it needs";
constexpr char fullDiskRemedy[] = "make room on that disk";
// Where the program or library that holds this address begins, null for none. Any thread.
const void* ModuleOf(const void* address);
// Open handles or file descriptors of this process, or -1; for tests and diagnostics.
int CountProcessHandles();
// Bytes of private memory in use by this process, or -1; for tests and diagnostics.
int64_t ProcessMemoryBytes();
