#include "bridge/catalogue.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/bytes.h"
#include "base/version.h"
#include "bridge/encode.h"
#include "bridge/held_presses.h"
#include "offsets/memory.h"

namespace {

// Position comes before attitude and attitude before the velocities, so that a client that sends all of
// them in one request gets its velocity along the new heading.
constexpr std::array<const RowTable*, 25> tables = {
    &timeRows,           &positionRows,  &speedRows, &forceRows,      &autopilotRows, &controlRows, &slewRows,
    &throttleRows,       &engineRows,    &iceRows,   &lightRows,      &electricRows,  &fuelRows,    &weightRows,
    &pressurisationRows, &failureRows,   &radioRows, &navigationRows, &identityRows,  &airRows,     &cloudRows,
    &windRows,           &situationRows, &miscRows,  &ownRows};

constexpr Variant none = {};
constexpr Source autopilotState = Int<"sim/cockpit/autopilot/autopilot_state">;

bool ReadSwitch(const OffsetRow& row, double* value) {
  *value = IsSwitchOn(ShowingVariant(row));
  return true;
}

bool IsPublished(const Source& source) { return HandleOf(source) != nullptr; }
const Source& LampOf(const Button& button) { return IsPublished(button.light) ? button.light : button.standIn; }
bool IsFired(const Command* command) { return command != nullptr && command->handle != nullptr; }

bool IsWritten(const Variant& variant) {
  return variant.target.ref != nullptr || variant.apply != nullptr || variant.press != nullptr ||
         variant.key >= 0 || variant.stateBit != 0 || variant.buttons[0].press != nullptr ||
         !variant.places.empty();
}

bool IsLoadedFor(const Variant& variant) { return Serves(variant.addOn) || Serves(variant.alsoFor); }

AddOn LoadedOf(const Variant& variant) { return Serves(variant.addOn) ? variant.addOn : variant.alsoFor; }

// Whether the simulator knows one of the names that a variant is shown by.
bool Shows(const Variant& variant) {
  if (variant.read != nullptr) {
    return variant.reads.empty() || std::any_of(variant.reads.begin(), variant.reads.end(), IsPublished);
  }
  if (IsSwitch(variant)) {
    const auto isLamp = [](const Button& button) { return IsPublished(LampOf(button)); };
    return variant.stateBits != 0 ||
           std::any_of(std::begin(variant.lights), std::end(variant.lights), IsPublished) ||
           std::any_of(std::begin(variant.marks), std::end(variant.marks), IsPublished) ||
           std::any_of(std::begin(variant.buttons), std::end(variant.buttons), isLamp);
  }
  // A conversion alone is of what the row reads.
  return variant.source.ref != nullptr ? IsPublished(variant.source) : variant.convert != nullptr;
}

bool HasButton(const Variant& variant) {
  return std::any_of(std::begin(variant.buttons), std::end(variant.buttons),
                     [](const Button& button) { return IsFired(button.press); });
}
bool HasPlace(const Variant& variant) {
  return std::any_of(variant.places.begin(), variant.places.end(), IsFired);
}
// What stands behind buttons and places when they are not published.
bool HasRest(const Variant& variant) {
  if (IsPublished(variant.target) ||
      std::any_of(variant.together.begin(), variant.together.end(), IsPublished)) {
    return true;
  }
  if (variant.apply == nullptr) return false;
  return (variant.sets.empty() && variant.fires.empty()) ||
         std::any_of(variant.sets.begin(), variant.sets.end(), IsPublished) ||
         std::any_of(variant.fires.begin(), variant.fires.end(), IsFired);
}
bool Reaches(const Variant& variant) {
  return !variant.silent && (HasButton(variant) || HasPlace(variant) || HasRest(variant));
}

// The first name that a variant would have needed, for the log.
const char* MissingName(const Variant& variant) {
  if (variant.buttons[0].press != nullptr) return variant.buttons[0].press->name;
  if (!variant.places.empty()) return variant.places[0]->name;
  if (variant.target.ref != nullptr) return variant.target.ref->name;
  if (!variant.fires.empty()) return variant.fires[0]->name;
  return variant.sets.empty() ? "" : variant.sets[0].ref->name;
}

void TurnStockSwitch(const Variant& variant, bool wanted) {
  if (variant.target.ref != nullptr) {
    SetSource(variant.target, wanted);
    return;
  }
  if (wanted == IsSwitchOn(variant)) return;
  if (variant.press != nullptr) {
    FireCommand(*variant.press);
  } else if (variant.key >= 0) {
    XPLMCommandKeyStroke(variant.key);
  } else if (variant.stateBit != 0) {
    SetSource(autopilotState, variant.stateBit);
  }
}

void Fire(const Variant& variant, uint32_t offset, const Command& command, bool held) {
  if (command.handle == nullptr) {
    TellUnserved(LoadedOf(variant), offset, command.name);
  } else if (held) {
    HoldCommand(command);
  } else {
    FireCommand(command);
  }
}

// A lamp that is counted as an integer is lit when it is not 0.
bool IsLampOn(const Source& light) {
  return Resolved(light).accessor == Accessor::Int ? IsOn(light) : IsLit(light);
}

// Off presses only what is known to be on: a button may not be pressed for another one's lamp. One that stands
// alone is on when the row is.
void PressButtons(const Variant& variant, uint32_t offset, bool shown, bool wanted) {
  const auto press = [&](const Button& button) {
    if (button.press != nullptr) Fire(variant, offset, *button.press, variant.held);
  };
  if (variant.momentary) {
    // What is lit may be lit for another reason: the button is pressed unless it is being held.
    if (wanted && HeldCommand(variant.buttons[0].press) == nullptr) press(variant.buttons[0]);
    return;
  }
  const bool isAlone = variant.buttons[1].press == nullptr;
  bool isOn = false, isKnown = false;
  for (const Button& button : variant.buttons) {
    if (button.press == nullptr) break;
    const Source& lamp = LampOf(button);
    const bool hasLamp = IsPublished(lamp);
    if (!hasLamp && !isAlone) continue;
    const bool on = hasLamp ? IsLampOn(lamp) : shown;
    isOn |= on;
    isKnown = true;
    if (variant.everyButton ? on != wanted : on && !wanted) press(button);
  }
  if (wanted && !isOn && !variant.everyButton) {
    press(variant.buttons[0]);
  } else if (!isKnown) {
    TellUnserved(LoadedOf(variant), offset, variant.buttons[0].light.ref->name);
  }
}

void SetTargets(const Variant& variant, double number) {
  SetSource(variant.target, number);
  for (const Source& target : variant.together) SetSource(target, number);
}

// Buttons or places of an add-on, which comes before what else the variant has. Returns false without them.
bool UsesPanel(const Variant& variant, uint32_t offset, bool shown, double number) {
  if (HasButton(variant)) {
    PressButtons(variant, offset, shown, number != 0);
    return true;
  }
  if (!HasPlace(variant)) return false;
  const double place = std::clamp(number, 0.0, static_cast<double>(variant.places.size() - 1));
  Fire(variant, offset, *variant.places[static_cast<size_t>(place)], variant.held);
  return true;
}

// Whether an add-on's variant cannot be reached; says so.
bool IsOutOfReach(const Variant& variant, uint32_t offset, const char* part = "") {
  if (variant.addOn == AddOn::None || Reaches(variant)) return false;
  TellUnserved(LoadedOf(variant), offset, variant.silent ? "" : MissingName(variant), part);
  return true;
}

}  // namespace

