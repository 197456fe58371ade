// Publishing of the dataref table, typed access to the records, and the start of the world.
#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>

#include "flight/flight.h"
#include "world/refs.h"
#include "world/world.h"

namespace sim {

bool circuitFlight = true;
int age = 0;

namespace {

std::unordered_map<std::string, DataRef*> unpublished;  // rows that this run's age lacks

void PublishStock(DataRefRow row) {
  const bool has = ShapeInAge(&row);
  DataRef* ref = PublishRow(row);
  if (has || ref == nullptr) return;
  Withdraw(ref);  // keeps its value
  unpublished[row.name] = ref;
}

}  // namespace

DataRef* FindStock(const char* name) {
  auto hidden = unpublished.find(name);
  return hidden != unpublished.end() ? hidden->second : FindLive(name);
}

DataRef* PublishRow(const DataRefRow& row) {
  DataRef* ref = Publish(row.name, row.kind, row.count, row.writable);
  if (ref == nullptr) return nullptr;
  std::fill(ref->ints.begin(), ref->ints.end(), static_cast<int>(row.start));
  std::fill(ref->floats.begin(), ref->floats.end(), static_cast<float>(row.start));
  std::fill(ref->doubles.begin(), ref->doubles.end(), row.start);
  SetText(ref, row.text);
  return ref;
}

float& F(DataRef* ref, int i) {
  static float dummy;
  return static_cast<size_t>(i) < ref->floats.size() ? ref->floats[static_cast<size_t>(i)] : dummy;
}

int& I(DataRef* ref, int i) {
  static int dummy;
  return static_cast<size_t>(i) < ref->ints.size() ? ref->ints[static_cast<size_t>(i)] : dummy;
}

double& D(DataRef* ref, int i) {
  static double dummy;
  return static_cast<size_t>(i) < ref->doubles.size() ? ref->doubles[static_cast<size_t>(i)] : dummy;
}

double Number(const DataRef* ref, int i) {
  const size_t at = static_cast<size_t>(i);
  if (at < ref->floats.size()) return static_cast<double>(ref->floats[at]);
  if (at < ref->ints.size()) return ref->ints[at];
  return at < ref->doubles.size() ? ref->doubles[at] : 0;
}

void SetText(DataRef* ref, const char* text) {
  if (ref->bytes.empty()) return;
  size_t length = std::min(std::strlen(text), ref->bytes.size() - 1);
  std::memcpy(ref->bytes.data(), text, length);
  std::fill(ref->bytes.begin() + static_cast<std::ptrdiff_t>(length), ref->bytes.end(), uint8_t{0});
}

void StoreElement(DataRef* ref, int i, double value) {
  if (!ref->ints.empty()) I(ref, i) = static_cast<int>(value);
  if (!ref->floats.empty()) F(ref, i) = static_cast<float>(value);
  if (!ref->doubles.empty()) D(ref, i) = value;
}

void WorldStart(bool circuit, int planes, int version) {
  circuitFlight = circuit;
  age = version;
  unpublished.clear();
  for (const DataRefRow& row : datarefRows) PublishStock(row);
  BindRefs();
  ForgetAddon();
  PublishCommands();
  FillNavAids();
  WorldNavAidsChanged();
  PublishPlanes(planes);
  FlightStart();
  WorldSelectAircraft(aircraftTable[0].name);
}

}  // namespace sim
