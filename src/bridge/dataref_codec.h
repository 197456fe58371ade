// The one way from a dataref's value to a number and back: for the catalogue, the user's own offsets and
// records from other instances. Scalars and array elements, by the type that the simulator reports or that a
// row states.
//
// Simulator's thread only, never with a lock held. A null handle reads 0 and takes no value.
#pragma once
#include <cstdint>

#include "XPLMDataAccess.h"
#include "bridge/accessor.h"

// The accessor that fits what the simulator reports: double before float before int, scalars before arrays;
// None for a null handle and for a dataref without any of them.
Accessor FittingAccessor(XPLMDataRef handle);

// The number of an accessor that is rare in a frame: Bytes and Any. The handle is not null.
double ReadRare(XPLMDataRef handle, Accessor accessor, int element);

// The number as the simulator has it; 0 for a null handle or an element beyond the dataref's end. `element`
// counts from 0 and matters for arrays only. Inline, because nearly all accessors are constants: the call that
// is left then is the simulator's.
inline double ReadNumber(XPLMDataRef handle, Accessor accessor, int element) {
  if (handle == nullptr) return 0;
  switch (accessor) {
    case Accessor::Float:
      return static_cast<double>(XPLMGetDataf(handle));
    case Accessor::Int:
      return XPLMGetDatai(handle);
    case Accessor::Double:
      return XPLMGetDatad(handle);
    case Accessor::FloatArray: {
      float value = 0;
      XPLMGetDatavf(handle, &value, element, 1);
      return static_cast<double>(value);
    }
    case Accessor::IntArray: {
      int value = 0;
      XPLMGetDatavi(handle, &value, element, 1);
      return value;
    }
    case Accessor::Bytes:
    case Accessor::Any:
      return ReadRare(handle, accessor, element);
    case Accessor::None:
      break;
  }
  return 0;
}

// Sets it. Whole numbers (ints and bytes) take the value truncated toward zero and saturated, a NaN as 0;
// floats and doubles take no NaN, no infinity and nothing that would become one: the simulator must not meet
// it.
void WriteNumber(XPLMDataRef handle, Accessor accessor, int element, double value);
