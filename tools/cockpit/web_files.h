// The files of the page, which are part of the program: cmake/embed_web.cmake writes the table.
#pragma once
#include <cstddef>
#include <span>
#include <string_view>

namespace ctl {

struct WebFile {
  const char* path;  // "/js/main.js"
  const char* type;
  const char* bytes;
  size_t size;
};
std::span<const WebFile> WebFiles();
// docs/offsets.json.
std::string_view OffsetsFile();

}  // namespace ctl
