// Lists filled one element at a time: the elements move a logarithmic number
// of times, not once per element, whatever the increment; a count reserved
// in advance makes room once.
#include <gtest/gtest.h>

#include "base/ObjAppendList.h"
#include "base/String.h"

using zun::ObjAppendList;
using zun::String;

namespace {

// How often the buffer of a list of texts moved (each growth of such a list
// makes a new array) while n texts were appended, one at a time.
long movesWhileFilling(ObjAppendList<String>& l, long n) {
    long moves = 0;
    const String* before = l.data;
    for (long i = 0; i < n; ++i) {
        l << String("x");
        if (l.data != before) ++moves;
        before = l.data;
    }
    EXPECT_EQ(l.count, n);
    EXPECT_EQ(l[n - 1], "x");
    return moves;
}

}  // namespace

TEST(ListGrowth, FillingOneAtATimeMovesLogarithmicallyOften) {
    const struct {
        long increment, n, mostMoves;
    } rows[] = {{1, 100000, 20}, {3, 100000, 20}, {300, 100000, 10}, {1, 1, 1}};
    for (const auto& r : rows) {
        ObjAppendList<String> l;
        l.setTruncSize(r.increment);
        EXPECT_LE(movesWhileFilling(l, r.n), r.mostMoves) << "increment " << r.increment;
    }
}

TEST(ListGrowth, ARoomReservedInAdvanceIsNotMovedAgain) {
    ObjAppendList<String> l;
    l.allocate(5000);
    EXPECT_EQ(l.free, 5000);
    EXPECT_EQ(movesWhileFilling(l, 5000), 0);
    EXPECT_EQ(l.free, 0);
}
