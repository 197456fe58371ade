// Sends a request block, given as hexadecimal bytes in a file, to the window server and prints its answer and
// the block as it is afterwards: `replay_block_win32 FILE`. A '#' begins a comment.
#include <fstream>
#include <sstream>

#include "client_block.h"

namespace {

// Returns the file's bytes; none when it cannot be read or holds anything else.
std::vector<uint8_t> ReadHexFile(const char* path) {
  std::ifstream file(path);
  std::vector<uint8_t> bytes;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;) {
      char* end = nullptr;
      const unsigned long value = std::strtoul(word.c_str(), &end, 16);
      if (*end != 0 || value > 255) return {};
      bytes.push_back(static_cast<uint8_t>(value));
    }
  }
  return bytes;
}

}  // namespace

int main(int count, char** words) {
  const std::vector<uint8_t> request = count == 2 ? ReadHexFile(words[1]) : std::vector<uint8_t>();
  Server server;
  ClientBlock block;
  if (request.empty() || !FindServer(&server) || !MakeBlock(4096, &block)) {
    std::printf("no file of hexadecimal bytes, no server or no memory\n");
    return 2;
  }
  std::memcpy(block.view, request.data(), request.size());
  std::printf("%d\n", Call(server, block.atom));
  for (size_t i = 0; i < request.size(); ++i) std::printf("%02X ", block.view[i]);
  std::printf("\n");
  FreeBlock(&block);
  return 0;
}
