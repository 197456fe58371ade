// Records of all widgets, message dispatch, creation and destruction, families, geometry, properties.
#include <algorithm>
#include <cstring>
#include <unordered_set>

#include "core/sim.h"
#include "widgets/widgets.h"

namespace sim {

std::vector<Widget*> roots;
Widget* keyboardFocus = nullptr;

namespace {

std::unordered_set<const Widget*> live;
std::vector<Widget*> graveyard;  // destroyed while a Hold exists
int holds = 0;

// The record behind a handle, or null. The null handle is harmless; a destroyed one is what crashes the
// real simulator, sooner or later.
Widget* Check(XPWidgetID id, const char* function) {
  CheckCaller(function);
  Widget* widget = static_cast<Widget*>(id);
  if (widget && !live.count(widget)) {
    Breach(function, "the widget does not exist (any more)");
    return nullptr;
  }
  return widget;
}

int SendDirect(Widget* widget, XPWidgetMessage message, intptr_t param1, intptr_t param2, bool all) {
  const std::vector<XPWidgetFunc_t> chain = widget->callbacks;  // a callback may add another one
  int handled = 0;
  for (size_t i = chain.size(); i-- > 0 && live.count(widget);) {
    if (chain[i](message, widget, param1, param2)) handled = 1;
    if (handled && !all) break;
  }
  return handled;
}

int SendRecursive(Widget* widget, XPWidgetMessage message, intptr_t param1, intptr_t param2) {
  int handled = SendDirect(widget, message, param1, param2, false);
  const std::vector<Widget*> children = widget->children;
  for (Widget* child : children) {
    if (live.count(child) && child->parent == widget && SendRecursive(child, message, param1, param2))
      handled = 1;
  }
  return handled;
}

void GatherExposed(Widget* widget, std::vector<std::pair<Widget*, Rect>>* list) {
  list->emplace_back(widget, Exposed(widget));
  for (Widget* child : widget->children) GatherExposed(child, list);
}

void TellExposed(const std::vector<std::pair<Widget*, Rect>>& before) {
  for (const auto& [widget, box] : before) {
    if (live.count(widget) && Exposed(widget) != box) Send(widget, xpMsg_ExposedChanged, xpMode_Direct, 0, 0);
  }
}

void Unlink(Widget* widget) {
  if (!widget->parent) return;
  std::erase(widget->parent->children, widget);
  widget->parent = nullptr;
}

// Puts a widget into a family or, with null, out of any, and tells all three.
void Place(Widget* widget, Widget* container) {
  if (widget->parent == container) return;
  Hold hold;
  std::vector<std::pair<Widget*, Rect>> before;
  GatherExposed(widget, &before);
  Widget* old = widget->parent;
  Unlink(widget);
  widget->parent = container;
  if (container) container->children.push_back(widget);
  if (old && live.count(old)) Send(old, xpMsg_LoseChild, xpMode_Direct, AsParam(widget), 0);
  if (container && live.count(container)) Send(container, xpMsg_AcceptChild, xpMode_Direct, AsParam(widget), 0);
  if (live.count(widget)) Send(widget, xpMsg_AcceptParent, xpMode_Direct, AsParam(container), 0);
  TellExposed(before);
}

Widget* Create(const Rect& box, bool visible, const char* text, bool root, Widget* container,
               XPWidgetClass type, XPWidgetFunc_t function) {
  Hold hold;
  Widget* widget = new Widget;
  widget->type = type;
  widget->root = root;
  widget->visible = visible;
  widget->box = box;
  widget->text = text ? text : "";
  live.insert(widget);
  if (function) widget->callbacks.push_back(function);
  if (root) roots.insert(roots.begin(), widget);
  Send(widget, xpMsg_Create, xpMode_Direct, 0, 0);
  if (!root && container && live.count(container) && live.count(widget)) Place(widget, container);
  return live.count(widget) ? widget : nullptr;
}

// The parent hears of it before its children, whose handles are still good then.
void Destroy(Widget* widget, bool children, bool throughParent) {
  if (widget->dying) return;
  widget->dying = true;
  if (keyboardFocus && (keyboardFocus == widget || (children && IsWithin(keyboardFocus, widget))))
    SetFocus(nullptr);
  Send(widget, xpMsg_Destroy, xpMode_DirectAllCallbacks, throughParent, 0);
  while (!widget->children.empty()) {
    Widget* child = widget->children.back();
    if (children) {
      Destroy(child, true, true);
      Unlink(child);  // still linked when its own destruction brought us here
    } else {
      Unlink(child);
      Send(child, xpMsg_AcceptParent, xpMode_Direct, 0, 0);
    }
  }
  Widget* parent = widget->parent;
  Unlink(widget);
  std::erase(roots, widget);
  if (keyboardFocus == widget) keyboardFocus = nullptr;  // taken again by its own last callback
  live.erase(widget);
  graveyard.push_back(widget);
  if (parent && !throughParent && live.count(parent))
    Send(parent, xpMsg_LoseChild, xpMode_Direct, AsParam(widget), 0);
}

}  // namespace

Hold::Hold() { ++holds; }

Hold::~Hold() {
  if (--holds > 0) return;
  for (Widget* widget : graveyard) delete widget;
  graveyard.clear();
}

bool IsLive(const Widget* widget) { return live.count(widget) > 0; }

int WidgetCount() { return static_cast<int>(live.size()); }

void PurgeWidgets() {
  for (const Widget* widget : live) delete widget;
  live.clear();
  roots.clear();
  keyboardFocus = nullptr;
}

int Send(Widget* widget, XPWidgetMessage message, XPDispatchMode mode, intptr_t param1, intptr_t param2) {
  Hold hold;
  switch (mode) {
    case xpMode_Direct:
      return SendDirect(widget, message, param1, param2, false);
    case xpMode_UpChain:
      for (Widget* at = widget; at && live.count(at); at = at->parent) {
        if (SendDirect(at, message, param1, param2, false)) return 1;
      }
      return 0;
    case xpMode_Recursive:
      return SendRecursive(widget, message, param1, param2);
    case xpMode_DirectAllCallbacks:
      return SendDirect(widget, message, param1, param2, true);
    case xpMode_Once:
      return !widget->callbacks.empty() && widget->callbacks.back()(message, widget, param1, param2) ? 1 : 0;
    default:
      return 0;
  }
}

intptr_t Property(const Widget* widget, XPWidgetPropertyID id) {
  const auto found = widget->properties.find(id);
  return found == widget->properties.end() ? 0 : found->second;
}

void SetProperty(Widget* widget, XPWidgetPropertyID id, intptr_t value) {
  const auto [entry, isNew] = widget->properties.try_emplace(id, value);
  if (!isNew && entry->second == value) return;
  entry->second = value;
  Send(widget, xpMsg_PropertyChanged, xpMode_Direct, id, value);
}

void SetText(Widget* widget, const std::string& text) {
  if (widget->text == text) return;
  widget->text = text;
  Send(widget, xpMsg_DescriptorChanged, xpMode_Direct, 0, 0);
}

void SetBox(Widget* widget, const Rect& box) {
  if (widget->box == box) return;
  Hold hold;
  std::vector<std::pair<Widget*, Rect>> before;
  GatherExposed(widget, &before);
  XPWidgetGeometryChange_t change = {box.left - widget->box.left, box.bottom - widget->box.bottom,
                                     box.Width() - widget->box.Width(), box.Height() - widget->box.Height()};
  widget->box = box;
  TellExposed(before);
  if (live.count(widget)) Send(widget, xpMsg_Reshape, xpMode_UpChain, AsParam(widget), AsParam(&change));
}

bool IsEnabled(const Widget* widget) {
  return !widget->properties.count(xpProperty_Enabled) || Property(widget, xpProperty_Enabled);
}

bool IsVisible(const Widget* widget) {
  for (; widget && widget->visible; widget = widget->parent) {
    if (widget->root) return true;
  }
  return false;
}

Widget* RootOf(Widget* widget) {
  while (widget && !widget->root) widget = widget->parent;
  return widget;
}

bool IsWithin(const Widget* widget, const Widget* ancestor) {
  while (widget && widget != ancestor) widget = widget->parent;
  return widget != nullptr;
}

void BringToFront(Widget* widget) {
  Widget* root = RootOf(widget);
  if (!root) return;
  std::erase(roots, root);
  roots.insert(roots.begin(), root);
}

bool IsInFront(Widget* widget) {
  const auto front = std::find_if(roots.begin(), roots.end(), [](const Widget* w) { return w->visible; });
  return front != roots.end() && *front == RootOf(widget);
}

Rect Exposed(const Widget* widget) {
  Rect box = widget->box;
  for (widget = widget->parent; widget; widget = widget->parent) {
    box.left = std::max(box.left, widget->box.left);
    box.bottom = std::max(box.bottom, widget->box.bottom);
    box.right = std::min(box.right, widget->box.right);
    box.top = std::min(box.top, widget->box.top);
  }
  return box.left > box.right || box.bottom > box.top ? Rect() : box;
}

Widget* WidgetAt(Widget* container, int x, int y, bool recursive, bool visibleOnly) {
  if (!container->box.Holds(x, y) || (visibleOnly && !container->visible)) return nullptr;
  for (size_t i = container->children.size(); i-- > 0;) {
    Widget* child = container->children[i];
    if (!child->box.Holds(x, y) || (visibleOnly && !child->visible)) continue;
    return recursive ? WidgetAt(child, x, y, true, visibleOnly) : child;
  }
  return container;
}

}  // namespace sim

