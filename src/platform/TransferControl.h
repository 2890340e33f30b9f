#pragma once

#include "platform/Http.h"

#include <functional>

namespace korvalin {

/// How a transfer stands, as the Internet Transfer control numbers it; Finished is never reported:
/// all of the answer has been taken.
enum class TransferState { None = 0, Receiving = 7, Error = 11, Completed = 12, Finished = 20 };

/// Fetches one file at a time beside everything else, under the same rules as Http. Everything is reported
/// from the event loop.
class TransferControl {
  public:
    struct Hooks {
        std::function<void(TransferState state)> StateChanged;
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
