// skelvor's reading modes on records: the default reading of the first level,
// -r, -base with and without fields, the -i listing, binary output, and the
// width of the position column.
#include <gtest/gtest.h>

#include <string>

#include "skelvor_testing.h"

namespace {

using skelvortest::expectOut;
using skelvortest::expectRun;

// deep: a record of two records of two bytes each, then a byte.
class Modes : public skelvortest::SkelvorTest {
protected:
    void SetUp() override {
        write("deep.dd", "deep|the root||\na|@d1|||\nb|UChar|||\n");
        write("d1.dd", "d1|||\np|@d2|||\nq|@d2|||\n");
        write("d2.dd", "d2|||\nm|UChar|||\nn|UChar|||\n");
        write("data.bin", "ABCDEFGHIJ");
    }
    e2e::Result deep(std::vector<std::string> more) {
        std::vector<std::string> args{"data.bin", "-d=deep"};
        args.insert(args.end(), more.begin(), more.end());
        return run(args);
    }
};

TEST_F(Modes, DefaultReadingOpensTheFirstLevelExplodeGoesToTheLeaves) {
    expectOut(deep({}), "00> a.p (d2) = [65,66]\n02> a.q (d2) = [67,68]\n04> b = 69\n");
    expectOut(deep({"-x"}), "00> a.p (d2) = [65,66] ; '41'42\n02> a.q (d2) = [67,68] ; '43'44\n04> b = 69 ; 45\n");
    expectOut(deep({"-r"}), "00> a.p.m = 65\n01> a.p.n = 66\n02> a.q.m = 67\n03> a.q.n = 68\n04> b = 69\n");
    // -r also keeps -b from being an option
    expectRun(deep({"-r", "-b", "b"}), 0, "04> b = 69\n", "WARNING-MAIN : -b no match found\n");
}

TEST_F(Modes, PatternsSelectAtAnyDepth) {
    expectOut(deep({"a.*.n", "b", "a.q"}), "01> a.p.n = 66\n03> a.q.n = 68\n04> b = 69\n02> a.q.m = 67\n03> a.q.n = 68\n");
    expectOut(deep({"a.p", "-r"}), "00> a.p.m = 65\n01> a.p.n = 66\n");
    expectRun(deep({"a.p.m.x", "a.z*"}), 0, "",
              "WARNING-MAIN : a.p.m.x no match found\nWARNING-MAIN : a.z* no match found\n");
}

TEST_F(Modes, BaseAloneIsTheRoot) {
    expectOut(deep({"-base"}), "00> a (d1) = [[65,66],[67,68]]\n04> b = 69\n");
    expectOut(deep({"-base", "-r"}), "00> a.p.m = 65\n01> a.p.n = 66\n02> a.q.m = 67\n03> a.q.n = 68\n04> b = 69\n");
    expectOut(deep({"-base="}), "00> a (d1) = [[65,66],[67,68]]\n04> b = 69\n");
}

TEST_F(Modes, BaseOnARecordOrALeaf) {
    expectOut(deep({"-base=a"}), "00> a.p (d2) = [65,66]\n02> a.q (d2) = [67,68]\n");
    expectOut(deep({"-base=a.q", "-x"}), "02> a.q.m = 67 ; 43\n03> a.q.n = 68 ; 44\n");
    expectRun(deep({"-base=a", "q", "p.n", "zz"}), 0, "02> a.q (d2) = [67,68]\n01> a.p.n = 66\n",
              "WARNING-MAIN : zz no match found\n");
    expectOut(deep({"-base=a", "-r", "q"}), "02> a.q.m = 67\n03> a.q.n = 68\n");
    expectOut(deep({"-base=a.q.n"}), "03> a.q.n = 68\n");
    expectOut(deep({"-base=b", "-x"}), "04> b = 69 ; 45\n");
}

TEST_F(Modes, BaseThatIsNoField) {
    expectRun(deep({"-base=zz"}), 1, "", "ERROR-VEXA005 invalid field name : field [zz] in structure [root]\n");
    expectRun(deep({"-base=a.zz"}), 1, "", "ERROR-VEXA005 invalid field name : field [zz] in structure [a]\n");
    expectRun(deep({"-base=b.c"}), 1, "", "ERROR-VEXA005 invalid field name : field [c] in structure [b]\n");
    // a dot at the end is part of the name
    expectRun(deep({"-base=a."}), 1, "", "ERROR-VEXA005 invalid field name : field [a.] in structure [root]\n");
}

TEST_F(Modes, StructureListing) {
    expectOut(deep({"-i"}), "a ; Record'd1 ; d1\n|_ p ; Record'd2 ; d2\n|_ q ; Record'd2 ; d2\nb ; UChar ; \n");
    expectOut(deep({"-i", "-r"}),
              "a ; Record'd1 ; d1\n"
              "|_ p ; Record'd2 ; d2\n"
              "| |_ m ; UChar ; \n"
              "| |_ n ; UChar ; \n"
              "|_ q ; Record'd2 ; d2\n"
              "  |_ m ; UChar ; \n"
              "  |_ n ; UChar ; \n"
              "b ; UChar ; \n");
    expectOut(deep({"-i", "a.q.n", "b"}), "a.q.n ; UChar ; \nb ; UChar ; \n");
    write("empty.bin", "");
    expectOut(run({"empty.bin", "-d=deep", "-i"}),
              "a ; Record'd1 ; d1\n|_ p ; Record'd2 ; d2\n|_ q ; Record'd2 ; d2\nb ; UChar ; \n");
}

TEST_F(Modes, StructureListingFromABase) {
    expectOut(deep({"-base", "-i", "-r"}),
              "FILE ; Record'deep ; deep\n"
              "|_ a ; Record'd1 ; d1\n"
              "| |_ p ; Record'd2 ; d2\n"
              "| | |_ m ; UChar ; \n"
              "| | |_ n ; UChar ; \n"
              "| |_ q ; Record'd2 ; d2\n"
              "|   |_ m ; UChar ; \n"
              "|   |_ n ; UChar ; \n"
              "|_ b ; UChar ; \n");
    expectOut(deep({"-base", "-i", "a.q.n", "b"}), "FILE ; Record'deep ; deep\n|_ a.q.n ; UChar ; \n|_ b ; UChar ; \n");
    expectOut(deep({"-base=a", "-i"}), "a ; Record'd1 ; d1\n|_ p ; Record'd2 ; d2\n|_ q ; Record'd2 ; d2\n");
    // the fields two levels below the base show by their own names
    expectOut(deep({"-base=a", "-i", "p", "q.n"}), "a ; Record'd1 ; d1\n|_ p ; Record'd2 ; d2\n|_ n ; UChar ; \n");
    expectOut(deep({"-base=a.q.n", "-i"}), "a.q.n ; UChar ; \n");
}

TEST_F(Modes, BinaryOutput) {
    expectOut(deep({"-b"}), "ABCDE");
    expectOut(deep({"-b", "a.q", "b", "a.p.m"}), "CDEA");
    expectOut(deep({"-base", "-b"}), "ABCDE");
    expectOut(deep({"-base=a", "-b"}), "ABCD");
    expectOut(deep({"-base=a", "-b", "q"}), "CD");
    write("empty.dd", "empty|||\n");
    write("holes.dd", "holes|||\ne|@empty|||\nz|Null|||\nc|UChar|||\n");
    expectOut(run({"data.bin", "-d=holes", "-b", "e", "z"}), "");
    expectOut(run({"data.bin", "-d=holes", "-b"}), "A");
    expectOut(run({"data.bin", "-d=holes"}), "00> z = (null)\n00> c = 65\n");
}

TEST_F(Modes, LinesBeforeAFailureStand) {
    write("bad.dd", "bad|||\na|UChar|||\nb|String||#n\nc|UChar|||\n");
    expectRun(run({"data.bin", "-d=bad", "-D", "n=20"}), 1, "00> a = 65\n01> b = ",
              "ERROR-STD005 Input/output error : reading field \"b\" [1,20] in \"data.bin\"\n");
    expectRun(run({"data.bin", "-d=bad", "-D", "n=20", "c"}), 1, "21> c = ",
              "ERROR-STD005 Input/output error : eof seeking field \"c\" at position 21 in \"data.bin\"\n");
    // a field that can't be placed fails before its line is begun
    expectRun(run({"data.bin", "-d=bad", "c"}), 1, "",
              "ERROR-CALC010 invalid symbol : \"#n\"\n"
              "ERROR-VEXA015 dictionary error : invalid size statement for field \"b\" in dictionary 'bad.dd'\n");
}

TEST_F(Modes, PositionsTakeTheDigitsOfTheFileSize) {
    write("x.dd", "x|||\nx|UChar||||#at\n");
    const struct {
        int size;
        const char* line;
    } cases[] = {{1, "0> x = 0\n"},        {9, "8> x = 8\n"},         {10, "09> x = 9\n"},
                 {99, "98> x = 98\n"},     {100, "099> x = 99\n"},    {999, "998> x = 245\n"},
                 {1000, "0999> x = 246\n"}, {1001, "1000> x = 247\n"}};
    for (const auto& c : cases) {
        std::string data;
        for (int i = 0; i < c.size; ++i) data.push_back(static_cast<char>(i % 251));
        write("sized.bin", data);
        expectOut(run({"sized.bin", "-d=x", "-D", "at=" + std::to_string(c.size - 1)}), c.line);
    }
}

}  // namespace
