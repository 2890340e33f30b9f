#include "program/Program.h"

#include "display/DisplaySettings.h"
#include "platform/RecordingLock.h"
#include "platform/Shell.h"
#include "program/BuiltUpdateSite.h"
#include "program/Version.h"
#include "traffic/TrafficSettings.h"

#include <cstdlib>

namespace korvalin {
namespace {

const std::string downloadPage;

} // namespace

Program::Program(const Ports& ports, Locale userLocale)
    : ports_(ports),
      executable_(ports.Shell.ExecutablePath()),
      programFolder_(executable_.parent_path()),
      locale(std::move(userLocale)),
      errors(ports.Clock, ports.Files, ports.MessageBoxes, locale, executable_.stem().string()),
      settings(ports.Registry, errors, ports.Screen, ports.Clock, locale),
      language(programFolder_, settings, errors, ports.Files, ports.MessageBoxes, ports.Shell),
      units(errors, locale, ports.Clock),
      dataFolder(settings, language, errors, ports.MessageBoxes, ports.Files, ports.Shell, ports.Clock,
                 programFolder_),
      webFetch({ports.Http, settings, errors, ports.Files, ports.Events, ports.Clock, BuiltVersion,
                [this] { return language.LanguageCode(); }, [this] { return dataFolder.GetDataPath(); }}),
      updateSite(BuiltUpdateSite(), executable_, webFetch, ports.Signatures, errors),
      components(settings, language, ports.MessageBoxes, ports.Shell, ports.Events, dataFolder,
                 FromUpdateSite(), downloadPage),
      updateInstallation(settings, language, errors, ports.MessageBoxes, ports.Files, ports.Shell,
                         ports.Events, ports.Clock, ports.InstanceLock, programFolder_),
      autoStart(settings, ports.Registry, executable_),
      lineBook(lines, errors, ports.Clock),
      lineNames(ports.Networks, ports.Ras, trafficOptions),
      lanReader(ports.NetworkTables, lines, lineBook, counterLedger, lineNames, trafficOptions, errors,
                ports.Clock),
      rasReader(ports.Ras, ports.NetworkTables, lines, lineBook, counterLedger, lanReader, settings, errors,
                ports.Clock),
      lineMonitor(lines, lineBook, rasReader, lanReader, trafficOptions, ports.Internet, ports.User,
                  ports.Clock, errors),
      phoneBook(ports.Ras, ports.Internet, ports.MessageBoxes, errors),
      phoneNumberGuard(ports.Ras, settings, language, ports.MessageBoxes),
      dialing(
          {ports.Internet, ports.Ras, phoneBook, phoneNumberGuard, lines, settings, ports.Events, errors}),
      aliases(settings, errors, ports.Clock, units),
      monthSums(aliases, lines, errors, ports.Clock),
      statFile([this] { return dataFolder.GetDataPath(); }, ports.Files, ports.Events, ports.Clock, errors,
               [this] { return openConnections_(); }, aliases, locale),
      periodSums(aliases, errors, locale),
      recorder({lines, counterLedger, ports.Files, errors, language, ports.Clock, ports.RecordingLock, locale,
                [this] { return dataFolder.GetDataPath(); },
                [this](const OpenConnection& record) { monthSums.Add(record); }}),
      journalKeeper({ports.Journal, recorder, counterLedger, lines, lineBook, lineMonitor, ports.Clock,
                     errors, [this] { return dataFolder.GetDataPath(); }, ports.Shell.SettingsFolder(),
                     [this] { LoadSums(false); }}),
      liveTexts(lines, rateHistory, monthSums, units, language, errors),
      samplingLoop(ports.Clock, ports.Screen, settings, lines, lineMonitor, rateHistory, infoTexts, errors),
      updateDownload({updateSite, settings, errors, ports.Files, ports.Shell, ports.Clock, programFolder_,
                      BuiltVersion, UpdateText(), [this] { return language.LanguageCode(); }}),
      updateCheck({updateSite, updateDownload, settings, errors, ports.MessageBoxes, ports.Files, ports.Shell,
                   ports.Internet, ports.Clock, locale, BuiltVersion, UpdateText(),
                   [this] { return dataFolder.GetDataPath(); },
                   [this] { return lines.MonitoredLineType == LineType::Ras && lines.AnyLineConnected; }}),
      updateSchedule(updateCheck, settings, errors, ports.Clock),
      startup({settings, language, errors, ports.MessageBoxes, ports.Shell, ports.Clock, ports.InstanceLock,
               dataFolder, updateInstallation, components, FromUpdateSite(), [this] { lines = LineState(); },
               [this] { LoadUserVar(); }},
              BuiltVersion) {
    PlugErrors();
    openConnections_ = [this] {
        return journalKeeper.LooksOn() ? OpenConnectionsOfRecorder() : OpenConnectionsOf(lines);
    };
    lineBook.Plug({[this](const std::string& entryName) { return aliases.GetAlias(entryName); },
                   [this](CloseReason reason, std::size_t line) { recorder.SaveStatsLine(reason, line); },
                   [this] { samplingLoop.ResizeRateHistory(); }, [this] { journalKeeper.PassEnded(); }});
    updateSchedule.Plug([this](double seconds) {
        samplingLoop.SetUpdateCheckPending(ports_.Clock.Now() + seconds * OneSecond);
    });
}

ProgramVersion Program::Version() {
    return BuiltVersion;
}

Download Program::FromUpdateSite() {
    return [this](const std::string& name, const std::filesystem::path& target) {
        return updateSite.Download(name, target);
    };
}

std::function<std::string(int)> Program::UpdateText() {
    return [this](int number) { return language.Lng("modInternet", number); };
}

void Program::PlugErrors() {
    errors.Plug({[this](int number) {
                     return language.Lng("modGlobal", number, {.TrimIt = true, .ReportMissing = true});
                 },
                 [this] { return dataFolder.GetDataPath(); }, [] { std::_Exit(EXIT_FAILURE); }});
}

void Program::LogNotes(const std::vector<std::string>& notes) {
    for (const std::string& note : notes)
        errors.WriteErrorLog(note, "settings store");
}

void Program::LoadRecords() {
    if (lines.ProgramStart == 0) {
        samplingLoop.RestartClockWatch();
        lines.ProgramStart = ports_.Clock.Now();
    }
    errors.Step("LoadUserVar", [this] { LoadDisplaySettings(settings, units, infoTexts); });
    errors.Step("LoadUserVar", [this] { LoadTrafficOptions(settings, trafficOptions); });
    errors.Step("LoadUserVar", [this] { samplingLoop.ResizeRateHistory(); });
}

bool Program::BeginToRecord() {
    return journalKeeper.Start();
}

void Program::LoadStatistics() {
    if (!BeginToRecord()) errors.WriteErrorLog("Another program records into this data folder.", "SaveStats");
    LoadSums(true);
}

void Program::LoadSums(bool repair) {
    StatRecords records;
    const std::size_t known = RecordsInFile();
    statFile.LoadStatFile(records, repair);
    if (journalKeeper.LooksOn()) {
        monthSums.SetOpenElsewhere(OpenConnectionsOfRecorder());
    } else {
        monthSums.SetOpenElsewhere(std::nullopt);
    }
    monthSums.CalcStatsThisMonth(records, known);
}

void Program::ShowOpenConnectionsOfRecorder(bool closed) {
    openConnections_ = [this, closed] {
        return closed ? std::vector<OpenConnection>() : OpenConnectionsOfRecorder();
    };
}

std::vector<OpenConnection> Program::OpenConnectionsOfRecorder() {
    const std::filesystem::path folder = dataFolder.GetDataPath();
    if (!ports_.RecordingLock.IsTaken(folder)) return {};
    return ports_.Journal.Look(folder).StillOpen();
}

void Program::LoadUserVar() {
    LoadRecords();
    errors.Step("LoadUserVar", [this] { autoStart.AutoStart(settings.Get(Keys::AutoStart)); });
}

} // namespace korvalin
