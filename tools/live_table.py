#!/usr/bin/env python3
"""A live cockpit table for `./run --native`: starts the stand-in with the Linux plug-in and asks its console.

usage: live_table.py BUILD ROOT [--seconds N]"""
import argparse
import signal
import subprocess
import sys
import time

ROWS = [  # label, dataref, factor, unit, decimals
    ("Latitude", "sim/flightmodel/position/latitude", 1, "deg", 5),
    ("Longitude", "sim/flightmodel/position/longitude", 1, "deg", 5),
    ("Altitude", "sim/flightmodel/position/elevation", 3.28084, "ft", 0),
    ("Heading (true)", "sim/flightmodel/position/psi", 1, "deg", 1),
    ("Pitch", "sim/flightmodel/position/theta", 1, "deg", 1),
    ("Bank", "sim/flightmodel/position/phi", 1, "deg", 1),
    ("Indicated airspeed", "sim/flightmodel/position/indicated_airspeed", 1, "kt", 1),
    ("Vertical speed", "sim/flightmodel/position/vh_ind_fpm", 1, "ft/min", 0),
    ("Throttle 1", "sim/cockpit2/engine/actuators/throttle_ratio[0]", 100, "%", 0),
    ("N1 engine 1", "sim/flightmodel/engine/ENGN_N1_[0]", 1, "%", 1),
    ("Fuel", "sim/flightmodel/weight/m_fuel_total", 1, "kg", 0),
    ("Flaps", "sim/flightmodel/controls/flaprqst", 100, "%", 0),
    ("Gear handle", "sim/cockpit/switches/gear_handle_status", 1, "", 0),
    ("Autopilot mode", "sim/cockpit/autopilot/autopilot_mode", 1, "", 0),
]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build")
    parser.add_argument("root")
    parser.add_argument("--seconds", type=float)
    options = parser.parse_args()
    standin = subprocess.Popen(
        [f"{options.build}/bin/standin", "--plugin", f"{options.build}/plugin/lin.xpl", "--root", options.root],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)

    def ask(line):
        standin.stdin.write(line + "\n")
        standin.stdin.flush()
        answer = standin.stdout.readline().strip()
        if not answer.startswith("ok"):
            raise SystemExit(f"the stand-in answered '{answer}' to '{line}'")
        return answer[3:]

    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    live = sys.stdout.isatty()
    begin = time.monotonic()
    try:
        if live:
            print("\x1b[2J", end="")
        while options.seconds is None or time.monotonic() - begin < options.seconds:
            lines = [f"TAVRIX  Linux build, stand-in's console   {time.monotonic() - begin:.1f} s", ""]
            for label, name, factor, unit, decimals in ROWS:
                lines.append(f"{label:20}{float(ask(f'get {name}')) * factor:14.{decimals}f} {unit}")
            print(("\x1b[H" if live else "") + "\n".join(line + ("\x1b[K" if live else "") for line in lines) + "\n",
                  flush=True)
            time.sleep(0.1 if live else 1.0)
    except KeyboardInterrupt:
        pass
    finally:
        try:
            ask("quit")
        except (OSError, SystemExit):
            standin.terminate()
        standin.wait(timeout=30)


if __name__ == "__main__":
    main()
