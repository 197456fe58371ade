// What the web cockpit answers: everything but sockets and streams, so that it is tried without them. Reads the
// user's folders, else pure; HTTP thread.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "cockpit/http_rules.h"
#include "cockpit/mirror.h"
#include "cockpit/values.h"
#include "offsetctl/names.h"

namespace ctl {

// A row of docs/offsets.json as it stands there.
struct OffsetRow {
  uint32_t offset;
  std::string name, subject;
  std::string_view text;
};
struct OffsetRows {
  std::string version;
  std::vector<OffsetRow> rows;
};
// Returns true, or false when that is not the file. The rows point into `file`.
bool ReadOffsetsFile(std::string_view file, OffsetRows* rows);

// What does not change while the program runs.
struct Site {
  Access access;
  std::string panels, recordings;  // folders
  NameTable names;
  OffsetRows offsets;
};

// What is to be done with a request.
enum class Deed {
  Reply,         // `answer`
  Write,         // hand `put` to the source, answer when it has settled
  Order,         // hand `order` to the source, answer the status when it is done
  ValueStream,   // begin a stream of `items`
  ChangeStream,  // begin a stream of changed bytes
};
struct Outcome {
  Deed deed = Deed::Reply;
  WebAnswer answer = {};
  PutRequest put = {};
  SourceOrder order = {};
  std::vector<Item> items = {};
  double rate = 0;  // events a second at most
};

// `clients`: open streams. `now` in seconds since the program's start.
Outcome Answer(const WebRequest& request, const Site& site, const Mirror& mirror, size_t clients, double now);
// The headers that every answer to that target has, streams, too.
Pairs CommonHeaders(std::string_view text);

}  // namespace ctl
