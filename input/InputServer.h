// zun::InputServer: the registry of input drivers, which turns a path, a
// driver name and an option into an InputStream.
#pragma once

#include "base/ObjAppendList.h"
#include "base/String.h"
#include "input/InputStream.h"

namespace zun {

class InputServer {
public:
    typedef InputStream* (*Factory)(const char* path, InputStream::ByteOrder order, const char* option);

    ObjAppendListP<String> drivers;   // driver names
    ObjAppendListP<String> options;   // their default options; null: none
    ObjAppendList<Factory> factories;
    String defaultDriver;

    static InputServer& getInstance();
    // "file::driver[:option]": cuts path before "::" (found at index 1 or
    // later) and gives the driver and option named behind it, the option null
    // when absent. False, with nothing changed, for a path without "::".
    static bool splitDriverPath(String& path, String& driver, String& option);

    // The stream of path by a driver. A path "file::driver:option" names the
    // driver when none is given. The result is owned by the caller; null when
    // the driver is unknown or refuses the option.
    InputStream* getFile(const char* path, InputStream::ByteOrder order, const char* driver = nullptr,
                         const char* option = nullptr) const;

    // The factories of the drivers.
    template <class T>
    static InputStream* getFile(const char* path, InputStream::ByteOrder order, const char* option);
    // A buffered stream over a set of files.
    static InputStream* getBufferedMulti(const char* path, InputStream::ByteOrder order, const char* option);

    void addDriver(const char* name, Factory factory, const char* defaultOption);
    const char* getDriverDefault() const { return defaultDriver.str(); }
    void setDriverDefault(const char* name) { defaultDriver = name; }
    // Replaces the default option of driver (null: the default driver), only
    // if it has one.
    void setDriverOption(const char* option, const char* driver = nullptr);

private:
    InputServer();
    long findDriver(const char* name) const;

    static InputServer* input_srv;
};

class InputBasicFile;
class InputFStream;
class InputBStream;
class InputMultiFile;

template <>
InputStream* InputServer::getFile<InputBasicFile>(const char* path, InputStream::ByteOrder order, const char* option);
template <>
InputStream* InputServer::getFile<InputFStream>(const char* path, InputStream::ByteOrder order, const char* option);
template <>
InputStream* InputServer::getFile<InputBStream>(const char* path, InputStream::ByteOrder order, const char* option);
template <>
InputStream* InputServer::getFile<InputMultiFile>(const char* path, InputStream::ByteOrder order, const char* option);

}  // namespace zun
