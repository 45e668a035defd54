// vector(): a multi-dimensional table of expressions inside an expression.
//
// A vector is a node and a binder at once. Its elements are compiled
// expressions, one parser each, made a generation at a time by
// vector(d1, d2, ...)[e, ...]: the list of texts is repeated to fill the
// table, in row-major order. While an element compiles, the vector answers the
// symbols $0 (the element at the same place in the preceding generation) and
// $1 to $9 (the element's position along each dimension, from the left).
// Only the last generation is visible to reads: v[i, j], v@size(k), v@dims.
#pragma once

#include <map>

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcNodeVector;

// The vectors that one parser's statements make, as one binder of its list:
// of those still answering, the first made answers $0 to $9, as if each
// stood in the list on its own. A vector stops answering when it is
// assigned, when the statement that made it ends (also one made inside
// another's elements or an expression), and leaves when it is destroyed.
// Each step and each look-up costs the logarithm of the count: a vector
// whose elements make vectors of their own (one more here per element)
// stays linear.
class CalcVectorBinders : public CalcBinder {
public:
    CalcVectorBinders() = default;
    CalcVectorBinders(const CalcVectorBinders&) = delete;
    CalcVectorBinders& operator=(const CalcVectorBinders&) = delete;
    ~CalcVectorBinders() override;  // the vectors still entered forget it

    void enter(CalcNodeVector& vector);
    void leave(CalcNodeVector& vector);
    // The vector's dimensions are known now (its first generation gave them).
    void shaped(CalcNodeVector& vector);
    // A statement has ended: none of the vectors made so far answers again.
    void statementEnded();
    long size() const { return static_cast<long>(answering[0].size()); }

    CalcNode* bindSymbol(const char* name) override;

private:
    static constexpr long lastSymbol = 9;  // $0 to $9
    unsigned long long made = 0;
    // answering[k]: the vectors that answer $k (k dimensions at least, any
    // for $0), by the order they were made in.
    std::map<unsigned long long, CalcNodeVector*> answering[lastSymbol + 1];
};

class CalcNodeVector : public CalcNodeFunc, public CalcBinder {
public:
    int generation = 0;              // generations of elements made
    bool bindActive = true;          // whether $0..$9 are answered
    ObjAppendList<long> dims;        // the size of each dimension
    long long total = 0;             // elements in one generation
    ObjAppendList<long> bindShifts;  // position of the element being compiled
    ObjAppendListP<CalcNode> elements;  // all generations, each in row-major order
    CalcNode* bindNode = nullptr;    // what $0 stands for; not owned
    ObjAppendListP<CalcNode>* shifts = nullptr;  // the @shift expressions, owned
    // The vectors of the parser this vector is entered in, while it answers
    // there; it leaves them when assigned or destroyed.
    CalcVectorBinders* registry = nullptr;
    unsigned long long order = 0;  // when it was entered there
    // The argument a copy was made from, kept because the copy's elements
    // point into it; owned, may be null.
    CalcNode* sourceNode = nullptr;

    // Most elements in one generation, and most texts in one list.
    static const long long maxElements = 1000000;

    // vector(d1, d2, ...), or vector(v) for a copy of the last generation of v.
    CalcNodeVector(const char* name, ObjAppendListP<CalcNode>* args);
    ~CalcNodeVector() override;

    // Enters the vector among a parser's vectors (borrowed), so that later
    // symbols find it there.
    void enterIn(CalcVectorBinders& vectors);

    // The element at a position of the last generation; null when there is none.
    CalcNode* element(long long position) const;
    // The values of the @shift expressions, 0 for each dimension without.
    void getBindShifts(ObjAppendList<long>& list);

    // Node side.
    Type nodeType() override { return TypeMem; }
    int valType() override;
    int constLevel() override { return 0; }
    CalcNode* implements(const char* what) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText, CalcBinder& binder,
                     CalcNodeMem* via) override;
    CalcNode* assigned(String& name) override;
    double valNum() override { return NaN(); }
    String valStr() override { return nullStr(); }
    RawBuffer& valRaw(RawBuffer& buffer) override { return buffer; }
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;
    void reset() override {}
    void reset(int /*level*/) override {}
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override { return nullptr; }
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;

    // Binder side: $0 to $9 while bindActive.
    CalcNode* bindSymbol(const char* name) override;

    // The walks over the elements that are under way. An element may lead
    // back to its vector, through the vector's variable or a read of the
    // vector: such a walk stops where it comes back.
    unsigned walking = 0;

private:
    // Adds a generation from the texts of a list; answers the vector.
    void addGeneration(const char* name, ObjAppendListP<CalcNode>* args, const char* argText, CalcBinder& binder);
    CalcNode* lastGeneration(long p) const { return elements.data[(generation - 1) * total + p]; }
    void setShape();  // bindShifts after dims, every counter 0
};

// v[i1, ..., in]: one element of the last generation of v.
class CalcNodeVectorLeaf : public CalcNodeMethod {
public:
    CalcNodeVectorLeaf(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeVector* vector);

    CalcNodeVector* vector() const { return static_cast<CalcNodeVector*>(object); }
    // The element the indices point at now; null when out of range.
    CalcNode* getNode();

    int valType() override;
    int constLevel() override;
    CalcNode* implements(const char* what) override;
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText, CalcBinder& binder,
                     CalcNodeMem* via) override;
    double valNum() override;
    String valStr() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;

    unsigned walking = 0;  // as the vector's: the walks through this read under way

private:
    // The element when every index is constant, else null.
    CalcNode* constNode();
    // ask(element) for keyword, property and method, as told there.
    template <class Ask>
    CalcNode* elementAnswer(Ask ask);
};

// v@size(k): the size of dimension k (from 1), or of the whole for 0.
class CalcNodeVectorSize : public CalcNodeMethod {
public:
    CalcNodeVectorSize(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeVector* vector);

    CalcNodeVector* vector() const { return static_cast<CalcNodeVector*>(object); }
    double valNum() override;
};

}  // namespace zun
