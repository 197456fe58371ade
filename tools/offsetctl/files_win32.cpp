#if defined(_WIN32)

#include <windows.h>

#include "files.h"

namespace ctl {

bool MoveOver(const std::string& from, const std::string& to) {
  return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  WIN32_FIND_DATAA found;
  const HANDLE search = FindFirstFileA(Joined(folder, "*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if (found.cFileName[0] != '.') names.push_back(found.cFileName);
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return names;
}

// The system holds on to an open file's name.
bool IsStillAt(FILE*, const std::string&) { return true; }

std::string ProgramFolder() {
  char path[MAX_PATH] = "";
  const DWORD size = GetModuleFileNameA(nullptr, path, MAX_PATH);
  const std::string program(path, size < MAX_PATH ? size : 0);
  const size_t slash = program.rfind('\\');
  return slash == std::string::npos ? "." : program.substr(0, slash + 1);
}

}  // namespace ctl

#endif
