"""A web cockpit without a simulator: serves the page and its interface with a synthetic flight. For work on the
page, and as the synthetic stream of its tests.

    python3 tests/e2e/fake_cockpit.py [PORT] [--every N]   --every: N updates a second of all values, not the asked rate
"""
import json
import math
import struct
import sys
import threading
import time
import urllib.parse
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
CATALOGUE = json.loads((TOP / "docs/offsets.json").read_text())
ROWS = {row["name"]: row for row in CATALOGUE["offsets"]}
CODES = {"u8": "B", "s8": "b", "u16": "H", "s16": "h", "u32": "I", "s32": "i", "u64": "Q", "s64": "q", "f32": "f",
         "f64": "d"}
KINDS = {"html": "text/html", "css": "text/css", "js": "text/javascript", "svg": "image/svg+xml",
         "json": "application/json", "txt": "text/plain"}
PANEL = b"<!doctype html><title>Big altitude</title><h1>Altitude</h1>"


class Refusal(Exception):
    def __init__(self, status, error, where, remedy):
        super().__init__(error)
        self.status, self.body = status, {"error": error, "where": where, "remedy": remedy}


def find(name, where="names"):
    """Offset, type, size and row of an item as the interface names it."""
    if name in ROWS:
        row = ROWS[name]
        return row["offset"], row["type"].split(":")[0], row["size"], row
    try:
        place, _, kind = name.partition(":")
        kind, _, size = kind.partition(":")
        return int(place, 16), kind, struct.calcsize(CODES[kind]) if kind in CODES else int(size), None
    except (ValueError, KeyError):
        near = min(ROWS, key=lambda known: sum(a != b for a, b in zip(known, name)) + abs(len(known) - len(name)))
        raise Refusal(404, f"no offset is called '{name}'", where, f"did you mean {near}?") from None


