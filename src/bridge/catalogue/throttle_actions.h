// What the starter rows hold beyond one write. Simulator's thread, with no lock held.
#pragma once

// Releases every starter button that a magneto write holds down. At disable; harmless when none is held.
void ReleaseStarters();
