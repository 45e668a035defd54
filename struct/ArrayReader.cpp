#include "struct/ArrayReader.h"

#include "dict/File.h"
#include "struct/StructBase.h"
#include "struct/Error.h"
#include "struct/StructArray.h"

using zun::quoted;
using zun::String;

namespace vexa {

ArrayReader::ArrayReader(StructElem& array) {
    init(array.getChild(nullptr), array.getPathName().str());
}

ArrayReader::ArrayReader(File& file, const char* name) {
    init(file.getRoot().getChild(name)->getChild(nullptr), name);
}

ArrayReader::ArrayReader(ArrayReader& outer, const char* name) {
    StructElem* inner = outer.readerArray->getChild("#")->getChild(name)->getChild(nullptr);
    init(inner, name);
    StructElem* e = readerArray->element;
    if (e->explodes()) {
        columns.setTruncSize(10);
    } else {
        columns << new StructAlias(*e);
    }
}

void ArrayReader::init(StructElem* array, const char* name) {
    if (!array->isAnArray()) {
        String text = "structure " + quoted(name) + " is not an array";
        throw ErrorArrayReader(text.str());
    }
    readerArray = static_cast<StructArrayBase*>(array);
    columns.setTruncSize(readerArray->element->explodes() ? 10 : 1);
}

String ArrayReader::arrayPath() const {
    return quoted(readerArray->getPathName());
}

long ArrayReader::numRows() {
    return readerArray->numElems();
}

StructElem* ArrayReader::getElement() {
    return readerArray->element;
}

long ArrayReader::activeIndex() const {
    return readerArray->activeIndex;
}

bool ArrayReader::operator=(long i) {
    long n = readerArray->numElems();
    if (i < 0 || (n >= 0 && i >= n)) {
        row = -1;
        return false;
    }
    columnPos = -1;
    if (n < 0) {
        try {
            readerArray->getElement(i);
        } catch (ErrorArrayIndexOverflow&) {
            row = -1;
            return false;
        }
    } else {
        readerArray->getElement(i);
    }
    row = readerArray->activeIndex;
    return true;
}

ArrayReader& ArrayReader::operator+=(long n) {
    if (row < 0) {
        String text = "reader for array " + arrayPath() + " not ready - cannot read array element";
        throw ErrorArrayReader(text.str());
    }
    try {
        if (row == readerArray->activeIndex) readerArray->getNextElement(n);
        else readerArray->getElement(row + n);
    } catch (ErrorArrayIndexOverflow&) {
        row = -1;
        return *this;
    } catch (ErrorArrayIndexUnderflow&) {
        row = -1;
        return *this;
    }
    row += n;
    columnPos = -1;
    return *this;
}

ArrayReader& ArrayReader::operator<<(const char* pattern) {
    StructElem* e = readerArray->element;
    if (pattern && String(pattern) == "*") {
        // The element of a multi-dimensional array is an array: a row is that
        // inner array, whole; "*" is no index of it.
        if (e->isAnArray() || e->childList("*", expand, columns) == 0) e->childList(nullptr, expand, columns);
    } else {
        StructAlias(e->getStructLevel(), *e).childList(pattern, expand, columns);
    }
    return *this;
}

StructAlias* ArrayReader::getNextColumn() {
    if (columns.count == 0) {
        String text = "cannot read column from reader of array " + arrayPath() + " - no column defined";
        throw ErrorArrayReader(text.str());
    }
    if (row < 0) {
        String text = "reader of array " + arrayPath() + " not ready - cannot read array element";
        throw ErrorArrayReader(text.str());
    }
    if (row != readerArray->activeIndex) readerArray->getElement(row);
    if (++columnPos >= columns.count) {
        readerArray->getNextElement(1);
        columnPos = 0;
    }
    return columns.data[columnPos];
}

ArrayReader& ArrayReader::operator>>(String& value) {
    getNextColumn()->resolve()->readString(value, 0);
    return *this;
}

ArrayReader& ArrayReader::operator>>(double& value) {
    getNextColumn()->resolve()->readDouble(value);
    return *this;
}

}  // namespace vexa