class Fake:
    """The synthetic flight: a memory as clients see it, moved on by `fly`."""

    def __init__(self, every=None):
        self.memory = bytearray(131072)
        self.begin = time.monotonic()
        self.changed = {}       # name -> (raw, time of change)
        self.held = {}          # name -> value that was written and stays
        self.lock = threading.Lock()
        self.every, self.down, self.clients, self.frames = every, False, 0, 0
        self.recording, self.replay, self.fault, self.refusal = None, None, None, None
        self.files = [{"file": "evening circuit.tavrec", "bytes": 4200000, "modified": "2026-11-21T18:05:00Z"},
                      {"file": "ILS 26L.tavrec", "bytes": 9123456, "modified": "2026-11-20T09:41:00Z"}]
        for name, value in START.items():
            self.put(name, value)
        threading.Thread(target=self.run, daemon=True).start()

    def now(self):
        return time.monotonic() - self.begin

    def put(self, name, value):
        offset, kind, size, row = find(name)
        if kind == "hex":
            raw = bytes.fromhex(value)
        elif kind == "text":
            raw = str(value).encode()[:size - 1].ljust(size, b"\0")
        elif row and row["form"] == "Bcd":
            digits = round(value * 100) - 10000 if row["unit"] == "MHz" else round(value)
            raw = struct.pack("<H", int(str(digits), 16))
        else:
            scale = row["scale"] if row else {"numerator": 1, "denominator": 1}
            stored = (value - (row["bias"] if row else 0)) * scale["denominator"] / scale["numerator"]
            if kind[0] != "f":
                bits = size * 8
                stored = round(stored) % (1 << bits)
                stored -= (1 << bits) if kind[0] == "s" and stored >> (bits - 1) else 0
            raw = struct.pack("<" + CODES[kind], stored)
        self.memory[offset:offset + size] = raw

    def entry(self, name):
        offset, kind, size, row = find(name)
        raw = bytes(self.memory[offset:offset + size])
        if kind == "hex":
            value = raw.hex(" ").upper()
        elif kind == "text":
            value = raw.split(b"\0")[0].decode("latin-1")
        elif row and row["form"] == "Bcd":
            digits = int(f"{struct.unpack('<H', raw)[0]:x}")
            value = digits / 100 + 100 if row["unit"] == "MHz" else digits
        else:
            value = struct.unpack("<" + CODES[kind], raw)[0]
            if row and row["scale"]["fraction"] != "1" or row and row["bias"]:
                value = value * row["scale"]["numerator"] / row["scale"]["denominator"] + row["bias"]
            elif size == 8 and kind[0] != "f":
                value = str(value)
        text = raw.hex(" ").upper()
        if self.changed.get(name, ("",))[0] != text:
            self.changed[name] = (text, self.now())
        return {"name": name, "offset": offset, "value": value, "unit": row["unit"] if row else "", "raw": text,
                "age": round(self.now() - self.changed[name][1], 3)}

    def run(self):
        while True:
            time.sleep(0.02)
            if self.replay and self.replay["playing"]:
                self.replay["position"] = min(self.replay["length"],
                                              self.replay["position"] + 0.02 * self.replay["speed"])
            with self.lock:
                self.fly(self.replay["position"] if self.replay else self.now())

    def fly(self, t):
        self.frames += 1
        bank, pitch = 18 * math.sin(t / 7), 4 + 3 * math.sin(t / 5)
        heading = (247 + 30 * math.sin(t / 14)) % 360
        altitude = 1900 + 300 * math.sin(t / 20)  # m
        values = {
            "ias": 168 + 12 * math.sin(t / 9), "tas": 190 + 13 * math.sin(t / 9), "mach": 0.31, "pitch": -pitch,
            "bank": -bank, "heading": heading, "altitude": altitude, "altitude_m": altitude,
            "indicated_altitude": altitude / 0.3048 + 120, "radio_altitude": altitude - 520,
            "vertical_speed": 5.5 * math.sin(t / 4), "turn_rate": 512 * bank / 20, "slip": 30 * math.sin(t / 3),
            "latitude": 48.1 + 0.04 * math.sin(t / 60), "longitude": 11.6 + 0.06 * math.cos(t / 60),
            "ground_speed": 94, "activity": self.frames % 65536, "second": int(t) % 60, "zulu_minute": 12,
            "cdi1": 40 * math.sin(t / 6), "gsi1": 30 * math.sin(t / 8), "dme1": 12.4, "frame_time": 1 / 58,
            "load_factor": 1.05, "fuel_total": 5200 - t / 10, "oat": 3.5, "tat": 3.5,
        }
        for i in (1, 2):
            values |= {f"n1_eng{i}": 84 + 4 * math.sin(t / 6 + i), f"n2_eng{i}": 92 + 2 * math.sin(t / 6 + i),
                       f"egt_eng{i}": 612 + 20 * math.sin(t / 9 + i), f"fuel_flow_eng{i}": 2450 + 90 * math.sin(t / 6),
                       f"throttle{i}": 78, f"oil_pressure_eng{i}": 52 + i, f"oil_temp_eng{i}": 88 + i}
        gear = self.held.get("gear", 100)
        for name in ("nose_gear", "left_gear", "right_gear"):
            old = self.entry(name)["value"]
            values[name] = old + max(-0.6, min(0.6, gear - old))
        for name, value in values.items():
            if name not in self.held:
                self.put(name, value)
        self.fly_others(t)

    def fly_others(self, t):
        names = [b"DLH4YK", b"BAW926", b"EZY17C", b"D-EKLM", b"AUA57P", b"SWR2NV", b"RYR8XJ", b"OE-XTR", b"AFR1122"]
        struct.pack_into("<HHHH", self.memory, 0xF000, 40, 96, len(names), int(t * 5) * 10 % 65536)
        for i, name in enumerate(names):
            angle, far = i * 0.7 + t / (60 + 9 * i), 0.03 + 0.028 * i
            struct.pack_into("<IfffHHh14sBBB", self.memory, 0xF080 + 40 * i, 100 + i, 48.1 + far * math.cos(angle),
                             11.6 + 1.5 * far * math.sin(angle), 6300 + 900 * (i - 4) + 40 * math.sin(t),
                             int((angle + math.pi / 2) / math.tau * 65536) % 65536, 180 + 20 * i, 197 * (i % 5 - 2), name,
                             0, 0x8C, int(i == 8))

    def status(self):
        source = f"recording {self.replay['file']}" if self.replay else "network 127.0.0.1"
        return {"source": source, "connected": True, "frames": self.frames, "lost": 0, "age": 0.01,
                "clients": self.clients, "recording": self.recording, "time": self.now(), "version": "2.0.5.25",
                "replay": self.replay and {**self.replay}, "recordingFault": self.fault}

    def write(self, item, where):
        name, value, unit = item["name"], item["value"], item.get("unit")
        row = find(name, where + ".name")[3]
        if row and row["write"] == "read-only":
            raise Refusal(403, f"{name} is read-only", where, "the server drops what is written there")
        words = {"on": 1, "off": 0, True: 1, False: 0}
        if row and row["bits"]:
            words |= {bit["name"]: 1 << bit["bit"] for bit in row["bits"]}
            words |= {a + "+" + b: words[a] | words[b] for a in list(words) for b in list(words)
                      if isinstance(a, str) and isinstance(b, str)}
        number = words.get(value, value) if not isinstance(value, float) else value
        if row and row["form"] != "Text" and isinstance(number, str):
            try:
                number = float(number)
            except ValueError:
                raise Refusal(400, f"'{value}' is no number", where, "write a number") from None
        if unit == "ft" and row["unit"] == "m":
            number *= 0.3048
        limits = row and row["range"]
        if limits and not limits["low"] <= number <= limits["high"]:
            raise Refusal(400, f"{number:g} is outside {limits['low']:g} to {limits['high']:g}", where + ".value",
                          "write a value inside")
        if name == "transponder" and any(digit in "89" for digit in str(int(number))):
            raise Refusal(400, f"{number:g} has a digit above 7", where + ".value", "squawk digits are 0 to 7")
        with self.lock:
            if name == "radio_exchange":
                for bit, pair in ((1, ("nav1", "nav_standby1")), (2, ("com2", "com_standby2")),
                                  (0, ("nav2", "nav_standby2")), (3, ("com1", "com_standby1"))):
                    if int(number) >> bit & 1:
                        active, standby = (self.entry(each)["value"] for each in pair)
                        self.put(pair[0], standby), self.put(pair[1], active)
            else:
                self.held[name] = number
                self.put(name, number)
            return {**self.entry(name), "written": True,
                    "confirmed": True if not row or row["write"] == "yes" else None}


