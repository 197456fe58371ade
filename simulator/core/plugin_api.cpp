// The exported functions about plug-ins, messages and features.
#include <cstring>

#include "core/core.h"
#include "core/more_api.h"

namespace sim {
namespace {

Plugin* Caller() { return FindPlugin(CallingPlugin()); }

// The switch of a feature in a plug-in's record; null for features that this simulator does not know.
bool Plugin::*Feature(const char* name) {
  if (!name) return nullptr;
  if (std::strcmp(name, "XPLM_USE_NATIVE_PATHS") == 0) return &Plugin::nativePaths;
  if (std::strcmp(name, "XPLM_WANTS_REFLECTIONS") == 0) return &Plugin::reflections;
  return nullptr;
}

}  // namespace
}  // namespace sim

XPLMPluginID XPLMGetMyID(void) {
  sim::Check("XPLMGetMyID");
  return sim::CallingPlugin();
}

int XPLMCountPlugins(void) {
  sim::Check("XPLMCountPlugins");
  return static_cast<int>(sim::plugins.size());
}

XPLMPluginID XPLMGetNthPlugin(int index) {
  sim::Check("XPLMGetNthPlugin");
  if (index < 0 || static_cast<size_t>(index) >= sim::plugins.size()) return XPLM_NO_PLUGIN_ID;
  return sim::plugins[static_cast<size_t>(index)]->id;
}

XPLMPluginID XPLMFindPluginByPath(const char* path) {
  sim::Check("XPLMFindPluginByPath");
  std::string wanted = sim::AbsolutePath(path ? path : "");
  for (auto& plugin : sim::plugins) {
    if (plugin->file == wanted) return plugin->id;
  }
  return XPLM_NO_PLUGIN_ID;
}

XPLMPluginID XPLMFindPluginBySignature(const char* signature) {
  sim::Check("XPLMFindPluginBySignature");
  if (sim::Fails("XPLMFindPluginBySignature")) return XPLM_NO_PLUGIN_ID;
  sim::Plugin* plugin = signature ? sim::FindPluginBySignature(signature) : nullptr;
  return plugin ? plugin->id : XPLM_NO_PLUGIN_ID;
}

void XPLMGetPluginInfo(XPLMPluginID id, char* name, char* path, char* signature, char* description) {
  sim::Check("XPLMGetPluginInfo");
  sim::Plugin* plugin = sim::FindPlugin(id);
  bool host = id == XPLM_PLUGIN_XPLANE;
  sim::CopyText(plugin ? plugin->name : host ? "X-System" : "", name, 256);
  if (path) sim::StorePath(plugin ? plugin->file : host ? sim::SystemFolder() : "", path, 256);
  sim::CopyText(plugin ? plugin->signature : host ? "standin.simulator" : "", signature, 256);
  sim::CopyText(plugin ? plugin->description : host ? "The simulator itself" : "", description, 256);
}

int XPLMIsPluginEnabled(XPLMPluginID id) {
  sim::Check("XPLMIsPluginEnabled");
  return sim::PluginEnabled(id);
}

int XPLMEnablePlugin(XPLMPluginID id) {
  sim::Check("XPLMEnablePlugin");
  return sim::EnablePlugin(id);
}

void XPLMDisablePlugin(XPLMPluginID id) {
  sim::Check("XPLMDisablePlugin");
  sim::DisablePlugin(id);
}

void XPLMReloadPlugins(void) {
  sim::Check("XPLMReloadPlugins");
  sim::reloadWanted = true;
}

void XPLMSendMessageToPlugin(XPLMPluginID to, int message, void* param) {
  sim::Check("XPLMSendMessageToPlugin");
  intptr_t value = reinterpret_cast<intptr_t>(param);
  sim::LogCall("plugin-message " + sim::FormatInt(message) + ' ' + sim::FormatInt(value));
  sim::SendPluginMessage(sim::CallingPlugin(), to, message, value);
}

int XPLMHasFeature(const char* feature) {
  sim::Check("XPLMHasFeature");
  return sim::Feature(feature) != nullptr;
}

int XPLMIsFeatureEnabled(const char* feature) {
  sim::Check("XPLMIsFeatureEnabled");
  auto which = sim::Feature(feature);
  sim::Plugin* plugin = sim::Caller();
  return which && plugin && plugin->*which;
}

void XPLMEnableFeature(const char* feature, int enable) {
  sim::Check("XPLMEnableFeature");
  auto which = sim::Feature(feature);
  sim::Plugin* plugin = sim::Caller();
  if (which && plugin) plugin->*which = enable != 0;
}

void XPLMEnumerateFeatures(XPLMFeatureEnumerator_f fn, void* ref) {
  sim::Check("XPLMEnumerateFeatures");
  for (const char* feature : {"XPLM_WANTS_REFLECTIONS", "XPLM_USE_NATIVE_PATHS"}) {
    if (fn) fn(feature, ref);
  }
}
