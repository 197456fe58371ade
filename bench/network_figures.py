#!/usr/bin/python3
"""Figures of the network server, measured on this computer's loopback with the Linux build and a flying aircraft:

    bench/network_figures.py [--build build/linux] [--seconds 20] [--samples 500] [--connects 0]

Prints a table for docs/performance-network.md. --connects N lets N clients come and go, one after the other, and
compares memory, threads and files before and after (10,000 take about ten minutes)."""
import argparse
import os
import random
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests" / "e2e"))

from conftest import Build, Standin, wait_for  # noqa: E402
from network import Client, CHANGES, entries_of, request, write_record  # noqa: E402

MARK = 0x12000  # an offset without meaning
HEADER = 28     # IPv4 and UDP headers of a datagram


class LooseBuild(Build):
    def __init__(self, folder):
        super().__init__("linux")
        self.bin, self.plugin = folder / "bin", folder / "plugin" / "lin.xpl"


def begin(folder, root, *options):
    shutil.rmtree(root, ignore_errors=True)
    settings = root / "Resources" / "plugins" / "TAVRIX" / "TAVRIX.ini"
    settings.parent.mkdir(parents=True)
    settings.write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = Standin(LooseBuild(folder), root, *options)
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    return standin


def refreshes(standin):
    """(stored, dropped) as the plug-in's own window shows them when it is opened."""
    standin.ask('menu "Performance settings"')
    match = re.search(r"Refreshes stored: (\d+), dropped: (\d+)", standin.ask("widgets"))
    standin.ask('close "Performance settings"')
    return int(match[1]), int(match[2])


def processor_time(pid):
    """Seconds of processor that the threads of a process have used: (main thread, all others)."""
    main = others = 0
    for task in Path(f"/proc/{pid}/task").iterdir():
        try:
            used = int((task / "schedstat").read_text().split()[0]) / 1e9
        except FileNotFoundError:
            continue
        if int(task.name) == pid:
            main += used
        else:
            others += used
    return main, others


def drain(clients, seconds, each=lambda: None):
    """Receives from all clients; returns datagrams and bytes on the wire."""
    end, datagrams, size = time.monotonic() + seconds, 0, 0
    while time.monotonic() < end:
        ready, _, _ = select.select([client.udp for client in clients], [], [], 0.005)
        for one in ready:
            size += len(one.recv(65536)) + HEADER
            datagrams += 1
        each()
    return datagrams, size


def latency(client, samples):
    """Milliseconds from sending a write of one byte to the datagram that shows it, sorted."""
    times = []
    for number in range(samples):
        end = time.monotonic() + random.uniform(0.005, 0.045)  # anywhere in the server's cycle
        while time.monotonic() < end:
            client.take(end - time.monotonic())
        value = number % 255 + 1
        started = time.perf_counter()
        client.send(request(write_record(MARK, bytes([value]))))
        while True:
            datagram = client.take(5)
            assert datagram is not None, "no echo within 5 s"
            if datagram[0] == CHANGES and (MARK, value) in entries_of(datagram):
                break
        times.append((time.perf_counter() - started) * 1000)
        client.send(request(write_record(MARK, b"\0")))
    return sorted(times)


def percentile(times, share):
    return times[min(len(times) - 1, int(len(times) * share))]


def row(what, value):
    print(f"| {what} | {value} |", flush=True)


def measure_latency(samples, others):
    """With that many other clients, which a process of its own receives for."""
    receivers = subprocess.Popen([sys.executable, __file__, "--receive", str(others)], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, text=True)
    assert receivers.stdout.readline() == "ready\n"
    client = Client().complete()
    drain([client], 1)  # the blocks that a new client brings about
    times = latency(client, samples)
    client.close()
    receivers.communicate("")
    row(f"changed byte to datagram, {others + 1} client(s): median / 99 %",
        f"{percentile(times, 0.5):.1f} ms / {percentile(times, 0.99):.1f} ms")


def receive_for_others(count):
    clients = [Client().complete() for _ in range(count)]
    print("ready", flush=True)
    while True:
        ready, _, _ = select.select([sys.stdin, *(client.udp for client in clients)], [], [])
        if sys.stdin in ready:
            return
        for one in ready:
            one.recv(65536)


def measure_load(standin, seconds):
    clients = [Client() for _ in range(8)]
    for client in clients:
        client.complete()
    drain(clients, 1)
    pid = standin.process.pid
    for what, pause in (("listening", None), ("each writing 50 times a second", 0.02 / 8)):
        due = [time.monotonic(), 0]

        def write():
            while pause and time.monotonic() >= due[0]:
                client = clients[due[1] % 8]
                client.send(request(write_record(MARK + due[1] % 64, bytes([due[1] % 251]))))
                due[0] += pause
                due[1] += 1

        stored, dropped = refreshes(standin)
        before, started = processor_time(pid), time.monotonic()
        datagrams, size = drain(clients, seconds, write)
        elapsed, after = time.monotonic() - started, processor_time(pid)
        stored, dropped = (b - a for a, b in zip((stored, dropped), refreshes(standin)))
        row(f"8 clients {what}: sent to all together", f"{size / elapsed:,.0f} bytes/s, "
            f"{datagrams / elapsed:.0f} datagrams/s")
        row(f"8 clients {what}: refreshes dropped by busy locks",
            f"{dropped} of {stored + dropped}, {100 * dropped / max(stored + dropped, 1):.3f} %")
        row(f"8 clients {what}: worker threads", f"{100 * (after[1] - before[1]) / elapsed:.2f} % of a core")
    for client in clients:
        client.close()


