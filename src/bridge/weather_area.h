// The weather area 0xC800-0xC87F: a client describes the whole global weather in one record and raises the
// selector in its first word. It is acted on after the whole request, by the write cycle.
//
//   0xC800  u16      selector: 1 to 4 apply the area, anything else leaves it alone; set to 0 once taken
//   0xC804  char[4]  station: "GLOB" for the global weather; the simulator has no other
//   0xC808  u16      rate of change, 0 to 4
//   0xC80A  u16      sea-level pressure, millibar x 16; 0: not given
//   0xC80C  u16      visibility, nautical miles x 100; 0: not given
//   0xC80E  s16      sea-level temperature, degrees C
//   0xC810  s16      dew point, degrees C
//   0xC812  u16      precipitation, 0 to 4
//   0xC820  3 x 8    cloud layers: u16 base (m), u16 tops (m), u16 type 0 to 5, spare
//   0xC840  3 x 16   wind layers: u16 altitude (m), u16 speed (kt), u16 direction (true), u16 gust (kt),
//                    u8 turbulence 0 to 4, u8 shear 0 to 3, spare
#pragma once

// Takes the area when the dispatcher has left a finished one. Simulator's thread, no lock held.
void ApplyWeatherArea();
