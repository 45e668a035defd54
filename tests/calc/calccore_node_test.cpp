// The node model: conversions between value types, NA, the constant fold,
// variables with memory, links, and the walks over a tree.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

#include "calccore_testing.h"

using namespace calccore;
using zun::CalcNodeConst;
using zun::RawBuffer;

namespace {

// A raw node that only knows its bytes: the other conversions are defaults.
class Bytes : public CalcNode {
public:
    std::string bytes;
    explicit Bytes(std::string b) : CalcNode("bytes node"), bytes(std::move(b)) {}
    Type nodeType() override { return TypeRef; }
    int valType() override { return zun::ValRaw; }
    int constLevel() override { return 0; }
    RawBuffer& valRaw(RawBuffer& buffer) override {
        buffer.append(static_cast<long>(bytes.size()), bytes.data());
        return buffer;
    }
    using CalcNode::valRaw;
};

// A text node that only knows its text.
class Text : public CalcNode {
public:
    String value;
    explicit Text(const char* v) : CalcNode("text node"), value(v) {}
    Type nodeType() override { return TypeRef; }
    int valType() override { return zun::ValStr; }
    int constLevel() override { return 0; }
    String valStr() override { return value; }
};

std::string bytesOf(const RawBuffer& b) { return std::string(b.data ? b.data : "", static_cast<size_t>(b.count)); }

}  // namespace

TEST(CalcNodeConvert, TextToNumber) {
    EXPECT_EQ(CalcNodeConst<String>("s", "12").valNum(), 12);
    EXPECT_TRUE(std::isnan(CalcNodeConst<String>("s", "12x").valNum()));
    EXPECT_TRUE(std::isnan(CalcNodeConst<String>("s", "").valNum()));
    EXPECT_EQ(CalcNodeConst<String>("s", "12x").valInt(), 12) << "the integer of a text goes by its digits";
    EXPECT_EQ(Text("2.5").valNum(), 2.5);
    EXPECT_EQ(Text("7.9").valInt(), 7) << "the default integer truncates the number";
}

TEST(CalcNodeConvert, NumberToText) {
    EXPECT_EQ(text(CalcNodeConst<double>("n", 0.5).valStr()), "0.5");
    EXPECT_EQ(text(CalcNodeConst<double>("n", 1e20).valStr()), "1e+20");
    EXPECT_TRUE(CalcNodeConst<double>("n", NAN).valStr().isNull());
    EXPECT_EQ(text(CalcNodeConst<double>("n", NAN).valPrint()), "nan");
    EXPECT_EQ(text(CalcNodeConst<double>("n", -NAN).valPrint()), "nan");
    EXPECT_EQ(text(CalcNodeConst<long long>("n", 9007199254740993LL).valStr()), "9007199254740993");
    EXPECT_EQ(CalcNodeConst<long long>("n", -3).valNum(), -3);
}

TEST(CalcNodeConvert, Integers) {
    EXPECT_EQ(CalcNodeConst<double>("n", NAN).valInt(), LLONG_MIN);
    EXPECT_EQ(CalcNodeConst<double>("n", 1e300).valInt(), LLONG_MIN);
    EXPECT_EQ(CalcNodeConst<double>("n", -2.9).valInt(), -2);
}

TEST(CalcNodeConvert, RawValues) {
    Bytes b(std::string("AB\0C", 4));
    EXPECT_EQ(b.valNum(), 4) << "a raw value as a number is its length";
    EXPECT_EQ(text(b.valStr()), "bytes node") << "and as a text the name of its node";
    EXPECT_EQ(text(b.valPrint()), "[41 42 00 43]");
    EXPECT_EQ(text(Bytes("").valPrint()), "[]");
    CalcNodeConst<RawBuffer> c("data constant", RawBuffer("xyz", 3));
    EXPECT_TRUE(std::isnan(c.valNum()));
    EXPECT_TRUE(c.valStr().isNull());
    EXPECT_EQ(c.valInt(), 3);
    EXPECT_EQ(bytesOf(c.valRaw()), "xyz");
}

TEST(CalcNodeConvert, ValuesOfAnyType) {
    CalcNode::Value value;
    value << 'x';
    CalcNodeConst<String>("s", "ab").val(value);
    EXPECT_EQ(value.type, zun::ValStr);
    EXPECT_EQ(bytesOf(value), std::string("ab\0", 3));
    CalcNodeConst<double>("n", 2).val(value);
    EXPECT_EQ(value.type, zun::ValNum);
    EXPECT_EQ(value.count, 8);
    CalcNode::Value raw;
    raw << 'p';
    Bytes("q").val(raw);
    EXPECT_EQ(raw.type, zun::ValRaw);
    EXPECT_EQ(bytesOf(raw), "pq") << "raw values are appended without clearing";
}

