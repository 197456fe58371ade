"""Scenarios with a second computer: this program makes a network of its own with a link to a peer, starts the
stand-in on this side and clients on the other, prints what it measured as one line of JSON, and ends everything.

    unshare -n other_network.py stall BUILD ROOT     the link stands still; how long does disable take?
    unshare -n other_network.py flood BUILD ROOT     eight clients that never pause, frames cut at 1,500 bytes
    nsenter ... other_network.py listener|flooder    the peer's programs"""
import json
import os
import re
import subprocess
import sys
import threading
import time
from pathlib import Path

from conftest import Build, Standin, wait_for
from network import Client, request, write_record

SERVER, PEER = "10.9.0.1", "10.9.0.2"
FLOODERS, FRAMES = 8, 3000
SETTINGS = f"[TAVRIX SETTINGS]\nServer Address = {SERVER}\n"


def run(line):
    subprocess.run(line.split(), check=True)


class Peer:
    """The other computer: a process that owns its network, and the programs that run there."""

    def __init__(self):
        self.holder = subprocess.Popen(["unshare", "-n", "cat"], stdin=subprocess.PIPE)
        own = os.readlink("/proc/self/ns/net")
        wait_for("the peer's network", lambda: os.readlink(f"/proc/{self.holder.pid}/ns/net") != own)
        run("ip link set lo up")
        run("ip link add here type veth peer name there")
        run(f"ip link set there netns {self.holder.pid}")
        run(f"ip address add {SERVER}/24 dev here")
        run("ip link set here up")
        self.do("ip link set lo up")
        self.do(f"ip address add {PEER}/24 dev there")
        self.do("ip link set there up")

    def do(self, line):
        run(f"nsenter -t {self.holder.pid} -n {line}")

    def start(self, *words):
        return subprocess.Popen(["nsenter", "-t", str(self.holder.pid), "-n", sys.executable, __file__, *words],
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def stand_still(self):
        """The peer answers no question for its address any more, and ours waits long for an answer: what is sent
        to it piles up, as on a link that does not carry anything."""
        base = "sysctl -qw net.ipv4.neigh.here."
        for setting in ("unres_qlen_bytes=100000000", "mcast_solicit=60", "ucast_solicit=0", "app_solicit=0"):
            run(base + setting)
        self.do("ip link set there arp off")
        run("ip neigh flush dev here")


def begin(build, root, *options, offsets=""):
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS)
    (folder / "TAVRIXOffsets.cfg").write_text(offsets)
    standin = Standin(build, root, *options)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    return standin


def frames_per_second(standin, seconds):
    """Frames that the simulator's thread got through, by its own count."""
    before = time.monotonic()
    standin.ask(f"frames {int(60 * seconds)}")
    return 60 * seconds / (time.monotonic() - before)


def stall(build, root):
    peer = Peer()
    standin = begin(build, root)
    listeners = [peer.start("listener") for _ in range(3)]
    for listener in listeners:
        assert listener.stdout.readline() == "ready\n"
    peer.stand_still()
    rate = frames_per_second(standin, 3)  # long enough for every queue of the system to fill
    # Nobody was ever refused the client list: the status page and new clients would wait for it, too.
    started = time.monotonic()
    standin.ask("disable")
    took = time.monotonic() - started
    standin.quit()
    for listener in listeners:
        listener.kill()
    peer.holder.kill()
    return {"disable": took, "frames": rate}


def listener():
    client = Client(SERVER).complete()
    print("ready", flush=True)
    while True:
        client.take(1)


def flood(build, root):
    peer = Peer()
    (root.parent / "more").write_text("define test/slot int\n")
    standin = begin(build, root, "--flight", "none", "--define", str(root.parent / "more"),
                    offsets="Dataref slot test/slot int\nOffset 66C0 UINT32 0 rw $slot >slot @\n")
    flooder = peer.start("flooder")
    sent = json.loads(flooder.stdout.readline())

    def counters():
        standin.ask('menu "Performance settings"')
        found = re.search(r"Requests: (\d+), bytes read: \d+, written: (\d+)", standin.ask("widgets"))
        standin.ask('close "Performance settings"')
        return [int(found[1]), int(found[2])]

    wait_for("everything that was sent", lambda: counters() == [sent["requests"], sent["written"]], deadline=20)
    flooder.stdin.write("\n")
    flooder.stdin.flush()
    last = json.loads(flooder.stdout.readline())
    flooder.wait(timeout=20)
    standin.ask("frames 3")
    simulator = [standin.number("sim/cockpit/radios/com1_freq_hz"), standin.number("test/slot")]
    standin.quit()
    peer.holder.kill()
    return {"sent": sent, "last": last, "served": sent, "simulator": simulator}


def frequency(number):
    """One of 100 COM frequencies as the offset holds them: 118.00 to 118.99, the last number's is 118.70."""
    part = (number + 70 - FRAMES) % 100
    return bytes([part // 10 * 16 + part % 10, 0x18])


def flooder():
    clients = [Client(SERVER).complete() for _ in range(FLOODERS)]
    totals = {"requests": 0, "written": 0}
    lock = threading.Lock()

    def send(index):
        requests = written = 0
        for number in range(1, FRAMES + 1):
            # Small frames, and some that are many segments long.
            sizes = [4] if number % 50 else [4, 0x400, 200, 900] * 20
            data = [number.to_bytes(4, "little").ljust(size, b"\xA5") for size in sizes]
            clients[index].send(request(*(write_record(0x18000 + 0x1000 * index + 0x400 * (i % 4), part)
                                          for i, part in enumerate(data))))
            requests += 1
            written += sum(sizes)
            # One of them steers the simulator, too, by an offset of the catalogue; another by the custom slot.
            if index == 0:
                clients[index].send(request(write_record(0x034E, frequency(number))))
            elif index == 1:
                clients[index].send(request(write_record(0x66C0, number.to_bytes(4, "little"))))
            if index < 2:
                requests, written = requests + 1, written + (2, 4)[index]
        with lock:
            totals["requests"] += requests
            totals["written"] += written

    threads = [threading.Thread(target=send, args=(index,)) for index in range(FLOODERS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    print(json.dumps(totals), flush=True)
    sys.stdin.readline()
    for index, client in enumerate(clients):
        client.until("the last value", lambda client=client, index=index: int.from_bytes(
            client.read(0x18000 + 0x1000 * index, 4), "little") == FRAMES)
    print(json.dumps([int.from_bytes(client.read(0x18000 + 0x1000 * index, 4), "little")
                      for index, client in enumerate(clients)]), flush=True)


if __name__ == "__main__":
    if sys.argv[1] in ("listener", "flooder"):
        {"listener": listener, "flooder": flooder}[sys.argv[1]]()
    else:
        build = Build(sys.argv[2])
        print(json.dumps({"stall": stall, "flood": flood}[sys.argv[1]](build, Path(sys.argv[3]))))
