// Expressions: every operator and quirk.
#include <bit>
#include <cmath>
#include <limits>
#include <sstream>

#include "custom/custom_parser.h"
#include "custom/custom_values.h"
#include "custom/expression.h"
#include "custom_harness.h"

namespace {

const std::vector<CustomDatarefEntry> aliases = {{"alt", "", nullptr, 1000, Accessor::Int},
                                                 {"bad", "", nullptr, 0, Accessor::None},
                                                 {"n1", "", nullptr, -7, Accessor::Int}};

// In these tests a dataref's value is its index; "bad" is not a number.
double ReadIndex(const CustomDatarefEntry& dataref) {
  return dataref.kind == Accessor::None ? std::numeric_limits<double>::quiet_NaN() : dataref.index;
}

double Evaluate(const std::vector<std::string_view>& tokens, size_t first, double input) {
  std::vector<Operation> operations;
  CompileExpression(tokens.data(), static_cast<int32_t>(first), static_cast<int32_t>(tokens.size()), aliases,
                    &operations);
  return RunExpression(operations.data(), static_cast<uint32_t>(operations.size()), input, ReadIndex);
}

std::vector<std::string> Split(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

double Evaluate(const std::string& text, double input = 0, size_t first = 0) {
  const std::vector<std::string> words = Split(text);
  return Evaluate(std::vector<std::string_view>(words.begin(), words.end()), first, input);
}

bool Same(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

// "tokens -> result", with "@= value" behind the tokens for what a client wrote.
void CheckResult(const std::string& line) {
  const size_t arrow = line.find("->"), input = line.find("@=");
  if (arrow == std::string::npos) return;
  const auto number = [](const std::string& text) {
    const std::string word = Split(text).at(0);
    return word == "nan" ? std::numeric_limits<double>::quiet_NaN() : std::strtod(word.c_str(), nullptr);
  };
  const double written = input == std::string::npos ? 0 : number(line.substr(input + 2));
  const double result = Evaluate(line.substr(0, std::min(arrow, input)), written);
  const double expected = number(line.substr(arrow + 2));
  EXPECT_TRUE(Same(result, expected) || std::abs(result - expected) < 1e-12) << line << ", got " << result;
}

TEST(CustomExpression, OperatorsAndQuirks) {
  // "c a b ?" takes the chosen value from below, a above it.
  std::istringstream table(R"(
    $alt 3.5 * -> 3500 ; 7 3 - -> 4 ; 7 2 % -> 1 ; -7 2 % -> -1 ; 7.9 -2.5 % -> 1 ; 7 0.5 % -> 0
    7.9 2.5 \ -> 3.5 ; 1 0.9 \ -> inf ; 1 0 / -> inf ; 0 0 / -> nan ; 2 10 ^ -> 1024 ; 2 -1 ^ -> 0.5
    6.9 3.9 & -> 2 ; -1 255.5 & -> 255 ; 6 3 | -> 7 ; -8.5 1 | -> -7 ; 1e300 1 & -> 1 ; $bad 1 | -> 1
    3 3 == -> 1 ; 3 3 != -> 0 ; 3 2 > -> 1 ; 2 2 > -> 0 ; 2 2 >= -> 1 ; 1 2 >= -> 0 ; 1 2 < -> 1
    2 2 <= -> 1 ; $bad 1 == -> 0 ; $bad 1 != -> 1 ; $bad 1 > -> 0 ; $bad 1 >= -> 0 ; $bad 1 < -> 0
    1 $bad <= -> 0 ; $bad $bad != -> 1 ; 0 10 20 ? - -> 0 ; 1 10 20 ? - -> 10 ; $bad 10 20 ? - -> 10
    1 10 20 ? -> 88 ; 10 20 ? -> 222 ; -3 abs -> 3 ; 2.5 round -> 3 ; -2.5 round -> -3 ; 2.4 round -> 2
    1e12 round -> 2147483647 ; -1e12 round -> -2147483648.0 ; $bad round -> 0 ; @ 2 * @= 21 -> 42
    PI -> 3.141592653589793 ; -> 88 ; 1 2 -> 88 ; + -> 222 ; 1 + -> 222 ; abs -> 222 ; $none -> 111
    + $none -> 222 ; $none + -> 111 ; >x 1 -> 88 ; 1 >x 2 + -> 1 ; 1 2 >x + -> 88 ; +.5 -> 0.5
    -1.25e2 -> -125 ; 12abc -> 12 ; 1e -> 1 ; 0x10 -> 0 ; abc -> 0 ; nan -> 0 ; inf -> 0 ; - -> 222
    . -> 0 ; 1e999 -> inf ; -1e999 -> -inf ; 1e-999 -> 0 ; 3,5 -> 3 ; $ -> 0 ; ABS -> 0 ; 2 1 > -> 1
    --5 -> 0 ; +-5 -> 0
)");
  for (std::string line; std::getline(table, line);) {
    for (size_t at = 0, end = 0; end != std::string::npos; at = end + 2) {
      end = line.find(" ;", at);
      CheckResult(line.substr(at, end - at));
    }
  }
  EXPECT_EQ(Evaluate("$alt >n1 @ 2 *", 5, 2), 10);
  EXPECT_EQ(Evaluate("1 2 3", 0, 3), 88) << "first not below count";
}

TEST(CustomExpression, StackHolds256Values) {
  std::vector<std::string_view> tokens(256, "1");
  tokens.resize(256 + 255, "+");
  EXPECT_EQ(Evaluate(tokens, 0, 0), 256);
  tokens.insert(tokens.begin(), "1");
  tokens.push_back("$none");
  EXPECT_EQ(Evaluate(tokens, 0, 0), 99);
}

TEST(CustomExpression, DocumentedResults) {
  int lines = 0;
  for (const std::string& block : custom::Blocks("custom-offsets.md", "results")) {
    std::istringstream stream(block);
    for (std::string line; std::getline(stream, line); ++lines) {
      ASSERT_NE(line.find("->"), std::string::npos) << line;
      CheckResult(line);
    }
  }
  EXPECT_GE(lines, 10);
}

TEST(CustomValues, ConvertBothWays) {
  struct Case {
    CustomType type;
    double value;
    uint64_t bytes;  // low byte first
    double readBack;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Case cases[] = {{CustomType::U8, 300.9, 44, 44},
                        {CustomType::U8, -1.5, 0xFF, 255},
                        {CustomType::S8, 200, 200, -56},
                        {CustomType::U16, 65536 + 7, 7, 7},
                        {CustomType::S16, -2.9, 0xFFFE, -2},
                        {CustomType::U32, -1, 0xFFFFFFFF, 4294967295.0},
                        {CustomType::S32, 4294967295.0, 0xFFFFFFFF, -1},
                        {CustomType::S32, nan, 0, 0},
                        {CustomType::U64, 1e19, 10000000000000000000u, 1e19},
                        {CustomType::U64, 1e30, ~uint64_t{0}, 18446744073709551616.0},
                        {CustomType::S64, -1e30, uint64_t{1} << 63, -9223372036854775808.0},
                        {CustomType::S64, nan, 0, 0},
                        {CustomType::U16, 1e30, 0xFFFF, 65535},
                        {CustomType::F32, 0.1, 0x3DCCCCCD, double{0.1F}},
                        {CustomType::F64, -2, 0xC000000000000000, -2}};
  for (const Case& c : cases) {
    uint8_t bytes[8] = {};
    EncodeCustomValue(c.type, c.value, bytes);
    const double readBack = DecodeCustomValue(c.type, bytes);
    EXPECT_EQ(readBack, c.readBack) << c.value;
    uint64_t kept = 0;
    constexpr size_t sizes[] = {1, 1, 2, 2, 4, 4, 8, 8, 4, 8};
    std::memcpy(&kept, bytes, sizes[static_cast<size_t>(c.type)]);
    EXPECT_EQ(kept, c.bytes) << c.value;
  }
}

}  // namespace
