#include "struct/StructAlias.h"

#include "dict/CalcBinder.h"
#include "dict/Dictionary.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructElem.h"

using zun::String;

namespace vexa {

namespace {

long activeIndexOf(StructElem* array) {
    return static_cast<StructArrayBase*>(array)->activeIndex;
}

String variableStructure(StructElem* unionElem) {
    String reason("alias cannot embbed variable structure \"");
    reason += unionElem->elemName;
    reason += '"';
    return reason;
}

}  // namespace

StructAlias::StructAlias(StructElem& e) : level(e.getStructLevel()), target(&e) {}

StructAlias::StructAlias(StructElem& e, const char* path) : level(e.getStructLevel()), target(&e) {
    setChild(path);
}

StructAlias::StructAlias(unsigned char level, StructElem& e) : level(level), target(&e) {}

StructAlias::StructAlias(StructElem& e, int depth) : target(&e) {
    int own = e.getStructLevel();
    int steps;
    if (depth < 0) {
        level = static_cast<unsigned char>(own + depth);
        steps = -depth;
    } else {
        level = static_cast<unsigned char>(depth);
        steps = own - depth;
    }
    StructElem* p = e.parent;
    while (p && steps > 0) {
        if (p->isSeenThrough()) {
            if (!p->isFixedType(0) && level > 1)
                throw ErrorAliasInvalid(e.getPathName(level).str(), variableStructure(p).str());
        } else {
            if (p->isAnArray()) {
                arrays << p;
                indices << activeIndexOf(p);
            }
            --steps;
        }
        p = p->parent;
    }
    arrays.reverse();
    indices.reverse();
}

StructElem* StructAlias::resolve() const {
    for (long i = 0; i < arrays.count; ++i) {
        if (static_cast<int>(indices.data[i]) >= 0) (*arrays.data[i])[indices.data[i]];
        else arrays.data[i]->numElems();
    }
    return target;
}

void StructAlias::setChild(const char* path) {
    String head;
    int used = path ? Dictionary::getStructField(path, head) : 0;
    if (!path) head = "";
    if (!head.isEmpty() && target->isSeenThrough() && !target->isFixedType(0)) {
        StructElem* first = arrays.count > 0 ? arrays.data[0] : target;
        if (first->getParentArray(0)) {
            String where = target->getPathName(level);
            where += '.';
            where += path;
            throw ErrorAliasInvalid(where.str(), variableStructure(target).str());
        }
    }
    StructElem* c = target->getChild(head.str());
    if (c != target) {
        if (target->getUnit().cmp("@", 1) == 0) {
            arrays << target;
            indices << -1L;
        } else if (target->isAnArray()) {
            arrays << target;
            indices << activeIndexOf(target);
        }
        target = c;
    }
    if (path && path[used]) setChild(path + used);
}

StructAlias StructAlias::getChild(const char* path) const {
    StructAlias copy(*this);
    copy.setChild(path);
    return copy;
}

StructAlias StructAlias::getParent() const {
    if (!target->parent) throw ErrorNoParent();
    StructAlias copy(*this);
    copy.target = target->parent;
    if (!copy.target->isSeenThrough()) --copy.level;
    if (copy.arrays.count > 0 && copy.target->isAnArray()) {
        copy.arrays.del(1);
        copy.indices.del(1);
    }
    return copy;
}

StructAlias StructAlias::getField(StructElem& e) const {
    StructAlias copy(*this);
    if (target->isAnArray()) {
        copy.arrays << target;
        copy.indices << activeIndexOf(target);
    }
    copy.target = &e;
    return copy;
}

StructAlias StructAlias::getField(long i) const {
    StructElem& e = (*target)[i];
    return getField(e);
}

bool StructAlias::isFixedType(int l) const {
    return (arrays.count > 0 ? arrays.data[0] : target)->isFixedType(l);
}

bool StructAlias::isFixedSize(int l) const {
    int s = resolve()->getSizeType();
    if (s == 255) return false;
    if (s <= l) return true;
    if (arrays.count == 0) return false;
    return level < l;
}

String StructAlias::getTypeStr(int l) const {
    StructElem* e = resolve();
    return isFixedType(l) ? e->getTypeStr(255) : e->getTypeStr(l);
}

long& StructAlias::readRef(long& value) const {
    return resolve()->readSLong(value);
}

long StructAlias::childList(const char* pattern, bool expand, zun::ObjAppendListP<StructAlias>& out) const {
    StructElem* e = resolve();
    if (!pattern || !*pattern) {
        if (expand && e->explodes()) return childList("*", true, out);
        if (expand && e->isSeenThrough() && e->getChild(nullptr)->explodes())
            return getChild(nullptr).childList("*", true, out);
        out << new StructAlias(*this);
        return 1;
    }
    String head;
    int used = Dictionary::getStructField(pattern, head);
    const char* rest = pattern + used;
    long before = out.count;
    if (e->isSeenThrough() || e->isAnArray() || head[0] == '#') {
        getChild(head.str()).childList(rest, expand, out);
        return out.count - before;
    }
    long n = e->numElems();
    for (long i = 0; i < n; ++i) {
        StructElem* m = (*e)[i].matchesName(head.str());
        if (m) getField(*m).childList(rest, expand, out);
    }
    return out.count - before;
}

zun::CalcBinder* StructAlias::getCalcBinder(const char* symbolPrefix, const char* functionPrefix) const {
    return new CalcBinder(*this, symbolPrefix, functionPrefix);
}

}  // namespace vexa
