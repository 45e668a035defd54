// skelvor on random input: generated dictionaries, data and command lines,
// with arrays of every shape, unions, virtual fields and arrays, statements
// that name fields, and offsets and sizes up to the ends of the 64-bit
// range. Whatever they hold, each run ends by itself with status 0 (read) or
// 1 (a clear error), well within a time limit; a crash, a sanitizer report
// or a hang shows as any other status. The generator is seeded, so every
// run of the test throws the same inputs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/Process.h"
#include "support/TempDir.h"

namespace {

class Generator {
public:
    explicit Generator(unsigned seed) : rng(seed) {}

    int below(int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); }
    bool chance(int percent) { return below(100) < percent; }
    template <size_t N>
    const char* pick(const char* const (&words)[N]) {
        return words[below(static_cast<int>(N))];
    }

    std::string bytes(int most) {
        std::string s;
        for (int n = below(most + 1); n > 0; --n) s.push_back(static_cast<char>(rng() & 0xff));
        return s;
    }

    // A size column: integers, expressions on the fields before, odd texts.
    std::string size() {
        static const char* const sizes[] = {
            "",        "1",        "2",          "4",        "8",           "0",        "-1",     "3",
            "16",      "100000",   "2147483648", "a",        "a + 1",       "b * 2",    "n",      "-a",
            "1/0",     "nan",      "infinity",   "#filesize", "vector(3)[1]", "a@name",  "'x'",    "(",
            "1e300",   "a ~ \"*\"", "strlen(\"ab\")", "recurse(self + 1, 0)", "99999999999999999999",
            "9223372036854775807", "9223372036854775806", "4611686018427387904", "-9223372036854775808",
            "{-.n}",   "{--.a}",   "{.a}",       "{+n}",     "a@dim",       "a@size",   "a[1]",   "iter",
            "a@pos_next", "b@offset", "a#1@size", "a[\"#last\"]", "{-.a}[iter] % 4", "iter1 + iter"};
        return pick(sizes);
    }
    // A size for a field of type: mostly one that the type takes (none for
    // numbers, a count of bytes for texts), else any.
    std::string sizeFor(const std::string& type) {
        static const char* const counts[] = {"1", "2", "3", "4", "8", "20"};
        static const char* const digits[] = {"1", "2", "3", "4"};
        if (type[0] == 'a' && chance(90)) return pick(digits);
        if (chance(75)) return type == "String" ? pick(counts) : "";
        return size();
    }

    // Types whose elements take bytes without a size column.
    static bool sizedByType(const std::string& type) {
        static const char* const sized[] = {"UChar", "SChar", "AChar", "UShort", "SShort", "ULong", "SLong",
                                            "ULLong", "SLLong", "Float", "Double", "Date", "DateTime"};
        for (const char* t : sized)
            if (type == t) return true;
        return false;
    }

    // Mostly a scalar; arrays of a fixed count, of a statement's, of two
    // dimensions, to the end of the data, and of counts near 2^63. Only
    // elements that take bytes get those counts: a billion elements of no
    // size print for long, and a file of bytes ends the others early.
    std::string dims(bool sized = true) {
        static const char* const dims[] = {"2", "3", "0", "-1", "a", "2,2", "n", "1+0", "(", " ", "inf",
                                           "3,inf", "n,2", "a % 4", "b@dim", "2,2,2", "inf,2"};
        static const char* const large[] = {"1000000000", "9223372036854775807", "4611686018427387904,4",
                                            "2147483648,2147483648", "99999999999999999999"};
        if (chance(70)) return chance(80) ? "" : "1";
        return sized && chance(15) ? pick(large) : pick(dims);
    }

    std::string offset() {
        static const char* const offsets[] = {"0", "4", "+2", "-1", "-100", "%%8", "%%2", "%%0", "%%x",
                                              "a", "a * 2", "1000000", "+1000000", "+9223372036854775807",
                                              "9223372036854775807", "+4611686018427387904",
                                              "-9223372036854775808", "%%4611686018427387904",
                                              "9223372036854775806", "a@pos_next + 9223372036854775800"};
        return chance(85) ? "" : pick(offsets);
    }

    // Mostly the types that this version reads; now and then one it refuses.
    std::string type() {
        static const char* const types[] = {
            "UChar",  "SChar",  "AChar",   "UShort",   "SShort",    "ULong", "SLong",   "ULLong", "SLLong",
            "Float",  "Double", "Date",    "DateTime", "aDateTime", "String", "String", "Null",   "aSLong",
            "aUShort", "aFloat", "aDouble", "XShort",  "@sub",      "@sub",   "@self",  "Spare",
            "?a % 3",  "?n",     "?1",      "?b == 2 ? 0 : 1", "?{-.a}[iter] % 2", "?a"};
        static const char* const refused[] = {"@missing", "?", "Bogus", "~Double", "~Date", "?(("};
        return chance(2) ? pick(refused) : pick(types);
    }

