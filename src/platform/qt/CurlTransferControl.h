#pragma once

#include "platform/TransferControl.h"
#include "platform/linux/web/CurlTransfer.h"

#include <QSocketNotifier>
#include <QTimer>

#include <map>

namespace korvalin {

/// A transfer that libcurl and the toolkit's event loop carry out together: libcurl names the sockets and the
/// moment to be woken for, the loop watches them.
class CurlTransferControl : public QObject, public TransferControl {
    Q_OBJECT

  public:
    explicit CurlTransferControl(CurlRules rules = {});
    ~CurlTransferControl() override;

    void Plug(Hooks hooks) override { hooks_ = std::move(hooks); }
    void Execute(const HttpRequest& request) override;
    bool StillExecuting() override { return multi_ != nullptr && !transfer_->Ended(); }
    std::string GetChunk(std::size_t bytes) override;
    std::uint64_t BytesReceived() override { return transfer_ ? transfer_->BytesReceived() : 0; }
    HttpHead Head() override { return transfer_ ? transfer_->Head() : HttpHead(); }
    int ResponseCode() override { return failure_.Code; }
    std::string ResponseInfo() override { return failure_.Text; }
    void Unload() override;

  private:
    /// Who is told when something can be read or written at a socket.
    struct Watch {
        explicit Watch(curl_socket_t socket)
            : Reading(socket, QSocketNotifier::Read), Writing(socket, QSocketNotifier::Write) {}
        QSocketNotifier Reading, Writing;
    };

    static int OnSocket(CURL* handle, curl_socket_t socket, int what, void* control, void* unused);
    static int OnTimer(CURLM* multi, long milliseconds, void* control);
    void WatchSocket(curl_socket_t socket, int what);
    void Act(curl_socket_t socket, int what);
    void Fail(HttpFailure failure);

    CurlRules rules_;
    Hooks hooks_;
    const CurlLibrary* library_ = nullptr;
    CURLM* multi_ = nullptr;
    std::unique_ptr<CurlTransfer> transfer_;
    HttpFailure failure_;
    std::map<curl_socket_t, std::unique_ptr<Watch>> watches_;
    QTimer wakeUp_; ///< when libcurl wants to be called although nothing happened
    QTimer timer_;
};

} // namespace korvalin
