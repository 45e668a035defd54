// vexa::File: the application's handle on one data file read through one
// dictionary. It finds the data (a path, a search list, or a default file
// inside a folder), opens the input stream, and builds and owns the root.
#pragma once

#include "base/String.h"

namespace zun {
class InputStream;
}

namespace vexa {

class StructBase;

class File {
public:
    // Byte order override: -2 none, -1 the machine's, 0 big-endian, 1 little-endian.
    enum ByteOrder { OrderNone = -2, OrderLocal = -1, OrderBig = 0, OrderLittle = 1 };

    // The tool's form: the buffered driver with a buffer of bufferKBytes.
    File(const char* dictionary, const char* dataFile, long bufferKBytes, ByteOrder order);
    File(const char* dictionary, const char* dataFile, ByteOrder order, const char* driver, const char* option);
    // An open stream; the root takes it over.
    File(const char* dictionary, zun::InputStream* stream);
    // Bytes in memory; a negative length means strlen; order -2 counts as big-endian.
    File(const char* dictionary, const char* name, const char* text, int length, ByteOrder order);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File();

    static const char* driverVersion() { return "3.6"; }
    // When fileName holds "&" at index 1 or later: cuts it there and returns
    // the text from the "&" on. Otherwise a null string.
    static zun::String fileParameters(zun::String& fileName);

    static void addGlobalParameter(const char* name, long long value);
    static void addGlobalParameter(const char* name, double value);
    // With a null or empty name, value is the path of a definitions file.
    static void addGlobalParameter(const char* name, const char* value);
    static void removeGlobalParameter(const char* name);
    void addParameter(const char* name, long long value);
    void addParameter(const char* name, double value);
    void addParameter(const char* name, const char* value);
    void removeParameter(const char* name);

    zun::String getName() const;
    long getPhysicalSize() const;
    // Appends the fields of a further dictionary to the root record; -1 for a
    // null name.
    long importDictionary(const char* name);

    StructBase& getRoot() const { return *root; }
    StructBase* operator->() const { return root; }

    static zun::InputStream* resolveDataFile(const char* path, ByteOrder order, const char* driver,
                                             const char* option);
    static zun::InputStream* resolveAuxFile(const char* path, ByteOrder order, const char* driver,
                                            const char* option, const char* folder);

private:
    StructBase* root = nullptr;

    void build(const char* dictionary, zun::InputStream* stream, ByteOrder order);
};

}  // namespace vexa
