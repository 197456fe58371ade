// Clock, date, pause, frame rate, simulation rate, message display.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "XPLMUtilities.h"
#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"
#include "bridge/catalogue/requests.h"

namespace {

constexpr Source localTime = Float<"sim/time/local_time_sec">;  // seconds since local midnight
constexpr Source zuluTime = Float<"sim/time/zulu_time_sec">;    // seconds since midnight UTC
constexpr int daySeconds = 86400;

// Whole seconds of the day, 0..86399, whatever the simulator says.
int SecondOfDay(double seconds) {
  if (!std::isfinite(seconds)) return 0;
  const double day = std::fmod(std::trunc(seconds), daySeconds);
  return static_cast<int>(day < 0 ? day + daySeconds : day);
}

double HourOf(double seconds) { return SecondOfDay(seconds) / 3600; }
double MinuteOf(double seconds) { return SecondOfDay(seconds) / 60 % 60; }
double SecondOf(double seconds) { return SecondOfDay(seconds) % 60; }

bool ReadClockText(const OffsetRow&, char* text) {
  const int time = SecondOfDay(ReadSource(localTime));
  const int fields[3] = {time / 3600, time / 60 % 60, time % 60};
  for (int i = 0; i < 3; ++i) {
    text[i * 3] = static_cast<char>('0' + fields[i] / 10);
    text[i * 3 + 1] = static_cast<char>('0' + fields[i] % 10);
    if (i < 2) text[i * 3 + 2] = ':';
  }
  return true;
}

// Hour and minute are set one by one; what a client does not name, fractions of a second included, stays.
void SetZuluTime(int hour, int minute) {
  const double now = ReadSource(zuluTime);
  if (!std::isfinite(now)) return;
  const double hours = std::trunc(now / 3600);
  const double minutes = std::trunc((now - hours * 3600) / 60);
  const double seconds = now - hours * 3600 - minutes * 60;
  SetSource(zuluTime, (hour < 0 ? hours : hour) * 3600 + (minute < 0 ? minutes : minute) * 60 + seconds);
}

void ApplyZuluHour(const OffsetRow&, const Staged& staged) {
  SetZuluTime(static_cast<int>(std::min<int64_t>(staged.integer, 23)), -1);
}

void ApplyZuluMinute(const OffsetRow&, const Staged& staged) {
  SetZuluTime(-1, static_cast<int>(std::min<int64_t>(staged.integer, 59)));
}

// Hours that local time is behind UTC. Rounded to whole seconds first: the simulator's clocks are single
// precision, and 7199.99 s must not lose an hour.
bool ReadTimeZone(const OffsetRow&, double* value) {
  double behind = std::round(ReadSource(zuluTime) - ReadSource(localTime));
  if (behind > daySeconds / 2) behind -= daySeconds;
  if (behind <= -daySeconds / 2) behind += daySeconds;
  *value = std::trunc(behind / 3600);
  return true;
}

double DayBefore(double day) { return day - 1; }

// Days since 1 January; meteorological seasons of the northern hemisphere.
double SeasonOf(double day) {
  if (day < 59 || day >= 334) return 0;
  return day < 151 ? 1 : day < 243 ? 2 : 3;
}

void ApplyPause(const OffsetRow&, const Staged& staged) {
  // The simulator's pause word cannot be set; the key toggles it.
  if ((staged.integer != 0) != IsOn(Int<"sim/time/paused">)) XPLMCommandKeyStroke(xplm_key_pause);
}

// A client's 0 or fraction must not stop the simulator.
double WholeRate(double value) { return std::max(1.0, std::trunc(value / 256)); }

bool ReadActivity(const OffsetRow&, double* value) {
  static uint16_t runs = 0;
  *value = ++runs;
  return true;
}

void ApplyShowMessage(const OffsetRow& row, const Staged&) {
  char text[128] = {};
  CopyFromMemory(0x3380, sizeof(text) - 1, text);
  ClearRequest(row);
  if (text[0] != '\0') XPLMSpeakString(text);
}

constexpr Choice seasons[] = {{0, "winter"}, {1, "spring"}, {2, "summer"}, {3, "autumn"}};

constexpr OffsetRow rows[] = {
    {.offset = 0x0262,
     .type = Stored::U16,
     .name = "pause",
     .meaning = "pause control",
     .show = Show::Flag,
     .cycle = Cycle::C1,
     .source = Int<"sim/time/paused">,
     .write = {.apply = ApplyPause},
     .lossy = flagLoss,
     .note = "pauses or resumes by the simulator's pause key when it is not already so"},
    {.offset = 0x0264,
     .type = Stored::U16,
     .name = "paused",
     .meaning = "pause indicator",
     .show = Show::Flag,
     .cycle = Cycle::C1,
     .source = Int<"sim/time/paused">,
     .readOnly = true},
    {.offset = 0x337E,
     .type = Stored::U16,
     .name = "activity",
     .meaning = "counter, one more with every frame: shows that the simulator runs",
     .cycle = Cycle::C1,
     .read = ReadActivity,
     .note = "starts again at 0 after 65535; the heartbeat for clients: when it stands still for a second or "
             "more, no "
             "frames run and what the memory holds is old"},
    {.offset = 0x0238,
     .type = Stored::U8,
     .name = "local_hour",
     .meaning = "local time, hour",
     .unit = "h",
     .cycle = Cycle::C13,
     .source = localTime,
     .convert = HourOf,
     .readOnly = true,
     .limits = {0, 23}},
    {.offset = 0x0239,
     .type = Stored::U8,
     .name = "local_minute",
     .meaning = "local time, minute",
     .unit = "min",
     .cycle = Cycle::C13,
     .source = localTime,
     .convert = MinuteOf,
     .readOnly = true,
     .limits = {0, 59}},
    {.offset = 0x023A,
     .type = Stored::U8,
     .name = "second",
     .meaning = "second of the minute",
     .unit = "s",
     .cycle = Cycle::C13,
     .source = localTime,
     .convert = SecondOf,
     .readOnly = true,
     .limits = {0, 59}},
    {.offset = 0x0C20,
     .type = Stored::Text,
     .length = 9,
     .name = "local_time",
     .meaning = "local time as hh:mm:ss",
     .show = Show::Text,
     .cycle = Cycle::C13,
     .readText = ReadClockText},
    {.offset = 0x023B,
     .type = Stored::U8,
     .name = "zulu_hour",
     .meaning = "UTC, hour",
     .unit = "h",
     .cycle = Cycle::C31Navigation,
     .source = zuluTime,
     .convert = HourOf,
     .write = {.apply = ApplyZuluHour},
     .limits = {0, 23},
     .lossy = "above 23 counts as 23",
     .note = "minute and second stay"},
    {.offset = 0x023C,
     .type = Stored::U8,
     .name = "zulu_minute",
     .meaning = "UTC, minute",
     .unit = "min",
     .cycle = Cycle::C31Navigation,
     .source = zuluTime,
     .convert = MinuteOf,
     .write = {.apply = ApplyZuluMinute},
     .limits = {0, 59},
     .lossy = "above 59 counts as 59",
     .note = "hour and second stay"},
    {.offset = 0x0246,
     .type = Stored::S16,
     .name = "time_zone",
     .meaning = "hours that local time is behind UTC",
     .positive = "west",
     .unit = "h",
     .cycle = Cycle::C31Navigation,
     .read = ReadTimeZone},
    {.offset = 0x0274,
     .type = Stored::U16,
     .name = "frame_time",
     .meaning = "time of one frame; 32768 / value is frames per second",
     .unit = "s",
     .unitScale = 1.0 / 32768,
     .cycle = Cycle::C31Navigation,
     .source = Float<"sim/operation/misc/frame_rate_period">,
     .factor = 32768,
     .readOnly = true},
    {.offset = 0x023E,
     .type = Stored::U16,
     .name = "day_of_year",
     .meaning = "day of the year",
     .cycle = Cycle::C313,
     .source = Int<"sim/time/local_date_days">,
     .add = 1,
     .write = {.target = Int<"sim/time/local_date_days">, .low = 0, .high = 365, .convert = DayBefore},
     .limits = {1, 366},
     .lossy = "limited to 1..366",
     .note = "1 January is 1"},
    {.offset = 0x0248,
     .type = Stored::U16,
     .name = "season",
     .meaning = "season of the northern hemisphere",
     .choices = seasons,
     .cycle = Cycle::C313,
     .source = Int<"sim/time/local_date_days">,
     .convert = SeasonOf},
    {.offset = 0x0240,
     .type = Stored::U16,
     .name = "year",
     .meaning = "year",
     .write = {.staged = true},
     .note = "the simulator knows no year: holds what the last client wrote"},
    {.offset = 0x0C1A,
     .type = Stored::U16,
     .name = "sim_rate",
     .meaning = "simulation rate",
     .unitScale = 1.0 / 256,
     .cycle = Cycle::C31,
     .source = Int<"sim/time/sim_speed">,
     .factor = 256,
     .write = {.target = Int<"sim/time/sim_speed">, .convert = WholeRate},
     .lossy = "the simulator has whole rates only, from 1 up"},
    {.offset = 0x32FA,
     .type = Stored::S16,
     .name = "show_message",
     .meaning = "any value but the last shows and speaks the text at 0x3380",
     .unit = "s",
     .write = {.apply = ApplyShowMessage},
     .lossy = requestLoss,
     .note = "the text ends at its first zero byte, after 127 characters at most"},
};

}  // namespace

const RowTable timeRows = {"Time and simulation", rows};
