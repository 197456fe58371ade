// Rows of plain switches.
#pragma once
#include "bridge/catalogue.h"
#include "bridge/catalogue/conversions.h"
#include "bridge/catalogue/losses.h"

// A switch that follows one dataref and sets it.
constexpr OffsetRow PlainSwitch(OffsetRow row) {
  row.show = Show::Flag;
  row.convert = OnOff;
  row.write = {.target = row.source, .convert = OnOff};
  row.lossy = flagLoss;
  return row;
}
