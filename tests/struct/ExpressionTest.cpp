// Sizes and offsets given by statements, and definitions files.
#include "TreeFixture.h"
#include "calc/CalcNode.h"
#include "struct/Error.h"
#include "struct/StructRec.h"

using treetest::errorOf;
using treetest::signatureOf;
using treetest::text;
using vexa::File;
using vexa::StructBase;
using vexa::StructElem;

namespace {

class Statements : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;
    StructElem& field(const char* path) { return *file->getRoot().getChild(path); }

    void TearDown() override {
        File::removeGlobalParameter("three");
        File::removeGlobalParameter("off");
    }
};

}  // namespace

TEST_F(Statements, VariableStringSizes) {
    File::addGlobalParameter("three", 3LL);
    dict("r", "r|||\na|String||#three|\nb|String||1+1|\nc|String||#half * 2|\nd|UChar|||\n");
    file = openNamed(dir.path("r") + "&half=1", "a\nbc\tdefg");
    EXPECT_EQ(text(field("a").readAll(true)), "\"a\\nb\"");
    EXPECT_EQ(text(field("b").readAll(true)), "\"c\\t\"");
    EXPECT_EQ(text(field("c").readAll(true)), "\"de\"");
    EXPECT_EQ(field("d").getPos(), 7);
    EXPECT_EQ(text(field("d").getTypeStr(0)), "UChar");
    EXPECT_EQ(text(field("a").getTypeStr(0)), "String");
    EXPECT_EQ(field("a").getSizeDep(), nullptr);
}

TEST_F(Statements, SizeStatementErrors) {
    dict("neg", "neg|||\ns|String||0-2|\n");
    file = open("neg", "abc");
    EXPECT_EQ(signatureOf([&] { field("s").getSize(); }),
              "VEXA002 value out-of-range : size reference \"0-2\" of structure \"s\" returns -2");
    dict("bad", "bad|||\ns|String||1+|\n");
    file = open("bad", "abc");
    try {
        field("s").getSize();
        FAIL() << "no error";
    } catch (vexa::ErrorDictionary& e) {
        EXPECT_EQ(text(e.message), "invalid size statement for field \"s\" in dictionary '" + dictPath("bad") + "'");
        ASSERT_NE(e.chained, nullptr);
        EXPECT_STREQ(e.chained->family(), "CALC");
    }
    dict("unknown", "unknown|||\nn|UChar|||\ns|String||nothing_here|\n");
    file = open("unknown", "abc");
    EXPECT_EQ(errorOf([&] { field("s").getSize(); }),
              "invalid size statement for field \"s\" in dictionary '" + dictPath("unknown") + "'");
}

TEST_F(Statements, RecordSizesFromStatements) {
    File::addGlobalParameter("three", 3LL);
    dict("six", "six||2*3|\na|UChar|||\n");
    dict("line", "line|||\na|UChar|||\n");
    dict("r", "r|||\ns|@six|||\nt|@line||#three + 1|\nu|@line||+ 2|\nv|UChar|||\n");
    file = open("r", std::string(20, '\x01'));
    EXPECT_EQ(field("s").getSize(), 6);
    EXPECT_EQ(field("t").getSize(), 4);
    EXPECT_EQ(field("u").getSize(), 2);
    EXPECT_EQ(field("v").getPos(), 12);
    EXPECT_EQ(text(static_cast<vexa::StructRec&>(field("s")).sizeText), "2*3");
}

TEST_F(Statements, IteratorOutsideArraysCountsNothing) {
    dict("r", "r|||\ns|String||iter + 2|\nv|UChar|||\n");
    file = open("r", "xyz");
    EXPECT_EQ(field("s").getSize(), 2);
    EXPECT_EQ(text(field("v").readAll(true)), "122");
}

TEST_F(Statements, OffsetsByStatement) {
    File::addGlobalParameter("off", 3LL);
    dict("r", "r|||\na|UChar|||\nb|UChar||||#off\nc|UChar|||\nd|UChar||||#off - 3\n");
    file = open("r", "\x01\x02\x03\x04\x05");
    EXPECT_EQ(field("b").getPos(), 3);
    EXPECT_EQ(text(field("b").readAll(true)), "4");
    EXPECT_EQ(field("c").getPos(), 4);
    EXPECT_EQ(field("d").getPos(), 0);
    auto& record = static_cast<vexa::StructRec&>(file->getRoot());
    ASSERT_EQ(record.markers.count, 2);
    EXPECT_EQ(record.markers[0]->getType(), vexa::TypeOffset);
    EXPECT_EQ(record.markers[0]->getOffsetDep(), nullptr);
    EXPECT_EQ(file->getRoot().getSize(), 1);
}

TEST_F(Statements, OffsetStatementErrors) {
    dict("r", "r|||\na|UChar|||\nb|UChar||||0 - 1\n");
    file = open("r", "ab");
    EXPECT_EQ(signatureOf([&] { field("b").getPos(); }),
              "VEXA002 value out-of-range : offset reference \"0 - 1\" of structure \"b\" returns -1");
    dict("p", "p|||\na|UChar|||\nb|UChar||||(2\n");
    file = open("p", "ab");
    try {
        field("b").getPos();
        FAIL() << "no error";
    } catch (zun::Exception& e) {
        EXPECT_STREQ(e.family(), "CALC");
    }
}

TEST_F(Statements, DefinitionsFiles) {
    std::string path = dir.write("defs.txt", "width = 4; label = \"abc\"; twice = width * 2\n");
    File::addGlobalParameter("", path.c_str());
    zun::CalcBinderNodeList& global = StructBase::globalParameters();
    ASSERT_NE(global.find("width"), nullptr);
    EXPECT_EQ(global.find("width")->valNum(), 4);
    EXPECT_EQ(global.find("width")->valType(), zun::ValNum);
    EXPECT_EQ(text(global.find("label")->valStr()), "abc");
    EXPECT_EQ(global.find("twice")->valNum(), 8);
    dict("r", "r|||\ns|String||#twice - #width|\n");
    file = open("r", "abcdef");
    EXPECT_EQ(field("s").getSize(), 4);
    File::removeGlobalParameter("width");
    File::removeGlobalParameter("label");
    File::removeGlobalParameter("twice");
    EXPECT_EQ(global.find("width"), nullptr);
}

TEST_F(Statements, PerFileDefinitions) {
    std::string path = dir.write("defs.txt", "n = 2\n");
    dict("r", "r|||\ns|String||#n|\n");
    file = open("r", "abcdef");
    file->addParameter("", path.c_str());
    EXPECT_EQ(text(field("s").readAll(true)), "\"ab\"");
    EXPECT_EQ(StructBase::globalParameters().find("n"), nullptr);
}
