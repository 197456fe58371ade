// A recording that is shown again: play, pause, speed, and any position at once. The file stays on the disk; of
// it a window and at most 64 pictures are in memory. One thread.
#pragma once
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "cockpit/mirror.h"

namespace ctl {

// A place of the file from which reading can go on.
struct PlayerMark {
  uint64_t at = 0;    // byte
  uint64_t time = 0;  // of the frame before, microseconds
  size_t frames = 0;  // before it
  Picture picture;
};

struct Player {
  ReplayState state;
  PlayerMark now;                 // what has been shown
  std::vector<PlayerMark> marks;  // by time; the first one is the beginning: the first whole picture
  std::string cutOff;             // where the file ends within a frame; "" when it is whole
  uint64_t shown = 0;             // frames that have been applied, again ones, too
  std::ifstream file = {};
  uint64_t fileSize = 0;
  std::vector<uint8_t> window = {};  // a part of the file
  uint64_t windowAt = 0;
  uint64_t markEvery = 0;  // bytes
};

// Reads the file once, to its end, into a fresh player, which stands at its beginning, playing. Returns true,
// or false with a sentence in `error` when it cannot be read, is no recording, is damaged, or never shows the
// whole memory.
bool OpenPlayer(const std::string& path, const std::string& name, Player* player, std::string* error);
// Goes on by that many seconds of the clock, if it plays. Stands still at the end.
void AdvancePlayer(double seconds, Player* player);
// Goes to a position in seconds, at most the end.
void SeekPlayer(double position, Player* player);
// Sets what is given. Playing on at the end begins again.
void SteerPlayer(const SourceOrder& order, Player* player);

}  // namespace ctl
