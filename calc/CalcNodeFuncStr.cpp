#include "calc/CalcNodeFuncStr.h"

#include <strings.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeOper.h"

namespace zun {

namespace {

const double kUsecPerDay = 86400000000.0;
// The longest text a String can hold with its final zero.
const long long kMaxLength = INT_MAX - 1;

// Days as microseconds, truncated; false when that doesn't fit 64 bits.
bool daysToUsec(double days, long long& usec) {
    double v = days * kUsecPerDay;
    if (!(std::fabs(v) < 9223372036854775808.0)) return false;
    usec = static_cast<long long>(v);
    return true;
}

}  // namespace

String CalcNodeFuncStrFill::valStr() {
    long long n = truncToLLong(arg(0)->valNum());
    if (n < 1) return String();
    if (numArgs() < 2) {
        if (n > kMaxLength) return nullStr();  // longer than any text can be
        return String(static_cast<int>(n), ' ');
    }
    String text = arg(1)->valStr();
    String result;
    if (text.length == 0) return result;
    if (n > kMaxLength / text.length) return nullStr();
    result.append(text.text, static_cast<int>(n * text.length));
    return result;
}

String CalcNodeFuncStrPad::valStr() {
    String text = arg(0)->valStr();
    if (text.isNull()) return text;
    int width = truncToInt(arg(1)->valNum());
    if (width < -kMaxLength || width > kMaxLength) return nullStr();  // longer than any text can be
    if (numArgs() < 3) {
        text.pad(width, " ");
    } else {
        String pad = arg(2)->valStr();
        text.pad(width, pad.str());
    }
    return text;
}

String CalcNodeFuncSubstr::valStr() {
    String text = arg(0)->valStr();
    if (text.isNull()) return text;
    int from = truncToInt(arg(1)->valNum());
    int to = numArgs() > 2 ? truncToInt(arg(2)->valNum()) : -1;
    return text.substr(from, to);
}

double CalcNodeFuncStrFind::valNum() {
    String text = arg(0)->valStr();
    if (text.isNull()) return -1;
    String what = arg(1)->valStr();
    int from = numArgs() > 2 ? truncToInt(arg(2)->valNum()) : 0;
    return static_cast<double>(text.find(what.str(), from));
}

String CalcNodeFuncStrWords::valStr() {
    String text = arg(0)->valStr();
    if (text.isNull()) return text;
    String separators = arg(1)->valStr();
    if (separators.isNull()) return text;
    char sep = separators[0];
    int first = truncToInt(arg(2)->valNum());
    int last = numArgs() > 3 ? truncToInt(arg(3)->valNum()) : first;
    return text.words(first, last, sep);
}

String CalcNodeFuncStrInsert::valStr() {
    String what = arg(1)->valStr();
    if (what.isNull()) return arg(0)->valStr();
    int position = truncToInt(arg(2)->valNum());
    String text = arg(0)->valStr();
    text.insert(position, what);
    return text;
}

String CalcNodeFuncStrEscape::valStr() {
    String text = arg(0)->valStr();
    text.escape(true);
    return text;
}

String CalcNodeFuncStrTrim::valStr() {
    String text = arg(0)->valStr();
    if (text.length == 0) return text;
    char c = 0;
    if (numArgs() > 1) c = arg(1)->valStr()[0];
    text.trim(c);
    return text;
}

double CalcNodeFuncStrIsNumber::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (arg(i)->valStr().isNumber() == 0) return 0;
    return 1;
}

double CalcNodeFuncStrIsInteger::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!arg(i)->valStr().isInteger()) return 0;
    return 1;
}

double CalcNodeFuncStrIsDecimal::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (arg(i)->valStr().isNumber() != 1) return 0;
    return 1;
}

double CalcNodeFuncStrIsAlpha::valNum() {
    for (long i = 0; i < numArgs(); ++i)
        if (!arg(i)->valStr().isAlpha()) return 0;
    return 1;
}

String CalcNodeFuncSwap::valStr() {
    String text = arg(0)->valStr();
    if (text.isNull()) return text;
    String from = arg(1)->valStr();
    if (from.isNull()) return text;
    String to = arg(2)->valStr();
    text.swap(from.text, to.text);
    return text;
}

String CalcNodeFuncLowercase::valStr() {
    String text = arg(0)->valStr();
    text.lowercase();
    return text;
}

String CalcNodeFuncUppercase::valStr() {
    String text = arg(0)->valStr();
    text.uppercase();
    return text;
}

CalcNode* CalcNodeFuncDateStr::keyword(const char* word, CalcNodeMem* via) {
    if (via || !word || strcasecmp(word, "iso") != 0) return nullptr;
    format = &CalcNodeFuncDateStr::valStrISO;
    return this;
}

String CalcNodeFuncDateStr::valStrDMY(const JulianDate& date) const { return date.str(-1); }

String CalcNodeFuncDateStr::valStrISO(const JulianDate& date) const { return date.strIso(-1, false); }

