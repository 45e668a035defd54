#include "struct/StructIndexMap.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <utility>

#include "base/Exception.h"
#include "calc/CalcParser.h"
#include "dict/CalcBinder.h"
#include "struct/ArrayReader.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"

using zun::ObjAppendList;
using zun::ObjAppendListP;
using zun::quoted;
using zun::String;

namespace vexa {

namespace {

// The words of a comma-separated list, each trimmed, up to the first empty
// one.
ObjAppendList<String> splitList(const char* text) {
    ObjAppendList<String> words;
    String list(text ? text : "");
    for (int i = 0;; ++i) {
        String word = list.word(i, ',');
        if (word.isNull()) break;
        word.trim(0);
        if (word.isEmpty()) break;
        words << word;
    }
    return words;
}

// Appends a new reader to the list, which owns it.
ArrayReader& add(ObjAppendListP<ArrayReader>& readers, std::unique_ptr<ArrayReader> reader) {
    readers << reader.get();
    return *reader.release();
}

}  // namespace

// ---------------------------------------------------------------------------
// StructIndexMap

StructIndexMap::StructIndexMap(StructElem* prev, StructElem* parent, const char* name)
    : StructIndexArray(prev, parent, name) {
    mapDirty.registerWith(getParentArray(0));
}

long StructIndexMap::lengthLimit(long indicesRead) {
    const long perIndex = 16;
    if (indicesRead > leastLimit / perIndex) return indicesRead > LONG_MAX / perIndex ? LONG_MAX : indicesRead * perIndex;
    return leastLimit;
}

void StructIndexMap::checkLength(long length, long indicesRead, const char* what, long value) const {
    long limit = lengthLimit(indicesRead);
    if (length >= 0 && length <= limit) return;
    String text = "IndexMap " + quoted(getPathName()) + " " + what + " ";
    text << value;
    text += " is too large (the map may hold ";
    text << limit;
    text += " indices)";
    throw ErrorValueRange(text.str());
}

void StructIndexMap::init() {
    // A statement of the build that reaches the map (directly, or through an
    // enclosing array whose moves mark it stale) sees it as it stands.
    if (mapDirty == 0 || building) return;
    mapDirty = 0;
    map.flush(true);
    String path = getPathName();  // where the map stands before the build moves anything
    // After a failure the map is empty and stale: the next request meets the same error.
    auto forget = [this] {
        building = false;
        map.flush(true);
        mapDirty = 1;
    };
    auto failure = [&](const zun::Exception& cause) {
        forget();
        String text = "error while initialising IndexMap " + quoted(path);
        ErrorDictionary error(getDictionaryPath().str(), text.str());
        error.chain(cause);
        return error;
    };
    building = true;
    try {
        build();
    } catch (zun::Exception& e) {
        throw failure(e);
    } catch (zun::String& text) {
        // A failure of the dictionary stage met on the way (an element made
        // while the arrays are read): an error of this map like the others.
        throw failure(ErrorDictionary(getDictionaryPath().str(), text.str()));
    } catch (...) {
        forget();
        throw;
    }
    building = false;
    map.end();
    // The build may have moved an enclosing array and put it back: the map
    // stands for the place where it was built.
    mapDirty = 0;
}

long StructIndexMap::numElems() {
    init();
    return map.count / width;
}

String StructIndexMap::getTypeStr(int level) {
    return "(*" + element->getTypeStr(level) + ")";
}

long StructIndexMap::indexAt(long i) {
    numElems();
    if (i < 0 || i >= map.count) throw ErrorArrayIndexOverflow(getPathName().str());
    return map.data[i];
}

long& StructIndexMapIdx1::read(long& v) {
    v = owner.indexAt(owner.activeIndex);
    return v;
}

StructIndexMapDims::StructIndexMapDims(StructIndexMap& owner, const char* name, long dimCount)
    : StructIndexArray(nullptr, &owner, name), dimCount(dimCount) {
    element = new StructIndexMapIdx2(*this, owner);
}

String StructIndexMapDims::getTypeStr(int level) {
    String text("(");
    text << dimCount;
    return text + "*" + element->getTypeStr(level) + ")";
}

long& StructIndexMapIdx2::read(long& v) {
    long entry = owner.activeIndex;
    long within = dims.activeIndex;
    if (entry < 0 || within < 0 || within >= dims.dimCount || entry > (LONG_MAX - within) / dims.dimCount)
        throw ErrorArrayIndexOverflow(owner.getPathName().str());
    v = owner.indexAt(entry * dims.dimCount + within);
    return v;
}

// ---------------------------------------------------------------------------
// StructSelectMap

StructSelectMap::StructSelectMap(StructElem* prev, StructElem* parent, const char* name, const char* referenceList,
                                 const char* statement)
    : StructIndexMap(prev, parent, name), references(splitList(referenceList)), selection(statement) {
    if (references.count == 0) {
        String text = "SelectMap array reference list is invalid " + quoted(referenceList ? referenceList : "");
        throw ErrorDictionary(parent ? parent->getDictionaryPath().str() : "", text.str());
    }
    width = references.count;
    if (width == 1) element = new StructIndexMapIdx1(*this, "0");
    else element = new StructIndexMapDims(*this, "0", width);
}

bool StructSelectMap::nextCombination(ObjAppendListP<ArrayReader>& readers, long level, bool first) {
    bool step = !first;
    for (;;) {
        ArrayReader& reader = readers[level];
        bool ready;
        if (step) {
            reader += 1;
            ready = reader.row >= 0;
        } else {
            ready = (reader = 0);
        }
        if (!ready) {
            if (level == 0) return false;
            --level;
            step = true;
            continue;
        }
        if (level == readers.count - 1) return true;
        ++level;
        step = false;
    }
}

namespace {

// A combination kept for the sort: its key and where its copies stand in
// the map as read.
struct Keyed {
    double key;
    long first;   // index of its first copy's first index
    long length;  // indices of all its copies
};

// Ascending keys; NaN, which has no place among numbers, after all of them.
// The order is total, so that the stable sort keeps equal keys (NaN among
// them) in the order they were read.
bool keyBefore(const Keyed& a, const Keyed& b) {
    if (std::isnan(a.key)) return false;
    if (std::isnan(b.key)) return true;
    return a.key < b.key;
}

}  // namespace

void StructSelectMap::build() {
    ObjAppendListP<ArrayReader> readers;
    int up = 0;
    std::unique_ptr<StructAlias> ref(getRef(references[0].str(), up, true));
    StructElem* array = ref->resolve();
    if (!array->isAnArray()) {
        String text = "SelectMap reference " + quoted(references[0]) + " is not an array";
        throw ErrorDictionary(getDictionaryPath().str(), text.str());
    }
    add(readers, std::make_unique<ArrayReader>(*array));
    for (long i = 1; i < references.count; ++i) {
        try {
            add(readers, std::make_unique<ArrayReader>(readers[i - 1], references[i].str()));
        } catch (ErrorArrayReader&) {
            String text = "SelectMap inner reference " + quoted(references[i]) + " is not an array";
            throw ErrorDictionary(getDictionaryPath().str(), text.str());
        }
    }
    ArrayReader& outer = readers[0];
    long remembered = outer.activeIndex();
    if (!nextCombination(readers, 0, true)) {
        // No combination: the arrays may have been moved looking for one.
        if (remembered != outer.activeIndex()) outer = remembered;
        return;
    }

    // The statement is bound once, below the element of the innermost array.
    StructElem* e = readers[readers.count - 1].getElement();
    zun::CalcParser parser(selection.str(), new CalcBinder(StructAlias(e->getStructLevel(), *e), "", nullptr));
    zun::CalcNode* sort = parser.getVar("sort");

    long last = readers.count - 1;
    long visited = 0;          // indices of one copy of each combination so far
    std::vector<Keyed> keyed;  // with a sort: one entry per kept combination
    do {
        visited += width;
        parser.reset();  // the assignments and the result
        long long count = parser.valInt();
        if (count < 1) continue;
        if (count > lengthLimit(visited) / width) checkLength(-1, visited, "repeat count", static_cast<long>(count));
        long length = static_cast<long>(count) * width;
        checkLength(map.count + length, visited, "length", map.count + length);
        if (sort) keyed.push_back({sort->valNum(), map.count, length});
        map.allocate(length);
        for (long copy = 0; copy < count; ++copy)
            for (long i = 0; i <= last; ++i) map << readers[i].row;
    } while (nextCombination(readers, last, false));

    if (!keyed.empty()) {
        std::stable_sort(keyed.begin(), keyed.end(), keyBefore);
        ObjAppendList<long> sorted;
        sorted.allocate(map.count);
        for (const Keyed& k : keyed) sorted.append(k.length, map.data + k.first);
        map = std::move(sorted);
    }
    outer = remembered;
}

// ---------------------------------------------------------------------------
// StructInverseMap

StructInverseMap::StructInverseMap(StructElem* prev, StructElem* parent, const char* name, const char* arrayRef,
                                   const char* fieldList)
    : StructIndexMap(prev, parent, name), arrayRef(arrayRef), fieldList(fieldList) {
    element = new StructIndexMapIdx1(*this, "0");
}

void StructInverseMap::build() {
    int up = 0;
    std::unique_ptr<StructAlias> ref(getRef(arrayRef.str(), up, true));
    StructElem* array = ref->resolve();
    if (!array->isAnArray()) {
        String text = "IndexMap reference " + quoted(arrayRef) + " is not an array";
        throw ErrorDictionary(getDictionaryPath().str(), text.str());
    }
    ArrayReader r(*array);
    long remembered = r.activeIndex();

    ObjAppendListP<ArrayReader> inner;
    ObjAppendList<String> words = splitList(fieldList.str());
    for (long i = 0; i < words.count; ++i) {
        const String& word = words[i];
        ArrayReader* reader = &r;
        String column = word;
        if (word.match("*+*")) {
            int plus = word.find('+');
            String name = plus > 0 ? word.substr(0, plus - 1) : String("");
            reader = &add(inner, std::make_unique<ArrayReader>(r, name.str()));
            column = word.substr(plus + 1);
        }
        long before = reader->columns.count;
        *reader << column.str();
        // A column that names nothing would leave the map silently short.
        if (reader->columns.count == before) {
            String text = "InverseMap column " + quoted(word) + " names no field";
            throw ErrorDictionary(getDictionaryPath().str(), text.str());
        }
    }
    if (words.count == 0) r << nullptr;

    // (value, row) as read; the map is made once the largest value is known.
    std::vector<std::pair<long, long>> found;
    long largest = -1;
    long read = 0;
    ObjAppendList<long> values;
    auto readColumns = [&](ArrayReader& reader) {
        for (long c = 0; c < reader.columns.count; ++c) reader.getNextColumn()->resolve()->readSLongA(values);
    };
    for (r = 0; r.row >= 0; r += 1) {
        values.flush();
        readColumns(r);
        for (long i = 0; i < inner.count; ++i) {
            ArrayReader& in = inner[i];
            for (in = 0; in.row >= 0; in += 1) readColumns(in);
        }
        read += values.count;
        for (long i = 0; i < values.count; ++i) {
            long v = values.data[i];
            if (v < 0) continue;
            found.emplace_back(v, r.row);
            if (v > largest) largest = v;
        }
    }
    if (largest >= 0) {
        checkLength(largest < LONG_MAX ? largest + 1 : -1, read, "value", largest);
        map.allocate(largest + 1);
        for (long i = 0; i <= largest; ++i) map << -1;
        // A later row overwrites an earlier one at the same value.
        for (const auto& f : found) map.data[f.first] = f.second;
    }
    r = remembered;
}

}  // namespace vexa
