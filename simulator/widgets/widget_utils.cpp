// Helpers that plug-ins call from their own widget callbacks.
#include "core/sim.h"
#include "widgets/widgets.h"

using namespace sim;

void XPUCreateWidgets(const XPWidgetCreate_t* defs, int count, XPWidgetID paramParent, XPWidgetID* ids) {
  CheckCaller("XPUCreateWidgets");
  for (int i = 0; i < count; ++i) {
    const XPWidgetCreate_t& row = defs[i];
    XPWidgetID container = nullptr;
    if (row.containerIndex == PARAM_PARENT) container = paramParent;
    if (row.containerIndex >= i) Breach("XPUCreateWidgets", "a row names a later row as its container");
    if (row.containerIndex >= 0 && row.containerIndex < i) container = ids[row.containerIndex];
    ids[i] = XPCreateWidget(row.left, row.top, row.right, row.bottom, row.visible, row.descriptor, row.isRoot,
                            container, row.widgetClass);
  }
}

void XPUMoveWidgetBy(XPWidgetID widget, int dx, int dy) {
  CheckCaller("XPUMoveWidgetBy");
  Rect box;
  XPGetWidgetGeometry(widget, &box.left, &box.top, &box.right, &box.bottom);
  XPSetWidgetGeometry(widget, box.left + dx, box.top + dy, box.right + dx, box.bottom + dy);
}

int XPUFixedLayout(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t param2) {
  CheckCaller("XPUFixedLayout");
  Widget* w = static_cast<Widget*>(widget);
  // Reshapes of the children come up the chain as well and must not move their siblings.
  if (message != xpMsg_Reshape || AsWidget(param1) != w || !IsLive(w)) return 0;
  const XPWidgetGeometryChange_t change = *reinterpret_cast<const XPWidgetGeometryChange_t*>(param2);
  Hold hold;
  const std::vector<Widget*> children = w->children;
  for (Widget* child : children) {
    if (!IsLive(child)) continue;
    Rect box = child->box;
    box.left += change.dx;
    box.right += change.dx;
    box.top += change.dy;
    box.bottom += change.dy;
    SetBox(child, box);
  }
  return 1;
}

int XPUSelectIfNeeded(XPWidgetMessage message, XPWidgetID widget, intptr_t, intptr_t, int eatClick) {
  CheckCaller("XPUSelectIfNeeded");
  Widget* w = static_cast<Widget*>(widget);
  if (message != xpMsg_MouseDown || !IsLive(w) || IsInFront(w)) return 0;
  BringToFront(w);
  return eatClick ? 1 : 0;
}

int XPUDefocusKeyboard(XPWidgetMessage message, XPWidgetID, intptr_t, intptr_t, int eatClick) {
  CheckCaller("XPUDefocusKeyboard");
  if (message != xpMsg_MouseDown || !keyboardFocus) return 0;
  SetFocus(nullptr);
  return eatClick ? 1 : 0;
}

int XPUDragWidget(XPWidgetMessage message, XPWidgetID widget, intptr_t param1, intptr_t, int left, int top,
                  int right, int bottom) {
  CheckCaller("XPUDragWidget");
  Widget* w = static_cast<Widget*>(widget);
  if (message != xpMsg_MouseDown && message != xpMsg_MouseDrag && message != xpMsg_MouseUp) return 0;
  if (!IsLive(w)) return 0;
  const XPMouseState_t& mouse = *reinterpret_cast<const XPMouseState_t*>(param1);
  if (message == xpMsg_MouseDown) {
    if (!Rect{left, top, right, bottom}.Holds(mouse.x, mouse.y)) return 0;
    SetProperty(w, xpProperty_Dragging, 1);
    SetProperty(w, xpProperty_DragXOff, mouse.x - w->box.left);
    SetProperty(w, xpProperty_DragYOff, mouse.y - w->box.bottom);
    return 1;
  }
  if (!Property(w, xpProperty_Dragging)) return 0;
  if (message == xpMsg_MouseUp) {
    SetProperty(w, xpProperty_Dragging, 0);
    return 1;
  }
  Rect box = w->box;
  box.left = mouse.x - static_cast<int>(Property(w, xpProperty_DragXOff));
  box.bottom = mouse.y - static_cast<int>(Property(w, xpProperty_DragYOff));
  box.right = box.left + w->box.Width();
  box.top = box.bottom + w->box.Height();
  SetBox(w, box);
  return 1;
}
