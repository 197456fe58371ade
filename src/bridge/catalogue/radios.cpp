// Radio frequencies, transponder and audio panel. Frequencies are four BCD digits; the leading 1 of COM and
// NAV frequencies is dropped (123.45 MHz is 0x2345).
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"
#include "bridge/catalogue/requests.h"
#include "bridge/stations.h"

namespace {

// Frequencies of 100 MHz and above count from here, in tens of kilohertz.
constexpr int droppedDigit = 10000;

double ToBcd(double value) {
  int rest = std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, 0.0, 9999.0));
  int digits = 0;
  for (int shift = 0; shift < 16; shift += 4, rest /= 10) digits |= (rest % 10) << shift;
  return digits;
}

// A digit above 9 makes the whole word void: NaN is set nowhere.
double FromBcd(double word) {
  const int digits = static_cast<int>(word);
  int value = 0;
  for (int shift = 12; shift >= 0; shift -= 4) {
    const int digit = (digits >> shift) & 0xF;
    if (digit > 9) return std::numeric_limits<double>::quiet_NaN();
    value = value * 10 + digit;
  }
  return value;
}

double FrequencyToBcd(double tensOfKilohertz) { return ToBcd(tensOfKilohertz - droppedDigit); }
double FrequencyFromBcd(double word) { return droppedDigit + FromBcd(word); }

// The tuned frequencies come from the values with which this cycle looked the stations up.
bool ReadNavFrequency(const OffsetRow& row, double* value) {
  *value = FrequencyToBcd(navRadios[row.member - 1].frequency);
  return true;
}
bool ReadAdfFrequency(const OffsetRow& row, double* value) {
  *value = ToBcd(adfRadios[row.member - 1].frequency);
  return true;
}

// A COM or NAV frequency.
constexpr OffsetRow TunedFrequency(OffsetRow row) {
  row.type = Stored::U16;
  row.unit = "MHz";
  row.show = Show::Bcd;
  row.lossy = digitLoss;
  row.note = "leading 1 dropped; steps of 10 kHz";
  return row;
}
// One that follows its dataref.
constexpr OffsetRow Frequency(OffsetRow row) {
  row.convert = FrequencyToBcd;
  row.write = {.target = row.source, .convert = FrequencyFromBcd};
  return TunedFrequency(row);
}
constexpr OffsetRow AdfFrequency(OffsetRow row) {
  row.type = Stored::U16;
  row.name = "adf";
  row.meaning = "ADF frequency";
  row.unit = "kHz";
  row.show = Show::Bcd;
  row.read = ReadAdfFrequency;
  row.lossy = digitLoss;
  row.note = "whole kilohertz, all four digits";
  return row;
}

// --- Audio panel ---------------------------------------------------------------------------------------
struct AudioBit {
  int mask;
  Source selector;
};
constexpr int com1Bit = 0x80, com2Bit = 0x40, bothComBit = 0x20;
constexpr AudioBit audioBits[] = {
    {com1Bit, Int<"sim/cockpit2/radios/actuators/audio_selection_com1">},
    {com2Bit, Int<"sim/cockpit2/radios/actuators/audio_selection_com2">},
    {0x10, Int<"sim/cockpit2/radios/actuators/audio_selection_nav1">},
    {0x08, Int<"sim/cockpit2/radios/actuators/audio_selection_nav2">},
    {0x04, Int<"sim/cockpit2/radios/actuators/audio_marker_enabled">},
    {0x02, Int<"sim/cockpit2/radios/actuators/audio_dme_enabled">},
    {0x01, Int<"sim/cockpit2/radios/actuators/audio_selection_adf1">},
};

bool ReadAudio(const OffsetRow&, double* value) {
  int panel = 0;
  for (const AudioBit& bit : audioBits) {
    if (IsOn(bit.selector)) panel |= bit.mask;
  }
  if ((panel & com1Bit) != 0 && (panel & com2Bit) != 0) panel |= bothComBit;
  *value = panel;
  return true;
}

