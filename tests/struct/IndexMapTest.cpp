// Index maps: selections, orders, repeat counts, tuples of nested arrays,
// inverses, rebuilding after an enclosing array moves, their errors and
// their limits.
#include <cmath>
#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "TreeFixture.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructIndexMap.h"

using treetest::errorOf;
using treetest::raw;
using treetest::text;
using vexa::StructArrayBase;
using vexa::StructIndexMap;
using zun::String;

namespace {

// The bytes of a little-endian double.
std::string doubleBytes(double v) {
    std::string bytes(sizeof v, '\0');
    std::memcpy(&bytes[0], &v, sizeof v);
    return bytes;
}

class IndexMaps : public treetest::TreeTest {
protected:
    StructIndexMap& map(const char* path) { return static_cast<StructIndexMap&>(field(path)); }
    std::string all(const char* path) { return text(field(path).readAll(false)); }

    // A little-endian file: the lines behind a header, over bytes.
    void openLines(const std::string& lines, const std::string& bytes) {
        dict("t", "t|||LITTLE-ENDIAN\n" + lines);
        file = open("t", bytes);
    }

    // A table `rows` of n records {x SChar, k Double} from pairs, and the
    // map lines behind it.
    void openRows(const std::string& mapLines, const std::vector<std::pair<int, double>>& rows) {
        dict("row", "row|||\nx|SChar|||\nk|Double|||\n");
        std::string bytes(1, static_cast<char>(rows.size()));
        for (const auto& r : rows) bytes += std::string(1, static_cast<char>(r.first)) + doubleBytes(r.second);
        openLines("n|UChar|||\nrows|@row|||n\n" + mapLines, bytes);
    }

    // The messages of what a call throws, the causes first, one a line.
    template <class F>
    static std::string chainOf(F f) {
        try {
            f();
        } catch (zun::Exception& e) {
            std::string out;
            for (const zun::Exception* c = &e; c; c = c->chained)
                out = std::string(c->signature().str()) + " " + c->msg().str() + (out.empty() ? "" : "\n") + out;
            return out;
        }
        return "";
    }
};

}  // namespace

TEST_F(IndexMaps, SelectionsOrdersAndRepeats) {
    const double nan = std::nan("");
    const struct {
        const char* statement;
        const char* map;
        long count;
    } rows[] = {
        {"x>0", "{0,2,3,5,6}", 5},
        {"sort=k; x>0", "{6,3,0,5,2}", 5},
        // equal keys in their order of reading, NaN after every number
        {"sort=k; 1", "{6,3,1,4,0,5,2}", 7},
        {"sort=-k; 1", "{0,5,1,4,3,6,2}", 7},
        {"sort=nan; 1", "{0,1,2,3,4,5,6}", 7},
        // a repeat count: 0 drops, negative drops, 2 doubles; the copies stay together in the sort
        {"x==3 ? 2 : x>3", "{2,2,3,6}", 4},
        {"sort=-x; x==3 ? 2 : 1", "{3,6,2,2,5,0,4,1}", 8},
        {"0", "{}", 0},
        {"-5", "{}", 0},
        {"nan", "{}", 0},
        // the sort variable alone: its value is the count too
        {"sort=x", "{0,5,5,2,2,2,6,6,6,6,3,3,3,3,3,3,3}", 17},
    };
    for (const auto& r : rows) {
        openRows(std::string("~m|SelectMap|rows|") + r.statement + "\n",
                 {{1, 5}, {-1, 2}, {3, nan}, {7, 0}, {0, 2}, {2, 5}, {4, -1}});
        EXPECT_EQ(all("m"), r.map) << r.statement;
        EXPECT_EQ(map("m").numElems(), r.count) << r.statement;
    }
}

