#pragma once

#include "fakes/CoreFixture.h"
#include "inet/UpdateCheck.h"
#include "inet/UpdateFiles.h"
#include "inet/UpdateSite.h"
#include "inet/WebFetch.h"

#include <utility>

namespace korvalin {

/// Transfers from a fake web.
class FakeWeb : public CoreFixture {
  protected:
    FakeWeb() { KeepDataInFolder(); }

    WebFetch fetch{{.Http = http,
                    .Settings = settings,
                    .Errors = errors,
                    .Files = files,
                    .Events = events,
                    .Clock = clock,
                    .Language = language,
                    .DataFolder = dataFolder,
                    .Version = {2, 3, 12}}};
};

/// A running version 2.3.12 that looks for updates, on whatever transport the base class has as `fetch`.
template <typename Base>
class UpdateFixture : public Base {
  protected:
    UpdateFixture() {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng",
                                   this->programFolder / LanguageFileName);
        EXPECT_TRUE(this->language.LoadLanguageChoices() && this->language.UseLanguage("ENG"));
        running = this->folder.Write("program/Korvalin.exe", "the running program");
        std::filesystem::permissions(running, std::filesystem::perms(0755));
        std::filesystem::last_write_time(running, std::filesystem::file_time_type::clock::now() -
                                                      std::chrono::hours(1));
    }

    /// The site is at `address`, the maker's signatures those of `publicKey`.
    void UseSite(const std::string& address, Files& someFiles, Signatures& makers,
                 const std::string& publicKey = "") {
        const ProgramVersion version{2, 3, 12};
        site.emplace(UpdateConfiguration{address,
                                         address.empty() ? "" : "https://maker.example/versions.html",
                                         publicKey},
                     UpdateSite::Parts{.WebFetch = this->fetch,
                                       .Signatures = makers,
                                       .Settings = this->settings,
                                       .Errors = this->errors,
                                       .Clock = this->clock,
                                       .Executable = running,
                                       .Version = version});
        download.emplace(UpdateDownload::Parts{.UpdateSite = *site,
                                               .Settings = this->settings,
                                               .Language = this->language,
                                               .Errors = this->errors,
                                               .Files = someFiles,
                                               .Shell = this->shell,
                                               .Clock = this->clock,
                                               .ProgramFolder = this->programFolder,
                                               .Version = version});
        check.emplace(UpdateCheck::Parts{.UpdateSite = *site,
                                         .UpdateDownload = *download,
                                         .Settings = this->settings,
                                         .Language = this->language,
                                         .Errors = this->errors,
                                         .MessageBoxes = this->boxes,
                                         .Files = someFiles,
                                         .Shell = this->shell,
                                         .Internet = this->internet,
                                         .InstanceLock = this->lock,
                                         .Events = this->events,
                                         .Clock = this->clock,
                                         .DataFolder = this->dataFolder,
                                         .Locale = this->locale,
                                         .Version = version});
        check->Plug({[this] { return aboutIsOpen; },
                     [this](const std::string& status) {
                         statuses.push_back(status);
                         const auto act = OnStatus; // may put another in its place
                         act(status);
                     },
                     [this](bool nowRunning) { runnings.push_back(nowRunning); },
                     [this] { return userIsBusy(); }});
    }
    /// What was downloaded or is the update, by the files' names.
    std::vector<std::string> NewFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(this->programFolder)) {
            const std::string name = entry.path().filename().string();
            if (name.find("new") != std::string::npos || name.find("part") != std::string::npos)
                names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    int OnDemand() { return Check(false); }
    int Automatic() { return Check(true); }
    std::filesystem::path New() const { return this->programFolder / NewProgramFileName; }
    std::vector<std::string> TakeStatuses() { return std::exchange(statuses, {}); }

    std::filesystem::path running;
    bool aboutIsOpen = true;
    bool onRasLine = false;
    std::function<bool()> userIsBusy = [] { return false; };
    const std::string newTexts = this->WholeTexts("ENG\tmodTest\t1\tnew\r\n");
    std::vector<std::string> statuses;
    std::vector<bool> runnings;
    std::function<void(const std::string&)> OnStatus = [](const std::string&) {};
    std::optional<UpdateSite> site;
    std::optional<UpdateDownload> download;
    std::optional<UpdateCheck> check;

  private:
    int Check(bool automatic) {
        statuses.clear();
        runnings.clear();
        const int result = static_cast<int>(check->CheckUpdate(automatic, automatic && !onRasLine));
        EXPECT_TRUE(runnings.empty() || runnings == (std::vector<bool>{true, false}));
        return result;
    }
};

} // namespace korvalin
