// Callbacks that draw, functions that draw, key sniffers and hot keys. Callbacks are called in their order
// though nothing is drawn; no key is ever pressed, so that sniffers and hot keys are only kept.
#include <algorithm>

#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "core/core.h"
#include "core/display.h"

namespace sim {
namespace {

struct DrawHook {
  int owner;
  XPLMDrawCallback_f fn;
  XPLMDrawingPhase phase;
  bool before;
  void* ref;
  bool operator==(const DrawHook&) const = default;
};
std::vector<DrawHook> drawHooks;

struct Sniffer {
  int owner;
  XPLMKeySniffer_f fn;
  bool before;
  void* ref;
  bool operator==(const Sniffer&) const = default;
};
std::vector<Sniffer> sniffers;

struct HotKey {
  int owner;
  char virtualKey;
  XPLMKeyFlags flags;
  std::string description;
  XPLMHotKey_f fn;
  void* ref;
};
std::vector<std::unique_ptr<HotKey>> hotKeys;

bool drawing = false;  // a drawing callback may be running
int lastTexture = 0;

// The maps' phases are not among them: no map is shown.
constexpr XPLMDrawingPhase phases[] = {xplm_Phase_FirstScene, xplm_Phase_Terrain,      xplm_Phase_Airports,
                                       xplm_Phase_Vectors,    xplm_Phase_Objects,      xplm_Phase_Airplanes,
                                       xplm_Phase_LastScene,  xplm_Phase_FirstCockpit, xplm_Phase_Panel,
                                       xplm_Phase_Gauges,     xplm_Phase_Window,       xplm_Phase_LastCockpit};

void Draw(XPLMDrawingPhase phase, bool before) {
  const std::vector<DrawHook> now = drawHooks;  // the list may change meanwhile
  for (const DrawHook& hook : now) {
    if (hook.phase != phase || hook.before != before || !MayCall(hook.owner)) continue;
    if (std::find(drawHooks.begin(), drawHooks.end(), hook) == drawHooks.end()) continue;
    NothingThrown(hook.owner, "a drawing callback", [&] { hook.fn(phase, before, hook.ref); });
  }
}

template <class Hook>
int Remove(std::vector<Hook>* hooks, const Hook& hook) {
  const auto found = std::find(hooks->begin(), hooks->end(), hook);
  if (found == hooks->end()) return 0;
  hooks->erase(found);
  return 1;
}

HotKey* Known(XPLMHotKeyID id) {
  for (auto& hotKey : hotKeys) {
    if (hotKey.get() == id) return hotKey.get();
  }
  return nullptr;
}

}  // namespace

void CheckDrawing(const char* function) {
  CheckCaller(function);
  if (!drawing) Breach(function, "called outside of the drawing callbacks");
}

void SetDrawing(bool on) { drawing = on; }

void DrawFrame() {
  PlaceCamera();
  drawing = true;
  for (const XPLMDrawingPhase phase : phases) {
    Draw(phase, true);
    if (phase == xplm_Phase_Window) DrawWindows();
    Draw(phase, false);
  }
  drawing = false;
}

void ResetDisplay() {
  drawHooks.clear();
  sniffers.clear();
  hotKeys.clear();
  lastTexture = 0;
  ResetWindows();
  ResetCamera();
}

int DropDrawCallbacks(int owner, std::string*) {
  return static_cast<int>(std::erase_if(drawHooks, [&](auto& hook) { return hook.owner == owner; }));
}

int DropKeySniffers(int owner, std::string*) {
  return static_cast<int>(std::erase_if(sniffers, [&](auto& sniffer) { return sniffer.owner == owner; }));
}

int DropHotKeys(int owner, std::string* which) {
  return static_cast<int>(std::erase_if(hotKeys, [&](auto& hotKey) {
    if (hotKey->owner == owner) *which = hotKey->description;
    return hotKey->owner == owner;
  }));
}

}  // namespace sim

int XPLMRegisterDrawCallback(XPLMDrawCallback_f fn, XPLMDrawingPhase phase, int before, void* ref) {
  sim::Check("XPLMRegisterDrawCallback");
  if (fn) sim::drawHooks.push_back({sim::CallingPlugin(), fn, phase, before != 0, ref});
  return fn != nullptr;
}

int XPLMUnregisterDrawCallback(XPLMDrawCallback_f fn, XPLMDrawingPhase phase, int before, void* ref) {
  sim::Check("XPLMUnregisterDrawCallback");
  return sim::Remove(&sim::drawHooks, {sim::CallingPlugin(), fn, phase, before != 0, ref});
}

