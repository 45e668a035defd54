// Nodes for building expression trees by hand in the operator and function
// tests: constants, and a probe that records when it is read.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcNode.h"
#include "calc/CalcNodeOper.h"
#include "calc/CalcParser.h"

namespace calctest {

using zun::CalcNode;
using zun::String;

inline CalcNode* num(double v) { return new zun::CalcNodeConst<double>("numeric constant", v); }
// A null pointer gives the null string.
inline CalcNode* str(const char* s) { return new zun::CalcNodeConst<String>("string constant", String(s)); }

inline zun::ObjAppendListP<CalcNode>* args(std::initializer_list<CalcNode*> nodes) {
    auto* list = new zun::ObjAppendListP<CalcNode>();
    for (CalcNode* n : nodes) *list << n;
    return list;
}

inline std::uint64_t bitsOf(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

inline double nan() { return std::nan(""); }

// A leaf that appends its tag to a shared log each time one of its values is
// read. It is not constant (level 0) unless told otherwise.
class Probe : public CalcNode {
public:
    std::string& log;
    std::string tag;
    int type;
    double number = 0;
    String text;
    int level;

    Probe(std::string& log, const char* tag, double v, int level = 0)
        : CalcNode("probe"), log(log), tag(tag), type(zun::ValNum), number(v), level(level) {}
    Probe(std::string& log, const char* tag, const String& s, int level = 0)
        : CalcNode("probe"), log(log), tag(tag), type(zun::ValStr), text(s), level(level) {}

    Type nodeType() override { return TypeData; }
    int valType() override { return type; }
    int constLevel() override { return level; }
    double valNum() override {
        log += tag;
        return type == zun::ValNum ? number : text.toSmartDouble();
    }
    String valStr() override {
        log += tag;
        if (type == zun::ValStr) return text;
        if (std::isnan(number)) return String(nullptr);
        String s;
        s << number;
        return s;
    }
    long long valInt() override {
        log += tag;
        return zun::truncToLLong(type == zun::ValNum ? number : text.toSmartDouble());
    }
};

// Binds "x" to a probe of 5, "y" to one of 0 and "s" to one of the text "abc",
// all logging to the same string.
class ProbeBinder : public zun::CalcBinder {
public:
    std::string log;
    CalcNode* bindSymbol(const char* name) override {
        if (std::strcmp(name, "x") == 0) return new Probe(log, "x", 5);
        if (std::strcmp(name, "y") == 0) return new Probe(log, "y", 0);
        if (std::strcmp(name, "s") == 0) return new Probe(log, "s", String("abc"));
        return nullptr;
    }
};

inline double numOf(const char* text) {
    zun::CalcParser p(text, static_cast<zun::CalcBinder*>(nullptr));
    return p.valNum();
}

// The text of an expression; "<null>" for the null string.
inline std::string strOf(const char* text) {
    zun::CalcParser p(text, static_cast<zun::CalcBinder*>(nullptr));
    String s = p.valStr();
    return s.text ? std::string(s.text, s.length) : std::string("<null>");
}

}  // namespace calctest
