// Between the files of the core about windows, drawing, camera and objects. Simulator's thread only.
#pragma once
#include "core/core.h"

namespace sim {

// The drawing of one frame: the camera, then the phases in their order with the windows in theirs.
void DrawFrame();
void ResetDisplay();  // all of it: windows, callbacks, keys, camera
// Visible windows, the front one last.
void DrawWindows();
void ResetWindows();
// The screen has this size from now on; nothing that lies on it moves.
// A picture of the largest one fits into the memory of a 32-bit program.
constexpr int kLeastScreen[] = {640, 480}, kLargestScreen[] = {5120, 2880};
void SetScreen(int width, int height);
// The plug-in that has the camera places it.
void PlaceCamera();
void ResetCamera();

}  // namespace sim
