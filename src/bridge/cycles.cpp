#include "bridge/cycles.h"

#include "bridge/reader_groups.h"
#include "bridge/writer_list.h"

void BuildCycles() {
  BuildReaders();
  BuildWriters();
}
