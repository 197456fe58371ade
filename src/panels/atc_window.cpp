// "ATC Menu": who we are for air traffic control, and what the network client XSquawkBox has told.
#include "panels/layout.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

struct AtcText {
  const char* key;
  char* value;  // maxSettingValue + 1 bytes
};
constexpr AtcText texts[] = {{"ATC Number", settings.atcNumber},
                             {"ATC Tail Number", settings.atcTailNumber},
                             {"ATC Airline name", settings.atcAirlineName},
                             {"ATC Aircraft type", settings.atcAircraftType}};

std::string TextInForce(int index) { return texts[index].value; }

constexpr Row rows[] = {
    {{{.kind = CellKind::Value, .label = "Number", .index = 0, .width = 32, .text = TextInForce}}},
    {{{.kind = CellKind::Value, .label = "Tail number", .index = 1, .width = 32, .text = TextInForce}}},
    {{{.kind = CellKind::Value, .label = "Airline", .index = 2, .width = 32, .text = TextInForce}}},
    {{{.kind = CellKind::Value, .label = "Aircraft type", .index = 3, .width = 32, .text = TextInForce}}},
};
constexpr WindowPlan plan = {.title = atcWindowTitle, .rows = rows};

}  // namespace

void OpenAtcWindow() { OpenWindow(plan); }
