// Records read through the tree: the reads of a whole record, sub-records and
// their dictionaries, and very long records. Record sizes, dictionary search
// and auto-descriptive chains are checked end to end.
#include "TreeFixture.h"
#include "input/InputStream.h"
#include "struct/Error.h"

using treetest::errorOf;
using treetest::signatureOf;
using treetest::text;
using vexa::StructElem;

namespace {

class Records : public treetest::TreeTest {};

}  // namespace

TEST_F(Records, OneRealFieldReadsAsThatField) {
    dict("one", "one|||\nx|UShort|||\n");
    dict("two", "two|||\nx|UShort|||\ny|UChar|||\n");
    dict("r", "r|||\no|@one|||\nt|@two|||\n");
    file = open("r", treetest::raw("\x00\x05\x00\x07\x09"));
    double d = 0;
    EXPECT_DOUBLE_EQ(field("o").readDouble(d), 5.0);
    zun::String s;
    EXPECT_EQ(text(field("o").readString(s, 0)), "5");
    EXPECT_EQ(errorOf([&] { field("t").readDouble(d); }), "field [t] (Record'two) cannot be read as 'Double'");
    EXPECT_EQ(errorOf([&] { field("t").readString(s, 0); }), "field [t] (Record'two) cannot be read as 'String'");
    EXPECT_EQ(text(file->getRoot().readAll(true)), "[[5],[7,9]]");
    EXPECT_EQ(text(file->getRoot().readHex(true)), "''00 05''00 07'09");
    EXPECT_EQ(text(field("t").readHexNum(true)), "'00 07'09");
    // the bytes of a record are its whole extent
    EXPECT_EQ(text(field("t").StructElem::readHex(true)), "00 07 09");
    EXPECT_EQ(signatureOf([&] { file->getRoot()[2]; }), "VEXA006 invalid field index : index (2) in structure [root]");
}

TEST_F(Records, SubRecordsKeepTheirOwnDictionaryButNotItsByteOrder) {
    dir.write("fmt/main.dd", "main|||\nh|@hdr|||\ng|@hdr|cm||\n");
    dir.write("fmt/hdr.dd", "HEADER|a description||LITTLE-ENDIAN\nx|UShort|||\n");
    dir.write("hdr.dd", "wrong|||\nw|UChar|||\n");
    file = open("fmt/main", treetest::raw("\x01\x02\x03\x04"));
    EXPECT_EQ(text(field("h.x").readAll(true)), "258");
    EXPECT_EQ(text(field("h").getUnit()), "HEADER");
    EXPECT_EQ(text(field("g").getUnit()), "cm");
    EXPECT_EQ(text(field("h").getTypeStr(0)), "Record'HEADER");
    EXPECT_EQ(field("h").getType(), vexa::TypeRecord);
    EXPECT_EQ(text(field("h").getDictionaryPath()), dir.path("fmt/hdr.dd"));
    EXPECT_EQ(text(field("h.x").getDictionaryPath()), dir.path("fmt/hdr.dd"));
}

TEST_F(Records, MissingSubDictionaryFailsEachTime) {
    dict("r", "r|||\na|UChar|||\nb|@nothere|||\n");
    file = open("r", "ab");
    const std::string error = "invalid sub dictionary \"nothere\" in dictionary '" + dictPath("r") + "'";
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }), error);
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }), error);  // no half-read record is left
}

TEST_F(Records, AutoDescriptiveSubRecord) {
    dict("chooser", "AUTO-DESCRIPTIVE|||\nname|String||2|\n");
    dict("v1", "v1|||\nname|String||2|\nn|UChar|||\n");
    dict("r", "r|||\nfirst|UChar|||\nbody|@chooser|||\nlast|UChar|||\n");
    file = open("r", std::string("\x05v1\x07\x09", 5));
    EXPECT_EQ(text(field("body").getTypeStr(0)), "Record'v1");
    EXPECT_EQ(text(field("body.n").readAll(true)), "7");
    EXPECT_EQ(field("last").getPos(), 4);
}

TEST_F(Records, FileHandle) {
    dict("r", "r|||\na|UChar|||\n");
    EXPECT_EQ(signatureOf([&] { vexa::File f(dictPath("r").c_str(), static_cast<zun::InputStream*>(nullptr)); }),
              "STD022 Invalid argument : InputStream IO handler is null");
    file = open("r", "abc");
    EXPECT_EQ(text(file->getName()), "data.bin");
    EXPECT_EQ(file->getPhysicalSize(), 3);
}

TEST_F(Records, LongRecordsAreSizedFromTheirEnd) {
    std::string lines = "long|||\n";
    const int n = 20000;
    for (int i = 0; i < n; ++i) lines += "f" + std::to_string(i) + (i % 2 ? "|UShort|||\n" : "|UChar|||\n");
    dict("long", lines);
    std::string bytes(n / 2 * 3, '\0');
    bytes[bytes.size() - 1] = '\x07';
    file = open("long", bytes);
    // the first question is about the very end: every offset before it is worked out
    EXPECT_EQ(file->getRoot().getSize(), n / 2 * 3);
    EXPECT_EQ(field("f12345").getPos(), 12344 / 2 * 3 + 1);
    EXPECT_EQ(field("f12345").getSize(), 2);
    EXPECT_EQ(text(field("f19999").readAll(true)), "7");
}
