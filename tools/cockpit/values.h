// Names and values of the web cockpit's requests, and entries of its answers. Pure; any thread.
#pragma once
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cockpit/http_rules.h"
#include "cockpit/mirror.h"
#include "offsetctl/confirm.h"
#include "offsetctl/item.h"

namespace ctl {

constexpr size_t mostNames = 1000;              // of a request
constexpr size_t mostAsked = offsetMemorySize;  // bytes of all values of a request

// Reads "a,b,0x0330:u16". An item's `shown` is its name as asked. Returns true, or false with the refusal.
bool ReadNames(std::string_view list, const NameTable& names, std::vector<Item>* items, Refusal* refusal);

// The body of PUT /api/values.
struct PutRequest {
  std::vector<Item> items;  // with the encoded bytes
  double wait = 1;          // seconds
};
// Returns true, or false with the refusal: nothing of it is to be written then.
bool ReadPut(const std::string& body, const NameTable& names, PutRequest* put, Refusal* refusal);

// The entry of a value that stands in `memory` (131,072 bytes) up to and with `"age":`; the age and what else
// belongs to it follow.
std::string EntryHead(const Item& item, const uint8_t* memory);
// Seconds since the value last changed.
double AgeOf(const Item& item, const Mirror& mirror, double now);
// The answer of GET /api/values.
std::string ValuesJson(const std::vector<Item>& items, const Mirror& mirror, double now);

// A write that has been handed to the source, until it is answered.
struct PendingWrite {
  uint64_t id = 0;
  std::vector<WriteCheck> checks;  // one an item
  Settling settling = {};
  double until = 0;        // seconds since the program's start
  bool isWritten = false;  // the source has sent it
};
PendingWrite BeginWrite(const PutRequest& put, const NameTable& names, const Mirror& mirror, double now);
// The source has sent it: it settles from here on.
void WriteSent(const Mirror& mirror, double now, PendingWrite* write);
// Takes note of the mirror as it is now. `isEchoed`: every written byte has been shown since. Returns whether
// the write can be answered: everything has settled and follows, or the time is over, or the source has gone.
bool UpdateWrite(const Mirror& mirror, double now, bool isEchoed, PendingWrite* write);
// The answer of PUT /api/values. Confirmed is null for rows that never read back: requests, and what only
// shows.
std::string WriteJson(const PendingWrite& write, const Mirror& mirror, double now);

// --- Streams -----------------------------------------------------------------------------------------------

// A value that streams show; all streams that ask for it by the same name share it, so that each of its changes
// is made into text once.
struct Watched {
  Item item;
  uint32_t seenSerial = 0;  // of the mirror, when it was last looked at
  uint32_t changedIn = 0;   // the batch that changed it last
  double changedAt = 0;
  std::string head = {};  // EntryHead
};
struct ValueStream {
  std::vector<std::shared_ptr<Watched>> values;
  uint32_t sentSerial = 0;
  bool isFirst = true;  // nothing has been sent: the next event holds everything
};
// Whether an event is due, whatever the rate says.
bool HasNews(const ValueStream& stream, const Mirror& mirror);
// The event with what has changed since the last one, "" when that is nothing. Nothing is told before a picture
// is known.
std::string ValuesEvent(const Mirror& mirror, double now, ValueStream* stream);

struct ChangeStream {
  std::vector<uint8_t> told;  // the memory as it was at the last event; empty before the first
  uint32_t serial = 0, pictures = 0;
};
bool HasNews(const ChangeStream& stream, const Mirror& mirror);
// The event with single bytes that have changed since the last one, "" when none has. A new picture is the new
// beginning and tells nothing.
std::string ChangesEvent(const Mirror& mirror, double now, ChangeStream* stream);

std::string StatusEvent(const Mirror& mirror, size_t clients, double now);

}  // namespace ctl
