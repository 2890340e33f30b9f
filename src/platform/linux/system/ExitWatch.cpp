#include "platform/linux/system/ExitWatch.h"

#include <cstdlib>
#include <memory>

namespace korvalin {
namespace {

void RunTask(int, void* argument) {
    const std::unique_ptr<std::function<void()>> task(static_cast<std::function<void()>*>(argument));
    if (*task) (*task)();
}

} // namespace

ExitWatch::ExitWatch(std::function<void()> task) {
    auto owned = std::make_unique<std::function<void()>>(std::move(task));
    // Unlike atexit this takes an argument, so no global is needed.
    task_ = on_exit(RunTask, owned.get()) == 0 ? owned.release() : nullptr;
}

ExitWatch::~ExitWatch() {
    if (task_ != nullptr) *task_ = nullptr;
}

} // namespace korvalin
