#include <gtest/gtest.h>

#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "base/String.h"

using zun::ObjAppendList;
using zun::ObjAppendListP;
using zun::RawBuffer;
using zun::String;

TEST(List, GrowthByIncrement) {
    ObjAppendList<long> l;
    EXPECT_EQ(l.increment, 1);
    l << 1;
    EXPECT_EQ(l.count, 1);
    EXPECT_EQ(l.free, 0);
    l.setTruncSize(300);
    l << 2;
    EXPECT_EQ(l.free, 299);
    l.allocate(1000);
    EXPECT_EQ(l.free, 1000);  // n - free exceeds the increment
    l.setTruncSize(-4);
    EXPECT_EQ(l.increment, 1);
}

TEST(List, FreeSlotsAreZeroed) {
    ObjAppendList<int> l;
    l.setTruncSize(8);
    l << 7;
    for (long i = 1; i < 8; ++i) EXPECT_EQ(l.data[i], 0);
}

TEST(List, ConstructFromArray) {
    const double init[3] = {1.5, 2.5, 3.5};
    ObjAppendList<double> l(3, init);
    ASSERT_EQ(l.count, 3);
    EXPECT_EQ(l[2], 3.5);
    ObjAppendList<double> room(5, nullptr);
    EXPECT_EQ(room.count, 0);
    EXPECT_EQ(room.free, 5);
}

TEST(List, AppendZeroAndPointerForms) {
    ObjAppendList<long> l;
    l << 0;  // a literal zero is a value, not a pointer
    EXPECT_EQ(l.count, 1);
    const long more[2] = {4, 5};
    l.append(2, more);
    EXPECT_EQ(l.last(), 5);
    ObjAppendList<char> bytes;
    bytes << "abc";
    EXPECT_EQ(bytes.count, 3);
    EXPECT_EQ(bytes[1], 'b');
}

TEST(List, PopOne) {
    ObjAppendList<int> l;
    l << 1 << 2;
    int v = 0;
    l >> v;
    EXPECT_EQ(v, 2);
    l >> v >> v;
    EXPECT_EQ(v, 1);  // the second pop found the list empty
    EXPECT_EQ(l.count, 0);
}

TEST(List, PopIncrementIntoArray) {
    ObjAppendList<int> l;
    for (int i = 0; i < 5; ++i) l << i;
    l.setTruncSize(3);
    int target[3] = {0, 0, 0};
    long n = l >> target;
    EXPECT_EQ(n, 3);
    EXPECT_EQ(target[0], 2);
    EXPECT_EQ(target[2], 4);
    EXPECT_EQ(l.count, 2);
    n = l >> target;
    EXPECT_EQ(n, 2);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(l.count, 0);
    EXPECT_EQ(l.count + l.free, 5);
}

TEST(List, DelFlushEnd) {
    ObjAppendList<int> l;
    for (int i = 0; i < 6; ++i) l << i;
    l.del(2);
    EXPECT_EQ(l.count, 4);
    EXPECT_EQ(l.free, 2);
    l.del(-1);
    EXPECT_EQ(l.count, 0);
    l << 9;
    l.flush(false);
    EXPECT_EQ(l.count, 0);
    EXPECT_NE(l.data, nullptr);
    l << 1 << 2;
    l.end();
    EXPECT_EQ(l.free, 0);
    EXPECT_EQ(l[1], 2);
    l.flush(true);
    EXPECT_EQ(l.data, nullptr);
    EXPECT_EQ(l.free, 0);
}

TEST(List, ReverseAndRotate) {
    ObjAppendList<int> l;
    for (int i = 0; i < 5; ++i) l << i;
    l.reverse();
    EXPECT_EQ(l[0], 4);
    EXPECT_EQ(l[4], 0);
    l.reverse();
    l.rotate(2);
    const int r2[5] = {3, 4, 0, 1, 2};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(l[i], r2[i]);
    l.rotate(-2);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(l[i], i);
    l.rotate(12);  // same as 2
    for (int i = 0; i < 5; ++i) EXPECT_EQ(l[i], r2[i]);
}

TEST(List, SendPushReceive) {
    ObjAppendList<int> a, b;
    for (int i = 0; i < 4; ++i) a << i;
    EXPECT_EQ(a.send(b, 2), 2);
    EXPECT_EQ(a.count, 4);
    EXPECT_EQ(b[0], 2);
    EXPECT_EQ(b[1], 3);
    EXPECT_EQ(a.send(b, 10), 4);  // past the count: all
    EXPECT_EQ(b.count, 6);
    EXPECT_EQ(a.push(b, 1), 1);
    EXPECT_EQ(a.count, 3);
    EXPECT_EQ(b.last(), 3);
    EXPECT_EQ(a.receive(b, 2), 2);
    EXPECT_EQ(b.count, 5);
    EXPECT_EQ(a.count, 5);
    EXPECT_EQ(a.last(), 3);
    EXPECT_EQ(a.pop(b, -1), 5);
    EXPECT_EQ(a.count, 0);
    EXPECT_EQ(b.count, 10);
}

TEST(List, StringsAreCopiedAcrossGrowth) {
    ObjAppendList<String> l;
    for (int i = 0; i < 20; ++i) {
        String s("s");
        s << static_cast<long>(i);
        l << s;
    }
    EXPECT_EQ(l[0], "s0");
    EXPECT_EQ(l[19], "s19");
    ObjAppendList<String> copy(l);
    l.flush(true);
    EXPECT_EQ(copy[7], "s7");
    copy.end();
    EXPECT_EQ(copy.free, 0);
    EXPECT_EQ(copy[19], "s19");
}

struct Counted {
    static int alive;
    int v;
    explicit Counted(int x) : v(x) { ++alive; }
    ~Counted() { --alive; }
};
int Counted::alive = 0;

TEST(OwningList, DeletesWhatItHolds) {
    {
        ObjAppendListP<Counted> l;
        for (int i = 0; i < 5; ++i) l << new Counted(i);
        EXPECT_EQ(Counted::alive, 5);
        EXPECT_EQ(l[3].v, 3);
        l.del(2);
        EXPECT_EQ(Counted::alive, 3);
        l.pop(1);
        EXPECT_EQ(Counted::alive, 2);
        Counted* taken = l.take(0);
        EXPECT_EQ(taken->v, 0);
        EXPECT_EQ(l[0].v, 1);
        delete taken;
        l.flush();
        EXPECT_EQ(Counted::alive, 0);
        l << new Counted(9);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(OwningList, MovingBetweenListsKeepsOwnership) {
    ObjAppendListP<Counted> a, b;
    a << new Counted(1) << new Counted(2);
    a.pop(b, 1);
    EXPECT_EQ(a.count, 1);
    EXPECT_EQ(b[0].v, 2);
    b.del(-1);
    EXPECT_EQ(Counted::alive, 1);
    a.flush(true);
    EXPECT_EQ(Counted::alive, 0);
}

TEST(RawBuffer, Hex) {
    RawBuffer empty;
    EXPECT_TRUE(empty.hex().isNull());
    RawBuffer b("\x00\x1f\xab", 3);
    String h = b.hex();
    EXPECT_EQ(h, "00 1F AB");
    EXPECT_EQ(h.length, 3 * 3 - 1);
    RawBuffer one("\xff", 1);
    EXPECT_EQ(one.hex(), "FF");
}
