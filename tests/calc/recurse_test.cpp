// recurse, recurse0, lastof and sort walked over a table, row by row and by
// jumps no program makes in order: what they read, how they move the
// iterator and where they leave it; and trees that keep their parser.
#include <gtest/gtest.h>

#include "calc/CalcFunctions.h"
#include "calc/CalcNodeFuncState.h"
#include "calc_testing.h"

using namespace calctest;
using namespace zun;

namespace {

using Recurse = CalcNodeFuncRecurse<double>;
using LastOf = CalcNodeFuncLastOf<double>;

// self + x, as recurse(self + x) is built, over x = {1, 2, ...}.
CalcNode* runningSum(Binder& b) { return makeOperatorNode("+", new CalcNodeSelf(1, 4), b.bindSymbol("x")); }

// sort over one key with the element number as the last key, as the parser adds it.
std::unique_ptr<CalcNodeFuncSort> sortOf(Binder& b, CalcNode* key) {
    return std::make_unique<CalcNodeFuncSort>("sort", args({key, new CalcNodeIterator(b.bindIterator(0))}), b);
}

}  // namespace

TEST(CalcRecurse, OneEvaluationPerStepForwardAndFromTheSeedWhenRepeated) {
    Binder b;
    b.setColumn("x", {1, 2, 3, 4, 5});
    Recurse r("recurse", args({runningSum(b)}), b, -1);
    EXPECT_EQ(walk(r, b), (V{1, 3, 6, 10, 15}));
    EXPECT_EQ(b.reads["x"], 5);
    EXPECT_EQ(b.rows.moves, 0) << "a forward walk never moves the iterator";
    b.reads["x"] = 0;
    EXPECT_EQ(at(r, b, 3), 10);
    EXPECT_EQ(at(r, b, 3), 10);
    EXPECT_EQ(b.reads["x"], 8) << "back to 3, then 3 again: each time from the seed, indices 0 to 3";
    EXPECT_EQ(b.rows.index, 3);
}

TEST(CalcRecurse, JumpsBackwardsAndForwards) {
    Binder b;
    b.setColumn("x", {1, 2, 3, 4, 5, 6});
    Recurse r("recurse", args({runningSum(b), num(100)}), b, -1);
    EXPECT_EQ(at(r, b, 5), 121);
    EXPECT_EQ(at(r, b, 1), 103);
    EXPECT_EQ(at(r, b, 4), 115);
    EXPECT_EQ(at(r, b, 0), 101);
    EXPECT_EQ(at(r, b, 2), 106);
    EXPECT_EQ(at(r, b, -1), 100) << "a negative index gives the seed";
    b.rows.path.clear();
    EXPECT_EQ(at(r, b, 4), 115);
    EXPECT_EQ(b.rows.path, (std::vector<long>{3, 4})) << "from index 2 held: only 3 is caught up, then back to 4";
}

TEST(CalcRecurse, LevelIncludesTheIteratorAndCountsComeFirst) {
    Binder b;
    b.rows.count = 3;
    // A constant expression still changes with the index (the seed at 0 of
    // recurse0 differs), so it must not fold.
    Recurse r0("recurse0", args({num(5), num(1)}), b, 0);
    EXPECT_EQ(r0.constLevel(), 0);
    EXPECT_EQ(r0.reduce(), nullptr);
    EXPECT_EQ(walk(r0, b), (V{1, 5, 5}));
    b.iteratorLevels.clear();
    EXPECT_THROW(Recurse("recurse", args({}), b, -1), CalcErrorArgsMissing);
    EXPECT_THROW(Recurse("recurse", args({num(1), num(2), num(3)}), b, -1), CalcErrorArgsTooMany);
    EXPECT_TRUE(b.iteratorLevels.empty()) << "the count is checked before the iterator is bound";
}