    std::string unit() {
        static const char* const units[] = {"", "", "m", "2000", "1970", "1900", "99999", "-5", "sub", "%|%"};
        return pick(units);
    }
    // A union's unit column names the dictionary of its alternatives.
    std::string unitFor(const std::string& type) {
        static const char* const alternatives[] = {"alts", "alts", "alts", "alts", "alts", "sub", "missing", ""};
        return type[0] == '?' ? pick(alternatives) : unit();
    }

    // The lines of a dictionary: a header, then fields named from a small
    // set, so that expressions find some of them.
    std::string dictionary(const char* name) {
        static const char* const standards[] = {"", "BIG-ENDIAN", "LITTLE-ENDIAN", "LOCAL", "little-endian"};
        static const char* const names[] = {"a", "b", "n", "c", "d", "e"};
        std::string text = std::string(name) + "|random|" + (chance(10) ? size() : "") + "|" +
                           (chance(3) ? "middle" : pick(standards)) + "\n";
        for (int i = below(7); i > 0; --i) {
            if (chance(12)) {
                static const char* const virtualTypes[] = {"Double", "String", "UChar", "SShort", "ULLong",
                                                           "Float",  "Date",   "DateTime", "AChar"};
                text += "~" + std::string(pick(names)) + "|" + pick(virtualTypes) + "|" + unit() +
                        "|" + size() + "|" + dims(false) + "\n";
                continue;
            }
            std::string t = type();
            std::string sz = sizeFor(t);
            text += std::string(pick(names)) + "|" + t + "|" + unitFor(t) + "|" + sz + "|" +
                    dims(sz.empty() && sizedByType(t)) + "|" + offset() + "\n";
        }
        if (chance(5)) text += bytes(20) + "\n";
        return text;
    }

    // Options of a command line, any mix, field patterns among them; now and
    // then one that is refused.
    std::vector<std::string> options() {
        static const char* const options[] = {
            "-x",      "-xn",    "-a",    "-r",      "-b",         "-i",     "-base",   "-base=a", "-base=n",
            "-cs=big", "-cs=little", "-bs=1", "-bs=0", "-bs=-3",   "a",      "*",       "n.*",     "?",
            "[a-",     "-D",     "x=1",   "-u=sub.dd", "e",        "-Dnone", "b",       "a.#last", "a.#mid",
            "a.#",    "n.1",    "a#1",   "a#num",   "a#0.b",     "a.b=*",  "c.1.0",   "-first=9223372036854775807"};
        static const char* const refused[] = {"-xq", "-V", "-step=0"};
        // rows of an array read as a table, now and then
        static const char* const rows[] = {"-first=1", "-last=2", "-step=-1", "-step=2", "-first=-2",
                                           "-last=9223372036854775807"};
        static const char* const bases[] = {"-base=a", "-base=n", "-base=c", "-base=a.#last", "-base=e"};
        std::vector<std::string> chosen;
        if (chance(25)) {
            chosen.push_back(pick(bases));
            for (int i = below(3); i > 0; --i) chosen.push_back(pick(rows));
        }
        for (int i = below(4); i > 0; --i) chosen.push_back(chance(4) ? pick(refused) : pick(options));
        return chosen;
    }

private:
    std::mt19937 rng;
};

// The seed and the number of runs; SKELVOR_RANDOM_SEED and SKELVOR_RANDOM_RUNS
// change them for a longer search outside the suite.
unsigned setting(const char* name, unsigned otherwise) {
    const char* value = std::getenv(name);
    return value && *value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : otherwise;
}

TEST(SkelvorRandom, EveryRunEndsWithStatusZeroOrOne) {
    Generator g(setting("SKELVOR_RANDOM_SEED", 20240607));
    const int runs = static_cast<int>(setting("SKELVOR_RANDOM_RUNS", 100));
    testsupport::TempDir dir;
    testsupport::RunOptions options;
    options.cwd = dir.path();
    options.timeoutSeconds = 20;
    for (int run = 0; run < runs; ++run) {
        dir.write("r.dd", g.dictionary("r"));
        dir.write("sub.dd", g.dictionary("sub"));
        dir.write("alts.dd", g.dictionary("alts"));
        dir.write("self.dd", "self|||\na|@self|||\n");
        dir.write("d.bin", g.bytes(64));
        std::vector<std::string> args = {"d.bin", "-d=r"};
        for (const std::string& o : g.options()) args.push_back(o);
        testsupport::Result r = testsupport::run(testsupport::programPath("skelvor"), args, options);
        bool ended = r.status == 0 || r.status == 1;
        std::string line;
        for (const std::string& a : args) line += " '" + a + "'";
        EXPECT_TRUE(ended) << "run " << run << ": status " << r.status << "\nskelvor" << line << "\n"
                           << "dictionary:\n" << dir.read("r.dd") << "sub-dictionary:\n" << dir.read("sub.dd")
                           << "alternatives:\n" << dir.read("alts.dd")
                           << "standard error:\n" << r.err;
        if (!ended) break;
    }
}

}  // namespace
