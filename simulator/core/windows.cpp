// Windows that plug-ins draw themselves, and whose turn the keyboard is. There is no screen: a visible window's
// draw function is called once a frame, nothing comes of it, and no mouse or key reaches a window.
#include <algorithm>
#include <utility>

#include "XPLMDisplay.h"
#include "core/core.h"
#include "core/display.h"

namespace sim {
namespace {

struct Window {
  int owner;
  XPLMCreateWindow_t as;  // as it was made, then as it was changed
};
std::vector<std::unique_ptr<Window>> windows;  // the front one first
Window* withKeyboard = nullptr;
int screenWidth = 0, screenHeight = 0;

// The record of a handle. One that is none crashes the real simulator.
Window* Known(const char* function, XPLMWindowID id) {
  for (auto& window : windows) {
    if (window.get() == id) return window.get();
  }
  Breach(function, "no such window");
  return nullptr;
}

bool Exists(const Window* window) {
  return std::any_of(windows.begin(), windows.end(), [&](auto& other) { return other.get() == window; });
}

void Forget(Window* window) {
  if (withKeyboard == window) withKeyboard = nullptr;
  std::erase_if(windows, [&](auto& other) { return other.get() == window; });
}

}  // namespace

void DrawWindows() {
  std::vector<Window*> order;  // the list may change meanwhile
  for (auto& window : windows) order.insert(order.begin(), window.get());
  for (Window* window : order) {
    if (!Exists(window) || !window->as.visible || !window->as.drawWindowFunc || !MayCall(window->owner))
      continue;
    NothingThrown(window->owner, "a window's draw function",
                  [&] { window->as.drawWindowFunc(window, window->as.refcon); });
  }
}

void ResetWindows() {
  windows.clear();
  withKeyboard = nullptr;
  SetScreen(1024, 768);
}

void SetScreen(int width, int height) {
  screenWidth = width;
  screenHeight = height;
}

void GetScreen(int* width, int* height) {
  *width = screenWidth;
  *height = screenHeight;
}

int DropWindows(int owner, std::string*) {
  int dropped = 0;
  for (size_t i = windows.size(); i-- > 0;) {
    if (windows[i]->owner != owner) continue;
    Forget(windows[i].get());
    ++dropped;
  }
  return dropped;
}

}  // namespace sim

using sim::Known;

XPLMWindowID XPLMCreateWindowEx(XPLMCreateWindow_t* params) {
  sim::Check("XPLMCreateWindowEx");
  if (!params || params->structSize < static_cast<int>(sizeof *params)) return nullptr;
  auto window = std::make_unique<sim::Window>(sim::Window{sim::CallingPlugin(), *params});
  sim::windows.insert(sim::windows.begin(), std::move(window));
  return sim::windows.front().get();
}

XPLMWindowID XPLMCreateWindow(int left, int top, int right, int bottom, int visible, XPLMDrawWindow_f draw,
                              XPLMHandleKey_f key, XPLMHandleMouseClick_f mouse, void* ref) {
  sim::Check("XPLMCreateWindow");
  XPLMCreateWindow_t params = {.structSize = static_cast<int>(sizeof params),
                               .left = left,
                               .top = top,
                               .right = right,
                               .bottom = bottom,
                               .visible = visible,
                               .drawWindowFunc = draw,
                               .handleMouseClickFunc = mouse,
                               .handleKeyFunc = key,
                               .handleCursorFunc = nullptr,
                               .handleMouseWheelFunc = nullptr,
                               .refcon = ref};
  return XPLMCreateWindowEx(&params);
}

void XPLMDestroyWindow(XPLMWindowID id) {
  sim::Check("XPLMDestroyWindow");
  if (sim::Window* window = Known("XPLMDestroyWindow", id)) sim::Forget(window);
}

void XPLMGetWindowGeometry(XPLMWindowID id, int* left, int* top, int* right, int* bottom) {
  sim::Check("XPLMGetWindowGeometry");
  const sim::Window* window = Known("XPLMGetWindowGeometry", id);
  if (!window) return;
  if (left) *left = window->as.left;
  if (top) *top = window->as.top;
  if (right) *right = window->as.right;
  if (bottom) *bottom = window->as.bottom;
}

void XPLMSetWindowGeometry(XPLMWindowID id, int left, int top, int right, int bottom) {
  sim::Check("XPLMSetWindowGeometry");
  sim::Window* window = Known("XPLMSetWindowGeometry", id);
  if (!window) return;
  window->as.left = left;
  window->as.top = top;
  window->as.right = right;
  window->as.bottom = bottom;
}

int XPLMGetWindowIsVisible(XPLMWindowID id) {
  sim::Check("XPLMGetWindowIsVisible");
  const sim::Window* window = Known("XPLMGetWindowIsVisible", id);
  return window && window->as.visible;
}

void XPLMSetWindowIsVisible(XPLMWindowID id, int visible) {
  sim::Check("XPLMSetWindowIsVisible");
  if (sim::Window* window = Known("XPLMSetWindowIsVisible", id)) window->as.visible = visible != 0;
}

void* XPLMGetWindowRefCon(XPLMWindowID id) {
  sim::Check("XPLMGetWindowRefCon");
  const sim::Window* window = Known("XPLMGetWindowRefCon", id);
  return window ? window->as.refcon : nullptr;
}

void XPLMSetWindowRefCon(XPLMWindowID id, void* ref) {
  sim::Check("XPLMSetWindowRefCon");
  if (sim::Window* window = Known("XPLMSetWindowRefCon", id)) window->as.refcon = ref;
}

void XPLMTakeKeyboardFocus(XPLMWindowID id) {
  sim::Check("XPLMTakeKeyboardFocus");
  sim::Window* window = id ? Known("XPLMTakeKeyboardFocus", id) : nullptr;
  sim::Window* before = std::exchange(sim::withKeyboard, window);
  if (!before || before == window || !before->as.handleKeyFunc || !sim::MayCall(before->owner)) return;
  sim::InPlugin inside(before->owner);
  before->as.handleKeyFunc(before, 0, 0, 0, before->as.refcon, 1);
}

void XPLMBringWindowToFront(XPLMWindowID id) {
  sim::Check("XPLMBringWindowToFront");
  const sim::Window* wanted = Known("XPLMBringWindowToFront", id);
  const auto found = std::find_if(sim::windows.begin(), sim::windows.end(),
                                  [&](auto& window) { return window.get() == wanted; });
  if (wanted) std::rotate(sim::windows.begin(), found, found + 1);
}

int XPLMIsWindowInFront(XPLMWindowID id) {
  sim::Check("XPLMIsWindowInFront");
  const sim::Window* window = Known("XPLMIsWindowInFront", id);
  return window && window == sim::windows.front().get();
}