TEST_F(IndexMaps, ElementsReadTheirIndex) {
    openRows("~m|SelectMap|rows|x>0\n~third|Double||{m}[2]\n", {{1, 0}, {-1, 0}, {3, 0}, {7, 0}});
    EXPECT_EQ(text(map("m").getTypeStr(0)), "(*SLong)");
    EXPECT_EQ(text(field("m.0").getTypeStr(0)), "SLong");
    EXPECT_EQ(text(field("m.0").getUnit()), "index");
    EXPECT_EQ(text(field("m").getUnit()), "index");
    EXPECT_TRUE(field("m").isVirtual());
    EXPECT_EQ(field("m").getSize(), 0);
    EXPECT_EQ(text(field("m.1").readAll(true)), "2");
    EXPECT_EQ(text(field("m.#last").readAll(true)), "3");
    EXPECT_EQ(text(field("m.1").getPathName()), "m.1");
    EXPECT_EQ(text(field("third").readAll(true)), "3");
    long l = 0;
    double d = 0;
    unsigned long long u = 0;
    EXPECT_EQ(field("m.2").readSLong(l), 3);
    EXPECT_EQ(field("m.1").readDouble(d), 2.0);
    EXPECT_EQ(field("m.0").readULLong(u), 0u);
    short s;
    EXPECT_EQ(errorOf([&] { field("m.0").readSShort(s); }).empty(), false);
    // the value's bytes, in the file's order for -x
    EXPECT_EQ(text(field("m.2").readHex(true)), "03 00 00 00 00 00 00 00");
    EXPECT_EQ(errorOf([&] { field("m.3"); }), "array [m]");
    // list reads go through the elements
    zun::ObjAppendList<long> values;
    field("m").readSLongA(values);
    ASSERT_EQ(values.count, 3);
    EXPECT_EQ(values[0] * 100 + values[1] * 10 + values[2], 23);
}

TEST_F(IndexMaps, TuplesOfNestedArrays) {
    dict("grp", "grp|||\nm|UChar|||\nitems|@item|||m\n");
    dict("item", "item|||\nv|UChar|||\n");
    // groups of 2, 0, 3 and 1 items
    openLines("n|UChar|||\ngroups|@grp|||n\n~p|SelectMap|groups,items|v>2\n~all|SelectMap|groups, items|1\n",
              raw("\x04" "\x02\x05\x01" "\x00" "\x03\x07\x03\x08" "\x01\x02"));
    EXPECT_EQ(text(map("p").getTypeStr(0)), "(*(2*SLong))");
    EXPECT_EQ(text(field("p.0").getTypeStr(0)), "(2*SLong)");
    EXPECT_EQ(map("all").numElems(), 6);
    EXPECT_EQ(all("all"), "{{0,0},{0,1},{2,0},{2,1},{2,2},{3,0}}");
    EXPECT_EQ(all("p"), "{{0,0},{2,0},{2,1},{2,2}}");
    EXPECT_EQ(map("p").numElems(), 4);
    EXPECT_EQ(text(field("p.3.1").readAll(true)), "2");
    EXPECT_EQ(text(field("p.3.0").readAll(true)), "2");
    EXPECT_EQ(text(field("p.1.0").readAll(true)), "2");
    EXPECT_EQ(errorOf([&] { field("p.1.2"); }), "array [p.1]");
}

TEST_F(IndexMaps, EmptyArraysLeaveThePositionAlone) {
    dict("grp", "grp|||\nm|UChar|||\nitems|UChar|||m\n");
    openLines("n|UChar|||\na|UChar|||0\ngroups|@grp|||n\n~e|SelectMap|a|1\n~i|SelectMap|groups,items|1\n"
              "~s|SelectMap|groups|1\n~v|InverseMap|a|\n",
              raw("\x03\x00\x00\x00"));
    auto& groups = static_cast<StructArrayBase&>(field("groups"));
    EXPECT_EQ(map("e").numElems(), 0);
    EXPECT_EQ(all("e"), "{}");
    EXPECT_EQ(map("v").numElems(), 0);
    field("groups.1");
    // every inner array empty: no combination, and groups goes back where it stood
    EXPECT_EQ(map("i").numElems(), 0);
    EXPECT_EQ(groups.activeIndex, 1);
    EXPECT_EQ(map("s").numElems(), 3);
    EXPECT_EQ(groups.activeIndex, 1);
}

