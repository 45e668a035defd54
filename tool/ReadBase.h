// The reading modes and the output of skelvor: read_base walks what was
// selected, print_element writes one element, as a text line or as bytes.
#pragma once

#include <iosfwd>

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace vexa {
class StructElem;
}

// Target of binary output: standard output for -b; a file named by -B,
// opened at the first write.
struct BinOutput {
    zun::String name;               // null for standard output
    std::ostream* out = nullptr;    // null until the first write for a file
    bool owned = false;             // out was opened here

    BinOutput() = default;
    explicit BinOutput(std::ostream& stream) : name(nullptr), out(&stream) {}
    explicit BinOutput(const char* fileName) : name(fileName), out(nullptr) {}
    BinOutput(const BinOutput&) = delete;
    BinOutput& operator=(const BinOutput&) = delete;
    ~BinOutput();
    void write(const char* bytes, long n);
};

using FieldList = zun::ObjAppendList<zun::String>;

// Reads and prints element and what the field list selects below it; first,
// last and step give the index range of an array.
void read_base(vexa::StructElem& element, const FieldList& fields, BinOutput* bin, const char* xopt,
               bool explode, bool compress, int width, long first, long last, long step);

// The -i listing: the structure below element, read only as far as sizes and
// unions need.
void read_base_struct(vexa::StructElem& element, const FieldList& fields, bool explode);

// One element: "<pos>> <path> (<unit>) = <value>[ ; <hex>]" in text mode
// (bin null), or its bytes to bin.
void print_element(vexa::StructElem& element, BinOutput* bin, bool explode, const char* xopt, bool compress,
                   int width);

void print_elem_struct(int level, int relLevel, vexa::StructElem& e, bool explode, zun::ObjAppendList<int>& indent);
