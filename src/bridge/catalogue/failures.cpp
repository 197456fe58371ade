// Failures. The simulator keeps a code per system: 0 works, 6 failed now, between them conditions under
// which it will fail.
#include <iterator>

#include "bridge/catalogue/engine_families.h"
#include "bridge/catalogue/requests.h"

namespace {

constexpr int failedNow = 6;

bool HasFailed(const Source& source) { return ReadInt(source) == failedNow; }
double FailureCode(double wanted) { return wanted != 0 ? failedNow : 0; }

// --- Engines ------------------------------------------------------------------------------------------

constexpr Source engineFailures[engineCount] = {
    Int<"sim/operation/failures/rel_engfai0">,
    Int<"sim/operation/failures/rel_engfai1">,
    Int<"sim/operation/failures/rel_engfai2">,
    Int<"sim/operation/failures/rel_engfai3">,
};

void ApplyEngineFailures(const OffsetRow&, const Staged& staged) {
  for (int engine = 0; engine < engineCount; engine++) {
    SetSource(engineFailures[engine], FailureCode(static_cast<double>(staged.integer >> engine & 1)));
  }
}

// The older names are missing from 10.00 to 10.36 and from 12.00 on.
constexpr Source comFailures[] = {
    Int<"sim/operation/failures/rel_g_comrad1", "sim/operation/failures/rel_com1">,
    Int<"sim/operation/failures/rel_g_comrad2", "sim/operation/failures/rel_com2">,
};

// --- Partial panel ------------------------------------------------------------------------------------

// The systems of each bit. Bits 5 and 6, compass and electrics, have no dataref in the simulator.
struct Systems {
  Source systems[engineCount];
};
constexpr Systems panel[] = {
    {{Int<"sim/operation/failures/rel_adf1">, Int<"sim/operation/failures/rel_adf2">}},  // 0 ADF
    {{Int<"sim/operation/failures/rel_g_asi">}},                                         // 1 airspeed indicator
    {{Int<"sim/operation/failures/rel_g_alt">}},                                         // 2 altimeter
    {{Int<"sim/operation/failures/rel_ss_ahz">,
      Int<"sim/operation/failures/rel_cop_ahz">}},  // 3 attitude indicators
    {{comFailures[0], comFailures[1]}},             // 4 COM
    {{Int<"sim/operation/failures/?????">}},        // 5 compass
    {{Int<"sim/operation/failures/?????">}},        // 6 electrics
    {{Int<"sim/operation/failures/rel_engfai0">, Int<"sim/operation/failures/rel_engfai1">,
      Int<"sim/operation/failures/rel_engfai2">, Int<"sim/operation/failures/rel_engfai3">}},  // 7 engines
    {{Int<"sim/operation/failures/rel_g_fuel">}},                                              // 8 fuel gauges
    {{Int<"sim/operation/failures/rel_ss_dgy">}},                                        // 9 heading indicator
    {{Int<"sim/operation/failures/rel_nav1">, Int<"sim/operation/failures/rel_nav2">}},  // 10 NAV
    {{Int<"sim/operation/failures/rel_ice_pitot_heat1">,
      Int<"sim/operation/failures/rel_ice_pitot_heat2">}},  // 11 pitot heat
    {{Int<"sim/operation/failures/rel_xpndr">}},            // 12 transponder
    {{Int<"sim/operation/failures/rel_ss_tsi">,
      Int<"sim/operation/failures/rel_cop_tsi">}},  // 13 turn coordinators
    {{Int<"sim/operation/failures/rel_vacuum">, Int<"sim/operation/failures/rel_vacuum2">}},  // 14 vacuum
    {{Int<"sim/operation/failures/rel_ss_vvi">,
      Int<"sim/operation/failures/rel_cop_vvi">}},  // 15 vertical speed indicators
};

double enginesFailed, panelFailed;  // as bits

void TakeFailures() {
  int engines = 0;
  for (int engine = 0; engine < engineCount; engine++) engines |= HasFailed(engineFailures[engine]) << engine;
  int word = 0;
  int mask = 1;
  for (const Systems& bit : panel) {
    for (const Source& system : bit.systems) {
      if (system.ref == nullptr) break;
      if (HasFailed(system)) word |= mask;
    }
    mask <<= 1;
  }
  enginesFailed = engines;
  panelFailed = word;
}

void ApplyPanelFailures(const OffsetRow&, const Staged& staged) {
  for (size_t bit = 0; bit < std::size(panel); bit++) {
    const double code = FailureCode(static_cast<double>(staged.integer >> bit & 1));
    for (const Source& system : panel[bit].systems) SetSource(system, code);
  }
}

// --- One-shot requests --------------------------------------------------------------------------------

void ApplyFailNow(const OffsetRow& row, const Staged& staged) {
  if (staged.integer == 0) return;
  PushButton(xplm_joy_fail_now);
  ClearRequest(row);
}

constexpr Source failures = IntElement<"sim/operation/failures/failures">(0);

void RepairAll() {
  const XPLMDataRef handle = HandleOf(failures);
  if (handle == nullptr) return;
  int repaired[64] = {};
  constexpr int most = static_cast<int>(std::size(repaired));
  const int count = XPLMGetDatavi(handle, nullptr, 0, 0);
  for (int first = 0; first < count; first += most) {
    XPLMSetDatavi(handle, repaired, first, count - first < most ? count - first : most);
  }
}
void ApplyFailNumber(const OffsetRow& row, const Staged& staged) {
  if (staged.integer == 0) {
    RepairAll();
  } else {
    SetSource(IntElement<"sim/operation/failures/failures">(static_cast<int>(staged.integer)), failedNow);
  }
  ClearRequest(row);
}

// One system that a client fails or repairs.
constexpr OffsetRow Failure(OffsetRow row) {
  row.type = Stored::U8;
  row.show = Show::Flag;
  row.note = "keeps what a client wrote";
  return row;
}

constexpr Choice engineBits[] = {{0, "engine 1"}, {1, "engine 2"}, {2, "engine 3"}, {3, "engine 4"}};
constexpr Choice panelBits[] = {
    {0, "ADF"},          {1, "airspeed"},          {2, "altimeter"}, {3, "attitude"},       {4, "COM"},
    {7, "engines"},      {8, "fuel gauges"},       {9, "heading"},   {10, "NAV"},           {11, "pitot heat"},
    {12, "transponder"}, {13, "turn coordinator"}, {14, "vacuum"},   {15, "vertical speed"}};

constexpr OffsetRow rows[] = {
    Failure({.offset = 0x0B64,
             .name = "fail_adf1",
             .meaning = "ADF 1 failed",
             .write = {.target = Int<"sim/operation/failures/rel_adf1">, .convert = FailureCode}}),
    Failure({.offset = 0x0B65,
             .name = "fail_airspeed",
             .meaning = "airspeed indicator failed",
             .write = {.target = Int<"sim/operation/failures/rel_ss_asi">, .convert = FailureCode}}),
    Failure({.offset = 0x0B66,
             .name = "fail_altimeter",
             .meaning = "altimeter failed",
             .write = {.target = Int<"sim/operation/failures/rel_ss_alt">, .convert = FailureCode}}),
    Failure({.offset = 0x0B67,
             .name = "fail_attitude",
             .meaning = "attitude indicator failed",
             .write = {.target = Int<"sim/operation/failures/rel_ss_ahz">, .convert = FailureCode}}),
    Failure({.offset = 0x0B68,
             .name = "fail_com1",
             .meaning = "COM 1 failed",
             .write = {.target = comFailures[0], .convert = FailureCode}}),
    {.offset = 0x0B6B,
     .type = Stored::U8,
     .name = "fail_engines",
     .meaning = "engines failed",
     .choices = engineBits,
     .show = Show::Bits,
     .cycle = Cycle::C13,
     .prepared = &enginesFailed,
     .prepare = TakeFailures,
     .write = {.apply = ApplyEngineFailures},
     .lossy = "bits 4-7 have no engine"},
    {.offset = 0x3BE6,
     .type = Stored::U16,
     .name = "panel_failed",
     .meaning = "partial-panel failures",
     .choices = panelBits,
     .show = Show::Bits,
     .cycle = Cycle::C13,
     .prepared = &panelFailed,
     .inputs =
         sourcesOf<panel[0].systems[0], comFailures[0], comFailures[1],
                   Int<"sim/operation/failures/rel_cop_ahz">, Int<"sim/operation/failures/rel_ice_pitot_heat1">,
                   Int<"sim/operation/failures/rel_ice_pitot_heat2">, Int<"sim/operation/failures/rel_cop_tsi">,
                   Int<"sim/operation/failures/rel_cop_vvi">>,
     .prepare = TakeFailures},
    {.offset = 0x3BD6,
     .type = Stored::U16,
     .name = "fail_panel",
     .meaning = "partial-panel failure command",
     .choices = panelBits,
     .show = Show::Bits,
     .write = {.apply = ApplyPanelFailures},
     .note = "panel_failed shows the result; a clear bit repairs"},
    {.offset = 0x6DA4,
     .type = Stored::U32,
     .name = "fail_now",
     .meaning = "fail the selected systems now",
     .write = {.apply = ApplyFailNow},
     .lossy = requestLoss},
    {.offset = 0x6DAA,
     .type = Stored::U8,
     .name = "fail_number",
     .meaning = "fail a system by number",
     .write = {.apply = ApplyFailNumber},
     .lossy = requestLoss,
     .note = "0 repairs all; newer simulators ignore both"},
};

}  // namespace

const RowTable failureRows = {"Failures", rows};
