// Where skelvor's bytes come from: standard input and pipes with their seek
// limit, numbered sets of files, folders, drivers and search paths in data
// paths, parameters of the file name and of -D, and data that ends early.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "skelvor_testing.h"

namespace {

using e2e::bytes;
using skelvortest::expectOut;
using skelvortest::expectRun;

class Input : public skelvortest::SkelvorTest {
protected:
    void SetUp() override { write("one.dd", "one|||\nx|UChar|||\ny|UShort|||\n"); }
};

TEST_F(Input, StandardInputHasAKnownSizeOnlyFromAFile) {
    expectOut(runWithInput({"-", "-d=one"}, bytes({7, 1, 2})), "00000000> x = 7\n00000001> y = 258\n");
    expectOut(runWithInput({"-", "-d=one"}, bytes({7, 1, 2}), true), "0> x = 7\n1> y = 258\n");
}

TEST_F(Input, StandardParametersOfAPipeAndOfAFile) {
    write("p.dd",
          "p|||\n"
          "a|String||strlen(#filename)\n"
          "b|String||#fifo + 1\n"
          "c|String||strlen(#dirname)\n"
          "d|String||#filesize / 14\n");
    expectOut(runWithInput({"-", "-d=p"}, "ABCDEFGHIJKLMN"),
              "00000000> a = \"ABCDEFG\"\n00000007> b = \"HI\"\n00000009> c = \"\"\n00000009> d = \"\"\n");
    write("data.bin", "ABCDEFGHIJKLMN");
    write("sub/data.bin", "ABCDEFGHIJKLMN");
    expectOut(run({"data.bin", "-d=p"}), "00> a = \"ABCDEFGH\"\n08> b = \"I\"\n09> c = \"J\"\n10> d = \"K\"\n");
    expectOut(run({"sub/data.bin", "-d=p"}), "00> a = \"ABCDEFGH\"\n08> b = \"I\"\n09> c = \"JKL\"\n12> d = \"M\"\n");
}

// Bytes 0, 1, 2, ... 250, 0, 1, ...
std::string counting(int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s.push_back(static_cast<char>(i % 251));
    return s;
}

TEST_F(Input, APipeCanJumpBackOnlyAsFarAsItsBuffer) {
    write("back.dd", "back|||\na|UChar||||5000\nb|UChar||||0\n");
    const std::string data = counting(8000);
    const std::string error =
        "ERROR-STD029 Illegal seek : seek backwards not allowed on FIFO stream \"(stdin)\", try increasing the "
        "read buffer to minimum 6 KBytes\n";
    expectRun(runWithInput({"-", "-d=back"}, data), 1, "00005000> a = 231\n00000000> b = ", error);
    expectRun(runWithInput({"-", "-d=back", "-bs=1"}, data), 1, "00005000> a = 231\n00000000> b = ", error);
    expectOut(runWithInput({"-", "-d=back", "-bs=7"}, data), "00005000> a = 231\n00000000> b = 0\n");
    // standard input is never sought, even from a file
    expectRun(runWithInput({"-", "-d=back"}, data, true), 1, "5000> a = 231\n0000> b = ", error);
    // the same file by its name
    write("data.bin", data);
    expectOut(run({"data.bin", "-d=back", "-bs=1"}), "5000> a = 231\n0000> b = 0\n");
    write("back.dd", "back|||\na|UChar||||5000\nb|UChar||||0\n");
    expectOut(runWithInput({"-", "-d=back", "-bs=-7"}, counting(8000)), "00005000> a = 231\n00000000> b = 0\n");
}

// Writes data into the FIFO at path once a reader has it open. Without a
// reader it gives up after some seconds, so that a failing test can't hang.
std::thread feedFifo(const std::string& path, const std::string& data) {
    return std::thread([path, data] {
        int fd = -1;
        for (int tries = 0; tries < 1000 && fd < 0; ++tries) {
            fd = open(path.c_str(), O_WRONLY | O_NONBLOCK);
            if (fd < 0) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (fd < 0) return;
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
        size_t done = 0;
        while (done < data.size()) {
            ssize_t n = ::write(fd, data.data() + done, data.size() - done);
            if (n <= 0) break;  // the reader is gone
            done += static_cast<size_t>(n);
        }
        close(fd);
    });
}

TEST_F(Input, ANamedPipe) {
    signal(SIGPIPE, SIG_IGN);
    write("back.dd", "back|||\na|UChar||||5000\nb|UChar||||0\n");
    write("p.dd", "p|||\na|String||strlen(#filename)\nb|String||#fifo + 1\nc|String||strlen(#dirname)\n");
    const std::string fifo = dir.path("pipe");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);

    std::thread writer = feedFifo(fifo, "ABCDEFGHIJ");
    e2e::Result r = run({"pipe", "-d=p"});
    writer.join();
    expectOut(r, "00000000> a = \"ABCD\"\n00000004> b = \"EF\"\n00000006> c = \"\"\n");

    writer = feedFifo(fifo, counting(8000));
    r = run({"pipe", "-d=back", "-bs=1"});
    writer.join();
    expectRun(r, 1, "00005000> a = 231\n00000000> b = ",
              "ERROR-STD029 Illegal seek : seek backwards not allowed on FIFO stream \"pipe\", try increasing the "
              "read buffer to minimum 6 KBytes\n");
}

class FileSets : public Input {
protected:
    void SetUp() override {
        Input::SetUp();
        write("three.dd", "three|||\na|String||3\nb|String||1\n");
        write("set/p2.dat", "CD");
        write("set/p1.dat", "AB");
        write("set/.p0.dat", "ZZ");
        write("set/q.txt", "QQ");
    }
};

TEST_F(FileSets, AWildcardPathReadsTheMatchesButHiddenFilesAsOneStream) {
    // in sorted order, across the end of a part; the size known at the start is the first part's
    expectOut(run({"set/p*.dat", "-d=three"}), "0> a = \"ABC\"\n3> b = \"D\"\n");
    expectOut(run({"set/p?.dat", "-d=three", "-base", "-b"}), "ABCD");
    write("six.dd", "six|||\na|String||6\n");
    expectOut(run({"set/*", "-d=six"}), "0> a = \"ABCDQQ\"\n");
    expectOut(run({"set/*", "-d=six", "-x", "-bs=1"}), "0> a = \"ABCDQQ\" ; 41 42 43 44 51 51\n");
}

TEST_F(FileSets, FilesNamedWithAnAtShowTheirNamesFirst) {
    write("set/n1@", "xy");
    write("set/n2@", "z");
    write("named.dd", "named|||\nh1|String||5\nd1|String||2\nh2|String||5\nd2|String||1\n");
    expectOut(run({"set/n*", "-d=named"}), "0> h1 = \"03n1@\"\n5> d1 = \"xy\"\n7> h2 = \"03n2@\"\n12> d2 = \"z\"\n");
}

TEST_F(FileSets, AFolderStandsForItsDefaultFileAndNothingForNoFile) {
    write("four.dd", "four|||\na|String||4\n");
    write("fold/index", "IDXX");
    write("fold/other", "OTHR");
    expectOut(run({"fold", "-d=four"}), "0> a = \"IDXX\"\n");
    expectOut(run({"fold/", "-d=four"}), "0> a = \"IDXX\"\n");
    expectOut(run({"fold", "-d=four"}, {{"VEXA_DEFAULT_DATAFILE", "other"}}), "0> a = \"OTHR\"\n");
    expectRun(run({"fold", "-d=four"}, {{"VEXA_DEFAULT_DATAFILE", "nope"}}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"nope\" in folder \"fold\"\n");
    expectRun(run({"set/r*", "-d=three"}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"set/r*\"\n");
    expectRun(run({"none.bin", "-d=three"}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"none.bin\"\n");
}

TEST_F(FileSets, TheDriverNamedInThePath) {
    write("two.dd", "two|||\na|String||2\n");
    write("four.dd", "four|||\na|String||4\n");
    write("fold/index", "IDXX");
    expectOut(run({"set/p1.dat::basic", "-d=two"}), "0> a = \"AB\"\n");
    expectOut(run({"set/p1.dat::fstream", "-d=two"}), "0> a = \"AB\"\n");
    expectOut(run({"set/p1.dat::buffer:1", "-d=two"}), "0> a = \"AB\"\n");
    expectOut(run({"set/p*.dat::multi", "-d=four"}), "0> a = \"ABCD\"\n");
    expectOut(run({"set/p*.dat::bmulti", "-d=four"}), "0> a = \"ABCD\"\n");
    expectOut(run({"fold::basic", "-d=four"}), "0> a = \"IDXX\"\n");
    // a driver that doesn't exist, or an option that the driver doesn't take, gives no stream
    expectRun(run({"set/p1.dat::nodriver", "-d=two"}), 1, "",
              "ERROR-STD022 Invalid argument : InputStream IO handler is null\n");
    expectRun(run({"set/p1.dat::basic:4", "-d=two"}), 1, "",
              "ERROR-STD022 Invalid argument : InputStream IO handler is null\n");
}

TEST_F(FileSets, APathWithTwoSlashesIsLookedForAlongTheSearchPath) {
    write("four.dd", "four|||\na|String||4\n");
    write("a/set/x.bin", "AAAA");
    write("b/set/x.bin", "BBBB");
    write("c/x.bin", "CCCC");
    const std::string a = dir.path("a"), b = dir.path("b"), c = dir.path("c");
    expectOut(run({"//set/x.bin", "-d=four"}, {{"VEXA_AUXFILE_PATH", a + ":" + b}}), "0> a = \"AAAA\"\n");
    expectOut(run({"//set/x.bin", "-d=four"}, {{"VEXA_AUXFILE_PATH", b + ":" + a}}), "0> a = \"BBBB\"\n");
    expectOut(run({"//set/x.bin", "-d=four"}, {{"VEXA_AUXFILE_PATH", a}, {"VEXA_AUXFILE_PATH_set", c}}),
              "0> a = \"CCCC\"\n");
    // only the first entry counts
    expectRun(run({"//set/x.bin", "-d=four"}, {{"VEXA_AUXFILE_PATH", dir.path("none") + ":" + a}}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"" +
                  dir.path("none") + "/set/x.bin\"\n");
    // without a search path the name is taken without its slashes
    expectOut(run({"//c/x.bin", "-d=four"}), "0> a = \"CCCC\"\n");
}

class Parameters : public Input {
protected:
    void SetUp() override {
        Input::SetUp();
        write("prm.dd", "prm|||\na|String||#n\nb|String||#m * 2\n");
        write("data.bin", "ABCDEFGHIJ");
    }
};

TEST_F(Parameters, OnTheFileNameAndTheCommandLine) {
    expectOut(run({"data.bin&n=3&m=1", "-d=prm"}), "00> a = \"ABC\"\n03> b = \"DE\"\n");
    // an "&" in the first place is part of the name
    expectRun(run({"&n=3", "-d=prm"}), 1, "",
              "ERROR-STD002 No such file or directory : no file matching \"index\" in folder \"&n=3\"\n");
    expectOut(run({"data.bin", "-d=prm", "-D", "n=1", "-D", "m=0"}), "00> a = \"A\"\n01> b = \"\"\n");
    // the file's own parameters come first
    expectOut(run({"data.bin&n=2", "-d=prm", "-D", "n=1", "-D", "m=0"}), "00> a = \"AB\"\n02> b = \"\"\n");
    // everything behind the first "=" is the value
    write("eq.dd", "eq|||\na|String||strlen(#t)\n");
    expectOut(run({"data.bin", "-d=eq", "-D", "t=a=b"}), "00> a = \"ABC\"\n");
}

TEST_F(Parameters, FromADefinitionsFile) {
    write("defs.txt", "n = 1;\nm = n + 1;\nlabel = \"north\" << \"-\" << m\n");
    expectOut(run({"data.bin", "-d=prm", "-Ddefs.txt"}), "00> a = \"A\"\n01> b = \"BCDE\"\n");
    write("label.dd", "label|||\na|String||strlen(#label)\n");
    expectOut(run({"data.bin", "-d=label", "-Ddefs.txt"}), "00> a = \"ABCDEFG\"\n");
    const std::string error =
        "ERROR-CALC010 invalid symbol : \"#n\"\n"
        "ERROR-VEXA015 dictionary error : invalid size statement for field \"a\" in dictionary 'prm.dd'\n";
    expectRun(run({"data.bin", "-d=prm"}), 1, "00> a = ", error);
    // a definitions file that can't be read defines nothing
    expectRun(run({"data.bin", "-d=prm", "-Dmissing.txt"}), 1, "00> a = ", error);
}

class ShortData : public Input {
protected:
    void SetUp() override {
        Input::SetUp();
        write("tr.dd", "tr|||\na|UChar|||\nb|UShort|||\nc|UChar|||\n");
        write("tr.bin", bytes({1, 2}));
    }
};

TEST_F(ShortData, AReadThatRunsPastTheEnd) {
    const std::string error = "ERROR-STD005 Input/output error : reading field \"b\" [1,2] in \"tr.bin\"\n";
    expectRun(run({"tr.bin", "-d=tr"}), 1, "0> a = 1\n1> b = ", error);
    expectRun(run({"tr.bin", "-d=tr", "-base"}), 1, "0> a = 1\n1> b = ", error);
    expectRun(run({"tr.bin", "-d=tr", "-b"}), 1, bytes({1}), error);
    expectRun(runWithInput({"-", "-d=tr"}, bytes({1, 2})), 1, "00000000> a = 1\n00000001> b = ",
              "ERROR-STD005 Input/output error : reading field \"b\" [1,2] in \"(stdin)\"\n");
}

TEST_F(ShortData, AReadThatStartsAtTheEnd) {
    expectRun(run({"tr.bin", "-d=tr", "-x", "c"}), 1, "3> c = ",
              "ERROR-STD005 Input/output error : eof seeking field \"c\" at position 3 in \"tr.bin\"\n");
    write("empty.bin", "");
    expectRun(run({"empty.bin", "-d=tr"}), 1, "00000000> a = ",
              "ERROR-STD005 Input/output error : eof seeking field \"a\" at position 0 in \"empty.bin\"\n");
    expectRun(runWithInput({"-", "-d=tr"}, ""), 1, "00000000> a = ",
              "ERROR-STD005 Input/output error : eof seeking field \"a\" at position 0 in \"(stdin)\"\n");
}

TEST_F(ShortData, ASizeBeyondTheData) {
    write("huge.dd", "huge|||\na|String||#n\n");
    for (const char* n : {"2000000", "3000000000", "100000000000000"}) {
        std::string size(n);
        expectRun(run({"tr.bin", "-d=huge", "-D", "n=" + size}), 1, "0> a = ",
                  "ERROR-STD005 Input/output error : reading field \"a\" [0," + size + "] in \"tr.bin\"\n");
        expectRun(run({"tr.bin", "-d=huge", "-D", "n=" + size, "-b"}), 1, "",
                  "ERROR-STD005 Input/output error : reading field \"a\" [0," + size + "] in \"tr.bin\"\n");
    }
    // a text can't hold more than 2 GB, whatever the pipe holds
    expectRun(runWithInput({"-", "-d=huge", "-D", "n=3000000000"}, "abc"), 1, "00000000> a = ",
              "ERROR-VEXA003 invalid read request : field [a] (String) cannot be read as 'String'\n");
}

}  // namespace
