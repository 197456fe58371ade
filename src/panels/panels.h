// The room panels/: the plug-in's windows, drawn by the simulator's widget library. They show what other rooms
// know and tell those what the user wants; no room below knows them. Simulator's thread only, no lock held.
//
// Each window is a table of rows in a file of its own; layout.h makes widgets of them.
#pragma once

// Titles, which are the names of the menu's items too but for one.
constexpr char versionWindowTitle[] = "TAVRIX Version and Info";
constexpr char atcWindowTitle[] = "ATC Menu";
constexpr char buttonMenuItem[] = "Joystick Button Assignments";
constexpr char buttonWindowTitle[] = "Joystick Button -> Offset Assignments";
constexpr char calibrationWindowTitle[] = "Joystick Calibration Assignments";
constexpr char combiningWindowTitle[] = "Joystick Axis Combining Assignments";
constexpr char pushbackWindowTitle[] = "Push Back Settings";
constexpr char flapsWindowTitle[] = "Flaps settings";
constexpr char performanceWindowTitle[] = "Performance settings";

void OpenVersionWindow();
void OpenAtcWindow();
void OpenButtonWindow();
void OpenCalibrationWindow();
void OpenCombiningWindow();
void OpenPushbackWindow();
void OpenFlapsWindow();
void OpenPerformanceWindow();

// Tells the user what went wrong at start. The text may be long.
void OpenAlertWindow(const char* text);

// Whether the threads that serve clients have ended and are started again only when the plug-in is loaded anew;
// the version window says so.
void TellThreadsWait(bool wait);

// Once a frame, in client mode too: open windows follow what they show; the version window does so at once when
// the number of network clients has changed.
void FollowPanels();
