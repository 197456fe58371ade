// Inner interface of the refresh cycles: deriving the readers from the catalogue. Simulator's thread.
#pragma once
#include <vector>

struct Laid;

// Puts the rows of a cycle in another order of running; a test's way to see that none depends on another.
using RowOrder = void (*)(std::vector<Laid>* rows);

// Derives the reader groups of every cycle. At start, after the look-ups.
void BuildReaders(RowOrder order = nullptr);
// Takes the handles anew and lays everything out again: at enable, and when an aircraft's adapter was loaded or
// has gone.
void BindReaders();