std::span<const RowTable* const> Catalogue() { return tables; }

uint32_t StoredWidth(const OffsetRow& row) {
  switch (row.type) {
    case Stored::U8:
    case Stored::S8:
      return 1;
    case Stored::U16:
    case Stored::S16:
      return 2;
    case Stored::U32:
    case Stored::S32:
    case Stored::F32:
      return 4;
    case Stored::S64:
    case Stored::F64:
      return 8;
    case Stored::Text:
      return row.length;
  }
  return 0;
}

double DecodeNumber(Stored type, const uint8_t* bytes) {
  switch (type) {
    case Stored::F32:
      return static_cast<double>(LoadFrom<float>(bytes));
    case Stored::F64:
      return LoadFrom<double>(bytes);
    default:
      return static_cast<double>(DecodeInteger(type, bytes));
  }
}

int64_t DecodeInteger(Stored type, const uint8_t* bytes) {
  switch (type) {
    case Stored::U8:
      return LoadFrom<uint8_t>(bytes);
    case Stored::S8:
      return LoadFrom<int8_t>(bytes);
    case Stored::U16:
      return LoadFrom<uint16_t>(bytes);
    case Stored::S16:
      return LoadFrom<int16_t>(bytes);
    case Stored::U32:
      return LoadFrom<uint32_t>(bytes);
    case Stored::S32:
      return LoadFrom<int32_t>(bytes);
    case Stored::S64:
      return LoadFrom<int64_t>(bytes);
    case Stored::F32:
    case Stored::F64: {
      const double number = DecodeNumber(type, bytes);
      return std::isnan(number) ? 0 : Truncated<int64_t>(number);
    }
    case Stored::Text:
      break;
  }
  return 0;
}

