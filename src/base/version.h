// Version texts: each is written here and nowhere else.
#pragma once

// Title lines of logs, settings file and version window; the bare version is the end of its line.
constexpr char pluginTitle[] = "TAVRIX Version 2.0.5.25";
constexpr char networkTitle[] = "TAVFARNET Version 2.0.0.3";
constexpr const char* pluginVersion = pluginTitle + sizeof("TAVRIX Version");
constexpr const char* buildWord = sizeof(void*) == 4 ? "32 bit" : "64 bit";

// Begins every line that names the simulator's version, and is followed by its number.
constexpr char simulatorVersionLabel[] = "X-Plane Version: ";
// As the simulator told it at start, 0 before. Simulator's thread.
extern int simulatorVersion;
