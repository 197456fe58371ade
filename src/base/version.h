// Version texts as they stand in logs, the settings file and the version window.
#pragma once

constexpr char pluginVersion[] = "2.0.5.25";
constexpr char networkVersion[] = "2.0.0.3";
constexpr const char* buildWord = sizeof(void*) == 4 ? "32 bit" : "64 bit";
