#include "bridge/sources.h"

#include <cmath>
#include <cstring>

#include "bridge/catalogue.h"

void SetSource(const Source& source, double value) {
  if (std::isfinite(value)) WriteNumber(HandleOf(source), source.accessor, source.element, value);
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
