// The user's folders that the web cockpit serves: pages of his own and recordings. Reads the disk; any thread.
#pragma once
#include <string>

#include "cockpit/http_rules.h"

namespace ctl {

// Whether that is a file of its own, no link, folder or device.
bool IsPlainFile(const std::string& path);
// {"panels": [{"file", "title"}]}: the HTML files of the folder by name, with what stands in their <title>.
std::string PanelsJson(const std::string& folder);
// {"recordings": [{"file", "bytes", "modified"}]}, the newest first; files that are no recording are left out.
std::string RecordingsJson(const std::string& folder);
// A file of the panels' folder. `name` comes from the request: one that is not a plain file of a known type
// within the folder gives 404.
WebAnswer PanelFile(const std::string& folder, const std::string& name);

}  // namespace ctl
