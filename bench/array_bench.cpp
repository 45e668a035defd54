// Arrays: one element of a large table, a long array printed whole, list
// reads against a plain read of the same bytes, and the walk over records of
// variable size.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "base/ObjAppendList.h"
#include "bench/BenchFiles.h"
#include "dict/File.h"
#include "struct/ArrayReader.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "struct/TextSink.h"

namespace {

using benchfiles::files;
using benchfiles::open;

// Discards what it is given, counting it.
class NullSink : public vexa::TextSink {
public:
    size_t bytes = 0;
    void write(const char*, size_t n) override { bytes += n; }
};

// The value of the last record, the file opened and its dictionary read
// each time: what `skelvor demo.bin -d=demo recs.<N-1>.value` does but for
// starting the process.
void BM_LastElementOfTable(benchmark::State& state) {
    long n = state.range(0);
    std::string data = files().demo(n);
    std::string path = "recs." + std::to_string(n - 1) + ".value";
    for (auto _ : state) {
        auto file = open("demo", data);
        zun::String value = file->getRoot().getChild(path.c_str())->readAll(true);
        benchmark::DoNotOptimize(value.text);
    }
}
BENCHMARK(BM_LastElementOfTable)->Arg(1000000)->Arg(10000000)->Arg(1249999999)->Unit(benchmark::kMicrosecond);

// A float array printed whole: one folded text, written to a sink.
void BM_FloatArrayText(benchmark::State& state) {
    long n = state.range(0);
    std::string data = files().floats(n);
    auto file = open("floats", data);
    vexa::StructElem& x = *file->getRoot().getChild("x");
    for (auto _ : state) {
        NullSink sink;
        x.writeText(sink, vexa::FormAll, true);
        benchmark::DoNotOptimize(sink.bytes);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FloatArrayText)->Arg(10000000)->Unit(benchmark::kMillisecond);

// All values of a float array in a list, by the one-read path.
void BM_FloatArrayList(benchmark::State& state) {
    long n = state.range(0);
    std::string data = files().floats(n);
    auto file = open("floats", data);
    vexa::StructElem& x = *file->getRoot().getChild("x");
    for (auto _ : state) {
        zun::ObjAppendList<float> values;
        x.readFloatA(values);
        benchmark::DoNotOptimize(values.data);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FloatArrayList)->Arg(10000000)->Unit(benchmark::kMillisecond);

// The same bytes by a plain fread into memory: the floor of a list read.
void BM_FreadOfTheSameBytes(benchmark::State& state) {
    long n = state.range(0);
    std::string data = files().floats(n);
    for (auto _ : state) {
        FILE* f = std::fopen(data.c_str(), "rb");
        std::unique_ptr<float[]> values(new float[n]);
        size_t got = std::fread(values.get(), 4, static_cast<size_t>(n), f);
        std::fclose(f);
        benchmark::DoNotOptimize(got);
        benchmark::DoNotOptimize(values.get());
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_FreadOfTheSameBytes)->Arg(10000000)->Unit(benchmark::kMillisecond);

// Walking an array of records of variable size from its first element to
// its last: one size computation per element.
void BM_VariableRecordWalk(benchmark::State& state) {
    long n = state.range(0);
    std::string data = files().variable(n);
    auto file = open("var", data);
    auto& items = static_cast<vexa::StructArrayBase&>(*file->getRoot().getChild("items"));
    items.getField("#last");  // the count of the unbound array, learned once
    for (auto _ : state) {
        items.setArray(0);
        for (long i = 1; i < n; ++i) items.stepArray(1);
        benchmark::DoNotOptimize(items.activeIndex);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_VariableRecordWalk)->Arg(1000000)->Unit(benchmark::kMillisecond);

// One column of every record of the table, its text written as a printed
// line would take it: the file field "value" (0) or the virtual field
// "twice" computed from it (1).
void BM_ColumnOfEveryRecord(benchmark::State& state) {
    const long n = 1000000;
    std::string data = files().demo(n, true);
    auto file = open("demo", data);
    vexa::ArrayReader reader(*file->getRoot().getChild("recs"));
    reader << (state.range(0) == 0 ? "value" : "twice");
    for (auto _ : state) {
        NullSink sink;
        for (reader = 0; reader.row >= 0; reader += 1) reader.getNextColumn()->resolve()->writeText(sink, vexa::FormAll, true);
        benchmark::DoNotOptimize(sink.bytes);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_ColumnOfEveryRecord)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
