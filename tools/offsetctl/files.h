// Files of an installation. Any thread.
#pragma once
#include <cstdint>
#include <string>

namespace ctl {

bool IsFolder(const std::string& path);
bool IsFile(const std::string& path);
// With one separator between.
std::string Joined(const std::string& folder, const std::string& name);
// The plug-in's folder, when `folder` is that one or X-Plane's; "" when it is neither.
std::string PluginFolderIn(const std::string& folder);
// Replaces a file's text or adds to its end. Returns true, or false when it cannot be written.
bool WriteTextFile(const std::string& path, const std::string& text);
bool AppendToFile(const std::string& path, const std::string& text);

// What kind of program file it is, by its first bytes.
enum class BinaryKind { Missing, Other, Windows32, Windows64, Linux64 };
BinaryKind KindOfBinary(const std::string& path);

}  // namespace ctl