using namespace sim;

XPWidgetID XPCreateWidget(int left, int top, int right, int bottom, int visible, const char* descriptor,
                          int isRoot, XPWidgetID container, XPWidgetClass widgetClass) {
  Widget* parent = Check(container, "XPCreateWidget");
  if (Fails("XPCreateWidget")) return nullptr;
  XPWidgetFunc_t function = ClassOf(widgetClass).function;
  if (!function) return nullptr;
  return Create({left, top, right, bottom}, visible != 0, descriptor, isRoot != 0, parent, widgetClass,
                function);
}

XPWidgetID XPCreateCustomWidget(int left, int top, int right, int bottom, int visible, const char* descriptor,
                                int isRoot, XPWidgetID container, XPWidgetFunc_t fn) {
  Widget* parent = Check(container, "XPCreateCustomWidget");
  return Create({left, top, right, bottom}, visible != 0, descriptor, isRoot != 0, parent, xpWidgetClass_None,
                fn);
}

void XPDestroyWidget(XPWidgetID widget, int destroyChildren) {
  Widget* w = Check(widget, "XPDestroyWidget");
  Hold hold;
  if (w) Destroy(w, destroyChildren != 0, false);
}

int XPSendMessageToWidget(XPWidgetID widget, XPWidgetMessage message, XPDispatchMode mode, intptr_t param1,
                          intptr_t param2) {
  Widget* w = Check(widget, "XPSendMessageToWidget");
  return w ? Send(w, message, mode, param1, param2) : 0;
}

