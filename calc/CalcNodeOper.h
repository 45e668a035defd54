// The operator nodes of the expression language.
//
// Every operator is a small class under CalcNodeOper (two operands) or
// CalcNodeOperUnary (one), owning its operands. All answer ValNum but the
// string suffix, which answers ValStr. makeOperatorNode (CalcFunctions.h)
// picks the class for a spelling; comparisons come in a numeric and a string
// form, chosen by the type of the written left operand.
#pragma once

#include <climits>

#include "calc/CalcNode.h"

namespace zun {

// A double truncated to a 64-bit integer the way the machine does it: NaN and
// values out of range give the most negative integer.
inline long long truncToLLong(double v) {
    if (v >= -9223372036854775808.0 && v < 9223372036854775808.0) return static_cast<long long>(v);
    return LLONG_MIN;
}

// The same to a 32-bit integer: NaN and values out of range give INT_MIN.
inline int truncToInt(double v) {
    if (v > -2147483649.0 && v < 2147483648.0) return static_cast<int>(v);
    return INT_MIN;
}

class CalcNodeOperAdd : public CalcNodeOper {
public:
    CalcNodeOperAdd(CalcNode* left, CalcNode* right) : CalcNodeOper("addition", left, right) {}
    double valNum() override;
};

class CalcNodeOperSub : public CalcNodeOper {
public:
    CalcNodeOperSub(CalcNode* left, CalcNode* right) : CalcNodeOper("difference", left, right) {}
    double valNum() override;
};

// The operand with its sign bit flipped, NaN and zero included.
class CalcNodeOperUMinus : public CalcNodeOperUnary {
public:
    explicit CalcNodeOperUMinus(CalcNode* operand) : CalcNodeOperUnary("unary minus", operand) {}
    double valNum() override;
};

// 0 when left is 0, without reading right.
class CalcNodeOperMul : public CalcNodeOper {
public:
    CalcNodeOperMul(CalcNode* left, CalcNode* right) : CalcNodeOper("multiplication", left, right) {}
    double valNum() override;
};

// Right is read first. IEEE division: no error on a zero divisor.
class CalcNodeOperDiv : public CalcNodeOper {
public:
    CalcNodeOperDiv(CalcNode* left, CalcNode* right) : CalcNodeOper("division", left, right) {}
    double valNum() override;
};

// Right is read first.
class CalcNodeOperPower : public CalcNodeOper {
public:
    CalcNodeOperPower(CalcNode* left, CalcNode* right) : CalcNodeOper("power", left, right) {}
    double valNum() override;
};

// valNum: right is read first; the floating remainder is moved by right when
// its sign and right's differ, and a non-negative remainder by a negative right
// too (7 % -3 is 4). valInt: the integer remainder with the dividend's sign.
class CalcNodeOperModulo : public CalcNodeOper {
public:
    CalcNodeOperModulo(CalcNode* left, CalcNode* right) : CalcNodeOper("modulo", left, right) {}
    double valNum() override;
    long long valInt() override;
};

// Bitwise and of the valInt values; right isn't read when left is 0.
class CalcNodeOperBinAnd : public CalcNodeOper {
public:
    CalcNodeOperBinAnd(CalcNode* left, CalcNode* right) : CalcNodeOper("binary and", left, right) {}
    double valNum() override;
    long long valInt() override;
    String valStr() override;
};

class CalcNodeOperBinOr : public CalcNodeOper {
public:
    CalcNodeOperBinOr(CalcNode* left, CalcNode* right) : CalcNodeOper("binary or", left, right) {}
    double valNum() override;
    long long valInt() override;
    String valStr() override;
};

// 1 if left's text matches the wildcard pattern on the right (read first).
class CalcNodeOperMatch : public CalcNodeOper {
public:
    CalcNodeOperMatch(CalcNode* left, CalcNode* right) : CalcNodeOper("string match", left, right) {}
    double valNum() override;
};

class CalcNodeOperEQNum : public CalcNodeOper {
public:
    CalcNodeOperEQNum(CalcNode* left, CalcNode* right) : CalcNodeOper("numeric equality", left, right) {}
    double valNum() override;
};

class CalcNodeOperNENum : public CalcNodeOper {
public:
    CalcNodeOperNENum(CalcNode* left, CalcNode* right) : CalcNodeOper("numeric non equality", left, right) {}
    double valNum() override;
};

class CalcNodeOperLTNum : public CalcNodeOper {
public:
    CalcNodeOperLTNum(CalcNode* left, CalcNode* right) : CalcNodeOper("numeric less than", left, right) {}
    double valNum() override;
};

class CalcNodeOperLENum : public CalcNodeOper {
public:
    CalcNodeOperLENum(CalcNode* left, CalcNode* right)
        : CalcNodeOper("numeric less than or equal to", left, right) {}
    double valNum() override;
};

// The string comparisons: right's text is read first and a null one stands
// for the empty text; left's text is then compared with String::cmp, so a
// null left stays above any text.
class CalcNodeOperCmpStr : public CalcNodeOper {
public:
    using CalcNodeOper::CalcNodeOper;

protected:
    int compare();
};

class CalcNodeOperEQStr : public CalcNodeOperCmpStr {
public:
    CalcNodeOperEQStr(CalcNode* left, CalcNode* right) : CalcNodeOperCmpStr("string equality", left, right) {}
    double valNum() override;
};

class CalcNodeOperNEStr : public CalcNodeOperCmpStr {
public:
    CalcNodeOperNEStr(CalcNode* left, CalcNode* right) : CalcNodeOperCmpStr("string non equality", left, right) {}
    double valNum() override;
};

class CalcNodeOperLTStr : public CalcNodeOperCmpStr {
public:
    CalcNodeOperLTStr(CalcNode* left, CalcNode* right)
        : CalcNodeOperCmpStr("alphanumeric less than", left, right) {}
    double valNum() override;
};

class CalcNodeOperLEStr : public CalcNodeOperCmpStr {
public:
    CalcNodeOperLEStr(CalcNode* left, CalcNode* right)
        : CalcNodeOperCmpStr("alphanumeric less than or equal to", left, right) {}
    double valNum() override;
};

// Short-circuit and: right isn't read when left is 0; NaN counts as true.
// reduce replaces the node by one operand when the other is constant.
class CalcNodeOperLogicAnd : public CalcNodeOper {
public:
    CalcNodeOperLogicAnd(CalcNode* left, CalcNode* right) : CalcNodeOper("logic and", left, right) {}
    double valNum() override;
    CalcNode* reduce() override;
};

// Short-circuit or: right isn't read when left isn't 0.
class CalcNodeOperLogicOr : public CalcNodeOper {
public:
    CalcNodeOperLogicOr(CalcNode* left, CalcNode* right) : CalcNodeOper("logic or", left, right) {}
    double valNum() override;
    CalcNode* reduce() override;
};

// 1 if the operand is 0, else 0 (NaN gives 0).
class CalcNodeOperLogicNot : public CalcNodeOperUnary {
public:
    explicit CalcNodeOperLogicNot(CalcNode* operand) : CalcNodeOperUnary("not", operand) {}
    double valNum() override;
};

// Text joined: left's text followed by right's, right read first.
class CalcNodeOperSuffix : public CalcNodeOper {
public:
    CalcNodeOperSuffix(CalcNode* left, CalcNode* right) : CalcNodeOper("string suffix", left, right) {}
    int valType() override { return ValStr; }
    double valNum() override;
    String valStr() override;
};

}  // namespace zun
