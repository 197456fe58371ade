// Dotted IPv4 addresses as text. Pure functions, any thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// Takes "192.168.0.1" apart: four decimal numbers up to 255, nothing else. Returns true, or false for anything
// that is no such address.
bool ParseAddress(const char* text, uint32_t* ip);
std::string AddressText(uint32_t ip);
// Address of all computers whose addresses begin with the same three numbers: 10.0.5.7 gives 10.0.5.255.
uint32_t BroadcastAddress(uint32_t ip);
