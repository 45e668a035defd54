// Arrays in statements: aread by index and by name, the searches by value
// alookup, aminlookup and amaxlookup, and the methods lookup, minlookup and
// maxlookup with their statements, valid filters and the @min/@max form.
// What a user sees of them on the command line is checked end to end.
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "TreeFixture.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"
#include "dict/CalcNodeFuncArrayLookup.h"
#include "struct/ArrayReader.h"
#include "struct/StructArray.h"

using treetest::raw;
using treetest::text;
using zun::CalcNode;
using zun::CalcParser;

namespace {

// Statements bound at the root, names looked up below it.
class Lookups : public treetest::TreeTest {
protected:
    // n, then a: n doubles, little-endian. "nan" stands for NaN.
    void numbers(const std::string& values) {
        dict("nums", "nums|||LITTLE-ENDIAN\nn|UChar|||\na|Double|||n\n");
        std::istringstream in(values);
        std::string word, bytes;
        while (in >> word) {
            double v = word == "nan" ? CalcNode::NaN() : std::stod(word);
            bytes.append(reinterpret_cast<const char*>(&v), sizeof v);   // the machine is little-endian
        }
        file = open("nums", std::string(1, static_cast<char>(bytes.size() / 8)) + bytes);
    }

    // n, recs: n records {k, flag, name (3), c, sub {x, y}}, m, a: m bytes,
    // then u, bytes to the end of the data.
    //   row  k  flag  name  c  sub
    //   0    1  1     ann   a  10 20
    //   1    3  0     bob   b  11 21
    //   2    5  1     bob   b  12 22
    //   3    7  1     cat   d  13 23
    void records(const std::string& bytes = raw("\x03" "\x04\x09\x06" "\x02\x05")) {
        dict("pair", "pair|||\nx|UChar|||\ny|UChar|||\n");
        dict("rec", "rec|||\nk|UChar|||\nflag|UChar|||\nname|String||3|\nc|AChar|||\nsub|@pair|||\n");
        dict("recs", "recs|||\nn|UChar|||\nrecs|@rec|||n\nm|UChar|||\na|UChar|||m\nu|UChar|||inf\n");
        file = open("recs", raw("\x04"
                                "\x01\x01" "ann" "a" "\x0a\x14"
                                "\x03\x00" "bob" "b" "\x0b\x15"
                                "\x05\x01" "bob" "b" "\x0c\x16"
                                "\x07\x01" "cat" "d" "\x0d\x17") +
                                bytes);
    }

    std::unique_ptr<CalcParser> parse(const char* statement, const char* from = "") {
        return std::make_unique<CalcParser>(statement, field(from).getCalcBinder(*from ? nullptr : "", nullptr),
                                            false);
    }

    // What a statement gives: valPrint, "FAMILYnnn title : message" of an
    // error, or "refused: text" when it is refused while it is bound.
    std::string value(const char* statement, const char* from = "") {
        try {
            return text(parse(statement, from)->valPrint());
        } catch (zun::Exception& e) {
            return std::string(e.signature().str()) + " " + e.title() + " : " + e.msg().str();
        } catch (zun::String& s) {
            return std::string("refused: ") + s.str();
        }
    }

    struct Case {
        const char *statement, *expected;
    };
    void expectValues(std::initializer_list<Case> cases, const char* from = "") {
        for (const Case& c : cases) EXPECT_EQ(value(c.statement, from), c.expected) << c.statement;
    }
    // Statements over the numbers `values`, each on a file of its own.
    struct NumbersCase {
        const char *values, *statement, *expected;
    };
    void expectOnNumbers(std::initializer_list<NumbersCase> cases) {
        for (const NumbersCase& c : cases) {
            numbers(c.values);
            EXPECT_EQ(value(c.statement), c.expected) << c.statement << " on " << c.values;
        }
    }
};

}  // namespace

