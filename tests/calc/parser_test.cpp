// The parser as binders and nodes meet it: statements and their variables,
// the order of name lookup, iterators, members and keywords of bound objects,
// nested compiles, stack limits, levels of change, and the parser as a node.
#include <gtest/gtest.h>

#include <sstream>

#include "calc_testing.h"

using namespace calctest;
using zun::CalcBinder;

namespace {

CalcNode* refusing() {
    Leaf* l = new Leaf(5);
    l->refuseOperands = true;
    return l;
}

}  // namespace

TEST(CalcParser, StatementsAndTheirVariables) {
    EXPECT_EQ(parse("")->result->nodeType(), CalcNode::TypeNull);
    EXPECT_EQ(parse("  // only a comment")->result->nodeType(), CalcNode::TypeNull);
    auto p = parse("a=1; b=2; a=a+2; 7");
    std::list<CalcNode*> vars;
    EXPECT_EQ(p->listVars(vars, "*", nullptr, true), 3) << "every assignment stays";
    std::vector<std::string> names;
    for (CalcNode* v : vars) names.push_back(text(v->name));
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "a"}));
    EXPECT_EQ(vars.back()->valNum(), 3);
    std::list<CalcNode*> onlyA;
    EXPECT_EQ(p->listVars(onlyA, "a", nullptr, true), 2);
    EXPECT_EQ(p->getVar("a"), vars.back()) << "the last of that name";
    EXPECT_EQ(p->getVar("c"), nullptr);
    EXPECT_EQ(p->getVar(nullptr), p->result);
    auto last = parse("a=1;b=2");
    EXPECT_EQ(last->result->nodeType(), CalcNode::TypeLink) << "a link to the last assignment";
    EXPECT_EQ(last->valNum(), 2);
}

TEST(CalcParser, NamesAreLookedUpInOrder) {
    Binder b;
    b.values["x"] = 1;
    b.values["a"] = 10;
    b.values["a b"] = 4;
    b.values["pi"] = 9;
    EXPECT_EQ(value("a=a+1", &b), 11) << "a variable can't see itself, an outside name can";
    EXPECT_EQ(value("pi=3; pi", &b), 3) << "variables first";
    EXPECT_EQ(value("x", &b), 1);
    EXPECT_DOUBLE_EQ(value("pi", &b), 3.141592653589793) << "builtins before binders";
    EXPECT_EQ(value("{a b} + 1", &b), 5) << "braced names ask the binders only";
    EXPECT_EQ(value("{pi}", &b), 9);
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("v=1; {v}", &b), "\"v\"");
    EXPECT_EQ(bitsOf(value("nan")), 0xFFF8000000000000ull);
    auto null = parse("null");
    EXPECT_EQ(null->valType(), zun::ValStr);
    EXPECT_TRUE(null->valStr().isNull());
}

TEST(CalcParser, IteratorNames) {
    Binder b;
    b.rows.count = 3;
    b.rows.index = 2;
    EXPECT_EQ(value("iter * 10", &b), 20);
    EXPECT_EQ(value("iter1", &b), 2);
    EXPECT_EQ(b.iteratorLevels, (std::vector<int>{0, 1}));
    auto p = parse("iter", &b);
    EXPECT_EQ(p->constLevel(), 0);
    EXPECT_EQ(text(p->result->name), "iter0");
    EXPECT_EQ(errorOf<zun::CalcErrorSymbolInvalid>("iterx", &b), "\"iterx\"") << "not an iterator name";
    EXPECT_EQ(errorOf<zun::CalcErrorIterator>("iter"), "no bindIterator function");
    b.offerIterator = false;
    EXPECT_EQ(errorOf<zun::CalcError>("iter", &b), "<bare text: no bindIterator function>");
}

