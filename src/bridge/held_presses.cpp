#include "bridge/held_presses.h"

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

uint32_t heldPresses;

namespace {

constexpr int pressFrames = 10;  // a finger's press

struct Press {
  Control control;
  XPLMCommandRef command;  // null: the switch
  Source toggle;
  double value;
  int framesLeft;  // 0: has not begun; below: has ended
};
std::vector<Press> presses;  // in their order

void Begin(Press* press) {
  press->framesLeft = pressFrames;
  if (press->command != nullptr) {
    XPLMCommandBegin(press->command);
  } else {
    SetSource(press->toggle, press->value);
  }
}

void End(const Press& press) {
  if (press.command != nullptr) {
    XPLMCommandEnd(press.command);
  } else {
    SetSource(press.toggle, 0);
  }
}

// Every one of them, also when a handler of another plug-in throws at one.
void EndAll(std::span<const Press> held) {
  for (size_t i = 0; i < held.size(); ++i) {
    try {
      if (held[i].framesLeft > 0) End(held[i]);
    } catch (...) {
      EndAll(held.subspan(i + 1));
      throw;
    }
  }
}

void Add(Press press) {
  const bool waits =
      std::any_of(presses.begin(), presses.end(), [&](const Press& p) { return p.control == press.control; });
  presses.push_back(press);
  ++heldPresses;
  if (!waits) Begin(&presses.back());
}

}  // namespace

void ForgetWaitingPresses(Control control) {
  std::erase_if(presses, [&](const Press& p) { return p.control == control && p.framesLeft == 0; });
  heldPresses = static_cast<uint32_t>(presses.size());
}

XPLMCommandRef HeldCommand(Control control) {
  const auto held = std::find_if(presses.begin(), presses.end(),
                                 [&](const Press& p) { return p.control == control && p.framesLeft > 0; });
  return held == presses.end() ? nullptr : held->command;
}

void HoldCommand(const Command& command, Control control, int times) {
  if (command.handle == nullptr) return;
  if (control == nullptr) control = &command;
  ForgetWaitingPresses(control);
  for (int i = 0; i < times; ++i) Add({control, command.handle, {}, 0, 0});
}

void HoldSource(const Source& source, double value) {
  if (HandleOf(source) == nullptr) return;
  ForgetWaitingPresses(source.ref);
  Add({source.ref, nullptr, source, value, 0});
}

void StepHeldPresses() {
  // A press that waits begins a frame after the one before has ended: the add-on sees that it was released.
  for (auto press = presses.begin(); press != presses.end(); ++press) {
    if (press->framesLeft != 0) continue;
    if (std::none_of(presses.begin(), press, [&](const Press& p) { return p.control == press->control; }))
      Begin(&*press);
  }
  for (Press& press : presses) {
    if (press.framesLeft <= 0 || --press.framesLeft != 0) continue;
    press.framesLeft = -1;  // a handler that throws has seen its end
    End(press);
  }
  std::erase_if(presses, [](const Press& press) { return press.framesLeft < 0; });
  heldPresses = static_cast<uint32_t>(presses.size());
}

void ReleaseHeldPresses() {
  const std::vector<Press> held = std::exchange(presses, {});
  heldPresses = 0;
  EndAll(held);
}
