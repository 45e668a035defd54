// Records: sizes, sub-dictionaries, coding standards, auto-descriptive
// chains and record reads.
#include "TreeFixture.h"
#include "input/InputStream.h"
#include "struct/Error.h"

using treetest::errorOf;
using treetest::signatureOf;
using treetest::text;
using vexa::File;
using vexa::StructElem;

namespace {

class Records : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;
    StructElem& field(const char* path) { return *file->getRoot().getChild(path); }
};

}  // namespace

TEST_F(Records, SizeIsTheSumOfTheFieldsUnlessTheHeaderSaysOtherwise) {
    dict("plain", "plain|||\na|UShort|||\nb|ULong||4|\n");
    dict("padded", "padded||8|\na|UShort|||\nb|ULong||4|\n");
    dict("r", "r|||\np|@plain|||\nq|@padded|||\nafter|UChar|||\n");
    file = open("r", std::string(6 + 8, '\0') + "\x2A");
    EXPECT_EQ(field("p").getSize(), 6);
    EXPECT_EQ(field("q").getSize(), 8);
    EXPECT_EQ(field("q").getPos(), 6);
    EXPECT_EQ(field("after").getPos(), 14);
    EXPECT_EQ(text(field("after").readAll(true)), "42");
    EXPECT_EQ(file->getRoot().getSize(), 15);
}

TEST_F(Records, StarSizeKeepsTheSizeOfTheLine) {
    dict("sub", "sub||*|\na|UChar|||\n");
    dict("other", "other||3|\na|UChar|||\n");
    dict("r", "r|||\ns|@sub||10|\nt|@other||10|\nu|@sub|||\n");
    file = open("r", std::string(20, '\0'));
    EXPECT_EQ(field("s").getSize(), 10);
    EXPECT_EQ(field("t").getSize(), 3);
    EXPECT_EQ(field("u").getSize(), 1);
    EXPECT_EQ(field("u").getPos(), 13);
}

TEST_F(Records, NegativeSizesAreRefused) {
    dict("sub", "sub|||\na|UChar|||\n");
    dict("r", "r|||\ns|@sub||-4|\n");
    file = open("r", "x");
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }),
              "s invalid negative size '-4' in dictionary '" + dictPath("r") + "'");
    dict("neg", "neg||-2|\na|UChar|||\n");
    dict("r2", "r2|||\ns|@neg|||\n");
    file = open("r2", "x");
    EXPECT_EQ(errorOf([&] { file->getRoot().numElems(); }),
              "s invalid negative size '-2' in dictionary '" + dictPath("neg") + "'");
}

TEST_F(Records, OneRealFieldReadsAsThatField) {
    dict("one", "one|||\nx|UShort|||\n");
    dict("two", "two|||\nx|UShort|||\ny|UChar|||\n");
    dict("r", "r|||\no|@one|||\nt|@two|||\n");
    file = open("r", std::string("\x00\x05\x00\x07\x09", 5));
    double d = 0;
    EXPECT_DOUBLE_EQ(field("o").readDouble(d), 5.0);
    zun::String s;
    EXPECT_EQ(text(field("o").readString(s, 0)), "5");
    EXPECT_EQ(errorOf([&] { field("t").readDouble(d); }), "field [t] (Record'two) cannot be read as 'Double'");
    EXPECT_EQ(errorOf([&] { field("t").readString(s, 0); }), "field [t] (Record'two) cannot be read as 'String'");
    EXPECT_EQ(text(field("t").readAll(true)), "[7,9]");
    EXPECT_EQ(text(file->getRoot().readAll(true)), "[[5],[7,9]]");
    EXPECT_EQ(text(file->getRoot().readHex(true)), "''00 05''00 07'09");
    EXPECT_EQ(text(field("t").readHexNum(true)), "'00 07'09");
    // the bytes of a record are its whole extent
    EXPECT_EQ(text(field("t").StructElem::readHex(true)), "00 07 09");
}

TEST_F(Records, UnitAndTypeText) {
    dict("hdr", "HEADER|a description||\nx|UChar|||\n");
    dict("r", "r|||\nh|@hdr|||\ng|@hdr|cm||\n");
    file = open("r", "ab");
    EXPECT_EQ(text(field("h").getUnit()), "HEADER");
    EXPECT_EQ(text(field("g").getUnit()), "cm");
    EXPECT_EQ(text(field("h").getTypeStr(0)), "Record'HEADER");
    EXPECT_EQ(field("h").getType(), vexa::TypeRecord);
    EXPECT_EQ(text(field("h").getDictionaryPath()), dictPath("hdr"));
    EXPECT_EQ(text(field("h.x").getDictionaryPath()), dictPath("hdr"));
}

TEST_F(Records, FieldIndexOutOfRange) {
    dict("r", "r|||\na|UChar|||\n");
    file = open("r", "a");
    EXPECT_EQ(&file->getRoot()[0], &field("a"));
    EXPECT_EQ(signatureOf([&] { file->getRoot()[1]; }), "VEXA006 invalid field index : index (1) in structure [root]");
    EXPECT_EQ(errorOf([&] { file->getRoot()[-1]; }), "index (-1) in structure [root]");
}

