"""The client for the simulator's own computer, under Windows: request blocks in shared memory (docs/local-protocol.md)."""
import ctypes
import itertools
import os
import struct
import threading
import time

from . import frames
from .client import Client
from .errors import Disconnected, NoServer

CLASS, MESSAGE = b"KORLMAIN", b"KELDOMAR:IPC"
BLOCK_SIZE = 0x28000  # the whole memory in one read
PAGE_READWRITE, FILE_MAP_WRITE, SMTO_BLOCK = 4, 2, 1
POLL_PAUSE = 0.05
_numbers = itertools.count(1)


def _windows_calls():
    if not hasattr(ctypes, "WinDLL"):
        raise NoServer("local clients are for Windows: connect by the network here (tavrix.connect(\"127.0.0.1\"))")
    return ctypes.WinDLL("user32", use_last_error=True), ctypes.WinDLL("kernel32", use_last_error=True)


def _declare(user32, kernel32):
    pointer, word, text = ctypes.c_void_p, ctypes.c_uint32, ctypes.c_char_p
    for function, result, arguments in (
            (user32.FindWindowA, pointer, [text, text]),
            (user32.RegisterWindowMessageA, ctypes.c_uint, [text]),
            (user32.SendMessageTimeoutA, ctypes.c_ssize_t, [pointer, ctypes.c_uint, ctypes.c_size_t, ctypes.c_ssize_t,
                                                            ctypes.c_uint, ctypes.c_uint, ctypes.POINTER(ctypes.c_size_t)]),
            (kernel32.CreateFileMappingA, pointer, [pointer, pointer, word, word, word, text]),
            (kernel32.MapViewOfFile, pointer, [pointer, word, word, word, ctypes.c_size_t]),
            (kernel32.UnmapViewOfFile, ctypes.c_int, [pointer]),
            (kernel32.CloseHandle, ctypes.c_int, [pointer]),
            (kernel32.GlobalAddAtomA, ctypes.c_uint16, [text]),
            (kernel32.GlobalDeleteAtom, ctypes.c_uint16, [ctypes.c_uint16])):
        function.restype, function.argtypes = result, arguments


class LocalClient(Client):
    """Every read and write is a request of its own; many offsets at once cost hardly more than one."""

    def __init__(self, timeout=5.0, calls=None):
        super().__init__()
        self.timeout = timeout
        self._user32, self._kernel32 = calls or _windows_calls()
        _declare(self._user32, self._kernel32)
        self._lock = threading.Lock()
        self._window = None
        self._block = None  # handle, address, atom
        self._message = self._user32.RegisterWindowMessageA(MESSAGE)
        self._last_activity, self._activity_time = None, time.monotonic()
        self._find_window(NoServer)

    def _find_window(self, error=Disconnected):
        self._window = self._user32.FindWindowA(CLASS, CLASS)
        if not self._window:
            raise error("no simulator with TAVRIX runs in this Windows session")

    def _make_block(self):
        name = b"TAVRIXPY:%d:%d" % (os.getpid(), next(_numbers))
        handle = self._kernel32.CreateFileMappingA(ctypes.c_void_p(-1), None, PAGE_READWRITE, 0, BLOCK_SIZE, name)
        address = self._kernel32.MapViewOfFile(handle, FILE_MAP_WRITE, 0, 0, 0) if handle else None
        atom = self._kernel32.GlobalAddAtomA(name) if address else 0
        if not atom:
            if address:
                self._kernel32.UnmapViewOfFile(address)
            if handle:
                self._kernel32.CloseHandle(handle)
            raise OSError("Windows gives no shared memory for a request block")
        self._block = handle, address, atom

    def _request(self, records):
        """Serves the records in one request; returns the list as it came back."""
        data = b"".join(records) + bytes(4)
        if len(data) > BLOCK_SIZE:
            raise ValueError(f"a request of {len(data)} bytes is longer than a block of {BLOCK_SIZE}")
        with self._lock:
            if self.closed:
                raise Disconnected("this client is closed")
            if not self._window:
                self._find_window()
            if self._block is None:
                self._make_block()
            for attempt in (1, 2):
                served = ctypes.c_size_t(0)
                ctypes.memmove(self._block[1], data, len(data))
                started = time.monotonic()
                answered = self._user32.SendMessageTimeoutA(self._window, self._message, self._block[2], 0, SMTO_BLOCK,
                                                            int(self.timeout * 1000), ctypes.byref(served))
                if answered:
                    break
                if time.monotonic() - started >= self.timeout * 0.9:
                    # The plug-in may still use the block: it is left alone until the program ends.
                    self._block = None
                    raise Disconnected(f"no answer within {self.timeout:g} s (a loading screen?); a write may still be "
                                       "applied")
                if attempt == 2:
                    raise Disconnected("the simulator's window is gone")
                self._find_window()  # the simulator has been started anew
            if served.value != 1:
                raise Disconnected("the plug-in did not serve the request to its end: TAVRIX.txt tells why")
            return ctypes.string_at(self._block[1], len(data))

    @property
    def connected(self):
        return not self.closed and bool(self._user32.FindWindowA(CLASS, CLASS))

    @property
    def ready(self):
        return self.connected

    @property
    def age(self):
        """Seconds since the frame counter was seen to change, by calls of this property and `poll`."""
        activity, = struct.unpack("<H", self.read_bytes((0x337E, 2))[0])
        if activity != self._last_activity:
            self._last_activity, self._activity_time = activity, time.monotonic()
        return time.monotonic() - self._activity_time

    @property
    def alive(self):
        try:
            return self.age < 1.0
        except Disconnected:
            return False

    def read_bytes(self, *places):
        frames.check(places)
        answer, at, found = self._request([frames.read_record(*place) for place in places]), 0, []
        for _, size in places:
            found.append(answer[at + 16:at + 16 + size])
            at += 16 + size
        return found

    def write_bytes(self, *places):
        self._request(frames.write_records(places))

    def _wait_for_change(self, timeout, mark):
        time.sleep(min(timeout, POLL_PAUSE))

    def close(self):
        with self._lock:
            self.closed = True
            if self._block is not None:
                handle, address, atom = self._block
                self._kernel32.GlobalDeleteAtom(atom)
                self._kernel32.UnmapViewOfFile(address)
                self._kernel32.CloseHandle(handle)
                self._block = None
