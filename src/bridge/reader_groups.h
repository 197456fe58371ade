// Inner interface of the refresh cycles: building the readers from the catalogue. Simulator's thread.
#pragma once

// Derives the reader groups of every cycle. At start, after the look-ups.
void BuildReaders();
// Makes every reader store at its next run, whatever it stored before (at enable).
void ForgetStoredValues();
