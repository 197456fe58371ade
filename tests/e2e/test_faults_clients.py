"""What clients and browsers repeat without end is not told without end."""
import os
import socket
import time

import pytest

from fault_tests import begin
from network import Client, request, write_record

pytestmark = pytest.mark.slow


def connect_often(standin):
    for _ in range(150):
        try:
            Client().close()
        except OSError:  # the table was full for a moment
            time.sleep(0.01)


def change_everything(standin):
    client = Client().complete()
    for value in range(100):
        client.send(request(*[write_record(offset, bytes([value]) * 2000) for offset in range(0x12000, 0x1F000, 2000)]))
        standin.ask("frames 1")
    client.close()


def write_often(offset, data):
    def act(standin):
        client = Client().complete()
        for value in range(300):
            client.send(request(write_record(offset, data(value))))
            standin.ask("frames 2")
        client.close()
    return act


def send_rubbish(standin):
    client = Client().complete()
    rubbish = [b"\xFF" * 40, request()[:-3] * 3, b"\x12\0\xFF\xFF" + bytes(30), os.urandom(64)]
    for i in range(100000 // 50):
        try:
            client.send(rubbish[i % 4] * 50)
        except OSError:
            client.close()
            client = Client().complete()
    client.close()


def browse_often(standin):
    for i in range(120):
        with socket.create_connection(("127.0.0.1", 4321)) as browser:
            browser.sendall(f"GET /{i} HTTP/1.1\r\n\r\n".encode())
            browser.recv(100)


FLOODS = {
    "connections": (connect_often, 150), "change lists that are full": (change_everything, 16),
    "brake": (write_often(0x0BC6, lambda value: bytes([value & 0xFF, value >> 8])), 16),
    "situation files": (write_often(0x3F00, lambda value: bytes([value & 1, 0])), 11),
    "frames that are none": (send_rubbish, 60), "browsers": (browse_often, 2),
}


@pytest.mark.parametrize("cause", FLOODS)
def test_what_clients_repeat_is_not_told_without_end(start, linux, tmp_path, cause):
    act, most = FLOODS[cause]
    standin = begin(start, linux, tmp_path)
    faults = "".join(f"Offset {0xA000 + i:04X} int 4 1 rw $none{i}\nnonsense {i}\n" for i in range(10))
    (standin.folder / "TAVRIXOffsets.cfg").write_text(faults)
    standin.ask("frames 70")
    standin.wait_log("TAVFARNET->Waiting for clients.....0")
    before = len(standin.log().splitlines())
    act(standin)
    standin.ask("frames 20")
    lines = standin.log().splitlines()[before:]
    assert len(lines) <= most, lines[:10] + lines[-10:]
    page = standin.root / "httpLog.txt"
    assert page.read_text().count("http command") <= 1
    standin.quit()
