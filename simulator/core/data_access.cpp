// The exported dataref functions. Reading a scalar is the hot path of a plug-in: a handle is the record
// itself, so it costs the thread check, two comparisons and the read.
#include <algorithm>
#include <cstring>

#include "core/datarefs.h"
#include "core/table.h"

namespace {

using sim::DataRef;
using sim::Kind;
using sim::Provider;

uint64_t nullHandles;

DataRef* Ref(XPLMDataRef handle) {
  if (handle == nullptr) [[unlikely]]
    nullHandles++;
  return static_cast<DataRef*>(handle);
}

// The accessors of a plug-in's dataref while that plug-in can answer, else null.
Provider* Answering(const DataRef* ref) {
  return ref->live && ref->provider && sim::PluginEnabled(ref->provider->owner) ? ref->provider : nullptr;
}

template <class T>
int CopyOut(const std::vector<T>& all, T* out, int offset, int max) {
  int size = static_cast<int>(all.size());
  if (!out) return size;
  if (offset < 0 || offset >= size || max <= 0) return 0;
  int n = std::min(max, size - offset);
  std::copy_n(all.begin() + offset, n, out);
  return n;
}

// Number of elements of a write of `count` from `offset` on that fall into the array.
int Fitting(size_t size, int offset, int count) {
  int all = static_cast<int>(size);
  return offset < 0 || offset >= all || count <= 0 ? 0 : std::min(count, all - offset);
}

template <class T, class Setter>
void SetScalar(DataRef* ref, T value, bool own, Setter store, void (*Provider::*provided)(void*, T)) {
  bool writable = ref->live && ref->writable;
  Provider* other = Answering(ref);
  bool takes = writable && (own || (other && other->*provided));
  sim::RecordWrite(ref, sim::kWhole, value, !takes);
  if (!takes) return;
  if (own) {
    store();
  } else {
    sim::InPlugin inside(other->owner);
    (other->*provided)(other->writeRef, value);
  }
  sim::AfterSet(ref, 0, 1);
}

template <class T>
void SetArray(DataRef* ref, std::vector<T>* storage, T* values, int offset, int count,
              void (*Provider::*provided)(void*, T*, int, int)) {
  if (!values) return;
  bool writable = ref->live && ref->writable;
  Provider* other = Answering(ref);
  bool given = other && other->*provided;
  int taken = !writable ? 0 : given ? count : Fitting(storage->size(), offset, count);
  for (int i = 0; i < count && offset <= INT32_MAX - i; ++i) {
    sim::RecordWrite(ref, offset + i, values[i], i >= taken);
  }
  if (taken <= 0) return;
  if (given) {
    sim::InPlugin inside(other->owner);
    (other->*provided)(other->writeRef, values, offset, count);
  } else {
    std::copy_n(values, taken, storage->begin() + offset);
  }
  sim::AfterSet(ref, offset, taken);
}

// What a plug-in's scalar accessor answers, else 0.
template <class T>
T ProvidedScalar(const DataRef* ref, T (*Provider::*provided)(void*)) {
  Provider* other = Answering(ref);
  if (!other || !(other->*provided)) return 0;
  sim::InPlugin inside(other->owner);
  return (other->*provided)(other->readRef);
}

// A vector accessor of a plug-in, or 0 elements.
template <class T, class Out>
int ProvidedArray(const DataRef* ref, int (*Provider::*provided)(void*, Out*, int, int), T* out, int offset,
                  int max) {
  Provider* other = Answering(ref);
  if (!other || !(other->*provided)) return 0;
  sim::InPlugin inside(other->owner);
  return (other->*provided)(other->readRef, out, offset, max);
}

struct TypeRow {
  Kind kind = Kind::Int;
  XPLMDataTypeID types = xplmType_Unknown;
};
constexpr TypeRow typeRows[] = {
    {.kind = Kind::Int, .types = xplmType_Int},
    {.kind = Kind::Float, .types = xplmType_Float},
    {.kind = Kind::Double, .types = xplmType_Float | xplmType_Double},
    {.kind = Kind::IntArray, .types = xplmType_IntArray},
    {.kind = Kind::FloatArray, .types = xplmType_FloatArray},
    {.kind = Kind::Bytes, .types = xplmType_Data},
};
static_assert(sim::IsTableOf<&TypeRow::kind>(typeRows, Kind::Bytes));

}  // namespace

namespace sim {

uint64_t lookUps;
uint64_t LookUps() { return lookUps; }
uint64_t NullHandles() { return nullHandles; }

}  // namespace sim

XPLMDataRef XPLMFindDataRef(const char* name) {
  sim::Check("XPLMFindDataRef");
  if (sim::Fails("XPLMFindDataRef")) return nullptr;
  sim::lookUps++;
  return name ? sim::FindLive(name) : nullptr;
}

int XPLMCanWriteDataRef(XPLMDataRef handle) {
  sim::Check("XPLMCanWriteDataRef");
  return handle && Ref(handle)->live && Ref(handle)->writable;
}

int XPLMIsDataRefGood(XPLMDataRef handle) {
  sim::Check("XPLMIsDataRefGood");
  return handle && Ref(handle)->live && (!Ref(handle)->provider || Answering(Ref(handle)));
}

