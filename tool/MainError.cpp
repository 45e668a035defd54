#include "tool/MainError.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

// A closed standard stream is opened again on /dev/null for reading: writes
// to it fail as they would on the closed stream, and no file that the
// program opens gets its number.
void holdStandardStreams() {
    for (int fd = 0; fd <= 2; ++fd) {
        if (::fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
        int held = ::open("/dev/null", O_RDONLY);
        if (held >= 0 && held != fd) ::close(held);
    }
    errno = 0;
}

}  // namespace

void flushOutput() {
    int earlier = errno;  // of a write of the caller's that failed
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return;
    int code = errno ? errno : earlier ? earlier : EIO;
    errno = 0;
    throw zun::StdError("write error on standard output", code);
}

// Standard output is buffered in large blocks, and line by line on a
// terminal, where a reader waits for each line. Everything written to
// standard error flushes it first (Exception::log), so that lines stand in
// the order they were made, and the frame flushes what is left at the end.
void bufferOutput() {
    static char buffer[1 << 16];
    std::setvbuf(stdout, buffer, ::isatty(1) ? _IOLBF : _IOFBF, sizeof buffer);
}

int mainFrame(int argc, char** argv, int (*body)(int, char**), void (*usage)()) {
    holdStandardStreams();
    bufferOutput();
    try {
        int status = body(argc, argv);
        flushOutput();
        return status;
    } catch (MainError& e) {
        e.log("ERROR-");
        if (e.code() != 2 && usage) usage();
        return 1;
    } catch (zun::Exception& e) {
        e.log("ERROR-");
        std::exit(1);
    } catch (std::exception& e) {
        // running out of memory, mostly: an error like any other
        zun::StdError(e.what()).log("ERROR-");
        return 1;
    } catch (...) {
        zun::StdError(strerror(errno)).log("ERROR-");
        return 1;
    }
}
