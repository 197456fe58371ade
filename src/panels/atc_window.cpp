// "ATC Menu": who we are for air traffic control, and what the network client XSquawkBox has told.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMPlugin.h"
#include "aircraft/adapters.h"
#include "bridge/add_ons.h"
#include "bridge/sources.h"
#include "offsets/dispatcher.h"
#include "offsets/memory.h"
#include "panels/layout.h"
#include "panels/panels.h"
#include "settings/settings.h"

namespace {

// --- Who we are ------------------------------------------------------------------------------------------
constexpr char section[] = "TAVRIX ATC SETTINGS";

struct AtcText {
  const char* key;
  char* value;      // maxSettingValue + 1 bytes
  uint32_t offset;  // where clients read its first atcTextSize bytes; 0: nowhere
};
constexpr AtcText texts[] = {{"ATC Number", settings.atcNumber, atcNumberOffset},
                             {"ATC Tail Number", settings.atcTailNumber, atcTailNumberOffset},
                             {"ATC Airline name", settings.atcAirlineName, 0},
                             {"ATC Aircraft type", settings.atcAircraftType, 0}};

std::string TextInForce(int index) { return texts[index].value; }

std::string CheckText(int index, const std::string& text) {
  if (text.empty()) return std::string(texts[index].key) + " must not be empty";
  return text.front() == ' ' || text.back() == ' ' ? "No blanks before or behind the text" : "";
}

std::string AcceptText(int index, const std::string& text) {
  const AtcText& changed = texts[index];
  if (!WriteSetting(section, changed.key, text.c_str())) return NotSaved();
  std::snprintf(changed.value, maxSettingValue + 1, "%s", text.c_str());
  if (changed.offset == 0) return saved;
  {
    const LockScope lock(&offsetLock);
    uint8_t* field = offsetMemory.bytes + changed.offset;
    std::fill_n(field, atcTextSize, uint8_t{0});
    std::copy_n(text.begin(), std::min<size_t>(text.size(), atcTextSize), field);
  }
  return text.size() <= atcTextSize ? saved : "Saved; clients see the first 12 characters";
}

constexpr Cell TextField(const char* label, int index) {
  return {.kind = CellKind::Field,
          .label = label,
          .index = index,
          .width = 32,
          .limit = maxSettingValue,
          .text = TextInForce,
          .check = CheckText,
          .accept = AcceptText};
}

// --- XSquawkBox ---------------------------------------------------------------------------------------------
constexpr char signature[] = "vatsim.protodev.clients.xsquawkbox";
constexpr int printMessage = 0x01000009;  // it shows what stands in its "user_msg"
constexpr size_t longestReply = 200;

const XSquawkBoxState& box = xSquawkBoxState;

std::string replyDraft;

std::string Connection(int) {
  if (!IsLoaded(AddOn::XSquawkBox)) return "not loaded";
  std::string text = box.connected != 0 ? "connected" : "not connected";
  if (box.receiving != 0) text += ", receiving";
  if (box.transmitting != 0) text += ", transmitting";
  return text + " (version " + box.version + ")";
}

std::string Controller(int) {
  if (box.frequencyChanges == 0) return "";
  char frequency[32];
  std::snprintf(frequency, sizeof frequency, " on %d.%03d", box.frequency / 1000, box.frequency % 1000);
  return std::string(box.callsign) + (box.frequency > 0 ? frequency : ", frequency unknown");
}

std::string Metar(int) { return box.metar; }

std::string LastText(int) { return box.textsReceived == 0 ? "" : std::string(box.from) + ": " + box.text; }

bool CanReply(int) { return IsLoaded(AddOn::XSquawkBox); }

std::string Reply(int) { return replyDraft; }

std::string KeepReply(int, const std::string& text) {
  replyDraft = text;
  return "";
}

std::string SendReply(int) {
  const XPLMDataRef message = HandleOf(Bytes<"xsquawkbox/input/user_msg">);
  const XPLMPluginID plugin = XPLMFindPluginBySignature(signature);
  if (replyDraft.empty()) return "There is no reply to hand over";
  if (message == nullptr || plugin <= 0) return "XSquawkBox takes no texts";
  // With the end of the text, as the client reads it by that.
  XPLMSetDatab(message, replyDraft.data(), 0, static_cast<int>(replyDraft.size()) + 1);
  XPLMSendMessageToPlugin(plugin, printMessage, nullptr);
  replyDraft.clear();
  return "Handed to XSquawkBox";
}

constexpr Row rows[] = {
    {{TextField("Number", 0)}},
    {{TextField("Tail number", 1)}},
    {{TextField("Airline", 2)}},
    {{TextField("Aircraft type", 3)}},
    {{{.kind = CellKind::Heading, .label = "XSquawkBox"}}},
    {{{.kind = CellKind::Value, .label = "Connection", .width = 46, .text = Connection}}},
    {{{.kind = CellKind::Value, .label = "Controller", .width = 46, .text = Controller}}},
    {{{.kind = CellKind::Value, .label = "METAR", .width = 56, .lines = 4, .text = Metar}}},
    {{{.kind = CellKind::Value, .label = "Last text", .width = 56, .lines = 4, .text = LastText}}},
    {{{.kind = CellKind::Field,
       .label = "Reply",
       .width = 46,
       .limit = longestReply,
       .text = Reply,
       .accept = KeepReply,
       .isEnabled = CanReply},
      {.kind = CellKind::Button,
       .label = "Send",
       .press = SendReply,
       .isDefault = true,
       .isEnabled = CanReply}}},
};
constexpr WindowPlan plan = {.title = atcWindowTitle, .rows = rows, .opened = [] { replyDraft.clear(); }};

}  // namespace

void OpenAtcWindow() { OpenWindow(plan); }