TEST(CalcParser, FunctionsFromBindersBeforeBuiltins) {
    Binder b;
    bool nullArgs = false;
    b.functions["min"] = [](NodeList* list) -> CalcNode* {
        delete list;
        return num(77);
    };
    b.functions["none"] = [&nullArgs](NodeList* list) -> CalcNode* {
        nullArgs = list == nullptr;
        delete list;
        return num(1);
    };
    b.functions["(int)"] = [](NodeList* list) -> CalcNode* {
        double v = std::trunc(list->data[0]->valNum());
        delete list;
        return num(v);
    };
    b.nodes["refuse"] = refusing;
    EXPECT_EQ(value("min(1, 2)", &b), 77);
    EXPECT_EQ(value("none()", &b), 1);
    EXPECT_TRUE(nullArgs) << "no arguments pass a null list";
    EXPECT_EQ(value("max(1, 2)", &b), 2);
    EXPECT_EQ(value("(int) 2.7 + 1", &b), 3) << "a cast function takes its operand before +";
    EXPECT_EQ(errorOf<zun::CalcErrorFunctionCallInvalid>("max(1, refuse)", &b),
              "Argument 2 is not authorised in call to function \"max\"") << "arguments are offered the name first";
}

TEST(CalcParser, ErrorMessages) {
    EXPECT_EQ(text(zun::CalcErrorFunctionCallInvalid("f", "bad").message), "bad in call to function \"f\"");
    EXPECT_EQ(text(zun::CalcErrorSymbolInvalid("ctx", "s").message), "ctx while evaluating symbol \"s\"");
    zun::CalcErrorOperatorInvalid e("(x)");
    e.chainStmt("a\tb", 3, 3);
    EXPECT_EQ(text(e.message), "(x) in statement (a\\t >>> b <<< )");
    EXPECT_EQ(text(zun::CalcError("abc", 9, 12).message), "in statement (abc >>>  <<< )") << "columns past the end";
}

TEST(CalcParser, MembersOfABoundObject) {
    Binder b;
    Leaf* obj = nullptr;
    b.nodes["obj"] = [&obj] {
        obj = new Leaf(5, 0, "obj");
        obj->takeMethods = true;
        return obj;
    };
    b.nodes["refuse"] = refusing;
    auto call = parse("obj@m(1, 'a,b' , max(2))", &b);
    EXPECT_EQ(call->valNum(), 3);
    EXPECT_EQ(obj->lastArgText, "1, 'a,b' , max(2)") << "the argument text as written";
    auto index = parse("obj[4,5]", &b);
    EXPECT_EQ(index->valNum(), 2);
    EXPECT_EQ(obj->lastArgText, "4,5");
    EXPECT_EQ(value("obj[refuse]", &b), 1) << "the first index isn't asked";
    EXPECT_EQ(errorOf<zun::CalcError>("obj@m(1, refuse)", &b), "<bare text: Argument 2 is not authorised>");
    EXPECT_EQ(errorOf<zun::CalcErrorFunctionCallInvalid>("'abc'[1, refuse]", &b),
              "operator::[] in call to function \"Argument 2 is not authorised\"");
    EXPECT_EQ(errorOf<zun::CalcErrorPropertyInvalid>("1 + obj@size", &b),
              "\"size\" in statement (1 + obj >>> @size <<< )");
    // "**" binds least of all, left to right
    EXPECT_EQ(value("obj ** 2*2", &b), 5004);
    EXPECT_EQ(value("obj ** 2 ** 3", &b), 5002003);
}

TEST(CalcParser, KeywordsAndAssignments) {
    Binder b;
    b.nodes["obj"] = [] { return new Leaf(5, 0, "obj"); };
    b.nodes["fixed"] = [] {
        Leaf* l = new Leaf(1);
        l->refuseAssignment = true;
        return l;
    };
    EXPECT_EQ(value("obj kw + 1", &b), 6);
    EXPECT_EQ(value("obj {kw}", &b), 5);
    EXPECT_THROW(parse("obj other", &b), zun::CalcErrorOperatorExpected);
    EXPECT_THROW(parse("v = obj; v kw", &b), zun::CalcErrorOperatorExpected) << "through a variable, via is set";
    EXPECT_EQ(errorOf<zun::CalcErrorAssignmentInvalid>("a=1; v = fixed + 0 ; w=2", &b), "<no error>");
    EXPECT_EQ(errorOf<zun::CalcErrorAssignmentInvalid>("a=1; v = fixed", &b),
              "Assignment of variable \"v\" is invalid in statement (a=1;  >>> v = fixed <<< )");
}

