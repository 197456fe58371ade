// Harness for tests of the custom offsets: the stand-in simulator without a plug-in, logs and the offsets file
// in a folder of the test's own, and the program's registry and cycles filled as at start.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/log.h"
#include "custom/custom.h"
#include "row_harness.h"
#include "test_tools.h"

namespace custom {

inline std::string Folder() { return testing::TempDir() + "tavrix_custom/Resources/plugins/TAVRIX/"; }

inline void WriteFile(const std::string& text) { tools::WriteFile(Folder() + "TAVRIXOffsets.cfg", text); }
inline std::string Log() { return tools::ReadFile(Folder() + "TAVRIX.txt"); }

// Writes the file and loads it; the log begins anew.
inline void Load(const std::string& text) {
  WriteFile(text);
  OpenLogs(Folder().c_str(), nullptr);
  LoadCustomOffsets();
}

inline void Start() {
  std::filesystem::remove_all(testing::TempDir() + "tavrix_custom");
  std::filesystem::create_directories(Folder());
  rows::Start("jet", {}, testing::TempDir() + "tavrix_custom");
  ConnectCustomOffsets();
  OpenLogs(Folder().c_str(), nullptr);
}

inline void Stop() {
  ClearCustomOffsets();
  CloseLogs();
  rows::Stop();
}

struct Harness : testing::Test {
  void SetUp() override { Start(); }
  void TearDown() override { Stop(); }
};

// The write cycle of one frame.
inline void WriteFrame() { WriteCycle(0, 0, 0, nullptr); }

// Datarefs set since the last call, as the console lists them.
inline std::string Writes() {
  const std::string answer = sim::SimCommand("writes");
  return answer.size() > 3 ? answer.substr(3) : "";
}

// The text of each fenced block of that kind in a document.
inline std::vector<std::string> Blocks(const char* document, const char* kind) {
  const std::string text = tools::ReadFile(std::string(TAVRIX_SOURCE_DIR "/docs/").append(document));
  std::vector<std::string> blocks;
  std::string fence = "```";
  fence.append(kind).append("\n");
  for (size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
    at += fence.size();
    blocks.push_back(text.substr(at, text.find("```", at) - at));
  }
  return blocks;
}

}  // namespace custom
