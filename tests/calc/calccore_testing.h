// Test material for the scanner, the parser, the node model and the binders:
// a token lister, a binder of named values with an optional iterator, and
// small nodes that count or refuse what is asked of them.
#pragma once

#include <cstdio>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcError.h"
#include "calc/CalcLex.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"

namespace calccore {

using zun::CalcNode;
using zun::CalcParser;
using zun::String;

inline std::string text(const String& s) { return s.text ? std::string(s.text, s.length) : std::string("<null>"); }

// The tokens of a text, written as "KIND:value" or the character, separated
// by blanks: "NAME:a + INTEGER:1".
struct Token {
    int kind;
    std::string value;
    int first;
    int last;
};

inline std::vector<Token> tokens(const std::string& source, zun::CalcLex* lexer = nullptr) {
    namespace T = zun::CalcToken;
    std::istringstream in(source);
    zun::CalcLex own;
    zun::CalcLex& lex = lexer ? *lexer : own;
    lex.rearm(in);
    std::vector<Token> out;
    for (int kind; (kind = lex.nextToken()) != 0;) {
        Token t{kind, "", lex.location.first_column, lex.location.last_column};
        if (T::hasString(kind)) {
            t.value = text(*Calclval.str);
            delete Calclval.str;
        } else if (kind == T::INTEGER) {
            t.value = std::to_string(Calclval.integer);
        } else if (kind == T::FLOAT) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%g", Calclval.real);
            t.value = buf;
        }
        out.push_back(t);
    }
    return out;
}

inline const char* kindName(int kind) {
    static const char* const names[] = {"SQ", "DQ", "INTEGER", "FLOAT", "NAME", "BRACED", "INVALID", "EQ",
                                        "NE", "GE", "LE", "AND", "OR", "SHR", "SHL", "OPER"};
    return kind >= zun::CalcToken::SQ_STRING && kind <= zun::CalcToken::OPER ? names[kind - zun::CalcToken::SQ_STRING]
                                                                             : nullptr;
}

inline std::string lexed(const std::string& source) {
    std::string out;
    for (const Token& t : tokens(source)) {
        if (!out.empty()) out += ' ';
        if (const char* name = kindName(t.kind)) {
            out += name;
            if (!t.value.empty()) out += ":" + t.value;
        } else {
            out += static_cast<char>(t.kind);
        }
    }
    return out;
}

// A node of fixed value that counts its reads and its destruction.
class Counted : public CalcNode {
public:
    double value;
    int* reads;
    int* deaths;
    int level;

    Counted(double value, int* reads = nullptr, int* deaths = nullptr, int level = 0)
        : CalcNode("counted"), value(value), reads(reads), deaths(deaths), level(level) {}
    ~Counted() override {
        if (deaths) ++*deaths;
    }
    Type nodeType() override { return TypeRef; }
    int valType() override { return zun::ValNum; }
    int constLevel() override { return level; }
    double valNum() override {
        if (reads) ++*reads;
        return value;
    }
};

// A node that the test shapes through callbacks: what it answers to keywords,
// properties, methods, operators and assignment.
class Probe : public CalcNode {
public:
    std::string lastWord;
    std::string lastArgText;
    bool refuseOperands = false;   // operOverloadR answers null
    bool refuseAssignment = false;
    bool takeMethods = false;      // method() answers itself, taking the arguments
    double value = 5;

    explicit Probe(const char* name = "probe") : CalcNode(name) {}
    Type nodeType() override { return TypeRef; }
    int valType() override { return zun::ValNum; }
    int constLevel() override { return 0; }
    double valNum() override { return value; }
    CalcNode* keyword(const char* word, zun::CalcNodeMem* via) override {
        lastWord = word;
        return std::string(word) == "kw" && !via ? this : nullptr;
    }
    CalcNode* method(const char* name, zun::ObjAppendListP<CalcNode>* args, const char* argText,
                     zun::CalcBinder&, zun::CalcNodeMem* via) override {
        if (!takeMethods || via) return nullptr;
        lastArgText = argText ? argText : "<null>";
        value = args ? static_cast<double>(args->count) : 0;
        delete args;
        return this;
    }
    using CalcNode::method;
    CalcNode* operOverloadR(const char*, CalcNode*, zun::CalcNodeMem*) override {
        return refuseOperands ? nullptr : this;
    }
    CalcNode* assigned(String&) override { return refuseAssignment ? nullptr : this; }
    // "**" takes the right operand in: value*1000 + right.
    CalcNode* operOverload(const char* op, CalcNode* other, zun::CalcNodeMem* via) override {
        if (std::string(op) != "**" || via) return nullptr;
        value = value * 1000 + other->valNum();
        delete other;
        return this;
    }
};

// A binder of named numbers, with optional made-to-order nodes, functions and
// an iterator over `rows` rows.
class TestBinder : public zun::CalcBinder {
public:
    std::map<std::string, double> values;
    std::map<std::string, std::function<CalcNode*()>> nodes;
    std::map<std::string, std::function<CalcNode*(zun::ObjAppendListP<CalcNode>*)>> functions;
    std::vector<int> iteratorLevels;   // the levels asked for
    bool offerIterator = false;
    long rows = 0;
    long index = 0;
    int symbolCalls = 0;

    CalcNode* bindSymbol(const char* name) override {
        ++symbolCalls;
        if (!name) return nullptr;
        auto n = nodes.find(name);
        if (n != nodes.end()) return n->second();
        auto v = values.find(name);
        if (v != values.end()) return new zun::CalcNodeConst<double>(name, v->second);
        return nullptr;
    }
    zun::CalcIterator* bindIterator(int level) override;
    CalcNode* bindFunction(const char* name, zun::ObjAppendListP<CalcNode>* args) override {
        auto f = functions.find(name);
        return f == functions.end() ? nullptr : f->second(args);
    }
};

class TestIterator : public zun::CalcIterator {
public:
    TestIterator(TestBinder& rows, int level) : CalcIterator(level), rows(rows) {}
    long count() override { return rows.rows; }
    long getIndex() override { return rows.index; }
    void setIndex(long i) override { rows.index = i; }

private:
    TestBinder& rows;
};

inline zun::CalcIterator* TestBinder::bindIterator(int level) {
    iteratorLevels.push_back(level);
    return offerIterator ? new TestIterator(*this, level) : nullptr;
}

// The value of a statement compiled without binder, or with b.
inline double value(const char* statement) {
    zun::CalcParser p(statement, static_cast<zun::CalcBinder*>(nullptr));
    return p.valNum();
}
inline double value(const char* statement, zun::CalcBinder& b) {
    zun::CalcParser p(statement, b);
    return p.valNum();
}
inline std::string print(const char* statement) {
    zun::CalcParser p(statement, static_cast<zun::CalcBinder*>(nullptr));
    return text(p.valPrint());
}

// The message of the CalcError E that compiling the statement raises; a
// different outcome fails the test through the returned text.
template <class E>
std::string errorOf(const char* statement, zun::CalcBinder* b = nullptr) {
    try {
        if (b) zun::CalcParser p(statement, *b);
        else zun::CalcParser p(statement, static_cast<zun::CalcBinder*>(nullptr));
    } catch (E& e) {
        return text(e.message);
    } catch (zun::Exception& e) {
        return "<other error: " + text(e.signature()) + " " + text(e.message) + ">";
    } catch (String& s) {
        return "<bare text: " + text(s) + ">";
    }
    return "<no error>";
}

}  // namespace calccore
