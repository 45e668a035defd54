#include "tool/ReadBase.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>
#include <ostream>
#include <string>

#include "base/Exception.h"
#include "base/RawBuffer.h"
#include "struct/ArrayReader.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "input/InputStream.h"
#include "struct/Error.h"
#include "struct/StructAlias.h"
#include "struct/StructElem.h"
#include "struct/TextSink.h"
#include "tool/MainError.h"

using zun::ObjAppendListP;
using zun::String;
using vexa::StructAlias;
using vexa::StructElem;

namespace {

// The text output: one line at a time, composed here and written into the
// output buffer whole. The line keeps its room from line to line.
class Line {
public:
    void clear() { used = 0; }
    const char* data() const { return text.get(); }
    size_t size() const { return used; }
    void put(char c) {
        if (used == room) grow(1);
        text[used++] = c;
    }
    void write(const char* s, size_t n) {
        if (n > room - used) grow(n);
        std::memcpy(text.get() + used, s, n);
        used += n;
    }
    Line& append(const char* s) {
        write(s, std::strlen(s));
        return *this;
    }
    Line& append(const String& s) {
        if (s.text) write(s.text, static_cast<size_t>(s.length));
        return *this;
    }
    Line& assign(const char* s) {
        clear();
        return append(s);
    }
    // Into the output buffer; a write that the buffer made on the way and
    // that failed ends the run.
    void flush() {
        errno = 0;
        fwrite_unlocked(text.get(), 1, used, stdout);
        used = 0;
        if (std::ferror(stdout)) flushOutput();
    }
    // The same without a word on failure: for the part of a line before an
    // error, which is the one to report.
    void spill() {
        fwrite_unlocked(text.get(), 1, used, stdout);
        used = 0;
    }

private:
    std::unique_ptr<char[]> text;
    size_t used = 0, room = 0;

    void grow(size_t n) {
        size_t wanted = room * 2 > used + n ? room * 2 : used + n + 256;
        std::unique_ptr<char[]> bigger(new char[wanted]);
        if (used) std::memcpy(bigger.get(), text.get(), used);
        text.swap(bigger);
        room = wanted;
    }
};

Line line;

void writeLine() {
    line.put('\n');
    line.flush();
}

// The value texts go into the line as they are made; a line that grows long
// (a whole array) is passed on in pieces, so that it needn't be held whole.
class LineSink : public vexa::TextSink {
public:
    void write(const char* text, size_t n) override {
        line.write(text, n);
        if (line.size() >= (1u << 20)) line.flush();
    }
};

// The position as "%.*ld> " writes it: at least width digits, zeros in front.
void appendPosition(long pos, int width) {
    char digits[24];
    char* end = digits + sizeof digits;
    char* p = end;
    unsigned long v = pos < 0 ? 0UL - static_cast<unsigned long>(pos) : static_cast<unsigned long>(pos);
    do {
        *--p = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v);
    if (pos < 0) line.put('-');
    for (long n = end - p; n < width; ++n) line.put('0');
    line.write(p, static_cast<size_t>(end - p));
    line.write("> ", 2);
}

void warnNoMatch(const String& pattern) {
    fflush(stdout);
    MainError(0, (pattern + " no match found").str()).log("WARNING-");
}

// An array whose element (as it stands, behind a union or link) is a record.
bool isRecordArray(StructElem& e) {
    if (!e.isAnArray()) return false;
    StructElem* element = e.getChild("#")->getChild(nullptr);
    return element->explodes();
}

// The structure level at which the fields below e are selected.
int selectionLevel(StructElem& e) {
    if (!e.parent) return 0;
    return e.getStructLevel() + (e.parent->isSeenThrough() ? 0 : 1);
}

// Matches each pattern below element; warns about those that match nothing.
void selectFields(StructElem& element, const FieldList& fields, ObjAppendListP<StructAlias>& aliases) {
    StructAlias anchor(static_cast<unsigned char>(selectionLevel(element)), element);
    for (long i = 0; i < fields.count; ++i)
        if (anchor.childList(fields[i].str(), false, aliases) == 0) warnNoMatch(fields[i]);
}

// Prints the targets of a selection: arrays of records as their successive
// records, anything else as one element.
void printSelection(ObjAppendListP<StructAlias>& aliases, BinOutput* bin, const char* xopt, bool explode,
                    bool compress, int width) {
    for (long i = 0; i < aliases.count; ++i) {
        StructAlias positioned = aliases[i].getChild(nullptr);
        StructElem* target = positioned.resolve();
        if (isRecordArray(*target)) {
            if (explode) {
                read_base(*target, FieldList(), bin, xopt, explode, compress, width, 0, -1, 1);
            } else {
                auto& records = static_cast<vexa::StructArrayBase&>(*target);
                for (long k = 0, n = records.countElems(); k < n; ++k)
                    print_element(records[k], bin, false, xopt, compress, width);
            }
        } else {
            print_element(*target, bin, explode, xopt, compress, width);
        }
    }
}

}  // namespace

