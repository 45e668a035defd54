// Searches of arrays by value: alookup over a table of 16-byte records whose
// sought value stands in the last row, so that every row is read once, and
// the method form, whose statement runs in each row. Reported per row
// scanned, with the peak memory of the process.
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "calc/CalcParser.h"
#include "dict/File.h"
#include "struct/StructBase.h"

namespace {

// A scratch folder with the table: a header "DEMO" and the count, then n
// records {id, value, flags, pad}, id counting from 0.
class Table {
public:
    std::string dir;

    Table() {
        char pattern[] = "/tmp/skelvor-lookup-bench.XXXXXX";
        dir = mkdtemp(pattern);
        write("rec.dd", "rec|one 16-byte record||\nid|ULong||4|\nvalue|Double|||\nflags|UShort|||\npad|UShort|||\n");
        write("demo.dd",
              "demo|8-byte header, then count records||LITTLE-ENDIAN\nmagic|String||4\ncount|ULong||4|\n"
              "recs|@rec|||count\n");
    }
    ~Table() {
        std::string command = "rm -rf '" + dir + "'";
        if (std::system(command.c_str()) != 0) std::fprintf(stderr, "could not remove %s\n", dir.c_str());
    }

    std::string path(const std::string& name) const { return dir + "/" + name; }

    void write(const std::string& name, const std::string& bytes) const {
        FILE* f = std::fopen(path(name).c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }

    std::string data(long n) {
        std::string file = path("demo_" + std::to_string(n) + ".bin");
        if (access(file.c_str(), F_OK) == 0) return file;
        FILE* f = std::fopen(file.c_str(), "wb");
        unsigned count = static_cast<unsigned>(n);
        std::fwrite("DEMO", 1, 4, f);
        std::fwrite(&count, 4, 1, f);
        for (long i = 0; i < n; ++i) {
            unsigned id = static_cast<unsigned>(i);
            double value = static_cast<double>(i % 10007) * 0.25;
            unsigned short flags = static_cast<unsigned short>(i & 1), pad = 0;
            std::fwrite(&id, 4, 1, f);
            std::fwrite(&value, 8, 1, f);
            std::fwrite(&flags, 2, 1, f);
            std::fwrite(&pad, 2, 1, f);
        }
        std::fclose(f);
        return file;
    }
};

Table& table() {
    static Table t;
    return t;
}

// The statement bound at the root of the table, names below it: with
// constant arguments it is evaluated, once, while it is bound.
void search(benchmark::State& state, const std::string& statement) {
    long n = state.range(0);
    std::string data = table().data(n);
    auto file = std::make_unique<vexa::File>(table().path("demo").c_str(), data.c_str(), 5L, vexa::File::OrderNone);
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
