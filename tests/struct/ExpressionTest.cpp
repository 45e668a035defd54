// Sizes and offsets given by statements, and definitions files.
#include "TreeFixture.h"
#include "calc/CalcNode.h"
#include "struct/Error.h"
#include "struct/StructRec.h"

using treetest::errorOf;
using treetest::text;
using vexa::File;
using vexa::StructBase;

namespace {

class Statements : public treetest::TreeTest {
protected:
    vexa::StructRec& root() { return static_cast<vexa::StructRec&>(file->getRoot()); }
    void TearDown() override { File::removeGlobalParameter("three"); }
};

}  // namespace

TEST_F(Statements, SizesAndOffsetsByStatement) {
    File::addGlobalParameter("three", 3LL);
    dict("line", "line|||\na|UChar|||\n");
    dict("r", "r|||\na|String||#three|\nb|String||#half * 2|\nt|@line||#three + 1|\nu|@line||+ 2|\n"
              "v|UChar||||#three - 3\n");
    file = openNamed(dir.path("r") + "&half=1", "a\nbcdefghij");
    EXPECT_EQ(text(field("a").readAll(true)), "\"a\\nb\"");
    EXPECT_EQ(text(field("b").readAll(true)), "\"cd\"");
    EXPECT_EQ(field("a").getSizeDep(), nullptr);
    EXPECT_EQ(field("t").getSize(), 4);
    EXPECT_EQ(field("u").getSize(), 2);
    EXPECT_EQ(text(static_cast<vexa::StructRec&>(field("t")).sizeText), "#three + 1");
    EXPECT_EQ(field("v").getPos(), 0);
    ASSERT_EQ(root().markers.count, 1);
    EXPECT_EQ(root().markers[0]->getType(), vexa::TypeOffset);
    EXPECT_EQ(root().markers[0]->getOffsetDep(), nullptr);
    EXPECT_EQ(file->getRoot().getSize(), 1);  // the last field stands at 0
}

TEST_F(Statements, StatementsThatDoNotCompile) {
    dict("r", "r|||\ns|String||1+|\nt|UChar||||(2\n");
    file = open("r", "abc");
    // "family<family of the cause" of what f throws
    auto families = [](auto f) {
        try {
            f();
        } catch (zun::Exception& e) {
            return std::string(e.family()) + (e.chained ? std::string("<") + e.chained->family() : "");
        }
        return std::string();
    };
    EXPECT_EQ(families([&] { field("s").getSize(); }), "VEXA<CALC");
    EXPECT_EQ(families([&] { field("t").getPos(); }), "CALC");
    EXPECT_EQ(errorOf([&] { field("s").getSize(); }),
              "invalid size statement for field \"s\" in dictionary '" + dictPath("r") + "'");
}

TEST_F(Statements, DefinitionsFiles) {
    std::string path = dir.write("defs.txt", "width = 4; label = \"abc\"; twice = width * 2\n");
    File::addGlobalParameter("", path.c_str());
    zun::CalcBinderNodeList& global = StructBase::globalParameters();
    ASSERT_NE(global.find("width"), nullptr);
    EXPECT_EQ(global.find("width")->valType(), zun::ValNum);
    EXPECT_EQ(text(global.find("label")->valStr()), "abc");
    EXPECT_EQ(global.find("twice")->valNum(), 8);
    for (const char* name : {"width", "label", "twice"}) File::removeGlobalParameter(name);
    EXPECT_EQ(global.find("width"), nullptr);
    // definitions of one file stay with it
    dir.write("n.txt", "n = 2\n");
    dict("r", "r|||\ns|String||#n|\n");
    file = open("r", "abcdef");
    file->addParameter("", dir.path("n.txt").c_str());
    EXPECT_EQ(text(field("s").readAll(true)), "\"ab\"");
    EXPECT_EQ(global.find("n"), nullptr);
}
