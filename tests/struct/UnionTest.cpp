// Unions and virtual fields: alternatives chosen by the data, casts, sizes,
// and fields computed from others, in records and along arrays.
#include "TreeFixture.h"
#include "struct/Error.h"
#include "struct/StructArray.h"
#include "struct/StructUnion.h"

using treetest::errorOf;
using treetest::raw;
using treetest::signatureOf;
using treetest::text;
using vexa::StructElem;

namespace {

class Unions : public treetest::TreeTest {
protected:
    std::string value(const char* path) { return text(field(path).readAll(true)); }
    std::string hex(const char* path) { return text(field(path).readHex(true)); }
    vexa::StructUnion& unionAt(const char* path) { return static_cast<vexa::StructUnion&>(field(path)); }

    // Tagged records: a kind byte, then a body that is a byte (kind 0), a
    // 2-byte number (kind 1) or a record of two bytes (kind 2).
    void tagged(const std::string& lines, const std::string& bytes) {
        dict("body", "body|alternatives||\nbyte|UChar|||\nword|UShort|||\npair|@pair|||\n");
        dict("pair", "pair|||\nx|UChar|||\ny|UChar|||\n");
        dict("item", "item|||\nkind|UChar|||\nv|?kind|body||\n");
        dict("r", "r|||\n" + lines);
        file = open("r", bytes);
    }
};

}  // namespace

TEST_F(Unions, TheSwitchFollowsTheArrayElementBothWays) {
    tagged("items|@item|||4\nend|UChar|||\n",
           raw("\x00\x07" "\x01\x01\x02" "\x02\x05\x06" "\x00\x09" "\xff"));
    const char* values[] = {"7", "258", "[5,6]", "9"};
    const char* paths[] = {"items.0.v#byte", "items.1.v#word", "items.2.v#pair", "items.3.v#byte"};
    for (long i : {0, 1, 2, 3, 2, 1, 0, 3}) {
        std::string path = "items." + std::to_string(i) + ".v";
        EXPECT_EQ(value(path.c_str()), values[i]) << i;
        StructElem& alternative = *field(path.c_str()).getChild(nullptr);
        EXPECT_EQ(text(alternative.getPathName()), paths[i]) << i;
    }
    EXPECT_EQ(value("end"), "255");
    EXPECT_EQ(field("items").getSize(), 10);
    EXPECT_EQ(value("items.2.v.y"), "6");
    // a switch that depends on the element moves with it: no fixed type at the element's level
    EXPECT_FALSE(field("items.#.v").isFixedType(1));
    EXPECT_TRUE(field("items.#.v").isFixedType(2));
    EXPECT_EQ(text(field("items.#.v").getTypeStr(0)), "Union?(kind)");
    EXPECT_EQ(text(field("items.1.v").getTypeStr(255)), "Union?(kind)=UShort");
    EXPECT_EQ(text(field("items.#.v").getUnit()), "");  // the alternative's
    field("items.2");
    EXPECT_EQ(text(field("items.#.v").getUnit()), "body");  // not yet chosen: the dictionary of alternatives
    EXPECT_EQ(value("items"), "{[0,7],[1,258],[2,[5,6]],[0,9]}");
}

TEST_F(Unions, CastsByNumberLastAndByNameDoNot) {
    tagged("kind|UChar|||\nv|?kind|body||\n", raw("\x00\x41\x42"));
    auto& u = unionAt("v");
    EXPECT_EQ(value("v"), "65");
    // by name: the caller gets that alternative, the union goes back to its switch
    EXPECT_EQ(text(field("v#word").readAll(true)), "16706");
    EXPECT_EQ(u.switchValue, -1);
    EXPECT_EQ(value("v"), "65");
    // by number: it stays in force (no array moves this switch)
    EXPECT_EQ(text(field("v#2").readAll(true)), "[65,66]");
    EXPECT_EQ(value("v"), "[65,66]");
    EXPECT_EQ(&field("v#"), &u);
    EXPECT_EQ(errorOf([&] { field("v#nothing"); }), "cast name [nothing] is invalid in union [body]");
    EXPECT_EQ(signatureOf([&] { field("v#3"); }),
              "VEXA009 invalid union switch : switch [kind] returns invalid value =3 in union [body] with 3 choices");
    // a failed cast leaves no alternative it didn't choose: the next read goes by the switch
    EXPECT_EQ(value("v"), "65");
    // patterns with a cast: the name behind "#" is no pattern
    zun::ObjAppendList<StructElem*> list;
    EXPECT_EQ(errorOf([&] { file->getRoot().childList(0, "v#pa*", false, list); }),
              "cast name [pa*] is invalid in union [body]");
    EXPECT_EQ(file->getRoot().childList(0, "v#pair", false, list), 1);
    EXPECT_EQ(text(list[0]->getPathName()), "v#pair");
}

