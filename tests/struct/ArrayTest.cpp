// Arrays: counts, moves, path components, whole-array texts and list reads.
#include <cmath>

#include "TreeFixture.h"
#include "struct/ArrayReader.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructSpare.h"

using treetest::errorOf;
using treetest::raw;
using treetest::text;
using vexa::StructArray;
using vexa::StructElem;
using zun::ObjAppendList;
using zun::String;

namespace {

class Arrays : public treetest::TreeTest {
protected:
    StructArray& array(const char* path) { return static_cast<StructArray&>(field(path)); }
    std::string all(const char* path, bool compress = true) { return text(field(path).readAll(compress)); }

    // A little-endian file of the dictionary lines behind a header.
    void openLines(const std::string& lines, const std::string& bytes) {
        dict("r", "r|||LITTLE-ENDIAN\n" + lines);
        file = open("r", bytes);
    }

    template <class T, class Read>
    std::string list(Read read) {
        ObjAppendList<T> values;
        read(values);
        std::string out;
        for (long i = 0; i < values.count; ++i) {
            if (i) out += ' ';
            char buf[64];
            std::snprintf(buf, sizeof buf, "%g", static_cast<double>(values[i]));
            out += buf;
        }
        return out;
    }
};

}  // namespace

TEST_F(Arrays, CountsPositionsAndTypeTexts) {
    openLines("h|UChar|||\na|UShort|||3\nm|Float|||2,3\nz|UChar|||0\nt|UChar|||\n",
              raw("\x09" "\x01\x00\x02\x00\x03\x00") + std::string(24, '\0') + "\x07");
    EXPECT_EQ(array("a").numElems(), 3);
    EXPECT_EQ(array("a").getSize(), 6);
    EXPECT_EQ(text(array("a").getTypeStr(0)), "(3*UShort)");
    EXPECT_EQ(text(array("m").getTypeStr(0)), "(2*(3*Float))");
    EXPECT_EQ(array("m").getSize(), 24);
    EXPECT_EQ(field("m.1.2").getPos(), 1 + 6 + 20);
    EXPECT_EQ(text(field("m.1.2").getPathName()), "m.1.2");
    EXPECT_EQ(field("t").getPos(), 31);
    EXPECT_EQ(text(field("t").readAll(true)), "7");
    // element 2, then back to 1 and on to 2 again
    EXPECT_EQ(text(field("a.2").readAll(true)), "3");
    EXPECT_EQ(text(field("a.1").readAll(true)), "2");
    EXPECT_EQ(field("a.#").getPos(), 3);
    EXPECT_EQ(text(field("a.#last").readAll(true)), "3");
    EXPECT_EQ(text(field("a.#mid").readAll(true)), "2");
    EXPECT_EQ(&field("a.#unknown"), &field("a"));
    // an empty array
    EXPECT_EQ(array("z").numElems(), 0);
    EXPECT_EQ(array("z").getSize(), 0);
    EXPECT_EQ(all("z"), "{}");
    EXPECT_EQ(text(field("z").readHex(true)), "");
    EXPECT_EQ(treetest::signatureOf([&] { field("z.#last"); }), "VEXA011 array index overflow : array [z]");
    EXPECT_EQ(treetest::signatureOf([&] { field("z.#mid"); }), "VEXA011 array index overflow : array [z]");
    EXPECT_EQ(treetest::signatureOf([&] { array("z")[0]; }), "VEXA011 array index overflow : array [z]");
    // indices out of range
    EXPECT_EQ(treetest::signatureOf([&] { array("a")[-1]; }),
              "VEXA010 invalid array index : array [a] index [-1] is invalid");
    EXPECT_EQ(errorOf([&] { field("a.-1"); }), "array [a] index [-1] is invalid");
    EXPECT_EQ(errorOf([&] { field("a.3"); }), "array [a]");
    EXPECT_EQ(errorOf([&] { field("a.x"); }), "array [a] index [x] is invalid");
    EXPECT_EQ(treetest::signatureOf([&] { array("a").getNextElement(-9); }),
              "VEXA012 array index underflow : array [a]");
}

