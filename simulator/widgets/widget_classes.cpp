// Behaviour of the built-in classes except the text field: what a click does to a window, a button and a
// scroll bar. A class function keeps all its state in properties, so that a custom widget may call it too.
#include <algorithm>
#include <cstdint>

#include "core/table.h"
#include "widgets/widgets.h"

namespace sim {
namespace {

constexpr int kCloseBoxSize = 14;
constexpr int kCloseBoxGap = 3;
// Kept while the mouse holds a close box: which of the two, counted from 1.
constexpr XPWidgetPropertyID kPressedCloseBox = 1299;

bool IsMouse(XPWidgetMessage message) {
  return message == xpMsg_MouseDown || message == xpMsg_MouseDrag || message == xpMsg_MouseUp;
}

// Which of the two, counted from 1; 0 none.
int CloseBoxAt(const Widget* window, const XPMouseState_t& mouse) {
  if (!Property(window, xpProperty_MainWindowHasCloseBoxes)) return 0;
  for (int k = 0; k < 2; ++k) {
    if (CloseBox(window, k).Holds(mouse.x, mouse.y)) return k + 1;
  }
  return 0;
}

int MainWindowFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t param2) {
  Widget* window = static_cast<Widget*>(id);
  if (!IsMouse(message)) return 0;
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
  if (!IsMouse(message)) return 0;
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

// The mouse on a scroll bar, in pixels from its end with the lowest value.
struct BarGrip {
  BarLayout layout;
  int at = 0;            // the mouse
  int64_t position = 0;  // of the slider
  int64_t low = 0, range = 0;
  int64_t thumb = 0;  // its near edge
  int travel = 1;
};

BarGrip GripOf(const Widget* bar, const XPMouseState_t& mouse) {
  BarGrip grip;
  grip.layout = LayoutOf(bar);
  grip.at = grip.layout.lying ? mouse.x - bar->box.left : mouse.y - bar->box.bottom;
  grip.position = Whole(bar, xpProperty_ScrollBarSliderPosition);
  grip.low = Whole(bar, xpProperty_ScrollBarMin);
  grip.range = std::max<int64_t>(0, Whole(bar, xpProperty_ScrollBarMax) - grip.low);
  grip.travel = std::max(1, grip.layout.Travel());
  grip.thumb = grip.layout.arrow + (grip.range ? (grip.position - grip.low) * grip.travel / grip.range : 0);
  return grip;
}

// On an arrow a step, beside the thumb a page, on the thumb it is taken along.
void PressBar(Widget* bar, const BarGrip& grip) {
  const int64_t page = std::max<int64_t>(1, Whole(bar, xpProperty_ScrollBarPageAmount));
  SetProperty(bar, xpProperty_Dragging, 0);
  if (grip.at < grip.layout.arrow) return MoveSlider(bar, grip.position - 1);
  if (grip.at > grip.layout.length - grip.layout.arrow) return MoveSlider(bar, grip.position + 1);
  if (grip.at < grip.thumb) return MoveSlider(bar, grip.position - page);
  if (grip.at > grip.thumb + grip.layout.size) return MoveSlider(bar, grip.position + page);
  SetProperty(bar, xpProperty_Dragging, 1);
  SetProperty(bar, xpProperty_ScrollBarSlop, static_cast<intptr_t>(grip.at - grip.thumb));
}

void DragBar(Widget* bar, const BarGrip& grip) {
  if (!Property(bar, xpProperty_Dragging)) return;
  const int64_t moved = grip.at - Whole(bar, xpProperty_ScrollBarSlop) - grip.layout.arrow;
  const int64_t travel = grip.travel;
  MoveSlider(bar, grip.low + (std::clamp<int64_t>(moved, 0, travel) * grip.range + travel / 2) / travel);
}

int ScrollBarFunction(XPWidgetMessage message, XPWidgetID id, intptr_t param1, intptr_t) {
  Widget* bar = static_cast<Widget*>(id);
  if (!IsMouse(message) && message != xpMsg_MouseWheel) return 0;
  if (!IsEnabled(bar)) return 1;
  const XPMouseState_t& mouse = *reinterpret_cast<const XPMouseState_t*>(param1);
  const BarGrip grip = GripOf(bar, mouse);
  if (message == xpMsg_MouseWheel) MoveSlider(bar, grip.position + mouse.delta);
  if (message == xpMsg_MouseDown) PressBar(bar, grip);
  if (message == xpMsg_MouseDrag) DragBar(bar, grip);
  if (message == xpMsg_MouseUp) SetProperty(bar, xpProperty_Dragging, 0);
  return 1;
}

// Classes that only show something: clicks go on to the window.
int PlainFunction(XPWidgetMessage, XPWidgetID, intptr_t, intptr_t) { return 0; }

constexpr ClassRow classRows[] = {
    {.type = xpWidgetClass_None, .word = "custom"},
    {.type = xpWidgetClass_MainWindow, .word = "window", .function = MainWindowFunction},
    {.type = xpWidgetClass_SubWindow, .word = "subwindow", .function = PlainFunction},
    {.type = xpWidgetClass_Button, .word = "button", .function = ButtonFunction},
    {.type = xpWidgetClass_TextField, .word = "textfield", .function = TextFieldFunction},
    {.type = xpWidgetClass_ScrollBar, .word = "scrollbar", .function = ScrollBarFunction},
    {.type = xpWidgetClass_Caption, .word = "caption", .function = PlainFunction},
    {.type = xpWidgetClass_GeneralGraphics, .word = "graphics", .function = PlainFunction},
    {.type = xpWidgetClass_Progress, .word = "progress", .function = PlainFunction},
};
static_assert(IsTableOf<&ClassRow::type>(classRows, xpWidgetClass_Progress));

}  // namespace

Rect CloseBox(const Widget* window, int k) {
  const int left = k == 0 ? window->box.left + kCloseBoxGap : window->box.right - kCloseBoxGap - kCloseBoxSize;
  const int top = window->box.top - kCloseBoxGap;
  return {left, top, left + kCloseBoxSize, top - kCloseBoxSize};
}

BarLayout LayoutOf(const Widget* bar) {
  BarLayout layout;
  layout.lying = bar->box.Width() > bar->box.Height();
  layout.size = layout.lying ? bar->box.Height() : bar->box.Width();
  layout.length = layout.lying ? bar->box.Width() : bar->box.Height();
  layout.arrows = Property(bar, xpProperty_ScrollBarType) == xpScrollBarTypeScrollBar;
  layout.arrow = layout.arrows ? layout.size : 0;
  return layout;
}

const ClassRow& ClassOf(XPWidgetClass type) {
  const bool exists = type > xpWidgetClass_None && type <= xpWidgetClass_Progress;
  return classRows[exists ? type : xpWidgetClass_None];
}

}  // namespace sim
