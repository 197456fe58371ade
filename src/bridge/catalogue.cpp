#include "bridge/catalogue.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/bytes.h"
#include "base/version.h"
#include "bridge/encode.h"
#include "offsets/memory.h"

AddOnSet loadedAddOns;
bool ixegThrottleTaken;

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
  *value = IsSwitchOn(ActiveVariant(row));
  return true;
}

bool IsWritten(const Variant& variant) {
  return variant.target.ref != nullptr || variant.apply != nullptr || variant.press != nullptr ||
         variant.key >= 0 || variant.stateBit != 0;
}

void TurnSwitch(const Variant& variant, bool wanted) {
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

const Variant& ActiveVariant(std::span<const Variant> variants) {
  for (const Variant& variant : variants) {
    if (variant.addOn == AddOn::None || IsLoaded(variant.addOn)) return variant;
  }
  return none;
}

ReadRow ActiveRead(const OffsetRow& row) {
  if (row.read != nullptr) return row.read;
  const Variant& variant = ActiveVariant(row);
  return variant.read == nullptr && IsSwitch(variant) ? ReadSwitch : variant.read;
}

Convert ActiveConvert(const OffsetRow& row) {
  const Convert convert = ActiveVariant(row).convert;
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
  const Convert own = ActiveVariant(row).targetConvert;
  const Convert convert = own != nullptr ? own : write.convert;
  const double limited =
      std::clamp(convert != nullptr ? convert(number) : number * write.factor, write.low, write.high);
  return InChangedUnit(limited, row.unitChange);
}

bool IsSwitch(const Variant& variant) {
  return variant.lights[0].ref != nullptr || variant.marks[0].ref != nullptr || variant.stateBits != 0;
}

bool IsSwitchOn(const Variant& variant) {
  for (const Source& light : variant.lights) {
    if (light.ref == nullptr) break;
    if (IsLit(light)) return true;
  }
  for (const Source& mark : variant.marks) {
    if (IsOn(mark)) return true;
  }
  return variant.stateBits != 0 && (ReadInt(autopilotState) & variant.stateBits) != 0;
}

bool HasWriter(const OffsetRow& row) {
  const WriteRule& write = row.write;
  return write.target.ref != nullptr || write.apply != nullptr || write.group != nullptr || write.staged ||
         std::any_of(row.variants.begin(), row.variants.end(), IsWritten);
}

void ApplyVariant(const OffsetRow& row, const Staged& staged) {
  const Variant& variant = ActiveVariant(row);
  if (variant.apply != nullptr) {
    variant.apply(row, staged);
  } else if (IsSwitch(variant)) {
    TurnSwitch(variant, staged.integer != 0);
  } else {
    SetSource(variant.target, TargetNumber(row, staged.number));
  }
}

Source ActiveSource(const OffsetRow& row) {
  return row.source.ref != nullptr ? row.source : ActiveVariant(row).source;
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
