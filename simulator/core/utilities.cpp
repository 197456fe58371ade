// Paths, versions, log and the rest of the small exported functions.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "XPLMDisplay.h"
#include "core/core.h"
#include "core/more_api.h"

namespace sim {
namespace {

bool NativePaths() {
  Plugin* plugin = FindPlugin(CallingPlugin());
  return plugin && plugin->nativePaths;
}

}  // namespace

void StorePath(const std::string& path, char* out, size_t size) {
  std::string text = path;
  if (NativePaths()) std::replace(text.begin(), text.end(), '\\', '/');
  CopyText(text, out, size);
}

}  // namespace sim

void XPLMGetSystemPath(char* out) {
  sim::Check("XPLMGetSystemPath");
  const std::string& told = sim::running.reportedRoot;
  sim::StorePath(told.empty() ? sim::SystemFolder() : told, out, 512);
}

void XPLMGetPrefsPath(char* out) {
  sim::Check("XPLMGetPrefsPath");
  std::string separator(1, sim::kSeparator);
  sim::StorePath(sim::SystemFolder() + "Output" + separator + "preferences" + separator + "X-Plane.prf", out,
                 512);
}

const char* XPLMGetDirectorySeparator(void) {
  sim::Check("XPLMGetDirectorySeparator");
  static const char kOwn[] = {sim::kSeparator, 0};
  return sim::NativePaths() ? "/" : kOwn;
}

char* XPLMExtractFileAndPath(char* path) {
  sim::Check("XPLMExtractFileAndPath");
  if (!path) return nullptr;
  char* cut = std::strrchr(path, '/');
  char* other = std::strrchr(path, '\\');
  if (other && (!cut || other > cut)) cut = other;
  if (!cut) return path;
  *cut = 0;
  return cut + 1;
}

int XPLMGetDirectoryContents(const char* directory, int first, char* names, int namesSize, char** indices,
                             int indexCount, int* total, int* returned) {
  sim::Check("XPLMGetDirectoryContents");
  std::vector<std::string> found;
  std::error_code failure;
  std::filesystem::directory_iterator entry(directory ? directory : "", failure), end;
  for (; !failure && entry != end; entry.increment(failure)) found.push_back(entry->path().filename().string());
  std::sort(found.begin(), found.end());
  int all = static_cast<int>(found.size());
  int given = 0, used = 0;
  for (int i = std::max(first, 0); names && i < all; ++i) {
    const std::string& name = found[static_cast<size_t>(i)];
    int size = static_cast<int>(name.size()) + 1;
    if (used + size > namesSize || (indices && given >= indexCount)) break;
    std::memcpy(names + used, name.c_str(), static_cast<size_t>(size));
    if (indices) indices[given] = names + used;
    used += size;
    ++given;
  }
  if (total) *total = all;
  if (returned) *returned = given;
  return std::max(first, 0) + given >= all;
}

void XPLMGetVersions(int* host, int* xplm, XPLMHostApplicationID* hostId) {
  sim::Check("XPLMGetVersions");
  const sim::Version* version = sim::FindVersion(sim::running.version);
  if (host) *host = version->told;
  if (xplm) *xplm = version->api;
  if (hostId) *hostId = xplm_Host_XPlane;
}

XPLMLanguageCode XPLMGetLanguage(void) {
  sim::Check("XPLMGetLanguage");
  return xplm_Language_English;
}

void XPLMDebugString(const char* text) {
  sim::Check("XPLMDebugString");
  if (!text) return;
  std::fputs(text, stderr);
  std::fflush(stderr);
}

void* XPLMFindSymbol(const char* name) {
  sim::Check("XPLMFindSymbol");
  bool ours = name && std::strncmp(name, "XP", 2) == 0;
  return ours ? sim::SimulatorSymbol(name) : nullptr;
}

void XPLMSetErrorCallback(void (*fn)(const char* message)) {
  sim::Check("XPLMSetErrorCallback");
  sim::errorCallback = fn;
}

const char* XPLMGetVirtualKeyDescription(char vkey) {
  sim::Check("XPLMGetVirtualKeyDescription");
  static char text[8];
  unsigned code = static_cast<unsigned char>(vkey);
  static const struct {
    unsigned code;
    const char* name;
  } kNames[] = {{0x08, "BACK"},  {0x09, "TAB"},   {0x0D, "RETURN"}, {0x1B, "ESCAPE"}, {0x20, "SPACE"},
                {0x21, "PRIOR"}, {0x22, "NEXT"},  {0x23, "END"},    {0x24, "HOME"},   {0x25, "LEFT"},
                {0x26, "UP"},    {0x27, "RIGHT"}, {0x28, "DOWN"},   {0x2D, "INSERT"}, {0x2E, "DELETE"}};
  for (auto& key : kNames) {
    if (key.code == code) return key.name;
  }
  if ((code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z')) {
    std::snprintf(text, sizeof text, "%c", static_cast<int>(code));
  } else if (code >= 0x60 && code <= 0x69) {
    std::snprintf(text, sizeof text, "PAD%u", code - 0x60);
  } else if (code >= 0x70 && code <= 0x87) {
    std::snprintf(text, sizeof text, "F%u", code - 0x6F);
  } else {
    std::snprintf(text, sizeof text, "0x%02X", code);
  }
  return text;
}

void XPLMGetScreenSize(int* width, int* height) {
  sim::Check("XPLMGetScreenSize");
  int size[2];
  sim::GetScreen(&size[0], &size[1]);
  if (width) *width = size[0];
  if (height) *height = size[1];
}

void XPLMGetMouseLocation(int* x, int* y) {
  sim::Check("XPLMGetMouseLocation");
  if (x) *x = 0;
  if (y) *y = 0;
}

// The old way to ask whether the simulator is ready.
int XPLMInitialized(void) {
  sim::Check("XPLMInitialized");
  return 1;
}

void XPLMSimulateKeyPress(int, int) { sim::Check("XPLMSimulateKeyPress"); }
