// The traffic table as the monitor shows it: the nearest aircraft with range and bearing. Pure; any thread.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace ctl {

constexpr uint32_t trafficOffset = 0xF000;  // header, then the entries
constexpr uint32_t trafficSize = 128 + 96 * 40;

// From the table's bytes (trafficSize of them) and the own place in degrees: one line that says how many
// there are, then one for each of the `count` nearest, nearest first; empty lines when there are fewer.
std::vector<std::string> TrafficLines(const uint8_t* table, double latitude, double longitude, size_t count);

}  // namespace ctl
