"""The client for other computers, and for this one on Linux: a mirror kept by UDP, writes by TCP."""
import logging
import select
import socket
import struct
import sys
import threading
import time
from typing import Callable, List, Optional

from . import frames
from .client import Client
from .errors import Disconnected, NoServer, Refused
from .mirror import Mirror

GROUP, GROUP_PORT = "239.192.0.10", 54942
SILENCE = 5.0  # without a datagram: blocks are asked for; twice that: the connection is given up
RECONNECT = 2.0
_log = logging.getLogger("tavrix")


def find(seconds: float = 2.5, at_least: int = 1) -> List[str]:
    """Addresses of the servers that announce themselves, in the order heard. The server's own computer may hear none."""
    listener = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    found, end = [], time.monotonic() + seconds
    with listener:
        try:
            listener.bind(("", GROUP_PORT))
        except OSError:  # a server here has the port: this computer hears no announcements
            return found
        joined = 0
        for index, _ in socket.if_nameindex():
            card = struct.pack("!I", index) if sys.platform == "win32" else bytes(4) + struct.pack("@i", index)
            try:
                listener.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, socket.inet_aton(GROUP) + card)
                joined += 1
            except OSError:  # a card without multicast
                pass
        while joined and len(found) < at_least and time.monotonic() < end:
            listener.settimeout(max(end - time.monotonic(), 0.001))
            try:
                datagram, (address, _) = listener.recvfrom(1000)
            except OSError:
                break
            if frames.payload_of(datagram) is not None and datagram[0] == frames.ANNOUNCEMENT and address not in found:
                found.append(address)
    return found


