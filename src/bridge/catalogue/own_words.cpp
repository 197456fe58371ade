// Words that no page lists: records of their own layout, and words that are only kept from being written.
#include "bridge/catalogue.h"

namespace {

constexpr OffsetRow rows[] = {
    {.offset = relayRecordOffset,
     .type = Stored::Text,
     .length = relayRecordSize,
     .meaning = "a dataref for another instance",
     .show = Show::Text,
     .dispatch = DispatchAction::RelayRecord},
    {.offset = clientEntryOffset,
     .type = Stored::Text,
     .length = clientEntrySize,
     .meaning = "a client's own entry in the traffic table",
     .show = Show::Text,
     .dispatch = DispatchAction::TrafficEntry},
    {.offset = 0x0ECE,
     .type = Stored::Text,
     .length = 6,
     .meaning = "reserved",
     .show = Show::Text,
     .readOnly = true},
    {.offset = 0x3BFA, .type = Stored::U16, .meaning = "set once at start", .readOnly = true},
    {.offset = 0x6FFF, .type = Stored::U8, .meaning = "reserved", .readOnly = true},
};

}  // namespace

const RowTable ownRows = {nullptr, rows};
