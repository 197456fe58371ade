// What the ages of the simulator publish otherwise than the table of datarefs (dataref_table.cpp) says: one
// row a difference, with the names that share it. An age may need several rows for one name. Where the
// public list of an age gives no length for a text (the livery's path in 1210), the row's own stays.
#include <cstdint>
#include <cstring>

#include "world/world.h"

namespace sim {

namespace {

enum class Access : uint8_t { AsListed, ReadOnly, Settable };

struct AgeChange {
  int from = 0, to = 9999;  // ages, both included
  bool absent = false;
  bool integer = false;  // int where the table says float
  int count = 0;         // elements, 0: as listed
  Access access = Access::AsListed;
  double scale = 1;  // of the start value, where the unit is another one
  std::span<const char* const> names;
};

const char* const absentUntil860[] = {
    "sim/aircraft/limits/red_hi_TRQ",
    "sim/cockpit/misc/hydraulic_quantity",
    "sim/cockpit2/autopilot/autothrottle_enabled",
    "sim/cockpit2/controls/aileron_trim",
    "sim/cockpit2/controls/flap_handle_deploy_ratio",
    "sim/cockpit2/controls/rudder_trim",
    "sim/cockpit2/electrical/APU_N1_percent",
    "sim/cockpit2/electrical/APU_generator_on",
    "sim/cockpit2/engine/actuators/mixture_ratio",
    "sim/cockpit2/engine/actuators/throttle_ratio",
    "sim/cockpit2/engine/indicators/MPR_in_hg",
    "sim/cockpit2/engine/indicators/oil_quantity_ratio",
    "sim/cockpit2/gauges/indicators/altitude_ft_pilot",
    "sim/cockpit2/gauges/indicators/radio_altimeter_height_ft_pilot",
    "sim/cockpit2/gauges/indicators/turn_rate_heading_deg_pilot",
    "sim/cockpit2/radios/actuators/audio_dme_enabled",
    "sim/cockpit2/radios/actuators/audio_marker_enabled",
    "sim/cockpit2/switches/beacon_on",
    "sim/cockpit2/switches/instrument_brightness_ratio",
    "sim/cockpit2/switches/landing_lights_on",
    "sim/cockpit2/switches/navigation_lights_on",
    "sim/cockpit2/switches/panel_brightness_ratio",
    "sim/cockpit2/switches/taxi_light_on",
    "sim/cockpit2/switches/wiper_speed",
    "sim/flightmodel/weight/m_fuel",
    "sim/flightmodel2/controls/slat1_deploy_ratio",
    "sim/joystick/yoke_roll_ratio",
    "sim/operation/failures/rel_cop_ahz",
    "sim/operation/failures/rel_cop_tsi",
    "sim/operation/failures/rel_cop_vvi",
    "sim/operation/failures/rel_ice_pitot_heat1",
    "sim/operation/failures/rel_ice_pitot_heat2",
};
const char* const absentUntil920[] = {
    "sim/aircraft/view/acf_livery_index",
    "sim/aircraft/view/acf_livery_path",
    "sim/cockpit/switches/anti_ice_surf_heat_left",
    "sim/cockpit/switches/anti_ice_surf_heat_right",
    "sim/cockpit2/annunciators/cabin_door_open",
    "sim/cockpit2/engine/indicators/engine_speed_rpm",
    "sim/cockpit2/engine/indicators/prop_speed_rpm",
    "sim/cockpit2/hydraulics/indicators/hydraulic_pressure_1",
    "sim/cockpit2/radios/actuators/audio_selection_adf1",
    "sim/cockpit2/radios/actuators/audio_selection_com1",
    "sim/cockpit2/radios/actuators/audio_selection_com2",
    "sim/cockpit2/radios/actuators/audio_selection_nav1",
    "sim/cockpit2/radios/actuators/audio_selection_nav2",
    "sim/cockpit2/radios/indicators/adf1_nav_id",
    "sim/cockpit2/radios/indicators/adf2_nav_id",
    "sim/cockpit2/radios/indicators/nav1_nav_id",
    "sim/cockpit2/radios/indicators/nav2_nav_id",
};
const char* const absentUntil955[] = {
    "sim/operation/failures/rel_com1",
    "sim/operation/failures/rel_com2",
};
const char* const absentUntil1004[] = {
    "sim/cockpit2/ice/ice_inlet_heat_on_per_engine",
    "sim/weather/cloud_coverage[0]",
    "sim/weather/cloud_coverage[1]",
    "sim/weather/cloud_coverage[2]",
};
const char* const absentFrom955[] = {
    "sim/aircraft/overflow/acf_has_nav",
    "sim/aircraft/view/acf_has_mixture",
    "sim/cockpit/radios/nav2_course_degt",
};
const char* const absentIn1004[] = {
    "sim/operation/failures/rel_g_comrad1",
    "sim/operation/failures/rel_g_comrad2",
};
const char* const absentFrom1004[] = {
    "sim/weather/rate_change_percent",
};
const char* const absentFrom1200[] = {
    "sim/operation/failures/rel_g_comrad1",
    "sim/operation/failures/rel_g_comrad2",
    "sim/weather/thunderstorm_percent",
};
const char* const wholeIn1004[] = {
    "sim/weather/cloud_base_msl_m[0]",     "sim/weather/cloud_base_msl_m[1]",
    "sim/weather/cloud_base_msl_m[2]",     "sim/weather/cloud_tops_msl_m[0]",
    "sim/weather/cloud_tops_msl_m[1]",     "sim/weather/cloud_tops_msl_m[2]",
    "sim/weather/dewpoi_sealevel_c",       "sim/weather/rain_percent",
    "sim/weather/runway_friction",         "sim/weather/shear_direction_degt[0]",
    "sim/weather/shear_direction_degt[1]", "sim/weather/shear_direction_degt[2]",
    "sim/weather/shear_speed_kt[0]",       "sim/weather/shear_speed_kt[1]",
    "sim/weather/shear_speed_kt[2]",       "sim/weather/temperature_sealevel_c",
    "sim/weather/thunderstorm_percent",    "sim/weather/turbulence[0]",
    "sim/weather/turbulence[1]",           "sim/weather/turbulence[2]",
    "sim/weather/wind_altitude_msl_m[0]",  "sim/weather/wind_altitude_msl_m[1]",
    "sim/weather/wind_altitude_msl_m[2]",  "sim/weather/wind_speed_kt[0]",
    "sim/weather/wind_speed_kt[1]",        "sim/weather/wind_speed_kt[2]",
};
const char* const length160Until860[] = {
    "sim/joystick/joystick_button_values",
};
const char* const length3Until860[] = {
    "sim/aircraft/overflow/acf_tank_rat",
};
const char* const length32Until860[] = {
    "sim/joystick/joystick_axis_values",
};
const char* const length73Until860[] = {
    "sim/aircraft/parts/acf_gear_deploy",
    "sim/aircraft/parts/acf_gear_leglen",
};
const char* const length500Until920[] = {
    "sim/aircraft/view/acf_descrip",
};
const char* const length1520From920To955[] = {
    "sim/joystick/joystick_button_values",
};
const char* const length32From1110[] = {
    "sim/cockpit2/switches/instrument_brightness_ratio",
};
const char* const length3200From1110[] = {
    "sim/joystick/joystick_button_values",
};
const char* const length500From1110[] = {
    "sim/joystick/joystick_axis_values",
};
const char* const length150From1140[] = {
    "sim/cockpit2/radios/indicators/adf1_nav_id",
    "sim/cockpit2/radios/indicators/adf2_nav_id",
    "sim/cockpit2/radios/indicators/nav1_nav_id",
    "sim/cockpit2/radios/indicators/nav2_nav_id",
};
const char* const length667From1200[] = {
    "sim/operation/failures/failures",
};
const char* const length16From1210[] = {
    "sim/aircraft/prop/acf_en_type",
    "sim/cockpit/engine/fuel_pump_on",
    "sim/cockpit/engine/igniters_on",
    "sim/cockpit/engine/ignition_on",
    "sim/cockpit/engine/starter_duration",
    "sim/cockpit2/engine/actuators/mixture_ratio",
    "sim/cockpit2/engine/actuators/throttle_ratio",
    "sim/cockpit2/engine/indicators/MPR_in_hg",
    "sim/cockpit2/engine/indicators/engine_speed_rpm",
    "sim/cockpit2/engine/indicators/oil_quantity_ratio",
    "sim/cockpit2/engine/indicators/prop_speed_rpm",
    "sim/cockpit2/ice/ice_inlet_heat_on_per_engine",
    "sim/flightmodel/engine/ENGN_EGT_c",
    "sim/flightmodel/engine/ENGN_EPR",
    "sim/flightmodel/engine/ENGN_FF_",
    "sim/flightmodel/engine/ENGN_ITT_c",
    "sim/flightmodel/engine/ENGN_N1_",
    "sim/flightmodel/engine/ENGN_N2_",
    "sim/flightmodel/engine/ENGN_TRQ",
    "sim/flightmodel/engine/ENGN_mixt",
    "sim/flightmodel/engine/ENGN_oil_press_psi",
    "sim/flightmodel/engine/ENGN_oil_temp_c",
    "sim/flightmodel/engine/ENGN_propmode",
    "sim/flightmodel/engine/ENGN_running",
    "sim/flightmodel/engine/ENGN_thro",
    "sim/flightmodel/engine/ENGN_thro_use",
    "sim/flightmodel/engine/POINT_pitch_deg",
    "sim/flightmodel/engine/POINT_tacrad",
    "sim/flightmodel/engine/POINT_thrust",
};
const char* const readOnlyUntil860[] = {
    "sim/cockpit/autopilot/airspeed_is_mach",
    "sim/flightmodel/misc/slip",
    "sim/flightmodel/position/indicated_airspeed",
    "sim/flightmodel/position/vh_ind_fpm",
};
const char* const settableUntil860[] = {
    "sim/cockpit/radios/nav_type",
};
const char* const readOnlyUntil920[] = {
    "sim/cockpit/radios/nav1_slope_degt",
    "sim/cockpit/radios/nav2_slope_degt",
};
const char* const settableUntil955[] = {
    "sim/operation/failures/failures",
};
const char* const readOnlyUntil1004[] = {
    "sim/flightmodel/parts/tire_steer_act",
};
const char* const readOnlyFrom1110[] = {
    "sim/aircraft/prop/acf_en_type",
};
const char* const settableFrom1110[] = {
    "sim/operation/misc/frame_rate_period",
};
const char* const settableFrom1140[] = {
    "sim/cockpit/pressure/cabin_altitude_actual_m_msl",
    "sim/flightmodel/engine/ENGN_oil_temp_c",
};
const char* const readOnlyFrom1200[] = {
    "sim/weather/use_real_weather_bool",
};
const char* const settableFrom1200[] = {
    "sim/cockpit2/engine/indicators/MPR_in_hg",
    "sim/cockpit2/gauges/indicators/altitude_ft_pilot",
    "sim/cockpit2/gauges/indicators/radio_altimeter_height_ft_pilot",
    "sim/cockpit2/gauges/indicators/turn_rate_heading_deg_pilot",
    "sim/flightmodel/failures/onground_any",
    "sim/flightmodel/position/true_airspeed",
};
const char* const readOnlyFrom1210[] = {
    "sim/aircraft/overflow/acf_num_tanks",
};
const char* const settableFrom1210[] = {
    "sim/cockpit2/radios/indicators/adf1_nav_id",
    "sim/cockpit2/radios/indicators/adf2_nav_id",
    "sim/cockpit2/radios/indicators/nav1_nav_id",
    "sim/cockpit2/radios/indicators/nav2_nav_id",
};
const char* const windSpeeds[] = {"sim/weather/wind_speed_kt", "sim/weather/wind_speed_kt[0]",
                                  "sim/weather/wind_speed_kt[1]", "sim/weather/wind_speed_kt[2]"};

const AgeChange changes[] = {
    {.to = 860, .absent = true, .names = absentUntil860},
    {.to = 920, .absent = true, .names = absentUntil920},
    {.to = 955, .absent = true, .names = absentUntil955},
    {.to = 1004, .absent = true, .names = absentUntil1004},
    {.from = 955, .absent = true, .names = absentFrom955},
    {.from = 1004, .to = 1004, .absent = true, .names = absentIn1004},
    {.from = 1004, .absent = true, .names = absentFrom1004},
    {.from = 1200, .absent = true, .names = absentFrom1200},
    {.from = 1004, .to = 1004, .integer = true, .names = wholeIn1004},
    {.to = 860, .count = 160, .names = length160Until860},
    {.to = 860, .count = 3, .names = length3Until860},
    {.to = 860, .count = 32, .names = length32Until860},
    {.to = 860, .count = 73, .names = length73Until860},
    {.to = 920, .count = 500, .names = length500Until920},
    {.from = 920, .to = 955, .count = 1520, .names = length1520From920To955},
    {.from = 1110, .count = 32, .names = length32From1110},
    {.from = 1110, .count = 3200, .names = length3200From1110},
    {.from = 1110, .count = 500, .names = length500From1110},
    {.from = 1140, .count = 150, .names = length150From1140},
    {.from = 1200, .count = 667, .names = length667From1200},
    {.from = 1210, .count = 16, .names = length16From1210},
    {.to = 860, .access = Access::ReadOnly, .names = readOnlyUntil860},
    {.to = 860, .access = Access::Settable, .names = settableUntil860},
    {.to = 920, .access = Access::ReadOnly, .names = readOnlyUntil920},
    {.to = 955, .access = Access::Settable, .names = settableUntil955},
    {.to = 1004, .access = Access::ReadOnly, .names = readOnlyUntil1004},
    {.from = 1110, .access = Access::ReadOnly, .names = readOnlyFrom1110},
    {.from = 1110, .access = Access::Settable, .names = settableFrom1110},
    {.from = 1140, .access = Access::Settable, .names = settableFrom1140},
    {.from = 1200, .access = Access::ReadOnly, .names = readOnlyFrom1200},
    {.from = 1200, .access = Access::Settable, .names = settableFrom1200},
    {.from = 1210, .access = Access::ReadOnly, .names = readOnlyFrom1210},
    {.from = 1210, .access = Access::Settable, .names = settableFrom1210},
    {.from = metricWindFrom, .scale = ktToMs, .names = windSpeeds},
};

}  // namespace

bool ShapeInAge(DataRefRow* row) {
  if (age == 0) return true;
  for (const AgeChange& change : changes) {
    if (age < change.from || age > change.to) continue;
    for (const char* name : change.names) {
      if (std::strcmp(name, row->name) != 0) continue;
      if (change.absent) return false;
      if (change.integer) row->kind = Kind::Int;
      if (change.count > 0) row->count = change.count;
      if (change.access != Access::AsListed) row->writable = change.access == Access::Settable;
      row->start *= change.scale;
    }
  }
  return true;
}

}  // namespace sim
