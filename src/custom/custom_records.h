// Records of the user's offsets file, as the loader keeps them for the whole time until the next load.
//
// Variable-length parts (tokens, operations, actions, texts) lie in shared arrays of the table set, so an
// entry costs what its line needs. The set never changes after loading, except for what the simulator's
// thread alone uses: held commands and what the refresh stored last.
#pragma once
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

// Value types in the order of their codes; a word that is none of them leaves code 0 and size 0.
enum class CustomType : uint8_t { U8, S8, U16, S16, U32, S32, U64, S64, F32, F64 };

enum class CustomAccess : uint8_t { Read = 0, Write = 1, ReadWrite = 2 };

// The simulator's data type bits; 0 for a word that is no kind.
enum CustomDatarefKind : uint8_t {
  datarefNone = 0,
  datarefInt = 1,
  datarefFloat = 2,
  datarefDouble = 4,
  datarefFloatArray = 8,
  datarefIntArray = 16,
  datarefData = 32,
};

// A "Dataref" line: the name by which expressions refer to a dataref.
struct CustomDatarefEntry {
  std::string_view alias;
  const char* path;  // without index suffix
  void* handle;      // the simulator's, null when it does not publish the path
  int32_t index;     // array element
  CustomDatarefKind kind;
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

// The refreshed entries of one group, in table order, in batches that are stored under one lock.
struct CustomRefreshItem {
  const CustomOffsetEntry* entry;
  uint8_t last[8];  // what the memory got
};
struct CustomRefreshBatch {
  uint32_t first, count;  // in CustomRefreshGroup::items
  uint32_t generation;    // of the memory when it was stored
  bool stored;            // `last` of all items holds what the memory got
  bool shared;            // others refresh some of the same bytes: store every time
};
struct CustomRefreshGroup {
  std::vector<CustomRefreshItem> items;
  std::vector<CustomRefreshBatch> batches;
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
  std::unique_ptr<char[]> text;  // every token, each ended by a NUL
  CustomRefreshGroup refresh[customRefreshGroups];
};
