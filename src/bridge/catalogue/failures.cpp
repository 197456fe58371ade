// Failures. The simulator keeps a code per system: 0 works, 6 failed now, between them conditions under
// which it will fail.
#include "bridge/catalogue/engine_families.h"

namespace {

constexpr int failedNow = 6;
constexpr uint32_t failureArray = 0x6DAA;

bool HasFailed(const Source& source) { return ReadInt(source) == failedNow; }
double FailureCode(double wanted) { return wanted != 0 ? failedNow : 0; }

int enginesFailed;  // as the engines' row read it, for the word behind it

// --- Engines ------------------------------------------------------------------------------------------

Source EngineFailure(int engine) { return AuxIntAt(0x008E + static_cast<uint32_t>(engine)); }

int ReadEngineFailures(const OffsetRow&, double* value) {
  enginesFailed = 0;
  for (int engine = 0; engine < engineCount; engine++)
    enginesFailed |= HasFailed(EngineFailure(engine)) << engine;
  *value = enginesFailed;
  return 1;
}
void ApplyEngineFailures(const OffsetRow&, const Staged& staged) {
  for (int engine = 0; engine < engineCount; engine++) {
    SetSource(EngineFailure(engine), FailureCode(static_cast<double>(staged.integer >> engine & 1)));
  }
}

// --- Partial panel ------------------------------------------------------------------------------------

// The systems of each bit, as auxiliary slots first .. last. Bits 5 and 6, compass and electrics, have no
// dataref in the simulator: their slots are null.
struct Systems {
  uint32_t first, last;
};
constexpr int panelEngines = 7;
constexpr Systems panel[] = {
    {0x0120, 0x0121},  // 0 ADF
    {0x0122, 0x0122},  // 1 airspeed indicator
    {0x0123, 0x0123},  // 2 altimeter
    {0x0139, 0x013A},  // 3 attitude indicators
    {0x0124, 0x0125},  // 4 COM
    {0x0126, 0x0126},  // 5 compass
    {0x0127, 0x0127},  // 6 electrics
    {0x0128, 0x012B},  // 7 engines
    {0x012C, 0x012C},  // 8 fuel gauges
    {0x012D, 0x012D},  // 9 heading indicator
    {0x012E, 0x012F},  // 10 NAV
    {0x0130, 0x0131},  // 11 pitot heat
    {0x0132, 0x0132},  // 12 transponder
    {0x0133, 0x0134},  // 13 turn coordinators
    {0x0135, 0x0136},  // 14 vacuum
    {0x0137, 0x0138},  // 15 vertical speed indicators
};

bool AnyFailed(const Systems& systems) {
  for (uint32_t slot = systems.first; slot <= systems.last; slot++) {
    if (HasFailed(AuxIntAt(slot))) return true;
  }
  return false;
}

int ReadPanelFailures(const OffsetRow&, double* value) {
  int word = 0;
  for (int bit = 0; bit < static_cast<int>(std::size(panel)); bit++) {
    const bool failed = bit == panelEngines ? enginesFailed != 0 : AnyFailed(panel[bit]);
    word |= failed << bit;
  }
  *value = word;
  return 1;
}
void ApplyPanelFailures(const OffsetRow&, const Staged& staged) {
  for (size_t bit = 0; bit < std::size(panel); bit++) {
    const double code = FailureCode(static_cast<double>(staged.integer >> bit & 1));
    for (uint32_t slot = panel[bit].first; slot <= panel[bit].last; slot++) SetSource(AuxIntAt(slot), code);
  }
}

// --- One-shot requests --------------------------------------------------------------------------------

// A request that stayed in the memory could not be made again: an equal value counts as no change.
void ClearRequest(const OffsetRow& row) {
  constexpr uint8_t zero[8] = {};
  CopyToMemory(row.offset, StoredWidth(row), zero);
}

void FailSelected(const OffsetRow& row, const Staged& staged) {
  if (staged.integer == 0) return;
  PushButton(xplm_joy_fail_now);
  ClearRequest(row);
}

void RepairAll() {
  const XPLMDataRef handle = HandleOf(IntAt(failureArray));
  if (handle == nullptr) return;
  int repaired[64] = {};
  constexpr int most = static_cast<int>(std::size(repaired));
  const int count = XPLMGetDatavi(handle, nullptr, 0, 0);
  for (int first = 0; first < count; first += most) {
    XPLMSetDatavi(handle, repaired, first, count - first < most ? count - first : most);
  }
}
void AccessFailureArray(const OffsetRow& row, const Staged& staged) {
  if (staged.integer == 0) {
    RepairAll();
  } else {
    SetSource(IntElementAt(failureArray, static_cast<int>(staged.integer)), failedNow);
  }
  ClearRequest(row);
}

constexpr OffsetRow Failure(uint32_t offset, const char* name, const char* meaning, uint32_t slot) {
  return {.offset = offset,
          .type = Stored::U8,
          .name = name,
          .meaning = meaning,
          .show = Show::Flag,
          .write = {.target = AuxIntAt(slot), .convert = FailureCode},
          .note = "keeps what a client wrote"};
}

constexpr OffsetRow rows[] = {
    Failure(0x0B64, "fail_adf1", "ADF 1 failed", 0x0094),
    Failure(0x0B65, "fail_airspeed", "airspeed indicator failed", 0x0097),
    Failure(0x0B66, "fail_altimeter", "altimeter failed", 0x0095),
    Failure(0x0B67, "fail_attitude", "attitude indicator failed", 0x0096),
    Failure(0x0B68, "fail_com1", "COM 1 failed", 0x0098),
    {.offset = 0x0B6B,
     .type = Stored::U8,
     .name = "fail_engines",
     .meaning = "engines failed",
     .show = Show::Bits,
     .cycle = Cycle::C13,
     .read = ReadEngineFailures,
     .write = {.apply = ApplyEngineFailures},
     .lossy = "bits 4-7 have no engine",
     .note = "bit n: engine n + 1"},
    {.offset = 0x3BE6,
     .type = Stored::U16,
     .name = "panel_failed",
     .meaning = "partial-panel failures",
     .show = Show::Bits,
     .cycle = Cycle::C13,
     .read = ReadPanelFailures,
     .note = "bits: 0 ADF, 1 airspeed, 2 altimeter, 3 attitude, 4 COM, 7 engines, 8 fuel gauges, 9 heading, "
             "10 NAV, 11 pitot heat, 12 transponder, 13 turn coordinator, 14 vacuum, 15 vertical speed"},
    {.offset = 0x3BD6,
     .type = Stored::U16,
     .name = "fail_panel",
     .meaning = "partial-panel failure command",
     .show = Show::Bits,
     .write = {.apply = ApplyPanelFailures},
     .note = "bits as panel_failed, which shows the result; a clear bit repairs"},
    {.offset = 0x6DA4,
     .type = Stored::U32,
     .name = "fail_now",
     .meaning = "fail the selected systems now",
     .write = {.apply = FailSelected},
     .lossy = "a request: back at 0 once taken"},
    {.offset = failureArray,
     .type = Stored::U8,
     .name = "fail_number",
     .meaning = "fail a system by number",
     .write = {.apply = AccessFailureArray},
     .lossy = "a request: back at 0 once taken",
     .note = "0 repairs all; newer simulators ignore both"},
};

}  // namespace

const RowTable failureRows = {"Failures", rows};
