#include "calc/CalcNode.h"

#include <climits>
#include <cmath>
#include <limits>
#include <type_traits>

#include "calc/CalcError.h"

namespace zun {

// ---------------------------------------------------------------- CalcNode

CalcNode::CalcNode(const char* name) : name(name) {}

CalcNode::~CalcNode() = default;

CalcNode* CalcNode::implements(const char*) { return nullptr; }
CalcNode* CalcNode::keyword(const char*, CalcNodeMem*) { return nullptr; }
CalcNode* CalcNode::property(const char*, CalcNodeMem*) { return nullptr; }
CalcNode* CalcNode::method(const char*, ObjAppendListP<CalcNode>*, CalcNodeMem*) { return nullptr; }
CalcNode* CalcNode::method(const char*, ObjAppendListP<CalcNode>*, const char*, CalcBinder&, CalcNodeMem*) {
    return nullptr;
}
CalcNode* CalcNode::operOverload(const char*, CalcNode*, CalcNodeMem*) { return nullptr; }
CalcNode* CalcNode::operOverloadR(const char*, CalcNode*, CalcNodeMem*) { return this; }
CalcNode* CalcNode::assigned(String&) { return this; }

double CalcNode::valNum() {
    switch (valType()) {
    case ValStr:
        return valStr().toSmartDouble();
    case ValRaw: {
        RawBuffer bytes;
        valRaw(bytes);
        return static_cast<double>(bytes.count);
    }
    default:
        return NaN();
    }
}

String CalcNode::valStr() {
    switch (valType()) {
    case ValNum: {
        double v = valNum();
        if (std::isnan(v)) return nullStr();
        String s;
        s << v;
        return s;
    }
    case ValRaw:
        return name;
    default:
        return nullStr();
    }
}

long long CalcNode::valInt() { return truncate(valNum()); }

RawBuffer& CalcNode::valRaw(RawBuffer& buffer) {
    switch (valType()) {
    case ValNum: {
        double v = valNum();
        buffer.append(sizeof v, reinterpret_cast<const char*>(&v));
        break;
    }
    case ValStr: {
        String s = valStr();
        buffer.append(s.length, s.text);
        break;
    }
    default:
        break;
    }
    return buffer;
}

String CalcNode::valPrint() {
    switch (valType()) {
    case ValStr: {
        String s = valStr();
        s.escape(true);
        s.quote('"');
        return s;
    }
    case ValRaw: {
        String s = valRaw().hex();
        s.quote('[');
        return s;
    }
    default: {
        double v = valNum();
        if (std::isnan(v)) return String("nan");
        String s;
        s << v;
        return s;
    }
    }
}

String CalcNode::valInit() { return valPrint(); }

CalcNode::Value& CalcNode::val(Value& value) {
    switch (valType()) {
    case ValStr: {
        value.flush();
        String s = valStr();
        value.append(s.length, s.text);
        value << '\0';
        value.type = ValStr;
        break;
    }
    case ValRaw:
        value.type = ValRaw;
        valRaw(value);
        break;
    default:
        value.flush();
        valRaw(value);
        value.type = ValNum;
        break;
    }
    return value;
}

void CalcNode::reset() {}
void CalcNode::reset(int) {}
bool CalcNode::activates() { return false; }
void CalcNode::activate(bool) {}

CalcNode* CalcNode::reduce() { return reduceConst(); }

CalcNode* CalcNode::reduceConst() {
    if (constLevel() >= 0) return nullptr;
    switch (valType()) {
    case ValStr:
        return new CalcNodeConst<String>("string constant", valStr());
    case ValRaw:
        return new CalcNodeConst<RawBuffer>("data constant", valRaw());
    default:
        return new CalcNodeConst<double>("numeric constant", valNum());
    }
}

void CalcNode::reduceInPlace(CalcNode*& slot) {
    if (!slot) return;
    CalcNode* replacement = slot->reduce();
    if (replacement && replacement != slot) {
        delete slot;
        slot = replacement;
    }
}

namespace {

bool matches(CalcNode& node, const char* namePattern, const char* implementsName) {
    return node.name.match(namePattern) && (!implementsName || node.implements(implementsName));
}

// The test of a composite node for itself: skipped with leavesOnly.
int pushIfMatching(CalcNode& node, std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                   bool leavesOnly) {
    if (leavesOnly || !matches(node, namePattern, implementsName)) return 0;
    out.push_back(&node);
    return 1;
}

int pushIfType(CalcNode& node, std::list<CalcNode*>& out, CalcNode::Type type) {
    if (node.nodeType() != type) return 0;
    out.push_back(&node);
    return 1;
}

}  // namespace

int CalcNode::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName, bool) {
    if (!matches(*this, namePattern, implementsName)) return 0;
    out.push_back(this);
    return 1;
}

