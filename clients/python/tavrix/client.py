"""What both kinds of client can do: read and write by name, alone or many at once, and call back on changes."""
import logging
import time
from typing import Any, Callable, Dict, List, Optional, Tuple, Union, overload

from .errors import Disconnected, NotConfirmed, NotWritable
from .offset import Offset, Value

DEFAULT_CONFIRMATION = 2.0  # seconds
_log = logging.getLogger("tavrix")


class _Watch:
    def __init__(self, offset, callback):
        self.offset, self.callback, self.last, self.is_on = offset, callback, None, True


class Client:
    """Use `tavrix.connect`. All methods may be called from any thread; callbacks run inside `poll` and `run`."""

    def __init__(self):
        self._watches = []
        self.closed = False

    # --- Of each kind -----------------------------------------------------------------------------------
    def read_bytes(self, *places: Tuple[int, int]) -> List[bytes]:
        """The bytes at each (offset, size), as a list."""
        raise NotImplementedError

    def write_bytes(self, *places: Tuple[int, bytes]) -> None:
        """Writes (offset, bytes), in order."""
        raise NotImplementedError

    def _mark(self):
        """What `_wait_for_change` counts from."""
        return None

    def _wait_for_change(self, timeout, mark):
        """Returns when something may have changed since the mark, or after the time."""
        raise NotImplementedError

    def _hurry(self):
        """A confirmation is late."""

    # --- Values ----------------------------------------------------------------------------------------------
    @overload
    def read(self, offset: Offset[Value]) -> Value: ...

    @overload
    def read(self, *offsets: Offset[Any]) -> Tuple[Any, ...]: ...

    def read(self, *offsets):
        """The value of an offset, or those of several as a tuple."""
        found = self.read_bytes(*((each.offset, each.size) for each in offsets))
        values = tuple(each.decode(data) for each, data in zip(offsets, found))
        return values[0] if len(values) == 1 else values

    @overload
    def write(self, offset: Offset[Value], value: Value, confirm: Union[None, bool, float] = None) -> Optional[bool]: ...

    @overload
    def write(self, offset: Dict[Offset[Any], Any], *, confirm: Union[None, bool, float] = None) -> Optional[bool]: ...

    def write(self, offset, value=None, confirm=None):
        """Writes a value, or a dictionary {offset: value} in one request.

        `confirm` (True or seconds): waits until the server shows the values. Returns True then, None when one of
        them never shows (a request that goes back to 0); raises NotConfirmed when the time is over."""
        seconds = DEFAULT_CONFIRMATION if confirm is True else None if confirm is False else confirm
        if seconds is not None and not seconds >= 0:
            raise ValueError(f"confirm={confirm}: a number of seconds or True")
        values = offset if isinstance(offset, dict) else {offset: value}
        places = []
        for each, wanted in values.items():
            if each.write != "yes":
                raise NotWritable(f"{each.name} ({each.offset:#06x}) is not for writing: {each.meaning}")
            places.append((each, each.encode(wanted)))
        self.write_bytes(*((each.offset, data) for each, data in places))
        return None if seconds is None else self._confirm(places, seconds)

    def _confirm(self, places, seconds):
        end = time.monotonic() + seconds
        hurried = False
        while True:
            mark = self._mark()
            shown = self.read_bytes(*((each.offset, each.size) for each, _ in places))
            answers = [each.is_shown(data, found) for (each, data), found in zip(places, shown)]
            if False not in answers:
                return None if None in answers else True
            left = end - time.monotonic()
            if left <= 0:
                (each, data), found = next((place, found) for place, found, answer in zip(places, shown, answers)
                                           if answer is False)
                raise NotConfirmed(f"{each.name}: wrote {each.decode(data)!r}, the server shows {each.decode(found)!r} "
                                   f"after {seconds:g} s: the simulator has not taken it, or the server lets nobody "
                                   "write (\"Network writes\" in TAVRIX.ini)")
            if not hurried and left < seconds / 2:
                hurried = True
                self._hurry()
            self._wait_for_change(min(left, 0.1), mark)

    def __getitem__(self, offset: Offset[Value]) -> Value:
        return self.read(offset)

    def __setitem__(self, offset: Offset[Value], value: Value) -> None:
        self.write(offset, value)

    # --- Changes -------------------------------------------------------------------------------------------------
    def on_change(self, offset: Offset[Value], callback: Callable[[Value], Any]) -> Callable[[], None]:
        """Calls `callback(value)` from `poll` and `run`, first with the present value. Returns a function that ends it.

        What a callback raises comes out of `poll` and `run` once the others have been called."""
        watch = _Watch(offset, callback)
        self._watches.append(watch)

        def end():
            if watch.is_on:
                watch.is_on = False
                self._watches.remove(watch)
        return end

    def poll(self, timeout: float = 0.0) -> int:
        """Calls the callbacks of what has changed, waiting so long for a change. Returns how many were called."""
        mark = self._mark()
        called = self._call_back()
        if called == 0 and timeout > 0:
            self._wait_for_change(timeout, mark)
            called = self._call_back()
        return called

    @property
    def _can_call_back(self):
        return self.ready

    def _call_back(self):
        called, failure = 0, None
        watched = list(self._watches)
        if not watched or self.closed or not self._can_call_back:
            return 0
        try:
            found = self.read_bytes(*((watch.offset.offset, watch.offset.size) for watch in watched))
        except Disconnected:  # since the look
            return 0
        for watch, data in zip(watched, found):
            if data == watch.last or not watch.is_on or self.closed:
                continue
            watch.last = data
            called += 1
            try:
                watch.callback(watch.offset.decode(data))
            except Exception as error:  # the others are called all the same
                if failure is not None:
                    _log.exception("a callback of %s has failed, too", watch.offset.name)
                failure = failure or error
        if failure is not None:
            raise failure
        return called

    def run(self, seconds: Optional[float] = None) -> None:
        """Calls the callbacks until the time is over, `close` is called or Ctrl-C comes, which ends it without a word."""
        end = None if seconds is None else time.monotonic() + seconds
        try:
            while not self.closed and (end is None or time.monotonic() < end):
                self.poll(0.25 if end is None else max(0.0, min(0.25, end - time.monotonic())))
        except KeyboardInterrupt:
            pass

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