TEST(CalcLastOf, OneReadPerRowAndWhatItHoldsWhenRepeated) {
    Binder b;
    b.setColumn("x", {10, 20, 30, 40});
    LastOf l("lastof", args({b.bindSymbol("x"), num(7)}), b);
    EXPECT_EQ(walk(l, b), (V{7, 10, 20, 30}));
    EXPECT_EQ(b.reads["x"], 4);
    EXPECT_EQ(b.rows.moves, 0);
    b.reads["x"] = 0;
    EXPECT_EQ(at(l, b, 3), 30);
    EXPECT_EQ(b.reads["x"], 0) << "a repeated read answers what it holds";
    EXPECT_EQ(at(l, b, 1), 10);
    EXPECT_EQ(at(l, b, 0), 7);
    EXPECT_EQ(at(l, b, 2), 20);
    EXPECT_EQ(b.rows.index, 2);
}

TEST(CalcSort, KeysAreReadOnceUntilTheCountChanges) {
    Binder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, b.bindSymbol("x"));
    b.rows.index = 2;
    EXPECT_EQ(s->valNum(), 2);
    EXPECT_EQ(b.rows.index, 2) << "the index is put back";
    EXPECT_EQ(walk(*s, b), (V{1, 3, 2, 0}));
    EXPECT_EQ(b.reads["x"], 4);
    b.setColumn("x", {3, 2, 1});
    EXPECT_EQ(walk(*s, b), (V{2, 1, 0})) << "a new count, a new order";
    b.rows.count = 0;
    b.rows.index = 0;
    EXPECT_EQ(s->valNum(), 0) << "no elements";
}

TEST(CalcSort, Modifiers) {
    Binder b;
    b.setColumn("x", {2, 1});
    auto s = sortOf(b, b.bindSymbol("x"));
    CalcNodeMem via("v", num(0));
    EXPECT_EQ(s->property("reverse", &via), nullptr) << "only without via";
    std::unique_ptr<NodeList> one(args({num(1)}));
    EXPECT_EQ(s->method("select", one.get(), &via), nullptr);
    EXPECT_EQ(s->method("unknown", one.get(), nullptr), nullptr);
    std::unique_ptr<NodeList> three(args({num(1), num(1), num(1)}));
    EXPECT_THROW(s->method("reverse", three.get(), nullptr), CalcErrorArgsTooMany)
        << "a method that fails leaves its arguments to the caller";
    EXPECT_EQ(s->property("reverseX", nullptr), nullptr);
    EXPECT_EQ(s->property("reverse-1", nullptr), nullptr);
    EXPECT_EQ(walk(*s, b), (V{1, 0}));
}

TEST(CalcParsedState, RecurrencesOverVariablesFollowEveryJump) {
    Binder b;
    b.setColumn("x", {1, 2, 3, 4});
    // y is a variable: it must be computed again at every index the walk visits.
    auto p = parse("y = x*2; recurse(self + y)", &b);
    EXPECT_EQ(walk(*p, b), (V{2, 6, 12, 20}));
    EXPECT_EQ(at(*p, b, 2), 12);
    EXPECT_EQ(at(*p, b, 2), 12);
    EXPECT_EQ(at(*p, b, 1), 6);
    EXPECT_EQ(at(*p, b, 3), 20);
    auto q = parse("y = x + 1; lastof(y)", &b);
    EXPECT_EQ(at(*q, b, 2), 3);
    EXPECT_EQ(at(*q, b, 1), 2);
    EXPECT_EQ(at(*q, b, 0), 0);
}

TEST(CalcParsedState, TreesThatReadThroughTheirParserKeepIt) {
    // A parser reduced inside another tree gives its tree up when nothing in
    // it needs the parser; these do, at every read.
    Binder b;
    b.texts["n"] = {"x", "y"};
    b.setColumn("x", {3, 4});
    for (const char* text : {"exec(\"2*3\")", "option(n, 5)", "symref(n)"}) {
        auto p = parse(text, &b);
        EXPECT_EQ(p->reduce(), nullptr) << text;
        EXPECT_EQ(p->valNum(), text[0] == 'e' ? 6 : 3) << text;
    }
    EXPECT_EQ(value("a = vector(2)[exec(\"1+1\"), option(n, 5)]; a[0] + a[1]", &b), 5)
        << "the same as elements of a vector, each compiled by a parser of its own";
    auto bad = parse("exec(\"1+\")", &b);
    EXPECT_THROW(bad->valNum(), CalcError);
    EXPECT_THROW(bad->valNum(), CalcError) << "an exec that failed fails again";
}