TEST_F(Lookups, SearchesOfNumbers) {
    expectOnNumbers({
        // the first row equal; none
        {"1 7 7", "alookup(7, a)", "1"},
        {"1 3 9", "alookup(4, a)", "-1"},
        {"", "alookup(7, a)", "-1"},
        {"", "aminlookup(7, a)", "-1"},
        {"", "amaxlookup(7, a)", "-1"},
        // ascending: at or below, at or above, out of range on both sides
        {"1 3 9", "aminlookup(5, a)", "1"},
        {"1 3 9", "amaxlookup(5, a)", "2"},
        {"1 3 9", "aminlookup(0, a)", "-1"},
        {"1 3 9", "amaxlookup(0, a)", "0"},
        {"1 3 9", "aminlookup(10, a)", "2"},
        {"1 3 9", "amaxlookup(10, a)", "-1"},
        {"1 3 9", "aminlookup(3, a)", "1"},
        {"1 3 9", "amaxlookup(3, a)", "1"},
        {"1 3 9", "aminlookup(9, a)", "2"},
        {"1 3 9", "amaxlookup(1, a)", "0"},
        {"1 3 9", "amaxlookup(infinity, a)", "-1"},
        {"1 3 9", "aminlookup(-infinity, a)", "-1"},
        // descending: the other side
        {"9 3 1", "aminlookup(5, a)", "1"},
        {"9 3 1", "amaxlookup(5, a)", "0"},
        {"9 3 1", "aminlookup(10, a)", "0"},
        {"9 3 1", "amaxlookup(10, a)", "-1"},
        {"9 3 1", "aminlookup(0, a)", "-1"},
        {"9 3 1", "amaxlookup(0, a)", "2"},
        {"9 3 1", "aminlookup(3, a)", "1"},
        {"9 3 1", "amaxlookup(3, a)", "1"},
        {"9 3 1", "aminlookup(1, a)", "2"},
        {"9 3 1", "amaxlookup(1, a)", "2"},
        // one row; all rows equal
        {"4", "aminlookup(4, a)", "0"},
        {"4", "aminlookup(3, a)", "-1"},
        {"4", "amaxlookup(3, a)", "0"},
        {"4", "aminlookup(5, a)", "0"},
        {"4", "amaxlookup(5, a)", "-1"},
        {"4 4 4", "aminlookup(4, a)", "2"},
        {"4 4 4", "amaxlookup(4, a)", "0"},
        {"4 4 4", "aminlookup(3, a)", "-1"},
        {"4 4 4", "amaxlookup(3, a)", "0"},
        {"4 4 4", "aminlookup(5, a)", "2"},
        {"4 4 4", "amaxlookup(5, a)", "-1"},
    });
}

TEST_F(Lookups, RunsOfEqualValues) {
    const struct {
        const char* values;
        double x;
        const char *atOrBelow, *atOrAbove;
    } rows[] = {
        // ascending, a leading run of 1, 2 and 3 rows
        {"2 5 7", 2, "0", "0"},
        {"2 2 5 7", 2, "1", "0"},
        {"2 2 2 5 7", 2, "2", "0"},
        // ascending, a run further on: at or below gives its last row, at
        // or above its first
        {"1 5 9", 5, "1", "1"},
        {"1 5 5 9", 5, "2", "1"},
        {"1 5 5 5 9", 5, "3", "1"},
        {"1 3 5 5 5 9", 5, "4", "2"},
        {"1 3 5 5", 5, "3", "2"},
        {"1 5 5 5 9", 6, "3", "4"},
        {"1 5 5 5 9", 4, "0", "1"},
        // descending, the leading run: its end below, row 0 above
        {"9 9 9 5 1", 9, "2", "0"},
        // descending, a run further on: at or below its first row, at or
        // above its last
        {"9 5 1", 5, "1", "1"},
        {"9 5 5 1", 5, "1", "2"},
        {"9 5 5 5 1", 5, "1", "3"},
        {"9 7 5 5 5 1", 5, "2", "4"},
        {"9 5 5 5 1", 3, "4", "3"},
        {"9 5 5 5 1", 6, "1", "0"},
        // descending, the scan stops at once or meets the end: at or above
        // is the row of the second value
        {"9 5 1", 3, "2", "1"},
        {"9 5", 4, "-1", "1"},
    };
    for (const auto& r : rows) {
        numbers(r.values);
        std::string x = std::to_string(static_cast<int>(r.x));
        EXPECT_EQ(value(("aminlookup(" + x + ", a)").c_str()), r.atOrBelow) << x << " on " << r.values;
        EXPECT_EQ(value(("amaxlookup(" + x + ", a)").c_str()), r.atOrAbove) << x << " on " << r.values;
        EXPECT_EQ(value(("a@minlookup(" + x + ")").c_str()), r.atOrBelow) << x << " on " << r.values;
        EXPECT_EQ(value(("a@maxlookup(" + x + ")").c_str()), r.atOrAbove) << x << " on " << r.values;
    }
    numbers("1 5 5 5 9");
    expectValues({{"alookup(5, a)", "1"}, {"a@lookup(5)", "1"}});
}

