// Datarefs that plug-ins offer themselves, and datarefs that plug-ins share.
#include <algorithm>
#include <memory>

#include "core/datarefs.h"

namespace sim {
namespace {

struct Offer {
  DataRef* ref;
  Provider provider;
};
std::vector<std::unique_ptr<Offer>> offers;

struct Share {
  DataRef* ref;
  int owner;
  XPLMDataChanged_f changed;
  void* refcon;
};
std::vector<Share> shares;

constexpr int kSharedElements = 1024;  // arrays that plug-ins share have this size

bool ShapeOfType(XPLMDataTypeID type, Kind* kind, int* count) {
  *count =
      type == xplmType_IntArray || type == xplmType_FloatArray || type == xplmType_Data ? kSharedElements : 1;
  switch (type) {
    case xplmType_Int:
      *kind = Kind::Int;
      return true;
    case xplmType_Float:
      *kind = Kind::Float;
      return true;
    case xplmType_Double:
      *kind = Kind::Double;
      return true;
    case xplmType_IntArray:
      *kind = Kind::IntArray;
      return true;
    case xplmType_FloatArray:
      *kind = Kind::FloatArray;
      return true;
    case xplmType_Data:
      *kind = Kind::Bytes;
      return true;
    default:
      return false;
  }
}

void Retract(Offer* offer) {
  Withdraw(offer->ref);
  offer->ref->provider = nullptr;
}

template <class T, class Get>
void Snapshot(const Provider& from, Get get, std::vector<T>* into, DataRef* copy, Kind kind) {
  int size = get(from.readRef, nullptr, 0, 0);
  copy->kind = kind;
  into->resize(static_cast<size_t>(std::max(size, 0)));
  copy->count = size > 0 ? get(from.readRef, into->data(), 0, size) : 0;
  copy->count = std::clamp(copy->count, 0, std::max(size, 0));
  into->resize(static_cast<size_t>(copy->count));
}

}  // namespace

void TellShares(DataRef* ref) {
  for (size_t i = 0; i < shares.size(); ++i) {
    Share share = shares[i];
    if (share.ref != ref || !share.changed || !MayCall(share.owner)) continue;
    InPlugin inside(share.owner);
    share.changed(share.refcon);
  }
}

void SnapshotProvider(DataRef* ref, DataRef* copy) {
  const Provider& from = *ref->provider;
  copy->count = 0;
  if (!MayCall(from.owner)) return;
  InPlugin inside(from.owner);
  if (from.getDouble) {
    copy->kind = Kind::Double;
    copy->doubles = {from.getDouble(from.readRef)};
    copy->count = 1;
  } else if (from.getFloat) {
    copy->kind = Kind::Float;
    copy->floats = {from.getFloat(from.readRef)};
    copy->count = 1;
  } else if (from.getInt) {
    copy->kind = Kind::Int;
    copy->ints = {from.getInt(from.readRef)};
    copy->count = 1;
  } else if (from.getFloats) {
    Snapshot(from, from.getFloats, &copy->floats, copy, Kind::FloatArray);
  } else if (from.getInts) {
    Snapshot(from, from.getInts, &copy->ints, copy, Kind::IntArray);
  } else if (from.getBytes) {
    Snapshot(from, from.getBytes, &copy->bytes, copy, Kind::Bytes);
  }
}

void StoreProvider(DataRef* ref, const DataRef& copy) {
  const Provider& to = *ref->provider;
  if (!MayCall(to.owner)) return;
  InPlugin inside(to.owner);
  DataRef values = copy;
  int count = copy.count;
  if (copy.kind == Kind::Double && to.setDouble) to.setDouble(to.writeRef, copy.doubles[0]);
  if (copy.kind == Kind::Float && to.setFloat) to.setFloat(to.writeRef, copy.floats[0]);
  if (copy.kind == Kind::Int && to.setInt) to.setInt(to.writeRef, copy.ints[0]);
  if (copy.kind == Kind::FloatArray && to.setFloats) to.setFloats(to.writeRef, values.floats.data(), 0, count);
  if (copy.kind == Kind::IntArray && to.setInts) to.setInts(to.writeRef, values.ints.data(), 0, count);
  if (copy.kind == Kind::Bytes && to.setBytes) to.setBytes(to.writeRef, values.bytes.data(), 0, count);
}

int DropAccessors(int owner, std::string* which) {
  int dropped = 0;
  for (size_t i = offers.size(); i-- > 0;) {
    if (offers[i]->provider.owner != owner) continue;
    *which = offers[i]->ref->name;
    Retract(offers[i].get());
    offers.erase(offers.begin() + static_cast<std::ptrdiff_t>(i));
    ++dropped;
  }
  std::erase_if(shares, [&](const Share& share) { return share.owner == owner; });
  return dropped;
}

}  // namespace sim

