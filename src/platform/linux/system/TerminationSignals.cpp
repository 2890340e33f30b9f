#include "platform/linux/system/TerminationSignals.h"

#include <csignal>
#include <sys/signalfd.h>

namespace korvalin {

TerminationSignals::TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    descriptor_ = Descriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (descriptor_) sigprocmask(SIG_BLOCK, &signals, nullptr);
}

int TerminationSignals::Take() const {
    signalfd_siginfo arrived = {};
    const ssize_t bytes = read(descriptor_.Get(), &arrived, sizeof arrived);
    return bytes == static_cast<ssize_t>(sizeof arrived) ? static_cast<int>(arrived.ssi_signo) : 0;
}

} // namespace korvalin
