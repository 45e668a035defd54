// The stateful and control functions of the expression language: branches,
// frozen values, memory cells, recurrences along an iterator and sorting.
//
// The functions that walk an iterator (recurse, recurse0, lastof, sort) ask
// their binder for it with bindIterator(0) when they are built, so they can't
// be compiled where nothing offers an iterator. They move the iterator while
// they run and put it back before they answer.
#pragma once

#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcParser;

// A function whose value is one of its arguments, chosen at each read. Only
// the chosen argument is evaluated. The value type is that of argument 1.
class CalcNodeFuncBranch : public CalcNodeFunc {
public:
    using CalcNodeFunc::CalcNodeFunc;

    // The index of the argument that answers now.
    virtual long selected() = 0;

    int valType() override { return arg(1)->valType(); }
    double valNum() override { return arg(selected())->valNum(); }
    String valStr() override { return arg(selected())->valStr(); }
    long long valInt() override { return arg(selected())->valInt(); }
    RawBuffer& valRaw(RawBuffer& buffer) override { return arg(selected())->valRaw(buffer); }
    using CalcNode::valRaw;
    String valPrint() override { return arg(selected())->valPrint(); }
    String valInit() override { return arg(selected())->valInit(); }
    Value& val(Value& value) override { return arg(selected())->val(value); }
    // After the usual fold, a constant selector replaces the node by the
    // branch it chooses, released from the argument list.
    CalcNode* reduce() override;
};

// cond ? then : else. A condition of 0 selects the else branch; anything
// else, NaN included, the then branch.
class CalcNodeFuncIf : public CalcNodeFuncBranch {
public:
    CalcNodeFuncIf(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFuncBranch(name, args, 3, 3) {}
    long selected() override;
};

// choose(n, default, v0, v1, ...): v<n>, or default when n is out of range.
// Vector arguments stand for their elements.
class CalcNodeFuncChoose : public CalcNodeFuncBranch {
public:
    CalcNodeFuncChoose(const char* name, ObjAppendListP<CalcNode>* args);
    long selected() override;
};

// const(x): constant whatever x is, so that it is evaluated once when the
// statement is reduced.
class CalcNodeFuncConst : public CalcNodeFunc {
public:
    CalcNodeFuncConst(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 1, 1) {}
    int valType() override { return arg(0)->valType(); }
    int constLevel() override { return -1; }
    double valNum() override { return arg(0)->valNum(); }
    String valStr() override { return arg(0)->valStr(); }
    long long valInt() override { return arg(0)->valInt(); }
    RawBuffer& valRaw(RawBuffer& buffer) override { return arg(0)->valRaw(buffer); }
    using CalcNode::valRaw;
    String valPrint() override { return arg(0)->valPrint(); }
    String valInit() override { return arg(0)->valInit(); }
    Value& val(Value& value) override { return arg(0)->val(value); }
};

// sync(a, ..., z): reads every argument in turn and answers the last.
class CalcNodeFuncSync : public CalcNodeFunc {
public:
    CalcNodeFuncSync(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 100) {}
    int valType() override { return last()->valType(); }
    double valNum() override;
    String valStr() override;
    long long valInt() override { return last()->valInt(); }
    RawBuffer& valRaw(RawBuffer& buffer) override { return last()->valRaw(buffer); }
    using CalcNode::valRaw;
    String valPrint() override { return last()->valPrint(); }
    String valInit() override { return last()->valInit(); }
    Value& val(Value& value) override { return last()->val(value); }

private:
    CalcNode* last() const { return arg(numArgs() - 1); }
    void readLeading();
};

// Ties a tree to its parser. A parser reduced inside another gives its tree up
// when the tree holds no variable, and is destroyed; a node that reads through
// the parser or its binders at run time lists one of these among its
// variables, so that the parser stays.
class CalcNodeParserHold : public CalcNodeMem {
public:
    CalcNodeParserHold() : CalcNodeMem("parser hold", new CalcNodeNull()) {}
};

// Base of option and symref: a function that reads the outside symbol named
// by the text of argument 0, through the parser's binders.
class CalcNodeFuncSymbol : public CalcNodeFunc {
public:
    CalcBinderListT<CalcBinder>* binders;  // the parser's binder list, not owned; may be null

