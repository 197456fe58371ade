// Inner interface of the refresh cycles: building the readers from the catalogue. Simulator's thread.
#pragma once

// Derives the reader groups of every cycle. At start, after the look-ups.
void BuildReaders();
// Takes the handles from the registry anew and makes every reader convert and store at its next run,
// whatever it stored before: at enable, and when an aircraft's adapter was loaded or has gone.
void BindReaders();
