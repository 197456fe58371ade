// What a request must keep to before anything looks at what it asks: its address, who may send it, and names of
// files in it. Pure; any thread.
#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ctl {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct WebRequest {
  std::string method;
  std::string target;  // as it stands in the request's first line
  Pairs headers;       // names in any case
  std::string body;
};

struct WebAnswer {
  unsigned status = 200;
  std::string type = "application/json";
  Pairs headers = {};  // beside type, length and what every answer has
  std::string body = {};
};

// Why a request is not served: `where` names the part of it that is wrong, `remedy` says what to do.
struct Refusal {
  unsigned status;
  std::string error, where, remedy;
};
WebAnswer AnswerOf(const Refusal& refusal);

// What was asked for, in plain characters.
struct Target {
  std::string path;
  Pairs query;
};

// Takes a target apart: "/api/values?names=a%2Cb&x=1". Returns true, or false when it is no absolute path, has
// a broken %XX, or holds a zero byte.
bool ReadTarget(std::string_view text, Target* target);
// The value of a query's parameter, or null. Of several the first.
const std::string* Parameter(const Target& target, std::string_view name);
// The only header of that name, letters in either case; null when there is none, or `isOnce` false and null
// when there are several.
const std::string* Header(const WebRequest& request, std::string_view name, bool* isOnce);

// Takes "http://HOST" off a target that has it, when HOST is the Host header's; others stay, and are malformed.
void DropOwnHost(WebRequest* request);

// How the server is reached, and by whom.
struct Access {
  std::vector<std::string> hosts;  // in small letters, without the port
  unsigned port = 0;
  std::string token;  // "" when none is needed
};

// Whether the token can stand in an address, a header and a cookie: 8 to 128 of A-Z a-z 0-9 . _ ~ -.
bool IsToken(std::string_view text);
// Takes as long whatever the first difference is.
bool IsSameSecret(std::string_view a, std::string_view b);
// Host and Origin: a page of another server in the user's browser must not reach this one. Returns true, or
// false with the refusal.
bool IsFromHere(const WebRequest& request, const Access& access, Refusal* refusal);
// Whether the request carries the token, when one is needed, in `Authorization: Bearer` or its cookie.
bool HasToken(const WebRequest& request, const Access& access);
// The header that leaves the token with the browser.
std::string TokenCookie(const Access& access);
bool IsJson(const WebRequest& request);

// Whether a name is one of a file in a folder on every system: A-Z a-z 0-9 space _ . -, no dot first, no dot or
// space last, none of Windows' devices, at most 100 characters.
bool IsFileName(std::string_view name);
// The type of the files that are served, by the name's ending; "" for others.
std::string TypeOfFile(std::string_view name);

std::string LowerText(std::string_view text);

}  // namespace ctl
