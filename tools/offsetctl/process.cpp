#include "process.h"

namespace ctl {

std::vector<std::string> CutLines(std::string* text) {
  std::vector<std::string> lines;
  size_t begin = 0;
  for (size_t end = 0; (end = text->find('\n', begin)) != std::string::npos; begin = end + 1) {
    std::string line = text->substr(begin, end - begin);
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  text->erase(0, begin);
  return lines;
}

void LimitText(std::string* text) {
  constexpr size_t longest = size_t{1} << 20;
  if (text->size() > longest) text->resize(longest);
}

}  // namespace ctl
