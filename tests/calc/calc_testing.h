// Test material for the expression language: a leaf that counts, logs and
// shapes what is asked of it, a binder of named values, table columns and an
// iterator over the table's rows, and short ways to compile and read.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcError.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"

namespace calctest {

using zun::CalcNode;
using zun::CalcParser;
using zun::String;
using NodeList = zun::ObjAppendListP<CalcNode>;
using V = std::vector<double>;

inline std::string text(const String& s) { return s.text ? std::string(s.text, s.length) : std::string("<null>"); }
inline std::string bytesOf(const zun::RawBuffer& b) { return b.data ? std::string(b.data, b.count) : ""; }
inline double nan() { return std::nan(""); }
inline std::uint64_t bitsOf(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

inline CalcNode* num(double v) { return new zun::CalcNodeConst<double>("numeric constant", v); }
inline CalcNode* str(const char* s) { return new zun::CalcNodeConst<String>("string constant", String(s)); }
inline CalcNode* raw(const char* s) {
    return new zun::CalcNodeConst<zun::RawBuffer>("data constant", zun::RawBuffer(s, s ? std::strlen(s) : 0));
}
inline NodeList* args(std::initializer_list<CalcNode*> nodes) {
    auto* list = new NodeList();
    for (CalcNode* n : nodes) *list << n;
    return list;
}

// A leaf of fixed number or text and of a chosen level (0: variable). It
// counts its reads, appends its tag to a log at each, counts its destruction,
// answers the keyword "kw", takes "**" (value*1000 + right) and, when told,
// takes methods (its value becomes their argument count) or refuses to be an
// operand or to be assigned.
class Leaf : public CalcNode {
public:
    double number = 0;
    String words;
    int type = zun::ValNum;
    int level = 0;
    int reads = 0;
    int* deaths = nullptr;
    std::string* log = nullptr;
    std::string tag;
    bool takeMethods = false, refuseOperands = false, refuseAssignment = false;
    std::string lastArgText;

    explicit Leaf(double v, int level = 0, const char* name = "leaf") : CalcNode(name), number(v), level(level) {}
    explicit Leaf(const String& s, int level = 0) : CalcNode("leaf"), words(s), type(zun::ValStr), level(level) {}
    ~Leaf() override {
        if (deaths) ++*deaths;
    }
    Type nodeType() override { return TypeData; }
    int valType() override { return type; }
    int constLevel() override { return level; }
    double valNum() override {
        if (type == zun::ValStr) return CalcNode::valNum();
        seen();
        return number;
    }
    String valStr() override {
        if (type != zun::ValStr) return CalcNode::valStr();
        seen();
        return words;
    }
    CalcNode* keyword(const char* word, zun::CalcNodeMem* via) override {
        return std::string(word) == "kw" && !via ? this : nullptr;
    }
    CalcNode* method(const char*, NodeList* list, const char* argText, zun::CalcBinder&,
                     zun::CalcNodeMem* via) override {
        if (!takeMethods || via) return nullptr;
        lastArgText = argText ? argText : "<null>";
        number = list ? static_cast<double>(list->count) : 0;
        delete list;
        return this;
    }
    using CalcNode::method;
    CalcNode* operOverloadR(const char*, CalcNode*, zun::CalcNodeMem*) override {
        return refuseOperands ? nullptr : this;
    }
    CalcNode* assigned(String&) override { return refuseAssignment ? nullptr : this; }
    CalcNode* operOverload(const char* op, CalcNode* other, zun::CalcNodeMem* via) override {
        if (std::string(op) != "**" || via) return nullptr;
        number = number * 1000 + other->valNum();
        delete other;
        return this;
    }

private:
    void seen() {
        ++reads;
        if (log) *log += tag;
    }
};

// A leaf of value v that appends tag to log at each read.
template <class T>
Leaf* probe(std::string& log, const char* tag, const T& v) {
    Leaf* l = new Leaf(v);
    l->log = &log;
    l->tag = tag;
    return l;
}

// The rows of a table: the current index, and how iterators moved it.
struct Rows {
    long index = 0;
    long count = 0;
    int moves = 0;           // setIndex calls through iterators
    std::vector<long> path;  // the indices they set, in order
};

class RowIterator : public zun::CalcIterator {
public:
    RowIterator(Rows& rows, int level) : CalcIterator(level), rows(rows) {}
    long count() override { return rows.count; }
    long getIndex() override { return rows.index; }
    void setIndex(long i) override {
        rows.index = i;
        ++rows.moves;
        rows.path.push_back(i);
    }

private:
    Rows& rows;
};

// A column of the table, numeric or text: its value at the current row, NA
// past the end; counts its reads.
class Column : public CalcNode {
public:
    Column(const char* name, Rows& rows, const V* numbers, const std::vector<std::string>* texts, int* reads)
        : CalcNode(name), rows(rows), numbers(numbers), texts(texts), reads(reads) {}
    Type nodeType() override { return TypeData; }
    int valType() override { return numbers ? zun::ValNum : zun::ValStr; }
    int constLevel() override { return 0; }
    double valNum() override {
        if (!numbers) return CalcNode::valNum();
        ++*reads;
        return inRange(numbers->size()) ? (*numbers)[static_cast<size_t>(rows.index)] : nan();
    }
    String valStr() override {
        if (numbers) return CalcNode::valStr();
        return inRange(texts->size()) ? String((*texts)[static_cast<size_t>(rows.index)].c_str()) : String(nullptr);
    }

private:
    Rows& rows;
    const V* numbers;
    const std::vector<std::string>* texts;
    int* reads;
    bool inRange(size_t n) const { return rows.index >= 0 && rows.index < static_cast<long>(n); }
};

// Offers an iterator over the rows at any level (each call a new one on the
// same index), the columns, fixed values, made-to-order nodes and functions.
class Binder : public zun::CalcBinder {
public:
    Rows rows;
    std::map<std::string, V> columns;
    std::map<std::string, std::vector<std::string>> texts;
    std::map<std::string, double> values;
    std::map<std::string, std::function<CalcNode*()>> nodes;
    std::map<std::string, std::function<CalcNode*(NodeList*)>> functions;
    std::map<std::string, int> reads;  // of each numeric column
    bool offerIterator = true;
    std::vector<int> iteratorLevels;   // the levels asked for

    void setColumn(const char* name, V v) {
        rows.count = static_cast<long>(v.size());
        columns[name] = std::move(v);
    }
    zun::CalcIterator* bindIterator(int level) override {
        iteratorLevels.push_back(level);
        return offerIterator ? new RowIterator(rows, level) : nullptr;
    }
    CalcNode* bindSymbol(const char* name) override {
        if (auto c = columns.find(name); c != columns.end())
            return new Column(name, rows, &c->second, nullptr, &reads[name]);
        if (auto t = texts.find(name); t != texts.end()) return new Column(name, rows, nullptr, &t->second, nullptr);
        if (auto n = nodes.find(name); n != nodes.end()) return n->second();
        if (auto v = values.find(name); v != values.end()) return new zun::CalcNodeConst<double>(name, v->second);
        return nullptr;
    }
    CalcNode* bindFunction(const char* name, NodeList* list) override {
        auto f = functions.find(name);
        return f == functions.end() ? nullptr : f->second(list);
    }
};

// Compiling with or without a binder (borrowed, never owned).
inline std::unique_ptr<CalcParser> parse(const char* statement, zun::CalcBinder* b = nullptr) {
    return std::unique_ptr<CalcParser>(b ? new CalcParser(statement, *b)
                                         : new CalcParser(statement, static_cast<zun::CalcBinder*>(nullptr)));
}
inline double value(const char* statement, zun::CalcBinder* b = nullptr) { return parse(statement, b)->valNum(); }
inline std::string strOf(const char* statement, zun::CalcBinder* b = nullptr) {
    return text(parse(statement, b)->valStr());
}

// The message of the error E that compiling the statement raises; any other
// outcome is described in the answer, so that the comparison fails.
template <class E>
std::string errorOf(const char* statement, zun::CalcBinder* b = nullptr) {
    try {
        parse(statement, b);
    } catch (E& e) {
        return text(e.message);
    } catch (zun::Exception& e) {
        return "<other error: " + text(e.signature()) + " " + text(e.message) + ">";
    } catch (String& s) {
        return "<bare text: " + text(s) + ">";
    }
    return "<no error>";
}

// The values of a node at each row; a parser is reset before each read.
inline V walk(CalcNode& node, Binder& b) {
    V out;
    for (long i = 0; i < b.rows.count; ++i) {
        b.rows.index = i;
        if (node.nodeType() == CalcNode::TypeParser) node.reset();
        out.push_back(node.valNum());
    }
    return out;
}
inline double at(CalcNode& node, Binder& b, long i) {
    b.rows.index = i;
    if (node.nodeType() == CalcNode::TypeParser) node.reset();
    return node.valNum();
}

}  // namespace calctest
