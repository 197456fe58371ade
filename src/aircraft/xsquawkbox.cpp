// Notifications of the XSquawkBox network client.
#include "aircraft/adapters.h"
#include "bridge/sources.h"

XSquawkBoxState xSquawkBoxState;

namespace {

template <size_t Size>
void KeepText(const Source& source, char (&text)[Size]) {
  ReadText(source, text, Size);
}

}  // namespace

void ReceiveXSquawkBoxMessage(int message, void* parameter) {
  XSquawkBoxState& state = xSquawkBoxState;
  const int value = static_cast<int>(reinterpret_cast<intptr_t>(parameter));
  switch (static_cast<uint32_t>(message)) {
    case 0x80000001:
      state.connected = 1;
      break;
    case 0x80000002:
      state.connected = state.receiving = state.transmitting = 0;
      break;
    case 0x80000003:
      state.receiving = value != 0;
      break;
    case 0x80000004:
      state.transmitting = value != 0;
      break;
    case 0x80000005:
      ++state.frequencyChanges;
      KeepText(Bytes<"xsquawkbox/atc/callsign">, state.callsign);
      state.frequency = ReadInt(Int<"xsquawkbox/atc/freq">);
      break;
    case 0x80000006:
      ++state.metarsReceived;
      KeepText(Bytes<"xsquawkbox/weather/metar">, state.metar);
      break;
    case 0x80000007:
      ++state.textsReceived;
      KeepText(Bytes<"xsquawkbox/text/from">, state.from);
      KeepText(Bytes<"xsquawkbox/text/msg">, state.text);
      break;
    case 0x80000008:
      ++state.commandsTyped;
      KeepText(Bytes<"xsquawkbox/input/string">, state.command);
      break;
    case 0x80000009:
      ++state.aboutShown;
      break;
    default:
      break;
  }
}
