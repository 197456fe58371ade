"""What the fault tests share. The file under test is tavrix_faults: the product's objects with a system that fails on the
console's word."""
import re
import time

from conftest import Build
from network import Client

SETTINGS = "[TAVRIX SETTINGS]\nServer Address = 127.0.0.1\nTAVRIX2TAVRIX Client mode = {}\n"
REMEDY = re.compile("close other programs|make room on|leave it where it is")


def faulty(build):
    """The same build with the plug-in of the fault tests."""
    other = Build(build.preset)
    other.plugin = build.plugin.parent / "faults" / build.plugin.name
    return other


def begin(start, build, tmp_path, *options, mode="No", rate=0, **more):
    root = tmp_path / "X-Plane"
    folder = root / "Resources" / "plugins" / "TAVRIX"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "TAVRIX.ini").write_text(SETTINGS.format(mode))
    return start(build, "--rate", str(rate), "--flight", "none", *options, root=root, **more)


def served(tries=10):
    """Whether a client gets the whole memory; one that is sent away comes again, as clients do."""
    for _ in range(tries):
        try:
            client = Client()
        except OSError:
            return False
        client.tcp.settimeout(0)
        end = time.monotonic() + 5
        while len(client.blocks) < 8 and time.monotonic() < end:
            client.take(0.05)
            try:
                if client.tcp.recv(1) == b"":
                    break
            except BlockingIOError:
                pass
            except OSError:
                break
        client.close()
        if len(client.blocks) == 8:
            return True
    return False


def told(standin, known):
    """Lines with advice since the start, and what the simulator's own log got since `known` lines."""
    return [line for line in standin.log().splitlines() + standin.errors[known:] if REMEDY.search(line)]
