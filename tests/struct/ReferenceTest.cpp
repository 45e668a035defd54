// Field names in statements: how the binder of the tree finds them, the
// reference nodes it makes, their values, levels, folding, properties,
// methods and errors. What a user sees of them in dictionaries is checked
// end to end.
#include <cmath>
#include <memory>

#include "TreeFixture.h"
#include "calc/CalcNode.h"
#include "calc/CalcParser.h"
#include "dict/CalcBinder.h"
#include "dict/CalcNodeRef.h"
#include "struct/StructAlias.h"
#include "struct/StructArray.h"

using treetest::signatureOf;
using treetest::text;
using vexa::CalcNodeRef;
using vexa::CalcNodeRefProperty;
using vexa::StructAlias;
using zun::CalcNode;
using zun::CalcParser;

namespace {

class References : public treetest::TreeTest {
protected:
    // root: len, text (len bytes), hdr {n, tag}, num (ASCII), ch (AChar), w, #p
    void SetUp() override {
        dict("hdr", "hdr|||\nn|UChar|||\ntag|String||2|\n");
        dict("r", "r|||\nlen|UChar|||\ntext|String||len|\nhdr|@hdr|||\nnum|aUShort||3|\nch|AChar|||\n"
                  "w|UShort|||\n #p|UChar|||\n");
        file = openNamed(dir.path("r") + "&q=7", treetest::raw("\x03" "abc" "\x02" "XY" "042" "Z" "\x01\x02" "\x09"));
    }

    // A statement bound where a dictionary statement of `from` stands
    // (prefix null), or with the given symbol prefix.
    std::unique_ptr<CalcParser> parse(const char* from, const char* statement, const char* prefix = nullptr) {
        return std::make_unique<CalcParser>(statement, field(from).getCalcBinder(prefix, nullptr), false);
    }
    // valPrint of a statement: numbers plain, texts quoted.
    std::string value(const char* from, const char* statement, const char* prefix = nullptr) {
        return text(parse(from, statement, prefix)->valPrint());
    }
    // "FAMILYnnn title : message" of a statement that fails to bind or to run.
    std::string failure(const char* from, const char* statement, const char* prefix = nullptr) {
        return signatureOf([&] { parse(from, statement, prefix)->valPrint(); });
    }
    // Statements bound at `from` with what valPrint gives, or with the
    // signature of their failure.
    struct Case {
        const char *statement, *expected;
    };
    void expectValues(const char* from, std::initializer_list<Case> cases) {
        for (const Case& c : cases) EXPECT_EQ(value(from, c.statement), c.expected) << c.statement;
    }
    void expectFailures(const char* from, std::initializer_list<Case> cases) {
        for (const Case& c : cases) EXPECT_EQ(failure(from, c.statement), c.expected) << c.statement;
    }
    // A reference node on a field, as the binder makes it.
    std::unique_ptr<CalcNodeRef> ref(const char* path, int level = 0) {
        return std::make_unique<CalcNodeRef>(path, new StructAlias(field(path)), level);
    }
};

}  // namespace

TEST_F(References, NamesAreLookedUpFromWhereTheStatementStands) {
    const struct {
        const char *from, *prefix, *statement, *value;
    } rows[] = {
        // a dictionary statement: the siblings of its element
        {"text", nullptr, "len", "3"},
        {"text", nullptr, "len + hdr.n", "5"},
        {"text", nullptr, "text", "\"abc\""},
        {"hdr.tag", nullptr, "n", "2"},
        // climbing, from the root, into the element itself
        {"hdr.tag", nullptr, "{-.len}", "3"},
        {"hdr.tag", nullptr, "{--.len}", "3"},
        {"hdr.tag", nullptr, "{-.hdr.tag}", "\"XY\""},
        {"hdr.tag", nullptr, ".len", "3"},
        {"hdr.tag", nullptr, ".@size", "14"},
        {"hdr", nullptr, "{+n}", "2"},
        // an empty prefix: below the element itself
        {"hdr", "", "n", "2"},
        {"", "", "hdr.tag", "\"XY\""},
        // any other prefix: the rest is a path below the element
        {"hdr", "$", "$n", "2"},
        {"hdr", "$", "$tag", "\"XY\""},
        // "#" names are parameters, never fields
        {"text", nullptr, "#q", "\"7\""},
        {"text", nullptr, "#filename", "\"data.bin\""},
    };
    for (const auto& r : rows)
        EXPECT_EQ(value(r.from, r.statement, r.prefix), r.value) << r.from << ": " << r.statement;
}

