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
constexpr std::string_view missingText = "404 Not Found";
constexpr std::size_t missingTextWithin = 999; // further on it is something that a page tells about

bool IsSuccess(const HttpHead& head) {
    return head.StatusCode >= 200 && head.StatusCode < 300;
}

std::string StatusText(const HttpHead& head) {
    return head.StatusCode == missingStatus ? std::string(missingText)
                                            : fmt::format("{}:server error", head.StatusCode);
}

} // namespace

void WebFetch::UseControl(TransferControl* control) {
    if (control_ != nullptr) control_->Plug({[](int) {}, [] {}});
    control_ = control;
    if (control_ != nullptr)
        control_->Plug({[this](int state) { Control_StateChanged(state); }, [this] { Timer_Timer(); }});
}

// ---- what both transports share

void WebFetch::Reset(const std::string& url) {
    state_ = {};
    state_.Url = WithoutAccount(url);
    state_.StartTime = parts_.Clock.Now();
    cancelled_ = false;
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

void WebFetch::Save(const std::string& content, const std::filesystem::path& file) {
    if (content.empty()) {
        state_.Status = noData;
    } else if (!parts_.Files.Replace(file, content)) {
        state_.Status = "0:cannot be written: " + file.filename().string();
    }
}

void WebFetch::GiveUp(std::string status) {
    state_.Status = std::move(status);
    if (control_ != nullptr) control_->Unload();
}

void WebFetch::TimeOut() {
    parts_.Errors.WriteErrorLog("Inet timed out", "Inet");
    GiveUp("0:timed out");
}

void WebFetch::Cancel() {
    cancelled_ = true;
    GiveUp("0:cancelled");
}

// ---- the blocking loop

std::string WebFetch::GetURLSource(const std::string& url, const std::filesystem::path& filePath,
                                   bool report) {
    Reset(url);
    state_.ToFile = !filePath.empty();
    const HttpRequest request = RequestFor(url, state_.ToFile);
    const std::unique_ptr<HttpStream> stream = parts_.Http.Open(request);
    std::string page = ReadAll(*stream, request);
    const HttpHead head = stream->Head();
    const std::string_view beginning =
        std::string_view(page).substr(0, missingTextWithin + missingText.size() - 1);
    if (head.StatusCode == missingStatus || ContainsNoCase(beginning, missingText)) {
        state_.Status = "404";
        if (report) parts_.Errors.WriteErrorLog("URL not found " + state_.Url, "INET");
    } else if (state_.Status.empty() && !IsSuccess(head)) {
        state_.Status = StatusText(head);
    }
    if (state_.Status.empty() && state_.ToFile && !head.EndIsKnown) state_.Status = "0:of unknown length";
    if (!state_.Status.empty()) return {};
    if (state_.ToFile) Save(page, filePath);
    if (parts_.Settings.Get(Keys::Test)) hooks_.CopyToClipboard(page);
    return page;
}

std::string WebFetch::ReadAll(HttpStream& stream, const HttpRequest& request) {
    std::string result;
    while (const std::optional<std::string> part = stream.Read(readSize)) {
        if (part->empty()) return result;
        result += *part;
        Touch();
        if (IsTooLong(stream.Head(), result.size(), request.Limit)) {
            state_.Status = "0:too long";
            return result;
        }
        hooks_.Progress({readSize, result.size(), stream.Head().Length});
        parts_.Events.ProcessPending();
        if (cancelled_) return result;
    }
    const HttpFailure failure = stream.Failure();
    state_.Status = fmt::format("{}:{}", failure.Code, failure.Text);
    return result;
}

// ---- the transfer control

bool WebFetch::Inet_GetBgrd(const std::string& url, const std::filesystem::path& targetFile) {
    if (parts_.Settings.Get(Keys::NoInet)) return false;
    if (control_->StillExecuting()) return true;
    Reset(url);
    state_.ToFile = !targetFile.empty();
    state_.TargetFile =
        (state_.ToFile ? targetFile : parts_.DataFolder.GetDataPath() / "HtmReturn.htm").string();
    HttpRequest request = RequestFor(url, state_.ToFile);
    if (parts_.Settings.Get(Keys::FirewallUse)) {
        request.UserName = parts_.Settings.Get(Keys::FirewallUser);
        request.Password = parts_.Settings.GetRegPassword(Keys::FirewallPassword);
    }
    control_->Execute(request);
    return true;
}

void WebFetch::Control_StateChanged(int state) {
    Touch();
    state_.LastState = state;
    const HttpHead head = control_->Head();
    switch (state) {
    case TransferReceiving:
        if (IsTooLong(head, control_->BytesReceived(), longestFile)) return GiveUp("0:too long");
        return hooks_.Progress({chunkSize, control_->BytesReceived(), head.Length});
    case TransferError:
        return GiveUp(fmt::format("{}:{}", control_->ResponseCode(), control_->ResponseInfo()));
    case TransferCompleted:
        if (!IsSuccess(head)) {
            state_.Status = StatusText(head);
        } else if (state_.ToFile) {
            TakeFile();
        } else {
            TakePage();
        }
        state_.LastState = FetchFinished;
        return control_->Unload();
    default: return;
    }
}

void WebFetch::TakeFile() {
    if (!control_->Head().EndIsKnown) {
        state_.Status = "0:of unknown length";
        return;
    }
    std::string content;
    for (std::string chunk = control_->GetChunk(chunkSize); !chunk.empty();
         chunk = control_->GetChunk(chunkSize)) {
        if (content.empty() && ContainsNoCase(chunk, missingText)) {
            state_.Status = missingText;
            return;
        }
        content += chunk;
        Touch();
    }
    Save(content, state_.TargetFile);
}

void WebFetch::TakePage() {
    std::string page;
    for (std::string chunk = control_->GetChunk(chunkSize); !chunk.empty();
         chunk = control_->GetChunk(chunkSize)) {
        page += chunk;
        Touch();
    }
    if (page.empty()) state_.Status = noData;
    if (!ContainsNoCase(page, missingText)) state_.PageText = std::move(page);
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
    const std::string address = useAccount
                                    ? WithAccount(url, parts_.Settings.Get(Keys::FirewallUser),
                                                  parts_.Settings.GetRegPassword(Keys::FirewallPassword))
                                    : url;
    state_.PageText = GetURLSource(address, file, false);
    return state_.Status.empty() && !state_.PageText.empty();
}

bool WebFetch::AwaitControl() {
    const auto ended = [this] { return state_.LastState == FetchFinished || !state_.Status.empty(); };
    while (!ended()) {
        parts_.Events.Wait(waitMilliseconds);
        if (!ended() && IsInactiveFor(patienceSeconds)) TimeOut();
    }
    return state_.Status.empty();
}

} // namespace korvalin
