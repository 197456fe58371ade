"""`offsetctl serve` for test code: the running program, requests as browsers and scripts make them, streams, and bytes
that no browser would send."""
import http.client
import json
import queue
import signal
import socket
import subprocess
import threading
import time

from conftest import DEADLINE, wait_for


class Cockpit:
    """A running web cockpit."""

    def __init__(self, build, *options, port=0):
        self.process = subprocess.Popen(build.command("offsetctl", "serve", "--port", port, *options),
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                        restore_signals=False)  # a file's limit fails a write, as a full disk does
        line = self.process.stdout.readline()
        assert line.startswith("Web cockpit: http://"), line + self.process.stderr.read()
        self.address = line.split()[-1]
        self.port = int(self.address.split("//")[1].split("/")[0].rsplit(":", 1)[1])
        self.errors = []
        threading.Thread(target=lambda: self.errors.extend(self.process.stderr), daemon=True).start()

    def ask(self, method, target, body=None, headers=None, host="127.0.0.1"):
        """(status, headers, body); JSON is decoded."""
        connection = http.client.HTTPConnection(host, self.port, timeout=DEADLINE)
        sent = {} if body is None else {"Content-Type": "application/json"}
        data = body if body is None or isinstance(body, (str, bytes)) else json.dumps(body)
        connection.request(method, target, data, {**sent, **(headers or {})})
        answer = connection.getresponse()
        text = answer.read()
        connection.close()
        isJson = answer.headers.get("Content-Type") == "application/json"
        return answer.status, answer.headers, json.loads(text) if isJson and text else text

    def get(self, target):
        status, _, body = self.ask("GET", target)
        assert status == 200, body
        return body

    def put(self, *values, **more):
        status, _, body = self.ask("PUT", "/api/values", {"values": list(values), **more})
        assert status == 200, body
        return body["values"]

    def post(self, target, **body):
        status, _, answer = self.ask("POST", target, body)
        assert status == 200, answer
        return answer

    def status(self):
        return self.get("/api/status")

    def value(self, name):
        return self.get(f"/api/values?names={name}")["values"][0]["value"]

    def connected(self):
        wait_for("the connection", lambda: self.status()["connected"])
        return self

    def raw(self, data, deadline=DEADLINE):
        """What comes for these bytes, up to the connection's end."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=deadline) as connection:
            try:
                connection.sendall(data)
            except (BrokenPipeError, ConnectionResetError):
                pass  # it has closed before it had taken everything
            text = b""
            while True:
                part = connection.recv(65536)
                if not part:
                    return text
                text += part

    def memory(self):
        """Resident, in KB."""
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            return int(next(line for line in file if line.startswith("VmRSS")).split()[1])

    def end(self):
        """Ctrl-C; returns how long it took, and checks that it was an orderly end."""
        started = time.monotonic()
        self.process.send_signal(signal.SIGINT)
        assert self.process.wait(timeout=DEADLINE) == 0
        return time.monotonic() - started


class Events:
    """An open stream: `take` gives its events one by one."""

    def __init__(self, cockpit, target, headers=None):
        self.connection = http.client.HTTPConnection("127.0.0.1", cockpit.port, timeout=DEADLINE)
        self.connection.connect()
        self.socket = self.connection.sock  # the connection lets go of it
        self.connection.request("GET", target, headers=headers or {})
        self.answer = self.connection.getresponse()
        assert self.answer.status == 200, self.answer.read()
        assert self.answer.headers["Content-Type"] == "text/event-stream"
        self.events = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        try:
            kind = None
            for line in self.answer:
                line = line.decode().rstrip("\n")
                if line.startswith("event: "):
                    kind = line[7:]
                elif line.startswith("data: "):
                    self.events.put((kind, json.loads(line[6:]), time.monotonic()))
        except (OSError, ValueError, http.client.HTTPException, AttributeError):
            pass
        self.events.put(None)

    def take(self, kind=None, deadline=DEADLINE):
        """(kind, data, when it came) of the next event of that kind; None at the stream's end."""
        end = time.monotonic() + deadline
        while True:
            event = self.events.get(timeout=max(end - time.monotonic(), 0.001))
            if event is None or kind in (None, event[0]):
                return event

    def until(self, kind, condition):
        """The data of the first event of that kind for which the condition holds."""
        while True:
            event = self.take(kind)
            assert event is not None, "the stream has ended"
            if condition(event[1]):
                return event[1]

    def close(self):
        self.socket.shutdown(socket.SHUT_RDWR)
        self.socket.close()
