#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace korvalin {

/// How a page or file is asked for, always with GET and never from a cache.
struct HttpRequest {
    /// https, or http to this machine; may hold an account, percent-encoded. It is for the proxy that asks
    /// for one, never for the site, as are UserName and Password.
    std::string Address;
    std::string UserAgent;
    /// An account beside the address; both empty for none.
    std::string UserName, Password;
    /// A longer answer is cut off after so many bytes.
    std::uint64_t Limit = 0;
};

/// The beginning of an answer.
struct HttpHead {
    int StatusCode = 0; ///< 0 while there is no answer
    /// Bytes of the file as announced, encoded as they travel; nullopt when nothing was announced.
    std::optional<std::uint64_t> Length;
    /// The answer tells where it ends, so that a broken one is noticed.
    bool EndIsKnown = false;
};

/// Why a transfer broke off; code 0 when it did not.
struct HttpFailure {
    int Code = 0;
    std::string Text; ///< never holds the address
};

/// One answer, read as it comes in. Closed by its destructor.
class HttpStream {
  public:
    virtual ~HttpStream() = default;

    /// Waits for the answer's next bytes, at most so many; none at the end, nullopt when the transfer broke
    /// off.
    [[nodiscard]] virtual std::optional<std::string> Read(std::size_t bytes) = 0;

    virtual HttpHead Head() = 0;
    virtual HttpFailure Failure() = 0;
};

/// Files of web servers. Certificates are verified, a redirect never leaves https, and what is not encrypted
/// never leaves this machine. Silence ends a transfer after a while.
class Http {
  public:
    virtual ~Http() = default;

    /// Begins a transfer; what is wrong with the request shows when it is read.
    [[nodiscard]] virtual std::unique_ptr<HttpStream> Open(const HttpRequest& request) = 0;
};

} // namespace korvalin
