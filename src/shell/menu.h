// The plug-in's menu below the simulator's Plugins menu, and the windows it opens. Simulator's thread.
#pragma once

// Builds the menu from its table. At start.
void BuildMenu();
// Destroys menu and windows. At stop.
void DestroyMenuAndWindows();
