/* A client for `offsetctl conform` on the C library. */
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "tavrix.h"

#define MOST 8

/* Takes what has come on standard input. Returns 0 at its end. */
static int take_orders(tavrix* sim) {
  static char text[1000];
  static size_t size;
  struct pollfd input = {0, POLLIN, 0};
  if (poll(&input, 1, 0) <= 0) return 1;
  ssize_t got = read(0, text + size, sizeof text - 1 - size);
  if (got <= 0) return 0;
  text[size += (size_t)got] = 0;
  for (char* end; (end = strchr(text, '\n')) != NULL; size = strlen(text)) {
    unsigned offset, number;
    if (sscanf(text, "write %x %u", &offset, &number) == 2) {
      uint16_t value = (uint16_t)number;
      tavrix_write_bytes(sim, offset, sizeof value, &value);
    }
    memmove(text, end + 1, strlen(end));
  }
  return 1;
}

int main(void) {
  unsigned offsets[MOST];
  int known[MOST], count = 0;
  for (char* word = strtok(getenv("TAVRIX_WATCH"), " "); word && count < MOST; word = strtok(NULL, " ")) {
    known[count] = -1;
    offsets[count++] = (unsigned)strtoul(word, NULL, 0);
  }
  tavrix* sim = tavrix_connect(getenv("TAVRIX_HOST"), 20000);
  if (!sim) return fprintf(stderr, "%s\n", tavrix_error(NULL)), 1;
  while (take_orders(sim)) {
    tavrix_poll(sim, 20);
    for (int i = 0; i < count && tavrix_connected(sim); ++i) {
      uint16_t value;
      if (tavrix_read_bytes(sim, offsets[i], sizeof value, &value) != TAVRIX_OK || value == known[i]) continue;
      known[i] = value;
      printf("0x%04X %d\n", offsets[i], value);
      fflush(stdout);
    }
  }
  tavrix_close(sim);
  return 0;
}
