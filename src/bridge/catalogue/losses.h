// Reasons that rows of several subjects share: why a value that a client writes may read back changed.
#pragma once

constexpr const char* flagLoss = "a switch: anything but 0 reads back 1";
constexpr const char* digitLoss = "a word with a digit above 9 is ignored";
constexpr const char* requestLoss = "a request: back at 0 once taken";
