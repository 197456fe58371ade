// The command line of offsetctl check, its files and its output.
#include <cstdio>
#include <memory>

#include "check.h"

namespace ctl {

namespace {

constexpr size_t largestFile = 64u << 20;

bool ReadFile(const std::string& path, std::string* text) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) return false;
  char part[16384];
  size_t length = 0;
  while ((length = std::fread(part, 1, sizeof part, file.get())) > 0 && text->size() <= largestFile) {
    text->append(part, length);
  }
  return std::ferror(file.get()) == 0 && text->size() <= largestFile;
}

int Usage(const char* problem) {
  std::fprintf(stderr, "offsetctl: %s: offsetctl check FILE [--log TAVRIX.txt]\n", problem);
  return 2;
}

int Unreadable(const std::string& path) {
  std::fprintf(stderr, "offsetctl: %s cannot be read: check its name and whether you may read it\n",
               path.c_str());
  return 1;
}

}  // namespace

int RunCheck(int argc, char** argv) {
  std::string path, logPath;
  for (int i = 0; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--log") {
      if (++i == argc) return Usage("--log needs the plug-in's log file");
      logPath = argv[i];
    } else if (word.starts_with("--log=")) {
      logPath = word.substr(6);
    } else if (word.size() > 1 && word[0] == '-') {
      return Usage(("check has no option " + word).c_str());
    } else if (!path.empty()) {
      return Usage("check takes one file");
    } else {
      path = word;
    }
  }
  if (path.empty()) return Usage("check needs a file");
  std::string text, log;
  if (!ReadFile(path, &text)) return Unreadable(path);
  if (!logPath.empty() && !ReadFile(logPath, &log)) return Unreadable(logPath);

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
