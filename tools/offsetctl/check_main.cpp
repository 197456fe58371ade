// offsetctl check: its files and its output.
#include <cstdio>
#include <memory>

#include "check.h"
#include "commands.h"

namespace ctl {

namespace {

constexpr size_t largestFile = 64u << 20;

int Unreadable(const std::string& path) {
  return Report(exitNoAnswer, path + " cannot be read: check its name and whether you may read it");
}

}  // namespace

bool ReadTextFile(const std::string& path, std::string* text) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) return false;
  char part[16384];
  size_t length = 0;
  while ((length = std::fread(part, 1, sizeof part, file.get())) > 0 && text->size() <= largestFile) {
    text->append(part, length);
  }
  return std::ferror(file.get()) == 0 && text->size() <= largestFile;
}

int RunCheck(const Options& options) {
  const std::string& path = options.items[0];
  std::string text, log;
  if (!ReadTextFile(path, &text)) return Unreadable(path);
  if (!options.log.empty() && !ReadTextFile(options.log, &log)) return Unreadable(options.log);

  size_t problems = 0;
  for (const Finding& finding : CheckOffsetsFile(text, log, KnownOffsets())) {
    problems += finding.note ? 0 : 1;
    std::printf("%s:%u:%u: %s%s\n", path.c_str(), finding.line, finding.column, finding.note ? "note: " : "",
                finding.text.c_str());
  }
  std::printf("%s: %zu problem(s)\n", path.c_str(), problems);
  return problems == 0 ? 0 : 1;
}

}  // namespace ctl
