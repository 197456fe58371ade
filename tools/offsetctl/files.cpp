#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string_view>

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

// All of a file; nothing when it cannot be read or is larger than any plug-in.
std::vector<uint8_t> BytesOf(const std::string& path) {
  constexpr size_t largest = size_t{1} << 28;
  std::vector<uint8_t> bytes, part(1 << 16);
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  for (size_t size = 1; file && size > 0 && bytes.size() < largest;) {
    size = std::fread(part.data(), 1, part.size(), file.get());
    bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(size));
  }
  return bytes;
}

bool IsInside(const std::vector<uint8_t>& bytes, uint64_t at, uint64_t size) {
  return at <= bytes.size() && size <= bytes.size() - at;
}

constexpr uint32_t portableHeaderSize = 24;  // signature and file header

// Whether the sections that the headers name lie within the file.
bool IsWholePortable(const std::vector<uint8_t>& bytes, uint32_t header) {
  constexpr uint32_t sectionSize = 40;
  const uint32_t count = LoadFrom<uint16_t>(bytes.data() + header + 6);
  const uint32_t first = header + portableHeaderSize + LoadFrom<uint16_t>(bytes.data() + header + 20);
  if (!IsInside(bytes, first, uint64_t{count} * sectionSize)) return false;
  for (uint32_t i = 0; i < count; ++i) {
    const uint8_t* section = bytes.data() + first + i * sectionSize;
    if (!IsInside(bytes, LoadFrom<uint32_t>(section + 20), LoadFrom<uint32_t>(section + 16))) return false;
  }
  return count > 0;
}

// The same of its segments and of the table of its sections, which stands at the end.
bool IsWholeElf(const std::vector<uint8_t>& bytes) {
  constexpr uint32_t segmentSize = 56;
  const uint8_t* head = bytes.data();
  const uint64_t segments = LoadFrom<uint64_t>(head + 32), sections = LoadFrom<uint64_t>(head + 40);
  const uint32_t count = LoadFrom<uint16_t>(head + 56);
  const uint64_t tableSize = uint64_t{LoadFrom<uint16_t>(head + 58)} * LoadFrom<uint16_t>(head + 60);
  if (!IsInside(bytes, segments, uint64_t{count} * segmentSize) || !IsInside(bytes, sections, tableSize))
    return false;
  for (uint32_t i = 0; i < count; ++i) {
    const uint8_t* segment = bytes.data() + segments + i * segmentSize;
    if (!IsInside(bytes, LoadFrom<uint64_t>(segment + 8), LoadFrom<uint64_t>(segment + 32))) return false;
  }
  return count > 0;
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

bool WriteTextFile(const std::string& path, const std::string& text) {
  const std::string beside = path + ".new";
  if (Write(beside, "wb", text) && MoveOver(beside, path)) return true;
  std::remove(beside.c_str());
  return false;
}

bool TakeLock(const std::string& path, double staleSeconds) {
  struct stat status = {};
  if (StatusOf(path, &status) && std::difftime(std::time(nullptr), status.st_mtime) > staleSeconds)
    GiveLock(path);
  const int file = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY, S_IRUSR | S_IWUSR);
  if (file < 0) return false;
  close(file);
  return true;
}

void GiveLock(const std::string& path) { std::remove(path.c_str()); }

BinaryKind KindOfBytes(const std::vector<uint8_t>& bytes) {
  constexpr size_t newHeaderAt = 0x3C, least = 64;
  constexpr uint16_t intel32 = 0x14C, amd64 = 0x8664, elfAmd64 = 62;
  if (bytes.size() < least) return BinaryKind::Other;
  const uint8_t* head = bytes.data();
  if (head[0] == 0x7F && head[1] == 'E' && head[2] == 'L' && head[3] == 'F') {
    if (head[4] != 2 || LoadFrom<uint16_t>(head + 18) != elfAmd64) return BinaryKind::Other;
    return IsWholeElf(bytes) ? BinaryKind::Linux64 : BinaryKind::Damaged;
  }
  if (head[0] != 'M' || head[1] != 'Z') return BinaryKind::Other;
  const uint32_t header = LoadFrom<uint32_t>(head + newHeaderAt);
  if (!IsInside(bytes, header, portableHeaderSize)) return BinaryKind::Damaged;
  const uint16_t machine = LoadFrom<uint16_t>(head + header + 4);
  if (machine != intel32 && machine != amd64) return BinaryKind::Other;
  if (!IsWholePortable(bytes, header)) return BinaryKind::Damaged;
  return machine == intel32 ? BinaryKind::Windows32 : BinaryKind::Windows64;
}

BinaryKind KindOfBinary(const std::string& path) {
  return IsFile(path) ? KindOfBytes(BytesOf(path)) : BinaryKind::Missing;
}

bool IsThisPlugin(const std::string& path) {
  constexpr std::string_view mark = "TAVRIXOffsets.cfg";
  if (!IsFile(path)) return false;
  const std::vector<uint8_t> bytes = BytesOf(path);
  return std::search(bytes.begin(), bytes.end(), mark.begin(), mark.end()) != bytes.end();
}

}  // namespace ctl
