// Where the simulator lies and where our own files are. Simulator's thread.
#pragma once
#include <string>

// The simulator's folder exactly as the simulator tells it; what clients are told.
std::string ReportedSystemFolder();
// The same with a separator at its end, as our own file names need it.
std::string SystemFolder();
// The folder of our own files within it, with a separator at its end.
std::string PluginFolder();
