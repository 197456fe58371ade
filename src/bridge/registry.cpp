#include "bridge/registry.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "base/log.h"
#include "bridge/catalogue.h"

namespace {

constexpr std::string_view simulatorPrefix = "sim/";

// All names of a list that begin with the prefix, by the alphabet.
template <typename Entry>
std::vector<Entry*> Named(Entry* first, std::string_view prefix) {
  std::vector<Entry*> entries;
  for (Entry* entry = first; entry != nullptr; entry = entry->next) {
    if (std::string_view(entry->name).starts_with(prefix)) entries.push_back(entry);
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry* a, const Entry* b) { return std::string_view(a->name) < b->name; });
  return entries;
}

void SetHandle(DataRef* ref, XPLMDataRef handle) {
  ref->handle = handle;
  ref->fitting = Accessor::None;
}
void SetHandle(Command* command, XPLMCommandRef handle) { command->handle = handle; }

// What the simulator does not publish by its first name may have another one in this version.
void FindOtherNames(std::string_view prefix) {
  for (DataRef* ref : Named(firstDataRef, prefix)) {
    for (const char* name : ref->otherNames) {
      if (ref->handle == nullptr) SetHandle(ref, XPLMFindDataRef(name));
    }
  }
}

// Asks for the plain list first, then, when `others` are wanted, for what else is named in the program.
template <typename Entry, typename Find>
void LookUpAll(Entry* first, std::span<const char* const> names, bool others, Find find) {
  const std::vector<Entry*> entries = Named(first, simulatorPrefix);
  std::vector<bool> asked(entries.size());
  for (const char* name : names) {
    const auto handle = find(name);
    const auto place =
        std::lower_bound(entries.begin(), entries.end(), std::string_view(name),
                         [](const Entry* entry, std::string_view wanted) { return entry->name < wanted; });
    if (place == entries.end() || std::string_view((*place)->name) != name) continue;
    SetHandle(*place, handle);
    asked[static_cast<size_t>(place - entries.begin())] = true;
  }
  for (size_t i = 0; i < entries.size(); ++i) {
    if (others && !asked[i]) SetHandle(entries[i], find(entries[i]->name));
  }
}

// Whether an object takes its handle from a name: its own, or another one as long as it has none.
bool Takes(const DataRef& ref, std::string_view name) {
  if (ref.name == name) return true;
  return ref.handle == nullptr &&
         std::find(ref.otherNames.begin(), ref.otherNames.end(), name) != ref.otherNames.end();
}
bool Takes(const Command& command, std::string_view name) { return command.name == name; }

// Looks up also what no row uses: whether the add-on publishes it is told all the same.
template <typename Entry, typename Find>
bool LookUpName(Entry* first, const char* name, Find find) {
  const auto handle = find(name);
  if (handle == nullptr) return false;
  for (Entry* entry = first; entry != nullptr; entry = entry->next) {
    if (Takes(*entry, name)) SetHandle(entry, handle);
  }
  return true;
}

template <typename Entry>
void DropHandles(Entry* first, std::string_view name) {
  for (Entry* entry = first; entry != nullptr; entry = entry->next) {
    if (entry->name == name) SetHandle(entry, nullptr);
  }
}

// Times and indications that only the simulator decides, identity words, and words of this program's own.
void TakeAccessFromRows() {
  for (const RowTable* table : Catalogue()) {
    for (const OffsetRow& row : table->rows) {
      if (row.readOnly) std::fill_n(VariablesAccessMemBlock + row.offset, StoredWidth(row), accessReadOnly);
    }
  }
}

}  // namespace

void InitMemoryBlocks() {
  ClearOffsetMemory();
  for (DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) SetHandle(ref, nullptr);
  for (Command* command = firstCommand; command != nullptr; command = command->next) {
    SetHandle(command, nullptr);
  }
  std::fill(std::begin(VariablesAccessMemBlock), std::end(VariablesAccessMemBlock), accessReadWrite);
  LogLine("Init Mem Blocks OK!\n");
}

void LookUpDataRefs() {
  LookUpAll(firstDataRef, startDataRefs, true, XPLMFindDataRef);
  FindOtherNames(simulatorPrefix);
  TakeAccessFromRows();
  LogLine("Init DataRefMemBlock & VariablesAccessMemBlock OK!\n");
}

void ForgetTypes() {
  for (DataRef* ref = firstDataRef; ref != nullptr; ref = ref->next) ref->fitting = Accessor::None;
}

void LookUpCommands() {
  // The simulator's commands beyond the list are asked for with the add-on that listens to them.
  LookUpAll(firstCommand, startCommands, false, XPLMFindCommand);
  LogLine("Init Command Block OK!\n");
}

bool LookUpDataRef(const char* name) { return LookUpName(firstDataRef, name, XPLMFindDataRef); }
bool LookUpCommand(const char* name) { return LookUpName(firstCommand, name, XPLMFindCommand); }

void DropName(const char* name) {
  if (std::string_view(name).starts_with(simulatorPrefix)) return;
  DropHandles(firstDataRef, name);
  DropHandles(firstCommand, name);
}