int CalcNode::listNodes(std::list<CalcNode*>& out, Type type) { return pushIfType(*this, out, type); }

RawBuffer CalcNode::valRaw() {
    RawBuffer bytes;
    valRaw(bytes);
    return bytes;
}

double CalcNode::NaN() { return std::numeric_limits<double>::quiet_NaN(); }

String CalcNode::nullStr() { return String(static_cast<const char*>(nullptr)); }

long long CalcNode::truncate(double v) {
    // 2^63 and -2^63 are exact doubles; the range is [-2^63, 2^63).
    if (!(v >= -9223372036854775808.0 && v < 9223372036854775808.0)) return LLONG_MIN;
    return static_cast<long long>(v);
}

// ---------------------------------------------------------------- constants

RawBuffer& CalcNodeNull::valRaw(RawBuffer& buffer) {
    buffer.flush();
    return buffer;
}

template <class T>
int CalcNodeConst<T>::valType() {
    if constexpr (std::is_same<T, String>::value) return ValStr;
    else if constexpr (std::is_same<T, RawBuffer>::value) return ValRaw;
    else return ValNum;
}

template <class T>
double CalcNodeConst<T>::valNum() {
    if constexpr (std::is_same<T, double>::value) return value;
    else if constexpr (std::is_same<T, long long>::value) return static_cast<double>(value);
    else if constexpr (std::is_same<T, String>::value) return value.toSmartDouble();
    else return NaN();
}

template <class T>
String CalcNodeConst<T>::valStr() {
    if constexpr (std::is_same<T, String>::value) {
        return value;
    } else if constexpr (std::is_same<T, long long>::value) {
        String s;
        s << value;
        return s;
    } else if constexpr (std::is_same<T, RawBuffer>::value) {
        return nullStr();
    } else {
        return CalcNode::valStr();
    }
}

template <class T>
long long CalcNodeConst<T>::valInt() {
    if constexpr (std::is_same<T, long long>::value) return value;
    else if constexpr (std::is_same<T, String>::value) return value.toLLong();
    else if constexpr (std::is_same<T, RawBuffer>::value) return value.count;
    else return truncate(value);
}

template <class T>
RawBuffer& CalcNodeConst<T>::valRaw(RawBuffer& buffer) {
    if constexpr (std::is_same<T, RawBuffer>::value) {
        buffer.append(value.count, value.data);
        return buffer;
    } else {
        return CalcNode::valRaw(buffer);
    }
}

template class CalcNodeConst<double>;
template class CalcNodeConst<long long>;
template class CalcNodeConst<String>;
template class CalcNodeConst<RawBuffer>;

// ---------------------------------------------------------------- CalcNodeMem

namespace {

CalcNode* makeStore(CalcNode* node) {
    switch (node->valType()) {
    case ValStr:
        return new CalcNodeConst<String>("string constant", CalcNode::nullStr());
    case ValRaw:
        return new CalcNodeConst<RawBuffer>("data constant", RawBuffer());
    default:
        return new CalcNodeConst<double>("numeric constant", CalcNode::NaN());
    }
}

CalcNode* takeStore(CalcNode* node) {
    try {
        return makeStore(node);
    } catch (...) {
        delete node;
        throw;
    }
}

}  // namespace