TEST_F(Arrays, WholeArrayTextsFoldRepeats) {
    openLines("a|UChar|||4\nb|UChar|||2\nc|UChar|||2,2\nd|UChar|||3\n",
              raw("\x01\x01\x01\x02" "\x01\x02" "\x05\x05\x05\x05" "\x01\x02\x02"));
    EXPECT_EQ(all("a"), "{1 (3 times),2}");
    EXPECT_EQ(all("a", false), "{1,1,1,2}");
    EXPECT_EQ(all("b"), "{1,2}");
    EXPECT_EQ(all("c"), "{{5 (2 times)} (2 times)}");
    EXPECT_EQ(all("d"), "{1,2 (2 times)}");
    EXPECT_EQ(text(field("a").readHex(true)), "01 (3 times)'02");
    EXPECT_EQ(text(field("a").readHex(false)), "01'01'01'02");
    // the text is taken without moving the array for the caller
    field("a.2");
    all("a");
    EXPECT_EQ(array("a").activeIndex, 2);
    EXPECT_EQ(text(file->getRoot().readAll(true)), "[{1 (3 times),2},{1,2},{{5 (2 times)} (2 times)},{1,2 (2 times)}]");
}

TEST_F(Arrays, UnboundArraysLearnTheirCountAtTheEnd) {
    openLines("h|UChar|||\ns|UShort|||inf\n", raw("\x00" "\x01\x00\x02\x00\x03\x00\x04\x00\x05\x00"));
    EXPECT_EQ(array("s").numElems(), -1);
    EXPECT_EQ(text(array("s").getTypeStr(0)), "(*UShort)");
    EXPECT_EQ(text(field("s.#last").readAll(true)), "5");
    EXPECT_EQ(array("s").numElems(), 5);
    EXPECT_EQ(array("s").getSize(), 10);
    EXPECT_EQ(all("s"), "{1,2,3,4,5}");

    openLines("s|UShort|||inf\n", raw("\x01\x00\x02\x00\x03\x00"));
    EXPECT_EQ(all("s"), "{1,2,3}");  // printed whole: the count is learned first
    EXPECT_EQ(array("s").numElems(), 3);
    EXPECT_EQ(array("s").getSize(), 6);

    // only the last real field of every level may be unbound
    dict("tail", "tail|||\nv|UChar|||inf\n");
    openLines("s|UShort|||inf\nt|UChar|||\n", "abcdef");
    EXPECT_EQ(errorOf([&] { array("s").numElems(); }),
              "array \"s\" is unbound within structure (unbound arrays only allowed at the tail of the structure) in "
              "dictionary '" + dictPath("r") + "'");
    openLines("n|@tail|||\nt|UChar|||\n", "abcdef");
    EXPECT_EQ(errorOf([&] { field("n.v").numElems(); }).substr(0, 26), "array \"v\" is unbound withi");
    openLines("o|UChar|||2,inf\n", "abcdef");
    EXPECT_EQ(errorOf([&] { field("o.0").numElems(); }).substr(0, 26), "array \"0\" is unbound withi");
    openLines("n|@tail|||\n", "abcdef");
    EXPECT_EQ(array("n.v").numElems(), -1);
    EXPECT_EQ(field("n").getSize(), 6);
}

TEST_F(Arrays, DimensionStatementsAndTheirFailures) {
    dict("r", "r|||\na|UChar|||#n * 2\nb|UChar|||#m\nc|UChar|||#n - 5\n");
    file = open("r", "abcdefgh");
    vexa::StructBase::addParameter("n", 2LL, file->getRoot().parameters);
    vexa::StructBase::addParameter("m", "x", file->getRoot().parameters);
    EXPECT_EQ(array("a").numElems(), 4);
    EXPECT_EQ(all("a"), "{97,98,99,100}");
    EXPECT_EQ(errorOf([&] { array("c").numElems(); }), "dimension reference \"#n - 5\" of structure \"c\" returns -3");
    // the failure comes back on each request instead of an unknown count
    EXPECT_EQ(errorOf([&] { array("c").numElems(); }), "dimension reference \"#n - 5\" of structure \"c\" returns -3");
    EXPECT_EQ(errorOf([&] { array("b").numElems(); }), "dimension reference \"#m\" of structure \"b\" returns nan");
}

