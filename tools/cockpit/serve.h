// offsetctl serve. Main thread.
#pragma once
#include "offsetctl/options.h"

namespace ctl {

// Serves the web cockpit until Ctrl-C. Returns the program's exit status and has printed a line on standard
// error when that is not 0.
int RunServe(const Options& options);

}  // namespace ctl
