#include "struct/DepCell.h"

#include "struct/StructArray.h"
#include "struct/StructBase.h"

namespace vexa {

StructArray* DepCell::registerWith(StructArray* array) {
    if (!array) return nullptr;
    array->linkBack(array->getBase()->allocDep(*this));
    return array;
}

void DepCell::release() {
    if (root) root->removeDep(*this);
}

}  // namespace vexa
