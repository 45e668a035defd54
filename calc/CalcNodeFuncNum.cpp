#include "calc/CalcNodeFuncNum.h"

#include <strings.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeOper.h"

namespace zun {

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();

}  // namespace

CalcNodeFuncFlat::CalcNodeFuncFlat(const char* name, ObjAppendListP<CalcNode>* args, int min, int max)
    : CalcNodeFunc(name, args, min, max) {
    long i = 0;
    while (i < numArgs()) {
        CalcNode* before = arg(i);
        long next = flattenVectorArgument(i);
        // An unchanged argument answers its own index; a flattened one the
        // index behind its elements, which is its own index when it had none.
        if (next == i && i < numArgs() && arg(i) == before) ++i;
        else i = next;
    }
}

// ---- NA tests ----

bool CalcNodeFuncIsNA::isNA(CalcNode* node) {
    switch (node->valType()) {
    case ValStr:
        return node->valStr().isNull();
    case ValRaw:
        scratch.flush();
        node->valRaw(scratch);
        return scratch.count == 0;
    default:
        return std::isnan(node->valNum());
    }
}

double CalcNodeFuncIsNA::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!isNA(arg(i))) return 0;
    return 1;
}

double CalcNodeFuncHasNA::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (isNA(arg(i))) return 1;
    return 0;
}

double CalcNodeFuncIsNullStr::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!arg(i)->valStr().isNull()) return 0;
    return 1;
}

double CalcNodeFuncHasNullStr::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (arg(i)->valStr().isNull()) return 1;
    return 0;
}

double CalcNodeFuncIsNan::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!std::isnan(arg(i)->valNum())) return 0;
    return 1;
}

double CalcNodeFuncHasNan::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (std::isnan(arg(i)->valNum())) return 1;
    return 0;
}

double CalcNodeFuncIsFinite::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!std::isfinite(arg(i)->valNum())) return 0;
    return 1;
}

// ---- bits ----

long long CalcNodeFuncBits::valInt() {
    long long value = arg(0)->valInt();
    long long start = truncToLLong(arg(1)->valNum());
    if (numArgs() < 3) return (value >> (start & 63)) & 1;
    long long n = truncToInt(arg(2)->valNum());
    // Shift counts wrap modulo 64, so the sums may wrap as well.
    unsigned long long shift = static_cast<unsigned long long>(start);
    if (n < 0) shift += static_cast<unsigned long long>(n) + 1;
    unsigned long long width = n < 0 ? static_cast<unsigned long long>(-n) : static_cast<unsigned long long>(n);
    unsigned long long mask = (1ULL << (width & 63)) - 1;
    return static_cast<long long>(static_cast<unsigned long long>(value >> (shift & 63)) & mask);
}

double CalcNodeFuncBits::valNum() { return static_cast<double>(valInt()); }

String CalcNodeFuncBits::valStr() {
    String s;
    s << valInt();
    return s;
}

// ---- min, max, threshold ----

double CalcNodeFuncMin::valNum() {
    double result = kNaN;
    for (long i = 0; i < numArgs(); ++i) {
        double v = arg(i)->valNum();
        if (std::isnan(v)) continue;
        if (std::isnan(result) || v < result) result = v;
    }
    return result;
}

double CalcNodeFuncMax::valNum() {
    double result = kNaN;
    for (long i = 0; i < numArgs(); ++i) {
        double v = arg(i)->valNum();
        if (std::isnan(v)) continue;
        if (std::isnan(result) || v > result) result = v;
    }
    return result;
}

double CalcNodeFuncThreshold::valNum() {
    double x = arg(0)->valNum();
    double low = arg(1)->valNum();
    if (x < low) return -1;
    if (x > arg(2)->valNum()) return 1;
    return 0;
}

// ---- table lookups ----
// With all arguments flattened away there is no value at all; it is then
// taken as NaN, which matches no entry.

double CalcNodeFuncNumLookup::valNum() {
    long n = numArgs();
    if (n < 1) return -1;
    double x = arg(0)->valNum();
    for (long i = 1; i < n; ++i)
        if (x == arg(i)->valNum()) return static_cast<double>(i - 1);
    return -1;
}

