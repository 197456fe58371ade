// Files of an installation. Any thread.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace ctl {

bool IsFolder(const std::string& path);
bool IsFile(const std::string& path);
// With one separator between.
std::string Joined(const std::string& folder, const std::string& name);
// The plug-in's folder, when `folder` is that one or X-Plane's; "" when it is neither.
std::string PluginFolderIn(const std::string& folder);
// Replaces a file's text at one stroke, through a file beside it. Returns true, or false when it cannot be
// written: the file is as before then.
bool WriteTextFile(const std::string& path, const std::string& text);
// Puts a file into the place of another. Returns true, or false when nothing was moved.
bool MoveOver(const std::string& from, const std::string& to);
// What lies in a folder, hidden names left out; nothing when it cannot be looked into.
std::vector<std::string> NamesIn(const std::string& folder);
// Whether an open file has still that name: on Windows it always has. False when somebody has removed, renamed
// or replaced it.
bool IsStillAt(FILE* file, const std::string& path);
// Where the running program lies; "." when the system does not tell.
std::string ProgramFolder();

// Takes a file as a lock that other processes respect, one that was left behind longer than `staleSeconds` ago,
// too. Returns true, or false when somebody else has it or the file cannot be made.
bool TakeLock(const std::string& path, double staleSeconds);
void GiveLock(const std::string& path);

// What kind of program file it is, by its headers. Damaged: they name parts that lie behind the file's end.
enum class BinaryKind { Missing, Other, Damaged, Windows32, Windows64, Linux64 };
BinaryKind KindOfBinary(const std::string& path);
// The same of a file's bytes.
BinaryKind KindOfBytes(const std::vector<uint8_t>& bytes);
// Whether it is a build of this plug-in, by the signature within it.
bool IsThisPlugin(const std::string& path);

}  // namespace ctl