START = {
    "com1": 118.7, "com_standby1": 121.5, "com2": 119.1, "com_standby2": 124.05, "nav1": 110.3, "nav_standby1": 108.9,
    "nav2": 113.6, "nav_standby2": 116.4, "adf1": 385, "adf2": 412, "transponder": 2341, "transponder_mode": 2,
    "audio_panel": 144, "obs1": 262, "obs2": 90, "to_from1": 1, "altimeter_setting": 1013.25, "engine_count": 2,
    "engine_type": 1, "running_eng1": 1, "running_eng2": 1, "gear": 100, "nose_gear": 100, "left_gear": 100,
    "right_gear": 100, "flaps": 25, "left_flap_position": 25, "right_flap_position": 25, "ap": 1, "fd": 1,
    "ap_heading": 1, "ap_altitude": 1, "yaw_damper": 1, "ap_heading_bug": 255, "ap_altitude_set": 2133.6, "ap_ias_set": 170,
    "ap_vertical_speed_set": 700, "aircraft": "<b>Boeing</b> 737-800 <img src=x onerror=alert(1)>", "lights": 19,
    "elevator_trim_indicator": 12, "magnetic_variation": 3.2, "vne": 340, "nav_ident1": "IMSE", "local_time": "18:05:22",
    "latitude": 48.1, "longitude": 11.6, "fuel_left": 62, "fuel_right": 61, "wind": 14, "wind_from": 240, "season": 3,
    "atc_number": "417", "autobrake": 1, "parking_brake": 0, "version_word1": 0x50000008, "battery": 1, "avionics": 1}


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def send(self, status, body, kind="application/json"):
        data = body if isinstance(body, bytes) else json.dumps(body).encode()
        self.send_response(status)
        self.send_header("Content-Type", kind + "; charset=utf-8")
        self.send_header("Content-Length", str(len(data)))
        self.send_header("Content-Security-Policy", "default-src 'self'; frame-ancestors 'self'")
        self.send_header("X-Content-Type-Options", "nosniff")
        self.send_header("Cache-Control", "no-store")
        self.end_headers()
        self.wfile.write(data)

    def handle_any(self):
        fake = self.server.fake
        url = urllib.parse.urlsplit(self.path)
        query = {key: values[0] for key, values in urllib.parse.parse_qs(url.query).items()}
        names = [urllib.parse.unquote(name) for name in query.get("names", "").split(",") if name]
        length = int(self.headers.get("Content-Length") or 0)
        body = json.loads(self.rfile.read(length)) if length else {}
        if url.path == "/fake":  # what a test wants to happen
            for key in {"down", "recording", "fault", "refusal"} & body.keys():
                setattr(fake, key, body[key])
            with fake.lock:
                fake.held |= body.get("set", {})
                for name, value in body.get("set", {}).items():
                    fake.put(name, value)
            return self.send(200, {})
        if fake.down:
            self.close_connection = True
            return None
        try:
            return self.answer(fake, url.path, query, names, body)
        except Refusal as refusal:
            return self.send(refusal.status, refusal.body)

    do_GET = do_PUT = do_POST = handle_any

    def answer(self, fake, path, query, names, body):
        if path == "/api/offsets":
            return self.send(200, {"version": CATALOGUE["version"], "offsets": CATALOGUE["offsets"]})
        if path == "/api/values" and self.command == "GET":
            return self.send(200, {"values": [fake.entry(name) for name in names]})
        if path == "/api/values":
            return self.send(200, {"values": [fake.write(item, f"values[{i}]")
                                              for i, item in enumerate(body["values"])]})
        if path == "/api/status":
            return self.send(200, fake.status())
        if path == "/api/recordings":
            return self.send(200, {"recordings": fake.files})
        if path == "/api/recording":
            if body["file"] and any(known["file"] == body["file"] for known in fake.files):
                raise Refusal(409, "the file exists", "file", "choose another name")
            if fake.recording and not body["file"]:
                fake.files.insert(0, {"file": fake.recording, "bytes": 1000, "modified": "2026-11-23T10:00:00Z"})
            fake.recording = body["file"]
            return self.send(200, fake.status())
        if path == "/api/replay":
            if "file" in body:
                fake.replay = body["file"] and {"file": body["file"], "position": 0.0, "length": 754.0, "speed": 1,
                                                "playing": True}
            elif not fake.replay:
                raise Refusal(409, "no recording is replayed", "replay", "name a file")
            for key in {"position", "speed", "playing"} & body.keys():
                fake.replay[key] = body[key]
            return self.send(200, fake.status())
        if path == "/api/panels":
            return self.send(200, {"panels": [{"file": "big-altitude.html", "title": "Big <altitude>"}]})
        if path.startswith("/panels/"):
            return self.send(200, PANEL, "text/html")
        if path in ("/api/stream", "/api/changes"):
            for name in names:
                find(name)
            fake.rate = query.get("rate")
            if fake.refusal or not 1 <= float(query.get("rate", 20)) <= 50:
                raise Refusal(400, fake.refusal or "rate is 1 to 50", "rate", "leave it out")
            return self.stream(fake, path, names, fake.every or float(query.get("rate", 20)))
        for line in (TOP / "web/files.txt").read_text().splitlines():
            url, source = line.split()
            if url == path:
                return self.send(200, (TOP / source).read_bytes(), KINDS[source.rpartition(".")[2]])
        raise Refusal(404, "there is nothing here", path, "see /api")

    def stream(self, fake, path, names, rate):
        self.send_response(200)
        self.send_header("Content-Type", "text/event-stream")
        self.send_header("Cache-Control", "no-store")
        self.end_headers()
        self.close_connection = True
        fake.clients += 1
        try:
            self.events(fake, path == "/api/changes", names, rate)
        except OSError:
            pass
        finally:
            fake.clients -= 1

    def event(self, kind, data):
        self.wfile.write(f"event: {kind}\ndata: {data}\n\n".encode())
        self.wfile.flush()

    def events(self, fake, isChanges, names, rate):
        told, bulk, memory, statusAt, i = {}, [], bytes(fake.memory), 0.0, 0
        if fake.every and not isChanges:  # made before, so that the test measures the page and not this server
            for step in range(90):
                with fake.lock:
                    entries = [fake.entry(name) for name in names]
                for entry in entries:
                    if isinstance(entry["value"], (int, float)):
                        entry["value"] = entry["value"] + step % 45
                    entry["raw"] = entry["raw"][:-2] + f"{step:02X}" if len(entry["raw"]) < 30 else entry["raw"]
                    entry["age"] = 0.0
                bulk.append(json.dumps(entries))
        due = time.monotonic()
        while not fake.down:
            if fake.now() - statusAt >= 1 or not statusAt:
                statusAt = fake.now()
                self.event("status", json.dumps(fake.status()))
            if isChanges:
                with fake.lock:
                    after = bytes(fake.memory)
                if after != memory:
                    changes = [[at, old, new] for at, (old, new) in enumerate(zip(memory, after)) if old != new]
                    self.event("changes", json.dumps({"time": fake.now(), "changes": changes}))
                    memory = after
            elif bulk:
                i += 1
                self.event("values", f'{{"time": {fake.now():.3f}, "values": {bulk[i % len(bulk)]}}}')
            else:
                with fake.lock:
                    entries = [fake.entry(name) for name in names]
                fresh = [entry for entry in entries if told.get(entry["name"]) != entry["raw"]]
                told |= {entry["name"]: entry["raw"] for entry in fresh}
                if fresh:
                    self.event("values", json.dumps({"time": fake.now(), "values": fresh}))
            due += 1 / rate
            time.sleep(max(0.0, due - time.monotonic()))


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        """A browser that goes away in the middle of an answer is nothing to tell of."""


def serve(port=0, every=None):
    """Starts a fake web cockpit in a thread; returns it, with its address as `url`."""
    server = Server(("127.0.0.1", port), Handler)
    server.fake = Fake(every)
    server.url = f"http://127.0.0.1:{server.server_address[1]}/"
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server


if __name__ == "__main__":
    words = sys.argv[1:]
    every = float(words[words.index("--every") + 1]) if "--every" in words else None
    print(f"Web cockpit: {serve(int(words[0]) if words and words[0].isdigit() else 8440, every).url}", flush=True)
    threading.Event().wait()