TEST_F(Lookups, NotANumber) {
    // NaN equals nothing and is neither below nor above anything: the
    // comparisons that would move on all fail.
    expectOnNumbers({
        {"1 3 9", "alookup(nan, a)", "-1"},
        {"1 3 9", "aminlookup(nan, a)", "0"},
        {"1 3 9", "amaxlookup(nan, a)", "1"},
        {"9 3 1", "aminlookup(nan, a)", "1"},
        {"9 3 1", "amaxlookup(nan, a)", "0"},
        {"4 4", "aminlookup(nan, a)", "1"},
        {"4 4", "amaxlookup(nan, a)", "-1"},
        {"1 nan 9", "alookup(9, a)", "2"},
        {"1 nan 9", "alookup(nan, a)", "-1"},
        {"nan 1 2", "aminlookup(1, a)", "1"},
        {"1 nan 9", "a@lookup(nan)", "-1"},
    });
}

TEST_F(Lookups, TextsAndFieldsOfRecords) {
    records();
    expectValues({
        // String and AChar fields compare as text
        {"alookup(\"bob\", recs, \"name\")", "1"},
        {"aminlookup(\"bob\", recs, \"name\")", "2"},
        {"amaxlookup(\"bob\", recs, \"name\")", "1"},
        {"aminlookup(\"bz\", recs, \"name\")", "2"},
        {"amaxlookup(\"bz\", recs, \"name\")", "3"},
        {"aminlookup(\"a\", recs, \"name\")", "-1"},
        {"amaxlookup(\"zed\", recs, \"name\")", "-1"},
        {"alookup(\"zed\", recs, \"name\")", "-1"},
        {"alookup(7, recs, \"name\")", "-1"},
        {"alookup(\"d\", recs, \"c\")", "3"},
        {"aminlookup(\"c\", recs, \"c\")", "2"},
        // any other as numbers
        {"alookup(5, recs, \"k\")", "2"},
        {"alookup(\"5\", recs, \"k\")", "2"},
        {"amaxlookup(4, recs, \"k\")", "2"},
        {"alookup(12, recs, \"sub.x\")", "2"},
        {"alookup(1, recs, \"flag\")", "0"},
        // a record is refused
        {"alookup(1, recs, \"sub\")", "refused: lookup field \"sub\" is a complex field"},
        {"alookup(1, recs)", "refused: lookup field \"\" is a complex field"},
        {"alookup(\"x\", recs, \"zz\")", "VEXA005 invalid field name : field [zz] in structure [recs.0]"},
        // a plain array of bytes
        {"alookup(9, a)", "1"},
        {"amaxlookup(5, a)", "1"},
        {"aminlookup(5, a)", "0"},
    });
}

TEST_F(Lookups, ElementsByIndexAndByName) {
    records();
    expectValues({
        {"aread(2, recs, \"k\")", "5"},
        {"aread(1, recs, \"name\")", "\"bob\""},
        {"aread(2, recs, \"sub.y\")", "22"},
        {"aread(0, recs, \"sub\")", "[0A 14]"},
        {"aread(1, a)", "9"},
        {"aread(1.9, a)", "9"},
        {"aread(\"1\", recs, \"k\")", "3"},
        {"aread(\"#last\", recs, \"name\")", "\"cat\""},
        {"aread(\"#mid\", a)", "9"},
        {"aread(\"name=c*\", recs, \"k\")", "7"},
        {"aread(\"c=b\", recs, \"k\")", "3"},
        {"aread(aread(2, a) - 4, recs, \"c\")", "\"b\""},
        // indices that name no element
        {"aread(4, recs, \"k\")", "VEXA011 array index overflow : array [recs]"},
        {"aread(-1, recs, \"k\")", "VEXA010 invalid array index : array [recs] index [-1] is invalid"},
        {"aread(nan, recs, \"k\")",
         "VEXA010 invalid array index : array [recs] index [-9223372036854775808] is invalid"},
        {"aread(1000000000000000000000, a)",
         "VEXA010 invalid array index : array [a] index [-9223372036854775808] is invalid"},
        {"aread(\"\", a)", "VEXA010 invalid array index : array [a] index [] is invalid"},
        {"aread(null, a)", "VEXA010 invalid array index : array [a] index [] is invalid"},
        {"aread(\"name=zz\", recs, \"k\")", "VEXA010 invalid array index : array [recs] index [name=zz] is invalid"},
    });
    // the element is named by the index the array stands on
    field("recs.1");
    EXPECT_EQ(value("aread(0, recs, \"zz\")"), "VEXA005 invalid field name : field [zz] in structure [recs.1]");
}

