/* Reads and controls X-Plane through the offsets of TAVRIX: this file and tavrix.c are all of it.
 *
 *     cc  program.c tavrix.c -lm                                 Linux
 *     i686-w64-mingw32-gcc  program.c tavrix.c -lws2_32          Windows, 32 and 64 bit alike
 *
 * One client may be used by one thread at a time. Nothing runs in the background: call tavrix_poll often, ten
 * times a second or more; it receives, repairs, connects again and calls the callbacks. Functions that can fail
 * return 0 or a negative number of tavrix_result; tavrix_error has the same in words, with what to do.
 * docs/clients.md shows more. */
#ifndef TAVRIX_H
#define TAVRIX_H
#include <stddef.h>
#include <stdint.h>
#ifdef __cplusplus
extern "C" {
#endif

enum tavrix_result {
  TAVRIX_OK = 0,
  TAVRIX_NO_SERVER = -1,     /* no simulator with the plug-in was found, or it did not answer */
  TAVRIX_REFUSED = -2,       /* the server ended the connection at once: its user has restricted it */
  TAVRIX_DISCONNECTED = -3,  /* the connection is gone for the moment; tavrix_poll tries to get it back */
  TAVRIX_NOT_WRITABLE = -4,  /* a write to this offset has no effect */
  TAVRIX_NOT_CONFIRMED = -5, /* the server does not show what was written within the time given */
  TAVRIX_BAD_VALUE = -6,     /* the offset cannot hold the value */
  TAVRIX_FULL = -7,          /* no memory, or too much at once */
  TAVRIX_NO_OFFSET = -8,     /* the number is no offset: tavrix_by_name knows no such name */
  TAVRIX_CLOSED = -9         /* a callback has called tavrix_close */
};

/* What is known of an offset. Numbers in its unit = stored x numerator / denominator + bias. */
struct tavrix_info {
  const char *name, *unit;
  uint32_t offset;
  uint16_t size;             /* bytes */
  uint8_t type, form, flags; /* for tavrix.c */
  double numerator, denominator, bias, low, high, step, absolute, share;
};

typedef struct tavrix tavrix;
/* clang-format off */
/* Written by clients/generate.py from docs/offsets.json; do not edit. */
enum tavrix_offset {
  TAVRIX_PAUSE, /* 0x0262 pause control; for writing */
  TAVRIX_PAUSED, /* 0x0264 pause indicator; read-only */
  TAVRIX_ACTIVITY, /* 0x337E counter, one more with every frame: shows that the simulator runs; reads only */
  TAVRIX_LOCAL_HOUR, /* 0x0238 local time, hour; h; read-only */
  TAVRIX_LOCAL_MINUTE, /* 0x0239 local time, minute; min; read-only */
  TAVRIX_SECOND, /* 0x023A second of the minute; s; read-only */
  TAVRIX_LOCAL_TIME, /* 0x0C20 local time as hh:mm:ss; reads only */
  TAVRIX_ZULU_HOUR, /* 0x023B UTC, hour; h; for writing */
  TAVRIX_ZULU_MINUTE, /* 0x023C UTC, minute; min; for writing */
  TAVRIX_TIME_ZONE, /* 0x0246 hours that local time is behind UTC, positive west; h; reads only */
  TAVRIX_FRAME_TIME, /* 0x0274 time of one frame; 32768 / value is frames per second; s; read-only */
  TAVRIX_DAY_OF_YEAR, /* 0x023E day of the year; for writing */
  TAVRIX_SEASON, /* 0x0248 season of the northern hemisphere; reads only */
  TAVRIX_YEAR, /* 0x0240 year; for writing */
  TAVRIX_SIM_RATE, /* 0x0C1A simulation rate; for writing */
  TAVRIX_SHOW_MESSAGE, /* 0x32FA any value but the last shows and speaks the text at 0x3380; s; for writing */
  TAVRIX_REPOSITION, /* 0x0558 opens a repositioning: forgets the last one; for writing */
  TAVRIX_LATITUDE, /* 0x0560 latitude, positive north; deg; for writing */
  TAVRIX_LONGITUDE, /* 0x0568 longitude, positive east; deg; for writing */
  TAVRIX_ALTITUDE, /* 0x0570 altitude above the sea, from mean sea level; m; for writing */
  TAVRIX_ALTITUDE_M, /* 0x0574 altitude above the sea, whole metres, from mean sea level; m; for writing */
  TAVRIX_PITCH, /* 0x0578 pitch, positive nose down; deg; for writing */
  TAVRIX_INDICATOR_PITCH, /* 0x2F70 attitude indicator pitch, positive nose down; deg; reads only */
  TAVRIX_BANK, /* 0x057C bank, positive left wing down; deg; for writing */
  TAVRIX_INDICATOR_BANK, /* 0x2F78 attitude indicator bank, positive left wing down; deg; reads only */
  TAVRIX_HEADING, /* 0x0580 true heading, from true north; deg; for writing */
  TAVRIX_GROUND_ALTITUDE, /* 0x0020 height of the ground above the sea, from mean sea level; m; reads only */
  TAVRIX_GROUND_ALTITUDE_M, /* 0x0B4C height of the ground above the sea, whole metres, from mean sea level; m; reads only */
  TAVRIX_RADIO_ALTITUDE, /* 0x31E4 height above the ground, from ground; m; read-only */
  TAVRIX_INDICATED_ALTITUDE, /* 0x3324 altimeter reading, from altimeter setting; ft; reads only */
  TAVRIX_MAGNETIC_VARIATION, /* 0x02A0 magnetic variation, positive east; deg; reads only */
  TAVRIX_TAS, /* 0x02B8 true airspeed; kt; reads only */
  TAVRIX_IAS, /* 0x02BC indicated airspeed; kt; for writing */
  TAVRIX_VERTICAL_SPEED, /* 0x02C8 vertical speed, positive climbing; m/s; reads only */
  TAVRIX_VERTICAL_SPEED_M_MIN, /* 0x0842 vertical speed, positive down; m/min; reads only */
  TAVRIX_TOUCHDOWN_SPEED, /* 0x030C vertical speed, kept from the last moment in the air, positive climbing; m/s; read-only */
  TAVRIX_VERTICAL_SPEED_FT_S, /* 0x31A0 vertical speed, positive climbing; ft/s; reads only */
  TAVRIX_MACH, /* 0x11C6 Mach number; reads only */
  TAVRIX_SLIP, /* 0x036E slip ball, -128 left to 127 right, positive right; reads only */
  TAVRIX_TURN_RATE, /* 0x037C turn rate, 512 is a standard turn to the right, positive right; reads only */
  TAVRIX_GROUND_SPEED, /* 0x02B4 ground speed; m/s; read-only */
  TAVRIX_GROUND_SPEED_M_S, /* 0x6030 ground speed; m/s; reads only */
  TAVRIX_ON_GROUND, /* 0x0366 on the ground; reads only */
  TAVRIX_STALL, /* 0x036C stall warning; reads only */
  TAVRIX_ACCEL_SIDE, /* 0x3060 acceleration to the side; ft/s2; reads only */
  TAVRIX_ACCEL_VERTICAL, /* 0x3068 vertical acceleration; ft/s2; reads only */
  TAVRIX_ACCEL_FORWARD, /* 0x3070 acceleration along the fuselage; ft/s2; reads only */
  TAVRIX_ACCEL_PITCH, /* 0x3078 pitch acceleration, positive nose up; rad/s2; reads only */
  TAVRIX_ACCEL_ROLL, /* 0x3080 roll acceleration, positive right wing down; rad/s2; reads only */
  TAVRIX_ACCEL_YAW, /* 0x3088 yaw acceleration, positive nose right; rad/s2; reads only */
  TAVRIX_SPEED_FORWARD, /* 0x3090 velocity along the fuselage, positive forward; ft/s; for writing */
  TAVRIX_SPEED_SIDE, /* 0x3098 velocity to the side, positive right; ft/s; reads only */
  TAVRIX_SPEED_VERTICAL, /* 0x30A0 velocity along the vertical axis of the aircraft, positive down; ft/s; reads only */
  TAVRIX_PITCH_RATE, /* 0x30A8 pitch rate, positive nose up; rad/s; reads only */
  TAVRIX_PITCH_RATE_COPY, /* 0x31A8 pitch rate, second copy, positive nose up; rad/s; reads only */
  TAVRIX_ROLL_RATE, /* 0x30B0 roll rate, positive right wing down; rad/s; reads only */
  TAVRIX_ROLL_RATE_COPY, /* 0x31B0 roll rate, second copy, positive right wing down; rad/s; reads only */
  TAVRIX_YAW_RATE, /* 0x30B8 yaw rate, positive nose right; rad/s; reads only */
  TAVRIX_ALPHA, /* 0x2ED0 angle of attack, positive nose above the airflow; rad; reads only */
  TAVRIX_BETA, /* 0x2ED8 sideslip; rad; reads only */
  TAVRIX_ALPHA_PERCENT, /* 0x11BE relative angle of attack: 100 % less one per degree; %; reads only */
  TAVRIX_LOAD_FACTOR, /* 0x11BA load factor; g; reads only */
  TAVRIX_FD_PITCH, /* 0x2EE8 flight director pitch; deg; reads only */
  TAVRIX_FD_BANK, /* 0x2EF0 flight director bank; deg; reads only */
  TAVRIX_AP, /* 0x07BC autopilot master; for writing */
  TAVRIX_FD, /* 0x2EE0 flight director; for writing */
  TAVRIX_AP_WING_LEVELER, /* 0x07C0 wing leveler; for writing */
  TAVRIX_AP_NAV, /* 0x07C4 navigation hold, armed or engaged; for writing */
  TAVRIX_AP_HEADING, /* 0x07C8 heading hold; for writing */
  TAVRIX_AP_ALTITUDE, /* 0x07D0 altitude hold; for writing */
  TAVRIX_AP_SPEED, /* 0x07DC airspeed hold; for writing */
  TAVRIX_AP_MACH, /* 0x07E4 Mach hold; for writing */
  TAVRIX_AP_VERTICAL_SPEED, /* 0x07EC vertical speed hold; for writing */
  TAVRIX_AP_THRUST, /* 0x07F4 thrust hold; reads only */
  TAVRIX_AP_APPROACH, /* 0x0800 approach hold, armed or engaged; for writing */
  TAVRIX_TOGA, /* 0x080C take-off and go-around; for writing */
  TAVRIX_AUTOTHROTTLE, /* 0x0810 autothrottle armed; for writing */
  TAVRIX_AP_HEADING_BUG, /* 0x07CC selected heading, from magnetic north; deg; for writing */
  TAVRIX_AP_ALTITUDE_SET, /* 0x07D4 selected altitude, from altimeter setting; m; for writing */
  TAVRIX_AP_IAS_SET, /* 0x07E2 selected airspeed; kt; for writing */
  TAVRIX_AP_MACH_SET, /* 0x07E8 selected Mach number; for writing */
  TAVRIX_AP_VERTICAL_SPEED_SET, /* 0x07F2 selected vertical speed, positive climbing; ft/min; for writing */
  TAVRIX_AP_BACK_COURSE, /* 0x0804 back course; for writing */
  TAVRIX_YAW_DAMPER, /* 0x0808 yaw damper; for writing */
  TAVRIX_AUTOBRAKE, /* 0x2F80 autobrake; for writing */
  TAVRIX_ELEVATOR, /* 0x0BB2 elevator input, positive pulled; %; for writing */
  TAVRIX_ELEVATOR_COPY, /* 0x584A elevator input, second copy, positive pulled; %; reads only */
  TAVRIX_ELEVATOR_POSITION, /* 0x0BB4 elevator position; %; reads only */
  TAVRIX_AILERON_POSITION, /* 0x0BB8 aileron position; %; reads only */
  TAVRIX_AILERON_DEFLECTION, /* 0x2EA8 aileron deflection, ten times the angle in radians; deg; reads only */
  TAVRIX_RUDDER, /* 0x0BBA rudder input, positive right; %; for writing */
  TAVRIX_RUDDER_POSITION, /* 0x0BBC rudder position; %; reads only */
  TAVRIX_RUDDER_DEFLECTION, /* 0x2EB8 rudder deflection, ten times the angle in radians; deg; reads only */
  TAVRIX_BLADE_PITCH, /* 0x0BBE blade pitch of engine 1; deg; for writing */
  TAVRIX_AILERON, /* 0x0BB6 aileron input, positive right; %; for writing */
  TAVRIX_AILERON_COPY, /* 0x584C aileron input, second copy, positive right; %; reads only */
  TAVRIX_ELEVATOR_TRIM, /* 0x0BC0 elevator trim control, positive nose up; %; for writing */
  TAVRIX_ELEVATOR_TRIM_INDICATOR, /* 0x0BC2 elevator trim indicator, positive nose up; %; reads only */
  TAVRIX_ELEVATOR_TRIM_INDICATOR_ANGLE, /* 0x2E98 elevator trim indicator, radians, positive nose up; deg; reads only */
  TAVRIX_AILERON_TRIM, /* 0x0C02 aileron trim, positive right; %; for writing */
  TAVRIX_RUDDER_TRIM, /* 0x0C04 rudder trim, positive right; %; for writing */
  TAVRIX_ELEVATOR_TRIM_ANGLE, /* 0x2EA0 elevator trim, radians, positive nose up; deg; for writing */
  TAVRIX_AILERON_TRIM_ANGLE, /* 0x2EB0 aileron trim, radians, positive right; deg; for writing */
  TAVRIX_RUDDER_TRIM_ANGLE, /* 0x2EC0 rudder trim, radians, positive right; deg; for writing */
  TAVRIX_LEFT_BRAKE, /* 0x0BC4 left toe brake; %; for writing */
  TAVRIX_RIGHT_BRAKE, /* 0x0BC6 right toe brake; %; for writing */
  TAVRIX_PARKING_BRAKE, /* 0x0BC8 parking brake; %; for writing */
  TAVRIX_BRAKES_APPLIED, /* 0x0BCA 16383 while a brake is above 20 %; reads only */
  TAVRIX_LEFT_BRAKE_AXIS, /* 0x3416 left brake axis input; %; reads only */
  TAVRIX_RIGHT_BRAKE_AXIS, /* 0x3418 right brake axis input; %; reads only */
  TAVRIX_SPEED_BRAKE_ARMED, /* 0x0BCC speed brake armed; for writing */
  TAVRIX_SPEED_BRAKE, /* 0x0BD0 speed brake lever: 0 down, 4800 armed, 5620 to 16383 deployed; for writing */
  TAVRIX_LEFT_SPOILER, /* 0x0BD4 left spoiler position; %; reads only */
  TAVRIX_RIGHT_SPOILER, /* 0x0BD8 right spoiler position; %; reads only */
  TAVRIX_FLAPS, /* 0x0BDC flap lever; %; for writing */
  TAVRIX_LEFT_FLAP_POSITION, /* 0x0BE0 left flap position; %; reads only */
  TAVRIX_RIGHT_FLAP_POSITION, /* 0x0BE4 right flap position; %; reads only */
  TAVRIX_SLAT_LEFT_INBOARD, /* 0x30E8 leading edge, left inboard; %; reads only */
  TAVRIX_SLAT_LEFT_OUTBOARD, /* 0x30EA leading edge, left outboard; %; reads only */
  TAVRIX_SLAT_RIGHT_INBOARD, /* 0x30EC leading edge, right inboard; %; reads only */
  TAVRIX_SLAT_RIGHT_OUTBOARD, /* 0x30EE leading edge, right outboard; %; reads only */
  TAVRIX_FLAP_LEFT_INBOARD, /* 0x30F0 trailing edge, left inboard; deg; reads only */
  TAVRIX_FLAP_LEFT_OUTBOARD, /* 0x30F2 trailing edge, left outboard; deg; reads only */
  TAVRIX_FLAP_RIGHT_INBOARD, /* 0x30F4 trailing edge, right inboard; deg; reads only */
  TAVRIX_FLAP_RIGHT_OUTBOARD, /* 0x30F6 trailing edge, right outboard; deg; reads only */
  TAVRIX_GEAR, /* 0x0BE8 gear lever: 0 up, 16383 down; %; for writing */
  TAVRIX_NOSE_GEAR, /* 0x0BEC nose gear; %; reads only */
  TAVRIX_RIGHT_GEAR, /* 0x0BF0 right main gear; %; reads only */
  TAVRIX_LEFT_GEAR, /* 0x0BF4 left main gear; %; reads only */
  TAVRIX_NOSE_WHEEL_ANGLE, /* 0x6D8A nose-wheel steering angle; deg; reads only */
  TAVRIX_NOSE_WHEEL_SPEED, /* 0x6F00 nose-wheel speed; reads only */
  TAVRIX_JOYSTICK_DISCONNECT, /* 0x310A takes controls from the joystick; for writing */
  TAVRIX_SLEW, /* 0x05DC slew mode; for writing */
  TAVRIX_POSITION_FREEZE, /* 0x3541 holds the place over ground; height and attitude stay free; for writing */
  TAVRIX_PUSHBACK_STATE, /* 0x31F0 pushback; reads only */
  TAVRIX_PUSHBACK, /* 0x31F4 pushback command; for writing */
  TAVRIX_THROTTLE1, /* 0x088C throttle lever; %; for writing */
  TAVRIX_THROTTLE2, /* 0x0924 throttle lever; %; for writing */
  TAVRIX_THROTTLE3, /* 0x09BC throttle lever; %; for writing */
  TAVRIX_THROTTLE_INPUT3, /* 0x3334 throttle lever input; %; reads only */
  TAVRIX_THROTTLE4, /* 0x0A54 throttle lever; %; for writing */
  TAVRIX_THROTTLE_INPUT4, /* 0x3336 throttle lever input; %; reads only */
  TAVRIX_THROTTLE_DIRECT1, /* 0x089A throttle past the axis cut-off; %; for writing */
  TAVRIX_THROTTLE_DIRECT2, /* 0x0932 throttle past the axis cut-off; %; for writing */
  TAVRIX_THROTTLE_DIRECT3, /* 0x09CA throttle past the axis cut-off; %; for writing */
  TAVRIX_THROTTLE_DIRECT4, /* 0x0A62 throttle past the axis cut-off; %; for writing */
  TAVRIX_MIXTURE1, /* 0x0890 mixture or fuel cut-off lever; %; for writing */
  TAVRIX_MIXTURE2, /* 0x0928 mixture or fuel cut-off lever; %; for writing */
  TAVRIX_MIXTURE3, /* 0x09C0 mixture lever; %; for writing */
  TAVRIX_MIXTURE4, /* 0x0A58 mixture lever; %; for writing */
  TAVRIX_FUEL_VALVE1, /* 0x3590 fuel valve open; for writing */
  TAVRIX_FUEL_VALVE2, /* 0x3594 fuel valve open; for writing */
  TAVRIX_MAGNETO1, /* 0x0892 magneto or starter switch; for writing */
  TAVRIX_STARTER1, /* 0x0506 starter engaged; reads only */
  TAVRIX_MAGNETO2, /* 0x092A magneto or starter switch; for writing */
  TAVRIX_STARTER2, /* 0x0507 starter engaged; reads only */
  TAVRIX_MAGNETO3, /* 0x09C2 magneto or starter switch; for writing */
  TAVRIX_STARTER3, /* 0x0508 starter engaged; reads only */
  TAVRIX_MAGNETO4, /* 0x0A5A magneto or starter switch; for writing */
  TAVRIX_STARTER4, /* 0x0509 starter engaged; reads only */
  TAVRIX_IGNITION1, /* 0x208C ignition switch; for writing */
  TAVRIX_IGNITION2, /* 0x218C ignition switch; for writing */
  TAVRIX_IGNITION3, /* 0x228C ignition switch; for writing */
  TAVRIX_IGNITION4, /* 0x238C ignition switch; for writing */
  TAVRIX_IGNITER1, /* 0x6D8E igniter switch; for writing */
  TAVRIX_IGNITER2, /* 0x6D8F igniter switch; for writing */
  TAVRIX_RUNNING_ENG1, /* 0x0894 engine running; reads only */
  TAVRIX_RUNNING_ENG2, /* 0x092C engine running; reads only */
  TAVRIX_RUNNING_ENG3, /* 0x09C4 engine running; reads only */
  TAVRIX_RUNNING_ENG4, /* 0x0A5C engine running; reads only */
  TAVRIX_N2_WORD_ENG1, /* 0x0896 N2; %; reads only */
  TAVRIX_N2_ENG1, /* 0x2008 N2; %; reads only */
  TAVRIX_N2_CORRECTED_ENG1, /* 0x2018 corrected N2; %; reads only */
  TAVRIX_N2_WORD_ENG2, /* 0x092E N2; %; reads only */
  TAVRIX_N2_ENG2, /* 0x2108 N2; %; reads only */
  TAVRIX_N2_CORRECTED_ENG2, /* 0x2118 corrected N2; %; reads only */
  TAVRIX_N2_WORD_ENG3, /* 0x09C6 N2; %; reads only */
  TAVRIX_N2_ENG3, /* 0x2208 N2; %; reads only */
  TAVRIX_N2_WORD_ENG4, /* 0x0A5E N2; %; reads only */
  TAVRIX_N2_ENG4, /* 0x2308 N2; %; reads only */
  TAVRIX_N1_WORD_ENG1, /* 0x0898 N1; %; reads only */
  TAVRIX_N1_ENG1, /* 0x2000 N1; %; reads only */
  TAVRIX_N1_WORD_ENG2, /* 0x0930 N1; %; reads only */
  TAVRIX_N1_ENG2, /* 0x2100 N1; %; reads only */
  TAVRIX_N1_WORD_ENG3, /* 0x09C8 N1; %; reads only */
  TAVRIX_N1_ENG3, /* 0x2200 N1; %; reads only */
  TAVRIX_N1_WORD_ENG4, /* 0x0A60 N1; %; reads only */
  TAVRIX_N1_ENG4, /* 0x2300 N1; %; reads only */
  TAVRIX_FUEL_FLOW_WORD_ENG1, /* 0x08A0 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_ENG1, /* 0x0918 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_TURBINE_ENG1, /* 0x2060 fuel flow, turbine block; lb/h; reads only */
  TAVRIX_FUEL_FLOW_WORD_ENG2, /* 0x0938 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_ENG2, /* 0x09B0 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_TURBINE_ENG2, /* 0x2160 fuel flow, turbine block; lb/h; reads only */
  TAVRIX_FUEL_FLOW_WORD_ENG3, /* 0x09D0 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_ENG3, /* 0x0A48 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_TURBINE_ENG3, /* 0x2260 fuel flow, turbine block; lb/h; reads only */
  TAVRIX_FUEL_FLOW_WORD_ENG4, /* 0x0A68 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_ENG4, /* 0x0AE0 fuel flow; lb/h; reads only */
  TAVRIX_FUEL_FLOW_TURBINE_ENG4, /* 0x2360 fuel flow, turbine block; lb/h; reads only */
  TAVRIX_OIL_TEMP_ENG1, /* 0x08B8 oil temperature; degC; reads only */
  TAVRIX_OIL_TEMP_ENG2, /* 0x0950 oil temperature; degC; reads only */
  TAVRIX_OIL_TEMP_ENG3, /* 0x09E8 oil temperature; degC; reads only */
  TAVRIX_OIL_TEMP_ENG4, /* 0x0A80 oil temperature; degC; reads only */
  TAVRIX_OIL_PRESSURE_ENG1, /* 0x08BA oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_PSF_ENG1, /* 0x3B60 oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_ENG2, /* 0x0952 oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_PSF_ENG2, /* 0x3AA0 oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_ENG3, /* 0x09EA oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_PSF_ENG3, /* 0x39E0 oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_ENG4, /* 0x0A82 oil pressure; psi; reads only */
  TAVRIX_OIL_PRESSURE_PSF_ENG4, /* 0x3920 oil pressure; psi; reads only */
  TAVRIX_EPR_WORD_ENG1, /* 0x08BC engine pressure ratio; reads only */
  TAVRIX_EPR_ENG1, /* 0x2030 engine pressure ratio; reads only */
  TAVRIX_EPR_WORD_ENG2, /* 0x0954 engine pressure ratio; reads only */
  TAVRIX_EPR_ENG2, /* 0x2130 engine pressure ratio; reads only */
  TAVRIX_EPR_WORD_ENG3, /* 0x09EC engine pressure ratio; reads only */
  TAVRIX_EPR_WORD_ENG4, /* 0x0A84 engine pressure ratio; reads only */
  TAVRIX_EGT_ENG1, /* 0x08BE exhaust gas temperature; degC; reads only */
  TAVRIX_EGT_RANKINE_ENG1, /* 0x3B70 exhaust gas temperature; degC; reads only */
  TAVRIX_EGT_ENG2, /* 0x0956 exhaust gas temperature; degC; reads only */
  TAVRIX_EGT_RANKINE_ENG2, /* 0x3AB0 exhaust gas temperature; degC; reads only */
  TAVRIX_EGT_ENG3, /* 0x09EE exhaust gas temperature; degC; reads only */
  TAVRIX_EGT_ENG4, /* 0x0A86 exhaust gas temperature; degC; reads only */
  TAVRIX_ITT_ENG1, /* 0x2038 inter-turbine temperature; degC; reads only */
  TAVRIX_ITT_ENG2, /* 0x2138 inter-turbine temperature; degC; reads only */
  TAVRIX_MANIFOLD_ENG1, /* 0x08C0 manifold pressure; inHg; reads only */
  TAVRIX_MANIFOLD_PSF_ENG1, /* 0x37E8 manifold pressure; inHg; reads only */
  TAVRIX_MANIFOLD_ENG2, /* 0x0958 manifold pressure; inHg; reads only */
  TAVRIX_MANIFOLD_PSF_ENG2, /* 0x3728 manifold pressure; inHg; reads only */
  TAVRIX_MANIFOLD_ENG3, /* 0x09F0 manifold pressure; inHg; reads only */
  TAVRIX_MANIFOLD_ENG4, /* 0x0A88 manifold pressure; inHg; reads only */
  TAVRIX_OIL_QUANTITY_ENG1, /* 0x08D0 oil quantity; %; reads only */
  TAVRIX_OIL_QUANTITY_ENG2, /* 0x0968 oil quantity; %; reads only */
  TAVRIX_OIL_QUANTITY_ENG3, /* 0x0A00 oil quantity; %; reads only */
  TAVRIX_OIL_QUANTITY_ENG4, /* 0x0A98 oil quantity; %; reads only */
  TAVRIX_VIBRATION_ENG1, /* 0x08D4 engine vibration; reads only */
  TAVRIX_VIBRATION_ENG2, /* 0x096C engine vibration; reads only */
  TAVRIX_HYD_PRESSURE_ENG1, /* 0x08D8 hydraulic pressure; psi; reads only */
  TAVRIX_HYD_PRESSURE_ENG2, /* 0x0970 hydraulic pressure; psi; reads only */
  TAVRIX_HYD_PRESSURE_ENG3, /* 0x0A08 hydraulic pressure; psi; reads only */
  TAVRIX_HYD_PRESSURE_ENG4, /* 0x0AA0 hydraulic pressure; psi; reads only */
  TAVRIX_HYD_QUANTITY_ENG1, /* 0x08DC hydraulic quantity; %; reads only */
  TAVRIX_HYD_QUANTITY_ENG2, /* 0x0974 hydraulic quantity; %; reads only */
  TAVRIX_HYD_QUANTITY_ENG3, /* 0x0A0C hydraulic quantity; %; reads only */
  TAVRIX_HYD_QUANTITY_ENG4, /* 0x0AA4 hydraulic quantity; %; reads only */
  TAVRIX_ROTOR_SPEED, /* 0x0908 rotor speed; rpm; reads only */
  TAVRIX_TORQUE_ENG1, /* 0x0920 torque; lb ft; reads only */
  TAVRIX_TORQUE_ENG2, /* 0x09B8 torque; lb ft; reads only */
  TAVRIX_TORQUE_ENG3, /* 0x0A50 torque; lb ft; reads only */
  TAVRIX_TORQUE_ENG4, /* 0x0AE8 torque; lb ft; reads only */
  TAVRIX_TORQUE_RATIO_ENG1, /* 0x2028 torque as a share of the limit; %; reads only */
  TAVRIX_TORQUE_RATIO_ENG2, /* 0x2128 torque as a share of the limit; %; reads only */
  TAVRIX_THRUST_ENG1, /* 0x204C jet thrust; lbf; reads only */
  TAVRIX_THRUST_PROP1, /* 0x2410 propeller thrust; lbf; reads only */
  TAVRIX_THRUST_ENG2, /* 0x214C jet thrust; lbf; reads only */
  TAVRIX_THRUST_PROP2, /* 0x2510 propeller thrust; lbf; reads only */
  TAVRIX_THRUST_ENG3, /* 0x224C jet thrust; lbf; reads only */
  TAVRIX_THRUST_ENG4, /* 0x234C jet thrust; lbf; reads only */
  TAVRIX_RPM_PROP1, /* 0x2400 propeller speed; rpm; reads only */
  TAVRIX_RPM_PROP2, /* 0x2500 propeller speed; rpm; reads only */
  TAVRIX_RPM_RATIO_PROP1, /* 0x2408 propeller speed as a share of the maximum; %; reads only */
  TAVRIX_RPM_RATIO_PROP2, /* 0x2508 propeller speed as a share of the maximum; %; reads only */
  TAVRIX_RPM_ENG1, /* 0x10708 engine speed; rpm; reads only */
  TAVRIX_RPM_ENG2, /* 0x1070A engine speed; rpm; reads only */
  TAVRIX_ENGINE_TYPE, /* 0x0609 engine type; read-only */
  TAVRIX_ENGINE_COUNT, /* 0x0AEC number of engines; read-only */
  TAVRIX_ANTI_ICE_ENG1, /* 0x08B2 engine anti-ice or carburettor heat; for writing */
  TAVRIX_ANTI_ICE_ENG2, /* 0x094A engine anti-ice or carburettor heat; for writing */
  TAVRIX_ANTI_ICE_ENG3, /* 0x09E2 engine anti-ice or carburettor heat; for writing */
  TAVRIX_ANTI_ICE_ENG4, /* 0x0A7A engine anti-ice or carburettor heat; for writing */
  TAVRIX_PITOT_HEAT, /* 0x029C pitot heat; for writing */
  TAVRIX_DEICE, /* 0x337D structural de-ice; for writing */
  TAVRIX_DEICE_LEFT, /* 0x6F0B surface heat, left wing; for writing */
  TAVRIX_DEICE_RIGHT, /* 0x6F0C surface heat, right wing; for writing */
  TAVRIX_WIPER, /* 0x6D88 wiper speed; for writing */
  TAVRIX_LIGHTS, /* 0x0D0C all lights; for writing */
  TAVRIX_NAV_LIGHTS, /* 0x0280 navigation lights; reads only */
  TAVRIX_BEACON_STROBE, /* 0x0281 beacon or strobe lights; for writing */
  TAVRIX_LANDING_LIGHTS, /* 0x028C landing lights; for writing */
  TAVRIX_GENERATORS, /* 0x3101 generators of all engines; for writing */
  TAVRIX_BATTERY, /* 0x3102 battery switch; for writing */
  TAVRIX_AVIONICS, /* 0x3103 avionics master switch; for writing */
  TAVRIX_FUEL_PUMPS, /* 0x3104 fuel pumps of all engines; for writing */
  TAVRIX_APU_GENERATOR, /* 0x0B51 APU generator switch; for writing */
  TAVRIX_APU_GENERATOR_ACTIVE, /* 0x0B52 APU generator active; reads only */
  TAVRIX_APU_SPEED, /* 0x0B54 APU speed; %; reads only */
  TAVRIX_APU, /* 0x0B58 APU running, start; for writing */
  TAVRIX_APU_SWITCH, /* 0x6DA9 APU switch; for writing */
  TAVRIX_SUCTION, /* 0x0B18 gyro suction; inHg; reads only */
  TAVRIX_SOUND, /* 0x0B20 sound on; for writing */
  TAVRIX_SOUND_FLAG, /* 0x0B24 sound on; read-only */
  TAVRIX_FUEL_CENTRE_CAPACITY, /* 0x0B78 capacity of the centre tank; US gal; read-only */
  TAVRIX_FUEL_LEFT_CAPACITY, /* 0x0B80 capacity of the left main tank; US gal; read-only */
  TAVRIX_FUEL_LEFT_AUX_CAPACITY, /* 0x0B88 capacity of the left auxiliary tank; US gal; reads only */
  TAVRIX_FUEL_LEFT_TIP_CAPACITY, /* 0x0B90 capacity of the left tip tank; US gal; reads only */
  TAVRIX_FUEL_RIGHT_CAPACITY, /* 0x0B98 capacity of the right main tank; US gal; read-only */
  TAVRIX_FUEL_RIGHT_AUX_CAPACITY, /* 0x0BA0 capacity of the right auxiliary tank; US gal; reads only */
  TAVRIX_FUEL_RIGHT_TIP_CAPACITY, /* 0x0BA8 capacity of the right tip tank; US gal; reads only */
  TAVRIX_FUEL_CENTRE2_CAPACITY, /* 0x1248 capacity of the second centre tank; US gal; reads only */
  TAVRIX_FUEL_CENTRE3_CAPACITY, /* 0x1250 capacity of the third centre tank; US gal; reads only */
  TAVRIX_FUEL_DENSITY, /* 0x0AF4 fuel weight; lb/US gal; reads only */
  TAVRIX_FUEL_CENTRE, /* 0x0B74 level of the centre tank; %; for writing */
  TAVRIX_FUEL_LEFT, /* 0x0B7C level of the left main tank; %; for writing */
  TAVRIX_FUEL_LEFT_AUX, /* 0x0B84 level of the left auxiliary tank; %; for writing */
  TAVRIX_FUEL_LEFT_TIP, /* 0x0B8C level of the left tip tank; %; for writing */
  TAVRIX_FUEL_RIGHT, /* 0x0B94 level of the right main tank; %; for writing */
  TAVRIX_FUEL_RIGHT_AUX, /* 0x0B9C level of the right auxiliary tank; %; for writing */
  TAVRIX_FUEL_RIGHT_TIP, /* 0x0BA4 level of the right tip tank; %; for writing */
  TAVRIX_FUEL_CENTRE2, /* 0x1244 level of the second centre tank; %; for writing */
  TAVRIX_FUEL_CENTRE3, /* 0x124C level of the third centre tank; %; for writing */
  TAVRIX_FUEL_TOTAL, /* 0x126C total fuel; lb; for writing */
  TAVRIX_EMPTY_WEIGHT, /* 0x1330 empty weight; lb; for writing */
  TAVRIX_MAX_WEIGHT, /* 0x1334 maximum gross weight; lb; for writing */
  TAVRIX_PAYLOAD_STATIONS, /* 0x13FC number of payload stations; reads only */
  TAVRIX_PAYLOAD, /* 0x1400 weight at payload station 1; lb; for writing */
  TAVRIX_ZERO_FUEL_WEIGHT, /* 0x3BFC zero-fuel weight; lb; for writing */
  TAVRIX_GROSS_WEIGHT, /* 0x30C0 gross weight; lb; reads only */
  TAVRIX_CENTRE_OF_GRAVITY, /* 0x2EF8 centre of gravity; for writing */
  TAVRIX_JETTISON_TOTAL, /* 0x16020 jettisonable load, total; kg; read-only */
  TAVRIX_JETTISON, /* 0x16024 jettisonable load; kg; for writing */
  TAVRIX_CABIN_ALTITUDE, /* 0x0318 cabin altitude, from mean sea level; ft; reads only */
  TAVRIX_CABIN_ALTITUDE_GOAL, /* 0x031C cabin altitude goal, from mean sea level; ft; for writing */
  TAVRIX_CABIN_RATE, /* 0x0320 cabin rate of change; for writing */
  TAVRIX_EXITS, /* 0x3367 exits open; read-only */
  TAVRIX_RUNWAY_CONDITION, /* 0x6DA8 runway condition; for writing */
  TAVRIX_SKIDS, /* 0x6F02 undercarriage has skids; reads only */
  TAVRIX_FAIL_ADF1, /* 0x0B64 ADF 1 failed; for writing */
  TAVRIX_FAIL_AIRSPEED, /* 0x0B65 airspeed indicator failed; for writing */
  TAVRIX_FAIL_ALTIMETER, /* 0x0B66 altimeter failed; for writing */
  TAVRIX_FAIL_ATTITUDE, /* 0x0B67 attitude indicator failed; for writing */
  TAVRIX_FAIL_COM1, /* 0x0B68 COM 1 failed; for writing */
  TAVRIX_FAIL_ENGINES, /* 0x0B6B engines failed; for writing */
  TAVRIX_PANEL_FAILED, /* 0x3BE6 partial-panel failures; reads only */
  TAVRIX_FAIL_PANEL, /* 0x3BD6 partial-panel failure command; for writing */
  TAVRIX_FAIL_NOW, /* 0x6DA4 fail the selected systems now; for writing */
  TAVRIX_FAIL_NUMBER, /* 0x6DAA fail a system by number; for writing */
  TAVRIX_AUDIO_PANEL, /* 0x3122 audio panel; for writing */
  TAVRIX_COM1, /* 0x034E COM1 frequency; MHz; for writing */
  TAVRIX_COM_STANDBY1, /* 0x311A COM1 standby frequency; MHz; for writing */
  TAVRIX_NAV1, /* 0x0350 NAV frequency; MHz; for writing */
  TAVRIX_NAV_STANDBY1, /* 0x311E NAV1 standby frequency; MHz; for writing */
  TAVRIX_ADF1, /* 0x034C ADF frequency; kHz; for writing */
  TAVRIX_COM2, /* 0x3118 COM2 frequency; MHz; for writing */
  TAVRIX_COM_STANDBY2, /* 0x311C COM2 standby frequency; MHz; for writing */
  TAVRIX_NAV2, /* 0x0352 NAV frequency; MHz; for writing */
  TAVRIX_NAV_STANDBY2, /* 0x3120 NAV2 standby frequency; MHz; for writing */
  TAVRIX_ADF2, /* 0x02D4 ADF frequency; kHz; for writing */
  TAVRIX_TRANSPONDER, /* 0x0354 transponder code; for writing */
  TAVRIX_TRANSPONDER_MODE, /* 0x6D8C transponder mode; for writing */
  TAVRIX_RADIO_EXCHANGE, /* 0x3123 exchange active and standby frequency; for writing */
  TAVRIX_CDI1, /* 0x0C48 course needle; dots; read-only */
  TAVRIX_CDI_EXACT1, /* 0x2AAC course needle, unrounded; dots; reads only */
  TAVRIX_GSI1, /* 0x0C49 glide-slope needle; dots; read-only */
  TAVRIX_GSI_EXACT1, /* 0x2AB0 glide-slope needle, unrounded; dots; reads only */
  TAVRIX_CDI2, /* 0x0C59 course needle; dots; read-only */
  TAVRIX_CDI_EXACT2, /* 0x2AB4 course needle, unrounded; dots; reads only */
  TAVRIX_GSI2, /* 0x0C6E glide-slope needle; dots; read-only */
  TAVRIX_GSI_EXACT2, /* 0x2AB8 glide-slope needle, unrounded; dots; reads only */
  TAVRIX_RADIAL1, /* 0x0C50 radial from the station, from magnetic north; deg; read-only */
  TAVRIX_RADIAL2, /* 0x0C60 radial from the station, from magnetic north; deg; read-only */
  TAVRIX_NAV_BEARING1, /* 0x0C56 relative bearing to the station, from nose of the aircraft; deg; reads only */
  TAVRIX_NAV_BEARING2, /* 0x0C5C relative bearing to the station, from nose of the aircraft; deg; reads only */
  TAVRIX_INNER_MARKER, /* 0x0BAC over the inner marker; reads only */
  TAVRIX_MIDDLE_MARKER, /* 0x0BAE over the middle marker; reads only */
  TAVRIX_OUTER_MARKER, /* 0x0BB0 over the outer marker; reads only */
  TAVRIX_OBS1, /* 0x0C4E omni bearing selector, from magnetic north; deg; for writing */
  TAVRIX_OBS2, /* 0x0C5E omni bearing selector, from magnetic north; deg; for writing */
  TAVRIX_DME1, /* 0x0300 DME distance; nm; reads only */
  TAVRIX_DME2, /* 0x0306 DME distance; nm; reads only */
  TAVRIX_TO_FROM1, /* 0x0C4B to or from the station; reads only */
  TAVRIX_TO_FROM2, /* 0x0C5B to or from the station; reads only */
  TAVRIX_GLIDE_SLOPE1, /* 0x0C4C glide slope received; reads only */
  TAVRIX_GLIDE_SLOPE2, /* 0x0C6F glide slope received; reads only */
  TAVRIX_DME_TEXT1, /* 0x0C29 DME distance as text; reads only */
  TAVRIX_DME_TEXT2, /* 0x0C33 DME distance as text; reads only */
  TAVRIX_RADIO_STATUS, /* 0x3300 radio status; reads only */
  TAVRIX_ADF_IDENT1, /* 0x303E station identifier; reads only */
  TAVRIX_ADF_IDENT2, /* 0x02DC station identifier; reads only */
  TAVRIX_NAV_SIGNAL1, /* 0x0C52 signal strength; reads only */
  TAVRIX_NAV_SIGNAL2, /* 0x0C62 signal strength; reads only */
  TAVRIX_NAV_LATITUDE1, /* 0x085C latitude of the station, on an ILS of the glide slope, positive north; deg; reads only */
  TAVRIX_NAV_LONGITUDE1, /* 0x0864 longitude of the same, positive east; deg; reads only */
  TAVRIX_NAV_ELEVATION1, /* 0x086C elevation of the same, from mean sea level; m; reads only */
  TAVRIX_LOCALIZER_LATITUDE1, /* 0x0874 latitude of the localizer, 0 without one, positive north; deg; reads only */
  TAVRIX_LOCALIZER_LONGITUDE1, /* 0x0878 longitude of the localizer, positive east; deg; reads only */
  TAVRIX_LOCALIZER_ELEVATION1, /* 0x087C elevation of the localizer, from mean sea level; m; reads only */
  TAVRIX_LOCALIZER_RECIPROCAL1, /* 0x0870 reciprocal course of the localizer; 0 without one, from true north; deg; reads only */
  TAVRIX_GLIDE_SLOPE_ANGLE1, /* 0x0872 glide-slope inclination, positive upwards; deg; reads only */
  TAVRIX_LOCALIZER_BITS1, /* 0x0C4A localizer and signal; reads only */
  TAVRIX_NAV_CODE1, /* 0x0C4D station code; reads only */
  TAVRIX_HAS_NAV1, /* 0x07A0 NAV receiver available, always 1; reads only */
  TAVRIX_NAV_IDENT1, /* 0x3000 station identifier; reads only */
  TAVRIX_NAV_NAME1, /* 0x3006 station name; reads only */
  TAVRIX_NAV_LATITUDE2, /* 0x0858 latitude of the station, on an ILS of the glide slope, positive north; deg; reads only */
  TAVRIX_NAV_LONGITUDE2, /* 0x0860 longitude of the same, positive east; deg; reads only */
  TAVRIX_NAV_ELEVATION2, /* 0x0868 elevation of the same, from mean sea level; m; reads only */
  TAVRIX_LOCALIZER_LATITUDE2, /* 0x084C latitude of the localizer, 0 without one, positive north; deg; reads only */
  TAVRIX_LOCALIZER_LONGITUDE2, /* 0x0850 longitude of the localizer, positive east; deg; reads only */
  TAVRIX_LOCALIZER_ELEVATION2, /* 0x0854 elevation of the localizer, from mean sea level; m; reads only */
  TAVRIX_LOCALIZER_RECIPROCAL2, /* 0x0844 reciprocal course of the localizer; 0 without one, from true north; deg; reads only */
  TAVRIX_GLIDE_SLOPE_ANGLE2, /* 0x0846 glide-slope inclination, positive upwards; deg; reads only */
  TAVRIX_LOCALIZER_BITS2, /* 0x0C5A localizer and signal; reads only */
  TAVRIX_NAV_CODE2, /* 0x0C70 station code; reads only */
  TAVRIX_HAS_NAV2, /* 0x07A4 NAV receiver available, always 1; reads only */
  TAVRIX_NAV_IDENT2, /* 0x301F station identifier; reads only */
  TAVRIX_NAV_NAME2, /* 0x3025 station name; reads only */
  TAVRIX_AIRCRAFT, /* 0x3D00 title of the aircraft; reads only */
  TAVRIX_AIRCRAFT_FILE, /* 0x3C00 file of the aircraft, without the simulator's folder; reads only */
  TAVRIX_SIMULATOR_FOLDER, /* 0x3E00 folder of the simulator; reads only */
  TAVRIX_ATC_NUMBER, /* 0x3130 flight number for traffic control; for writing */
  TAVRIX_ATC_TAIL_NUMBER, /* 0x313C tail number for traffic control; for writing */
  TAVRIX_VERSION, /* 0x6F03 version of this program; read-only */
  TAVRIX_VERSION_WORD1, /* 0x3304 version word that clients ask for; read-only */
  TAVRIX_VERSION_WORD2, /* 0x3308 version word that clients ask for; read-only */
  TAVRIX_ALTIMETER_SETTING, /* 0x0330 altimeter setting; mb; for writing */
  TAVRIX_OAT, /* 0x0E8C outside air temperature; degC; reads only */
  TAVRIX_TAT, /* 0x11D0 total air temperature, the same as the outside one; degC; reads only */
  TAVRIX_AIR_DENSITY, /* 0x28C0 air density; slug/ft3; read-only */
  TAVRIX_QNH, /* 0x0F48 sea-level pressure, settable, from mean sea level; mb; for writing */
  TAVRIX_SEA_LEVEL_PRESSURE, /* 0x0EC6 sea-level pressure; mb; reads only */
  TAVRIX_SEA_LEVEL_PRESSURE_EXACT, /* 0x34A0 sea-level pressure, unrounded; mb; reads only */
  TAVRIX_SEA_LEVEL_TEMPERATURE, /* 0x0EC0 sea-level temperature; degC; reads only */
  TAVRIX_DEW_POINT, /* 0x04C8 dew point; degC; reads only */
  TAVRIX_DEW_POINT_SET, /* 0x04D4 dew point control; degC; for writing */
  TAVRIX_PRECIPITATION_RATE, /* 0x04CB precipitation rate, 0 to 5; reads only */
  TAVRIX_PRECIPITATION_KIND, /* 0x04CC precipitation kind; reads only */
  TAVRIX_PRECIPITATION_SET, /* 0x04D2 precipitation control; for writing */
  TAVRIX_VISIBILITY, /* 0x0E8A visibility; mi; for writing */
  TAVRIX_THUNDERSTORM, /* 0x6DAF thunderstorms; %; for writing */
  TAVRIX_REAL_WEATHER, /* 0x6F15 real weather in use; for writing */
  TAVRIX_CLOUD_BASE1, /* 0x0EA4 low cloud base, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TOPS1, /* 0x0EA2 low cloud tops, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TYPE1, /* 0x0EA6 low cloud type; for writing */
  TAVRIX_CLOUD_BASE2, /* 0x6F11 middle cloud base, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TOPS2, /* 0x6F0F middle cloud tops, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TYPE2, /* 0x6F13 middle cloud type; for writing */
  TAVRIX_CLOUD_BASE3, /* 0x0E9C high cloud base, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TOPS3, /* 0x0E9A high cloud tops, from mean sea level; m; for writing */
  TAVRIX_CLOUD_TYPE3, /* 0x0E9E high cloud type; for writing */
  TAVRIX_WIND, /* 0x0E90 wind speed at the aircraft; kt; reads only */
  TAVRIX_WIND_EXACT, /* 0x3488 wind speed at the aircraft, unrounded; kt; reads only */
  TAVRIX_WIND_FROM_TRUE, /* 0x3490 wind direction at the aircraft, from true north; deg; reads only */
  TAVRIX_WIND_FROM, /* 0x0E92 wind direction at the aircraft, from magnetic north in the surface layer, true north above it; deg; reads only */
  TAVRIX_WIND_SPEED1, /* 0x0F72 wind speed; kt; for writing */
  TAVRIX_WIND_SPEED1_COPY, /* 0x0EF0 wind speed; kt; reads only */
  TAVRIX_WIND_SPEED1_COPY2, /* 0x04D8 wind speed; kt; read-only */
  TAVRIX_WIND_DIRECTION1, /* 0x0F74 surface wind direction, from magnetic north; deg; for writing */
  TAVRIX_WIND_DIRECTION1_COPY, /* 0x0EF2 surface wind direction, from magnetic north; deg; reads only */
  TAVRIX_WIND_DIRECTION1_COPY2, /* 0x04DA surface wind direction, from magnetic north; deg; read-only */
  TAVRIX_WIND_CEILING1, /* 0x0F70 top of the surface wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_CEILING1_COPY, /* 0x0EEE top of the surface wind layer, from mean sea level; m; reads only */
  TAVRIX_TURBULENCE1, /* 0x0F76 turbulence, 0 to 255; for writing */
  TAVRIX_TURBULENCE1_COPY, /* 0x0EF4 turbulence, 0 to 255; reads only */
  TAVRIX_GUST1, /* 0x0F78 gust; kt; for writing */
  TAVRIX_GUST1_COPY, /* 0x0EF6 gust; kt; reads only */
  TAVRIX_WIND_CEILING2, /* 0x0F64 ceiling of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_CEILING2_COPY, /* 0x0EE2 ceiling of the wind layer, from mean sea level; m; read-only */
  TAVRIX_WIND_BASE2, /* 0x0F66 base of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_BASE2_COPY, /* 0x0EE4 base of the wind layer, from mean sea level; m; read-only */
  TAVRIX_WIND_SPEED2, /* 0x0F68 wind speed; kt; for writing */
  TAVRIX_WIND_SPEED2_COPY, /* 0x0EE6 wind speed; kt; read-only */
  TAVRIX_WIND_DIRECTION2, /* 0x0F6A wind direction, from true north; deg; for writing */
  TAVRIX_WIND_DIRECTION2_COPY, /* 0x0EE8 wind direction, from true north; deg; read-only */
  TAVRIX_TURBULENCE2, /* 0x0F6C turbulence, 0 to 255; for writing */
  TAVRIX_TURBULENCE2_COPY, /* 0x0EEA turbulence, 0 to 255; read-only */
  TAVRIX_GUST2, /* 0x0F6E gust; kt; for writing */
  TAVRIX_GUST2_COPY, /* 0x0EEC gust; kt; reads only */
  TAVRIX_WIND_CEILING3, /* 0x0F58 ceiling of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_CEILING3_COPY, /* 0x0ED6 ceiling of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_BASE3, /* 0x0F5A base of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_BASE3_COPY, /* 0x0ED8 base of the wind layer, from mean sea level; m; reads only */
  TAVRIX_WIND_SPEED3, /* 0x0F5C wind speed; kt; for writing */
  TAVRIX_WIND_SPEED3_COPY, /* 0x0EDA wind speed; kt; read-only */
  TAVRIX_WIND_DIRECTION3, /* 0x0F5E wind direction, from true north; deg; for writing */
  TAVRIX_WIND_DIRECTION3_COPY, /* 0x0EDC wind direction, from true north; deg; read-only */
  TAVRIX_TURBULENCE3, /* 0x0F60 turbulence, 0 to 255; for writing */
  TAVRIX_TURBULENCE3_COPY, /* 0x0EDE turbulence, 0 to 255; read-only */
  TAVRIX_GUST3, /* 0x0F62 gust; kt; for writing */
  TAVRIX_GUST3_COPY, /* 0x0EE0 gust; kt; reads only */
  TAVRIX_SITUATION_FILE, /* 0x3F04 name of a situation (.sit) or movie (.smo) file; for writing */
  TAVRIX_SITUATION_COMMAND, /* 0x3F00 loads or saves the file at 0x3F04; for writing */
  TAVRIX_SITUATION_LOADS, /* 0x3F02 files loaded so far; read-only */
  TAVRIX_CUSTOM_RELOAD, /* 0x6F0D write 1 to read the custom offsets file again; for writing */
  TAVRIX_HAS_TOE_BRAKES, /* 0x079C toe brakes available, always 1; reads only */
  TAVRIX_HAS_AUTOPILOT, /* 0x0764 autopilot available, always 1; reads only */
  TAVRIX_HAS_STALL_WARNING, /* 0x077C stall warning available; reads only */
  TAVRIX_HAS_MIXTURE, /* 0x0780 mixture control available; reads only */
  TAVRIX_VNE, /* 0x02C4 never-exceed speed; kt; read-only */
  TAVRIX_CONTACT_ATC, /* 0x6F16 contact traffic control (push to talk), held while not 0; for writing */
  TAVRIX_CRASHED, /* 0x0840 1 for about five seconds after the aircraft has crashed; reads only */
  TAVRIX_CUSTOM_CLEAR, /* 0x6F0E write 1 to drop the custom offsets and read their file again; for writing */
  TAVRIX_WEATHER_SELECTOR, /* 0xC800 1 to 4 apply the weather area 0xC800-0xC87F, once the whole request has been read; for writing */
  TAVRIX_MESSAGE_TEXT, /* 0x3380 text of the message that 0x32FA shows, at most 127 characters; for writing */
  TAVRIX_OFFSETS
};
enum tavrix_season {
  TAVRIX_SEASON_WINTER = 0,
  TAVRIX_SEASON_SPRING = 1,
  TAVRIX_SEASON_SUMMER = 2,
  TAVRIX_SEASON_AUTUMN = 3
};
enum tavrix_autobrake {
  TAVRIX_AUTOBRAKE_REJECTED_TAKE_OFF = 0,
  TAVRIX_AUTOBRAKE_OFF = 1,
  TAVRIX_AUTOBRAKE_LANDING_1 = 2,
  TAVRIX_AUTOBRAKE_LANDING_2 = 3,
  TAVRIX_AUTOBRAKE_LANDING_3 = 4,
  TAVRIX_AUTOBRAKE_LANDING_MAXIMUM = 5
};
enum tavrix_joystick_disconnect {
  TAVRIX_JOYSTICK_DISCONNECT_ELEVATOR = 1,
  TAVRIX_JOYSTICK_DISCONNECT_AILERON = 2,
  TAVRIX_JOYSTICK_DISCONNECT_RUDDER = 4,
  TAVRIX_JOYSTICK_DISCONNECT_THROTTLES = 8
};
enum tavrix_pushback_state {
  TAVRIX_PUSHBACK_STATE_STRAIGHT = 0,
  TAVRIX_PUSHBACK_STATE_TURNING_TAIL_TO_THE_LEFT = 1,
  TAVRIX_PUSHBACK_STATE_TURNING_TAIL_TO_THE_RIGHT = 2,
  TAVRIX_PUSHBACK_STATE_OFF = 3
};
enum tavrix_pushback {
  TAVRIX_PUSHBACK_STRAIGHT = 0,
  TAVRIX_PUSHBACK_TAIL_TO_THE_LEFT = 1,
  TAVRIX_PUSHBACK_TAIL_TO_THE_RIGHT = 2,
  TAVRIX_PUSHBACK_STOP = 3
};
enum tavrix_magneto {
  TAVRIX_MAGNETO_OFF = 0,
  TAVRIX_MAGNETO_RIGHT_OR_START = 1,
  TAVRIX_MAGNETO_LEFT_OR_GENERATOR = 2,
  TAVRIX_MAGNETO_BOTH = 3,
  TAVRIX_MAGNETO_START = 4
};
enum tavrix_engine_type {
  TAVRIX_ENGINE_TYPE_PISTON_OR_ELECTRIC = 0,
  TAVRIX_ENGINE_TYPE_JET = 1,
  TAVRIX_ENGINE_TYPE_ROCKET = 4,
  TAVRIX_ENGINE_TYPE_TURBOPROP_OR_TURBOSHAFT = 5
};
enum tavrix_lights {
  TAVRIX_LIGHTS_NAVIGATION = 1,
  TAVRIX_LIGHTS_BEACON = 2,
  TAVRIX_LIGHTS_LANDING = 4,
  TAVRIX_LIGHTS_TAXI = 8,
  TAVRIX_LIGHTS_STROBE = 16,
  TAVRIX_LIGHTS_INSTRUMENTS = 32
};
enum tavrix_apu_switch {
  TAVRIX_APU_SWITCH_OFF = 0,
  TAVRIX_APU_SWITCH_ON = 1,
  TAVRIX_APU_SWITCH_START = 2
};
enum tavrix_exits {
  TAVRIX_EXITS_CABIN_DOOR = 1
};
enum tavrix_runway_condition {
  TAVRIX_RUNWAY_CONDITION_GOOD = 0,
  TAVRIX_RUNWAY_CONDITION_FAIR = 1,
  TAVRIX_RUNWAY_CONDITION_POOR = 2
};
enum tavrix_fail_engines {
  TAVRIX_FAIL_ENGINES_ENGINE_1 = 1,
  TAVRIX_FAIL_ENGINES_ENGINE_2 = 2,
  TAVRIX_FAIL_ENGINES_ENGINE_3 = 4,
  TAVRIX_FAIL_ENGINES_ENGINE_4 = 8
};
enum tavrix_panel_failed {
  TAVRIX_PANEL_FAILED_ADF = 1,
  TAVRIX_PANEL_FAILED_AIRSPEED = 2,
  TAVRIX_PANEL_FAILED_ALTIMETER = 4,
  TAVRIX_PANEL_FAILED_ATTITUDE = 8,
  TAVRIX_PANEL_FAILED_COM = 16,
  TAVRIX_PANEL_FAILED_ENGINES = 128,
  TAVRIX_PANEL_FAILED_FUEL_GAUGES = 256,
  TAVRIX_PANEL_FAILED_HEADING = 512,
  TAVRIX_PANEL_FAILED_NAV = 1024,
  TAVRIX_PANEL_FAILED_PITOT_HEAT = 2048,
  TAVRIX_PANEL_FAILED_TRANSPONDER = 4096,
  TAVRIX_PANEL_FAILED_TURN_COORDINATOR = 8192,
  TAVRIX_PANEL_FAILED_VACUUM = 16384,
  TAVRIX_PANEL_FAILED_VERTICAL_SPEED = 32768
};
enum tavrix_audio_panel {
  TAVRIX_AUDIO_PANEL_ADF1 = 1,
  TAVRIX_AUDIO_PANEL_DME = 2,
  TAVRIX_AUDIO_PANEL_MARKERS = 4,
  TAVRIX_AUDIO_PANEL_NAV2 = 8,
  TAVRIX_AUDIO_PANEL_NAV1 = 16,
  TAVRIX_AUDIO_PANEL_BOTH_COM = 32,
  TAVRIX_AUDIO_PANEL_COM2 = 64,
  TAVRIX_AUDIO_PANEL_COM1 = 128
};
enum tavrix_transponder_mode {
  TAVRIX_TRANSPONDER_MODE_OFF = 0,
  TAVRIX_TRANSPONDER_MODE_STANDBY = 1,
  TAVRIX_TRANSPONDER_MODE_ON = 2,
  TAVRIX_TRANSPONDER_MODE_TEST = 3
};
enum tavrix_radio_exchange {
  TAVRIX_RADIO_EXCHANGE_NAV2 = 1,
  TAVRIX_RADIO_EXCHANGE_NAV1 = 2,
  TAVRIX_RADIO_EXCHANGE_COM2 = 4,
  TAVRIX_RADIO_EXCHANGE_COM1 = 8
};
enum tavrix_to_from {
  TAVRIX_TO_FROM_OFF = 0,
  TAVRIX_TO_FROM_TO = 1,
  TAVRIX_TO_FROM_FROM = 2
};
enum tavrix_radio_status {
  TAVRIX_RADIO_STATUS_NAV1_RECEIVED = 2,
  TAVRIX_RADIO_STATUS_NAV2_RECEIVED = 4,
  TAVRIX_RADIO_STATUS_ADF1_RECEIVED = 8,
  TAVRIX_RADIO_STATUS_NAV1_HAS_DME = 16,
  TAVRIX_RADIO_STATUS_NAV2_HAS_DME = 32,
  TAVRIX_RADIO_STATUS_NAV1_TUNED_TO_AN_ILS = 64,
  TAVRIX_RADIO_STATUS_ADF2_RECEIVED = 1024,
  TAVRIX_RADIO_STATUS_NAV2_TUNED_TO_AN_ILS = 2048
};
enum tavrix_nav_signal {
  TAVRIX_NAV_SIGNAL_NONE = 0,
  TAVRIX_NAV_SIGNAL_RECEIVED = 256
};
enum tavrix_localizer_bits {
  TAVRIX_LOCALIZER_BITS_LOCALIZER_TUNED = 2,
  TAVRIX_LOCALIZER_BITS_STATION_RECEIVED = 128
};
enum tavrix_nav_code {
  TAVRIX_NAV_CODE_DME = 1,
  TAVRIX_NAV_CODE_NO_SIGNAL = 8,
  TAVRIX_NAV_CODE_GLIDE_SLOPE = 64,
  TAVRIX_NAV_CODE_LOCALIZER = 128
};
enum tavrix_precipitation_kind {
  TAVRIX_PRECIPITATION_KIND_RAIN = 1,
  TAVRIX_PRECIPITATION_KIND_SNOW = 2
};
enum tavrix_precipitation_set {
  TAVRIX_PRECIPITATION_SET_RATE = 255,
  TAVRIX_PRECIPITATION_SET_KIND = 65280
};
enum tavrix_cloud_type {
  TAVRIX_CLOUD_TYPE_CLEAR = 0,
  TAVRIX_CLOUD_TYPE_CIRRUS = 1,
  TAVRIX_CLOUD_TYPE_SCATTERED = 2,
  TAVRIX_CLOUD_TYPE_BROKEN = 3,
  TAVRIX_CLOUD_TYPE_OVERCAST = 4,
  TAVRIX_CLOUD_TYPE_STRATUS = 5
};
enum tavrix_situation_command {
  TAVRIX_SITUATION_COMMAND_LOAD = 0,
  TAVRIX_SITUATION_COMMAND_SAVE = 1
};
/* End of the written part. */
/* clang-format on */

/* Connects to the server at `host`, a name or an IPv4 address; "local" is the local window (Windows). With
 * NULL: the local window, else the first server that announces itself, else this computer. NULL when there is
 * none within `milliseconds`; tavrix_error(NULL) tells why. */
tavrix* tavrix_connect(const char* host, int milliseconds);
/* Inside a callback it ends the connection at once and no callback follows; the rest goes when tavrix_poll
 * returns TAVRIX_CLOSED: do not use the client after that. */
void tavrix_close(tavrix* sim);
/* Addresses of the servers that announce themselves, 16 bytes each. Returns how many were heard, `room` at
 * most. */
int tavrix_find(char (*addresses)[16], int room, int milliseconds);
/* The last error in words; of tavrix_connect with NULL. */
const char* tavrix_error(const tavrix* sim);

/* Receives, waiting so long for something new, keeps the connection, and calls the callbacks of what has
 * changed, from the simulator's first frame on. Returns how many were called, TAVRIX_DISCONNECTED while there
 * is no connection, TAVRIX_CLOSED when one of the callbacks has closed the client. */
int tavrix_poll(tavrix* sim, int milliseconds);
/* Whether there is a connection and a whole copy of the memory; whether the simulator's frames run as well. */
int tavrix_connected(const tavrix* sim);
int tavrix_alive(tavrix* sim);

/* The value in its unit; switches are 0 and 1, texts NaN. Without a connection the last one known. */
double tavrix_get(tavrix* sim, enum tavrix_offset offset);
/* A text, for as long as no other is asked for. */
const char* tavrix_get_text(tavrix* sim, enum tavrix_offset offset);
/* Many at once: one request to a local server. */
int tavrix_read(tavrix* sim, const enum tavrix_offset* offsets, double* values, int count);
int tavrix_read_bytes(tavrix* sim, uint32_t offset, uint32_t size, void* bytes);

/* Writes a value; many in one request; and waits until the server shows it. */
int tavrix_set(tavrix* sim, enum tavrix_offset offset, double value);
int tavrix_set_text(tavrix* sim, enum tavrix_offset offset, const char* text);
int tavrix_write(tavrix* sim, const enum tavrix_offset* offsets, const double* values, int count);
int tavrix_set_confirmed(tavrix* sim, enum tavrix_offset offset, double value, int milliseconds);
int tavrix_write_bytes(tavrix* sim, uint32_t offset, uint32_t size, const void* bytes);

/* Calls back from tavrix_poll, first with the present value. At most 256 of them. */
typedef void (*tavrix_callback)(tavrix* sim, enum tavrix_offset offset, double value, void* own);
int tavrix_on_change(tavrix* sim, enum tavrix_offset offset, tavrix_callback callback, void* own);

/* What is known of an offset; by its name (TAVRIX_OFFSETS when there is none, which every function refuses with
 * TAVRIX_NO_OFFSET, and whose row has no size); its bytes and values without a connection. Encoding returns
 * TAVRIX_BAD_VALUE for what the offset cannot hold. Directions take any angle: 360 is 0, -10 is 350. */
const struct tavrix_info* tavrix_info_of(enum tavrix_offset offset);
enum tavrix_offset tavrix_by_name(const char* name);
double tavrix_decode(enum tavrix_offset offset, const void* bytes);
int tavrix_encode(enum tavrix_offset offset, double value, void* bytes);

/* Counters of the copy: datagrams, times a loss was suspected, bytes that blocks put right. */
struct tavrix_counters {
  uint32_t datagrams, suspicions, repaired;
};
struct tavrix_counters tavrix_counters_of(const tavrix* sim);

#ifdef __cplusplus
}
#endif
#endif
