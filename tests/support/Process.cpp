#include "support/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

extern char** environ;

namespace testsupport {

Result run(const std::string& program, const std::vector<std::string>& args, const RunOptions& options) {
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e)
        if (std::string(*e).rfind("VEXA_", 0) != 0) env.push_back(*e);
    for (const auto& kv : options.env) env.push_back(kv.first + "=" + kv.second);
    std::vector<char*> argv{const_cast<char*>(program.c_str())}, envp;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    for (auto& e : env) envp.push_back(const_cast<char*>(e.c_str()));
    argv.push_back(nullptr);
    envp.push_back(nullptr);

    int outPipe[2], errPipe[2], inPipe[2];
    if (pipe(outPipe) || pipe(errPipe) || pipe(inPipe)) throw std::runtime_error("pipe failed");
    pid_t pid = fork();
    if (pid < 0) throw std::runtime_error("fork failed");
    if (pid == 0) {
        int in = options.inputFile.empty() ? inPipe[0] : open(options.inputFile.c_str(), O_RDONLY);
        if (in < 0) _exit(125);
        dup2(in, 0);
        dup2(outPipe[1], 1);
        dup2(errPipe[1], 2);
        for (int fd : {outPipe[0], outPipe[1], errPipe[0], errPipe[1], inPipe[0], inPipe[1], in}) close(fd);
        if (!options.cwd.empty() && chdir(options.cwd.c_str()) != 0) _exit(126);
        execve(program.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    for (int fd : {outPipe[1], errPipe[1], inPipe[0]}) close(fd);
    signal(SIGPIPE, SIG_IGN);
    // fds: standard output, standard error, standard input; -1 once closed
    int fds[3] = {outPipe[0], errPipe[0], inPipe[1]};
    for (int fd : fds) fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    const std::string& input = options.inputFile.empty() ? options.input : std::string();
    if (input.empty()) close(fds[2]), fds[2] = -1;

    Result result;
    std::string* into[2] = {&result.out, &result.err};
    size_t written = 0;
    time_t deadline = time(nullptr) + options.timeoutSeconds;
    bool timedOut = false;
    char buf[65536];
    while (fds[0] >= 0 || fds[1] >= 0) {
        pollfd polled[3];
        for (int i = 0; i < 3; ++i) polled[i] = {fds[i], static_cast<short>(i < 2 ? POLLIN : POLLOUT), 0};
        int r = poll(polled, 3, 200);
        if ((timedOut = time(nullptr) > deadline)) break;
        if (r <= 0) continue;
        for (int i = 0; i < 2; ++i) {
            if (fds[i] < 0 || !(polled[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            ssize_t got = read(fds[i], buf, sizeof buf);
            if (got > 0) into[i]->append(buf, got);
            else if (got == 0 || (errno != EAGAIN && errno != EINTR)) close(fds[i]), fds[i] = -1;
        }
        if (fds[2] >= 0 && (polled[2].revents & (POLLOUT | POLLERR | POLLHUP))) {
            ssize_t put = write(fds[2], input.data() + written, input.size() - written);
            if (put > 0) written += put;
            if ((put < 0 && errno != EAGAIN && errno != EINTR) || written >= input.size()) close(fds[2]), fds[2] = -1;
        }
    }
    for (int fd : fds)
        if (fd >= 0) close(fd);
    if (timedOut) kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    if (timedOut) result.status = -1;
    else if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    else if (WIFSIGNALED(status)) result.status = 128 + WTERMSIG(status);
    return result;
}

std::string programPath(const std::string& name) {
    if (name == "skelvor") return SKELVOR_BIN;
    if (name == "skelvor-calc") return SKELVOR_CALC_BIN;
    throw std::runtime_error("no such program: " + name);
}

}  // namespace testsupport
