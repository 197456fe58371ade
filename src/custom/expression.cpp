#include "custom/expression.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "custom/custom_parser.h"

namespace {

struct OperatorWord {
  std::string_view word;
  Op op;
  size_t operands;
};
constexpr OperatorWord operatorWords[] = {
    {.word = "+", .op = Op::Add, .operands = 2},
    {.word = "-", .op = Op::Subtract, .operands = 2},
    {.word = "*", .op = Op::Multiply, .operands = 2},
    {.word = "/", .op = Op::Divide, .operands = 2},
    {.word = "\\", .op = Op::DivideWhole, .operands = 2},
    {.word = "^", .op = Op::Power, .operands = 2},
    {.word = "&", .op = Op::And, .operands = 2},
    {.word = "|", .op = Op::Or, .operands = 2},
    {.word = "%", .op = Op::Remainder, .operands = 2},
    {.word = "==", .op = Op::Equal, .operands = 2},
    {.word = "!=", .op = Op::NotEqual, .operands = 2},
    {.word = ">", .op = Op::Greater, .operands = 2},
    {.word = ">=", .op = Op::GreaterOrEqual, .operands = 2},
    {.word = "<", .op = Op::Less, .operands = 2},
    {.word = "<=", .op = Op::LessOrEqual, .operands = 2},
    {.word = "?", .op = Op::Select, .operands = 3},
    {.word = "abs", .op = Op::Absolute, .operands = 1},
    {.word = "round", .op = Op::Round, .operands = 1},
    {.word = "@", .op = Op::Input, .operands = 0},
};
constexpr std::string_view piWord = "PI";

const OperatorWord* FindWord(std::string_view token) {
  for (const OperatorWord& row : operatorWords) {
    if (token == row.word) return &row;
  }
  return nullptr;
}

bool IsAliasValue(std::string_view token) { return token.size() >= 2 && token.front() == '$'; }

double NumberOf(std::string_view token) {
  if (token == piWord) return std::numbers::pi;
  double value = 0;
  ParseCustomNumber(token, &value);
  return value;
}

double Truth(bool condition) { return condition ? 1.0 : 0.0; }

double Remainder(double a, double b) {
  const int64_t divisor = TruncateTo64(b);
  if (divisor == 0 || divisor == -1) return 0;  // the latter overflows for the smallest integer
  return static_cast<double>(TruncateTo64(a) % divisor);
}

double Binary(Op op, double a, double b) {
  switch (op) {
    case Op::Add:
      return a + b;
    case Op::Subtract:
      return a - b;
    case Op::Multiply:
      return a * b;
    case Op::Divide:
      return a / b;
    case Op::DivideWhole:
      return static_cast<double>(TruncateTo64(a)) / static_cast<double>(TruncateTo64(b));
    case Op::Power:
      return std::pow(a, b);
    case Op::And:
      return static_cast<double>(TruncateTo64(a) & TruncateTo64(b));
    case Op::Or:
      return static_cast<double>(TruncateTo64(a) | TruncateTo64(b));
    case Op::Remainder:
      return Remainder(a, b);
    case Op::Equal:
      return Truth(a == b);
    case Op::NotEqual:
      return Truth(a != b);
    case Op::Greater:
      return Truth(a > b);
    case Op::GreaterOrEqual:
      return Truth(a >= b);
    case Op::Less:
      return Truth(a < b);
    case Op::LessOrEqual:
      return Truth(a <= b);
    default:
      return 0;
  }
}

double RoundHalfAway(double value) {
  return static_cast<double>(TruncateTo32(value >= 0 ? value + 0.5 : value - 0.5));
}

// The parser has counted what every operation takes and leaves, so that none reaches below the stack.
// NOLINTBEGIN(clang-analyzer-core.*)
// Applies an operation with operands to the values below `top` and returns the new top.
inline double* Apply(Op op, double* top) {
  switch (op) {
    case Op::Select:
      // The chosen value takes the condition's place; the second value stays above it.
      top[-3] = top[-3] == 0.0 ? top[-2] : top[-1];
      return top - 1;
    case Op::Absolute:
      top[-1] = std::fabs(top[-1]);
      return top;
    case Op::Round:
      top[-1] = RoundHalfAway(top[-1]);
      return top;
    default:
      top[-2] = Binary(op, top[-2], top[-1]);
      return top - 1;
  }
}

size_t DepthAfter(Op op, size_t depth) {
  switch (op) {
    case Op::Input:
      return depth + 1;
    case Op::Absolute:
    case Op::Round:
      return depth;
    default:
      return depth - 1;
  }
}

Operation PushNumber(double number) {
  Operation operation;
  operation.op = Op::Number;
  operation.number = number;
  return operation;
}

Operation PushDataref(const CustomDatarefEntry* dataref) {
  Operation operation;
  operation.op = Op::Dataref;
  operation.dataref = dataref;
  return operation;
}

}  // namespace

