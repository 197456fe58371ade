#include "platform/system.h"

#include <windows.h>
// windows.h first
#include <fcntl.h>
#include <io.h>
#include <psapi.h>

#include <cerrno>
#include <cstring>
#undef ReplaceFile  // the system's macro of the same name

namespace {

constexpr char sharesKey[] = "SYSTEM\\CurrentControlSet\\Services\\lanmanserver\\Shares";
constexpr DWORD largestShareValue = 1u << 20;  // bytes; what is larger is not a list of share properties

// The folder in a list of NUL-separated texts, of which one begins with "PATH="; "" when none does. The
// list need not be terminated.
std::string PathOfShare(const std::vector<char>& list, size_t length) {
  constexpr size_t prefixLength = 5;
  size_t begin = 0;
  while (begin < length) {
    size_t end = begin;
    while (end < length && list[end] != '\0') ++end;
    if (end - begin > prefixLength && _strnicmp(&list[begin], "PATH=", prefixLength) == 0) {
      return {&list[begin + prefixLength], end - begin - prefixLength};
    }
    begin = end + 1;
  }
  return "";
}

HKEY OpenSharesKey() {
  HKEY key = nullptr;
  // The flag is unknown to the oldest systems, which have one view only.
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, sharesKey, 0, KEY_READ | KEY_WOW64_64KEY, &key) == ERROR_SUCCESS) {
    return key;
  }
  return RegOpenKeyExA(HKEY_LOCAL_MACHINE, sharesKey, 0, KEY_READ, &key) == ERROR_SUCCESS ? key : nullptr;
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

constexpr char folderReason[] = "it is a folder";

FILE* Refuse(OpenFailure* failure, std::string reason) {
  failure->reason = std::move(reason);
  return nullptr;
}

// The open file behind the handle as a stream, which owns it from then on; null and the handle closed when
// that fails.
FILE* StreamOf(HANDLE handle, OpenMode mode) {
  const int flags = _O_BINARY | _O_NOINHERIT |
                    (mode == OpenMode::Read    ? _O_RDONLY
                     : mode == OpenMode::Empty ? _O_WRONLY
                                               : _O_WRONLY | _O_APPEND);
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  FILE* file = _fdopen(descriptor, mode == OpenMode::Read ? "rb" : mode == OpenMode::Empty ? "wb" : "ab");
  if (!file) _close(descriptor);
  return file;
}

}  // namespace

std::string ComputerName() {
  char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
  DWORD size = sizeof name;
  return GetComputerNameA(name, &size) ? std::string(name) : std::string();
}

std::vector<SharedFolder> ListSharedFolders() {
  std::vector<SharedFolder> folders;
  HKEY key = OpenSharesKey();
  if (!key) return folders;
  DWORD longestName = 0, largestValue = 0;
  if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &longestName,
                       &largestValue, nullptr, nullptr) != ERROR_SUCCESS ||
      longestName > 16383 || largestValue > largestShareValue) {
    RegCloseKey(key);
    return folders;
  }
  // Twice the name: it is counted in characters, of which one may take two bytes.
  std::vector<char> name(longestName * 2 + 1), list(largestValue + 2);
  for (DWORD index = 0;; ++index) {
    auto nameLength = static_cast<DWORD>(name.size());
    auto listLength = static_cast<DWORD>(list.size());
    DWORD type = 0;
    const LONG result = RegEnumValueA(key, index, name.data(), &nameLength, nullptr, &type,
                                      reinterpret_cast<BYTE*>(list.data()), &listLength);
    if (result == ERROR_MORE_DATA) continue;  // grew meanwhile
    if (result != ERROR_SUCCESS) break;
    if (type != REG_MULTI_SZ) continue;
    std::string folder = PathOfShare(list, listLength);
    if (!folder.empty()) folders.push_back({std::string(name.data(), nameLength), std::move(folder)});
  }
  RegCloseKey(key);
  return folders;
}

