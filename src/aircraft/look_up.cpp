// Looking up the names of add-ons, and which of them are there.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "aircraft/adapters.h"
#include "aircraft/names.h"
#include "bridge/registry.h"

namespace {

constexpr auto addOnCount = static_cast<size_t>(AddOn::Count);
NamesFound namesFound[addOnCount];

bool Has(std::span<const AddOnName> names, const char* name) {
  return std::any_of(names.begin(), names.end(),
                     [name](const AddOnName& other) { return std::strcmp(other.name, name) == 0; });
}

// Relatives share names: those of one that is still there stay.
bool IsStillUsed(const char* name) {
  for (size_t i = 0; i < addOnCount; ++i) {
    const auto addOn = static_cast<AddOn>(i);
    if (IsLoaded(addOn) && (Has(NamesOf(addOn).dataRefs, name) || Has(NamesOf(addOn).commands, name)))
      return true;
  }
  return false;
}

// The simulator's own, which say nothing of the add-on.
bool IsSimulators(std::string_view name) { return name.starts_with("sim/"); }

// Returns whether one of them that is the add-on's own is there.
template <typename LookUp>
bool LookUpNames(AddOn addOn, std::span<const AddOnName> names, LookUp lookUp) {
  NamesFound& found = namesFound[static_cast<size_t>(addOn)];
  const int before = found.own;
  for (const AddOnName& each : names) {
    ++found.total;
    if (lookUp(each.name)) {
      ++found.found;
      found.own += !IsSimulators(each.name);
    } else {
      found.missing.push_back(each.name);
    }
  }
  return found.own > before;
}

}  // namespace

bool LookUpDataRefsOf(AddOn addOn) { return LookUpNames(addOn, NamesOf(addOn).dataRefs, LookUpDataRef); }

bool LookUpCommandsOf(AddOn addOn) { return LookUpNames(addOn, NamesOf(addOn).commands, LookUpCommand); }

void DropNamesOf(AddOn addOn) {
  namesFound[static_cast<size_t>(addOn)] = {};
  for (const auto& names : {NamesOf(addOn).dataRefs, NamesOf(addOn).commands}) {
    for (const AddOnName& each : names) {
      if (!IsStillUsed(each.name)) DropName(each.name);
    }
  }
}

bool LookUpMissingOf(AddOn addOn) {
  NamesFound& found = namesFound[static_cast<size_t>(addOn)];
  const size_t before = found.missing.size();
  std::erase_if(found.missing, [&](const char* name) {
    const bool isThere = Has(NamesOf(addOn).commands, name) ? LookUpCommand(name) : LookUpDataRef(name);
    if (!isThere) return false;
    ++found.found;
    found.own += !IsSimulators(name);
    return true;
  });
  return found.missing.size() < before;
}

const NamesFound& NamesFoundOf(AddOn addOn) { return namesFound[static_cast<size_t>(addOn)]; }
