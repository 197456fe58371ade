// The named watch lists: those that come with the program, and what the browser remembers.
import { announce, recall, remember } from "./dom.js";
import { catalogue, recalledItem } from "./catalogue.js";

const both = (pattern) => [1, 2].map((n) => pattern.replace("#", n));
const readyMade = {
  Flight: ["ias", "indicated_altitude:ft", "vertical_speed:ft/min", "heading", "pitch", "bank", "ground_speed:kt",
    "mach",
    "radio_altitude:ft", "on_ground", "latitude", "longitude", "altimeter_setting", "load_factor", "pause"],
  Radios: ["com1", "com_standby1", "com2", "com_standby2", "nav1", "nav_standby1", "nav2", "nav_standby2", "adf1",
    "adf2",
    "transponder", "transponder_mode", "audio_panel", "obs1", "obs2", "nav_ident1", "dme1"],
  Engines: ["engine_type", ...["running_eng#", "throttle#", "n1_eng#", "n2_eng#", "egt_eng#", "fuel_flow_eng#",
    "oil_pressure_eng#", "oil_temp_eng#", "mixture#"].flatMap(both)],
  Autopilot: ["ap", "fd", "autothrottle", "ap_heading", "ap_heading_bug", "ap_nav", "ap_approach", "ap_altitude",
    "ap_altitude_set:ft", "ap_vertical_speed", "ap_vertical_speed_set", "ap_speed", "ap_ias_set", "yaw_damper"],
  Controls: ["gear", "nose_gear", "left_gear", "right_gear", "flaps", "left_flap_position", "speed_brake",
    "parking_brake", "elevator", "aileron", "rudder", "elevator_trim", "autobrake"],
  "Electrics and lights": ["battery", "avionics", "generators", "apu_switch", "apu_speed", "lights", "landing_lights",
    "beacon_strobe", "pitot_heat", "fuel_pumps"],
  "Fuel and weight": ["fuel_total", "fuel_left", "fuel_centre", "fuel_right", "fuel_left_capacity", "gross_weight",
    "zero_fuel_weight", "fuel_flow_eng1", "fuel_flow_eng2"],
  Weather: ["qnh:hPa", "oat", "wind", "wind_from", "visibility", "dew_point", "cloud_base1:ft", "cloud_type1",
    "wind_speed1",
    "wind_direction1", "turbulence1"],
  "Aircraft and clock": ["aircraft", "atc_tail_number", "version", "local_time", "zulu_hour", "zulu_minute",
    "day_of_year",
    "frame_time", "sim_rate"],
};
function fresh(names) {
  return names.map((text) => {
    const [name, unit] = text.split(":");
    return { name, unit };
  }).filter(({ name }) => catalogue.byName.has(name));
}

/** The lists that come with the program, without offsets that this server does not have. */
export function readyLists() {
  return new Map(Object.entries(readyMade).map(([name, names]) => [name, fresh(names)]));
}

/** The lists as the browser remembers them: name -> [{name, unit?}]; what is broken in there is left out. */
export function loadLists() {
  const stored = recall("lists", null);
  const lists = new Map();
  for (const one of Array.isArray(stored) ? stored : []) {
    if (!Array.isArray(one)) continue;
    const [name, items] = one;
    if (typeof name !== "string" || !name || !Array.isArray(items)) continue;
    const known = items.map(recalledItem).filter(Boolean);
    lists.set(name, [...new Map(known.map((item) => [item.name, item])).values()]);
  }
  return lists.size ? lists : readyLists();
}

/** Changes the lists as they are now, which may be another tab's work, and returns them. */
export function changeLists(change) {
  const lists = loadLists();
  change(lists);
  remember("lists", [...lists]);
  return lists;
}

/** Adds an item to the list that is open in the watch view; the table follows when it is shown. */
export function addToWatch(name) {
  let list = recall("list", "Flight");
  changeLists((lists) => {
    if (!lists.has(list)) [list] = lists.keys();
    if (!lists.get(list).some((item) => item.name === name)) lists.get(list).push({ name });
  });
  announce(`${name} added to ${list}`);
  return list;
}
