// The simulator's folder in the offset memory: as local clients see it, and as a network path for clients
// on other machines.
#include <algorithm>
#include <cctype>

#include "offsets/memory.h"

namespace {

constexpr size_t folderSize = 256;  // bytes of the block, terminator included
constexpr uint32_t pathBlock = 0x3E00;

char localFolder[folderSize];
char networkFolder[folderSize];

void KeepFolder(char (&target)[folderSize], const std::string& text) {
  const size_t length = std::min(text.size(), folderSize - 1);
  std::memset(target, 0, folderSize);
  std::memcpy(target, text.data(), length);
}

char LowerCase(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// Whether `folder` begins with `share` (regardless of case, as the file system compares) and the share's
// text ends at the folder's end or at a separator. A drive root ("C:\") needs no such boundary.
bool IsBelowShare(const std::string& folder, const std::string& share) {
  if (share.empty() || share.size() > folder.size()) return false;
  if (!std::equal(share.begin(), share.end(), folder.begin(),
                  [](char a, char b) { return LowerCase(a) == LowerCase(b); })) {
    return false;
  }
  return share.size() == 3 || share.size() == folder.size() || folder[share.size()] == '\\';
}

}  // namespace

std::string NetworkFolder(const std::string& folder, const std::string& computer,
                          const std::vector<SharedFolder>& shares, bool (*isDirectory)(const char*)) {
  std::string best;
  size_t limit = 261;
  for (const SharedFolder& share : shares) {
    if (!IsBelowShare(folder, share.folder)) continue;
    std::string rest = folder.substr(share.folder.size());
    if (!rest.empty() && rest.front() == '\\') rest.erase(0, 1);
    const std::string candidate = "\\\\" + computer + "\\" + share.name + "\\" + rest;
    if (candidate.size() >= limit || !isDirectory(candidate.c_str())) continue;
    limit = candidate.size();
    best = candidate;
  }
  const std::string& chosen = best.empty() ? folder : best;
  return chosen.substr(0, folderSize - 1);
}

void PrepareFolders(const char* systemFolder) {
  KeepFolder(localFolder, systemFolder);
  KeepFolder(networkFolder, NetworkFolder(localFolder, ComputerName(), ListSharedFolders(), IsDirectory));
}

bool FillPathBlock(uint32_t offset, uint32_t length, PathSource source) {
  uint32_t consumed = 0;
  while (consumed < length) {
    switch (offset + consumed) {
      case 0x3BFC:
        consumed += 4;
        break;
      case 0x3C00:
      case 0x3D00:
        consumed += 256;
        break;
      case pathBlock:
        std::memcpy(offsetMemory.bytes + pathBlock, source == PathSource::Local ? localFolder : networkFolder,
                    folderSize);
        consumed += 256;
        break;
      default:
        return false;
    }
  }
  return true;
}