def measure_idle(standin, seconds):
    before = processor_time(standin.process.pid)
    time.sleep(seconds)
    after = processor_time(standin.process.pid)
    row("no client: worker threads", f"{100 * (after[1] - before[1]) / seconds:.2f} % of a core")


def frame_times(standin, seconds):
    """Microseconds that the plug-in's callbacks took in each frame of the simulator's thread, sorted."""
    standin.ask("perf")
    times, end = [], time.monotonic() + seconds
    while time.monotonic() < end:
        standin.ask("frames 1")
        words = standin.ask("perf").split()
        figures = dict(zip(words[::2], map(int, words[1::2])))
        if figures["frames"]:
            times.append(figures["ns"] / figures["frames"] / 1000)
    return sorted(times)


def blast(kind):
    """A client that writes without a pause until it is ended; the number of its writes a second, now and then."""
    client, place, sent = Client().complete(), 0x12000 + os.getpid() % 8 * 0x400, 0
    print("ready", flush=True)
    if kind == "small":
        chunk = [request(write_record(place + i % 64 * 4, os.urandom(4))) for i in range(500)]
    else:
        chunk = [request(*(write_record(place + i % 64 * 4, os.urandom(4)) for i in range(3000)))]
    records = len(chunk) if kind == "small" else 3000
    data = b"".join(chunk)
    started = time.monotonic()
    while not select.select([sys.stdin], [], [], 0)[0]:
        client.send(data)
        sent += records
    print(int(sent / (time.monotonic() - started)), flush=True)


def measure_unpaced(standin, seconds):
    def told(times):
        return (f"{percentile(times, 0.5):,.0f} us / {percentile(times, 0.99):,.0f} us / {times[-1]:,.0f} us "
                f"({len(times)} frames)")

    row("frame time in callbacks, no client: median / 99 % / longest", told(frame_times(standin, seconds)))
    for kind in ("small", "large"):
        senders = [subprocess.Popen([sys.executable, __file__, "--blast", kind], stdin=subprocess.PIPE,
                                    stdout=subprocess.PIPE, text=True) for _ in range(8)]
        for sender in senders:
            assert sender.stdout.readline() == "ready\n"
        stored, dropped = refreshes(standin)
        times = frame_times(standin, seconds)
        stored, dropped = (b - a for a, b in zip((stored, dropped), refreshes(standin)))
        rates = [int(sender.communicate("\n")[0]) for sender in senders]
        row(f"8 clients without pause, {kind} frames: frame time", told(times))
        row(f"8 clients without pause, {kind} frames: writes a second, refreshes dropped",
            f"{sum(rates):,}; {dropped} of {stored + dropped}")
        wait_until_alone(standin)


def resources(pid):
    status = Path(f"/proc/{pid}/status").read_text()
    return {"threads": int(re.search(r"Threads:\s+(\d+)", status)[1]),
            "files": len(os.listdir(f"/proc/{pid}/fd")),
            "resident kB": int(re.search(r"VmRSS:\s+(\d+)", status)[1])}


def wait_until_alone(standin):
    """Until the server has noticed that everybody has left, and listens again when it had been full."""
    def alone():
        log = standin.log()
        return (log.count("Creating burst thread OK") == log.count("Closing burst thread") and
                log.count("Maximum of clients reached") == log.count("TAVFARNET->Release OK"))

    wait_for("an empty table", alone)


def measure_connects(standin, count):
    for client in [Client().complete() for _ in range(8)]:
        client.close()
    wait_until_alone(standin)
    before, started = resources(standin.process.pid), time.monotonic()
    for number in range(count):
        client = Client()
        client.send(request(write_record(MARK, bytes([number % 256]))))
        client.close()
    wait_until_alone(standin)
    elapsed = time.monotonic() - started
    time.sleep(1)
    after = resources(standin.process.pid)
    row(f"{count:,} connects and disconnects", f"{1000 * elapsed / count:.0f} ms each")
    for what in before:
        row(f"{what} before and after them", f"{before[what]:,} / {after[what]:,}")


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--build", type=Path, default=TOP / "build" / "linux")
    options.add_argument("--seconds", type=float, default=20)
    options.add_argument("--samples", type=int, default=500)
    options.add_argument("--connects", type=int, default=0)
    options.add_argument("--only-connects", action="store_true")
    options.add_argument("--only-unpaced", action="store_true", help="only eight clients that never pause")
    options.add_argument("--receive", type=int, help=argparse.SUPPRESS)
    options.add_argument("--blast", help=argparse.SUPPRESS)
    chosen = options.parse_args()
    if chosen.blast is not None:
        blast(chosen.blast)
        return
    if chosen.receive is not None:
        receive_for_others(chosen.receive)
        return
    with tempfile.TemporaryDirectory() as folder:
        if chosen.only_unpaced:
            standin = begin(chosen.build, Path(folder) / "X-Plane unpaced")
            try:
                measure_unpaced(standin, chosen.seconds)
            finally:
                standin.quit(expect=None)
        elif not chosen.only_connects:
            standin = begin(chosen.build, Path(folder) / "X-Plane flying")
            try:
                measure_idle(standin, chosen.seconds)
                measure_latency(chosen.samples, 0)
                measure_latency(chosen.samples, 7)
                wait_until_alone(standin)
                measure_load(standin, chosen.seconds)
                wait_until_alone(standin)
                measure_unpaced(standin, chosen.seconds)
            finally:
                standin.quit(expect=None)
        if chosen.connects:
            standin = begin(chosen.build, Path(folder) / "X-Plane connects", "--flight", "none")
            try:
                measure_connects(standin, chosen.connects)
            finally:
                standin.quit(expect=None)


if __name__ == "__main__":
    main()
