#include "errors/Errors.h"

#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "errors/FileFailures.h"

#include <fmt/format.h>

#include <system_error>

namespace korvalin {
namespace {

constexpr std::uintmax_t logLimitBytes = 1'000'000;
constexpr std::size_t longestMessage = 4000; // bytes; a line has its date, group and end besides
constexpr std::size_t longestGroup = 50;
constexpr Date quietSpan = 2 * OneSecond;

// "text@@internal@more" as some system calls report it: the part for people, without the marks.
std::string CleanErrorText(std::string_view text) {
    return ReplaceAll(text.substr(0, text.find("@@")), "@", " ");
}

// At most so many bytes, ending between two characters.
std::string_view Shortened(std::string_view text, std::size_t most) {
    constexpr unsigned continuationBits = 0xC0;
    constexpr unsigned continuation = 0x80;
    if (text.size() <= most) return text;
    while (most > 0 && (static_cast<unsigned char>(text[most]) & continuationBits) == continuation)
        --most;
    return text.substr(0, most);
}

} // namespace

int ErrorNumber(const std::exception& error) {
    if (const auto* numbered = dynamic_cast<const NumberedError*>(&error)) return numbered->Number();
    if (const auto* system = dynamic_cast<const std::system_error*>(&error)) return system->code().value();
    return 0;
}

Errors::Errors(Clock& clock, Files& files, MessageBoxes& messageBoxes, const Locale& locale,
               std::string executableName)
    : clock_(clock),
      files_(files),
      messageBoxes_(messageBoxes),
      locale_(locale),
      executableName_(std::move(executableName)) {
    hooks_.Text = [](int) { return std::string(); };
    hooks_.DataFolder = [] { return std::filesystem::path(); };
    hooks_.EndProgram = [] {};
}

void Errors::DisplayError(std::string_view procName, int errNumber, std::string_view errText) {
    try {
        if (ending_) return WriteErrorLog(errText, procName);
        const Date now = clock_.Now();
        const bool repeated = DayOf(lastErrorTime_) == DayOf(now) && lastErrorTime_ + quietSpan > now;
        if (repeated && UserEndsProgram()) {
            ending_ = true; // what fails now is told to nobody, least of all by the same question
            return hooks_.EndProgram();
        }
        lastErrorTime_ = clock_.Now(); // the question may have stood open for a while

        const auto text = hooks_.Text;
        const std::string body = text(203) + "\n\n" + text(204) + ": " + std::string(procName) + "\n" +
                                 text(205) + ": " + std::to_string(errNumber) + "\n" + text(206) + ": " +
                                 CleanErrorText(errText);
        messageBoxes_.Show(body, std::string(ProgramTitle) + " " + text(207), MessageIcon::Critical,
                           MessageButtons::Ok);
    } catch (const std::exception& error) {
        // Reporting this one through the same boxes could fail for ever; the log cannot.
        WriteErrorLog(error.what(), "DisplayError");
    }
}

bool Errors::UserEndsProgram() {
    return messageBoxes_.Show(hooks_.Text(201) + "\n" + hooks_.Text(202), std::string(ProgramTitle),
                              MessageIcon::Critical, MessageButtons::YesNoDefaultNo) == MessageAnswer::Yes;
}

void Errors::WriteErrorLog(std::string_view message, std::string_view group) {
    try {
        const std::string line = FormatDateGeneral(clock_.Now(), locale_) + "\t" +
                                 OneLine(Shortened(group, longestGroup)) + "\t" +
                                 OneLine(Shortened(message, longestMessage)) + "\r\n";
        if (!AppendToLog(hooks_.DataFolder(), line)) AppendToLog(hooks_.SpareFolder(), line);
    } catch (const std::exception&) {
        // The log is the last resort: what cannot be written there is lost.
    }
}

bool Errors::AppendToLog(const std::filesystem::path& folder, const std::string& line) {
    if (folder.empty()) return false;
    const std::filesystem::path path = folder / (executableName_ + "_ErrorLog.txt");
    std::error_code ignored;
    const auto size = std::filesystem::file_size(path, ignored);
    if (!ignored && size + line.size() > logLimitBytes)
        std::filesystem::rename(path, folder / (executableName_ + "_ErrorLog.old.txt"), ignored);
    return files_.Append(path, line);
}

void Errors::Report(std::string_view procName, const std::exception& error) {
    const std::string failure = ExpectedFailure(error);
    if (!failure.empty() && !ending_) return DisplayFailure(procName, failure);
    DisplayError(procName, ErrorNumber(error), error.what());
}

std::string Errors::ExpectedFailure(const std::exception& error) const {
    constexpr int programGoesOn = 230;
    const auto* system = dynamic_cast<const std::system_error*>(&error);
    const std::string words = system != nullptr ? InWords(*system) : "";
    if (words.empty()) return {};
    const auto* failure = dynamic_cast<const FileFailure*>(&error);
    return words + " " + hooks_.Text(failure != nullptr ? failure->Consequence() : programGoesOn);
}

std::string Errors::InWords(const std::system_error& error) const {
    const int cause = FailureText(error.code());
    if (cause == 0) return {};
    return hooks_.Text(208) + "\n" + FailedFile(error) + "\n\n" + hooks_.Text(cause);
}

// The same words again at once, or while they are still on the screen, tell nothing new; the log has them.
void Errors::DisplayFailure(std::string_view procName, const std::string& text) {
    const Date now = clock_.Now();
    const bool again = text == lastFailure_ && now >= lastFailureTime_ && lastFailureTime_ + quietSpan > now;
    if (again || !openFailures_.insert(text).second) return WriteErrorLog(text, procName);
    lastFailure_ = text;
    messageBoxes_.Show(text, std::string(ProgramTitle) + " " + hooks_.Text(207), MessageIcon::Critical,
                       MessageButtons::Ok);
    openFailures_.erase(text);
    lastFailureTime_ = clock_.Now();
}

void Errors::ShiftMoments(Date days) {
    if (lastErrorTime_ != 0) lastErrorTime_ += days;
    if (lastFailureTime_ != 0) lastFailureTime_ += days;
}

} // namespace korvalin
