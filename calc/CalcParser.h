// zun::CalcParser: compiles one expression text into a tree of nodes, and is
// the root node of that tree.
//
// It is a node (evaluated like any other), a binder (asked for symbols,
// functions and iterators: its own variables and builtins first, then the
// binders it was given) and a scanner (the token rules of CalcLex).
#pragma once

#include <exception>
#include <istream>
#include <list>
#include <memory>

#include "calc/CalcBinder.h"
#include "calc/CalcLex.h"
#include "calc/CalcNode.h"

namespace zun {

class CalcVectorBinders;

class CalcParser : public CalcNode, public CalcBinder, public CalcLex {
private:
    // The vectors made by the statement; null until the first. Declared
    // first, it goes last, after the nodes that hold the vectors.
    std::unique_ptr<CalcVectorBinders> vectors;

public:
    // External binders in order, each borrowed (given by reference) or owned
    // (given by pointer). The vectors made by the statement follow them as
    // one entry, appended when the first is made.
    CalcBinderListT<CalcBinder> binders;
    // The CalcNodeMem nodes of the assignments, in source order.
    ObjAppendListP<CalcNode> statements;
    CalcNode* result = nullptr;   // the value of the expression
    int resultLevel = -1;         // constLevel of result, cached by init
    long long consumed = 0;       // characters consumed by the last init
    int lookahead = 0;            // the automaton's lookahead token when its last run ended
    // A failure inside a grammar action, kept until the automaton has
    // released what stands on its stacks; init throws it then.
    std::exception_ptr pending;

    explicit CalcParser(CalcBinder& binder);
    explicit CalcParser(CalcBinder* binder = nullptr);
    CalcParser(const char* text, CalcBinder& binder, bool lenient = false);
    CalcParser(const char* text, CalcBinder* binder, bool lenient = false);
    CalcParser(std::istream& in, CalcBinder& binder, bool lenient = false);
    CalcParser(std::istream& in, CalcBinder* binder, bool lenient = false);
    ~CalcParser() override;

    // Parses, reduces each statement, and sets result.
    void init(std::istream& in, bool lenient = false);
    void init(const char* text, bool lenient = false);
    int parse();  // the automaton; 0 on success

    // Binder side.
    CalcNode* bindSymbol(const char* name) override;
    // Offers each argument the name first; then the binders, then the
    // builtin functions. A non-null answer, or an exception, has taken args over.
    CalcNode* bindFunction(const char* name, ObjAppendListP<CalcNode>* args) override;
    CalcIterator* bindIterator(int level) override;
    // Where the vectors made by the statement enter, appended to binders
    // when first asked for.
    CalcVectorBinders& vectorBinders();
    // An assignment has ended: the vectors made so far answer $0..$9 no more.
    void statementEnded();
    CalcNode* bindSymbolExternal(const char* name);
    // The node of an operator; right is null for a prefix operator. Takes both
    // operands over when it answers or throws; a null answer takes nothing.
    CalcNode* bindOperator(const char* op, CalcNode* left, CalcNode* right);

    // A null name gives result; otherwise the last statement of that name.
    CalcNode* getVar(const char* name) const;
    // The variables (assignment nodes) whose name matches pattern, in source
    // order; implementsName and leavesOnly as for listNodes. Returns the count.
    int listVars(std::list<CalcNode*>& out, const char* pattern, const char* implementsName, bool leavesOnly) const;
    void val(String& out);  // result's string value

    // Node side: forwards to result.
    Type nodeType() override { return TypeParser; }
    int valType() override;
    int constLevel() override { return resultLevel; }
    CalcNode* implements(const char* what) override;
    CalcNode* keyword(const char* word, CalcNodeMem* via) override;
    CalcNode* property(const char* name, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) override;
    CalcNode* method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                     CalcBinder& binder, CalcNodeMem* via) override;
    CalcNode* operOverload(const char* op, CalcNode* other, CalcNodeMem* via) override;
    CalcNode* operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via) override;
    CalcNode* assigned(String& name) override;
    double valNum() override;
    String valStr() override;
    long long valInt() override;
    RawBuffer& valRaw(RawBuffer& buffer) override;
    using CalcNode::valRaw;
    String valPrint() override;
    String valInit() override;
    Value& val(Value& value) override;
    using CalcNode::val;
    void reset() override;
    void reset(int level) override;
    bool activates() override;
    void activate(bool force) override;
    CalcNode* reduce() override;
    int listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                  bool leavesOnly) override;
    int listNodes(std::list<CalcNode*>& out, Type type) override;
};

}  // namespace zun
