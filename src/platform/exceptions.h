// Exceptions at the doors of the plug-in: entry points, flight loops, handlers, window callbacks, threads.
//
// What this module throws itself (out of memory, mostly) never leaves a door. What comes from somewhere else
// passes: another plug-in's accessor or handler, called through the simulator, may throw through our frames to
// whoever called us, and a thread that is being cancelled unwinds through them. Unwinding gives back locks and
// whatever else is held by an object; nothing on the way may be noexcept.
//
// How the two are told apart: the C++ run time stands in the plug-in file and is visible to nobody else, so
// that all types of what we throw lie in the file, and no type of what others throw does.
#pragma once
#include <initializer_list>

// Takes the memory that throwing needs of the calling thread: the system ends the program when there is none at
// the first throw. The simulator's thread, at start; our own threads have theirs from their beginning.
void PrepareExceptions();
// Whether the exception that is being handled is one of this module. In a catch block; any thread.
bool IsOwnException();
// Throws on what is not of this module. First thing in every `catch (...)` that a call to the simulator may
// throw into; any thread.
void PassForeignException();

// Runs every step, whatever the others do: what must not be left half done. An exception of our own ends its
// step alone; one that is not ours passes when all have run, the last of several.
void RunAllSteps(std::initializer_list<void (*)()> steps);

// A callback that lets none of our own exceptions out: Guarded<Function>::Call has the function's signature and
// answers `instead` after one.
template <auto function, int instead>
struct Guarded;
template <typename Result, typename... Arguments, Result (*function)(Arguments...), int instead>
struct Guarded<function, instead> {
  static Result Call(Arguments... arguments) {
    try {
      return function(arguments...);
    } catch (...) {
      PassForeignException();
      return static_cast<Result>(instead);
    }
  }
};