BinOutput::~BinOutput() {
    if (owned) delete out;
}

void BinOutput::write(const char* bytes, long n) {
    if (!out) {
        auto* file = new std::ofstream(name.str(), std::ios::binary | std::ios::trunc);
        if (!file->is_open()) {
            delete file;
            throw zun::StdError((String("Error opening the binary output '") + name + "'").str());
        }
        out = file;
        owned = true;
        line.assign("Binary output to: ").append(name);
        writeLine();
    }
    errno = 0;
    if (out == &std::cout) {
        // Standard output: straight into its buffer, as the text lines go.
        fwrite_unlocked(bytes, 1, static_cast<size_t>(n), stdout);
        if (std::ferror(stdout)) flushOutput();
        return;
    }
    out->write(bytes, n);
    if (name.isNull()) {
        if (!*out || std::ferror(stdout)) flushOutput();
        return;
    }
    if (!*out) {
        int code = errno ? errno : EIO;
        errno = 0;
        throw zun::StdError((String("write error on the binary output '") + name + "'").str(), code);
    }
}

namespace {

// One row of an array: each column's element, positioned, then printed.
void printRow(vexa::ArrayReader& reader, BinOutput* bin, const char* xopt, bool explode, bool compress, int width) {
    for (long c = 0; c < reader.columns.count; ++c) {
        StructAlias* column = reader.getNextColumn();
        print_element(*column->resolve(), bin, explode, xopt, compress, width);
    }
}

// The bytes of the columns of rows first..last, for a table whose rows lie
// back to back with one layout: read in blocks of rows and copied out, the
// same bytes the rows would give one by one. False, with nothing written,
// where that doesn't hold (a column that moves within the row, a union or
// an array on its way, a pipe, rows the data doesn't hold).
bool writeColumnsInBlocks(vexa::ArrayReader& reader, BinOutput* bin, long first, long last) {
    vexa::StructArrayBase& array = *reader.readerArray;
    long rows = array.numElems();
    long stride = array.fixedStride();
    if (stride <= 0 || rows <= first) return false;
    long lastRow = last < 0 || last >= rows ? rows - 1 : last;
    if (lastRow < first) return false;
    StructElem* e = array.getElement(first);
    long base = e->getPos();
    unsigned char level = array.getStructLevel();
    struct Column {
        long at, size;
    };
    std::vector<Column> columns;
    for (long c = 0; c < reader.columns.count; ++c) {
        StructElem* x = reader.columns[c].resolve();
        if (x->isVirtual()) return false;
        for (StructElem* p = x; p != e; p = p->parent) {
            if (!p || p->isSeenThrough() || (p != x && p->isAnArray())) return false;
            vexa::StructArray* moved = p->getOffsetDep();
            if (moved && moved->getStructLevel() >= level) return false;
        }
        vexa::StructArray* sized = x->getSizeDep();
        if (sized && sized->getStructLevel() >= level) return false;
        long size = x->getSize();
        long at = x->getPos() - base;
        if (size <= 0) continue;
        if (at < 0 || at > stride - size) return false;
        columns.push_back({at, size});
    }
    zun::InputStream& in = *array.getBase()->input;
    if (in.isFifo()) return false;
    long end = 0;
    if (__builtin_mul_overflow(lastRow - first + 1, stride, &end) || __builtin_add_overflow(end, base, &end))
        return false;
    in.seek(end - 1, std::ios::beg);
    if (in.peek() < 0) return false;
    long block = (1L << 20) / stride + 1;
    std::vector<char> data(static_cast<size_t>(block * stride));
    std::vector<char> out;
    for (long row = first; row <= lastRow; row += block) {
        long n = lastRow - row + 1 < block ? lastRow - row + 1 : block;
        in.seek(base + (row - first) * stride, std::ios::beg);
        unsigned long want = static_cast<unsigned long>(n * stride);
        if (in.bufread(data.data(), want, 0) < want) return false;
        out.clear();
        for (long i = 0; i < n; ++i)
            for (const Column& c : columns) out.insert(out.end(), &data[i * stride + c.at], &data[i * stride + c.at + c.size]);
        if (!out.empty()) bin->write(out.data(), static_cast<long>(out.size()));
    }
    return true;
}

// An array as a table: the rows first..last by step (backwards with a
// negative step), one line per column of each row.
void readArray(StructElem& element, const FieldList& fields, BinOutput* bin, const char* xopt, bool explode,
               bool compress, int width, long first, long last, long step) {
    vexa::ArrayReader reader(element);
    if (fields.count == 0) {
        if (bin) reader.columns << new StructAlias(*reader.getElement());
        else reader << "*";
    }
    for (long i = 0; i < fields.count; ++i) {
        long before = reader.columns.count;
        reader << fields[i].str();
        if (reader.columns.count == before) warnNoMatch(fields[i]);
    }
    if (reader.columns.count == 0) return;
    if (getenv("SKDBG")) fprintf(stderr, "bin=%p step=%ld explode=%d\n", (void*)bin, step, explode);
    if (bin && step == 1 && !explode && writeColumnsInBlocks(reader, bin, first, last)) return;
    reader = first;
    long rows = reader.numRows();
    if (step > 0) {
        while (reader.row >= 0 && (last < 0 || reader.row <= last)) {
            printRow(reader, bin, xopt, explode, compress, width);
            reader += step;
        }
        return;
    }
    if (rows < 0) {
        // An unbound array: walk to its end, or past last, to count the rows.
        long reached = reader.row;
        while (reader.row >= 0 && (last < 0 || reader.row <= last)) {
            reached = reader.row + 1;
            reader += 1;
        }
        rows = reached;
    }
    long start = last >= 0 && last < rows ? last : rows - 1;
    reader = start;
    while (reader.row >= first) {
        printRow(reader, bin, xopt, explode, compress, width);
        reader += step;
    }
}

}  // namespace

