#include "calc/CalcParser.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>

#include "calc/CalcError.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcGrammar.h"
#include "calc/CalcNodeVector.h"

namespace zun {

namespace {

using Args = ObjAppendListP<CalcNode>;
using NodePtr = std::unique_ptr<CalcNode>;
using ArgsPtr = std::unique_ptr<Args>;
using StringPtr = std::unique_ptr<String>;

String argumentRefused(long i) {
    String s("Argument ");
    s << (i + 1);
    s += " is not authorised";
    return s;
}

// The answer of keyword, property, method or operOverload replaces the node
// it was asked of: a link is released here, since no answer owns the link
// it came through; any other node has been taken over by the answer.
void handOver(CalcNode* asked, CalcNode* answer) {
    if (answer != asked && asked->nodeType() == CalcNode::TypeLink) delete asked;
}

double negativeQuietNaN() {
    std::uint64_t bits = 0xFFF8000000000000ull;
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

// The builtin names that give null like an unknown name.
bool reservedFunction(const char* name) {
    return std::strcmp(name, "arcmidpoint") == 0 || std::strcmp(name, "arcdest") == 0 ||
           std::strcmp(name, "arcinter") == 0;
}

}  // namespace

// ---------------------------------------------------------------- construction

CalcParser::CalcParser(CalcBinder& binder) : CalcNode("root") { binders << binder; }

CalcParser::CalcParser(CalcBinder* binder) : CalcNode("root") { binders << binder; }

CalcParser::CalcParser(const char* text, CalcBinder& binder, bool lenient) : CalcNode("root") {
    binders << binder;
    init(text, lenient);
}

CalcParser::CalcParser(const char* text, CalcBinder* binder, bool lenient) : CalcNode("root") {
    binders << binder;
    init(text, lenient);
}

CalcParser::CalcParser(std::istream& in, CalcBinder& binder, bool lenient) : CalcNode("root") {
    binders << binder;
    init(in, lenient);
}

CalcParser::CalcParser(std::istream& in, CalcBinder* binder, bool lenient) : CalcNode("root") {
    binders << binder;
    init(in, lenient);
}

CalcParser::~CalcParser() { delete result; }

void CalcParser::init(const char* text, bool lenient) {
    std::istringstream in(text ? text : "");
    init(in, lenient);
}

void CalcParser::init(std::istream& in, bool lenient) {
    statements.setTruncSize(8);
    delete result;
    result = nullptr;
    resultLevel = -1;
    statements.flush();
    pending = nullptr;
    consumed = 0;

    std::streampos start = in.tellg();
    CalcValue savedValue = Calclval;
    rearm(in);
    int code = parse();
    if (pending) {
        std::exception_ptr failure = pending;
        pending = nullptr;
        Calclval = savedValue;
        std::rethrow_exception(failure);
    }
    if (code == 0) {
        consumed = location.last_column;
    } else {
        // The stacks ran out: the stream goes back to what was taken whole.
        consumed = location.first_column - 1;
        if (consumed < 0) consumed = 0;
        in.clear();
        if (start != std::streampos(-1)) {
            in.seekg(start);
            in.seekg(static_cast<std::streamoff>(consumed), std::ios::cur);
        }
        if (!lenient) {
            Calclval = savedValue;
            int column = static_cast<int>(consumed) + 1;
            throw CalcError(scanned().str(), column, column);
        }
    }
    Calclval = savedValue;
    scanned();

    for (long i = statements.count - 1; i >= 0; --i) reduceInPlace(statements.data[i]);
    if (statements.count > 0) {
        CalcNode* last = nullptr;
        static_cast<ObjAppendList<CalcNode*>&>(statements) >> last;
        result = last;
        resultLevel = result->constLevel();
    }
}

// ---------------------------------------------------------------- binder side

CalcNode* CalcParser::bindSymbol(const char* name) {
    if (!name) return bindSymbolExternal(name);

    for (long i = statements.count - 1; i >= 0; --i) {
        CalcNode* s = statements.data[i];
        if (s->nodeType() == TypeMem && dynamic_cast<CalcNodeMem*>(s) && s->name == name) {
            String linkName("link to node ");
            linkName += name;
            return new CalcNodeLink(linkName.text, s);
        }
    }

    if (std::strncmp(name, "iter", 4) == 0) {
        String rest(name + 4);
        if (rest.length == 0 || rest.isInteger()) return new CalcNodeIterator(bindIterator(rest.toInt()));
    }
    if (std::strcmp(name, "pi") == 0) return new CalcNodeConst<double>("pi", 3.141592653589793);
    if (std::strcmp(name, "infinity") == 0)
        return new CalcNodeConst<double>("infinity", std::numeric_limits<double>::infinity());
    if (std::strcmp(name, "nan") == 0) return new CalcNodeConst<double>("nan", negativeQuietNaN());
    if (std::strcmp(name, "null") == 0) return new CalcNodeConst<String>("null", nullStr());
    return bindSymbolExternal(name);
}

CalcNode* CalcParser::bindSymbolExternal(const char* name) { return binders.bindSymbol(name); }

CalcVectorBinders& CalcParser::vectorBinders() {
    if (!vectors) {
        vectors.reset(new CalcVectorBinders);
        binders << static_cast<CalcBinder&>(*vectors);
    }
    return *vectors;
}

void CalcParser::statementEnded() {
    if (vectors) vectors->statementEnded();
}

CalcIterator* CalcParser::bindIterator(int level) {
    if (binders.size() == 0) throw CalcErrorIterator("no bindIterator function");
    if (CalcIterator* iterator = binders.bindIterator(level)) return iterator;
    throw String("no bindIterator function");
}

CalcNode* CalcParser::bindFunction(const char* name, ObjAppendListP<CalcNode>* args) {
    try {
        for (long i = 0; args && i < args->count; ++i) {
            CalcNode* a = args->data[i];
            CalcNode* answer = a->operOverloadR(name, nullptr, nullptr);
            if (!answer) throw CalcErrorFunctionCallInvalid(name, argumentRefused(i).text);
            if (answer != a) {
                handOver(a, answer);
                args->data[i] = answer;
            }
        }
    } catch (...) {
        delete args;
        throw;
    }

    if (CalcNode* n = binders.bindFunction(name, args)) return n;
    if (reservedFunction(name)) return nullptr;
    if (CalcNode* n = bindNumFunction(name, args, *this)) return n;
    if (CalcNode* n = bindStrFunction(name, args, *this)) return n;
    if (CalcNode* n = bindStateFunction(name, args, *this)) return n;
    if (CalcNode* n = bindVectorFunction(name, args, *this)) return n;
    return nullptr;
}

CalcNode* CalcParser::bindOperator(const char* op, CalcNode* left, CalcNode* right) {
    try {
        if (CalcNode* answer = left->operOverload(op, right, nullptr)) {
            handOver(left, answer);
            return answer;
        }
        if (right) {
            CalcNode* answer = right->operOverloadR(op, left, nullptr);
            if (!answer) throw CalcErrorOperationInvalid(op);
            if (answer != right) {
                // Another node stands in for the right operand.
                handOver(right, answer);
                right = answer;
            }
        }
        return makeOperatorNode(op, left, right);
    } catch (...) {
        delete left;
        delete right;
        throw;
    }
}

CalcNode* CalcParser::getVar(const char* name) const {
    if (!name) return result;
    for (long i = statements.count - 1; i >= 0; --i)
        if (statements.data[i]->name == name) return statements.data[i];
    return nullptr;
}

int CalcParser::listVars(std::list<CalcNode*>& out, const char* pattern, const char* implementsName,
                         bool) const {
    int n = 0;
    for (long i = 0; i < statements.count; ++i) {
        CalcNode* s = statements.data[i];
        if (!dynamic_cast<CalcNodeMem*>(s)) continue;
        if (!s->name.match(pattern)) continue;
        if (implementsName && !s->implements(implementsName)) continue;
        out.push_back(s);
        ++n;
    }
    return n;
}

void CalcParser::val(String& out) { out = result ? result->valStr() : nullStr(); }

// ---------------------------------------------------------------- node side

int CalcParser::valType() { return result ? result->valType() : ValNum; }
CalcNode* CalcParser::implements(const char* what) { return result ? result->implements(what) : nullptr; }
CalcNode* CalcParser::keyword(const char* word, CalcNodeMem* via) {
    return result ? result->keyword(word, via) : nullptr;
}
CalcNode* CalcParser::property(const char* propertyName, CalcNodeMem* via) {
    return result ? result->property(propertyName, via) : nullptr;
}
CalcNode* CalcParser::method(const char* methodName, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    return result ? result->method(methodName, args, via) : nullptr;
}
CalcNode* CalcParser::method(const char* methodName, ObjAppendListP<CalcNode>* args, const char* argText,
                             CalcBinder& binder, CalcNodeMem* via) {
    return result ? result->method(methodName, args, argText, binder, via) : nullptr;
}
CalcNode* CalcParser::operOverload(const char* op, CalcNode* other, CalcNodeMem* via) {
    return result ? result->operOverload(op, other, via) : nullptr;
}
CalcNode* CalcParser::operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via) {
    if (!result) return this;
    CalcNode* answer = result->operOverloadR(op, other, via);
    return answer == result ? this : answer;
}

CalcNode* CalcParser::assigned(String& varName) {
    if (!result) return this;
    CalcNode* answer = result->assigned(varName);
    if (!answer) return nullptr;
    result = answer;
    return this;
}

double CalcParser::valNum() { return result ? result->valNum() : NaN(); }
String CalcParser::valStr() { return result ? result->valStr() : nullStr(); }
long long CalcParser::valInt() { return result ? result->valInt() : truncate(NaN()); }
RawBuffer& CalcParser::valRaw(RawBuffer& buffer) { return result ? result->valRaw(buffer) : buffer; }
String CalcParser::valPrint() { return result ? result->valPrint() : String("nan"); }
String CalcParser::valInit() { return result ? result->valInit() : String("nan"); }
CalcNode::Value& CalcParser::val(Value& value) { return result ? result->val(value) : CalcNode::val(value); }

void CalcParser::reset() {
    for (long i = 0; i < statements.count; ++i) statements.data[i]->reset();
    if (result) result->reset();
}

void CalcParser::reset(int level) {
    for (long i = 0; i < statements.count; ++i) statements.data[i]->reset(level);
    if (result) result->reset(level);
}

bool CalcParser::activates() { return result && result->activates(); }

void CalcParser::activate(bool force) {
    if (result) result->activate(force);
}

CalcNode* CalcParser::reduce() {
    if (!result) return nullptr;
    if (CalcNode* folded = reduceConst()) return folded;
    std::list<CalcNode*> variables;
    if (result->listNodes(variables, TypeMem) > 0) return nullptr;
    // A tree without variables can live without its parser.
    CalcNode* bare = result;
    result = nullptr;
    resultLevel = -1;
    return bare;
}

int CalcParser::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                          bool leavesOnly) {
    return result ? result->listNodes(out, namePattern, implementsName, leavesOnly) : 0;
}

