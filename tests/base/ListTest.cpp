#include <gtest/gtest.h>

#include <string>

#include "base/ObjAppendList.h"
#include "base/RawBuffer.h"
#include "base/String.h"

using zun::ObjAppendList;
using zun::ObjAppendListP;
using zun::String;

namespace {

// "a,b,c" of the elements in use.
template <class T>
std::string items(const ObjAppendList<T>& l) {
    std::string out;
    for (long i = 0; i < l.count; ++i) out += (i ? "," : "") + std::to_string(l[i]);
    return out;
}

ObjAppendList<int> upTo(int n) {
    ObjAppendList<int> l;
    for (int i = 0; i < n; ++i) l << i;
    return l;
}

struct Counted {
    static int alive;
    int v;
    explicit Counted(int x) : v(x) { ++alive; }
    ~Counted() { --alive; }
};
int Counted::alive = 0;

}  // namespace

TEST(List, GrowthConstructionAndAppending) {
    ObjAppendList<long> l;
    l << 0;  // a literal zero is a value, not a pointer
    EXPECT_EQ(l.free, 0);
    l.setTruncSize(300);
    l << 2;
    EXPECT_EQ(l.free, 299);
    for (long i = 2; i < 300; ++i) EXPECT_EQ(l.data[i], 0) << "free slots are zeroed";
    l.allocate(1000);
    EXPECT_EQ(l.free, 1000);  // n - free exceeds the increment
    const long more[2] = {4, 5};
    l.append(2, more);
    EXPECT_EQ(items(l), "0,2,4,5");
    const double init[3] = {1.5, 2.5, 3.5};
    EXPECT_EQ(ObjAppendList<double>(3, init)[2], 3.5);
    ObjAppendList<double> room(5, nullptr);
    EXPECT_EQ(room.count, 0);
    EXPECT_EQ(room.free, 5);
    ObjAppendList<char> bytes;
    bytes << "abc";
    EXPECT_EQ(std::string(bytes.data, bytes.count), "abc");
}

TEST(List, PopDelFlushEnd) {
    ObjAppendList<int> l = upTo(5);
    const long slots = l.count + l.free;
    int v = 0, target[3] = {0, 0, 0};
    l >> v;
    EXPECT_EQ(v, 4);
    l.setTruncSize(3);
    EXPECT_EQ(l >> target, 3);  // up to the increment, in their order
    EXPECT_EQ(std::to_string(target[0]) + std::to_string(target[2]), "13");
    EXPECT_EQ(l >> target, 1);
    EXPECT_EQ(target[0], 0);
    l >> v;  // the list is empty: v stays
    EXPECT_EQ(v, 4);
    EXPECT_EQ(l.count + l.free, slots);  // popping frees no slot

    ObjAppendList<int> d = upTo(6);
    d.del(2);
    EXPECT_EQ(items(d), "0,1,2,3");
    d.del(-1);
    EXPECT_EQ(d.count, 0);
    d << 9;
    d.flush(false);
    EXPECT_EQ(d.count, 0);
    EXPECT_NE(d.data, nullptr);
    d << 1 << 2;
    d.end();
    EXPECT_EQ(d.free, 0);
    EXPECT_EQ(items(d), "1,2");
    d.flush(true);
    EXPECT_EQ(d.data, nullptr);
}

TEST(List, ReverseAndRotate) {
    ObjAppendList<int> l = upTo(5);
    l.reverse();
    EXPECT_EQ(items(l), "4,3,2,1,0");
    l.reverse();
    l.rotate(2);
    EXPECT_EQ(items(l), "3,4,0,1,2");
    l.rotate(-2);
    EXPECT_EQ(items(l), "0,1,2,3,4");
    l.rotate(12);  // as 2
    EXPECT_EQ(items(l), "3,4,0,1,2");
}

TEST(List, SendPushReceive) {
    ObjAppendList<int> a = upTo(4), b;
    EXPECT_EQ(a.send(b, 2), 2);
    EXPECT_EQ(a.send(b, 10), 4);  // past the count: all
    EXPECT_EQ(items(a), "0,1,2,3");
    EXPECT_EQ(items(b), "2,3,0,1,2,3");
    EXPECT_EQ(a.push(b, 1), 1);
    EXPECT_EQ(a.receive(b, 2), 2);
    EXPECT_EQ(items(a), "0,1,2,3,3");
    EXPECT_EQ(items(b), "2,3,0,1,2");
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
    ObjAppendList<String> copy(l);
    l.flush(true);
    copy.end();
    EXPECT_EQ(copy.free, 0);
    EXPECT_EQ(copy[0], "s0");
    EXPECT_EQ(copy[19], "s19");
}

TEST(List, OwningListDeletesWhatItHolds) {
    {
        ObjAppendListP<Counted> l, other;
        for (int i = 0; i < 5; ++i) l << new Counted(i);
        l.del(2);
        EXPECT_EQ(Counted::alive, 3);
        l.pop(other, 1);
        EXPECT_EQ(other[0].v, 2);
        other.pop(-1);  // deletes like del
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

TEST(RawBuffer, Hex) {
    EXPECT_TRUE(zun::RawBuffer().hex().isNull());
    EXPECT_EQ(zun::RawBuffer("\x00\x1f\xab", 3).hex(), "00 1F AB");
    EXPECT_EQ(zun::RawBuffer("\xff", 1).hex(), "FF");
}
