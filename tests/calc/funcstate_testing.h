// Test material for the stateful functions and vectors: a table of rows that
// an expression walks as an array would, a binder that offers an iterator
// over it and its columns as symbols, and hand-made constant nodes.
#pragma once

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"

namespace statetest {

using zun::CalcNode;
using zun::String;

inline CalcNode* num(double v) { return new zun::CalcNodeConst<double>("numeric constant", v); }
inline CalcNode* str(const char* s) { return new zun::CalcNodeConst<String>("string constant", String(s)); }
inline CalcNode* raw(const char* bytes) {
    return new zun::CalcNodeConst<zun::RawBuffer>("data constant", zun::RawBuffer(bytes, static_cast<long>(std::strlen(bytes))));
}

inline zun::ObjAppendListP<CalcNode>* args(std::initializer_list<CalcNode*> nodes) {
    auto* list = new zun::ObjAppendListP<CalcNode>();
    for (CalcNode* n : nodes) *list << n;
    return list;
}

inline double nan() { return std::nan(""); }

// The rows an expression walks: the current index, and how the iterators
// moved it.
struct Rows {
    long index = 0;
    long count = 0;
    int moves = 0;           // setIndex calls through iterators
    std::vector<long> path;  // the indices they set, in order
};

class RowIterator : public zun::CalcIterator {
public:
    explicit RowIterator(Rows& rows, int level = 0) : CalcIterator(level), rows(rows) {}
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

// A column of the table: its value at the current row (NaN past the end),
// counting its reads.
class Column : public CalcNode {
public:
    Column(const char* name, Rows& rows, const std::vector<double>& values, int* reads)
        : CalcNode(name), rows(rows), values(values), reads(reads) {}
    Type nodeType() override { return TypeData; }
    int valType() override { return zun::ValNum; }
    int constLevel() override { return 0; }
    double valNum() override {
        if (reads) ++*reads;
        if (rows.index < 0 || rows.index >= static_cast<long>(values.size())) return std::nan("");
        return values[static_cast<size_t>(rows.index)];
    }

private:
    Rows& rows;
    const std::vector<double>& values;
    int* reads;
};

// A text column.
class TextColumn : public CalcNode {
public:
    TextColumn(const char* name, Rows& rows, const std::vector<std::string>& values)
        : CalcNode(name), rows(rows), values(values) {}
    Type nodeType() override { return TypeData; }
    int valType() override { return zun::ValStr; }
    int constLevel() override { return 0; }
    String valStr() override {
        if (rows.index < 0 || rows.index >= static_cast<long>(values.size())) return String(nullptr);
        return String(values[static_cast<size_t>(rows.index)].c_str());
    }

private:
    Rows& rows;
    const std::vector<std::string>& values;
};

// Offers an iterator over the rows (each call a new one on the same index),
// the numeric columns by name, the text columns by name, and fixed symbols.
class RowBinder : public zun::CalcBinder {
public:
    Rows rows;
    std::map<std::string, std::vector<double>> columns;
    std::map<std::string, std::vector<std::string>> texts;
    std::map<std::string, double> symbols;
    std::map<std::string, int> reads;  // reads of each numeric column
    bool offerIterator = true;
    int iteratorsMade = 0;

    void setColumn(const char* name, std::vector<double> values) {
        columns[name] = std::move(values);
        rows.count = static_cast<long>(columns[name].size());
    }

    zun::CalcIterator* bindIterator(int level) override {
        if (!offerIterator || level != 0) return nullptr;
        ++iteratorsMade;
        return new RowIterator(rows, level);
    }
    CalcNode* bindSymbol(const char* name) override {
        auto c = columns.find(name);
        if (c != columns.end()) return new Column(name, rows, c->second, &reads[name]);
        auto t = texts.find(name);
        if (t != texts.end()) return new TextColumn(name, rows, t->second);
        auto s = symbols.find(name);
        if (s != symbols.end()) return num(s->second);
        return nullptr;
    }
};

}  // namespace statetest
