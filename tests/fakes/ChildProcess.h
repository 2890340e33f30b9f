#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korvalin {

/// A forked copy of the test. Expectations that fail in it make Finish fail the test.
class ChildProcess {
  public:
    template <typename Body>
    explicit ChildProcess(Body&& body) {
        std::fflush(nullptr);
        process_ = fork();
        if (process_ != 0) return;
        body();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess() {
        if (process_ > 0) Kill();
    }

    void Kill() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }
    /// Waits for the end; an exit code other than 0 fails the test.
    void Finish() {
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = -1;
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child failed, status " << status;
    }

  private:
    pid_t process_ = -1;
};

/// Runs `body` where no file can grow beyond `bytes`, as on a full disk.
template <typename Body>
void WithFileLimit(rlim_t bytes, Body&& body) {
    ChildProcess([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        body();
    }).Finish();
}

/// A pipe between processes: one side writes a word, the other waits for it.
class Signal {
  public:
    Signal() { EXPECT_EQ(pipe(ends_), 0); }
    ~Signal() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void Send(int word = 1) const {
        EXPECT_EQ(write(ends_[1], &word, sizeof word), static_cast<ssize_t>(sizeof word));
    }
    int Await() const {
        int word = -1;
        EXPECT_EQ(read(ends_[0], &word, sizeof word), static_cast<ssize_t>(sizeof word));
        return word;
    }
    int ReadEnd() const { return ends_[0]; }
    void CloseWriteEnd() {
        close(ends_[1]);
        ends_[1] = -1;
    }

  private:
    int ends_[2] = {-1, -1};
};

/// Permissions do not bind root: until the end of the scope the test is somebody else.
class WithoutRoot {
  public:
    WithoutRoot() {
        if (wasRoot_ && seteuid(65534) != 0) ADD_FAILURE();
    }
    ~WithoutRoot() {
        if (wasRoot_ && seteuid(0) != 0) ADD_FAILURE();
    }
    WithoutRoot(const WithoutRoot&) = delete;
    WithoutRoot& operator=(const WithoutRoot&) = delete;

  private:
    bool wasRoot_ = geteuid() == 0;
};

} // namespace korvalin