TEST_F(References, NamesThatDontResolveAreUnknownSymbols) {
    const struct {
        const char *from, *prefix, *statement, *symbol;
    } rows[] = {
        {"text", nullptr, "nope", "nope"},
        {"hdr.tag", nullptr, "len", "len"},         // no search outward
        {"", nullptr, "len", "len"},                // a root has no siblings
        {"text", nullptr, "{-.-.len}", "-.-.len"},  // above the root
        {"text", nullptr, "len.x", "len.x"},        // below a leaf
        {"text", nullptr, "{+x}", "+x"},              // into a leaf
        {"text", "", "len", "len"},                 // below text
        {"hdr", "$", "n", "n"},                     // without the prefix
        {"hdr", "$", "$zz", "$zz"},
        {"text", nullptr, "#p", "#p"},              // a field named like a parameter
    };
    for (const auto& r : rows)
        EXPECT_EQ(failure(r.from, r.statement, r.prefix),
                  std::string("CALC010 invalid symbol : \"") + r.symbol + "\"")
            << r.from << ": " << r.statement;
}

TEST_F(References, LevelsAndFolding) {
    // A reference anchored at the root that no array moves is read at binding
    // time; one anchored lower, or on a record, stays a reference.
    const struct {
        const char *from, *statement;
        CalcNode::Type type;
        int level;
    } rows[] = {
        {"text", "len", CalcNode::TypeConst, -1},     {"hdr.tag", ".len", CalcNode::TypeConst, -1},
        {"text", "hdr.tag", CalcNode::TypeConst, -1}, {"hdr.tag", "n", CalcNode::TypeRef, -1},
        {"text", "hdr", CalcNode::TypeRef, -1},       {"text", "hdr@size", CalcNode::TypeConst, -1},
        {"text", "len + iter", CalcNode::TypeOper, 0},
    };
    for (const auto& r : rows) {
        auto p = parse(r.from, r.statement);
        EXPECT_EQ(p->result->nodeType(), r.type) << r.statement;
        EXPECT_EQ(p->constLevel(), r.level) << r.statement;
    }
    auto folded = parse("text", "text");
    EXPECT_EQ(text(folded->result->name), "string constant");
    EXPECT_EQ(text(parse("text", "len")->result->name), "numeric constant");
    // the prefixed forms: the element itself varies, a path below it doesn't
    auto binder = [&](const char* prefix) {
        return std::unique_ptr<zun::CalcBinder>(field("hdr").getCalcBinder(prefix, nullptr));
    };
    for (const char* name : {"$", "$#"}) {
        std::unique_ptr<CalcNode> n(binder("$")->bindSymbol(name));
        ASSERT_NE(n, nullptr) << name;
        EXPECT_EQ(n->constLevel(), 0) << name;
        EXPECT_EQ(n->valRaw().count, 3) << name;
    }
    std::unique_ptr<CalcNode> below(binder("$")->bindSymbol("$n"));
    EXPECT_EQ(below->constLevel(), -1);
    // a null name is the place itself
    std::unique_ptr<CalcNode> place(binder(nullptr)->bindSymbol(nullptr));
    EXPECT_EQ(place->nodeType(), CalcNode::TypeRef);
    EXPECT_EQ(place->constLevel(), -1);
    EXPECT_EQ(place->valRaw().count, 3);
}

TEST_F(References, ValueTypesAndValues) {
    const struct {
        const char* path;
        int type;
    } types[] = {{"len", zun::ValNum}, {"w", zun::ValNum}, {"num", zun::ValNum}, {"text", zun::ValStr},
                 {"ch", zun::ValStr},  {"hdr", zun::ValRaw}};
    for (const auto& t : types) EXPECT_EQ(ref(t.path)->valType(), t.type) << t.path;
    EXPECT_EQ(ref("num")->valNum(), 42);
    EXPECT_EQ(ref("w")->valInt(), 258);
    EXPECT_EQ(text(ref("text")->valStr()), "abc");
    EXPECT_EQ(text(ref("ch")->valStr()), "Z");
    zun::RawBuffer bytes;
    bytes << 'x';
    ref("hdr")->valRaw(bytes);   // appends
    EXPECT_EQ(std::string(bytes.data, bytes.count), "x\x02XY");
    auto r = ref("len");
    EXPECT_EQ(r->implements("vexa::ref"), r.get());
    EXPECT_EQ(r->implements("vector"), nullptr);
    // a keyword extends the reference below its field
    EXPECT_EQ(value("text", "hdr tag"), "\"XY\"");
    EXPECT_EQ(value("text", "hdr n * 10"), "20");
    EXPECT_EQ(failure("text", "hdr zz"), "VEXA005 invalid field name : field [zz] in structure [hdr]");
}

