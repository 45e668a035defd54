// Statements that name fields of the file: sizes of strings and records,
// offsets, record sizes in a dictionary's header, the forms of reference and
// their properties, and what a user sees when a name or a statement is wrong.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDir.h"

namespace {

using testsupport::bytes;

// Compares a whole run: status, standard output and standard error.
void expectRun(const testsupport::Result& r, int status, const std::string& out, const std::string& err) {
    EXPECT_EQ(r.out, out);
    EXPECT_EQ(r.err, err);
    EXPECT_EQ(r.status, status);
}

// A run that succeeds without a word on standard error.
void expectOut(const testsupport::Result& r, const std::string& out) { expectRun(r, 0, out, ""); }

// Each test writes its files into a fresh folder and runs skelvor there, so
// that the paths in messages are short.
class References : public ::testing::Test {
protected:
    testsupport::TempDir dir;

    std::string write(const std::string& name, const std::string& bytes) { return dir.write(name, bytes); }
    testsupport::Result run(const std::vector<std::string>& args) {
        testsupport::RunOptions options;
        options.cwd = dir.path();
        return testsupport::run(testsupport::programPath("skelvor"), args, options);
    }

    // Runs data.bin through the dictionary t.dd of the given text.
    testsupport::Result withDictionary(const std::string& text, std::vector<std::string> more = {}) {
        write("t.dd", text);
        std::vector<std::string> args{"data.bin", "-d=t"};
        args.insert(args.end(), more.begin(), more.end());
        return run(args);
    }
    // A failing run: what was printed before the failure, then the error lines.
    void expectFailure(const std::string& text, const std::string& out, const std::string& err,
                       std::vector<std::string> more = {}) {
        SCOPED_TRACE(text);
        expectRun(withDictionary(text, more), 1, out, err);
    }
    static std::string dictionaryError(const std::string& message) {
        return "ERROR-VEXA015 dictionary error : " + message + " in dictionary 't.dd'\n";
    }
};

}  // namespace

TEST_F(References, SizesFromFieldsReadBefore) {
    // a length byte, its string; a count of pairs, the pairs
    write("data.bin", std::string("\x03" "abc" "\x00\x02" "ABCD" "!", 11));
    const std::string lengths = "t|||\nlen|UChar|||\ntext|String||len|\ncount|UShort|||\npairs|String||count*2|\n"
                                "end|String||1|\n";
    expectOut(withDictionary(lengths),
              "00> len = 3\n01> text = \"abc\"\n04> count = 2\n06> pairs = \"ABCD\"\n10> end = \"!\"\n");
    // a field of a record in front, and a length of 0
    write("data.bin", std::string("\x00\x01" "Q" "z", 4));
    write("head.dd", "head|||\nn|UChar|||\nm|UChar|||\n");
    expectOut(withDictionary("t|||\nh|@head|||\nnone|String||h.n|\none|String||h.m|\nz|String||1|\n", {"-r"}),
              "0> h.n = 0\n1> h.m = 1\n2> none = \"\"\n2> one = \"Q\"\n3> z = \"z\"\n");
}

TEST_F(References, OffsetsFromFields) {
    write("data.bin", std::string("\x00\x03" "abcdefgh", 10));
    // a count of 16-bit words before the field; an offset from a field's properties
    expectOut(withDictionary("t|||\ncount|UShort|||\nx|UChar||||count*2\ny|UChar||||x@pos_next + 1\n"),
              "00> count = 3\n06> x = 101\n08> y = 103\n");
    // offsets beside a variable string: align what follows it to 4 bytes
    write("data.bin", std::string("\x05" "hello" "\xAA\xBB" "\x01\x02", 10));
    expectOut(withDictionary("t|||\nn|UChar|||\ns|String||n|\nw|UShort||||s@offset_next + (4 - s@offset_next % 4) % 4\n"),
              "00> n = 5\n01> s = \"hello\"\n08> w = 258\n");
}

