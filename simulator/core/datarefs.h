// Between the dataref records, the exported accessors and the datarefs that plug-ins offer.
// Simulator's thread only.
#pragma once
#include "core/core.h"
#include "core/more_api.h"

namespace sim {

// Accessors of a dataref that a plug-in offers.
struct Provider {
  int owner = 0;
  XPLMDataTypeID types = 0;
  XPLMGetDatai_f getInt = nullptr;
  XPLMSetDatai_f setInt = nullptr;
  XPLMGetDataf_f getFloat = nullptr;
  XPLMSetDataf_f setFloat = nullptr;
  XPLMGetDatad_f getDouble = nullptr;
  XPLMSetDatad_f setDouble = nullptr;
  XPLMGetDatavi_f getInts = nullptr;
  XPLMSetDatavi_f setInts = nullptr;
  XPLMGetDatavf_f getFloats = nullptr;
  XPLMSetDatavf_f setFloats = nullptr;
  XPLMGetDatab_f getBytes = nullptr;
  XPLMSetDatab_f setBytes = nullptr;
  void* readRef = nullptr;
  void* writeRef = nullptr;
};

// Lists what a plug-in set; the newest 100,000 are kept. The index of a scalar is kWhole.
constexpr int kWhole = INT32_MIN;
void RecordWrite(DataRef* ref, int index, int value, bool ignored);
void RecordWrite(DataRef* ref, int index, float value, bool ignored);
void RecordWrite(DataRef* ref, int index, double value, bool ignored);
void RecordText(DataRef* ref, int offset, const void* text, int length, bool ignored);
// After a plug-in or the console has set elements.
void AfterSet(DataRef* ref, int first, int touched);
void TellShares(DataRef* ref);
// A plain copy of what the provider answers now (count 0 when it answers nothing), and back.
void SnapshotProvider(DataRef* ref, DataRef* copy);
void StoreProvider(DataRef* ref, const DataRef& copy);

}  // namespace sim
