#include "bridge/sources.h"

#include <cmath>
#include <cstring>
#include <iterator>

// Filled before any other code of the module runs; zero until then, whatever the order of the files.
constinit DataRef* firstDataRef = nullptr;
constinit Command* firstCommand = nullptr;
uint32_t keptFrame;
uint32_t sharedFrame = ~0U;  // none: no reads are kept in a frame of this number

namespace {

uint32_t looks;  // number of the newest look; 0 is no look

}  // namespace

DataRef::DataRef(const char* published, std::span<const char* const> others)
    : name(published), otherNames(others), next(firstDataRef) {
  firstDataRef = this;
}
Command::Command(const char* published) : name(published), next(firstCommand) { firstCommand = this; }

Accessor FittingOf(DataRef& ref) {
  if (ref.fitting == Accessor::None) ref.fitting = FittingAccessor(ref.handle);
  return ref.fitting;
}

void ForgetReads() {
  sharedFrame = ~0U;
  for (DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) ref->frame = 0;
}

KeepReads::KeepReads(bool newLook) {
  if (newLook || looks == 0) ++looks;
  if (looks == 0) ++looks;
  keptFrame = looks;
}

void Keep(DataRef& ref, Accessor accessor) {
  ref.frame = 0;  // until the answer is there: the accessor of another plug-in may throw
  // What lies beyond an array's end stays 0.
  if (accessor == Accessor::FloatArray) {
    float elements[keptElements] = {};
    if (ref.handle != nullptr) XPLMGetDatavf(ref.handle, elements, 0, keptElements);
    std::copy(std::begin(elements), std::end(elements), ref.kept);
  } else if (accessor == Accessor::IntArray) {
    int elements[keptElements] = {};
    if (ref.handle != nullptr) XPLMGetDatavi(ref.handle, elements, 0, keptElements);
    std::copy(std::begin(elements), std::end(elements), ref.kept);
  } else {
    ref.kept[0] = ReadNumber(ref.handle, accessor, 0);
  }
  ref.frame = keptFrame;
  ref.keptAs = accessor;
}

void SetSource(const Source& stated, double value) {
  if (stated.ref == nullptr || !std::isfinite(value)) return;
  const Source source = Resolved(stated);
  source.ref->frame = 0;
  sharedFrame = ~0U;  // what the first cycle was told may be what is set here
  WriteNumber(source.ref->handle, source.accessor, source.element, value);
}

int ReadText(const Source& source, char* text, int size) {
  const XPLMDataRef handle = HandleOf(source);
  int length = 0;
  if (handle != nullptr) length = XPLMGetDatab(handle, text, 0, size - 1);
  text[std::clamp(length, 0, size - 1)] = 0;
  return static_cast<int>(std::strlen(text));
}

void FireCommand(XPLMCommandRef command) {
  if (command != nullptr) XPLMCommandOnce(command);
}

void PushButton(XPLMCommandButtonID button) {
  XPLMCommandButtonPress(button);
  XPLMCommandButtonRelease(button);
}
