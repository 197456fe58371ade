#include "process.h"

namespace ctl {

std::vector<std::string> CutLines(std::string* text) {
  std::vector<std::string> lines;
  for (size_t end = 0; (end = text->find('\n')) != std::string::npos; text->erase(0, end + 1)) {
    std::string line = text->substr(0, end);
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

}  // namespace ctl
