# Written by clients/generate.py from docs/offsets.json; do not edit.
from typing import Any, Dict

from .offset import Bits, Choice, Offset

class Season(Choice):
    WINTER = 0
    SPRING = 1
    SUMMER = 2
    AUTUMN = 3

class Autobrake(Choice):
    REJECTED_TAKE_OFF = 0
    OFF = 1
    LANDING_1 = 2
    LANDING_2 = 3
    LANDING_3 = 4
    LANDING_MAXIMUM = 5

class JoystickDisconnect(Bits):
    ELEVATOR = 1
    AILERON = 2
    RUDDER = 4
    THROTTLES = 8

class PushbackState(Choice):
    STRAIGHT = 0
    TURNING_TAIL_TO_THE_LEFT = 1
    TURNING_TAIL_TO_THE_RIGHT = 2
    OFF = 3

class Pushback(Choice):
    STRAIGHT = 0
    TAIL_TO_THE_LEFT = 1
    TAIL_TO_THE_RIGHT = 2
    STOP = 3

class Magneto(Choice):
    OFF = 0
    RIGHT_OR_START = 1
    LEFT_OR_GENERATOR = 2
    BOTH = 3
    START = 4

class EngineType(Choice):
    PISTON_OR_ELECTRIC = 0
    JET = 1
    ROCKET = 4
    TURBOPROP_OR_TURBOSHAFT = 5

class Lights(Bits):
    NAVIGATION = 1
    BEACON = 2
    LANDING = 4
    TAXI = 8
    STROBE = 16
    INSTRUMENTS = 32

class ApuSwitch(Choice):
    OFF = 0
    ON = 1
    START = 2

class Exits(Bits):
    CABIN_DOOR = 1

class RunwayCondition(Choice):
    GOOD = 0
    FAIR = 1
    POOR = 2

class FailEngines(Bits):
    ENGINE_1 = 1
    ENGINE_2 = 2
    ENGINE_3 = 4
    ENGINE_4 = 8

class PanelFailed(Bits):
    ADF = 1
    AIRSPEED = 2
    ALTIMETER = 4
    ATTITUDE = 8
    COM = 16
    ENGINES = 128
    FUEL_GAUGES = 256
    HEADING = 512
    NAV = 1024
    PITOT_HEAT = 2048
    TRANSPONDER = 4096
    TURN_COORDINATOR = 8192
    VACUUM = 16384
    VERTICAL_SPEED = 32768

class AudioPanel(Bits):
    ADF1 = 1
    DME = 2
    MARKERS = 4
    NAV2 = 8
    NAV1 = 16
    BOTH_COM = 32
    COM2 = 64
    COM1 = 128

class TransponderMode(Choice):
    OFF = 0
    STANDBY = 1
    ON = 2
    TEST = 3

class RadioExchange(Bits):
    NAV2 = 1
    NAV1 = 2
    COM2 = 4
    COM1 = 8

class ToFrom(Choice):
    OFF = 0
    TO = 1
    FROM = 2

class RadioStatus(Bits):
    NAV1_RECEIVED = 2
    NAV2_RECEIVED = 4
    ADF1_RECEIVED = 8
    NAV1_HAS_DME = 16
    NAV2_HAS_DME = 32
    NAV1_TUNED_TO_AN_ILS = 64
    ADF2_RECEIVED = 1024
    NAV2_TUNED_TO_AN_ILS = 2048

class NavSignal(Choice):
    NONE = 0
    RECEIVED = 256

class LocalizerBits(Bits):
    LOCALIZER_TUNED = 2
    STATION_RECEIVED = 128

class NavCode(Bits):
    DME = 1
    NO_SIGNAL = 8
    GLIDE_SLOPE = 64
    LOCALIZER = 128

class PrecipitationKind(Choice):
    RAIN = 1
    SNOW = 2

class PrecipitationSet(Bits):
    RATE = 255
    KIND = 65280

class CloudType(Choice):
    CLEAR = 0
    CIRRUS = 1
    SCATTERED = 2
    BROKEN = 3
    OVERCAST = 4
    STRATUS = 5

class SituationCommand(Choice):
    LOAD = 0
    SAVE = 1

ALL: Dict[str, Offset[Any]]

