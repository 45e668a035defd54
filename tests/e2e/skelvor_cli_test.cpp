// skelvor's command line: the order in which options are taken, the usage
// text, the log lines and exit statuses of every misuse, and warnings.
#include <gtest/gtest.h>

#include "skelvor_testing.h"

namespace {

using skelvortest::expectOut;
using skelvortest::expectRun;
using skelvortest::usage;

// A record of a byte and a big-endian short over four bytes: one digit of
// position.
class CommandLine : public skelvortest::SkelvorTest {
protected:
    void SetUp() override {
        write("rec.dd", "rec|a plain record||\na|UChar|||\nb|UShort|||\n");
        write("data.bin", e2e::bytes({0x01, 0x02, 0x03, 0x04}));
    }
    const std::string both = "0> a = 1\n1> b = 515\n";
};

TEST_F(CommandLine, NoArgumentGivesTheUsage) {
    expectRun(run({}), 1, "", "ERROR-MAIN001  : missing arguments\n" + usage());
}

TEST_F(CommandLine, WithoutDictionaryTheIndexOfTheDictionaryRootIsRead) {
    expectRun(run({"data.bin"}), 1, "", "ERROR-STD002 No such file or directory : \"/index\"\n");
    write("dicts/index.dd", "idx|||\nfirst|UChar|||\n");
    expectOut(run({"data.bin"}, {{"VEXA_DICTIONARY_PATH", dir.path("dicts")}}), "0> first = 1\n");
}

TEST_F(CommandLine, BufferSizeMustBeAnInteger) {
    expectRun(run({"data.bin", "-d=rec", "-bs"}), 1, "",
              "ERROR-MAIN002  : invalid buffer size definition -bs= (KBytes)\n");
    expectRun(run({"data.bin", "-d=rec", "-bs=12k"}), 1, "",
              "ERROR-MAIN002  : invalid buffer size definition -bs=12k (KBytes)\n");
    expectOut(run({"data.bin", "-d=rec", "-bs=1"}), both);
}

TEST_F(CommandLine, CodingStandardWords) {
    expectRun(run({"data.bin", "-d=rec", "-cs=middle"}), 1, "",
              "ERROR-MAIN002  : invalid coding standard option -cs=middle\n");
    expectRun(run({"data.bin", "-d=rec", "-cs=BIG"}), 1, "",
              "ERROR-MAIN002  : invalid coding standard option -cs=BIG\n");
    // no value: the dictionary decides
    expectOut(run({"data.bin", "-d=rec", "-cs"}), both);
    expectOut(run({"data.bin", "-d=rec", "-cs="}), both);
}

TEST_F(CommandLine, HexOptionTakesOnlyN) {
    expectRun(run({"data.bin", "-d=rec", "-xz"}), 1, "", "ERROR-MAIN001  : invalid option -xz\n" + usage());
    expectRun(run({"data.bin", "-d=rec", "-xnn"}), 1, "", "ERROR-MAIN001  : invalid option -xnn\n" + usage());
}

TEST_F(CommandLine, DefinitionOptionWithoutDefinition) {
    expectRun(run({"data.bin", "-d=rec", "-D"}), 1, "", "ERROR-MAIN002  : missing definition after -D option\n");
}

TEST_F(CommandLine, RangeOptionsNeedTheBaseOption) {
    expectRun(run({"data.bin", "-d=rec", "-first=1"}), 1, "",
              "ERROR-MAIN002  : option -first invalid without -base option\n");
    expectRun(run({"data.bin", "-d=rec", "-last=2"}), 1, "",
              "ERROR-MAIN002  : option -last invalid without -base option\n");
    expectRun(run({"data.bin", "-d=rec", "-step=1"}), 1, "",
              "ERROR-MAIN002  : option -step invalid without -base option\n");
    // -first is looked at first, wherever it stands
    expectRun(run({"data.bin", "-d=rec", "-step=1", "-first=0"}), 1, "",
              "ERROR-MAIN002  : option -first invalid without -base option\n");
}

TEST_F(CommandLine, RangeOptionsRefusedOnRecordsAndLeaves) {
    expectRun(run({"data.bin", "-d=rec", "-base", "-first=1"}), 1, "",
              "ERROR-MAIN002  : option -first valid only for array records\n");
    expectRun(run({"data.bin", "-d=rec", "-base=a", "-last=0"}), 1, "",
              "ERROR-MAIN002  : option -last valid only for array records\n");
    expectRun(run({"data.bin", "-d=rec", "-base", "-step=0"}), 1, "",
              "ERROR-MAIN002  : option -step valid only for array records\n");
}

TEST_F(CommandLine, DefinitionOptionsAreRefusedByThisVersion) {
    expectRun(run({"data.bin", "-d=rec", "-V", "x=1"}), 1, "",
              "ERROR-MAIN002  : option -V is not supported by this version\n");
    expectRun(run({"data.bin", "-d=rec", "-VDouble", "x=1"}), 1, "",
              "ERROR-MAIN002  : option -V is not supported by this version\n");
    expectRun(run({"data.bin", "-d=rec", "-aux", "y=1"}), 1, "",
              "ERROR-MAIN002  : option -aux is not supported by this version\n");
    expectRun(run({"data.bin", "-d=rec", "-link=a", "z=1"}), 1, "",
              "ERROR-MAIN002  : option -link is not supported by this version\n");
    expectRun(run({"data.bin", "-d=rec", "-B", "'out.bin'"}), 1, "",
              "ERROR-MAIN002  : option -B is not supported by this version\n");
}

TEST_F(CommandLine, BinaryFileOptionIsNotLookedAtWithExplodeOrBinary) {
    const std::string warnings = "WARNING-MAIN : -B no match found\nWARNING-MAIN : 'out.bin' no match found\n";
    expectRun(run({"data.bin", "-d=rec", "-r", "-B", "'out.bin'"}), 0, "", warnings);
    expectRun(run({"data.bin", "-d=rec", "-b", "-B", "'out.bin'"}), 0, "", warnings);
}

TEST_F(CommandLine, AnOptionWrittenFirstIsTheFileName) {
    expectRun(run({"-d=rec", "data.bin"}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"-d=rec\"\n");
}

TEST_F(CommandLine, OptionsFollowTheFileNameInAnyOrder) {
    expectOut(run({"data.bin", "-x", "b", "-d=rec"}), "1> b = 515 ; 02 03\n");
    expectOut(run({"data.bin", "b", "-d=rec", "a", "-xn"}), "1> b = 515 ; 02 03\n0> a = 1 ; 01\n");
}

TEST_F(CommandLine, MisspeltOptionsBecomeFieldPatterns) {
    expectRun(run({"data.bin", "-d=rec", "-ab", "-iq", "-rr"}), 0, "",
              "WARNING-MAIN : -ab no match found\n"
              "WARNING-MAIN : -iq no match found\n"
              "WARNING-MAIN : -rr no match found\n");
    // "-d" takes "-d" and "-d=...", never "-dx=..."
    expectRun(run({"data.bin", "-dx=rec", "-d=rec", "a"}), 0, "0> a = 1\n",
              "WARNING-MAIN : -dx=rec no match found\n");
}

TEST_F(CommandLine, AnOptionGivenTwiceIsTakenOnce) {
    expectRun(run({"data.bin", "-d=rec", "-x", "-xn", "a"}), 0, "0> a = 1 ; 01\n",
              "WARNING-MAIN : -xn no match found\n");
    expectRun(run({"data.bin", "-d=rec", "-a", "-a", "b"}), 0, "1> b = 515\n",
              "WARNING-MAIN : -a no match found\n");
}

TEST_F(CommandLine, FieldsPrintInTheOrderOfTheirPatterns) {
    expectRun(run({"data.bin", "-d=rec", "b", "nothing", "?"}), 0, "1> b = 515\n0> a = 1\n1> b = 515\n",
              "WARNING-MAIN : nothing no match found\n");
    expectOut(run({"data.bin", "-d=rec", "[ab]", "a"}), "0> a = 1\n1> b = 515\n0> a = 1\n");
}

}  // namespace