XPLMDataRef XPLMRegisterDataAccessor(const char* name, XPLMDataTypeID types, int writable,
                                     XPLMGetDatai_f getInt, XPLMSetDatai_f setInt, XPLMGetDataf_f getFloat,
                                     XPLMSetDataf_f setFloat, XPLMGetDatad_f getDouble,
                                     XPLMSetDatad_f setDouble, XPLMGetDatavi_f getInts, XPLMSetDatavi_f setInts,
                                     XPLMGetDatavf_f getFloats, XPLMSetDatavf_f setFloats,
                                     XPLMGetDatab_f getBytes, XPLMSetDatab_f setBytes, void* readRef,
                                     void* writeRef) {
  sim::Check("XPLMRegisterDataAccessor");
  if (sim::Fails("XPLMRegisterDataAccessor")) return nullptr;
  if (!name || !*name || sim::FindLive(name)) return nullptr;
  // Published as bytes without content, so that the plain accessors find nothing of their own to read.
  sim::DataRef* ref = sim::Publish(name, sim::Kind::Bytes, 0, writable != 0);
  auto offer = std::make_unique<sim::Offer>();
  offer->ref = ref;
  offer->provider = {sim::CallingPlugin(),
                     types,
                     getInt,
                     setInt,
                     getFloat,
                     setFloat,
                     getDouble,
                     setDouble,
                     getInts,
                     setInts,
                     getFloats,
                     setFloats,
                     getBytes,
                     setBytes,
                     readRef,
                     writeRef};
  ref->provider = &offer->provider;
  sim::offers.push_back(std::move(offer));
  return ref;
}

void XPLMUnregisterDataAccessor(XPLMDataRef handle) {
  sim::Check("XPLMUnregisterDataAccessor");
  auto found =
      std::find_if(sim::offers.begin(), sim::offers.end(), [&](auto& offer) { return offer->ref == handle; });
  if (found == sim::offers.end()) return;
  sim::Retract(found->get());
  sim::offers.erase(found);
}

int XPLMShareData(const char* name, XPLMDataTypeID type, XPLMDataChanged_f changed, void* refcon) {
  sim::Check("XPLMShareData");
  sim::Kind kind;
  int count = 0;
  if (!name || !*name || !sim::ShapeOfType(type, &kind, &count)) return 0;
  sim::DataRef* ref = sim::FindLive(name);
  if (ref && (ref->provider || ref->kind != kind)) return 0;
  if (!ref) ref = sim::Publish(name, kind, count, true);
  ref->shared = true;
  sim::shares.push_back({ref, sim::CallingPlugin(), changed, refcon});
  return 1;
}

int XPLMUnshareData(const char* name, XPLMDataTypeID, XPLMDataChanged_f changed, void* refcon) {
  sim::Check("XPLMUnshareData");
  sim::DataRef* ref = name ? sim::FindLive(name) : nullptr;
  return std::erase_if(sim::shares, [&](const sim::Share& share) {
           return share.ref == ref && share.changed == changed && share.refcon == refcon;
         }) > 0;
}
