// Parameters: the standard ones of a file, "&" parameters, the lists that
// hold them, and their binding as "#" names.
#include <memory>

#include "TreeFixture.h"
#include "calc/CalcError.h"
#include "calc/CalcNode.h"
#include "dict/CalcBinder.h"

using treetest::text;
using vexa::File;
using vexa::StructBase;
using zun::CalcBinderNodeList;
using zun::CalcNode;
using zun::String;

namespace {

std::string str(CalcBinderNodeList& list, const char* name) {
    CalcNode* node = list.find(name);
    return node ? text(node->valStr()) : "(none)";
}

class Parameters : public treetest::TreeTest {};

}  // namespace

TEST_F(Parameters, StandardAndAmpersandParameters) {
    dict("r", "r|||\n");
    dir.write("data/file.bin", "abcde");
    File f(dictPath("r").c_str(), dir.path("data/file.bin").c_str(), 5L, File::OrderNone);
    CalcBinderNodeList& p = f.getRoot().parameters;
    EXPECT_EQ(p.count, 5);
    EXPECT_EQ(str(p, "pathname"), dir.path("data/file.bin"));
    EXPECT_EQ(str(p, "dirname"), dir.path("data"));
    auto named = openNamed(dir.path("r") + "&a=1&&b=x=y&c", "");
    CalcBinderNodeList& q = named->getRoot().parameters;
    EXPECT_EQ(str(q, "b"), "x=y");
    ASSERT_NE(q.find("c"), nullptr);
    EXPECT_TRUE(q.find("c")->valStr().isNull());
    EXPECT_EQ(text(named->getRoot().getDictionaryPath()), dictPath("r"));
    String name("data.bin&a=1&b=2");
    EXPECT_EQ(text(File::fileParameters(name)), "&a=1&b=2");
    EXPECT_EQ(text(name), "data.bin");
}

TEST(ParameterList, KeepsOrderAndRemovesTheLastOfAName) {
    CalcBinderNodeList list;
    StructBase::addParameter("p", "one", list);
    StructBase::addParameter("q", 2LL, list);
    StructBase::addParameter("p", "two", list);
    StructBase::addParameter(nullptr, 2.5, list);
    EXPECT_EQ(text(list[3].name), "numeric constant");
    EXPECT_EQ(str(list, "p"), "two");
    StructBase::removeParameter("p", list);
    StructBase::removeParameter("nothing", list);
    EXPECT_EQ(str(list, "p"), "one");
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(text(list[1].name), "q");
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
    auto bound = [&](const char* name) {
        std::unique_ptr<CalcNode> node(binder->bindSymbol(name));
        return node ? text(node->valStr()) : "(none)";
    };
    EXPECT_EQ(bound("#own"), "1.5");
    EXPECT_EQ(bound("#shared"), "7");
    EXPECT_EQ(bound("#filename"), "data.bin");
    EXPECT_EQ(bound("filename"), "(none)");
    EXPECT_EQ(bound("#unknown"), "(none)");
    // the array functions are the binder's; the others the parser's own
    EXPECT_EQ(binder->bindFunction("sin", nullptr), nullptr);
    EXPECT_THROW(binder->bindFunction("aread", nullptr), zun::CalcErrorArgsMissing);
    File::removeGlobalParameter("shared");
    File::removeGlobalParameter("filename");
    EXPECT_EQ(bound("#shared"), "(none)");
    file->removeParameter("own");
    EXPECT_EQ(file->getRoot().parameters.find("own"), nullptr);
    // no array around: the iterator counts nothing
    std::unique_ptr<zun::CalcIterator> it(binder->bindIterator(0));
    ASSERT_NE(it, nullptr);
    EXPECT_EQ(it->count(), 0);
    EXPECT_EQ(it->getIndex(), 0);
}
