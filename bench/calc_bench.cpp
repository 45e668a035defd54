// The expression language's costs: one evaluation of a compiled statement
// after a reset, the compilation of a long statement, and a few functions.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/String.h"
#include "calc/CalcBinder.h"
#include "calc/CalcBinderData.h"
#include "calc/CalcParser.h"

namespace {

using zun::CalcBinder;
using zun::CalcIterator;
using zun::CalcNode;
using zun::CalcNodeData;
using zun::CalcParser;
using zun::String;

// Field-like values: "x1" to "xN" read the cells of a table, "s" a text, and
// the iterator walks rows as an innermost array would.
class Fields : public CalcBinder {
public:
    std::vector<double> cells;
    String text;
    long rows = 0;
    long index = 0;

    explicit Fields(size_t n) : cells(n + 1, 1.0) {}

    CalcNode* bindSymbol(const char* name) override {
        if (name[0] == 's' && name[1] == 0) return new CalcNodeData<String>(name, nullptr, &text, 0);
        if (name[0] != 'x') return nullptr;
        char* end = nullptr;
        long n = std::strtol(name + 1, &end, 10);
        if (*end || n < 0 || static_cast<size_t>(n) >= cells.size()) return nullptr;
        return new CalcNodeData<double>(name, nullptr, &cells[static_cast<size_t>(n)], 0);
    }

    CalcIterator* bindIterator(int level) override { return level == 0 ? new Rows(*this) : nullptr; }

private:
    class Rows : public CalcIterator {
    public:
        explicit Rows(Fields& f) : CalcIterator(0), f(f) {}
        long count() override { return f.rows; }
        long getIndex() override { return f.index; }
        void setIndex(long i) override { f.index = i; }

    private:
        Fields& f;
    };
};

// x1 + x2*3 - x3 + x4*3 - ... over n terms.
std::string longStatement(int n) {
    std::string s = "x1";
    for (int i = 2; i <= n; ++i) {
        s += (i % 2 == 0) ? "+x" : "-x";
        s += std::to_string(i);
        if (i % 2 == 0) s += "*3";
    }
    return s;
}

// (1) The statement of a virtual field read again after its array moved.
void BM_EvalAfterReset(benchmark::State& state) {
    Fields fields(1);
    CalcParser parser("a=x0*2+1; a>0 ? a : -a", fields, false);
    double x = -5;
    for (auto _ : state) {
        fields.cells[0] = x;
        x += 1;
        if (x > 5) x = -5;
        parser.reset();
        benchmark::DoNotOptimize(parser.valNum());
    }
}
BENCHMARK(BM_EvalAfterReset);

// (2) Compiling a statement of 100 terms (and of 1000, to see how it grows),
// the names bound by a binder.
void BM_CompileTerms(benchmark::State& state) {
    int terms = static_cast<int>(state.range(0));
    Fields fields(static_cast<size_t>(terms));
    std::string text = longStatement(terms);
    for (auto _ : state) {
        CalcParser parser(text.c_str(), fields, false);
        benchmark::DoNotOptimize(parser.result);
    }
}
BENCHMARK(BM_CompileTerms)->Arg(100)->Arg(1000);

// The 100-term statement evaluated.
void BM_Eval100Terms(benchmark::State& state) {
    Fields fields(100);
    std::string text = longStatement(100);
    CalcParser parser(text.c_str(), fields, false);
    for (auto _ : state) {
        fields.cells[1] += 1;
        parser.reset();
        benchmark::DoNotOptimize(parser.valNum());
    }
}
BENCHMARK(BM_Eval100Terms);

// (3) Functions: min of 50 arguments.
void BM_Min50(benchmark::State& state) {
    Fields fields(50);
    std::string text = "min(x1";
    for (int i = 2; i <= 50; ++i) text += ",x" + std::to_string(i);
    text += ")";
    for (size_t i = 0; i < fields.cells.size(); ++i) fields.cells[i] = static_cast<double>((i * 37) % 50);
    CalcParser parser(text.c_str(), fields, false);
    for (auto _ : state) {
        parser.reset();
        benchmark::DoNotOptimize(parser.valNum());
    }
}
BENCHMARK(BM_Min50);

// substr of a text field, and the text index form.
void BM_Substr(benchmark::State& state) {
    Fields fields(0);
    fields.text = "20240131T235959 station-042 temperature";
    CalcParser parser("substr(s, 16, 26) << s[0, 3]", fields, false);
    for (auto _ : state) {
        parser.reset();
        String value = parser.valStr();
        benchmark::DoNotOptimize(value.text);
    }
}
BENCHMARK(BM_Substr);

// recurse over 1000 rows, walked upward as a reader walks an array; the time
// is that of the whole walk.
void BM_Recurse1000Rows(benchmark::State& state) {
    Fields fields(1);
    fields.rows = 1000;
    CalcParser parser("recurse(self*0.5 + iter, x0)", fields, false);
    for (auto _ : state) {
        fields.cells[0] += 1;  // a new seed: the walk starts over
        double sum = 0;
        for (long i = 0; i < fields.rows; ++i) {
            fields.index = i;
            parser.reset();
            sum += parser.valNum();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * fields.rows);
}
BENCHMARK(BM_Recurse1000Rows);

}  // namespace
