#include "base/folders.h"

#include "XPLMUtilities.h"
#include "platform/system.h"

std::string ReportedSystemFolder() {
  char path[1024] = "";  // the simulator writes at most 512
  XPLMGetSystemPath(path);
  return path;
}

std::string SystemFolder() { return WithSeparator(ReportedSystemFolder()); }

std::string PluginFolder() {
  std::string folder = SystemFolder();
  for (const char* name : {"Resources", "plugins", "TAVRIX"}) folder = WithSeparator(folder + name);
  return folder;
}
