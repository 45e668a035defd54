// The files of the benchmarks: dictionaries and data written once into a
// scratch folder that goes when the program ends, and the data file handle
// over them.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "dict/File.h"

#include "bench/ScratchFolder.h"

namespace benchfiles {

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

inline Files& files() {
    static Files f;
    return f;
}

inline std::unique_ptr<vexa::File> open(const std::string& dictionary, const std::string& data) {
    return std::make_unique<vexa::File>(files().path(dictionary).c_str(), data.c_str(), 5L, vexa::File::OrderNone);
}

}  // namespace benchfiles
