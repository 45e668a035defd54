#include "tool/MainError.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>

int mainFrame(int argc, char** argv, int (*body)(int, char**), void (*usage)()) {
    try {
        return body(argc, argv);
    } catch (MainError& e) {
        e.log("ERROR-");
        if (e.code() != 2 && usage) usage();
        return 1;
    } catch (zun::Exception& e) {
        e.log("ERROR-");
        std::exit(1);
    } catch (std::exception& e) {
        zun::StdError(e.what()).log("ERROR-");
        return 0;
    } catch (...) {
        zun::StdError(strerror(errno)).log("ERROR-");
        return 0;
    }
}
