#include "item.h"

#include <cstring>

#include "encode.h"
#include "names.h"
#include "numbers.h"

namespace ctl {

namespace {

struct TypeName {
  const char* text;
  ValueType type;
  uint32_t size;
};
constexpr TypeName typeNames[] = {
    {.text = "u8", .type = ValueType::U8, .size = 1},   {.text = "s8", .type = ValueType::S8, .size = 1},
    {.text = "u16", .type = ValueType::U16, .size = 2}, {.text = "s16", .type = ValueType::S16, .size = 2},
    {.text = "u32", .type = ValueType::U32, .size = 4}, {.text = "s32", .type = ValueType::S32, .size = 4},
    {.text = "u64", .type = ValueType::U64, .size = 8}, {.text = "s64", .type = ValueType::S64, .size = 8},
    {.text = "f32", .type = ValueType::F32, .size = 4}, {.text = "f64", .type = ValueType::F64, .size = 8},
};

constexpr char typeList[] = "u8 s8 u16 s16 u32 s32 u64 s64 f32 f64 hex:N text:N";

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

// Letters in either case, as in names.
bool ParseType(std::string_view asked, Item* item, std::string* error) {
  const std::string lower = LowerCase(asked);
  const std::string_view text = lower;
  for (const TypeName& known : typeNames) {
    if (text == known.text) {
      item->type = known.type;
      item->size = known.size;
      return true;
    }
  }
  const bool isHex = text.starts_with("hex:");
  if (isHex || text.starts_with("text:")) {
    item->type = isHex ? ValueType::Hex : ValueType::Text;
    if (!ParseUnsigned(text.substr(isHex ? 4 : 5), offsetMemorySize, &item->size) || item->size == 0) {
      return Fail(error, Quote(text) + ": N is the number of bytes, 1 to 131072");
    }
    return true;
  }
  return Fail(error, "no type " + Quote(asked) + ": types are " + typeList);
}

// The offset or name before the type. Leaves the known row in `item->row`, if there is one.
bool ParsePlace(std::string_view text, const NameTable& names, Item* item, std::string* error) {
  if (text.empty()) return Fail(error, "an item is OFFSET:TYPE or a name");
  item->shown = text;
  if (text[0] >= '0' && text[0] <= '9') {
    if (!ParseUnsigned(text, offsetMemorySize - 1, &item->offset)) {
      return Fail(error, "no offset " + Quote(text) +
                             ": offsets are 0 to 131071, or with 0x before hexadecimal digits 0x0 to 0x1FFFF");
    }
    item->row = FindByOffset(names, item->offset);
    return true;
  }
  item->row = FindByName(names, text);
  if (item->row == nullptr) {
    return Fail(error, "no offset is named " + Quote(text) + NearestText(names, text));
  }
  item->offset = item->row->offset;
  return true;
}

bool CheckRange(Item* item, std::string* error) {
  if (item->size > offsetMemorySize - item->offset) {
    return Fail(error, item->shown + ": " + std::to_string(item->size) + " bytes from " +
                           HexText(item->offset, 4) + " leave the offset memory, which ends at 0x1FFFF");
  }
  item->bytes.assign(item->size, 0);
  return true;
}

// An item whose type is left to its value (hex: or quoted text) gets size 0 and is completed later.
bool ParsePlaceAndType(std::string_view text, const NameTable& names, bool typeFromValue, Item* item,
                       std::string* error) {
  *item = {};
  const size_t colon = text.find(':');
  if (!ParsePlace(text.substr(0, colon), names, item, error)) return false;
  if (colon != std::string_view::npos) {
    item->row = nullptr;
    return ParseType(text.substr(colon + 1), item, error);
  }
  if (item->row != nullptr) {
    item->type = item->row->type;
    item->size = item->row->length;
    return true;
  }
  if (typeFromValue) return true;
  return Fail(error, item->shown + " needs a type, like " + item->shown + ":u16 (types are " + typeList + ")");
}

}  // namespace

std::string TypeText(ValueType type, uint32_t size) {
  if (type == ValueType::Hex) return "hex:" + std::to_string(size);
  if (type == ValueType::Text) return "text:" + std::to_string(size);
  for (const TypeName& known : typeNames) {
    if (type == known.type) return known.text;
  }
  return "";
}

bool ParseItem(std::string_view text, const NameTable& names, Item* item, std::string* error) {
  return ParsePlaceAndType(text, names, false, item, error) && CheckRange(item, error);
}

bool ParseAssignment(std::string_view text, const NameTable& names, Item* item, std::string* error) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos) {
    return Fail(error, Quote(text) + " has no value: write ITEM=VALUE");
  }
  const std::string_view value = text.substr(equals + 1);
  const bool ownType = value.starts_with("hex:") || value.starts_with('"');
  if (!ParsePlaceAndType(text.substr(0, equals), names, ownType, item, error)) return false;
  if (item->size == 0) {
    item->type = value[0] == '"' ? ValueType::Text : ValueType::Hex;
    if (!ParseBytes(value, &item->bytes) || item->bytes.empty()) {
      return Fail(error, item->shown + ": " + Quote(value) + " is neither hex:BYTES nor quoted text");
    }
    item->size = static_cast<uint32_t>(item->bytes.size());
  }
  if (!CheckRange(item, error)) return false;
  std::string reason;
  if (!EncodeValue(value, item, &reason)) return Fail(error, item->shown + ": " + reason);
  const uint32_t refused = FirstReadOnly(names, item->offset, item->size);
  if (refused != offsetMemorySize) {
    const bool whole = refused == item->offset;
    return Fail(error, item->shown + (whole ? " is read-only"
                                            : " covers " + HexText(refused, 4) + ", which is read-only"));
  }
  return true;
}

}  // namespace ctl