void ApplyAudio(const OffsetRow&, const Staged& staged) {
  int panel = static_cast<int>(staged.integer);
  if ((panel & bothComBit) != 0) panel |= com1Bit | com2Bit;
  for (const AudioBit& bit : audioBits) SetSource(bit.selector, (panel & bit.mask) != 0);
}

// --- Exchange of active and standby --------------------------------------------------------------------
struct Exchange {
  int mask;
  Source active, standby;
};
constexpr Exchange exchanges[] = {
    {0x01, Int<"sim/cockpit/radios/nav2_freq_hz">, Int<"sim/cockpit/radios/nav2_stdby_freq_hz">},  // NAV2
    {0x02, Int<"sim/cockpit/radios/nav1_freq_hz">, Int<"sim/cockpit/radios/nav1_stdby_freq_hz">},  // NAV1
    {0x08, Int<"sim/cockpit/radios/com1_freq_hz">, Int<"sim/cockpit/radios/com1_stdby_freq_hz">},  // COM1
    {0x04, Int<"sim/cockpit/radios/com2_freq_hz">, Int<"sim/cockpit/radios/com2_stdby_freq_hz">},  // COM2
};

void ApplyExchange(const OffsetRow& row, const Staged& staged) {
  for (const Exchange& exchange : exchanges) {
    if ((staged.integer & exchange.mask) == 0) continue;
    // Half an exchange would leave 0 in the other window.
    if (HandleOf(exchange.active) == nullptr || HandleOf(exchange.standby) == nullptr) continue;
    const double active = ReadSource(exchange.active);
    const double standby = ReadSource(exchange.standby);
    SetSource(exchange.active, standby);
    SetSource(exchange.standby, active);
  }
  ClearRequest(row);
}

// The extended 737-800's knob: test, standby, altitude off, altitude on, TA, TA/RA. It is turned step by step.
constexpr Source b738Transponder = Fitting<"laminar/B738/knob/transponder_pos">;
double TransponderWordB738(double position) { return position < 0.5 ? 3 : position < 1.5 ? 1 : 2; }
void ApplyTransponderB738(const OffsetRow& row, const Staged& staged) {
  constexpr int64_t places[] = {1, 1, 3, 0};  // of off, standby, on and test
  const std::optional<int> place = PlaceOf(AddOn::B738Extended, row.offset, b738Transponder, 0, 5);
  if (!place) return;
  const int64_t steps = places[std::clamp<int64_t>(staged.integer, 0, 3)] - *place;
  for (int64_t i = 0; i < std::abs(steps); ++i) {
    FireFor(row, steps > 0 ? commandOf<"laminar/B738/knob/transponder_mode_up">
                           : commandOf<"laminar/B738/knob/transponder_mode_dn">);
  }
}

constexpr Choice audioChoices[] = {{0, "ADF1"}, {1, "DME"},      {2, "markers"}, {3, "NAV2"},
                                   {4, "NAV1"}, {5, "both COM"}, {6, "COM2"},    {7, "COM1"}};
constexpr Choice transponderModes[] = {{0, "off"}, {1, "standby"}, {2, "on"}, {3, "test"}};
constexpr Choice exchangeBits[] = {{0, "NAV2"}, {1, "NAV1"}, {2, "COM2"}, {3, "COM1"}};