TEST_F(Lookups, ArgumentsThatAreRefused) {
    records();
    expectValues({
        {"aread(1, recs[0])", "refused: VEXA array reference expected as second argument"},
        {"aread(1, 2)", "refused: VEXA array reference expected as second argument"},
        {"v = recs; aread(1, v, \"k\")", "refused: VEXA array reference expected as second argument"},
        {"alookup(1, recs[1], \"k\")", "refused: VEXA array reference expected as second argument"},
        {"aread(1, n)", "refused: index array reference \"n\" is not an array structure"},
        {"alookup(1, n)", "refused: lookup array reference \"n\" is not an array stucture"},
        {"aread(1)", "CALC006 missing function arguments : Function \"aread\" takes at least 2 argument(s)"},
        {"alookup(1, recs, \"k\", 4)",
         "CALC007 too many function arguments : Function \"alookup\" takes at most 3 argument(s)"},
        {"a@maxlookup(1, \"{}\", 3)",
         "CALC007 too many function arguments : Function \"maxlookup\" takes at most 2 argument(s)"},
        {"recs@lookup(1, \"zz\")", "CALC010 invalid symbol : \"zz\""},
        {"a@Lookup(1)", "CALC015 unsupported method : \"Lookup\""},
        {"a@lookup(1)@size", "CALC014 unsupported property or option : \"size\" in statement (a@lookup(1) >>> @size <<< )"},
        {"l = a@lookup(9); l@min",
         "CALC014 unsupported property or option : \"min\" in statement (l = a@lookup(9); l >>> @min <<< )"},
    });
    // names and statements that change with the element: no field name
    expectValues({
        {"aread(1, {--.recs}, iter)", "refused: String constant expected as array field name in third argument"},
        {"alookup(1, {--.recs}, name)", "refused: String constant expected as lookup field name in third argument"},
        {"{--.a}@lookup(1, iter)", "CALC009 invalid function call : String constant expected as lookup statement "
                                   "field in second argument in call to function \"lookup\""},
    }, "recs.0.name");
}

TEST_F(Lookups, StatementsAndValidFilters) {
    records();
    expectValues({
        // the element's own value, or a statement run in the element
        {"a@lookup(9)", "1"},
        {"a@lookup(18, \"{} * 2\")", "1"},
        {"recs@lookup(8, \"k + 1\")", "3"},
        {"recs@lookup(\"bob\", \"name\")", "1"},
        {"recs@minlookup(\"c\", \"name\")", "2"},
        {"recs@maxlookup(4, \"k\")", "2"},
        {"v = recs; v@minlookup(4, \"k\")", "1"},
        // the property form
        {"recs@lookup(4, \"k\")@min", "1"},
        {"recs@lookup(4, \"k\")@MAX", "2"},
        {"recs@maxlookup(4, \"k\")@min", "1"},
        // valid lets rows through: row 1 has flag 0
        {"recs@lookup(\"bob\", \"valid=flag; name\")", "2"},
        {"recs@lookup(3, \"valid=flag; k\")", "-1"},
        {"recs@lookup(3, \"valid=flag > 0; k\")", "-1"},
        {"recs@minlookup(4, \"valid=flag; k\")", "0"},
        {"recs@maxlookup(4, \"valid=flag; k\")", "2"},
        {"recs@lookup(3, \"valid=nan; k\")", "1"},
        {"recs@lookup(1, \"valid=0; k\")", "-1"},
        {"recs@minlookup(1, \"valid=0; k\")", "-1"},
        {"recs@minlookup(1, \"valid=k>1; k\")", "-1"},
        {"recs@maxlookup(1, \"valid=k>1; k\")", "1"},
        // the first value that counts runs to the end of the array: at or
        // below answers the last row of the array, counting or not
        {"recs@minlookup(1, \"valid=k<2; k\")", "3"},
        {"recs@maxlookup(1, \"valid=k<2; k\")", "0"},
        {"recs@minlookup(2, \"valid=k<2; k\")", "0"},
        // rows that don't count neither start nor end a run
        {"recs@minlookup(\"bob\", \"valid=k!=1; name\")", "2"},
        {"recs@maxlookup(\"bob\", \"valid=k!=1; name\")", "1"},
    });
}