TEST_F(References, RecordSizesThatNameFields) {
    // chunks {id, size, body}: "+ " sizes are looked up inside the record
    write("chunk.dd", "chunk|||\nid|String||2|\nsize|UChar|||\nbody|String||size|\n");
    write("data.bin", std::string("AB" "\x02" "xy" "pad" "CD" "\x01" "z" "!", 13));
    expectOut(withDictionary("t|||\nc1|@chunk||+ size + 6|\nc2|@chunk||+ size + 3|\nend|String||1|\n", {"-r"}),
              "00> c1.id = \"AB\"\n02> c1.size = 2\n03> c1.body = \"xy\"\n"
              "08> c2.id = \"CD\"\n10> c2.size = 1\n11> c2.body = \"z\"\n12> end = \"!\"\n");
    // the same in the header of the record's dictionary
    write("padded.dd", "padded||+ size + 6|\nid|String||2|\nsize|UChar|||\nbody|String||size|\n");
    expectOut(withDictionary("t|||\nc1|@padded|||\nc2|@chunk|||\n", {"-r"}),
              "00> c1.id = \"AB\"\n02> c1.size = 2\n03> c1.body = \"xy\"\n"
              "08> c2.id = \"CD\"\n10> c2.size = 1\n11> c2.body = \"z\"\n");
    // a header size without "+ " names the fields beside the record; the
    // root's is looked up from its first field
    write("data.bin", std::string("\x03" "xyz" "tail", 8));
    write("sized.dd", "sized||len|\nid|String||1|\n");
    expectOut(withDictionary("t|||\nlen|UChar|||\nr|@sized|||\nnext|String||1|\n", {"-r"}),
              "0> len = 3\n1> r.id = \"x\"\n4> next = \"t\"\n");
    expectOut(withDictionary("t||+ n + 1|\nn|UChar|||\ns|String||n|\n", {"-base", "-b"}), "\x03xyz");
}

TEST_F(References, FormsOfReference) {
    // k, then a record {n, body, fromRoot, climbed, outside}, then its statements from outside
    write("data.bin", std::string("\x02" "\x03" "abc" "de" "fg" "hi" "jk" "lmn" "opq", 19));
    write("inner.dd", "inner|||\nn|UChar|||\nbody|String||n|\nroot|String||.k|\nup|String||{-.k}|\nout|String||{--.k}|\n");
    const std::string text = "t|||\nk|UChar|||\nr|@inner|||\nkw|String||r n - 1|\nch|String||r@child(\"n\")|\n"
                             "ex|String||r@exec(\"k + 1\")|\n";
    expectOut(withDictionary(text, {"-r"}),
              "00> k = 2\n01> r.n = 3\n02> r.body = \"abc\"\n05> r.root = \"de\"\n07> r.up = \"fg\"\n"
              "09> r.out = \"hi\"\n11> kw = \"jk\"\n13> ch = \"lmn\"\n16> ex = \"opq\"\n");
}

TEST_F(References, PropertiesInStatements) {
    write("data.bin", std::string("\x02" "ab" "0123456789" "ABCDEFGHIJ", 23));
    // size, pos, dim of a record, the size of the file, a type name and a field name as texts
    write("two.dd", "two|||\nx|UChar|||\ny|UChar|||\n");
    expectOut(withDictionary("t|||\nn|UChar|||\ns|String||n|\nr|@two|||\na|String||s@size + r@dim - 2|\n"
                             "b|String||n@filesize - s@pos_next - 14|\nc|String||strlen(n@type)|\n"
                             "d|String||strlen(r@name) + n@SIZE|\n",
                             {"-r"}),
              "00> n = 2\n01> s = \"ab\"\n03> r.x = 48\n04> r.y = 49\n05> a = \"23\"\n07> b = \"456789\"\n"
              "13> c = \"ABCDE\"\n18> d = \"FG\"\n");
}

TEST_F(References, NamesThatDontResolve) {
    write("data.bin", "ABCDEFGH");
    const std::string unknown = "ERROR-CALC010 invalid symbol : \"nope\"\n";
    const std::string invalid = dictionaryError("invalid size statement for field \"s\"");
    // a size: the parser's error inside the dictionary error
    expectFailure("t|||\na|UChar|||\ns|String||nope + 1|\n", "0> a = 65\n1> s = ", unknown + invalid);
    // an offset: the parser's error as it stands
    expectFailure("t|||\na|UChar|||\nb|UChar||||nope\n", "0> a = 65\n", unknown);
    // a field of an enclosing record is not searched: the statement must climb
    write("inner.dd", "inner|||\ns|String||a|\n");
    expectFailure("t|||\na|UChar|||\nr|@inner|||\n", "0> a = 65\n1> r.s = ",
                  "ERROR-CALC010 invalid symbol : \"a\"\n"
                  "ERROR-VEXA015 dictionary error : invalid size statement for field \"r.s\" in dictionary "
                  "'inner.dd'\n");
    const struct {
        const char *field, *statement, *error;
    } rows[] = {
        {"a", "{-.-.a}", "ERROR-CALC010 invalid symbol : \"-.-.a\"\n"},            // above the root
        {"a", "a.b", "ERROR-CALC010 invalid symbol : \"a.b\"\n"},                  // below a leaf
        {" #a", "#a", "ERROR-CALC010 invalid symbol : \"#a\"\n"},                  // only parameters have "#"
        {"a", "aread(a, 1)", "ERROR-CALC008 function unknown : \"aread\"\n"},      // no array functions
        {"a", "alookup(a, 1)", "ERROR-CALC008 function unknown : \"alookup\"\n"},
    };
    for (const auto& r : rows) {
        std::string name = std::string(r.field).substr(r.field[0] == ' ');
        expectFailure(std::string("t|||\n") + r.field + "|UChar|||\ns|String||" + r.statement + "|\n",
                      "0> " + name + " = 65\n1> s = ", r.error + invalid);
    }
}

