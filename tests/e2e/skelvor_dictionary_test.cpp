// Dictionaries as skelvor reads them: the line format, the factory's
// messages, sub-dictionaries and where they are found, record sizes, offset
// markers, auto-descriptive and user dictionaries, and broken files.
#include <gtest/gtest.h>

#include <string>

#include "skelvor_testing.h"

namespace {

using e2e::bytes;
using skelvortest::expectOut;
using skelvortest::expectRun;

class Dictionaries : public skelvortest::SkelvorTest {
protected:
    void SetUp() override { write("data.bin", "ABCDEFGHIJKLMNOP"); }

    // Runs data.bin through a dictionary t.dd of the given text.
    e2e::Result withDictionary(const std::string& text, std::vector<std::string> more = {}) {
        write("t.dd", text);
        std::vector<std::string> args{"data.bin", "-d=t"};
        args.insert(args.end(), more.begin(), more.end());
        return run(args);
    }

    void expectDictionaryError(const std::string& text, const std::string& message) {
        expectRun(withDictionary(text), 1, "",
                  "ERROR-VEXA015 dictionary error : " + message + " in dictionary 't.dd'\n");
    }
};

TEST_F(Dictionaries, CommentsAndBlankLinesAreSkipped) {
    expectOut(withDictionary("#header|that begins with a sign||\n"
                             "# a comment\n"
                             "\n"
                             "   \t \n"
                             "a|UChar|||\n"
                             " #b|UChar|||\n"
                             " ~c|UChar|||\n",
                             {"-base", "-i"}),
              "FILE ; Record'#header ; #header\n"
              "|_ a ; UChar ; \n"
              "|_ #b ; UChar ; \n"
              "|_ ~c ; UChar ; \n");
}

TEST_F(Dictionaries, ColumnsQuotedStarredAndTrimmed) {
    // header: description and size may be quoted; fields: size, dims and offset
    const std::string text =
        "q|%a|b%|%3%|\n"
        "a| UChar |%u|v%|*x|%1%|\n"
        "b|UChar|\t*ignored| |%%|%2\n";
    expectOut(withDictionary(text, {"-x"}), "01> a (%u) = 66 ; 42\n02> b = 67 ; 43\n");
    expectOut(withDictionary(text, {"-base", "-b"}), "ABC");
}

TEST_F(Dictionaries, HeaderOnlyEmptyAndUnfinishedDictionaries) {
    expectOut(withDictionary("empty|nothing in here||\n"), "");
    expectOut(withDictionary("empty|nothing in here||\n", {"-base"}), "");
    expectOut(withDictionary("empty|||", {"-base", "-i"}), "FILE ; Record'empty ; empty\n");
    // an empty first line is a header too: the record is named after the file
    expectOut(withDictionary("\na|UChar|||\n", {"-base", "-i"}), "FILE ; Record't.dd ; t.dd\n|_ a ; UChar ; \n");
    expectOut(withDictionary(""), "");
    expectOut(withDictionary("", {"-base", "-i"}), "FILE ; Record't.dd ; t.dd\n");
    // a last line without a newline is dropped
    expectOut(withDictionary("t|||\na|UChar|||\nb|UChar|||"), "00> a = 65\n");
}

TEST_F(Dictionaries, LinesRefusedByTheReaderAndTheFactory) {
    const char* rows[][2] = {
        {"a|UChar||", "Missing Columns"}, {"a|UChar", "Missing Columns"},
        {"a.b|UChar|||", "invalid field name \"a.b\""}, {"-a|UChar|||", "invalid field name \"-a\""},
        {"a*|UChar|||", "invalid field name \"a*\""}, {"a'b|UChar|||", "invalid field name \"a'b\""},
        {"a|UChar||2", "invalid size for Char field '2'"}, {"a|UShort||4", "invalid size for Short field '4'"},
        {"a|ULong||5", "invalid size for Long field '5'"}, {"a|ULLong||4", "invalid size for LLong field '4'"},
        {"a|Float||8", "invalid size for Float field '8'"}, {"a|Double||4", "invalid size for Double field '4'"},
        {"a|DateTime||4", "invalid size for DateTime field '4'"}, {"a|Date||1", "invalid size for Date field '1'"},
        {"a|aUShort|||", "invalid size for Ascii numeric field ''"},
        {"a|aUShort||0", "invalid size for Ascii numeric field '0'"}, {"a|UChar||-1", "a invalid negative size '-1'"},
        {"a|Bogus|||", "unknown field type \"Bogus\""}, {"a|XChar|||", "unknown field type \"XChar\""},
        {"a|aBogus||2", "unknown field type \"aBogus\""}, {"~a|Bogus||1", "unknown virtual field type \"Bogus\""},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r[0]);
        expectDictionaryError(std::string("t|||\n") + r[0] + "\n", r[1]);
    }
}

