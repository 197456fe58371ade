#include "bridge/add_ons.h"

#include <set>
#include <string>
#include <tuple>

#include "base/log.h"

AddOnSet loadedAddOns;
AddOnSet emptyAddOns;

namespace {

std::set<std::tuple<AddOn, uint32_t, std::string>> told;  // controls that the log knows of

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

void TellUnserved(AddOn addOn, uint32_t offset, const char* missing, const char* part, const char* fault) {
  if (!told.emplace(addOn, offset, part).second) return;
  const std::string what = *part == '\0' ? "do nothing, " : "do not move its " + std::string(part) + ", ";
  const std::string why = *missing == '\0' ? "it has no such control or none that is known"
                          : *fault == '\0' ? "it does not publish " + std::string(missing)
                                           : std::string(missing) + ' ' + fault;
  LogOwn("TAVRIX->%s: writes to 0x%04X %s%s\n", NameOf(addOn), static_cast<unsigned>(offset), what.c_str(),
         why.c_str());
}

void ForgetUnserved(AddOn addOn) {
  std::erase_if(told, [addOn](const auto& entry) { return std::get<AddOn>(entry) == addOn; });
}
