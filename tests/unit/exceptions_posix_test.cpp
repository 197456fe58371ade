// Exceptions at the doors: steps that must all run, and what is passed on. That the plug-in file tells its own
// exceptions from those of other modules is seen in that file alone: tests/e2e/test_other_hosts.py.
#include <gtest/gtest.h>
#include <unwind.h>

#include <initializer_list>
#include <new>
#include <string>

#include "platform/exceptions.h"

namespace {

std::string steps;
_Unwind_Exception foreign;

// An exception of another language: nobody's C++ type.
void ThrowForeign() {
  steps += "foreign ";
  foreign = {};
  foreign.exception_class = 0x4F5448455200;
  _Unwind_RaiseException(&foreign);
}
void Plain() { steps += "plain "; }
void ThrowOwn() {
  steps += "own ";
  throw std::bad_alloc();
}
int Door() { return ThrowOwn(), 1; }
int ForeignDoor() { return ThrowForeign(), 1; }

TEST(Exceptions, AllStepsRunAndForeignOnesPass) {
  struct Row {
    std::initializer_list<void (*)()> run;
    const char* steps;
    bool passes;
  };
  const Row rows[] = {
      {{Plain, ThrowOwn, Plain}, "plain own plain ", false},
      {{ThrowForeign, Plain, ThrowOwn, Plain}, "foreign plain own plain ", true},
      {{ThrowOwn, ThrowForeign}, "own foreign ", true},
  };
  for (const Row& row : rows) {
    steps.clear();
    bool passed = false;
    try {
      RunAllSteps(row.run);
    } catch (...) {
      passed = true;
      EXPECT_FALSE(IsOwnException());
    }
    EXPECT_EQ(steps, row.steps);
    EXPECT_EQ(passed, row.passes) << row.steps;
  }
}

TEST(Exceptions, GuardsKeepTheirOwnInside) {
  EXPECT_EQ((Guarded<Door, 42>::Call()), 42);
  EXPECT_ANY_THROW((Guarded<ForeignDoor, 42>::Call()));
}

}  // namespace
