// The widgets' look for plug-ins that draw by themselves: measures that fit together; nothing is drawn.
#include <algorithm>

#include "XPUIGraphics.h"
#include "core/sim.h"

using namespace sim;

namespace {

constexpr int kButton = 17;  // ends of a scroll bar
constexpr int kLeastThumb = 15;

struct ElementRow {
  XPElementStyle style = 0;
  int width = 0, height = 0;
  bool lights = false;
};
constexpr ElementRow elementRows[] = {
    {.style = xpElement_TextField, .width = 100, .height = 18},
    {.style = xpElement_CheckBox, .width = 15, .height = 15, .lights = true},
    {.style = xpElement_CheckBoxLit, .width = 15, .height = 15},
    {.style = xpElement_WindowCloseBox, .width = 14, .height = 14, .lights = true},
    {.style = xpElement_WindowCloseBoxPressed, .width = 14, .height = 14},
    {.style = xpElement_PushButton, .width = 100, .height = 18, .lights = true},
    {.style = xpElement_PushButtonLit, .width = 100, .height = 18},
};
constexpr ElementRow otherElement = {.width = 20, .height = 20};

void Put(int* to, int value) {
  if (to) *to = value;
}

}  // namespace

void XPDrawWindow(int, int, int, int, XPWindowStyle) { CheckDrawing("XPDrawWindow"); }
void XPDrawElement(int, int, int, int, XPElementStyle, int) { CheckDrawing("XPDrawElement"); }
void XPDrawTrack(int, int, int, int, int, int, int, XPTrackStyle, int) { CheckDrawing("XPDrawTrack"); }

void XPGetWindowDefaultDimensions(XPWindowStyle style, int* width, int* height) {
  CheckCaller("XPGetWindowDefaultDimensions");
  Put(width, style == xpWindow_MainWindow ? 100 : 50);
  Put(height, style == xpWindow_MainWindow ? 100 : 50);
}

void XPGetElementDefaultDimensions(XPElementStyle style, int* width, int* height, int* canBeLit) {
  CheckCaller("XPGetElementDefaultDimensions");
  const auto* row = std::find_if(std::begin(elementRows), std::end(elementRows),
                                 [&](const ElementRow& each) { return each.style == style; });
  if (row == std::end(elementRows)) row = &otherElement;
  Put(width, row->width);
  Put(height, row->height);
  Put(canBeLit, row->lights);
}

void XPGetTrackDefaultDimensions(XPTrackStyle style, int* width, int* canBeLit) {
  CheckCaller("XPGetTrackDefaultDimensions");
  Put(width, kButton);
  Put(canBeLit, style != xpTrack_Progress);
}

void XPGetTrackMetrics(int left, int bottom, int right, int top, int min, int max, int value,
                       XPTrackStyle style, int* isVertical, int* downButton, int* downPage, int* thumb,
                       int* upPage, int* upButton) {
  CheckCaller("XPGetTrackMetrics");
  const int length = std::max({right - left, top - bottom, 0});
  const int button = style == xpTrack_ScrollBar ? std::min(kButton, length / 2) : 0;
  const int track = length - 2 * button;
  const int knob = style == xpTrack_Progress ? 0 : std::min(kLeastThumb, track);
  const double share =
      max > min ? std::clamp((static_cast<double>(value) - min) / (static_cast<double>(max) - min), 0.0, 1.0)
                : 0;
  const int below = static_cast<int>((track - knob) * share);
  Put(isVertical, top - bottom > right - left);
  Put(downButton, button);
  Put(downPage, below);
  Put(thumb, knob);
  Put(upPage, track - knob - below);
  Put(upButton, button);
}