TEST(CalcParser, ABinderMayCompileWhileAParseIsHalfWay) {
    Binder b;
    b.nodes["outer"] = [] {
        parse("x = 'in' << 'ner'; strlen(x) * 2");
        return new Leaf(5);
    };
    b.nodes["six"] = [] { return num(parse("2*3")->valNum()); };
    EXPECT_EQ(value("outer kw", &b), 5) << "the text of the lookahead NAME survives";
    EXPECT_EQ(value("six + 1", &b), 7) << "the lookahead '+' survives";
    EXPECT_EQ(value("f = six; f * six", &b), 36);
}

TEST(CalcParser, LenientParsesStopWhereTheStackRanOut) {
    EXPECT_EQ(value((std::string(150, '(') + "1" + std::string(150, ')')).c_str()), 1);
    std::istringstream in(std::string(300, '(') + "1" + std::string(300, ')'));
    CalcParser p(in, static_cast<CalcBinder*>(nullptr), true);
    EXPECT_GT(p.consumed, 100);
    EXPECT_LT(p.consumed, 300);
    EXPECT_EQ(static_cast<long long>(in.tellg()), p.consumed) << "and so does the stream";
    EXPECT_TRUE(std::isnan(p.valNum())) << "nothing was built";
    std::istringstream bad("1+");
    EXPECT_THROW(CalcParser(bad, static_cast<CalcBinder*>(nullptr), true), zun::CalcError)
        << "a syntax error isn't softened";
    std::istringstream whole("a = 1; a + 2  ");
    EXPECT_EQ(CalcParser(whole, static_cast<CalcBinder*>(nullptr)).consumed, 14);
}

TEST(CalcParser, AParserIsANode) {
    Binder b;
    b.rows.count = 5;
    auto p = parse("k = iter * 2; k + 1", &b);
    EXPECT_EQ(p->nodeType(), CalcNode::TypeParser);
    EXPECT_EQ(text(p->name), "root");
    EXPECT_EQ(p->constLevel(), 0);
    b.rows.index = 3;
    EXPECT_EQ(p->valNum(), 7);
    b.rows.index = 4;
    EXPECT_EQ(p->valNum(), 7) << "the variable keeps its value until reset";
    p->reset();
    String s;
    p->val(s);
    EXPECT_EQ(text(s), "9");

    CalcNode* folded = parse("2*3")->reduce();
    ASSERT_NE(folded, nullptr);
    EXPECT_EQ(folded->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(folded->valNum(), 6);
    delete folded;
    auto bare = parse("iter + 1", &b);
    CalcNode* given = bare->reduce();
    ASSERT_NE(given, nullptr) << "no variables: the parser gives its result up";
    EXPECT_EQ(bare->result, nullptr);
    bare.reset();
    EXPECT_EQ(given->valNum(), 5);
    delete given;
    EXPECT_EQ(parse("v = iter; v + 1", &b)->reduce(), nullptr) << "a variable stays with its parser";
}

TEST(CalcParser, TheLowestLevelWhateverItsPlace) {
    Binder b;
    const std::pair<const char*, int> cases[] = {
        {"iter2 + iter1", 1}, {"iter1 + iter2", 1}, {"iter2 * 3 - iter1", 1}, {"iter2 - iter1 * 3", 1},
        {"min(iter2, 5, iter1)", 1}, {"iter3 + 1 ? iter2 : iter", 0}, {"-iter2", 2}, {"1 + 2 * pi", -1},
    };
    for (const auto& c : cases) EXPECT_EQ(parse(c.first, &b)->constLevel(), c.second) << c.first;
}

TEST(CalcParser, ReducingAChainAsksEachLeafAFewTimes) {
    // A leaf that counts how often it is asked for its level.
    struct Counter : Leaf {
        long& asked;
        explicit Counter(long& asked) : Leaf(1), asked(asked) {}
        int constLevel() override {
            ++asked;
            return 0;
        }
    };
    long asked = 0;
    Binder b;
    b.nodes["v"] = [&asked] { return new Counter(asked); };
    for (int terms : {100, 1000}) {
        std::string text = "v";
        for (int i = 1; i < terms; ++i) text += i % 2 ? " + v * 3" : " - v";
        asked = 0;
        EXPECT_EQ(value(text.c_str(), &b), 1 + (terms / 2) * 3 - (terms - 1) / 2);
        EXPECT_LT(asked, 4L * terms) << terms << " terms";
    }
}
