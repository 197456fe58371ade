// How the rows of a refresh cycle are laid out for being run: made when the handles are bound, so that a run is
// a few long loops over plain arrays. Inner header of the readers. Simulator's thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "bridge/catalogue.h"

// The first elements of an array of floats, asked for in one call.
struct ArrayFetch {
  XPLMDataRef handle;
  DataRef* ref;
  int first, count;  // where they lie among the elements, and so many
};

// The number of a row that is more than a factor: its own reading, a conversion, or a number of a snapshot.
struct Derivation {
  const Variant* shown;  // a switch that shows so; null: `read`
  ReadRow read;          // null: `convert`
  Convert convert;       // null: as it is
  const double* from;    // what is converted
  const OffsetRow* row;
  uint32_t group;
  uint32_t bit;  // of its place, in the group's `left`
};

// stored = encoded (number x factor + add)
struct Item {
  double factor, add;
  const double* number;
};

using Encode = void (*)(const Item* item, size_t count, uint8_t* bytes);
// Items of one type that stand together.
struct Segment {
  Encode encode;
  size_t count, bytes;
};

// Where an item's bytes go, and where they lie until then.
struct Place {
  uint32_t offset;
  uint16_t from, width;
};

struct Group {
  uint32_t first;                      // of its places, widest first
  uint32_t eights, fours, twos, ones;  // so many of each width
  uint32_t left;                       // bit n: its n-th place is left as it is in this run
  bool missed;                         // found the lock busy in this run
};

struct Text {
  const OffsetRow* row;
  bool missed;
  char bytes[256];  // what the row gave in this run
};

// A row with where it was laid.
struct Laid {
  const OffsetRow* row;
  size_t group, place, item, from;
};

struct Reader {
  std::vector<Laid> rows;  // numbers, in the order in which their functions run
  std::vector<Text> texts;
  // Laid out when the handles are bound:
  std::vector<Prepare> prepares;  // each once
  // What is asked of the simulator; the answers lie among the numbers in this order.
  std::vector<ArrayFetch> arrays;
  std::vector<DataRef*> floatRefs, intRefs;
  std::vector<XPLMDataRef> floatHandles, intHandles;
  std::vector<Source> others;
  std::vector<Derivation> derivations;
  std::vector<Item> items;  // by type
  std::vector<Segment> segments;
  std::vector<Group> groups;
  std::vector<Place> places;  // group by group
  // Of the run: the arrays' elements, all that the simulator gave and then what functions made, and all that is
  // to be stored.
  std::vector<float> elements;
  std::vector<double> numbers;
  std::vector<uint8_t> bytes;
};

constexpr size_t cycleCount = static_cast<size_t>(Cycle::Count);
extern Reader readers[cycleCount];
