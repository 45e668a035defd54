#include "calc/CalcNodeVector.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "calc/CalcBinderData.h"
#include "calc/CalcError.h"
#include "calc/CalcFunctions.h"
#include "calc/CalcParser.h"
#include "calc/CalcScanner.h"

namespace zun {

namespace {

bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

// Destroys the nodes of a list, each once even where it occurs twice, and
// empties it.
void destroyUnique(ObjAppendListP<CalcNode>* list) {
    if (!list) return;
    std::unordered_set<CalcNode*> seen;
    for (long i = 0; i < list->count; ++i) {
        CalcNode* node = list->data[i];
        if (node && seen.insert(node).second) delete node;
    }
    list->ObjAppendList<CalcNode*>::flush();
}

// A link to an element of a vector that was an argument: it keeps that
// argument alive, together with the links to its other elements, for as long
// as one of them lives. The argument may be the vector itself, written in
// place.
class CalcNodeVectorItem : public CalcNodeLink {
public:
    CalcNodeVectorItem(CalcNode* target, std::shared_ptr<CalcNode> keeper)
        : CalcNodeLink(target), keeper(std::move(keeper)) {}

private:
    std::shared_ptr<CalcNode> keeper;
};

// The walks that an element can lead back into its vector: a bit of a
// node's `walking` each. A walk that finds its bit set has come round a
// cycle, and stops there.
enum Walk : unsigned { WalkList = 1, WalkType = 2, WalkLevel = 4, WalkAnswer = 8, WalkActivates = 16,
                       WalkActivate = 32, WalkValue = 64 };

// Marks one walk as under way for the life of the guard.
class WalkGuard {
public:
    // The walk came back to a node that it is walking.
    const bool cycle;

