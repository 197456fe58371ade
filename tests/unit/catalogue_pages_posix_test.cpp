// What the published pages say of the catalogue is what it holds: each name, number, word and source.
#include <gtest/gtest.h>

#include <sstream>

#include "reference/aircraft_page.h"
#include "reference/offsets_json.h"
#include "reference/offsets_page.h"
#include "test_tools.h"

namespace {

TEST(CataloguePages, SayWhatTheCatalogueHolds) {
  const std::pair<const char*, std::string> pages[] = {{"offsets.json", MakeOffsetsJson()},
                                                       {"offsets.md", MakeOffsetsPage()}};
  for (const auto& [name, made] : pages) {
    std::istringstream expected(tools::ReadFile(std::string(TAVRIX_SOURCE_DIR "/docs/") + name)), lines(made);
    std::string want, have;
    for (int number = 1; std::getline(lines, have); ++number) {
      std::getline(expected, want);
      ASSERT_EQ(have, want) << name << ':' << number
                            << ": cmake --build --preset linux --target pages writes it anew";
    }
    EXPECT_FALSE(std::getline(expected, want)) << name;
  }
  EXPECT_TRUE(tools::ReadFile(TAVRIX_SOURCE_DIR "/docs/aircraft.md").ends_with(MakeAircraftPart()));
}

}  // namespace
