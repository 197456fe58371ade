#if !defined(_WIN32)

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "files.h"

namespace ctl {

bool MoveOver(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(folder.c_str()), closedir);
  for (const dirent* entry = nullptr; opened && (entry = readdir(opened.get())) != nullptr;) {
    if (entry->d_name[0] != '.') names.push_back(entry->d_name);
  }
  return names;
}

bool IsStillAt(FILE* file, const std::string& path) {
  struct stat open = {}, named = {};
  if (fstat(fileno(file), &open) != 0 || lstat(path.c_str(), &named) != 0) return false;
  return open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

std::string ProgramFolder() {
  char path[4096];
  const ssize_t size = readlink("/proc/self/exe", path, sizeof path);
  const std::string program(path, size > 0 ? static_cast<size_t>(size) : 0);
  const size_t slash = program.rfind('/');
  return slash == std::string::npos ? "." : program.substr(0, slash + 1);
}

}  // namespace ctl

#endif
