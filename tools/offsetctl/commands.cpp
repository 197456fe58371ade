#include "commands.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "base/bytes.h"
#include "confirm.h"
#include "console.h"
#include "item.h"
#include "names.h"
#include "numbers.h"
#include "show.h"
#include "words.h"

namespace ctl {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr double readPause = 0.02;

// Returns true, or false with the sentence in `error`.
bool ParseItems(const Options& options, std::vector<Item>* items, std::string* error) {
  const NameTable names = KnownOffsets();
  for (const std::string& text : options.items) {
    Item item;
    const bool parsed = options.command == Command::Write ? ParseAssignment(text, names, &item, error)
                                                          : ParseItem(text, names, &item, error);
    if (!parsed) return false;
    items->push_back(item);
  }
  return true;
}

std::vector<Transfer> TransfersOf(std::vector<Item>* items) {
  std::vector<Transfer> transfers;
  for (Item& item : *items) transfers.push_back({item.offset, item.size, item.bytes.data()});
  return transfers;
}

void PrintLine(const std::string& line) { std::printf("%s\n", line.c_str()); }

double SecondsUntil(Clock::time_point time) { return Seconds(time - Clock::now()).count(); }

Clock::duration Period(double seconds) { return std::chrono::duration_cast<Clock::duration>(Seconds(seconds)); }

// Confirms a write by reading again, for a way that answers at once.
bool WriteAndRead(const Transport& transport, const std::vector<Transfer>& transfers, double timeout,
                  std::vector<WriteCheck>* checks, std::string* error) {
  const Clock::time_point start = Clock::now(), deadline = start + Period(timeout);
  const auto elapsed = [start] { return Seconds(Clock::now() - start).count(); };
  uint8_t activity[2] = {};
  std::vector<Transfer> reads = {{activityOffset, sizeof activity, activity}};
  if (!transport.readOffsets(reads, error) || !transport.writeOffsets(transfers, error)) return false;
  Settling settling = BeginSettling(*checks, LoadFrom<uint16_t>(activity), elapsed());
  for (WriteCheck& check : *checks) {
    reads.push_back({check.wanted.offset, check.wanted.size, check.shown.data()});
  }
  for (;;) {
    if (!transport.readOffsets(reads, error)) return false;
    for (WriteCheck& check : *checks) check.done = true;  // the answer is what stands there
    const WriteCheck* failed = FindFailed(*checks);
    const bool settled = Settle(&settling, LoadFrom<uint16_t>(activity), elapsed());
    if (failed == nullptr && settled) return true;
    if (WaitForStop(readPause)) return false;
    if (SecondsWithoutFrames(settling, elapsed()) > timeout) {
      *error = StandstillText(timeout);
      return false;
    }
    if (failed == nullptr || !settled || Clock::now() < deadline) continue;
    *error = "written, but the simulator does not follow: " + ShownText(*failed, failed->shown.data());
    return false;
  }
}

}  // namespace

int Report(int status, const std::string& text) {
  std::fflush(stdout);
  std::fprintf(stderr, "offsetctl: %s\n", text.c_str());
  return status;
}

int ReportFailure(const std::string& error) {
  return Report(exitNoAnswer, StopRequested() ? "stopped before it was done" : error);
}

int ReportEnd(const std::string& error) { return StopRequested() ? exitDone : Report(exitNoAnswer, error); }

std::string SilenceText(const Options& options, const Transport& transport) {
  if (transport.silence == nullptr || transport.silence() <= options.timeout) return "";
  return "nothing has come from the server for " + FixedText(transport.silence(), 1) +
         " s: the simulator stands still, or the network is cut (--timeout waits longer)";
}

int CheckItems(const Options& options) {
  if (options.command != Command::Read && options.command != Command::Write &&
      options.command != Command::Watch) {
    return exitDone;
  }
  std::vector<Item> items;
  std::string error;
  return ParseItems(options, &items, &error) ? exitDone : Report(exitUsage, error);
}

int RunRead(const Options& options, const Transport& transport) {
  std::vector<Item> items;
  std::string error;
  if (!ParseItems(options, &items, &error)) return Report(exitUsage, error);
  if (!transport.readOffsets(TransfersOf(&items), &error)) return ReportFailure(error);
  std::string text = options.json ? "[\n" : "";
  for (size_t i = 0; i < items.size(); ++i) {
    if (options.json) text += "  ";
    text += options.json ? ItemJson(items[i]) : ItemLine(items[i]);
    if (i + 1 < items.size()) text += options.json ? ",\n" : "\n";
  }
  if (options.json) text += "\n]";
  PrintLine(text);
  return exitDone;
}

