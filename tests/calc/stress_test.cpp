// Random input for the scanner and the parser, from fixed seeds: arbitrary
// bytes, soups of the language's own fragments, and nesting beyond the stack
// limits. Nothing may crash, hang or leak; an input either compiles or
// raises an error of the language.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "calc/CalcScanner.h"
#include "calc_testing.h"

using namespace calctest;

namespace {

// Splits each text as a list, compiles it strictly and leniently and, when
// that works, reads it in every way at every row; counts the outcomes.
class Exerciser {
public:
    int compiled = 0;
    int failed = 0;

    Exerciser() {
        binder.values["x"] = 3;
        binder.values["y"] = -1.5;
        binder.nodes["obj"] = [] { return new Leaf(5, 0, "obj"); };
        binder.rows.count = 4;
    }

    void run(const std::string& source) {
        scan(source);
        compile(source, false);
        compile(source, true);
    }

private:
    Binder binder;

    void scan(std::string rest) {
        for (int piece = 0; piece < 100; ++piece) {  // the first pieces are enough: each split copies the rest
            zun::CalcScanner scanner(rest.c_str());
            if (scanner.scan().length > static_cast<int>(rest.size())) ADD_FAILURE() << "scan past the text: " << rest;
            if (scanner.atEnd() || scanner.stopChar != ',') return;
            String more = scanner.skip(1).flush();
            if (!more.text) return;
            if (more.length >= static_cast<int>(rest.size())) {
                ADD_FAILURE() << "the list split doesn't advance: " << rest;
                return;
            }
            rest.assign(more.text, static_cast<size_t>(more.length));
        }
    }

    void compile(const std::string& source, bool lenient) {
        try {
            std::istringstream in(source);
            CalcParser p(in, binder, lenient);
            ++compiled;
            for (binder.rows.index = 0; binder.rows.index < binder.rows.count; ++binder.rows.index) {
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

std::string repeat(const std::string& s, int n) {
    std::string out;
    while (n-- > 0) out += s;
    return out;
}

}  // namespace

TEST(CalcStress, ArbitraryBytes) {
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> length(0, 48), byte(0, 255);
    Exerciser e;
    for (int i = 0; i < 2500; ++i) {
        std::string text;
        for (int n = length(random); n > 0; --n) text += static_cast<char>(byte(random));
        e.run(text);
    }
    EXPECT_GT(e.failed, 0);
}

TEST(CalcStress, SoupsOfFragments) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> count(0, 24);
    std::uniform_int_distribution<size_t> pick(0, sizeof fragments / sizeof fragments[0] - 1);
    Exerciser e;
    for (int i = 0; i < 4000; ++i) {
        std::string text;
        for (int n = count(random); n > 0; --n) text += fragments[pick(random)];
        e.run(text);
    }
    EXPECT_GT(e.compiled, 100) << "some of them make statements";
    EXPECT_GT(e.failed, 1000);
}

TEST(CalcStress, NestingBeyondTheStacks) {
    Exerciser e;
    for (int depth : {150, 199, 200, 201, 250, 1000, 9999, 10001, 15000}) {
        for (const std::string& text :
             {repeat("(", depth) + "1" + repeat(")", depth), repeat("(", depth), repeat("-(", depth) + "x",
              repeat("min(", depth) + "1" + repeat(")", depth), repeat("a[", depth) + "1" + repeat("]", depth),
              repeat("1?", depth) + "2" + repeat(":3", depth), "x" + repeat(" kw", depth), "1" + repeat("+1", depth),
              repeat("a=1;", depth) + "a", repeat("'s',", depth)})
            e.run(text);
    }
    EXPECT_GT(e.compiled, 0);
    EXPECT_GT(e.failed, 0);
}