CalcNodeMem::CalcNodeMem(const char* name, CalcNode* node) : CalcNode(name), node(node), store(takeStore(node)) {}

CalcNodeMem::~CalcNodeMem() {
    delete node;
    delete store;
}

void CalcNodeMem::set() {
    if (!dirty) return;
    dirty = false;
    try {
        switch (store->valType()) {
        case ValStr:
            static_cast<CalcNodeConst<String>*>(store)->value = node->valStr();
            break;
        case ValRaw: {
            RawBuffer& bytes = static_cast<CalcNodeConst<RawBuffer>*>(store)->value;
            bytes.flush();
            node->valRaw(bytes);
            break;
        }
        default:
            static_cast<CalcNodeConst<double>*>(store)->value = node->valNum();
            break;
        }
    } catch (...) {
        dirty = true;
        throw;
    }
}

int CalcNodeMem::valType() { return store->valType(); }
int CalcNodeMem::constLevel() { return node->constLevel(); }
CalcNode* CalcNodeMem::implements(const char* what) { return node->implements(what); }
CalcNode* CalcNodeMem::keyword(const char* word, CalcNodeMem*) { return node->keyword(word, this); }
CalcNode* CalcNodeMem::property(const char* propertyName, CalcNodeMem*) { return node->property(propertyName, this); }
CalcNode* CalcNodeMem::method(const char* methodName, ObjAppendListP<CalcNode>* args, CalcNodeMem*) {
    return node->method(methodName, args, this);
}
CalcNode* CalcNodeMem::method(const char* methodName, ObjAppendListP<CalcNode>* args, const char* argText,
                              CalcBinder& binder, CalcNodeMem*) {
    return node->method(methodName, args, argText, binder, this);
}
CalcNode* CalcNodeMem::operOverload(const char* op, CalcNode* other, CalcNodeMem*) {
    return node->operOverload(op, other, this);
}
CalcNode* CalcNodeMem::operOverloadR(const char* op, CalcNode* other, CalcNodeMem*) {
    CalcNode* answer = node->operOverloadR(op, other, this);
    return answer == node ? this : answer;
}

double CalcNodeMem::valNum() {
    set();
    return store->valNum();
}
String CalcNodeMem::valStr() {
    set();
    return store->valStr();
}
long long CalcNodeMem::valInt() {
    set();
    return store->valInt();
}
RawBuffer& CalcNodeMem::valRaw(RawBuffer& buffer) {
    set();
    return store->valRaw(buffer);
}
String CalcNodeMem::valPrint() { return node->valPrint(); }
String CalcNodeMem::valInit() { return node->valInit(); }

void CalcNodeMem::reset() {
    dirty = true;
    activated = false;
    node->reset();
}

void CalcNodeMem::reset(int level) {
    if (level < 0 || level > node->constLevel()) return;
    dirty = true;
    activated = false;
    node->reset(level);
}

bool CalcNodeMem::activates() { return node->activates(); }

void CalcNodeMem::activate(bool force) {
    if (force) reset();
    if (passActivate && !activated) {
        activated = true;
        node->activate(force);
    }
}

CalcNode* CalcNodeMem::reduce() {
    if (!activates()) passActivate = false;
    reduceInPlace(node);
    return nullptr;
}

int CalcNodeMem::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                           bool leavesOnly) {
    int n = pushIfMatching(*this, out, namePattern, implementsName, leavesOnly);
    n += store->listNodes(out, namePattern, implementsName, leavesOnly);
    n += node->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeMem::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = pushIfType(*this, out, type);
    n += store->listNodes(out, type);
    n += node->listNodes(out, type);
    return n;
}

// ---------------------------------------------------------------- CalcNodeLink

