// What the simulator is asked for at start, name by name: the linker leads the look-ups of the whole program
// through the two functions below (tests/CMakeLists.txt).
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "row_harness.h"
#include "shell/lifecycle.h"

namespace {

#include "start_names.inc"

using Names = std::vector<std::string>;
Names* dataRefNames = nullptr;
Names* commandNames = nullptr;

Names Expand(const char* list) {
  Names names;
  std::istringstream words(list);
  std::string folder;
  for (std::string word; words >> word;) {
    if (word.back() == '/') {
      folder = "sim/" + word;
    } else {
      names.push_back(folder + word);
    }
  }
  return names;
}

}  // namespace

extern "C" {
XPLMDataRef __real_XPLMFindDataRef(const char* name);
XPLMCommandRef __real_XPLMFindCommand(const char* name);
XPLMDataRef __wrap_XPLMFindDataRef(const char* name);
XPLMCommandRef __wrap_XPLMFindCommand(const char* name);

XPLMDataRef __wrap_XPLMFindDataRef(const char* name) {
  if (dataRefNames != nullptr) dataRefNames->emplace_back(name);
  return rows::nothingIsPublished ? nullptr : __real_XPLMFindDataRef(name);
}
XPLMCommandRef __wrap_XPLMFindCommand(const char* name) {
  if (commandNames != nullptr) commandNames->emplace_back(name);
  return rows::nothingIsPublished ? nullptr : __real_XPLMFindCommand(name);
}
}

namespace {

TEST(StartNames, AreAskedForOnceAndInTheirOrder) {
  Names dataRefs = Expand(startDataRefs), commands = Expand(startCommands);
  ASSERT_EQ(dataRefs.size(), 634u);
  ASSERT_EQ(commands.size(), 25u);
  // Enabling is not part of it.
  static const sim::PluginEntry entry = {StartPlugin, StopPlugin, [] { return 0; }, [] {},
                                         [](int, int, void*) {}};
  sim::Options options;
  options.root = testing::TempDir() + "tavrix_start_names";
  options.rate = 0;
  options.linked = &entry;
  Names askedDataRefs, askedCommands;
  dataRefNames = &askedDataRefs;
  commandNames = &askedCommands;
  sim::SimStart(options);
  dataRefNames = commandNames = nullptr;
  sim::SimStop();
  // Others may follow, but none of these again.
  ASSERT_GE(askedDataRefs.size(), dataRefs.size());
  for (size_t i = dataRefs.size(); i < askedDataRefs.size(); ++i) {
    EXPECT_EQ(std::count(dataRefs.begin(), dataRefs.end(), askedDataRefs[i]), 0) << askedDataRefs[i];
  }
  askedDataRefs.resize(dataRefs.size());
  EXPECT_EQ(askedDataRefs, dataRefs);
  EXPECT_EQ(askedCommands, commands);
}

}  // namespace
