#include "calc/CalcNodeFuncState.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <list>
#include <memory>
#include <utility>
#include <vector>

#include "calc/CalcError.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcParser.h"

namespace zun {

namespace {

bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

// Reading a node by the type a stateful function keeps its value in.
void readInto(CalcNode* node, double& out) { out = node->valNum(); }
void readInto(CalcNode* node, String& out) { out = node->valStr(); }
void readInto(CalcNode* node, RawBuffer& out) {
    // Into a fresh buffer: the node may read the old value while it runs.
    RawBuffer next;
    node->valRaw(next);
    out = std::move(next);
}

void clearValue(double& out) { out = 0; }
void clearValue(String& out) { out = String(); }
void clearValue(RawBuffer& out) { out.flush(); }

// Conversions of a held value, as the node model converts a value of that type.
double numOf(double v) { return v; }
double numOf(const String& v) { return v.toSmartDouble(); }
double numOf(const RawBuffer& v) { return static_cast<double>(v.count); }

String strOf(double v, const String&) {
    if (std::isnan(v)) return CalcNode::nullStr();
    String s;
    s << v;
    return s;
}
String strOf(const String& v, const String&) { return v; }
String strOf(const RawBuffer&, const String& name) { return name; }

RawBuffer& rawOf(double v, RawBuffer& buffer) {
    buffer.append(sizeof v, reinterpret_cast<const char*>(&v));
    return buffer;
}
RawBuffer& rawOf(const String& v, RawBuffer& buffer) {
    buffer.append(v.length, v.text);
    return buffer;
}
RawBuffer& rawOf(const RawBuffer& v, RawBuffer& buffer) {
    buffer.append(v.count, v.data);
    return buffer;
}

// Puts an iterator back where it stood when a walk is left by an exception.
class IndexGuard {
public:
    IndexGuard(CalcIterator* it, long index) : it(it), index(index) {}
    ~IndexGuard() {
        if (armed) it->setIndex(index);
    }
    void release() { armed = false; }

private:
    CalcIterator* it;
    long index;
    bool armed = true;
};

// Clears a flag however the scope is left.
class FlagGuard {
public:
    explicit FlagGuard(bool& flag) : flag(flag) { flag = true; }
    ~FlagGuard() { flag = false; }

private:
    bool& flag;
};

// The value a cell holds, read by the cell's own expression. Unlike a plain
// link it never folds: the value changes with every sample.
class CalcNodeCellValue : public CalcNodeLink {
public:
    explicit CalcNodeCellValue(CalcNode* store) : CalcNodeLink(store) {}
    int constLevel() override { return 0; }
    CalcNode* reduce() override { return nullptr; }
};

CalcIterator* requireIterator(CalcBinder& binder) {
    CalcIterator* it = binder.bindIterator(0);
    if (!it) throw CalcErrorIterator("no bindIterator function");
    return it;
}

}  // namespace

// ---- branches ----

CalcNode* CalcNodeFuncBranch::reduce() {
    if (CalcNode* folded = CalcNodeFunc::reduce()) return folded;
    if (arg(0)->constLevel() >= 0) return nullptr;
    return args->take(selected());
}

long CalcNodeFuncIf::selected() { return arg(0)->valNum() == 0 ? 2 : 1; }

CalcNodeFuncChoose::CalcNodeFuncChoose(const char* name, ObjAppendListP<CalcNode>* args)
    : CalcNodeFuncBranch(name, args, 2, 100) {
    long i = 0;
    while (i < numArgs()) {
        CalcNode* before = arg(i);
        long next = flattenVectorArgument(i);
        if (next == i && i < numArgs() && arg(i) == before) ++i;
        else i = next;
    }
    // An empty vector may have taken the place of the default.
    if (numArgs() < 2) throw CalcErrorArgsMissing(name, 2);
}

long CalcNodeFuncChoose::selected() {
    double n = arg(0)->valNum();
    // Out of the range of a 32-bit index (NaN included): the default.
    if (!(n > -2147483649.0 && n < 2147483648.0)) return 1;
    long k = static_cast<int>(n);
    return k >= 0 && k < numArgs() - 2 ? k + 2 : 1;
}

// ---- sync ----

void CalcNodeFuncSync::readLeading() {
    for (long i = 0; i + 1 < numArgs(); ++i) {
        CalcNode* a = arg(i);
        if (a->valType() == ValStr) a->valStr();
        else a->valNum();
    }
}

double CalcNodeFuncSync::valNum() {
    readLeading();
    return last()->valNum();
}

String CalcNodeFuncSync::valStr() {
    readLeading();
    return last()->valStr();
}

// ---- option ----

CalcNodeFuncSymbol::CalcNodeFuncSymbol(const char* name, ObjAppendListP<CalcNode>* args, int min, int max,
                                       CalcBinderListT<CalcBinder>* binders)
    : CalcNodeFunc(name, args, min, max), binders(binders) {
    if (binders) hold = new CalcNodeParserHold();
}

CalcNodeFuncSymbol::~CalcNodeFuncSymbol() { delete hold; }

int CalcNodeFuncSymbol::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = CalcNodeFunc::listNodes(out, type);
    if (hold) n += hold->listNodes(out, type);
    return n;
}

