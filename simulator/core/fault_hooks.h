// How the stand-in makes the system fail for a plug-in: a plug-in that is built for tests exports
//     extern "C" void UseFaultHooks(const FaultHooks* hooks)
// which is called after the file is loaded and before it is started. The record stays as long as the program.
#pragma once
#include <cstdint>

enum class SystemKind { Thread, Event, Socket, Window, File };

struct FaultHooks {
  // The plug-in is about to create one of these: true when the system has to refuse. Any thread.
  bool (*fails)(SystemKind kind);
  // By how many milliseconds the wall clock has jumped. Any thread.
  int64_t (*clockJump)();
};

using UseFaultHooksProc = void (*)(const FaultHooks* hooks);
constexpr char useFaultHooksName[] = "UseFaultHooks";
