// docs/offsets.md: the reference page for client authors.
#pragma once
#include <string>

std::string MakeOffsetsPage();
