"""A client for `offsetctl conform` on the Python library."""
import os
import struct
import sys
import threading

import tavrix

try:
    sim = tavrix.connect(os.environ["TAVRIX_HOST"], timeout=20)
except tavrix.TavrixError as problem:
    sys.exit(str(problem))


def orders():
    for line in sys.stdin:
        _, name, value = line.split()
        sim.write_bytes((int(name, 0), struct.pack("<H", int(value))))
    sim.close()


threading.Thread(target=orders, daemon=True).start()
shown = {}
while not sim.closed:
    sim.poll(0.02)
    for name in os.environ["TAVRIX_WATCH"].split():
        try:
            value, = struct.unpack("<H", sim.read_bytes((int(name, 0), 2))[0])
        except tavrix.Disconnected:  # it connects again
            break
        if shown.get(name) != value:
            shown[name] = value
            print(name, value, flush=True)
