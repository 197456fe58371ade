// Our own declarations of the simulator's public plug-in interface: the handful of definitions that
// every other header uses. Types and values are those of the public interface (level 2.1).
#pragma once
#include <stdint.h>

#if defined(_WIN32)
#define IBM 1
#else
#define LIN 1
#endif

// The five entry points are exported by the plug-in, everything of the simulator is imported by plain
// C name, so no import decoration is needed.
#define XPLM_API extern "C"
#if defined(_WIN32)
#define PLUGIN_API extern "C" __declspec(dllexport)
#else
#define PLUGIN_API extern "C" __attribute__((visibility("default")))
#endif

typedef int XPLMPluginID;
#define XPLM_NO_PLUGIN_ID (-1)
#define XPLM_PLUGIN_XPLANE (0)
#define kXPLM_Version (210)
