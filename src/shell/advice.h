// Lines of our own that tell the user which addresses to put where.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What to tell about this computer's addresses when `configured` is the server address of the settings. Pure.
std::string AddressAdvice(const std::vector<uint32_t>& own, std::string_view configured);
// Logs it. Simulator's thread, at enable in server mode, after OpenSocketLibrary.
void LogAddresses(const char* configured);
