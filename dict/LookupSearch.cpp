#include "dict/LookupSearch.h"

#include "struct/ArrayReader.h"
#include "struct/Error.h"
#include "struct/StructArray.h"

using zun::String;
using zun::quoted;

namespace vexa {

bool LookupSearch::step(ArrayReader& reader) {
    if (reader.numRows() < 0 && reader.getElement()->getSize() <= 0) {
        String text = "unbound array " + quoted(reader.readerArray->getPathName()) + " has elements of size 0";
        throw ErrorValueRange(text.str());
    }
    reader += 1;
    return reader.row >= 0;
}

}  // namespace vexa
