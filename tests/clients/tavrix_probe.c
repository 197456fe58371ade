/* The C client library driven by lines on the standard input: a line of answer each. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tavrix.h"

static void change(tavrix* sim, enum tavrix_offset offset, double value, void* own) {
  (void)sim, (void)own;
  printf("changed %s %g, ", tavrix_info_of(offset)->name, value);
}

static void end(tavrix* sim, enum tavrix_offset offset, double value, void* own) {
  (void)offset, (void)value, (void)own;
  tavrix_close(sim);
  printf("writes %d, ", tavrix_set(sim, TAVRIX_COM1, 118.7));
}

static void print_bytes(const uint8_t* bytes, unsigned size) {
  unsigned i;
  for (i = 0; i < size; ++i) printf("%02X", bytes[i]);
}

static void code(const char* name, const char* hex) {
  const enum tavrix_offset offset = tavrix_by_name(name);
  uint8_t bytes[256] = {0}, back[256] = {0};
  unsigned i, byte;
  double value;
  for (i = 0; hex[2 * i]; ++i) bytes[i] = (uint8_t)(sscanf(hex + 2 * i, "%2x", &byte) == 1 ? byte : 0);
  value = tavrix_decode(offset, bytes);
  if (tavrix_encode(offset, value, back) != 0) printf("%s ", tavrix_error(NULL));
  printf("%.17g ", value);
  print_bytes(back, tavrix_info_of(offset)->size);
}

int main(int count, char** words) {
  tavrix* sim = NULL;
  char line[1024], verb[16], name[64], more[512];
  while (fgets(line, sizeof line, stdin)) {
    const int got = sscanf(line, "%15s %63s %511s", verb, name, more);
    const enum tavrix_offset offset = got > 1 ? tavrix_by_name(name) : TAVRIX_OFFSETS;
    const double value = got > 2 ? atof(more) : 0;
    int result = 0;
    if (strcmp(verb, "connect") == 0) {
      sim = tavrix_connect(got > 1 ? name : count > 1 ? words[1] : NULL, 10000);
      result = sim == NULL;
    } else if (strcmp(verb, "code") == 0) {
      code(name, more);
    } else if (strcmp(verb, "encode") == 0) {
      uint8_t bytes[256];
      if (tavrix_encode(offset, value, bytes) != 0) {
        printf("%s", tavrix_error(NULL));
      } else {
        print_bytes(bytes, tavrix_info_of(offset)->size);
      }
    } else if (sim == NULL) {
      printf("not connected");
    } else if (strcmp(verb, "get") == 0) {
      printf("%.9g", tavrix_get(sim, offset));
    } else if (strcmp(verb, "text") == 0) {
      printf("%s", tavrix_get_text(sim, offset));
    } else if (strcmp(verb, "set") == 0) {
      result = tavrix_set(sim, offset, value);
    } else if (strcmp(verb, "settext") == 0) {
      result = tavrix_set_text(sim, offset, more);
    } else if (strcmp(verb, "confirm") == 0) {
      result = tavrix_set_confirmed(sim, offset, value, 3000);
    } else if (strcmp(verb, "watch") == 0) {
      result = tavrix_on_change(sim, offset, change, NULL);
    } else if (strcmp(verb, "end") == 0) {
      result = tavrix_on_change(sim, offset, end, NULL);
    } else if (strcmp(verb, "poll") == 0) {
      const int polled = tavrix_poll(sim, atoi(name));
      if (polled == TAVRIX_CLOSED) sim = NULL;
      printf("%d", polled);
    } else if (strcmp(verb, "bytes") == 0) {
      uint8_t bytes[64];
      result = tavrix_read_bytes(sim, (uint32_t)strtoul(name, NULL, 0), sizeof bytes, bytes);
      if (result == 0) print_bytes(bytes, sizeof bytes);
    } else if (strcmp(verb, "alive") == 0) {
      tavrix_poll(sim, 0);
      printf("%d", tavrix_alive(sim));
    } else if (strcmp(verb, "counters") == 0) {
      const struct tavrix_counters counters = tavrix_counters_of(sim);
      printf("%u %u %u", counters.datagrams, counters.suspicions, counters.repaired);
    }
    if (result != 0) printf("error: %s", tavrix_error(sim));
    puts("");
    fflush(stdout);
  }
  tavrix_close(sim);
  return 0;
}
