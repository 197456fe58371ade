// Behaviour of the built-in classes except the text field: what a click does to a window, a button and a
// scroll bar. A class function keeps all its state in properties, so that a custom widget may call it too.
#include <algorithm>
#include <cstdint>

#include "widgets/widgets.h"

namespace sim {
namespace {

constexpr int kCloseBoxSize = 14;
constexpr int kCloseBoxGap = 3;
// Kept while the mouse holds a close box: which of the two, counted from 1.
constexpr XPWidgetPropertyID kPressedCloseBox = 1299;

int CloseBoxAt(const Widget* window, const XPMouseState_t& mouse) {
  if (!Property(window, xpProperty_MainWindowHasCloseBoxes)) return 0;
  for (int k = 0; k < 2; ++k) {
    if (CloseBox(window, k).Holds(mouse.x, mouse.y)) return k + 1;
  }
  return 0;
}

int MainWindowFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t param2) {
  Widget* window = static_cast<Widget*>(id);
  if (message != xpMsg_MouseDown && message != xpMsg_MouseDrag && message != xpMsg_MouseUp) return 0;
  const XPMouseState_t& mouse = *reinterpret_cast<const XPMouseState_t*>(param1);
  const Rect& box = window->box;
  if (message == xpMsg_MouseDown) {
    if (!IsInFront(window)) BringToFront(window);
    if (keyboardFocus) SetFocus(nullptr);
    if (!IsLive(window)) return 1;
    const int closeBox = CloseBoxAt(window, mouse);
    SetProperty(window, kPressedCloseBox, closeBox);
    if (closeBox) return 1;
  } else if (message == xpMsg_MouseUp) {
    const intptr_t pressed = Property(window, kPressedCloseBox);
    SetProperty(window, kPressedCloseBox, 0);
    if (pressed) {
      if (CloseBoxAt(window, mouse) == pressed)
        Send(window, xpMessage_CloseButtonPushed, xpMode_UpChain, AsParam(window), 0);
      return 1;
    }
  }
  XPUDragWidget(message, window, param1, param2, box.left, box.top, box.right, box.top - kTitleHeight);
  return 1;
}

int ButtonFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t) {
  Widget* button = static_cast<Widget*>(id);
  if (message != xpMsg_MouseDown && message != xpMsg_MouseDrag && message != xpMsg_MouseUp) return 0;
  if (!IsEnabled(button)) return 1;
  const XPMouseState_t& mouse = *reinterpret_cast<const XPMouseState_t*>(param1);
  const intptr_t behaviour = Property(button, xpProperty_ButtonBehavior);
  if (behaviour == xpButtonBehaviorCheckBox || behaviour == xpButtonBehaviorRadioButton) {
    const bool was = Property(button, xpProperty_ButtonState) != 0;
    const intptr_t wanted = behaviour == xpButtonBehaviorRadioButton || !was;
    if (message == xpMsg_MouseDown && wanted != was) {
      SetProperty(button, xpProperty_ButtonState, wanted);
      if (IsLive(button)) Send(button, xpMsg_ButtonStateChanged, xpMode_UpChain, AsParam(button), wanted);
    }
    return 1;
  }
  // A push button acts when it is released over itself: lit means that it would.
  const bool over = button->box.Holds(mouse.x, mouse.y);
  if (message != xpMsg_MouseUp) {
    SetProperty(button, xpProperty_Hilited, over);
    return 1;
  }
  SetProperty(button, xpProperty_Hilited, 0);
  if (over && IsLive(button)) Send(button, xpMsg_PushButtonPressed, xpMode_UpChain, AsParam(button), 0);
  return 1;
}

// A scroll bar's property; more than 32 bits would only overflow the arithmetic.
int64_t Whole(const Widget* bar, XPWidgetPropertyID id) {
  return std::clamp<int64_t>(Property(bar, id), INT32_MIN, INT32_MAX);
}

// Sets the slider within its range; tells the parents when it moved.
void MoveSlider(Widget* bar, int64_t position) {
  const int64_t low = Whole(bar, xpProperty_ScrollBarMin);
  const int64_t high = std::max<int64_t>(low, Whole(bar, xpProperty_ScrollBarMax));
  const intptr_t wanted = static_cast<intptr_t>(std::clamp(position, low, high));
  if (wanted == Property(bar, xpProperty_ScrollBarSliderPosition)) return;
  SetProperty(bar, xpProperty_ScrollBarSliderPosition, wanted);
  if (IsLive(bar)) Send(bar, xpMsg_ScrollBarSliderPositionChanged, xpMode_UpChain, AsParam(bar), 0);
}

