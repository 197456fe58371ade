#include "cockpit/answers.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "cockpit/folders.h"
#include "cockpit/web_files.h"
#include "offsetctl/numbers.h"
#include "offsetctl/show.h"

namespace ctl {

namespace {

using Json = nlohmann::json;

constexpr double leastRate = 1, mostRate = 50, valueRate = 20, changeRate = 10;
constexpr std::string_view panelsPath = "/panels/";

Outcome Refuse(unsigned status, const std::string& error, const std::string& where, const std::string& remedy) {
  return {.answer = AnswerOf({status, error, where, remedy})};
}

Outcome Reply(const std::string& json) { return {.answer = {.body = json}}; }

struct Call {
  const WebRequest& request;
  const Target& target;
  const Site& site;
  const Mirror& mirror;
  size_t clients;
  double now;
};

std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> words(1);
  for (const char letter : text) {
    if (letter != ' ' && letter != '\t') {
      words.back() += letter;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  std::erase(words, "");
  return words;
}

Outcome AnswerOffsets(const Call& call) {
  const std::string* query = Parameter(call.target, "query");
  const std::string* subject = Parameter(call.target, "subject");
  std::unordered_set<std::string> found;
  const std::vector<std::string> words = query == nullptr ? std::vector<std::string>() : WordsOf(*query);
  if (!words.empty()) {
    for (const OffsetName* row : Search(call.site.names, words)) found.insert(row->name);
  }
  const std::string wanted = subject == nullptr ? "" : LowerText(*subject);
  std::string text = "{\"version\":" + call.site.offsets.version + ",\"offsets\":[";
  for (const OffsetRow& row : call.site.offsets.rows) {
    if (!words.empty() && !found.contains(row.name)) continue;
    if (!wanted.empty() && LowerText(row.subject) != wanted) continue;
    if (text.back() == '}') text += ",\n";
    text += row.text;
  }
  return Reply(text + "]}");
}

Outcome NotConnected(const Mirror& mirror) {
  return Refuse(503, "not connected to " + mirror.source, "source",
                "start the simulator with TAVRIX: the cockpit connects by itself");
}

// The `names` of a query. Returns true, or false with the refusal.
bool TakeNames(const Call& call, std::vector<Item>* items, Outcome* refused) {
  const std::string* list = Parameter(call.target, "names");
  Refusal refusal = {400, "the names are missing", "names", "ask for ?names=heading,altitude"};
  if (list != nullptr && !list->empty() && ReadNames(*list, call.site.names, items, &refusal)) return true;
  *refused = {.answer = AnswerOf(refusal)};
  return false;
}

Outcome AnswerValues(const Call& call) {
  Outcome outcome;
  if (!TakeNames(call, &outcome.items, &outcome)) return outcome;
  if (!call.mirror.connected) return NotConnected(call.mirror);
  return Reply(ValuesJson(outcome.items, call.mirror, call.now));
}

Outcome AnswerPut(const Call& call) {
  Outcome outcome = {.deed = Deed::Write};
  Refusal refusal = {};
  if (!ReadPut(call.request.body, call.site.names, &outcome.put, &refusal))
    return {.answer = AnswerOf(refusal)};
  if (call.mirror.replay) {
    return Refuse(409, "a recording is replayed: nothing takes a write", "source",
                  "go back to the simulator: POST /api/replay {\"file\": null}");
  }
  if (!call.mirror.connected) return NotConnected(call.mirror);
  return outcome;
}

bool TakeRate(const Call& call, double usual, Outcome* outcome) {
  outcome->rate = usual;
  const std::string* rate = Parameter(call.target, "rate");
  if (rate == nullptr) return true;
  const bool isGood =
      ParseReal(*rate, &outcome->rate) && outcome->rate >= leastRate && outcome->rate <= mostRate;
  if (!isGood) *outcome = Refuse(400, "the rate is no number from 1 to 50", "rate", "leave it out");
  return isGood;
}

Outcome AnswerStream(const Call& call) {
  Outcome outcome = {.deed = Deed::ValueStream};
  if (TakeRate(call, valueRate, &outcome)) TakeNames(call, &outcome.items, &outcome);
  return outcome;
}

Outcome AnswerChanges(const Call& call) {
  Outcome outcome = {.deed = Deed::ChangeStream};
  TakeRate(call, changeRate, &outcome);
  return outcome;
}

Outcome AnswerStatus(const Call& call) { return Reply(StatusJson(call.mirror, call.clients, call.now)); }

// The body as an object with no other keys than these. Returns true, or false with the refusal.
bool TakeObject(const Call& call, std::initializer_list<const char*> keys, Json* object, Outcome* refused) {
  *object = Json::parse(call.request.body, nullptr, false);
  if (object->is_discarded() || !object->is_object()) {
    *refused = Refuse(400, "the body is no JSON object", "body", "write {\"file\": \"name\"}");
    return false;
  }
  for (const auto& [key, value] : object->items()) {
    if (std::any_of(keys.begin(), keys.end(), [&key = key](const char* known) { return key == known; }))
      continue;
    *refused = Refuse(400, "the body has no " + Quote(key), "body", "leave it out");
    return false;
  }
  return true;
}

// A file's name, or null for "". Returns true, or false with the refusal.
bool TakeFile(const Json& value, std::optional<std::string>* file, Outcome* refused) {
  if (value.is_null()) *file = "";
  if (value.is_string() && IsFileName(value.get<std::string>())) *file = value.get<std::string>();
  if (file->has_value()) return true;
  *refused = Refuse(400, "that is no name of a file in the recordings' folder", "file",
                    "use letters, digits, spaces, _ . - and no folder, as in \"flight 1.tavrec\"");
  return false;
}

Outcome AnswerRecord(const Call& call) {
  Outcome outcome = {.deed = Deed::Order};
  Json body;
  if (!TakeObject(call, {"file"}, &body, &outcome)) return outcome;
  if (!body.contains("file")) return Refuse(400, "the file is missing", "file", "write {\"file\": \"name\"}");
  if (!TakeFile(body["file"], &outcome.order.file, &outcome)) return outcome;
  outcome.order.kind = outcome.order.file->empty() ? OrderKind::StopRecording : OrderKind::StartRecording;
  if (outcome.order.kind == OrderKind::StopRecording) return outcome;
  if (call.mirror.replay) {
    return Refuse(409, "a recording is replayed", "source",
                  "go back to the simulator: POST /api/replay {\"file\": null}");
  }
  if (!call.mirror.connected) return NotConnected(call.mirror);
  return outcome;
}

bool TakeNumber(const Json& body, const char* key, double least, double most, std::optional<double>* number,
                Outcome* refused) {
  if (!body.contains(key)) return true;
  if (body[key].is_number()) *number = body[key].get<double>();
  if (number->has_value() && **number >= least && **number <= most) return true;
  *refused = Refuse(400, std::string(key) + " is no number from " + RealText(least) + " to " + RealText(most),
                    key, "leave it out");
  return false;
}

Outcome AnswerReplay(const Call& call) {
  Outcome outcome = {.deed = Deed::Order};
  SourceOrder& order = outcome.order;
  order.kind = OrderKind::Replay;
  Json body;
  if (!TakeObject(call, {"file", "position", "speed", "playing"}, &body, &outcome)) return outcome;
  if (body.contains("file") && !TakeFile(body["file"], &order.file, &outcome)) return outcome;
  if (!TakeNumber(body, "position", 0, 1e9, &order.position, &outcome)) return outcome;
  if (!TakeNumber(body, "speed", 0.1, 100, &order.speed, &outcome)) return outcome;
  if (body.contains("playing")) {
    if (!body["playing"].is_boolean()) {
      return Refuse(400, "playing is neither true nor false", "playing", "leave it out");
    }
    order.playing = body["playing"].get<bool>();
  }
  return outcome;
}

Outcome AnswerPanels(const Call& call) { return Reply(PanelsJson(call.site.panels)); }
Outcome AnswerRecordings(const Call& call) { return Reply(RecordingsJson(call.site.recordings)); }

bool FindWebFile(std::string_view path, WebAnswer* answer) {
  for (const WebFile& file : WebFiles()) {
    if (path != file.path) continue;
    *answer = {.type = file.type, .body = std::string(file.bytes, file.size)};
    return true;
  }
  return false;
}

// The description lies among the page's files.
Outcome AnswerApi(const Call&) {
  Outcome outcome;
  return FindWebFile("/api", &outcome.answer) ? outcome : Refuse(404, "there is no description", "path", "");
}

struct Route {
  const char* method;
  const char* path;
  Outcome (*answer)(const Call& call);
};
constexpr Route routes[] = {
    {"GET", "/api", AnswerApi},
    {"GET", "/api/offsets", AnswerOffsets},
    {"GET", "/api/values", AnswerValues},
    {"PUT", "/api/values", AnswerPut},
    {"GET", "/api/stream", AnswerStream},
    {"GET", "/api/changes", AnswerChanges},
    {"GET", "/api/status", AnswerStatus},
    {"POST", "/api/recording", AnswerRecord},
    {"GET", "/api/recordings", AnswerRecordings},
    {"POST", "/api/replay", AnswerReplay},
    {"GET", "/api/panels", AnswerPanels},
};

Outcome AnswerApiPath(const Call& call, std::string_view method) {
  const Route* other = nullptr;
  for (const Route& route : routes) {
    if (call.target.path != route.path) continue;
    if (method != route.method) {
      other = &route;
      continue;
    }
    if (method != "GET" && !IsJson(call.request)) {
      return Refuse(400, "the body is not announced as JSON", "Content-Type",
                    "send Content-Type: application/json");
    }
    return route.answer(call);
  }
  if (other == nullptr) return Refuse(404, "there is no such path", "path", "see /api");
  return Refuse(400, "this path does not take that method", "method", std::string("use ") + other->method);
}

Outcome AnswerFile(const Call& call, std::string_view method) {
  if (method != "GET") return Refuse(400, "this path does not take that method", "method", "use GET");
  const std::string& path = call.target.path;
  if (path.starts_with(panelsPath)) {
    return {.answer = PanelFile(call.site.panels, path.substr(panelsPath.size()))};
  }
  Outcome outcome;
  if (FindWebFile(path, &outcome.answer)) return outcome;
  return Refuse(404, "there is no such path", "path", "see / and /api");
}

bool IsApi(std::string_view path) { return path == "/api" || path.starts_with("/api/"); }

Outcome AnswerChecked(const Call& call) {
  const Access& access = call.site.access;
  const std::string* token = Parameter(call.target, "token");
  if (!access.token.empty() && call.target.path == "/" && token != nullptr) {
    if (!IsSameSecret(*token, access.token)) {
      return Refuse(403, "that is not the token", "token", "use the address that the program has printed");
    }
    return {.answer = {.status = 303, .headers = {{"Location", "/"}, {"Set-Cookie", TokenCookie(access)}}}};
  }
  if (!HasToken(call.request, access)) {
    return Refuse(403, "the token is missing or wrong", "token",
                  "open the address that the program has printed, or send Authorization: Bearer TOKEN");
  }
  const bool isHead = call.request.method == "HEAD";
  Outcome outcome = IsApi(call.target.path) ? AnswerApiPath(call, isHead ? "GET" : call.request.method)
                                            : AnswerFile(call, isHead ? "GET" : call.request.method);
  if (isHead && outcome.deed != Deed::Reply) return Refuse(400, "a stream has no HEAD", "method", "use GET");
  return outcome;
}

}  // namespace

bool ReadOffsetsFile(std::string_view file, OffsetRows* rows) {
  *rows = {};
  const Json root = Json::parse(file, nullptr, false);
  if (root.is_discarded() || !root.contains("version") || !root.contains("offsets")) return false;
  rows->version = root["version"].dump();
  // Each row is a line of its own, and stays as it is written.
  constexpr std::string_view lineStart = "    {\"offset\": ";
  size_t at = file.find("\"offsets\": [");
  for (const Json& row : root["offsets"]) {
    at = file.find(lineStart, at);
    if (at == std::string_view::npos) return false;
    const size_t end = std::min(file.find('\n', at), file.size());
    std::string_view text = file.substr(at + 4, end - at - 4);
    while (text.ends_with(',') || text.ends_with('\r')) text.remove_suffix(1);
    if (!text.ends_with('}')) return false;
    rows->rows.push_back({row.value("offset", 0u), row.value("name", ""), row.value("subject", ""), text});
    at = end;
  }
  return true;
}

Outcome Answer(const WebRequest& request, const Site& site, const Mirror& mirror, size_t clients, double now) {
  Refusal refusal = {};
  Target target;
  if (!IsFromHere(request, site.access, &refusal)) return {.answer = AnswerOf(refusal)};
  if (!ReadTarget(request.target, &target)) {
    return Refuse(400, "the address is malformed", "path", "write special characters as %XX");
  }
  return AnswerChecked({request, target, site, mirror, clients, now});
}

Pairs CommonHeaders(std::string_view text) {
  Target target;
  const std::string path = ReadTarget(text, &target) ? target.path : "/api";
  const bool isPanel = path.starts_with(panelsPath);
  const std::string policy =
      isPanel ? "default-src 'self' 'unsafe-inline'; img-src 'self' data:; " : "default-src 'self'; ";
  return {{"Content-Security-Policy",
           policy + "object-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'self'"},
          {"X-Content-Type-Options", "nosniff"},
          {"Referrer-Policy", "no-referrer"},
          {"Cache-Control", IsApi(path) ? "no-store" : "no-cache"}};
}

}  // namespace ctl