    CalcNodeFuncSymbol(const char* name, ObjAppendListP<CalcNode>* args, int min, int max,
                       CalcBinderListT<CalcBinder>* binders);
    ~CalcNodeFuncSymbol() override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
    using CalcNodeFunc::listNodes;

protected:
    // A new node for the symbol named by argument 0, owned by the caller;
    // null when no binder knows it.
    CalcNode* bindName();

private:
    CalcNodeParserHold* hold = nullptr;  // owned
};

// option(name, default): the outside symbol called by the text of argument 0,
// or argument 1 when no binder knows it.
class CalcNodeFuncOption : public CalcNodeFuncSymbol {
public:
    CalcNodeFuncOption(const char* name, ObjAppendListP<CalcNode>* args, CalcBinderListT<CalcBinder>* binders)
        : CalcNodeFuncSymbol(name, args, 2, 2, binders) {}
    int valType() override { return arg(1)->valType(); }
    // That of what is read: the symbol or the default; unknown (0) while the
    // name varies.
    int constLevel() override;
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    // A constant name is looked up once, and the answer (or the default)
    // replaces the node.
    CalcNode* reduce() override;
};

// symref(name): the outside symbol called by the text of argument 0, looked up
// afresh at each read.
class CalcNodeFuncSymRef : public CalcNodeFuncSymbol {
public:
    String text;  // the call as written, for messages

    CalcNodeFuncSymRef(const char* name, ObjAppendListP<CalcNode>* args, CalcBinderListT<CalcBinder>* binders);
    // A new reference to the symbol, owned by the caller; null if unknown.
    CalcNode* getRef() { return bindName(); }
    int valType() override;
    // That of the symbol; unknown (0) while the name varies.
    int constLevel() override;
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    // A constant name is bound once, and the reference replaces the node.
    CalcNode* reduce() override;
};

// exec(text): compiles the text of argument 0, taken when the node is built,
// at the first read, and answers its value. The binder given by reference is
// borrowed, one given by pointer is owned; without a binder the second
// argument is refused. Each read evaluates the compiled text afresh: its
// variables are reset first, since no reset of the enclosing statement
// reaches them through the operators and functions above this node.
class CalcNodeExec : public CalcNodeFunc {
public:
    CalcParser* parser = nullptr;  // owned; null until the first read
    CalcBinder* binder;            // what the text's names are bound against; may be null
    bool ownsBinder;
    String text;

    CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder);
    CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder* binder);
    ~CalcNodeExec() override;

    // The compiled text; compiles it if that hasn't been done. A compile
    // error passes out, and the next read tries again.
    CalcParser* compile();
    // The compiled text with its variables reset, ready to be read.
    CalcParser* fresh();

    int valType() override;
    // Variable until compiled, so the statement is never folded before its
    // text has been seen; then the level of the compiled text.
    int constLevel() override;
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;
    Value& val(Value& value) override;
    // The compiled text's variables are reset with this node.
    void reset() override;
    void reset(int level) override;
    bool activates() override;
    void activate(bool force) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
    using CalcNodeFunc::listNodes;

private:
    CalcNodeParserHold* hold = nullptr;  // owned; with a borrowed binder
    CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder* binder, bool owns);
};

// keep(x [, c]) and get(x [, c]): a memory cell over x. Argument 0 is the cell,
// a CalcNodeMem named like the function around x.
//
// keep reads through the cell, so its first read evaluates x and later reads
// answer the stored value; get reads the stored value alone and never
// evaluates. The cell is refreshed ("sampled") only by activate(), which sort
// issues for each element: always with one argument; with two, keep samples
// when c is exactly 0 and get when c is not 0 (NaN included).
class CalcNodeFuncKeep : public CalcNodeFunc {
public:
    bool getMode;

    CalcNodeFuncKeep(const char* name, ObjAppendListP<CalcNode>* args, bool getMode);

    CalcNodeMem* cell() const { return static_cast<CalcNodeMem*>(arg(0)); }

    int valType() override { return arg(0)->valType(); }
    // A get cell changes only when it is sampled, so it is never folded.
    int constLevel() override;
    CalcNode* implements(const char* what) override { return arg(0)->implements(what); }
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText, CalcBinder& binder,
                     CalcNodeMem* via) override;
    CalcNode* assigned(String& name) override;
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    Value& val(Value& value) override;
    bool activates() override { return true; }
    void activate(bool force) override;

protected:
    // Makes the cell's expression function(stored value, x), function being
    // numFunction, or strFunction when x is text.
    void foldIntoCell(CalcParser& parser, const char* numFunction, const char* strFunction);

private:
    CalcNode* stored() const { return cell()->store; }
};

// keepmin, getmin, keepmax, getmax: a cell whose expression is the minimum
// (maximum) of its own stored value and x, by min or strmin (max, strmax)
// after the type of x. NaN and null strings are ignored as those functions
// ignore them.
class CalcNodeFuncKeepMin : public CalcNodeFuncKeep {
public:
    CalcNodeFuncKeepMin(const char* name, ObjAppendListP<CalcNode>* args, bool getMode, CalcParser& parser);
};

class CalcNodeFuncKeepMax : public CalcNodeFuncKeep {
public:
    CalcNodeFuncKeepMax(const char* name, ObjAppendListP<CalcNode>* args, bool getMode, CalcParser& parser);
};

// What recurse and lastof share: the iterator they walk and the variables of
// their expression, which are reset at each step so that they are computed
// again at the new index.
class CalcNodeFuncIterating : public CalcNodeFunc {
public:
    CalcIterator* iterator = nullptr;      // owned
    long long lastIndex = -2;              // the index of the value held; -2 for none
    ObjAppendList<CalcNodeMem*> memNodes;  // the variables of argument 0

