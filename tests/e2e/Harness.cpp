#include "e2e/Harness.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <signal.h>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

namespace e2e {

namespace {

void setNonBlocking(int fd) { fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK); }

std::vector<std::string> childEnvironment(const RunOptions& options) {
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e) {
        std::string entry(*e);
        if (entry.rfind("VEXA_", 0) == 0) continue;
        env.push_back(entry);
    }
    for (const auto& kv : options.env) env.push_back(kv.first + "=" + kv.second);
    return env;
}

void removeTree(const std::string& path) {
    std::string cmd = "rm -rf '" + path + "'";
    if (std::system(cmd.c_str()) != 0) { /* nothing more to do */ }
}

}  // namespace

Result run(const std::string& program, const std::vector<std::string>& args, const RunOptions& options) {
    int outPipe[2], errPipe[2], inPipe[2] = {-1, -1};
    if (pipe(outPipe) || pipe(errPipe)) throw std::runtime_error("pipe failed");
    std::string inputFile;
    if (options.inputIsFile) {
        char name[] = "/tmp/skelvor-input-XXXXXX";
        int fd = mkstemp(name);
        if (fd < 0) throw std::runtime_error("mkstemp failed");
        if (write(fd, options.input.data(), options.input.size()) != (ssize_t)options.input.size())
            throw std::runtime_error("write failed");
        close(fd);
        inputFile = name;
    } else if (pipe(inPipe)) {
        throw std::runtime_error("pipe failed");
    }

    std::vector<std::string> env = childEnvironment(options);
    std::vector<char*> argv, envp;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    for (auto& e : env) envp.push_back(const_cast<char*>(e.c_str()));
    envp.push_back(nullptr);

    pid_t pid = fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        if (options.inputIsFile) {
            int fd = open(inputFile.c_str(), O_RDONLY);
            dup2(fd, 0);
            close(fd);
        } else {
            dup2(inPipe[0], 0);
            close(inPipe[0]);
            close(inPipe[1]);
        }
        dup2(outPipe[1], 1);
        dup2(errPipe[1], 2);
        close(outPipe[0]); close(outPipe[1]); close(errPipe[0]); close(errPipe[1]);
        if (!options.cwd.empty() && chdir(options.cwd.c_str()) != 0) _exit(126);
        execve(program.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    close(outPipe[1]);
    close(errPipe[1]);
    int inFd = -1;
    if (!options.inputIsFile) {
        close(inPipe[0]);
        inFd = inPipe[1];
        setNonBlocking(inFd);
        signal(SIGPIPE, SIG_IGN);
    }
    setNonBlocking(outPipe[0]);
    setNonBlocking(errPipe[0]);

    Result result;
    size_t written = 0;
    if (inFd >= 0 && options.input.empty()) { close(inFd); inFd = -1; }
    int outFd = outPipe[0], errFd = errPipe[0];
    time_t deadline = time(nullptr) + options.timeoutSeconds;
    bool timedOut = false;
    char buf[65536];
    while (outFd >= 0 || errFd >= 0) {
        struct pollfd fds[3];
        int n = 0;
        int idxOut = -1, idxErr = -1, idxIn = -1;
        if (outFd >= 0) { fds[n] = {outFd, POLLIN, 0}; idxOut = n++; }
        if (errFd >= 0) { fds[n] = {errFd, POLLIN, 0}; idxErr = n++; }
        if (inFd >= 0) { fds[n] = {inFd, POLLOUT, 0}; idxIn = n++; }
        int r = poll(fds, n, 200);
        if (time(nullptr) > deadline) { timedOut = true; break; }
        if (r <= 0) continue;
        auto drain = [&](int idx, int& fd, std::string& into) {
            if (idx < 0 || !(fds[idx].revents & (POLLIN | POLLHUP | POLLERR))) return;
            ssize_t got = read(fd, buf, sizeof buf);
            if (got > 0) into.append(buf, got);
            else if (got == 0 || (errno != EAGAIN && errno != EINTR)) { close(fd); fd = -1; }
        };
        drain(idxOut, outFd, result.out);
        drain(idxErr, errFd, result.err);
        if (idxIn >= 0 && (fds[idxIn].revents & (POLLOUT | POLLERR | POLLHUP))) {
            ssize_t put = write(inFd, options.input.data() + written, options.input.size() - written);
            if (put > 0) written += put;
            if (put < 0 && errno != EAGAIN && errno != EINTR) written = options.input.size();
            if (written >= options.input.size()) { close(inFd); inFd = -1; }
        }
    }
    if (inFd >= 0) close(inFd);
    if (outFd >= 0) close(outFd);
    if (errFd >= 0) close(errFd);
    if (timedOut) kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    if (!inputFile.empty()) unlink(inputFile.c_str());
    if (timedOut) result.status = -1;
    else if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    else if (WIFSIGNALED(status)) result.status = 128 + WTERMSIG(status);
    return result;
}

Result skelvor(const std::vector<std::string>& args, const RunOptions& options) {
    return run(SKELVOR_BIN, args, options);
}

Result calc(const std::vector<std::string>& args, const RunOptions& options) {
    return run(SKELVOR_CALC_BIN, args, options);
}

TempDir::TempDir() {
    const char* base = getenv("TMPDIR");
    std::string templ = std::string(base && *base ? base : "/tmp") + "/skelvor-test-XXXXXX";
    std::vector<char> name(templ.begin(), templ.end());
    name.push_back(0);
    if (!mkdtemp(name.data())) throw std::runtime_error("mkdtemp failed");
    root = name.data();
}

TempDir::~TempDir() { removeTree(root); }

std::string TempDir::mkdir(const std::string& name) const {
    std::string full = path(name);
    std::string cmd = "mkdir -p '" + full + "'";
    if (std::system(cmd.c_str()) != 0) throw std::runtime_error("mkdir failed: " + full);
    return full;
}

std::string TempDir::write(const std::string& name, const std::string& data) const {
    std::string full = path(name);
    size_t slash = full.rfind('/');
    if (slash != std::string::npos && slash > root.size()) mkdir(full.substr(root.size() + 1, slash - root.size() - 1));
    std::ofstream f(full, std::ios::binary | std::ios::trunc);
    f.write(data.data(), data.size());
    if (!f) throw std::runtime_error("write failed: " + full);
    return full;
}

std::string TempDir::read(const std::string& name) const {
    std::ifstream f(path(name), std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

std::string bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s.push_back(static_cast<char>(v & 0xff));
    return s;
}

}  // namespace e2e
