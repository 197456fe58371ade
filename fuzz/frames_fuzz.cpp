// Fuzz target: frames of the program between a simulator whose datarefs hold anything and clients that write
// anything. The input is a series of steps, each a letter and what it needs: D a number into a dataref, T a
// text into one, W a client's write, F a frame's write cycle, R a refresh cycle, M a message of another
// plug-in, A another aircraft, P an add-on that comes or goes, O other aircraft. What reaches the simulator is
// finite, what the refresh stores is a number, and aircraft are where aircraft can be.
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "aircraft/adapters.h"
#include "bridge/held_presses.h"
#include "bridge/slew.h"
#include "bridge/sources.h"
#include "bridge/stations.h"
#include "custom/custom.h"
#include "offsets/request_walk.h"
#include "plugin_parts.h"
#include "shell/frame_callbacks.h"
#include "traffic/traffic_state.h"

namespace {

constexpr const char* aircraft[] = {"jet",  "prop",          "helicopter", "ec135",
                                    "b738", "b738-extended", "x737",       "ixeg733"};
constexpr const char* addOns[] = {"vatsim.protodev.clients.xsquawkbox", "com.pilotedge.plugin.xplane",
                                  "bs.x737.plugin"};
constexpr double numbers[] = {NAN,  INFINITY, -INFINITY, 0,   -1,   1,    0.5,  1e9,   -1e9,
                              1e30, -1e30,    3e9,       360, -180, 1e-9, 4095, 65536, 1e300};
constexpr char customOffsets[] =
    "Dataref height sim/flightmodel/position/elevation double\n"
    "Dataref throttle sim/flightmodel/engine/ENGN_thro[1] floatarray\n"
    "Dataref squawk sim/cockpit/radios/transponder_code int\n"
    "Offset 66C0 FLOAT64 1 rw $height 3.28084 * >height @ 3.28084 /\n"
    "Offset 66C8 SINT16 1 rw $throttle 16383 * round >throttle @ 16383 /\n"
    "Offset 66CA UINT32 1 rw $squawk $height + >squawk @\n"
    "Offset 66D0 FLOAT32 1 r $height $throttle / $squawk ^\n"
    "Command 66D4 UINT8 1 0 sim/autopilot/heading\n";
using Callback = float (*)(float, float, int, void*);
constexpr Callback cycles[] = {
    RefreshCycle1,  RefreshCycle3,  RefreshCycle7,   RefreshCycle13, RefreshCycle31Navigation,
    RefreshCycle31, RefreshCycle59, RefreshCycle157, RefreshCycle313};

// The datarefs that the program knows, with what the simulator had in them at first.
std::vector<std::pair<sim::DataRef*, sim::DataRef>> known;
std::vector<const OffsetRow*> rows;
RequestScratch scratch;
size_t flying;  // of `aircraft`

void SelectAircraft(size_t number) {
  flying = number;
  Require(sim::SimCommand(std::string("aircraft ") + aircraft[number]) == "ok");
  DetectLoadedAircraft();
  RunEc135Adapter();
}

void SetUp() {
  static const int ready = [] {
    StartSimulator();
    SetSettingsPath("");
    StartParts();
    ConnectCustomOffsets();
    WriteWhole(ScratchFolder() + "Resources/plugins/TAVRIX/TAVRIXOffsets.cfg", customOffsets);
    LoadCustomOffsets();
    Require(SummariseCustomOffsets().offsets == 4 && SummariseCustomOffsets().commands == 1);
    for (DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) {
      auto* handle = static_cast<sim::DataRef*>(ref->handle);
      if (handle != nullptr) known.emplace_back(handle, *handle);
    }
    for (const RowTable* table : Catalogue()) {
      for (const OffsetRow& row : table->rows) rows.push_back(&row);
    }
    return 1;
  }();
  (void)ready;
}

bool aircraftChanged;  // or add-ons, by the last input

// As far as the last input can have changed anything.
void Forget() {
  AbortPushback();
  ClearSlew();
  ReleaseHeldPresses();
  ReleaseOverrides();
  ForgetStations();
  if (std::exchange(aircraftChanged, false)) {
    for (const char* addOn : addOns) sim::SimCommand(std::string("plugin ") + addOn + " off");
    if (flying != 0) SelectAircraft(0);
    ResetAdapters();
  }
  for (auto& [ref, before] : known) {
    ref->ints = before.ints;
    ref->floats = before.floats;
    ref->doubles = before.doubles;
    ref->bytes = before.bytes;
  }
  std::memset(&offsetMemory, 0, sizeof offsetMemory);
  std::memset(&pendingFlags, 0, sizeof pendingFlags);
  anythingPending = 0;
  ClearRequestMarks();
  ForgetReads();
  sim::SimCommand("planes 3");
  sim::SimCommand("calls");
  sim::SimCommand("writes");
}

struct Input {
  const uint8_t* data;
  size_t size;

