// Inner interface of the write cycle: deriving the writers and the dispatcher's widths from the catalogue.
// Simulator's thread, at start.
#pragma once

// Fixes the order of the writers (that of the catalogue) and fills the dispatcher's table.
void BuildWriters();