constexpr OffsetRow rows[] = {
    {.offset = 0x3122,
     .type = Stored::U8,
     .name = "audio_panel",
     .meaning = "audio panel",
     .choices = audioChoices,
     .show = Show::Bits,
     .cycle = Cycle::C3,
     .read = ReadAudio,
     .inputs =
         sourcesOf<audioBits[0].selector, audioBits[1].selector, audioBits[2].selector, audioBits[3].selector,
                   audioBits[4].selector, audioBits[5].selector, audioBits[6].selector>,
     .write = {.apply = ApplyAudio},
     .lossy = "bit 5 sets bits 7 and 6, and they set it"},

    Frequency({.offset = 0x034E,
               .name = "com",
               .member = 1,
               .meaning = "COM1 frequency",
               .cycle = Cycle::C31Navigation,
               .source = Int<"sim/cockpit/radios/com1_freq_hz">}),
    Frequency({.offset = 0x311A,
               .name = "com_standby",
               .member = 1,
               .meaning = "COM1 standby frequency",
               .cycle = Cycle::C31Navigation,
               .source = Int<"sim/cockpit/radios/com1_stdby_freq_hz">}),
    TunedFrequency({.offset = 0x0350,
                    .name = "nav",
                    .member = 1,
                    .meaning = "NAV frequency",
                    .cycle = Cycle::C31Navigation,
                    .read = ReadNavFrequency,
                    .write = {.target = Int<"sim/cockpit/radios/nav1_freq_hz">, .convert = FrequencyFromBcd}}),
    Frequency({.offset = 0x311E,
               .name = "nav_standby",
               .member = 1,
               .meaning = "NAV1 standby frequency",
               .cycle = Cycle::C31Navigation,
               .source = Int<"sim/cockpit/radios/nav1_stdby_freq_hz">}),
    AdfFrequency({.offset = 0x034C,
                  .member = 1,
                  .cycle = Cycle::C31Navigation,
                  .write = {.target = Int<"sim/cockpit/radios/adf1_freq_hz">, .convert = FromBcd}}),

    Frequency({.offset = 0x3118,
               .name = "com",
               .member = 2,
               .meaning = "COM2 frequency",
               .cycle = Cycle::C31,
               .source = Int<"sim/cockpit/radios/com2_freq_hz">}),
    Frequency({.offset = 0x311C,
               .name = "com_standby",
               .member = 2,
               .meaning = "COM2 standby frequency",
               .cycle = Cycle::C31,
               .source = Int<"sim/cockpit/radios/com2_stdby_freq_hz">}),
    TunedFrequency({.offset = 0x0352,
                    .name = "nav",
                    .member = 2,
                    .meaning = "NAV frequency",
                    .cycle = Cycle::C31,
                    .read = ReadNavFrequency,
                    .write = {.target = Int<"sim/cockpit/radios/nav2_freq_hz">, .convert = FrequencyFromBcd}}),
    Frequency({.offset = 0x3120,
               .name = "nav_standby",
               .member = 2,
               .meaning = "NAV2 standby frequency",
               .cycle = Cycle::C31,
               .source = Int<"sim/cockpit/radios/nav2_stdby_freq_hz">}),
    AdfFrequency({.offset = 0x02D4,
                  .member = 2,
                  .cycle = Cycle::C31,
                  .write = {.target = Int<"sim/cockpit/radios/adf2_freq_hz">, .convert = FromBcd}}),
    {.offset = 0x0354,
     .type = Stored::U16,
     .name = "transponder",
     .meaning = "transponder code",
     .show = Show::Bcd,
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/radios/transponder_code">,
     .convert = ToBcd,
     .write = {.target = Int<"sim/cockpit/radios/transponder_code">, .convert = FromBcd},
     .limits = {0, 0x7777},
     .lossy = digitLoss},
    {.offset = 0x6D8C,
     .type = Stored::U8,
     .name = "transponder_mode",
     .meaning = "transponder mode",
     .choices = transponderModes,
     .cycle = Cycle::C31,
     .source = Int<"sim/cockpit/radios/transponder_mode">,
     .variants = variantsOf<[] {
       return std::array{Variant{
           .addOn = AddOn::B738Extended,
           .source = b738Transponder,
           .convert = TransponderWordB738,
           .apply = ApplyTransponderB738,
           .fires =
               commandsOf<"laminar/B738/knob/transponder_mode_up", "laminar/B738/knob/transponder_mode_dn">}};
     }>,
     .write = {.target = Int<"sim/cockpit/radios/transponder_mode">},
     .note = "newer simulators have more modes"},

    {.offset = 0x3123,
     .type = Stored::U8,
     .name = "radio_exchange",
     .meaning = "exchange active and standby frequency",
     .choices = exchangeBits,
     .show = Show::Bits,
     .write = {.apply = ApplyExchange},
     .lossy = requestLoss},
};

}  // namespace

const RowTable radioRows = {"Radios", rows};
