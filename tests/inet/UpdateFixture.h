#pragma once

#include "fakes/CoreFixture.h"
#include "inet/UpdateFiles.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace korvalin {

/// A running program that looks for updates on a site of this machine.
class UpdateFixture : public CoreFixture {
  protected:
    UpdateFixture() {
        KeepDataInFolder();
        folder.Write("program/Korvalin.lng", WholeTexts());
        running = folder.Write("program/Korvalin.exe", "the running program");
        std::filesystem::permissions(running, std::filesystem::perms(0755));
        std::filesystem::last_write_time(running, std::filesystem::file_time_type::clock::now() -
                                                      std::chrono::hours(1));
        UseSite(siteAddress);
    }
    ~UpdateFixture() override {
        unsetenv("KORVALIN_UPDATE_SITE");
        unsetenv("KORVALIN_UPDATE_KEY");
    }

    /// Begins the program anew, with the site at `address` and with the maker's key as hexadecimal digits.
    void UseSite(const std::string& address, const std::string& key = "") {
        UseSite(address, key, signatures);
    }
    void UseSite(const std::string& address, const std::string& key, Signatures& makers) {
        setenv("KORVALIN_UPDATE_SITE", address.c_str(), 1);
        setenv("KORVALIN_UPDATE_KEY", key.c_str(), 1);
        program = std::make_unique<Program>(PortsWith(files, recordingLock, journal, makers), locale);
        EXPECT_TRUE(program->language.LoadLanguageChoices() && program->language.UseLanguage("ENG"));
        program->updateCheck.Plug({[this] { return aboutIsOpen; },
                                   [this](const std::string& status) {
                                       statuses.push_back(status);
                                       const auto act = OnStatus; // may put another in its place
                                       act(status);
                                   },
                                   [this](bool nowRunning) { runnings.push_back(nowRunning); },
                                   [this] { return userIsBusy(); }});
    }
    void Put(const std::string& name, const std::string& body) { http.Answers[siteAddress + name] = {body}; }
    /// The site offers an update by this page.
    void PutUpdate(const std::string& page) {
        Put(ownPage, page);
        Put("update_general.html", page);
        Put("setup.exe", std::string(ShortestProgram, 'n'));
        Put("Korvalin.lng", newTexts);
    }
    /// The names of the files asked for since the last call.
    std::vector<std::string> Asked() {
        std::vector<std::string> names;
        for (const std::string& address : http.TakeAddresses())
            names.push_back(address.substr(siteAddress.size()));
        return names;
    }
    /// What was downloaded or is the update, by the files' names.
    std::vector<std::string> NewFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(programFolder)) {
            const std::string name = entry.path().filename().string();
            if (name.find("new") != std::string::npos || name.find("part") != std::string::npos)
                names.push_back(name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    int OnDemand() { return Check(false); }
    int Automatic() { return Check(true); }
    std::vector<std::string> TakeStatuses() { return std::exchange(statuses, {}); }

    const std::string siteAddress = "http://127.0.0.1/update/";
    const std::string ownPage = "update" + ReplaceAll(Program::Version().Numbers(), ".", "") + ".html";
    const std::string newTexts = WholeTexts("ENG\tmodTest\t1\tnew\r\n");
    const std::filesystem::path newProgram = programFolder / NewProgramFileName;
    std::filesystem::path running;
    bool aboutIsOpen = true;
    bool onRasLine = false;
    std::function<bool()> userIsBusy = [] { return false; };
    std::vector<std::string> statuses;
    std::vector<bool> runnings;
    std::function<void(const std::string&)> OnStatus = [](const std::string&) {};

  private:
    int Check(bool automatic) {
        statuses.clear();
        runnings.clear();
        const int result =
            static_cast<int>(program->updateCheck.CheckUpdate(automatic, automatic && !onRasLine));
        EXPECT_TRUE(runnings.empty() || (runnings.front() && !runnings.back()));
        return result;
    }
};

} // namespace korvalin
