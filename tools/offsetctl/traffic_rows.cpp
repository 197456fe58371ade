#include "traffic_rows.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/bytes.h"
#include "numbers.h"

namespace ctl {

namespace {

constexpr uint32_t headerSize = 128, entrySize = 40, entries = 96, textSize = 14;
constexpr double radians = std::numbers::pi / 180;
constexpr double earthRadius = 6371.0 / 1.852;  // nautical miles

struct Traffic {
  std::string text;
  double range, bearing;  // nautical miles, degrees true
  double altitude, heading, speed, climb;
};

Traffic ReadEntry(const uint8_t* entry, double latitude, double longitude) {
  Traffic traffic = {};
  for (uint32_t i = 0; i < textSize && entry[22 + i] != 0; ++i) {
    const char letter = static_cast<char>(entry[22 + i]);
    traffic.text += letter >= ' ' && letter <= '~' ? letter : '?';
  }
  const double from = latitude * radians, to = static_cast<double>(LoadFrom<float>(entry + 4)) * radians;
  const double turn = (static_cast<double>(LoadFrom<float>(entry + 8)) - longitude) * radians;
  const double north = std::cos(from) * std::sin(to) - std::sin(from) * std::cos(to) * std::cos(turn);
  const double east = std::sin(turn) * std::cos(to);
  const double cosine = std::sin(from) * std::sin(to) + std::cos(from) * std::cos(to) * std::cos(turn);
  traffic.range = std::atan2(std::sqrt(north * north + east * east), cosine) * earthRadius;
  traffic.bearing = std::fmod(std::atan2(east, north) / radians + 360, 360);
  traffic.altitude = static_cast<double>(LoadFrom<float>(entry + 12));
  traffic.heading = LoadFrom<uint16_t>(entry + 16) * 360.0 / 65536;
  traffic.speed = LoadFrom<uint16_t>(entry + 18);
  traffic.climb = LoadFrom<int16_t>(entry + 20);
  return traffic;
}

// A number right-aligned in its column.
std::string Right(double value, int decimals, size_t width) {
  const std::string text = FixedText(value, decimals);
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string Line(const Traffic& traffic) {
  std::string line = "  " + traffic.text;
  line.resize(textSize + 3, ' ');
  return line + Right(traffic.range, 1, 7) + " nm at" + Right(traffic.bearing, 0, 4) +
         Right(traffic.altitude, 0, 7) + " ft" + Right(traffic.climb, 0, 6) + " ft/min" +
         Right(traffic.speed, 0, 5) + " kt to" + Right(traffic.heading, 0, 4);
}

}  // namespace

std::vector<std::string> TrafficLines(const uint8_t* table, double latitude, double longitude, size_t count) {
  std::vector<Traffic> all;
  for (uint32_t i = 0; i < entries; ++i) {
    const uint8_t* entry = table + headerSize + entrySize * i;
    if (LoadFrom<uint32_t>(entry) != 0) all.push_back(ReadEntry(entry, latitude, longitude));
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Traffic& a, const Traffic& b) { return a.range < b.range; });
  std::vector<std::string> lines = {"Traffic      " + WholeText(static_cast<uint64_t>(all.size())) +
                                    " aircraft"};
  for (size_t i = 0; i < count; ++i) lines.push_back(i < all.size() ? Line(all[i]) : "");
  return lines;
}

}  // namespace ctl
