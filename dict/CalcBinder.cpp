#include "dict/CalcBinder.h"

#include <cstring>
#include <memory>

#include "dict/CalcNodeFuncArrayIndex.h"
#include "dict/CalcNodeFuncArrayLookup.h"
#include "dict/CalcNodeRef.h"

#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "struct/StructElem.h"

namespace vexa {

CalcBinder::CalcBinder(const StructAlias& alias, const char* symbolPrefix, const char* functionPrefix)
    : alias(alias), symbolPrefix(symbolPrefix), functionPrefix(functionPrefix) {}

namespace {

// Whether an array encloses e: references from e then move with it.
bool hasParentArray(const StructElem* e) {
    for (const StructElem* p = e->parent; p; p = p->parent)
        if (p->isAnArray()) return true;
    return false;
}

}  // namespace

zun::CalcNode* CalcBinder::bindSymbol(const char* name) {
    StructElem* anchor = alias.arrays.count > 0 ? alias.arrays.data[0] : alias.target;
    bool moves = hasParentArray(anchor);
    if (!name) return new CalcNodeRef("", new StructAlias(alias), moves ? 0 : -1);
    if (name[0] == '#') {
        // A parameter of the file, then a global one; never a field.
        if (StructBase* root = anchor->getBase())
            if (zun::CalcNode* node = root->parameters.bindSymbol(name)) return node;
        return StructBase::globalParameters().bindSymbol(name);
    }
    // A name that can't be resolved counts as unknown: the parser reports it.
    try {
        if (symbolPrefix.length == 0) {
            // A dictionary statement (null prefix) looks from the element's
            // parent, a statement bound to a record (empty prefix) from the
            // record itself.
            int up = 0;
            std::unique_ptr<StructAlias> ref(alias.resolve()->getRef(name, up, symbolPrefix.isNull()));
            return new CalcNodeRef(name, ref.release(), moves ? up : -1);
        }
        if (std::strncmp(name, symbolPrefix.str(), symbolPrefix.length) != 0) return nullptr;
        const char* rest = name + symbolPrefix.length;
        std::unique_ptr<StructAlias> ref(new StructAlias(alias));
        if (!*rest || std::strcmp(rest, "#") == 0) return new CalcNodeRef(name, ref.release(), 0);
        ref->setChild(rest);
        return new CalcNodeRef(name, ref.release(), moves ? 0 : -1);
    } catch (Error&) {
        return nullptr;
    }
}

zun::CalcIterator* CalcBinder::bindIterator(int level) {
    alias.resolve();
    return new CalcArrayIterator(level, alias.target);
}

zun::CalcNode* CalcBinder::bindFunction(const char* name, zun::ObjAppendListP<zun::CalcNode>* args) {
    if (!name) return nullptr;
    if (functionPrefix.length > 0) {
        if (std::strncmp(name, functionPrefix.str(), functionPrefix.length) != 0) return nullptr;
        name += functionPrefix.length;
    }
    // The array functions; any other name goes on to the parser's own table.
    if (std::strcmp(name, "aread") == 0) return new CalcNodeFuncArrayIndex(name, args);
    static const struct {
        const char* name;
        char mode;
    } lookups[] = {{"alookup", '='}, {"aminlookup", '-'}, {"amaxlookup", '+'}};
    for (const auto& l : lookups)
        if (std::strcmp(name, l.name) == 0) return new CalcNodeFuncArrayLookup(name, args, l.mode);
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
