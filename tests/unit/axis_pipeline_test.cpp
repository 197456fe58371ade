// The pipeline of a joystick axis under random input: what holds for every tune and every reading.
#include "controls/axis_pipeline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr Travel travels[] = {Travel::OneSided, Travel::Centred, Travel::Reversing};

struct Dice {
  std::mt19937 random{20};
  double Between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
  AxisTune Tune() {
    const double low = Between(0, 0.3), high = Between(0.7, 1), way = high - low;
    return {.calibration = {low, low + way * Between(0.2, 0.8), high},
            .inverted = random() % 2 == 0,
            .nullZone = random() % 4 == 0 ? 0 : Between(0, mostNullZone),
            .curve = Between(leastCurve, mostCurve),
            .reverse = Between(0.05, mostReverse)};
  }
};

double Least(Travel travel) { return travel == Travel::OneSided ? 0 : -1; }

TEST(AxisPipeline, ReadingsMayBeHalfATravelBeyondTheEnds) {
  for (const double end : {-0.5, 1.5}) {
    EXPECT_TRUE(IsReading(end));
    EXPECT_FALSE(IsReading(std::nextafter(end, end * 2)));
  }
  EXPECT_FALSE(IsReading(std::numeric_limits<double>::quiet_NaN()));
}

// Rises (falls when inverted) with the reading, reaches both ends exactly, and knows no step: neighbours in the
// reading are neighbours in the deflection.
TEST(AxisPipeline, RisesFromEndToEndWithoutSteps) {
  Dice dice;
  for (int round = 0; round < 300; ++round) {
    const AxisTune tune = dice.Tune();
    for (const Travel travel : travels) {
      const Calibration& c = tune.calibration;
      const auto at = [&](double reading) { return Deflect(tune, travel, reading); };
      const double first = at(c.low), last = at(c.high);
      EXPECT_EQ(std::min(first, last), Least(travel));
      EXPECT_EQ(std::max(first, last), 1);
      EXPECT_EQ(at(c.low - 0.2), first) << "beyond the ends";
      EXPECT_EQ(at(c.high + 0.2), last);
      constexpr int steps = 2000;
      const double way = c.high - c.low;
      // The steepest that null zone, curve and the shorter side can make it.
      const double shortSide =
          std::min({c.centre - c.low, c.high - c.centre, tune.reverse * way, (1 - tune.reverse) * way});
      const double steepest = 4 / (shortSide * (1 - tune.nullZone)) * way / steps;
      double before = first;
      for (int i = 1; i <= steps; ++i) {
        const double now = at(c.low + way * i / steps);
        ASSERT_GE((now - before) * (tune.inverted ? -1 : 1), 0) << i;
        ASSERT_LE(std::fabs(now - before), steepest) << i;
        before = now;
      }
    }
  }
}

TEST(AxisPipeline, NullZoneIsDeadAndNothingElseIs) {
  Dice dice;
  for (int round = 0; round < 300; ++round) {
    AxisTune tune = dice.Tune();
    tune.nullZone = dice.Between(0.01, mostNullZone);
    const Calibration& c = tune.calibration;
    const double way = c.high - c.low, idle = tune.inverted ? 1 - tune.reverse : tune.reverse;
    const double end = tune.inverted ? c.high : c.low;  // where a one-sided axis rests
    struct Zone {
      Travel travel;
      double low, high;
    };
    // Below and above rest: the way that the zone takes its share of.
    const double below = c.centre - c.low, above = c.high - c.centre;
    const double under = idle * way, over = (1 - idle) * way, gate = c.low + under, z = tune.nullZone;
    const Zone zones[] = {
        {Travel::OneSided, end - (tune.inverted ? z * way : 0), end + (tune.inverted ? 0 : z * way)},
        {Travel::Centred, c.centre - z * below, c.centre + z * above},
        {Travel::Reversing, gate - z * under, gate + z * over}};
    for (const Zone& zone : zones) {
      for (int i = 0; i < 50; ++i) {
        const double inside = zone.low + (zone.high - zone.low) * dice.Between(0.001, 0.999);
        ASSERT_EQ(Deflect(tune, zone.travel, inside), 0) << static_cast<int>(zone.travel);
        const double outside = dice.Between(c.low, c.high);
        if (outside > zone.low - 1e-6 && outside < zone.high + 1e-6) continue;
        ASSERT_NE(Deflect(tune, zone.travel, outside), 0) << static_cast<int>(zone.travel);
      }
    }
  }
}