    WalkGuard(unsigned& marks, Walk walk) : cycle((marks & walk) != 0), walking(marks), walk(walk) {
        walking |= walk;
    }
    ~WalkGuard() {
        if (!cycle) walking &= ~static_cast<unsigned>(walk);
    }
    WalkGuard(const WalkGuard&) = delete;
    WalkGuard& operator=(const WalkGuard&) = delete;

private:
    unsigned& walking;
    Walk walk;
};

// A copy of a constant node, or null for a null node or any other kind;
// with make false, only whether there would be one (this node for yes).
template <class T>
CalcNode* copyConstantOf(CalcNode* node, bool make) {
    auto* constant = dynamic_cast<CalcNodeConst<T>*>(node);
    if (!constant || !make) return constant;
    return new CalcNodeConst<T>(constant->name.str(), constant->value);
}

CalcNode* copyConstant(CalcNode* node, bool make = true) {
    if (!node || node->nodeType() != CalcNode::TypeConst) return nullptr;
    if (CalcNode* c = copyConstantOf<double>(node, make)) return c;
    if (CalcNode* c = copyConstantOf<long long>(node, make)) return c;
    if (CalcNode* c = copyConstantOf<String>(node, make)) return c;
    return copyConstantOf<RawBuffer>(node, make);
}

// A value that depends on itself has none.
[[noreturn]] void valueCycle() { throw CalcErrorOperationInvalid("vector", "an element reads itself"); }

// The element that a read points at, for its value; the guard marks the read
// as under way.
CalcNode* valueElement(CalcNodeVectorLeaf& leaf, const WalkGuard& guard) {
    if (guard.cycle) valueCycle();
    return leaf.getNode();
}

}  // namespace

// ---- flattening vector arguments ----

long CalcNodeFunc::flattenVectorArgument(long i) {
    if (!args || i < 0 || i >= args->count) return i;
    CalcNode* argument = args->data[i];
    auto* vector = dynamic_cast<CalcNodeVector*>(argument->implements("vector"));
    if (!vector) return i;

    long n = vector->generation > 0 ? static_cast<long>(vector->total) : 0;
    std::vector<CalcNode*> tail(args->data + i + 1, args->data + args->count);
    std::shared_ptr<CalcNode> keeper(argument);
    args->ObjAppendList<CalcNode*>::del(args->count - i);
    for (long p = 0; p < n; ++p) *args << new CalcNodeVectorItem(vector->element(p), keeper);
    for (CalcNode* node : tail) *args << node;
    return i + n;
}

// ---- the vectors of a parser ----

CalcVectorBinders::~CalcVectorBinders() {
    for (auto& entry : answering[0]) entry.second->registry = nullptr;
}

void CalcVectorBinders::enter(CalcNodeVector& vector) {
    if (vector.registry) vector.registry->leave(vector);
    if (!vector.bindActive) return;
    vector.registry = this;
    vector.order = made++;
    answering[0][vector.order] = &vector;
    shaped(vector);
}

void CalcVectorBinders::leave(CalcNodeVector& vector) {
    if (vector.registry != this) return;
    long last = std::min(lastSymbol, vector.dims.count);
    for (long k = 0; k <= last; ++k) answering[k].erase(vector.order);
    vector.registry = nullptr;
}

void CalcVectorBinders::shaped(CalcNodeVector& vector) {
    if (vector.registry != this) return;
    long last = std::min(lastSymbol, vector.dims.count);
    for (long k = 1; k <= last; ++k) answering[k][vector.order] = &vector;
}

void CalcVectorBinders::statementEnded() {
    for (auto& entry : answering[0]) {
        entry.second->bindActive = false;
        entry.second->registry = nullptr;
    }
    for (auto& vectors : answering) vectors.clear();
}

CalcNode* CalcVectorBinders::bindSymbol(const char* name) {
    if (!name || name[0] != '$' || name[1] < '0' || name[1] > '9' || name[2]) return nullptr;
    const auto& vectors = answering[name[1] - '0'];
    return vectors.empty() ? nullptr : vectors.begin()->second->bindSymbol(name);
}

// ---- the vector ----

CalcNodeVector::CalcNodeVector(const char* name, ObjAppendListP<CalcNode>* args)
    : CalcNodeFunc(name, args, 0, 1000) {
    CalcNodeVector* source = nullptr;
    if (numArgs() == 1) source = dynamic_cast<CalcNodeVector*>(arg(0)->implements("vector"));
    if (source) {
        dims = source->dims;
        total = source->total;
        if (source->generation > 0) {
            for (long long p = 0; p < total; ++p) elements << new CalcNodeLink(source->lastGeneration(p));
            generation = 1;
        }
        // The source may be written in place: it stays, as the copy's
        // elements point into it.
        sourceNode = args->take(0);
    } else {
        double size = numArgs() > 0 ? 1 : 0;
        for (long i = 0; i < numArgs(); ++i) {
            double d = arg(i)->valNum();
            long n = 0;
            if (d >= 1) {
                if (d > static_cast<double>(maxElements)) d = static_cast<double>(maxElements) + 1;
                n = static_cast<long>(d);
            }
            dims << n;
            size *= static_cast<double>(n);
        }
        if (size > static_cast<double>(maxElements)) {
            destroyUnique(this->args);
            throw CalcErrorOperationInvalid(name, "more than 1000000 elements");
        }
        total = static_cast<long long>(size);
    }
    destroyUnique(this->args);
    setShape();
    if (elements.count > 0) bindNode = elements.data[0];
}

CalcNodeVector::~CalcNodeVector() {
    if (registry) registry->leave(*this);
    delete shifts;
    delete sourceNode;
}

void CalcNodeVector::enterIn(CalcVectorBinders& vectors) { vectors.enter(*this); }

void CalcNodeVector::setShape() {
    bindShifts.flush();
    bindShifts.allocate(dims.count);
    for (long k = 0; k < dims.count; ++k) bindShifts << 0L;
}

CalcNode* CalcNodeVector::element(long long position) const {
    if (generation == 0 || position < 0 || position >= total) return nullptr;
    return lastGeneration(static_cast<long>(position));
}

void CalcNodeVector::getBindShifts(ObjAppendList<long>& list) {
    list.flush();
    for (long k = 0; k < dims.count; ++k) {
        long value = 0;
        if (shifts && k < shifts->count) {
            double d = shifts->data[k]->valNum();
            if (std::fabs(d) < 9.0e18) value = static_cast<long>(d);
        }
        list << value;
    }
}

int CalcNodeVector::valType() {
    WalkGuard guard(walking, WalkType);
    if (guard.cycle) return ValNum;
    return generation > 0 && total > 0 ? lastGeneration(0)->valType() : ValNum;
}

CalcNode* CalcNodeVector::implements(const char* what) { return what && same(what, "vector") ? this : nullptr; }

CalcNode* CalcNodeVector::assigned(String& /*name*/) {
    bindActive = false;
    if (registry) registry->leave(*this);
    return this;
}

CalcNode* CalcNodeVector::property(const char* name, CalcNodeMem* via) {
    if (!via || !name || !same(name, "dims")) return nullptr;
    return new CalcNodeConst<double>("numeric constant", static_cast<double>(dims.count));
}

CalcNode* CalcNodeVector::method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    if (!via || !name) return nullptr;
    // The counts are checked here: a failure leaves args to the caller.
    if (same(name, "operator::[]")) {
        checkArguments(name, args, static_cast<int>(dims.count), static_cast<int>(dims.count));
        return new CalcNodeVectorLeaf(name, args, this);
    }
    if (same(name, "size")) {
        checkArguments("@size", args, 1, 1);
        return new CalcNodeVectorSize("@size", args, this);
    }
    return nullptr;
}