void XPPlaceWidgetWithin(XPWidgetID sub, XPWidgetID container) {
  Widget* w = Check(sub, "XPPlaceWidgetWithin");
  Widget* parent = Check(container, "XPPlaceWidgetWithin");
  if (w && !w->root && !w->dying && !IsWithin(parent, w)) Place(w, parent);
}

int XPCountChildWidgets(XPWidgetID widget) {
  const Widget* w = Check(widget, "XPCountChildWidgets");
  return w ? static_cast<int>(w->children.size()) : 0;
}

XPWidgetID XPGetNthChildWidget(XPWidgetID widget, int index) {
  const Widget* w = Check(widget, "XPGetNthChildWidget");
  if (!w || index < 0 || static_cast<size_t>(index) >= w->children.size()) return nullptr;
  return w->children[static_cast<size_t>(index)];
}

XPWidgetID XPGetParentWidget(XPWidgetID widget) {
  const Widget* w = Check(widget, "XPGetParentWidget");
  return w ? w->parent : nullptr;
}

// Our widgets are drawn without windows below them.
XPLMWindowID XPGetWidgetUnderlyingWindow(XPWidgetID widget) {
  Check(widget, "XPGetWidgetUnderlyingWindow");
  return nullptr;
}

void XPShowWidget(XPWidgetID widget) {
  Widget* w = Check(widget, "XPShowWidget");
  if (!w || w->visible) return;
  w->visible = true;
  Send(w, xpMsg_Shown, xpMode_UpChain, AsParam(w), 0);
}

void XPHideWidget(XPWidgetID widget) {
  Widget* w = Check(widget, "XPHideWidget");
  if (!w || !w->visible) return;
  Hold hold;
  w->visible = false;
  if (keyboardFocus && IsWithin(keyboardFocus, w)) SetFocus(nullptr);
  if (IsLive(w)) Send(w, xpMsg_Hidden, xpMode_UpChain, AsParam(w), 0);
}

int XPIsWidgetVisible(XPWidgetID widget) { return IsVisible(Check(widget, "XPIsWidgetVisible")); }

