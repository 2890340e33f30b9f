#include "platform/linux/system/DetachedProgram.h"

#include "platform/linux/files/Descriptor.h"

#include <linux/close_range.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>

namespace korvalin {
namespace {

// Runs between fork and exec: only calls that are safe there, nothing that allocates or locks.
[[noreturn]] void Become(char* const* arguments, int report) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL); // an ignored signal would stay ignored in the new program
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    // A path is executed as it is: execvp would hand a file that is no program to the shell as a script.
    if (strchr(arguments[0], '/') != nullptr) {
        execv(arguments[0], arguments);
    } else {
        execvp(arguments[0], arguments);
    }
    const char failed = 1;
    static_cast<void>(!write(report, &failed, 1));
    _exit(127);
}

// Whether the other end was closed, by a successful exec, without a word.
bool ClosedSilently(int report) {
    char failed = 0;
    ssize_t count = 0;
    do {
        count = read(report, &failed, 1);
    } while (count < 0 && errno == EINTR);
    return count == 0;
}

void AwaitEnd(pid_t child) {
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

bool StartDetached(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    const Descriptor report(ends[0]);
    Descriptor reporter(ends[1]);
    const pid_t child = fork();
    if (child < 0) return false;
    if (child == 0) {
        // The child ends at once, so that its own child falls to init and leaves no zombie here.
        setsid();
        const pid_t grandchild = fork();
        if (grandchild == 0) Become(arguments.data(), ends[1]);
        const char failed = 1;
        if (grandchild < 0) static_cast<void>(!write(ends[1], &failed, 1));
        _exit(0);
    }
    reporter = Descriptor();
    AwaitEnd(child);
    return ClosedSilently(report.Get());
}

} // namespace korvalin
