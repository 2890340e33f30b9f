#include "platform/qt/CurlTransferControl.h"

namespace korvalin {
namespace {

constexpr int timerMilliseconds = 1000;

} // namespace

CurlTransferControl::CurlTransferControl(CurlRules rules) : rules_(std::move(rules)) {
    wakeUp_.setSingleShot(true);
    connect(&wakeUp_, &QTimer::timeout, this, [this] { Act(CURL_SOCKET_TIMEOUT, 0); });
    connect(&timer_, &QTimer::timeout, this, [this] { hooks_.Timer(); });
}

CurlTransferControl::~CurlTransferControl() {
    Unload();
}

void CurlTransferControl::Execute(const HttpRequest& request) {
    Unload();
    watches_.clear();
    failure_ = {};
    library_ = CurlLibrary::Get();
    if (library_ == nullptr) return Fail({CURLE_FAILED_INIT, "libcurl is not installed"});
    transfer_ = std::make_unique<CurlTransfer>(*library_, request, rules_);
    if (transfer_->Ended()) return Fail(transfer_->Failure());
    multi_ = library_->MultiInit();
    library_->MultiSetOption(multi_, CURLMOPT_SOCKETFUNCTION, &OnSocket);
    library_->MultiSetOption(multi_, CURLMOPT_SOCKETDATA, static_cast<void*>(this));
    library_->MultiSetOption(multi_, CURLMOPT_TIMERFUNCTION, &OnTimer);
    library_->MultiSetOption(multi_, CURLMOPT_TIMERDATA, static_cast<void*>(this));
    timer_.start(timerMilliseconds);
    library_->MultiAdd(multi_, transfer_->Handle());
}

// Reported later, as every state is.
void CurlTransferControl::Fail(HttpFailure failure) {
    failure_ = std::move(failure);
    QTimer::singleShot(0, this, [this] {
        if (failure_.Code != 0) hooks_.StateChanged(TransferState::Error);
    });
}

void CurlTransferControl::Unload() {
    timer_.stop();
    wakeUp_.stop();
    if (multi_ != nullptr) {
        library_->MultiRemove(multi_, transfer_->Handle());
        library_->MultiCleanUp(multi_);
        multi_ = nullptr;
    }
    transfer_.reset();
}

std::string CurlTransferControl::GetChunk(std::size_t bytes) {
    return transfer_ ? transfer_->Take(bytes) : std::string();
}

int CurlTransferControl::OnSocket(CURL*, curl_socket_t socket, int what, void* control, void*) {
    static_cast<CurlTransferControl*>(control)->WatchSocket(socket, what);
    return 0;
}

int CurlTransferControl::OnTimer(CURLM*, long milliseconds, void* control) {
    QTimer& wakeUp = static_cast<CurlTransferControl*>(control)->wakeUp_;
    if (milliseconds < 0) {
        wakeUp.stop();
    } else {
        wakeUp.start(static_cast<int>(milliseconds));
    }
    return 0;
}

// libcurl calls this also while a notifier is telling, so none is deleted before the next transfer; a new
// socket may have the number of one that was closed.
void CurlTransferControl::WatchSocket(curl_socket_t socket, int what) {
    std::unique_ptr<Watch>& watch = watches_[socket];
    if (!watch) {
        watch = std::make_unique<Watch>(socket);
        connect(&watch->Reading, &QSocketNotifier::activated, this,
                [this, socket] { Act(socket, CURL_CSELECT_IN); });
        connect(&watch->Writing, &QSocketNotifier::activated, this,
                [this, socket] { Act(socket, CURL_CSELECT_OUT); });
    }
    watch->Reading.setEnabled(what == CURL_POLL_IN || what == CURL_POLL_INOUT);
    watch->Writing.setEnabled(what == CURL_POLL_OUT || what == CURL_POLL_INOUT);
}

void CurlTransferControl::Act(curl_socket_t socket, int what) {
    if (!StillExecuting()) return;
    const std::uint64_t before = transfer_->BytesReceived();
    int running = 0;
    library_->MultiSocketAction(multi_, socket, what, &running);
    int left = 0;
    if (const CURLMsg* message = library_->MultiInfoRead(multi_, &left)) transfer_->End(message->data.result);
    if (transfer_->BytesReceived() != before) hooks_.StateChanged(TransferState::Receiving);
    if (!transfer_ || !transfer_->Ended()) return;
    timer_.stop();
    failure_ = transfer_->Failure();
    hooks_.StateChanged(failure_.Code == 0 ? TransferState::Completed : TransferState::Error);
}

} // namespace korvalin
