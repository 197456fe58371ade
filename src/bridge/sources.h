// Datarefs and commands by their own names: the objects that hold the simulator's handles, and how rows and row
// functions read and set them.
//
// There is one object a name, whatever the number of rows that use it: Float<"sim/..."> makes it, and the
// linker folds all uses of the same name into one. A row that states its source so is a constant, and a read is
// one load of the handle. Handles are filled at start (bridge/registry.h) and, for the names of an add-on, when
// it is recognised; a name that nobody publishes leaves its handle null, which reads 0 and takes no value.
//
// Simulator's thread only, never with a lock held.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "XPLMUtilities.h"
#include "bridge/dataref_codec.h"

// A name as a template parameter.
template <size_t size>
struct NameText {
  char text[size] = {};
  consteval NameText() = default;
  consteval NameText(const char (&name)[size]) { std::copy_n(name, size, text); }
};

// What is kept of an array within a frame: its first elements, those of the engines among them.
constexpr int keptElements = 8;

// Where the first cycle puts its answer, which is valid in its frame (sharedFrame): so many elements.
struct SharedAnswer {
  Accessor accessor = Accessor::None;
  int count = 0;
  const double* answer = nullptr;
};

// One dataref of the simulator or of an add-on. All of them form a list, from firstDataRef on.
struct DataRef {
  explicit DataRef(const char* published, std::span<const char* const> others = {});
  XPLMDataRef handle = nullptr;
  uint32_t frame = 0;  // number of the frame in which `kept` was read (KeepReads)
  Accessor keptAs = Accessor::None;
  double kept[keptElements] = {};
  SharedAnswer shared;
  Accessor fitting = Accessor::None;  // by the type that the simulator reports (FittingOf)
  const char* name;
  // What other versions of the simulator or of the add-on call it, or what says the same there: one of them
  // that is published serves where `name` is not.
  std::span<const char* const> otherNames;
  DataRef* next;
};
extern DataRef* firstDataRef;
template <NameText... names>
constexpr const char* textsOf[] = {names.text...};
template <NameText name, NameText... otherNames>
inline DataRef dataRefOf{name.text, textsOf<otherNames...>};
template <NameText name>
inline DataRef dataRefOf<name>{name.text};

// One command, the same way.
struct Command {
  explicit Command(const char* published);
  const char* name;
  XPLMCommandRef handle = nullptr;
  Command* next;
};
extern Command* firstCommand;
template <NameText name>
inline Command commandOf{name.text};

// One number in the simulator: a dataref, how it is read, and for the array accessors the element from 0.
struct Source {
  DataRef* ref = nullptr;
  Accessor accessor = Accessor::None;
  int element = 0;
  bool operator==(const Source&) const = default;
};

// Short forms for tables: Int<"sim/...">, FloatElement<"sim/...">(2), with the names in other versions of the
// simulator behind the first one. A dataref stands with the same names everywhere. Fitting goes by the type
// that the simulator reports, for datarefs that are integers in one version and floats in another and for
// add-ons, whose publishers do not state it; Bytes is a text.
template <NameText... names>
constexpr Source Int = {&dataRefOf<names...>, Accessor::Int, 0};
template <NameText... names>
constexpr Source Float = {&dataRefOf<names...>, Accessor::Float, 0};
template <NameText name>
constexpr Source Double = {&dataRefOf<name>, Accessor::Double, 0};
template <NameText... names>
constexpr Source Fitting = {&dataRefOf<names...>, Accessor::Any, 0};
template <NameText name>
constexpr Source Bytes = {&dataRefOf<name>, Accessor::Bytes, 0};
template <NameText name>
constexpr Source IntElement(int element) {
  return {&dataRefOf<name>, Accessor::IntArray, element};
}
template <NameText... names>
constexpr Source FloatElement(int element) {
  return {&dataRefOf<names...>, Accessor::FloatArray, element};
}
// An element where the dataref is an array, else the one value that it has.
template <NameText... names>
constexpr Source FittingElement(int element) {
  return {&dataRefOf<names...>, Accessor::Any, element};
}

// Several, for a row's `inputs`.
template <Source... sources>
constexpr Source sourcesOf[] = {sources...};

inline XPLMDataRef HandleOf(const Source& source) {
  return source.ref == nullptr ? nullptr : source.ref->handle;
}

// The accessor of the type that the simulator reports, asked once for a handle; None while it reports none.
Accessor FittingOf(DataRef& ref);
// The source with that accessor where it asks for it (Fitting); as it is where no type is known.
inline Source Resolved(const Source& source) {
  if (source.accessor != Accessor::Any) return source;
  const Accessor fitting = FittingOf(*source.ref);
  if (fitting == Accessor::None) return source;
  return {source.ref, fitting, IsArray(fitting) ? source.element : 0};
}

// The frame whose reads are kept, 0 for none: within it functions ask for a dataref once, and for an array
// whole.
extern uint32_t keptFrame;
// The frame in which the first cycle ran last: its answers count for whoever keeps reads of the same frame.
extern uint32_t sharedFrame;

// Asks for a dataref, or for the first elements of an array, and keeps the answer. While reads are kept.
void Keep(DataRef& ref, Accessor accessor);

// The number as the simulator has it, or as it was told in this frame.
inline double ReadSource(const Source& stated) {
  if (stated.ref == nullptr) return 0;
  const Source source = Resolved(stated);
  DataRef& ref = *source.ref;
  if (sharedFrame == keptFrame && ref.shared.accessor == source.accessor && source.element < ref.shared.count) {
    return ref.shared.answer[source.element];
  }
  if (keptFrame == 0 || source.element >= keptElements || source.accessor == Accessor::Any) {
    return ReadNumber(ref.handle, source.accessor, source.element);
  }
  if (ref.frame != keptFrame || ref.keptAs != source.accessor) Keep(ref, source.accessor);
  return ref.kept[source.element];
}
inline int ReadInt(const Source& source) { return static_cast<int>(ReadSource(source)); }
inline bool IsOn(const Source& source) { return ReadSource(source) != 0; }
// Sets it; int datarefs take the truncated value, saturated. NaN and infinity are not handed on.
void SetSource(const Source& source, double value);
// Text of a byte dataref, cut at the first NUL and to size - 1; returns its length.
int ReadText(const Source& source, char* text, int size);

// Keeps what is read while it lives. A new look forgets what was kept before; else what an earlier look has
// read counts on: several cycles that run in one frame read the same dataref once.
class KeepReads {
 public:
  explicit KeepReads(bool newLook);
  ~KeepReads() { keptFrame = 0; }
  KeepReads(const KeepReads&) = delete;
  KeepReads& operator=(const KeepReads&) = delete;
};

// Forgets all that was kept in this frame: the handles have changed. While no reads are kept.
void ForgetReads();

// Fires a command once; an unpublished one does nothing.
void FireCommand(XPLMCommandRef command);
inline void FireCommand(const Command& command) { FireCommand(command.handle); }
// Button press and release in one.
void PushButton(XPLMCommandButtonID button);
