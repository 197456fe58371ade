// Custom offsets while the simulator runs: refreshing entries, staging client writes, applying them.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <span>
#include <utility>

#include "XPLMUtilities.h"
#include "bridge/cycles.h"
#include "bridge/dataref_codec.h"
#include "custom/custom.h"
#include "custom/custom_state.h"
#include "custom/custom_values.h"
#include "custom/expression.h"
#include "offsets/memory.h"

namespace {

constexpr size_t batchItems = 32;      // are stored under one lock
constexpr double writeOnlyValue = 77;  // what the offset of a refreshed write-only entry shows

double ValueOf(const CustomTables& tables, const CustomOffsetEntry& entry) {
  if (entry.access == CustomAccess::Write) return writeOnlyValue;
  return RunExpression(tables.operations.data() + entry.read.first, entry.read.count, 0, ReadDatarefValue);
}

// An entry whose dataref threw at the run before is passed over and shows what it showed: those behind it get
// their turn, and it is asked again at the next run.
void Compute(const CustomTables& tables, std::span<CustomRefreshItem> items) {
  for (CustomRefreshItem& item : items) {
    if (std::exchange(item.asked, false)) continue;
    item.asked = true;
    EncodeCustomValue(item.entry->type, ValueOf(tables, *item.entry), item.bytes);
    item.asked = false;
  }
}

// Whatever stands in the memory is replaced: others than clients write there too. Returns false when the lock
// is busy.
bool TryStore(const CustomTables& tables, std::span<const CustomRefreshItem> items) {
  const SimulatorTurn turn;
  if (!TryEnterLock(&offsetLock)) return false;
  // A client may have withdrawn the tables while we computed: its clear must be the last word.
  if (publishedTables.load(std::memory_order_relaxed) == &tables) {
    for (const CustomRefreshItem& item : items) {
      std::memcpy(offsetMemory.bytes + item.entry->offset, item.bytes, item.entry->size);
    }
  }
  LeaveLock(&offsetLock);
  return true;
}

// A refresh counts once, as stored or as dropped.
void CountStored(bool stored, bool counts) {
  if (counts) (stored ? refreshCounters.stored : refreshCounters.dropped)++;
}

bool IsRefreshed(const CustomOffsetEntry& entry) {
  return entry.number >= 1 && entry.number <= customRefreshGroups && entry.size > 0;
}

bool Ends(const CommandAction& action, double value) { return action.mode == 0 && value != action.value; }

void End(CommandAction* action) {
  if (!action->held) return;
  action->held = false;
  XPLMCommandEnd(action->handle);
}

void Act(CommandAction* action, double value) {
  if (action->handle == nullptr) return;
  if (value != action->value) {
    if (Ends(*action, value)) End(action);
  } else if (action->mode == 1) {
    XPLMCommandOnce(action->handle);
  } else if (!action->held) {
    action->held = true;
    XPLMCommandBegin(action->handle);
  }
}

// The groups of an entry whose slots are among its first `actionCount`.
template <typename Tables>
auto ActionsOf(Tables& tables, const CustomCommandEntry& entry) {
  const uint32_t groups =
      entry.actionCount <= 0 ? 0 : std::min(entry.groupCount, static_cast<uint32_t>(entry.actionCount + 2) / 3);
  return std::span(tables.actions).subspan(entry.firstGroup, groups);
}

uint32_t PlaceOf(const CustomTables& tables, const CustomCommandEntry& entry) {
  return static_cast<uint32_t>(&entry - tables.commands.data());
}

// A pending command makes room for another one: what it ends is kept. Offset lock held.
void KeepEnds(const CustomTables& tables, const CustomCommandWrite& displaced) {
  const auto actions = ActionsOf(tables, *displaced.entry);
  if (std::none_of(actions.begin(), actions.end(),
                   [&](const CommandAction& action) { return Ends(action, displaced.value); })) {
    return;
  }
  const uint32_t place = PlaceOf(tables, *displaced.entry);
  CustomCommandEnd& end = tables.ends[place];
  end.value = displaced.value;
  end.waiting = true;
  if (end.listed) return;
  end.listed = true;
  tables.endList[customEndCount++] = place;
}

template <typename Key>
size_t Find(const std::vector<Key>& keys, Key key) {
  const auto found = std::lower_bound(keys.begin(), keys.end(), key);
  return found != keys.end() && *found == key ? static_cast<size_t>(found - keys.begin()) : keys.size();
}

// Clients' writes have no ticket.
void NoteLost(uint32_t* lost, uint32_t ticket) {
  if (ticket != 0) *lost = ticket;
}

// A client writes `data`, as many bytes as the entry is wide, before they are copied into the memory. Offset
// lock held.
void WriteOffset(const CustomOffsetEntry& entry, const uint8_t* data, uint32_t ticket) {
  if (ticket == 0 && std::memcmp(data, offsetMemory.bytes + entry.offset, entry.size) == 0) return;
  if (entry.access == CustomAccess::Read || entry.writeTarget == nullptr) return;
  if (pendingWrite.offset != entry.offset) NoteLost(&lostWriteTicket, pendingWrite.ticket);
  pendingWrite = {entry.writeTarget, entry.write, DecodeCustomValue(entry.type, data), entry.offset, ticket};
  customPending.store(1, std::memory_order_relaxed);
}

void WriteCommand(const CustomCommandEntry& entry, const uint8_t* data, uint32_t ticket) {
  if (ticket == 0 && std::memcmp(data, offsetMemory.bytes + entry.offset, entry.size) == 0) return;
  const CustomTables& tables = *publishedTables.load(std::memory_order_relaxed);
  if (pendingCommand.entry != nullptr && pendingCommand.entry != &entry) {
    KeepEnds(tables, pendingCommand);
    NoteLost(&lostCommandTicket, pendingCommand.ticket);
  }
  pendingCommand = {&entry, DecodeCustomValue(entry.type, data), ticket};
  tables.ends[PlaceOf(tables, entry)].waiting = false;  // the newer write of the same offset decides
  customPending.store(1, std::memory_order_relaxed);
}

// Moves the kept ends out and returns how many there are. Simulator's thread, offset lock held.
uint32_t TakeEnds(CustomTables* tables) {
  uint32_t count = 0;
  for (uint32_t i = 0; i < customEndCount; ++i) {
    CustomCommandEnd& end = tables->ends[tables->endList[i]];
    if (end.waiting) tables->endsTaken[count++] = {&tables->commands[tables->endList[i]], end.value};
    end = {};
  }
  customEndCount = 0;
  return count;
}

// What was taken of clients' writes and is not carried out yet. Each piece is struck off before the simulator
// is called for it: when a handler or accessor of another plug-in throws, the rest is still here.
struct TakenWrites {
  uint32_t end, ends;  // the next one in endsTaken, and their number
  CustomCommandWrite command;
  uint32_t action;  // the next one of that end or command
  PendingCustomWrite write;
};
TakenWrites taken;

void Take() {
  const SimulatorTurn turn;
  const LockScope lock(&offsetLock);
  customPending.store(0, std::memory_order_relaxed);
  taken = {};
  std::swap(taken.write, pendingWrite);
  std::swap(taken.command, pendingCommand);
  if (customEndCount != 0) taken.ends = TakeEnds(loadedTables);
}

// A client may withdraw the tables meanwhile; only this thread frees them.
void CarryOut() {
  for (; taken.end < taken.ends; taken.end++, taken.action = 0) {
    const CustomCommandWrite& displaced = loadedTables->endsTaken[taken.end];
    const auto actions = ActionsOf(*loadedTables, *displaced.entry);
    while (taken.action < actions.size()) {
      CommandAction& action = actions[taken.action++];
      if (Ends(action, displaced.value)) End(&action);
    }
  }
  if (taken.command.entry != nullptr) {
    const auto actions = ActionsOf(*loadedTables, *taken.command.entry);
    while (taken.action < actions.size()) Act(&actions[taken.action++], taken.command.value);
    taken.command = {};
  }
  const PendingCustomWrite write = std::exchange(taken.write, {});
  if (write.target == nullptr) return;
  const Operation* operations = loadedTables->operations.data() + write.expression.first;
  WriteNumber(write.target->handle, write.target->kind, write.target->index,
              RunExpression(operations, write.expression.count, write.input, ReadDatarefValue));
}

void NoteUnresolved(CustomTables* tables) {
  std::set<std::string_view> noted;
  const auto note = [&](const char* name, const void* handle) {
    if (handle != nullptr || name == nullptr || *name == '\0') return;
    if (noted.insert(name).second) tables->unresolved.push_back(name);
  };
  for (const CustomDatarefEntry& dataref : tables->datarefs) note(dataref.path, dataref.handle);
  for (const CustomCommandEntry& command : tables->commands) {
    for (const CommandAction& action : ActionsOf(*tables, command)) note(action.name, action.handle);
  }
}

// Every one of them, also when a handler of another plug-in throws at one.
void EndAll(std::span<CommandAction> actions) {
  for (size_t i = 0; i < actions.size(); ++i) {
    try {
      End(&actions[i]);
    } catch (...) {
      EndAll(actions.subspan(i + 1));
      throw;
    }
  }
}

}  // namespace

