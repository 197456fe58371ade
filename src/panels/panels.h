// The room panels/: the plug-in's windows, drawn by the simulator's widget library. They show what other rooms
// know and tell those what the user wants; no room below knows them, their switches follow when shell/ says so.
// Simulator's thread only, no lock held.
//
// Each window is made on first use and only shown again when it exists but is hidden; its close box hides
// it. CloseAllWindows destroys what exists.
#pragma once

// Titles, which are the names of the menu's items too.
constexpr char versionWindowTitle[] = "TAVRIX Version and Info";
constexpr char performanceWindowTitle[] = "Performance settings";

void OpenVersionWindow();
void OpenPerformanceWindow();
void CloseAllWindows();

// Tells the user what went wrong at start: a window with one caption and a close box. The text may be long.
void OpenAlertWindow(const char* text);
void CloseAlertWindow();
// The switches of an open window follow the trace switches, which disable has put back.
void ShowTraceSwitches();
// Once per frame: when the number of network clients has changed, the version window's line follows.
void ShowClientCount();