// The index range (first, last, step) applies to arrays, which the reader
// walks row by row; records and leaves have none.
void read_base(StructElem& element, const FieldList& fields, BinOutput* bin, const char* xopt, bool explode,
               bool compress, int width, long first, long last, long step) {
    if (element.isAnArray()) {
        readArray(element, fields, bin, xopt, explode, compress, width, first, last, step);
        return;
    }
    if (element.isSeenThrough()) {
        read_base(*element.getChild(nullptr), fields, bin, xopt, explode, compress, width, 0, -1, 1);
        return;
    }
    if (!element.explodes() || (fields.count == 0 && bin)) {
        print_element(element, bin, explode, xopt, compress, width);
        return;
    }
    ObjAppendListP<StructAlias> aliases;
    if (fields.count == 0) element.childList("*", false, aliases);
    else selectFields(element, fields, aliases);
    printSelection(aliases, bin, xopt, explode, compress, width);
}

void print_element(StructElem& element, BinOutput* bin, bool explode, const char* xopt, bool compress, int width) {
    StructElem& e = *element.getChild(nullptr);
    if (bin) {
        if (e.getSize() > 0) {
            // One buffer for all elements: its room stays from one to the next.
            static zun::RawBuffer buffer;
            buffer.flush(false);
            e.readBuf(buffer, 1);
            if (buffer.count > 0) bin->write(buffer.data, buffer.count);
        }
        return;
    }
    if (explode && e.numElems() >= 1 && (!e.isAnArray() || isRecordArray(e))) {
        for (long i = 0; i < e.numElems(); ++i) print_element(e[i], nullptr, true, xopt, compress, width);
        return;
    }
    long pos = e.getPos();
    line.clear();
    appendPosition(pos, width);
    try {
        e.appendPathName(line);
        const String& unit = e.getUnit();
        if (unit.length > 0) line.append(" (").append(unit).append(")");
        line.write(" = ", 3);
        LineSink sink;
        e.writeText(sink, vexa::FormAll, compress);
        if (xopt) {
            line.append(" ; ");
            e.writeText(sink, *xopt ? vexa::FormHexNum : vexa::FormHex, compress);
        }
    } catch (...) {
        // What was composed of the line stands before the error that ended it.
        line.spill();
        throw;
    }
    writeLine();
}

