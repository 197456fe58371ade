#include "platform/system.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace {

const char* ReasonOf(mode_t mode) {
  if (S_ISDIR(mode)) return "it is a folder";
  return S_ISFIFO(mode) ? "it is a pipe" : "it is a device or a socket";
}

FILE* Refuse(OpenFailure* failure, std::string reason) {
  failure->reason = std::move(reason);
  return nullptr;
}

void TakeSystemError(OpenFailure* failure) {
  failure->remedy = SystemErrorRemedy();
  failure->reason = SystemErrorText();
}

}  // namespace

std::string ComputerName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0) return "";
  std::string result = name;
  return result.substr(0, 16);
}

std::vector<SharedFolder> ListSharedFolders() { return {}; }

bool IsDirectory(const char* path) {
  struct stat info {};
  return stat(path, &info) == 0 && S_ISDIR(info.st_mode);
}

bool IsFileOrNothing(const char* path) {
  struct stat info {};
  if (stat(path, &info) == 0) return S_ISREG(info.st_mode);
  return errno == ENOENT;
}

std::string WithSeparator(std::string folder) {
  if (!folder.empty() && folder.back() != '/') folder += '/';
  return folder;
}

FILE* OpenPlainFile(const char* path, OpenMode mode, OpenFailure* failure) {
  *failure = {};
  // Looked at before: opening a device may already do something. Looked at again on the open file: another
  // may stand there by then, which O_NONBLOCK keeps from holding us up.
  struct stat info {};
  if (stat(path, &info) == 0 && !S_ISREG(info.st_mode)) return Refuse(failure, ReasonOf(info.st_mode));
  const int access = mode == OpenMode::Read    ? O_RDONLY
                     : mode == OpenMode::Empty ? O_WRONLY | O_CREAT
                                               : O_WRONLY | O_CREAT | O_APPEND;
  const int descriptor = open(path, access | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
  if (descriptor < 0) {
    failure->missing = errno == ENOENT && mode == OpenMode::Read;
    TakeSystemError(failure);
    return nullptr;
  }
  FILE* file = nullptr;
  if (fstat(descriptor, &info) != 0) {
    TakeSystemError(failure);
  } else if (!S_ISREG(info.st_mode)) {
    failure->reason = ReasonOf(info.st_mode);
  } else if (mode == OpenMode::Empty && ftruncate(descriptor, 0) != 0) {
    TakeSystemError(failure);
  } else {
    file = fdopen(descriptor, mode == OpenMode::Read ? "rb" : mode == OpenMode::Empty ? "wb" : "ab");
    if (!file) TakeSystemError(failure);
  }
  if (!file) close(descriptor);
  return file;
}

bool CreateFolders(const char* path) {
  const std::string whole = path;
  int reason = 0;  // of the first folder that could not be made
  for (size_t i = 1; i <= whole.size(); ++i) {
    if (i < whole.size() && whole[i] != '/') continue;
    const std::string above = whole.substr(0, i);
    if (IsDirectory(above.c_str()) || mkdir(above.c_str(), 0777) == 0) {
      reason = 0;
    } else if (reason == 0) {
      reason = errno;
    }
  }
  if (IsDirectory(path)) return true;
  errno = reason;
  return false;
}

bool FlushToDisk(FILE* file) {
  if (fflush(file) != 0) return false;
  return fsync(fileno(file)) == 0;
}

bool ReplaceFile(const char* from, const char* to) {
  if (rename(from, to) != 0) return false;
  // The new name is on the disk when its folder is. A file system that cannot do that changes nothing.
  std::string folder = to;
  const size_t slash = folder.rfind('/');
  folder = slash == std::string::npos ? "." : folder.substr(0, slash + 1);
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor >= 0) {
    fsync(descriptor);
    close(descriptor);
  }
  return true;
}

std::string SystemErrorText() { return std::system_category().message(errno); }

int SystemErrorNumber() { return errno; }

const char* SystemErrorRemedy() {
  switch (errno) {
    case EMFILE:
    case ENFILE:
    case ENOMEM:
      return shortageRemedy;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return fullDiskRemedy;
    default:
      return nullptr;
  }
}

const void* ModuleOf(const void* address) {
  Dl_info info;
  return dladdr(address, &info) == 0 ? nullptr : info.dli_fbase;
}

int CountProcessHandles() {
  DIR* folder = opendir("/proc/self/fd");
  if (!folder) return -1;
  int count = 0;
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(folder);
  return count - 1;  // without the one that reads the folder
}

int64_t ProcessMemoryBytes() {
  // The roll-up is exact; the per-thread counters behind /proc/self/statm lag by pages.
  FILE* file = fopen("/proc/self/smaps_rollup", "r");
  if (!file) return -1;
  int64_t kilobytes = 0;
  bool found = false;
  char line[256];
  while (fgets(line, sizeof line, file)) {
    for (const char* name : {"Private_Dirty:", "Private_Clean:"}) {
      if (strncmp(line, name, strlen(name)) != 0) continue;
      kilobytes += strtoll(line + strlen(name), nullptr, 10);
      found = true;
    }
  }
  fclose(file);
  return found ? kilobytes * 1024 : -1;
}
