// What clients on the network may do, by the user's settings: who may come at all, and whether they may write.
// Set at enable, before the threads of the room run; read by those.
#pragma once
#include <cstdint>
#include <string>

// Takes "Allowed clients", addresses and networks like 192.168.0.0/24 separated by commas or blanks (nothing:
// everybody), and "Network writes". An entry that is neither gets a log line and lets nobody in. Simulator's
// thread.
void PreparePermissions(const std::string& allowedClients, bool networkWrites);
// Any thread.
bool IsClientAllowed(uint32_t ip);
bool AreNetworkWritesAllowed();
// The first of the two as it is in force, for the log: "everyone", "nobody", or the list.
std::string AllowedClientsText();

// What was refused; each kind has a line of its own.
enum class Refusal { Client, Write };
// Tells of a refusal, at most once a minute for each client and kind. Any thread, with no lock held.
void LogRefusal(Refusal refusal, uint32_t ip);
