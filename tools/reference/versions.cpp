#include "reference/versions.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "base/bytes.h"
#include "bridge/encode.h"

namespace {

// The datarefs that not all public lists from 8.60 to 12.10 have: the first list with the name and the last
// one.
struct Listed {
  const char* name;
  const char* from = "";
  const char* to = "";
};
constexpr Listed listed[] = {
    {.name = "sim/aircraft/limits/red_hi_TRQ", .from = "9.00"},
    {.name = "sim/aircraft/overflow/acf_has_nav", .to = "9.20"},
    {.name = "sim/aircraft/view/acf_has_mixture", .to = "9.20"},
    {.name = "sim/aircraft/view/acf_livery_index", .from = "9.55"},
    {.name = "sim/aircraft/view/acf_livery_path", .from = "9.55"},
    {.name = "sim/aircraft/weight/acf_m_empty/ac", .from = "never"},
    {.name = "sim/cockpit/misc/hydraulic_quantity", .from = "9.20"},
    {.name = "sim/cockpit/radios/nav2_course_degt", .to = "9.20"},
    {.name = "sim/cockpit/switches/anti_ice_surf_heat_left", .from = "9.55"},
    {.name = "sim/cockpit/switches/anti_ice_surf_heat_right", .from = "9.55"},
    {.name = "sim/cockpit2/annunciators/cabin_door_open", .from = "9.55"},
    {.name = "sim/cockpit2/autopilot/autothrottle_enabled", .from = "9.00"},
    {.name = "sim/cockpit2/controls/aileron_trim", .from = "9.00"},
    {.name = "sim/cockpit2/controls/flap_handle_deploy_ratio", .from = "9.20"},
    {.name = "sim/cockpit2/controls/rudder_trim", .from = "9.00"},
    {.name = "sim/cockpit2/electrical/APU_N1_percent", .from = "9.00"},
    {.name = "sim/cockpit2/electrical/APU_generator_on", .from = "9.00"},
    {.name = "sim/cockpit2/engine/actuators/mixture_ratio", .from = "9.00"},
    {.name = "sim/cockpit2/engine/actuators/throttle_ratio", .from = "9.00"},
    {.name = "sim/cockpit2/engine/indicators/MPR_in_hg", .from = "9.00"},
    {.name = "sim/cockpit2/engine/indicators/engine_speed_rpm", .from = "9.55"},
    {.name = "sim/cockpit2/engine/indicators/oil_quantity_ratio", .from = "9.00"},
    {.name = "sim/cockpit2/engine/indicators/prop_speed_rpm", .from = "9.55"},
    {.name = "sim/cockpit2/gauges/indicators/altitude_ft_pilot", .from = "9.00"},
    {.name = "sim/cockpit2/gauges/indicators/radio_altimeter_height_ft_pilot", .from = "9.00"},
    {.name = "sim/cockpit2/gauges/indicators/turn_rate_heading_deg_pilot", .from = "9.00"},
    {.name = "sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1", .from = "9.55"},
    {.name = "sim/cockpit2/ice/ice_inlet_heat_on_per_engine", .from = "10.25"},
    {.name = "sim/cockpit2/radios/actuators/audio_dme_enabled", .from = "9.00"},
    {.name = "sim/cockpit2/radios/actuators/audio_marker_enabled", .from = "9.00"},
    {.name = "sim/cockpit2/radios/actuators/audio_selection_adf1", .from = "9.55"},
    {.name = "sim/cockpit2/radios/actuators/audio_selection_com1", .from = "9.55"},
    {.name = "sim/cockpit2/radios/actuators/audio_selection_com2", .from = "9.55"},
    {.name = "sim/cockpit2/radios/actuators/audio_selection_nav1", .from = "9.55"},
    {.name = "sim/cockpit2/radios/actuators/audio_selection_nav2", .from = "9.55"},
    {.name = "sim/cockpit2/radios/indicators/adf1_nav_id", .from = "9.55"},
    {.name = "sim/cockpit2/radios/indicators/adf2_nav_id", .from = "9.55"},
    {.name = "sim/cockpit2/radios/indicators/nav1_nav_id", .from = "9.55"},
    {.name = "sim/cockpit2/radios/indicators/nav2_nav_id", .from = "9.55"},
    {.name = "sim/cockpit2/switches/beacon_on", .from = "9.00"},
    {.name = "sim/cockpit2/switches/instrument_brightness_ratio", .from = "9.20"},
    {.name = "sim/cockpit2/switches/landing_lights_on", .from = "9.00"},
    {.name = "sim/cockpit2/switches/navigation_lights_on", .from = "9.00"},
    {.name = "sim/cockpit2/switches/panel_brightness_ratio", .from = "9.20"},
    {.name = "sim/cockpit2/switches/taxi_light_on", .from = "9.00"},
    {.name = "sim/cockpit2/switches/wiper_speed", .from = "9.00"},
    {.name = "sim/flightmodel/weight/m_fuel", .from = "9.00"},
    {.name = "sim/flightmodel2/controls/slat1_deploy_ratio", .from = "9.00"},
    {.name = "sim/joystick/yoke_roll_ratio", .from = "9.00"},
    {.name = "sim/operation/failures/?????", .from = "never"},
    {.name = "sim/operation/failures/rel_cop_ahz", .from = "9.00"},
    {.name = "sim/operation/failures/rel_cop_tsi", .from = "9.00"},
    {.name = "sim/operation/failures/rel_cop_vvi", .from = "9.00"},
    {.name = "sim/operation/failures/rel_g_comrad1", .to = "11.40"},
    {.name = "sim/operation/failures/rel_g_comrad2", .to = "11.40"},
    {.name = "sim/operation/failures/rel_ice_pitot_heat1", .from = "9.00"},
    {.name = "sim/operation/failures/rel_ice_pitot_heat2", .from = "9.00"},
    {.name = "sim/weather/cloud_coverage[0]", .from = "10.25"},
    {.name = "sim/weather/cloud_coverage[1]", .from = "10.25"},
    {.name = "sim/weather/cloud_coverage[2]", .from = "10.25"},
    {.name = "sim/weather/rate_change_percent", .to = "9.55"},
    {.name = "sim/weather/thunderstorm_percent", .to = "11.40"},
};

const Listed* Limited(const char* name) {
  const Listed* const found = std::find_if(std::begin(listed), std::end(listed),
                                           [&](const Listed& one) { return std::strcmp(one.name, name) == 0; });
  return found == std::end(listed) ? nullptr : found;
}

void Add(std::vector<const DataRef*>* refs, const Source& source) {
  if (source.ref == nullptr || std::strncmp(source.ref->name, "sim/", 4) != 0) return;
  if (std::find(refs->begin(), refs->end(), source.ref) == refs->end()) refs->push_back(source.ref);
}

bool IsLimited(const ServedVersions& versions) {
  return versions.never || !versions.from.empty() || !versions.to.empty();
}

std::string Number(double value) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// What a plain row stores when its source reads 0, in the row's unit.
std::string NumberWithoutSource(const OffsetRow& row) {
  const double number = row.convert != nullptr ? row.convert(0) : row.add;
  uint8_t bytes[8];
  StoreTo(bytes, EncodedWord(row.type, number));
  const std::string text = Number(DecodeNumber(row.type, bytes) * row.unitScale + row.unitBias);
  return row.show == Show::Flag || row.unit[0] == 0 ? text : text + " " + row.unit;
}

bool IsPlain(const OffsetRow& row) { return row.source.ref != nullptr && row.read == nullptr; }

std::string RangeText(const ServedVersions& versions) {
  if (versions.never) return "in no version";
  return (versions.from.empty() ? "" : "from " + versions.from + " on") +
         (versions.to.empty() ? "" : std::string(versions.from.empty() ? "" : ", ") + "up to " + versions.to);
}

}  // namespace