TEST_F(References, Properties) {
    expectValues("text", {
        {"len@size", "1"},         {"text@size", "3"},          {"hdr@size", "3"},
        {"hdr@offset", "4"},       {"hdr@offset_next", "7"},    {"hdr.tag@offset", "1"},
        {"hdr.tag@pos", "5"},      {"hdr.tag@pos_next", "7"},   {"hdr@dim", "2"},
        {"len@dim", "-1"},         {"len@filesize", "14"},      {"len@type", "\"UChar\""},
        {"hdr@type", "\"Record'hdr\""}, {"num@type", "\"aUShort\""}, {"w@name", "\"w\""},
        {"len@filename", "\"data.bin\""},
        // names ignore case
        {"len@SIZE", "1"},         {"hdr@Offset_Next", "7"},
        // through a variable the property holds a link to the reference
        {"v = hdr; v@size * 10 + v@dim", "32"},
    });
    EXPECT_EQ(failure("text", "len@sizes"),
              "CALC014 unsupported property or option : \"sizes\" in statement (len >>> @sizes <<< )");

    // Text properties used as numbers, and number properties as texts.
    auto property = [&](const char* name) {
        int row = CalcNodeRefProperty::rowOf(name);
        return std::make_unique<CalcNodeRefProperty>(name, ref("hdr.tag").release(), row);
    };
    EXPECT_EQ(property("type")->valNum(), vexa::TypeString);
    EXPECT_EQ(text(property("type")->valStr()), "String");
    EXPECT_TRUE(std::isnan(property("name")->valNum()));
    EXPECT_EQ(text(property("name")->valStr()), "tag");
    EXPECT_TRUE(std::isnan(property("filename")->valNum()));
    EXPECT_EQ(text(property("pos_next")->valStr()), "7");
    EXPECT_EQ(property("size")->valType(), zun::ValNum);
    EXPECT_EQ(property("filesize")->valType(), zun::ValNum);
    EXPECT_EQ(property("type")->valType(), zun::ValStr);
    EXPECT_EQ(CalcNodeRefProperty::rowOf("nope"), -1);
    EXPECT_EQ(CalcNodeRefProperty::rowOf("FILENAME"), CalcNodeRefProperty::RowFileName);
}

TEST_F(References, ChildAndExec) {
    expectValues("text", {
        {"hdr@child(\"tag\")", "\"XY\""},
        {"hdr@child(\"\")@size", "3"},
        {"{.}@child(\"hdr.n\") + 1", "3"},
        // exec runs in the scope of its field: among its siblings
        {"len@exec(\"text\")", "\"abc\""},
        {"hdr@exec(\"{+n} * 10\")", "20"},
        {"hdr@exec(\"len\", 0)", "3"},
    });
    expectFailures("text", {
        {"hdr@child(\"n\", \"tag\")", "CALC007 too many function arguments : Function \"@child\" takes at most 1 argument(s)"},
        {"hdr@child(iter)",
         "CALC009 invalid function call : String constant expected as argument in call to function \"@child\""},
        {"hdr@child(\"zz\")", "VEXA005 invalid field name : field [zz] in structure [hdr]"},
        {"v = hdr; v@child(\"n\")", "CALC015 unsupported method : \"child\""},
        {"hdr@Child(\"n\")", "CALC015 unsupported method : \"Child\""},
        {"hdr@exec(\"n\")", "CALC010 invalid symbol : \"n\""},
        {"len@exec(\"1\", 2, 3)", "CALC007 too many function arguments : Function \"exec\" takes at most 2 argument(s)"},
        {"v = hdr; v@exec(\"1\")", "CALC015 unsupported method : \"exec\""},
    });
}

TEST_F(References, WhatBelongsToArraysAndLookups) {
    expectFailures("text", {
        // a subscript of a field that is no array: a number can't be indexed
        {"len[0]", "CALC002 invalid operator : (operator::[]) in statement (len >>> [0] <<< )"},
        {"hdr[0]", "CALC002 invalid operator : (operator::[]) in statement (hdr >>> [0] <<< )"},
        // the searches by value are methods of arrays only
        {"hdr@lookup(1)", "CALC015 unsupported method : \"lookup\""},
        {"hdr@minlookup(1)", "CALC015 unsupported method : \"minlookup\""},
        {"hdr@maxlookup(1)", "CALC015 unsupported method : \"maxlookup\""},
        {"len@lookup(1)", "CALC015 unsupported method : \"lookup\""},
    });
    // the subscript of a text field is its substring
    EXPECT_EQ(value("len", "text[1]"), "\"bc\"");
    EXPECT_EQ(value("len", "text[0, 1]"), "\"ab\"");
}