double CalcNodeFuncStrLookup::valNum() {
    long n = numArgs();
    if (n < 1) return -1;
    String x = arg(0)->valStr();
    for (long i = 1; i < n; ++i) {
        String entry = arg(i)->valStr();
        if (x.cmp(entry.str()) == 0) return static_cast<double>(i - 1);
    }
    return -1;
}

double CalcNodeFuncMinLookup::valNum() {
    long n = numArgs();
    if (n < 1) return -1;
    double x = arg(0)->valNum();
    for (long i = 1; i < n; ++i)
        if (x < arg(i)->valNum()) return static_cast<double>(i - 2);
    return static_cast<double>(n - 2);
}

double CalcNodeFuncMaxLookup::valNum() {
    long n = numArgs();
    if (n < 1) return -1;
    double x = arg(0)->valNum();
    for (long i = 1; i < n; ++i)
        if (x <= arg(i)->valNum()) return static_cast<double>(i - 1);
    return -1;
}

double CalcNodeFuncMinSelect::valNum() {
    long n = numArgs();
    if (n < 1) return -kInf;
    double x = arg(0)->valNum();
    double previous = -kInf;
    for (long i = 1; i < n; ++i) {
        double t = arg(i)->valNum();
        if (x < t) return previous;
        previous = t;
    }
    return previous;
}

double CalcNodeFuncMaxSelect::valNum() {
    long n = numArgs();
    if (n < 1) return kInf;
    double x = arg(0)->valNum();
    for (long i = 1; i < n; ++i) {
        double t = arg(i)->valNum();
        if (x <= t) return t;
    }
    return kInf;
}

// ---- arithmetic ----

double CalcNodeFuncAbs::valNum() { return std::fabs(arg(0)->valNum()); }

double CalcNodeFuncRound::valNum() {
    double x = arg(0)->valNum();
    if (x == 0) return 0;
    double p = numArgs() > 1 ? std::pow(10.0, arg(1)->valNum()) : 1.0;
    return std::floor(x * p + 0.5) / p;
}

double CalcNodeFuncFloor::valNum() {
    double x = arg(0)->valNum();
    if (x == 0) return 0;
    double p = numArgs() > 1 ? std::pow(10.0, truncToInt(arg(1)->valNum())) : 1.0;
    return std::floor(x * p) / p;
}

double CalcNodeFuncCeil::valNum() {
    double x = arg(0)->valNum();
    if (x == 0) return 0;
    double p = numArgs() > 1 ? std::pow(10.0, truncToInt(arg(1)->valNum())) : 1.0;
    return std::ceil(x * p) / p;
}

double CalcNodeFuncLog::valNum() {
    double x = arg(0)->valNum();
    if (x < 0 || std::isnan(x)) return kNaN;
    double l = std::log(x);
    if (l == 0) return 0;
    if (numArgs() < 2) return l;
    double base = arg(1)->valNum();
    if (base < 0 || std::isnan(base)) return kNaN;
    return l / std::log(base);
}

double CalcNodeFuncSqrt::valNum() { return std::sqrt(arg(0)->valNum()); }
double CalcNodeFuncCos::valNum() { return std::cos(arg(0)->valNum()); }
double CalcNodeFuncSin::valNum() { return std::sin(arg(0)->valNum()); }
double CalcNodeFuncTan::valNum() { return std::tan(arg(0)->valNum()); }
double CalcNodeFuncACos::valNum() { return std::acos(arg(0)->valNum()); }
double CalcNodeFuncASin::valNum() { return std::asin(arg(0)->valNum()); }

double CalcNodeFuncATan::valNum() {
    double a = arg(0)->valNum();
    if (numArgs() < 2) return std::atan(a);
    return std::atan2(a, arg(1)->valNum());
}

// ---- geodesy ----

CalcNode* CalcNodeFuncArcLen::keyword(const char* word, CalcNodeMem* via) {
    if (via || !word || strcasecmp(word, "haversine") != 0) return nullptr;
    haversine = true;
    return this;
}

