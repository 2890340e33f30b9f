#pragma once

#include "platform/linux/files/Descriptor.h"

namespace korvalin {

/// The signals that ask a program to end (SIGTERM, SIGINT, SIGHUP), as a descriptor that becomes readable. To
/// be made before any thread is started: the signals are blocked for all of them.
class TerminationSignals {
  public:
    TerminationSignals();

    /// -1 when the system does not give one; the signals then end the program as usual.
    int Get() const { return descriptor_.Get(); }

    /// The number of a signal that arrived and was not taken yet; 0 when there is none.
    int Take() const;

  private:
    Descriptor descriptor_;
};

} // namespace korvalin