XPLMDataTypeID XPLMGetDataRefTypes(XPLMDataRef handle) {
  sim::Check("XPLMGetDataRefTypes");
  if (sim::Fails("XPLMGetDataRefTypes")) return xplmType_Unknown;
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return xplmType_Unknown;
  if (ref->provider) return ref->provider->types;
  return typeRows[static_cast<size_t>(ref->kind)].types;
}

int XPLMGetDatai(XPLMDataRef handle) {
  sim::Check("XPLMGetDatai");
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->kind == Kind::Int) return ref->ints[0];
  return ProvidedScalar(ref, &Provider::getInt);
}

float XPLMGetDataf(XPLMDataRef handle) {
  sim::Check("XPLMGetDataf");
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->kind == Kind::Float) return ref->floats[0];
  if (ref->kind == Kind::Double) return static_cast<float>(ref->doubles[0]);
  return ProvidedScalar(ref, &Provider::getFloat);
}

double XPLMGetDatad(XPLMDataRef handle) {
  sim::Check("XPLMGetDatad");
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->kind == Kind::Double) return ref->doubles[0];
  return ProvidedScalar(ref, &Provider::getDouble);
}

void XPLMSetDatai(XPLMDataRef handle, int value) {
  sim::Check("XPLMSetDatai");
  DataRef* ref = Ref(handle);
  if (!ref) return;
  auto store = [&] { ref->ints[0] = ref->filterInt ? ref->filterInt(ref, value) : value; };
  SetScalar(ref, value, ref->kind == Kind::Int, store, &Provider::setInt);
}

void XPLMSetDataf(XPLMDataRef handle, float value) {
  sim::Check("XPLMSetDataf");
  DataRef* ref = Ref(handle);
  if (!ref) return;
  auto store = [&] { sim::StoreNumber(ref, static_cast<double>(value)); };
  SetScalar(ref, value, ref->kind == Kind::Float || ref->kind == Kind::Double, store, &Provider::setFloat);
}

void XPLMSetDatad(XPLMDataRef handle, double value) {
  sim::Check("XPLMSetDatad");
  DataRef* ref = Ref(handle);
  if (!ref) return;
  auto store = [&] { ref->doubles[0] = value; };
  SetScalar(ref, value, ref->kind == Kind::Double, store, &Provider::setDouble);
}

int XPLMGetDatavi(XPLMDataRef handle, int* out, int offset, int max) {
  sim::Check("XPLMGetDatavi");
  if (sim::Fails("XPLMGetDatavi")) return 0;
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->kind == Kind::IntArray) return CopyOut(ref->ints, out, offset, max);
  return ProvidedArray(ref, &Provider::getInts, out, offset, max);
}

int XPLMGetDatavf(XPLMDataRef handle, float* out, int offset, int max) {
  sim::Check("XPLMGetDatavf");
  if (sim::Fails("XPLMGetDatavf")) return 0;
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->kind == Kind::FloatArray) return CopyOut(ref->floats, out, offset, max);
  return ProvidedArray(ref, &Provider::getFloats, out, offset, max);
}

int XPLMGetDatab(XPLMDataRef handle, void* out, int offset, int maxBytes) {
  sim::Check("XPLMGetDatab");
  if (sim::Fails("XPLMGetDatab")) return 0;
  DataRef* ref = Ref(handle);
  if (!ref || !ref->live) return 0;
  if (ref->provider) return ProvidedArray(ref, &Provider::getBytes, out, offset, maxBytes);
  return ref->kind == Kind::Bytes ? CopyOut(ref->bytes, static_cast<uint8_t*>(out), offset, maxBytes) : 0;
}

void XPLMSetDatavi(XPLMDataRef handle, int* values, int offset, int count) {
  sim::Check("XPLMSetDatavi");
  DataRef* ref = Ref(handle);
  std::vector<int> none;
  if (ref)
    SetArray(ref, ref->kind == Kind::IntArray ? &ref->ints : &none, values, offset, count, &Provider::setInts);
}

void XPLMSetDatavf(XPLMDataRef handle, float* values, int offset, int count) {
  sim::Check("XPLMSetDatavf");
  DataRef* ref = Ref(handle);
  std::vector<float> none;
  if (!ref) return;
  SetArray(ref, ref->kind == Kind::FloatArray ? &ref->floats : &none, values, offset, count,
           &Provider::setFloats);
}

void XPLMSetDatab(XPLMDataRef handle, void* value, int offset, int length) {
  sim::Check("XPLMSetDatab");
  DataRef* ref = Ref(handle);
  if (!ref || !value || length <= 0) return;
  bool writable = ref->live && ref->writable;
  Provider* other = Answering(ref);
  bool given = writable && other && other->setBytes;
  int taken = given ? length : writable ? Fitting(ref->bytes.size(), offset, length) : 0;
  sim::RecordText(ref, offset, value, length, taken == 0);
  if (given) {
    sim::InPlugin inside(other->owner);
    other->setBytes(other->writeRef, value, offset, length);
  } else if (taken > 0) {
    std::memcpy(ref->bytes.data() + offset, value, static_cast<size_t>(taken));
  }
  if (taken > 0) sim::AfterSet(ref, offset, taken);
}
