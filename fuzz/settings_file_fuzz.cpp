// Fuzz target: TAVRIX.ini as the program reads it at enable: general settings, axes, buttons, who may connect.
// Whatever it holds, what is taken from it is within its limits, works with every reading of an axis, and reads
// back the same once it is written.
#include <cmath>
#include <cstring>

#include "controls/axis_settings.h"
#include "controls/button_settings.h"
#include "net/permissions.h"
#include "plugin_parts.h"
#include "settings/settings_text.h"

namespace {

constexpr double readings[] = {0, 0.001, 0.25, 0.4999, 0.5, 0.75, 1, -0.5, 1.5};

void CheckText(const char* text, size_t size) {
  const size_t length = strnlen(text, size);
  Require(length < size);
  for (size_t i = 0; i < length; ++i) Require(static_cast<unsigned char>(text[i]) >= 0x20 && text[i] != 0x7F);
}

void CheckGeneral() {
  CheckText(settings.serverAddress, sizeof settings.serverAddress);
  for (const char* text :
       {settings.atcNumber, settings.atcTailNumber, settings.atcAirlineName, settings.atcAircraftType}) {
    CheckText(text, maxSettingValue + 1);
  }
  Require(std::isfinite(settings.pushbackMaxSpeed) && std::isfinite(settings.toeBrakeNullZone));
  Require(settings.flapDetents >= 2 && settings.flapDetents <= maxFlapDetents);
  for (const FlapDetent& detent : settings.flapDetent) Require(detent.count >= 0 && detent.count <= 3);
}

void CheckNumber(const AxisTarget& target, Travel travel, double deflection) {
  Require(deflection >= -1 && deflection <= 1);
  const double number = NumberOf(target, travel, deflection);
  const double low = std::min({target.low, target.high, 0.0}), high = std::max({target.low, target.high, 0.0});
  const double slack = 1e-9 * std::max(std::fabs(low), std::fabs(high));
  Require(number >= low - slack && number <= high + slack);
  uint8_t bytes[8] = {};
  EncodeNumber(target, number, bytes);
  IsNews(target, number, NumberOf(target, travel, -deflection));
}

void CheckAxis(size_t control, const AxisSettings& given) {
  Require(FaultOfAxisSettings(control, given).empty());
  const AxisAssignment assignment = MakeAssignment(control, given);
  Require(assignment.targetCount >= 0 && assignment.targetCount <= engineOffsets);
  for (int i = 0; i < assignment.targetCount; ++i) {
    const AxisTarget& target = assignment.targets[i];
    Require(target.offset > 0 && target.size > 0 && target.offset + target.size <= offsetMemorySize);
    for (const double reading : readings) {
      const double one = Deflect(assignment.tunes[0], assignment.travel, reading);
      const double other = Deflect(assignment.tunes[1], assignment.travel, 1 - reading);
      CheckNumber(target, assignment.travel, one);
      CheckNumber(target, assignment.travel, Combine(assignment.travel, one, other));
    }
  }
  double last = -1;
  for (int i = 0; i < assignment.detents; ++i) {
    Require(assignment.bounds[i].lower <= assignment.bounds[i].upper && assignment.bounds[i].lower > last);
    last = assignment.bounds[i].upper;
  }
  AxisSettings before = DefaultAxisSettings(control);
  Require(WriteAxisSettings(control, before, given));
}

void CheckAxes() {
  static AllAxisSettings all, again;
  ReadAxisSettings(all);
  for (size_t control = 0; control < axisControlCount; ++control) CheckAxis(control, all[control]);
  ReadAxisSettings(again);
  Require(std::equal(std::begin(all), std::end(all), std::begin(again)));
}

void CheckButtons() {
  static ButtonAssignment all[maxButtons], again[maxButtons];
  ReadButtonSettings(all);
  int written = 0;
  for (int button = 0; button < maxButtons && written < 4; ++button) {
    if (all[button] == noAssignment) continue;
    Require(FaultOfAssignment(all[button]) == nullptr && RefusalOfButton(button) == nullptr);
    Require(WriteButtonSetting(button, all[button]));
    ++written;
  }
  if (written == 0) return;
  ReadButtonSettings(again);
  Require(std::equal(std::begin(all), std::end(all), std::begin(again)));
}

// A tow with these settings moves the simulator by numbers.
void CheckPushback() {
  LoadPushbackSettings();
  CommandPushback(1);
  for (int frame = 0; frame < 3; ++frame) PushbackStep();
  AbortPushback();
  for (const char* name : {"sim/flightmodel/position/local_vx", "sim/flightmodel/position/local_vz"}) {
    Require(std::isfinite(sim::FindLive(name)->floats.at(0)));
  }
}

bool IsSame(const Settings& a, const Settings& b) {
  const auto isSameDetent = [](const FlapDetent& one, const FlapDetent& other) {
    return one.count == other.count && std::memcmp(one.values, other.values, sizeof one.values) == 0;
  };
  return a.tuneValue == b.tuneValue && std::strcmp(a.serverAddress, b.serverAddress) == 0 &&
         a.clientMode == b.clientMode && a.allowedClients == b.allowedClients &&
         a.networkWrites == b.networkWrites && a.statusPage == b.statusPage &&
         std::strcmp(a.atcNumber, b.atcNumber) == 0 && a.pushbackMaxSpeed == b.pushbackMaxSpeed &&
         a.toeBrakeNullZone == b.toeBrakeNullZone && a.flapsActive == b.flapsActive &&
         a.flapDetents == b.flapDetents &&
         std::equal(std::begin(a.flapDetent), std::end(a.flapDetent), std::begin(b.flapDetent), isSameDetent);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = [] {
    StartSimulator();
    StartParts();
    sim::FindLive("sim/flightmodel/controls/parkbrake")->floats.at(0) = 0;
    InitPushback();
    std::string made = ScratchFolder() + "TAVRIX.ini";
    SetSettingsPath(made.c_str());
    return made;
  }();
  WriteWhole(path, TextOf(data, size));
  if (!ReadAllSettings()) return 0;  // UTF-16
  CheckGeneral();
  const Settings first = settings;
  CheckAxes();
  CheckButtons();
  CheckPushback();
  PreparePermissions(settings.allowedClients, settings.networkWrites);
  Require(!AllowedClientsText().empty() && (IsClientAllowed(0x7F000001) || !settings.allowedClients.empty()));
  Require(ReadAllSettings() && IsSame(first, settings));
  return 0;
}
