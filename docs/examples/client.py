#!/usr/bin/env python3
"""Reads offsets by their names, or sets one: client.py HOST heading com1     client.py HOST com1=118.70"""
import sys

import tavrix

with tavrix.connect(sys.argv[1]) as sim:
    for name, _, value in (word.partition("=") for word in sys.argv[2:]):
        offset = tavrix.names.ALL[name]
        if value:
            sim.write(offset, float(value), confirm=True)
        print(name, sim.read(offset), offset.unit)