TEST(AxisPipeline, InvertedIsMirrored) {
  Dice dice;
  for (int round = 0; round < 2000; ++round) {
    AxisTune tune = dice.Tune(), mirrored = tune;
    mirrored.inverted = !tune.inverted;
    Calibration& c = mirrored.calibration;
    c.centre = c.low + c.high - c.centre;
    const double reading = dice.Between(-0.2, 1.2);
    for (const Travel travel : travels) {
      ASSERT_NEAR(Deflect(tune, travel, reading), Deflect(mirrored, travel, c.low + c.high - reading), 1e-9);
    }
    // A centred axis turned about keeps its size.
    mirrored.calibration = tune.calibration;
    ASSERT_EQ(Deflect(tune, Travel::Centred, reading), -Deflect(mirrored, Travel::Centred, reading));
  }
}

TEST(AxisPipeline, CombinedIsOrderFreeAndRises) {
  Dice dice;
  for (int round = 0; round < 2000; ++round) {
    for (const Travel travel : travels) {
      const double a = dice.Between(Least(travel), 1), b = dice.Between(Least(travel), 1),
                   more = dice.Between(b, 1);
      const double both = Combine(travel, a, b);
      ASSERT_EQ(both, Combine(travel, b, a));
      ASSERT_LE(both, Combine(travel, a, more));
      ASSERT_GE(both, Least(travel));
      ASSERT_LE(both, 1);
      ASSERT_EQ(Combine(travel, a, 0), a) << "at rest the other one does nothing";
    }
  }
}

AxisTarget RandomTarget(Dice* dice, Travel travel) {
  constexpr AxisTarget targets[] = {{0x0BB2, 2, NumberType::Signed, -16383, 16383},
                                    {0x088C, 2, NumberType::Signed, -4096, 16384},
                                    {0x66F0, 1, NumberType::Unsigned, 0, 255},
                                    {0x66F0, 4, NumberType::Float, -1, 1},
                                    {0x66F0, 8, NumberType::Float, 10, -250}};
  AxisTarget target = targets[dice->random() % std::size(targets)];
  if (travel == Travel::OneSided && target.low < 0) target.low = 0;
  return target;
}

// An axis that rests and trembles by a tenth of a step (a float: half a step) is told once; one that moves
// reaches every end.
TEST(AxisPipeline, TremblingIsSilentAndEndsAreReached) {
  Dice dice;
  for (int round = 0; round < 500; ++round) {
    const Travel travel = travels[dice.random() % 2];
    const AxisTarget target = RandomTarget(&dice, travel);
    const double step = target.type == NumberType::Float ? std::fabs(target.high - target.low) / 32768 : 1;
    const double rest = NumberOf(target, travel, dice.Between(Least(travel), 1));
    double last = Rounded(target, rest);
    const double tremble = target.type == NumberType::Float ? 0.49 : 0.099;
    const double low = std::min(target.low, target.high), high = std::max(target.low, target.high);
    for (int i = 0; i < 200; ++i) {
      const double number = std::clamp(rest + step * dice.Between(-tremble, tremble), low, high);
      // At an end it is told the end, once.
      if (number == low || number == high) break;
      ASSERT_FALSE(IsNews(target, last, number)) << rest << ' ' << number;
    }
    // Close to an end is at it, also for a switch.
    for (const double share : {0.99, 0.01}) {
      const AxisTarget lamp = {0x66F0, 1, NumberType::Unsigned, 0, 1};
      ASSERT_TRUE(IsNews(lamp, std::round(1 - share), NumberOf(lamp, Travel::OneSided, share)));
    }
    for (const double deflection : {1.0, 0.0, Least(travel)}) {
      const double number = NumberOf(target, travel, deflection);
      if (IsNews(target, last, number)) last = Rounded(target, number);
      ASSERT_EQ(last, Rounded(target, number)) << deflection;
    }
    EXPECT_EQ(NumberOf(target, travel, 1), target.high);
    EXPECT_EQ(NumberOf(target, travel, Least(travel)), target.low);
  }
}

TEST(AxisPipeline, Encoding) {
  struct Case {
    AxisTarget target;
    double number;
    uint64_t bytes;
  };
  const Case cases[] = {{{0, 2, NumberType::Signed, -4096, 16384}, -4096, 0xF000},
                        {{0, 2, NumberType::Signed, -16383, 16383}, -0.5, 0xFFFF},
                        {{0, 1, NumberType::Unsigned, 0, 255}, 254.6, 0xFF},
                        {{0, 4, NumberType::Unsigned, 0, 4294967295}, 4294967295, 0xFFFFFFFF},
                        {{0, 4, NumberType::Float, 0, 1}, 0.5, 0x3F000000},
                        {{0, 8, NumberType::Float, 0, 1}, 0.5, 0x3FE0000000000000}};
  for (const Case& c : cases) {
    uint8_t bytes[8] = {};
    EncodeNumber(c.target, c.number, bytes);
    uint64_t got = 0;
    std::copy_n(bytes, c.target.size, reinterpret_cast<uint8_t*>(&got));
    EXPECT_EQ(got, c.bytes) << c.number;
  }
}

