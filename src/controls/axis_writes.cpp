#include "controls/axis_writes.h"

#include <algorithm>
#include <cstring>

#include "bridge/slew.h"
#include "controls/axes.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"

namespace {

constexpr uint32_t overrideOffset = 0x310A;

// Under the offset lock.
bool mayWrite;
unsigned held;  // overrides that we have switched on
size_t first;   // control that is served first, so that none of several has to wait for ever

// As a client's request does it; the offset lock is held.
bool Write(uint32_t offset, uint32_t size, const uint8_t* bytes, RequestMarks* marks, uint32_t* ticket) {
  if (!DispatchOwnWrite(offset, size, bytes, marks, ticket)) return false;
  std::memcpy(offsetMemory.bytes + offset, bytes, size);
  return true;
}

// A write there sets all four: those that are on by somebody else's doing stay on, and no others. What a
// program has switched off is ours no longer.
void ChangeOverrides(const OverrideChange& change, RequestMarks* marks) {
  held &= ~overridesCleared.exchange(0);
  unsigned before = change.present | held;
  const uint32_t waiting = pendingFlags.flags[overrideOffset];
  if (waiting != 0) before = pendingValues.bytes[overrideOffset];
  if (waiting == byClient) held &= before;
  const unsigned off = held & ~change.needed;
  held = (held & change.needed) | (change.taken & ~before);
  const auto byte = static_cast<uint8_t>((before | change.taken) & ~off);
  uint32_t ticket = 0;
  if (byte != before || byte != offsetMemory.bytes[overrideOffset])
    Write(overrideOffset, 1, &byte, marks, &ticket);
}

// Writes that waited among the user's own offsets: one that another has replaced is due again.
bool FollowTickets(AxisOutput* output) {
  bool waits = false;
  for (unsigned target = 0; target < engineOffsets; ++target) {
    uint32_t& ticket = output->tickets[target];
    if (ticket == 0) continue;
    const TicketState state = StateOfOwnWrite(ticket);
    if (state == TicketState::Replaced) output->due |= 1u << target;
    if (state == TicketState::Waits) {
      waits = true;
    } else {
      ticket = 0;
    }
  }
  return waits;
}

// Returns whether something is left.
bool WriteControl(size_t control, const AxisAssignment& assignment, AxisOutput* output, RequestMarks* marks) {
  uint8_t bytes[8];
  EncodeNumber(assignment.targets[0], output->number, bytes);
  for (unsigned target = 0; target < static_cast<unsigned>(assignment.targetCount); ++target) {
    if ((output->due & 1u << target) == 0) continue;
    const AxisTarget& place = assignment.targets[target];
    uint32_t& ticket = output->tickets[target];
    if (!Write(place.offset, place.size, bytes, marks, &ticket)) continue;
    output->due &= ~(1u << target);
    if (ticket != 0) first = (control + 1) % axisControlCount;
  }
  return output->due != 0 || std::any_of(std::begin(output->tickets), std::end(output->tickets),
                                         [](uint32_t ticket) { return ticket != 0; });
}

}  // namespace

void BeginAxisWrites() {
  const LockScope lock(&offsetLock);
  mayWrite = true;
  held = 0;
  first = 0;
}

void StopAxisWrites() {
  const LockScope lock(&offsetLock);
  mayWrite = false;
  // What still waits must not take them at the next enable.
  if (pendingFlags.flags[overrideOffset] != 0)
    pendingValues.bytes[overrideOffset] &= static_cast<uint8_t>(~held);
}

bool WriteAxes(const AxisAssignment (&controls)[axisControlCount], AxisOutput (&outputs)[axisControlCount],
               const OverrideChange& change) {
  const bool isIdle = std::all_of(std::begin(outputs), std::end(outputs), [](const AxisOutput& output) {
    return output.due == 0 && std::all_of(std::begin(output.tickets), std::end(output.tickets),
                                          [](uint32_t ticket) { return ticket == 0; });
  });
  if (isIdle && !change.isDue) return false;
  RequestMarks marks = {};
  bool isLeft = false;
  {
    const ServerLockScope lock;
    if (!mayWrite) return false;
    if (change.isDue) ChangeOverrides(change, &marks);
    // Before anything new is written.
    for (AxisOutput& output : outputs) isLeft |= FollowTickets(&output);
    const size_t begin = first;
    for (size_t i = 0; i < axisControlCount; ++i) {
      const size_t control = (begin + i) % axisControlCount;
      if (outputs[control].due != 0)
        isLeft |= WriteControl(control, controls[control], &outputs[control], &marks);
    }
  }
  FinishRequest(marks);
  return isLeft;
}
