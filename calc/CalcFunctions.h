// The builtin function families of the expression language, as the parser
// reaches them. Each bind function answers the node for a name of its family,
// or null for a name that isn't its own, and then leaves args untouched. A
// non-null answer, or an exception, has taken args over.
#pragma once

#include "base/ObjAppendList.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcParser;

// Numeric and geodesic functions (CalcNodeFuncNum).
CalcNode* bindNumFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser);
// String and date functions (CalcNodeFuncStr).
CalcNode* bindStrFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser);
// Stateful and control functions (CalcNodeFuncState).
CalcNode* bindStateFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser);
// vector() (CalcNodeVector).
CalcNode* bindVectorFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser);

// The operator node for a spelling of the operator table (CalcNodeOper);
// right is null for a prefix operator. Null for an unknown spelling, and then
// nothing is taken over.
CalcNode* makeOperatorNode(const char* op, CalcNode* left, CalcNode* right);

// The grammar's conditional expr ? expr : expr, named "if?then:else".
CalcNode* makeIfNode(CalcNode* condition, CalcNode* then, CalcNode* otherwise);
// symref(name...) when no binder and no builtin took the name "symref".
CalcNode* makeSymRefNode(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser);
// The string index form text[from, to]: a substr node named "operator::[]"
// over text (put first in args) and the bounds.
CalcNode* makeSubstrNode(const char* name, ObjAppendListP<CalcNode>* args);

}  // namespace zun