std::vector<const char*> LimitedNames() {
  std::vector<const char*> names;
  for (const Listed& one : listed) names.push_back(one.name);
  return names;
}

ServedVersions VersionsOf(const DataRef& ref) {
  const Listed* const first = Limited(ref.name);
  // The other names fill the gaps of the first one.
  if (first == nullptr || !ref.otherNames.empty()) return {};
  if (std::strcmp(first->from, "never") == 0) return {.from = "", .to = "", .never = true};
  return {.from = first->from, .to = first->to};
}

std::vector<const DataRef*> DataRefsOf(const OffsetRow& row) {
  std::vector<const DataRef*> refs;
  Add(&refs, row.source);
  for (const Variant& variant : row.variants) {
    if (variant.addOn != AddOn::None) continue;
    for (const Source& source : {variant.source, variant.target}) Add(&refs, source);
    for (const Source& source : variant.lights) Add(&refs, source);
    for (const Source& source : variant.marks) Add(&refs, source);
  }
  for (const Source& source : row.inputs) Add(&refs, source);
  Add(&refs, row.write.target);
  return refs;
}

ServedVersions VersionsOf(const OffsetRow& row) {
  if (row.elsewhere[0] != 0 && !IsPlain(row)) return {};
  const std::vector<const DataRef*> refs = DataRefsOf(row);
  return refs.empty() ? ServedVersions{} : VersionsOf(*refs.front());
}

std::string ElsewhereText(const OffsetRow& row) {
  if (row.elsewhere[0] != 0) return row.elsewhere;
  // The weather that the list of 10.04 calls integers.
  for (const Source& source : {row.source, row.write.target}) {
    if (source.accessor == Accessor::Any && std::strncmp(source.ref->name, "sim/weather/", 12) == 0) {
      return "10.0x keeps whole numbers of the dataref only";
    }
  }
  const ServedVersions versions = VersionsOf(row);
  if (IsPlain(row)) {
    if (!IsLimited(versions)) return "";
    return "elsewhere reads " + NumberWithoutSource(row) + (HasWriter(row) ? ", a write changes nothing" : "");
  }
  std::string text;
  for (const DataRef* ref : DataRefsOf(row)) {
    const ServedVersions own = VersionsOf(*ref);
    if (!IsLimited(own)) continue;
    if (row.cycle == Cycle::None) return "elsewhere a write changes nothing";
    text += (text.empty() ? "" : ", ") + ("`" + std::string(ref->name) + "` (" + RangeText(own) + ")");
  }
  return text.empty() ? "" : "counts as 0 elsewhere: " + text;
}
