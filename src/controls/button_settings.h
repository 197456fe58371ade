// The section of the settings file that holds the button assignments: one key per button, twelve numbers
// separated by commas, the offset in hexadecimal. Simulator's thread.
#pragma once
#include "controls/buttons.h"

// Reads the whole section with one pass over the file. Buttons without a line, with a line of zeros or with
// one that cannot work (a log line tells why) get noAssignment.
void ReadButtonSettings(ButtonAssignment (&assignments)[maxButtons]);
// Writes one button's line. Returns 1, or 0 (a log line tells why).
int WriteButtonSetting(int button, const ButtonAssignment& assignment);
