// Fuzz target: the client tool's reader of datagrams. Whatever comes, reading stays inside the datagram, only
// well-formed frames change the picture, and a frame never changes what it does not name.
//
// The input is a series of datagrams, each behind its size in two bytes; one that ends early is shorter.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "offsetctl/picture.h"
#include "require.h"

namespace {

uint32_t CountChanged(const ctl::Picture& before, const ctl::Picture& after) {
  constexpr size_t stretch = 256;
  uint32_t changed = 0;
  for (size_t at = 0; at < before.bytes.size(); at += stretch) {
    if (std::memcmp(before.bytes.data() + at, after.bytes.data() + at, stretch) == 0) continue;
    for (size_t i = at; i < at + stretch; ++i) changed += before.bytes[i] != after.bytes[i];
  }
  return changed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static ctl::Picture picture, before;
  picture = {};
  uint8_t wanted[] = {1, 2, 3, 4};
  ctl::Echo echo = ctl::ExpectEcho({{0x0FFFE, 4, wanted}, {0x1FFFC, 4, wanted}}, picture);
  while (size > 2) {
    const size_t length = std::min<size_t>(static_cast<size_t>(data[0] | data[1] << 8), size - 2);
    // An allocation of its own, so that the sanitizer sees the smallest step outside.
    const std::vector<uint8_t> datagram(data + 2, data + 2 + length);
    data += 2 + length;
    size -= 2 + length;
    const ctl::NetFrame frame = ctl::ReadFrame(datagram.data(), datagram.size());
    before = picture;
    const size_t missing = echo.size();
    ctl::ApplyFrame(frame, &picture);
    ctl::TakeEcho(frame, &echo);
    Require(echo.size() <= missing);
    const uint32_t changed = CountChanged(before, picture);
    switch (frame.kind) {
      case ctl::FrameKind::Block:
        Require(changed <= ctl::pictureBlockSize && frame.block < ctl::pictureBlocks);
        Require(std::memcmp(picture.bytes.data() + frame.block * ctl::pictureBlockSize, frame.payload,
                            frame.size) == 0);
        break;
      case ctl::FrameKind::Changes:
        Require(changed <= frame.size / 6);
        break;
      default:
        Require(changed == 0 && picture.arrived == before.arrived && echo.size() == missing);
        break;
    }
  }
  return 0;
}
