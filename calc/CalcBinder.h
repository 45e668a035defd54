// zun::CalcBinder: how a program gives an expression its outside names.
//
// The parser asks its binders, in order, for every name it doesn't know
// itself; the first non-null answer wins. An answer is a new node owned by the
// caller.
#pragma once

#include "base/ObjAppendList.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcBinder {
public:
    virtual ~CalcBinder() = default;
    virtual CalcNode* bindSymbol(const char* /*name*/) { return nullptr; }
    virtual CalcIterator* bindIterator(int /*level*/) { return nullptr; }
    // A non-null answer has taken args over (see CalcNode.h).
    virtual CalcNode* bindFunction(const char* /*name*/, ObjAppendListP<CalcNode>* /*args*/) { return nullptr; }
};

// An ordered list of binders, each borrowed or owned.
template <class T>
class CalcBinderListT : public CalcBinder {
public:
    ObjAppendList<T*> entries;
    ObjAppendList<bool> owned;

    CalcBinderListT() = default;
    CalcBinderListT(const CalcBinderListT&) = delete;
    CalcBinderListT& operator=(const CalcBinderListT&) = delete;
    ~CalcBinderListT() override {
        for (long i = 0; i < entries.count; ++i)
            if (owned.data[i]) delete entries.data[i];
    }
    CalcBinderListT& operator<<(T& binder) {   // borrowed
        entries << &binder;
        owned << false;
        return *this;
    }
    CalcBinderListT& operator<<(T* binder) {   // owned; null adds nothing
        if (binder) {
            entries << binder;
            owned << true;
        }
        return *this;
    }
    long size() const { return entries.count; }
    CalcNode* bindSymbol(const char* name) override {
        for (long i = 0; i < entries.count; ++i)
            if (CalcNode* n = entries.data[i]->bindSymbol(name)) return n;
        return nullptr;
    }
    CalcIterator* bindIterator(int level) override {
        for (long i = 0; i < entries.count; ++i)
            if (CalcIterator* it = entries.data[i]->bindIterator(level)) return it;
        return nullptr;
    }
    CalcNode* bindFunction(const char* name, ObjAppendListP<CalcNode>* args) override {
        for (long i = 0; i < entries.count; ++i)
            if (CalcNode* n = entries.data[i]->bindFunction(name, args)) return n;
        return nullptr;
    }
};

// A list of named constant nodes: the parameters of a file. A node named x
// answers to any one character followed by x, so callers write a sigil ("#x").
// The list is searched from the last entry to the first; a match gives a
// CalcNodeLink named by the asked name.
class CalcBinderNodeList : public CalcBinder, public ObjAppendListP<CalcNode> {
public:
    CalcNode* bindSymbol(const char* name) override;
    // The node of that name (without sigil), searching from the end; null if none.
    CalcNode* find(const char* name) const;
    // Reads a definitions file: the whole file is parsed as statements of the
    // expression language, without binder, and each variable is appended, in
    // order, as a constant of its final value under its name (a double when
    // numeric, else its text). A file that can't be opened is an empty input.
    // A bad statement raises the parser's error. Returns the count appended.
    int readDefinitions(const char* path);
};

}  // namespace zun