TEST_F(IndexMaps, Inverses) {
    const struct {
        std::string values;
        const char* map;
    } rows[] = {
        {raw("\x02\x00\x02"), "{1,-1,2}"},
        {raw("\x00\x00"), "{1}"},  // a later row overwrites an earlier one
        {raw("\xff\x03\xfe"), "{-1,-1,-1,1}"},  // negative values are left out
        {raw("\xff"), "{}"},
        {"", "{}"},
    };
    for (const auto& r : rows) {
        openLines("n|UChar|||\nc|SChar|||n\n~m|InverseMap|c|\n",
                  std::string(1, static_cast<char>(r.values.size())) + r.values);
        EXPECT_EQ(all("m"), r.map) << r.map;
    }
}

TEST_F(IndexMaps, InverseOfColumnsAndInnerColumns) {
    dict("grp", "grp|||\nk|UChar|||\nm|UChar|||\nsub|@item|||m\n");
    dict("item", "item|||\nv|UChar|||\n");
    // {k 5, sub 1 4}, {k 6, no sub}, {k 0, sub 3 9}
    openLines("n|UChar|||\ngroups|@grp|||n\n~inv|InverseMap|groups|k, sub+v\n~ks|InverseMap|groups|k\n"
              "~none|InverseMap|groups|m,,k\n",
              raw("\x03" "\x05\x02\x01\x04" "\x06\x00" "\x00\x02\x03\x09"));
    EXPECT_EQ(all("inv"), "{2,0,-1,2,0,0,1,-1,-1,2}");
    EXPECT_EQ(all("ks"), "{2,-1,-1,-1,-1,0,1}");
    // the list ends at its first empty word
    EXPECT_EQ(all("none"), "{1,-1,2}");
}

TEST_F(IndexMaps, RebuiltWhenAnEnclosingArrayMoves) {
    // the statement names the element itself {} and the record around its array {-.-.m}
    dict("grp", "grp|||\nm|UChar|||\nitems|UChar|||m\n~big|SelectMap|items|sort=-{}; {}>{-.-.m}\n");
    openLines("n|UChar|||\ngroups|@grp|||n\n", raw("\x03" "\x02\x05\x01" "\x03\x01\x09\x04" "\x01\x07"));
    EXPECT_EQ(all("groups.0.big"), "{0}");
    EXPECT_EQ(all("groups.1.big"), "{1,2}");
    EXPECT_EQ(all("groups.2.big"), "{0}");
    EXPECT_EQ(all("groups.1.big"), "{1,2}");
    auto& big = map("groups.1.big");
    EXPECT_EQ(big.mapDirty, 0);
    field("groups.2");
    EXPECT_NE(big.mapDirty, 0);
    EXPECT_EQ(big.numElems(), 1);
    EXPECT_EQ(big.mapDirty, 0);
}

