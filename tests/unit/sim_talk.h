// A talk with the stand-in's console, as a script: lines between bars, each with its answer behind an arrow
// ("ok" where there is none).
#pragma once
#include <gtest/gtest.h>

#include <string>

#include "core/sim.h"

inline void Talk(const std::string& script) {
  for (size_t at = 0; at < script.size();) {
    const size_t end = std::min(script.find(" |", at), script.size());
    std::string line = script.substr(at, end - at), answer = "ok";
    at = script.find_first_not_of(" |\n", end);
    if (const size_t arrow = line.find(" -> "); arrow != std::string::npos) {
      answer = line.substr(arrow + 4);
      line.resize(arrow);
    }
    EXPECT_EQ(sim::SimCommand(line), answer) << line;
  }
}
