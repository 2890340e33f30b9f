#pragma once

#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeHttp.h"
#include "fakes/FakeJournal.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeNetwork.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "program/Program.h"

namespace korvalin {

using Lines = std::vector<std::string>;

/// The core over fake ports, with its log in `folder` and its program in `programFolder`.
class CoreFixture : public testing::Test {
  protected:
    CoreFixture() {
        std::filesystem::create_directories(programFolder);
        shell.Executable = programFolder / "Korvalin.exe";
        shell.AppData = folder / "data";
        errors.Plug({[](int number) { return "t" + std::to_string(number); },
                     [this] { return folder.Path(); }, [this] { ended = true; }});
    }

    /// Writes the language file: a header and these lines.
    void WriteTexts(std::string_view lines) {
        folder.Write("program/Korvalin.lng", "header\r\n" + std::string(lines));
    }
    /// The product's language file, with a line of its own at the end.
    static std::string WholeTexts(const std::string& line = "") {
        std::ifstream file(KORVALIN_RESOURCES "/lang/Korvalin.lng", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {}) + line;
    }
    /// Starts the whole program with the product's texts, in English.
    bool StartProgram() {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", programFolder / "Korvalin.lng");
        settings.SetReg("Language", "ENG");
        program = std::make_unique<Program>(AllPorts(), Locale());
        return program->Main();
    }
    Ports AllPorts() { return PortsWith(files, recordingLock, journal, signatures); }
    Ports PortsWith(Files& someFiles, RecordingLock& someLock, Journal& someJournal, Signatures& makers) {
        return {registry, network, internet,  ras,      clock,       events,   boxes, screen, shell,
                user,     lock,    someFiles, someLock, someJournal, networks, http,  makers, addressReader};
    }
    /// Has the data in the fixture's folder.
    void KeepDataInFolder() { settings.SetReg("DataPath", folder.Path().string()); }
    std::string Log() const { return folder.Read("Korvalin_ErrorLog.txt"); }
    /// The texts of the boxes shown since the last call.
    Lines TakeBoxes() {
        Lines texts;
        while (!boxes.Shown.empty())
            texts.push_back(boxes.Take().Text);
        return texts;
    }

    TemporaryFolder folder;
    std::filesystem::path programFolder = folder / "program";
    FakeClock clock;
    FakeFiles files;
    FakeMessageBoxes boxes;
    FakeRegistry registry;
    FakeScreen screen;
    FakeShell shell;
    FakeUser user;
    FakeInternet internet;
    FakeNetworkTables network;
    FakeRas ras;
    FakeEvents events{clock};
    FakeInstanceLock lock;
    FakeRecordingLock recordingLock;
    FakeJournal journal;
    FakeNetworks networks;
    FakeHttp http;
    FakeSignatures signatures;
    FakeAddressReader addressReader;
    Locale locale;
    Errors errors{clock, files, boxes, locale, "Korvalin"};
    Settings settings{registry, errors, screen, clock, locale};
    Language language{
        {.Settings = settings, .Errors = errors, .Files = files, .MessageBoxes = boxes, .Shell = shell},
        programFolder};
    DataFolder dataFolder{{.Settings = settings,
                           .Language = language,
                           .Errors = errors,
                           .MessageBoxes = boxes,
                           .Files = files,
                           .Shell = shell,
                           .Clock = clock},
                          programFolder};
    std::unique_ptr<Program> program;
    bool ended = false;
};

} // namespace korvalin
