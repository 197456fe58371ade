// Fuzz target: what the client tool reads of an installation. The first letter says what the rest of the input
// is: an offsets file to add a dataref to (m, after a line "DATAREF KIND OFFSET"), one to check (c, after a
// line END behind the log), the plug-in's log (l), the settings file (s), a program file (b), the table of
// other aircraft (t). Places lie within the texts, and what was added is found again and taken out without a
// trace.
#include <limits>
#include <string>
#include <vector>

#include "custom/custom_parser.h"
#include "offsetctl/check.h"
#include "offsetctl/doctor.h"
#include "offsetctl/files.h"
#include "offsetctl/mapping.h"
#include "offsetctl/traffic_rows.h"
#include "require.h"

namespace {

using namespace ctl;

// Whether every line of the file can be read.
bool IsReadable(std::string_view file) {
  CustomFileReader reader = {file, 0};
  CustomLine line;
  int result = 0;
  do {
    result = NextCustomLine(&reader, &line);
  } while (result > 0);
  return result == 0;
}

void CheckMapping(std::string_view text) {
  std::string_view words = Cut(&text, "\n");
  MapRequest request;
  request.dataref = Cut(&words, " ");
  request.kind = Cut(&words, " ");
  request.offset = words;
  Mapping mapping = {}, again = {};
  std::string error;
  if (!PlanMapping(text, KnownOffsets(), request, &mapping, &error)) return Require(!error.empty());
  Require(mapping.offset <= 0xFFFF && mapping.size > 0 && mapping.offset + mapping.size <= 0x10000);
  Require(mapping.exists == mapping.lines.empty() && !mapping.alias.empty());
  if (mapping.exists || !IsReadable(text)) return;
  std::string file(text);
  file += mapping.lines;
  Require(PlanMapping(file, KnownOffsets(), request, &again, &error));
  Require(again.exists && again.offset == mapping.offset && again.alias == mapping.alias);
  const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  for (const Finding& finding : CheckOffsetsFile(file, "", KnownOffsets())) {
    Require(finding.note || finding.line <= lines + 1);  // what we have added is good
  }
  Require(TakeOut(mapping.lines, &file) && file == text);
}

void CheckChecks(std::string_view text) {
  const std::string_view log = Cut(&text, "\nEND\n");
  const auto lines = static_cast<uint32_t>(std::count(text.begin(), text.end(), '\n'));
  uint32_t last = 0;
  for (const Finding& finding : CheckOffsetsFile(text, log, KnownOffsets())) {
    Require(finding.line >= last && finding.line >= 1 && finding.line <= lines + 1 && finding.column >= 1);
    Require(!finding.text.empty());
    last = finding.line;
  }
}

void CheckLog(std::string_view text) {
  for (const Diagnosis& diagnosis : DiagnoseLog(text)) Require(!diagnosis.text.empty());
  LoadFault(text, "a/b[3]", "map66C0");
}

void CheckSettings(std::string_view text) {
  const NetworkSettings settings = ReadNetworkSettings(text);
  for (const Diagnosis& diagnosis : DiagnoseSettings(settings, {0x7F000001, 0xC0A80001})) {
    Require(!diagnosis.text.empty());
  }
  for (const Diagnosis& diagnosis : DiagnoseFirewall(settings)) Require(!diagnosis.text.empty());
}

void CheckTraffic(const uint8_t* data, size_t size) {
  constexpr size_t tableSize = 128 + 96 * 40;
  std::vector<uint8_t> table(tableSize);
  std::copy_n(data, std::min(size, tableSize), table.begin());
  const std::vector<std::string> lines = TrafficLines(table.data(), 47.5, 11.25, 12);
  Require(lines.size() == 13);
  for (const std::string& line : lines) {
    for (const char letter : line) Require(letter >= ' ' && letter <= '~');
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text = TextOf(data + 1, size - 1);
  switch (data[0]) {
    case 'm':
      CheckMapping(text);
      break;
    case 'c':
      CheckChecks(text);
      break;
    case 'l':
      CheckLog(text);
      break;
    case 's':
      CheckSettings(text);
      break;
    case 'b':
      KindOfBytes({data + 1, data + size});
      break;
    case 't':
      CheckTraffic(data + 1, size - 1);
      break;
    default:
      break;
  }
  return 0;
}
