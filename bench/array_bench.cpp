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
#include "dict/File.h"
#include "struct/ArrayReader.h"
#include "struct/StructArray.h"
#include "struct/StructBase.h"
#include "struct/TextSink.h"

#include "ScratchFolder.h"

namespace {

// The files of the benchmarks, written once into a scratch folder.
class Files : public ScratchFolder {
public:
    Files() {
        write("rec.dd",
              "rec|one 16-byte record||\nid|ULong||4|\nvalue|Double|||\nflags|UShort|||\npad|UShort|||\n"
              "~twice|Double||value * 2\n");
        write("demo.dd",
              "demo|8-byte header, then count records||LITTLE-ENDIAN\nmagic|String||4\ncount|ULong||4|\n"
              "recs|@rec|||count\n");
        write("floats.dd", "floats|float32 values filling the file||LITTLE-ENDIAN\nx|Float|||#filesize / 4\n");
        write("var.dd", "var|records of variable size||LITTLE-ENDIAN\nitems|@item|||inf\n");
        write("item.dd", "item|a length and that many bytes||\nlen|UChar|||\ntext|String||len|\n");
    }

    // The demo table of n records: a header "DEMO" and the count, then
    // records {id, value, flags, pad}. Sparse, only the header and the last
    // record hold bytes; or full, every record written.
    std::string demo(long n, bool full = false) {
        std::string file = path((full ? "full_" : "demo_") + std::to_string(n) + ".bin");
        if (access(file.c_str(), F_OK) == 0) return file;
        FILE* f = std::fopen(file.c_str(), "wb");
        unsigned count = static_cast<unsigned>(n);
        std::fwrite("DEMO", 1, 4, f);
        std::fwrite(&count, 4, 1, f);
        long from = full ? 0 : n - 1;
        fseeko(f, 8 + 16 * from, SEEK_SET);
        for (long i = from; i < n; ++i) {
            unsigned id = static_cast<unsigned>(i);
            double value = static_cast<double>(i % 10007) * 0.25;
            unsigned short flags = static_cast<unsigned short>(i & 0xffff), pad = 0;
            std::fwrite(&id, 4, 1, f);
            std::fwrite(&value, 8, 1, f);
            std::fwrite(&flags, 2, 1, f);
            std::fwrite(&pad, 2, 1, f);
        }
        std::fclose(f);
        return file;
    }

    // n float32 values.
    std::string floats(long n) {
        std::string file = path("floats_" + std::to_string(n) + ".bin");
        if (access(file.c_str(), F_OK) == 0) return file;
        FILE* f = std::fopen(file.c_str(), "wb");
        for (long i = 0; i < n; ++i) {
            float x = static_cast<float>((i * 7919) % 20011) * 0.125f;
            std::fwrite(&x, 4, 1, f);
        }
        std::fclose(f);
        return file;
    }

    // n records of 1 to 8 bytes each: a length, then that many bytes.
    std::string variable(long n) {
        std::string file = path("var_" + std::to_string(n) + ".bin");
        if (access(file.c_str(), F_OK) == 0) return file;
        FILE* f = std::fopen(file.c_str(), "wb");
        for (long i = 0; i < n; ++i) {
            unsigned char len = static_cast<unsigned char>(i % 8);
            std::fputc(len, f);
            for (int k = 0; k < len; ++k) std::fputc('a' + k, f);
        }
        std::fclose(f);
        return file;
    }
};

Files& files() {
    static Files f;
    return f;
}

// Discards what it is given, counting it.
class NullSink : public vexa::TextSink {
public:
    size_t bytes = 0;
    void write(const char*, size_t n) override { bytes += n; }
};

std::unique_ptr<vexa::File> open(const std::string& dictionary, const std::string& data) {
    return std::make_unique<vexa::File>(files().path(dictionary).c_str(), data.c_str(), 5L, vexa::File::OrderNone);
}

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
