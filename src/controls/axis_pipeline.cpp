#include "controls/axis_pipeline.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/bytes.h"

namespace {

constexpr double floatSteps = 32768;
constexpr double newsDistance = 0.6;  // steps
constexpr double detentReach = 0.4;   // of the way to the neighbour
// Decimal fractions are not exact: 0.12 lies less than 0.02 above 0.1.
constexpr double inexact = 1e-9;

// Without a step at the zone's edge, and full at the end.
double Beyond(double deflection, double nullZone) {
  const double size = std::fabs(deflection);
  if (size <= nullZone) return 0;
  return std::copysign((size - nullZone) / (1 - nullZone), deflection);
}

// Exact at rest and at the ends.
double Curved(double deflection, double curve) {
  return deflection + curve * deflection * (deflection * deflection - 1);
}

void SpaceEvenly(int count, DetentBounds (&bounds)[maxFlapDetents]) {
  const double gap = 1.0 / (count - 1);
  for (int i = 0; i < count; ++i) bounds[i] = {(i - detentReach) * gap, (i + detentReach) * gap};
}

}  // namespace

bool IsReading(double number) { return number >= -0.5 && number <= 1.5; }

double Deflect(const AxisTune& tune, Travel travel, double reading) {
  const Calibration& c = tune.calibration;
  double deflection = 0;
  if (travel == Travel::Centred) {
    const double way = reading < c.centre ? c.centre - c.low : c.high - c.centre;
    deflection = std::clamp((reading - c.centre) / way, -1.0, 1.0);
    if (tune.inverted) deflection = -deflection;
  } else {
    deflection = std::clamp((reading - c.low) / (c.high - c.low), 0.0, 1.0);
    if (tune.inverted) deflection = 1 - deflection;
    if (travel == Travel::Reversing) {
      const double way = deflection < tune.reverse ? tune.reverse : 1 - tune.reverse;
      deflection = (deflection - tune.reverse) / way;
    }
  }
  return Curved(Beyond(deflection, tune.nullZone), tune.curve);
}

double Combine(Travel travel, double one, double other) {
  return travel == Travel::OneSided ? std::max(one, other) : std::clamp(one + other, -1.0, 1.0);
}

double NumberOf(const AxisTarget& target, Travel travel, double deflection) {
  if (deflection >= 1) return target.high;  // to the last bit
  const double rest = travel == Travel::OneSided ? target.low : 0;
  return rest + deflection * (deflection >= 0 ? target.high - rest : rest - target.low);
}

bool IsNews(const AxisTarget& target, double last, double number) {
  const double distance = std::fabs(number - last);
  if (target.type == NumberType::Float) {
    if (distance >= std::fabs(target.high - target.low) / floatSteps) return true;
  } else if (distance > newsDistance) {
    return true;
  }
  return (number == target.low || number == target.high || number == 0) && number != last;
}

double Rounded(const AxisTarget& target, double number) {
  return target.type == NumberType::Float ? number : std::round(number);
}

void EncodeNumber(const AxisTarget& target, double number, uint8_t (&bytes)[8]) {
  if (target.type == NumberType::Float) {
    if (target.size == sizeof(float)) {
      StoreTo(bytes, static_cast<float>(number));
    } else {
      StoreTo(bytes, number);
    }
    return;
  }
  const double whole = std::round(number);
  // Little-endian: the first `size` bytes hold the number.
  StoreTo(bytes, whole < 0 ? static_cast<uint64_t>(static_cast<int64_t>(whole)) : static_cast<uint64_t>(whole));
}

const char* PlaceDetents(std::span<const FlapDetent> detents, DetentBounds (&bounds)[maxFlapDetents]) {
  const int count = static_cast<int>(detents.size());
  double positions[maxFlapDetents] = {};
  const auto fail = [&](const char* why) {
    SpaceEvenly(count, bounds);
    return why;
  };
  const auto given = [](const FlapDetent& detent, int which) {
    return detent.count > which && !std::isnan(detent.values[which]);
  };
  const auto reach = [](double way) { return std::min(detentReach * way, (way - leastDetentGap) / 2); };
  for (int i = 0; i < count; ++i) {
    const FlapDetent& detent = detents[static_cast<size_t>(i)];
    positions[i] = given(detent, 0) ? detent.values[0] : static_cast<double>(i) / (count - 1);
    if (!(positions[i] >= 0 && positions[i] <= 1)) return fail("a detent's position is from 0 to 1");
    if (i > 0 && positions[i] - positions[i - 1] < 2 * leastDetentGap - inexact)
      return fail("each detent lies at least 0.02 above the one before");
  }
  for (int i = 0; i < count; ++i) {
    const FlapDetent& detent = detents[static_cast<size_t>(i)];
    const double below = i > 0 ? positions[i] - positions[i - 1] : 1;
    const double above = i + 1 < count ? positions[i + 1] - positions[i] : 1;
    bounds[i] = {given(detent, 1) ? detent.values[1] : positions[i] - reach(below),
                 given(detent, 2) ? detent.values[2] : positions[i] + reach(above)};
    if (!(bounds[i].lower <= positions[i] && bounds[i].upper >= positions[i]))
      return fail("a detent's bounds enclose its position");
    if (i > 0 && bounds[i].lower - bounds[i - 1].upper < leastDetentGap - inexact)
      return fail("between the bounds of two detents a gap of 0.01 is needed");
  }
  return nullptr;
}

int NextDetent(std::span<const DetentBounds> bounds, int present, double lever) {
  const int count = static_cast<int>(bounds.size());
  present = std::clamp(present, 0, count - 1);
  while (present + 1 < count && lever >= bounds[static_cast<size_t>(present) + 1].lower) ++present;
  while (present > 0 && lever <= bounds[static_cast<size_t>(present) - 1].upper) --present;
  return present;
}