int CalcParser::listNodes(std::list<CalcNode*>& out, Type type) { return result ? result->listNodes(out, type) : 0; }

// ---------------------------------------------------------------- grammar actions

namespace grammar {

namespace {

// The source text marked from column first to column last.
template <class E>
E located(CalcParser& parser, E error, int first, int last) {
    error.chainStmt(parser.scanned().str(), first, last);
    return error;
}

// The columns between two tokens.
CalcErrorOperatorExpected gapError(CalcParser& parser, const CalcLocation& before, const CalcLocation& after) {
    return located(parser, CalcErrorOperatorExpected(""), before.last_column + 1, after.first_column - 1);
}

String inParentheses(const char* text) {
    String s("(");
    s += text;
    s += ')';
    return s;
}

// Puts node in front of the arguments.
void prepend(Args& args, CalcNode* node) {
    args << node;
    args.rotate(1);
}

}  // namespace

CalcNode* stringConst(String* text) {
    StringPtr owned(text);
    return new CalcNodeConst<String>("string constant", *text);
}

CalcNode* numberConst(double value) { return new CalcNodeConst<double>("numeric constant", value); }

CalcNode* symbol(CalcParser& parser, String* name, const CalcLocation& at) {
    StringPtr owned(name);
    if (CalcNode* n = parser.bindSymbol(name->str())) return n;
    if (*name == "self") return new CalcNodeSelf(at.first_column, at.last_column);
    throw CalcErrorSymbolInvalid(name->str());
}

CalcNode* braced(CalcParser& parser, String* name) {
    StringPtr owned(name);
    if (CalcNode* n = parser.bindSymbolExternal(name->str())) return n;
    throw CalcErrorSymbolInvalid(name->str());
}

CalcNode* call(CalcParser& parser, String* name, Args* args) {
    StringPtr owned(name);
    if (CalcNode* n = parser.bindFunction(name->str(), args)) return n;
    if (args && *name == "symref") return makeSymRefNode(name->str(), args, parser);
    delete args;
    throw CalcErrorFunctionUnknown(quoted(name->str()).text);
}

Args* firstArg(CalcNode* node) {
    NodePtr owned(node);
    Args* args = new Args();
    *args << owned.release();
    return args;
}

Args* nextArg(Args* args, CalcNode* node) {
    ArgsPtr ownedArgs(args);
    NodePtr owned(node);
    *args << owned.release();
    return ownedArgs.release();
}

CalcNode* binary(CalcParser& parser, const char* op, CalcNode* left, CalcNode* right, const CalcLocation& opAt) {
    if (CalcNode* n = parser.bindOperator(op, left, right)) return n;
    delete left;
    delete right;
    throw located(parser, CalcErrorOperatorInvalid(inParentheses(op).text), opAt.first_column, opAt.last_column);
}

CalcNode* oper(CalcParser& parser, CalcNode* left, String* op, CalcNode* right, const CalcLocation& opAt) {
    StringPtr owned(op);
    return binary(parser, op->str(), left, right, opAt);
}

CalcNode* conditional(CalcNode* condition, CalcNode* then, CalcNode* otherwise) {
    return makeIfNode(condition, then, otherwise);
}

CalcNode* prefix(CalcParser& parser, const char* op, CalcNode* operand, const CalcLocation& opAt) {
    return binary(parser, op, operand, nullptr, opAt);
}

void prefixSequence(CalcParser& parser, CalcNode* inner, const CalcLocation& at) {
    delete inner;
    throw located(parser, CalcErrorUnarySeqInvalid(""), at.first_column, at.last_column);
}

CalcNode* methodCall(CalcParser& parser, CalcNode* left, String* name, Args* args, const CalcLocation& argsAt) {
    StringPtr ownedName(name);
    NodePtr owned(left);
    ArgsPtr ownedArgs(args);

    String overloadName("@");
    overloadName += *name;
    for (long i = 0; i < args->count; ++i) {
        CalcNode* a = args->data[i];
        CalcNode* answer = a->operOverloadR(overloadName.text, left, nullptr);
        if (!answer) throw argumentRefused(i);
        if (answer != a) {
            handOver(a, answer);
            args->data[i] = answer;
        }
    }

    String text = parser.columnText(argsAt.first_column, argsAt.last_column);
    CalcNode* answer = left->method(name->str(), args, text.str(), parser, nullptr);
    if (!answer) answer = left->method(name->str(), args, nullptr);
    if (!answer) throw CalcErrorMethodInvalid(quoted(name->str()).text);
    ownedArgs.release();
    owned.release();
    handOver(left, answer);
    return answer;
}

CalcNode* property(CalcParser& parser, CalcNode* left, String* name, const CalcLocation& atAt,
                   const CalcLocation& nameAt) {
    StringPtr ownedName(name);
    NodePtr owned(left);
    CalcNode* answer = left->property(name->str(), nullptr);
    if (!answer)
        throw located(parser, CalcErrorPropertyInvalid(quoted(name->str()).text), atAt.first_column,
                      nameAt.last_column);
    owned.release();
    handOver(left, answer);
    return answer;
}

CalcNode* index(CalcParser& parser, CalcNode* left, Args* args, const CalcLocation& openAt, const CalcLocation& argsAt,
                const CalcLocation& closeAt) {
    static const char name[] = "operator::[]";
    NodePtr owned(left);
    ArgsPtr ownedArgs(args);

    for (long i = 1; i < args->count; ++i) {
        CalcNode* a = args->data[i];
        CalcNode* answer = a->operOverloadR(name, left, nullptr);
        if (!answer) throw CalcErrorFunctionCallInvalid(argumentRefused(i).text, name);
        if (answer != a) {
            handOver(a, answer);
            args->data[i] = answer;
        }
    }

    String text = parser.columnText(argsAt.first_column, argsAt.last_column);
    CalcNode* answer = left->method(name, args, text.str(), parser, nullptr);
    if (!answer) answer = left->method(name, args, nullptr);
    if (answer) {
        ownedArgs.release();
        owned.release();
        handOver(left, answer);
        return answer;
    }
    if (left->valType() != ValStr)
        throw located(parser, CalcErrorOperatorInvalid(inParentheses(name).text), openAt.first_column,
                      closeAt.last_column);
    // The index of a text is its substring.
    prepend(*args, owned.release());
    return makeSubstrNode(name, ownedArgs.release());
}

CalcNode* cast(CalcParser& parser, String* name, CalcNode* operand, const CalcLocation& closeAt,
               const CalcLocation& operandAt) {
    StringPtr ownedName(name);
    String castName("(");
    castName += *name;
    castName += ')';
    Args* args = firstArg(operand);
    if (CalcNode* n = parser.bindFunction(castName.text, args)) return n;
    delete args;
    throw gapError(parser, closeAt, operandAt);
}

CalcNode* keyword(CalcParser& parser, CalcNode* left, String* word, const CalcLocation& leftAt,
                  const CalcLocation& wordAt) {
    StringPtr ownedWord(word);
    NodePtr owned(left);
    CalcNode* answer = left->keyword(word->str(), nullptr);
    if (!answer) throw gapError(parser, leftAt, wordAt);
    owned.release();
    handOver(left, answer);
    return answer;
}

void missingOperator(CalcParser& parser, CalcNode* left, CalcNode* right, String* token, const CalcLocation& leftAt,
                     const CalcLocation& rightAt) {
    delete left;
    delete right;
    delete token;
    throw gapError(parser, leftAt, rightAt);
}

void notAfterExpr(CalcNode* left) {
    delete left;
    throw CalcErrorOperationInvalid("! (unary NOT)");
}

void syntaxError(CalcParser& parser, const CalcLocation& at) {
    throw CalcError(parser.scanned().str(), at.first_column, at.last_column);
}

void assignment(CalcParser& parser, String* name, CalcNode* node, const CalcLocation& nameAt,
                const CalcLocation& exprAt) {
    StringPtr ownedName(name);
    NodePtr owned(node);
    CalcNode* answer = node->assigned(*name);
    if (!answer) {
        String message("Assignment of variable ");
        message += quoted(name->str());
        message += " is invalid";
        throw located(parser, CalcErrorAssignmentInvalid(message.text), nameAt.first_column, exprAt.last_column);
    }
    owned.release();
    if (answer != node) handOver(node, answer);
    parser.statements << new CalcNodeMem(name->str(), answer);
    parser.statementEnded();
}

void statement(CalcParser& parser, CalcNode* node) {
    NodePtr owned(node);
    parser.statements << owned.release();
}

void endOfProgram(CalcParser& parser) {
    std::list<CalcNode*> unbound;
    for (long i = 0; i < parser.statements.count; ++i)
        parser.statements.data[i]->listNodes(unbound, CalcNode::TypeSelfUnbound);
    if (!unbound.empty()) {
        CalcNodeSelf* first = static_cast<CalcNodeSelf*>(unbound.front());
        throw located(parser, CalcErrorUnboundSelf("self reference used outside of a recursion function definition"),
                      first->firstColumn, first->lastColumn);
    }
    if (parser.statements.count == 0) {
        parser.statements << new CalcNodeNull();
    } else {
        CalcNode* last = parser.statements.last();
        if (last->nodeType() == CalcNode::TypeMem) parser.statements << new CalcNodeLink(last);
    }
}

}  // namespace grammar
}  // namespace zun
