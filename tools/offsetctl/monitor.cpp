// The live cockpit table: a few rows of named offsets, read in one request per sample and drawn in place.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

#include "commands.h"
#include "console.h"
#include "encode.h"
#include "item.h"
#include "names.h"
#include "numbers.h"
#include "show.h"
#include "traffic_rows.h"
#include "units.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr size_t lineWidth = 78;
constexpr size_t columnWidth = 38;
constexpr size_t labelWidth = 12;
constexpr double quietSeconds = 2;  // longer than any pause between two frames but a loading simulator's
constexpr size_t trafficLines = 3;  // all of it fits a terminal of 24 lines

// One line of a column. Names that the plug-in does not know are left out.
struct MonitorRow {
  const char* label;
  const char* names[4];
  const char* between = "";            // between the values
  const char* const* words = nullptr;  // what the values 0 to 3 mean
  const char* unit = "";               // a pilot's; "" for the offset's own
  int decimals = 0;
  bool reversed = false;  // the offset counts nose down, or left wing down, as positive
};

constexpr const char* pushbackWords[4] = {"straight", "nose right", "nose left", "off"};

constexpr MonitorRow leftRows[] = {
    {.label = "UTC", .names = {"zulu_hour", "zulu_minute", "second"}, .between = ":"},
    {.label = "Aircraft", .names = {"aircraft"}},
    {.label = "Latitude", .names = {"latitude"}, .decimals = 5},
    {.label = "Longitude", .names = {"longitude"}, .decimals = 5},
    {.label = "Altimeter", .names = {"indicated_altitude"}, .unit = "ft"},
    {.label = "Above sea", .names = {"altitude"}, .unit = "ft"},
    {.label = "Above ground", .names = {"radio_altitude"}, .unit = "ft"},
    {.label = "Heading true", .names = {"heading"}, .decimals = 1},
    {.label = "Nose up", .names = {"pitch"}, .decimals = 1, .reversed = true},
    {.label = "Bank right", .names = {"bank"}, .decimals = 1, .reversed = true},
    {.label = "IAS", .names = {"ias"}, .unit = "kt"},
    {.label = "TAS", .names = {"tas"}, .unit = "kt"},
    {.label = "Ground speed", .names = {"ground_speed"}, .unit = "kt"},
    {.label = "Vertical", .names = {"vertical_speed"}, .unit = "ft/min"},
    {.label = "Wind", .names = {"wind_from", "wind"}, .between = " / "},
    {.label = "QNH", .names = {"qnh"}, .unit = "hPa"},
    {.label = "Pushback", .names = {"pushback_state"}, .words = pushbackWords},
};

constexpr MonitorRow rightRows[] = {
    {.label = "Gear", .names = {"gear"}},
    {.label = "Flaps", .names = {"flaps"}},
    {.label = "Brakes l/r", .names = {"left_brake", "right_brake"}, .between = "  "},
    {.label = "Parking brk", .names = {"parking_brake"}},
    {.label = "On ground", .names = {"on_ground"}},
    {.label = "Autopilot", .names = {"ap"}},
    {.label = "AP heading", .names = {"ap_heading_bug"}},
    {.label = "AP altitude", .names = {"ap_altitude_set"}, .unit = "ft"},
    {.label = "Throttle", .names = {"throttle1", "throttle2"}, .between = "  "},
    {.label = "N1", .names = {"n1_eng1", "n1_eng2"}, .between = "  ", .decimals = 1},
    {.label = "Fuel", .names = {"fuel_total"}, .unit = "lb"},
    {.label = "COM", .names = {"com1", "com2"}, .between = "  "},
    {.label = "NAV", .names = {"nav1", "nav2"}, .between = "  "},
    {.label = "ADF", .names = {"adf1", "adf2"}, .between = "  "},
    {.label = "Transponder", .names = {"transponder"}},
    {.label = "Paused", .names = {"paused"}},
};

// A row that is shown, with its place among the items that are read.
struct ShownRow {
  const MonitorRow* row;
  size_t first, count;
};

std::vector<ShownRow> Choose(const MonitorRow* rows, size_t count, std::vector<Item>* items) {
  const NameTable names = KnownOffsets();
  std::vector<ShownRow> shown;
  for (size_t i = 0; i < count; ++i) {
    const size_t first = items->size();
    for (const char* name : rows[i].names) {
      Item item;
      std::string error;
      if (name != nullptr && ParseItem(name, names, &item, &error)) items->push_back(item);
    }
    if (items->size() > first) shown.push_back({&rows[i], first, items->size() - first});
  }
  return shown;
}

// A number in the row's unit; the parts of a time of day have two digits.
std::string Cell(const Item& item, const MonitorRow& row) {
  double value = 0;
  const bool isNumber = EngineeringNumber(item, &value);
  if (row.words != nullptr && isNumber && value >= 0 && value <= 3)
    return row.words[static_cast<size_t>(value)];
  if (item.row->show != Form::Number || !isNumber) return EngineeringText(item);
  if (row.unit[0] != 0) ConvertUnit(value, item.row->unit, row.unit, &value);
  std::string text = FixedText(row.reversed ? -value : value, row.decimals);
  if (row.between[0] == ':' && text.size() == 1) text = "0" + text;
  return text.find_first_not_of("-0.") == std::string::npos && text[0] == '-' ? text.substr(1) : text;
}

