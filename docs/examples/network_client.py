#!/usr/bin/env python3
"""Reads a 16-bit offset of a TAVRIX server, or writes it and waits until the server shows the value.

    python3 network_client.py HOST OFFSET [VALUE]         python3 network_client.py 192.168.0.1 0x07CC 16384
"""
import socket
import struct
import sys
import time

host, offset = sys.argv[1], int(sys.argv[2], 0)
wanted = int(sys.argv[3], 0) if len(sys.argv) > 3 else None
tcp = socket.socket()
tcp.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
tcp.bind(("", 0))
udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
udp.bind(("", tcp.getsockname()[1]))  # the server sends its datagrams to the port of the connection
tcp.settimeout(5)
tcp.connect((host, 65000))

memory, blocks, sent = bytearray(0x20000), set(), False
deadline = time.monotonic() + 5
while len(blocks) < 8 or (sent and memory[offset:offset + 2] != struct.pack("<H", wanted)):
    udp.settimeout(max(deadline - time.monotonic(), 0.001))  # raises TimeoutError at the end
    frame = udp.recv(65536)
    kind, length = struct.unpack_from("<BxH", frame)
    payload = frame[6:6 + length]
    if 6 <= kind <= 13:  # a block of 16,384 bytes
        memory[(kind - 6) * 0x4000:(kind - 5) * 0x4000] = payload
        blocks.add(kind)
    elif kind == 103:  # changed bytes
        for bank, low, value in struct.iter_unpack("<BxHBx", payload):
            memory[bank << 16 | low] = value
    if len(blocks) == 8 and wanted is not None and not sent:
        request = struct.pack("<IIIHI", 2, offset, 2, wanted, 0)  # a write record and the end of the list
        tcp.sendall(struct.pack("<BxHH", 18, len(request), 0) + request + struct.pack("<HH", len(request), 0xAFFE))
        sent = True
print(struct.unpack_from("<H", memory, offset)[0])
