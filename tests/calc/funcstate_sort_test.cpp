// sort and its modifiers on hand-built trees over a table of rows.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "calc/CalcError.h"
#include "calc/CalcNodeFuncState.h"
#include "funcstate_testing.h"

using namespace statetest;
using namespace zun;

namespace {

// sort over the given keys, with the element number as a last key as the
// parser adds it to a single key.
std::unique_ptr<CalcNodeFuncSort> sortOf(RowBinder& b, std::initializer_list<CalcNode*> keys, bool addIter) {
    auto* list = args(keys);
    if (addIter) *list << new CalcNodeIterator(b.bindIterator(0));
    return std::make_unique<CalcNodeFuncSort>("sort", list, b);
}

std::vector<double> walk(CalcNode& node, RowBinder& b) {
    std::vector<double> out;
    for (long i = 0; i < b.rows.count; ++i) {
        b.rows.index = i;
        out.push_back(node.valNum());
    }
    return out;
}

using V = std::vector<double>;

}  // namespace

TEST(FuncStateSort, SingleKeyTiesGoToTheLowerElementNumber) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(s->constLevel(), 0);
    EXPECT_EQ(walk(*s, b), (V{1, 3, 2, 0}));
}

TEST(FuncStateSort, KeysAreReadOnceAndTheIndexIsPutBack) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    b.rows.index = 2;
    EXPECT_EQ(s->valNum(), 2);
    EXPECT_EQ(b.rows.index, 2);
    EXPECT_EQ(b.reads["x"], 4);
    walk(*s, b);
    EXPECT_EQ(b.reads["x"], 4) << "the order is kept";
}

TEST(FuncStateSort, ReverseFlipsAllButTheLastKey) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(s->property("reverse", nullptr), s.get());
    // x descending, ties still by ascending element number
    EXPECT_EQ(walk(*s, b), (V{0, 2, 1, 3}));
}

TEST(FuncStateSort, ReverseWithFlags) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(s->method("reverse", args({num(1), num(1)}), nullptr), s.get());
    EXPECT_EQ(walk(*s, b), (V{0, 2, 3, 1}));

    auto t = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(t->method("reverse", args({num(0), num(nan())}), nullptr), t.get());
    // NaN is not 0: the element numbers go downward
    EXPECT_EQ(walk(*t, b), (V{3, 1, 2, 0}));
}

TEST(FuncStateSort, ReverseN) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(s->property("reverse2", nullptr), nullptr) << "N must be below the argument count";
    EXPECT_EQ(s->property("reverse1", nullptr), s.get());
    EXPECT_EQ(walk(*s, b), (V{0, 2, 1, 3}));

    auto t = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(t->property("reverse0", nullptr), t.get()) << "0 is the last key";
    EXPECT_EQ(walk(*t, b), (V{3, 1, 2, 0}));

    EXPECT_EQ(t->property("reverseX", nullptr), nullptr);
    EXPECT_EQ(t->property("reverse-1", nullptr), nullptr);
    EXPECT_EQ(t->property("other", nullptr), nullptr);
}

TEST(FuncStateSort, ModifierErrors) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    // A method that fails leaves its arguments to the caller.
    std::unique_ptr<ObjAppendListP<CalcNode>> flags(args({num(1), num(1), num(1)}));
    try {
        s->method("reverse", flags.get(), nullptr);
        FAIL() << "three flags for two keys";
    } catch (const CalcErrorArgsTooMany& e) {
        EXPECT_STREQ(e.msg().str(), "Function \"@reverse\" takes at most 2 argument(s)");
    }
    std::unique_ptr<ObjAppendListP<CalcNode>> conditions(args({num(1), num(1)}));
    try {
        s->method("select", conditions.get(), nullptr);
        FAIL() << "two conditions";
    } catch (const CalcErrorArgsTooMany& e) {
        EXPECT_STREQ(e.msg().str(), "Function \"@select\" takes at most 1 argument(s)");
    }
    auto* list = args({num(1)});
    EXPECT_EQ(s->method("unknown", list, nullptr), nullptr);
    delete list;
}

TEST(FuncStateSort, SelectLeavesElementsOut) {
    RowBinder b;
    b.setColumn("x", {3, 1, 2, 1});
    b.columns["c"] = {1, 0, 1, 1};
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(s->method("select", args({b.bindSymbol("c")}), nullptr), s.get());
    EXPECT_EQ(walk(*s, b), (V{3, 2, 0, -1}));

    auto* second = args({num(1)});
    EXPECT_EQ(s->method("select", second, nullptr), nullptr) << "one selection only";
    delete second;
}

TEST(FuncStateSort, SeveralKeysAndTheirDirections) {
    RowBinder b;
    b.setColumn("a", {1, 2, 1, 2, 1});
    b.columns["b"] = {5, 4, 3, 2, 1};
    auto s = sortOf(b, {b.bindSymbol("a"), b.bindSymbol("b")}, false);
    EXPECT_EQ(walk(*s, b), (V{4, 2, 0, 3, 1}));
    auto t = sortOf(b, {b.bindSymbol("a"), b.bindSymbol("b")}, false);
    t->property("reverse", nullptr);  // a descending, b still ascending
    EXPECT_EQ(walk(*t, b), (V{3, 1, 4, 2, 0}));
}

TEST(FuncStateSort, NaNGoesLastAndTextSortsByBytes) {
    RowBinder b;
    b.setColumn("x", {nan(), 1, nan(), 0});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(walk(*s, b), (V{3, 1, 0, 2}));

    RowBinder t;
    t.texts["t"] = {"pear", "Apple", "apple", "", "pea"};
    t.rows.count = 5;
    auto u = sortOf(t, {t.bindSymbol("t")}, true);
    EXPECT_EQ(walk(*u, t), (V{3, 1, 2, 4, 0}));
}

TEST(FuncStateSort, NoElementsReadsZero) {
    RowBinder b;
    b.rows.count = 0;
    auto s = sortOf(b, {num(1)}, true);
    EXPECT_EQ(s->valNum(), 0);
}

TEST(FuncStateSort, NewCountMeansNewOrder) {
    RowBinder b;
    b.setColumn("x", {2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    EXPECT_EQ(walk(*s, b), (V{1, 0}));
    b.setColumn("x", {3, 2, 1});
    EXPECT_EQ(walk(*s, b), (V{2, 1, 0}));
}

TEST(FuncStateSort, ModifiersOnlyWithoutVia) {
    RowBinder b;
    b.setColumn("x", {2, 1});
    auto s = sortOf(b, {b.bindSymbol("x")}, true);
    CalcNodeMem via("v", num(0));
    EXPECT_EQ(s->property("reverse", &via), nullptr);
    auto* list = args({num(1)});
    EXPECT_EQ(s->method("select", list, &via), nullptr);
    delete list;
    EXPECT_EQ(walk(*s, b), (V{1, 0}));
}

TEST(FuncStateSort, NeedsAnIteratorAndAKey) {
    RowBinder b;
    b.offerIterator = false;
    EXPECT_THROW(CalcNodeFuncSort("sort", args({num(1)}), b), CalcErrorIterator);
    RowBinder c;
    EXPECT_THROW(CalcNodeFuncSort("sort", nullptr, c), CalcErrorArgsMissing);
}
