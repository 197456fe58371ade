// The section of the settings file that holds the button assignments: one key per button, twelve numbers
// separated by commas, the offset in hexadecimal. Simulator's thread.
#pragma once
#include "controls/buttons.h"

// Reads the whole section with one pass over the file. Buttons without a line, with a line of zeros or with
// one that cannot work (a log line tells why) get noAssignment.
void ReadButtonSettings(ButtonAssignment (&assignments)[maxButtons]);
// Writes one button's line. Returns true, or false (a log line tells why).
bool WriteButtonSetting(int button, const ButtonAssignment& assignment);