CalcNode* CalcNodeFuncSymbol::bindName() {
    if (!binders) return nullptr;
    String symbol = arg(0)->valStr();
    return binders->bindSymbol(symbol.str());
}

int CalcNodeFuncOption::constLevel() {
    int nameLevel = arg(0)->constLevel();
    if (nameLevel >= 0) return minLevel(minLevel(nameLevel, 0), arg(1)->constLevel());
    std::unique_ptr<CalcNode> found(bindName());
    return found ? found->constLevel() : arg(1)->constLevel();
}

double CalcNodeFuncOption::valNum() {
    std::unique_ptr<CalcNode> found(bindName());
    return found ? found->valNum() : arg(1)->valNum();
}

String CalcNodeFuncOption::valStr() {
    std::unique_ptr<CalcNode> found(bindName());
    return found ? found->valStr() : arg(1)->valStr();
}

RawBuffer& CalcNodeFuncOption::valRaw(RawBuffer& buffer) {
    std::unique_ptr<CalcNode> found(bindName());
    return found ? found->valRaw(buffer) : arg(1)->valRaw(buffer);
}

CalcNode* CalcNodeFuncOption::reduce() {
    if (arg(0)->constLevel() >= 0) {
        reduceInPlace(args->data[1]);
        reduceInPlace(args->data[0]);
        return nullptr;
    }
    CalcNode* answer = bindName();
    if (!answer) answer = args->take(1);
    if (CalcNode* reduced = answer->reduce()) {
        delete answer;
        answer = reduced;
    }
    return answer;
}

// ---- symref ----

CalcNodeFuncSymRef::CalcNodeFuncSymRef(const char* name, ObjAppendListP<CalcNode>* args,
                                       CalcBinderListT<CalcBinder>* binders)
    : CalcNodeFuncSymbol(name, args, 1, 1000000, binders), text(name) {
    text += "(";
    for (long i = 0; i < numArgs(); ++i) {
        if (i > 0) text += ",";
        text += arg(i)->constLevel() < 0 ? arg(i)->valInit() : arg(i)->name;
    }
    text += ")";
}

int CalcNodeFuncSymRef::constLevel() {
    if (arg(0)->constLevel() >= 0) return 0;
    std::unique_ptr<CalcNode> ref(getRef());
    return ref ? ref->constLevel() : -1;
}

int CalcNodeFuncSymRef::valType() { return arg(0)->constLevel() >= 0 ? ValNum : arg(0)->valType(); }

double CalcNodeFuncSymRef::valNum() {
    std::unique_ptr<CalcNode> ref(getRef());
    return ref ? ref->valNum() : NaN();
}

String CalcNodeFuncSymRef::valStr() {
    std::unique_ptr<CalcNode> ref(getRef());
    return ref ? ref->valStr() : nullStr();
}

RawBuffer& CalcNodeFuncSymRef::valRaw(RawBuffer& buffer) {
    std::unique_ptr<CalcNode> ref(getRef());
    return ref ? ref->valRaw(buffer) : buffer;
}

