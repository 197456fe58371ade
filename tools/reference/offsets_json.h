// docs/offsets.json: the catalogue as data, as docs/offsets.schema.json says.
#pragma once
#include <string>

std::string MakeOffsetsJson();
