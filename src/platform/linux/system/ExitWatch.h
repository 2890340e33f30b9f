#pragma once

#include <functional>

namespace korvalin {

/// Runs a last task when something else ends the process by exit(), as libraries do whose server is gone. At
/// the end of its scope, which is the normal end, the task is dropped.
class ExitWatch {
  public:
    explicit ExitWatch(std::function<void()> task);
    ~ExitWatch();
    ExitWatch(const ExitWatch&) = delete;
    ExitWatch& operator=(const ExitWatch&) = delete;

  private:
    std::function<void()>* task_; // the exit handler's, which cannot be taken back
};

} // namespace korvalin