TEST_F(Dictionaries, LooseTypeWordsThatPass) {
    // any first letter makes a signed short or long; 3 bytes make a long
    expectOut(withDictionary("t|||\na|XShort|||\nb|SLong||3\n", {"-x"}),
              "00> a = 16706 ; 41 42\n02> b = 4408389 ; 43 44 45\n");
}

TEST_F(Dictionaries, SubDictionariesBesideTheirParent) {
    write("fmt/main.dd", "main|||\nhead|@parts/head|||\ntail|UChar|||\n");
    write("fmt/parts/head.dd", "head|||\nx|UChar|||\ny|@leaf|||\n");
    write("fmt/parts/leaf.dd", "leaf|||\nz|UShort|||\n");
    expectOut(run({"data.bin", "-d=fmt/main"}), "00> head.x = 65\n01> head.y (leaf) = [16963]\n03> tail = 68\n");
    expectOut(run({"data.bin", "-d=fmt/main", "-r"}), "00> head.x = 65\n01> head.y.z = 16963\n03> tail = 68\n");
    write("fmt/main.dd", "main|||\nhead|@nowhere|||\n");
    expectRun(run({"data.bin", "-d=fmt/main"}), 1, "",
              "ERROR-STD002 No such file or directory : \"fmt/nowhere\"\n"
              "ERROR-VEXA015 dictionary error : invalid sub dictionary \"nowhere\" in dictionary 'fmt/main.dd'\n");
}

TEST_F(Dictionaries, NamesFromTheDictionaryRoot) {
    const skelvortest::Env root{{"VEXA_DICTIONARY_PATH", dir.path("dicts")}};
    write("dicts/index.dd", "idx|||\nv|UChar|||\n");
    write("dicts/fmt/index.dd", "fi|||\nq|UChar|||\n");
    write("dicts/fmt/r.dd", "r|||\nw|UShort|||\ns|@/fmt/s2|||\n");
    write("dicts/fmt/s2.dd", "s2|||\nz|UChar|||\n");
    expectOut(run({"data.bin"}, root), "00> v = 65\n");
    expectOut(run({"data.bin", "-d=/fmt/r"}, root), "00> w = 16706\n02> s.z = 67\n");
    expectOut(run({"data.bin", "-d=/fmt/r.dd"}, root), "00> w = 16706\n02> s.z = 67\n");
    // a folder stands for its index
    expectOut(run({"data.bin", "-d=/fmt"}, root), "00> q = 65\n");
    // a relative name is relative to the working folder
    expectOut(run({"data.bin", "-d=dicts/fmt/r"}, root), "00> w = 16706\n02> s.z = 67\n");
    expectRun(run({"data.bin", "-d=fmt/r"}, root), 1, "", "ERROR-STD002 No such file or directory : \"fmt/r\"\n");
    expectRun(run({"data.bin", "-d=/nope"}, root), 1, "",
              "ERROR-STD002 No such file or directory : \"" + dir.path("dicts") + "//nope\"\n");
    expectRun(run({"data.bin", "-d=nope"}), 1, "", "ERROR-STD002 No such file or directory : \"nope\"\n");
    // without a root, no name is the index of the root folder
    expectRun(run({"data.bin"}), 1, "", "ERROR-STD002 No such file or directory : \"/index\"\n");
    expectRun(run({"data.bin", "-d="}), 1, "", "ERROR-STD002 No such file or directory : \"/index\"\n");
}

