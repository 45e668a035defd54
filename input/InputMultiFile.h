// zun::InputMultiFile: the files of a folder that match a pattern, read as
// one stream in the sorted order of their names.
#pragma once

#include "base/ObjAppendList.h"
#include "input/InputStream.h"

namespace zun {

class InputMultiFile : public InputStream {
public:
    ObjAppendListP<InputStream> streams;  // the parts, owned
    ObjAppendList<long> starts;           // where each part reached so far begins in the whole
    long current = 0;                     // the part in use
    long whole = 0;                       // the position in the whole

    // Opens the parts of path with the given driver and option.
    InputMultiFile(const char* path, int order = BigEndian, const char* driver = nullptr,
                   const char* option = nullptr);

    // Fills streams: a plain file or FIFO is the only part; otherwise all
    // files matching the path's base name in its folder, hidden files left
    // out. Throws StdError code 2 when nothing matches.
    void open(const char* driver, const char* option);

    const char* name(long offset = -1) const override;
    InputStream& seek(long offset, std::ios::seekdir dir = std::ios::beg) override;
    long offset() override { return whole; }
    InputStream& getline(char* buf, unsigned long size, char delim = '\n') override;
    bool eof() const override;
    bool fail() const override;
    int peek() override;
    long size() override;
    long size(long offset) override;
    unsigned long bufread(char* buf, unsigned long n, unsigned long done = 0) override;

private:
    long partAt(long offset) const;
    bool shortRead = false;  // the last read ended at the end of the last part
};

}  // namespace zun
