#pragma once

#include "platform/Http.h"
#include "platform/linux/web/CurlLibrary.h"

namespace korvalin {

/// What the transfers of this system keep to.
struct CurlRules {
    long ConnectSeconds = 30;
    /// A transfer that somebody waits for ends when for so long nothing comes in.
    long SilenceSeconds = 60;
    /// Every transfer ends when for so long less than 100 bytes a second come in.
    long SlowSeconds = 120;
    /// The certificates that are trusted, as one file; empty for the system's own.
    std::string TrustedCertificates = {};
};

/// One request and what came in so far; whoever drives it adds its handle to a multi handle.
class CurlTransfer {
  public:
    CurlTransfer(const CurlLibrary& library, const HttpRequest& request, const CurlRules& rules);
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    CURL* Handle() const { return handle_; }

    /// Notes how the transfer has ended.
    void End(CURLcode result);
    bool Ended() const { return ended_; }

    HttpHead Head() const;
    HttpFailure Failure() const;
    std::uint64_t BytesReceived() const { return received_; }

    std::size_t BytesWaiting() const { return body_.size() - taken_; }
    /// Takes the next bytes of the answer, at most so many.
    std::string Take(std::size_t bytes);

  private:
    static std::size_t OnBody(const char* data, std::size_t size, std::size_t count, void* transfer);
    static std::size_t OnHeader(const char* data, std::size_t size, std::size_t count, void* transfer);
    static curl_socket_t OpenLocalSocket(void* transfer, curlsocktype purpose, curl_sockaddr* address);
    std::size_t Append(std::string_view data);
    std::size_t NoteHeader(std::string_view line);
    void SetUp(const HttpRequest& request, const CurlRules& rules);
    void SetProxyAccount(const std::string& userName, const std::string& password);
    void KeepToThisMachine();
    template <typename Value>
    void Set(CURLoption option, Value value);

    const CurlLibrary& library_;
    CURL* handle_;
    std::uint64_t limit_;
    std::string body_;
    std::size_t taken_ = 0;
    std::uint64_t received_ = 0;
    std::size_t headerBytes_ = 0;
    bool chunked_ = false;
    bool cutOff_ = false;
    bool ended_ = false;
    CURLcode result_ = CURLE_OK;
};

} // namespace korvalin
