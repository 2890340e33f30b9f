#pragma once

#include "platform/Internet.h"

#include <cstdint>
#include <string>

namespace korvalin {

class Clock;
class DialDialog;
class Events;
class NetworkManagerClient;
class NetworkManagerLines;

/// What dialing works with.
struct DialerParts {
    NetworkManagerClient& Client;
    NetworkManagerLines& Lines;
    korvalin::Clock& Clock;
};

/// Dials by activating profiles of NetworkManager: only the one that is asked for is ever started.
class NetworkManagerDialer {
  public:
    explicit NetworkManagerDialer(const DialerParts& parts) : parts_(parts) {}

    /// How windows are kept alive while a dial waits; there is no dialing without.
    void Plug(Events& events) { events_ = &events; }

    /// Where the progress is shown and the login asked for; null for nowhere and nobody.
    void PlugDialog(DialDialog* dialog) { dialog_ = dialog; }

    /// See Internet::Dial. A dial is given up after 90 seconds that the system was awake.
    [[nodiscard]] DialResult Dial(const std::string& entryName, std::uint32_t flags);

  private:
    [[nodiscard]] DialResult DialProfile(const std::string& entryName, std::uint32_t flags);

    DialerParts parts_;
    Events* events_ = nullptr;
    DialDialog* dialog_ = nullptr;
    bool dialing_ = false;
};

} // namespace korvalin