const Variant& ShowingVariant(std::span<const Variant> variants) {
  for (const Variant& variant : variants) {
    if (variant.addOn == AddOn::None || (IsLoadedFor(variant) && Shows(variant))) return variant;
  }
  return none;
}

// What the simulator's own 737-800 does not publish (that of an older simulator has no names of its own) is the
// simulator's.
const Variant& ActingVariant(std::span<const Variant> variants) {
  for (const Variant& variant : variants) {
    if (variant.addOn == AddOn::None) return variant;
    if (!IsLoadedFor(variant) || (!ActsOn(variant) && variant.targetConvert == nullptr)) continue;
    if (LoadedOf(variant) != AddOn::B738Stock || Reaches(variant)) return variant;
  }
  return none;
}

bool ActsOn(const Variant& variant) { return IsWritten(variant) || variant.silent; }

const double* ActivePrepared(const OffsetRow& row) {
  return ShowingVariant(row).source.ref != nullptr ? nullptr : row.prepared;
}

ReadRow ActiveRead(const OffsetRow& row) {
  const Variant& variant = ShowingVariant(row);
  if (variant.read != nullptr) return variant.read;
  if (IsSwitch(variant)) return ReadSwitch;
  return variant.source.ref != nullptr ? nullptr : row.read;
}

Convert ActiveConvert(const OffsetRow& row) {
  const Convert convert = ShowingVariant(row).convert;
  return convert != nullptr ? convert : row.convert;
}

double UnitFactor(const UnitChange& change) {
  return change.since != 0 && simulatorVersion >= change.since ? change.factor : 1;
}

double InChangedUnit(double number, const UnitChange& change) {
  const double factor = UnitFactor(change);
  if (factor == 1) return number;
  const double exact = number / factor;
  const auto single = static_cast<float>(exact);
  const bool tooSmall = std::abs(static_cast<double>(single)) < std::abs(exact);
  return static_cast<double>(tooSmall ? std::nextafter(single, std::copysign(HUGE_VALF, single)) : single);
}

double TargetNumber(const OffsetRow& row, double number) {
  const WriteRule& write = row.write;
  const Variant& variant = ActingVariant(row);
  const Convert own = variant.targetConvert;
  if (own != nullptr && IsWritten(variant)) return own(number);  // the limits are those of the row's own target
  const Convert convert = own != nullptr ? own : write.convert;
  const double limited =
      std::clamp(convert != nullptr ? convert(number) : number * write.factor, write.low, write.high);
  return InChangedUnit(limited, row.unitChange);
}

bool IsSwitch(const Variant& variant) {
  return variant.lights[0].ref != nullptr || variant.marks[0].ref != nullptr || variant.stateBits != 0 ||
         variant.buttons[0].light.ref != nullptr;
}