std::string Column(const std::vector<ShownRow>& rows, size_t index, const std::vector<Item>& items) {
  if (index >= rows.size()) return std::string(columnWidth, ' ');
  const ShownRow& shown = rows[index];
  std::string line = shown.row->label;
  line.resize(labelWidth + 1, ' ');
  for (size_t i = 0; i < shown.count; ++i) {
    if (i != 0) line += shown.row->between;
    line += Cell(items[shown.first + i], *shown.row);
  }
  const char* own = items[shown.first + shown.count - 1].row->unit;
  const std::string unit = shown.row->unit[0] != 0 ? shown.row->unit : own;
  if (shown.row->between[0] != ':' && !unit.empty()) line += " " + unit;
  line.resize(columnWidth, ' ');
  return line;
}

// Degrees of a named offset among the items, 0 when it is not there.
double Degrees(const std::vector<Item>& items, const char* name) {
  double value = 0;
  for (const Item& item : items) {
    if (item.shown == name) EngineeringNumber(item, &value);
  }
  return value;
}

std::string Padded(std::string line, size_t width) {
  line.resize(width, ' ');
  return line;
}

std::vector<std::string> TableLines(const std::string& head, const std::string& note,
                                    const std::vector<ShownRow>& left, const std::vector<ShownRow>& right,
                                    const std::vector<Item>& items, const std::vector<uint8_t>& traffic) {
  std::vector<std::string> lines = {head, note};
  for (size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
    lines.push_back(Column(left, i, items) + "  " + Column(right, i, items));
  }
  const std::vector<std::string> others =
      TrafficLines(traffic.data(), Degrees(items, "latitude"), Degrees(items, "longitude"), trafficLines);
  lines.insert(lines.end(), others.begin(), others.end());
  return lines;
}

// Over what stands there, and never more than fits: a terminal that scrolls or wraps lines would leave a
// trail of old tables. `drawn` is the size of the time before, 0 at first.
void DrawInPlace(std::vector<std::string> lines, TerminalSize* drawn) {
  const TerminalSize size = SizeOfTerminal();
  if (size.lines != drawn->lines || size.columns != drawn->columns || TerminalWasAway()) {
    ClearTerminal();
  } else {
    CursorHome();
  }
  *drawn = size;
  const size_t fitting = std::max<size_t>(size.lines, 2) - 1;  // the cursor stands below
  if (lines.size() > fitting) {
    const size_t hidden = lines.size() - fitting + 1;
    lines.resize(fitting - 1);
    lines.push_back("(" + std::to_string(hidden) + " more lines in a higher window)");
  }
  const size_t width = std::min(lineWidth, std::max<size_t>(size.columns, 2) - 1);
  for (const std::string& line : lines) std::printf("%s\n", Padded(line, width).c_str());
}

void Print(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) std::printf("%s\n", Padded(line, lineWidth).c_str());
  std::printf("\n");
}

}  // namespace

int RunMonitor(const Options& options, const Transport& transport) {
  std::vector<Item> items;
  const std::vector<ShownRow> left = Choose(leftRows, std::size(leftRows), &items);
  const std::vector<ShownRow> right = Choose(rightRows, std::size(rightRows), &items);
  std::vector<Transfer> transfers;
  transfers.reserve(items.size() + 1);
  for (Item& item : items) transfers.push_back({item.offset, item.size, item.bytes.data()});
  std::vector<uint8_t> traffic(trafficSize);
  transfers.push_back({trafficOffset, trafficSize, traffic.data()});

  const bool inPlace = StdoutIsTerminal();
  if (inPlace) WatchKeys();
  WatchOutput();
  const double period = inPlace ? 1 / options.rate : 1;
  const double end = options.seconds > 0 ? options.seconds : std::numeric_limits<double>::infinity();
  const Clock::time_point start = Clock::now();
  const auto elapsed = [start] { return Seconds(Clock::now() - start).count(); };
  std::string note = options.note;
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  std::replace_if(note.begin(), note.end(), isControl, ' ');  // they would spoil the table
  TerminalSize drawn = {};
  std::string error;
  bool done = true;
  for (double wanted = 0; !StopRequested(); wanted = std::max(wanted + period, elapsed())) {
    if (wanted > end) {
      WaitForStop(end - elapsed());
      break;
    }
    if (WaitForStop(wanted - elapsed())) break;
    done = transport.readOffsets(transfers, &error);
    if (!done) break;
    std::string head = std::string("TAVRIX  ") + transport.title + "   " + FixedText(elapsed(), 1) + " s";
    const double silence = transport.silence == nullptr ? 0 : transport.silence();
    if (silence > quietSeconds) head += "   no news for " + FixedText(std::floor(silence), 0) + " s";
    const std::vector<std::string> lines = TableLines(head, note, left, right, items, traffic);
    if (inPlace) {
      DrawInPlace(lines, &drawn);
    } else {
      Print(lines);
    }
    if (std::fflush(stdout) != 0) break;  // the reader of our output has gone
    if (elapsed() >= end) break;
  }
  if (inPlace) RestoreTerminal();
  return done ? exitDone : ReportEnd(error);
}

}  // namespace ctl