CalcNode* CalcNodeFuncSymRef::reduce() {
    if (arg(0)->constLevel() >= 0) {
        for (long i = numArgs() - 1; i >= 0; --i) reduceInPlace(args->data[i]);
        return nullptr;
    }
    return getRef();
}

// ---- exec ----

CalcNodeExec::CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder)
    : CalcNodeExec(name, args, &binder, false) {}

CalcNodeExec::CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder* binder)
    : CalcNodeExec(name, args, binder, true) {}

CalcNodeExec::CalcNodeExec(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder* binder, bool owns)
    try : CalcNodeFunc(name, args, 1, binder ? 2 : 1), binder(binder), ownsBinder(owns && binder) {
    text = arg(0)->valStr();
    if (binder && !owns) hold = new CalcNodeParserHold();
} catch (...) {
    // The node never existed: an owned binder goes with it.
    if (owns) delete binder;
}

CalcNodeExec::~CalcNodeExec() {
    delete hold;
    delete parser;
    if (ownsBinder) delete binder;
}

CalcParser* CalcNodeExec::compile() {
    if (!parser) {
        std::unique_ptr<CalcParser> compiled(binder ? new CalcParser(*binder) : new CalcParser());
        try {
            compiled->init(text.str(), false);
        } catch (String& refused) {
            // A node that refused its arguments while it was bound.
            throw CalcError(refused.str());
        }
        parser = compiled.release();
    }
    return parser;
}

CalcParser* CalcNodeExec::fresh() {
    CalcParser* compiled = compile();
    compiled->reset();
    return compiled;
}

namespace {

// A text run by exec can name a value that holds an exec of the same text,
// and so run inside itself again and again. Past this depth a read fails
// instead of running out of stack.
const int maxExecNesting = 64;
int execNesting = 0;

class ExecNesting {
public:
    ExecNesting() {
        if (execNesting >= maxExecNesting)
            throw CalcErrorFunctionCallInvalid("exec", "statements nested too deep");
        ++execNesting;
    }
    ~ExecNesting() { --execNesting; }
    ExecNesting(const ExecNesting&) = delete;
    ExecNesting& operator=(const ExecNesting&) = delete;
};

}  // namespace

int CalcNodeExec::valType() { ExecNesting n; return compile()->valType(); }
int CalcNodeExec::constLevel() { return parser ? parser->constLevel() : 0; }
double CalcNodeExec::valNum() { ExecNesting n; return fresh()->valNum(); }
String CalcNodeExec::valStr() { ExecNesting n; return fresh()->valStr(); }
long long CalcNodeExec::valInt() { ExecNesting n; return fresh()->valInt(); }
RawBuffer& CalcNodeExec::valRaw(RawBuffer& buffer) { ExecNesting n; return fresh()->valRaw(buffer); }
String CalcNodeExec::valPrint() { ExecNesting n; return fresh()->valPrint(); }
String CalcNodeExec::valInit() { ExecNesting n; return fresh()->valInit(); }
CalcNode::Value& CalcNodeExec::val(Value& value) { ExecNesting n; return fresh()->val(value); }

void CalcNodeExec::reset() {
    if (parser) parser->reset();
}

void CalcNodeExec::reset(int level) {
    if (parser) parser->reset(level);
}

bool CalcNodeExec::activates() { return parser && parser->activates(); }

void CalcNodeExec::activate(bool force) {
    if (parser) parser->activate(force);
}

int CalcNodeExec::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = CalcNodeFunc::listNodes(out, type);
    if (hold) n += hold->listNodes(out, type);
    return n;
}

// ---- keep and get ----

CalcNodeFuncKeep::CalcNodeFuncKeep(const char* name, ObjAppendListP<CalcNode>* args, bool getMode)
    : CalcNodeFunc(name, args, 1, 2), getMode(getMode) {
    CalcNode* x = arg(0);
    args->data[0] = nullptr;  // the cell takes x over, even when it fails
    args->data[0] = new CalcNodeMem(name, x);
}

