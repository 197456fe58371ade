#include "bridge/dataref_codec.h"

#include <cmath>
#include <limits>

namespace {

int Whole(double value) {
  constexpr double low = std::numeric_limits<int>::min();
  constexpr double high = std::numeric_limits<int>::max();
  if (std::isnan(value)) return 0;
  return value <= low    ? std::numeric_limits<int>::min()
         : value >= high ? std::numeric_limits<int>::max()
                         : static_cast<int>(value);
}

}  // namespace

Accessor FittingAccessor(XPLMDataRef handle) {
  if (handle == nullptr) return Accessor::None;
  const XPLMDataTypeID types = XPLMGetDataRefTypes(handle);
  if ((types & xplmType_Double) != 0) return Accessor::Double;
  if ((types & xplmType_Float) != 0) return Accessor::Float;
  if ((types & xplmType_Int) != 0) return Accessor::Int;
  if ((types & xplmType_FloatArray) != 0) return Accessor::FloatArray;
  if ((types & xplmType_IntArray) != 0) return Accessor::IntArray;
  return Accessor::None;
}

double ReadRare(XPLMDataRef handle, Accessor accessor, int element) {
  if (accessor == Accessor::Bytes) {
    uint8_t value = 0;
    XPLMGetDatab(handle, &value, element, 1);
    return value;
  }
  const Accessor fitting = FittingAccessor(handle);
  return fitting == Accessor::None ? 0 : ReadNumber(handle, fitting, element);
}

void WriteNumber(XPLMDataRef handle, Accessor accessor, int element, double value) {
  if (handle == nullptr) return;
  if (accessor == Accessor::Any) accessor = FittingAccessor(handle);
  const bool whole = accessor == Accessor::Int || accessor == Accessor::IntArray || accessor == Accessor::Bytes;
  const bool isFloat = accessor == Accessor::Float || accessor == Accessor::FloatArray;
  if (!whole && !std::isfinite(value)) return;
  if (isFloat && !std::isfinite(static_cast<float>(value))) return;
  switch (accessor) {
    case Accessor::Float:
      XPLMSetDataf(handle, static_cast<float>(value));
      break;
    case Accessor::Int:
      XPLMSetDatai(handle, Whole(value));
      break;
    case Accessor::Double:
      XPLMSetDatad(handle, value);
      break;
    case Accessor::FloatArray: {
      auto single = static_cast<float>(value);
      XPLMSetDatavf(handle, &single, element, 1);
      break;
    }
    case Accessor::IntArray: {
      int single = Whole(value);
      XPLMSetDatavi(handle, &single, element, 1);
      break;
    }
    case Accessor::Bytes: {
      auto byte = static_cast<uint8_t>(Whole(value));
      XPLMSetDatab(handle, &byte, element, 1);
      break;
    }
    case Accessor::Any:
    case Accessor::None:
      break;
  }
}
