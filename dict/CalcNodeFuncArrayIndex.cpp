#include "dict/CalcNodeFuncArrayIndex.h"

#include "dict/CalcNodeRef.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"
#include "struct/StructElem.h"

using zun::CalcNode;
using zun::String;

namespace vexa {

namespace {

using Args = zun::ObjAppendListP<CalcNode>;

}  // namespace

CalcNodeRef* arrayReferenceArgument(Args* args) {
    CalcNode* a = args->data[1];
    CalcNode* ref = a->nodeType() == CalcNode::TypeRef ? a->implements("vexa::ref") : nullptr;
    if (!ref) throw String("VEXA array reference expected as second argument");
    return static_cast<CalcNodeRef*>(ref);
}

StructElem* arrayOfReference(CalcNodeRef* ref, const char* what, const char* tail) {
    StructElem* array = ref->getRef()->resolve();
    if (!array->isAnArray()) throw String(what) + zun::quoted(ref->name) + tail;
    return array;
}

String takeConstantText(Args* args, const char* message) {
    CalcNode* last = args->data[args->count - 1];
    if (last->constLevel() >= 0) throw String(message);
    String text = last->valStr();
    args->del(1);   // deletes it
    return text;
}

CalcNodeFuncArrayIndex::CalcNodeFuncArrayIndex(const char* name, Args* args)
    : CalcNodeFunc(name, args, 2, 3), byName(false) {
    StructElem* array = arrayOfReference(arrayReferenceArgument(args), "index array reference ",
                                         " is not an array structure");
    String field("");
    if (args->count == 3) field = takeConstantText(args, "String constant expected as array field name in third argument");
    // The element itself, not moved: it stands wherever the array does.
    StructElem* element = array->getChild("#");
    *args << new CalcNodeRef("array element", new StructAlias(*element, field.str()), 0);
    byName = arg(0)->valType() == zun::ValStr;
}

StructElem* CalcNodeFuncArrayIndex::getElem() {
    StructElem* array = static_cast<CalcNodeRef*>(arg(1))->getRef()->resolve();
    if (byName) {
        String index = arg(0)->valStr();
        // An empty path would name the array itself, wherever it stands.
        if (index.length == 0) throw ErrorArrayIndexInvalid(array->getPathName().str(), "");
        return array->getChild(index.str());
    }
    return &(*array)[static_cast<long>(truncate(arg(0)->valNum()))];
}

int CalcNodeFuncArrayIndex::valType() { return arg(2)->valType(); }

double CalcNodeFuncArrayIndex::valNum() {
    getElem();
    return arg(2)->valNum();
}

String CalcNodeFuncArrayIndex::valStr() {
    getElem();
    return arg(2)->valStr();
}

long long CalcNodeFuncArrayIndex::valInt() {
    getElem();
    return arg(2)->valInt();
}

zun::RawBuffer& CalcNodeFuncArrayIndex::valRaw(zun::RawBuffer& buffer) {
    getElem();
    return arg(2)->valRaw(buffer);
}

}  // namespace vexa