CalcNode* CalcNodeVector::method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                                 CalcBinder& binder, CalcNodeMem* via) {
    if (!name) return nullptr;
    if (!via) {
        if (same(name, "operator::[]")) {
            if (!argText) return nullptr;
            addGeneration(name, args, argText, binder);
            return this;
        }
        if (same(name, "shift")) {
            if (shifts) return nullptr;  // the first call only
            checkArguments("@shift", args, static_cast<int>(dims.count), static_cast<int>(dims.count));
            shifts = args;
            return this;
        }
        return nullptr;
    }
    if (same(name, "operator::[]") || same(name, "size")) return method(name, args, via);
    if (!argText) return nullptr;
    addGeneration(name, args, argText, binder);
    // The vector belongs to its variable: the expression gets a link.
    return new CalcNodeLink(this);
}

void CalcNodeVector::addGeneration(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                                   CalcBinder& binder) {
    checkArguments(name, args, 1, static_cast<int>(maxElements));
    if (dims.count == 0) {
        dims << args->count;
        total = args->count;
        setShape();
        if (registry) registry->shaped(*this);
    }
    for (long k = 0; k < bindShifts.count; ++k) bindShifts.data[k] = 0;

    // The texts of the list, split at its top-level commas.
    std::vector<String> texts;
    {
        CalcScanner scanner(argText);
        String text = scanner.scan(0);
        while (!text.isNull()) {
            texts.push_back(text);
            if (scanner.stopChar != ',') break;
            text = scanner.scan(1);
        }
    }
    if (texts.empty()) throw CalcErrorArgsMissing(name, 1);

    // A text without "$" means the same at every place: once it has compiled
    // to a constant, its other places get copies of that constant.
    std::vector<CalcNode*> constants(texts.size(), nullptr);
    long first = elements.count;
    elements.allocate(total);  // the generation's count is known: room once
    try {
        for (long long p = 0; p < total; ++p) {
            bindNode = generation > 0 ? lastGeneration(static_cast<long>(p)) : nullptr;
            size_t t = static_cast<size_t>(p % static_cast<long long>(texts.size()));
            CalcNode* element = copyConstant(constants[t]);
            if (!element) {
                std::unique_ptr<CalcParser> parser(new CalcParser(texts[t].str(), binder, false));
                String role("vector[]");
                parser->assigned(role);
                element = parser->reduce();
                if (element) parser.reset();  // the parser gave its result up, or folded
                else element = parser.release();
                if (texts[t].find('$') < 0 && copyConstant(element, false)) constants[t] = element;
            }
            elements << element;
            // The next position, as an odometer: the last dimension turns fastest.
            for (long k = dims.count - 1; k >= 0; --k) {
                if (++bindShifts.data[k] < dims.data[k]) break;
                bindShifts.data[k] = 0;
            }
        }
    } catch (...) {
        elements.del(elements.count - first);
        for (long k = 0; k < bindShifts.count; ++k) bindShifts.data[k] = 0;
        bindNode = nullptr;
        throw;
    }
    ++generation;
    bindNode = nullptr;
    delete args;  // compiled anew from their text
}

namespace {

// The text of a vector, gathered in one growing buffer: joining Strings, each
// of exactly its size, would copy the text so far at each element.
class VectorText {
public:
    VectorText& operator<<(const String& s) {
        if (s.text) text.append(s.text, static_cast<size_t>(s.length));
        return *this;
    }
    VectorText& operator<<(const char* s) {
        text += s;
        return *this;
    }
    VectorText& repeat(long n, char c) {
        text.append(static_cast<size_t>(n), c);
        return *this;
    }
    String str() const {
        if (text.size() > static_cast<size_t>(INT_MAX))
            throw CalcErrorOperationInvalid("vector", "text longer than a text can be");
        return String(text.data(), static_cast<int>(text.size()));
    }

private:
    std::string text;
};

}  // namespace

