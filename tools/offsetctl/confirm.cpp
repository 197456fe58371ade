#include "confirm.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "encode.h"
#include "names.h"
#include "numbers.h"
#include "show.h"

namespace ctl {

namespace {

// Where the catalogue gives no figures for a lossy row.
constexpr double unknownSteps = 4;
constexpr double singlePrecision = 1e-6;
constexpr double settleSeconds = 0.25;
constexpr double movingShare = 0.1;

double NumberIn(const WriteCheck& check, const uint8_t* bytes) {
  Item item = check.wanted;
  item.bytes.assign(bytes, bytes + item.size);
  return StoredNumber(item);
}

bool IsLossy(const OffsetName& row) { return row.lossy[0] != 0; }

bool IsScaled(const OffsetName& row) { return row.unitScale != 1 || row.unitBias != 0; }

double SlackOf(const OffsetName& row, const Item& wanted, double number) {
  double slack = 0;
  if (!IsInteger(wanted.type)) {
    slack = std::fabs(number) * singlePrecision;
  } else if (IsScaled(row)) {
    slack = 1;
  }
  if (!IsLossy(row)) return slack;
  if (row.lossSteps > 0 || row.lossShare > 0) {
    return std::max(slack, row.lossSteps + row.lossShare * std::fabs(number));
  }
  return IsScaled(row) ? std::max(slack, unknownSteps + singlePrecision * std::fabs(number)) : slack;
}

// Directions begin again behind a full turn.
double DistanceBetween(const WriteCheck& check, double a, double b) {
  const double distance = std::fabs(a - b);
  Item item = check.wanted;
  item.row = check.row;
  const double turn = std::ldexp(1.0, static_cast<int>(8 * item.size));
  return IsDirection(item) ? std::min(distance, turn - distance) : distance;
}

bool IsSameText(const WriteCheck& check, const uint8_t* shown) {
  const auto text = [&check](const uint8_t* bytes) {
    return std::string(bytes, std::find(bytes, bytes + check.wanted.size, uint8_t{0}));
  };
  return text(check.wanted.bytes.data()) == text(shown);
}

bool IsNumber(const WriteCheck& check) {
  return check.row != nullptr && check.row->show == Form::Number && check.wanted.type <= ValueType::F64;
}

}  // namespace

WriteCheck CheckOf(const Item& wanted, const NameTable& names, const uint8_t* before) {
  const std::vector<uint8_t> bytes(before, before + wanted.size);
  WriteCheck check = {wanted, wanted.row, bytes, bytes, false, 0};
  for (const OffsetName& row : names.rows) {
    if (row.offset >= wanted.offset + wanted.size || wanted.offset >= row.offset + row.length) continue;
    check.frames = std::max<uint32_t>(check.frames, row.frames);
  }
  if (check.row == nullptr) {
    const OffsetName* row = FindByOffset(names, wanted.offset);
    if (row != nullptr && row->type == wanted.type && row->length == wanted.size) check.row = row;
  }
  return check;
}

bool Follows(const WriteCheck& check, const uint8_t* shown) {
  const Item& wanted = check.wanted;
  if (std::memcmp(shown, wanted.bytes.data(), wanted.size) == 0) return true;
  if (check.row == nullptr) return false;
  const double number = StoredNumber(wanted), now = NumberIn(check, shown);
  if (check.row->show == Form::Flag) return (number != 0) == (now != 0);
  if (check.row->show == Form::Text) return IsSameText(check, shown);
  if (!IsNumber(check)) return false;
  const double distance = DistanceBetween(check, number, now);
  const double slack = SlackOf(*check.row, wanted, number);
  if (distance <= slack) return true;
  const bool moves = check.row->frames == 1 && check.row->lossSteps > 0;
  return moves &&
         distance <= slack + movingShare * DistanceBetween(check, number, NumberIn(check, check.before.data()));
}

bool IsRequest(const WriteCheck& check) {
  if (check.row == nullptr) return false;
  const std::string_view lossy = check.row->lossy;
  return lossy.starts_with("a request") || lossy.starts_with("goes back to 0");
}

bool IsRefused(const WriteCheck& check, const uint8_t* shown) {
  if (check.row != nullptr) return !check.row->writable || !Follows(check, shown);
  return check.frames > 0 && std::memcmp(shown, check.before.data(), check.before.size()) == 0 &&
         std::memcmp(shown, check.wanted.bytes.data(), check.wanted.size) != 0;
}

const WriteCheck* FindFailed(const std::vector<WriteCheck>& checks) {
  for (const WriteCheck& check : checks) {
    if (IsRequest(check)) continue;
    if (!check.done || IsRefused(check, check.shown.data())) return &check;
  }
  return nullptr;
}

Settling BeginSettling(const std::vector<WriteCheck>& checks, uint16_t activity, double now) {
  Settling settling = {.wanted = 0, .activity = activity, .lastFrameAt = now, .startedAt = now};
  for (const WriteCheck& check : checks) {
    // The frame that is under way may have passed the row already.
    if (check.frames > 0 && !IsRequest(check)) settling.wanted = std::max(settling.wanted, check.frames + 1);
  }
  return settling;
}

bool Settle(Settling* settling, uint16_t activity, double now) {
  if (activity != settling->activity) {
    settling->seen += static_cast<uint16_t>(activity - settling->activity);
    settling->activity = activity;
    settling->lastFrameAt = now;
  }
  return settling->seen >= settling->wanted && now - settling->startedAt >= settleSeconds;
}

double SecondsWithoutFrames(const Settling& settling, double now) {
  return settling.seen < settling.wanted ? now - settling.lastFrameAt : 0;
}

std::string StandstillText(double seconds) {
  return "sent, but no frames have run for " + RealText(seconds) +
         " s: whether the simulator follows shows when it goes on";
}

std::string ShownText(const WriteCheck& check, const uint8_t* shown) {
  Item item = check.wanted;
  item.bytes.assign(shown, shown + item.size);
  std::string text = item.shown + " shows " + EngineeringText(item);
  if (item.row != nullptr && item.row->unit[0] != 0) text += std::string(" ") + item.row->unit;
  if (check.row == nullptr) return text;
  if (check.row->lossy[0] != 0) return text + " (" + check.row->lossy + ")";
  return check.row->writable ? text : text + " (nothing in the simulator follows it)";
}

}  // namespace ctl
