"""The end-to-end tests, several files at a time: run.py [--workers N] [--wine] PYTEST-ARGUMENTS...

Nearly all of their time is waiting, and the servers' ports are fixed: so each worker has a network of its own, under
Wine also a prefix of its own, whose server stays in that network. Where the system allows no networks of our own, one
pytest runs all files, one after another."""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
# Holds a network until its input ends; processes are everybody's, as an X server looks whether another one lives.
NETWORK = ["unshare", "--net", "sh", "-c", "ip link set lo up && ip link set lo multicast on && "
           "ip route add 224.0.0.0/4 dev lo && echo ready && cat"]
NO_TESTS = 5  # pytest's answer where the marks leave nothing of a file
# They take longest, and go first.
LONG = ["test_faults.py", "test_flight.py", "test_recordings.py", "test_hosts.py", "test_clients.py", "test_network.py", "test_traffic.py",
        "test_lifecycle.py", "test_run.py", "test_ages.py", "test_window_server.py"]


def open_network():
    """The process that holds a network of its own, or None where there can be none."""
    holder = subprocess.Popen(NETWORK, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    if holder.stdout.readline() == "ready\n":
        return holder
    holder.wait()
    return None


def close_network(holder):
    holder.stdin.close()
    holder.wait()


def copy_prefix(source, target):
    """Files are shared, which Wine replaces but does not change; the registry is a copy."""
    subprocess.run(["cp", "-a", "--link", str(source), str(target)], check=True)
    for file in target.glob("*.reg"):
        file.unlink()
        shutil.copy2(source / file.name, file)


def work(network, waiting, failed, folder, prefix, options, arguments, lock):
    inside = ["nsenter", f"--net=/proc/{network.pid}/ns/net"]
    environment = dict(os.environ)
    if options.wine:
        copy_prefix(Path(os.environ["WINEPREFIX"]), prefix)
        environment["WINEPREFIX"] = str(prefix)
    while True:
        with lock:
            if not waiting:
                break
            file = waiting.pop(0)
            failed.append(file.name)  # until it has passed
        started = time.monotonic()
        ended = subprocess.run(
            [*inside, sys.executable, "-m", "pytest", "-q", str(file), f"--basetemp={folder / file.stem}",
             "-p", "no:cacheprovider", *arguments],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            errors="replace")
        with lock:
            if ended.returncode in (0, NO_TESTS):
                failed.remove(file.name)
            else:
                print(ended.stdout)
            if ended.returncode == NO_TESTS:
                continue
            last = (ended.stdout.strip().splitlines() or ["no output"])[-1]
            print(f"  {file.name}: {last} [{time.monotonic() - started:.0f} s]", flush=True)
    if options.wine:
        subprocess.run([*inside, "wineserver", "-k"], env=environment, capture_output=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--workers", type=int, default=4)
    parser.add_argument("--wine", action="store_true")
    options, arguments = parser.parse_known_args()
    networks = [network for network in (open_network() for _ in range(options.workers)) if network]
    if not networks:
        print("no networks of our own here: one file after another")
        return subprocess.run([sys.executable, "-m", "pytest", "-q", str(HERE), "-p", "no:cacheprovider",
                               *arguments]).returncode
    files = sorted(HERE.glob("test_*.py"), key=lambda file: (LONG + [file.name]).index(file.name))
    failed, lock = [], threading.Lock()
    with (tempfile.TemporaryDirectory(prefix="tavrix-e2e-") as folder,
          # Beside the prefix that is copied: links do not leave a file system.
          tempfile.TemporaryDirectory(prefix="e2e-", dir=Path(os.environ["WINEPREFIX"]).parent if options.wine else None)
          as prefixes):
        workers = [
            threading.Thread(target=work, args=(network, files, failed, Path(folder), Path(prefixes) / f"wine{i}", options, arguments,
                                                lock))
            for i, network in enumerate(networks)]
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.join()
    for network in networks:
        close_network(network)
    failed += [file.name + " (not run)" for file in files]  # when every worker has ended by an error
    if failed:
        print("failed: " + ", ".join(failed))
    return 1 if failed else 0


sys.exit(main())