  uint8_t Byte() {
    if (size == 0) return 0;
    --size;
    return *data++;
  }
  size_t Word() {
    const size_t low = Byte();
    return low | static_cast<size_t>(Byte()) << 8;
  }
  std::string_view Bytes(size_t most) {
    const size_t taken = std::min(most, size);
    const std::string_view bytes = TextOf(data, taken);
    data += taken;
    size -= taken;
    return bytes;
  }
};

double TakeNumber(Input* input) {
  const size_t which = input->Byte();
  if (which < std::size(numbers)) return numbers[which];
  double number = 0;
  const std::string_view bytes = input->Bytes(sizeof number);
  std::memcpy(&number, bytes.data(), bytes.size());
  return number;
}

// What the simulator itself does: its own kinds hold what they can.
void SetNumber(Input* input) {
  sim::DataRef& ref = *known[input->Word() % known.size()].first;
  const size_t element = input->Byte();
  const double number = TakeNumber(input);
  const double whole = std::isnan(number) ? 0 : std::clamp(number, -2147483648.0, 2147483647.0);
  if (element < ref.ints.size()) ref.ints[element] = static_cast<int>(whole);
  if (element < ref.floats.size()) ref.floats[element] = static_cast<float>(number);
  if (element < ref.doubles.size()) ref.doubles[element] = number;
}

void SetText(Input* input) {
  sim::DataRef* ref = known[input->Word() % known.size()].first;
  const std::string_view text = input->Bytes(input->Byte());
  for (size_t i = 0; i < ref->bytes.size(); ++i)
    ref->bytes[i] = static_cast<uint8_t>(i < text.size() ? text[i] : 'x');
}

void WriteAsClient(Input* input) {
  const size_t place = input->Word();
  const bool isCustom = place >= 0x7F00 && place < 0x8000;
  const uint32_t offset = isCustom         ? 0x66C0 + (place - 0x7F00) % 0x18
                          : place < 0x8000 ? rows[place % rows.size()]->offset
                                           : static_cast<uint32_t>((place & 0x7FFF) * 4 % offsetMemorySize);
  const std::string_view bytes = input->Bytes(input->Byte());
  const auto count = static_cast<uint32_t>(std::min<size_t>(bytes.size(), offsetMemorySize - offset));
  std::vector<uint8_t> list(writeHeaderSize + count + 4);
  const uint32_t header[] = {recordWrite, offset, count};
  std::memcpy(list.data(), header, sizeof header);
  std::memcpy(list.data() + writeHeaderSize, bytes.data(), count);
  Require(ServeRecords(list.data(), list.size(), PathSource::Network, CountRequest(), &scratch));
}

void Refresh(Input* input, bool clientsWrote) {
  const size_t which = input->Byte() % std::size(cycles);
  cycles[which](0, 0, 0, nullptr);
  if (clientsWrote) return;  // whose numbers may be none
  for (const OffsetRow* row : rows) {
    if (row->type != Stored::F32 && row->type != Stored::F64) continue;
    Require(!std::isnan(DecodeNumber(row->type, offsetMemory.bytes + row->offset)));
  }
}

void TellOfOthers() {
  LoadAircraftList();
  Require(FillTrafficPositions());
  for (const PlaneSource& plane : planeSources) {
    Require(std::isfinite(plane.latitude) && std::isfinite(plane.longitude) && std::isfinite(plane.altitude));
    Require(plane.heading < 360);
    Place here = plane.place, user = userPlace;
    ConvertPlace(&here);
    ConvertPlace(&user);
    Require(DistanceBetween(user, here) >= 0);
  }
  for (const auto& name : modelNames) Require(name[modelNameSize - 1] == 0);
}

void CheckWrites() {
  const std::string writes = sim::SimCommand("writes");
  for (const char* none : {"=nan", "=inf", "=-inf"}) Require(writes.find(none) == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  SetUp();
  Forget();
  Input input = {data, size};
  bool clientsWrote = false;
  while (input.size > 0) {
    const uint8_t step = input.Byte();
    aircraftChanged |= step == 'A' || step == 'P';
    switch (step) {
      case 'D':
        SetNumber(&input);
        break;
      case 'T':
        SetText(&input);
        break;
      case 'W':
        WriteAsClient(&input);
        clientsWrote = true;
        break;
      case 'F':
        WriteCycle(0, 0, 0, nullptr);
        StepHeldPresses();
        break;
      case 'R':
        Refresh(&input, clientsWrote);
        break;
      case 'M':
        ReceiveXSquawkBoxMessage(static_cast<int>(0x80000000u + input.Byte()), nullptr);
        break;
      case 'A':
        SelectAircraft(input.Byte() % std::size(aircraft));
        break;
      case 'P': {
        const uint8_t which = input.Byte();
        sim::SimCommand(std::string("plugin ") + addOns[which / 2 % std::size(addOns)] +
                        (which % 2 ? " on" : " off"));
        RecogniseAircraft();
        break;
      }
      case 'O':
        TellOfOthers();
        break;
      default:
        break;
    }
  }
  CheckWrites();
  return 0;
}
