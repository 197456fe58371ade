"""A copy of the offset memory, kept by datagrams, and what it knows about those that were lost.

Nothing numbers the datagrams. Three things tell of a loss: a block that has not come a second after it was asked for; a
block with bytes that neither the copy has nor the next changes tell; and the frame counter `activity`, which
has run on further than the changes usually tell. New blocks are asked for then, at most once a second, and more
rarely while they find nothing wrong."""
import struct

from . import frames

ACTIVITY = 0x337E
PATIENCE = 1.0  # seconds until blocks count as lost, and between two requests
SETTLING = 0.3  # a byte that a block tells before the changes do is told by them within this
LONGEST_PAUSE = 60.0


class Mirror:
    """No thread and no socket of its own: the owner hands in datagrams and times, and holds a lock around both."""

    def __init__(self):
        self.memory = bytearray(frames.MEMORY_SIZE)
        self.datagrams = self.malformed = self.suspicions = self.repaired = 0
        self.restart(0.0)

    def restart(self, now):
        """A new connection: nothing is known, all blocks are on their way."""
        self.missing = set(range(frames.BLOCKS))  # never seen on this connection
        self.has_frames = False  # until then the blocks are those of a server that has not filled them in yet
        self._awaited = set()  # asked for since
        self.last_datagram = self.last_activity = self.asked = now
        self._suspected, self._pause, self._unsettled = False, PATIENCE, {}
        self._last_change, self._interval, self._advance = None, 0.02, 1.0

    @property
    def complete(self):
        return not self.missing

    def take(self, datagram, now):
        """Applies a datagram; returns the offsets that it told of, None for a whole block."""
        parts = frames.payload_of(datagram)
        if parts is None:
            self.malformed += 1
            return ()
        kind, payload = parts
        self.datagrams += 1
        self.last_datagram = now
        if kind == frames.CHANGES:
            return self._take_changes(payload, now)
        self._last_change = None  # no changes are told between blocks: the next ones may be many
        if frames.FIRST_BLOCK <= kind < frames.SPARE_BLOCK and len(payload) == frames.BLOCK_SIZE:
            return self._take_block(kind - frames.FIRST_BLOCK, payload, now)
        return ()

    def _take_changes(self, payload, now):
        memory, unsettled, changed = self.memory, self._unsettled, []
        before = memory[ACTIVITY] | memory[ACTIVITY + 1] << 8
        for bank, low, value in struct.iter_unpack("<BxHBx", payload[:len(payload) // 6 * 6]):
            at = (bank & 1) << 16 | low
            memory[at] = value
            changed.append(at)
            if unsettled:
                unsettled.pop(at, None)
        advance = ((memory[ACTIVITY] | memory[ACTIVITY + 1] << 8) - before) & 0xFFFF
        if advance:
            if before and 0 not in self.missing:  # the changes of a whole frame are there
                self.has_frames = True
            self.last_activity = now
            if self._last_change is not None and self.complete:
                self._judge(now - self._last_change, advance)
            self._last_change = now
        return changed

    def _judge(self, interval, advance):
        """Whether a datagram is missing between the last two: more frames and more time than usual."""
        if interval > 1.7 * self._interval and advance >= 1.7 * self._advance and advance < 0x8000:
            self._suspect()
        else:
            self._interval += 0.05 * (min(interval, 0.5) - self._interval)
            self._advance += 0.05 * (advance - self._advance)

    def _suspect(self):
        self.suspicions += 1
        self._suspected = True

    def _take_block(self, block, payload, now):
        first = block * frames.BLOCK_SIZE
        self._awaited.discard(block)
        if block == 0 and payload[ACTIVITY] | payload[ACTIVITY + 1]:
            self.has_frames = True
        old = self.memory[first:first + frames.BLOCK_SIZE]
        if old == payload and block not in self.missing:
            return ()
        self.memory[first:first + frames.BLOCK_SIZE] = payload
        if block in self.missing:
            self.missing.discard(block)
            return None
        differing = [first + at for at, (a, b) in enumerate(zip(old, payload)) if a != b]
        for at in differing:
            self._unsettled[at] = now
        return differing

    def _settle(self, now):
        lost = [at for at, since in self._unsettled.items() if now - since > SETTLING]
        for at in lost:
            del self._unsettled[at]
        if lost:
            self.repaired += len(lost)
            self._pause = PATIENCE
            if self.asked < now - SETTLING - 0.5:  # found by a block that came by itself: others may hold more
                self._suspect()

    def wants_blocks(self, now):
        """Whether to ask for blocks now; the owner that does calls `ask`."""
        self._settle(now)
        if self.missing:
            return now - self.asked >= PATIENCE
        return (self._suspected or bool(self._awaited)) and now - self.asked >= self._pause

    def ask(self, now):
        self.asked = now
        if self.complete:
            self._awaited = set(range(frames.BLOCKS))
            self._pause = min(self._pause * 2, LONGEST_PAUSE)  # until they have found something
        self._suspected = False

    def age(self, now):
        """Seconds since the simulator's last frame was seen."""
        return now - self.last_activity
