// Random input for the scanner and the parser, from a fixed seed: arbitrary
// bytes, soups of the language's own fragments, and nesting beyond the stack
// limits. Nothing may crash, hang or leak; an input either compiles or
// raises an error of the language.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "calc/CalcScanner.h"
#include "calccore_testing.h"

using namespace calccore;

namespace {

// Compiles and, when that works, evaluates the text in every way; counts
// the texts that compiled.
class Exerciser {
public:
    int compiled = 0;
    int failed = 0;

    Exerciser() {
        binder.values["x"] = 3;
        binder.values["y"] = -1.5;
        binder.nodes["obj"] = [] { return new Probe("obj"); };
        binder.offerIterator = true;
        binder.rows = 4;
    }

    void run(const std::string& source) {
        scan(source);
        compile(source, false);
        compile(source, true);
    }

private:
    TestBinder binder;

    void scan(const std::string& source) {
        std::string rest = source;
        // The first pieces of a list are enough: each split copies the rest.
        for (int piece = 0; piece < 100; ++piece) {
            zun::CalcScanner scanner(rest.c_str());
            String part = scanner.scan();
            if (part.length > static_cast<int>(rest.size())) ADD_FAILURE() << "scan past the text: " << source;
            if (scanner.atEnd() || scanner.stopChar != ',') return;
            String more = scanner.skip(1).flush();
            if (!more.text) return;
            if (more.length >= static_cast<int>(rest.size())) {
                ADD_FAILURE() << "the list split doesn't advance: " << source;
                return;
            }
            rest.assign(more.text, static_cast<size_t>(more.length));
        }
    }

    void compile(const std::string& source, bool lenient) {
        try {
            std::istringstream in(source);
            zun::CalcParser p(in, binder, lenient);
            ++compiled;
            for (long i = 0; i < binder.rows; ++i) {
                binder.index = i;
                p.reset();
                p.valNum();
                p.valStr();
                p.valPrint();
                p.valRaw();
            }
            std::list<CalcNode*> nodes;
            p.listNodes(nodes, "*", nullptr, false);
        } catch (zun::Exception&) {
            ++failed;
        } catch (String&) {
            ++failed;
        }
    }
};

const char* const fragments[] = {
    "(", ")", "(", ")", "[", "]", ",", ",", ";", "=", "?", ":", "!", "-", "+", "*", "/", "%", "^", "~", "&", "|",
    "==", "!=", "<", ">", "<=", ">=", "&&", "||", "<<", ">>", "**", "@", "@size", "@m(", " ", " ", "\n", "\t",
    "x", "y", "a", "b", "obj", "kw", "iter", "iter1", "self", "pi", "nan", "null", "infinity", "1", "2", "0",
    "1.5", ".5e1", "1e5", "'s'", "\"t\"", "'a,b'", "'\\101'", "'", "\"", "{x}", "{", "}", "//c\n", "\\", "#p",
    "a=", "b=", "a;", "min(", "max(", "abs(", "sqrt(", "strlen(", "substr(", "keep(", "get(", "recurse(",
    "recurse0(", "lastof(", "choose(", "ifdef(", "ifndef(", "sync(", "const(", "sort(", "exec('1+x')",
    "symref(", "option(", "isna(", "bits(", "round(", "log(", "datestr(", "(int)", "\xff", "\x01", "\r",
};

std::string soup(std::mt19937& random) {
    std::uniform_int_distribution<int> count(0, 24);
    std::uniform_int_distribution<size_t> pick(0, sizeof fragments / sizeof fragments[0] - 1);
    std::string text;
    for (int n = count(random); n > 0; --n) text += fragments[pick(random)];
    return text;
}

std::string bytes(std::mt19937& random) {
    std::uniform_int_distribution<int> length(0, 48);
    std::uniform_int_distribution<int> byte(0, 255);
    std::string text;
    for (int n = length(random); n > 0; --n) text += static_cast<char>(byte(random));
    return text;
}

std::string repeat(const std::string& s, int n) {
    std::string out;
    for (int i = 0; i < n; ++i) out += s;
    return out;
}

}  // namespace

TEST(CalcStress, ArbitraryBytes) {
    std::mt19937 random(20240611);
    Exerciser e;
    for (int i = 0; i < 2500; ++i) e.run(bytes(random));
    EXPECT_GT(e.failed, 0);
}

TEST(CalcStress, SoupsOfFragments) {
    std::mt19937 random(7);
    Exerciser e;
    for (int i = 0; i < 4000; ++i) e.run(soup(random));
    EXPECT_GT(e.compiled, 100) << "some of them make statements";
    EXPECT_GT(e.failed, 1000);
}

TEST(CalcStress, NestingBeyondTheStacks) {
    Exerciser e;
    for (int depth : {150, 199, 200, 201, 250, 1000, 9999, 10001, 15000}) {
        e.run(repeat("(", depth) + "1" + repeat(")", depth));
        e.run(repeat("(", depth));
        e.run(repeat("-(", depth) + "x");
        e.run(repeat("min(", depth) + "1" + repeat(")", depth));
        e.run(repeat("a[", depth) + "1" + repeat("]", depth));
        e.run(repeat("1?", depth) + "2" + repeat(":3", depth));
        e.run("x" + repeat(" kw", depth));
        e.run("1" + repeat("+1", depth));
        e.run(repeat("a=1;", depth) + "a");
        e.run(repeat("'s',", depth));
    }
    EXPECT_GT(e.compiled, 0);
    EXPECT_GT(e.failed, 0);
}
