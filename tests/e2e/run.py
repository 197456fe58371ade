"""The end-to-end tests, several files at a time: run.py [--workers N] [--wine] [--unit ...] PYTEST-ARGUMENTS...

Nearly all of their time is waiting, and the servers' ports are fixed: so each worker has a network of its own, under
Wine also a prefix of its own, whose server stays in that network. Where the system allows no networks of our own, one
pytest runs all files, one after another.

--unit "NAME=PARTS=COMMAND" (any number of times) runs a program of unit tests among them, in that many parts: they
wait, too, and for the same ports.

A display that dies under Wine takes every window with it: that is said once, another one is started under its number,
and the files that failed meanwhile run again."""
import argparse
import os
import re
import shlex
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent
# Holds a network until its input ends; processes are everybody's, as an X server looks whether another one lives.
NETWORK = ["unshare", "--net", "sh", "-c", "ip link set lo up && ip link set lo multicast on && "
           "ip route add 224.0.0.0/4 dev lo && echo ready && cat"]
NO_TESTS = 5  # pytest's answer where the marks leave nothing of a file
# They take longest, and go first.
LONG = ["test_faults.py", "test_faults_simulator.py", "test_cockpit.py", "test_flight.py", "test_recordings.py",
        "test_hosts.py", "test_clients.py", "test_network.py", "test_traffic.py", "test_lifecycle.py", "test_hard_flight.py",
        "test_package.py", "test_page.py", "test_run.py", "test_ages.py", "test_window_server.py"]
DISPLAYS = 3  # when that many have died it is no accident


def display_lives(number):
    """Whether an X server of that number takes connections."""
    with socket.socket(socket.AF_UNIX) as connection:
        try:
            connection.connect(f"/tmp/.X11-unix/X{number}")
        except (FileNotFoundError, ConnectionRefusedError):
            return False
    return True


def look_at_display(display):
    """When the display has died: says so, counts it, and starts another one under its number, but after the last."""
    with display["lock"]:
        if display["died"] == DISPLAYS or display_lives(display["number"]):
            return
        display["died"] += 1
        end = "and is run again" if display["died"] < DISPLAYS else f"(the {DISPLAYS}rd time: the run ends)"
        print(f"The display :{display['number']} (Xvfb) has died: what fails by that says nothing {end}", flush=True)
        for server in display["servers"]:
            server.poll()  # else the next one takes the dead process for a living server
        if display["died"] < DISPLAYS:
            display["servers"].append(subprocess.Popen(
                ["Xvfb", f":{display['number']}", "-screen", "0", "1024x768x24", "-nolisten", "tcp"],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True))
            deadline = time.monotonic() + 20
            while not display_lives(display["number"]) and time.monotonic() < deadline:
                time.sleep(0.1)


def keep_display(display, over):
    """A thread: looks at the display until `over`."""
    while not over.wait(0.5):
        look_at_display(display)


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


@dataclass
class Job:
    name: str
    words: list
    environment: dict = field(default_factory=dict)
    folder: Path = None  # what it leaves behind


def file_jobs(folder, arguments):
    files = sorted(HERE.glob("test_*.py"), key=lambda file: (LONG + [file.name]).index(file.name))
    return [Job(file.name, [sys.executable, "-m", "pytest", "-q", str(file), f"--basetemp={folder / file.stem}",
                            "-p", "no:cacheprovider", *arguments], folder=folder / file.stem) for file in files]


def unit_jobs(text, folder):
    """The parts of a program of unit tests, each with a folder of its own."""
    name, parts, command = text.split("=", 2)
    jobs = []
    for part in range(int(parts)):
        own = folder / f"{name} {part}"
        words = shlex.split(command)
        environment = {"GTEST_TOTAL_SHARDS": parts, "GTEST_SHARD_INDEX": str(part)}
        if words[0] != "wine":  # there each prefix has a folder for that
            environment["TEST_TMPDIR"] = str(own)
        jobs.append(Job(f"{name}, part {part + 1}", words, environment, own))
    return jobs


