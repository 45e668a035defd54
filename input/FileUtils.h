// zun::FileUtils: the path functions that the input layer shares.
#pragma once

#include <sys/types.h>

#include "base/ObjAppendList.h"
#include "base/String.h"

namespace zun {

class FileUtils {
public:
    // True if path is a regular file or a FIFO.
    static bool checkFile(const char* path);
    // True if path is a folder.
    static bool isDirectory(const char* path);
    // What stat says path is, for messages: "a regular file", "a named pipe",
    // "a directory", "a character device", "a block device", "a socket";
    // null when stat fails.
    static const char* kindName(const char* path);
    // Nothing when path is a regular file or a FIFO, the kinds of file that
    // data is read from; otherwise StdError code 22 naming path and what it is.
    static void checkDataFile(const char* path);
    // folder, a "/" unless folder ends in one, and name; name alone without folder.
    static String pathName(const char* name, const char* folder);
    // pathName, which must be a regular file or a FIFO; else StdError code 2.
    static String pathNameCheck(const char* name, const char* folder);
    // The text behind the last "/"; with stripSlash a final "/" is ignored first.
    static String baseName(const char* path, bool stripSlash = false);
    // The text before the last "/"; "/" where there is no other folder.
    static String dirName(const char* path, bool stripSlash = false);
    // Makes all folders down to path, top first; an existing folder is fine.
    static bool makePath(const char* path, mode_t mode = 0777);
    // Appends the entries of folder (null: ".") whose names match pattern
    // (null: all), in sorted order, each with the folder in front. Folders are
    // followed with recursive and left out otherwise. Returns the number added.
    static long listFiles(const char* folder, const char* pattern, bool recursive, ObjAppendList<String>& list);
};

}  // namespace zun
