#include "confirm.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>

#include "encode.h"
#include "names.h"
#include "show.h"

namespace ctl {

namespace {

// Where the catalogue gives no figures for a lossy row.
constexpr double unknownSteps = 4;
constexpr double singlePrecision = 1e-6;

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
double DistanceBetween(const OffsetName& row, const Item& item, double a, double b) {
  const double distance = std::fabs(a - b);
  const double turn = std::ldexp(1.0, static_cast<int>(8 * item.size));
  const bool isTurn = IsInteger(item.type) && std::strcmp(row.unit, "deg") == 0 &&
                      std::fabs(std::fabs(row.unitScale) * turn - 360) < 1e-9;
  return isTurn ? std::min(distance, turn - distance) : distance;
}

bool IsNumber(const WriteCheck& check) {
  return check.row != nullptr && check.row->show == Form::Number && check.wanted.type <= ValueType::F64;
}

}  // namespace

WriteCheck CheckOf(const Item& wanted, const NameTable& names, const uint8_t* before) {
  const std::vector<uint8_t> bytes(before, before + wanted.size);
  WriteCheck check = {wanted, wanted.row, bytes, bytes, false};
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
  if (!IsNumber(check)) return false;
  const double distance = DistanceBetween(*check.row, wanted, number, now);
  if (distance <= SlackOf(*check.row, wanted, number)) return true;
  const double moved = DistanceBetween(*check.row, wanted, now, NumberIn(check, check.before.data()));
  return IsLossy(*check.row) && distance < moved;
}

bool IsRequest(const WriteCheck& check) {
  if (check.row == nullptr) return false;
  const std::string_view lossy = check.row->lossy;
  return lossy.starts_with("a request") || lossy.starts_with("goes back to 0");
}

bool IsSetBack(const WriteCheck& check, const uint8_t* shown) {
  if (check.row == nullptr) return false;
  return std::memcmp(shown, check.before.data(), check.before.size()) == 0 && !Follows(check, shown);
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