void CalcNodeFuncKeep::foldIntoCell(CalcParser& parser, const char* numFunction, const char* strFunction) {
    CalcNodeMem* mem = cell();
    CalcNode* x = mem->node;
    const char* function = x->valType() == ValStr ? strFunction : numFunction;
    auto* list = new ObjAppendListP<CalcNode>;
    mem->node = nullptr;  // x now belongs to the list
    *list << new CalcNodeCellValue(mem->store) << x;
    CalcNode* extremum = function == strFunction ? bindStrFunction(function, list, parser)
                                                 : bindNumFunction(function, list, parser);
    if (!extremum) {
        // Not expected: the function families always know these names.
        mem->node = list->take(1);
        delete list;
        throw CalcErrorFunctionUnknown(quoted(function).str());
    }
    mem->node = extremum;
}

CalcNodeFuncKeepMin::CalcNodeFuncKeepMin(const char* name, ObjAppendListP<CalcNode>* args, bool getMode,
                                         CalcParser& parser)
    : CalcNodeFuncKeep(name, args, getMode) {
    foldIntoCell(parser, "min", "strmin");
}

CalcNodeFuncKeepMax::CalcNodeFuncKeepMax(const char* name, ObjAppendListP<CalcNode>* args, bool getMode,
                                         CalcParser& parser)
    : CalcNodeFuncKeep(name, args, getMode) {
    foldIntoCell(parser, "max", "strmax");
}

int CalcNodeFuncKeep::constLevel() {
    int level = arg(0)->constLevel();
    return getMode && level < 0 ? 0 : level;
}

CalcNode* CalcNodeFuncKeep::keyword(const char* word, CalcNodeMem* via) {
    return via ? arg(0)->keyword(word, via) : nullptr;
}

CalcNode* CalcNodeFuncKeep::property(const char* name, CalcNodeMem* via) {
    return via ? arg(0)->property(name, via) : nullptr;
}

CalcNode* CalcNodeFuncKeep::method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    return via ? arg(0)->method(name, args, via) : nullptr;
}

CalcNode* CalcNodeFuncKeep::method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                                   CalcBinder& binder, CalcNodeMem* via) {
    return via ? arg(0)->method(name, args, argText, binder, via) : nullptr;
}

CalcNode* CalcNodeFuncKeep::assigned(String& name) {
    CalcNode* answer = arg(0)->assigned(name);
    if (!answer) return nullptr;
    // The cell answers itself; anything else can't serve as the cell.
    if (answer != arg(0)) return nullptr;
    return this;
}

double CalcNodeFuncKeep::valNum() { return getMode ? stored()->valNum() : cell()->valNum(); }
String CalcNodeFuncKeep::valStr() { return getMode ? stored()->valStr() : cell()->valStr(); }
long long CalcNodeFuncKeep::valInt() { return getMode ? stored()->valInt() : cell()->valInt(); }

RawBuffer& CalcNodeFuncKeep::valRaw(RawBuffer& buffer) {
    return getMode ? stored()->valRaw(buffer) : cell()->valRaw(buffer);
}

String CalcNodeFuncKeep::valPrint() {
    if (!getMode) cell()->set();
    return stored()->valPrint();
}

CalcNode::Value& CalcNodeFuncKeep::val(Value& value) {
    if (!getMode) cell()->set();
    return stored()->val(value);
}

void CalcNodeFuncKeep::activate(bool force) {
    // Stateful functions inside x and c take their samples first.
    if (numArgs() > 1) arg(1)->activate(force);
    if (cell()->node) cell()->node->activate(force);
    bool sample = true;
    if (numArgs() > 1) {
        double c = arg(1)->valNum();
        sample = getMode ? c != 0 : c == 0;
    }
    if (sample) {
        cell()->reset();
        cell()->set();
    }
}

// ---- iterating functions ----

CalcNodeFuncIterating::CalcNodeFuncIterating(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder)
    : CalcNodeFunc(name, args, 1, 2) {
    iterator = requireIterator(binder);
    collectMemNodes();
}

CalcNodeFuncIterating::~CalcNodeFuncIterating() { delete iterator; }

int CalcNodeFuncIterating::constLevel() { return minLevel(CalcNodeFunc::constLevel(), iterator->level); }

CalcNode* CalcNodeFuncIterating::reduce() {
    CalcNode* folded = CalcNodeFunc::reduce();
    if (!folded) collectMemNodes();
    return folded;
}