    // Asks binder.bindIterator(0); null answers raise CalcErrorIterator.
    CalcNodeFuncIterating(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder);
    ~CalcNodeFuncIterating() override;

    // The value also changes with the iterator.
    int constLevel() override;
    // Reduces as any function, then collects the variables again, since
    // reduction may have replaced parts of the expression.
    CalcNode* reduce() override;

protected:
    void collectMemNodes();
    void resetMemNodes();
    // Moves the iterator to i and resets the variables.
    void moveTo(long i);
};

// recurse(expr [, init]) and recurse0: expr evaluated at each index with self
// standing for the value at the index before. recurse puts the seed before
// index 0, recurse0 makes it the value at index 0. The seed is init, or 0, the
// empty string or an empty buffer.
class CalcNodeFuncRecurse_ : public CalcNodeFuncIterating {
public:
    bool busy = false;  // true while expr is evaluated
    int startIndex;     // -1 for recurse, 0 for recurse0

    CalcNodeFuncRecurse_(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder, int startIndex);
    int valType() override;
};

template <class T>
class CalcNodeFuncRecurse : public CalcNodeFuncRecurse_ {
public:
    T value{};  // the value at lastIndex

    using CalcNodeFuncRecurse_::CalcNodeFuncRecurse_;
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;

private:
    T seedValue{};  // what is answered where there is no index to walk
    const T& compute();
    void seed(T& out);
};

// lastof(expr [, init]): the value of expr at the index before the current
// one; the seed (init, or 0, the empty string, an empty buffer) at index 0.
class CalcNodeFuncLastOf_ : public CalcNodeFuncIterating {
public:
    using CalcNodeFuncIterating::CalcNodeFuncIterating;
    int valType() override { return arg(0)->valType(); }
};

template <class T>
class CalcNodeFuncLastOf : public CalcNodeFuncLastOf_ {
public:
    T current{};   // expr at lastIndex
    T previous{};  // expr at lastIndex - 1

    using CalcNodeFuncLastOf_::CalcNodeFuncLastOf_;
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;

private:
    T seedValue{};
    const T& compute();
    void seed(T& out);
};

extern template class CalcNodeFuncRecurse<double>;
extern template class CalcNodeFuncRecurse<String>;
extern template class CalcNodeFuncRecurse<RawBuffer>;
extern template class CalcNodeFuncLastOf<double>;
extern template class CalcNodeFuncLastOf<String>;
extern template class CalcNodeFuncLastOf<RawBuffer>;

// sort(k1, k2, ...): at index n, the element number of the n-th element in the
// order of the keys. The keys of all elements are evaluated once, at the first
// read; ties go to the lower element number. Modifiers: @select(c) leaves out
// the elements where c is 0 (their places at the end read -1), @reverse(f...)
// sets the direction of each key, @reverse flips all keys but the last,
// @reverseN reverses key N (from 1; 0 is the last key). A key's missing values
// (NaN, null text) sort above all others.
class CalcNodeFuncSort : public CalcNodeFunc {
public:
    CalcIterator* iterator = nullptr;  // owned
    ObjAppendList<long> order;
    ObjAppendList<bool> reverseFlags;
    bool selected = false;

    CalcNodeFuncSort(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder);
    ~CalcNodeFuncSort() override;

    int constLevel() override { return iterator->level; }
    double valNum() override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    using CalcNode::method;

    // Computes order when it doesn't hold one entry per element.
    void init();
};

// ifndef(x, y): x unless it is NA, then y. By the value type of y.
class CalcNodeFuncDefineNum : public CalcNodeFunc {
public:
    CalcNodeFuncDefineNum(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    double valNum() override;
};

class CalcNodeFuncDefineStr : public CalcNodeFunc {
public:
    CalcNodeFuncDefineStr(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    int valType() override { return ValStr; }
    String valStr() override;
};

class CalcNodeFuncDefineRaw : public CalcNodeFunc {
public:
    CalcNodeFuncDefineRaw(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    int valType() override { return ValRaw; }
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
};

// ifdef(x, y): y if x is defined, otherwise the NA. By the value type of y.
class CalcNodeFuncIfDefNum : public CalcNodeFunc {
public:
    CalcNodeFuncIfDefNum(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    double valNum() override;
};

class CalcNodeFuncIfDefStr : public CalcNodeFunc {
public:
    CalcNodeFuncIfDefStr(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    int valType() override { return ValStr; }
    String valStr() override;
};

class CalcNodeFuncIfDefRaw : public CalcNodeFunc {
public:
    CalcNodeFuncIfDefRaw(const char* name, ObjAppendListP<CalcNode>* args) : CalcNodeFunc(name, args, 2, 2) {}
    int valType() override { return ValRaw; }
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
};

}  // namespace zun
