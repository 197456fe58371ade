/* The client library with doors for its fuzz target: it takes datagrams without a connection. */
#include "../clients/c/tavrix.c"

tavrix* client_begin(void);
void client_take(tavrix* sim, const uint8_t* datagram, int size, uint32_t now);
const uint8_t* client_memory(const tavrix* sim);
uint32_t client_missing(const tavrix* sim);

tavrix* client_begin(void) {
  static tavrix sim;
  memset(&sim, 0, offsetof(tavrix, datagram));
  sim.tcp = sim.udp = sim.asker = NO_SOCKET;
  forget(&sim, 0);
  return &sim;
}
void client_take(tavrix* sim, const uint8_t* datagram, int size, uint32_t now) {
  memcpy(sim->datagram, datagram, (size_t)size);
  take(sim, size, now);
  settle(sim, now);
}
const uint8_t* client_memory(const tavrix* sim) { return sim->memory; }
uint32_t client_missing(const tavrix* sim) { return sim->missing; }
