// Index maps over a table of 1,000,000 records {id, value, flags, pad}:
// building a map sorted by the numeric field, a filter without sort, and an
// inverse of the ids. Each iteration builds the map from scratch. The peak
// resident memory of the process so far stands in the counter peak_rss_MB.
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cstdio>
#include <memory>
#include <string>

#include "dict/File.h"
#include "struct/StructBase.h"
#include "struct/StructIndexMap.h"

#include "bench/ScratchFolder.h"

namespace {

class MapFiles : public ScratchFolder {
public:
    const long rows = 1000000;
    std::string data;

    MapFiles() {
        write("rec.dd", "rec|one 16-byte record||\nid|ULong||4|\nvalue|Double|||\nflags|UShort|||\npad|UShort|||\n");
        write("maps.dd",
              "maps|a count and count records||LITTLE-ENDIAN\ncount|ULong||4|\nrecs|@rec|||count\n"
              "~sorted|SelectMap|recs|sort=value; 1\n~filtered|SelectMap|recs|value > 1000\n"
              "~byid|InverseMap|recs|id\n");
        // ids a permutation of 0..rows-1, values with many repeats, unordered
        data = path("maps.bin");
        FILE* f = std::fopen(data.c_str(), "wb");
        unsigned count = static_cast<unsigned>(rows);
        std::fwrite(&count, 4, 1, f);
        for (long i = 0; i < rows; ++i) {
            unsigned id = static_cast<unsigned>((i * 7919) % rows);
            double value = static_cast<double>((i * 7919) % 10007) * 0.25;
            unsigned short flags = static_cast<unsigned short>(i & 0xffff), pad = 0;
            std::fwrite(&id, 4, 1, f);
            std::fwrite(&value, 8, 1, f);
            std::fwrite(&flags, 2, 1, f);
            std::fwrite(&pad, 2, 1, f);
        }
        std::fclose(f);
    }
};

MapFiles& files() {
    static MapFiles f;
    return f;
}

double peakRssMB() {
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void buildMap(benchmark::State& state, const char* name) {
    MapFiles& f = files();
    vexa::File file(f.path("maps").c_str(), f.data.c_str(), 5L, vexa::File::OrderNone);
    auto& map = static_cast<vexa::StructIndexMap&>(*file.getRoot().getChild(name));
    long entries = 0;
    for (auto _ : state) {
        map.mapDirty = 1;
        entries = map.numElems();
        benchmark::DoNotOptimize(map.map.data);
    }
    state.SetItemsProcessed(state.iterations() * f.rows);
    state.counters["entries"] = static_cast<double>(entries);
    state.counters["peak_rss_MB"] = peakRssMB();
}

void BM_SelectMapSortedByValue(benchmark::State& state) { buildMap(state, "sorted"); }
BENCHMARK(BM_SelectMapSortedByValue)->Unit(benchmark::kMillisecond);

void BM_SelectMapFilter(benchmark::State& state) { buildMap(state, "filtered"); }
BENCHMARK(BM_SelectMapFilter)->Unit(benchmark::kMillisecond);

void BM_InverseMapOfIds(benchmark::State& state) { buildMap(state, "byid"); }
BENCHMARK(BM_InverseMapOfIds)->Unit(benchmark::kMillisecond);

}  // namespace