String CalcNodeVector::valPrint() {
    WalkGuard guard(walking, WalkValue);
    if (guard.cycle) valueCycle();
    long nd = dims.count;
    if (nd == 0) return String("{}");
    VectorText out;
    out.repeat(nd, '{');
    if (generation > 0) {
        std::vector<long> counter(static_cast<size_t>(nd), 0);
        for (long long p = 0; p < total; ++p) {
            if (p > 0) {
                // Close and reopen the rows that end here.
                int wraps = 0;
                for (long k = nd - 1; k >= 0; --k) {
                    if (++counter[static_cast<size_t>(k)] < dims.data[k]) break;
                    counter[static_cast<size_t>(k)] = 0;
                    ++wraps;
                }
                out.repeat(wraps, '}') << ",";
                out.repeat(wraps, '{');
            }
            out << lastGeneration(static_cast<long>(p))->valPrint();
        }
    }
    out.repeat(nd, '}');
    return out.str();
}

String CalcNodeVector::valInit() {
    WalkGuard guard(walking, WalkValue);
    if (guard.cycle) valueCycle();
    VectorText out;
    out << "vector(";
    for (long k = 0; k < dims.count; ++k) {
        if (k > 0) out << ",";
        out << std::to_string(dims.data[k]).c_str();
    }
    out << ")";
    if (total != 0 && generation > 0) {
        out << "[";
        for (long long p = 0; p < total; ++p) {
            if (p > 0) out << ",";
            out << lastGeneration(static_cast<long>(p))->valInit();
        }
        out << "]";
    }
    return out.str();
}

bool CalcNodeVector::activates() {
    WalkGuard guard(walking, WalkActivates);
    if (guard.cycle || generation == 0) return false;
    for (long long p = 0; p < total; ++p)
        if (lastGeneration(static_cast<long>(p))->activates()) return true;
    return false;
}

void CalcNodeVector::activate(bool force) {
    WalkGuard guard(walking, WalkActivate);
    if (guard.cycle || generation == 0) return;
    for (long long p = 0; p < total; ++p) lastGeneration(static_cast<long>(p))->activate(force);
}

