// A local client that writes as fast as the window server answers: a number that counts up, to a place of its
// own, read back within the same request. Windows only.
//
//   steady_writer_win32 OFFSET SECONDS
//
// Prints "N requests, last M, wrong K": K counts answers that are none and numbers that were not there at once.
#include <chrono>
#include <cstdlib>

#include "client_block.h"

int main(int count, char** words) {
  Server server;
  ClientBlock block;
  if (count != 3 || !FindServer(&server) || !MakeBlock(256, &block)) {
    std::printf("usage: steady_writer_win32 OFFSET SECONDS, with a window KORLMAIN there\n");
    return 2;
  }
  const auto offset = static_cast<uint32_t>(std::strtoul(words[1], nullptr, 0));
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(std::atof(words[2]));
  uint32_t number = 0, wrong = 0;
  while (std::chrono::steady_clock::now() < end) {
    ++number;
    RecordWriter writer = {block.view, 0};
    writer.Write(offset, sizeof number, &number);
    const uint8_t* shown = writer.Read(offset, sizeof number);
    writer.End();
    if (Call(server, block.atom) != 1 || LoadFrom<uint32_t>(shown) != number) ++wrong;
  }
  FreeBlock(&block);
  std::printf("%u requests, last %u, wrong %u\n", number, number, wrong);
  return wrong == 0 ? 0 : 1;
}