void CalcNodeFuncIterating::collectMemNodes() {
    memNodes.flush();
    std::list<CalcNode*> found;
    arg(0)->listNodes(found, TypeMem);
    for (CalcNode* node : found)
        if (auto* mem = dynamic_cast<CalcNodeMem*>(node)) memNodes << mem;
}

void CalcNodeFuncIterating::resetMemNodes() {
    for (long i = 0; i < memNodes.count; ++i) memNodes.data[i]->reset();
}

void CalcNodeFuncIterating::moveTo(long i) {
    iterator->setIndex(i);
    resetMemNodes();
}

CalcNodeFuncRecurse_::CalcNodeFuncRecurse_(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder,
                                           int startIndex)
    : CalcNodeFuncIterating(name, args, binder), startIndex(startIndex) {
    // self in the expression is this node's value; an inner recurse has
    // already taken its own.
    std::list<CalcNode*> selves;
    arg(0)->listNodes(selves, TypeSelfUnbound);
    for (CalcNode* node : selves)
        if (auto* self = dynamic_cast<CalcNodeSelf*>(node)) self->owner = this;
}

int CalcNodeFuncRecurse_::valType() { return numArgs() > 1 ? arg(1)->valType() : ValNum; }

template <class T>
void CalcNodeFuncRecurse<T>::seed(T& out) {
    if (numArgs() > 1) readInto(arg(1), out);
    else clearValue(out);
}

template <class T>
const T& CalcNodeFuncRecurse<T>::compute() {
    // Read again while the expression runs: that is self, the value at the
    // index before. (Any other way back in gets the same answer rather than
    // an endless descent.)
    if (busy) return value;
    if (!iterator) {
        seed(seedValue);
        return seedValue;
    }
    long i = iterator->getIndex();
    if (i < 0) {
        seed(seedValue);
        return seedValue;
    }
    if (i == 0) {
        seed(value);
        if (startIndex == 0) {
            lastIndex = 0;
            return value;
        }
        lastIndex = -1;
    } else if (i - 1 != lastIndex) {
        // Catch up from the seed, or from the last index computed if it lies below.
        if (lastIndex < startIndex || lastIndex >= i) {
            seed(value);
            lastIndex = startIndex;
        }
        IndexGuard guard(iterator, i);
        for (long j = static_cast<long>(lastIndex) + 1; j < i; ++j) {
            moveTo(j);
            compute();
        }
        guard.release();
        moveTo(i);
    }
    T next;
    {
        FlagGuard running(busy);
        readInto(arg(0), next);
    }
    value = std::move(next);
    lastIndex = i;
    return value;
}

template <class T>
double CalcNodeFuncRecurse<T>::valNum() {
    return numOf(compute());
}

template <class T>
String CalcNodeFuncRecurse<T>::valStr() {
    return strOf(compute(), name);
}

template <class T>
RawBuffer& CalcNodeFuncRecurse<T>::valRaw(RawBuffer& buffer) {
    return rawOf(compute(), buffer);
}

template <class T>
void CalcNodeFuncLastOf<T>::seed(T& out) {
    if (numArgs() > 1) readInto(arg(1), out);
    else clearValue(out);
}

template <class T>
const T& CalcNodeFuncLastOf<T>::compute() {
    if (!iterator) {
        seed(seedValue);
        return seedValue;
    }
    long i = iterator->getIndex();
    if (i < 0) {
        seed(seedValue);
        return seedValue;
    }
    if (i == lastIndex) return previous;
    if (lastIndex == i - 1) {
        // current holds the value at i - 1 already.
    } else if (i == 0) {
        seed(current);
        lastIndex = -1;
    } else {
        IndexGuard guard(iterator, i);
        moveTo(i - 1);
        readInto(arg(0), current);
        lastIndex = i - 1;
        guard.release();
        moveTo(i);
    }
    T next;
    readInto(arg(0), next);
    previous = std::move(current);
    current = std::move(next);
    lastIndex = i;
    return previous;
}

template <class T>
double CalcNodeFuncLastOf<T>::valNum() {
    return numOf(compute());
}

