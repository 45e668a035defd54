#include "dict/CalcNodeRef.h"

#include <cstring>
#include <memory>

#include "base/String.h"
#include "calc/CalcError.h"
#include "calc/CalcNodeFuncState.h"
#include "dict/CalcNodeRefArrayLookup.h"
#include "input/FileUtils.h"
#include "input/InputStream.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"

using zun::CalcNode;
using zun::RawBuffer;
using zun::String;

namespace vexa {

namespace {

using Args = zun::ObjAppendListP<CalcNode>;

bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

// Takes the nodes out of args into a new list, leaving args empty: a
// constructor that fails deletes the list it was given, and the caller must
// not delete the nodes a second time.
Args* moveArguments(Args* args) {
    auto* moved = new Args;
    for (long i = 0; i < args->count; ++i) *moved << args->data[i];
    static_cast<zun::ObjAppendList<CalcNode*>&>(*args).flush();
    return moved;
}

// exec asked of a field: the statement runs in the scope of the field, and
// the reference it was asked of, which the answer takes over, goes with it.
class CalcNodeExecOfRef : public zun::CalcNodeExec {
public:
    // field is taken over only once the node is made.
    CalcNodeExecOfRef(const char* name, Args* args, zun::CalcBinder* binder, CalcNode* field)
        : CalcNodeExec(name, args, binder), field(field) {}
    ~CalcNodeExecOfRef() override { delete field; }

private:
    CalcNode* field;
};

}  // namespace

// ---------------------------------------------------------------------------
// CalcNodeRef

CalcNodeRef::CalcNodeRef(const char* name, StructAlias* alias, int constLevel)
    : CalcNodeRef(name, alias, constLevel, nullptr) {}

CalcNodeRef::CalcNodeRef(const char* name, StructAlias* alias, int constLevel, Args* args)
    : CalcNodeFunc(name, args, 0, 1000000), constLevelValue(constLevel), alias(alias) {
    if (constLevel >= 0) return;
    try {
        *alias = alias->getChild(nullptr);
    } catch (...) {
        delete alias;
        this->alias = nullptr;
        throw;
    }
}

CalcNodeRef::~CalcNodeRef() {
    delete alias;
}

StructAlias* CalcNodeRef::getRef() { return alias; }

int CalcNodeRef::valType() {
    StructElem* target = alias->target;
    int type = target->getType();
    if (type == vexa::TypeUnion) type = target->getChild(nullptr)->getType();
    if (type >= vexa::TypeSChar && type <= vexa::TypeDate) return zun::ValNum;
    StructElem* e = alias->resolve();
    if (e->getTypeStr(alias->isFixedType(0) ? -1 : 0)[0] == 'a') return zun::ValNum;  // ASCII numbers
    if (type == vexa::TypeString || type == vexa::TypeAChar) return zun::ValStr;
    return zun::ValRaw;   // records, arrays and the rest are bytes
}

CalcNode* CalcNodeRef::implements(const char* what) {
    return what && same(what, "vexa::ref") ? this : nullptr;
}

CalcNode* CalcNodeRef::keyword(const char* word, zun::CalcNodeMem* via) {
    if (via) return nullptr;
    alias->setChild(word);
    return this;
}

CalcNode* CalcNodeRef::property(const char* name, zun::CalcNodeMem* via) {
    int row = CalcNodeRefProperty::rowOf(name);
    if (row < 0) return nullptr;
    CalcNode* object = via ? static_cast<CalcNode*>(new zun::CalcNodeLink(this)) : this;
    return new CalcNodeRefProperty(name, object, row);
}

CalcNode* CalcNodeRef::method(const char* name, Args* args, zun::CalcNodeMem* via) {
    if (!name) return nullptr;
    if (!via && same(name, "child")) {
        methodChild(args);
        return this;
    }
    if (!via && same(name, "exec")) return methodExec(name, args);
    if (!alias->resolve()->isAnArray()) return nullptr;
    // The subscript, and the searches of the array by value.
    static const struct {
        const char* name;
        char mode;   // 0: the subscript
    } arrayMethods[] = {{"operator::[]", 0}, {"lookup", '='}, {"minlookup", '-'}, {"maxlookup", '+'}};
    for (const auto& m : arrayMethods) {
        if (!same(name, m.name)) continue;
        // Asked through a variable, the method holds a link to the reference.
        std::unique_ptr<CalcNode> link(via ? new zun::CalcNodeLink(this) : nullptr);
        CalcNode* receiver = via ? link.get() : this;
        CalcNode* answer = m.mode ? static_cast<CalcNode*>(new CalcNodeRefArrayLookup(name, receiver, args, m.mode))
                                  : new CalcNodeRefArrayIndex(name, receiver, args);
        link.release();
        return answer;
    }
    return nullptr;
}

void CalcNodeRef::methodChild(Args* args) {
    if (!args) return;
    if (args->count != 1) throw zun::CalcErrorArgsTooMany("@child", 1);
    CalcNode* path = args->data[0];
    if (path->constLevel() >= 0)
        throw zun::CalcErrorFunctionCallInvalid("@child", "String constant expected as argument");
    alias->setChild(path->valStr().str());
    delete args;
}

CalcNode* CalcNodeRef::methodExec(const char* name, Args* args) {
    // The counts are checked here: a failure leaves args to the caller.
    checkArguments(name, args, 1, 2);
    zun::CalcBinder* binder = getRef()->getCalcBinder(nullptr, nullptr);
    Args* moved = moveArguments(args);
    CalcNode* answer = new CalcNodeExecOfRef(name, moved, binder, this);
    delete args;
    return answer;
}

double CalcNodeRef::valNum() {
    double v;
    return getRef()->resolve()->readDouble(v);
}

String CalcNodeRef::valStr() {
    String text("");
    return getRef()->resolve()->readString(text, 0);
}

long long CalcNodeRef::valInt() {
    long long v;
    return getRef()->resolve()->readSLLong(v);
}

RawBuffer& CalcNodeRef::valRaw(RawBuffer& buffer) {
    return getRef()->resolve()->readBuf(buffer, 1);
}

CalcNode* CalcNodeRef::reduce() {
    StructElem* target = alias->resolve();
    if (target->getType() >= vexa::TypeRecord || alias->level != 0) return nullptr;
    if (constLevel() >= 0) return nullptr;
    switch (valType()) {
    case zun::ValStr:
        return new zun::CalcNodeConst<String>("string constant", valStr());
    case zun::ValRaw:
        return new zun::CalcNodeConst<RawBuffer>("data constant", CalcNode::valRaw());
    default:
        return new zun::CalcNodeConst<double>("numeric constant", valNum());
    }
}

// ---------------------------------------------------------------------------
// CalcNodeRefArrayIndex

CalcNodeRefArrayIndex::CalcNodeRefArrayIndex(const char* name, CalcNode* receiver, Args* args)
    : CalcNodeRefArrayIndex(name, receiver, args, partsOf(name, receiver, args)) {}

CalcNodeRefArrayIndex::Parts CalcNodeRefArrayIndex::partsOf(const char* name, CalcNode* receiver, Args* args) {
    checkArguments(name, args, 1, 2);
    auto* array = static_cast<CalcNodeRef*>(receiver->implements("vexa::ref"));
    bool byName = args->data[0]->valType() == zun::ValStr;
    StructElem* element = array->getRef()->resolve()->getChild("#");
    return Parts{new StructAlias(*element), byName};
}

CalcNodeRefArrayIndex::CalcNodeRefArrayIndex(const char* name, CalcNode* receiver, Args* args, Parts parts)
    : CalcNodeRef(name, parts.element, 0, args),
      ref(static_cast<CalcNodeRef*>(receiver->implements("vexa::ref"))),
      byName(parts.byName) {
    *args << receiver;
    args->rotate(1);
}

StructAlias* CalcNodeRefArrayIndex::getRef() {
    StructElem* array = ref->getRef()->resolve();
    if (byName) {
        String index = arg(1)->valStr();
        array->getChild(index.str());
    } else {
        (*array)[static_cast<long>(truncate(arg(1)->valNum()))];
    }
    return alias;
}

CalcNode* CalcNodeRefArrayIndex::reduce() {
    for (long i = numArgs() - 1; i >= 1; --i) reduceInPlace(args->data[i]);
    return nullptr;
}

// ---------------------------------------------------------------------------
// CalcNodeRefProperty

namespace {

// The properties of a field; rows up to "filesize" are numbers.
const char* const propertyNames[] = {"size", "offset", "offset_next", "pos", "pos_next",
                                     "dim", "filesize", "type", "name", "filename"};

}  // namespace

CalcNodeRefProperty::CalcNodeRefProperty(const char* name, CalcNode* object, int propertyIndex)
    : CalcNodeProperty(name, nullptr, object, true), propertyIndex(propertyIndex) {}

int CalcNodeRefProperty::rowOf(const char* name) {
    if (!name) return -1;
    String lower(name);
    lower.lowercase();
    for (int row = 0; row <= RowFileName; ++row)
        if (lower == propertyNames[row]) return row;
    return -1;
}

int CalcNodeRefProperty::valType() { return propertyIndex <= RowFileSize ? zun::ValNum : zun::ValStr; }

CalcNodeRef& CalcNodeRefProperty::reference() {
    return *static_cast<CalcNodeRef*>(object->implements("vexa::ref"));
}

double CalcNodeRefProperty::number() {
    StructElem* e = reference().getRef()->resolve();
    switch (propertyIndex) {
    case RowSize:
        return static_cast<double>(e->getSize());
    case RowOffset:
        return static_cast<double>(e->getOffset());
    case RowOffsetNext:
        return static_cast<double>(e->checkedSum(e->getOffset(), e->getSize()));
    case RowPos:
        return static_cast<double>(e->getPos());
    case RowPosNext:
        return static_cast<double>(e->checkedSum(e->getPos(), e->getSize()));
    case RowDim:
        // An unbound array learns its count by walking to its end.
        if (e->isAnArray() && e->numElems() < 0) e->getSize();
        return static_cast<double>(e->numElems());
    case RowFileSize:
        return static_cast<double>(e->getBase()->input->size(e->getPos()));
    case RowType:
        return static_cast<double>(e->getType());
    default:
        return NaN();
    }
}

double CalcNodeRefProperty::valNum() { return number(); }

String CalcNodeRefProperty::valStr() {
    switch (propertyIndex) {
    case RowType: {
        StructAlias* a = reference().getRef();
        return a->getTypeStr(a->target->getStructLevel());
    }
    case RowName:
        return reference().getRef()->resolve()->elemName;
    case RowFileName: {
        StructElem* e = reference().alias->target;
        return zun::FileUtils::baseName(e->getBase()->input->name(e->getPos()), false);
    }
    default: {
        String text;
        text << number();
        return text;
    }
    }
}

}  // namespace vexa