TEST_F(Dictionaries, RecordSizes) {
    write("sub/two.dd", "two|||\nx|UChar|||\ny|UChar|||\n");
    write("sub/star.dd", "star||*|\nx|UChar|||\n");
    write("sub/four.dd", "four||4|\nx|UChar|||\n");
    write("sub/param.dd", "param||#n * 2|\nx|UChar|||\n");
    // no size word: the fields' extent, or the size of the referring line
    expectOut(withDictionary("t|||\na|@sub/two|||\nb|@sub/two||3\nc|UChar|||\n", {"-r"}),
              "00> a.x = 65\n01> a.y = 66\n02> b.x = 67\n03> b.y = 68\n05> c = 70\n");
    // "*" keeps the line's size; a number in the header beats it
    expectOut(withDictionary("t|||\na|@sub/star||3\nb|@sub/four||2\nc|UChar|||\n", {"-r"}),
              "00> a.x = 65\n03> b.x = 68\n07> c = 72\n");
    // a size statement in the header
    expectOut(withDictionary("t|||\na|@sub/param|||\nc|UChar|||\n", {"-r", "-D", "n=2"}), "00> a.x = 65\n04> c = 69\n");
    // the root's own size counts for binary output
    expectOut(withDictionary("t||5|\na|UChar|||\n", {"-base", "-b"}), "ABCDE");
}

TEST_F(Dictionaries, BadRecordSizes) {
    write("sub/neg.dd", "neg||-2|\nx|UChar|||\n");
    expectRun(withDictionary("t|||\na|@sub/neg|||\n"), 1, "",
              "ERROR-VEXA015 dictionary error : a invalid negative size '-2' in dictionary 'sub/neg.dd'\n");
    write("sub/param.dd", "param||#n - 5|\nx|UChar|||\n");
    expectRun(withDictionary("t|||\na|@sub/param|||\nb|UChar|||\n", {"-D", "n=2"}), 1, "00> a.x = 65\n",
              "ERROR-VEXA002 value out-of-range : size reference \"#n - 5\" of structure \"a\" returns -3\n");
    expectRun(withDictionary("t|||\na|@sub/param|||\nb|UChar|||\n"), 1, "00> a.x = 65\n",
              "ERROR-CALC010 invalid symbol : \"#n\"\n"
              "ERROR-VEXA015 dictionary error : invalid size statement for field \"a\" in dictionary "
              "'sub/param.dd'\n");
}

TEST_F(Dictionaries, OffsetMarkers) {
    // fixed: from the start of the record, also backward
    expectOut(withDictionary("t|||\na|UChar||||5\nb|UChar||||0\n"), "05> a = 70\n00> b = 65\n");
    // relative: from the end of the previous field
    expectOut(withDictionary("t|||\na|UChar|||\nb|UChar||||+2\nc|UChar||||-2\nd|UChar||||+0\n"),
              "00> a = 65\n03> b = 68\n02> c = 67\n03> d = 68\n");
    // alignment: written "%%n" at the end of a line, "%%n%|" before another column; 0 and 1 move nothing
    expectOut(withDictionary("t|||\na|String||3\nb|UShort||||%%4\nc|UChar||||%%1\nd|UChar||||%%4%|\ne|UChar||||%%0\n"),
              "00> a = \"ABC\"\n04> b = 17734\n06> c = 71\n08> d = 73\n09> e = 74\n");
    // a plain "%n" quotes the number: a fixed offset
    expectOut(withDictionary("t|||\na|UChar|||\nb|UChar||||%4\n"), "00> a = 65\n04> b = 69\n");
    // by a statement
    expectOut(withDictionary("t|||\na|UChar|||\nb|UChar||||#at * 2\n", {"-D", "at=3"}), "00> a = 65\n06> b = 71\n");
}