template <class T>
String CalcNodeFuncLastOf<T>::valStr() {
    return strOf(compute(), name);
}

template <class T>
RawBuffer& CalcNodeFuncLastOf<T>::valRaw(RawBuffer& buffer) {
    return rawOf(compute(), buffer);
}

template class CalcNodeFuncRecurse<double>;
template class CalcNodeFuncRecurse<String>;
template class CalcNodeFuncRecurse<RawBuffer>;
template class CalcNodeFuncLastOf<double>;
template class CalcNodeFuncLastOf<String>;
template class CalcNodeFuncLastOf<RawBuffer>;

// ---- sort ----

CalcNodeFuncSort::CalcNodeFuncSort(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder)
    : CalcNodeFunc(name, args, 1, 100) {
    iterator = requireIterator(binder);
    for (long i = 0; i < numArgs(); ++i) reverseFlags << false;
}

CalcNodeFuncSort::~CalcNodeFuncSort() { delete iterator; }

CalcNode* CalcNodeFuncSort::property(const char* name, CalcNodeMem* via) {
    if (via || !name || std::strncmp(name, "reverse", 7) != 0 || reverseFlags.count == 0) return nullptr;
    const char* rest = name + 7;
    if (!*rest) {
        // All keys but the last.
        for (long i = 0; i + 1 < reverseFlags.count; ++i) reverseFlags.data[i] = !reverseFlags.data[i];
        return this;
    }
    long n = 0;
    for (const char* p = rest; *p; ++p) {
        if (*p < '0' || *p > '9') return nullptr;
        n = n * 10 + (*p - '0');
        if (n >= numArgs()) return nullptr;
    }
    long flag = n == 0 ? reverseFlags.count - 1 : n - 1;
    if (flag >= reverseFlags.count) return nullptr;
    reverseFlags.data[flag] = true;
    return this;
}

CalcNode* CalcNodeFuncSort::method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    if (via || !name) return nullptr;
    if (same(name, "select")) {
        if (selected) return nullptr;  // one selection only
        if (!args || args->count != 1) throw CalcErrorArgsTooMany("@select", 1);
        CalcNode* condition = args->take(0);
        delete args;
        *this->args << condition;
        selected = true;
        return this;
    }
    if (same(name, "reverse")) {
        if (!args || args->count == 0) {
            delete args;
            return property("reverse", nullptr);
        }
        if (args->count > reverseFlags.count) throw CalcErrorArgsTooMany("@reverse", reverseFlags.count);
        for (long i = 0; i < args->count; ++i) reverseFlags.data[i] = args->data[i]->valNum() != 0;
        delete args;
        return this;
    }
    return nullptr;
}