TEST_F(Unions, SizesOfTheirOwnOrOfTheAlternative) {
    // a size column fixes the union's size; without one it is the alternative's
    tagged("kind|UChar|||\nv|?kind|body|4|\nw|?kind|body||\nafter|UChar|||\n", raw("\x01\x00\x01\x00\x00\x00\x02\x09"));
    EXPECT_EQ(field("v").getSize(), 4);
    EXPECT_EQ(field("w").getPos(), 5);
    EXPECT_EQ(field("w").getSize(), 2);
    EXPECT_EQ(value("after"), "9");
    // a header size word in the dictionary of alternatives fixes it too
    dict("alts", "alts||3|\na|UChar|||\nb|UShort|||\n");
    dict("r", "r|||\nk|UChar|||\nu|?k|alts||\nafter|UChar|||\n");
    file = open("r", raw("\x01\x00\x02\x00\x07"));
    EXPECT_EQ(field("u").getSize(), 3);
    EXPECT_EQ(value("after"), "7");
    dict("r", "r|||\nu|?nosuch|alts||\n");
    file = open("r", "ab");
    EXPECT_EQ(errorOf([&] { field("u").getChild(nullptr); }).substr(0, 38), "invalid union switch for field \"u\" in ");
}

TEST_F(Unions, NamesInsideAlternativesSeeTheFieldsBesideTheUnion) {
    dict("alts", "alts|||\nshort|UChar|||n\nlong|UShort|||n\n");
    dict("r", "r|||\nn|UChar|||\nwide|UChar|||\nu|?wide|alts||\n");
    file = open("r", raw("\x02\x01\x01\x00\x02\x00"));
    EXPECT_EQ(value("u"), "{256,512}");
    EXPECT_EQ(text(field("u").getTypeStr(255)), "Union?(wide)=(2*UShort)");
    EXPECT_EQ(field("u").getSize(), 4);
}

TEST_F(Unions, VirtualFieldsReadLikeFileFields) {
    dict("r", "r|||LITTLE-ENDIAN\na|UChar|||\n~twice|UShort|m|a * 2\nb|UChar|||\n~big|UChar||300\n"
              "~name|String|x|\"v\" << a\n~c|AChar||\"hi\"\n~none|AChar||\"\"\n~d|Date|1970|a\n"
              "~t|DateTime||0.5\n~h|ULLong||9223372036854775808 * 1.5\n~n|SLong||nan\n");
    file = open("r", raw("\x05\x07"));
    EXPECT_EQ(value("twice"), "10");
    EXPECT_EQ(field("b").getPos(), 1);  // a virtual field moves nothing
    EXPECT_EQ(field("twice").getSize(), 0);
    EXPECT_EQ(hex("twice"), "0A 00");   // as the little-endian file would hold it
    EXPECT_EQ(value("big"), "44");      // 300 cut to a byte
    EXPECT_EQ(value("name"), "\"v5\"");
    EXPECT_EQ(hex("name"), "76 35");
    EXPECT_EQ(value("c"), "'h'");
    EXPECT_EQ(value("none"), "'\\0'");
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(field("c").readCPtr(buffer, 4), 1);
    EXPECT_EQ(buffer[0], 'x');
    EXPECT_EQ(field("twice").readCPtr(buffer, 1), 1);
    EXPECT_EQ(buffer[0], 10);
    EXPECT_EQ(value("d"), "06-JAN-1970");
    EXPECT_EQ(text(field("d").getUnit()), "Date");
    unsigned long usec = 0;
    field("t").readULong(usec);
    EXPECT_EQ(usec, 43200000000UL);
    float seconds = 0;
    field("t").readFloat(seconds);
    EXPECT_EQ(seconds, 43200.0f);
    unsigned long long h = 0;
    field("h").readULLong(h);
    EXPECT_EQ(h, 13835058055282163712ULL);
    long n = 0;
    field("n").readSLong(n);
    EXPECT_EQ(n, -9223372036854775807L - 1);  // what the machine's conversion gives
    // one real and several virtual fields: the record reads as the real one
    dict("one", "one|||\n~x|UChar||1\nv|UShort|||\n~y|UChar||2\n");
    dict("r", "r|||\no|@one|||\n");
    file = open("r", raw("\x01\x02"));
    double v = 0;
    field("o").readDouble(v);
    EXPECT_EQ(v, 258);
    // a statement that names its own field
    dict("r", "r|||\n~x|UChar||x + 1\n");
    file = open("r", "");
    EXPECT_EQ(errorOf([&] { field("x").readAll(true); }).substr(0, 34), "virtual field \"x\" is invalid in di");
}

TEST_F(Unions, RecurrencesAlongAThousandElements) {
    std::string bytes;
    for (int i = 0; i < 1000; ++i) bytes += static_cast<char>(i % 7);
    dict("row", "row|||\nv|UChar|||\n~sum|Double||recurse(self + v, 0)\n~before|Double||lastof(v)\n");
    dict("r", "r|||\nrows|@row|||1000\n~total|Double||rows[999] sum\n");
    file = open("r", bytes);
    double expected = 0;
    for (int i = 0; i < 1000; ++i) expected += i % 7;
    EXPECT_EQ(value("total"), treetest::text(zun::String() << expected));
    // forwards to the end, then one element again, then back
    for (long i = 0; i < 1000; ++i) field(("rows." + std::to_string(i) + ".sum").c_str()).readAll(true);
    double partial = 0;
    for (int i = 0; i <= 500; ++i) partial += i % 7;
    EXPECT_EQ(value("rows.500.sum"), treetest::text(zun::String() << partial));
    EXPECT_EQ(value("rows.500.before"), std::to_string(499 % 7));
    EXPECT_EQ(value("rows.3.sum"), "6");
}