pause: Offset[bool]
"""0x0262 pause control; for writing"""
paused: Offset[bool]
"""0x0264 pause indicator; read-only"""
activity: Offset[int]
"""0x337E counter, one more with every frame: shows that the simulator runs; reads only"""
local_hour: Offset[int]
"""0x0238 local time, hour; h; read-only"""
local_minute: Offset[int]
"""0x0239 local time, minute; min; read-only"""
second: Offset[int]
"""0x023A second of the minute; s; read-only"""
local_time: Offset[str]
"""0x0C20 local time as hh:mm:ss; reads only"""
zulu_hour: Offset[int]
"""0x023B UTC, hour; h; for writing"""
zulu_minute: Offset[int]
"""0x023C UTC, minute; min; for writing"""
time_zone: Offset[int]
"""0x0246 hours that local time is behind UTC, positive west; h; reads only"""
frame_time: Offset[float]
"""0x0274 time of one frame; 32768 / value is frames per second; s; read-only"""
day_of_year: Offset[int]
"""0x023E day of the year; for writing"""
season: Offset[Season]
"""0x0248 season of the northern hemisphere; reads only"""
year: Offset[int]
"""0x0240 year; for writing"""
sim_rate: Offset[float]
"""0x0C1A simulation rate; for writing"""
show_message: Offset[int]
"""0x32FA any value but the last shows and speaks the text at 0x3380; s; for writing"""
reposition: Offset[int]
"""0x0558 opens a repositioning: forgets the last one; for writing"""
latitude: Offset[float]
"""0x0560 latitude, positive north; deg; for writing"""
longitude: Offset[float]
"""0x0568 longitude, positive east; deg; for writing"""
altitude: Offset[float]
"""0x0570 altitude above the sea, from mean sea level; m; for writing"""
altitude_m: Offset[int]
"""0x0574 altitude above the sea, whole metres, from mean sea level; m; for writing"""
pitch: Offset[float]
"""0x0578 pitch, positive nose down; deg; for writing"""
indicator_pitch: Offset[float]
"""0x2F70 attitude indicator pitch, positive nose down; deg; reads only"""
bank: Offset[float]
"""0x057C bank, positive left wing down; deg; for writing"""
indicator_bank: Offset[float]
"""0x2F78 attitude indicator bank, positive left wing down; deg; reads only"""
heading: Offset[float]
"""0x0580 true heading, from true north; deg; for writing"""
ground_altitude: Offset[float]
"""0x0020 height of the ground above the sea, from mean sea level; m; reads only"""
ground_altitude_m: Offset[int]
"""0x0B4C height of the ground above the sea, whole metres, from mean sea level; m; reads only"""
radio_altitude: Offset[float]
"""0x31E4 height above the ground, from ground; m; read-only"""
indicated_altitude: Offset[int]
"""0x3324 altimeter reading, from altimeter setting; ft; reads only"""
magnetic_variation: Offset[float]
"""0x02A0 magnetic variation, positive east; deg; reads only"""
tas: Offset[float]
"""0x02B8 true airspeed; kt; reads only"""
ias: Offset[float]
"""0x02BC indicated airspeed; kt; for writing"""
vertical_speed: Offset[float]
"""0x02C8 vertical speed, positive climbing; m/s; reads only"""
vertical_speed_m_min: Offset[int]
"""0x0842 vertical speed, positive down; m/min; reads only"""
touchdown_speed: Offset[float]
"""0x030C vertical speed, kept from the last moment in the air, positive climbing; m/s; read-only"""
vertical_speed_ft_s: Offset[float]
"""0x31A0 vertical speed, positive climbing; ft/s; reads only"""
mach: Offset[float]
"""0x11C6 Mach number; reads only"""
slip: Offset[int]
"""0x036E slip ball, -128 left to 127 right, positive right; reads only"""
turn_rate: Offset[int]
"""0x037C turn rate, 512 is a standard turn to the right, positive right; reads only"""
ground_speed: Offset[float]
"""0x02B4 ground speed; m/s; read-only"""
ground_speed_m_s: Offset[float]
"""0x6030 ground speed; m/s; reads only"""
on_ground: Offset[bool]
"""0x0366 on the ground; reads only"""
stall: Offset[bool]
"""0x036C stall warning; reads only"""
accel_side: Offset[float]
"""0x3060 acceleration to the side; ft/s2; reads only"""
accel_vertical: Offset[float]
"""0x3068 vertical acceleration; ft/s2; reads only"""
accel_forward: Offset[float]
"""0x3070 acceleration along the fuselage; ft/s2; reads only"""
accel_pitch: Offset[float]
"""0x3078 pitch acceleration, positive nose up; rad/s2; reads only"""
accel_roll: Offset[float]
"""0x3080 roll acceleration, positive right wing down; rad/s2; reads only"""
accel_yaw: Offset[float]
"""0x3088 yaw acceleration, positive nose right; rad/s2; reads only"""
speed_forward: Offset[float]
"""0x3090 velocity along the fuselage, positive forward; ft/s; for writing"""
speed_side: Offset[float]
"""0x3098 velocity to the side, positive right; ft/s; reads only"""
speed_vertical: Offset[float]
"""0x30A0 velocity along the vertical axis of the aircraft, positive down; ft/s; reads only"""
pitch_rate: Offset[float]
"""0x30A8 pitch rate, positive nose up; rad/s; reads only"""
pitch_rate_copy: Offset[float]
"""0x31A8 pitch rate, second copy, positive nose up; rad/s; reads only"""
roll_rate: Offset[float]
"""0x30B0 roll rate, positive right wing down; rad/s; reads only"""
roll_rate_copy: Offset[float]
"""0x31B0 roll rate, second copy, positive right wing down; rad/s; reads only"""
yaw_rate: Offset[float]
"""0x30B8 yaw rate, positive nose right; rad/s; reads only"""
alpha: Offset[float]
"""0x2ED0 angle of attack, positive nose above the airflow; rad; reads only"""
beta: Offset[float]
"""0x2ED8 sideslip; rad; reads only"""
alpha_percent: Offset[float]
"""0x11BE relative angle of attack: 100 % less one per degree; %; reads only"""
load_factor: Offset[float]
"""0x11BA load factor; g; reads only"""
fd_pitch: Offset[float]
"""0x2EE8 flight director pitch; deg; reads only"""
fd_bank: Offset[float]
"""0x2EF0 flight director bank; deg; reads only"""
ap: Offset[bool]
"""0x07BC autopilot master; for writing"""
fd: Offset[bool]
"""0x2EE0 flight director; for writing"""
ap_wing_leveler: Offset[bool]
"""0x07C0 wing leveler; for writing"""
ap_nav: Offset[bool]
"""0x07C4 navigation hold, armed or engaged; for writing"""
ap_heading: Offset[bool]
"""0x07C8 heading hold; for writing"""
ap_altitude: Offset[bool]
"""0x07D0 altitude hold; for writing"""
ap_speed: Offset[bool]
"""0x07DC airspeed hold; for writing"""
ap_mach: Offset[bool]
"""0x07E4 Mach hold; for writing"""
ap_vertical_speed: Offset[bool]
"""0x07EC vertical speed hold; for writing"""
ap_thrust: Offset[bool]
"""0x07F4 thrust hold; reads only"""
ap_approach: Offset[bool]
"""0x0800 approach hold, armed or engaged; for writing"""
toga: Offset[bool]
"""0x080C take-off and go-around; for writing"""
autothrottle: Offset[bool]
"""0x0810 autothrottle armed; for writing"""
ap_heading_bug: Offset[float]
"""0x07CC selected heading, from magnetic north; deg; for writing"""
ap_altitude_set: Offset[float]
"""0x07D4 selected altitude, from altimeter setting; m; for writing"""
ap_ias_set: Offset[int]
"""0x07E2 selected airspeed; kt; for writing"""
ap_mach_set: Offset[float]
"""0x07E8 selected Mach number; for writing"""
ap_vertical_speed_set: Offset[int]
"""0x07F2 selected vertical speed, positive climbing; ft/min; for writing"""
ap_back_course: Offset[bool]
"""0x0804 back course; for writing"""
yaw_damper: Offset[bool]
"""0x0808 yaw damper; for writing"""
autobrake: Offset[Autobrake]
"""0x2F80 autobrake; for writing"""
elevator: Offset[float]
"""0x0BB2 elevator input, positive pulled; %; for writing"""
elevator_copy: Offset[float]
"""0x584A elevator input, second copy, positive pulled; %; reads only"""
elevator_position: Offset[float]
"""0x0BB4 elevator position; %; reads only"""
aileron_position: Offset[float]
"""0x0BB8 aileron position; %; reads only"""
aileron_deflection: Offset[float]
"""0x2EA8 aileron deflection, ten times the angle in radians; deg; reads only"""
rudder: Offset[float]
"""0x0BBA rudder input, positive right; %; for writing"""
rudder_position: Offset[float]
"""0x0BBC rudder position; %; reads only"""
rudder_deflection: Offset[float]
"""0x2EB8 rudder deflection, ten times the angle in radians; deg; reads only"""
blade_pitch: Offset[float]
"""0x0BBE blade pitch of engine 1; deg; for writing"""
aileron: Offset[float]
"""0x0BB6 aileron input, positive right; %; for writing"""
aileron_copy: Offset[float]
"""0x584C aileron input, second copy, positive right; %; reads only"""
elevator_trim: Offset[float]
"""0x0BC0 elevator trim control, positive nose up; %; for writing"""
elevator_trim_indicator: Offset[float]
"""0x0BC2 elevator trim indicator, positive nose up; %; reads only"""
elevator_trim_indicator_angle: Offset[float]
"""0x2E98 elevator trim indicator, radians, positive nose up; deg; reads only"""
aileron_trim: Offset[float]
"""0x0C02 aileron trim, positive right; %; for writing"""
rudder_trim: Offset[float]
"""0x0C04 rudder trim, positive right; %; for writing"""
elevator_trim_angle: Offset[float]
"""0x2EA0 elevator trim, radians, positive nose up; deg; for writing"""
aileron_trim_angle: Offset[float]
"""0x2EB0 aileron trim, radians, positive right; deg; for writing"""
rudder_trim_angle: Offset[float]
"""0x2EC0 rudder trim, radians, positive right; deg; for writing"""
left_brake: Offset[float]
"""0x0BC4 left toe brake; %; for writing"""
right_brake: Offset[float]
"""0x0BC6 right toe brake; %; for writing"""
parking_brake: Offset[float]
"""0x0BC8 parking brake; %; for writing"""
brakes_applied: Offset[bool]
"""0x0BCA 16383 while a brake is above 20 %; reads only"""
left_brake_axis: Offset[float]
"""0x3416 left brake axis input; %; reads only"""
right_brake_axis: Offset[float]
"""0x3418 right brake axis input; %; reads only"""
speed_brake_armed: Offset[bool]
"""0x0BCC speed brake armed; for writing"""
speed_brake: Offset[int]
"""0x0BD0 speed brake lever: 0 down, 4800 armed, 5620 to 16383 deployed; for writing"""
left_spoiler: Offset[float]
"""0x0BD4 left spoiler position; %; reads only"""
right_spoiler: Offset[float]
"""0x0BD8 right spoiler position; %; reads only"""
flaps: Offset[float]
"""0x0BDC flap lever; %; for writing"""
left_flap_position: Offset[float]
"""0x0BE0 left flap position; %; reads only"""
right_flap_position: Offset[float]
"""0x0BE4 right flap position; %; reads only"""
slat_left_inboard: Offset[float]
"""0x30E8 leading edge, left inboard; %; reads only"""
slat_left_outboard: Offset[float]
"""0x30EA leading edge, left outboard; %; reads only"""
slat_right_inboard: Offset[float]
"""0x30EC leading edge, right inboard; %; reads only"""
slat_right_outboard: Offset[float]
"""0x30EE leading edge, right outboard; %; reads only"""
flap_left_inboard: Offset[float]
"""0x30F0 trailing edge, left inboard; deg; reads only"""
flap_left_outboard: Offset[float]
"""0x30F2 trailing edge, left outboard; deg; reads only"""
flap_right_inboard: Offset[float]
"""0x30F4 trailing edge, right inboard; deg; reads only"""
flap_right_outboard: Offset[float]
"""0x30F6 trailing edge, right outboard; deg; reads only"""
gear: Offset[float]
"""0x0BE8 gear lever: 0 up, 16383 down; %; for writing"""
nose_gear: Offset[float]
"""0x0BEC nose gear; %; reads only"""
right_gear: Offset[float]
"""0x0BF0 right main gear; %; reads only"""
left_gear: Offset[float]
"""0x0BF4 left main gear; %; reads only"""
nose_wheel_angle: Offset[float]
"""0x6D8A nose-wheel steering angle; deg; reads only"""
nose_wheel_speed: Offset[float]
"""0x6F00 nose-wheel speed; reads only"""
joystick_disconnect: Offset[JoystickDisconnect]
"""0x310A takes controls from the joystick; for writing"""
slew: Offset[bool]
"""0x05DC slew mode; for writing"""
position_freeze: Offset[bool]
"""0x3541 holds the place over ground; height and attitude stay free; for writing"""
pushback_state: Offset[PushbackState]
"""0x31F0 pushback; reads only"""
pushback: Offset[Pushback]
"""0x31F4 pushback command; for writing"""
throttle1: Offset[float]
"""0x088C throttle lever; %; for writing"""
throttle2: Offset[float]
"""0x0924 throttle lever; %; for writing"""
throttle3: Offset[float]
"""0x09BC throttle lever; %; for writing"""
throttle_input3: Offset[float]
"""0x3334 throttle lever input; %; reads only"""
throttle4: Offset[float]
"""0x0A54 throttle lever; %; for writing"""
throttle_input4: Offset[float]
"""0x3336 throttle lever input; %; reads only"""
throttle_direct1: Offset[float]
"""0x089A throttle past the axis cut-off; %; for writing"""
throttle_direct2: Offset[float]
"""0x0932 throttle past the axis cut-off; %; for writing"""
throttle_direct3: Offset[float]
"""0x09CA throttle past the axis cut-off; %; for writing"""
throttle_direct4: Offset[float]
"""0x0A62 throttle past the axis cut-off; %; for writing"""
mixture1: Offset[float]
"""0x0890 mixture or fuel cut-off lever; %; for writing"""
mixture2: Offset[float]
"""0x0928 mixture or fuel cut-off lever; %; for writing"""
mixture3: Offset[float]
"""0x09C0 mixture lever; %; for writing"""
mixture4: Offset[float]
"""0x0A58 mixture lever; %; for writing"""
fuel_valve1: Offset[bool]
"""0x3590 fuel valve open; for writing"""
fuel_valve2: Offset[bool]
"""0x3594 fuel valve open; for writing"""
magneto1: Offset[Magneto]
"""0x0892 magneto or starter switch; for writing"""
starter1: Offset[bool]
"""0x0506 starter engaged; reads only"""
magneto2: Offset[Magneto]
"""0x092A magneto or starter switch; for writing"""
starter2: Offset[bool]
"""0x0507 starter engaged; reads only"""
magneto3: Offset[Magneto]
"""0x09C2 magneto or starter switch; for writing"""
starter3: Offset[bool]
"""0x0508 starter engaged; reads only"""
magneto4: Offset[Magneto]
"""0x0A5A magneto or starter switch; for writing"""
starter4: Offset[bool]
"""0x0509 starter engaged; reads only"""
ignition1: Offset[bool]
"""0x208C ignition switch; for writing"""
ignition2: Offset[bool]
"""0x218C ignition switch; for writing"""
ignition3: Offset[bool]
"""0x228C ignition switch; for writing"""
ignition4: Offset[bool]
"""0x238C ignition switch; for writing"""
igniter1: Offset[bool]
"""0x6D8E igniter switch; for writing"""
igniter2: Offset[bool]
"""0x6D8F igniter switch; for writing"""
running_eng1: Offset[bool]
"""0x0894 engine running; reads only"""
running_eng2: Offset[bool]
"""0x092C engine running; reads only"""
running_eng3: Offset[bool]
"""0x09C4 engine running; reads only"""
running_eng4: Offset[bool]
"""0x0A5C engine running; reads only"""
n2_word_eng1: Offset[float]
"""0x0896 N2; %; reads only"""
n2_eng1: Offset[float]
"""0x2008 N2; %; reads only"""
n2_corrected_eng1: Offset[float]
"""0x2018 corrected N2; %; reads only"""
n2_word_eng2: Offset[float]
"""0x092E N2; %; reads only"""
n2_eng2: Offset[float]
"""0x2108 N2; %; reads only"""
n2_corrected_eng2: Offset[float]
"""0x2118 corrected N2; %; reads only"""
n2_word_eng3: Offset[float]
"""0x09C6 N2; %; reads only"""
n2_eng3: Offset[float]
"""0x2208 N2; %; reads only"""
n2_word_eng4: Offset[float]
"""0x0A5E N2; %; reads only"""
n2_eng4: Offset[float]
"""0x2308 N2; %; reads only"""
n1_word_eng1: Offset[float]
"""0x0898 N1; %; reads only"""
n1_eng1: Offset[float]
"""0x2000 N1; %; reads only"""
n1_word_eng2: Offset[float]
"""0x0930 N1; %; reads only"""
n1_eng2: Offset[float]
"""0x2100 N1; %; reads only"""
n1_word_eng3: Offset[float]
"""0x09C8 N1; %; reads only"""
n1_eng3: Offset[float]
"""0x2200 N1; %; reads only"""
n1_word_eng4: Offset[float]
"""0x0A60 N1; %; reads only"""
n1_eng4: Offset[float]
"""0x2300 N1; %; reads only"""
fuel_flow_word_eng1: Offset[int]
"""0x08A0 fuel flow; lb/h; reads only"""
fuel_flow_eng1: Offset[float]
"""0x0918 fuel flow; lb/h; reads only"""
fuel_flow_turbine_eng1: Offset[float]
"""0x2060 fuel flow, turbine block; lb/h; reads only"""
fuel_flow_word_eng2: Offset[int]
"""0x0938 fuel flow; lb/h; reads only"""
fuel_flow_eng2: Offset[float]
"""0x09B0 fuel flow; lb/h; reads only"""
fuel_flow_turbine_eng2: Offset[float]
"""0x2160 fuel flow, turbine block; lb/h; reads only"""
fuel_flow_word_eng3: Offset[int]
"""0x09D0 fuel flow; lb/h; reads only"""
fuel_flow_eng3: Offset[float]
"""0x0A48 fuel flow; lb/h; reads only"""
fuel_flow_turbine_eng3: Offset[float]
"""0x2260 fuel flow, turbine block; lb/h; reads only"""
fuel_flow_word_eng4: Offset[int]
"""0x0A68 fuel flow; lb/h; reads only"""
fuel_flow_eng4: Offset[float]
"""0x0AE0 fuel flow; lb/h; reads only"""
fuel_flow_turbine_eng4: Offset[float]
"""0x2360 fuel flow, turbine block; lb/h; reads only"""
oil_temp_eng1: Offset[float]
"""0x08B8 oil temperature; degC; reads only"""
oil_temp_eng2: Offset[float]
"""0x0950 oil temperature; degC; reads only"""
oil_temp_eng3: Offset[float]
"""0x09E8 oil temperature; degC; reads only"""
oil_temp_eng4: Offset[float]
"""0x0A80 oil temperature; degC; reads only"""
oil_pressure_eng1: Offset[float]
"""0x08BA oil pressure; psi; reads only"""
oil_pressure_psf_eng1: Offset[float]
"""0x3B60 oil pressure; psi; reads only"""
oil_pressure_eng2: Offset[float]
"""0x0952 oil pressure; psi; reads only"""
oil_pressure_psf_eng2: Offset[float]
"""0x3AA0 oil pressure; psi; reads only"""
oil_pressure_eng3: Offset[float]
"""0x09EA oil pressure; psi; reads only"""
oil_pressure_psf_eng3: Offset[float]
"""0x39E0 oil pressure; psi; reads only"""
oil_pressure_eng4: Offset[float]
"""0x0A82 oil pressure; psi; reads only"""
oil_pressure_psf_eng4: Offset[float]
"""0x3920 oil pressure; psi; reads only"""
epr_word_eng1: Offset[float]
"""0x08BC engine pressure ratio; reads only"""
epr_eng1: Offset[float]
"""0x2030 engine pressure ratio; reads only"""
epr_word_eng2: Offset[float]
"""0x0954 engine pressure ratio; reads only"""
epr_eng2: Offset[float]
"""0x2130 engine pressure ratio; reads only"""
epr_word_eng3: Offset[float]
"""0x09EC engine pressure ratio; reads only"""
epr_word_eng4: Offset[float]
"""0x0A84 engine pressure ratio; reads only"""
egt_eng1: Offset[float]
"""0x08BE exhaust gas temperature; degC; reads only"""
egt_rankine_eng1: Offset[float]
"""0x3B70 exhaust gas temperature; degC; reads only"""
egt_eng2: Offset[float]
"""0x0956 exhaust gas temperature; degC; reads only"""
egt_rankine_eng2: Offset[float]
"""0x3AB0 exhaust gas temperature; degC; reads only"""
egt_eng3: Offset[float]
"""0x09EE exhaust gas temperature; degC; reads only"""
egt_eng4: Offset[float]
"""0x0A86 exhaust gas temperature; degC; reads only"""
itt_eng1: Offset[float]
"""0x2038 inter-turbine temperature; degC; reads only"""
itt_eng2: Offset[float]
"""0x2138 inter-turbine temperature; degC; reads only"""
manifold_eng1: Offset[float]
"""0x08C0 manifold pressure; inHg; reads only"""
manifold_psf_eng1: Offset[float]
"""0x37E8 manifold pressure; inHg; reads only"""
manifold_eng2: Offset[float]
"""0x0958 manifold pressure; inHg; reads only"""
manifold_psf_eng2: Offset[float]
"""0x3728 manifold pressure; inHg; reads only"""
manifold_eng3: Offset[float]
"""0x09F0 manifold pressure; inHg; reads only"""
manifold_eng4: Offset[float]
"""0x0A88 manifold pressure; inHg; reads only"""
oil_quantity_eng1: Offset[float]
"""0x08D0 oil quantity; %; reads only"""
oil_quantity_eng2: Offset[float]
"""0x0968 oil quantity; %; reads only"""
oil_quantity_eng3: Offset[float]
"""0x0A00 oil quantity; %; reads only"""
oil_quantity_eng4: Offset[float]
"""0x0A98 oil quantity; %; reads only"""
vibration_eng1: Offset[float]
"""0x08D4 engine vibration; reads only"""
vibration_eng2: Offset[float]
"""0x096C engine vibration; reads only"""
hyd_pressure_eng1: Offset[float]
"""0x08D8 hydraulic pressure; psi; reads only"""
hyd_pressure_eng2: Offset[float]
"""0x0970 hydraulic pressure; psi; reads only"""
hyd_pressure_eng3: Offset[float]
"""0x0A08 hydraulic pressure; psi; reads only"""
hyd_pressure_eng4: Offset[float]
"""0x0AA0 hydraulic pressure; psi; reads only"""
hyd_quantity_eng1: Offset[float]
"""0x08DC hydraulic quantity; %; reads only"""
hyd_quantity_eng2: Offset[float]
"""0x0974 hydraulic quantity; %; reads only"""
hyd_quantity_eng3: Offset[float]
"""0x0A0C hydraulic quantity; %; reads only"""
hyd_quantity_eng4: Offset[float]
"""0x0AA4 hydraulic quantity; %; reads only"""
rotor_speed: Offset[float]
"""0x0908 rotor speed; rpm; reads only"""
torque_eng1: Offset[int]
"""0x0920 torque; lb ft; reads only"""
torque_eng2: Offset[int]
"""0x09B8 torque; lb ft; reads only"""
torque_eng3: Offset[int]
"""0x0A50 torque; lb ft; reads only"""
torque_eng4: Offset[int]
"""0x0AE8 torque; lb ft; reads only"""
torque_ratio_eng1: Offset[float]
"""0x2028 torque as a share of the limit; %; reads only"""
torque_ratio_eng2: Offset[float]
"""0x2128 torque as a share of the limit; %; reads only"""
thrust_eng1: Offset[float]
"""0x204C jet thrust; lbf; reads only"""
thrust_prop1: Offset[float]
"""0x2410 propeller thrust; lbf; reads only"""
thrust_eng2: Offset[float]
"""0x214C jet thrust; lbf; reads only"""
thrust_prop2: Offset[float]
"""0x2510 propeller thrust; lbf; reads only"""
thrust_eng3: Offset[float]
"""0x224C jet thrust; lbf; reads only"""
thrust_eng4: Offset[float]
"""0x234C jet thrust; lbf; reads only"""
rpm_prop1: Offset[float]
"""0x2400 propeller speed; rpm; reads only"""
rpm_prop2: Offset[float]
"""0x2500 propeller speed; rpm; reads only"""
rpm_ratio_prop1: Offset[float]
"""0x2408 propeller speed as a share of the maximum; %; reads only"""
rpm_ratio_prop2: Offset[float]
"""0x2508 propeller speed as a share of the maximum; %; reads only"""
rpm_eng1: Offset[int]
"""0x10708 engine speed; rpm; reads only"""
rpm_eng2: Offset[int]
"""0x1070A engine speed; rpm; reads only"""
engine_type: Offset[EngineType]
"""0x0609 engine type; read-only"""
engine_count: Offset[int]
"""0x0AEC number of engines; read-only"""
anti_ice_eng1: Offset[bool]
"""0x08B2 engine anti-ice or carburettor heat; for writing"""
anti_ice_eng2: Offset[bool]
"""0x094A engine anti-ice or carburettor heat; for writing"""
anti_ice_eng3: Offset[bool]
"""0x09E2 engine anti-ice or carburettor heat; for writing"""
anti_ice_eng4: Offset[bool]
"""0x0A7A engine anti-ice or carburettor heat; for writing"""
pitot_heat: Offset[bool]
"""0x029C pitot heat; for writing"""
deice: Offset[bool]
"""0x337D structural de-ice; for writing"""
deice_left: Offset[bool]
"""0x6F0B surface heat, left wing; for writing"""
deice_right: Offset[bool]
"""0x6F0C surface heat, right wing; for writing"""
wiper: Offset[int]
"""0x6D88 wiper speed; for writing"""
lights: Offset[Lights]
"""0x0D0C all lights; for writing"""
nav_lights: Offset[bool]
"""0x0280 navigation lights; reads only"""
beacon_strobe: Offset[bool]
"""0x0281 beacon or strobe lights; for writing"""
landing_lights: Offset[bool]
"""0x028C landing lights; for writing"""
generators: Offset[bool]
"""0x3101 generators of all engines; for writing"""
battery: Offset[bool]
"""0x3102 battery switch; for writing"""
avionics: Offset[bool]
"""0x3103 avionics master switch; for writing"""
fuel_pumps: Offset[bool]
"""0x3104 fuel pumps of all engines; for writing"""
apu_generator: Offset[bool]
"""0x0B51 APU generator switch; for writing"""
apu_generator_active: Offset[bool]
"""0x0B52 APU generator active; reads only"""
apu_speed: Offset[float]
"""0x0B54 APU speed; %; reads only"""
apu: Offset[bool]
"""0x0B58 APU running, start; for writing"""
apu_switch: Offset[ApuSwitch]
"""0x6DA9 APU switch; for writing"""
suction: Offset[float]
"""0x0B18 gyro suction; inHg; reads only"""
sound: Offset[bool]
"""0x0B20 sound on; for writing"""
sound_flag: Offset[bool]
"""0x0B24 sound on; read-only"""
fuel_centre_capacity: Offset[int]
"""0x0B78 capacity of the centre tank; US gal; read-only"""
fuel_left_capacity: Offset[int]
"""0x0B80 capacity of the left main tank; US gal; read-only"""
fuel_left_aux_capacity: Offset[int]
"""0x0B88 capacity of the left auxiliary tank; US gal; reads only"""
fuel_left_tip_capacity: Offset[int]
"""0x0B90 capacity of the left tip tank; US gal; reads only"""
fuel_right_capacity: Offset[int]
"""0x0B98 capacity of the right main tank; US gal; read-only"""
fuel_right_aux_capacity: Offset[int]
"""0x0BA0 capacity of the right auxiliary tank; US gal; reads only"""
fuel_right_tip_capacity: Offset[int]
"""0x0BA8 capacity of the right tip tank; US gal; reads only"""
fuel_centre2_capacity: Offset[int]
"""0x1248 capacity of the second centre tank; US gal; reads only"""
fuel_centre3_capacity: Offset[int]
"""0x1250 capacity of the third centre tank; US gal; reads only"""
fuel_density: Offset[float]
"""0x0AF4 fuel weight; lb/US gal; reads only"""
fuel_centre: Offset[float]
"""0x0B74 level of the centre tank; %; for writing"""
fuel_left: Offset[float]
"""0x0B7C level of the left main tank; %; for writing"""
fuel_left_aux: Offset[float]
"""0x0B84 level of the left auxiliary tank; %; for writing"""
fuel_left_tip: Offset[float]
"""0x0B8C level of the left tip tank; %; for writing"""
fuel_right: Offset[float]
"""0x0B94 level of the right main tank; %; for writing"""
fuel_right_aux: Offset[float]
"""0x0B9C level of the right auxiliary tank; %; for writing"""
fuel_right_tip: Offset[float]
"""0x0BA4 level of the right tip tank; %; for writing"""
fuel_centre2: Offset[float]
"""0x1244 level of the second centre tank; %; for writing"""
fuel_centre3: Offset[float]
"""0x124C level of the third centre tank; %; for writing"""
fuel_total: Offset[int]
"""0x126C total fuel; lb; for writing"""
empty_weight: Offset[float]
"""0x1330 empty weight; lb; for writing"""
max_weight: Offset[float]
"""0x1334 maximum gross weight; lb; for writing"""
payload_stations: Offset[int]
"""0x13FC number of payload stations; reads only"""
payload: Offset[float]
"""0x1400 weight at payload station 1; lb; for writing"""
zero_fuel_weight: Offset[float]
"""0x3BFC zero-fuel weight; lb; for writing"""
gross_weight: Offset[float]
"""0x30C0 gross weight; lb; reads only"""
centre_of_gravity: Offset[float]
"""0x2EF8 centre of gravity; for writing"""
jettison_total: Offset[float]
"""0x16020 jettisonable load, total; kg; read-only"""
jettison: Offset[float]
"""0x16024 jettisonable load; kg; for writing"""
cabin_altitude: Offset[int]
"""0x0318 cabin altitude, from mean sea level; ft; reads only"""
cabin_altitude_goal: Offset[int]
"""0x031C cabin altitude goal, from mean sea level; ft; for writing"""
cabin_rate: Offset[int]
"""0x0320 cabin rate of change; for writing"""
exits: Offset[Exits]
"""0x3367 exits open; read-only"""
runway_condition: Offset[RunwayCondition]
"""0x6DA8 runway condition; for writing"""
skids: Offset[bool]
"""0x6F02 undercarriage has skids; reads only"""
fail_adf1: Offset[bool]
"""0x0B64 ADF 1 failed; for writing"""
fail_airspeed: Offset[bool]
"""0x0B65 airspeed indicator failed; for writing"""
fail_altimeter: Offset[bool]
"""0x0B66 altimeter failed; for writing"""
fail_attitude: Offset[bool]
"""0x0B67 attitude indicator failed; for writing"""
fail_com1: Offset[bool]
"""0x0B68 COM 1 failed; for writing"""
fail_engines: Offset[FailEngines]
"""0x0B6B engines failed; for writing"""
panel_failed: Offset[PanelFailed]
"""0x3BE6 partial-panel failures; reads only"""
fail_panel: Offset[PanelFailed]
"""0x3BD6 partial-panel failure command; for writing"""
fail_now: Offset[int]
"""0x6DA4 fail the selected systems now; for writing"""
fail_number: Offset[int]
"""0x6DAA fail a system by number; for writing"""
audio_panel: Offset[AudioPanel]
"""0x3122 audio panel; for writing"""
com1: Offset[float]
"""0x034E COM1 frequency; MHz; for writing"""
com_standby1: Offset[float]
"""0x311A COM1 standby frequency; MHz; for writing"""
nav1: Offset[float]
"""0x0350 NAV frequency; MHz; for writing"""
nav_standby1: Offset[float]
"""0x311E NAV1 standby frequency; MHz; for writing"""
adf1: Offset[int]
"""0x034C ADF frequency; kHz; for writing"""
com2: Offset[float]
"""0x3118 COM2 frequency; MHz; for writing"""
com_standby2: Offset[float]
"""0x311C COM2 standby frequency; MHz; for writing"""
nav2: Offset[float]
"""0x0352 NAV frequency; MHz; for writing"""
nav_standby2: Offset[float]
"""0x3120 NAV2 standby frequency; MHz; for writing"""
adf2: Offset[int]
"""0x02D4 ADF frequency; kHz; for writing"""
transponder: Offset[int]
"""0x0354 transponder code; for writing"""
transponder_mode: Offset[TransponderMode]
"""0x6D8C transponder mode; for writing"""
radio_exchange: Offset[RadioExchange]
"""0x3123 exchange active and standby frequency; for writing"""
cdi1: Offset[float]
"""0x0C48 course needle; dots; read-only"""
cdi_exact1: Offset[float]
"""0x2AAC course needle, unrounded; dots; reads only"""
gsi1: Offset[float]
"""0x0C49 glide-slope needle; dots; read-only"""
gsi_exact1: Offset[float]
"""0x2AB0 glide-slope needle, unrounded; dots; reads only"""
cdi2: Offset[float]
"""0x0C59 course needle; dots; read-only"""
cdi_exact2: Offset[float]
"""0x2AB4 course needle, unrounded; dots; reads only"""
gsi2: Offset[float]
"""0x0C6E glide-slope needle; dots; read-only"""
gsi_exact2: Offset[float]
"""0x2AB8 glide-slope needle, unrounded; dots; reads only"""
radial1: Offset[float]
"""0x0C50 radial from the station, from magnetic north; deg; read-only"""
radial2: Offset[float]
"""0x0C60 radial from the station, from magnetic north; deg; read-only"""
nav_bearing1: Offset[int]
"""0x0C56 relative bearing to the station, from nose of the aircraft; deg; reads only"""
nav_bearing2: Offset[int]
"""0x0C5C relative bearing to the station, from nose of the aircraft; deg; reads only"""
inner_marker: Offset[bool]
"""0x0BAC over the inner marker; reads only"""
middle_marker: Offset[bool]
"""0x0BAE over the middle marker; reads only"""
outer_marker: Offset[bool]
"""0x0BB0 over the outer marker; reads only"""
obs1: Offset[int]
"""0x0C4E omni bearing selector, from magnetic north; deg; for writing"""
obs2: Offset[int]
"""0x0C5E omni bearing selector, from magnetic north; deg; for writing"""
dme1: Offset[float]
"""0x0300 DME distance; nm; reads only"""
dme2: Offset[float]
"""0x0306 DME distance; nm; reads only"""
to_from1: Offset[ToFrom]
"""0x0C4B to or from the station; reads only"""
to_from2: Offset[ToFrom]
"""0x0C5B to or from the station; reads only"""
glide_slope1: Offset[int]
"""0x0C4C glide slope received; reads only"""
glide_slope2: Offset[int]
"""0x0C6F glide slope received; reads only"""
dme_text1: Offset[str]
"""0x0C29 DME distance as text; reads only"""
dme_text2: Offset[str]
"""0x0C33 DME distance as text; reads only"""
radio_status: Offset[RadioStatus]
"""0x3300 radio status; reads only"""
adf_ident1: Offset[str]
"""0x303E station identifier; reads only"""
adf_ident2: Offset[str]
"""0x02DC station identifier; reads only"""
nav_signal1: Offset[NavSignal]
"""0x0C52 signal strength; reads only"""
nav_signal2: Offset[NavSignal]
"""0x0C62 signal strength; reads only"""
nav_latitude1: Offset[float]
"""0x085C latitude of the station, on an ILS of the glide slope, positive north; deg; reads only"""
nav_longitude1: Offset[float]
"""0x0864 longitude of the same, positive east; deg; reads only"""
nav_elevation1: Offset[int]
"""0x086C elevation of the same, from mean sea level; m; reads only"""
localizer_latitude1: Offset[float]
"""0x0874 latitude of the localizer, 0 without one, positive north; deg; reads only"""
localizer_longitude1: Offset[float]
"""0x0878 longitude of the localizer, positive east; deg; reads only"""
localizer_elevation1: Offset[int]
"""0x087C elevation of the localizer, from mean sea level; m; reads only"""
localizer_reciprocal1: Offset[float]
"""0x0870 reciprocal course of the localizer; 0 without one, from true north; deg; reads only"""
glide_slope_angle1: Offset[float]
"""0x0872 glide-slope inclination, positive upwards; deg; reads only"""
localizer_bits1: Offset[LocalizerBits]
"""0x0C4A localizer and signal; reads only"""
nav_code1: Offset[NavCode]
"""0x0C4D station code; reads only"""
has_nav1: Offset[int]
"""0x07A0 NAV receiver available, always 1; reads only"""
nav_ident1: Offset[str]
"""0x3000 station identifier; reads only"""
nav_name1: Offset[str]
"""0x3006 station name; reads only"""
nav_latitude2: Offset[float]
"""0x0858 latitude of the station, on an ILS of the glide slope, positive north; deg; reads only"""
nav_longitude2: Offset[float]
"""0x0860 longitude of the same, positive east; deg; reads only"""
nav_elevation2: Offset[int]
"""0x0868 elevation of the same, from mean sea level; m; reads only"""
localizer_latitude2: Offset[float]
"""0x084C latitude of the localizer, 0 without one, positive north; deg; reads only"""
localizer_longitude2: Offset[float]
"""0x0850 longitude of the localizer, positive east; deg; reads only"""
localizer_elevation2: Offset[int]
"""0x0854 elevation of the localizer, from mean sea level; m; reads only"""
localizer_reciprocal2: Offset[float]
"""0x0844 reciprocal course of the localizer; 0 without one, from true north; deg; reads only"""
glide_slope_angle2: Offset[float]
"""0x0846 glide-slope inclination, positive upwards; deg; reads only"""
localizer_bits2: Offset[LocalizerBits]
"""0x0C5A localizer and signal; reads only"""
nav_code2: Offset[NavCode]
"""0x0C70 station code; reads only"""
has_nav2: Offset[int]
"""0x07A4 NAV receiver available, always 1; reads only"""
nav_ident2: Offset[str]
"""0x301F station identifier; reads only"""
nav_name2: Offset[str]
"""0x3025 station name; reads only"""
aircraft: Offset[str]
"""0x3D00 title of the aircraft; reads only"""
aircraft_file: Offset[str]
"""0x3C00 file of the aircraft, without the simulator's folder; reads only"""
simulator_folder: Offset[str]
"""0x3E00 folder of the simulator; reads only"""
atc_number: Offset[str]
"""0x3130 flight number for traffic control; for writing"""
atc_tail_number: Offset[str]
"""0x313C tail number for traffic control; for writing"""
version: Offset[str]
"""0x6F03 version of this program; read-only"""
version_word1: Offset[int]
"""0x3304 version word that clients ask for; read-only"""
version_word2: Offset[int]
"""0x3308 version word that clients ask for; read-only"""
altimeter_setting: Offset[float]
"""0x0330 altimeter setting; mb; for writing"""
oat: Offset[float]
"""0x0E8C outside air temperature; degC; reads only"""
tat: Offset[float]
"""0x11D0 total air temperature, the same as the outside one; degC; reads only"""
air_density: Offset[float]
"""0x28C0 air density; slug/ft3; read-only"""
qnh: Offset[float]
"""0x0F48 sea-level pressure, settable, from mean sea level; mb; for writing"""
sea_level_pressure: Offset[float]
"""0x0EC6 sea-level pressure; mb; reads only"""
sea_level_pressure_exact: Offset[float]
"""0x34A0 sea-level pressure, unrounded; mb; reads only"""
sea_level_temperature: Offset[float]
"""0x0EC0 sea-level temperature; degC; reads only"""
dew_point: Offset[float]
"""0x04C8 dew point; degC; reads only"""
dew_point_set: Offset[float]
"""0x04D4 dew point control; degC; for writing"""
precipitation_rate: Offset[int]
"""0x04CB precipitation rate, 0 to 5; reads only"""
precipitation_kind: Offset[PrecipitationKind]
"""0x04CC precipitation kind; reads only"""
precipitation_set: Offset[PrecipitationSet]
"""0x04D2 precipitation control; for writing"""
visibility: Offset[float]
"""0x0E8A visibility; mi; for writing"""
thunderstorm: Offset[int]
"""0x6DAF thunderstorms; %; for writing"""
real_weather: Offset[bool]
"""0x6F15 real weather in use; for writing"""
cloud_base1: Offset[int]
"""0x0EA4 low cloud base, from mean sea level; m; for writing"""
cloud_tops1: Offset[int]
"""0x0EA2 low cloud tops, from mean sea level; m; for writing"""
cloud_type1: Offset[CloudType]
"""0x0EA6 low cloud type; for writing"""
cloud_base2: Offset[int]
"""0x6F11 middle cloud base, from mean sea level; m; for writing"""
cloud_tops2: Offset[int]
"""0x6F0F middle cloud tops, from mean sea level; m; for writing"""
cloud_type2: Offset[CloudType]
"""0x6F13 middle cloud type; for writing"""
cloud_base3: Offset[int]
"""0x0E9C high cloud base, from mean sea level; m; for writing"""
cloud_tops3: Offset[int]
"""0x0E9A high cloud tops, from mean sea level; m; for writing"""
cloud_type3: Offset[CloudType]
"""0x0E9E high cloud type; for writing"""
wind: Offset[int]
"""0x0E90 wind speed at the aircraft; kt; reads only"""
wind_exact: Offset[float]
"""0x3488 wind speed at the aircraft, unrounded; kt; reads only"""
wind_from_true: Offset[float]
"""0x3490 wind direction at the aircraft, from true north; deg; reads only"""
wind_from: Offset[float]
"""0x0E92 wind direction at the aircraft, from magnetic north in the surface layer, true north above it; deg; reads only"""
wind_speed1: Offset[int]
"""0x0F72 wind speed; kt; for writing"""
wind_speed1_copy: Offset[int]
"""0x0EF0 wind speed; kt; reads only"""
wind_speed1_copy2: Offset[int]
"""0x04D8 wind speed; kt; read-only"""
wind_direction1: Offset[float]
"""0x0F74 surface wind direction, from magnetic north; deg; for writing"""
wind_direction1_copy: Offset[float]
"""0x0EF2 surface wind direction, from magnetic north; deg; reads only"""
wind_direction1_copy2: Offset[float]
"""0x04DA surface wind direction, from magnetic north; deg; read-only"""
wind_ceiling1: Offset[int]
"""0x0F70 top of the surface wind layer, from mean sea level; m; reads only"""
wind_ceiling1_copy: Offset[int]
"""0x0EEE top of the surface wind layer, from mean sea level; m; reads only"""
turbulence1: Offset[int]
"""0x0F76 turbulence, 0 to 255; for writing"""
turbulence1_copy: Offset[int]
"""0x0EF4 turbulence, 0 to 255; reads only"""
gust1: Offset[int]
"""0x0F78 gust; kt; for writing"""
gust1_copy: Offset[int]
"""0x0EF6 gust; kt; reads only"""
wind_ceiling2: Offset[int]
"""0x0F64 ceiling of the wind layer, from mean sea level; m; reads only"""
wind_ceiling2_copy: Offset[int]
"""0x0EE2 ceiling of the wind layer, from mean sea level; m; read-only"""
wind_base2: Offset[int]
"""0x0F66 base of the wind layer, from mean sea level; m; reads only"""
wind_base2_copy: Offset[int]
"""0x0EE4 base of the wind layer, from mean sea level; m; read-only"""
wind_speed2: Offset[int]
"""0x0F68 wind speed; kt; for writing"""
wind_speed2_copy: Offset[int]
"""0x0EE6 wind speed; kt; read-only"""
wind_direction2: Offset[float]
"""0x0F6A wind direction, from true north; deg; for writing"""
wind_direction2_copy: Offset[float]
"""0x0EE8 wind direction, from true north; deg; read-only"""
turbulence2: Offset[int]
"""0x0F6C turbulence, 0 to 255; for writing"""
turbulence2_copy: Offset[int]
"""0x0EEA turbulence, 0 to 255; read-only"""
gust2: Offset[int]
"""0x0F6E gust; kt; for writing"""
gust2_copy: Offset[int]
"""0x0EEC gust; kt; reads only"""
wind_ceiling3: Offset[int]
"""0x0F58 ceiling of the wind layer, from mean sea level; m; reads only"""
wind_ceiling3_copy: Offset[int]
"""0x0ED6 ceiling of the wind layer, from mean sea level; m; reads only"""
wind_base3: Offset[int]
"""0x0F5A base of the wind layer, from mean sea level; m; reads only"""
wind_base3_copy: Offset[int]
"""0x0ED8 base of the wind layer, from mean sea level; m; reads only"""
wind_speed3: Offset[int]
"""0x0F5C wind speed; kt; for writing"""
wind_speed3_copy: Offset[int]
"""0x0EDA wind speed; kt; read-only"""
wind_direction3: Offset[float]
"""0x0F5E wind direction, from true north; deg; for writing"""
wind_direction3_copy: Offset[float]
"""0x0EDC wind direction, from true north; deg; read-only"""
turbulence3: Offset[int]
"""0x0F60 turbulence, 0 to 255; for writing"""
turbulence3_copy: Offset[int]
"""0x0EDE turbulence, 0 to 255; read-only"""
gust3: Offset[int]
"""0x0F62 gust; kt; for writing"""
gust3_copy: Offset[int]
"""0x0EE0 gust; kt; reads only"""
situation_file: Offset[str]
"""0x3F04 name of a situation (.sit) or movie (.smo) file; for writing"""
situation_command: Offset[SituationCommand]
"""0x3F00 loads or saves the file at 0x3F04; for writing"""
situation_loads: Offset[int]
"""0x3F02 files loaded so far; read-only"""
custom_reload: Offset[int]
"""0x6F0D write 1 to read the custom offsets file again; for writing"""
has_toe_brakes: Offset[int]
"""0x079C toe brakes available, always 1; reads only"""
has_autopilot: Offset[int]
"""0x0764 autopilot available, always 1; reads only"""
has_stall_warning: Offset[bool]
"""0x077C stall warning available; reads only"""
has_mixture: Offset[bool]
"""0x0780 mixture control available; reads only"""
vne: Offset[float]
"""0x02C4 never-exceed speed; kt; read-only"""
contact_atc: Offset[bool]
"""0x6F16 contact traffic control (push to talk), held while not 0; for writing"""
crashed: Offset[bool]
"""0x0840 1 for about five seconds after the aircraft has crashed; reads only"""
custom_clear: Offset[bool]
"""0x6F0E write 1 to drop the custom offsets and read their file again; for writing"""
weather_selector: Offset[int]
"""0xC800 1 to 4 apply the weather area 0xC800-0xC87F, once the whole request has been read; for writing"""
message_text: Offset[str]
"""0x3380 text of the message that 0x32FA shows, at most 127 characters; for writing"""
