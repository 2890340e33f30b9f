#include "inet/WebFetch.h"

#include "base/Text.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "inet/WebAddress.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/TransferControl.h"
#include "settings/Settings.h"

#include <fmt/format.h>

namespace korvalin {
namespace {

constexpr std::size_t readSize = 2048;
constexpr std::size_t chunkSize = 1024;
constexpr std::uint64_t longestPage = 4UL * 1024 * 1024;
constexpr std::uint64_t longestFile = 256UL * 1024 * 1024;
constexpr int waitMilliseconds = 50;
constexpr double patienceSeconds = 60;
constexpr double timeOutSeconds = 120;
constexpr int missingStatus = 404;
constexpr const char* noData = "NoData";
constexpr std::size_t missingTextWithin = 999; // further on it is something that a page tells about

// A part of a file, which nobody has asked for, is none.
bool IsSuccess(const HttpHead& head) {
    constexpr int partOnly = 206;
    return head.StatusCode >= 200 && head.StatusCode < 300 && head.StatusCode != partOnly;
}

std::string StatusText(const HttpHead& head) {
    return head.StatusCode == missingStatus ? std::string(MissingText)
                                            : fmt::format("{}:server error", head.StatusCode);
}

} // namespace

void WebFetch::UseControl(TransferControl* control) {
    if (control_ != nullptr) control_->Plug({[](TransferState) {}, [] {}});
    control_ = control;
    if (control_ != nullptr)
        control_->Plug(
            {[this](TransferState state) { Control_StateChanged(state); }, [this] { Timer_Timer(); }});
}

// ---- what both transports share

void WebFetch::Reset(const std::string& url) {
    state_ = {};
    state_.Url = WithoutAccount(parts_.AddressReader, url);
    state_.StartTime = parts_.Clock.Now();
    file_.reset();
    Touch();
}

void WebFetch::Touch() {
    state_.LastActivity = parts_.Clock.AwakeSeconds();
}

bool WebFetch::IsInactiveFor(double seconds) {
    return parts_.Clock.AwakeSeconds() - state_.LastActivity > seconds;
}

HttpRequest WebFetch::RequestFor(const std::string& url, bool toFile) {
    HttpRequest request;
    request.Address = url;
    request.UserAgent = UserAgent();
    request.Limit = toFile ? longestFile : longestPage;
    return request;
}

std::string WebFetch::UserAgent() {
    const std::string numbers =
        fmt::format("{}{}{}", parts_.Version.Major, parts_.Version.Minor, parts_.Version.Revision);
    if (parts_.Settings.Get(Keys::Test)) return "Korvalin-Test V" + numbers;
    return "Korvalin-V" + numbers + "; " + parts_.Language.LanguageCode();
}

// A file is only of use when it is whole; of a page the beginning will do.
bool WebFetch::IsTooLong(const HttpHead& head, std::uint64_t received, std::uint64_t limit) const {
    return state_.ToFile && (head.Length.value_or(0) > limit || received >= limit);
}

void WebFetch::Expect(const std::filesystem::path& file, std::size_t lookedAt) {
    state_.TargetFile = file.string();
    state_.ToFile = true;
    file_ = std::make_unique<IncomingFile>(parts_.Files, file, lookedAt);
}

void WebFetch::Fail(FetchFailure failure, std::string status) {
    state_.Failure = failure;
    state_.Status = std::move(status);
    file_.reset();
}

void WebFetch::Note(IncomingFile::Result result) {
    switch (result) {
    case IncomingFile::Result::Good: return;
    case IncomingFile::Result::Empty: return Fail(FetchFailure::NoAnswer, noData);
    case IncomingFile::Result::Missing: return Fail(FetchFailure::Missing, std::string(MissingText));
    case IncomingFile::Result::NotSaved:
        const std::string name = std::filesystem::path(state_.TargetFile).filename().string();
        return Fail(FetchFailure::NotSaved, "0:cannot be written: " + name);
    }
}

void WebFetch::FinishFile(const HttpHead& head) {
    if (!head.EndIsKnown) return Fail(FetchFailure::NoAnswer, "0:of unknown length");
    Note(file_->Finish());
    file_.reset();
}

void WebFetch::GiveUp(FetchFailure failure, std::string status) {
    Fail(failure, std::move(status));
    if (control_ != nullptr) control_->Unload();
}

void WebFetch::TimeOut() {
    parts_.Errors.WriteErrorLog("Inet timed out", "Inet");
    GiveUp(FetchFailure::NoAnswer, "0:timed out");
}

void WebFetch::Cancel() {
    GiveUp(FetchFailure::NoAnswer, "0:cancelled");
}

// ---- the blocking loop

std::string WebFetch::GetURLSource(const std::string& url, const std::filesystem::path& filePath,
                                   bool report) {
    constexpr std::size_t lookedAt = missingTextWithin + MissingText.size() - 1;
    Reset(url);
    if (!filePath.empty()) Expect(filePath, lookedAt);
    const HttpRequest request = RequestFor(url, state_.ToFile);
    const std::unique_ptr<HttpStream> stream = parts_.Http.Open(request);
    std::string page = ReadAll(*stream, request);
    const HttpHead head = stream->Head();
    if (state_.Status.empty() && IsSuccess(head) && state_.ToFile) FinishFile(head);
    if (head.StatusCode == missingStatus || state_.Failure == FetchFailure::Missing ||
        ContainsNoCase(std::string_view(page).substr(0, lookedAt), MissingText)) {
        Fail(FetchFailure::Missing, "404");
        if (report) parts_.Errors.WriteErrorLog("URL not found " + state_.Url, "INET");
    } else if (state_.Status.empty() && !IsSuccess(head)) {
        Fail(FetchFailure::NoAnswer, StatusText(head));
    }
    if (!state_.Status.empty()) return {};
    if (parts_.Settings.Get(Keys::Test)) hooks_.CopyToClipboard(page);
    return page;
}

// The page; a file goes to the disk as it comes.
std::string WebFetch::ReadAll(HttpStream& stream, const HttpRequest& request) {
    std::string page;
    std::uint64_t received = 0;
    while (const std::optional<std::string> part = stream.Read(readSize)) {
        if (part->empty()) return page;
        received += part->size();
        Touch();
        if (IsTooLong(stream.Head(), received, request.Limit)) {
            Fail(FetchFailure::TooLong, "0:too long");
            return {};
        }
        if (!file_) {
            page += *part;
        } else if (IsSuccess(stream.Head())) {
            Note(file_->Take(*part));
        }
        hooks_.Progress({readSize, received, stream.Head().Length});
        parts_.Events.ProcessPending();
        if (!state_.Status.empty()) return {};
    }
    const HttpFailure failure = stream.Failure();
    Fail(FetchFailure::NoAnswer, fmt::format("{}:{}", failure.Code, failure.Text));
    return page;
}

// ---- the transfer control

bool WebFetch::Inet_GetBgrd(const std::string& url, const std::filesystem::path& targetFile) {
    if (parts_.Settings.Get(Keys::NoInet)) return false;
    if (control_->StillExecuting()) return true;
    Reset(url);
    state_.TargetFile = (parts_.DataFolder.GetDataPath() / "HtmReturn.htm").string();
    if (!targetFile.empty()) Expect(targetFile, chunkSize);
    HttpRequest request = RequestFor(url, state_.ToFile);
    if (parts_.Settings.Get(Keys::FirewallUse)) {
        request.UserName = parts_.Settings.Get(Keys::FirewallUser);
        request.Password = parts_.Settings.GetRegPassword(Keys::FirewallPassword);
    }
    control_->Execute(request);
    return true;
}

void WebFetch::Control_StateChanged(TransferState state) {
    Touch();
    state_.LastState = state;
    switch (state) {
    case TransferState::Receiving: return TakePart();
    case TransferState::Error:
        return GiveUp(FetchFailure::NoAnswer,
                      fmt::format("{}:{}", control_->ResponseCode(), control_->ResponseInfo()));
    case TransferState::Completed:
        TakeEnd();
        state_.LastState = TransferState::Finished;
        return control_->Unload();
    default: return;
    }
}

void WebFetch::TakePart() {
    const HttpHead head = control_->Head();
    if (IsTooLong(head, control_->BytesReceived(), longestFile))
        return GiveUp(FetchFailure::TooLong, "0:too long");
    if (file_ && IsSuccess(head)) TakeChunks();
    if (!state_.Status.empty()) return control_->Unload();
    hooks_.Progress({chunkSize, control_->BytesReceived(), head.Length});
}

void WebFetch::TakeEnd() {
    const HttpHead head = control_->Head();
    if (!IsSuccess(head)) {
        const bool missing = head.StatusCode == missingStatus;
        Fail(missing ? FetchFailure::Missing : FetchFailure::NoAnswer, StatusText(head));
        return;
    }
    TakeChunks();
    if (state_.ToFile && state_.Status.empty()) return FinishFile(head);
    if (state_.ToFile) return;
    if (state_.PageText.empty()) Fail(FetchFailure::NoAnswer, noData);
    if (!ContainsNoCase(state_.PageText, MissingText)) return;
    state_.PageText.clear();
    Fail(FetchFailure::Missing, std::string(MissingText));
}

void WebFetch::TakeChunks() {
    for (std::string chunk = control_->GetChunk(chunkSize); !chunk.empty() && state_.Status.empty();
         chunk = control_->GetChunk(chunkSize)) {
        if (file_) {
            Note(file_->Take(chunk));
        } else {
            state_.PageText += chunk;
        }
    }
}

void WebFetch::Timer_Timer() {
    if (IsInactiveFor(timeOutSeconds)) TimeOut();
}

// ---- the common entry points

std::string WebFetch::HtmLoadPage(const std::string& url) {
    return Fetch(url, {}) ? state_.PageText : std::string();
}

bool WebFetch::HtmDownloadFile(const std::string& url, const std::filesystem::path& folder,
                               std::string fileName) {
    if (fileName.empty()) {
        const std::size_t backslash = url.rfind('\\');
        if (backslash == std::string::npos) return false;
        fileName = url.substr(backslash + 1);
    }
    return IsPlainFileName(fileName) && Fetch(url, folder / fileName);
}

bool WebFetch::Fetch(const std::string& url, const std::filesystem::path& file) {
    if (control_ != nullptr) return !control_->StillExecuting() && Inet_GetBgrd(url, file) && AwaitControl();
    const bool useAccount = parts_.Settings.Get(Keys::FirewallUse);
    const std::string address =
        useAccount ? WithAccount(parts_.AddressReader, url, parts_.Settings.Get(Keys::FirewallUser),
                                 parts_.Settings.GetRegPassword(Keys::FirewallPassword))
                   : url;
    state_.PageText = GetURLSource(address, file, false);
    return state_.Status.empty() && (state_.ToFile || !state_.PageText.empty());
}

bool WebFetch::AwaitControl() {
    const auto ended = [this] {
        return state_.LastState == TransferState::Finished || !state_.Status.empty();
    };
    while (!ended()) {
        parts_.Events.Wait(waitMilliseconds);
        if (!ended() && IsInactiveFor(patienceSeconds)) TimeOut();
    }
    return state_.Status.empty();
}

} // namespace korvalin