CalcNodeLink::CalcNodeLink(CalcNode* target) : CalcNode(("link to node " + target->name).text), target(target) {}

CalcNodeLink::CalcNodeLink(const char* name, CalcNode* target) : CalcNode(name), target(target) {}

int CalcNodeLink::valType() { return target->valType(); }
int CalcNodeLink::constLevel() { return target->constLevel(); }
CalcNode* CalcNodeLink::implements(const char* what) { return target->implements(what); }

// The link stands for its target: an answer that is the target is the link.
#define ZUN_LINK_ANSWER(call)                  \
    CalcNode* answer = target->call;           \
    return answer == target ? this : answer

CalcNode* CalcNodeLink::keyword(const char* word, CalcNodeMem* via) { ZUN_LINK_ANSWER(keyword(word, via)); }
CalcNode* CalcNodeLink::property(const char* propertyName, CalcNodeMem* via) {
    ZUN_LINK_ANSWER(property(propertyName, via));
}
CalcNode* CalcNodeLink::method(const char* methodName, ObjAppendListP<CalcNode>* args, CalcNodeMem* via) {
    ZUN_LINK_ANSWER(method(methodName, args, via));
}
CalcNode* CalcNodeLink::method(const char* methodName, ObjAppendListP<CalcNode>* args, const char* argText,
                               CalcBinder& binder, CalcNodeMem* via) {
    ZUN_LINK_ANSWER(method(methodName, args, argText, binder, via));
}
CalcNode* CalcNodeLink::operOverload(const char* op, CalcNode* other, CalcNodeMem* via) {
    ZUN_LINK_ANSWER(operOverload(op, other, via));
}
CalcNode* CalcNodeLink::operOverloadR(const char* op, CalcNode* other, CalcNodeMem* via) {
    ZUN_LINK_ANSWER(operOverloadR(op, other, via));
}

#undef ZUN_LINK_ANSWER

double CalcNodeLink::valNum() { return target->valNum(); }
String CalcNodeLink::valStr() { return target->valStr(); }
long long CalcNodeLink::valInt() { return target->valInt(); }
RawBuffer& CalcNodeLink::valRaw(RawBuffer& buffer) { return target->valRaw(buffer); }
String CalcNodeLink::valPrint() { return target->valPrint(); }
String CalcNodeLink::valInit() { return target->valInit(); }
CalcNode::Value& CalcNodeLink::val(Value& value) { return target->val(value); }
bool CalcNodeLink::activates() { return target->activates(); }
void CalcNodeLink::activate(bool force) { target->activate(force); }
// A variable reduces its own expression and stays what it is, and so does
// the link to it. Any other target belongs to a tree of its own, whose owner
// reduces it: the link folds only to a constant copy.
CalcNode* CalcNodeLink::reduce() {
    if (target->nodeType() == TypeMem) return target->reduce();
    return reduceConst();
}

int CalcNodeLink::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                            bool leavesOnly) {
    int n = pushIfMatching(*this, out, namePattern, implementsName, leavesOnly);
    return n + target->listNodes(out, namePattern, implementsName, leavesOnly);
}

int CalcNodeLink::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = pushIfType(*this, out, type);
    return n + target->listNodes(out, type);
}

// ---------------------------------------------------------------- self, iterator

int CalcNodeSelf::valType() { return owner ? owner->valType() : ValNum; }
double CalcNodeSelf::valNum() { return owner ? owner->valNum() : 0.0; }
String CalcNodeSelf::valStr() { return owner ? owner->valStr() : String(); }
RawBuffer& CalcNodeSelf::valRaw(RawBuffer& buffer) { return owner ? owner->valRaw(buffer) : buffer; }

namespace {
String iteratorName(CalcIterator* iterator) {
    String s("iter");
    s << (iterator ? iterator->level : 0);
    return s;
}
}  // namespace

CalcNodeIterator::CalcNodeIterator(CalcIterator* iterator)
    : CalcNode(iteratorName(iterator).text), iterator(iterator) {}