TEST_F(IndexMaps, ErrorsAreChained) {
    dict("grp", "grp|||\nk|UChar|||\nsub|UChar|||2\n");
    openLines("n|UChar|||\ngroups|@grp|||n\n~a|SelectMap|n|1\n~b|SelectMap|groups,k|1\n~c|InverseMap|n|k\n"
              "~d|SelectMap|groups|nope\n~e|SelectMap|groups|k >\n~f|SelectMap|groups,zz|1\n~g|InverseMap|groups|zz\n"
              "~h|InverseMap|groups|sub+zz\n~i|InverseMap|groups|k+v\n",
              raw("\x01\x01\x02\x03"));
    const std::string in = " in dictionary '" + dictPath("t") + "'";
    const struct {
        const char* path;
        std::string chain;
    } rows[] = {
        {"a", "VEXA015 SelectMap reference \"n\" is not an array" + in +
                  "\nVEXA015 error while initialising IndexMap \"a\"" + in},
        {"b", "VEXA015 SelectMap inner reference \"k\" is not an array" + in +
                  "\nVEXA015 error while initialising IndexMap \"b\"" + in},
        {"c", "VEXA015 IndexMap reference \"n\" is not an array" + in +
                  "\nVEXA015 error while initialising IndexMap \"c\"" + in},
        {"d", "CALC010 \"nope\"\nVEXA015 error while initialising IndexMap \"d\"" + in},
        {"e", "CALC001 in statement ( >>> k > <<< )\nVEXA015 error while initialising IndexMap \"e\"" + in},
        {"f", "VEXA005 field [zz] in structure [groups.0]\nVEXA015 error while initialising IndexMap \"f\"" + in},
        {"g", "VEXA015 InverseMap column \"zz\" names no field" + in +
                  "\nVEXA015 error while initialising IndexMap \"g\"" + in},
        {"h", "VEXA015 InverseMap column \"sub+zz\" names no field" + in +
                  "\nVEXA015 error while initialising IndexMap \"h\"" + in},
        {"i", "VEXA014 structure \"k\" is not an array\nVEXA015 error while initialising IndexMap \"i\"" + in},
    };
    for (const auto& r : rows) {
        EXPECT_EQ(chainOf([&] { map(r.path).numElems(); }), r.chain) << r.path;
        // the next request meets the same error
        EXPECT_EQ(chainOf([&] { map(r.path).numElems(); }), r.chain) << r.path;
    }
    dict("bad", "bad|||\nn|UChar|||\n~m|SelectMap| , |1\n");
    EXPECT_EQ(chainOf([&] { open("bad", "x")->getRoot().numElems(); }),
              "VEXA015 SelectMap array reference list is invalid \",\" in dictionary '" + dictPath("bad") + "'");
}

TEST_F(IndexMaps, HostileCountsValuesAndSelfReferences) {
    dict("grp", "grp|||\nk|UChar|||\n~z|SLong||2^62\n~loop|SelectMap|--.groups|loop[0] + 1\n");
    openLines("n|UChar|||\ngroups|@grp|||n\n~huge|SelectMap|groups|10^18\n~many|SelectMap|groups|2^24 + 1\n"
              "~inv|InverseMap|groups|z\n~self|SelectMap|self|1\n~other|SelectMap|groups|{.self}.count + 1\n",
              raw("\x02\x01\x02"));
    const std::string in = " in dictionary '" + dictPath("t") + "'";
    EXPECT_EQ(chainOf([&] { map("huge").numElems(); }),
              "VEXA002 IndexMap \"huge\" repeat count 1000000000000000000 is too large (the map may hold 16777216 "
              "indices)\nVEXA015 error while initialising IndexMap \"huge\"" + in);
    EXPECT_EQ(chainOf([&] { map("many").numElems(); }),
              "VEXA002 IndexMap \"many\" repeat count 16777217 is too large (the map may hold 16777216 "
              "indices)\nVEXA015 error while initialising IndexMap \"many\"" + in);
    EXPECT_EQ(chainOf([&] { map("inv").numElems(); }),
              "VEXA002 IndexMap \"inv\" value 4611686018427387904 is too large (the map may hold 16777216 "
              "indices)\nVEXA015 error while initialising IndexMap \"inv\"" + in);
    // a map over itself sees itself empty while it is built
    EXPECT_EQ(map("self").numElems(), 0);
    // a map over the array that holds it: its statement reads it while the
    // array moves, and gets no second build
    EXPECT_EQ(chainOf([&] { map("groups.1.loop").numElems(); }),
              "VEXA011 array [groups.0.loop]\nVEXA015 error while initialising IndexMap \"groups.1.loop\" in "
              "dictionary '" + dictPath("grp") + "'");
}

TEST_F(IndexMaps, LengthLimit) {
    const struct {
        long read;
        long limit;
    } rows[] = {{0, 1L << 24}, {1L << 20, 1L << 24}, {(1L << 20) + 1, ((1L << 20) + 1) * 16}, {1L << 62, LONG_MAX}};
    for (const auto& r : rows) EXPECT_EQ(StructIndexMap::lengthLimit(r.read), r.limit) << r.read;
}
