#include "platform/linux/web/CurlHttp.h"

#include <chrono>

namespace korvalin {
namespace {

constexpr int pollMilliseconds = 1000;

/// Stands for a transfer that cannot even begin.
class NoStream : public HttpStream {
  public:
    std::optional<std::string> Read(std::size_t) override { return std::nullopt; }
    HttpHead Head() override { return {}; }
    HttpFailure Failure() override { return {CURLE_FAILED_INIT, "libcurl is not installed"}; }
};

/// Drives its transfer only while somebody waits for bytes, so no more than a piece is ever kept.
class CurlStream : public HttpStream {
  public:
    CurlStream(const CurlLibrary& library, const HttpRequest& request, const CurlRules& rules)
        : library_(library),
          multi_(library.MultiInit()),
          transfer_(library, request, rules),
          silence_(rules.SilenceSeconds) {
        library_.MultiAdd(multi_, transfer_.Handle());
    }
    ~CurlStream() override {
        library_.MultiRemove(multi_, transfer_.Handle());
        library_.MultiCleanUp(multi_);
    }
    CurlStream(const CurlStream&) = delete;
    CurlStream& operator=(const CurlStream&) = delete;

    std::optional<std::string> Read(std::size_t bytes) override {
        const auto giveUp = std::chrono::steady_clock::now() + silence_;
        while (transfer_.BytesWaiting() == 0 && !transfer_.Ended()) {
            if (std::chrono::steady_clock::now() > giveUp) {
                transfer_.End(CURLE_OPERATION_TIMEDOUT);
            } else {
                Drive();
            }
        }
        std::string part = transfer_.Take(bytes);
        if (part.empty() && transfer_.Failure().Code != 0) return std::nullopt;
        return part;
    }
    HttpHead Head() override { return transfer_.Head(); }
    HttpFailure Failure() override { return transfer_.Failure(); }

  private:
    void Drive() {
        int running = 0;
        library_.MultiPerform(multi_, &running);
        int left = 0;
        if (const CURLMsg* message = library_.MultiInfoRead(multi_, &left))
            return transfer_.End(message->data.result);
        if (transfer_.BytesWaiting() == 0) library_.MultiPoll(multi_, nullptr, 0, pollMilliseconds, nullptr);
    }

    const CurlLibrary& library_;
    CURLM* multi_;
    CurlTransfer transfer_;
    std::chrono::seconds silence_;
};

} // namespace

std::unique_ptr<HttpStream> CurlHttp::Open(const HttpRequest& request) {
    const CurlLibrary* library = CurlLibrary::Get();
    if (library == nullptr) return std::make_unique<NoStream>();
    return std::make_unique<CurlStream>(*library, request, rules_);
}

} // namespace korvalin
