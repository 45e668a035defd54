// Searches of arrays by value: alookup over the demo table of 16-byte
// records {id, value, flags, pad}, the id sought standing in the last row so
// that every row is read once, and the method form, whose statement runs in
// each row. Reported per row scanned, with the peak memory of the process.
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <string>

#include "bench/BenchFiles.h"
#include "calc/CalcParser.h"
#include "struct/StructBase.h"

namespace {

// The statement bound at the root of the table, names below it: with
// constant arguments it is evaluated, once, while it is bound.
void search(benchmark::State& state, const std::string& statement) {
    long n = state.range(0);
    auto file = benchfiles::open("demo", benchfiles::files().demo(n, true));
    double row = 0;
    for (auto _ : state) {
        zun::CalcParser parser(statement.c_str(), file->getRoot().getCalcBinder("", nullptr), false);
        row = parser.valNum();
        benchmark::DoNotOptimize(row);
    }
    if (row != static_cast<double>(n - 1)) state.SkipWithError("the search did not find the last row");
    state.SetItemsProcessed(state.iterations() * n);
    state.counters["ns_per_row"] =
        benchmark::Counter(static_cast<double>(state.iterations() * n), benchmark::Counter::kIsRate |
                                                                             benchmark::Counter::kInvert);
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_rss_kB"] = static_cast<double>(usage.ru_maxrss);
}

void BM_AlookupLastRow(benchmark::State& state) {
    search(state, "alookup(" + std::to_string(state.range(0) - 1) + ", recs, \"id\")");
}
BENCHMARK(BM_AlookupLastRow)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_LookupMethodLastRow(benchmark::State& state) {
    search(state, "recs@lookup(" + std::to_string(state.range(0) - 1) + ", \"id\")");
}
BENCHMARK(BM_LookupMethodLastRow)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_LookupMethodValidLastRow(benchmark::State& state) {
    search(state, "recs@lookup(" + std::to_string(state.range(0) - 1) + ", \"valid=flags; id\")");
}
BENCHMARK(BM_LookupMethodValidLastRow)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
