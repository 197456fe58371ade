#!/usr/bin/env python3
"""A client for `offsetctl conform`: shows the watched words of 16 bits, writes what it is told, and keeps going.

    offsetctl conform -- python3 conform_client.py                  docs/conformance.md tells what is asked of it
"""
import os
import socket
import struct
import sys
import threading
import time

host, watched = os.environ["TAVRIX_HOST"], os.environ["TAVRIX_WATCH"].split()
orders, ended = [], threading.Event()


def read_orders():
    for line in sys.stdin:
        orders.append(line.split())
    ended.set()


class Gone(Exception):
    pass


def connect():
    """A connection and a datagram socket of the same port."""
    tcp, udp = socket.socket(), socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    tcp.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    udp.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4 << 20)
    tcp.bind(("", 0))
    udp.bind(("", tcp.getsockname()[1]))
    udp.settimeout(0.05)
    tcp.settimeout(3)
    tcp.connect((host, 65000))
    tcp.setblocking(False)
    return tcp, udp


def is_open(tcp):
    try:
        return tcp.recv(1) != b""  # the server sends nothing here: it can only end
    except BlockingIOError:
        return True


def ask_for_blocks():
    try:
        socket.create_connection((host, 65000), timeout=0.5).close()
    except OSError:
        pass  # no place left: they come around


def parts_of(frame, sender):
    """(offset, bytes) of a whole block or of changes from the server; nothing for any other datagram."""
    if sender[0] != host or len(frame) < 10:
        return []
    kind, length = struct.unpack_from("<BxH", frame)
    if len(frame) != length + 10 or struct.unpack_from("<H", frame, 6 + length)[0] != length:
        return []
    end, payload = struct.unpack_from("<H", frame, 8 + length)[0], frame[6:6 + length]
    if 6 <= kind <= 13 and end == 0x1A2B and length == 0x4000:
        return [((kind - 6) * 0x4000, payload)]
    if kind != 103 or end != 0xFADE or length % 6:
        return []
    entries = list(struct.iter_unpack("<BxHBx", payload))
    return [(bank << 16 | low, bytes([value])) for bank, low, value in entries] if all(e[0] < 2 for e in entries) else []


def serve(shown):
    """Until the connection or the input ends. `shown` keeps what was printed."""
    tcp, udp = connect()
    memory, blocks, news, waiting = bytearray(0x20000), set(), time.monotonic(), {}
    with tcp, udp:
        while not ended.is_set() or orders:
            try:
                for offset, data in parts_of(*udp.recvfrom(65536)):
                    memory[offset:offset + len(data)] = data
                    if len(data) == 0x4000:
                        blocks.add(offset)
                        news = time.monotonic()
                    for at in [at for at in waiting if offset <= at + 1 and at < offset + len(data)]:
                        del waiting[at]  # the server shows it, or what became of it
            except TimeoutError:
                if not is_open(tcp):
                    raise Gone("the server has closed the connection")
            if (len(blocks) < 8 or waiting) and time.monotonic() > news + 1:
                news = time.monotonic()
                ask_for_blocks()
            if len(blocks) < 8:
                continue
            for name in watched:
                value = struct.unpack_from("<H", memory, int(name, 0))[0]
                if shown.get(name) != value:
                    shown[name] = value
                    print(name, value, flush=True)
            while orders:
                _, name, value = orders.pop(0)
                request = struct.pack("<IIIHI", 2, int(name, 0), 2, int(value), 0)
                tcp.sendall(struct.pack("<BxHH", 18, len(request), 0) + request +
                            struct.pack("<HH", len(request), 0xAFFE))
                waiting[int(name, 0)] = int(value)
                news = time.monotonic()


threading.Thread(target=read_orders, daemon=True).start()
shown = {}
while not ended.is_set():
    try:
        serve(shown)
    except (Gone, OSError) as problem:
        print(f"{host}: {problem}", file=sys.stderr, flush=True)
        ended.wait(1)  # and once more