// --- Detents
// --------------------------------------------------------------------------------------------------

// However a lever is moved: every detent is reached, positions are in their detents whatever came before, and a
// hand that trembles within half the gap never changes the detent more than once.
TEST(AxisPipeline, DetentsNeverChatter) {
  Dice dice;
  for (int round = 0; round < 500; ++round) {
    const auto count = static_cast<int>(2 + dice.random() % 9);
    FlapDetent detents[maxFlapDetents] = {};
    double at = dice.Between(0, 0.05), positions[maxFlapDetents] = {};
    const double room = 0.95 / count;
    for (int i = 0; i < count; ++i) {
      positions[i] = at;
      detents[i] = {{at, 0, 0}, 1};
      at += room * dice.Between(0.6, 1);
    }
    DetentBounds bounds[maxFlapDetents];
    const auto used = static_cast<size_t>(count);
    ASSERT_EQ(PlaceDetents({detents, used}, bounds), nullptr);
    double gap = 1;
    for (int i = 1; i < count; ++i) gap = std::min(gap, bounds[i].lower - bounds[i - 1].upper);
    ASSERT_GE(gap, leastDetentGap);
    const std::span<const DetentBounds> all(bounds, used);
    int detent = 0;
    for (int i = 0; i < 200; ++i) {
      const auto goal = static_cast<int>(dice.random() % used);
      detent = NextDetent(all, static_cast<int>(dice.random() % used), positions[goal]);
      ASSERT_EQ(detent, goal);
      const double hand = dice.Between(-0.1, 1.1);
      int changes = 0;
      for (int tremble = 0; tremble < 20; ++tremble) {
        const int next = NextDetent(all, detent, hand + gap * dice.Between(-0.49, 0.49));
        if (tremble > 0) changes += next != detent;  // the first one is the move itself
        detent = next;
      }
      ASSERT_LE(changes, 1);
    }
    // Slowly up and down, each one by one.
    detent = 0;
    int seen = 0;
    for (double lever = 0; lever <= 1; lever += 0.001) {
      const int next = NextDetent(all, detent, lever);
      ASSERT_TRUE(next == detent || next == detent + 1);
      seen += next - detent;
      detent = next;
    }
    EXPECT_EQ(seen, count - 1);
  }
}

TEST(AxisPipeline, DetentsOfTheSettings) {
  struct Case {
    std::vector<FlapDetent> detents;
    const char* fault;
    std::vector<DetentBounds> bounds;
  };
  const FlapDetent empty = {};
  const double absent = std::numeric_limits<double>::quiet_NaN();
  const std::vector<DetentBounds> even = {{-0.4, 0.4}, {0.6, 1.4}},
                                  three = {{-0.2, 0.2}, {0.3, 0.7}, {0.8, 1.2}};
  const Case cases[] = {
      {{empty, empty}, nullptr, {{-1 * 0.4, 0.4}, {0.6, 1.4}}},
      {{empty, {{0.25, 0, 0}, 1}, empty}, nullptr, {{-0.4, 0.1}, {0.15, 0.55}, {0.7, 1.4}}},
      {{{{0, 0, 0.1}, 3}, {{0.5, 0.45, 0.55}, 3}, {{1, 0.9, 1}, 3}},
       nullptr,
       {{0, 0.1}, {0.45, 0.55}, {0.9, 1}}},
      {{empty, {{0.5, absent, 0.6}, 3}, empty}, nullptr, {{-0.4, 0.2}, {0.3, 0.6}, {0.8, 1.4}}},
      {{{{0.1, 0, 0}, 1}, {{0.12, 0, 0}, 1}}, nullptr, {{-0.3, 0.105}, {0.115, 0.52}}},
      {{{{0.5, 40, 0}, 2}, {{1, 0, 0}, 1}}, "a detent's bounds enclose its position", even},
      {{{{0, 0, 0}, 1}, {{2, 0, 0}, 1}}, "a detent's position is from 0 to 1", even},
      {{empty, {{0, 0, 0}, 1}, empty}, "each detent lies at least 0.02 above the one before", three},
      {{{{0, 0, 0.5}, 3}, {{1, 0.5, 1}, 3}},
       "between the bounds of two detents a gap of 0.01 is needed",
       even}};
  for (const Case& c : cases) {
    DetentBounds bounds[maxFlapDetents] = {};
    EXPECT_STREQ(PlaceDetents(c.detents, bounds), c.fault);
    for (size_t i = 0; i < c.bounds.size(); ++i) {
      EXPECT_NEAR(bounds[i].lower, c.bounds[i].lower, 1e-9) << i;
      EXPECT_NEAR(bounds[i].upper, c.bounds[i].upper, 1e-9) << i;
    }
  }
}

}  // namespace
