// The builtin numeric and geodesic functions of the expression language.
//
// Each function is a small class under CalcNodeFunc answering ValNum; the
// argument count is checked when the node is built. Functions over a variable
// number of values derive from CalcNodeFuncFlat, which replaces vector
// arguments by their elements. Angles are radians.
#pragma once

#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "calc/CalcNode.h"

namespace zun {


// A function whose vector arguments stand for their elements: each one is
// replaced by links to the elements of its last generation when built.
class CalcNodeFuncFlat : public CalcNodeFunc {
public:
    CalcNodeFuncFlat(const char* name, ObjAppendListP<CalcNode>* args, int min, int max);
};

// isna, hasna: NA by each argument's own type (NaN, null text, no bytes).
class CalcNodeFuncIsNA : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncIsNA(ObjAppendListP<CalcNode>* args, const char* name = "isna")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;

protected:
    bool isNA(CalcNode* node);
    RawBuffer scratch;
};

class CalcNodeFuncHasNA : public CalcNodeFuncIsNA {
public:
    explicit CalcNodeFuncHasNA(ObjAppendListP<CalcNode>* args, const char* name = "hasna")
        : CalcNodeFuncIsNA(args, name) {}
    double valNum() override;
};

// isnullstr, hasnullstr: by valStr whatever the type.
class CalcNodeFuncIsNullStr : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncIsNullStr(ObjAppendListP<CalcNode>* args, const char* name = "isnullstr")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncHasNullStr : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncHasNullStr(ObjAppendListP<CalcNode>* args, const char* name = "hasnullstr")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

// isnan, hasnan, isfinite: by valNum whatever the type.
class CalcNodeFuncIsNan : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncIsNan(ObjAppendListP<CalcNode>* args, const char* name = "isnan")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncHasNan : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncHasNan(ObjAppendListP<CalcNode>* args, const char* name = "hasnan")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncIsFinite : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncIsFinite(ObjAppendListP<CalcNode>* args, const char* name = "isfinite")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

// bits(value, start [, count]): a bit field of a signed 64-bit integer; a
// negative count makes start the field's high end.
class CalcNodeFuncBits : public CalcNodeFunc {
public:
    explicit CalcNodeFuncBits(ObjAppendListP<CalcNode>* args, const char* name = "bits")
        : CalcNodeFunc(name, args, 2, 3) {}
    double valNum() override;
    long long valInt() override;
    String valStr() override;
};

// min, max: NaN arguments are ignored; NaN only if all are NaN.
class CalcNodeFuncMin : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMin(ObjAppendListP<CalcNode>* args, const char* name = "min")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncMax : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMax(ObjAppendListP<CalcNode>* args, const char* name = "max")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

// threshold(x, low, high): -1 below the band, 1 above it, else 0.
class CalcNodeFuncThreshold : public CalcNodeFunc {
public:
    explicit CalcNodeFuncThreshold(ObjAppendListP<CalcNode>* args, const char* name = "threshold")
        : CalcNodeFunc(name, args, 3, 3) {}
    double valNum() override;
};

// The table lookups: argument 0 is the value, the rest an ascending table.
class CalcNodeFuncMinLookup : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMinLookup(ObjAppendListP<CalcNode>* args, const char* name = "minlookup")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncMaxLookup : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMaxLookup(ObjAppendListP<CalcNode>* args, const char* name = "maxlookup")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncMinSelect : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMinSelect(ObjAppendListP<CalcNode>* args, const char* name = "minselect")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncMaxSelect : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncMaxSelect(ObjAppendListP<CalcNode>* args, const char* name = "maxselect")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncNumLookup : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncNumLookup(ObjAppendListP<CalcNode>* args, const char* name = "numlookup")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncStrLookup : public CalcNodeFuncFlat {
public:
    explicit CalcNodeFuncStrLookup(ObjAppendListP<CalcNode>* args, const char* name = "strlookup")
        : CalcNodeFuncFlat(name, args, 1, 100) {}
    double valNum() override;
};

class CalcNodeFuncAbs : public CalcNodeFunc {
public:
    explicit CalcNodeFuncAbs(ObjAppendListP<CalcNode>* args, const char* name = "abs")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

// round, floor, ceil with an optional number of decimals; 0 stays 0 without
// reading the decimals.
class CalcNodeFuncRound : public CalcNodeFunc {
public:
    explicit CalcNodeFuncRound(ObjAppendListP<CalcNode>* args, const char* name = "round")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

class CalcNodeFuncFloor : public CalcNodeFunc {
public:
    explicit CalcNodeFuncFloor(ObjAppendListP<CalcNode>* args, const char* name = "floor")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

class CalcNodeFuncCeil : public CalcNodeFunc {
public:
    explicit CalcNodeFuncCeil(ObjAppendListP<CalcNode>* args, const char* name = "ceil")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

// log(x [, base]): natural logarithm, or to the given base.
class CalcNodeFuncLog : public CalcNodeFunc {
public:
    explicit CalcNodeFuncLog(ObjAppendListP<CalcNode>* args, const char* name = "log")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

class CalcNodeFuncSqrt : public CalcNodeFunc {
public:
    explicit CalcNodeFuncSqrt(ObjAppendListP<CalcNode>* args, const char* name = "sqrt")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncCos : public CalcNodeFunc {
public:
    explicit CalcNodeFuncCos(ObjAppendListP<CalcNode>* args, const char* name = "cos")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncSin : public CalcNodeFunc {
public:
    explicit CalcNodeFuncSin(ObjAppendListP<CalcNode>* args, const char* name = "sin")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncTan : public CalcNodeFunc {
public:
    explicit CalcNodeFuncTan(ObjAppendListP<CalcNode>* args, const char* name = "tan")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncACos : public CalcNodeFunc {
public:
    explicit CalcNodeFuncACos(ObjAppendListP<CalcNode>* args, const char* name = "acos")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

class CalcNodeFuncASin : public CalcNodeFunc {
public:
    explicit CalcNodeFuncASin(ObjAppendListP<CalcNode>* args, const char* name = "asin")
        : CalcNodeFunc(name, args, 1, 1) {}
    double valNum() override;
};

// atan(a) or atan2(a, b).
class CalcNodeFuncATan : public CalcNodeFunc {
public:
    explicit CalcNodeFuncATan(ObjAppendListP<CalcNode>* args, const char* name = "atan")
        : CalcNodeFunc(name, args, 1, 2) {}
    double valNum() override;
};

// arclen(lon1, lat1, lon2, lat2): central angle on the unit sphere, by the
// spherical law of cosines, or by the haversine formula after the keyword
// "haversine".
class CalcNodeFuncArcLen : public CalcNodeFunc {
public:
    bool haversine = false;

    explicit CalcNodeFuncArcLen(ObjAppendListP<CalcNode>* args, const char* name = "arclen")
        : CalcNodeFunc(name, args, 4, 4) {}
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    double valNum() override;
};

// arcbearing(lon1, lat1, lon2, lat2): initial bearing from the first point.
class CalcNodeFuncArcBearing : public CalcNodeFunc {
public:
    explicit CalcNodeFuncArcBearing(ObjAppendListP<CalcNode>* args, const char* name = "arcbearing")
        : CalcNodeFunc(name, args, 4, 4) {}
    double valNum() override;
};

}  // namespace zun
