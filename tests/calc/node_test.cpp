// The node model: conversions between value types, NA, the constant fold,
// variables with memory, links, self, the walks over a tree and the checks of
// argument lists.
#include <gtest/gtest.h>

#include <climits>

#include "calc_testing.h"

using namespace calctest;
using zun::CalcNodeConst;
using zun::RawBuffer;

namespace {

// A raw node that only knows its bytes, and a text node that only knows its
// text: the other conversions are the defaults.
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

class Text : public CalcNode {
public:
    String value;
    explicit Text(const char* v) : CalcNode("text node"), value(v) {}
    Type nodeType() override { return TypeRef; }
    int valType() override { return zun::ValStr; }
    int constLevel() override { return 0; }
    String valStr() override { return value; }
};

using Num = CalcNodeConst<double>;
using Str = CalcNodeConst<String>;

}  // namespace

TEST(CalcNodeConvert, NumbersTextsAndIntegers) {
    EXPECT_EQ(Str("s", "12").valNum(), 12);
    EXPECT_TRUE(std::isnan(Str("s", "12x").valNum()));
    EXPECT_TRUE(std::isnan(Str("s", "").valNum()));
    EXPECT_EQ(Str("s", "12x").valInt(), 12) << "the integer of a text goes by its digits";
    EXPECT_EQ(Text("2.5").valNum(), 2.5);
    EXPECT_EQ(Text("7.9").valInt(), 7) << "the default integer truncates the number";
    EXPECT_TRUE(Num("n", NAN).valStr().isNull());
    EXPECT_EQ(text(CalcNodeConst<long long>("n", 9007199254740993LL).valStr()), "9007199254740993");
    EXPECT_EQ(CalcNodeConst<long long>("n", -3).valNum(), -3);
    EXPECT_EQ(Num("n", NAN).valInt(), LLONG_MIN);
    EXPECT_EQ(Num("n", 1e300).valInt(), LLONG_MIN);
    EXPECT_EQ(Num("n", -2.9).valInt(), -2);
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

    CalcNode::Value value;
    value << 'x';
    Str("s", "ab").val(value);
    EXPECT_EQ(value.type, zun::ValStr);
    EXPECT_EQ(bytesOf(value), std::string("ab\0", 3));
    Num("n", 2).val(value);
    EXPECT_EQ(value.type, zun::ValNum);
    EXPECT_EQ(value.count, 8);
    CalcNode::Value appended;
    appended << 'p';
    Bytes("q").val(appended);
    EXPECT_EQ(appended.type, zun::ValRaw);
    EXPECT_EQ(bytesOf(appended), "pq") << "raw values are appended without clearing";

    zun::CalcNodeNull null;
    EXPECT_TRUE(std::isnan(null.valNum()));
    EXPECT_TRUE(null.valStr().isNull());
    RawBuffer full("x", 1);
    EXPECT_EQ(null.valRaw(full).count, 0) << "the null node empties the buffer";
    EXPECT_EQ(null.reduce(), nullptr);
    EXPECT_EQ(null.constLevel(), -1);
}