TEST(CalcNodeNA, NullNodeAndNullText) {
    zun::CalcNodeNull null;
    EXPECT_TRUE(std::isnan(null.valNum()));
    EXPECT_TRUE(null.valStr().isNull());
    RawBuffer b("x", 1);
    EXPECT_EQ(null.valRaw(b).count, 0) << "empties the buffer";
    EXPECT_EQ(null.reduce(), nullptr);
    EXPECT_EQ(null.constLevel(), -1);
}

TEST(CalcNodeReduce, ConstantsFold) {
    CalcParser p("1+2", static_cast<zun::CalcBinder*>(nullptr));
    ASSERT_EQ(p.result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(text(p.result->name), "numeric constant");
    EXPECT_EQ(p.result->valNum(), 3);
    CalcParser s("'a' << 'b'", static_cast<zun::CalcBinder*>(nullptr));
    ASSERT_EQ(s.result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(text(s.result->name), "string constant");
    EXPECT_EQ(CalcNodeConst<double>("n", 1).reduce(), nullptr);
}

TEST(CalcNodeReduce, VariablePartsStay) {
    int reads = 0;
    TestBinder b;
    b.nodes["x"] = [&reads] { return new Counted(4, &reads); };
    CalcParser p("x * (2+3)", b);
    EXPECT_EQ(p.result->nodeType(), CalcNode::TypeOper);
    std::list<CalcNode*> found;
    EXPECT_EQ(p.listNodes(found, "numeric constant", nullptr, true), 1) << "2+3 folded inside";
    EXPECT_EQ(p.valNum(), 20);
    EXPECT_EQ(reads, 1);
}

TEST(CalcNodeReduce, InPlaceReplacesAndDestroys) {
    int deaths = 0;
    CalcNode* slot = new zun::CalcNodeOperUnary("holder", new Counted(1, nullptr, &deaths, -1));
    CalcNode* before = slot;
    CalcNode::reduceInPlace(slot);
    EXPECT_NE(slot, before);
    EXPECT_EQ(slot->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(deaths, 1) << "the old node and its operand are gone";
    delete slot;
}

TEST(CalcNodeMem, AVariableIsComputedOnceUntilReset) {
    int reads = 0;
    zun::CalcNodeMem mem("v", new Counted(3, &reads));
    EXPECT_EQ(mem.valNum(), 3);
    EXPECT_EQ(mem.valInt(), 3);
    EXPECT_EQ(text(mem.valStr()), "3");
    EXPECT_EQ(reads, 1);
    mem.reset();
    EXPECT_EQ(mem.valNum(), 3);
    EXPECT_EQ(reads, 2);
}

TEST(CalcNodeMem, ResetByLevel) {
    int reads = 0;
    zun::CalcNodeMem mem("v", new Counted(3, &reads, nullptr, 1));
    mem.valNum();
    mem.reset(2);
    mem.valNum();
    EXPECT_EQ(reads, 1) << "a level above the node's keeps the value";
    mem.reset(-1);
    mem.valNum();
    EXPECT_EQ(reads, 1);
    mem.reset(1);
    mem.valNum();
    EXPECT_EQ(reads, 2);
}

TEST(CalcNodeMem, TheStoreHasTheTypeOfTheExpression) {
    zun::CalcNodeMem text1("t", new Text("abc"));
    EXPECT_EQ(text1.valType(), zun::ValStr);
    EXPECT_EQ(text(text1.valStr()), "abc");
    EXPECT_EQ(text(text1.valPrint()), "\"abc\"");
    zun::CalcNodeMem raw("r", new Bytes("xy"));
    EXPECT_EQ(raw.valType(), zun::ValRaw);
    EXPECT_EQ(bytesOf(raw.valRaw()), "xy");
    EXPECT_EQ(bytesOf(raw.valRaw()), "xy") << "read again from the store";
}

TEST(CalcNodeMem, ActivationAndReduction) {
    int reads = 0;
    zun::CalcNodeMem mem("v", new Counted(3, &reads));
    mem.valNum();
    mem.activate(false);
    mem.valNum();
    EXPECT_EQ(reads, 1);
    EXPECT_TRUE(mem.activated);
    mem.activate(true);
    mem.valNum();
    EXPECT_EQ(reads, 2) << "a forced activation resets";
    EXPECT_EQ(mem.reduce(), nullptr);
    EXPECT_FALSE(mem.passActivate) << "nothing inside activates";
}

TEST(CalcNodeLink, ForwardsToItsTarget) {
    CalcNodeConst<double> target("t", 8);
    zun::CalcNodeLink link(&target);
    EXPECT_EQ(text(link.name), "link to node t");
    EXPECT_EQ(link.nodeType(), CalcNode::TypeLink);
    EXPECT_EQ(link.valNum(), 8);
    EXPECT_EQ(link.constLevel(), -1);
    EXPECT_EQ(link.operOverloadR("+", nullptr, nullptr), &link);
    std::list<CalcNode*> found;
    EXPECT_EQ(link.listNodes(found, "*", nullptr, false), 2);
    EXPECT_EQ(found.front(), &link);
    EXPECT_EQ(found.back(), &target);
    CalcNode* folded = link.reduce();
    ASSERT_NE(folded, nullptr) << "a constant target folds into a copy";
    EXPECT_EQ(folded->valNum(), 8);
    delete folded;
}

TEST(CalcNodeSelf, WithoutAndWithOwner) {
    zun::CalcNodeSelf self(3, 6);
    EXPECT_EQ(self.nodeType(), CalcNode::TypeSelfUnbound);
    EXPECT_EQ(self.valNum(), 0);
    EXPECT_EQ(text(self.valStr()), "");
    EXPECT_EQ(self.constLevel(), 0);
    Text owner("own");
    self.owner = &owner;
    EXPECT_EQ(self.nodeType(), CalcNode::TypeSelf);
    EXPECT_EQ(self.valType(), zun::ValStr);
    EXPECT_EQ(text(self.valStr()), "own");
}

TEST(CalcNodeWalk, ListNodesByTypeAndName) {
    TestBinder b;
    b.nodes["x"] = [] { return new Counted(1); };
    CalcParser p("v = x + 1; w = max(v, x); w", b);
    std::list<CalcNode*> mems;
    EXPECT_EQ(p.listNodes(mems, CalcNode::TypeMem), 2) << "w, and v through the link";
    std::list<CalcNode*> all;
    int everything = p.listNodes(all, "*", nullptr, false);
    std::list<CalcNode*> leaves;
    int leavesOnly = p.listNodes(leaves, "*", nullptr, true);
    EXPECT_LT(leavesOnly, everything);
    std::list<CalcNode*> counted;
    EXPECT_EQ(p.listNodes(counted, "count*", nullptr, true), 2);
    std::list<CalcNode*> none;
    EXPECT_EQ(p.listNodes(none, "*", "nothing", false), 0);
}

TEST(CalcNodeFunc, ArgumentCounts) {
    EXPECT_EQ(zun::CalcNodeFunc::checkArguments(nullptr, nullptr, 1, 2), -1);
    zun::ObjAppendListP<CalcNode> three;
    three << new Counted(1) << new Counted(2) << new Counted(3);
    EXPECT_EQ(zun::CalcNodeFunc::checkArguments(nullptr, &three, 1, 2), 1);
    EXPECT_EQ(zun::CalcNodeFunc::checkArguments(nullptr, &three, 3, -1), 0) << "a negative max means min";
    EXPECT_EQ(zun::CalcNodeFunc::checkArguments(nullptr, &three, 2, -1), 1);
    EXPECT_THROW(zun::CalcNodeFunc::checkArguments("f", &three, 4, 5), zun::CalcErrorArgsMissing);
    EXPECT_THROW(zun::CalcNodeFunc::checkArguments("f", &three, 1, 2), zun::CalcErrorArgsTooMany);
}

TEST(CalcNodeFunc, ConstantArguments) {
    zun::ObjAppendListP<CalcNode> list;
    list << new CalcNodeConst<double>("c", 1) << new Counted(2) << new CalcNodeConst<double>("c", 3);
    EXPECT_EQ(zun::CalcNodeFunc::checkConstArgs(nullptr, &list, 0, -1), 1);
    EXPECT_EQ(zun::CalcNodeFunc::checkConstArgs(nullptr, &list, 2, -1), -1);
    EXPECT_EQ(zun::CalcNodeFunc::checkConstArgs(nullptr, &list, 0, 1), -1);
    EXPECT_EQ(zun::CalcNodeFunc::checkConstArgs(nullptr, &list, 0, 0), -1);
    try {
        zun::CalcNodeFunc::checkConstArgs("f", &list, 0, -1);
        FAIL() << "no error";
    } catch (zun::CalcErrorArgNotConst& e) {
        EXPECT_EQ(text(e.message), "Unvariable argument  (2) expected in call to Function \"f\"");
    }
}

TEST(CalcNodeFunc, AFailedCountCheckReleasesTheArguments) {
    int deaths = 0;
    auto* list = new zun::ObjAppendListP<CalcNode>();
    *list << new Counted(1, nullptr, &deaths);
    EXPECT_THROW(zun::CalcNodeFunc("f", list, 2, 3), zun::CalcErrorArgsMissing);
    EXPECT_EQ(deaths, 1);
    auto* more = new zun::ObjAppendListP<CalcNode>();
    *more << new Counted(1, nullptr, &deaths);
    EXPECT_THROW(zun::CalcNodeMethod("m", more, new Counted(2, nullptr, &deaths), true, 2, 2),
                 zun::CalcErrorArgsMissing);
    EXPECT_EQ(deaths, 3) << "an owned object goes too";
}
