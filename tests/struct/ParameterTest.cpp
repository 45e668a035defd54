// Parameters: the standard ones of a file, "&" parameters in dictionary
// names, the global list, and their binding as "#" names.
#include <cmath>
#include <memory>

#include "TreeFixture.h"
#include "calc/CalcNode.h"
#include "dict/CalcBinder.h"
#include "struct/StructAlias.h"

using treetest::text;
using vexa::File;
using vexa::StructBase;
using zun::CalcBinderNodeList;
using zun::CalcNode;
using zun::String;

namespace {

class Parameters : public treetest::TreeTest {
protected:
    std::unique_ptr<File> file;

    std::string str(CalcBinderNodeList& list, const char* name) {
        CalcNode* node = list.find(name);
        return node ? text(node->valStr()) : "(none)";
    }
    double num(CalcBinderNodeList& list, const char* name) {
        CalcNode* node = list.find(name);
        return node ? node->valNum() : -999;
    }
};

}  // namespace

TEST_F(Parameters, StandardParametersOfAFile) {
    dict("r", "r|||\n");
    dir.write("data/file.bin", "abcde");
    file = std::make_unique<File>(dictPath("r").c_str(), dir.path("data/file.bin").c_str(), 5L, File::OrderNone);
    CalcBinderNodeList& p = file->getRoot().parameters;
    EXPECT_EQ(str(p, "filename"), "file.bin");
    EXPECT_EQ(str(p, "dirname"), dir.path("data"));
    EXPECT_EQ(str(p, "pathname"), dir.path("data/file.bin"));
    EXPECT_EQ(num(p, "filesize"), 5);
    EXPECT_EQ(num(p, "fifo"), 0);
    EXPECT_EQ(p.count, 5);
}

TEST_F(Parameters, AmpersandParametersInTheDictionaryName) {
    dict("r", "r|||\n");
    file = openNamed(dir.path("r") + "&a=1&&b=x=y&c", "");
    CalcBinderNodeList& p = file->getRoot().parameters;
    EXPECT_EQ(str(p, "a"), "1");
    EXPECT_EQ(str(p, "b"), "x=y");
    ASSERT_NE(p.find("c"), nullptr);
    EXPECT_TRUE(p.find("c")->valStr().isNull());
    EXPECT_EQ(text(file->getRoot().getDictionaryPath()), dictPath("r"));
}

TEST_F(Parameters, FileParametersAreCutFromTheName) {
    String name("data.bin&a=1&b=2");
    EXPECT_EQ(text(File::fileParameters(name)), "&a=1&b=2");
    EXPECT_EQ(text(name), "data.bin");
    String leading("&x=1");
    EXPECT_TRUE(File::fileParameters(leading).isNull());
    EXPECT_EQ(text(leading), "&x=1");
    String plain("data.bin");
    EXPECT_TRUE(File::fileParameters(plain).isNull());
}

TEST_F(Parameters, ListsKeepOrderAndRemoveTheLastOfAName) {
    CalcBinderNodeList list;
    StructBase::addParameter("p", "one", list);
    StructBase::addParameter("q", 2LL, list);
    StructBase::addParameter("p", "two", list);
    StructBase::addParameter(nullptr, 2.5, list);
    EXPECT_EQ(text(list[3].name), "numeric constant");
    EXPECT_EQ(str(list, "p"), "two");
    StructBase::removeParameter("p", list);
    EXPECT_EQ(str(list, "p"), "one");
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(text(list[1].name), "q");
    StructBase::removeParameter("nothing", list);
    EXPECT_EQ(list.count, 3);
    StructBase::addParameter("n", "12", list);
    EXPECT_EQ(list.find("n")->valType(), zun::ValStr);
}

TEST_F(Parameters, HashNamesBindFileThenGlobalParameters) {
    dict("r", "r|||\nx|UChar|||\n");
    file = open("r", "z");
    File::addGlobalParameter("shared", 7LL);
    File::addGlobalParameter("filename", "global");
    file->addParameter("own", 1.5);
    std::unique_ptr<zun::CalcBinder> binder(file->getRoot().getChild("x")->getCalcBinder(nullptr, nullptr));
    std::unique_ptr<CalcNode> own(binder->bindSymbol("#own"));
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->valNum(), 1.5);
    std::unique_ptr<CalcNode> shared(binder->bindSymbol("#shared"));
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(shared->valNum(), 7);
    std::unique_ptr<CalcNode> name(binder->bindSymbol("#filename"));
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(text(name->valStr()), "data.bin");
    EXPECT_EQ(binder->bindSymbol("filename"), nullptr);
    EXPECT_EQ(binder->bindSymbol("#unknown"), nullptr);
    EXPECT_EQ(binder->bindFunction("aread", nullptr), nullptr);
    File::removeGlobalParameter("shared");
    File::removeGlobalParameter("filename");
    std::unique_ptr<CalcNode> gone(binder->bindSymbol("#shared"));
    EXPECT_EQ(gone, nullptr);
    file->removeParameter("own");
    EXPECT_EQ(file->getRoot().parameters.find("own"), nullptr);
}

TEST_F(Parameters, IteratorAtTopLevelCountsNothing) {
    dict("r", "r|||\nx|UChar|||\n");
    file = open("r", "z");
    std::unique_ptr<zun::CalcBinder> binder(file->getRoot().getChild("x")->getCalcBinder(nullptr, nullptr));
    std::unique_ptr<zun::CalcIterator> it(binder->bindIterator(0));
    ASSERT_NE(it, nullptr);
    EXPECT_EQ(it->count(), 0);
    EXPECT_EQ(it->getIndex(), 0);
}