TEST(CalcNodeReduce, ConstantsFoldVariablePartsStay) {
    auto p = parse("'a' << 'b'");
    ASSERT_EQ(p->result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(text(p->result->name), "string constant");
    EXPECT_EQ(text(parse("1+2")->result->name), "numeric constant");
    EXPECT_EQ(Num("n", 1).reduce(), nullptr);

    Leaf* x = nullptr;
    Binder b;
    b.nodes["x"] = [&x] { return x = new Leaf(4); };
    auto v = parse("x * (2+3)", &b);
    EXPECT_EQ(v->result->nodeType(), CalcNode::TypeOper);
    std::list<CalcNode*> found;
    EXPECT_EQ(v->listNodes(found, "numeric constant", nullptr, true), 1) << "2+3 folded inside";
    EXPECT_EQ(v->valNum(), 20);
    EXPECT_EQ(x->reads, 1);

    int deaths = 0;
    Leaf* operand = new Leaf(1, -1);
    operand->deaths = &deaths;
    CalcNode* slot = new zun::CalcNodeOperUnary("holder", operand);
    CalcNode* before = slot;
    CalcNode::reduceInPlace(slot);
    EXPECT_NE(slot, before);
    EXPECT_EQ(slot->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(deaths, 1) << "the old node and its operand are gone";
    delete slot;
}

TEST(CalcNodeMem, AVariableIsComputedOnceUntilReset) {
    Leaf* x = new Leaf(3, 1);
    zun::CalcNodeMem mem("v", x);
    EXPECT_EQ(mem.valNum(), 3);
    EXPECT_EQ(mem.valInt(), 3);
    EXPECT_EQ(text(mem.valStr()), "3");
    EXPECT_EQ(x->reads, 1);
    mem.reset(2);
    mem.reset(-1);
    mem.valNum();
    EXPECT_EQ(x->reads, 1) << "a level above the node's, or -1, keeps the value";
    mem.reset(1);
    mem.valNum();
    EXPECT_EQ(x->reads, 2);
    mem.reset();
    mem.valNum();
    EXPECT_EQ(x->reads, 3);
    mem.activate(false);
    mem.valNum();
    EXPECT_EQ(x->reads, 3);
    EXPECT_TRUE(mem.activated);
    mem.activate(true);
    mem.valNum();
    EXPECT_EQ(x->reads, 4) << "a forced activation resets";
    EXPECT_EQ(mem.reduce(), nullptr);
    EXPECT_FALSE(mem.passActivate) << "nothing inside activates";
}

TEST(CalcNodeMem, TheStoreHasTheTypeOfTheExpression) {
    zun::CalcNodeMem words("t", new Text("abc"));
    EXPECT_EQ(words.valType(), zun::ValStr);
    EXPECT_EQ(text(words.valPrint()), "\"abc\"");
    zun::CalcNodeMem bytes("r", new Bytes("xy"));
    EXPECT_EQ(bytes.valType(), zun::ValRaw);
    EXPECT_EQ(bytesOf(bytes.valRaw()), "xy");
    EXPECT_EQ(bytesOf(bytes.valRaw()), "xy") << "read again from the store";
}

TEST(CalcNodeLink, ForwardsToItsTarget) {
    Num target("t", 8);
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
    std::unique_ptr<CalcNode> folded(link.reduce());
    ASSERT_NE(folded, nullptr) << "a constant target folds into a copy";
    EXPECT_EQ(folded->valNum(), 8);

    zun::CalcNodeSelf self(3, 6);
    EXPECT_EQ(self.nodeType(), CalcNode::TypeSelfUnbound);
    EXPECT_EQ(self.valNum(), 0);
    EXPECT_EQ(text(self.valStr()), "");
    Text owner("own");
    self.owner = &owner;
    EXPECT_EQ(self.nodeType(), CalcNode::TypeSelf);
    EXPECT_EQ(self.valType(), zun::ValStr);
    EXPECT_EQ(text(self.valStr()), "own");
}

TEST(CalcNodeWalk, ListNodesByTypeAndName) {
    Binder b;
    b.nodes["x"] = [] { return new Leaf(1); };
    auto p = parse("v = x + 1; w = max(v, x); w", &b);
    std::list<CalcNode*> mems, all, leaves, named, none;
    EXPECT_EQ(p->listNodes(mems, CalcNode::TypeMem), 2) << "w, and v through the link";
    EXPECT_LT(p->listNodes(leaves, "*", nullptr, true), p->listNodes(all, "*", nullptr, false));
    EXPECT_EQ(p->listNodes(named, "le*", nullptr, true), 2);
    EXPECT_EQ(p->listNodes(none, "*", "nothing", false), 0);
}

TEST(CalcNodeFunc, ArgumentChecks) {
    using zun::CalcNodeFunc;
    EXPECT_EQ(CalcNodeFunc::checkArguments(nullptr, nullptr, 1, 2), -1);
    NodeList three;
    three << num(1) << new Leaf(2) << num(3);
    EXPECT_EQ(CalcNodeFunc::checkArguments(nullptr, &three, 1, 2), 1);
    EXPECT_EQ(CalcNodeFunc::checkArguments(nullptr, &three, 3, -1), 0) << "a negative max means min";
    EXPECT_EQ(CalcNodeFunc::checkArguments(nullptr, &three, 2, -1), 1);
    EXPECT_THROW(CalcNodeFunc::checkArguments("f", &three, 4, 5), zun::CalcErrorArgsMissing);
    EXPECT_THROW(CalcNodeFunc::checkArguments("f", &three, 1, 2), zun::CalcErrorArgsTooMany);
    EXPECT_EQ(CalcNodeFunc::checkConstArgs(nullptr, &three, 0, -1), 1);
    EXPECT_EQ(CalcNodeFunc::checkConstArgs(nullptr, &three, 2, -1), -1);
    EXPECT_EQ(CalcNodeFunc::checkConstArgs(nullptr, &three, 0, 1), -1);
    EXPECT_EQ(CalcNodeFunc::checkConstArgs(nullptr, &three, 0, 0), -1);
    try {
        CalcNodeFunc::checkConstArgs("f", &three, 0, -1);
        FAIL() << "no error";
    } catch (zun::CalcErrorArgNotConst& e) {
        EXPECT_EQ(text(e.message), "Unvariable argument  (2) expected in call to Function \"f\"");
    }
}

TEST(CalcNodeFunc, AFailedCountCheckReleasesTheArguments) {
    int deaths = 0;
    auto dying = [&deaths] {
        Leaf* l = new Leaf(1);
        l->deaths = &deaths;
        return l;
    };
    EXPECT_THROW(zun::CalcNodeFunc("f", args({dying()}), 2, 3), zun::CalcErrorArgsMissing);
    EXPECT_EQ(deaths, 1);
    EXPECT_THROW(zun::CalcNodeMethod("m", args({dying()}), dying(), true, 2, 2), zun::CalcErrorArgsMissing);
    EXPECT_EQ(deaths, 3) << "an owned object goes too";
}