bool IsDirectory(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsFileOrNothing(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    return GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND;
  }
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string WithSeparator(std::string folder) {
  bool separated = true;
  for (size_t i = 0; i < folder.size(); ++i) {
    separated = IsSeparator(folder[i]);
    if (!IsDBCSLeadByte(static_cast<BYTE>(folder[i]))) continue;
    ++i;  // the second byte of a character may look like a backslash
    separated = false;
  }
  if (!separated) folder += pathSeparator;
  return folder;
}

FILE* OpenPlainFile(const char* path, OpenMode mode, OpenFailure* failure) {
  *failure = {};
  if (IsDirectory(path)) return Refuse(failure, folderReason);
  const DWORD access = mode == OpenMode::Read    ? GENERIC_READ
                       : mode == OpenMode::Empty ? GENERIC_WRITE
                                                 : FILE_APPEND_DATA | SYNCHRONIZE;
  HANDLE handle =
      CreateFileA(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                  mode == OpenMode::Read ? OPEN_EXISTING : OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    failure->missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    SetLastError(error);
    failure->remedy = SystemErrorRemedy();
    return Refuse(failure, SystemErrorText());
  }
  if (GetFileType(handle) != FILE_TYPE_DISK) {
    CloseHandle(handle);
    return Refuse(failure, "it is a pipe or a device");
  }
  if (mode == OpenMode::Empty && !SetEndOfFile(handle)) {
    failure->remedy = SystemErrorRemedy();
    failure->reason = SystemErrorText();
    CloseHandle(handle);
    return nullptr;
  }
  FILE* file = StreamOf(handle, mode);
  if (!file) *failure = {false, "the program has too many open files", shortageRemedy};
  return file;
}

bool CreateFolders(const char* path) {
  const std::string whole = path;
  DWORD reason = ERROR_SUCCESS;  // of the first folder that could not be made; drives and shares fail, too
  const auto make = [&reason](const std::string& folder) {
    if (IsDirectory(folder.c_str()) || CreateDirectoryA(folder.c_str(), nullptr)) {
      reason = ERROR_SUCCESS;
    } else if (reason == ERROR_SUCCESS) {
      reason = GetLastError();
    }
  };
  for (size_t i = 0; i < whole.size(); ++i) {
    if (IsDBCSLeadByte(static_cast<BYTE>(whole[i]))) {
      ++i;  // the second byte of a character may look like a backslash
    } else if (i > 0 && IsSeparator(whole[i])) {
      make(whole.substr(0, i));
    }
  }
  make(whole);
  if (IsDirectory(path)) return true;
  SetLastError(reason);
  return false;
}

bool FlushToDisk(FILE* file) {
  if (fflush(file) != 0) return false;
  return _commit(_fileno(file)) == 0;
}

bool ReplaceFile(const char* from, const char* to) {
  // Virus scanners and indexers hold a fresh file open for a moment, during which it cannot be replaced.
  constexpr int tries = 5;
  constexpr DWORD pauseMs = 20;
  for (int i = 0; i < tries; ++i) {
    if (i > 0) Sleep(pauseMs);
    if (MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
    const DWORD error = GetLastError();
    if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED && error != ERROR_LOCK_VIOLATION)
      break;
  }
  return false;
}

std::string SystemErrorText() {
  const DWORD error = GetLastError();
  if (error == ERROR_SUCCESS) return strerror(errno);
  char text[512] = {};
  DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                text, sizeof text, nullptr);
  while (length > 0 && (static_cast<unsigned char>(text[length - 1]) <= ' ' || text[length - 1] == '.'))
    --length;
  if (length == 0) return "system error " + std::to_string(error);
  return {text, length};
}

int SystemErrorNumber() { return static_cast<int>(GetLastError()); }

const char* SystemErrorRemedy() {
  switch (GetLastError()) {
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_NO_SYSTEM_RESOURCES:
      return shortageRemedy;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return fullDiskRemedy;
    default:
      return nullptr;
  }
}

const void* ModuleOf(const void* address) {
  HMODULE module = nullptr;
  constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  return GetModuleHandleExA(flags, static_cast<const char*>(address), &module) != 0 ? module : nullptr;
}

int CountProcessHandles() {
  DWORD count = 0;
  if (!GetProcessHandleCount(GetCurrentProcess(), &count)) return -1;
  if (count > 0) return static_cast<int>(count);
  // Wine does not tell. Handles are small multiples of four there, reused from the lowest: probe them.
  constexpr uintptr_t step = 4, longestGap = 512;
  int found = 0;
  for (uintptr_t value = step, gap = 0; gap < longestGap; value += step) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) {
      ++found;
      gap = 0;
    } else {
      ++gap;
    }
  }
  return found;
}

int64_t ProcessMemoryBytes() {
  using QueryMemory = BOOL(WINAPI*)(HANDLE, PROCESS_MEMORY_COUNTERS*, DWORD);
  // Newer systems have it in the kernel's library, older ones in one of its own; neither is linked.
  HMODULE own = nullptr;
  FARPROC found = GetProcAddress(GetModuleHandleA("kernel32.dll"), "K32GetProcessMemoryInfo");
  if (!found) {
    own = LoadLibraryA("psapi.dll");
    if (own) found = GetProcAddress(own, "GetProcessMemoryInfo");
  }
  int64_t bytes = -1;
  if (found) {
    auto query = reinterpret_cast<QueryMemory>(reinterpret_cast<void*>(found));
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    if (query(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters)) {
      // The same figure; Wine fills the second only, the oldest systems the first.
      bytes = static_cast<int64_t>(counters.PrivateUsage ? counters.PrivateUsage : counters.PagefileUsage);
    }
  }
  if (own) FreeLibrary(own);
  return bytes;
}