def work(network, waiting, failed, prefix, options, lock, display):
    inside = ["nsenter", f"--net=/proc/{network.pid}/ns/net"]
    environment = dict(os.environ)
    if options.wine:
        copy_prefix(Path(os.environ["WINEPREFIX"]), prefix)
        environment["WINEPREFIX"] = str(prefix)
    while True:
        with lock:
            if not waiting or (display and display["died"] == DISPLAYS):
                break
            job = waiting.pop(0)
            failed.append(job.name)  # until it has passed
        if "TEST_TMPDIR" in job.environment:
            job.folder.mkdir(exist_ok=True)
        started, deaths = time.monotonic(), display and display["died"]
        ended = subprocess.run([*inside, *job.words], env=environment | job.environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
        if display:
            look_at_display(display)
            end = time.monotonic() + 1  # a process that was ended takes connections until it has gone
            while ended.returncode not in (0, NO_TESTS) and display["died"] == deaths and time.monotonic() < end:
                time.sleep(0.1)
                look_at_display(display)
        if ended.returncode not in (0, NO_TESTS) and display and display["died"] != deaths:
            subprocess.run([*inside, "wineserver", "-k"], env=environment, capture_output=True)
            shutil.rmtree(job.folder, ignore_errors=True)
            with lock:
                failed.remove(job.name)
                waiting.insert(0, job)
            continue
        with lock:
            if ended.returncode in (0, NO_TESTS):
                failed.remove(job.name)
            else:
                print(ended.stdout)
            if ended.returncode == NO_TESTS:
                continue
            last = next((line for line in reversed(ended.stdout.splitlines()) if "passed" in line or "PASSED" in line or
                         "failed" in line or "FAILED" in line), f"exit status {ended.returncode}")
            print(f"  {job.name}: {last.strip()} [{time.monotonic() - started:.0f} s]", flush=True)
    if options.wine:
        subprocess.run([*inside, "wineserver", "-k"], env=environment, capture_output=True)


def run_alone(options, arguments):
    print("no networks of our own here: one file after another")
    words = [[sys.executable, "-m", "pytest", "-q", str(HERE), "-p", "no:cacheprovider", *arguments],
             *(shlex.split(text.split("=", 2)[2]) for text in options.unit)]
    return max([subprocess.run(command).returncode != 0 for command in words])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--workers", type=int, default=4)
    parser.add_argument("--wine", action="store_true")
    parser.add_argument("--unit", action="append", default=[])
    options, arguments = parser.parse_known_args()
    networks = [network for network in (open_network() for _ in range(options.workers)) if network]
    if not networks:
        return run_alone(options, arguments)
    failed, lock = [], threading.Lock()
    number = re.fullmatch(r":(\d+)(\.\d+)?", os.environ.get("DISPLAY", "")) if options.wine else None
    display = None
    if number and display_lives(number[1]):
        display = {"number": number[1], "died": 0, "servers": [], "lock": threading.Lock()}
    over = threading.Event()
    keeper = threading.Thread(target=keep_display, args=(display, over), daemon=True)
    if display:
        keeper.start()
    with (tempfile.TemporaryDirectory(prefix="tavrix-e2e-") as folder,
          # Beside the prefix that is copied: links do not leave a file system.
          tempfile.TemporaryDirectory(prefix="e2e-", dir=Path(os.environ["WINEPREFIX"]).parent if options.wine else None)
          as prefixes):
        jobs = file_jobs(Path(folder), arguments)
        jobs[len(LONG) // 2:len(LONG) // 2] = [job for text in options.unit for job in unit_jobs(text, Path(folder))]
        workers = [threading.Thread(target=work, args=(network, jobs, failed, Path(prefixes) / f"wine{i}", options, lock, display))
                   for i, network in enumerate(networks)]
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.join()
    for network in networks:
        close_network(network)
    if display:
        over.set()
        keeper.join()
        for server in display["servers"]:
            server.terminate()
            server.wait()
    failed += [job.name + " (not run)" for job in jobs]  # when every worker has ended by an error
    if failed:
        print("failed: " + ", ".join(failed))
    return 1 if failed else 0


sys.exit(main())
