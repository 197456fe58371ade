"""Written by clients/generate.py from docs/offsets.json; do not edit."""
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


_ROWS = (
    ('pause', 610, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'pause control', None),
    ('paused', 612, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'read-only', 'none', (0, 0, False), 'pause indicator', None),
    ('activity', 13182, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'counter, one more with every frame: shows that the simulator runs', None),
    ('local_hour', 568, 'u8', 1, 'Number', 'h', (1, 1, 0), (0, 23, 1), 'read-only', 'none', (0, 0, False), 'local time, hour', None),
    ('local_minute', 569, 'u8', 1, 'Number', 'min', (1, 1, 0), (0, 59, 1), 'read-only', 'none', (0, 0, False), 'local time, minute', None),
    ('second', 570, 'u8', 1, 'Number', 's', (1, 1, 0), (0, 59, 1), 'read-only', 'none', (0, 0, False), 'second of the minute', None),
    ('local_time', 3104, 'text:9', 9, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'local time as hh:mm:ss', None),
    ('zulu_hour', 571, 'u8', 1, 'Number', 'h', (1, 1, 0), (0, 23, 1), 'yes', 'limited', (0, 0, False), 'UTC, hour', None),
    ('zulu_minute', 572, 'u8', 1, 'Number', 'min', (1, 1, 0), (0, 59, 1), 'yes', 'limited', (0, 0, False), 'UTC, minute', None),
    ('time_zone', 582, 's16', 2, 'Number', 'h', (1, 1, 0), (-32768, 32767, 1), 'no', 'none', (0, 0, False), 'hours that local time is behind UTC', None),
    ('frame_time', 628, 'u16', 2, 'Number', 's', (1, 32768, 0), (0, 1.999969482421875, 3.0517578125e-05), 'read-only', 'none', (0, 0, False), 'time of one frame; 32768 / value is frames per second', None),
    ('day_of_year', 574, 'u16', 2, 'Number', '', (1, 1, 0), (1, 366, 1), 'yes', 'limited', (0, 0, False), 'day of the year', None),
    ('season', 584, 'u16', 2, 'Number', '', (1, 1, 0), (0, 3, 1), 'no', 'none', (0, 0, False), 'season of the northern hemisphere', Season),
    ('year', 576, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'year', None),
    ('sim_rate', 3098, 'u16', 2, 'Number', '', (1, 256, 0), (0, 255.99609375, 0.00390625), 'yes', 'own', (0, 0, False), 'simulation rate', None),
    ('show_message', 13050, 's16', 2, 'Number', 's', (1, 1, 0), (-32768, 32767, 1), 'yes', 'request', (0, 0, False), 'any value but the last shows and speaks the text at 0x3380', None),
    ('reposition', 1368, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'yes', 'same', (0, 0, False), 'opens a repositioning: forgets the last one', None),
    ('latitude', 1376, 's64', 8, 'Number', 'deg', (90, 42957189152768000, 0), (-90, 90, 2.0951091487837895e-15), 'yes', 'near', (1.0056523914162189e-07, 0, False), 'latitude', None),
    ('longitude', 1384, 's64', 8, 'Number', 'deg', (360, 18446744073709551616, 0), (-180, 180, 1.951563910473908e-17), 'yes', 'near', (1.0148132334464322e-07, 0, False), 'longitude', None),
    ('altitude', 1392, 's64', 8, 'Number', 'm', (1, 4294967296, 0), (-2147483648, 2147483648, 2.3283064365386963e-10), 'yes', 'near', (0.010011717677116394, 0, False), 'altitude above the sea', None),
    ('altitude_m', 1396, 's32', 4, 'Number', 'm', (1, 1, 0), (-2147483648, 2147483647, 1), 'yes', 'near', (1, 0, False), 'altitude above the sea, whole metres', None),
    ('pitch', 1400, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'yes', 'near', (2.1457672119140625e-05, 0, False), 'pitch', None),
    ('indicator_pitch', 12144, 'f64', 8, 'Number', 'deg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'attitude indicator pitch', None),
    ('bank', 1404, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'yes', 'near', (2.1457672119140625e-05, 0, False), 'bank', None),
    ('indicator_bank', 12152, 'f64', 8, 'Number', 'deg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'attitude indicator bank', None),
    ('heading', 1408, 'u32', 4, 'Number', 'deg', (360, 4294967296, 0), (0, 359.99999991618097, 8.381903171539307e-08), 'yes', 'near', (2.1457672119140625e-05, 0, False), 'true heading', None),
    ('ground_altitude', 32, 's32', 4, 'Number', 'm', (1, 256, 0), (-8388608, 8388607.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'height of the ground above the sea', None),
    ('ground_altitude_m', 2892, 's16', 2, 'Number', 'm', (1, 1, 0), (-32768, 32767, 1), 'no', 'none', (0, 0, False), 'height of the ground above the sea, whole metres', None),
    ('radio_altitude', 12772, 's32', 4, 'Number', 'm', (1, 65536, 0), (-32768, 32767.99998474121, 1.52587890625e-05), 'read-only', 'none', (0, 0, False), 'height above the ground', None),
    ('indicated_altitude', 13092, 's32', 4, 'Number', 'ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'altimeter reading', None),
    ('magnetic_variation', 672, 's16', 2, 'Number', 'deg', (360, 65536, 0), (-180, 179.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'magnetic variation', None),
    ('tas', 696, 's32', 4, 'Number', 'kt', (1, 128, 0), (-16777216, 16777215.9921875, 0.0078125), 'no', 'none', (0, 0, False), 'true airspeed', None),
    ('ias', 700, 's32', 4, 'Number', 'kt', (1, 128, 0), (-16777216, 16777215.9921875, 0.0078125), 'yes', 'own', (0, 0, False), 'indicated airspeed', None),
    ('vertical_speed', 712, 's32', 4, 'Number', 'm/s', (1, 256, 0), (-8388608, 8388607.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'vertical speed', None),
    ('vertical_speed_m_min', 2114, 's16', 2, 'Number', 'm/min', (1, 1, 0), (-32768, 32767, 1), 'no', 'none', (0, 0, False), 'vertical speed', None),
    ('touchdown_speed', 780, 's32', 4, 'Number', 'm/s', (1, 256, 0), (-8388608, 8388607.99609375, 0.00390625), 'read-only', 'none', (0, 0, False), 'vertical speed, kept from the last moment in the air', None),
    ('vertical_speed_ft_s', 12704, 'f64', 8, 'Number', 'ft/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'vertical speed', None),
    ('mach', 4550, 'u16', 2, 'Number', '', (1, 20480, 0), (0, 3.199951171875, 4.8828125e-05), 'no', 'none', (0, 0, False), 'Mach number', None),
    ('slip', 878, 's8', 1, 'Number', '', (1, 1, 0), (-128, 127, 1), 'no', 'none', (0, 0, False), 'slip ball, -128 left to 127 right', None),
    ('turn_rate', 892, 's16', 2, 'Number', '', (1, 1, 0), (-32768, 32767, 1), 'no', 'none', (0, 0, False), 'turn rate, 512 is a standard turn to the right', None),
    ('ground_speed', 692, 's32', 4, 'Number', 'm/s', (1, 65536, 0), (-32768, 32767.99998474121, 1.52587890625e-05), 'read-only', 'none', (0, 0, False), 'ground speed', None),
    ('ground_speed_m_s', 24624, 'f64', 8, 'Number', 'm/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'ground speed', None),
    ('on_ground', 870, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'on the ground', None),
    ('stall', 876, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'stall warning', None),
    ('accel_side', 12384, 'f64', 8, 'Number', 'ft/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'acceleration to the side', None),
    ('accel_vertical', 12392, 'f64', 8, 'Number', 'ft/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'vertical acceleration', None),
    ('accel_forward', 12400, 'f64', 8, 'Number', 'ft/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'acceleration along the fuselage', None),
    ('accel_pitch', 12408, 'f64', 8, 'Number', 'rad/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'pitch acceleration', None),
    ('accel_roll', 12416, 'f64', 8, 'Number', 'rad/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'roll acceleration', None),
    ('accel_yaw', 12424, 'f64', 8, 'Number', 'rad/s2', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'yaw acceleration', None),
    ('speed_forward', 12432, 'f64', 8, 'Number', 'ft/s', (1, 1, 0), (None, None, None), 'yes', 'own', (0, 0, False), 'velocity along the fuselage', None),
    ('speed_side', 12440, 'f64', 8, 'Number', 'ft/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'velocity to the side', None),
    ('speed_vertical', 12448, 'f64', 8, 'Number', 'ft/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'velocity along the vertical axis of the aircraft', None),
    ('pitch_rate', 12456, 'f64', 8, 'Number', 'rad/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'pitch rate', None),
    ('pitch_rate_copy', 12712, 'f64', 8, 'Number', 'rad/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'pitch rate, second copy', None),
    ('roll_rate', 12464, 'f64', 8, 'Number', 'rad/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'roll rate', None),
    ('roll_rate_copy', 12720, 'f64', 8, 'Number', 'rad/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'roll rate, second copy', None),
    ('yaw_rate', 12472, 'f64', 8, 'Number', 'rad/s', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'yaw rate', None),
    ('alpha', 11984, 'f64', 8, 'Number', 'rad', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'angle of attack', None),
    ('beta', 11992, 'f64', 8, 'Number', 'rad', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'sideslip', None),
    ('alpha_percent', 4542, 'u16', 2, 'Number', '%', (-100, 32767, 100), (-100.0030518509476, 100, 0.0030518509475997192), 'no', 'none', (0, 0, False), 'relative angle of attack: 100 % less one per degree', None),
    ('load_factor', 4538, 's16', 2, 'Number', 'g', (1, 625, 0), (-52.4288, 52.4272, 0.0016), 'no', 'none', (0, 0, False), 'load factor', None),
    ('fd_pitch', 12008, 'f64', 8, 'Number', 'deg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'flight director pitch', None),
    ('fd_bank', 12016, 'f64', 8, 'Number', 'deg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'flight director bank', None),
    ('ap', 1980, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'autopilot master', None),
    ('fd', 12000, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'flight director', None),
    ('ap_wing_leveler', 1984, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'wing leveler', None),
    ('ap_nav', 1988, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'navigation hold, armed or engaged', None),
    ('ap_heading', 1992, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'heading hold', None),
    ('ap_altitude', 2000, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'altitude hold', None),
    ('ap_speed', 2012, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'airspeed hold', None),
    ('ap_mach', 2020, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'Mach hold', None),
    ('ap_vertical_speed', 2028, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'vertical speed hold', None),
    ('ap_thrust', 2036, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'thrust hold', None),
    ('ap_approach', 2048, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'approach hold, armed or engaged', None),
    ('toga', 2060, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'own', (0, 0, False), 'take-off and go-around', None),
    ('autothrottle', 2064, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'autothrottle armed', None),
    ('ap_heading_bug', 1996, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'yes', 'near', (0.0933837890625, 0, True), 'selected heading', None),
    ('ap_altitude_set', 2004, 's32', 4, 'Number', 'm', (1, 65536, 0), (-32768, 32767.99998474121, 1.52587890625e-05), 'yes', 'near', (1.52587890625e-05, 1.3e-05, False), 'selected altitude', None),
    ('ap_ias_set', 2018, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'selected airspeed', None),
    ('ap_mach_set', 2024, 's32', 4, 'Number', '', (1, 65536, 0), (-32768, 32767.99998474121, 1.52587890625e-05), 'yes', 'near', (1.52587890625e-05, 1e-07, False), 'selected Mach number', None),
    ('ap_vertical_speed_set', 2034, 's16', 2, 'Number', 'ft/min', (1, 1, 0), (-32768, 32767, 1), 'yes', 'same', (0, 0, False), 'selected vertical speed', None),
    ('ap_back_course', 2052, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'back course', None),
    ('yaw_damper', 2056, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'yaw damper', None),
    ('autobrake', 12160, 'u8', 1, 'Number', '', (1, 1, 0), (0, 5, 1), 'yes', 'limited', (0, 0, False), 'autobrake', Autobrake),
    ('elevator', 2994, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'elevator input', None),
    ('elevator_copy', 22602, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'elevator input, second copy', None),
    ('elevator_position', 2996, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'elevator position', None),
    ('aileron_position', 3000, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'aileron position', None),
    ('aileron_deflection', 11944, 'f64', 8, 'Number', 'deg', (18, 3.141592653589793, 0), (None, None, None), 'no', 'none', (0, 0, False), 'aileron deflection, ten times the angle in radians', None),
    ('rudder', 3002, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'rudder input', None),
    ('rudder_position', 3004, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'rudder position', None),
    ('rudder_deflection', 11960, 'f64', 8, 'Number', 'deg', (18, 3.141592653589793, 0), (None, None, None), 'no', 'none', (0, 0, False), 'rudder deflection, ten times the angle in radians', None),
    ('blade_pitch', 3006, 'u16', 2, 'Number', 'deg', (15, 32768, 0), (0, 29.999542236328125, 0.000457763671875), 'yes', 'same', (0, 0, False), 'blade pitch of engine 1', None),
    ('aileron', 2998, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'aileron input', None),
    ('aileron_copy', 22604, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'aileron input, second copy', None),
    ('elevator_trim', 3008, 's16', 2, 'Number', '%', (100, 16383, 0), (-100, 100, 0.0061038881767686015), 'yes', 'limited', (0, 0, False), 'elevator trim control', None),
    ('elevator_trim_indicator', 3010, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'elevator trim indicator', None),
    ('elevator_trim_indicator_angle', 11928, 'f64', 8, 'Number', 'deg', (180, 3.141592653589793, 0), (None, None, None), 'no', 'none', (0, 0, False), 'elevator trim indicator, radians', None),
    ('aileron_trim', 3074, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'aileron trim', None),
    ('rudder_trim', 3076, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'rudder trim', None),
    ('elevator_trim_angle', 11936, 'f64', 8, 'Number', 'deg', (180, 3.141592653589793, 0), (-10, 10, None), 'yes', 'near', (0, 1e-06, False), 'elevator trim, radians', None),
    ('aileron_trim_angle', 11952, 'f64', 8, 'Number', 'deg', (180, 3.141592653589793, 0), (-10, 10, None), 'yes', 'near', (0, 1e-06, False), 'aileron trim, radians', None),
    ('rudder_trim_angle', 11968, 'f64', 8, 'Number', 'deg', (180, 3.141592653589793, 0), (-10, 10, None), 'yes', 'near', (0, 1e-06, False), 'rudder trim, radians', None),
    ('left_brake', 3012, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'left toe brake', None),
    ('right_brake', 3014, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'yes', 'same', (0, 0, False), 'right toe brake', None),
    ('parking_brake', 3016, 'u16', 2, 'Number', '%', (100, 32767, 0), (0, 100, 0.0030518509475997192), 'yes', 'limited', (0, 0, False), 'parking brake', None),
    ('brakes_applied', 3018, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), '16383 while a brake is above 20 %', None),
    ('left_brake_axis', 13334, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'left brake axis input', None),
    ('right_brake_axis', 13336, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'right brake axis input', None),
    ('speed_brake_armed', 3020, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'speed brake armed', None),
    ('speed_brake', 3024, 'u32', 4, 'Number', '', (1, 1, 0), (0, 16383, 1), 'yes', 'own', (0, 0, False), 'speed brake lever: 0 down, 4800 armed, 5620 to 16383 deployed', None),
    ('left_spoiler', 3028, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'left spoiler position', None),
    ('right_spoiler', 3032, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'right spoiler position', None),
    ('flaps', 3036, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 100, 0.0061038881767686015), 'yes', 'limited', (0, 0, False), 'flap lever', None),
    ('left_flap_position', 3040, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'left flap position', None),
    ('right_flap_position', 3044, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'right flap position', None),
    ('slat_left_inboard', 12520, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'leading edge, left inboard', None),
    ('slat_left_outboard', 12522, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'leading edge, left outboard', None),
    ('slat_right_inboard', 12524, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'leading edge, right inboard', None),
    ('slat_right_outboard', 12526, 's16', 2, 'Number', '%', (100, 16383, 0), (-200.01220777635353, 200.00610388817677, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'leading edge, right outboard', None),
    ('flap_left_inboard', 12528, 's16', 2, 'Number', 'deg', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'trailing edge, left inboard', None),
    ('flap_left_outboard', 12530, 's16', 2, 'Number', 'deg', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'trailing edge, left outboard', None),
    ('flap_right_inboard', 12532, 's16', 2, 'Number', 'deg', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'trailing edge, right inboard', None),
    ('flap_right_outboard', 12534, 's16', 2, 'Number', 'deg', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'trailing edge, right outboard', None),
    ('gear', 3048, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 100, 0.0061038881767686015), 'yes', 'own', (0, 0, False), 'gear lever: 0 up, 16383 down', None),
    ('nose_gear', 3052, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'nose gear', None),
    ('right_gear', 3056, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'right main gear', None),
    ('left_gear', 3060, 'u32', 4, 'Number', '%', (100, 16383, 0), (0, 26216000.091558322, 0.0061038881767686015), 'no', 'none', (0, 0, False), 'left main gear', None),
    ('nose_wheel_angle', 28042, 's16', 2, 'Number', 'deg', (1, 100, 0), (-327.68, 327.67, 0.01), 'no', 'none', (0, 0, False), 'nose-wheel steering angle', None),
    ('nose_wheel_speed', 28416, 's16', 2, 'Number', '', (1, 10, 0), (-3276.8, 3276.7000000000003, 0.1), 'no', 'none', (0, 0, False), 'nose-wheel speed', None),
    ('joystick_disconnect', 12554, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'takes controls from the joystick', JoystickDisconnect),
    ('slew', 1500, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'slew mode', None),
    ('position_freeze', 13633, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'holds the place over ground; height and attitude stay free', None),
    ('pushback_state', 12784, 'u32', 4, 'Number', '', (1, 1, 0), (0, 3, 1), 'no', 'none', (0, 0, False), 'pushback', PushbackState),
    ('pushback', 12788, 'u32', 4, 'Number', '', (1, 1, 0), (0, 3, 1), 'yes', 'limited', (0, 0, False), 'pushback command', Pushback),
    ('throttle1', 2188, 's16', 2, 'Number', '%', (100, 16384, 0), (-25, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'throttle lever', None),
    ('throttle2', 2340, 's16', 2, 'Number', '%', (100, 16384, 0), (-25, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'throttle lever', None),
    ('throttle3', 2492, 's16', 2, 'Number', '%', (100, 16384, 0), (-25, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'throttle lever', None),
    ('throttle_input3', 13108, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'throttle lever input', None),
    ('throttle4', 2644, 's16', 2, 'Number', '%', (100, 16384, 0), (-25, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'throttle lever', None),
    ('throttle_input4', 13110, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'throttle lever input', None),
    ('throttle_direct1', 2202, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'yes', 'same', (0, 0, False), 'throttle past the axis cut-off', None),
    ('throttle_direct2', 2354, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'yes', 'same', (0, 0, False), 'throttle past the axis cut-off', None),
    ('throttle_direct3', 2506, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'yes', 'same', (0, 0, False), 'throttle past the axis cut-off', None),
    ('throttle_direct4', 2658, 's16', 2, 'Number', '%', (100, 16384, 0), (-200, 199.993896484375, 0.006103515625), 'yes', 'same', (0, 0, False), 'throttle past the axis cut-off', None),
    ('mixture1', 2192, 'u16', 2, 'Number', '%', (100, 16383, 0), (0, 100, 0.0061038881767686015), 'yes', 'limited', (0, 0, False), 'mixture or fuel cut-off lever', None),
    ('mixture2', 2344, 'u16', 2, 'Number', '%', (100, 16383, 0), (0, 100, 0.0061038881767686015), 'yes', 'limited', (0, 0, False), 'mixture or fuel cut-off lever', None),
    ('mixture3', 2496, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'mixture lever', None),
    ('mixture4', 2648, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 100, 0.006103515625), 'yes', 'limited', (0, 0, False), 'mixture lever', None),
    ('fuel_valve1', 13712, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'fuel valve open', None),
    ('fuel_valve2', 13716, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'fuel valve open', None),
    ('magneto1', 2194, 'u16', 2, 'Number', '', (1, 1, 0), (0, 4, 1), 'yes', 'own', (0, 0, False), 'magneto or starter switch', Magneto),
    ('starter1', 1286, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'starter engaged', None),
    ('magneto2', 2346, 'u16', 2, 'Number', '', (1, 1, 0), (0, 4, 1), 'yes', 'own', (0, 0, False), 'magneto or starter switch', Magneto),
    ('starter2', 1287, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'starter engaged', None),
    ('magneto3', 2498, 'u16', 2, 'Number', '', (1, 1, 0), (0, 4, 1), 'yes', 'own', (0, 0, False), 'magneto or starter switch', Magneto),
    ('starter3', 1288, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'starter engaged', None),
    ('magneto4', 2650, 'u16', 2, 'Number', '', (1, 1, 0), (0, 4, 1), 'yes', 'own', (0, 0, False), 'magneto or starter switch', Magneto),
    ('starter4', 1289, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'starter engaged', None),
    ('ignition1', 8332, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'ignition switch', None),
    ('ignition2', 8588, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'ignition switch', None),
    ('ignition3', 8844, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'ignition switch', None),
    ('ignition4', 9100, 's32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'ignition switch', None),
    ('igniter1', 28046, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'igniter switch', None),
    ('igniter2', 28047, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'igniter switch', None),
    ('running_eng1', 2196, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'engine running', None),
    ('running_eng2', 2348, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'engine running', None),
    ('running_eng3', 2500, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'engine running', None),
    ('running_eng4', 2652, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'engine running', None),
    ('n2_word_eng1', 2198, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_eng1', 8200, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_corrected_eng1', 8216, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'corrected N2', None),
    ('n2_word_eng2', 2350, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_eng2', 8456, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_corrected_eng2', 8472, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'corrected N2', None),
    ('n2_word_eng3', 2502, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_eng3', 8712, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_word_eng4', 2654, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N2', None),
    ('n2_eng4', 8968, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N2', None),
    ('n1_word_eng1', 2200, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_eng1', 8192, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_word_eng2', 2352, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_eng2', 8448, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_word_eng3', 2504, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_eng3', 8704, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_word_eng4', 2656, 'u16', 2, 'Number', '%', (100, 16384, 0), (0, 399.993896484375, 0.006103515625), 'no', 'none', (0, 0, False), 'N1', None),
    ('n1_eng4', 8960, 'f64', 8, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'N1', None),
    ('fuel_flow_word_eng1', 2208, 'u16', 2, 'Number', 'lb/h', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_eng1', 2328, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_turbine_eng1', 8288, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow, turbine block', None),
    ('fuel_flow_word_eng2', 2360, 'u16', 2, 'Number', 'lb/h', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_eng2', 2480, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_turbine_eng2', 8544, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow, turbine block', None),
    ('fuel_flow_word_eng3', 2512, 'u16', 2, 'Number', 'lb/h', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_eng3', 2632, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_turbine_eng3', 8800, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow, turbine block', None),
    ('fuel_flow_word_eng4', 2664, 'u16', 2, 'Number', 'lb/h', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_eng4', 2784, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow', None),
    ('fuel_flow_turbine_eng4', 9056, 'f64', 8, 'Number', 'lb/h', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'fuel flow, turbine block', None),
    ('oil_temp_eng1', 2232, 's16', 2, 'Number', 'degC', (35, 4096, 0), (-280, 279.991455078125, 0.008544921875), 'no', 'none', (0, 0, False), 'oil temperature', None),
    ('oil_temp_eng2', 2384, 's16', 2, 'Number', 'degC', (35, 4096, 0), (-280, 279.991455078125, 0.008544921875), 'no', 'none', (0, 0, False), 'oil temperature', None),
    ('oil_temp_eng3', 2536, 's16', 2, 'Number', 'degC', (35, 4096, 0), (-280, 279.991455078125, 0.008544921875), 'no', 'none', (0, 0, False), 'oil temperature', None),
    ('oil_temp_eng4', 2688, 's16', 2, 'Number', 'degC', (35, 4096, 0), (-280, 279.991455078125, 0.008544921875), 'no', 'none', (0, 0, False), 'oil temperature', None),
    ('oil_pressure_eng1', 2234, 'u16', 2, 'Number', 'psi', (55, 16384, 0), (0, 219.99664306640625, 0.00335693359375), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_psf_eng1', 15200, 'f64', 8, 'Number', 'psi', (1, 144, 0), (None, None, None), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_eng2', 2386, 'u16', 2, 'Number', 'psi', (55, 16384, 0), (0, 219.99664306640625, 0.00335693359375), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_psf_eng2', 15008, 'f64', 8, 'Number', 'psi', (1, 144, 0), (None, None, None), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_eng3', 2538, 'u16', 2, 'Number', 'psi', (55, 16384, 0), (0, 219.99664306640625, 0.00335693359375), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_psf_eng3', 14816, 'f64', 8, 'Number', 'psi', (1, 144, 0), (None, None, None), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_eng4', 2690, 'u16', 2, 'Number', 'psi', (55, 16384, 0), (0, 219.99664306640625, 0.00335693359375), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('oil_pressure_psf_eng4', 14624, 'f64', 8, 'Number', 'psi', (1, 144, 0), (None, None, None), 'no', 'none', (0, 0, False), 'oil pressure', None),
    ('epr_word_eng1', 2236, 'u16', 2, 'Number', '', (1, 10240, 0), (0, 6.39990234375, 9.765625e-05), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('epr_eng1', 8240, 'f64', 8, 'Number', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('epr_word_eng2', 2388, 'u16', 2, 'Number', '', (1, 10240, 0), (0, 6.39990234375, 9.765625e-05), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('epr_eng2', 8496, 'f64', 8, 'Number', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('epr_word_eng3', 2540, 'u16', 2, 'Number', '', (1, 10240, 0), (0, 6.39990234375, 9.765625e-05), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('epr_word_eng4', 2692, 'u16', 2, 'Number', '', (1, 10240, 0), (0, 6.39990234375, 9.765625e-05), 'no', 'none', (0, 0, False), 'engine pressure ratio', None),
    ('egt_eng1', 2238, 's16', 2, 'Number', 'degC', (1000, 19051, 0), (-1720.0146973912133, 1719.9622067083096, 0.052490682903784586), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('egt_rankine_eng1', 15216, 'f64', 8, 'Number', 'degC', (5, 9, -273.15), (None, None, None), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('egt_eng2', 2390, 's16', 2, 'Number', 'degC', (1000, 19051, 0), (-1720.0146973912133, 1719.9622067083096, 0.052490682903784586), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('egt_rankine_eng2', 15024, 'f64', 8, 'Number', 'degC', (5, 9, -273.15), (None, None, None), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('egt_eng3', 2542, 's16', 2, 'Number', 'degC', (1000, 19051, 0), (-1720.0146973912133, 1719.9622067083096, 0.052490682903784586), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('egt_eng4', 2694, 's16', 2, 'Number', 'degC', (1000, 19051, 0), (-1720.0146973912133, 1719.9622067083096, 0.052490682903784586), 'no', 'none', (0, 0, False), 'exhaust gas temperature', None),
    ('itt_eng1', 8248, 'f64', 8, 'Number', 'degC', (5, 9, -273.15), (None, None, None), 'no', 'none', (0, 0, False), 'inter-turbine temperature', None),
    ('itt_eng2', 8504, 'f64', 8, 'Number', 'degC', (5, 9, -273.15), (None, None, None), 'no', 'none', (0, 0, False), 'inter-turbine temperature', None),
    ('manifold_eng1', 2240, 'u16', 2, 'Number', 'inHg', (1, 1024, 0), (0, 63.9990234375, 0.0009765625), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('manifold_psf_eng1', 14312, 'f64', 8, 'Number', 'inHg', (5000, 353631, 0), (None, None, None), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('manifold_eng2', 2392, 'u16', 2, 'Number', 'inHg', (1, 1024, 0), (0, 63.9990234375, 0.0009765625), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('manifold_psf_eng2', 14120, 'f64', 8, 'Number', 'inHg', (5000, 353631, 0), (None, None, None), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('manifold_eng3', 2544, 'u16', 2, 'Number', 'inHg', (1, 1024, 0), (0, 63.9990234375, 0.0009765625), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('manifold_eng4', 2696, 'u16', 2, 'Number', 'inHg', (1, 1024, 0), (0, 63.9990234375, 0.0009765625), 'no', 'none', (0, 0, False), 'manifold pressure', None),
    ('oil_quantity_eng1', 2256, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'oil quantity', None),
    ('oil_quantity_eng2', 2408, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'oil quantity', None),
    ('oil_quantity_eng3', 2560, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'oil quantity', None),
    ('oil_quantity_eng4', 2712, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'oil quantity', None),
    ('vibration_eng1', 2260, 's32', 4, 'Number', '', (69, 40000, 0), (-3704409.2928, 3704409.291075, 0.001725), 'no', 'none', (0, 0, False), 'engine vibration', None),
    ('vibration_eng2', 2412, 's32', 4, 'Number', '', (69, 40000, 0), (-3704409.2928, 3704409.291075, 0.001725), 'no', 'none', (0, 0, False), 'engine vibration', None),
    ('hyd_pressure_eng1', 2264, 's32', 4, 'Number', 'psi', (1, 4, 0), (-536870912, 536870911.75, 0.25), 'no', 'none', (0, 0, False), 'hydraulic pressure', None),
    ('hyd_pressure_eng2', 2416, 's32', 4, 'Number', 'psi', (1, 4, 0), (-536870912, 536870911.75, 0.25), 'no', 'none', (0, 0, False), 'hydraulic pressure', None),
    ('hyd_pressure_eng3', 2568, 's32', 4, 'Number', 'psi', (1, 4, 0), (-536870912, 536870911.75, 0.25), 'no', 'none', (0, 0, False), 'hydraulic pressure', None),
    ('hyd_pressure_eng4', 2720, 's32', 4, 'Number', 'psi', (1, 4, 0), (-536870912, 536870911.75, 0.25), 'no', 'none', (0, 0, False), 'hydraulic pressure', None),
    ('hyd_quantity_eng1', 2268, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'hydraulic quantity', None),
    ('hyd_quantity_eng2', 2420, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'hydraulic quantity', None),
    ('hyd_quantity_eng3', 2572, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'hydraulic quantity', None),
    ('hyd_quantity_eng4', 2724, 's32', 4, 'Number', '%', (100, 16384, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'hydraulic quantity', None),
    ('rotor_speed', 2312, 's32', 4, 'Number', 'rpm', (25, 4096, 0), (-13107200, 13107199.993896484, 0.006103515625), 'no', 'none', (0, 0, False), 'rotor speed', None),
    ('torque_eng1', 2336, 's32', 4, 'Number', 'lb ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'torque', None),
    ('torque_eng2', 2488, 's32', 4, 'Number', 'lb ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'torque', None),
    ('torque_eng3', 2640, 's32', 4, 'Number', 'lb ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'torque', None),
    ('torque_eng4', 2792, 's32', 4, 'Number', 'lb ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'torque', None),
    ('torque_ratio_eng1', 8232, 'f64', 8, 'Number', '%', (100, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'torque as a share of the limit', None),
    ('torque_ratio_eng2', 8488, 'f64', 8, 'Number', '%', (100, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'torque as a share of the limit', None),
    ('thrust_eng1', 8268, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'jet thrust', None),
    ('thrust_prop1', 9232, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller thrust', None),
    ('thrust_eng2', 8524, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'jet thrust', None),
    ('thrust_prop2', 9488, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller thrust', None),
    ('thrust_eng3', 8780, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'jet thrust', None),
    ('thrust_eng4', 9036, 'f64', 8, 'Number', 'lbf', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'jet thrust', None),
    ('rpm_prop1', 9216, 'f64', 8, 'Number', 'rpm', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller speed', None),
    ('rpm_prop2', 9472, 'f64', 8, 'Number', 'rpm', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller speed', None),
    ('rpm_ratio_prop1', 9224, 'f64', 8, 'Number', '%', (100, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller speed as a share of the maximum', None),
    ('rpm_ratio_prop2', 9480, 'f64', 8, 'Number', '%', (100, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'propeller speed as a share of the maximum', None),
    ('rpm_eng1', 67336, 'u16', 2, 'Number', 'rpm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'engine speed', None),
    ('rpm_eng2', 67338, 'u16', 2, 'Number', 'rpm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'engine speed', None),
    ('engine_type', 1545, 'u8', 1, 'Number', '', (1, 1, 0), (0, 5, 1), 'read-only', 'none', (0, 0, False), 'engine type', EngineType),
    ('engine_count', 2796, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'number of engines', None),
    ('anti_ice_eng1', 2226, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'engine anti-ice or carburettor heat', None),
    ('anti_ice_eng2', 2378, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'engine anti-ice or carburettor heat', None),
    ('anti_ice_eng3', 2530, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'engine anti-ice or carburettor heat', None),
    ('anti_ice_eng4', 2682, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'engine anti-ice or carburettor heat', None),
    ('pitot_heat', 668, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'pitot heat', None),
    ('deice', 13181, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'structural de-ice', None),
    ('deice_left', 28427, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'surface heat, left wing', None),
    ('deice_right', 28428, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'surface heat, right wing', None),
    ('wiper', 28040, 'u8', 1, 'Number', '', (1, 1, 0), (0, 255, 1), 'yes', 'same', (0, 0, False), 'wiper speed', None),
    ('lights', 3340, 'u16', 2, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'own', (0, 0, False), 'all lights', Lights),
    ('nav_lights', 640, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'navigation lights', None),
    ('beacon_strobe', 641, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'beacon or strobe lights', None),
    ('landing_lights', 652, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'landing lights', None),
    ('generators', 12545, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'generators of all engines', None),
    ('battery', 12546, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'battery switch', None),
    ('avionics', 12547, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'avionics master switch', None),
    ('fuel_pumps', 12548, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'fuel pumps of all engines', None),
    ('apu_generator', 2897, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'APU generator switch', None),
    ('apu_generator_active', 2898, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'APU generator active', None),
    ('apu_speed', 2900, 'f32', 4, 'Number', '%', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'APU speed', None),
    ('apu', 2904, 'f32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'own', (0, 0, False), 'APU running, start', None),
    ('apu_switch', 28073, 'u8', 1, 'Number', '', (1, 1, 0), (0, 2, 1), 'yes', 'same', (0, 0, False), 'APU switch', ApuSwitch),
    ('suction', 2840, 'f64', 8, 'Number', 'inHg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'gyro suction', None),
    ('sound', 2848, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'switch', (0, 0, False), 'sound on', None),
    ('sound_flag', 2852, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'read-only', 'none', (0, 0, False), 'sound on', None),
    ('fuel_centre_capacity', 2936, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'read-only', 'none', (0, 0, False), 'capacity of the centre tank', None),
    ('fuel_left_capacity', 2944, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'read-only', 'none', (0, 0, False), 'capacity of the left main tank', None),
    ('fuel_left_aux_capacity', 2952, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the left auxiliary tank', None),
    ('fuel_left_tip_capacity', 2960, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the left tip tank', None),
    ('fuel_right_capacity', 2968, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'read-only', 'none', (0, 0, False), 'capacity of the right main tank', None),
    ('fuel_right_aux_capacity', 2976, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the right auxiliary tank', None),
    ('fuel_right_tip_capacity', 2984, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the right tip tank', None),
    ('fuel_centre2_capacity', 4680, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the second centre tank', None),
    ('fuel_centre3_capacity', 4688, 'u32', 4, 'Number', 'US gal', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'capacity of the third centre tank', None),
    ('fuel_density', 2804, 'u16', 2, 'Number', 'lb/US gal', (1, 256, 0), (0, 255.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'fuel weight', None),
    ('fuel_centre', 2932, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the centre tank', None),
    ('fuel_left', 2940, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the left main tank', None),
    ('fuel_left_aux', 2948, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the left auxiliary tank', None),
    ('fuel_left_tip', 2956, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the left tip tank', None),
    ('fuel_right', 2964, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the right main tank', None),
    ('fuel_right_aux', 2972, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the right auxiliary tank', None),
    ('fuel_right_tip', 2980, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the right tip tank', None),
    ('fuel_centre2', 4676, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the second centre tank', None),
    ('fuel_centre3', 4684, 's32', 4, 'Number', '%', (100, 8388608, 0), (0, 100, 1.1920928955078125e-05), 'yes', 'near', (1.1920928955078125e-05, 0.00018, False), 'level of the third centre tank', None),
    ('fuel_total', 4716, 's32', 4, 'Number', 'lb', (1, 1, 0), (-2147483648, 2147483647, 1), 'yes', 'own', (0, 0, False), 'total fuel', None),
    ('empty_weight', 4912, 's32', 4, 'Number', 'lb', (1, 256, 0), (-8388608, 8388607.99609375, 0.00390625), 'yes', 'near', (0.00390625, 1e-07, False), 'empty weight', None),
    ('max_weight', 4916, 's32', 4, 'Number', 'lb', (1, 256, 0), (-8388608, 8388607.99609375, 0.00390625), 'yes', 'near', (0.00390625, 1e-07, False), 'maximum gross weight', None),
    ('payload_stations', 5116, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'number of payload stations', None),
    ('payload', 5120, 'f64', 8, 'Number', 'lb', (1, 1, 0), (0, None, None), 'yes', 'same', (0, 0, False), 'weight at payload station 1', None),
    ('zero_fuel_weight', 15356, 's32', 4, 'Number', 'lb', (1, 256, 0), (0, 8388607.99609375, 0.00390625), 'yes', 'near', (0.00390625, 1.2e-05, False), 'zero-fuel weight', None),
    ('gross_weight', 12480, 'f64', 8, 'Number', 'lb', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'gross weight', None),
    ('centre_of_gravity', 12024, 'f64', 8, 'Number', '', (1, 1, 0), (None, None, None), 'yes', 'near', (0, 1e-07, False), 'centre of gravity', None),
    ('jettison_total', 90144, 'f32', 4, 'Number', 'kg', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'jettisonable load, total', None),
    ('jettison', 90148, 'f32', 4, 'Number', 'kg', (1, 1, 0), (0, None, None), 'yes', 'limited', (0, 0, False), 'jettisonable load', None),
    ('cabin_altitude', 792, 's32', 4, 'Number', 'ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'cabin altitude', None),
    ('cabin_altitude_goal', 796, 's32', 4, 'Number', 'ft', (1, 1, 0), (-2147483648, 2147483647, 1), 'yes', 'near', (0, 1e-07, False), 'cabin altitude goal', None),
    ('cabin_rate', 800, 's32', 4, 'Number', '', (1, 1, 0), (-2147483648, 2147483647, 1), 'yes', 'near', (0, 1e-07, False), 'cabin rate of change', None),
    ('exits', 13159, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'exits open', Exits),
    ('runway_condition', 28072, 'u8', 1, 'Number', '', (1, 1, 0), (0, 2, 1), 'yes', 'limited', (0, 0, False), 'runway condition', RunwayCondition),
    ('skids', 28418, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'undercarriage has skids', None),
    ('fail_adf1', 2916, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'ADF 1 failed', None),
    ('fail_airspeed', 2917, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'airspeed indicator failed', None),
    ('fail_altimeter', 2918, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'altimeter failed', None),
    ('fail_attitude', 2919, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'attitude indicator failed', None),
    ('fail_com1', 2920, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'COM 1 failed', None),
    ('fail_engines', 2923, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'own', (0, 0, False), 'engines failed', FailEngines),
    ('panel_failed', 15334, 'u16', 2, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'partial-panel failures', PanelFailed),
    ('fail_panel', 15318, 'u16', 2, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'partial-panel failure command', PanelFailed),
    ('fail_now', 28068, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'yes', 'request', (0, 0, False), 'fail the selected systems now', None),
    ('fail_number', 28074, 'u8', 1, 'Number', '', (1, 1, 0), (0, 255, 1), 'yes', 'request', (0, 0, False), 'fail a system by number', None),
    ('audio_panel', 12578, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'own', (0, 0, False), 'audio panel', AudioPanel),
    ('com1', 846, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'COM1 frequency', None),
    ('com_standby1', 12570, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'COM1 standby frequency', None),
    ('nav1', 848, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'NAV frequency', None),
    ('nav_standby1', 12574, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'NAV1 standby frequency', None),
    ('adf1', 844, 'u16', 2, 'Bcd', 'kHz', (1, 1, 0), (0, 9999, 1), 'yes', 'limited', (0, 0, False), 'ADF frequency', None),
    ('com2', 12568, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'COM2 frequency', None),
    ('com_standby2', 12572, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'COM2 standby frequency', None),
    ('nav2', 850, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'NAV frequency', None),
    ('nav_standby2', 12576, 'u16', 2, 'Bcd', 'MHz', (1, 1, 0), (100, 199.99, 0.01), 'yes', 'limited', (0, 0, False), 'NAV2 standby frequency', None),
    ('adf2', 724, 'u16', 2, 'Bcd', 'kHz', (1, 1, 0), (0, 9999, 1), 'yes', 'limited', (0, 0, False), 'ADF frequency', None),
    ('transponder', 852, 'u16', 2, 'Bcd', '', (1, 1, 0), (0, 7777, 1), 'yes', 'limited', (0, 0, False), 'transponder code', None),
    ('transponder_mode', 28044, 'u8', 1, 'Number', '', (1, 1, 0), (0, 3, 1), 'yes', 'same', (0, 0, False), 'transponder mode', TransponderMode),
    ('radio_exchange', 12579, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'request', (0, 0, False), 'exchange active and standby frequency', RadioExchange),
    ('cdi1', 3144, 's8', 1, 'Number', 'dots', (10, 509, 0), (-2.5147347740667976, 2.4950884086444005, 0.019646365422396856), 'read-only', 'none', (0, 0, False), 'course needle', None),
    ('cdi_exact1', 10924, 'f32', 4, 'Number', 'dots', (10, 509, 0), (None, None, None), 'no', 'none', (0, 0, False), 'course needle, unrounded', None),
    ('gsi1', 3145, 's8', 1, 'Number', 'dots', (10, 509, 0), (-2.5147347740667976, 2.4950884086444005, 0.019646365422396856), 'read-only', 'none', (0, 0, False), 'glide-slope needle', None),
    ('gsi_exact1', 10928, 'f32', 4, 'Number', 'dots', (10, 509, 0), (None, None, None), 'no', 'none', (0, 0, False), 'glide-slope needle, unrounded', None),
    ('cdi2', 3161, 's8', 1, 'Number', 'dots', (10, 509, 0), (-2.5147347740667976, 2.4950884086444005, 0.019646365422396856), 'read-only', 'none', (0, 0, False), 'course needle', None),
    ('cdi_exact2', 10932, 'f32', 4, 'Number', 'dots', (10, 509, 0), (None, None, None), 'no', 'none', (0, 0, False), 'course needle, unrounded', None),
    ('gsi2', 3182, 's8', 1, 'Number', 'dots', (10, 509, 0), (-2.5147347740667976, 2.4950884086444005, 0.019646365422396856), 'read-only', 'none', (0, 0, False), 'glide-slope needle', None),
    ('gsi_exact2', 10936, 'f32', 4, 'Number', 'dots', (10, 509, 0), (None, None, None), 'no', 'none', (0, 0, False), 'glide-slope needle, unrounded', None),
    ('radial1', 3152, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'read-only', 'none', (0, 0, False), 'radial from the station', None),
    ('radial2', 3168, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'read-only', 'none', (0, 0, False), 'radial from the station', None),
    ('nav_bearing1', 3158, 'u16', 2, 'Number', 'deg', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'relative bearing to the station', None),
    ('nav_bearing2', 3164, 'u16', 2, 'Number', 'deg', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'relative bearing to the station', None),
    ('inner_marker', 2988, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'over the inner marker', None),
    ('middle_marker', 2990, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'over the middle marker', None),
    ('outer_marker', 2992, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'over the outer marker', None),
    ('obs1', 3150, 'u16', 2, 'Number', 'deg', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'omni bearing selector', None),
    ('obs2', 3166, 'u16', 2, 'Number', 'deg', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'omni bearing selector', None),
    ('dme1', 768, 'u16', 2, 'Number', 'nm', (1, 10, 0), (0, 6553.5, 0.1), 'no', 'none', (0, 0, False), 'DME distance', None),
    ('dme2', 774, 'u16', 2, 'Number', 'nm', (1, 10, 0), (0, 6553.5, 0.1), 'no', 'none', (0, 0, False), 'DME distance', None),
    ('to_from1', 3147, 'u8', 1, 'Number', '', (1, 1, 0), (0, 2, 1), 'no', 'none', (0, 0, False), 'to or from the station', ToFrom),
    ('to_from2', 3163, 'u8', 1, 'Number', '', (1, 1, 0), (0, 2, 1), 'no', 'none', (0, 0, False), 'to or from the station', ToFrom),
    ('glide_slope1', 3148, 'u8', 1, 'Number', '', (1, 1, 0), (0, 255, 1), 'no', 'none', (0, 0, False), 'glide slope received', None),
    ('glide_slope2', 3183, 'u8', 1, 'Number', '', (1, 1, 0), (0, 255, 1), 'no', 'none', (0, 0, False), 'glide slope received', None),
    ('dme_text1', 3113, 'text:5', 5, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'DME distance as text', None),
    ('dme_text2', 3123, 'text:5', 5, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'DME distance as text', None),
    ('radio_status', 13056, 'u16', 2, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'radio status', RadioStatus),
    ('adf_ident1', 12350, 'text:6', 6, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station identifier', None),
    ('adf_ident2', 732, 'text:6', 6, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station identifier', None),
    ('nav_signal1', 3154, 'u32', 4, 'Number', '', (1, 1, 0), (0, 256, 1), 'no', 'none', (0, 0, False), 'signal strength', NavSignal),
    ('nav_signal2', 3170, 'u32', 4, 'Number', '', (1, 1, 0), (0, 256, 1), 'no', 'none', (0, 0, False), 'signal strength', NavSignal),
    ('nav_latitude1', 2140, 's32', 4, 'Number', 'deg', (90, 10001750, 0), (-19323.971137051016, 19323.97112805259, 8.998425275576774e-06), 'no', 'none', (0, 0, False), 'latitude of the station, on an ILS of the glide slope', None),
    ('nav_longitude1', 2148, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'no', 'none', (0, 0, False), 'longitude of the same', None),
    ('nav_elevation1', 2156, 's32', 4, 'Number', 'm', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'elevation of the same', None),
    ('localizer_latitude1', 2164, 's32', 4, 'Number', 'deg', (90, 10001750, 0), (-19323.971137051016, 19323.97112805259, 8.998425275576774e-06), 'no', 'none', (0, 0, False), 'latitude of the localizer, 0 without one', None),
    ('localizer_longitude1', 2168, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'no', 'none', (0, 0, False), 'longitude of the localizer', None),
    ('localizer_elevation1', 2172, 's32', 4, 'Number', 'm', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'elevation of the localizer', None),
    ('localizer_reciprocal1', 2160, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'reciprocal course of the localizer; 0 without one', None),
    ('glide_slope_angle1', 2162, 's16', 2, 'Number', 'deg', (360, 65536, 0), (-180, 179.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'glide-slope inclination', None),
    ('localizer_bits1', 3146, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'localizer and signal', LocalizerBits),
    ('nav_code1', 3149, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station code', NavCode),
    ('has_nav1', 1952, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'NAV receiver available, always 1', None),
    ('nav_ident1', 12288, 'text:6', 6, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station identifier', None),
    ('nav_name1', 12294, 'text:25', 25, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station name', None),
    ('nav_latitude2', 2136, 's32', 4, 'Number', 'deg', (90, 10001750, 0), (-19323.971137051016, 19323.97112805259, 8.998425275576774e-06), 'no', 'none', (0, 0, False), 'latitude of the station, on an ILS of the glide slope', None),
    ('nav_longitude2', 2144, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'no', 'none', (0, 0, False), 'longitude of the same', None),
    ('nav_elevation2', 2152, 's32', 4, 'Number', 'm', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'elevation of the same', None),
    ('localizer_latitude2', 2124, 's32', 4, 'Number', 'deg', (90, 10001750, 0), (-19323.971137051016, 19323.97112805259, 8.998425275576774e-06), 'no', 'none', (0, 0, False), 'latitude of the localizer, 0 without one', None),
    ('localizer_longitude2', 2128, 's32', 4, 'Number', 'deg', (360, 4294967296, 0), (-180, 179.99999991618097, 8.381903171539307e-08), 'no', 'none', (0, 0, False), 'longitude of the localizer', None),
    ('localizer_elevation2', 2132, 's32', 4, 'Number', 'm', (1, 1, 0), (-2147483648, 2147483647, 1), 'no', 'none', (0, 0, False), 'elevation of the localizer', None),
    ('localizer_reciprocal2', 2116, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'reciprocal course of the localizer; 0 without one', None),
    ('glide_slope_angle2', 2118, 's16', 2, 'Number', 'deg', (360, 65536, 0), (-180, 179.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'glide-slope inclination', None),
    ('localizer_bits2', 3162, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'localizer and signal', LocalizerBits),
    ('nav_code2', 3184, 'u8', 1, 'Bits', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station code', NavCode),
    ('has_nav2', 1956, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'NAV receiver available, always 1', None),
    ('nav_ident2', 12319, 'text:6', 6, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station identifier', None),
    ('nav_name2', 12325, 'text:25', 25, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'station name', None),
    ('aircraft', 15616, 'text:256', 256, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'title of the aircraft', None),
    ('aircraft_file', 15360, 'text:256', 256, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), "file of the aircraft, without the simulator's folder", None),
    ('simulator_folder', 15872, 'text:256', 256, 'Text', '', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'folder of the simulator', None),
    ('atc_number', 12592, 'text:12', 12, 'Text', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'flight number for traffic control', None),
    ('atc_tail_number', 12604, 'text:12', 12, 'Text', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'tail number for traffic control', None),
    ('version', 28419, 'text:8', 8, 'Text', '', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'version of this program', None),
    ('version_word1', 13060, 'u32', 4, 'Bits', '', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'version word that clients ask for', None),
    ('version_word2', 13064, 'u32', 4, 'Bits', '', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'version word that clients ask for', None),
    ('altimeter_setting', 816, 'u16', 2, 'Number', 'mb', (1, 16, 0), (0, 4095.9375, 0.0625), 'yes', 'near', (0.1875, 0, False), 'altimeter setting', None),
    ('oat', 3724, 's16', 2, 'Number', 'degC', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'outside air temperature', None),
    ('tat', 4560, 's16', 2, 'Number', 'degC', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'total air temperature, the same as the outside one', None),
    ('air_density', 10432, 'f64', 8, 'Number', 'slug/ft3', (1, 1, 0), (None, None, None), 'read-only', 'none', (0, 0, False), 'air density', None),
    ('qnh', 3912, 'u16', 2, 'Number', 'mb', (1, 16, 0), (0, 4095.9375, 0.0625), 'yes', 'near', (0.0625, 0.00012, False), 'sea-level pressure, settable', None),
    ('sea_level_pressure', 3782, 'u16', 2, 'Number', 'mb', (1, 16, 0), (0, 4095.9375, 0.0625), 'no', 'none', (0, 0, False), 'sea-level pressure', None),
    ('sea_level_pressure_exact', 13472, 'f64', 8, 'Number', 'mb', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'sea-level pressure, unrounded', None),
    ('sea_level_temperature', 3776, 's16', 2, 'Number', 'degC', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'sea-level temperature', None),
    ('dew_point', 1224, 's16', 2, 'Number', 'degC', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'no', 'none', (0, 0, False), 'dew point', None),
    ('dew_point_set', 1236, 's16', 2, 'Number', 'degC', (1, 256, 0), (-128, 127.99609375, 0.00390625), 'yes', 'same', (0, 0, False), 'dew point control', None),
    ('precipitation_rate', 1227, 'u8', 1, 'Number', '', (1, 1, 0), (0, 5, 1), 'no', 'none', (0, 0, False), 'precipitation rate, 0 to 5', None),
    ('precipitation_kind', 1228, 'u8', 1, 'Number', '', (1, 1, 0), (1, 2, 1), 'no', 'none', (0, 0, False), 'precipitation kind', PrecipitationKind),
    ('precipitation_set', 1234, 'u16', 2, 'Bits', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'precipitation control', PrecipitationSet),
    ('visibility', 3722, 'u16', 2, 'Number', 'mi', (1, 100, 0), (0, 655.35, 0.01), 'yes', 'same', (0, 0, False), 'visibility', None),
    ('thunderstorm', 28079, 'u8', 1, 'Number', '%', (1, 1, 0), (0, 255, 1), 'yes', 'same', (0, 0, False), 'thunderstorms', None),
    ('real_weather', 28437, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'real weather in use', None),
    ('cloud_base1', 3748, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'low cloud base', None),
    ('cloud_tops1', 3746, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'low cloud tops', None),
    ('cloud_type1', 3750, 'u16', 2, 'Number', '', (1, 1, 0), (0, 5, 1), 'yes', 'limited', (0, 0, False), 'low cloud type', CloudType),
    ('cloud_base2', 28433, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'middle cloud base', None),
    ('cloud_tops2', 28431, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'middle cloud tops', None),
    ('cloud_type2', 28435, 'u16', 2, 'Number', '', (1, 1, 0), (0, 5, 1), 'yes', 'limited', (0, 0, False), 'middle cloud type', CloudType),
    ('cloud_base3', 3740, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'high cloud base', None),
    ('cloud_tops3', 3738, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'high cloud tops', None),
    ('cloud_type3', 3742, 'u16', 2, 'Number', '', (1, 1, 0), (0, 5, 1), 'yes', 'limited', (0, 0, False), 'high cloud type', CloudType),
    ('wind', 3728, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'wind speed at the aircraft', None),
    ('wind_exact', 13448, 'f64', 8, 'Number', 'kt', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'wind speed at the aircraft, unrounded', None),
    ('wind_from_true', 13456, 'f64', 8, 'Number', 'deg', (1, 1, 0), (None, None, None), 'no', 'none', (0, 0, False), 'wind direction at the aircraft', None),
    ('wind_from', 3730, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'wind direction at the aircraft', None),
    ('wind_speed1', 3954, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'wind speed', None),
    ('wind_speed1_copy', 3824, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'wind speed', None),
    ('wind_speed1_copy2', 1240, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'wind speed', None),
    ('wind_direction1', 3956, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'yes', 'same', (0, 0, False), 'surface wind direction', None),
    ('wind_direction1_copy', 3826, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'no', 'none', (0, 0, False), 'surface wind direction', None),
    ('wind_direction1_copy2', 1242, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'read-only', 'none', (0, 0, False), 'surface wind direction', None),
    ('wind_ceiling1', 3952, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'top of the surface wind layer', None),
    ('wind_ceiling1_copy', 3822, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'top of the surface wind layer', None),
    ('turbulence1', 3958, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'turbulence, 0 to 255', None),
    ('turbulence1_copy', 3828, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'turbulence, 0 to 255', None),
    ('gust1', 3960, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'gust', None),
    ('gust1_copy', 3830, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'gust', None),
    ('wind_ceiling2', 3940, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'ceiling of the wind layer', None),
    ('wind_ceiling2_copy', 3810, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'ceiling of the wind layer', None),
    ('wind_base2', 3942, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'base of the wind layer', None),
    ('wind_base2_copy', 3812, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'base of the wind layer', None),
    ('wind_speed2', 3944, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'wind speed', None),
    ('wind_speed2_copy', 3814, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'wind speed', None),
    ('wind_direction2', 3946, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'yes', 'same', (0, 0, False), 'wind direction', None),
    ('wind_direction2_copy', 3816, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'read-only', 'none', (0, 0, False), 'wind direction', None),
    ('turbulence2', 3948, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'turbulence, 0 to 255', None),
    ('turbulence2_copy', 3818, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'turbulence, 0 to 255', None),
    ('gust2', 3950, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'gust', None),
    ('gust2_copy', 3820, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'gust', None),
    ('wind_ceiling3', 3928, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'ceiling of the wind layer', None),
    ('wind_ceiling3_copy', 3798, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'ceiling of the wind layer', None),
    ('wind_base3', 3930, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'base of the wind layer', None),
    ('wind_base3_copy', 3800, 'u16', 2, 'Number', 'm', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'base of the wind layer', None),
    ('wind_speed3', 3932, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'wind speed', None),
    ('wind_speed3_copy', 3802, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'wind speed', None),
    ('wind_direction3', 3934, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'yes', 'same', (0, 0, False), 'wind direction', None),
    ('wind_direction3_copy', 3804, 'u16', 2, 'Number', 'deg', (360, 65536, 0), (0, 359.9945068359375, 0.0054931640625), 'read-only', 'none', (0, 0, False), 'wind direction', None),
    ('turbulence3', 3936, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'turbulence, 0 to 255', None),
    ('turbulence3_copy', 3806, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'turbulence, 0 to 255', None),
    ('gust3', 3938, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'yes', 'same', (0, 0, False), 'gust', None),
    ('gust3_copy', 3808, 'u16', 2, 'Number', 'kt', (1, 1, 0), (0, 65535, 1), 'no', 'none', (0, 0, False), 'gust', None),
    ('situation_file', 16132, 'text:252', 252, 'Text', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'name of a situation (.sit) or movie (.smo) file', None),
    ('situation_command', 16128, 'u16', 2, 'Number', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'loads or saves the file at 0x3F04', SituationCommand),
    ('situation_loads', 16130, 'u16', 2, 'Number', '', (1, 1, 0), (0, 65535, 1), 'read-only', 'none', (0, 0, False), 'files loaded so far', None),
    ('custom_reload', 28429, 'u8', 1, 'Number', '', (1, 1, 0), (0, 1, 1), 'yes', 'request', (0, 0, False), 'write 1 to read the custom offsets file again', None),
    ('has_toe_brakes', 1948, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'toe brakes available, always 1', None),
    ('has_autopilot', 1892, 'u32', 4, 'Number', '', (1, 1, 0), (0, 4294967295, 1), 'no', 'none', (0, 0, False), 'autopilot available, always 1', None),
    ('has_stall_warning', 1916, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'stall warning available', None),
    ('has_mixture', 1920, 'u32', 4, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), 'mixture control available', None),
    ('vne', 708, 'u32', 4, 'Number', 'kt', (1, 128, 0), (0, 33554431.9921875, 0.0078125), 'read-only', 'none', (0, 0, False), 'never-exceed speed', None),
    ('contact_atc', 28438, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'contact traffic control (push to talk), held while not 0', None),
    ('crashed', 2112, 'u16', 2, 'Flag', '', (1, 1, 0), (0, 1, 1), 'no', 'none', (0, 0, False), '1 for about five seconds after the aircraft has crashed', None),
    ('custom_clear', 28430, 'u8', 1, 'Flag', '', (1, 1, 0), (0, 1, 1), 'yes', 'same', (0, 0, False), 'write 1 to drop the custom offsets and read their file again', None),
    ('weather_selector', 51200, 'u16', 2, 'Number', '', (1, 1, 0), (0, 4, 1), 'yes', 'request', (0, 0, False), '1 to 4 apply the weather area 0xC800-0xC87F, once the whole request has been read', None),
    ('message_text', 13184, 'text:128', 128, 'Text', '', (1, 1, 0), (None, None, None), 'yes', 'same', (0, 0, False), 'text of the message that 0x32FA shows, at most 127 characters', None),
)
ALL = {row[0]: Offset(*row) for row in _ROWS}  # by name
globals().update(ALL)
