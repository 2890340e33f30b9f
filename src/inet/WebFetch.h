#pragma once

#include "base/ProgramVersion.h"
#include "inet/FetchState.h"
#include "inet/IncomingFile.h"
#include "platform/Http.h"

#include <filesystem>
#include <functional>
#include <string>

namespace korvalin {

class AddressReader;
class Clock;
class DataFolder;
class Errors;
class Events;
class Files;
class Language;
class Settings;
class TransferControl;

/// Fetches one page or file at a time: by a blocking loop, or beside everything else once there is a transfer
/// control. Windows stay alive while a fetch is waited for.
class WebFetch {
  public:
    struct Parts {
        korvalin::Http& Http;
        korvalin::Settings& Settings;
        korvalin::Errors& Errors;
        korvalin::Files& Files;
        korvalin::Events& Events;
        korvalin::Clock& Clock;
        korvalin::Language& Language;
        korvalin::DataFolder& DataFolder;
        korvalin::AddressReader& AddressReader;
        ProgramVersion Version;
    };
    struct Hooks {
        std::function<void(const FetchProgress& progress)> Progress = [](const FetchProgress&) {};
        std::function<void(const std::string& text)> CopyToClipboard = [](const std::string&) {};
    };

    explicit WebFetch(const Parts& parts) : parts_(parts) {}

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// From now on transfers run beside everything else; nullptr goes back to the blocking loop.
    void UseControl(TransferControl* control);

    /// The page, read by the blocking loop; empty when it could not be read whole. With a path the whole
    /// download goes there instead, as it comes. `report` has a missing page noted in the error log.
    std::string GetURLSource(const std::string& url, const std::filesystem::path& filePath, bool report);

    /// Starts a transfer with the control; the result arrives in State. True when one was started or is
    /// running, false when NoInet forbids it. An empty target stands for a page.
    bool Inet_GetBgrd(const std::string& url, const std::filesystem::path& targetFile);

    /// The page; empty on failure. A page is cut off at 4 MB.
    std::string HtmLoadPage(const std::string& url);

    /// Saves a page or file; false when it did not arrive whole, as then nothing is saved. An empty name is
    /// replaced by the part of the address behind its last "\".
    bool HtmDownloadFile(const std::string& url, const std::filesystem::path& folder, std::string fileName);

    /// Gives up what is being fetched; who waits for it sees a failure.
    void Cancel();

    const FetchState& State() const { return state_; }

  private:
    void Reset(const std::string& url);
    HttpRequest RequestFor(const std::string& url, bool toFile);
    std::string UserAgent();
    std::string ReadAll(HttpStream& stream, const HttpRequest& request);
    bool IsTooLong(const HttpHead& head, std::uint64_t received, std::uint64_t limit) const;
    void Touch();
    bool IsInactiveFor(double seconds);
    void Expect(const std::filesystem::path& file, std::size_t lookedAt);
    void Note(IncomingFile::Result result);
    void FinishFile(const HttpHead& head);
    void Fail(FetchFailure failure, std::string status);
    void GiveUp(FetchFailure failure, std::string status);
    void TimeOut();
    bool Fetch(const std::string& url, const std::filesystem::path& file);
    bool AwaitControl();
    void Control_StateChanged(TransferState state);
    void TakePart();
    void TakeEnd();
    void TakeChunks();
    void Timer_Timer();

    Parts parts_;
    Hooks hooks_;
    TransferControl* control_ = nullptr;
    FetchState state_;
    std::unique_ptr<IncomingFile> file_;
};

} // namespace korvalin
