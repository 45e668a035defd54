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
    expectRun(run({"data.bin", "-d=rec", "-xz"}), 1, "", "ERROR-MAIN001  : invalid option -xz\n" + usage());
    expectRun(run({"data.bin", "-d=rec", "-xnn"}), 1, "", "ERROR-MAIN001  : invalid option -xnn\n" + usage());
}

TEST_F(CommandLine, MisusesOfOptions) {
    const struct {
        std::vector<std::string> options;
        const char* error;
    } rows[] = {
        {{"-bs"}, "invalid buffer size definition -bs= (KBytes)"},
        {{"-bs=12k"}, "invalid buffer size definition -bs=12k (KBytes)"},
        {{"-cs=middle"}, "invalid coding standard option -cs=middle"},
        {{"-cs=BIG"}, "invalid coding standard option -cs=BIG"},
        {{"-D"}, "missing definition after -D option"},
        {{"-first=1"}, "option -first invalid without -base option"},
        {{"-last=2"}, "option -last invalid without -base option"},
        {{"-step=1"}, "option -step invalid without -base option"},
        {{"-step=1", "-first=0"}, "option -first invalid without -base option"},  // -first is looked at first
        {{"-base", "-first=1"}, "option -first valid only for array records"},
        {{"-base=a", "-last=0"}, "option -last valid only for array records"},
        {{"-base", "-step=0"}, "option -step valid only for array records"},
        {{"-V", "x=1"}, "option -V is not supported by this version"},
        {{"-VDouble", "x=1"}, "option -V is not supported by this version"},
        {{"-aux", "y=1"}, "option -aux is not supported by this version"},
        {{"-link=a", "z=1"}, "option -link is not supported by this version"},
        {{"-B", "'out.bin'"}, "option -B is not supported by this version"},
    };
    for (const auto& r : rows) {
        std::vector<std::string> args{"data.bin", "-d=rec"};
        args.insert(args.end(), r.options.begin(), r.options.end());
        SCOPED_TRACE(r.options[0]);
        expectRun(run(args), 1, "", std::string("ERROR-MAIN002  : ") + r.error + "\n");
    }
    // -bs=1 is good; -cs without a value lets the dictionary decide
    expectOut(run({"data.bin", "-d=rec", "-bs=1"}), both);
    expectOut(run({"data.bin", "-d=rec", "-cs"}), both);
    expectOut(run({"data.bin", "-d=rec", "-cs="}), both);
}

TEST_F(CommandLine, BinaryFileOptionIsNotLookedAtWithExplodeOrBinary) {
    const std::string warnings = "WARNING-MAIN : -B no match found\nWARNING-MAIN : 'out.bin' no match found\n";
    expectRun(run({"data.bin", "-d=rec", "-r", "-B", "'out.bin'"}), 0, "", warnings);
    expectRun(run({"data.bin", "-d=rec", "-b", "-B", "'out.bin'"}), 0, "", warnings);
}

TEST_F(CommandLine, OptionsFollowTheFileNameInAnyOrder) {
    // an option written first is the file name
    expectRun(run({"-d=rec", "data.bin"}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"-d=rec\"\n");
    expectOut(run({"data.bin", "-x", "b", "-d=rec"}), "1> b = 515 ; 02 03\n");
    expectOut(run({"data.bin", "b", "-d=rec", "a", "-xn"}), "1> b = 515 ; 02 03\n0> a = 1 ; 01\n");
}

TEST_F(CommandLine, MisspeltOrRepeatedOptionsBecomeFieldPatterns) {
    expectRun(run({"data.bin", "-d=rec", "-ab", "-iq", "-rr"}), 0, "",
              "WARNING-MAIN : -ab no match found\n"
              "WARNING-MAIN : -iq no match found\n"
              "WARNING-MAIN : -rr no match found\n");
    // "-d" takes "-d" and "-d=...", never "-dx=..."
    expectRun(run({"data.bin", "-dx=rec", "-d=rec", "a"}), 0, "0> a = 1\n", "WARNING-MAIN : -dx=rec no match found\n");
    expectRun(run({"data.bin", "-d=rec", "-x", "-xn", "a"}), 0, "0> a = 1 ; 01\n",
              "WARNING-MAIN : -xn no match found\n");
    expectRun(run({"data.bin", "-d=rec", "-a", "-a", "b"}), 0, "1> b = 515\n", "WARNING-MAIN : -a no match found\n");
}

TEST_F(CommandLine, FieldsPrintInTheOrderOfTheirPatterns) {
    expectRun(run({"data.bin", "-d=rec", "b", "nothing", "?"}), 0, "1> b = 515\n0> a = 1\n1> b = 515\n",
              "WARNING-MAIN : nothing no match found\n");
    expectOut(run({"data.bin", "-d=rec", "[ab]", "a"}), "0> a = 1\n1> b = 515\n0> a = 1\n");
}

}  // namespace