TEST_F(Arrays, SearchesAndPlacesBeyondTheRangeOfPositions) {
    dict("kv", "kv|||\nk|String||2\nv|UChar|||\n");
    openLines("e|@kv|||3\nhuge|UChar|||9223372036854775807\n", "aa1bb2cc3xyz");
    EXPECT_EQ(text(field("e.k=b*.v").readAll(true)), "50");
    EXPECT_EQ(array("e").activeIndex, 1);
    EXPECT_EQ(text(field("e.k=c?.v").readAll(true)), "51");
    EXPECT_EQ(errorOf([&] { field("e.k=zz"); }), "array [e] index [k=zz] is invalid");
    EXPECT_EQ(errorOf([&] { field("e.k="); }), "array [e] index [k=] is invalid");
    EXPECT_EQ(errorOf([&] { field("huge.9223372036854775806").getPos(); }),
              "field \"huge.9223372036854775806\" lies beyond the range of positions (9 + 9223372036854775806)");
}

TEST_F(Arrays, ListReadsByOneReadAndElementByElementAgree) {
    // 3-byte integers, little-endian: the run reads each through the byte-order conversion
    openLines("a|SLong||3|3\nb|Float|||2,3\nz|Float|||2,0\nt|aDouble||4|2\n",
              raw("\x01\x00\x00" "\xff\xff\xff" "\x02\x00\x80") + std::string(4, '\0') +
                  raw("\x00\x00\x80\x3f" "\x00\x00\x00\x40" "\x00\x00\x40\x40" "\x00\x00\x80\x40" "\x00\x00\xa0\x40") +
                  " 1.5-2.0");
    EXPECT_EQ(list<long>([&](ObjAppendList<long>& l) { field("a").readSLongA(l); }), "1 -1 -8.38861e+06");
    EXPECT_EQ(list<double>([&](ObjAppendList<double>& l) { field("a").readDoubleA(l); }), "1 -1 -8.38861e+06");
    EXPECT_EQ(list<float>([&](ObjAppendList<float>& l) { field("b").readFloatA(l); }), "0 1 2 3 4 5");
    auto& b = static_cast<vexa::StructArrayBase&>(field("b"));
    EXPECT_EQ(list<float>([&](ObjAppendList<float>& l) { b.StructArrayBase::readFloatA(l); }), "0 1 2 3 4 5");
    auto& a = static_cast<vexa::StructArrayBase&>(field("a"));
    EXPECT_EQ(list<long>([&](ObjAppendList<long>& l) { a.StructArrayBase::readSLongA(l); }), "1 -1 -8.38861e+06");
    EXPECT_EQ(list<float>([&](ObjAppendList<float>& l) { field("z").readFloatA(l); }), "");
    EXPECT_EQ(list<double>([&](ObjAppendList<double>& l) { field("t").readDoubleA(l); }), "1.5 -2");
    EXPECT_EQ(errorOf([&] {
                  ObjAppendList<short> l;
                  field("b").readSShortA(l);
              }),
              "field [b.0.0] (Float) cannot be read as 'SShort'");
    ObjAppendList<char> bytes;
    // 3-byte elements: one readChar each, which refuses them
    EXPECT_EQ(errorOf([&] { field("a").readCharA(bytes); }), "field [a.0] (SLong) cannot be read as 'UChar'");
    EXPECT_EQ(bytes.count, 0);
}

TEST_F(Arrays, ListReadsOfAFieldFillingARecord) {
    dict("one", "one|||\nv|UShort|||\n");
    dict("two", "two|||\nv|UShort|||\nw|UChar|||\n");
    openLines("a|@one|||3\nb|@two|||2\n", raw("\x01\x00\x02\x00\x03\x00" "\x04\x00\x09" "\x05\x00\x09"));
    EXPECT_EQ(list<long>([&](ObjAppendList<long>& l) { field("a").readSLongA(l, "v"); }), "1 2 3");
    EXPECT_EQ(list<long>([&](ObjAppendList<long>& l) { field("b").readSLongA(l, "v"); }), "4 5");
    EXPECT_EQ(list<unsigned short>([&](ObjAppendList<unsigned short>& l) { field("b").readUShortA(l, "w"); }),
              "9 9");
}

