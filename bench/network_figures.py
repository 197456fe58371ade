#!/usr/bin/python3
"""Figures of the network server, with server and clients on this computer and a flying aircraft. bench/report.py takes
them for docs/performance.md; by itself this program only has what takes long:

    bench/network_figures.py --connects 10000

lets clients come and go, one after the other (10,000 take about twenty minutes), and compares memory, threads and files before
and after."""
import argparse
import os
import random
import re
import select
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TOP = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / "tests" / "e2e"))

from conftest import Build, Standin, wait_for  # noqa: E402
from goals import share_figures  # noqa: E402
from network import Client, CHANGES, entries_of, request, write_record  # noqa: E402

MARK = 0x12000  # an offset without meaning
HEADER = 28     # IPv4 and UDP headers of a datagram


def begin(build, root, *options):
    """A stand-in with the plug-in, whose server is ready."""
    settings = root / "Resources" / "plugins" / "TAVRIX" / "TAVRIX.ini"
    settings.parent.mkdir(parents=True)
    settings.write_text("[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\n")
    standin = Standin(build, root, *options)
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
    key = f"net.latency_{others + 1}"
    return {f"{key}.median": percentile(times, 0.5), f"{key}.p99": percentile(times, 0.99), f"{key}.samples": samples}


def receive_for_others(count):
    clients = [Client().complete() for _ in range(count)]
    print("ready", flush=True)
    while True:
        ready, _, _ = select.select([sys.stdin, *(client.udp for client in clients)], [], [])
        if sys.stdin in ready:
            return
        for one in ready:
            one.recv(65536)


def measure_load(standin, key, seconds, writes, still=lambda: True):
    """Eight clients that listen, or write 50 times a second each; `still` tells in the end whether all went well."""
    clients = [Client() for _ in range(8)]
    for client in clients:
        client.complete()
    drain(clients, 1)
    pause, due, number = 0.02 / 8, time.monotonic(), 0

    def write():
        nonlocal due, number
        while writes and time.monotonic() >= due:
            clients[number % 8].send(request(write_record(MARK + number % 64, bytes([number % 251]))))
            due += pause
            number += 1

    before_refreshes = refreshes(standin)
    before, started = processor_time(standin.process.pid), time.monotonic()
    datagrams, size = drain(clients, seconds, write)
    elapsed, after = time.monotonic() - started, processor_time(standin.process.pid)
    stored, dropped = (b - a for a, b in zip(before_refreshes, refreshes(standin)))
    assert still(), "what ran besides the clients has ended too early"
    for client in clients:
        client.close()
    wait_until_alone(standin)
    return {f"{key}.seconds": elapsed, f"{key}.bytes": size / elapsed, f"{key}.datagrams": datagrams / elapsed,
            f"{key}.threads": 100 * (after[1] - before[1]) / elapsed,
            **share_figures(key, dropped, stored + dropped)}


def measure_idle(standin, seconds):
    """Percent of a core that all threads but the simulator's take when nobody is there."""
    before = processor_time(standin.process.pid)
    time.sleep(seconds)
    return 100 * (processor_time(standin.process.pid)[1] - before[1]) / seconds


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
    client, place, sent = Client().complete(), MARK + os.getpid() % 8 * 0x400, 0
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
    """Frame times without clients, and while eight clients never pause."""
    figures = {}

    def take(key):
        times = frame_times(standin, seconds)
        figures.update({f"{key}.median": percentile(times, 0.5), f"{key}.p99": percentile(times, 0.99),
                        f"{key}.longest": times[-1], f"{key}.frames": len(times)})

    take("unpaced.none")
    for kind in ("small", "large"):
        senders = [subprocess.Popen([sys.executable, __file__, "--blast", kind], stdin=subprocess.PIPE,
                                    stdout=subprocess.PIPE, text=True) for _ in range(8)]
        for sender in senders:
            assert sender.stdout.readline() == "ready\n"
        before = refreshes(standin)
        take(f"unpaced.{kind}")
        stored, dropped = (b - a for a, b in zip(before, refreshes(standin)))
        rates = [int(sender.communicate("\n")[0]) for sender in senders]
        figures |= {f"unpaced.{kind}.writes": sum(rates) / 1e6, f"unpaced.{kind}.dropped": dropped,
                    f"unpaced.{kind}.total": stored + dropped}
        wait_until_alone(standin)
    return figures


def resources(pid):
    status = Path(f"/proc/{pid}/status").read_text()
    return {"threads": int(re.search(r"Threads:\s+(\d+)", status)[1]),
            "files": len(os.listdir(f"/proc/{pid}/fd")),
            "resident": int(re.search(r"VmRSS:\s+(\d+)", status)[1])}


def wait_until_alone(standin):
    """Until the server has noticed that everybody has left, and listens again when it had been full."""
    def alone():
        listening = re.search(r": [0-9A-F]+:FDE8 [0-9A-F:]+ 0A ", Path("/proc/net/tcp").read_text())
        return listening and "Network clients: 0" in standin.ask("widgets")

    standin.ask('menu "TAVRIX Version and Info"')
    wait_for("an empty table", alone)
    standin.ask('close "TAVRIX Version and Info"')


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
    # What the last ones had is given back shortly after.
    end = time.monotonic() + 3
    while time.monotonic() < end and resources(standin.process.pid)["threads"] > before["threads"]:
        time.sleep(0.05)
    after = resources(standin.process.pid)
    figures = {"connects.count": count, "connects.each": 1000 * elapsed / count}
    for what in before:
        figures |= {f"connects.{what}.before": before[what], f"connects.{what}.after": after[what]}
    return figures


def measure(seconds, samples, connects):
    """All figures of the Linux build: so long for each, so many writes and clients."""
    figures = {}
    with tempfile.TemporaryDirectory() as folder:
        standin = begin(Build("linux"), Path(folder) / "flying")
        try:
            figures["idle.linux"] = measure_idle(standin, seconds)
            for others in (0, 7):
                figures |= measure_latency(samples, others)
                wait_until_alone(standin)
            figures |= measure_load(standin, "net.listening", seconds, writes=False)
            figures |= measure_load(standin, "net.writing", seconds, writes=True)
            figures |= measure_unpaced(standin, seconds / 2)
        finally:
            standin.quit(expect=None)
        standin = begin(Build("linux"), Path(folder) / "connects", "--flight", "none")
        try:
            figures |= measure_connects(standin, connects)
        finally:
            standin.quit(expect=None)
    return figures


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--connects", type=int, default=10000)
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
        standin = begin(Build("linux"), Path(folder) / "X-Plane", "--flight", "none")
        try:
            for what, value in measure_connects(standin, chosen.connects).items():
                print(f"{what}: {value:,.0f}")
        finally:
            standin.quit(expect=None)


if __name__ == "__main__":
    main()