TEST_F(References, StatementsThatFail) {
    write("data.bin", std::string("\x02" "\x09" "ABCDEF", 8));
    const std::string invalid = dictionaryError("invalid size statement for field \"s\"");
    const struct {
        const char *statement, *error;
    } rows[] = {
        {"a@child(\"x\", \"y\")",
         "ERROR-CALC007 too many function arguments : Function \"@child\" takes at most 1 argument(s)\n"},
        {"a@child(iter)",
         "ERROR-CALC009 invalid function call : String constant expected as argument in call to function "
         "\"@child\"\n"},
        {"a@child(\"x\")", "ERROR-VEXA005 invalid field name : field [x] in structure [a]\n"},
        {"a@bogus", "ERROR-CALC014 unsupported property or option : \"bogus\" in statement (a >>> @bogus <<< )\n"},
        {"a@lookup(1)", "ERROR-CALC015 unsupported method : \"lookup\"\n"},
        {"a[0]", "ERROR-CALC002 invalid operator : (operator::[]) in statement (a >>> [0] <<< )\n"},
    };
    for (const auto& r : rows)
        expectFailure(std::string("t|||\na|UChar|||\ns|String||") + r.statement + "|\n", "0> a = 2\n1> s = ",
                      r.error + invalid);
    // a value that makes no size, and a length field beyond the end of the data
    expectFailure("t|||\na|UChar|||\ns|String||a - 5|\n", "0> a = 2\n1> s = ",
                  "ERROR-VEXA002 value out-of-range : size reference \"a - 5\" of structure \"s\" returns -3\n");
    expectFailure("t|||\na|String||8|\nn|UChar|||\ns|String||n|\n", "9> s = ",
                  "ERROR-STD005 Input/output error : eof seeking field \"n\" at position 8 in \"data.bin\"\n" +
                      invalid,
                  {"s"});
}

TEST_F(References, StatementsThatDependOnThemselves) {
    write("data.bin", "ABCDEFGH");
    const std::string recursion = "ERROR-VEXA008 reference recursion : reference recursion from structure ";
    // a size that needs the position of a field behind it, or its own size
    expectFailure("t|||\ns|String||n|\nn|UChar|||\n", "0> s = ",
                  recursion + "[s] (in size computation)\n" + dictionaryError("invalid size statement for field \"s\""));
    expectFailure("t|||\na|UChar|||\ns|String||s@size|\n", "0> a = 65\n1> s = ",
                  recursion + "[s] (in size computation)\n" + dictionaryError("invalid size statement for field \"s\""));
    // an offset that reads the field it places
    expectFailure("t|||\na|UChar|||\nb|UChar||||b\n", "0> a = 65\n", recursion + "[b] (in offset computation)\n");
    // a record's size from a field whose size needs the record's size
    write("inner.dd", "inner|||\nx|String||{-.r}@size|\n");
    expectFailure("t|||\nr|@inner|||\n", "0> r.x = ",
                  recursion + "[r.x] (in size computation)\n"
                  "ERROR-VEXA015 dictionary error : invalid size statement for field \"r.x\" in dictionary "
                  "'inner.dd'\n");
    // a field that holds a statement running itself through exec
    write("data.bin", "code@exec(code)");
    expectFailure("t|||\ncode|String||15|\ns|String||code@exec(code)|\n", "00> code = \"code@exec(code)\"\n15> s = ",
                  "ERROR-CALC009 invalid function call : statements nested too deep in call to function \"exec\"\n");
}