TEST_F(Arrays, ByteArraysAndSpare) {
    openLines("c|UChar|||4\ns|Spare||3|\n", "abcd" + raw("\x01\x02\x03"));
    ObjAppendList<char> chars;
    field("c").readCharA(chars);
    EXPECT_EQ(std::string(chars.data, chars.count), "abcd");
    auto& spare = static_cast<vexa::StructSpare&>(field("s"));
    EXPECT_EQ(text(spare.getUnit()), "spare");
    EXPECT_EQ(spare.getType(), vexa::TypeArray);
    unsigned long long u = 0;
    spare.readULLong(u);
    unsigned char expected[8] = {0, 0, 0, 0, 0, 1, 2, 3};
    EXPECT_EQ(std::memcmp(&u, expected, 8), 0);
    long long v = 0;
    spare.readSLLong(v);
    EXPECT_EQ(std::memcmp(&v, expected, 8), 0);
    openLines("s|Spare||9|\n", std::string(9, 'x'));
    EXPECT_EQ(errorOf([&] {
                  unsigned long long w;
                  field("s").readULLong(w);
              }),
              "field [s] ((9*UChar)) cannot be read as 'ULLong'");
}

TEST_F(Arrays, ReaderRowsAndColumns) {
    dict("kv", "kv|||\nk|UChar|||\nv|UChar|||\n");
    openLines("e|@kv|||3\nu|UChar|||inf\n", "abcdefXY");
    vexa::ArrayReader rows(field("e"));
    rows << "*";
    EXPECT_EQ(rows.columns.count, 2);
    EXPECT_TRUE(rows = 1);
    double k = 0, v = 0;
    rows >> k >> v;
    EXPECT_EQ(k, 'c');
    EXPECT_EQ(v, 'd');
    rows += 1;
    EXPECT_EQ(rows.row, 2);
    rows += 1;
    EXPECT_EQ(rows.row, -1);
    EXPECT_EQ(errorOf([&] { rows.getNextColumn(); }), "reader of array \"e\" not ready - cannot read array element");
    EXPECT_EQ(errorOf([&] { rows += 1; }), "reader for array \"e\" not ready - cannot read array element");
    EXPECT_FALSE(rows = 3);
    vexa::ArrayReader leaves(field("u"));
    leaves << "*";
    EXPECT_EQ(leaves.columns.count, 1);
    EXPECT_TRUE(leaves = 0);
    leaves += 1;
    EXPECT_EQ(leaves.row, 1);
    leaves += 1;
    EXPECT_EQ(leaves.row, -1);
    EXPECT_EQ(leaves.numRows(), 2);
    vexa::ArrayReader none(field("e"));
    EXPECT_EQ(errorOf([&] { none.getNextColumn(); }), "cannot read column from reader of array \"e\" - no column defined");
    EXPECT_EQ(errorOf([&] { vexa::ArrayReader bad(field("e.0.k")); }), "structure \"e.0.k\" is not an array");
}

TEST_F(Arrays, VariableRecordsWalkForwardAndRestartToGoBack) {
    dict("item", "item|||\nlen|UChar|||\ntext|String||len|\n");
    openLines("n|UChar|||\nitems|@item|||n\nafter|UChar|||\n",
              raw("\x04" "\x01" "a" "\x03" "bcd" "\x00" "\x02" "ef" "\x09"));
    const char* texts[] = {"\"a\"", "\"bcd\"", "\"\"", "\"ef\""};
    for (long i : {3, 1, 2, 0, 3, 2}) EXPECT_EQ(text(field(("items." + std::to_string(i) + ".text").c_str()).readAll(true)), texts[i]) << i;
    EXPECT_EQ(field("items.3.text").getPos(), 9);
    EXPECT_EQ(field("after").getPos(), 11);
    EXPECT_EQ(array("items").getSize(), 10);
    EXPECT_EQ(text(field("items").readAll(true)), "{[1,\"a\"],[3,\"bcd\"],[0,\"\"],[2,\"ef\"]}");
    EXPECT_EQ(text(field("after").readAll(true)), "9");
    // a dimension that reads its own array finds no count while it is computed
    openLines("a|UChar|||a[\"#last\"] + 1\n", "abc");
    EXPECT_EQ(errorOf([&] { array("a").numElems(); }), "reference recursion from structure [a] (in array dimension computation)");
}