// A bar lies down when it is wider than high (lowest value left) and stands else (lowest value below).
// Arrows take a square at either end; the thumb is a square too.
int ScrollBarFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t) {
  Widget* bar = static_cast<Widget*>(id);
  if (message != xpMsg_MouseDown && message != xpMsg_MouseDrag && message != xpMsg_MouseUp &&
      message != xpMsg_MouseWheel)
    return 0;
  const XPMouseState_t& mouse = *reinterpret_cast<const XPMouseState_t*>(param1);
  if (!IsEnabled(bar)) return 1;
  const int64_t position = Whole(bar, xpProperty_ScrollBarSliderPosition);
  if (message == xpMsg_MouseWheel) {
    MoveSlider(bar, position + mouse.delta);
    return 1;
  }
  const bool lying = bar->box.Width() > bar->box.Height();
  const int size = lying ? bar->box.Height() : bar->box.Width();
  const int length = lying ? bar->box.Width() : bar->box.Height();
  const int at = lying ? mouse.x - bar->box.left : mouse.y - bar->box.bottom;
  const int arrow = Property(bar, xpProperty_ScrollBarType) == xpScrollBarTypeScrollBar ? size : 0;
  const int travel = std::max(1, length - 2 * arrow - size);  // pixels that the thumb can move
  const int64_t low = Whole(bar, xpProperty_ScrollBarMin);
  const int64_t range = std::max<int64_t>(0, Whole(bar, xpProperty_ScrollBarMax) - low);
  const int64_t thumb = arrow + (range ? (position - low) * travel / range : 0);
  if (message == xpMsg_MouseDown) {
    const int64_t page = std::max<int64_t>(1, Whole(bar, xpProperty_ScrollBarPageAmount));
    SetProperty(bar, xpProperty_Dragging, 0);
    if (at < arrow) {
      MoveSlider(bar, position - 1);
    } else if (at > length - arrow) {
      MoveSlider(bar, position + 1);
    } else if (at < thumb) {
      MoveSlider(bar, position - page);
    } else if (at > thumb + size) {
      MoveSlider(bar, position + page);
    } else {
      SetProperty(bar, xpProperty_Dragging, 1);
      SetProperty(bar, xpProperty_ScrollBarSlop, static_cast<intptr_t>(at - thumb));
    }
  } else if (message == xpMsg_MouseDrag && Property(bar, xpProperty_Dragging)) {
    const int64_t moved = at - Whole(bar, xpProperty_ScrollBarSlop) - arrow;
    MoveSlider(bar, low + (std::clamp<int64_t>(moved, 0, travel) * range + travel / 2) / travel);
  } else if (message == xpMsg_MouseUp) {
    SetProperty(bar, xpProperty_Dragging, 0);
  }
  return 1;
}

// Classes that only show something: clicks go on to the window.
int PlainFunction(XPWidgetMessage, XPWidgetID, intptr_t, intptr_t) { return 0; }

}  // namespace

Rect CloseBox(const Widget* window, int k) {
  const int left = k == 0 ? window->box.left + kCloseBoxGap : window->box.right - kCloseBoxGap - kCloseBoxSize;
  const int top = window->box.top - kCloseBoxGap;
  return {left, top, left + kCloseBoxSize, top - kCloseBoxSize};
}

XPWidgetFunc_t ClassFunction(XPWidgetClass type) {
  switch (type) {
    case xpWidgetClass_MainWindow:
      return MainWindowFunction;
    case xpWidgetClass_Button:
      return ButtonFunction;
    case xpWidgetClass_TextField:
      return TextFieldFunction;
    case xpWidgetClass_ScrollBar:
      return ScrollBarFunction;
    case xpWidgetClass_SubWindow:
    case xpWidgetClass_Caption:
    case xpWidgetClass_GeneralGraphics:
    case xpWidgetClass_Progress:
      return PlainFunction;
    default:
      return nullptr;
  }
}

}  // namespace sim
