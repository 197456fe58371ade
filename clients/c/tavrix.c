/* The network protocol and the local one (docs/network-protocol.md, docs/local-protocol.md), and the table of
 * offsets. */
#ifndef _WIN32
#define _DEFAULT_SOURCE 1
#endif
#include "tavrix.h"

#include <float.h>
#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
typedef SOCKET Socket;
#define NO_SOCKET INVALID_SOCKET
#define WOULD_BLOCK (WSAGetLastError() == WSAEWOULDBLOCK)
#else
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>
typedef int Socket;
#define NO_SOCKET (-1)
#define WOULD_BLOCK (errno == EINPROGRESS || errno == EAGAIN || errno == EWOULDBLOCK)
#define closesocket close
#endif

enum { T_U8, T_S8, T_U16, T_S16, T_U32, T_S32, T_S64, T_F32, T_F64, T_TEXT };
enum { F_NUMBER, F_FLAG, F_BCD, F_BITS, F_TEXT };
enum { H_WRITABLE = 1, H_LOW = 2, H_HIGH = 4, H_WRAPS = 8, H_UNSEEN = 16, H_LISTED = 32 };

static const struct tavrix_info table[] = {
    /* clang-format off */
/* Written by clients/generate.py from docs/offsets.json; do not edit. */
  {"pause", "", 0x0262, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"paused", "", 0x0264, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"activity", "", 0x337E, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"local_hour", "h", 0x0238, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 23.0, 1.0, 0.0, 0.0},
  {"local_minute", "min", 0x0239, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 59.0, 1.0, 0.0, 0.0},
  {"second", "s", 0x023A, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 59.0, 1.0, 0.0, 0.0},
  {"local_time", "", 0x0C20, 9, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"zulu_hour", "h", 0x023B, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 23.0, 1.0, 0.0, 0.0},
  {"zulu_minute", "min", 0x023C, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 59.0, 1.0, 0.0, 0.0},
  {"time_zone", "h", 0x0246, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"frame_time", "s", 0x0274, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 32768.0, 0.0, 0.0, 1.999969482421875, 3.0517578125e-05, 0.0, 0.0},
  {"day_of_year", "", 0x023E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 1.0, 366.0, 1.0, 0.0, 0.0},
  {"season", "", 0x0248, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 3.0, 1.0, 0.0, 0.0},
  {"year", "", 0x0240, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"sim_rate", "", 0x0C1A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 256.0, 0.0, 0.0, 255.99609375, 0.00390625, 0.0, 0.0},
  {"show_message", "s", 0x32FA, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"reposition", "", 0x0558, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"latitude", "deg", 0x0560, 8, T_S64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 90.0, 4.2957189152768e+16, 0.0, -90.0, 90.0, 2.0951091487837895e-15, 1.0056523914162189e-07, 0.0},
  {"longitude", "deg", 0x0568, 8, T_S64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 1.8446744073709552e+19, 0.0, -180.0, 180.0, 1.951563910473908e-17, 1.0148132334464322e-07, 0.0},
  {"altitude", "m", 0x0570, 8, T_S64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 4294967296.0, 0.0, -2147483648.0, 2147483648.0, 2.3283064365386963e-10, 0.010011717677116394, 0.0},
  {"altitude_m", "m", 0x0574, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 1.0, 0.0},
  {"pitch", "deg", 0x0578, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 2.1457672119140625e-05, 0.0},
  {"indicator_pitch", "deg", 0x2F70, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"bank", "deg", 0x057C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 2.1457672119140625e-05, 0.0},
  {"indicator_bank", "deg", 0x2F78, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"heading", "deg", 0x0580, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 4294967296.0, 0.0, 0.0, 359.99999991618097, 8.381903171539307e-08, 2.1457672119140625e-05, 0.0},
  {"ground_altitude", "m", 0x0020, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -8388608.0, 8388607.99609375, 0.00390625, 0.0, 0.0},
  {"ground_altitude_m", "m", 0x0B4C, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"radio_altitude", "m", 0x31E4, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 65536.0, 0.0, -32768.0, 32767.99998474121, 1.52587890625e-05, 0.0, 0.0},
  {"indicated_altitude", "ft", 0x3324, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"magnetic_variation", "deg", 0x02A0, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, -180.0, 179.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"tas", "kt", 0x02B8, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 128.0, 0.0, -16777216.0, 16777215.9921875, 0.0078125, 0.0, 0.0},
  {"ias", "kt", 0x02BC, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 128.0, 0.0, -16777216.0, 16777215.9921875, 0.0078125, 0.0, 0.0},
  {"vertical_speed", "m/s", 0x02C8, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -8388608.0, 8388607.99609375, 0.00390625, 0.0, 0.0},
  {"vertical_speed_m_min", "m/min", 0x0842, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"touchdown_speed", "m/s", 0x030C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -8388608.0, 8388607.99609375, 0.00390625, 0.0, 0.0},
  {"vertical_speed_ft_s", "ft/s", 0x31A0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"mach", "", 0x11C6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 20480.0, 0.0, 0.0, 3.199951171875, 4.8828125e-05, 0.0, 0.0},
  {"slip", "", 0x036E, 1, T_S8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -128.0, 127.0, 1.0, 0.0, 0.0},
  {"turn_rate", "", 0x037C, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"ground_speed", "m/s", 0x02B4, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 65536.0, 0.0, -32768.0, 32767.99998474121, 1.52587890625e-05, 0.0, 0.0},
  {"ground_speed_m_s", "m/s", 0x6030, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"on_ground", "", 0x0366, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"stall", "", 0x036C, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"accel_side", "ft/s2", 0x3060, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"accel_vertical", "ft/s2", 0x3068, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"accel_forward", "ft/s2", 0x3070, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"accel_pitch", "rad/s2", 0x3078, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"accel_roll", "rad/s2", 0x3080, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"accel_yaw", "rad/s2", 0x3088, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"speed_forward", "ft/s", 0x3090, 8, T_F64, F_NUMBER, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"speed_side", "ft/s", 0x3098, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"speed_vertical", "ft/s", 0x30A0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"pitch_rate", "rad/s", 0x30A8, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"pitch_rate_copy", "rad/s", 0x31A8, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"roll_rate", "rad/s", 0x30B0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"roll_rate_copy", "rad/s", 0x31B0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"yaw_rate", "rad/s", 0x30B8, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"alpha", "rad", 0x2ED0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"beta", "rad", 0x2ED8, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"alpha_percent", "%", 0x11BE, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, -100.0, 32767.0, 100.0, -100.0030518509476, 100.0, 0.0030518509475997192, 0.0, 0.0},
  {"load_factor", "g", 0x11BA, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 625.0, 0.0, -52.4288, 52.4272, 0.0016, 0.0, 0.0},
  {"fd_pitch", "deg", 0x2EE8, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fd_bank", "deg", 0x2EF0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"ap", "", 0x07BC, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fd", "", 0x2EE0, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_wing_leveler", "", 0x07C0, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_nav", "", 0x07C4, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_heading", "", 0x07C8, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_altitude", "", 0x07D0, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_speed", "", 0x07DC, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_mach", "", 0x07E4, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_vertical_speed", "", 0x07EC, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_thrust", "", 0x07F4, 4, T_U32, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_approach", "", 0x0800, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"toga", "", 0x080C, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"autothrottle", "", 0x0810, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ap_heading_bug", "deg", 0x07CC, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_WRAPS, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0933837890625, 0.0},
  {"ap_altitude_set", "m", 0x07D4, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 65536.0, 0.0, -32768.0, 32767.99998474121, 1.52587890625e-05, 1.52587890625e-05, 1.3e-05},
  {"ap_ias_set", "kt", 0x07E2, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"ap_mach_set", "", 0x07E8, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 65536.0, 0.0, -32768.0, 32767.99998474121, 1.52587890625e-05, 1.52587890625e-05, 1e-07},
  {"ap_vertical_speed_set", "ft/min", 0x07F2, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, -32768.0, 32767.0, 1.0, 0.0, 0.0},
  {"ap_back_course", "", 0x0804, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"yaw_damper", "", 0x0808, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"autobrake", "", 0x2F80, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"elevator", "%", 0x0BB2, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_copy", "%", 0x584A, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_position", "%", 0x0BB4, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"aileron_position", "%", 0x0BB8, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"aileron_deflection", "deg", 0x2EA8, 8, T_F64, F_NUMBER, H_UNSEEN, 18.0, 3.141592653589793, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rudder", "%", 0x0BBA, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"rudder_position", "%", 0x0BBC, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"rudder_deflection", "deg", 0x2EB8, 8, T_F64, F_NUMBER, H_UNSEEN, 18.0, 3.141592653589793, 0.0, 0, 0, 0, 0.0, 0.0},
  {"blade_pitch", "deg", 0x0BBE, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 15.0, 32768.0, 0.0, 0.0, 29.999542236328125, 0.000457763671875, 0.0, 0.0},
  {"aileron", "%", 0x0BB6, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"aileron_copy", "%", 0x584C, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_trim", "%", 0x0BC0, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -100.0, 100.0, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_trim_indicator", "%", 0x0BC2, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_trim_indicator_angle", "deg", 0x2E98, 8, T_F64, F_NUMBER, H_UNSEEN, 180.0, 3.141592653589793, 0.0, 0, 0, 0, 0.0, 0.0},
  {"aileron_trim", "%", 0x0C02, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"rudder_trim", "%", 0x0C04, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"elevator_trim_angle", "deg", 0x2EA0, 8, T_F64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 180.0, 3.141592653589793, 0.0, -10.0, 10.0, 0, 0.0, 1e-06},
  {"aileron_trim_angle", "deg", 0x2EB0, 8, T_F64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 180.0, 3.141592653589793, 0.0, -10.0, 10.0, 0, 0.0, 1e-06},
  {"rudder_trim_angle", "deg", 0x2EC0, 8, T_F64, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 180.0, 3.141592653589793, 0.0, -10.0, 10.0, 0, 0.0, 1e-06},
  {"left_brake", "%", 0x0BC4, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"right_brake", "%", 0x0BC6, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"parking_brake", "%", 0x0BC8, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 32767.0, 0.0, 0.0, 100.0, 0.0030518509475997192, 0.0, 0.0},
  {"brakes_applied", "", 0x0BCA, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"left_brake_axis", "%", 0x3416, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"right_brake_axis", "%", 0x3418, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"speed_brake_armed", "", 0x0BCC, 4, T_U32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"speed_brake", "", 0x0BD0, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 16383.0, 1.0, 0.0, 0.0},
  {"left_spoiler", "%", 0x0BD4, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"right_spoiler", "%", 0x0BD8, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"flaps", "%", 0x0BDC, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, 0.0, 100.0, 0.0061038881767686015, 0.0, 0.0},
  {"left_flap_position", "%", 0x0BE0, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"right_flap_position", "%", 0x0BE4, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"slat_left_inboard", "%", 0x30E8, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"slat_left_outboard", "%", 0x30EA, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"slat_right_inboard", "%", 0x30EC, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"slat_right_outboard", "%", 0x30EE, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, -200.01220777635353, 200.00610388817677, 0.0061038881767686015, 0.0, 0.0},
  {"flap_left_inboard", "deg", 0x30F0, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"flap_left_outboard", "deg", 0x30F2, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"flap_right_inboard", "deg", 0x30F4, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"flap_right_outboard", "deg", 0x30F6, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"gear", "%", 0x0BE8, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, 0.0, 100.0, 0.0061038881767686015, 0.0, 0.0},
  {"nose_gear", "%", 0x0BEC, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"right_gear", "%", 0x0BF0, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"left_gear", "%", 0x0BF4, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16383.0, 0.0, 0.0, 26216000.091558322, 0.0061038881767686015, 0.0, 0.0},
  {"nose_wheel_angle", "deg", 0x6D8A, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 100.0, 0.0, -327.68, 327.67, 0.01, 0.0, 0.0},
  {"nose_wheel_speed", "", 0x6F00, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10.0, 0.0, -3276.8, 3276.7000000000003, 0.1, 0.0, 0.0},
  {"joystick_disconnect", "", 0x310A, 1, T_U8, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"slew", "", 0x05DC, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"position_freeze", "", 0x3541, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"pushback_state", "", 0x31F0, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 3.0, 1.0, 0.0, 0.0},
  {"pushback", "", 0x31F4, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 3.0, 1.0, 0.0, 0.0},
  {"throttle1", "%", 0x088C, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -25.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"throttle2", "%", 0x0924, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -25.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"throttle3", "%", 0x09BC, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -25.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"throttle_input3", "%", 0x3334, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"throttle4", "%", 0x0A54, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -25.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"throttle_input4", "%", 0x3336, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"throttle_direct1", "%", 0x089A, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"throttle_direct2", "%", 0x0932, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"throttle_direct3", "%", 0x09CA, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"throttle_direct4", "%", 0x0A62, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, -200.0, 199.993896484375, 0.006103515625, 0.0, 0.0},
  {"mixture1", "%", 0x0890, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, 0.0, 100.0, 0.0061038881767686015, 0.0, 0.0},
  {"mixture2", "%", 0x0928, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16383.0, 0.0, 0.0, 100.0, 0.0061038881767686015, 0.0, 0.0},
  {"mixture3", "%", 0x09C0, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, 0.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"mixture4", "%", 0x0A58, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 16384.0, 0.0, 0.0, 100.0, 0.006103515625, 0.0, 0.0},
  {"fuel_valve1", "", 0x3590, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fuel_valve2", "", 0x3594, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"magneto1", "", 0x0892, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 4.0, 1.0, 0.0, 0.0},
  {"starter1", "", 0x0506, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"magneto2", "", 0x092A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 4.0, 1.0, 0.0, 0.0},
  {"starter2", "", 0x0507, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"magneto3", "", 0x09C2, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 4.0, 1.0, 0.0, 0.0},
  {"starter3", "", 0x0508, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"magneto4", "", 0x0A5A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 4.0, 1.0, 0.0, 0.0},
  {"starter4", "", 0x0509, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ignition1", "", 0x208C, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ignition2", "", 0x218C, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ignition3", "", 0x228C, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"ignition4", "", 0x238C, 4, T_S32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"igniter1", "", 0x6D8E, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"igniter2", "", 0x6D8F, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"running_eng1", "", 0x0894, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"running_eng2", "", 0x092C, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"running_eng3", "", 0x09C4, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"running_eng4", "", 0x0A5C, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"n2_word_eng1", "%", 0x0896, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n2_eng1", "%", 0x2008, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n2_corrected_eng1", "%", 0x2018, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n2_word_eng2", "%", 0x092E, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n2_eng2", "%", 0x2108, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n2_corrected_eng2", "%", 0x2118, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n2_word_eng3", "%", 0x09C6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n2_eng3", "%", 0x2208, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n2_word_eng4", "%", 0x0A5E, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n2_eng4", "%", 0x2308, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n1_word_eng1", "%", 0x0898, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n1_eng1", "%", 0x2000, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n1_word_eng2", "%", 0x0930, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n1_eng2", "%", 0x2100, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n1_word_eng3", "%", 0x09C8, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n1_eng3", "%", 0x2200, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"n1_word_eng4", "%", 0x0A60, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, 0.0, 399.993896484375, 0.006103515625, 0.0, 0.0},
  {"n1_eng4", "%", 0x2300, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_word_eng1", "lb/h", 0x08A0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"fuel_flow_eng1", "lb/h", 0x0918, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_turbine_eng1", "lb/h", 0x2060, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_word_eng2", "lb/h", 0x0938, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"fuel_flow_eng2", "lb/h", 0x09B0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_turbine_eng2", "lb/h", 0x2160, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_word_eng3", "lb/h", 0x09D0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"fuel_flow_eng3", "lb/h", 0x0A48, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_turbine_eng3", "lb/h", 0x2260, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_word_eng4", "lb/h", 0x0A68, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"fuel_flow_eng4", "lb/h", 0x0AE0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fuel_flow_turbine_eng4", "lb/h", 0x2360, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"oil_temp_eng1", "degC", 0x08B8, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 35.0, 4096.0, 0.0, -280.0, 279.991455078125, 0.008544921875, 0.0, 0.0},
  {"oil_temp_eng2", "degC", 0x0950, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 35.0, 4096.0, 0.0, -280.0, 279.991455078125, 0.008544921875, 0.0, 0.0},
  {"oil_temp_eng3", "degC", 0x09E8, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 35.0, 4096.0, 0.0, -280.0, 279.991455078125, 0.008544921875, 0.0, 0.0},
  {"oil_temp_eng4", "degC", 0x0A80, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 35.0, 4096.0, 0.0, -280.0, 279.991455078125, 0.008544921875, 0.0, 0.0},
  {"oil_pressure_eng1", "psi", 0x08BA, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 55.0, 16384.0, 0.0, 0.0, 219.99664306640625, 0.00335693359375, 0.0, 0.0},
  {"oil_pressure_psf_eng1", "psi", 0x3B60, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 144.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"oil_pressure_eng2", "psi", 0x0952, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 55.0, 16384.0, 0.0, 0.0, 219.99664306640625, 0.00335693359375, 0.0, 0.0},
  {"oil_pressure_psf_eng2", "psi", 0x3AA0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 144.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"oil_pressure_eng3", "psi", 0x09EA, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 55.0, 16384.0, 0.0, 0.0, 219.99664306640625, 0.00335693359375, 0.0, 0.0},
  {"oil_pressure_psf_eng3", "psi", 0x39E0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 144.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"oil_pressure_eng4", "psi", 0x0A82, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 55.0, 16384.0, 0.0, 0.0, 219.99664306640625, 0.00335693359375, 0.0, 0.0},
  {"oil_pressure_psf_eng4", "psi", 0x3920, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 144.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"epr_word_eng1", "", 0x08BC, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10240.0, 0.0, 0.0, 6.39990234375, 9.765625e-05, 0.0, 0.0},
  {"epr_eng1", "", 0x2030, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"epr_word_eng2", "", 0x0954, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10240.0, 0.0, 0.0, 6.39990234375, 9.765625e-05, 0.0, 0.0},
  {"epr_eng2", "", 0x2130, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"epr_word_eng3", "", 0x09EC, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10240.0, 0.0, 0.0, 6.39990234375, 9.765625e-05, 0.0, 0.0},
  {"epr_word_eng4", "", 0x0A84, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10240.0, 0.0, 0.0, 6.39990234375, 9.765625e-05, 0.0, 0.0},
  {"egt_eng1", "degC", 0x08BE, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1000.0, 19051.0, 0.0, -1720.0146973912133, 1719.9622067083096, 0.052490682903784586, 0.0, 0.0},
  {"egt_rankine_eng1", "degC", 0x3B70, 8, T_F64, F_NUMBER, H_UNSEEN, 5.0, 9.0, -273.15, 0, 0, 0, 0.0, 0.0},
  {"egt_eng2", "degC", 0x0956, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1000.0, 19051.0, 0.0, -1720.0146973912133, 1719.9622067083096, 0.052490682903784586, 0.0, 0.0},
  {"egt_rankine_eng2", "degC", 0x3AB0, 8, T_F64, F_NUMBER, H_UNSEEN, 5.0, 9.0, -273.15, 0, 0, 0, 0.0, 0.0},
  {"egt_eng3", "degC", 0x09EE, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1000.0, 19051.0, 0.0, -1720.0146973912133, 1719.9622067083096, 0.052490682903784586, 0.0, 0.0},
  {"egt_eng4", "degC", 0x0A86, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1000.0, 19051.0, 0.0, -1720.0146973912133, 1719.9622067083096, 0.052490682903784586, 0.0, 0.0},
  {"itt_eng1", "degC", 0x2038, 8, T_F64, F_NUMBER, H_UNSEEN, 5.0, 9.0, -273.15, 0, 0, 0, 0.0, 0.0},
  {"itt_eng2", "degC", 0x2138, 8, T_F64, F_NUMBER, H_UNSEEN, 5.0, 9.0, -273.15, 0, 0, 0, 0.0, 0.0},
  {"manifold_eng1", "inHg", 0x08C0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1024.0, 0.0, 0.0, 63.9990234375, 0.0009765625, 0.0, 0.0},
  {"manifold_psf_eng1", "inHg", 0x37E8, 8, T_F64, F_NUMBER, H_UNSEEN, 5000.0, 353631.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"manifold_eng2", "inHg", 0x0958, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1024.0, 0.0, 0.0, 63.9990234375, 0.0009765625, 0.0, 0.0},
  {"manifold_psf_eng2", "inHg", 0x3728, 8, T_F64, F_NUMBER, H_UNSEEN, 5000.0, 353631.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"manifold_eng3", "inHg", 0x09F0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1024.0, 0.0, 0.0, 63.9990234375, 0.0009765625, 0.0, 0.0},
  {"manifold_eng4", "inHg", 0x0A88, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1024.0, 0.0, 0.0, 63.9990234375, 0.0009765625, 0.0, 0.0},
  {"oil_quantity_eng1", "%", 0x08D0, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"oil_quantity_eng2", "%", 0x0968, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"oil_quantity_eng3", "%", 0x0A00, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"oil_quantity_eng4", "%", 0x0A98, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"vibration_eng1", "", 0x08D4, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 69.0, 40000.0, 0.0, -3704409.2928, 3704409.291075, 0.001725, 0.0, 0.0},
  {"vibration_eng2", "", 0x096C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 69.0, 40000.0, 0.0, -3704409.2928, 3704409.291075, 0.001725, 0.0, 0.0},
  {"hyd_pressure_eng1", "psi", 0x08D8, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 4.0, 0.0, -536870912.0, 536870911.75, 0.25, 0.0, 0.0},
  {"hyd_pressure_eng2", "psi", 0x0970, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 4.0, 0.0, -536870912.0, 536870911.75, 0.25, 0.0, 0.0},
  {"hyd_pressure_eng3", "psi", 0x0A08, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 4.0, 0.0, -536870912.0, 536870911.75, 0.25, 0.0, 0.0},
  {"hyd_pressure_eng4", "psi", 0x0AA0, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 4.0, 0.0, -536870912.0, 536870911.75, 0.25, 0.0, 0.0},
  {"hyd_quantity_eng1", "%", 0x08DC, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"hyd_quantity_eng2", "%", 0x0974, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"hyd_quantity_eng3", "%", 0x0A0C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"hyd_quantity_eng4", "%", 0x0AA4, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 100.0, 16384.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"rotor_speed", "rpm", 0x0908, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 25.0, 4096.0, 0.0, -13107200.0, 13107199.993896484, 0.006103515625, 0.0, 0.0},
  {"torque_eng1", "lb ft", 0x0920, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"torque_eng2", "lb ft", 0x09B8, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"torque_eng3", "lb ft", 0x0A50, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"torque_eng4", "lb ft", 0x0AE8, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"torque_ratio_eng1", "%", 0x2028, 8, T_F64, F_NUMBER, H_UNSEEN, 100.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"torque_ratio_eng2", "%", 0x2128, 8, T_F64, F_NUMBER, H_UNSEEN, 100.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_eng1", "lbf", 0x204C, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_prop1", "lbf", 0x2410, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_eng2", "lbf", 0x214C, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_prop2", "lbf", 0x2510, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_eng3", "lbf", 0x224C, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"thrust_eng4", "lbf", 0x234C, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rpm_prop1", "rpm", 0x2400, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rpm_prop2", "rpm", 0x2500, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rpm_ratio_prop1", "%", 0x2408, 8, T_F64, F_NUMBER, H_UNSEEN, 100.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rpm_ratio_prop2", "%", 0x2508, 8, T_F64, F_NUMBER, H_UNSEEN, 100.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"rpm_eng1", "rpm", 0x10708, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"rpm_eng2", "rpm", 0x1070A, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"engine_type", "", 0x0609, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"engine_count", "", 0x0AEC, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"anti_ice_eng1", "", 0x08B2, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"anti_ice_eng2", "", 0x094A, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"anti_ice_eng3", "", 0x09E2, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"anti_ice_eng4", "", 0x0A7A, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"pitot_heat", "", 0x029C, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"deice", "", 0x337D, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"deice_left", "", 0x6F0B, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"deice_right", "", 0x6F0C, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"wiper", "", 0x6D88, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 255.0, 1.0, 0.0, 0.0},
  {"lights", "", 0x0D0C, 2, T_U16, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_lights", "", 0x0280, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"beacon_strobe", "", 0x0281, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"landing_lights", "", 0x028C, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"generators", "", 0x3101, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"battery", "", 0x3102, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"avionics", "", 0x3103, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fuel_pumps", "", 0x3104, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"apu_generator", "", 0x0B51, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"apu_generator_active", "", 0x0B52, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"apu_speed", "%", 0x0B54, 4, T_F32, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"apu", "", 0x0B58, 4, T_F32, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"apu_switch", "", 0x6DA9, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 2.0, 1.0, 0.0, 0.0},
  {"suction", "inHg", 0x0B18, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"sound", "", 0x0B20, 2, T_U16, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"sound_flag", "", 0x0B24, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fuel_centre_capacity", "US gal", 0x0B78, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_left_capacity", "US gal", 0x0B80, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_left_aux_capacity", "US gal", 0x0B88, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_left_tip_capacity", "US gal", 0x0B90, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_right_capacity", "US gal", 0x0B98, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_right_aux_capacity", "US gal", 0x0BA0, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_right_tip_capacity", "US gal", 0x0BA8, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_centre2_capacity", "US gal", 0x1248, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_centre3_capacity", "US gal", 0x1250, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fuel_density", "lb/US gal", 0x0AF4, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, 0.0, 255.99609375, 0.00390625, 0.0, 0.0},
  {"fuel_centre", "%", 0x0B74, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_left", "%", 0x0B7C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_left_aux", "%", 0x0B84, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_left_tip", "%", 0x0B8C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_right", "%", 0x0B94, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_right_aux", "%", 0x0B9C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_right_tip", "%", 0x0BA4, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_centre2", "%", 0x1244, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_centre3", "%", 0x124C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 100.0, 8388608.0, 0.0, 0.0, 100.0, 1.1920928955078125e-05, 1.1920928955078125e-05, 0.00018},
  {"fuel_total", "lb", 0x126C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"empty_weight", "lb", 0x1330, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 256.0, 0.0, -8388608.0, 8388607.99609375, 0.00390625, 0.00390625, 1e-07},
  {"max_weight", "lb", 0x1334, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 256.0, 0.0, -8388608.0, 8388607.99609375, 0.00390625, 0.00390625, 1e-07},
  {"payload_stations", "", 0x13FC, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"payload", "lb", 0x1400, 8, T_F64, F_NUMBER, H_WRITABLE | H_LOW, 1.0, 1.0, 0.0, 0.0, 0, 0, 0.0, 0.0},
  {"zero_fuel_weight", "lb", 0x3BFC, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 256.0, 0.0, 0.0, 8388607.99609375, 0.00390625, 0.00390625, 1.2e-05},
  {"gross_weight", "lb", 0x30C0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"centre_of_gravity", "", 0x2EF8, 8, T_F64, F_NUMBER, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 1e-07},
  {"jettison_total", "kg", 0x16020, 4, T_F32, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"jettison", "kg", 0x16024, 4, T_F32, F_NUMBER, H_WRITABLE | H_LOW, 1.0, 1.0, 0.0, 0.0, 0, 0, 0.0, 0.0},
  {"cabin_altitude", "ft", 0x0318, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"cabin_altitude_goal", "ft", 0x031C, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 1e-07},
  {"cabin_rate", "", 0x0320, 4, T_S32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 1e-07},
  {"exits", "", 0x3367, 1, T_U8, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"runway_condition", "", 0x6DA8, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 2.0, 1.0, 0.0, 0.0},
  {"skids", "", 0x6F02, 1, T_U8, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_adf1", "", 0x0B64, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_airspeed", "", 0x0B65, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_altimeter", "", 0x0B66, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_attitude", "", 0x0B67, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_com1", "", 0x0B68, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"fail_engines", "", 0x0B6B, 1, T_U8, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"panel_failed", "", 0x3BE6, 2, T_U16, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fail_panel", "", 0x3BD6, 2, T_U16, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"fail_now", "", 0x6DA4, 4, T_U32, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"fail_number", "", 0x6DAA, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 255.0, 1.0, 0.0, 0.0},
  {"audio_panel", "", 0x3122, 1, T_U8, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"com1", "MHz", 0x034E, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"com_standby1", "MHz", 0x311A, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"nav1", "MHz", 0x0350, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"nav_standby1", "MHz", 0x311E, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"adf1", "kHz", 0x034C, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 9999.0, 1.0, 0.0, 0.0},
  {"com2", "MHz", 0x3118, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"com_standby2", "MHz", 0x311C, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"nav2", "MHz", 0x0352, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"nav_standby2", "MHz", 0x3120, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 100.0, 199.99, 0.01, 0.0, 0.0},
  {"adf2", "kHz", 0x02D4, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 9999.0, 1.0, 0.0, 0.0},
  {"transponder", "", 0x0354, 2, T_U16, F_BCD, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 7777.0, 1.0, 0.0, 0.0},
  {"transponder_mode", "", 0x6D8C, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 3.0, 1.0, 0.0, 0.0},
  {"radio_exchange", "", 0x3123, 1, T_U8, F_BITS, H_WRITABLE | H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"cdi1", "dots", 0x0C48, 1, T_S8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 10.0, 509.0, 0.0, -2.5147347740667976, 2.4950884086444005, 0.019646365422396856, 0.0, 0.0},
  {"cdi_exact1", "dots", 0x2AAC, 4, T_F32, F_NUMBER, H_UNSEEN, 10.0, 509.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"gsi1", "dots", 0x0C49, 1, T_S8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 10.0, 509.0, 0.0, -2.5147347740667976, 2.4950884086444005, 0.019646365422396856, 0.0, 0.0},
  {"gsi_exact1", "dots", 0x2AB0, 4, T_F32, F_NUMBER, H_UNSEEN, 10.0, 509.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"cdi2", "dots", 0x0C59, 1, T_S8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 10.0, 509.0, 0.0, -2.5147347740667976, 2.4950884086444005, 0.019646365422396856, 0.0, 0.0},
  {"cdi_exact2", "dots", 0x2AB4, 4, T_F32, F_NUMBER, H_UNSEEN, 10.0, 509.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"gsi2", "dots", 0x0C6E, 1, T_S8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 10.0, 509.0, 0.0, -2.5147347740667976, 2.4950884086444005, 0.019646365422396856, 0.0, 0.0},
  {"gsi_exact2", "dots", 0x2AB8, 4, T_F32, F_NUMBER, H_UNSEEN, 10.0, 509.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"radial1", "deg", 0x0C50, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"radial2", "deg", 0x0C60, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"nav_bearing1", "deg", 0x0C56, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"nav_bearing2", "deg", 0x0C5C, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"inner_marker", "", 0x0BAC, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"middle_marker", "", 0x0BAE, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"outer_marker", "", 0x0BB0, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"obs1", "deg", 0x0C4E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"obs2", "deg", 0x0C5E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"dme1", "nm", 0x0300, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10.0, 0.0, 0.0, 6553.5, 0.1, 0.0, 0.0},
  {"dme2", "nm", 0x0306, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 10.0, 0.0, 0.0, 6553.5, 0.1, 0.0, 0.0},
  {"to_from1", "", 0x0C4B, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 2.0, 1.0, 0.0, 0.0},
  {"to_from2", "", 0x0C5B, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 2.0, 1.0, 0.0, 0.0},
  {"glide_slope1", "", 0x0C4C, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 255.0, 1.0, 0.0, 0.0},
  {"glide_slope2", "", 0x0C6F, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 255.0, 1.0, 0.0, 0.0},
  {"dme_text1", "", 0x0C29, 5, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"dme_text2", "", 0x0C33, 5, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"radio_status", "", 0x3300, 2, T_U16, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"adf_ident1", "", 0x303E, 6, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"adf_ident2", "", 0x02DC, 6, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_signal1", "", 0x0C52, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 256.0, 1.0, 0.0, 0.0},
  {"nav_signal2", "", 0x0C62, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 256.0, 1.0, 0.0, 0.0},
  {"nav_latitude1", "deg", 0x085C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 90.0, 10001750.0, 0.0, -19323.971137051016, 19323.97112805259, 8.998425275576774e-06, 0.0, 0.0},
  {"nav_longitude1", "deg", 0x0864, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 0.0, 0.0},
  {"nav_elevation1", "m", 0x086C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"localizer_latitude1", "deg", 0x0874, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 90.0, 10001750.0, 0.0, -19323.971137051016, 19323.97112805259, 8.998425275576774e-06, 0.0, 0.0},
  {"localizer_longitude1", "deg", 0x0878, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 0.0, 0.0},
  {"localizer_elevation1", "m", 0x087C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"localizer_reciprocal1", "deg", 0x0870, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"glide_slope_angle1", "deg", 0x0872, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, -180.0, 179.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"localizer_bits1", "", 0x0C4A, 1, T_U8, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_code1", "", 0x0C4D, 1, T_U8, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"has_nav1", "", 0x07A0, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"nav_ident1", "", 0x3000, 6, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_name1", "", 0x3006, 25, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_latitude2", "deg", 0x0858, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 90.0, 10001750.0, 0.0, -19323.971137051016, 19323.97112805259, 8.998425275576774e-06, 0.0, 0.0},
  {"nav_longitude2", "deg", 0x0860, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 0.0, 0.0},
  {"nav_elevation2", "m", 0x0868, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"localizer_latitude2", "deg", 0x084C, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 90.0, 10001750.0, 0.0, -19323.971137051016, 19323.97112805259, 8.998425275576774e-06, 0.0, 0.0},
  {"localizer_longitude2", "deg", 0x0850, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 4294967296.0, 0.0, -180.0, 179.99999991618097, 8.381903171539307e-08, 0.0, 0.0},
  {"localizer_elevation2", "m", 0x0854, 4, T_S32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, -2147483648.0, 2147483647.0, 1.0, 0.0, 0.0},
  {"localizer_reciprocal2", "deg", 0x0844, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"glide_slope_angle2", "deg", 0x0846, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, -180.0, 179.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"localizer_bits2", "", 0x0C5A, 1, T_U8, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_code2", "", 0x0C70, 1, T_U8, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"has_nav2", "", 0x07A4, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"nav_ident2", "", 0x301F, 6, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"nav_name2", "", 0x3025, 25, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"aircraft", "", 0x3D00, 256, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"aircraft_file", "", 0x3C00, 256, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"simulator_folder", "", 0x3E00, 256, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"atc_number", "", 0x3130, 12, T_TEXT, F_TEXT, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"atc_tail_number", "", 0x313C, 12, T_TEXT, F_TEXT, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"version", "", 0x6F03, 8, T_TEXT, F_TEXT, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"version_word1", "", 0x3304, 4, T_U32, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"version_word2", "", 0x3308, 4, T_U32, F_BITS, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"altimeter_setting", "mb", 0x0330, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 16.0, 0.0, 0.0, 4095.9375, 0.0625, 0.1875, 0.0},
  {"oat", "degC", 0x0E8C, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"tat", "degC", 0x11D0, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"air_density", "slug/ft3", 0x28C0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"qnh", "mb", 0x0F48, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 16.0, 0.0, 0.0, 4095.9375, 0.0625, 0.0625, 0.00012},
  {"sea_level_pressure", "mb", 0x0EC6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 16.0, 0.0, 0.0, 4095.9375, 0.0625, 0.0, 0.0},
  {"sea_level_pressure_exact", "mb", 0x34A0, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"sea_level_temperature", "degC", 0x0EC0, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"dew_point", "degC", 0x04C8, 2, T_S16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"dew_point_set", "degC", 0x04D4, 2, T_S16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 256.0, 0.0, -128.0, 127.99609375, 0.00390625, 0.0, 0.0},
  {"precipitation_rate", "", 0x04CB, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"precipitation_kind", "", 0x04CC, 1, T_U8, F_NUMBER, H_LOW | H_HIGH | H_LISTED | H_UNSEEN, 1.0, 1.0, 0.0, 1.0, 2.0, 1.0, 0.0, 0.0},
  {"precipitation_set", "", 0x04D2, 2, T_U16, F_BITS, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"visibility", "mi", 0x0E8A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 100.0, 0.0, 0.0, 655.35, 0.01, 0.0, 0.0},
  {"thunderstorm", "%", 0x6DAF, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 255.0, 1.0, 0.0, 0.0},
  {"real_weather", "", 0x6F15, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"cloud_base1", "m", 0x0EA4, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_tops1", "m", 0x0EA2, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_type1", "", 0x0EA6, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"cloud_base2", "m", 0x6F11, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_tops2", "m", 0x6F0F, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_type2", "", 0x6F13, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"cloud_base3", "m", 0x0E9C, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_tops3", "m", 0x0E9A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"cloud_type3", "", 0x0E9E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 5.0, 1.0, 0.0, 0.0},
  {"wind", "kt", 0x0E90, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_exact", "kt", 0x3488, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"wind_from_true", "deg", 0x3490, 8, T_F64, F_NUMBER, H_UNSEEN, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"wind_from", "deg", 0x0E92, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_speed1", "kt", 0x0F72, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed1_copy", "kt", 0x0EF0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed1_copy2", "kt", 0x04D8, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_direction1", "deg", 0x0F74, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_direction1_copy", "deg", 0x0EF2, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_direction1_copy2", "deg", 0x04DA, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_ceiling1", "m", 0x0F70, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_ceiling1_copy", "m", 0x0EEE, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"turbulence1", "", 0x0F76, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"turbulence1_copy", "", 0x0EF4, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust1", "kt", 0x0F78, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust1_copy", "kt", 0x0EF6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_ceiling2", "m", 0x0F64, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_ceiling2_copy", "m", 0x0EE2, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_base2", "m", 0x0F66, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_base2_copy", "m", 0x0EE4, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed2", "kt", 0x0F68, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed2_copy", "kt", 0x0EE6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_direction2", "deg", 0x0F6A, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_direction2_copy", "deg", 0x0EE8, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"turbulence2", "", 0x0F6C, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"turbulence2_copy", "", 0x0EEA, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust2", "kt", 0x0F6E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust2_copy", "kt", 0x0EEC, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_ceiling3", "m", 0x0F58, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_ceiling3_copy", "m", 0x0ED6, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_base3", "m", 0x0F5A, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_base3_copy", "m", 0x0ED8, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed3", "kt", 0x0F5C, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_speed3_copy", "kt", 0x0EDA, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"wind_direction3", "deg", 0x0F5E, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"wind_direction3_copy", "deg", 0x0EDC, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 360.0, 65536.0, 0.0, 0.0, 359.9945068359375, 0.0054931640625, 0.0, 0.0},
  {"turbulence3", "", 0x0F60, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"turbulence3_copy", "", 0x0EDE, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust3", "kt", 0x0F62, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"gust3_copy", "kt", 0x0EE0, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"situation_file", "", 0x3F04, 252, T_TEXT, F_TEXT, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
  {"situation_command", "", 0x3F00, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_LISTED, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"situation_loads", "", 0x3F02, 2, T_U16, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 65535.0, 1.0, 0.0, 0.0},
  {"custom_reload", "", 0x6F0D, 1, T_U8, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"has_toe_brakes", "", 0x079C, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"has_autopilot", "", 0x0764, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4294967295.0, 1.0, 0.0, 0.0},
  {"has_stall_warning", "", 0x077C, 4, T_U32, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"has_mixture", "", 0x0780, 4, T_U32, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"vne", "kt", 0x02C4, 4, T_U32, F_NUMBER, H_LOW | H_HIGH | H_UNSEEN, 1.0, 128.0, 0.0, 0.0, 33554431.9921875, 0.0078125, 0.0, 0.0},
  {"contact_atc", "", 0x6F16, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"crashed", "", 0x0840, 2, T_U16, F_FLAG, H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"custom_clear", "", 0x6F0E, 1, T_U8, F_FLAG, H_WRITABLE | H_LOW | H_HIGH, 1.0, 1.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0},
  {"weather_selector", "", 0xC800, 2, T_U16, F_NUMBER, H_WRITABLE | H_LOW | H_HIGH | H_UNSEEN, 1.0, 1.0, 0.0, 0.0, 4.0, 1.0, 0.0, 0.0},
  {"message_text", "", 0x3380, 128, T_TEXT, F_TEXT, H_WRITABLE, 1.0, 1.0, 0.0, 0, 0, 0, 0.0, 0.0},
/* End of the written part. */
    /* clang-format on */
};

enum {
  MEMORY = 0x20000,
  BLOCK = 0x4000,
  BLOCKS = 8,
  PORT = 65000,
  SENDER_PORT = 65100, /* of the datagrams */
  GROUP_PORT = 54942,
  TYPE_REQUESTS = 18,
  TYPE_BLOCK = 6,
  TYPE_SPARE = 14,
  TYPE_ANNOUNCEMENT = 20,
  TYPE_CHANGES = 103,
  END_REQUESTS = 0xAFFE,
  END_BLOCK = 0x1A2B,
  END_ANNOUNCEMENT = 0xDEFA,
  END_CHANGES = 0xFADE,
  LONGEST_LIST = 1200, /* of a request that fits one packet */
  ACTIVITY = 0x337E,   /* counts the simulator's frames */
  WATCHES = 256,
  /* milliseconds */
  PATIENCE = 1000, /* until blocks count as lost, and between two requests for them */
  SETTLING = 300,  /* a byte that a block tells before the changes do is told by them within this */
  LONGEST_PAUSE = 60000,
  SILENCE = 5000, /* without a datagram: blocks are asked for; after twice that the connection is given up */
  RECONNECT = 2000,
  LOCAL_PATIENCE = 5000,
  LOCAL_PAUSE = 50,
  LOCAL_BLOCK = 0x28000
};

struct watch {
  enum tavrix_offset offset;
  tavrix_callback callback;
  void* own;
  uint8_t known, bytes[256];
};

struct tavrix {
  char error[320], host[256];
  char text[257];
  struct watch watches[WATCHES];
  int watch_count;
  uint8_t latest[WATCHES][256];
  uint32_t last_activity_time;
  uint16_t last_activity;
  struct tavrix_counters counters;
  /* network */
  int is_local;
  int calling, is_closed; /* calls of callbacks inside each other; tavrix_close has been called */
  Socket tcp, udp, asker; /* asker: a second connection, whose coming makes the server send all blocks */
  uint32_t address;       /* of the server, in network order */
  uint32_t missing;       /* a bit a block: never seen on this connection */
  uint32_t awaited;       /* asked for since */
  uint32_t asked, pause, last_datagram, lost_at;
  int has_frames; /* until then the blocks are those of a server that has not filled them in yet */
  int suspected, has_change;
  uint32_t last_change;     /* when changes told of a frame */
  double interval, advance; /* what is usual between two of these, in ms and frames */
  uint32_t unsettled[BLOCKS], unsettled_since[BLOCKS];
  uint8_t is_unsettled[MEMORY];
  uint8_t memory[MEMORY];
  uint8_t datagram[65536];
#ifdef _WIN32
  HWND window;
  UINT message;
  HANDLE mapping;
  uint8_t* view;
  ATOM atom;
#endif
};

static char connect_error[320];

static uint32_t now_ms(void) {
#ifdef _WIN32
  return GetTickCount();
#else
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (uint32_t)now.tv_sec * 1000u + (uint32_t)(now.tv_nsec / 1000000);
#endif
}

#ifdef __GNUC__
__attribute__((format(printf, 3, 4)))
#endif
static int
fail(tavrix* sim, int result, const char* form, ...) {
  va_list words;
  va_start(words, form);
  vsnprintf(sim != NULL ? sim->error : connect_error, sizeof connect_error, form, words);
  va_end(words);
  return result;
}

static uint32_t get16(const uint8_t* at) { return at[0] | (uint32_t)at[1] << 8; }
static uint32_t get32(const uint8_t* at) { return get16(at) | get16(at + 2) << 16; }
static void put16(uint8_t* at, uint32_t value) {
  at[0] = (uint8_t)value;
  at[1] = (uint8_t)(value >> 8);
}
static void put32(uint8_t* at, uint32_t value) {
  put16(at, value);
  put16(at + 2, value >> 16);
}

/* --- Values -------------------------------------------------------------------------------------------------
 */

static int64_t stored_integer(const struct tavrix_info* info, const uint8_t* at) {
  switch (info->type) {
    case T_U8:
      return at[0];
    case T_S8:
      return (int8_t)at[0];
    case T_U16:
      return get16(at);
    case T_S16:
      return (int16_t)get16(at);
    case T_U32:
      return get32(at);
    case T_S32:
      return (int32_t)get32(at);
    default:
      return (int64_t)((uint64_t)get32(at) | (uint64_t)get32(at + 4) << 32);
  }
}

static double decode(const struct tavrix_info* info, const uint8_t* at) {
  double stored;
  if (info->form == F_TEXT) return NAN;
  if (info->type == T_F32) {
    uint32_t bits = get32(at);
    float single;
    memcpy(&single, &bits, sizeof single);
    stored = single;
  } else if (info->type == T_F64) {
    uint64_t bits = (uint64_t)get32(at) | (uint64_t)get32(at + 4) << 32;
    memcpy(&stored, &bits, sizeof stored);
  } else {
    stored = (double)stored_integer(info, at);
  }
  if (info->form == F_FLAG) return stored != 0;
  if (info->form == F_BCD) {
    uint32_t word = get16(at), digits = 0;
    int shift;
    for (shift = 12; shift >= 0; shift -= 4) digits = digits * 10 + (word >> shift & 15);
    return strcmp(info->unit, "MHz") == 0 ? (10000 + digits) / 100.0 : digits;
  }
  return stored * info->numerator / info->denominator + info->bias;
}

static int is_full_turn(const struct tavrix_info* info) {
  return strcmp(info->unit, "deg") == 0 && (info->flags & H_HIGH) && info->low == 0 && info->high > 359 &&
         info->high < 360;
}

static int fail_outside(tavrix* sim, const struct tavrix_info* info, double value) {
  const char* const space = info->unit[0] ? " " : "";
  if (!(info->flags & H_LOW) || !(info->flags & H_HIGH)) {
    return fail(sim, TAVRIX_BAD_VALUE, "%s: %g%s%s is beyond what it takes", info->name, value, space,
                info->unit);
  }
  return fail(sim, TAVRIX_BAD_VALUE, "%s: %g%s%s is not within %g to %g%s", info->name, value, space,
              info->unit, info->low, info->high, info->form == F_BCD ? ", digit by digit" : "");
}

static int encode(tavrix* sim, const struct tavrix_info* info, double value, uint8_t* at) {
  static const double lowest[] = {0, -128, 0, -32768, 0, -2147483648.0, -9223372036854775808.0};
  static const double highest[] = {255, 127, 65535, 32767, 4294967295.0, 2147483647.0, 9223372036854775807.0};
  double stored;
  int64_t whole;
  int i;
  if (info->form == F_TEXT) return fail(sim, TAVRIX_BAD_VALUE, "%s is a text: tavrix_set_text", info->name);
  if (!isfinite(value))
    return fail(sim, TAVRIX_BAD_VALUE, "%s: %g is no number that it can hold", info->name, value);
  if ((info->form == F_BITS || (info->flags & H_LISTED)) && value != floor(value))
    return fail(sim, TAVRIX_BAD_VALUE, "%s: takes whole numbers, not %g", info->name, value);
  if (info->form == F_FLAG) value = value != 0;
  if (info->form == F_NUMBER) {
    if (is_full_turn(info)) {
      value = fmod(value, 360);
      if (value < 0) value += 360;
      if (value > info->high) value = value > info->high + info->step / 2 ? 0 : info->high;
    }
    if (!(info->flags & H_LISTED) && (((info->flags & H_LOW) && value < info->low - info->step / 2) ||
                                      ((info->flags & H_HIGH) && value > info->high + info->step / 2))) {
      return fail_outside(sim, info, value);
    }
  }
  if (info->type == T_F32 || info->type == T_F64) {
    stored = info->form == F_FLAG ? value : (value - info->bias) * info->denominator / info->numerator;
    if (!(fabs(stored) <= (info->type == T_F32 ? FLT_MAX : DBL_MAX))) {
      return fail(sim, TAVRIX_BAD_VALUE, "%s: %g does not fit %u bytes", info->name, value,
                  (unsigned)info->size);
    }
    if (info->type == T_F32) {
      const float single = (float)stored;
      uint32_t bits;
      memcpy(&bits, &single, sizeof bits);
      put32(at, bits);
    } else {
      uint64_t bits;
      memcpy(&bits, &stored, sizeof bits);
      put32(at, (uint32_t)bits);
      put32(at + 4, (uint32_t)(bits >> 32));
    }
    return 0;
  }
  if (info->form == F_BCD) {
    /* What does not fit behind the point is dropped, as radios show it: 118.025 is 118.02. */
    const int is_mhz = strcmp(info->unit, "MHz") == 0;
    const double shown = floor((is_mhz ? (value - 100) * 100 : value) + 1e-6);
    uint32_t digits, most = (uint32_t)floor((is_mhz ? (info->high - 100) * 100 : info->high) + 0.5), word = 0;
    if (!(shown >= 0 && shown <= 9999)) return fail_outside(sim, info, value);
    digits = (uint32_t)shown;
    for (i = 0; i < 16; i += 4, digits /= 10, most /= 10) {
      if (digits % 10 > most % 10) return fail_outside(sim, info, value); /* 7777: octal digits */
      word |= digits % 10 << i;
    }
    stored = word;
  } else {
    stored = info->form == F_NUMBER ? (value - info->bias) * info->denominator / info->numerator : value;
    stored = floor(stored + 0.5);
  }
  if (!(stored >= lowest[info->type] && stored <= highest[info->type])) {
    return fail(sim, TAVRIX_BAD_VALUE, "%s: %g does not fit %u bytes", info->name, value, (unsigned)info->size);
  }
  whole = stored >= 9223372036854775807.0 ? INT64_MAX : (int64_t)stored;
  for (i = 0; i < info->size; ++i) at[i] = (uint8_t)((uint64_t)whole >> 8 * i);
  return 0;
}

/* Whether the shown bytes are what a server makes of the written ones. */
static int is_shown(const struct tavrix_info* info, const uint8_t* wanted, const uint8_t* shown) {
  double written, present, off, rounding, allowed;
  if ((info->flags & H_UNSEEN) || memcmp(wanted, shown, info->size) == 0) return 1;
  if (info->form == F_TEXT) return strncmp((const char*)wanted, (const char*)shown, info->size) == 0;
  written = decode(info, wanted), present = decode(info, shown), off = fabs(written - present);
  if (info->form != F_NUMBER) return off == 0;
  if ((info->flags & H_WRAPS) || is_full_turn(info)) off = fmin(off, fabs(360 - off));
  /* Whole numbers come back as they are. */
  rounding = info->numerator != info->denominator || info->bias != 0 ? info->step * 1.01 : 0;
  allowed = fmax(rounding, info->absolute);
  return off <= allowed + info->share * fabs(written);
}

/* In place of a number that is no offset: of a text, which nothing can read or write. */
static const struct tavrix_info no_row = {"no offset", "", MEMORY, 0, T_TEXT, F_TEXT, H_UNSEEN, 1,
                                          1,           0,  0,      0, 0,      0,      0};

static int is_row(enum tavrix_offset offset) { return (unsigned)offset < TAVRIX_OFFSETS; }
static const struct tavrix_info* row(enum tavrix_offset offset) {
  return is_row(offset) ? &table[(unsigned)offset] : &no_row;
}

/* 0 when the client can be used and all are offsets. */
static int check(tavrix* sim, const enum tavrix_offset* offsets, int count) {
  int i;
  if (count < 0 || count > WATCHES)
    return fail(sim, TAVRIX_FULL, "%d values at once: at most %d", count, WATCHES);
  for (i = 0; i < count; ++i) {
    if (is_row(offsets[i])) continue;
    return fail(sim, TAVRIX_NO_OFFSET, "%u is no offset: was a name wrong that tavrix_by_name should find?",
                (unsigned)offsets[i]);
  }
  return 0;
}

const struct tavrix_info* tavrix_info_of(enum tavrix_offset offset) { return row(offset); }

enum tavrix_offset tavrix_by_name(const char* name) {
  int i = 0;
  while (i < TAVRIX_OFFSETS && strcmp(table[i].name, name) != 0) ++i;
  return (enum tavrix_offset)i;
}

double tavrix_decode(enum tavrix_offset offset, const void* bytes) { return decode(row(offset), bytes); }
int tavrix_encode(enum tavrix_offset offset, double value, void* bytes) {
  return is_row(offset) ? encode(NULL, row(offset), value, bytes) : check(NULL, &offset, 1);
}
const char* tavrix_error(const tavrix* sim) { return sim != NULL ? sim->error : connect_error; }
struct tavrix_counters tavrix_counters_of(const tavrix* sim) {
  return sim->counters;
}

/* --- The copy of the memory
 * ------------------------------------------------------------------------------------ */

static int is_frame(const uint8_t* frame, int size, uint32_t end) {
  uint32_t length;
  if (size < 10) return 0;
  length = get16(frame + 2);
  return size == (int)length + 10 && get16(frame + 6 + length) == length && get16(frame + 8 + length) == end;
}

static void forget(tavrix* sim, uint32_t now) {
  sim->missing = (1u << BLOCKS) - 1;
  sim->awaited = 0;
  sim->asked = sim->last_datagram = sim->last_activity_time = now;
  sim->pause = PATIENCE;
  sim->suspected = sim->has_change = sim->has_frames = 0;
  sim->interval = 20, sim->advance = 1;
  memset(sim->unsettled, 0, sizeof sim->unsettled);
  memset(sim->is_unsettled, 0, sizeof sim->is_unsettled);
}

static void suspect(tavrix* sim) {
  ++sim->counters.suspicions;
  sim->suspected = 1;
}

/* More frames and more time than usual between two lists of changes: one is missing between them. */
static void judge(tavrix* sim, double interval, double advance) {
  if (interval > 1.7 * sim->interval && advance >= 1.7 * sim->advance && advance < 0x8000) {
    suspect(sim);
    return;
  }
  sim->interval += 0.05 * (fmin(interval, 500) - sim->interval);
  sim->advance += 0.05 * (advance - sim->advance);
}

static void take_changes(tavrix* sim, const uint8_t* payload, uint32_t length, uint32_t now) {
  const uint32_t before = get16(sim->memory + ACTIVITY);
  uint32_t advance;
  const uint8_t* entry;
  for (entry = payload; entry + 6 <= payload + length; entry += 6) {
    const uint32_t at = (uint32_t)(entry[0] & 1) << 16 | get16(entry + 2);
    sim->memory[at] = entry[4];
    if (sim->is_unsettled[at]) {
      sim->is_unsettled[at] = 0;
      --sim->unsettled[at / BLOCK];
    }
  }
  advance = (get16(sim->memory + ACTIVITY) - before) & 0xFFFF;
  if (advance == 0) return;
  if (before != 0 && !(sim->missing & 1)) sim->has_frames = 1; /* the changes of a whole frame are there */
  sim->last_activity_time = now;
  if (sim->has_change && sim->missing == 0) judge(sim, now - sim->last_change, advance);
  sim->has_change = 1;
  sim->last_change = now;
}

static void take_block(tavrix* sim, uint32_t block, const uint8_t* payload, uint32_t now) {
  uint8_t *const own = sim->memory + block * BLOCK, *const marks = sim->is_unsettled + block * BLOCK;
  uint32_t i;
  if (!(sim->missing >> block & 1)) {
    for (i = 0; i < BLOCK; ++i) {
      if (own[i] == payload[i] || marks[i]) continue;
      marks[i] = 1;
      ++sim->unsettled[block];
    }
    sim->unsettled_since[block] = now;
  }
  if (block == 0 && get16(payload + ACTIVITY) != 0) sim->has_frames = 1;
  sim->missing &= ~(1u << block);
  sim->awaited &= ~(1u << block);
  memcpy(own, payload, BLOCK);
}

/* Bytes that a block told and no changes since: they had been lost. */
static void settle(tavrix* sim, uint32_t now) {
  int block;
  for (block = 0; block < BLOCKS; ++block) {
    if (sim->unsettled[block] == 0 || now - sim->unsettled_since[block] <= SETTLING) continue;
    sim->counters.repaired += sim->unsettled[block];
    sim->unsettled[block] = 0;
    memset(sim->is_unsettled + block * BLOCK, 0, BLOCK);
    sim->pause = PATIENCE;
    /* Found by a block that came by itself: others may hold more. */
    if (now - sim->asked > SETTLING + 500) suspect(sim);
  }
}

static void take(tavrix* sim, int size, uint32_t now) {
  const uint8_t* const frame = sim->datagram;
  const uint32_t type = frame[0];
  if (type == TYPE_CHANGES ? !is_frame(frame, size, END_CHANGES)
                           : type < TYPE_BLOCK || type > TYPE_SPARE || !is_frame(frame, size, END_BLOCK)) {
    return;
  }
  ++sim->counters.datagrams;
  sim->last_datagram = now;
  if (type == TYPE_CHANGES) {
    take_changes(sim, frame + 6, get16(frame + 2), now);
    return;
  }
  sim->has_change = 0; /* no changes are told between blocks: the next ones may be many */
  if (type < TYPE_SPARE && get16(frame + 2) == BLOCK) take_block(sim, type - TYPE_BLOCK, frame + 6, now);
}

/* --- Connection
 * -------------------------------------------------------------------------------------------------- */

static void set_nonblocking(Socket socket) {
#ifdef _WIN32
  u_long on = 1;
  ioctlsocket(socket, FIONBIO, &on);
#else
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  fcntl(socket, F_SETFD, FD_CLOEXEC);
#endif
}

static void end_socket(Socket* socket) {
  if (*socket != NO_SOCKET) closesocket(*socket);
  *socket = NO_SOCKET;
}

static struct sockaddr_in address_of(uint32_t address, int port) {
  struct sockaddr_in place;
  memset(&place, 0, sizeof place);
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = address;
  place.sin_port = htons((uint16_t)port);
  return place;
}

/* Waits until one can be read or the other written, or has failed. */
static int wait_for(Socket reading, Socket writing, int milliseconds) {
#ifdef _WIN32
  struct timeval time;
  fd_set reads, writes, errors;
  time.tv_sec = milliseconds / 1000;
  time.tv_usec = milliseconds % 1000 * 1000;
  FD_ZERO(&reads);
  FD_ZERO(&writes);
  FD_ZERO(&errors);
  if (reading != NO_SOCKET) FD_SET(reading, &reads);
  if (writing != NO_SOCKET) {
    FD_SET(writing, &writes);
    FD_SET(writing, &errors);
  }
  return select(0, &reads, &writes, &errors, &time) > 0;
#else
  struct pollfd both[2];
  both[0].fd = reading, both[0].events = POLLIN; /* poll passes over -1 */
  both[1].fd = writing, both[1].events = POLLOUT;
  return poll(both, 2, milliseconds) > 0;
#endif
}

static int is_connected_socket(Socket socket) {
  int error = 0;
  socklen_t size = sizeof error;
  return getsockopt(socket, SOL_SOCKET, SO_ERROR, (char*)&error, &size) == 0 && error == 0;
}

/* Both sockets with one port number, the datagrams' bound before the connection is made: no block is missed. */
static int open_network(tavrix* sim, int milliseconds) {
  struct sockaddr_in local = address_of(INADDR_ANY, 0);
  const struct sockaddr_in server = address_of(sim->address, PORT);
  socklen_t size = sizeof local;
  const int on = 1, room = 1 << 20;
  int attempt;
  for (attempt = 0; attempt < 20; ++attempt) {
    sim->tcp = socket(AF_INET, SOCK_STREAM, 0);
    sim->udp = socket(AF_INET, SOCK_DGRAM, 0);
    local = address_of(INADDR_ANY, 0);
    size = sizeof local;
    if (sim->tcp != NO_SOCKET && sim->udp != NO_SOCKET && bind(sim->tcp, (struct sockaddr*)&local, size) == 0 &&
        getsockname(sim->tcp, (struct sockaddr*)&local, &size) == 0 &&
        bind(sim->udp, (struct sockaddr*)&local, size) == 0) {
      break;
    }
    end_socket(&sim->tcp); /* somebody else has the number for UDP */
    end_socket(&sim->udp);
  }
  if (sim->tcp == NO_SOCKET) return fail(sim, TAVRIX_NO_SERVER, "the system gives no sockets");
  setsockopt(sim->tcp, IPPROTO_TCP, TCP_NODELAY, (const char*)&on, sizeof on);
  setsockopt(sim->udp, SOL_SOCKET, SO_RCVBUF, (const char*)&room, sizeof room);
  set_nonblocking(sim->tcp);
  set_nonblocking(sim->udp);
  if ((connect(sim->tcp, (const struct sockaddr*)&server, sizeof server) != 0 &&
       (!WOULD_BLOCK || !wait_for(NO_SOCKET, sim->tcp, milliseconds))) ||
      !is_connected_socket(sim->tcp)) {
    end_socket(&sim->tcp);
    end_socket(&sim->udp);
    return fail(
        sim, TAVRIX_NO_SERVER,
        "%s port %d does not answer: does the simulator run there, with this address as \"Server Address\" in "
        "TAVRIX.ini, and are fewer than eight clients connected?",
        sim->host, PORT);
  }
  forget(sim, now_ms());
  return 0;
}

static void drop(tavrix* sim) {
  end_socket(&sim->tcp);
  end_socket(&sim->udp);
  end_socket(&sim->asker);
  sim->lost_at = now_ms();
}

/* A second connection makes the server send all blocks to everybody. It is closed when it is there. */
static void ask_for_blocks(tavrix* sim, uint32_t now) {
  const struct sockaddr_in server = address_of(sim->address, PORT);
  sim->asked = now;
  if (sim->missing == 0) {
    sim->awaited = (1u << BLOCKS) - 1;
    sim->pause =
        sim->pause * 2 < LONGEST_PAUSE ? sim->pause * 2 : LONGEST_PAUSE; /* until they have found something */
  }
  sim->suspected = 0;
  end_socket(&sim->asker);
  sim->asker = socket(AF_INET, SOCK_STREAM, 0);
  if (sim->asker == NO_SOCKET) return;
  set_nonblocking(sim->asker);
  if (connect(sim->asker, (const struct sockaddr*)&server, sizeof server) != 0 && !WOULD_BLOCK)
    end_socket(&sim->asker);
}

/* Takes what has come, without waiting; the connection may be dropped. Returns whether something came. */
static int receive(tavrix* sim) {
  const uint32_t now = now_ms();
  uint32_t silent;
  int taken = 0;
  char spare[256];
  for (;;) {
    struct sockaddr_in sender;
    socklen_t size = sizeof sender;
    const int got = (int)recvfrom(sim->udp, (char*)sim->datagram, sizeof sim->datagram, 0,
                                  (struct sockaddr*)&sender, &size);
    if (got < 0) break;
    if (sender.sin_addr.s_addr != sim->address || sender.sin_port != htons(SENDER_PORT)) continue;
    take(sim, got, now);
    taken = 1;
  }
  for (;;) {
    const int got = (int)recv(sim->tcp, spare, sizeof spare, 0);
    if (got > 0) continue;
    if (got < 0 && WOULD_BLOCK) break;
    drop(sim);
    fail(sim, TAVRIX_DISCONNECTED, "%s: the connection is gone; it is tried again every %d s", sim->host,
         RECONNECT / 1000);
    return taken;
  }
  if (sim->asker != NO_SOCKET && wait_for(NO_SOCKET, sim->asker, 0)) end_socket(&sim->asker);
  settle(sim, now);
  silent = now - sim->last_datagram;
  if (sim->missing != 0 ? now - sim->asked >= PATIENCE
                        : (sim->suspected || sim->awaited != 0) && now - sim->asked >= sim->pause) {
    ask_for_blocks(sim, now);
  } else if (silent > SILENCE && now - sim->asked > SILENCE) {
    ask_for_blocks(sim, now);
  }
  if (silent > 2 * SILENCE) {
    drop(sim);
    fail(sim, TAVRIX_DISCONNECTED, "%s: nothing has come for %d s", sim->host, 2 * SILENCE / 1000);
  }
  return taken;
}

static int send_all(tavrix* sim, const uint8_t* bytes, size_t size) {
  size_t sent = 0;
  const uint32_t started = now_ms();
  while (sent < size) {
#ifdef MSG_NOSIGNAL
    const int got = (int)send(sim->tcp, (const char*)bytes + sent, size - sent, MSG_NOSIGNAL);
#else
    const int got = (int)send(sim->tcp, (const char*)bytes + sent, (int)(size - sent), 0);
#endif
    if (got > 0) {
      sent += (size_t)got;
    } else if (!WOULD_BLOCK || now_ms() - started > LOCAL_PATIENCE ||
               !wait_for(NO_SOCKET, sim->tcp, LOCAL_PATIENCE)) {
      drop(sim);
      return fail(sim, TAVRIX_DISCONNECTED, "%s: the connection broke while writing", sim->host);
    }
  }
  return 0;
}

/* --- The local window
 * --------------------------------------------------------------------------------------------- */

#ifdef _WIN32
static int make_block(tavrix* sim) {
  static LONG number;
  char name[64];
  snprintf(name, sizeof name, "TAVRIXC:%lu:%ld", (unsigned long)GetCurrentProcessId(),
           (long)InterlockedIncrement(&number));
  sim->mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, NULL, PAGE_READWRITE, 0, LOCAL_BLOCK, name);
  sim->view = sim->mapping ? MapViewOfFile(sim->mapping, FILE_MAP_WRITE, 0, 0, 0) : NULL;
  sim->atom = sim->view ? GlobalAddAtomA(name) : 0;
  return sim->atom ? 0 : fail(sim, TAVRIX_FULL, "Windows gives no shared memory for a request block");
}

static void end_block(tavrix* sim) {
  if (sim->atom) GlobalDeleteAtom(sim->atom);
  if (sim->view) UnmapViewOfFile(sim->view);
  if (sim->mapping) CloseHandle(sim->mapping);
  sim->atom = 0, sim->view = NULL, sim->mapping = NULL;
}

static int find_window(tavrix* sim) {
  sim->window = FindWindowA("KORLMAIN", "KORLMAIN");
  return sim->window ? 0
                     : fail(sim, TAVRIX_DISCONNECTED, "no simulator with TAVRIX runs in this Windows session");
}

/* Serves a list; it comes back in place. */
static int request_local(tavrix* sim, uint8_t* list, size_t size) {
  int attempt;
  if (!sim->atom && make_block(sim) != 0) return TAVRIX_FULL;
  for (attempt = 1;; ++attempt) {
    const uint32_t started = now_ms();
    DWORD_PTR served = 0;
    memcpy(sim->view, list, size);
    if (sim->window &&
        SendMessageTimeoutA(sim->window, sim->message, sim->atom, 0, SMTO_BLOCK, LOCAL_PATIENCE, &served)) {
      memcpy(list, sim->view, size);
      return served == 1 ? 0
                         : fail(sim, TAVRIX_DISCONNECTED,
                                "the plug-in did not serve the request to its end: TAVRIX.txt tells why");
    }
    if (now_ms() - started >= LOCAL_PATIENCE * 9 / 10) {
      /* The plug-in may still use the block: it is left alone until the program ends. */
      sim->atom = 0, sim->view = NULL, sim->mapping = NULL;
      return fail(sim, TAVRIX_DISCONNECTED,
                  "no answer within %d s (a loading screen?); a write may still be applied",
                  LOCAL_PATIENCE / 1000);
    }
    if (attempt == 2 || find_window(sim) != 0)
      return fail(sim, TAVRIX_DISCONNECTED, "the simulator's window is gone");
  }
}

static int open_local(tavrix* sim) {
  sim->is_local = 1;
  sim->message = RegisterWindowMessageA("KELDOMAR:IPC");
  sim->last_activity_time = now_ms();
  return find_window(sim) == 0 ? 0 : TAVRIX_NO_SERVER;
}
#else
static void end_block(tavrix* sim) { (void)sim; }
static int request_local(tavrix* sim, uint8_t* list, size_t size) {
  (void)list, (void)size;
  return fail(sim, TAVRIX_DISCONNECTED, "local clients are for Windows");
}
static int open_local(tavrix* sim) {
  return fail(sim, TAVRIX_NO_SERVER, "local clients are for Windows: connect to \"127.0.0.1\" here");
}
#endif

/* --- Requests
 * --------------------------------------------------------------------------------------------------------- */

struct place {
  uint32_t offset, size;
  uint8_t* bytes;
};

static int write_places(tavrix* sim, const struct place* places, int count) {
  uint8_t frame[LONGEST_LIST + 400];
  int i = 0;
  if (sim->is_closed) return fail(sim, TAVRIX_CLOSED, "this client is closed");
  while (i < count) {
    uint32_t length = 0;
    int result;
    while (i < count && (length == 0 || length + 12 + places[i].size + 4 <= LONGEST_LIST)) {
      const uint8_t* const bytes = places[i].bytes;
      if (places[i].size > 256)
        return fail(sim, TAVRIX_FULL, "%u bytes at once: at most 256", (unsigned)places[i].size);
      put32(frame + 6 + length, 2);
      put32(frame + 10 + length, places[i].offset);
      put32(frame + 14 + length, places[i].size);
      memcpy(frame + 18 + length, bytes, places[i].size);
      length += 12 + places[i++].size;
    }
    put32(frame + 6 + length, 0);
    length += 4;
    if (sim->is_local) {
      result = request_local(sim, frame + 6, length);
    } else if (sim->tcp == NO_SOCKET) {
      result = fail(sim, TAVRIX_DISCONNECTED, "%s: not connected; it is tried again every %d s", sim->host,
                    RECONNECT / 1000);
    } else {
      frame[0] = TYPE_REQUESTS, frame[1] = 0;
      put16(frame + 2, length);
      put16(frame + 4, 0);
      put16(frame + 6 + length, length);
      put16(frame + 8 + length, END_REQUESTS);
      result = send_all(sim, frame, length + 10);
    }
    if (result != 0) return result;
  }
  return 0;
}

static int read_places(tavrix* sim, const struct place* places, int count) {
  size_t size = 4;
  uint8_t *list, *at;
  int i, result;
  if (sim->is_closed) return fail(sim, TAVRIX_CLOSED, "this client is closed");
  if (!sim->is_local) {
    if (sim->tcp != NO_SOCKET) receive(sim);
    for (i = 0; i < count; ++i) memcpy(places[i].bytes, sim->memory + places[i].offset, places[i].size);
    return 0;
  }
  for (i = 0; i < count; ++i) size += 16 + places[i].size;
  if (size > LOCAL_BLOCK || (list = calloc(1, size)) == NULL) return fail(sim, TAVRIX_FULL, "too much at once");
  for (i = 0, at = list; i < count; at += 16 + places[i++].size) {
    put32(at, 1);
    put32(at + 4, places[i].offset);
    put32(at + 8, places[i].size);
  }
  result = request_local(sim, list, size);
  for (i = 0, at = list; result == 0 && i < count; at += 16 + places[i++].size) {
    memcpy(places[i].bytes, at + 16, places[i].size);
  }
  free(list);
  return result;
}

int tavrix_read_bytes(tavrix* sim, uint32_t offset, uint32_t size, void* bytes) {
  struct place place;
  if (size > MEMORY || offset > MEMORY - size)
    return fail(sim, TAVRIX_BAD_VALUE, "0x%X leaves the memory", (unsigned)offset);
  place.offset = offset, place.size = size, place.bytes = bytes;
  return read_places(sim, &place, 1);
}

int tavrix_write_bytes(tavrix* sim, uint32_t offset, uint32_t size, const void* bytes) {
  uint8_t copy[256];
  struct place place;
  if (size > sizeof copy || offset > MEMORY - size) {
    return fail(sim, TAVRIX_BAD_VALUE, "%u bytes at 0x%X: at most 256, inside the memory", (unsigned)size,
                (unsigned)offset);
  }
  memcpy(copy, bytes, size);
  place.offset = offset, place.size = size, place.bytes = copy;
  return write_places(sim, &place, 1);
}

/* --- What programs call
 * ------------------------------------------------------------------------------------------------- */

int tavrix_read(tavrix* sim, const enum tavrix_offset* offsets, double* values, int count) {
  struct place places[WATCHES] = {{0, 0, NULL}};
  uint8_t bytes[WATCHES][8] = {{0}};
  int i, result = check(sim, offsets, count);
  if (result != 0) return result;
  for (i = 0; i < count; ++i) {
    const struct tavrix_info* const info = row(offsets[i]);
    places[i].offset = info->offset;
    places[i].size = info->form == F_TEXT ? 0 : info->size;
    places[i].bytes = bytes[i];
  }
  result = read_places(sim, places, count);
  for (i = 0; result == 0 && i < count; ++i) values[i] = decode(row(offsets[i]), bytes[i]);
  return result;
}

double tavrix_get(tavrix* sim, enum tavrix_offset offset) {
  double value = NAN;
  tavrix_read(sim, &offset, &value, 1);
  return value;
}

const char* tavrix_get_text(tavrix* sim, enum tavrix_offset offset) {
  memset(sim->text, 0, sizeof sim->text);
  if (check(sim, &offset, 1) != 0 || row(offset)->form != F_TEXT ||
      tavrix_read_bytes(sim, row(offset)->offset, row(offset)->size, sim->text) != 0) {
    sim->text[0] = 0;
  }
  return sim->text;
}

int tavrix_write(tavrix* sim, const enum tavrix_offset* offsets, const double* values, int count) {
  struct place places[WATCHES] = {{0, 0, NULL}};
  uint8_t bytes[WATCHES][8];
  int i, result = check(sim, offsets, count);
  if (result != 0) return result;
  for (i = 0; i < count; ++i) {
    const struct tavrix_info* const info = row(offsets[i]);
    if (!(info->flags & H_WRITABLE)) {
      return fail(sim, TAVRIX_NOT_WRITABLE, "%s (0x%04X) is not for writing", info->name,
                  (unsigned)info->offset);
    }
    if ((result = encode(sim, info, values[i], bytes[i])) != 0) return result;
    places[i].offset = info->offset, places[i].size = info->size, places[i].bytes = bytes[i];
  }
  return write_places(sim, places, count);
}

int tavrix_set(tavrix* sim, enum tavrix_offset offset, double value) {
  return tavrix_write(sim, &offset, &value, 1);
}

int tavrix_set_text(tavrix* sim, enum tavrix_offset offset, const char* text) {
  const struct tavrix_info* const info = row(offset);
  uint8_t bytes[256] = {0};
  const int result = check(sim, &offset, 1);
  if (result != 0) return result;
  if (info->form != F_TEXT || !(info->flags & H_WRITABLE)) {
    return fail(sim, TAVRIX_NOT_WRITABLE, "%s is no text for writing", info->name);
  }
  if (strlen(text) >= info->size)
    return fail(sim, TAVRIX_BAD_VALUE, "%s takes %d characters", info->name, info->size - 1);
  memcpy(bytes, text, strlen(text));
  return tavrix_write_bytes(sim, info->offset, info->size, bytes);
}

int tavrix_set_confirmed(tavrix* sim, enum tavrix_offset offset, double value, int milliseconds) {
  const struct tavrix_info* const info = row(offset);
  const uint32_t started = now_ms();
  uint8_t wanted[8], shown[8];
  int has_asked = 0, result = tavrix_set(sim, offset, value);
  if (result != 0) return result;
  encode(sim, info, value, wanted);
  for (;;) {
    if ((result = tavrix_read_bytes(sim, info->offset, info->size, shown)) != 0) return result;
    if (is_shown(info, wanted, shown)) return 0;
    if (now_ms() - started >= (uint32_t)milliseconds) {
      return fail(sim, TAVRIX_NOT_CONFIRMED,
                  "%s: wrote %g, the server shows %g after %d ms: the simulator has not taken it, or the "
                  "server lets nobody "
                  "write (\"Network writes\" in TAVRIX.ini)",
                  info->name, decode(info, wanted), decode(info, shown), milliseconds);
    }
    if (sim->is_local) {
#ifdef _WIN32
      Sleep(LOCAL_PAUSE);
#endif
      continue;
    }
    if (!has_asked && now_ms() - started > (uint32_t)milliseconds / 2 && now_ms() - sim->asked >= PATIENCE) {
      ask_for_blocks(sim, now_ms()); /* the echo was lost */
      has_asked = 1;
    }
    if (sim->tcp != NO_SOCKET) wait_for(sim->udp, NO_SOCKET, 50);
  }
}

int tavrix_on_change(tavrix* sim, enum tavrix_offset offset, tavrix_callback callback, void* own) {
  struct watch* const watch = &sim->watches[sim->watch_count];
  const int result = check(sim, &offset, 1);
  if (result != 0) return result;
  if (sim->watch_count == WATCHES) return fail(sim, TAVRIX_FULL, "at most %d callbacks", WATCHES);
  memset(watch, 0, sizeof *watch);
  watch->offset = offset, watch->callback = callback, watch->own = own;
  ++sim->watch_count;
  return 0;
}

static int call_back(tavrix* sim) {
  struct place places[WATCHES] = {{0, 0, NULL}};
  uint8_t(*const bytes)[256] = sim->latest;
  int i, count, called = 0;
  for (i = 0; i < sim->watch_count; ++i) {
    const struct tavrix_info* const info = row(sim->watches[i].offset);
    places[i].offset = info->offset, places[i].size = info->size, places[i].bytes = bytes[i];
  }
  if (sim->watch_count == 0 || read_places(sim, places, sim->watch_count) != 0) return 0;
  count = sim->watch_count; /* a callback may add one */
  ++sim->calling;
  for (i = 0; i < count && !sim->is_closed; ++i) {
    struct watch* const watch = &sim->watches[i];
    if (watch->known && memcmp(watch->bytes, bytes[i], places[i].size) == 0) continue;
    watch->known = 1;
    memcpy(watch->bytes, bytes[i], places[i].size);
    watch->callback(sim, watch->offset, decode(row(watch->offset), watch->bytes), watch->own);
    ++called;
  }
  --sim->calling;
  return called;
}

static void sleep_ms(int milliseconds) {
#ifdef _WIN32
  Sleep((DWORD)milliseconds);
#else
  struct timespec time;
  time.tv_sec = milliseconds / 1000;
  time.tv_nsec = milliseconds % 1000 * 1000000L;
  nanosleep(&time, NULL);
#endif
}

int tavrix_poll(tavrix* sim, int milliseconds) {
  const uint32_t started = now_ms();
  if (sim->is_closed) return fail(sim, TAVRIX_CLOSED, "this client is closed");
  for (;;) {
    const uint32_t spent = now_ms() - started;
    const int left = spent >= (uint32_t)milliseconds ? 0 : milliseconds - (int)spent;
    int called = 0;
    if (sim->is_local) {
      if (tavrix_connected(sim)) called = call_back(sim);
    } else if (sim->tcp != NO_SOCKET) {
      receive(sim);
      if (sim->tcp != NO_SOCKET && sim->missing == 0 && sim->has_frames) called = call_back(sim);
    } else if (now_ms() - sim->lost_at >= RECONNECT && open_network(sim, left > 500 ? left : 500) != 0) {
      sim->lost_at = now_ms();
    }
    if (sim->is_closed) {
      if (sim->calling == 0) tavrix_close(sim);
      return TAVRIX_CLOSED;
    }
    if (called > 0) return called;
    if (left == 0) return sim->is_local || sim->tcp != NO_SOCKET ? 0 : TAVRIX_DISCONNECTED;
    if (sim->tcp != NO_SOCKET && !sim->is_local) {
      wait_for(sim->udp, NO_SOCKET, left < 250 ? left : 250);
    } else {
      sleep_ms(left < LOCAL_PAUSE ? left : LOCAL_PAUSE);
    }
  }
}

int tavrix_connected(const tavrix* sim) {
  if (sim->is_closed) return 0;
#ifdef _WIN32
  if (sim->is_local) return FindWindowA("KORLMAIN", "KORLMAIN") != NULL;
#endif
  return sim->tcp != NO_SOCKET && sim->missing == 0;
}

int tavrix_alive(tavrix* sim) {
  uint8_t word[2];
  if (!tavrix_connected(sim) || tavrix_read_bytes(sim, ACTIVITY, 2, word) != 0) return 0;
  if (sim->is_local && get16(word) != sim->last_activity) {
    sim->last_activity = (uint16_t)get16(word);
    sim->last_activity_time = now_ms();
  }
  return now_ms() - sim->last_activity_time < 1000;
}

/* --- Finding and connecting
 * ------------------------------------------------------------------------------------------------ */

static void start_sockets(void) {
#ifdef _WIN32
  static int started;
  WSADATA data;
  if (!started) started = WSAStartup(MAKEWORD(2, 2), &data) == 0;
#endif
}

/* Joins the group on every card. */
static int join_group(Socket listener) {
  const uint32_t group = inet_addr("239.192.0.10");
  int joined = 0;
#ifdef _WIN32
  char name[256];
  struct hostent* own = gethostname(name, sizeof name) == 0 ? gethostbyname(name) : NULL;
  int i;
  for (i = 0; own != NULL && own->h_addr_list[i] != NULL; ++i) {
    struct ip_mreq member;
    memcpy(&member.imr_interface, own->h_addr_list[i], 4);
    member.imr_multiaddr.s_addr = group;
    joined += setsockopt(listener, IPPROTO_IP, IP_ADD_MEMBERSHIP, (const char*)&member, sizeof member) == 0;
  }
#else
  struct if_nameindex *const cards = if_nameindex(), *card;
  for (card = cards; card != NULL && card->if_index != 0; ++card) {
    struct ip_mreqn member;
    memset(&member, 0, sizeof member);
    member.imr_multiaddr.s_addr = group;
    member.imr_ifindex = (int)card->if_index;
    joined += setsockopt(listener, IPPROTO_IP, IP_ADD_MEMBERSHIP, &member, sizeof member) == 0;
  }
  if (cards != NULL) if_freenameindex(cards);
#endif
  return joined;
}

int tavrix_find(char (*addresses)[16], int room, int milliseconds) {
  const struct sockaddr_in local = address_of(INADDR_ANY, GROUP_PORT);
  const int on = 1;
  const uint32_t started = now_ms();
  Socket listener;
  int found = 0;
  start_sockets();
  listener = socket(AF_INET, SOCK_DGRAM, 0);
  if (listener == NO_SOCKET) return 0;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, (const char*)&on, sizeof on);
  if (bind(listener, (const struct sockaddr*)&local, sizeof local) == 0 && join_group(listener) > 0) {
    while (found < room && now_ms() - started < (uint32_t)milliseconds) {
      uint8_t frame[64];
      struct sockaddr_in sender;
      socklen_t size = sizeof sender;
      int got, i, is_new = 1;
      if (!wait_for(listener, NO_SOCKET, milliseconds - (int)(now_ms() - started))) break;
      got = (int)recvfrom(listener, (char*)frame, sizeof frame, 0, (struct sockaddr*)&sender, &size);
      if (got < 10 || frame[0] != TYPE_ANNOUNCEMENT || !is_frame(frame, got, END_ANNOUNCEMENT)) continue;
      snprintf(addresses[found], 16, "%s", inet_ntoa(sender.sin_addr));
      for (i = 0; i < found; ++i) is_new &= strcmp(addresses[i], addresses[found]) != 0;
      found += is_new;
    }
  }
  closesocket(listener);
  return found;
}

static int connect_network(tavrix* sim, const char* host, int milliseconds) {
  const uint32_t started = now_ms();
  struct hostent* found;
  int result;
  snprintf(sim->host, sizeof sim->host, "%s", host);
  found = gethostbyname(host);
  if (found == NULL || found->h_addrtype != AF_INET)
    return fail(sim, TAVRIX_NO_SERVER, "%s: no such host", sim->host);
  memcpy(&sim->address, found->h_addr_list[0], 4);
  if ((result = open_network(sim, milliseconds)) != 0) return result;
  while (sim->missing != 0) {
    wait_for(sim->udp, NO_SOCKET, 50);
    receive(sim);
    if (sim->tcp == NO_SOCKET) {
      return fail(
          sim, TAVRIX_REFUSED,
          "%s closed the connection at once: is this computer among its \"Allowed clients\" (TAVRIX.ini)?",
          sim->host);
    }
    if (sim->missing != 0 && now_ms() - started > (uint32_t)milliseconds) {
      return fail(
          sim, TAVRIX_NO_SERVER,
          "%s: connected, but its datagrams do not come: does a firewall here let UDP in from port 65100?",
          sim->host);
    }
  }
  return 0;
}

tavrix* tavrix_connect(const char* host, int milliseconds) {
  tavrix* const sim = calloc(1, sizeof *sim);
  char address[1][16] = {"127.0.0.1"};
  int result;
  if (sim == NULL) {
    fail(NULL, TAVRIX_FULL, "no memory");
    return NULL;
  }
  sim->tcp = sim->udp = sim->asker = NO_SOCKET;
  start_sockets();
  if (host == NULL) {
    result = open_local(sim);
    if (result != 0) {
      sim->is_local = 0;
      tavrix_find(address, 1, 2500);
      result = connect_network(sim, address[0], milliseconds);
    }
  } else {
    result = strcmp(host, "local") == 0 ? open_local(sim) : connect_network(sim, host, milliseconds);
  }
  if (result == 0) return sim;
  memcpy(connect_error, sim->error, sizeof connect_error);
  tavrix_close(sim);
  return NULL;
}

void tavrix_close(tavrix* sim) {
  if (sim == NULL) return;
  drop(sim);
  sim->is_closed = 1;
  if (sim->calling > 0) return; /* by a callback: tavrix_poll ends it */
  end_block(sim);
  free(sim);
}