CalcNodeIterator::~CalcNodeIterator() { delete iterator; }

// ---------------------------------------------------------------- CalcNodeFunc

CalcNodeFunc::CalcNodeFunc(const char* name, ObjAppendListP<CalcNode>* args, int min, int max)
    : CalcNode(name), args(args) {
    try {
        checkArguments(name, args, min, max);
    } catch (...) {
        delete this->args;
        this->args = nullptr;
        throw;
    }
}

CalcNodeFunc::~CalcNodeFunc() { delete args; }

// Levels are never below 0: once an operand answers 0, the others needn't
// be asked. That keeps the reduction of a long statement, which asks every
// node down a chain of operators, from growing with the square of its length.
int CalcNodeFunc::constLevel() {
    int level = -1;
    for (long i = 0; i < numArgs() && level != 0; ++i)
        if (CalcNode* a = arg(i)) level = minLevel(level, a->constLevel());
    return level;
}

bool CalcNodeFunc::activates() {
    for (long i = 0; i < numArgs(); ++i)
        if (CalcNode* a = arg(i))
            if (a->activates()) return true;
    return false;
}

void CalcNodeFunc::activate(bool force) {
    for (long i = 0; i < numArgs(); ++i)
        if (CalcNode* a = arg(i)) a->activate(force);
}

CalcNode* CalcNodeFunc::reduce() {
    if (CalcNode* folded = reduceConst()) return folded;
    for (long i = numArgs() - 1; i >= 0; --i) reduceInPlace(args->data[i]);
    return nullptr;
}

int CalcNodeFunc::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                            bool leavesOnly) {
    int n = pushIfMatching(*this, out, namePattern, implementsName, leavesOnly);
    for (long i = 0; i < numArgs(); ++i)
        if (CalcNode* a = arg(i)) n += a->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeFunc::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = pushIfType(*this, out, type);
    for (long i = 0; i < numArgs(); ++i)
        if (CalcNode* a = arg(i)) n += a->listNodes(out, type);
    return n;
}

int CalcNodeFunc::checkArguments(const char* name, ObjAppendListP<CalcNode>* args, int min, int max) {
    long n = args ? args->count : 0;
    if (max < 0) max = min;
    if (n < min) {
        if (name) throw CalcErrorArgsMissing(name, min);
        return -1;
    }
    if (n > max) {
        if (name) throw CalcErrorArgsTooMany(name, max);
        return 1;
    }
    return 0;
}

long CalcNodeFunc::checkConstArgs(const char* name, ObjAppendListP<CalcNode>* args, long from, long count) {
    long n = args ? args->count : 0;
    if (from < 0) from = 0;
    long end = count < 0 ? n : (from + count < n ? from + count : n);
    for (long i = from; i < end; ++i) {
        CalcNode* a = args->data[i];
        if (!a || a->constLevel() < 0) continue;
        if (!name) return i;
        String message("Unvariable argument  (");
        message << (i + 1);
        message += ") expected in call to Function \"";
        message += name;
        message += '"';
        throw CalcErrorArgNotConst(message.text);
    }
    return -1;
}

// ---------------------------------------------------------------- CalcNodeMethod

namespace {

// The argument check of a method, done before the function base takes the
// list: a failure also releases the object the method would have owned.
ObjAppendListP<CalcNode>* checkedMethodArgs(const char* name, ObjAppendListP<CalcNode>* args, int min, int max,
                                            CalcNode* object, bool ownsObject) {
    try {
        CalcNodeFunc::checkArguments(name, args, min, max);
    } catch (...) {
        delete args;
        if (ownsObject) delete object;
        throw;
    }
    return args;
}

}  // namespace

CalcNodeMethod::CalcNodeMethod(const char* name, ObjAppendListP<CalcNode>* args, CalcNode* object, bool ownsObject,
                               int min, int max)
    : CalcNodeFunc(name, checkedMethodArgs(name, args, min, max, object, ownsObject), min, max),
      object(object),
      ownsObject(ownsObject) {}

