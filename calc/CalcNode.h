// zun::CalcNode: the node model of the expression language.
//
// An expression is a tree of CalcNode objects. Every node answers its value as
// a number, a string, a 64-bit integer or raw bytes, whatever its natural type,
// and says how constant it is (constLevel: -1 constant, else the lowest level
// of change among its operands). reduce() folds constant subtrees at parse time:
// a non-null answer replaces the node, and the caller destroys the old one.
//
// NA values: NaN for numbers, the null String for text, an empty RawBuffer for
// raw bytes. Conversions give NA rather than errors.
//
// Ownership conventions shared by all nodes:
// - A node owns its operands and arguments (CalcNodeLink and CalcNodeSelf
//   don't own what they point at).
// - keyword(), property(), method(), operOverload() answer null when the
//   request isn't theirs, and then take nothing over. A non-null answer has
//   taken over what it was given: the argument list, and for operOverload the
//   other operand too. A non-null answer of keyword() other than the node
//   itself has taken the node over as well; so has a non-null answer of
//   method(), property() and operOverload() asked with a null via. A request
//   made through a CalcNodeLink (and so through a variable, whose node is
//   asked with via set) never hands the link over: the parser deletes the
//   link when the answer is another node.
// - Derived classes that override one of the overloaded virtuals (valRaw,
//   method, reset, listNodes) bring the others back with a using-declaration.
#pragma once

#include <list>

#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "base/String.h"

namespace zun {

class CalcBinder;
class CalcNodeMem;

enum ValType { ValNum = 0, ValStr = 1, ValRaw = 2 };

// The array index that recurse, lastof, sort and iter walk.
class CalcIterator {
public:
    int level = 0;

    explicit CalcIterator(int level = 0) : level(level) {}
    virtual ~CalcIterator() = default;
    virtual long count() = 0;
    virtual long getIndex() = 0;
    virtual void setIndex(long i) = 0;
    virtual void incIndex() { stepIndex(1); }
    virtual void stepIndex(long n) { setIndex(getIndex() + n); }
};

class CalcNode {
public:
    enum Type {
        TypeNull = 0,
        TypeConst = 1,
        TypeIterator = 2,
        TypeUnary = 3,
        TypeOper = 4,
        TypeRef = 5,
        TypeFunc = 6,
        TypeProperty = 7,
        TypeMethod = 8,
        TypeMem = 9,
        TypeLink = 10,
        TypeSelf = 11,
        TypeSelfUnbound = 12,
        TypeData = 13,
        TypeParser = 15
    };

    // A value of any type: bytes and the value type they hold.
    class Value : public RawBuffer {
    public:
        int type = ValNum;
    };

    String name;

    explicit CalcNode(const char* name);
    CalcNode(const CalcNode&) = delete;
    CalcNode& operator=(const CalcNode&) = delete;
    virtual ~CalcNode();

    virtual Type nodeType() = 0;
    virtual int valType() = 0;
    virtual int constLevel() = 0;
    virtual CalcNode* implements(const char* what);
    virtual CalcNode* keyword(const char* word, CalcNodeMem* via);
    virtual CalcNode* property(const char* name, CalcNodeMem* via);
    virtual CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via);
    virtual CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                             CalcBinder& binder, CalcNodeMem* via);
    virtual CalcNode* operOverload(const char* op, CalcNode* other, CalcNodeMem* via);
    virtual CalcNode* operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via);  // default: this
    virtual CalcNode* assigned(String& name);                                             // default: this
    virtual double valNum();
    virtual String valStr();
    virtual long long valInt();          // valNum truncated
    virtual RawBuffer& valRaw(RawBuffer& buffer);
    virtual String valPrint();
    virtual String valInit();            // valPrint()
    virtual Value& val(Value& value);
    virtual void reset();
    virtual void reset(int level);
    virtual bool activates();
    virtual void activate(bool force);
    virtual CalcNode* reduce();          // the default constant fold
    virtual int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                          bool leavesOnly);
    virtual int listNodes(std::list<CalcNode*>& out, Type type);

    RawBuffer valRaw();                  // into a fresh buffer
    static double NaN();
    static String nullStr();
    // A double truncated to a 64-bit integer the way the machine does it:
    // NaN and values out of range give the most negative integer.
    static long long truncate(double v);

    // The default fold: a new constant of valType() when constLevel() < 0, else null.
    CalcNode* reduceConst();
    // Reduces *slot and replaces it by the answer, destroying the old node.
    static void reduceInPlace(CalcNode*& slot);
};

// The NA of every type: NaN, the null string, an empty buffer.
class CalcNodeNull : public CalcNode {
public:
    CalcNodeNull() : CalcNode("null") {}
    Type nodeType() override { return TypeNull; }
    int valType() override { return ValNum; }
    int constLevel() override { return -1; }
    CalcNode* reduce() override { return nullptr; }   // stays what it is
    double valNum() override { return NaN(); }
    String valStr() override { return nullStr(); }
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
};

// A constant of type double, long long, String or RawBuffer.
template <class T>
class CalcNodeConst : public CalcNode {
public:
    T value;

    CalcNodeConst(const char* name, const T& v) : CalcNode(name), value(v) {}
    Type nodeType() override { return TypeConst; }
    int valType() override;
    int constLevel() override { return -1; }
    CalcNode* reduce() override { return nullptr; }
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
};

extern template class CalcNodeConst<double>;
extern template class CalcNodeConst<long long>;
extern template class CalcNodeConst<String>;
extern template class CalcNodeConst<RawBuffer>;

// A named variable, also the memory cell of keep: its expression is computed
// once until reset, however often it is read.
class CalcNodeMem : public CalcNode {
public:
    bool dirty = true;
    bool activated = false;
    bool passActivate = true;
    CalcNode* node;     // the expression, owned
    CalcNode* store;    // a CalcNodeConst of the expression's value type, owned

