#include "files.h"

#include <sys/stat.h>

#include <cstdio>
#include <memory>

#include "base/bytes.h"

namespace ctl {

namespace {

constexpr char pluginPath[] = "Resources/plugins/TAVRIX";

bool Write(const std::string& path, const char* mode, const std::string& text) {
  FILE* file = std::fopen(path.c_str(), mode);
  if (file == nullptr) return false;
  const size_t written = std::fwrite(text.data(), 1, text.size(), file);
  return std::fclose(file) == 0 && written == text.size();
}

bool StatusOf(const std::string& path, struct stat* status) {
  std::string plain = path;  // Windows takes no separator at the end
  while (plain.size() > 1 && (plain.back() == '/' || plain.back() == '\\')) plain.pop_back();
  return stat(plain.c_str(), status) == 0;
}

}  // namespace

bool IsFolder(const std::string& path) {
  struct stat status = {};
  return StatusOf(path, &status) && (status.st_mode & S_IFMT) == S_IFDIR;
}

bool IsFile(const std::string& path) {
  struct stat status = {};
  return StatusOf(path, &status) && (status.st_mode & S_IFMT) == S_IFREG;
}

std::string Joined(const std::string& folder, const std::string& name) {
  const bool ends = folder.ends_with('/') || folder.ends_with('\\') || folder.empty();
  return folder + (ends ? "" : "/") + name;
}

std::string PluginFolderIn(const std::string& folder) {
  if (folder.empty()) return "";
  const std::string below = Joined(folder, pluginPath);
  if (IsFolder(below)) return below;
  const bool isPlugin = IsFile(Joined(folder, "win.xpl")) || IsFolder(Joined(folder, "64")) ||
                        IsFolder(Joined(folder, "32")) || IsFile(Joined(folder, "TAVRIX.ini"));
  return isPlugin ? folder : "";
}

bool WriteTextFile(const std::string& path, const std::string& text) { return Write(path, "wb", text); }
bool AppendToFile(const std::string& path, const std::string& text) { return Write(path, "ab", text); }

BinaryKind KindOfBinary(const std::string& path) {
  constexpr size_t headSize = 4096, newHeaderAt = 0x3C;
  constexpr uint16_t intel32 = 0x14C, amd64 = 0x8664, elfAmd64 = 62;
  uint8_t head[headSize] = {};
  if (!IsFile(path)) return BinaryKind::Missing;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file || std::fread(head, 1, sizeof head, file.get()) < 64) return BinaryKind::Other;
  if (head[0] == 0x7F && head[1] == 'E' && head[2] == 'L' && head[3] == 'F') {
    return LoadFrom<uint16_t>(head + 18) == elfAmd64 ? BinaryKind::Linux64 : BinaryKind::Other;
  }
  const uint32_t header = LoadFrom<uint32_t>(head + newHeaderAt);
  if (head[0] != 'M' || head[1] != 'Z' || header > headSize - 6) return BinaryKind::Other;
  switch (LoadFrom<uint16_t>(head + header + 4)) {
    case intel32:
      return BinaryKind::Windows32;
    case amd64:
      return BinaryKind::Windows64;
    default:
      return BinaryKind::Other;
  }
}

}  // namespace ctl
