"""Network clients, eight unless told, that write as fast as the server takes it, for a while; a process of its own.

    writers.py SECONDS rounds|steady [CLIENTS]

Each writes a number that counts up, to a place of its own and (as a share of a million) to an offset that the simulator
follows, and waits now and then for the echo of its own. `steady` clients keep their connection; with `rounds` they
come again when it ends, as when the plug-in is disabled. Prints one line of JSON: per client what it sent last, the requests
sent, echoes that it waited for, connections."""
import json
import struct
import sys
import threading
import time

from network import Client, read_record, request, write_record

PLACE = 0x18000  # nothing in the simulator looks at what stands from there on
# Offsets of the catalogue that take a fraction as it is, with what the simulator follows with.
STEERED = [(0x2EA0, "d"), (0x2EB0, "d"), (0x2EC0, "d"), (0x1400, "d"), (0x2EF8, "d"), (0x16024, "f")]
ECHO_EVERY, DRAIN_EVERY = 200, 20


def records(index, number):
    """What client `index` writes as its n-th: its count, and the same to what it steers."""
    wanted = [write_record(PLACE + 0x100 * index, number.to_bytes(4, "little"))]
    if index < len(STEERED):
        offset, form = STEERED[index]
        wanted.append(write_record(offset, struct.pack("<" + form, number / 1e6)))
    return wanted


def written(index):
    return 4 if index >= len(STEERED) else 4 + struct.calcsize(STEERED[index][1])


def write_on(index, client, end, patience, state):
    while time.monotonic() < end:
        number = state["number"] + 1
        client.send(request(*records(index, number)))
        state["number"] = number
        if number % DRAIN_EVERY == 0:
            while client.take(0):
                pass
        if number % ECHO_EVERY == 0:
            client.send(request(read_record(0x0330, 2), write_record(PLACE + 0x100 * index + 8, struct.pack("<I", number))))
            state["extra"] += 1
            client.until("the echo", lambda: client.read(PLACE + 0x100 * index + 8, 4) == struct.pack("<I", number), deadline=patience)
            state["echoes"] += 1


def run(index, end, comes_again, state):
    patience = 2 if comes_again else 30
    while time.monotonic() < end:
        client = None
        try:
            client = Client()
            state["connections"] += 1
            client.until("all blocks", lambda: len(client.blocks) == 8, deadline=patience)
            write_on(index, client, end, patience, state)
            return client
        except (OSError, AssertionError) as error:
            if not comes_again:
                state["error"] = str(error)
                return client
            if client is not None:
                client.close()
            time.sleep(0.05)
    return None


def main(seconds, comes_again, count):
    states = [{"number": 0, "echoes": 0, "extra": 0, "connections": 0, "error": ""} for _ in range(count)]
    clients = [None] * count
    end = time.monotonic() + seconds

    def begin(index):
        clients[index] = run(index, end, comes_again, states[index])

    threads = [threading.Thread(target=begin, args=(index,)) for index in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for index, state in enumerate(states):
        state["written"] = state["number"] * written(index) + 4 * state["extra"]
    print(json.dumps(states), flush=True)
    sys.stdin.readline()  # the connections stay until what was sent has been looked at
    for client in clients:
        if client is not None:
            client.close()


if __name__ == "__main__":
    main(float(sys.argv[1]), sys.argv[2] == "rounds", int(sys.argv[3]) if len(sys.argv) > 3 else 8)
