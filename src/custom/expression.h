// Expressions in postfix notation over a stack of doubles: "$alt 3.28084 *".
//
// The tokens are compiled once into a list of operations that needs neither look-ups nor checks, since the
// depth of the stack after every token is known beforehand. Pure: whoever evaluates says how datarefs are read.
// Any thread that may call that reader.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

#include "custom/custom_records.h"

// Results of faulty expressions.
constexpr double resultNoValue = 88;        // nothing to evaluate, or not exactly one value at the end
constexpr double resultOverflow = 99;       // more than maxExpressionDepth values
constexpr double resultNoAlias = 111;       // "$" with an alias that does not exist
constexpr double resultTooFewValues = 222;  // an operator found too few values

constexpr size_t maxExpressionDepth = 256;

using DatarefReader = double (*)(const CustomDatarefEntry& dataref);

// Whether a token ends an expression and names the dataref to write (">" and an alias). The operator
// ">=" is none.
bool IsWriteTarget(std::string_view token);
// The operation of an operator word, or Op::Number for any other token.
Op FindOperator(std::string_view token);

// What became of a compiled expression.
struct CompileOutcome {
  double failure;  // 0, or the fixed result that it was compiled into
  int32_t token;   // the one that failed; the end of the expression for resultNoValue
  int32_t depth;   // values on the stack there
};
// Compiles tokens first .. count - 1, up to the first write target, behind `operations`.
CompileOutcome CompileExpression(const std::string_view* tokens, int32_t first, int32_t count,
                                 const std::vector<CustomDatarefEntry>& datarefs,
                                 std::vector<Operation>* operations);
// Compiles every entry's read expression and the write expression of its last known target. The tables are
// sorted.
void CompileCustomTables(CustomTables* tables);
// Runs a compiled expression.
double RunExpression(const Operation* operations, uint32_t count, double input, DatarefReader read);

// Truncation toward zero into 64 and 32 bits; saturated, NaN is 0.
int64_t TruncateTo64(double value);
int32_t TruncateTo32(double value);
