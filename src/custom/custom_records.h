// Records of the user's offsets file, as the loader keeps them for the whole time until the next load.
//
// Variable-length parts (tokens, operations, actions, texts) lie in shared arrays of the table set, so an
// entry costs what its line needs. The set never changes after loading, except for what the simulator's
// thread alone uses (held commands, what a refresh has computed) and for `ends` (under the offset lock).
#pragma once
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "bridge/accessor.h"

// Value types in the order of their codes; a word that is none of them leaves code 0 and size 0.
enum class CustomType : uint8_t { U8, S8, U16, S16, U32, S32, U64, S64, F32, F64 };

enum class CustomAccess : uint8_t { Read = 0, Write = 1, ReadWrite = 2 };

// A "Dataref" line: the name by which expressions refer to a dataref.
struct CustomDatarefEntry {
  std::string_view alias;
  const char* path;  // without index suffix
  void* handle;      // the simulator's, null when it does not publish the path
  int32_t index;     // array element
  Accessor kind;     // None for a word that is no kind, else one that the file states: never Any
};

// One step of a compiled expression.
enum class Op : uint8_t {
  Number,   // pushes `number`
  Dataref,  // pushes the value of `dataref`
  Input,    // pushes the input value
  Add,
  Subtract,
  Multiply,
  Divide,
  DivideWhole,
  Power,
  And,
  Or,
  Remainder,
  Equal,
  NotEqual,
  Greater,
  GreaterOrEqual,
  Less,
  LessOrEqual,
  Select,
  Absolute,
  Round,
};
struct Operation {
  Op op;
  union {
    double number;
    const CustomDatarefEntry* dataref;
  };
};
// A stretch of CustomTables::operations. Never fails: an expression that would end in one of the fixed
// results for faulty expressions is compiled into that number.
struct Expression {
  uint32_t first, count;
};

// An "Offset" line.
struct CustomOffsetEntry {
  uint16_t offset;
  CustomType type;
  uint8_t size;  // bytes in the offset memory, 0 for an unknown type word
  CustomAccess access;
  int32_t number;       // refresh group 1 to 8; any other: never refreshed
  int32_t tokenCount;   // of the expressions; zero or less: none
  uint32_t firstToken;  // in CustomTables::tokens
  Expression read;
  Expression write;                       // of the last write target whose alias exists
  const CustomDatarefEntry* writeTarget;  // null when there is none
};

// A "Command" line. Its groups stand in the action slots 0, 3, 6 ...; the slots between are blank. Slots
// from actionCount on are never looked up or acted on.
struct CustomCommandEntry {
  uint16_t offset;
  CustomType type;
  uint8_t size;
  int32_t actionCount;              // slots
  uint32_t firstGroup, groupCount;  // in CustomTables::actions
};
struct CommandAction {
  const char* name;
  void* handle;  // null when the simulator has no such command
  double value;
  int32_t mode;
  bool held;  // begun and not ended; simulator's thread only
};

// A command whose pending write made room for another command's: what it would have ended is ended all the
// same. One a command; under the offset lock.
struct CustomCommandEnd {
  double value;  // the displaced write
  bool waiting;
  bool listed;  // stands in CustomTables::endList
};

// A client's write to a command.
struct CustomCommandWrite {
  const CustomCommandEntry* entry;
  double value;
  uint32_t ticket = 0;  // of an own write
};

// A refreshed entry and the bytes of its value in this run.
struct CustomRefreshItem {
  const CustomOffsetEntry* entry;
  uint8_t bytes[8];
  bool missed;  // the batch that begins here has found the lock busy
  bool asked;   // its datarefs are being asked; found so at a run, the one before ended here
};

constexpr int customRefreshGroups = 8;

struct CustomTables {
  std::vector<CustomOffsetEntry> offsets;    // sorted by offset as a signed 16-bit number
  std::vector<CustomDatarefEntry> datarefs;  // sorted by alias, byte by byte
  std::vector<CustomCommandEntry> commands;  // sorted by offset as an unsigned number
  std::vector<int16_t> offsetKeys;           // the sort keys alone, for the dispatcher's search
  std::vector<uint16_t> commandKeys;

  std::vector<std::string_view> tokens;
  std::vector<Operation> operations;
  std::vector<CommandAction> actions;
  std::unique_ptr<char[]> text;                                 // every token, each ended by a NUL
  std::vector<CustomRefreshItem> refresh[customRefreshGroups];  // the entries of each group, in table order
  std::vector<std::string_view> unresolved;         // names that the simulator does not have, each once
  std::unique_ptr<CustomCommandEnd[]> ends;         // as many as commands
  std::unique_ptr<uint32_t[]> endList;              // the first customEndCount: places in `ends`
  std::unique_ptr<CustomCommandWrite[]> endsTaken;  // out of them, for the simulator's thread
};