void PrepareCustomTables(CustomTables* tables) {
  NoteUnresolved(tables);
  for (const CustomOffsetEntry& entry : tables->offsets) {
    if (IsRefreshed(entry)) tables->refresh[entry.number - 1].push_back({&entry, {}, false, false});
  }
  tables->ends = std::make_unique<CustomCommandEnd[]>(tables->commands.size());
  tables->endList = std::make_unique<uint32_t[]>(tables->commands.size());
  tables->endsTaken = std::make_unique<CustomCommandWrite[]>(tables->commands.size());
}

void RefreshCustomOffsets(int group) {
  CustomTables* tables = loadedTables;
  if (tables == nullptr || publishedTables.load(std::memory_order_relaxed) != tables) return;
  const std::span<CustomRefreshItem> all = tables->refresh[group - 1];
  const auto batchAt = [&](size_t first) {
    return all.subspan(first, std::min(batchItems, all.size() - first));
  };
  size_t missed = all.size();  // where the first batch stands that found the lock busy
  for (size_t first = 0; first < all.size(); first += batchItems) {
    Compute(*tables, batchAt(first));
    all[first].missed = !TryStore(*tables, batchAt(first));
    if (all[first].missed) {
      missed = std::min(missed, first);
    } else {
      refreshCounters.stored++;
    }
  }
  // Once more, and all from the first missed one on: of entries over the same bytes the later one must show.
  for (size_t first = missed; first < all.size(); first += batchItems) {
    CountStored(TryStore(*tables, batchAt(first)), all[first].missed);
  }
}

