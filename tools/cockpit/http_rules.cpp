#include "cockpit/http_rules.h"

#include <algorithm>

#include "offsetctl/show.h"

namespace ctl {

namespace {

constexpr char cookieName[] = "tavrix_token";

bool IsLetterOrDigit(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9');
}

int HexDigit(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
  return -1;
}

// In a query, + is a space.
bool Decode(std::string_view text, bool isQuery, std::string* plain) {
  for (size_t at = 0; at < text.size(); ++at) {
    char letter = text[at];
    if (letter == '%') {
      const int high = at + 2 < text.size() ? HexDigit(text[at + 1]) : -1;
      const int low = high >= 0 ? HexDigit(text[at + 2]) : -1;
      if (low < 0) return false;
      letter = static_cast<char>(high * 16 + low);
      at += 2;
    } else if (letter == '+' && isQuery) {
      letter = ' ';
    }
    if (letter == 0) return false;
    *plain += letter;
  }
  return true;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

struct FileType {
  std::string_view ending, type;
};
constexpr FileType fileTypes[] = {
    {"html", "text/html; charset=utf-8"},
    {"css", "text/css; charset=utf-8"},
    {"js", "text/javascript; charset=utf-8"},
    {"svg", "image/svg+xml"},
    {"png", "image/png"},
    {"jpg", "image/jpeg"},
    {"gif", "image/gif"},
    {"webp", "image/webp"},
    {"woff2", "font/woff2"},
    {"json", "application/json"},
    {"txt", "text/plain; charset=utf-8"},
};

constexpr std::string_view deviceNames[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};

// COM1 to COM9 and LPT1 to LPT9, too, with any ending.
bool IsDevice(std::string_view name) {
  std::string stem = LowerText(name.substr(0, name.find('.')));
  while (stem.ends_with(' ')) stem.pop_back();
  if (std::find(std::begin(deviceNames), std::end(deviceNames), stem) != std::end(deviceNames)) return true;
  return stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt")) && stem[3] >= '0' &&
         stem[3] <= '9';
}

}  // namespace

std::string LowerText(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

WebAnswer AnswerOf(const Refusal& refusal) {
  return {.status = refusal.status,
          .body = "{\"error\":" + JsonString(refusal.error) + ",\"where\":" + JsonString(refusal.where) +
                  ",\"remedy\":" + JsonString(refusal.remedy) + "}"};
}

bool ReadTarget(std::string_view text, Target* target) {
  *target = {};
  if (!text.starts_with('/')) return false;
  const size_t question = text.find('?');
  if (!Decode(text.substr(0, question), false, &target->path)) return false;
  if (question == std::string_view::npos) return true;
  for (std::string_view rest = text.substr(question + 1); !rest.empty();) {
    const std::string_view part = rest.substr(0, rest.find('&'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    if (part.empty()) continue;
    const size_t equals = part.find('=');
    std::string name, value;
    if (!Decode(part.substr(0, equals), true, &name)) return false;
    if (equals != std::string_view::npos && !Decode(part.substr(equals + 1), true, &value)) return false;
    target->query.emplace_back(name, value);
  }
  return true;
}

const std::string* Parameter(const Target& target, std::string_view name) {
  for (const auto& [key, value] : target.query) {
    if (key == name) return &value;
  }
  return nullptr;
}

const std::string* Header(const WebRequest& request, std::string_view name, bool* isOnce) {
  const std::string* found = nullptr;
  *isOnce = true;
  for (const auto& [key, value] : request.headers) {
    if (LowerText(key) != name) continue;
    *isOnce = found == nullptr;
    if (!*isOnce) return nullptr;
    found = &value;
  }
  return found;
}

void DropOwnHost(WebRequest* request) {
  bool isOnce = true;
  const std::string* host = Header(*request, "host", &isOnce);
  const std::string_view target = request->target;
  const std::string whole = "http://" + (host == nullptr ? "" : *host);
  if (host == nullptr || LowerText(target.substr(0, whole.size())) != LowerText(whole)) return;
  const std::string rest(target.substr(whole.size()));
  if (!rest.empty() && rest[0] != '/' && rest[0] != '?') return;
  request->target = rest.starts_with('/') ? rest : "/" + rest;
}

bool IsToken(std::string_view text) {
  const auto fits = [](char letter) {
    return IsLetterOrDigit(letter) || letter == '.' || letter == '_' || letter == '~' || letter == '-';
  };
  return text.size() >= 8 && text.size() <= 128 && std::all_of(text.begin(), text.end(), fits);
}

bool IsSameSecret(std::string_view a, std::string_view b) {
  volatile unsigned difference = a.size() == b.size() ? 0 : 1;
  for (size_t at = 0; at < a.size(); ++at) {
    const char other = b.empty() ? '\0' : b[at % b.size()];
    difference = difference | static_cast<unsigned char>(a[at] ^ other);
  }
  return difference == 0;
}

bool IsFromHere(const WebRequest& request, const Access& access, Refusal* refusal) {
  bool isOnce = true;
  const std::string* host = Header(request, "host", &isOnce);
  if (host == nullptr) {
    *refusal = {400, isOnce ? "the Host header is missing" : "there are two Host headers", "Host", "send one"};
    return false;
  }
  std::string name = LowerText(*host);
  const std::string port = ":" + std::to_string(access.port);
  const bool hasPort = name.ends_with(port);
  if (hasPort) name.resize(name.size() - port.size());
  const bool isOurs = std::find(access.hosts.begin(), access.hosts.end(), name) != access.hosts.end();
  if (!isOurs || (!hasPort && access.port != 80)) {
    *refusal = {403, "this server does not go by that name", "Host",
                "use the address that the program has printed"};
    return false;
  }
  const std::string* origin = Header(request, "origin", &isOnce);
  if (isOnce && (origin == nullptr || LowerText(*origin) == "http://" + LowerText(*host))) return true;
  *refusal = {403, "pages of other servers may not use this one", "Origin",
              "put the page into the panels' folder, and it is served from here"};
  return false;
}

bool HasToken(const WebRequest& request, const Access& access) {
  if (access.token.empty()) return true;
  bool isFound = false;
  for (const auto& [key, value] : request.headers) {
    const std::string name = LowerText(key);
    if (name == "authorization") {
      const bool isBearer = LowerText(std::string_view(value).substr(0, 7)) == "bearer ";
      isFound = isFound || (isBearer && IsSameSecret(Trimmed(std::string_view(value).substr(7)), access.token));
    }
    if (name != "cookie") continue;
    for (std::string_view rest = value; !rest.empty();) {
      const std::string_view part = rest.substr(0, rest.find(';'));
      rest.remove_prefix(std::min(part.size() + 1, rest.size()));
      const std::string_view cookie = Trimmed(part);
      const size_t equals = cookie.find('=');
      if (equals == std::string_view::npos || cookie.substr(0, equals) != cookieName) continue;
      isFound = IsSameSecret(cookie.substr(equals + 1), access.token) || isFound;
    }
  }
  return isFound;
}

std::string TokenCookie(const Access& access) {
  return std::string(cookieName) + "=" + access.token + "; SameSite=Strict; HttpOnly; Path=/";
}

bool IsJson(const WebRequest& request) {
  bool isOnce = true;
  const std::string* type = Header(request, "content-type", &isOnce);
  if (type == nullptr) return false;
  const std::string_view text = *type;
  return LowerText(Trimmed(text.substr(0, text.find(';')))) == "application/json";
}

bool IsFileName(std::string_view name) {
  const auto fits = [](char letter) {
    return IsLetterOrDigit(letter) || letter == ' ' || letter == '_' || letter == '.' || letter == '-';
  };
  if (name.empty() || name.size() > 100 || name.front() == '.' || name.back() == '.') return false;
  if (name.front() == ' ' || name.back() == ' ') return false;
  return std::all_of(name.begin(), name.end(), fits) && !IsDevice(name);
}

std::string TypeOfFile(std::string_view name) {
  const size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return "";
  const std::string ending = LowerText(name.substr(dot + 1));
  for (const FileType& known : fileTypes) {
    if (ending == known.ending) return std::string(known.type);
  }
  return "";
}

}  // namespace ctl
