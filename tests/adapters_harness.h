// Harness for tests of the recognition of add-ons: the stand-in simulator, and the main log.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "aircraft/adapters.h"
#include "base/log.h"
#include "row_harness.h"
#include "test_tools.h"

class Adapters : public testing::Test {
 protected:
  void SetUp() override {
    folder = std::filesystem::temp_directory_path() / "tavrix_adapters_test";
    ASSERT_TRUE(OpenLogs((folder / "").string().c_str(), [](const char*) {}));
    rows::Start();
  }
  void TearDown() override {
    rows::Stop();
    CloseLogs();
    std::filesystem::remove_all(folder);
  }

  // How often a text stands in the main log.
  int Logged(const std::string& text) const {
    return tools::CountText(tools::ReadFile(folder / "TAVRIX.txt"), text);
  }
  // What the two cycles that recognise do.
  static void RunCycles() {
    rows::Refresh(Cycle::C313);
    RecogniseAircraft();
    RunEc135Adapter();
  }
  static auto LoadedCount() { return std::count(loadedAddOns.begin(), loadedAddOns.end(), true); }
  // Handles of the names that begin so: how many are there, and whether these are what the simulator publishes.
  template <typename Entry, typename Find>
  static int Handles(const Entry* entry, const std::string& prefix, Find find) {
    int count = 0;
    for (; entry != nullptr; entry = entry->next) {
      if (!std::string(entry->name).starts_with(prefix) || entry->handle == nullptr) continue;
      EXPECT_EQ(entry->handle, find(entry->name)) << entry->name;
      ++count;
    }
    return count;
  }
  static int DataRefHandles(const char* prefix) { return Handles(firstDataRef, prefix, XPLMFindDataRef); }
  static int CommandHandles(const char* prefix) { return Handles(firstCommand, prefix, XPLMFindCommand); }

  std::filesystem::path folder;
};