int RunWrite(const Options& options, const Transport& transport) {
  std::vector<Item> items;
  std::string error;
  if (!ParseItems(options, &items, &error)) return Report(exitUsage, error);
  std::vector<Item> before = items;
  const bool isKnown = transport.readOffsets(TransfersOf(&before), &error);
  if (!isKnown && StopRequested()) return Report(exitNoAnswer, "stopped before anything was written");
  if (!isKnown && options.confirm) return Report(exitNoAnswer, error);
  if (!isKnown) Report(exitDone, "the old values are not known: " + error);
  std::vector<WriteCheck> checks;
  for (size_t i = 0; i < items.size(); ++i) {
    checks.push_back(CheckOf(items[i], KnownOffsets(), before[i].bytes.data()));
    if (items[i].row != nullptr && !items[i].row->writable) {
      Report(exitDone, items[i].shown + " only shows: the simulator does not follow this write");
    }
  }
  const std::vector<Transfer> transfers = TransfersOf(&items);
  const bool written = !options.confirm ? transport.writeOffsets(transfers, &error)
                       : transport.writeConfirmed != nullptr
                           ? transport.writeConfirmed(transfers, &checks, &error)
                           : WriteAndRead(transport, transfers, options.timeout, &checks, &error);
  if (!written && StopRequested()) {
    return Report(exitNoAnswer, options.confirm
                                    ? "stopped before the simulator had followed: the values were sent"
                                    : "stopped before the server had taken the values");
  }
  if (!written) return Report(exitNoAnswer, error);
  for (size_t i = 0; i < items.size(); ++i) {
    const std::vector<uint8_t>& after = options.confirm ? checks[i].shown : items[i].bytes;
    PrintLine(ChangeLine(items[i], isKnown ? before[i].bytes.data() : nullptr, after.data()));
  }
  return exitDone;
}

int RunWatch(const Options& options, const Transport& transport) {
  std::vector<Item> items;
  std::string error;
  if (!ParseItems(options, &items, &error)) return Report(exitUsage, error);
  const std::vector<Transfer> transfers = TransfersOf(&items);
  const Clock::time_point start = Clock::now();
  const Clock::time_point end = start + Period(options.seconds);
  std::vector<Item> before;
  uint32_t printed = 0;
  WatchOutput();
  for (Clock::time_point next = start; !StopRequested();) {
    if (!transport.readOffsets(transfers, &error)) {
      return printed == 0 ? ReportFailure(error) : ReportEnd(error);
    }
    error = SilenceText(options, transport);
    if (!error.empty()) return Report(exitNoAnswer, error);
    for (size_t i = 0; i < items.size(); ++i) {
      if (!before.empty() && items[i].bytes == before[i].bytes) continue;
      PrintLine(options.json ? ItemJson(items[i]) : ItemLine(items[i]));
      if (++printed == options.count) return exitDone;
    }
    before = items;
    if (std::fflush(stdout) != 0) return exitDone;  // the reader of our output has gone
    next = std::max(next + Period(1 / options.rate), Clock::now());
    if (options.seconds > 0 && next > end) {
      WaitForStop(SecondsUntil(end));
      return exitDone;
    }
    WaitForStop(SecondsUntil(next));
  }
  return exitDone;
}

int RunDump(const Options& options, const Transport& transport) {
  std::vector<uint8_t> bytes(offsetMemorySize);
  std::string error;
  if (!transport.readOffsets({{0, offsetMemorySize, bytes.data()}}, &error)) return ReportFailure(error);
  const char* path = options.items[0].c_str();
  FILE* file = std::fopen(path, "wb");
  if (file == nullptr) return Report(exitUsage, std::string("cannot write ") + path);
  const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), file);
  if (std::fclose(file) != 0 || written != bytes.size()) {
    return Report(exitUsage, std::string("cannot write all of ") + path + ": is the disk full?");
  }
  return exitDone;
}

int RunList(const Options& options) {
  const std::vector<const OffsetName*> found = Search(KnownOffsets(), options.items);
  if (found.empty()) {
    std::string wanted;
    for (const std::string& word : options.items) wanted += (wanted.empty() ? "" : " ") + word;
    const std::string nearest = NearestText(KnownOffsets(), wanted);
    return Report(exitUsage, "no offset's name, meaning, unit or subject holds \"" + wanted + "\"" +
                                 (nearest.ends_with('?') ? nearest : ""));
  }
  size_t width = 0;
  for (const OffsetName* row : found) width = std::max(width, std::string(row->name).size());
  for (size_t i = 0; i < found.size(); ++i) {
    const OffsetName& row = *found[i];
    const std::string type = TypeText(row.type, row.length);
    const char* access = row.readOnly ? "read-only" : row.writable ? "read/write" : "read";
    if (options.json) {
      std::printf(
          "%s  {\"name\": \"%s\", \"offset\": %u, \"type\": \"%s\", \"unit\": \"%s\", \"access\": \"%s\"}%s",
          i == 0 ? "[\n" : "", row.name, row.offset, type.c_str(), row.unit, access,
          i + 1 < found.size() ? ",\n" : "\n]\n");
      continue;
    }
    std::printf("%-*s  %-7s  %-8s %-10s %-8s %s\n", static_cast<int>(width), row.name,
                HexText(row.offset, 4).c_str(), type.c_str(), access, row.unit, row.meaning);
  }
  return exitDone;
}

}  // namespace ctl
