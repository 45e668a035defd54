#include "calc/CalcNodeOper.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "calc/CalcFunctions.h"

namespace zun {

double CalcNodeOperAdd::valNum() {
    double l = left->valNum();
    return l + right->valNum();
}

double CalcNodeOperSub::valNum() {
    double l = left->valNum();
    return l - right->valNum();
}

double CalcNodeOperUMinus::valNum() {
    double v = operand->valNum();
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    bits ^= std::uint64_t(1) << 63;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

double CalcNodeOperMul::valNum() {
    double l = left->valNum();
    if (l == 0) return 0;
    return l * right->valNum();
}

double CalcNodeOperDiv::valNum() {
    double r = right->valNum();
    return left->valNum() / r;
}

double CalcNodeOperPower::valNum() {
    double r = right->valNum();
    return std::pow(left->valNum(), r);
}

double CalcNodeOperModulo::valNum() {
    double r = right->valNum();
    double rem = std::fmod(left->valNum(), r);
    if (rem < 0 && r > 0) return rem + r;
    if (rem >= 0 && r < 0) return rem - r;
    return rem;
}

long long CalcNodeOperModulo::valInt() {
    long long l = truncToLLong(left->valNum());
    if (l == 0) return 0;
    long long r = right->valInt();
    // A zero divisor has no remainder: the integer NA. The one quotient that
    // overflows has the remainder 0.
    if (r == 0) return LLONG_MIN;
    if (r == -1) return 0;
    return l % r;
}

double CalcNodeOperBinAnd::valNum() { return static_cast<double>(valInt()); }

long long CalcNodeOperBinAnd::valInt() {
    long long l = left->valInt();
    if (l == 0) return 0;
    return l & right->valInt();
}

String CalcNodeOperBinAnd::valStr() {
    String s;
    s << valInt();
    return s;
}

double CalcNodeOperBinOr::valNum() { return static_cast<double>(valInt()); }

long long CalcNodeOperBinOr::valInt() {
    long long l = left->valInt();
    return l | right->valInt();
}

String CalcNodeOperBinOr::valStr() {
    String s;
    s << valInt();
    return s;
}

double CalcNodeOperMatch::valNum() {
    String pattern = right->valStr();
    String text = left->valStr();
    return text.match(pattern.text) ? 1 : 0;
}

double CalcNodeOperEQNum::valNum() {
    double l = left->valNum();
    return l == right->valNum() ? 1 : 0;
}

double CalcNodeOperNENum::valNum() {
    double l = left->valNum();
    return l == right->valNum() ? 0 : 1;
}

double CalcNodeOperLTNum::valNum() {
    double l = left->valNum();
    return l < right->valNum() ? 1 : 0;
}

double CalcNodeOperLENum::valNum() {
    double l = left->valNum();
    return l <= right->valNum() ? 1 : 0;
}

int CalcNodeOperCmpStr::compare() {
    String r = right->valStr();
    String l = left->valStr();
    return l.cmp(r.str());
}

double CalcNodeOperEQStr::valNum() { return compare() == 0 ? 1 : 0; }
double CalcNodeOperNEStr::valNum() { return compare() != 0 ? 1 : 0; }
double CalcNodeOperLTStr::valNum() { return compare() < 0 ? 1 : 0; }
double CalcNodeOperLEStr::valNum() { return compare() < 1 ? 1 : 0; }

double CalcNodeOperLogicAnd::valNum() {
    if (left->valNum() == 0) return 0;
    return right->valNum() != 0 ? 1 : 0;
}

double CalcNodeOperLogicOr::valNum() {
    if (left->valNum() != 0) return 1;
    return right->valNum() != 0 ? 1 : 0;
}

namespace {

// Takes the surviving operand out of the operator, so that destroying the
// operator leaves it alive; null stays null.
CalcNode* releaseOperand(CalcNodeOper& op, CalcNode* survivor) {
    if (survivor == op.left) op.left = nullptr;
    else if (survivor == op.right) op.right = nullptr;
    return survivor;
}

}  // namespace

CalcNode* CalcNodeOperLogicAnd::reduce() {
    if (CalcNode* folded = CalcNodeOper::reduce()) return folded;
    CalcNode* survivor = nullptr;
    if (left->constLevel() < 0) survivor = left->valNum() != 0 ? right : left;
    else if (right->constLevel() < 0) survivor = right->valNum() == 0 ? right : left;
    return releaseOperand(*this, survivor);
}

CalcNode* CalcNodeOperLogicOr::reduce() {
    if (CalcNode* folded = CalcNodeOper::reduce()) return folded;
    CalcNode* survivor = nullptr;
    if (left->constLevel() < 0) survivor = left->valNum() != 0 ? left : right;
    else if (right->constLevel() < 0) survivor = right->valNum() == 0 ? left : right;
    return releaseOperand(*this, survivor);
}

double CalcNodeOperLogicNot::valNum() { return operand->valNum() == 0 ? 1 : 0; }

double CalcNodeOperSuffix::valNum() { return valStr().toSmartDouble(); }

String CalcNodeOperSuffix::valStr() {
    String r = right->valStr();
    String l = left->valStr();
    l += r;
    return l;
}

CalcNode* makeOperatorNode(const char* op, CalcNode* left, CalcNode* right) {
    if (!op || !left) return nullptr;
    if (!right) {
        // Only two spellings have a prefix form.
        if (std::strcmp(op, "-") == 0) return new CalcNodeOperUMinus(left);
        if (std::strcmp(op, "!") == 0) return new CalcNodeOperLogicNot(left);
        return nullptr;
    }
    auto is = [op](const char* spelling) { return std::strcmp(op, spelling) == 0; };
    // Only the comparisons ask the left operand for its type: asking may
    // compile or evaluate something (exec, an element of a vector).
    auto numLeftOf = [left]() { return left->valType() == ValNum; };
    if (is("+")) return new CalcNodeOperAdd(left, right);
    if (is("-")) return new CalcNodeOperSub(left, right);
    if (is("*")) return new CalcNodeOperMul(left, right);
    if (is("/")) return new CalcNodeOperDiv(left, right);
    if (is("^")) return new CalcNodeOperPower(left, right);
    if (is("%")) return new CalcNodeOperModulo(left, right);
    if (is("&")) return new CalcNodeOperBinAnd(left, right);
    if (is("|")) return new CalcNodeOperBinOr(left, right);
    if (is("~")) return new CalcNodeOperMatch(left, right);
    if (is("==")) {
        if (numLeftOf()) return new CalcNodeOperEQNum(left, right);
        return new CalcNodeOperEQStr(left, right);
    }
    if (is("!=")) {
        if (numLeftOf()) return new CalcNodeOperNENum(left, right);
        return new CalcNodeOperNEStr(left, right);
    }
    if (is("<")) {
        if (numLeftOf()) return new CalcNodeOperLTNum(left, right);
        return new CalcNodeOperLTStr(left, right);
    }
    if (is("<=")) {
        if (numLeftOf()) return new CalcNodeOperLENum(left, right);
        return new CalcNodeOperLEStr(left, right);
    }
    // a > b is b < a, a >= b is b <= a; the written left operand still chooses.
    if (is(">")) {
        if (numLeftOf()) return new CalcNodeOperLTNum(right, left);
        return new CalcNodeOperLTStr(right, left);
    }
    if (is(">=")) {
        if (numLeftOf()) return new CalcNodeOperLENum(right, left);
        return new CalcNodeOperLEStr(right, left);
    }
    if (is("&&")) return new CalcNodeOperLogicAnd(left, right);
    if (is("||")) return new CalcNodeOperLogicOr(left, right);
    if (is("<<")) return new CalcNodeOperSuffix(left, right);
    if (is(">>")) return new CalcNodeOperSuffix(right, left);
    return nullptr;
}

}  // namespace zun
