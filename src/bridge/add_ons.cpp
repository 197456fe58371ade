#include "bridge/add_ons.h"

#include <set>
#include <utility>

#include "base/log.h"

AddOnSet loadedAddOns;

namespace {

std::set<std::pair<AddOn, uint32_t>> told;  // controls that the log knows of

}  // namespace

const char* NameOf(AddOn addOn) {
  switch (addOn) {
    case AddOn::X737:
      return "x737";
    case AddOn::B738Extended:
      return "Extended 737-800";
    case AddOn::B738Stock:
      return "Stock 737-800";
    case AddOn::Ixeg733:
      return "IXEG 737";
    case AddOn::Ec135:
      return "EC135";
    case AddOn::XSquawkBox:
      return "XSquawkBox";
    case AddOn::PilotEdge:
      return "PilotEdge";
    case AddOn::None:
    case AddOn::Count:
      break;
  }
  return "simulator";
}

void TellUnserved(AddOn addOn, uint32_t offset, const char* missing) {
  if (!told.emplace(addOn, offset).second) return;
  if (*missing == '\0') {
    LogOwn("TAVRIX->%s: writes to 0x%04X do nothing, it has no such control or none that is known\n",
           NameOf(addOn), static_cast<unsigned>(offset));
  } else {
    LogOwn("TAVRIX->%s: writes to 0x%04X do nothing, it does not publish %s\n", NameOf(addOn),
           static_cast<unsigned>(offset), missing);
  }
}

void ForgetUnserved(AddOn addOn) {
  std::erase_if(told, [addOn](const auto& entry) { return entry.first == addOn; });
}