TEST_F(Arrays, AnOuterArrayMovesTheInnerOnes) {
    // rows of a count and that many 2-byte values; the count moves with the row
    dict("row", "row|||\nk|UChar|||\nv|UShort|||k\n");
    openLines("rows|@row|||3\n", raw("\x02" "\x01\x00\x02\x00" "\x00" "\x01" "\x05\x00"));
    EXPECT_EQ(text(field("rows.0.v").readAll(true)), "{1,2}");
    EXPECT_EQ(text(field("rows.1.v").readAll(true)), "{}");
    EXPECT_EQ(text(field("rows.2.v").readAll(true)), "{5}");
    EXPECT_EQ(text(field("rows.0.v.1").readAll(true)), "2");
    EXPECT_EQ(field("rows.2.v.0").getPos(), 7);
    EXPECT_EQ(text(field("rows").getTypeStr(0)), "(3*Record'row)");
    EXPECT_EQ(text(field("rows.#.v").getTypeStr(0)), "(*UShort)");  // its count varies with the row
    EXPECT_EQ(text(field("rows.#.v").getTypeStr(255)), "(1*UShort)");
    EXPECT_EQ(list<long>([&](ObjAppendList<long>& l) { field("rows").readSLongA(l, "k"); }), "2 0 1");
}

TEST_F(Arrays, RunsThatPassTheEndOfTheDataFail) {
    // counts larger than the data: no value is made up for the missing bytes
    openLines("a|UShort|||1000000\nb|SLong||3|5\nt|aULong||2|9\n", raw("\x01\x00\x02\x00") + "12");
    EXPECT_EQ(errorOf([&] { field("a").readAll(true); }), "reading field \"a.0\" [0,2] in \"data.bin\"");
    EXPECT_EQ(errorOf([&] {
                  ObjAppendList<long> l;
                  field("a").readSLongA(l);
              }),
              "reading field \"a\" [0,2000000] in \"data.bin\"");
    openLines("b|SLong||3|5\n", "abcdefg");
    EXPECT_EQ(errorOf([&] {
                  ObjAppendList<double> l;
                  field("b").readDoubleA(l);
              }),
              "reading field \"b\" [0,15] in \"data.bin\"");
    openLines("t|aULong||2|9\n", "1234");
    EXPECT_EQ(errorOf([&] {
                  ObjAppendList<double> l;
                  field("t").readDoubleA(l);
              }),
              "reading field \"t\" [0,18] in \"data.bin\"");
}

TEST_F(Arrays, ReadersOnNamesAndInnerArrays) {
    dict("grp", "grp|||\nn|UChar|||\nv|UChar|||n\n");
    openLines("g|@grp|||2\nu|UChar|||inf\n", raw("\x02\x05\x06" "\x01\x07" "\x08\x09"));
    vexa::ArrayReader groups(*file, "g");
    EXPECT_EQ(groups.numRows(), 2);
    groups << "n";
    // the inner array of a group, whose element is no record: its own column
    vexa::ArrayReader values(groups, "v");
    EXPECT_EQ(values.columns.count, 1);
    ASSERT_TRUE(groups = 1);
    ASSERT_TRUE(values = 0);
    double v = 0;
    values >> v;
    EXPECT_EQ(v, 7);
    EXPECT_TRUE(groups = 0);
    EXPECT_EQ(values.numRows(), 2);
    // two readers on one array notice each other's moves
    vexa::ArrayReader other(*file, "g");
    other << "n";
    EXPECT_TRUE(other = 1);
    double n = 0;
    groups >> n;  // groups stands on row 0 and goes back there
    EXPECT_EQ(n, 2);
    other += 1;
    EXPECT_EQ(other.row, -1);
    EXPECT_EQ(errorOf([&] { vexa::ArrayReader bad(*file, "g.0.n"); }), "structure \"g.0.n\" is not an array");
    // an unbound array: not ready past its end, and the count is known then
    vexa::ArrayReader tail(*file, "u");
    tail << "*";
    EXPECT_EQ(tail.numRows(), -1);
    EXPECT_TRUE(tail = 1);
    EXPECT_FALSE(tail = 2);
    EXPECT_EQ(tail.numRows(), 2);
}
