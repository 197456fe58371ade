#include "cockpit/values.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>

#include "base/bytes.h"
#include "offsetctl/encode.h"
#include "offsetctl/numbers.h"
#include "offsetctl/show.h"

namespace ctl {

namespace {

using Json = nlohmann::json;

constexpr double mostWait = 10;

bool Refuse(unsigned status, const std::string& error, const std::string& where, const std::string& remedy,
            Refusal* refusal) {
  *refusal = {status, error, where, remedy};
  return false;
}

bool IsUnknownName(std::string_view text, const NameTable& names) {
  const std::string_view place = text.substr(0, text.find(':'));
  const bool isOffset = !place.empty() && place[0] >= '0' && place[0] <= '9';
  return !place.empty() && !isOffset && FindByName(names, place) == nullptr;
}

// What is wrong with a name that ParseItem does not take.
bool RefuseName(std::string_view text, const std::string& error, const std::string& where,
                const NameTable& names, Refusal* refusal) {
  if (!IsUnknownName(text, names)) {
    return Refuse(400, error, where, "write a name of /api/offsets, or OFFSET:TYPE like 0x0330:u16", refusal);
  }
  std::string nearest;
  for (const std::string& name : NearestNames(names, text.substr(0, text.find(':')), 4)) {
    nearest += (nearest.empty() ? "did you mean " : ", ") + name;
  }
  const std::string known = "no offset is named " + Quote(text.substr(0, text.find(':')));
  return Refuse(404, known, where, nearest.empty() ? "see /api/offsets" : nearest + "?", refusal);
}

bool HasRoom(const std::vector<Item>& items, const std::string& where, Refusal* refusal) {
  size_t asked = 0;
  for (const Item& item : items) asked += item.size;
  if (items.size() <= mostNames && asked <= mostAsked) return true;
  return Refuse(413,
                items.size() > mostNames ? "more than 1000 names" : "the values have more than 131072 bytes",
                where, "ask in several requests", refusal);
}

bool IsKnownKey(const std::string& key, std::initializer_list<const char*> known) {
  return std::any_of(known.begin(), known.end(), [&key](const char* name) { return key == name; });
}

// The value as `offsetctl write` takes it. Numbers and switches have no place in a text.
bool ValueText(const Json& value, std::string* text) {
  if (value.is_string()) {
    *text = value.get<std::string>();
  } else if (value.is_number_integer()) {
    *text = value.dump();
  } else if (value.is_number()) {
    *text = RealText(value.get<double>());
  } else {
    return false;
  }
  return true;
}

// One entry of a PUT. `where` is "values[0]".
bool ReadEntry(const Json& entry, const std::string& where, const NameTable& names, Item* item,
               Refusal* refusal) {
  if (!entry.is_object()) {
    return Refuse(400, "an entry is no object", where, "write {\"name\": ..., \"value\": ...}", refusal);
  }
  for (const auto& [key, value] : entry.items()) {
    if (IsKnownKey(key, {"name", "value", "unit"})) continue;
    return Refuse(400, "an entry has name, value and unit, no " + Quote(key), where, "leave it out", refusal);
  }
  if (!entry.contains("name") || !entry["name"].is_string()) {
    return Refuse(400, "the name is missing", where + ".name", "write a name of /api/offsets", refusal);
  }
  const std::string name = entry["name"].get<std::string>();
  std::string error;
  if (name.find('=') != std::string::npos || IsUnknownName(name, names)) {
    return RefuseName(name, "a name has no =", where + ".name", names, refusal);
  }
  Item place;
  const bool hasType = ParseItem(name, names, &place, &error);
  const Json value = entry.contains("value") ? entry["value"] : Json();
  std::string text;
  if (!value.is_boolean() && !ValueText(value, &text)) {
    return Refuse(400, "the value is missing, or neither a number, true, false nor text", where + ".value",
                  "write \"value\": 120, true or \"up\"", refusal);
  }
  // A value of another form can bring its own type.
  if (!hasType && !text.starts_with("hex:") && !text.starts_with('"')) {
    return RefuseName(name, error, where + ".name", names, refusal);
  }
  if (hasType) {
    const uint32_t refused = FirstReadOnly(names, place.offset, place.size);
    if (refused != offsetMemorySize) {
      return Refuse(403, HexText(refused, 4) + " is read-only", where + ".name", "leave it out", refusal);
    }
    if (place.type == ValueType::Text && !value.is_string()) {
      return Refuse(400, "it holds text", where + ".value", "write the value in quotes", refusal);
    }
  }
  if (entry.contains("unit")) {
    const Json& unit = entry["unit"];
    const bool isRow = hasType && place.row != nullptr && place.type != ValueType::Text;
    if (!unit.is_string() || (!isRow && !unit.get<std::string>().empty())) {
      return Refuse(400, unit.is_string() ? "it has no unit" : "the unit is no text", where + ".unit",
                    "leave the unit out", refusal);
    }
    if (!unit.get<std::string>().empty()) text += " " + unit.get<std::string>();
  }
  bool isRead = false;
  if (value.is_boolean()) {
    const bool isOn = value.get<bool>();
    isRead = ParseAssignment(name + (isOn ? "=on" : "=off"), names, item, &error) ||
             ParseAssignment(name + (isOn ? "=1" : "=0"), names, item, &error);
  } else {
    isRead = ParseAssignment(name + "=" + text, names, item, &error);
  }
  item->shown = name;
  if (isRead) return true;
  return Refuse(error.ends_with("read-only") ? 403 : 400, error, where + ".value",
                "see the offset's unit, range and words in /api/offsets", refusal);
}

}  // namespace

bool ReadNames(std::string_view list, const NameTable& names, std::vector<Item>* items, Refusal* refusal) {
  items->clear();
  size_t asked = 0;
  for (bool isLast = false; !isLast;) {
    const size_t comma = list.find(',');
    isLast = comma == std::string_view::npos;
    const std::string_view name = list.substr(0, comma);
    if (!isLast) list.remove_prefix(comma + 1);
    Item item;
    std::string error;
    if (items->size() == mostNames) {
      return Refuse(413, "more than 1000 names", "names", "ask in several requests", refusal);
    }
    if (!ParseItem(name, names, &item, &error)) return RefuseName(name, error, "names", names, refusal);
    asked += item.size;
    if (asked > mostAsked) {
      return Refuse(413, "the values have more than 131072 bytes", "names", "ask in several requests", refusal);
    }
    item.shown = name;
    items->push_back(std::move(item));
  }
  return true;
}

bool ReadPut(const std::string& body, const NameTable& names, PutRequest* put, Refusal* refusal) {
  *put = {};
  const Json root = Json::parse(body, nullptr, false);
  if (root.is_discarded() || !root.is_object()) {
    return Refuse(400, "the body is no JSON object", "body",
                  "write {\"values\": [{\"name\": ..., \"value\": ...}]}", refusal);
  }
  for (const auto& [key, value] : root.items()) {
    if (IsKnownKey(key, {"values", "wait"})) continue;
    return Refuse(400, "the body has values and wait, no " + Quote(key), "body", "leave it out", refusal);
  }
  if (root.contains("wait")) {
    const Json& wait = root["wait"];
    if (!wait.is_number() || !(wait.get<double>() >= 0 && wait.get<double>() <= mostWait)) {
      return Refuse(400, "wait is no number of seconds from 0 to 10", "wait", "leave it out for 1 second",
                    refusal);
    }
    put->wait = wait.get<double>();
  }
  if (!root.contains("values") || !root["values"].is_array() || root["values"].empty()) {
    return Refuse(400, "values is no list with an entry", "values", "write [{\"name\": ..., \"value\": ...}]",
                  refusal);
  }
  if (root["values"].size() > mostNames) {
    return Refuse(413, "more than 1000 values", "values", "write in several requests", refusal);
  }
  for (const Json& entry : root["values"]) {
    const std::string where = "values[" + std::to_string(put->items.size()) + "]";
    Item item;
    if (!ReadEntry(entry, where, names, &item, refusal)) return false;
    put->items.push_back(std::move(item));
    if (!HasRoom(put->items, where, refusal)) return false;
  }
  return true;
}

std::string EntryHead(const Item& item, const uint8_t* memory) {
  Item shown = item;
  shown.bytes.assign(memory + item.offset, memory + item.offset + item.size);
  return "{\"name\":" + JsonString(item.shown) + ",\"offset\":" + std::to_string(item.offset) +
         ",\"value\":" + JsonValue(shown) +
         ",\"unit\":" + JsonString(item.row != nullptr ? item.row->unit : "") +
         ",\"raw\":" + JsonString(BytesText(shown.bytes.data(), shown.bytes.size())) + ",\"age\":";
}

double AgeOf(const Item& item, const Mirror& mirror, double now) {
  const auto first = mirror.changedAt.begin() + item.offset;
  return now - *std::max_element(first, first + item.size);
}

std::string ValuesJson(const std::vector<Item>& items, const Mirror& mirror, double now) {
  std::string text = "{\"values\":[";
  for (const Item& item : items) {
    if (text.back() == '}') text += ',';
    text += EntryHead(item, mirror.memory.data()) + SecondsJson(AgeOf(item, mirror, now)) + "}";
  }
  return text + "]}";
}

// --- Writes ------------------------------------------------------------------------------------------------

namespace {

uint16_t Activity(const Mirror& mirror) { return LoadFrom<uint16_t>(mirror.memory.data() + activityOffset); }

bool NeverReadsBack(const WriteCheck& check) {
  return IsRequest(check) || (check.row != nullptr && !check.row->writable);
}

bool IsConfirmed(const WriteCheck& check) { return check.done && !IsRefused(check, check.shown.data()); }

bool HasSettled(const PendingWrite& write, double now) {
  Settling settling = write.settling;
  return write.isWritten && Settle(&settling, settling.activity, now);
}

}  // namespace

PendingWrite BeginWrite(const PutRequest& put, const NameTable& names, const Mirror& mirror, double now) {
  PendingWrite write;
  for (const Item& item : put.items) {
    write.checks.push_back(CheckOf(item, names, mirror.memory.data() + item.offset));
  }
  write.until = now + put.wait;
  return write;
}

void WriteSent(const Mirror& mirror, double now, PendingWrite* write) {
  std::vector<WriteCheck> awaited;
  for (const WriteCheck& check : write->checks) {
    if (!NeverReadsBack(check)) awaited.push_back(check);
  }
  write->settling = BeginSettling(awaited, Activity(mirror), now);
  write->isWritten = true;
}

bool UpdateWrite(const Mirror& mirror, double now, bool isEchoed, PendingWrite* write) {
  if (!write->isWritten) return false;  // the source answers that soon, in one way or the other
  const bool hasSettled = Settle(&write->settling, Activity(mirror), now);
  bool isAll = true;
  for (WriteCheck& check : write->checks) {
    const uint8_t* shown = mirror.memory.data() + check.wanted.offset;
    check.shown.assign(shown, shown + check.wanted.size);
    check.done = check.done || isEchoed || Follows(check, shown);
    isAll = isAll && (NeverReadsBack(check) || IsConfirmed(check));
  }
  return (hasSettled && isAll) || now >= write->until || !mirror.connected;
}

std::string WriteJson(const PendingWrite& write, const Mirror& mirror, double now) {
  std::string text = "{\"values\":[";
  const bool hasSettled = HasSettled(write, now);
  for (const WriteCheck& check : write.checks) {
    if (text.back() == '}') text += ',';
    const char* confirmed = NeverReadsBack(check)              ? "null"
                            : hasSettled && IsConfirmed(check) ? "true"
                                                               : "false";
    text += EntryHead(check.wanted, mirror.memory.data()) + SecondsJson(AgeOf(check.wanted, mirror, now)) +
            ",\"written\":" + (write.isWritten ? "true" : "false") + ",\"confirmed\":" + confirmed + "}";
  }
  return text + "]}";
}

// --- Streams -----------------------------------------------------------------------------------------------

namespace {

// Brings a value up to date, once for all streams.
void Look(const Mirror& mirror, Watched* watched) {
  if (watched->seenSerial == mirror.serial) return;
  watched->seenSerial = mirror.serial;
  const Item& item = watched->item;
  const auto first = mirror.changedIn.begin() + item.offset;
  const uint32_t changedIn = *std::max_element(first, first + item.size);
  if (changedIn == watched->changedIn && !watched->head.empty()) return;
  watched->changedIn = changedIn;
  const auto at = mirror.changedAt.begin() + item.offset;
  watched->changedAt = *std::max_element(at, at + item.size);
  watched->head = EntryHead(item, mirror.memory.data());
}

}  // namespace

bool HasNews(const ValueStream& stream, const Mirror& mirror) {
  return mirror.isKnown && (stream.isFirst ? mirror.connected : stream.sentSerial != mirror.serial);
}

std::string ValuesEvent(const Mirror& mirror, double now, ValueStream* stream) {
  if (!HasNews(*stream, mirror)) return "";
  const std::string start = "event: values\ndata: {\"time\":" + SecondsJson(now) + ",\"values\":[";
  std::string text = start;
  for (const std::shared_ptr<Watched>& watched : stream->values) {
    Look(mirror, watched.get());
    if (!stream->isFirst && watched->changedIn <= stream->sentSerial) continue;
    if (text.size() > start.size()) text += ',';
    text += watched->head;
    text += SecondsJson(now - watched->changedAt);
    text += '}';
  }
  const bool isNothing = text.size() == start.size();
  stream->sentSerial = mirror.serial;
  stream->isFirst = false;
  return isNothing ? "" : text + "]}\n\n";
}

bool HasNews(const ChangeStream& stream, const Mirror& mirror) {
  return mirror.isKnown &&
         (stream.told.empty() || stream.serial != mirror.serial || stream.pictures != mirror.pictures);
}

std::string ChangesEvent(const Mirror& mirror, double now, ChangeStream* stream) {
  if (!HasNews(*stream, mirror)) return "";
  const bool isNew = stream->told.empty() || stream->pictures != mirror.pictures;
  stream->serial = mirror.serial;
  stream->pictures = mirror.pictures;
  if (isNew) {
    stream->told = mirror.memory;
    return "";
  }
  std::string text;
  constexpr size_t part = 256;  // most of the memory is the same
  for (size_t first = 0; first < offsetMemorySize; first += part) {
    if (std::memcmp(stream->told.data() + first, mirror.memory.data() + first, part) == 0) continue;
    for (size_t at = first; at < first + part; ++at) {
      const uint8_t before = stream->told[at], after = mirror.memory[at];
      if (before == after) continue;
      text += (text.empty() ? "[" : ",[") + std::to_string(at) + "," + std::to_string(before) + "," +
              std::to_string(after) + "]";
      stream->told[at] = after;
    }
  }
  if (text.empty()) return "";
  return "event: changes\ndata: {\"time\":" + SecondsJson(now) + ",\"changes\":[" + text + "]}\n\n";
}

std::string StatusEvent(const Mirror& mirror, size_t clients, double now) {
  return "event: status\ndata: " + StatusJson(mirror, clients, now) + "\n\n";
}

}  // namespace ctl