bool IsSwitchOn(const Variant& variant) {
  bool hasLight = false;
  for (const Source& light : variant.lights) {
    if (light.ref == nullptr) break;
    hasLight |= IsPublished(light);
    if (IsLit(light)) return !variant.dark;
  }
  for (const Source& mark : variant.marks) {
    if (IsOn(mark)) return true;
  }
  if (variant.stateBits != 0) return (ReadInt(autopilotState) & variant.stateBits) != 0;
  if (!hasLight) {
    for (const Button& button : variant.buttons) {
      if (button.light.ref == nullptr) break;
      if (const Source& lamp = LampOf(button); IsPublished(lamp) && IsLampOn(lamp)) return true;
    }
  }
  return variant.dark && hasLight;
}

bool HasWriter(const OffsetRow& row) {
  const WriteRule& write = row.write;
  return write.target.ref != nullptr || write.apply != nullptr || write.group != nullptr || write.staged ||
         std::any_of(row.variants.begin(), row.variants.end(), IsWritten);
}

void ApplyVariant(const OffsetRow& row, const Staged& staged) {
  const Variant& variant = ActingVariant(row);
  if (IsOutOfReach(variant, row.offset)) return;
  const Variant& showing = ShowingVariant(row);
  const bool isSwitch = IsSwitch(variant) || variant.buttons[0].press != nullptr;
  const double number = isSwitch && variant.targetConvert == nullptr ? static_cast<double>(staged.integer != 0)
                                                                     : TargetNumber(row, staged.number);
  const bool isPanel = variant.buttons[0].press != nullptr || !variant.places.empty();
  const bool shown = isPanel && IsSwitch(showing) ? IsSwitchOn(showing) : staged.integer == 0;
  if (isPanel && UsesPanel(variant, row.offset, shown, number)) return;
  if (variant.apply != nullptr) {
    variant.apply(row, staged);
  } else if (isSwitch && variant.addOn == AddOn::None) {
    TurnStockSwitch(variant, number != 0);
  } else {
    SetTargets(variant, number);
  }
}

void TurnSwitch(std::span<const Variant> variants, uint32_t offset, bool wanted, const char* part) {
  const Variant& variant = ActingVariant(variants);
  if (IsOutOfReach(variant, offset, part)) return;
  const bool shown = IsOn(ShowingVariant(variants).source);
  if (UsesPanel(variant, offset, shown, wanted)) return;
  SetTargets(variant, variant.targetConvert != nullptr ? variant.targetConvert(wanted) : wanted);
}

void FireFor(const OffsetRow& row, const Command& command) {
  Fire(ActingVariant(row), row.offset, command, false);
}

void HoldFor(const OffsetRow& row, const Command& command, const void* control, int times) {
  if (command.handle != nullptr) {
    HoldCommand(command, control, times);
  } else {
    FireFor(row, command);  // says so
  }
}

std::optional<int> PlaceOf(AddOn addOn, uint32_t offset, const Source& source, int low, int high,
                           const char* part) {
  if (!IsPublished(source)) {
    TellUnserved(addOn, offset, source.ref->name, part);
    return std::nullopt;
  }
  const double place = ReadSource(source);
  if (std::isnan(place)) {
    TellUnserved(addOn, offset, source.ref->name, part, "is not a number");
    return std::nullopt;
  }
  return static_cast<int>(std::lround(std::clamp<double>(place, low, high)));
}

Source ActiveSource(const OffsetRow& row) {
  const Source source = ShowingVariant(row).source;
  return source.ref != nullptr ? source : row.source;
}

void CopyFromMemory(uint32_t offset, uint32_t size, void* bytes) {
  LockScope lock(&offsetLock);
  std::memcpy(bytes, offsetMemory.bytes + offset, size);
}

void CopyToMemory(uint32_t offset, uint32_t size, const void* bytes) {
  LockScope lock(&offsetLock);
  std::memcpy(offsetMemory.bytes + offset, bytes, size);
}

bool TryCopyFromMemory(uint32_t offset, uint32_t size, void* bytes) {
  if (!TryEnterLock(&offsetLock)) return false;
  std::memcpy(bytes, offsetMemory.bytes + offset, size);
  LeaveLock(&offsetLock);
  return true;
}