CustomSummary SummariseCustomOffsets() {
  const CustomTables* tables = loadedTables;
  if (tables == nullptr) return {0, 0, 0, {}, 0, customLoadFault.c_str()};
  return {tables->offsets.size(), tables->datarefs.size(), tables->commands.size(),
          tables->unresolved,     customFaultyLines,       customLoadFault.c_str()};
}

double ReadDatarefValue(const CustomDatarefEntry& dataref) {
  return ReadNumber(dataref.handle, dataref.kind, dataref.index);
}

const CustomOffsetEntry* FindCustomOffset(uint32_t offset) {
  const CustomTables* tables = publishedTables.load(std::memory_order_relaxed);
  if (tables == nullptr) return nullptr;
  const size_t found = Find(tables->offsetKeys, static_cast<int16_t>(offset));
  return found < tables->offsets.size() ? &tables->offsets[found] : nullptr;
}

const CustomCommandEntry* FindCustomCommand(uint32_t offset) {
  const CustomTables* tables = publishedTables.load(std::memory_order_relaxed);
  if (tables == nullptr) return nullptr;
  const size_t found = Find(tables->commandKeys, static_cast<uint16_t>(offset));
  return found < tables->commands.size() ? &tables->commands[found] : nullptr;
}

CustomOutcome OfferCustomWrite(uint32_t offset, const uint8_t* data, uint32_t supplied, uint32_t ticket) {
  assert(HoldsLock(&offsetLock));
  if (publishedTables.load(std::memory_order_relaxed) == nullptr) return {};
  uint8_t value[8];
  const auto take = [&](uint32_t at, uint32_t size) {
    const uint32_t given = std::min(size, supplied);
    std::memcpy(value, data, given);
    std::memcpy(value + given, offsetMemory.bytes + at + given, size - given);
    return value;
  };
  CustomOutcome outcome = {};
  if (const CustomCommandEntry* command = FindCustomCommand(offset)) {
    WriteCommand(*command, take(command->offset, command->size), ticket);
    outcome.commandSize = command->size;
  }
  const CustomOffsetEntry* entry = FindCustomOffset(offset);
  if (entry == nullptr || entry->size == 0) return outcome;
  WriteOffset(*entry, take(entry->offset, entry->size), ticket);
  outcome.offsetSize = entry->size;
  return outcome;
}

bool IsCustomTurnTaken(uint32_t offset, uint32_t size) {
  assert(HoldsLock(&offsetLock));
  if (pendingWrite.target == nullptr && pendingCommand.entry == nullptr) return false;
  for (uint32_t at = offset; at < offset + size; ++at) {
    const CustomCommandEntry* command = FindCustomCommand(at);
    if (command != nullptr && pendingCommand.entry != nullptr && pendingCommand.entry != command) return true;
    const CustomOffsetEntry* entry = FindCustomOffset(at);
    if (entry != nullptr && pendingWrite.target != nullptr && pendingWrite.offset != entry->offset) return true;
  }
  return false;
}

TicketState LookAfterCustomTicket(uint32_t ticket) {
  assert(HoldsLock(&offsetLock));
  if (pendingWrite.ticket == ticket || pendingCommand.ticket == ticket) return TicketState::Waits;
  return lostWriteTicket == ticket || lostCommandTicket == ticket ? TicketState::Replaced : TicketState::Done;
}

void ApplyPendingCustomWrites() {
  if (customPending.load(std::memory_order_relaxed) == 0) return;
  try {
    CarryOut();  // what an exception left of the frame before
    Take();
    CarryOut();
  } catch (...) {
    customPending.store(1, std::memory_order_relaxed);  // the rest in the next frame
    throw;
  }
}

void EndHeldCommands(CustomTables* tables) {
  taken = {};
  EndAll(tables->actions);
}