    // Takes node over, also when the constructor throws.
    CalcNodeMem(const char* name, CalcNode* node);
    ~CalcNodeMem() override;

    void set();         // evaluates node into store if dirty
    Type nodeType() override { return TypeMem; }
    int valType() override;
    int constLevel() override;
    CalcNode* implements(const char* what) override;
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                     CalcBinder& binder, CalcNodeMem* via) override;
    CalcNode* operOverload(const char* op, CalcNode* other, CalcNodeMem* via) override;
    CalcNode* operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via) override;
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;
    void reset() override;
    void reset(int level) override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

// A reference to a node owned elsewhere; everything but nodeType forwards.
// Where the target answers keyword, property, method, operOverload or
// operOverloadR with itself, the link answers with itself. Any other answer
// refers to the target, never to the link. reduce() goes to a variable
// target, and is the constant fold alone for any other: the target's
// subtree belongs to its owner.
class CalcNodeLink : public CalcNode {
public:
    CalcNode* target;   // not owned

    explicit CalcNodeLink(CalcNode* target);          // named "link to node " + target's name
    CalcNodeLink(const char* name, CalcNode* target);
    Type nodeType() override { return TypeLink; }
    int valType() override;
    int constLevel() override;
    CalcNode* implements(const char* what) override;
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                     CalcBinder& binder, CalcNodeMem* via) override;
    CalcNode* operOverload(const char* op, CalcNode* other, CalcNodeMem* via) override;
    CalcNode* operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via) override;
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;
    Value& val(Value& value) override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

// "self" inside recurse and recurse0: the value of the owning function.
class CalcNodeSelf : public CalcNode {
public:
    CalcNode* owner = nullptr;  // the function that bound it; not owned
    int firstColumn, lastColumn;

    CalcNodeSelf(int firstColumn, int lastColumn) : CalcNode("self"), firstColumn(firstColumn), lastColumn(lastColumn) {}
    Type nodeType() override { return owner ? TypeSelf : TypeSelfUnbound; }
    int valType() override;
    int constLevel() override { return 0; }
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
};

// "iter", "iter1", ...: the index of an iterator.
class CalcNodeIterator : public CalcNode {
public:
    CalcIterator* iterator;  // owned

    explicit CalcNodeIterator(CalcIterator* iterator);
    ~CalcNodeIterator() override;
    Type nodeType() override { return TypeIterator; }
    int valType() override { return ValNum; }
    int constLevel() override { return iterator->level; }
    double valNum() override { return static_cast<double>(iterator->getIndex()); }
};

// Base of the functions: an owned argument list, checked at construction.
class CalcNodeFunc : public CalcNode {
public:
    ObjAppendListP<CalcNode>* args;  // owned; may be null

    // Takes args over, also when the count check throws (args are then deleted).
    CalcNodeFunc(const char* name, ObjAppendListP<CalcNode>* args, int min, int max);
    ~CalcNodeFunc() override;

    long numArgs() const { return args ? args->count : 0; }
    CalcNode* arg(long i) const { return args->data[i]; }

    Type nodeType() override { return TypeFunc; }
    int valType() override { return ValNum; }
    int constLevel() override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;

    // 0 when the count is right. Too few: CalcErrorArgsMissing, or -1 with a
    // null name. Too many: CalcErrorArgsTooMany, or 1 with a null name. A
    // negative max means min. A null list counts as 0 arguments.
    static int checkArguments(const char* name, ObjAppendListP<CalcNode>* args, int min, int max);
    // Index of the first of count arguments from `from` (all the rest for a
    // negative count) whose constLevel is 0 or more: CalcErrorArgNotConst, or
    // that index with a null name; -1 when all are constant.
    static long checkConstArgs(const char* name, ObjAppendListP<CalcNode>* args, long from, long count);
    // Replaces a vector argument by links to the elements of its last
    // generation; answers the index following them (i itself otherwise).
    long flattenVectorArgument(long i);
};

// A method: a function with the object it applies to.
class CalcNodeMethod : public CalcNodeFunc {
public:
    CalcNode* object;     // what the method applies to
    bool ownsObject;      // whether object is destroyed with the method

    CalcNodeMethod(const char* name, ObjAppendListP<CalcNode>* args, CalcNode* object, bool ownsObject,
                   int min = 0, int max = 1000000);
    ~CalcNodeMethod() override;
    Type nodeType() override { return TypeMethod; }
    int constLevel() override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

class CalcNodeProperty : public CalcNodeMethod {
public:
    using CalcNodeMethod::CalcNodeMethod;
    Type nodeType() override { return TypeProperty; }
};

// Base of the binary operators; both operands owned.
class CalcNodeOper : public CalcNode {
public:
    CalcNode* left;
    CalcNode* right;

    CalcNodeOper(const char* name, CalcNode* left, CalcNode* right);
    ~CalcNodeOper() override;
    Type nodeType() override { return TypeOper; }
    int valType() override { return ValNum; }
    int constLevel() override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

// Base of the prefix operators; the operand owned.
class CalcNodeOperUnary : public CalcNode {
public:
    CalcNode* operand;

    CalcNodeOperUnary(const char* name, CalcNode* operand);
    ~CalcNodeOperUnary() override;
    Type nodeType() override { return TypeUnary; }
    int valType() override { return ValNum; }
    int constLevel() override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

// The lower non-negative of two levels, -1 if both are -1.
inline int minLevel(int a, int b) {
    if (a < 0) return b;
    if (b < 0) return a;
    return a < b ? a : b;
}

}  // namespace zun