void read_base_struct(StructElem& element, const FieldList& fields, bool explode) {
    if (element.isSeenThrough()) {
        read_base_struct(*element.getChild(nullptr), fields, explode);
        return;
    }
    int level = selectionLevel(element);
    zun::ObjAppendList<int> indent;
    print_elem_struct(level, 0, element, false, indent);

    StructElem* e = &element;
    if (e->isAnArray()) {
        // Through every dimension to the element.
        while (e->isAnArray()) e = e->getChild("#");
        if (e->isFixedType(0)) e = e->getChild(nullptr);
    }
    int relLevel = selectionLevel(*e);
    ObjAppendListP<StructAlias> aliases;
    if (fields.count == 0) StructAlias(static_cast<unsigned char>(relLevel), *e).childList("*", false, aliases);
    else selectFields(*e, fields, aliases);
    if (aliases.count == 0) return;

    indent << 1;
    for (long i = 0; i < aliases.count; ++i) {
        if (i == aliases.count - 1) indent.last() = 0;
        StructElem* target = aliases[i].resolve();
        print_elem_struct(level, relLevel, *target, explode, indent);
    }
}

void print_elem_struct(int level, int relLevel, StructElem& e, bool explode, zun::ObjAppendList<int>& indent) {
    if (indent.count == 0) {
        line.assign(e.parent ? e.getPathName().str() : "FILE");
    } else {
        line.clear();
        for (long i = 0; i + 1 < indent.count; ++i) line.append(indent[i] ? "| " : "  ");
        line.append("|_ ");
        if (indent.count == 1 && relLevel >= 0) line.append(e.getPathName(relLevel));
        else line.append(e.elemName);
    }
    line.append(" ; ").append(e.getTypeStr(level)).append(" ; ").append(e.getUnit());
    writeLine();
    if (!explode) return;

    StructElem* inner = &e;
    while (inner->isAnArray()) inner = inner->getChild("#");
    if (inner->isSeenThrough() && inner->isFixedType(level)) inner = inner->getChild(nullptr);

    indent << 1;
    long n = inner->numElems();
    for (long i = 0; i < n; ++i) {
        if (i == n - 1) indent.last() = 0;
        print_elem_struct(level, relLevel, (*inner)[i], explode, indent);
    }
    int popped;
    indent >> popped;
}
