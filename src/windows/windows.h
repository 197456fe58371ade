// The plug-in's windows, drawn by the simulator's widget library. Simulator's thread only.
//
// Each window is made on first use and only shown again when it exists but is hidden; its close box hides
// it. CloseAllWindows destroys what exists.
#pragma once

void OpenVersionWindow();
void OpenPerformanceWindow();
void CloseAllWindows();
