"""One named offset: where it stands, and how its bytes become a value and a value its bytes."""
import enum
import math
import struct
from typing import Generic, Optional, TypeVar

Value = TypeVar("Value")

_CODES = {"u8": "<B", "s8": "<b", "u16": "<H", "s16": "<h", "u32": "<I", "s32": "<i", "s64": "<q", "f32": "<f", "f64": "<d"}


class Choice(enum.IntEnum):
    """A number out of a list. Numbers that the list does not have keep their value: newer simulators have more."""

    @classmethod
    def _missing_(cls, value):
        if not isinstance(value, int):
            return None
        member = int.__new__(cls, value)
        member._name_, member._value_ = f"UNLISTED_{value}", value
        return member


class Bits(enum.IntFlag):
    """Bits that stand for something each."""


class Offset(Generic[Value]):
    """A row of offsets.json. `decode` and `encode` need no connection."""

    __slots__ = ("name", "offset", "type", "size", "form", "unit", "numerator", "denominator", "bias", "low", "high",
                 "step", "write", "reads_back", "absolute", "share", "wraps", "choices", "meaning", "_code", "_full_turn")

    def __init__(self, name, offset, type, size, form, unit, scale, range, write, reads_back, tolerance, meaning, choices):
        self.name, self.offset, self.type, self.size, self.form, self.unit = name, offset, type, size, form, unit
        self.numerator, self.denominator, self.bias = scale
        self.low, self.high, self.step = range
        self.write, self.reads_back, self.meaning, self.choices = write, reads_back, meaning, choices
        self.absolute, self.share, self.wraps = tolerance
        self._code = _CODES.get(type)
        self._full_turn = unit == "deg" and self.low == 0 and self.high is not None and 359 < self.high < 360

    def __repr__(self):
        return f"<{self.name} {self.offset:#06x}:{self.type}>"

    def decode(self, data: bytes) -> Value:
        """The value that the bytes mean: bool, int, float, str, or one of the offset's choices."""
        if self.form == "Text":
            return bytes(data).split(b"\0", 1)[0].decode("utf-8", "replace")
        stored, = struct.unpack(self._code, data)
        if self.form == "Flag":
            return stored != 0
        if self.choices is not None:
            return self.choices(stored)
        if self.form == "Bcd":
            digits = 0
            for shift in (12, 8, 4, 0):
                digits = digits * 10 + (stored >> shift & 15)
            return (10000 + digits) / 100 if self.unit == "MHz" else digits
        if self.numerator == self.denominator == 1 and not self.bias:
            return stored
        return stored * self.numerator / self.denominator + self.bias

    def encode(self, value: Value) -> bytes:
        """The bytes of a value. Raises ValueError for one that the offset cannot hold."""
        if self.form == "Text":
            data = str(value).encode()
            if len(data) >= self.size:
                raise ValueError(f"{self.name}: {value!r} is longer than {self.size - 1} bytes")
            return data.ljust(self.size, b"\0")
        try:
            number = float(value)
        except (TypeError, ValueError, OverflowError):
            number = math.nan
        if not math.isfinite(number):
            raise ValueError(f"{self.name}: {value!r} is no number that it can hold")
        if (self.form == "Bits" or self.choices is not None) and not number.is_integer():
            raise ValueError(f"{self.name}: takes whole numbers, not {value}")
        if self.form == "Bits":
            stored = int(value)
        elif self.form == "Flag":
            stored = 1 if value else 0
        elif self.form == "Bcd":
            stored = self._digits(value, number)
        else:
            if self._full_turn:
                number %= 360
                number = number if number <= self.high else 0.0 if number > self.high + self.step / 2 else self.high
            slack = (self.step or 0) / 2
            below = self.low is not None and number < self.low - slack
            above = self.high is not None and number > self.high + slack
            if self.choices is None and (below or above):
                raise ValueError(f"{self._said(value)} is not within {self.low:g} to {self.high:g}"
                                 if self.low is not None and self.high is not None else
                                 f"{self._said(value)} is beyond what it takes")
            if self.type[0] == "f":
                stored = (number - self.bias) * self.denominator / self.numerator
                if math.isinf(stored):
                    raise ValueError(f"{self.name}: {value} does not fit {self.type}")
            elif self.numerator == self.denominator == 1 and not self.bias:
                stored = round(value)
            else:
                stored = round((number - self.bias) * self.denominator / self.numerator)
                if self.type == "s64":
                    stored = min(stored, 2 ** 63 - 1)
        try:
            return struct.pack(self._code, stored)
        except (struct.error, OverflowError):
            raise ValueError(f"{self.name}: {value} does not fit {self.type}") from None

    def _said(self, value):
        return f"{self.name}: {value} {self.unit}".rstrip()

    def _digits(self, value, number):
        """Four bits a digit. What does not fit behind the point is dropped, as radios show it: 118.025 is 118.02."""
        shown = math.floor(((number - 100) * 100 if self.unit == "MHz" else number) + 1e-6)
        most = round((self.high - 100) * 100) if self.unit == "MHz" else self.high
        if not 0 <= shown <= 9999 or any(a > b for a, b in zip(f"{shown:04d}", f"{most:04d}")):  # 7777: octal digits
            raise ValueError(f"{self._said(value)} is not within {self.low:g} to {self.high:g}, digit by digit")
        return int(f"{shown:04d}", 16)

    def is_shown(self, wanted: bytes, shown: bytes) -> Optional[bool]:
        """Whether the bytes `shown` are what a server makes of the written bytes `wanted`; None when they never tell."""
        if self.reads_back in ("request", "none"):
            return None
        if wanted == shown:
            return True
        if self.form == "Text":
            return wanted.split(b"\0")[0] == bytes(shown).split(b"\0")[0]
        written, present = self.decode(wanted), self.decode(shown)
        if self.form != "Number":
            return written == present
        off = abs(present - written)
        if self.wraps or self._full_turn:
            off = min(off, abs(360 - off))
        is_scaled = self.numerator != self.denominator or self.bias
        rounding = self.step * 1.01 if self.step and is_scaled else 0  # whole numbers come back as they are
        return off <= max(self.absolute, rounding) + self.share * abs(written)
