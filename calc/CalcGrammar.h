// The actions of the expression grammar: what each rule of CalcParser.y
// builds when it reduces. Each function takes over every value it is given,
// the token strings included, and releases them when it throws; so the
// automaton keeps on its stacks only what no action has yet been handed.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcLex.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcParser;

namespace grammar {

using Args = ObjAppendListP<CalcNode>;

// Primary expressions.
CalcNode* stringConst(String* text);
CalcNode* numberConst(double value);
CalcNode* symbol(CalcParser& parser, String* name, const CalcLocation& at);
CalcNode* braced(CalcParser& parser, String* name);
CalcNode* call(CalcParser& parser, String* name, Args* args);
Args* firstArg(CalcNode* node);
Args* nextArg(Args* args, CalcNode* node);

// Compound expressions.
CalcNode* binary(CalcParser& parser, const char* op, CalcNode* left, CalcNode* right, const CalcLocation& opAt);
CalcNode* oper(CalcParser& parser, CalcNode* left, String* op, CalcNode* right, const CalcLocation& opAt);
CalcNode* conditional(CalcNode* condition, CalcNode* then, CalcNode* otherwise);
CalcNode* prefix(CalcParser& parser, const char* op, CalcNode* operand, const CalcLocation& opAt);
CalcNode* methodCall(CalcParser& parser, CalcNode* left, String* name, Args* args, const CalcLocation& argsAt);
CalcNode* property(CalcParser& parser, CalcNode* left, String* name, const CalcLocation& atAt,
                   const CalcLocation& nameAt);
CalcNode* index(CalcParser& parser, CalcNode* left, Args* args, const CalcLocation& openAt, const CalcLocation& argsAt,
                const CalcLocation& closeAt);
CalcNode* cast(CalcParser& parser, String* name, CalcNode* operand, const CalcLocation& closeAt,
               const CalcLocation& operandAt);
CalcNode* keyword(CalcParser& parser, CalcNode* left, String* word, const CalcLocation& leftAt,
                  const CalcLocation& wordAt);

// The forms that exist only to raise their error.
[[noreturn]] void prefixSequence(CalcParser& parser, CalcNode* inner, const CalcLocation& at);
[[noreturn]] void missingOperator(CalcParser& parser, CalcNode* left, CalcNode* right, String* token,
                                  const CalcLocation& leftAt, const CalcLocation& rightAt);
[[noreturn]] void notAfterExpr(CalcNode* left);
[[noreturn]] void syntaxError(CalcParser& parser, const CalcLocation& at);

// Statements.
void assignment(CalcParser& parser, String* name, CalcNode* node, const CalcLocation& nameAt,
                const CalcLocation& exprAt);
void statement(CalcParser& parser, CalcNode* node);
void endOfProgram(CalcParser& parser);

}  // namespace grammar
}  // namespace zun
