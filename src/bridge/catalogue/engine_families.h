// Rows that repeat per engine: one shape, and the places of the up to four engines beside it. The engines'
// blocks lie at irregular offsets, so the places are listed and not computed.
#pragma once
#include <array>
#include <span>

#include "bridge/catalogue.h"
#include "bridge/catalogue/losses.h"

constexpr int engineCount = 4;

// Type of the first engine as clients know it (0 is a piston engine), asked of the simulator. Simulator's
// thread, no lock held.
int PresentEngineType();

// How each aircraft shows and takes the value, engine by engine.
using EngineVariants = std::array<std::span<const Variant>, engineCount>;

struct Family {
  OffsetRow shape;  // without offset and member; an array's element, and what is prepared, is the engine's
  uint32_t offsets[engineCount];  // 0: this engine has no such row
  EngineVariants variants = {};   // where add-ons count, instead of the shape's source and target
};

constexpr Source SourceOf(Source shape, int engine) {
  if (IsArray(shape.accessor) || shape.accessor == Accessor::Any) shape.element = engine;
  return shape;
}
constexpr OffsetRow RowOf(const Family& family, int engine) {
  OffsetRow row = family.shape;
  row.offset = family.offsets[engine];
  row.member = engine + 1;
  row.source = SourceOf(row.source, engine);
  row.write.target = SourceOf(row.write.target, engine);
  if (row.prepared != nullptr) row.prepared += engine;
  row.variants = family.variants[static_cast<size_t>(engine)];
  return row;
}
constexpr size_t Members(const Family& family) {
  size_t members = 0;
  for (uint32_t offset : family.offsets) members += offset != 0 ? 1 : 0;
  return members;
}

// The rows of families that read the same datarefs, engine by engine, so that the rows of one engine stand
// together and share the simulator call.
template <const Family&... families>
constexpr auto EngineRows() {
  std::array<OffsetRow, (Members(families) + ...)> rows = {};
  size_t filled = 0;
  const auto add = [&](const Family& family, int engine) {
    if (family.offsets[engine] != 0) rows[filled++] = RowOf(family, engine);
  };
  for (int engine = 0; engine < engineCount; engine++) (add(families, engine), ...);
  return rows;
}

// Several pieces as one table.
template <size_t... counts>
constexpr auto Joined(const std::array<OffsetRow, counts>&... parts) {
  std::array<OffsetRow, (counts + ...)> rows = {};
  size_t filled = 0;
  const auto add = [&](const auto& part) {
    for (const OffsetRow& row : part) rows[filled++] = row;
  };
  (add(parts), ...);
  return rows;
}