TEST_F(Records, SubDictionariesAreFoundBesideTheirParent) {
    dir.write("fmt/main.dd", "main|||\np|@part|||\n");
    dir.write("fmt/part.dd", "part|||\nv|UChar|||\n");
    dir.write("part.dd", "wrong|||\nw|UChar|||\n");
    file = open("fmt/main", "\x11");
    EXPECT_EQ(text(field("p.v").readAll(true)), "17");
    EXPECT_EQ(text(field("p").getDictionaryPath()), dir.path("fmt/part.dd"));
}

TEST_F(Records, SlashNamesStartAtTheDictionaryRoot) {
    treetest::EnvVar root("VEXA_DICTIONARY_PATH", dir.path());
    dir.write("fmt/main.dd", "main|||\np|@/common/part|||\n");
    dir.write("common/part.dd", "part|||\nv|UChar|||\n");
    file = openNamed("/fmt/main", "\x11");
    EXPECT_EQ(text(field("p.v").readAll(true)), "17");
}

TEST_F(Records, FolderAndEmptyNamesGiveTheIndexDictionary) {
    treetest::EnvVar root("VEXA_DICTIONARY_PATH", dir.path());
    dir.write("fmt/index.dd", "folder|||\nv|UChar|||\n");
    dir.write("index.dd", "top|||\nw|UShort|||\n");
    file = openNamed("/fmt", "\x11\x22");
    EXPECT_EQ(text(file->getRoot().recordType), "folder");
    file = openNamed("", "\x11\x22");
    EXPECT_EQ(text(file->getRoot().recordType), "top");
    EXPECT_EQ(text(field("w").readAll(true)), "4386");
}

TEST_F(Records, MissingSubDictionary) {
    dict("r", "r|||\na|UChar|||\nb|@nothere|||\n");
    file = open("r", "ab");
    try {
        file->getRoot().numElems();
        FAIL() << "no error";
    } catch (vexa::ErrorDictionary& e) {
        EXPECT_EQ(text(e.message), "invalid sub dictionary \"nothere\" in dictionary '" + dictPath("r") + "'");
        ASSERT_NE(e.chained, nullptr);
        EXPECT_EQ(std::string(e.chained->family()), "STD");
        EXPECT_EQ(e.chained->code(), 2);
    }
    // the failure leaves no half-read record: it fails again
    EXPECT_NE(errorOf([&] { file->getRoot().numElems(); }), "");
}

TEST_F(Records, MissingRootDictionary) {
    EXPECT_EQ(signatureOf([&] { open("none", ""); }),
              "STD002 No such file or directory : \"" + dir.path("none") + "\"");
}

TEST_F(Records, CodingStandards) {
    dict("big", "b|||big-endian\nv|UShort|||\n");
    dict("little", "l|||Little-Endian\nv|UShort|||\n");
    dict("local", "l|||LOCAL\nv|UShort|||\n");
    dict("bad", "l|||MIDDLE-ENDIAN\nv|UShort|||\n");
    file = open("big", "\x01\x02");
    EXPECT_EQ(text(field("v").readAll(true)), "258");
    file = open("little", "\x01\x02");
    EXPECT_EQ(text(field("v").readAll(true)), "513");
    file = open("local", "\x01\x02");
    EXPECT_EQ(file->getRoot().input->byteOrder, zun::InputStream::HW_BYTE_ORDER);
    EXPECT_EQ(signatureOf([&] { open("bad", "\x01\x02"); }),
              "VEXA015 dictionary error : invalid coding standard \"MIDDLE-ENDIAN\" in dictionary '" +
                  dictPath("bad") + "'");
}

TEST_F(Records, OnlyTheRootSetsTheByteOrder) {
    dict("sub", "sub|||LITTLE-ENDIAN\nv|UShort|||\n");
    dict("r", "r|||\ns|@sub|||\n");
    file = open("r", "\x01\x02");
    EXPECT_EQ(text(field("s.v").readAll(true)), "258");
}