namespace {

// One key of one element: a number or a text.
struct SortKey {
    double num = 0;
    String str;
    bool isStr = false;
};

// Numbers before texts. Texts by String::cmp, which puts a null text above
// any other; NaN likewise above every other number and equal to itself. So
// the missing values of a key come last, and first where the key is reversed.
int compareKeys(const SortKey& a, const SortKey& b) {
    if (a.isStr != b.isStr) return a.isStr ? 1 : -1;
    if (a.isStr) {
        int c = a.str.cmp(b.str);
        return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
    bool nanA = std::isnan(a.num), nanB = std::isnan(b.num);
    if (nanA || nanB) return nanA == nanB ? 0 : nanA ? 1 : -1;
    if (a.num != b.num) return a.num < b.num ? -1 : 1;
    return 0;
}

}  // namespace

void CalcNodeFuncSort::init() {
    long n = iterator->count();
    if (n < 0) n = 0;
    if (order.count == n) return;
    order.flush();

    long keys = numArgs() - (selected ? 1 : 0);
    long saved = iterator->getIndex();
    IndexGuard guard(iterator, saved);

    std::vector<SortKey> cells;
    std::vector<long> elements;  // the element number of each row kept
    cells.reserve(static_cast<size_t>(n * keys));
    elements.reserve(static_cast<size_t>(n));
    for (long i = 0; i < n; ++i) {
        iterator->setIndex(i);
        for (long a = 0; a < numArgs(); ++a) arg(a)->activate(true);
        if (selected && arg(numArgs() - 1)->valNum() == 0) continue;
        for (long k = 0; k < keys; ++k) {
            SortKey key;
            CalcNode* node = arg(k);
            if (node->valType() == ValNum) {
                key.num = node->valNum();
            } else {
                key.str = node->valStr();
                key.isStr = true;
            }
            cells.push_back(std::move(key));
        }
        elements.push_back(i);
    }

    std::vector<long> rows(elements.size());
    for (size_t r = 0; r < rows.size(); ++r) rows[r] = static_cast<long>(r);
    auto less = [&](long r1, long r2) {
        const SortKey* a = &cells[static_cast<size_t>(r1 * keys)];
        const SortKey* b = &cells[static_cast<size_t>(r2 * keys)];
        for (long k = 0; k < keys; ++k) {
            int c = compareKeys(a[k], b[k]);
            if (c != 0) {
                bool reversed = k < reverseFlags.count && reverseFlags.data[k];
                return reversed ? c > 0 : c < 0;
            }
        }
        return elements[static_cast<size_t>(r1)] < elements[static_cast<size_t>(r2)];
    };
    std::sort(rows.begin(), rows.end(), less);

    order.allocate(n);
    for (long r : rows) order << elements[static_cast<size_t>(r)];
    while (order.count < n) order << -1L;

    guard.release();
    iterator->setIndex(saved);
    for (long a = 0; a < numArgs(); ++a) arg(a)->reset();
}

double CalcNodeFuncSort::valNum() {
    try {
        init();
    } catch (...) {
        order.flush();  // computed again at the next read
        throw;
    }
    if (iterator->count() <= 0) return 0;
    long i = iterator->getIndex();
    if (i < 0 || i >= order.count) return NaN();
    return static_cast<double>(order.data[i]);
}

// ---- ifdef and ifndef ----

double CalcNodeFuncDefineNum::valNum() {
    double x = arg(0)->valNum();
    return std::isnan(x) ? arg(1)->valNum() : x;
}

String CalcNodeFuncDefineStr::valStr() {
    String x = arg(0)->valStr();
    return x.isNull() ? arg(1)->valStr() : x;
}

RawBuffer& CalcNodeFuncDefineRaw::valRaw(RawBuffer& buffer) {
    long before = buffer.count;
    arg(0)->valRaw(buffer);
    if (buffer.count == before) arg(1)->valRaw(buffer);
    return buffer;
}

double CalcNodeFuncIfDefNum::valNum() {
    double x = arg(0)->valNum();
    return std::isnan(x) ? x : arg(1)->valNum();
}

String CalcNodeFuncIfDefStr::valStr() {
    if (arg(0)->valStr().isNull()) return nullStr();
    return arg(1)->valStr();
}

// Defined: the bytes of y follow those of x.
RawBuffer& CalcNodeFuncIfDefRaw::valRaw(RawBuffer& buffer) {
    long before = buffer.count;
    arg(0)->valRaw(buffer);
    if (buffer.count == before) return buffer;
    return arg(1)->valRaw(buffer);
}

// ---- entry points ----

namespace {

template <template <class> class F>
CalcNode* makeTyped(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder, int valueType) {
    switch (valueType) {
    case ValStr:
        return new F<String>(name, args, binder);
    case ValRaw:
        return new F<RawBuffer>(name, args, binder);
    default:
        return new F<double>(name, args, binder);
    }
}

// recurse and recurse0 pass their start index through.
template <class T>
class Recurse : public CalcNodeFuncRecurse<T> {
public:
    Recurse(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder)
        : CalcNodeFuncRecurse<T>(name, args, binder, -1) {}
};

template <class T>
class Recurse0 : public CalcNodeFuncRecurse<T> {
public:
    Recurse0(const char* name, ObjAppendListP<CalcNode>* args, CalcBinder& binder)
        : CalcNodeFuncRecurse<T>(name, args, binder, 0) {}
};

// The value type of the argument that decides a class, or ValNum when the
// count is wrong (the constructor then reports it). Asking may compile an
// exec, which may fail: the arguments go with the failure, as they would
// with a failing constructor.
int typeOfArg(ObjAppendListP<CalcNode>* args, long i, int min, int max) {
    if (CalcNodeFunc::checkArguments(nullptr, args, min, max) != 0) return ValNum;
    try {
        return args->data[i]->valType();
    } catch (...) {
        delete args;
        throw;
    }
}

}  // namespace

namespace {

using Args = ObjAppendListP<CalcNode>;
// Makes the node of one stateful or control function.
using StateMaker = CalcNode* (*)(const char* name, Args* args, CalcParser& parser);

// sort with a single key: the element number breaks ties.
CalcNode* makeSort(const char* name, Args* args, CalcParser& parser) {
    if (args && args->count == 1) {
        std::unique_ptr<Args> owned(args);
        *args << new CalcNodeIterator(requireIterator(parser));
        owned.release();
    }
    return new CalcNodeFuncSort(name, args, parser);
}

// ifdef and ifndef choose their class by the type of the value they guard.
template <class Num, class Str, class Raw>
CalcNode* makeDefined(const char* name, Args* args, CalcParser&) {
    switch (typeOfArg(args, 1, 2, 2)) {
    case ValStr:
        return new Str(name, args);
    case ValRaw:
        return new Raw(name, args);
    default:
        return new Num(name, args);
    }
}

template <template <class> class F>
CalcNode* makeIterating(const char* name, Args* args, CalcParser& parser) {
    return makeTyped<F>(name, args, parser, typeOfArg(args, 0, 1, 2));
}

struct StateFunction {
    const char* name;
    StateMaker make;
};

const StateFunction stateFunctions[] = {
    {"const", [](const char* n, Args* a, CalcParser&) -> CalcNode* { return new CalcNodeFuncConst(n, a); }},
    {"option",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* { return new CalcNodeFuncOption(n, a, &p.binders); }},
    {"sync", [](const char* n, Args* a, CalcParser&) -> CalcNode* { return new CalcNodeFuncSync(n, a); }},
    {"exec",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* {
         return new CalcNodeExec(n, a, static_cast<CalcBinder&>(p));
     }},
    {"keep", [](const char* n, Args* a, CalcParser&) -> CalcNode* { return new CalcNodeFuncKeep(n, a, false); }},
    {"get", [](const char* n, Args* a, CalcParser&) -> CalcNode* { return new CalcNodeFuncKeep(n, a, true); }},
    {"keepmin",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* { return new CalcNodeFuncKeepMin(n, a, false, p); }},
    {"getmin",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* { return new CalcNodeFuncKeepMin(n, a, true, p); }},
    {"keepmax",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* { return new CalcNodeFuncKeepMax(n, a, false, p); }},
    {"getmax",
     [](const char* n, Args* a, CalcParser& p) -> CalcNode* { return new CalcNodeFuncKeepMax(n, a, true, p); }},
    {"recurse", makeIterating<Recurse>},
    {"recurse0", makeIterating<Recurse0>},
    {"lastof", makeIterating<CalcNodeFuncLastOf>},
    {"sort", makeSort},
    {"ifdef", makeDefined<CalcNodeFuncIfDefNum, CalcNodeFuncIfDefStr, CalcNodeFuncIfDefRaw>},
    {"ifndef", makeDefined<CalcNodeFuncDefineNum, CalcNodeFuncDefineStr, CalcNodeFuncDefineRaw>},
    {"choose", [](const char* n, Args* a, CalcParser&) -> CalcNode* { return new CalcNodeFuncChoose(n, a); }},
};

}  // namespace

CalcNode* bindStateFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser) {
    if (!name) return nullptr;
    for (const StateFunction& f : stateFunctions)
        if (same(name, f.name)) return f.make(name, args, parser);
    return nullptr;
}

CalcNode* makeIfNode(CalcNode* condition, CalcNode* then, CalcNode* otherwise) {
    auto* args = new ObjAppendListP<CalcNode>;
    *args << condition << then << otherwise;
    return new CalcNodeFuncIf("if?then:else", args);
}

CalcNode* makeSymRefNode(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser) {
    return new CalcNodeFuncSymRef(name, args, &parser.binders);
}

}  // namespace zun