XPWidgetID XPFindRootWidget(XPWidgetID widget) {
  Widget* w = Check(widget, "XPFindRootWidget");
  return Fails("XPFindRootWidget") ? nullptr : RootOf(w);
}

void XPBringRootWidgetToFront(XPWidgetID widget) { BringToFront(Check(widget, "XPBringRootWidgetToFront")); }

int XPIsWidgetInFront(XPWidgetID widget) {
  Widget* w = Check(widget, "XPIsWidgetInFront");
  return w && IsInFront(w);
}

static void GiveRect(const Rect& box, int* left, int* top, int* right, int* bottom) {
  if (left) *left = box.left;
  if (top) *top = box.top;
  if (right) *right = box.right;
  if (bottom) *bottom = box.bottom;
}

void XPGetWidgetGeometry(XPWidgetID widget, int* left, int* top, int* right, int* bottom) {
  const Widget* w = Check(widget, "XPGetWidgetGeometry");
  GiveRect(w ? w->box : Rect(), left, top, right, bottom);
}

void XPSetWidgetGeometry(XPWidgetID widget, int left, int top, int right, int bottom) {
  Widget* w = Check(widget, "XPSetWidgetGeometry");
  if (w) SetBox(w, {left, top, right, bottom});
}

void XPGetWidgetExposedGeometry(XPWidgetID widget, int* left, int* top, int* right, int* bottom) {
  const Widget* w = Check(widget, "XPGetWidgetExposedGeometry");
  GiveRect(w ? Exposed(w) : Rect(), left, top, right, bottom);
}

XPWidgetID XPGetWidgetForLocation(XPWidgetID container, int x, int y, int recursive, int visibleOnly) {
  Widget* w = Check(container, "XPGetWidgetForLocation");
  if (!w || (visibleOnly && !IsVisible(w))) return nullptr;
  return WidgetAt(w, x, y, recursive != 0, visibleOnly != 0);
}

void XPSetWidgetDescriptor(XPWidgetID widget, const char* text) {
  Widget* w = Check(widget, "XPSetWidgetDescriptor");
  if (w) SetText(w, text ? text : "");
}

int XPGetWidgetDescriptor(XPWidgetID widget, char* out, int max) {
  const Widget* w = Check(widget, "XPGetWidgetDescriptor");
  if (!w || Fails("XPGetWidgetDescriptor")) return 0;
  if (out && max > 0) {
    // c_str's terminator is copied with the text where it finds room, and only there.
    std::memcpy(out, w->text.c_str(), std::min(w->text.size() + 1, static_cast<size_t>(max)));
  }
  return static_cast<int>(w->text.size());
}

void XPSetWidgetProperty(XPWidgetID widget, XPWidgetPropertyID id, intptr_t value) {
  Widget* w = Check(widget, "XPSetWidgetProperty");
  if (w) SetProperty(w, id, value);
}

intptr_t XPGetWidgetProperty(XPWidgetID widget, XPWidgetPropertyID id, int* exists) {
  const Widget* w = Check(widget, "XPGetWidgetProperty");
  if (exists) *exists = w && w->properties.count(id) ? 1 : 0;
  return w ? Property(w, id) : 0;
}

XPWidgetID XPSetKeyboardFocus(XPWidgetID widget) {
  Widget* w = Check(widget, "XPSetKeyboardFocus");
  return Fails("XPSetKeyboardFocus") ? nullptr : SetFocus(w);
}

void XPLoseKeyboardFocus(XPWidgetID widget) {
  Widget* w = Check(widget, "XPLoseKeyboardFocus");
  if (w) LoseFocus(w);
}

XPWidgetID XPGetWidgetWithFocus(void) {
  CheckCaller("XPGetWidgetWithFocus");
  return Fails("XPGetWidgetWithFocus") ? nullptr : keyboardFocus;
}

void XPAddWidgetCallback(XPWidgetID widget, XPWidgetFunc_t fn) {
  Widget* w = Check(widget, "XPAddWidgetCallback");
  if (!w || !fn) return;
  Hold hold;
  w->callbacks.push_back(fn);
  fn(xpMsg_Create, w, 1, 0);
}

XPWidgetFunc_t XPGetWidgetClassFunc(XPWidgetClass widgetClass) {
  CheckCaller("XPGetWidgetClassFunc");
  return ClassOf(widgetClass).function;
}
