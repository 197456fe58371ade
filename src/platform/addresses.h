// IPv4 addresses that this computer has.
#pragma once
#include <cstdint>
#include <vector>

// The addresses of the network interfaces that are up (192.168.0.10 is 0xC0A8000A), each once, without those
// that mean this computer alone (127.x.x.x); empty when the system does not tell. After OpenSocketLibrary. Any
// thread.
std::vector<uint32_t> ListAddresses();