class NetworkClient(Client):
    """Keeps its copy of the memory by a thread of its own, which also repairs it and connects again when it must."""

    def __init__(self, host: str, timeout: float = 10.0, on_connection: Optional[Callable[[bool], None]] = None):
        """`on_connection(True or False)` is called from the client's thread when the connection is there and gone; what
        it raises goes to the log "tavrix"."""
        super().__init__()
        self.host, self._on_connection = host, on_connection
        self.mirror = Mirror()
        self._changes = 0  # how often something has changed
        self._lock = threading.Condition()
        self._udp = self._tcp = None
        self._address = self._resolve()
        self._open(timeout)
        self._thread = threading.Thread(target=self._work, name="tavrix", daemon=True)
        self._thread.start()
        if not self._wait(lambda: self.mirror.complete or self._tcp is None, timeout):
            self.close()
            raise NoServer(f"{host}: connected, but its datagrams do not come: does a firewall here let UDP in from "
                           "port 65100?")
        if not self.mirror.complete:
            self.close()
            raise Refused(f"{host} closed the connection at once: is this computer among its \"Allowed clients\" "
                          "(TAVRIX.ini)?")

    def _resolve(self):
        try:
            return socket.gethostbyname(self.host)
        except OSError as error:
            raise NoServer(f"{self.host}: no such host ({error})") from None

    # --- Connection ---------------------------------------------------------------------------------------------
    def _open(self, timeout):
        """Both sockets with one port number, the datagrams' first: no block is missed."""
        for attempt in range(20):
            tcp = udp = None
            try:
                tcp, udp = socket.socket(), socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
                tcp.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
                udp.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
                tcp.bind(("", 0))
                udp.bind(("", tcp.getsockname()[1]))
                break
            except OSError as error:  # somebody else has the number for UDP
                for each in (tcp, udp):
                    if each is not None:
                        each.close()
                if attempt == 19:
                    raise NoServer(f"{self.host}: the system gives no sockets: {error}") from None
        try:
            tcp.settimeout(timeout)
            tcp.connect((self._address, frames.PORT))
        except OSError as error:
            tcp.close(), udp.close()
            raise NoServer(f"{self.host} port {frames.PORT}: {error}: does the simulator run there, with this address as "
                           "\"Server Address\" in TAVRIX.ini, and are fewer than eight clients connected?") from None
        udp.setblocking(False)
        with self._lock:
            self.mirror.restart(time.monotonic())
            self._tcp, self._udp = tcp, udp

    def _drop(self):
        with self._lock:
            tcp, udp, self._tcp, self._udp = self._tcp, self._udp, None, None
            self._lock.notify_all()
        for each in (tcp, udp):
            if each is not None:
                each.close()

    def _work(self):
        told = False
        while not self.closed:
            if self._tcp is None:
                self._tell(False, told)
                told = False
                time.sleep(RECONNECT)
                try:
                    if not self.closed:
                        self._open(3.0)
                except (NoServer, OSError):
                    continue
                if self.closed:
                    self._drop()
                    return
                continue
            told = self._tell(True, told) if self.mirror.complete else told
            try:
                self._receive()
            except (OSError, ValueError):  # closed meanwhile, or reset
                self._drop()
            except Exception:  # a system that has no more threads, say
                _log.exception("%s: the connection is given up and tried again", self.host)
                self._drop()

    def _tell(self, connected, told):
        if connected != told and self._on_connection is not None:
            try:
                self._on_connection(connected)
            except Exception:
                _log.exception("on_connection(%s) has failed", connected)
        return connected

    def _receive(self):
        udp, tcp = self._udp, self._tcp
        if tcp is None:
            return None
        readable, _, _ = select.select([udp, tcp], [], [], 0.25)
        now = time.monotonic()
        if udp in readable:
            with self._lock:
                changed = False
                try:
                    for _ in range(64):
                        datagram, sender = udp.recvfrom(65536)
                        if sender == (self._address, frames.SENDER_PORT):
                            changed |= self.mirror.take(datagram, now) != ()
                except BlockingIOError:
                    pass
                if changed:
                    self._changes += 1
                    self._lock.notify_all()
        if tcp in readable and not tcp.recv(4096):
            return self._drop()
        if self.mirror.wants_blocks(now):
            self._ask_for_blocks(now)
        silent = now - self.mirror.last_datagram
        if silent > 2 * SILENCE:
            self._drop()
        elif silent > SILENCE and now - self.mirror.asked > SILENCE:
            self._ask_for_blocks(now)
        return None

    def _ask_for_blocks(self, now):
        """A second connection makes the server send them to everybody. In a thread: a host that is gone takes its time."""
        self.mirror.ask(now)

        def ask():
            try:
                socket.create_connection((self._address, frames.PORT), 3.0).close()
            except OSError:
                pass
        threading.Thread(target=ask, name="tavrix blocks", daemon=True).start()

    def _hurry(self):
        now = time.monotonic()
        if now - self.mirror.asked >= 1.0:
            self._ask_for_blocks(now)

    # --- State --------------------------------------------------------------------------------------------------
    @property
    def connected(self):
        return self._tcp is not None

    @property
    def ready(self):
        """Whether the copy of the memory is whole."""
        return self._tcp is not None and self.mirror.complete

    @property
    def _can_call_back(self):
        return self.ready and self.mirror.has_frames

    @property
    def age(self):
        """Seconds since the simulator's last frame was seen; above 1 what is read is old."""
        return self.mirror.age(time.monotonic())

    @property
    def alive(self):
        """Whether the simulator's frames run."""
        return self.ready and self.age < 1.0

    def close(self):
        self.closed = True
        self._drop()

    # --- Data -----------------------------------------------------------------------------------------------------
    def _wait(self, condition, timeout):
        with self._lock:
            return self._lock.wait_for(lambda: condition() or self.closed, timeout)

    def _mark(self):
        return self._changes

    def _wait_for_change(self, timeout, mark):
        self._wait(lambda: self._changes != mark, timeout)

    def read_bytes(self, *places):
        frames.check(places)
        with self._lock:
            return [bytes(self.mirror.memory[at:at + size]) for at, size in places]

    def write_bytes(self, *places):
        self._send(frames.write_records(places))

    def ask(self, offset):
        """Makes the server fill in what it fills in for who asks (`simulator_folder`); it comes with the changes."""
        self._send([frames.read_record(offset.offset, offset.size)])

    def _send(self, records):
        if self.closed:
            raise Disconnected("this client is closed")
        tcp = self._tcp
        if tcp is None:
            raise Disconnected(f"{self.host}: the connection is gone; it is tried again every {RECONNECT:g} s")
        try:
            for each in frames.requests(records):
                tcp.sendall(each)
        except OSError as error:
            raise Disconnected(f"{self.host}: {error}; the connection is tried again every {RECONNECT:g} s") from None
