#include "cockpit/folders.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <vector>

#include "offsetctl/recording.h"
#include "offsetctl/show.h"

namespace ctl {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t mostFileBytes = 32 << 20;
constexpr std::size_t titleWithin = 65536;  // bytes of a page

// Plain files of the folder with names that the server knows, by name. Links are left out: they may lead
// outside.
std::vector<fs::path> FilesIn(const std::string& folder) {
  std::vector<fs::path> files;
  std::error_code fault;
  fs::directory_iterator entry(fs::path(folder), fault);
  for (; !fault && entry != fs::directory_iterator(); entry.increment(fault)) {
    std::error_code unreadable;
    if (entry->symlink_status(unreadable).type() != fs::file_type::regular || unreadable) continue;
    if (IsFileName(entry->path().filename().string())) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string BytesOf(const fs::path& path, std::uintmax_t most) {
  std::string bytes;
  std::ifstream file(path, std::ios::binary);
  std::vector<char> part(65536);
  while (bytes.size() < most && file) {
    const auto wanted = std::min<std::uintmax_t>(part.size(), most - bytes.size());
    file.read(part.data(), static_cast<std::streamsize>(wanted));
    bytes.append(part.data(), static_cast<size_t>(file.gcount()));
  }
  return bytes;
}

// Where the page's <title begins that stands in no comment; npos when there is none.
size_t FindTitle(const std::string& lower) {
  for (size_t from = 0;;) {
    const size_t tag = lower.find("<title", from), comment = lower.find("<!--", from);
    if (comment >= tag) return tag;
    const size_t end = lower.find("-->", comment + 4);
    if (end == std::string::npos) return end;
    from = end + 3;
  }
}

struct Entity {
  std::string_view code;
  char letter;
};
constexpr Entity entities[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}};

std::string Decoded(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const auto entity = std::find_if(std::begin(entities), std::end(entities),
                                     [text](const Entity& known) { return text.starts_with(known.code); });
    const bool isKnown = entity != std::end(entities);
    plain += isKnown ? entity->letter : text.front();
    text.remove_prefix(isKnown ? entity->code.size() : 1);
  }
  return plain;
}

// What stands in <title>, in one line; "" when there is none.
std::string TitleOf(const std::string& page) {
  const std::string lower = LowerText(page);
  const size_t tag = FindTitle(lower);
  const size_t begin = tag == std::string::npos ? tag : lower.find('>', tag);
  const size_t end = begin == std::string::npos ? begin : lower.find("</title", begin);
  if (end == std::string::npos) return "";
  std::string title;
  for (const char letter : page.substr(begin + 1, end - begin - 1)) {
    const bool isBlank = letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
    if (!isBlank) title += letter;
    if (isBlank && !title.empty() && title.back() != ' ') title += ' ';
  }
  while (title.ends_with(' ')) title.pop_back();
  return Decoded(title);
}

// "2026-01-31T12:00:00Z".
std::string IsoText(fs::file_time_type time) {
  const auto since = time - fs::file_time_type::clock::now() + std::chrono::system_clock::now();
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(
          std::chrono::time_point_cast<std::chrono::system_clock::duration>(since).time_since_epoch())
          .count();
  const auto stamp = static_cast<std::time_t>(seconds);
  const std::tm* utc = std::gmtime(&stamp);  // NOLINT: one thread asks
  char text[32] = "";
  if (utc != nullptr) std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", utc);
  return text;
}

}  // namespace

bool IsPlainFile(const std::string& path) {
  std::error_code fault;
  return fs::symlink_status(path, fault).type() == fs::file_type::regular && !fault;
}

std::string PanelsJson(const std::string& folder) {
  std::string text = "{\"panels\":[";
  for (const fs::path& path : FilesIn(folder)) {
    const std::string name = path.filename().string();
    if (!LowerText(name).ends_with(".html")) continue;
    const std::string title = TitleOf(BytesOf(path, titleWithin));
    if (text.back() == '}') text += ',';
    text += "{\"file\":" + JsonString(name) + ",\"title\":" + JsonString(title.empty() ? name : title) + "}";
  }
  return text + "]}";
}

std::string RecordingsJson(const std::string& folder) {
  struct Found {
    fs::file_time_type modified;
    std::string json;
  };
  std::vector<Found> found;
  for (const fs::path& path : FilesIn(folder)) {
    const std::string start = BytesOf(path, recordingStartSize);
    if (!IsRecording(reinterpret_cast<const uint8_t*>(start.data()), start.size())) continue;
    std::error_code fault;
    const std::uintmax_t size = fs::file_size(path, fault);
    const fs::file_time_type modified = fs::last_write_time(path, fault);
    if (fault) continue;
    found.push_back({modified, "{\"file\":" + JsonString(path.filename().string()) +
                                   ",\"bytes\":" + std::to_string(size) +
                                   ",\"modified\":" + JsonString(IsoText(modified)) + "}"});
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Found& a, const Found& b) { return a.modified > b.modified; });
  std::string text = "{\"recordings\":[";
  for (const Found& one : found) text += (text.back() == '}' ? "," : "") + one.json;
  return text + "]}";
}

WebAnswer PanelFile(const std::string& folder, const std::string& name) {
  const Refusal missing = {404, "no such panel", "path",
                           "see /api/panels, and put files into the panels' folder"};
  const std::string type = TypeOfFile(name);
  if (!IsFileName(name) || type.empty()) return AnswerOf(missing);
  const fs::path path = fs::path(folder) / name;
  std::error_code fault;
  if (!IsPlainFile(path.string())) return AnswerOf(missing);
  if (fs::file_size(path, fault) > mostFileBytes || fault) {
    return AnswerOf({413, "the file has more than 32 MB", "path", "make it smaller"});
  }
  return {.type = type, .body = BytesOf(path, mostFileBytes)};
}

}  // namespace ctl
