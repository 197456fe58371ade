#include "bridge/sources.h"

#include <cmath>
#include <cstring>

#include "bridge/catalogue.h"

namespace {

// The accessor that fits a dataref whose publisher does not state its type.
Accessor FittingAccessor(XPLMDataRef handle) {
  const XPLMDataTypeID types = XPLMGetDataRefTypes(handle);
  if ((types & xplmType_Double) != 0) return Accessor::Double;
  if ((types & xplmType_Float) != 0) return Accessor::Float;
  if ((types & xplmType_Int) != 0) return Accessor::Int;
  if ((types & xplmType_FloatArray) != 0) return Accessor::FloatArray;
  if ((types & xplmType_IntArray) != 0) return Accessor::IntArray;
  return Accessor::None;
}

int Saturated(double value) {
  constexpr double low = std::numeric_limits<int>::min();
  constexpr double high = std::numeric_limits<int>::max();
  return value <= low    ? std::numeric_limits<int>::min()
         : value >= high ? std::numeric_limits<int>::max()
                         : static_cast<int>(value);
}

}  // namespace

double ReadFitting(XPLMDataRef handle, int element) {
  const Accessor fitting = FittingAccessor(handle);
  return fitting == Accessor::None ? 0 : ReadNumber(handle, fitting, element);
}

void SetSource(const Source& source, double value) {
  XPLMDataRef handle = HandleOf(source);
  if (handle == nullptr || !std::isfinite(value)) return;
  const Accessor accessor = source.accessor == Accessor::Any ? FittingAccessor(handle) : source.accessor;
  switch (accessor) {
    case Accessor::Float:
      XPLMSetDataf(handle, static_cast<float>(value));
      break;
    case Accessor::Int:
      XPLMSetDatai(handle, Saturated(value));
      break;
    case Accessor::Double:
      XPLMSetDatad(handle, value);
      break;
    case Accessor::FloatArray: {
      float single = static_cast<float>(value);
      XPLMSetDatavf(handle, &single, source.element, 1);
      break;
    }
    case Accessor::IntArray: {
      int single = Saturated(value);
      XPLMSetDatavi(handle, &single, source.element, 1);
      break;
    }
    case Accessor::Any:
    case Accessor::None:
      break;
  }
}

int ReadText(Block block, uint32_t index, char* text, int size) {
  const Source source = {block, index, Accessor::None, 0};
  XPLMDataRef handle = HandleOf(source);
  int length = 0;
  if (handle != nullptr) length = XPLMGetDatab(handle, text, 0, size - 1);
  if (length < 0) length = 0;
  if (length > size - 1) length = size - 1;
  text[length] = 0;
  return static_cast<int>(std::strlen(text));
}

void FireCommand(XPLMCommandRef command) {
  if (command != nullptr) XPLMCommandOnce(command);
}

void PushButton(XPLMCommandButtonID button) {
  XPLMCommandButtonPress(button);
  XPLMCommandButtonRelease(button);
}
