// Fuzz target: the web cockpit's answers. The input is a request as text: a line "METHOD TARGET", header lines
// "NAME: VALUE", an empty line, the body. Whatever it holds, the answer is one that the interface knows,
// refusals are JSON, nothing leaves the folders, and what is to be written lies within the memory.
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cockpit/answers.h"
#include "cockpit/web_files.h"
#include "require.h"

namespace ctl {

std::span<const WebFile> WebFiles() {
  static constexpr WebFile files[] = {{"/", "text/html; charset=utf-8", "<p>", 3}};
  return files;
}
std::string_view OffsetsFile() {
  return "{\"version\": 2, \"offsets\": [\n    {\"offset\": 1408, \"name\": \"heading\", \"subject\": "
         "\"Position\"}\n]}";
}

}  // namespace ctl

namespace {

using namespace ctl;

WebRequest RequestOf(std::string_view text) {
  WebRequest request;
  std::string_view first = Cut(&text, "\n");
  request.method = Cut(&first, " ");
  request.target = first;
  while (!text.empty()) {
    std::string_view line = Cut(&text, "\n");
    if (line.empty()) break;
    const std::string name(Cut(&line, ": "));
    request.headers.emplace_back(name, std::string(line));
  }
  request.body = text;
  return request;
}

Mirror ConnectedMirror() {
  Mirror mirror;
  Batch batch;
  batch.connected = true;
  ApplyBatch(batch, 1, &mirror);
  return mirror;
}

Site SiteOf(const char* token) {
  Site site = {.access = {{"localhost"}, 8440, token},
               .panels = "/nowhere",
               .recordings = "/nowhere",
               .names = KnownOffsets(),
               .offsets = {}};
  Require(ReadOffsetsFile(OffsetsFile(), &site.offsets));
  return site;
}

void CheckOutcome(const Outcome& outcome, const Mirror& mirror, const Site& site) {
  const unsigned status = outcome.answer.status;
  if (outcome.deed == Deed::Reply) {
    Require(status == 200 || status == 303 || (status >= 400 && status <= 413));
    if (outcome.answer.type == "application/json" && status != 303) {
      Require(!nlohmann::json::parse(outcome.answer.body, nullptr, false).is_discarded());
    }
  }
  std::vector<Item> items = outcome.items;
  items.insert(items.end(), outcome.put.items.begin(), outcome.put.items.end());
  Require(items.size() <= mostNames);
  for (const Item& item : items) Require(item.size > 0 && item.offset + item.size <= offsetMemorySize);
  for (const Item& item : outcome.put.items) Require(item.bytes.size() == item.size);
  if (outcome.deed == Deed::Write) {
    Mirror shown = mirror;
    PendingWrite write = BeginWrite(outcome.put, site.names, shown, 2);
    WriteSent(shown, 2, &write);
    UpdateWrite(shown, 20, true, &write);
    Require(!nlohmann::json::parse(WriteJson(write, shown, 20), nullptr, false).is_discarded());
  }
  if (outcome.deed == Deed::ValueStream) {
    ValueStream stream;
    for (const Item& item : outcome.items) {
      stream.values.push_back(std::make_shared<Watched>(Watched{.item = item}));
    }
    const std::string event = ValuesEvent(mirror, 2, &stream);
    Require(event.starts_with("event: values\ndata: ") && event.ends_with("\n\n"));
    Require(event.find('\n', 20) == event.size() - 2);
    Require(!nlohmann::json::parse(event.substr(20), nullptr, false).is_discarded());
  }
  if (outcome.order.file) Require(outcome.order.file->empty() || IsFileName(*outcome.order.file));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Mirror mirror = ConnectedMirror();
  static const Site open = SiteOf(""), guarded = SiteOf("a-long-token");
  const WebRequest request = RequestOf({reinterpret_cast<const char*>(data), size});
  CheckOutcome(Answer(request, open, mirror, 0, 2), mirror, open);
  const Outcome outcome = Answer(request, guarded, mirror, 0, 2);
  // Without the token nobody gets anything.
  const bool isKnown =
      std::string_view(reinterpret_cast<const char*>(data), size).find("oken") != std::string_view::npos;
  Require(isKnown || outcome.answer.status == 400 || outcome.answer.status == 403);
  CommonHeaders(request.target);
  return 0;
}
