"""Bytes of the network protocol and of request lists (docs/network-protocol.md)."""
import struct

MEMORY_SIZE, BLOCK_SIZE, BLOCKS = 0x20000, 0x4000, 8
PORT, SENDER_PORT = 65000, 65100  # of requests; that the datagrams come from
REQUESTS, FIRST_BLOCK, SPARE_BLOCK, ANNOUNCEMENT, CHANGES = 18, 6, 14, 20, 103
_ENDS = {REQUESTS: 0xAFFE, ANNOUNCEMENT: 0xDEFA, CHANGES: 0xFADE, **{kind: 0x1A2B for kind in range(6, 15)}}
LONGEST_LIST = 1200  # of a request that fits one packet
LONGEST_WRITE = 1024  # of one record


def check(places):
    """Raises ValueError for an (offset, size) that leaves the memory."""
    for offset, size in places:
        if not (0 <= size and 0 <= offset <= MEMORY_SIZE - size):
            raise ValueError(f"{size} bytes at {offset:#x}: the memory ends at {MEMORY_SIZE - 1:#x}")


def write_record(offset, data):
    return struct.pack("<III", 2, offset, len(data)) + data


def write_records(places):
    """Records that write (offset, bytes) in order, long ones piece by piece."""
    check((offset, len(data)) for offset, data in places)
    return [write_record(offset + at, data[at:at + LONGEST_WRITE])
            for offset, data in places for at in range(0, len(data), LONGEST_WRITE)]


def read_record(offset, size):
    return struct.pack("<IIII", 1, offset, size, 0) + bytes(size)


def frame(kind, payload):
    return struct.pack("<BBHH", kind, 0, len(payload), 0) + payload + struct.pack("<HH", len(payload), _ENDS[kind])


def requests(records):
    """Frames that hold the records, as few as fit a packet each."""
    frames, held = [], b""
    for record in records:
        if held and len(held) + len(record) + 4 > LONGEST_LIST:
            frames.append(frame(REQUESTS, held + bytes(4)))
            held = b""
        held += record
    if held:
        frames.append(frame(REQUESTS, held + bytes(4)))
    return frames


def payload_of(datagram):
    """(type, payload) of a well-formed frame; None for anything else."""
    if len(datagram) < 10:
        return None
    kind, _, length, _ = struct.unpack_from("<BBHH", datagram)
    if len(datagram) != length + 10 or struct.unpack_from("<HH", datagram, 6 + length) != (length, _ENDS.get(kind)):
        return None
    return kind, memoryview(datagram)[6:6 + length]