TEST_F(Records, AutoDescriptiveChain) {
    treetest::EnvVar root("VEXA_DICTIONARY_PATH", dir.path());
    dict("index", "AUTO-DESCRIPTIVE|||\nmagic|String||4|\n");
    dict("step", "auto-descriptive|||\nskip|String||4|\nkey|String||8|\n");
    dict("real", "REAL|||\nmagic|String||4|\nkey|String||8|\nvalue|UShort|||\n");
    std::string bytes = std::string("step") + std::string("real\0\0\0\0", 8) + std::string("\x01\x00", 2);
    file = openNamed("", bytes);
    EXPECT_EQ(text(file->getRoot().recordType), "REAL");
    EXPECT_EQ(file->getRoot().numElems(), 3);
    EXPECT_EQ(text(field("value").readAll(true)), "256");
    EXPECT_EQ(text(file->getRoot().getDictionaryPath()), dir.path("real.dd"));
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

TEST_F(Records, HeaderOnlyDictionaryHasNoFields) {
    dict("empty", "# a header that looks like a comment|||\n");
    dict("r", "r|||\ne|@empty|||\nx|UChar|||\n");
    file = open("r", "z");
    EXPECT_EQ(field("e").numElems(), 0);
    EXPECT_EQ(field("e").getSize(), 0);
    EXPECT_EQ(text(field("x").readAll(true)), "122");
    EXPECT_EQ(text(field("e").getTypeStr(0)), "Record'# a header that looks like a comment");
}

TEST_F(Records, NullStreamIsRefused) {
    dict("r", "r|||\n");
    EXPECT_EQ(signatureOf([&] { File f(dictPath("r").c_str(), static_cast<zun::InputStream*>(nullptr)); }),
              "STD022 Invalid argument : InputStream IO handler is null");
}

TEST_F(Records, ImportedDictionaryIsAppended) {
    dict("r", "r|||\na|UChar|||\n");
    dir.write("user/extra.dd", "extra||99|BIG-ENDIAN\nb|@part|||\n");
    dir.write("user/part.dd", "part|||\nc|UShort|||\n");
    file = open("r", treetest::raw("\x01\x00\x02"));
    EXPECT_EQ(file->importDictionary(nullptr), -1);
    EXPECT_EQ(file->importDictionary(dir.path("user/extra").c_str()), -1);
    EXPECT_EQ(file->getRoot().numElems(), 2);
    EXPECT_EQ(text(field("b.c").readAll(true)), "2");
    EXPECT_EQ(file->getRoot().getSize(), 3);
    EXPECT_EQ(text(file->getRoot().getDictionaryPath()), dictPath("r"));
}

TEST_F(Records, FileHandle) {
    dict("r", "r|||\na|UChar|||\n");
    file = open("r", "abc");
    EXPECT_EQ(text(file->getName()), "data.bin");
    EXPECT_EQ(file->getPhysicalSize(), 3);
    EXPECT_STREQ(File::driverVersion(), "3.6");
    dir.write("data.bin", "\x07");
    File real(dictPath("r").c_str(), dir.path("data.bin").c_str(), 5L, File::OrderNone);
    EXPECT_EQ(text(real.getRoot().getChild("a")->readAll(true)), "7");
    EXPECT_EQ(real.getPhysicalSize(), 1);
}

TEST_F(Records, FolderStandsForItsDefaultDataFile) {
    dict("r", "r|||\na|UChar|||\n");
    dir.write("data/index", "\x05");
    dir.write("data/other", "\x06");
    File byIndex(dictPath("r").c_str(), dir.path("data").c_str(), 5L, File::OrderNone);
    EXPECT_EQ(text(byIndex.getRoot().getChild("a")->readAll(true)), "5");
    treetest::EnvVar other("VEXA_DEFAULT_DATAFILE", "other");
    File byName(dictPath("r").c_str(), dir.path("data").c_str(), 5L, File::OrderNone);
    EXPECT_EQ(text(byName.getRoot().getChild("a")->readAll(true)), "6");
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

TEST_F(Records, DoubleSlashDataPathsUseTheSearchList) {
    dict("r", "r|||\na|UChar|||\n");
    dir.write("a/sub/x.bin", "\x01");
    dir.write("b/sub/x.bin", "\x02");
    dir.write("c/x.bin", "\x03");
    treetest::EnvVar search("VEXA_AUXFILE_PATH", dir.path("a") + "::" + dir.path("b"));
    treetest::EnvVar specific("VEXA_AUXFILE_PATH_sub", nullptr);
    File first(dictPath("r").c_str(), "//sub/x.bin", 5L, File::OrderNone);
    EXPECT_EQ(text(first.getRoot().getChild("a")->readAll(true)), "1");
    EXPECT_EQ(text(first.getName()), dir.path("a/sub/x.bin"));
    treetest::EnvVar folder("VEXA_AUXFILE_PATH_sub", dir.path("c"));
    File second(dictPath("r").c_str(), "//sub/x.bin", 5L, File::OrderNone);
    EXPECT_EQ(text(second.getRoot().getChild("a")->readAll(true)), "3");
    // only the first entry counts, whether the file is there or not
    dir.write("b/sub/y.bin", "\x04");
    treetest::EnvVar none("VEXA_AUXFILE_PATH_sub", nullptr);
    EXPECT_NE(errorOf([&] { File f(dictPath("r").c_str(), "//sub/y.bin", 5L, File::OrderNone); }), "");
}

TEST_F(Records, AutoDescriptiveLoopIsStopped) {
    dict("a", "AUTO-DESCRIPTIVE|||\nnext|String||1|\n");
    dict("b", "AUTO-DESCRIPTIVE|||\nskip|UChar|||\nnext|String||1|\n");
    EXPECT_EQ(errorOf([&] { open("a", "ba"); }),
              "reference recursion from structure [root] (auto-descriptive dictionary \"" + dictPath("a") +
                  "\" names \"b\" again)");
}