String CalcNodeFuncDateStr::valStr() {
    long long t = 0;
    if (numArgs() < 2) {
        if (!daysToUsec(arg(0)->valNum(), t)) return nullStr();
    } else {
        double baseYear = arg(1)->valNum();
        if (baseYear == 2000) {
            if (!daysToUsec(arg(0)->valNum(), t)) return nullStr();
        } else {
            double days = arg(0)->valNum();
            char text[32];
            std::snprintf(text, sizeof text, "01-JAN-%4d", truncToInt(baseYear));
            JulianDate start;
            if (start.init(text)) {
                long long offset;
                if (!daysToUsec(days, offset) || __builtin_add_overflow(start.usec, offset, &t)) return nullStr();
            } else {
                t = start.usec;
            }
        }
    }
    return (this->*format)(JulianDate(t));
}

double CalcNodeFuncDateNum::valNum() {
    String text = arg(0)->valStr();
    JulianDate date;
    if (text.isNull()) date.init();
    else if (!date.init(text.text)) return std::numeric_limits<double>::quiet_NaN();
    int baseYear = numArgs() > 1 ? truncToInt(arg(1)->valNum()) : 2000;
    return date.julianDayD(baseYear);
}

String CalcNodeFuncChar::valStr() {
    long long code = truncToLLong(arg(0)->valNum());
    String s;
    s += static_cast<char>(static_cast<unsigned char>(code & 0xFF));
    return s;
}

double CalcNodeFuncAscii::valNum() { return static_cast<signed char>(arg(0)->valStr()[0]); }

double CalcNodeFuncStrLen::valNum() { return arg(0)->valStr().length; }

String CalcNodeFuncStrMin::valStr() {
    String result;
    result.setNull();
    for (long i = 0; i < numArgs(); ++i) {
        String v = arg(i)->valStr();
        if (v.isNull()) continue;
        if (result.isNull() || v.cmp(result) < 0) result = std::move(v);
    }
    return result;
}

String CalcNodeFuncStrMax::valStr() {
    String result;
    result.setNull();
    for (long i = 0; i < numArgs(); ++i) {
        String v = arg(i)->valStr();
        if (v.isNull()) continue;
        if (result.isNull() || v.cmp(result) > 0) result = std::move(v);
    }
    return result;
}

double CalcNodeFuncStrCount::valNum() {
    String text = arg(0)->valStr();
    String what = arg(1)->valStr();
    return text.count(what.text);
}

// ---- binding ----

namespace {

struct StrEntry {
    const char* name;
    CalcNode* (*make)(const char* name, ObjAppendListP<CalcNode>* args);
};

template <class T>
CalcNode* makeStr(const char* name, ObjAppendListP<CalcNode>* args) {
    return new T(args, name);
}

const StrEntry strTable[] = {
    {"strfill", makeStr<CalcNodeFuncStrFill>},
    {"padstr", makeStr<CalcNodeFuncStrPad>},
    {"substr", makeStr<CalcNodeFuncSubstr>},
    {"strfind", makeStr<CalcNodeFuncStrFind>},
    {"words", makeStr<CalcNodeFuncStrWords>},
    {"insert", makeStr<CalcNodeFuncStrInsert>},
    {"escape", makeStr<CalcNodeFuncStrEscape>},
    {"trim", makeStr<CalcNodeFuncStrTrim>},
    {"isnumber", makeStr<CalcNodeFuncStrIsNumber>},
    {"isinteger", makeStr<CalcNodeFuncStrIsInteger>},
    {"isdecimal", makeStr<CalcNodeFuncStrIsDecimal>},
    {"isalpha", makeStr<CalcNodeFuncStrIsAlpha>},
    {"swap", makeStr<CalcNodeFuncSwap>},
    {"lowercase", makeStr<CalcNodeFuncLowercase>},
    {"uppercase", makeStr<CalcNodeFuncUppercase>},
    {"datestr", makeStr<CalcNodeFuncDateStr>},
    {"datenum", makeStr<CalcNodeFuncDateNum>},
    {"char", makeStr<CalcNodeFuncChar>},
    {"ascii", makeStr<CalcNodeFuncAscii>},
    {"strlen", makeStr<CalcNodeFuncStrLen>},
    {"strmin", makeStr<CalcNodeFuncStrMin>},
    {"strmax", makeStr<CalcNodeFuncStrMax>},
    {"strcount", makeStr<CalcNodeFuncStrCount>},
};

}  // namespace

CalcNode* bindStrFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser&) {
    if (!name) return nullptr;
    for (const StrEntry& e : strTable)
        if (std::strcmp(name, e.name) == 0) return e.make(e.name, args);
    return nullptr;
}

CalcNode* makeSubstrNode(const char* name, ObjAppendListP<CalcNode>* args) {
    return new CalcNodeFuncSubstr(args, name ? name : "operator::[]");
}

}  // namespace zun