int64_t TruncateTo64(double value) {
  using Limits = std::numeric_limits<int64_t>;
  // -2^63 is exact in double precision, 2^63 - 1 is not: it compares as 2^63.
  if (value >= 9223372036854775808.0) return Limits::max();
  if (value >= -9223372036854775808.0) return static_cast<int64_t>(value);
  return std::isnan(value) ? 0 : Limits::min();
}

int32_t TruncateTo32(double value) {
  using Limits = std::numeric_limits<int32_t>;
  if (value >= 2147483647.0) return Limits::max();
  if (value > -2147483649.0) return static_cast<int32_t>(value);
  return std::isnan(value) ? 0 : Limits::min();
}

bool IsWriteTarget(std::string_view token) {
  return token.size() >= 2 && token.front() == '>' && token != ">=";
}

Op FindOperator(std::string_view token) {
  const OperatorWord* word = FindWord(token);
  return word != nullptr ? word->op : Op::Number;
}

CompileOutcome CompileExpression(const std::string_view* tokens, int32_t first, int32_t count,
                                 const std::vector<CustomDatarefEntry>& datarefs,
                                 std::vector<Operation>* operations) {
  const size_t start = operations->size();
  size_t depth = 0;
  double failure = 0;
  int32_t i = first;
  for (; i < count && !IsWriteTarget(tokens[i]); ++i) {
    const std::string_view token = tokens[i];
    if (IsAliasValue(token)) {
      const CustomDatarefEntry* dataref = FindCustomAlias(datarefs, token.substr(1));
      if (dataref == nullptr) failure = resultNoAlias;
      operations->push_back(PushDataref(dataref));
      ++depth;
    } else if (const OperatorWord* word = FindWord(token)) {
      if (depth < word->operands) failure = resultTooFewValues;
      Operation operation = PushNumber(0);
      operation.op = word->op;
      operations->push_back(operation);
      if (failure == 0) depth = DepthAfter(word->op, depth);
    } else {
      operations->push_back(PushNumber(NumberOf(token)));
      ++depth;
    }
    if (failure == 0 && depth > maxExpressionDepth) failure = resultOverflow;
    if (failure != 0) break;
  }
  if (failure == 0 && depth != 1) failure = resultNoValue;
  if (failure != 0) {
    operations->resize(start);
    operations->push_back(PushNumber(failure));
  }
  return {failure, i, static_cast<int32_t>(depth)};
}

void CompileCustomTables(CustomTables* tables) {
  std::vector<Operation>& operations = tables->operations;
  operations.reserve(tables->tokens.size() + 2 * tables->offsets.size());
  for (CustomOffsetEntry& entry : tables->offsets) {
    const std::string_view* tokens = tables->tokens.data() + entry.firstToken;
    const auto compile = [&](int32_t first) {
      const size_t start = operations.size();
      CompileExpression(tokens, first, entry.tokenCount, tables->datarefs, &operations);
      return Expression{static_cast<uint32_t>(start), static_cast<uint32_t>(operations.size() - start)};
    };
    entry.read = compile(0);
    // Every target replaces what the one before has staged: only the last known one counts.
    int32_t behindTarget = 0;
    for (int32_t i = 0; i < entry.tokenCount; ++i) {
      if (!IsWriteTarget(tokens[i])) continue;
      const CustomDatarefEntry* target = FindCustomAlias(tables->datarefs, tokens[i].substr(1));
      if (target == nullptr) continue;
      entry.writeTarget = target;
      behindTarget = i + 1;
    }
    if (entry.writeTarget != nullptr) entry.write = compile(behindTarget);
  }
}

double RunExpression(const Operation* operations, uint32_t count, double input, DatarefReader read) {
  double stack[maxExpressionDepth + 1];
  double* top = stack;
  for (const Operation* operation = operations; operation != operations + count; ++operation) {
    switch (operation->op) {
      case Op::Number:
        *top++ = operation->number;
        break;
      case Op::Dataref:
        *top++ = read(*operation->dataref);
        break;
      case Op::Input:
        *top++ = input;
        break;
      default:
        top = Apply(operation->op, top);
        break;
    }
  }
  return stack[0];
}
// NOLINTEND(clang-analyzer-core.*)