TEST_F(Dictionaries, OffsetsInsideSubRecordsAreRelativeToTheRecord) {
    write("sub/inner.dd", "inner|||\np|UChar|||\nq|UChar||||%%4\nr|UChar||||0\n");
    expectOut(withDictionary("t|||\na|UChar|||\nb|@sub/inner|||\nc|UChar|||\n", {"-r"}),
              "00> a = 65\n01> b.p = 66\n05> b.q = 70\n01> b.r = 66\n02> c = 67\n");
}

TEST_F(Dictionaries, BadOffsetMarkers) {
    for (const char* bad : {"%%x", "%%-2", "%%", "%%4x"})
        expectDictionaryError(std::string("t|||\na|UChar|||\nb|UChar||||") + bad + "\n",
                              "Field \"b\" invalid negative alignment offset");
    expectRun(withDictionary("t|||\na|UChar|||\nb|UChar||||#at - 9\n", {"-D", "at=3"}), 1, "00> a = 65\n",
              "ERROR-VEXA002 value out-of-range : offset reference \"#at - 9\" of structure \"b\" returns -6\n");
    // back before the start of the file
    expectRun(withDictionary("t|||\na|UChar|||\nb|UChar||||-3\n", {"-x"}), 1, "00> a = 65 ; 41\n-02> b = ",
              "ERROR-STD005 Input/output error : eof seeking field \"b\" at position -2 in \"data.bin\"\n");
}

TEST_F(Dictionaries, ParametersOnDictionaryNames) {
    write("sub/blk.dd", "blk|||\nx|UChar|||\n");
    write("t.dd", "t|||\na|@sub/blk&kind=2&&skip|||\nb|String||#kind\n");
    expectOut(run({"data.bin", "-d=t"}), "00> a.x = 65\n01> b = \"BC\"\n");
    write("u.dd", "u|||\nb|String||#len\n");
    expectOut(run({"data.bin", "-d=u&len=3"}), "00> b = \"ABC\"\n");
    // the parameters of the file name join those of the dictionary name
    write("v.dd", "v|||\na|String||#a\nb|String||#b\n");
    expectOut(run({"data.bin&a=1", "-d=v&b=2"}), "00> a = \"A\"\n01> b = \"BC\"\n");
}

TEST_F(Dictionaries, AutoDescriptiveChains) {
    write("ad/index.dd", "AUTO-DESCRIPTIVE|||\nkey|String||4\n");
    expectRun(run({"data.bin", "-d=ad"}), 1, "", "ERROR-STD002 No such file or directory : \"ad/ABCD\"\n");
    write("ad/ABCD.dd", "auto-descriptive|||\nkey|String||4\n");
    expectRun(run({"data.bin", "-d=ad"}), 1, "",
              "ERROR-VEXA008 reference recursion : reference recursion from structure [root] "
              "(auto-descriptive dictionary \"ad/ABCD.dd\" names \"ABCD\" again)\n");
    write("nofield.dd", "AUTO-DESCRIPTIVE|||\n");
    expectRun(run({"data.bin", "-d=nofield"}), 1, "",
              "ERROR-VEXA006 invalid field index : index (-1) in structure [root]\n");
    write("ad/index.dd", "AUTO-DESCRIPTIVE|||\nkey|String||4\n");
    write("ad/ABCD.dd", "auto-descriptive|||\nkey|String||4||4\n");
    write("ad/EFGH.dd", "real|||LITTLE-ENDIAN\nk|String||4\nn|UShort||||8\n");
    expectOut(run({"data.bin", "-d=ad"}), "00> k = \"ABCD\"\n08> n = 19017\n");
    expectOut(run({"data.bin", "-d=ad", "-i", "-base"}), "FILE ; Record'real ; real\n|_ k ; String ; \n|_ n ; UShort ; \n");
}