double CalcNodeFuncArcLen::valNum() {
    double lon1 = arg(0)->valNum();
    double lat1 = arg(1)->valNum();
    double lon2 = arg(2)->valNum();
    double lat2 = arg(3)->valNum();
    if (haversine) {
        double s1 = std::sin((lat2 - lat1) / 2);
        double s2 = std::sin((lon2 - lon1) / 2);
        double h = std::cos(lat1) * std::cos(lat2) * s2 * s2 + s1 * s1;
        return 2 * std::atan2(std::sqrt(h), std::sqrt(1 - h));
    }
    double c = std::sin(lat1) * std::sin(lat2) + std::cos(lat1) * std::cos(lat2) * std::cos(lon2 - lon1);
    // Rounding can push the cosine of a tiny angle just past 1; the angle is
    // then 0, not NaN.
    if (c > 1) c = 1;
    else if (c < -1) c = -1;
    return std::acos(c);
}

double CalcNodeFuncArcBearing::valNum() {
    double lon1 = arg(0)->valNum();
    double lat1 = arg(1)->valNum();
    double lon2 = arg(2)->valNum();
    double lat2 = arg(3)->valNum();
    double d = lon2 - lon1;
    return std::atan2(std::sin(d) * std::cos(lat2),
                      std::cos(lat1) * std::sin(lat2) - std::sin(lat1) * std::cos(lat2) * std::cos(d));
}

// ---- binding ----

namespace {

struct NumEntry {
    const char* name;
    CalcNode* (*make)(const char* name, ObjAppendListP<CalcNode>* args);
};

template <class T>
CalcNode* makeNum(const char* name, ObjAppendListP<CalcNode>* args) {
    return new T(args, name);
}

// Names taken by the language without a function behind them yet.
CalcNode* makeReserved(const char*, ObjAppendListP<CalcNode>*) { return nullptr; }

const NumEntry numTable[] = {
    {"isna", makeNum<CalcNodeFuncIsNA>},
    {"hasna", makeNum<CalcNodeFuncHasNA>},
    {"isnullstr", makeNum<CalcNodeFuncIsNullStr>},
    {"hasnullstr", makeNum<CalcNodeFuncHasNullStr>},
    {"isnan", makeNum<CalcNodeFuncIsNan>},
    {"hasnan", makeNum<CalcNodeFuncHasNan>},
    {"isfinite", makeNum<CalcNodeFuncIsFinite>},
    {"bits", makeNum<CalcNodeFuncBits>},
    {"min", makeNum<CalcNodeFuncMin>},
    {"max", makeNum<CalcNodeFuncMax>},
    {"threshold", makeNum<CalcNodeFuncThreshold>},
    {"minlookup", makeNum<CalcNodeFuncMinLookup>},
    {"maxlookup", makeNum<CalcNodeFuncMaxLookup>},
    {"minselect", makeNum<CalcNodeFuncMinSelect>},
    {"maxselect", makeNum<CalcNodeFuncMaxSelect>},
    {"numlookup", makeNum<CalcNodeFuncNumLookup>},
    {"strlookup", makeNum<CalcNodeFuncStrLookup>},
    {"abs", makeNum<CalcNodeFuncAbs>},
    {"round", makeNum<CalcNodeFuncRound>},
    {"floor", makeNum<CalcNodeFuncFloor>},
    {"ceil", makeNum<CalcNodeFuncCeil>},
    {"log", makeNum<CalcNodeFuncLog>},
    {"sqrt", makeNum<CalcNodeFuncSqrt>},
    {"cos", makeNum<CalcNodeFuncCos>},
    {"sin", makeNum<CalcNodeFuncSin>},
    {"tan", makeNum<CalcNodeFuncTan>},
    {"acos", makeNum<CalcNodeFuncACos>},
    {"asin", makeNum<CalcNodeFuncASin>},
    {"atan", makeNum<CalcNodeFuncATan>},
    {"arclen", makeNum<CalcNodeFuncArcLen>},
    {"arcbearing", makeNum<CalcNodeFuncArcBearing>},
    {"arcmidpoint", makeReserved},
    {"arcdest", makeReserved},
    {"arcinter", makeReserved},
};

}  // namespace

CalcNode* bindNumFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser&) {
    if (!name) return nullptr;
    for (const NumEntry& e : numTable)
        if (std::strcmp(name, e.name) == 0) return e.make(name, args);
    return nullptr;
}

}  // namespace zun