namespace {

// root: count, vals (count UShorts), items (count records {len, text}),
// tail (bytes to the end of the data).
class ArrayReferences : public References {
protected:
    void SetUp() override {
        dict("item", "item|||\nlen|UChar|||\ntext|String||len|\n");
        dict("r", "r|||\ncount|UChar|||\nvals|UShort|||count\nitems|@item|||count\ntail|UChar|||inf\n");
        file = open("r", treetest::raw("\x03" "\x00\x01\x00\x02\x00\x03" "\x02" "ab" "\x01" "c" "\x03" "def" "xyz"));
    }
};

}  // namespace

TEST_F(ArrayReferences, Subscripts) {
    expectValues("count", {
        {"vals[2]", "3"},
        {"vals[0] * 10 + vals[2]", "13"},
        {"vals[count - 1]", "3"},
        {"vals[1, 99]", "2"},              // a second index only counts for the level
        {"vals[\"#last\"]", "3"},          // a text is a path component
        {"vals[\"#mid\"]", "2"},
        {"items[2] len", "3"},             // a keyword goes below the element
        {"items[1] text", "\"c\""},
        {"items[\"text=d*\"] len", "3"},   // a search
        {"items[0]@pos", "7"},
        {"items[2] text@pos", "13"},
        {"items[2]@child(\"text\")", "\"def\""},
        {"v = vals; v[1] * 10", "20"},     // through a variable
        {"v = vals; v@lookup(3)", "2"},
        {"vals@dim + items@dim", "6"},
        {"tail@dim", "3"},                 // an unbound array walks to its end
        {"vals@type", "\"(3*UShort)\""},
    });
    expectFailures("count", {
        {"vals[1, 2, 3]", "CALC007 too many function arguments : Function \"operator::[]\" takes at most 2 argument(s)"},
        {"vals[-1]", "VEXA010 invalid array index : array [vals] index [-1] is invalid"},
        {"vals[nan]", "VEXA010 invalid array index : array [vals] index [-9223372036854775808] is invalid"},
        {"vals[3]", "VEXA011 array index overflow : array [vals]"},
        {"vals[\"x\"]", "VEXA010 invalid array index : array [vals] index [x] is invalid"},
        {"items[\"len=9\"] len", "VEXA010 invalid array index : array [items] index [len=9] is invalid"},
    });
}

TEST_F(ArrayReferences, LevelsInsideAnArray) {
    const struct {
        const char *from, *statement;
        int level;
    } rows[] = {
        {"count", "vals[2]", -1},        {"count", "vals[iter]", 0},    {"count", "vals[1, iter]", 0},
        {"items.0.text", "len", 0},      {"items.0.text", "iter", 0},   {"items.0.text", "{-.}@dim", 0},
        {"items.0.text", "{--.count}", 1}, {"items.0.text", "{-.-.count}", 1}, {"items.0.text", ".count", -1},
    };
    for (const auto& r : rows) EXPECT_EQ(parse(r.from, r.statement)->constLevel(), r.level) << r.statement;
    EXPECT_EQ(parse("count", "vals[2]")->result->nodeType(), CalcNode::TypeMethod);
    // a reference in an element reads the element the array stands on
    auto len = parse("items.0.text", "len * 10 + iter");
    field("items.1");
    EXPECT_EQ(len->valNum(), 11);
    field("items.2");
    EXPECT_EQ(len->valNum(), 32);
    field("items.0");
    EXPECT_EQ(len->valNum(), 20);
    // the sizes that hang on it follow the array, forward and back
    EXPECT_EQ(text(field("items.2.text").readAll(true)), "\"def\"");
    EXPECT_EQ(text(field("items.0.text").readAll(true)), "\"ab\"");
    EXPECT_EQ(field("tail").getPos(), 16);
}

TEST_F(ArrayReferences, AliasesKeepTheirIndices) {
    // a reference through an index reads that element wherever the array stands
    CalcNodeRef first("first", new StructAlias(file->getRoot(), "items.0.len"), 0);
    field("items.2");
    EXPECT_EQ(first.valNum(), 2);
    EXPECT_EQ(static_cast<vexa::StructArrayBase&>(field("items")).activeIndex, 0);
    // "#" takes the index of the moment
    field("items.1");
    CalcNodeRef current("current", new StructAlias(file->getRoot(), "items.#.text"), 0);
    field("items.2");
    EXPECT_EQ(text(current.valStr()), "c");
    // a constant reference through an index is read once
    auto folded = parse("count", ".items.2.text");
    EXPECT_EQ(folded->result->nodeType(), CalcNode::TypeConst);
    EXPECT_EQ(text(folded->valStr()), "def");
}