TEST_F(Lookups, LookupsInsideLookups) {
    records();
    expectValues({
        {"alookup(aread(2, a), a)", "2"},
        {"amaxlookup(alookup(9, a) + 3, recs, \"k\")", "2"},
        {"aread(alookup(\"cat\", recs, \"name\"), recs, \"sub.x\")", "13"},
        {"recs@lookup(aread(3, recs, \"k\"), \"k\")", "3"},
        // the statement of each row searches the same array: k + 2 is found
        // in the next row but for the last
        {"recs@lookup(2, 'alookup(k + 2, {--.recs}, \"k\")')", "1"},
        {"recs@lookup(-1, 'alookup(k + 2, {--.recs}, \"k\")')", "3"},
        {"recs@lookup(12, 'aread(iter, {--.a}) + k')", "1"},
    });
}

TEST_F(Lookups, UnboundArraysAreWalkedToTheEndOfTheData) {
    records(raw("\x00" "\x05\x06\x07\x08"));
    auto& u = static_cast<vexa::StructArrayBase&>(field("u"));
    EXPECT_LT(u.numElems(), 0);
    EXPECT_EQ(value("alookup(7, u)"), "2");
    EXPECT_EQ(value("alookup(9, u)"), "-1");
    EXPECT_EQ(u.numElems(), 4);   // the count is known once the end was met
    expectValues({
        {"aminlookup(9, u)", "3"},
        {"amaxlookup(9, u)", "-1"},
        {"u@lookup(8)", "3"},
        {"u@maxlookup(6, \"{} + 1\")", "0"},
        {"aread(3, u)", "8"},
        {"aread(4, u)", "VEXA011 array index overflow : array [u]"},
    });
    // nothing behind the last byte: the array is empty
    records(raw("\x00"));
    expectValues({
        {"alookup(1, u)", "-1"},
        {"aminlookup(1, u)", "-1"},
        {"amaxlookup(1, u)", "-1"},
        {"u@minlookup(1)", "-1"},
        {"u@lookup(1)", "-1"},
    });
}

TEST_F(Lookups, ElementsWithoutSizeEndNowhere) {
    dict("z", "z|||\nz|String||0|inf\n");
    file = open("z", raw("\x05"));
    expectValues({
        {"alookup(\"x\", z)", "VEXA002 value out-of-range : unbound array \"z\" has elements of size 0"},
        {"z@lookup(\"x\")", "VEXA002 value out-of-range : unbound array \"z\" has elements of size 0"},
    });
    // an array that looks itself up to learn its count walks to the end of
    // the data; elements without size would never get there
    dict("d", "d|||\nd|String||0|alookup(\"x\", d)\n");
    file = open("d", raw("\x05"));
    EXPECT_EQ(value("d@dim"), "VEXA002 value out-of-range : unbound array \"d\" has elements of size 0");
}

TEST_F(Lookups, LevelsFoldingAndMoves) {
    records();
    // a search of a root array with constant arguments is done once, at binding
    EXPECT_EQ(parse("alookup(9, a)")->result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(parse("a@maxlookup(5)")->result->nodeType(), CalcNode::TypeConst);
    // aread reads where the array stands: it is never folded
    EXPECT_EQ(parse("aread(1, a)")->constLevel(), 0);
    // in an element of recs, k is the element's: the answer follows the array
    auto found = parse("alookup(k + 3, {--.a})", "recs.0.name");
    EXPECT_EQ(found->constLevel(), 0);
    const struct {
        const char* element;
        double row;
    } moves[] = {{"recs.0", 0}, {"recs.1", 2}, {"recs.2", -1}, {"recs.1", 2}, {"recs.3", -1}};
    for (const auto& m : moves) {
        field(m.element);
        EXPECT_EQ(found->valNum(), m.row) << m.element;
    }
}

TEST_F(Lookups, TheReaderOfASearchGoesOnAfterAReadError) {
    // rows beyond the data: the search fails, and the next one starts again
    dict("short", "short|||\nn|UChar|||\na|UChar|||n\n");
    file = open("short", raw("\x09\x01\x02\x03"));
    EXPECT_EQ(value("alookup(2, a)"), "1");
    EXPECT_EQ(value("alookup(7, a)").substr(0, 7), "STD005 ");
    EXPECT_EQ(value("alookup(3, a)"), "2");
}
