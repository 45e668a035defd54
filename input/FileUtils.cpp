#include "input/FileUtils.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "base/Exception.h"

namespace zun {

bool FileUtils::checkFile(const char* path) {
    struct stat st;
    if (!path || ::stat(path, &st) != 0) {
        errno = 0;
        return false;
    }
    return S_ISREG(st.st_mode) || S_ISFIFO(st.st_mode);
}

bool FileUtils::isDirectory(const char* path) {
    struct stat st;
    if (!path || ::stat(path, &st) != 0) {
        errno = 0;
        return false;
    }
    return S_ISDIR(st.st_mode);
}

const char* FileUtils::kindName(const char* path) {
    struct stat st;
    if (!path || ::stat(path, &st) != 0) {
        errno = 0;
        return nullptr;
    }
    if (S_ISREG(st.st_mode)) return "a regular file";
    if (S_ISFIFO(st.st_mode)) return "a named pipe";
    if (S_ISDIR(st.st_mode)) return "a directory";
    if (S_ISCHR(st.st_mode)) return "a character device";
    if (S_ISBLK(st.st_mode)) return "a block device";
    if (S_ISSOCK(st.st_mode)) return "a socket";
    return "of an unknown kind";
}

void FileUtils::checkDataFile(const char* path) {
    if (checkFile(path)) return;
    String text("file ");
    text += String(path).quote('"');
    const char* kind = kindName(path);
    text += kind ? " is " : " can't be examined";
    if (kind) {
        text += kind;
        text += ", not a regular file or a named pipe";
    }
    throw StdError(text.str(), 22);
}

String FileUtils::pathName(const char* name, const char* folder) {
    if (!folder) return String(name);
    String path(folder);
    if (path.length == 0 || path[path.length - 1] != '/') path += '/';
    path += name;
    return path;
}

String FileUtils::pathNameCheck(const char* name, const char* folder) {
    if (!name || !*name) throw StdError("invalid blank filename", 2);
    String path = pathName(name, folder);
    if (!checkFile(path.text)) {
        String text(path);
        throw StdError(text.quote('"').str(), 2);
    }
    return path;
}

String FileUtils::baseName(const char* path, bool stripSlash) {
    if (!path) return String();
    String p(path);
    if (stripSlash && p.length > 0 && p[p.length - 1] == '/') p = String(p.text, p.length - 1);
    int slash = p.find('/', p.length, true);
    if (slash < 0) return p;
    return p.substr(slash + 1);
}

String FileUtils::dirName(const char* path, bool stripSlash) {
    if (!path) return String("/");
    String p(path);
    if (stripSlash && p.length > 0 && p[p.length - 1] == '/') p = String(p.text, p.length - 1);
    int slash = p.find('/', p.length, true);
    if (slash <= 0) return String("/");
    return String(p.text, slash);
}

bool FileUtils::makePath(const char* path, mode_t mode) {
    if (!path || !*path) return false;
    std::string p(path);
    size_t at = 0;
    for (;;) {
        at = p.find('/', at + 1);
        std::string part = p.substr(0, at);
        if (!part.empty() && part != "/") {
            if (::mkdir(part.c_str(), mode) != 0) {
                struct stat st;
                if (errno != EEXIST || ::stat(part.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
                    errno = 0;
                    return false;
                }
                errno = 0;
            }
        }
        if (at == std::string::npos) break;
    }
    return true;
}

long FileUtils::listFiles(const char* folder, const char* pattern, bool recursive, ObjAppendList<String>& list) {
    DIR* dir = ::opendir(folder ? folder : ".");
    if (!dir) {
        errno = 0;
        return 0;
    }
    std::vector<std::string> names;
    while (struct dirent* entry = ::readdir(dir)) {
        const char* n = entry->d_name;
        if (std::strcmp(n, ".") == 0 || std::strcmp(n, "..") == 0) continue;
        if (pattern && !String(n).match(pattern)) continue;
        names.emplace_back(n);
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    long added = 0;
    for (const std::string& n : names) {
        String full = pathName(n.c_str(), folder);
        struct stat st;
        bool isDir = ::stat(full.text, &st) == 0 && S_ISDIR(st.st_mode);
        errno = 0;
        if (isDir) {
            if (recursive) added += listFiles(full.text, pattern, true, list);
            continue;
        }
        list << full;
        ++added;
    }
    return added;
}

}  // namespace zun
