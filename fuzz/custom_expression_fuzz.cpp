// Fuzz target: expressions. The input's first byte is where evaluation begins, the rest are tokens separated by
// blanks; what is compiled runs within its stack and gives what the compiler has foretold of faulty ones.
#include <limits>

#include "custom/custom_values.h"
#include "custom/expression.h"
#include "require.h"

namespace {

const std::vector<CustomDatarefEntry> datarefs = {{"a", "", nullptr, 1000, Accessor::Int},
                                                  {"b", "", nullptr, -3, Accessor::Int},
                                                  {"nan", "", nullptr, 0, Accessor::None}};

double ReadIndex(const CustomDatarefEntry& dataref) {
  return dataref.kind == Accessor::None ? std::numeric_limits<double>::quiet_NaN() : dataref.index;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::vector<std::string_view> tokens;
  while (!rest.empty()) {
    const std::string_view token = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(token.size() + 1, rest.size()));
    if (!token.empty()) tokens.push_back(token.substr(0, 255));
  }
  const auto count = static_cast<int32_t>(tokens.size());
  const int32_t first = data[0] % (count + 1);
  std::vector<Operation> operations;
  const CompileOutcome outcome = CompileExpression(tokens.data(), first, count, datarefs, &operations);
  const double value =
      RunExpression(operations.data(), static_cast<uint32_t>(operations.size()), 21.5, ReadIndex);
  Require(outcome.failure == 0 ? outcome.depth == 1 : value == outcome.failure);
  for (int type = 0; type < 10; ++type) {
    uint8_t bytes[8] = {};
    EncodeCustomValue(static_cast<CustomType>(type), value, bytes);
    DecodeCustomValue(static_cast<CustomType>(type), bytes);
  }
  return 0;
}