TEST_F(Dictionaries, UserDictionaryIsAppended) {
    write("main.dd", "main|||\na|UChar|||\n");
    write("user/extra.dd", "extra|appended||LITTLE-ENDIAN\nu|UShort|||\ns|@sub|||\n");
    write("user/sub.dd", "sub|||\nz|UChar|||\n");
    // the appended dictionary has no say in the byte order; its
    // sub-dictionaries are found beside it
    expectOut(run({"data.bin", "-d=main", "-u=user/extra"}), "00> a = 65\n01> u = 16963\n03> s.z = 68\n");
    expectOut(run({"data.bin", "-d=main", "-u=user/extra", "-i", "-r", "-base"}),
              "FILE ; Record'main ; main\n|_ a ; UChar ; \n|_ u ; UShort ; \n|_ s ; Record'sub ; sub\n"
              "  |_ z ; UChar ; \n");
    expectRun(run({"data.bin", "-d=main", "-u=user/none"}), 1, "",
              "ERROR-STD002 No such file or directory : \"user/none\"\n");
    expectRun(run({"data.bin", "-d=main", "-u"}), 1, "",
              "ERROR-STD002 No such file or directory : invalid blank filename\n");
    write("main.dd", "main|||\nx|UChar|||\n");
    write("dup.dd", "dup|||\nx|UChar|||\n");
    expectOut(run({"data.bin", "-d=main", "-u=dup"}), "00> x = 65\n01> x = 66\n");
    expectOut(run({"data.bin", "-d=main", "-u=dup", "x"}), "00> x = 65\n01> x = 66\n");
    expectOut(run({"data.bin", "-d=main", "-u=dup", "-base=x"}), "00> x = 65\n");
}

TEST_F(Dictionaries, BinaryGarbageAsADictionary) {
    // a header of odd bytes, then a line of one column
    write("png.dd", bytes({0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 'I', 'H'}));
    expectRun(run({"data.bin", "-d=png"}), 1, "",
              "ERROR-VEXA015 dictionary error : Missing Columns in dictionary 'png.dd'\n");
    // zero bytes end a line's text
    write("zero.dd", std::string("z|||\na|UChar|||") + '\0' + "garbage|\nb|UChar|||" + '\0' + "|||\n");
    expectOut(run({"data.bin", "-d=zero"}), "00> a = 65\n01> b = 66\n");
    write("cs.dd", bytes({0x01, '|', 0x02, '|', 0x03, '|', 0x04, '\n'}));
    expectRun(run({"data.bin", "-d=cs"}), 1, "",
              "ERROR-VEXA015 dictionary error : invalid coding standard \"\x04\" in dictionary 'cs.dd'\n");
}

TEST_F(Dictionaries, LinesOverTheLimit) {
    const std::string longName(3000, 'n');
    expectDictionaryError("t|||\n" + longName + "|UChar|||\n", "line longer than 2047 characters");
    expectDictionaryError("t|" + longName + "||\na|UChar|||\n", "line longer than 2047 characters");
    // a line of 2047 characters is within the limit
    const std::string name(2047 - 9, 'n');
    expectOut(withDictionary("t|||\n" + name + "|UChar|||\n", {"-base", "-i"}),
              "FILE ; Record't ; t\n|_ " + name + " ; UChar ; \n");
}

TEST_F(Dictionaries, ADictionaryThatContainsItself) {
    write("self.dd", "self|||\na|@self|||\n");
    std::string path = "a";
    for (int level = 2; level <= 255; ++level) path += ".a";
    const std::string error = "ERROR-VEXA008 reference recursion : reference recursion from structure [" + path +
                              "] (structure nested too deep)\n";
    expectRun(run({"data.bin", "-d=self"}), 1, "00> a.a (self) = ", error);
    expectRun(run({"data.bin", "-d=self", "-b"}), 1, "", error);
    std::string tree = "a ; Record'self ; self\n";
    std::string indent = "";
    for (int level = 2; level <= 255; ++level) {
        tree += indent + "|_ a ; Record'self ; self\n";
        indent += "  ";
    }
    expectRun(run({"data.bin", "-d=self", "-i", "-r"}), 1, tree, error);
}

}  // namespace
