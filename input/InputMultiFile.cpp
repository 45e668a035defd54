#include "input/InputMultiFile.h"

#include <cstdio>

#include "base/Exception.h"
#include "input/FileUtils.h"
#include "input/InputServer.h"

namespace zun {

InputMultiFile::InputMultiFile(const char* path, int order, const char* driver, const char* option)
    : InputStream(path, order) {
    open(driver, option);
}

namespace {

InputStream* openPart(const char* path, int order, const char* driver, const char* option) {
    InputStream* part = InputServer::getInstance().getFile(path, static_cast<InputStream::ByteOrder>(order),
                                                           driver, option);
    if (!part) {
        String text("no input driver ");
        text += String(driver ? driver : InputServer::getInstance().getDriverDefault()).quote('"');
        if (option) {
            text += " with option ";
            text += String(option).quote('"');
        }
        text += " for file ";
        text += String(path).quote('"');
        throw StdError(text.str(), 22);
    }
    return part;
}

}  // namespace

void InputMultiFile::open(const char* driver, const char* option) {
    streams.flush(true);
    starts.flush(true);
    current = whole = 0;
    const char* path = streamName.str();
    if (FileUtils::checkFile(path)) {
        streams << openPart(path, byteOrder, driver, option);
    } else {
        // A device or socket is no set of files: listing its folder would
        // find it again, and open it as a set again, without end.
        if (FileUtils::kindName(path) && !FileUtils::isDirectory(path)) FileUtils::checkDataFile(path);
        String folder = FileUtils::dirName(path, false);
        String pattern = FileUtils::baseName(path, false);
        ObjAppendList<String> names;
        if (FileUtils::listFiles(folder.text, pattern.text, false, names) == 0) {
            String text("no file matching ");
            text += String(pattern).quote('"');
            text += " in folder ";
            text += String(folder).quote('"');
            throw StdError(text.str(), 2);
        }
        for (long i = 0; i < names.count; ++i) {
            const String& full = names[i];
            String base = FileUtils::baseName(full.text, false);
            if (base.match(".*")) continue;
            // Each part is a file of its own, never a set again.
            FileUtils::checkDataFile(full.text);
            if (full.match("*@")) {
                // the file's name goes in front of its bytes, two digits of length first
                char head[16];
                std::snprintf(head, sizeof head, "%02d", base.length);
                String text(head);
                text += base;
                streams << new InputSStream(text.text, text.length, full.text, byteOrder);
            }
            streams << openPart(full.text, byteOrder, driver, option);
        }
    }
    for (long i = 0; i < streams.count; ++i)
        if (streams[i].isFifo()) fifo = true;
    starts << 0;
}

long InputMultiFile::partAt(long offset) const {
    if (offset < 0 || offset == whole) return current;
    long i = starts.count - 1;
    while (i > 0 && starts[i] > offset) --i;
    if (i >= streams.count) i = streams.count - 1;
    return i < 0 ? 0 : i;
}

const char* InputMultiFile::name(long offset) const {
    if (streams.count == 0) return streamName.str();
    return streams[partAt(offset)].name(-1);
}

long InputMultiFile::size(long offset) {
    if (streams.count == 0) return 0;
    return streams[partAt(offset)].size();
}

long InputMultiFile::size() {
    if (streams.count == 0) return 0;
    long last = starts.count - 1;
    if (last >= streams.count) return starts[last];
    return starts[last] + streams[last].size();
}

bool InputMultiFile::eof() const { return streams.count == 0 || shortRead || streams[current].eof(); }

bool InputMultiFile::fail() const { return streams.count != 0 && streams[current].fail(); }

int InputMultiFile::peek() { return streams.count == 0 ? -1 : streams[current].peek(); }

InputStream& InputMultiFile::getline(char* buf, unsigned long size, char) {
    if (size) buf[0] = 0;
    return *this;
}

unsigned long InputMultiFile::bufread(char* buf, unsigned long n, unsigned long done) {
    if (streams.count == 0) return done;
    unsigned long count = 0;
    for (;;) {
        InputStream& part = streams[current];
        long before = part.offset();
        part.bufread(buf + count, n - count, 0);
        long moved = part.offset() - before;
        if (moved > 0) {
            count += static_cast<unsigned long>(moved);
            whole += moved;
        }
        if (part.peek() >= 0 || current + 1 >= streams.count) break;
        ++current;
        if (starts.count <= current) starts << whole;
        streams[current].seek(whole - starts[current], std::ios::beg);
        if (count >= n) break;
    }
    shortRead = count < n;
    return done + count;
}

InputStream& InputMultiFile::seek(long offset, std::ios::seekdir dir) {
    long target;
    if (dir == std::ios::beg) target = offset < 0 ? 0 : offset;
    else if (dir == std::ios::cur) target = whole + offset;
    else target = offset;
    if (target < 0) target = 0;
    shortRead = false;
    if (target == whole || streams.count == 0) {
        whole = target;
        return *this;
    }
    if (target > whole) {
        for (;;) {
            if (current + 1 < starts.count) {
                // the next part's start is known
                if (starts[current + 1] <= target && current + 1 < streams.count) {
                    ++current;
                    continue;
                }
                break;
            }
            if (current + 1 >= streams.count) break;
            // find the end of the present part
            InputStream& part = streams[current];
            long end;
            if (!part.isFifo()) {
                end = starts[current] + part.size();
            } else {
                // a pipe: read up to the target, and see whether the part ends on the way
                long inside = target - starts[current];
                long at = part.offset();
                char scratch[4096];
                while (at < inside) {
                    unsigned long want = static_cast<unsigned long>(inside - at);
                    if (want > sizeof scratch) want = sizeof scratch;
                    long before = part.offset();
                    part.bufread(scratch, want, 0);
                    long moved = part.offset() - before;
                    if (moved > 0) at += moved;
                    if (moved < static_cast<long>(want)) break;
                }
                if (at >= inside && part.peek() >= 0) break;
                end = starts[current] + at;
            }
            starts << end;
        }
    } else {
        while (current > 0 && starts[current] > target) --current;
    }
    streams[current].seek(target - starts[current], std::ios::beg);
    whole = target;
    return *this;
}

}  // namespace zun