int XPLMRegisterKeySniffer(XPLMKeySniffer_f fn, int before, void* ref) {
  sim::Check("XPLMRegisterKeySniffer");
  if (fn) sim::sniffers.push_back({sim::CallingPlugin(), fn, before != 0, ref});
  return fn != nullptr;
}

int XPLMUnregisterKeySniffer(XPLMKeySniffer_f fn, int before, void* ref) {
  sim::Check("XPLMUnregisterKeySniffer");
  return sim::Remove(&sim::sniffers, {sim::CallingPlugin(), fn, before != 0, ref});
}

XPLMHotKeyID XPLMRegisterHotKey(char virtualKey, XPLMKeyFlags flags, const char* description, XPLMHotKey_f fn,
                                void* ref) {
  sim::Check("XPLMRegisterHotKey");
  if (!fn) return nullptr;
  sim::hotKeys.push_back(std::make_unique<sim::HotKey>(
      sim::HotKey{sim::CallingPlugin(), virtualKey, flags, description ? description : "", fn, ref}));
  return sim::hotKeys.back().get();
}

void XPLMUnregisterHotKey(XPLMHotKeyID id) {
  sim::Check("XPLMUnregisterHotKey");
  std::erase_if(sim::hotKeys, [&](auto& hotKey) { return hotKey.get() == id; });
}

int XPLMCountHotKeys(void) {
  sim::Check("XPLMCountHotKeys");
  return static_cast<int>(sim::hotKeys.size());
}

XPLMHotKeyID XPLMGetNthHotKey(int index) {
  sim::Check("XPLMGetNthHotKey");
  if (index < 0 || static_cast<size_t>(index) >= sim::hotKeys.size()) return nullptr;
  return sim::hotKeys[static_cast<size_t>(index)].get();
}

void XPLMGetHotKeyInfo(XPLMHotKeyID id, char* virtualKey, XPLMKeyFlags* flags, char* description,
                       XPLMPluginID* plugin) {
  sim::Check("XPLMGetHotKeyInfo");
  const sim::HotKey* hotKey = sim::Known(id);
  if (!hotKey) return;
  if (virtualKey) *virtualKey = hotKey->virtualKey;
  if (flags) *flags = hotKey->flags;
  sim::CopyText(hotKey->description, description, 512);
  if (plugin) *plugin = hotKey->owner;
}

void XPLMSetHotKeyCombination(XPLMHotKeyID id, char virtualKey, XPLMKeyFlags flags) {
  sim::Check("XPLMSetHotKeyCombination");
  sim::HotKey* hotKey = sim::Known(id);
  if (!hotKey) return;
  hotKey->virtualKey = virtualKey;
  hotKey->flags = flags;
}

void XPLMSetGraphicsState(int, int, int, int, int, int, int) { sim::Check("XPLMSetGraphicsState"); }
void XPLMBindTexture2d(int, int) { sim::Check("XPLMBindTexture2d"); }

void XPLMGenerateTextureNumbers(int* textures, int count) {
  sim::Check("XPLMGenerateTextureNumbers");
  for (int i = 0; textures && i < count; ++i) textures[i] = ++sim::lastTexture;
}

// The simulator's own have none: nothing was ever drawn.
int XPLMGetTexture(XPLMTextureID) {
  sim::Check("XPLMGetTexture");
  return 0;
}

void XPLMDrawTranslucentDarkBox(int, int, int, int) { sim::CheckDrawing("XPLMDrawTranslucentDarkBox"); }
void XPLMDrawString(float*, int, int, char*, int*, XPLMFontID) { sim::CheckDrawing("XPLMDrawString"); }
void XPLMDrawNumber(float*, int, int, double, int, int, int, XPLMFontID) {
  sim::CheckDrawing("XPLMDrawNumber");
}

void XPLMGetFontDimensions(XPLMFontID, int* width, int* height, int* digitsOnly) {
  sim::Check("XPLMGetFontDimensions");
  if (width) *width = sim::kLetterWidth;
  if (height) *height = sim::kLetterHeight;
  if (digitsOnly) *digitsOnly = 0;
}

float XPLMMeasureString(XPLMFontID, const char* text, int length) {
  sim::Check("XPLMMeasureString");
  if (sim::Fails("XPLMMeasureString")) return 0;
  return text && length > 0 ? static_cast<float>(length * sim::kLetterWidth) : 0;
}