TEST_F(References, ArraysSizedAndIndexedByFields) {
    // a count, then that many numbers and that many records {len, text}
    write("item.dd", "item|||\nlen|UChar|||\ntext|String||len|\n");
    write("data.bin", std::string("\x03" "\x00\x01\x00\x02\x00\x03" "\x02" "ab" "\x01" "c" "\x03" "def", 16) +
                          "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    const std::string arrays = "t|||\ncount|UChar|||\nvals|UShort|||count|\nitems|@item|||count|\n";
    expectOut(withDictionary(arrays + "a|String||vals[2]|\nb|String||items[0] len|\nc|String||items[\"#last\"] len|\n"
                                      "d|String||items[\"text=c\"] len + 1|\ne|String||vals@dim + items@dim|\n"
                                      "f|String||.items.0.len|\n"),
              "00> count = 3\n01> vals.0 = 1\n03> vals.1 = 2\n05> vals.2 = 3\n"
              "07> items.0.len = 2\n08> items.0.text = \"ab\"\n10> items.1.len = 1\n11> items.1.text = \"c\"\n"
              "12> items.2.len = 3\n13> items.2.text = \"def\"\n"
              "16> a = \"ABC\"\n19> b = \"DE\"\n21> c = \"FGH\"\n24> d = \"IJ\"\n26> e = \"KLMNOP\"\n32> f = \"QR\"\n");
    // elements reached out of order
    expectOut(withDictionary(arrays, {"items.2.text", "items.0", "vals.1", "items.1.text"}),
              "13> items.2.text = \"def\"\n07> items.0.len = 2\n08> items.0.text = \"ab\"\n03> vals.1 = 2\n"
              "11> items.1.text = \"c\"\n");
    // indices that don't exist: a constant statement is read as it is bound
    const std::string invalid = dictionaryError("invalid size statement for field \"a\"");
    expectFailure(arrays + "a|String||vals[3]|\n", "16> a = ",
                  "ERROR-VEXA011 array index overflow : array [vals]\n" + invalid, {"a"});
    expectFailure(arrays + "a|String||items[\"len=9\"] len|\n", "16> a = ",
                  "ERROR-VEXA010 invalid array index : array [items] index [len=9] is invalid\n" + invalid, {"a"});
}

TEST_F(References, StatementsInsideArrayElements) {
    // rows {n, v: n bytes}: the count of v follows the row the array stands on
    write("row.dd", "row|||\nn|UChar|||\nv|UChar|||n|\n");
    write("data.bin", std::string("\x03" "\x01\x0a" "\x02\x0b\x0c" "\x00" "ABCDEFGHIJ", 17));
    const std::string rows = "t|||\ncount|UChar|||\nrows|@row|||count|\nx|String||rows[1] v@dim|\n"
                             "y|String||rows[1] v[1] - 10|\nz|UChar||||rows[2]@pos_next\n";
    expectOut(withDictionary(rows),
              "00> count = 3\n01> rows.0.n = 1\n02> rows.0.v = {10}\n03> rows.1.n = 2\n04> rows.1.v = {11,12}\n"
              "06> rows.2.n = 0\n07> rows.2.v = {}\n07> x = \"AB\"\n09> y = \"CD\"\n07> z = 65\n");
    expectOut(withDictionary(rows, {"rows.1.v.1", "rows.0.v", "rows.2", "x"}),
              "05> rows.1.v.1 = 12\n02> rows.0.v.0 = 10\n06> rows.2.n = 0\n07> rows.2.v = {}\n07> x = \"AB\"\n");

    // groups {w, k, cells: k records {v: w bytes}}: a cell's size comes from
    // its group, and is computed again when the outer array moves
    write("grp.dd", "grp|||\nw|UChar|||\nk|UChar|||\ncells|@cell|||k|\n");
    write("cell.dd", "cell|||\nv|String||{-.-.w}|\n");
    write("data.bin", std::string("\x01\x02" "ab" "\x02\x01" "cd" "XYZ", 11));
    const std::string groups = "t|||\ngroups|@grp|||2|\nend|String||groups[0] w + groups[1] k|\n";
    expectOut(withDictionary(groups, {"-r"}),
              "00> groups.0.w = 1\n01> groups.0.k = 2\n02> groups.0.cells.0.v = \"a\"\n03> groups.0.cells.1.v = \"b\"\n"
              "04> groups.1.w = 2\n05> groups.1.k = 1\n06> groups.1.cells.0.v = \"cd\"\n08> end = \"XY\"\n");
    expectOut(withDictionary(groups, {"groups.1.cells.0.v", "groups.0.cells.1.v", "groups.1.cells.0.v"}),
              "06> groups.1.cells.0.v = \"cd\"\n03> groups.0.cells.1.v = \"b\"\n06> groups.1.cells.0.v = \"cd\"\n");

    // iter: the index of the array around the statement; a count from the root
    write("irow.dd", "irow|||\nn|UChar|||\ns|String||iter + 1|\nt|String||{--.k} - n|\n");
    write("data.bin", "\x03" "\x02" "A" "B" "\x01" "CD" "EF" "\x03" "GHI" "xyzuvw");
    expectOut(withDictionary("t|||\nk|UChar|||\nrows|@irow|||3|\ntri|UChar|||3,iter+1|\n", {"-r"}),
              "00> k = 3\n01> rows.0.n = 2\n02> rows.0.s = \"A\"\n03> rows.0.t = \"B\"\n"
              "04> rows.1.n = 1\n05> rows.1.s = \"CD\"\n07> rows.1.t = \"EF\"\n"
              "09> rows.2.n = 3\n10> rows.2.s = \"GHI\"\n13> rows.2.t = \"\"\n"
              "13> tri.0 = {120}\n14> tri.1 = {121,122}\n16> tri.2 = {117,118,119}\n");
}
