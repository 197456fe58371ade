// What `offsetctl serve` is in a build without the web cockpit's parts.
#include "cockpit/serve.h"
#include "offsetctl/commands.h"

namespace ctl {

int RunServe(const Options&) { return Report(exitUsage, "this build has no web cockpit: " COCKPIT_MISSING); }

}  // namespace ctl
