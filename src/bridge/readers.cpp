// Readers: the rows of a refresh cycle are read, converted and stored together.
//
// A cycle runs in passes, each a few long loops that do one thing, because that is what a processor is fast
// at: all calls to the simulator, the rows' own functions, all conversions type by type, and at last the
// stores, in tight groups of rows with the lock held for one group at a time. What a frame needs of the
// rows is laid out for these passes beforehand (reader_layout.cpp).
#include <algorithm>
#include <cstring>

#include "bridge/cycles.h"
#include "bridge/reader_layout.h"
#include "offsets/memory.h"

RefreshCounters refreshCounters;

namespace {

// Asks the simulator. No lock held.
void FetchNumbers(Reader& reader) {
  float* const elements = reader.elements.data();
  for (const ArrayFetch& array : reader.arrays) {
    float* const first = elements + array.first;
    const int read = XPLMGetDatavf(array.handle, first, 0, array.count);
    if (read < array.count) std::fill(first + std::max(read, 0), first + array.count, 0.0F);  // beyond its end
  }
  double* number = reader.numbers.data() + reader.elements.size();
  for (const XPLMDataRef handle : reader.floatHandles) *number++ = static_cast<double>(XPLMGetDataf(handle));
  for (const XPLMDataRef handle : reader.intHandles) *number++ = XPLMGetDatai(handle);
  for (const Source& source : reader.others) *number++ = ReadSource(source);
  // The elements last: a load right behind the store of the same bytes would wait for it.
  std::copy(reader.elements.begin(), reader.elements.end(), reader.numbers.begin());
}

// Runs the rows' functions; marks the places that are left as they are. No lock held.
void Derive(Reader& reader) {
  double* number = reader.numbers.data() + reader.numbers.size() - reader.derivations.size();
  for (const Derivation& derivation : reader.derivations) {
    if (derivation.shown != nullptr) {
      *number++ = IsSwitchOn(*derivation.shown);
      continue;
    }
    if (derivation.read == nullptr) {
      *number++ = derivation.convert(*derivation.from);
      continue;
    }
    double value = 0;
    if (!derivation.read(*derivation.row, &value)) reader.groups[derivation.group].left |= derivation.bit;
    *number++ = value;
  }
}

void EncodeItems(Reader& reader) {
  const Item* item = reader.items.data();
  uint8_t* bytes = reader.bytes.data();
  for (const Segment& segment : reader.segments) {
    segment.encode(item, segment.count, bytes);
    item += segment.count;
    bytes += segment.bytes;
  }
}

template <typename T>
const Place* StoreAs(const Place* place, uint32_t count, const uint8_t* bytes) {
  const Place* const end = place + count;
#pragma GCC unroll 4
  for (; place != end; place++) std::memcpy(offsetMemory.bytes + place->offset, bytes + place->from, sizeof(T));
  return end;
}

// The lock is held.
void StoreGroup(const Group& group, const Place* place, const uint8_t* bytes) {
  if (group.left != 0) {
    for (size_t i = 0; i < group.eights + group.fours + group.twos + group.ones; i++, place++) {
      if ((group.left >> i & 1) == 0) {
        std::memcpy(offsetMemory.bytes + place->offset, bytes + place->from, place->width);
      }
    }
    return;
  }
  place = StoreAs<uint64_t>(place, group.eights, bytes);
  place = StoreAs<uint32_t>(place, group.fours, bytes);
  place = StoreAs<uint16_t>(place, group.twos, bytes);
  StoreAs<uint8_t>(place, group.ones, bytes);
}

// Stores under the lock unless that is busy, and counts. Returns whether it was missed.
template <typename Store>
bool Missed(bool lastTry, Store store) {
  if (!TryEnterLock(&offsetLock)) {
    if (lastTry) refreshCounters.dropped++;
    return true;
  }
  store();
  LeaveLock(&offsetLock);
  refreshCounters.stored++;
  return false;
}

bool MissedGroup(const Reader& reader, const Group& group, bool lastTry) {
  return Missed(lastTry, [&] { StoreGroup(group, &reader.places[group.first], reader.bytes.data()); });
}

bool MissedText(const Text& text, bool lastTry) {
  return Missed(lastTry,
                [&] { std::memcpy(offsetMemory.bytes + text.row->offset, text.bytes, text.row->length); });
}

// Returns whether anything was missed.
bool StoreGroups(Reader& reader) {
  bool missed = false;
  for (Group& group : reader.groups) missed |= group.missed = MissedGroup(reader, group, false);
  return missed;
}

bool RunTexts(Reader& reader) {
  bool missed = false;
  for (Text& text : reader.texts) {
    std::memset(text.bytes, 0, sizeof text.bytes);
    text.missed =
        text.row->readText != nullptr && text.row->readText(*text.row, text.bytes) && MissedText(text, false);
    missed |= text.missed;
  }
  return missed;
}

// What has found the lock busy is tried once more; a client that holds it is done soon. Groups behind the first
// one that was missed are stored again: where rows overlap, the later one must show.
void StoreMissed(Reader& reader) {
  bool behind = false;
  for (const Group& group : reader.groups) {
    if (group.missed) {
      MissedGroup(reader, group, true);
      behind = true;
    } else if (behind && TryEnterLock(&offsetLock)) {
      StoreGroup(group, &reader.places[group.first], reader.bytes.data());
      LeaveLock(&offsetLock);
    }
  }
  for (const Text& text : reader.texts) {
    if (text.missed) MissedText(text, true);
  }
}

}  // namespace

void RunReaders(Cycle cycle, bool sameFrame) {
  Reader& reader = readers[static_cast<size_t>(cycle)];
  const KeepReads keep(!sameFrame);
  Reader& first = readers[static_cast<size_t>(Cycle::C1)];
  if (sharedFrame != keptFrame) {
    FetchNumbers(first);
    sharedFrame = keptFrame;
  }
  if (&reader != &first) FetchNumbers(reader);
  for (const Prepare prepare : reader.prepares) prepare();
  for (Group& group : reader.groups) group.left = 0;
  Derive(reader);
  const SimulatorTurn turn;
  EncodeItems(reader);
  const bool groupsMissed = StoreGroups(reader);
  const bool textsMissed = RunTexts(reader);
  if (groupsMissed || textsMissed) StoreMissed(reader);
}