CalcNodeMethod::~CalcNodeMethod() {
    if (ownsObject) delete object;
}

int CalcNodeMethod::constLevel() {
    int level = CalcNodeFunc::constLevel();
    return object && level != 0 ? minLevel(level, object->constLevel()) : level;
}

bool CalcNodeMethod::activates() { return CalcNodeFunc::activates() || (object && object->activates()); }

void CalcNodeMethod::activate(bool force) {
    CalcNodeFunc::activate(force);
    if (object) object->activate(force);
}

CalcNode* CalcNodeMethod::reduce() {
    if (CalcNode* folded = reduceConst()) return folded;
    for (long i = numArgs() - 1; i >= 0; --i) reduceInPlace(args->data[i]);
    // An object owned elsewhere is its owner's to reduce.
    if (ownsObject) reduceInPlace(object);
    return nullptr;
}

int CalcNodeMethod::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                              bool leavesOnly) {
    int n = CalcNodeFunc::listNodes(out, namePattern, implementsName, leavesOnly);
    if (object) n += object->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeMethod::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = CalcNodeFunc::listNodes(out, type);
    if (object) n += object->listNodes(out, type);
    return n;
}

// ---------------------------------------------------------------- operators

CalcNodeOper::CalcNodeOper(const char* name, CalcNode* left, CalcNode* right)
    : CalcNode(name), left(left), right(right) {}

CalcNodeOper::~CalcNodeOper() {
    delete left;
    delete right;
}

// The right operand first: in operators written one after the other the
// left operand holds the rest of the chain, the right one a single term.
int CalcNodeOper::constLevel() {
    int r = right ? right->constLevel() : -1;
    if (r == 0) return 0;
    int l = left ? left->constLevel() : -1;
    return minLevel(l, r);
}

bool CalcNodeOper::activates() { return (left && left->activates()) || (right && right->activates()); }

void CalcNodeOper::activate(bool force) {
    if (left) left->activate(force);
    if (right) right->activate(force);
}

CalcNode* CalcNodeOper::reduce() {
    if (CalcNode* folded = reduceConst()) return folded;
    reduceInPlace(left);
    reduceInPlace(right);
    return nullptr;
}

int CalcNodeOper::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                            bool leavesOnly) {
    int n = pushIfMatching(*this, out, namePattern, implementsName, leavesOnly);
    if (left) n += left->listNodes(out, namePattern, implementsName, leavesOnly);
    if (right) n += right->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeOper::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = pushIfType(*this, out, type);
    if (left) n += left->listNodes(out, type);
    if (right) n += right->listNodes(out, type);
    return n;
}

CalcNodeOperUnary::CalcNodeOperUnary(const char* name, CalcNode* operand) : CalcNode(name), operand(operand) {}

CalcNodeOperUnary::~CalcNodeOperUnary() { delete operand; }

int CalcNodeOperUnary::constLevel() { return operand ? operand->constLevel() : -1; }

bool CalcNodeOperUnary::activates() { return operand && operand->activates(); }

void CalcNodeOperUnary::activate(bool force) {
    if (operand) operand->activate(force);
}

CalcNode* CalcNodeOperUnary::reduce() {
    if (CalcNode* folded = reduceConst()) return folded;
    reduceInPlace(operand);
    return nullptr;
}

int CalcNodeOperUnary::listNodes(std::list<CalcNode*>& out, const char* namePattern, const char* implementsName,
                                 bool leavesOnly) {
    int n = pushIfMatching(*this, out, namePattern, implementsName, leavesOnly);
    if (operand) n += operand->listNodes(out, namePattern, implementsName, leavesOnly);
    return n;
}

int CalcNodeOperUnary::listNodes(std::list<CalcNode*>& out, Type type) {
    int n = pushIfType(*this, out, type);
    if (operand) n += operand->listNodes(out, type);
    return n;
}

}  // namespace zun
