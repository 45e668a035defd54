#include "dict/CalcBinder.h"

#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"

namespace vexa {

CalcBinder::CalcBinder(const StructAlias& alias, const char* symbolPrefix, const char* functionPrefix)
    : alias(alias), symbolPrefix(symbolPrefix), functionPrefix(functionPrefix) {}

zun::CalcNode* CalcBinder::bindSymbol(const char* name) {
    if (!name || name[0] != '#') {
        // Field references come with the expression nodes of the tree.
        return nullptr;
    }
    StructElem* anchor = alias.arrays.count > 0 ? alias.arrays.data[0] : alias.target;
    if (StructBase* root = anchor->getBase())
        if (zun::CalcNode* node = root->parameters.bindSymbol(name)) return node;
    return StructBase::globalParameters().bindSymbol(name);
}

zun::CalcIterator* CalcBinder::bindIterator(int level) {
    alias.resolve();
    return new CalcArrayIterator(level, alias.target);
}

zun::CalcNode* CalcBinder::bindFunction(const char* /*name*/, zun::ObjAppendListP<zun::CalcNode>* /*args*/) {
    return nullptr;
}

// ---------------------------------------------------------------------------

CalcArrayIterator::CalcArrayIterator(int level, StructElem* element) : zun::CalcIterator(level), array(nullptr) {
    if (level < 0) {
        if (element->parent) array = element;
        return;
    }
    if (!element->parent) throw ErrorNoParent();
    int left = level;
    for (StructElem* p = element->parent; p && p->parent; p = p->parent) {
        if (!p->isAnArray()) continue;
        if (left == 0) {
            array = p;
            return;
        }
        --left;
    }
}

long CalcArrayIterator::count() {
    return array ? array->numElems() : 0;
}

long CalcArrayIterator::getIndex() {
    if (!array || !array->isAnArray()) return 0;
    return static_cast<StructArrayBase*>(array)->activeIndex;
}

void CalcArrayIterator::setIndex(long i) {
    if (array) (*array)[i];
}

}  // namespace vexa
