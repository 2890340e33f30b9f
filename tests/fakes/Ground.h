#pragma once

#include "base/Locale.h"
#include "errors/Errors.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "lang/Language.h"
#include "settings/Settings.h"

#include <sstream>
#include <vector>

namespace korvalin {

/// Errors, settings and texts on fakes, with a program folder "program" and a log in the folder "log".
class Ground {
  public:
    TemporaryFolder Folder;
    std::filesystem::path Program = Folder / "program";
    FakeClock Clock;
    FakeRegistry Registry;
    FakeScreen Screen;
    FakeFiles Files;
    FakeMessageBoxes Boxes;
    FakeShell Shell;
    FakeEvents Events{Clock};
    korvalin::Locale Locale;
    korvalin::Errors Errors{Clock, Files, Boxes, Locale, "Korvalin"};
    korvalin::Settings Settings{Registry, Errors, Screen, Clock, Locale};
    korvalin::Language Language{Program, Settings, Errors, Files, Boxes, Shell};

    Ground() {
        std::filesystem::create_directories(Program);
        std::filesystem::create_directories(Folder / "log");
        Shell.Executable = Program / "Korvalin.exe";
        Errors.Plug({[](int number) { return "text" + std::to_string(number); },
                     [this] { return Folder / "log"; }, [] {}});
    }

    /// Writes the language file: a header and these lines.
    void WriteTexts(std::string_view lines) {
        Folder.Write("program/Korvalin.lng", "header\r\n" + std::string(lines));
    }

    /// "group: message" of each line of the error log.
    std::vector<std::string> Log() const {
        std::vector<std::string> entries;
        std::istringstream lines(Folder.Read("log/Korvalin_ErrorLog.txt"));
        for (std::string line; std::getline(lines, line);) {
            const auto group = line.find('\t') + 1;
            const auto message = line.find('\t', group);
            entries.push_back(line.substr(group, message - group) + ": " +
                              line.substr(message + 1, line.size() - message - 2));
        }
        return entries;
    }

    /// The texts of the boxes shown since the last call.
    std::vector<std::string> TakeBoxes() {
        std::vector<std::string> texts;
        while (!Boxes.Shown.empty())
            texts.push_back(Boxes.Take().Text);
        return texts;
    }
};

using Lines = std::vector<std::string>;

} // namespace korvalin
