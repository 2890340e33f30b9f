#pragma once

#include "platform/Http.h"

#include <functional>

namespace korvalin {

/// States that a transfer control reports, as the Internet Transfer control numbers them.
inline constexpr int TransferReceiving = 7;
inline constexpr int TransferError = 11;
inline constexpr int TransferCompleted = 12;

/// Fetches one file at a time beside everything else, under the same rules as Http. Everything is reported
/// from the event loop.
class TransferControl {
  public:
    struct Hooks {
        std::function<void(int state)> StateChanged;
        /// Every second while a transfer runs.
        std::function<void()> Timer;
    };
    virtual ~TransferControl() = default;

    virtual void Plug(Hooks hooks) = 0;

    /// Begins a transfer and returns at once; what is wrong with the request is reported as an error.
    virtual void Execute(const HttpRequest& request) = 0;
    [[nodiscard]] virtual bool StillExecuting() = 0;

    /// The next bytes of the answer that have come in, at most so many; empty when all are taken.
    [[nodiscard]] virtual std::string GetChunk(std::size_t bytes) = 0;
    [[nodiscard]] virtual std::uint64_t BytesReceived() = 0;
    virtual HttpHead Head() = 0;

    // Of the transfer that was reported as an error.
    [[nodiscard]] virtual int ResponseCode() = 0;
    [[nodiscard]] virtual std::string ResponseInfo() = 0;

    /// Ends a running transfer without a report and drops what was received.
    virtual void Unload() = 0;
};

} // namespace korvalin