int CalcNodeVector::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                              bool leavesOnly) {
    WalkGuard guard(walking, WalkList);
    if (guard.cycle) return 0;
    int n = 0;
    if (!leavesOnly && name.match(namePattern) && (!implementsName || implements(implementsName))) {
        out.push_back(this);
        ++n;
    }
    if (generation > 0)
        for (long long p = 0; p < total; ++p)
            n += lastGeneration(static_cast<long>(p))->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeVector::listNodes(std::list<CalcNode*>& out, Type type) {
    WalkGuard guard(walking, WalkList);
    if (guard.cycle) return 0;
    int n = 0;
    if (nodeType() == type) {
        out.push_back(this);
        ++n;
    }
    if (generation > 0)
        for (long long p = 0; p < total; ++p) n += lastGeneration(static_cast<long>(p))->listNodes(out, type);
    return n;
}

CalcNode* CalcNodeVector::bindSymbol(const char* name) {
    if (!bindActive || !name || name[0] != '$' || !name[1] || name[2]) return nullptr;
    int k = name[1] - '0';
    if (k == 0) {
        if (bindNode) return new CalcNodeLink(bindNode);
        return new CalcNodeNull();
    }
    if (k < 1 || k > 9 || k > dims.count) return nullptr;
    // Constant by its level, so that the element keeps the position it was
    // compiled at.
    return new CalcNodeData<long>(name, nullptr, &bindShifts.data[k - 1], -1);
}

// ---- v[i, ...] ----

CalcNodeVectorLeaf::CalcNodeVectorLeaf(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeVector* vector)
    : CalcNodeMethod(name, args, vector, false, static_cast<int>(vector->dims.count),
                     static_cast<int>(vector->dims.count)) {}

CalcNode* CalcNodeVectorLeaf::getNode() {
    CalcNodeVector* v = vector();
    long n = numArgs();
    if (v->generation == 0 || v->total <= 0 || n == 0) return nullptr;
    // Row-major: ((i1 * d2 + i2) * d3 + i3) ... Far out of range is out of range.
    const long long bound = 2000000000000000000LL;
    long long position = 0;
    for (long k = 0; k < n; ++k) {
        double d = arg(k)->valNum();
        if (!(std::fabs(d) < 1.0e18)) return nullptr;
        position += static_cast<long long>(d);
        if (k + 1 < n) {
            long long size = k + 1 < v->dims.count ? v->dims.data[k + 1] : 1;
            if (size > 0 && (position > bound / size || position < -bound / size)) return nullptr;
            position *= size;
        }
    }
    return v->element(position);
}

CalcNode* CalcNodeVectorLeaf::constNode() {
    for (long i = 0; i < numArgs(); ++i)
        if (arg(i)->constLevel() >= 0) return nullptr;
    return getNode();
}

int CalcNodeVectorLeaf::valType() {
    WalkGuard guard(walking, WalkType);
    if (guard.cycle) return ValNum;
    CalcNode* e = getNode();
    return e ? e->valType() : vector()->valType();
}

int CalcNodeVectorLeaf::constLevel() {
    WalkGuard guard(walking, WalkLevel);
    if (guard.cycle) return -1;
    int level = -1;
    bool constIndices = true;
    for (long i = 0; i < numArgs(); ++i) {
        int l = arg(i)->constLevel();
        if (l >= 0) constIndices = false;
        level = minLevel(level, l);
    }
    CalcNodeVector* v = vector();
    if (constIndices) {
        CalcNode* e = getNode();
        return minLevel(level, e ? e->constLevel() : 0);
    }
    // Any element may be the one read.
    if (v->generation == 0 || v->total <= 0) return minLevel(level, 0);
    for (long long p = 0; p < v->total; ++p) level = minLevel(level, v->element(p)->constLevel());
    return level;
}

// The element's answer, for the leaf where the element answers with itself;
// none when the element isn't known at parse time, or when asking it comes
// back here.
template <class Ask>
CalcNode* CalcNodeVectorLeaf::elementAnswer(Ask ask) {
    WalkGuard guard(walking, WalkAnswer);
    CalcNode* e = guard.cycle ? nullptr : constNode();
    if (!e) return nullptr;
    CalcNode* answer = ask(e);
    return answer == e ? this : answer;
}

CalcNode* CalcNodeVectorLeaf::implements(const char* what) {
    WalkGuard guard(walking, WalkAnswer);
    CalcNode* e = guard.cycle ? nullptr : constNode();
    return e ? e->implements(what) : nullptr;
}

CalcNode* CalcNodeVectorLeaf::keyword(const char* word, CalcNodeMem* via) {
    return elementAnswer([&](CalcNode* e) { return e->keyword(word, via); });
}

CalcNode* CalcNodeVectorLeaf::property(const char* name, CalcNodeMem* via) {
    return elementAnswer([&](CalcNode* e) { return e->property(name, via); });
}

CalcNode* CalcNodeVectorLeaf::method(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    return elementAnswer([&](CalcNode* e) { return e->method(name, args, via); });
}

CalcNode* CalcNodeVectorLeaf::method(const char* name, ObjAppendListP<CalcNode>* args, const char* argText,
                                     CalcBinder& binder, CalcNodeMem* via) {
    return elementAnswer([&](CalcNode* e) { return e->method(name, args, argText, binder, via); });
}

double CalcNodeVectorLeaf::valNum() {
    WalkGuard guard(walking, WalkValue);
    CalcNode* e = valueElement(*this, guard);
    return e ? e->valNum() : NaN();
}

String CalcNodeVectorLeaf::valStr() {
    WalkGuard guard(walking, WalkValue);
    CalcNode* e = valueElement(*this, guard);
    return e ? e->valStr() : nullStr();
}

RawBuffer& CalcNodeVectorLeaf::valRaw(RawBuffer& buffer) {
    WalkGuard guard(walking, WalkValue);
    CalcNode* e = valueElement(*this, guard);
    return e ? e->valRaw(buffer) : buffer;
}

String CalcNodeVectorLeaf::valPrint() {
    WalkGuard guard(walking, WalkValue);
    CalcNode* e = valueElement(*this, guard);
    return e ? e->valPrint() : String("nan");
}

String CalcNodeVectorLeaf::valInit() {
    WalkGuard guard(walking, WalkValue);
    CalcNode* e = valueElement(*this, guard);
    return e ? e->valInit() : String("nan");
}

// ---- v@size(k) ----

CalcNodeVectorSize::CalcNodeVectorSize(const char* name, ObjAppendListP<CalcNode>* args, CalcNodeVector* vector)
    : CalcNodeMethod(name, args, vector, false, 1, 1) {}

double CalcNodeVectorSize::valNum() {
    CalcNodeVector* v = vector();
    double d = arg(0)->valNum();
    if (!(std::fabs(d) < 9.0e18)) return NaN();
    long long k = static_cast<long long>(d);
    if (k == 0) return static_cast<double>(v->dims.count > 0 ? v->total : 0);
    if (k >= 1 && k <= v->dims.count) return static_cast<double>(v->dims.data[k - 1]);
    return NaN();
}

// ---- entry point ----

CalcNode* bindVectorFunction(const char* name, ObjAppendListP<CalcNode>* args, CalcParser& parser) {
    if (!name || !same(name, "vector")) return nullptr;
    auto* vector = new CalcNodeVector(name, args);
    vector->enterIn(parser.vectorBinders());
    return vector;
}

}  // namespace zun
