#include "bridge/registry.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "base/log.h"

XPLMDataRef DataRefMemBlock[offsetMemorySize];
XPLMDataRef AuxDataRefMemBlock[offsetMemorySize];
CommandBlock commandBlock;

namespace {

XPLMCommandRef EngineCommand(const char* stem, int engine) {
  char name[64];
  std::snprintf(name, sizeof(name), "sim/%s_%d", stem, engine);
  return XPLMFindCommand(name);
}

void LookUpEngine(int engine) {
  EngineCommands& commands = commandBlock.engines[engine - 1];
  commands.magnetosOff = EngineCommand("magnetos/magnetos_off", engine);
  commands.magnetosRight = EngineCommand("magnetos/magnetos_right", engine);
  commands.magnetosLeft = EngineCommand("magnetos/magnetos_left", engine);
  commands.magnetosBoth = EngineCommand("magnetos/magnetos_both", engine);
  commands.engageStarter = EngineCommand("starters/engage_starter", engine);
}

}  // namespace

int InitMemoryBlocks() {
  ClearOffsetMemory();
  std::fill(std::begin(DataRefMemBlock), std::end(DataRefMemBlock), nullptr);
  std::fill(std::begin(AuxDataRefMemBlock), std::end(AuxDataRefMemBlock), nullptr);
  std::fill(std::begin(VariablesAccessMemBlock), std::end(VariablesAccessMemBlock), accessReadWrite);
  LogLine("Init Mem Blocks OK!\n");
  return 1;
}

int LookUpDataRefs() {
  for (uint32_t i = 0; i < bindingCount; ++i) {
    const Binding& binding = bindings[i];
    XPLMDataRef* block = binding.block == Block::Primary ? DataRefMemBlock : AuxDataRefMemBlock;
    block[binding.index] = XPLMFindDataRef(binding.name);
  }
  for (uint32_t i = 0; i < readOnlyRangeCount; ++i) {
    std::fill(VariablesAccessMemBlock + readOnlyRanges[i].first,
              VariablesAccessMemBlock + readOnlyRanges[i].last + 1, accessReadOnly);
  }
  LogLine("Init DataRefMemBlock & VariablesAccessMemBlock OK!\n");
  return 1;
}

int LookUpCommands() {
  LookUpEngine(1);
  LookUpEngine(2);
  commandBlock.backCourse = XPLMFindCommand("sim/autopilot/back_course");
  commandBlock.approach = XPLMFindCommand("sim/autopilot/approach");
  commandBlock.autothrottleToggle = XPLMFindCommand("sim/autopilot/autothrottle_toggle");
  commandBlock.takeOffGoAround = XPLMFindCommand("sim/autopilot/take_off_go_around");
  LookUpEngine(3);
  LookUpEngine(4);
  commandBlock.contactAtc = XPLMFindCommand("sim/operation/contact_atc");
  LogLine("Init Command Block OK!\n");
  return 1;
}
