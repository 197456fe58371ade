// The ATC number and the tail number: kept in the settings file, shown in the offset memory, where clients may
// write over them. Simulator's thread, no lock held.
#pragma once
#include <cstdint>

// Puts both from the settings into the offset memory: a client compares with what it reads there, and so does
// the dispatcher. At enable, before the locks exist.
void PublishAtcTexts();
// Takes texts that clients have written over into the settings, where they count at once and wait for being
// saved; `now` is monotonic time in ns. The write cycle does it every frame, disable once more at its end, when
// nobody writes any more and the offset lock is still there.
void TakeAtcTexts(int64_t now);
