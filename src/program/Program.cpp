#include "program/Program.h"

#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "display/DisplaySettings.h"
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
      language({.Settings = settings,
                .Errors = errors,
                .Files = ports.Files,
                .MessageBoxes = ports.MessageBoxes,
                .Shell = ports.Shell},
               programFolder_),
      units(errors, locale, ports.Clock),
      dataFolder({.Settings = settings,
                  .Language = language,
                  .Errors = errors,
                  .MessageBoxes = ports.MessageBoxes,
                  .Files = ports.Files,
                  .Shell = ports.Shell,
                  .Clock = ports.Clock},
                 programFolder_),
      webFetch({.Http = ports.Http,
                .Settings = settings,
                .Errors = errors,
                .Files = ports.Files,
                .Events = ports.Events,
                .Clock = ports.Clock,
                .Language = language,
                .DataFolder = dataFolder,
                .AddressReader = ports.AddressReader,
                .Version = BuiltVersion}),
      updateSite(BuiltUpdateSite(ports.AddressReader), {.WebFetch = webFetch,
                                                        .Signatures = ports.Signatures,
                                                        .Settings = settings,
                                                        .Errors = errors,
                                                        .Clock = ports.Clock,
                                                        .Executable = executable_,
                                                        .Version = BuiltVersion}),
      components({.Settings = settings,
                  .Language = language,
                  .MessageBoxes = ports.MessageBoxes,
                  .Shell = ports.Shell,
                  .Events = ports.Events,
                  .DataFolder = dataFolder,
                  .UpdateSite = updateSite},
                 downloadPage),
      updateInstallation({.Settings = settings,
                          .Language = language,
                          .Errors = errors,
                          .MessageBoxes = ports.MessageBoxes,
                          .Files = ports.Files,
                          .Shell = ports.Shell,
                          .Events = ports.Events,
                          .Clock = ports.Clock,
                          .InstanceLock = ports.InstanceLock,
                          .UpdateSite = updateSite},
                         programFolder_),
      autoStart(settings, ports.Registry, executable_),
      lineBook(lines, errors, ports.Clock),
      lineNames(ports.Networks, ports.Ras, trafficOptions),
      lanReader({.NetworkTables = ports.NetworkTables,
                 .LineState = lines,
                 .LineBook = lineBook,
                 .CounterLedger = counterLedger,
                 .LineNames = lineNames,
                 .TrafficOptions = trafficOptions,
                 .Errors = errors,
                 .Clock = ports.Clock}),
      rasReader({.Ras = ports.Ras,
                 .NetworkTables = ports.NetworkTables,
                 .LineState = lines,
                 .LineBook = lineBook,
                 .CounterLedger = counterLedger,
                 .LanReader = lanReader,
                 .Settings = settings,
                 .Errors = errors,
                 .Clock = ports.Clock}),
      lineMonitor({.LineState = lines,
                   .LineBook = lineBook,
                   .RasReader = rasReader,
                   .LanReader = lanReader,
                   .CounterLedger = counterLedger,
                   .TrafficOptions = trafficOptions,
                   .Internet = ports.Internet,
                   .User = ports.User,
                   .Clock = ports.Clock,
                   .Errors = errors}),
      phoneBook(ports.Ras, ports.Internet, ports.MessageBoxes, errors),
      phoneNumberGuard(ports.Ras, settings, language, ports.MessageBoxes),
      dialing({.Internet = ports.Internet,
               .Ras = ports.Ras,
               .PhoneBook = phoneBook,
               .PhoneNumberGuard = phoneNumberGuard,
               .LineState = lines,
               .Settings = settings,
               .Events = ports.Events,
               .Errors = errors}),
      aliases(settings, errors, ports.Clock, units),
      monthSums(aliases, lines, errors, ports.Clock),
      openConnections({.LineState = lines,
                       .DataFolder = dataFolder,
                       .RecordingLock = ports.RecordingLock,
                       .Journal = ports.Journal}),
      statFile({.DataFolder = dataFolder,
                .Files = ports.Files,
                .Events = ports.Events,
                .Clock = ports.Clock,
                .Errors = errors,
                .OpenConnections = openConnections,
                .Aliases = aliases,
                .Locale = locale}),
      periodSums(aliases, errors, locale),
      recorder({.LineState = lines,
                .CounterLedger = counterLedger,
                .Files = ports.Files,
                .Errors = errors,
                .Language = language,
                .Clock = ports.Clock,
                .RecordingLock = ports.RecordingLock,
                .Locale = locale,
                .DataFolder = dataFolder,
                .MonthSums = monthSums}),
      journalKeeper({.Journal = ports.Journal,
                     .Recorder = recorder,
                     .CounterLedger = counterLedger,
                     .LineState = lines,
                     .LineBook = lineBook,
                     .LineMonitor = lineMonitor,
                     .Clock = ports.Clock,
                     .Errors = errors,
                     .DataFolder = dataFolder,
                     .SpareFolder = ports.Shell.SettingsFolder()}),
      allowanceWatch({.Settings = settings,
                      .Aliases = aliases,
                      .MonthSums = monthSums,
                      .Language = language,
                      .Errors = errors,
                      .Clock = ports.Clock}),
      liveTexts({.LineState = lines,
                 .RateHistory = rateHistory,
                 .MonthSums = monthSums,
                 .UnitFormat = units,
                 .Language = language,
                 .Errors = errors}),
      samplingLoop({.Clock = ports.Clock,
                    .Screen = ports.Screen,
                    .Settings = settings,
                    .LineState = lines,
                    .LineMonitor = lineMonitor,
                    .RateHistory = rateHistory,
                    .InfoTexts = infoTexts,
                    .Errors = errors}),
      updateDownload({.UpdateSite = updateSite,
                      .Settings = settings,
                      .Language = language,
                      .Errors = errors,
                      .Files = ports.Files,
                      .Shell = ports.Shell,
                      .Clock = ports.Clock,
                      .ProgramFolder = programFolder_,
                      .Version = BuiltVersion}),
      updateCheck({.UpdateSite = updateSite,
                   .UpdateDownload = updateDownload,
                   .Settings = settings,
                   .Language = language,
                   .Errors = errors,
                   .MessageBoxes = ports.MessageBoxes,
                   .Files = ports.Files,
                   .Shell = ports.Shell,
                   .Internet = ports.Internet,
                   .InstanceLock = ports.InstanceLock,
                   .Events = ports.Events,
                   .Clock = ports.Clock,
                   .DataFolder = dataFolder,
                   .Locale = locale,
                   .Version = BuiltVersion}),
      updateSchedule(updateCheck, settings, errors, ports.Internet, ports.Clock),
      startup({.Settings = settings,
               .Language = language,
               .Errors = errors,
               .MessageBoxes = ports.MessageBoxes,
               .Shell = ports.Shell,
               .Clock = ports.Clock,
               .InstanceLock = ports.InstanceLock,
               .DataFolder = dataFolder,
               .UpdateInstallation = updateInstallation,
               .Components = components,
               .UpdateSite = updateSite,
               .LineState = lines},
              BuiltVersion) {
    PlugHooks();
}

void Program::PlugHooks() {
    errors.Plug({.Text =
                     [this](int number) {
                         return language.Lng("modGlobal", number, {.TrimIt = true, .ReportMissing = true});
                     },
                 .DataFolder = [this] { return dataFolder.GetDataPath(); },
                 .EndProgram =
                     [this] {
                         journalKeeper.RecordOpenLines(CloseReason::Program);
                         std::_Exit(EXIT_FAILURE);
                     },
                 .SpareFolder = [this] { return ports_.Shell.SettingsFolder(); }});
    lineBook.Plug({.GetAlias = [this](const std::string& entryName) { return aliases.GetAlias(entryName); },
                   .SaveStatsLine = [this](CloseReason reason,
                                           std::size_t line) { recorder.SaveStatsLine(reason, line); },
                   .ResizeRateHistory = [this] { samplingLoop.ResizeRateHistory(); },
                   .PassEnded =
                       [this] {
                           journalKeeper.PassEnded();
                           allowanceWatch.PassEnded();
                       }});
    dataFolder.Plug({.LeaveFolder = [this] { return journalKeeper.LeaveFolder(); }});
    journalKeeper.Plug({.OthersRecorded = [this] { LoadSums(false); }});
    updateSchedule.Plug({.CallAgain = [this](double seconds) {
        samplingLoop.SetUpdateCheckPending(ports_.Clock.Now() + seconds * OneSecond);
    }});
    startup.Plug({.LoadUserVar = [this] { LoadUserVar(); }});
}

ProgramVersion Program::Version() {
    return BuiltVersion;
}

void Program::LogNotes(const std::vector<std::string>& notes) {
    for (const std::string& note : notes)
        errors.WriteErrorLog(note, "settings store");
}

void Program::KeepMessage(const std::string& text) {
    errors.WriteErrorLog(text, "end");
    constexpr std::size_t longest = 500; // characters of up to two bytes fit into a setting
    const std::string kept = settings.Get(Keys::LeftMessage);
    if (kept.find(text) != std::string::npos) return;
    const std::string all = kept.empty() ? text : kept + "\n\n" + text;
    settings.Set(Keys::LeftMessage, std::string(FirstCharacters(all, longest)));
}

void Program::TellKeptMessage() {
    const std::string text = settings.Get(Keys::LeftMessage);
    if (text.empty()) return;
    settings.Remove(Keys::LeftMessage);
    ports_.MessageBoxes.Show(language.Lng("modGlobal", 215) + "\n\n" + text, std::string(ProgramTitle),
                             MessageIcon::Warning, MessageButtons::Ok);
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
    const std::size_t known = recorder.RecordsInFile();
    statFile.LoadStatFile(records, repair);
    const int error = statFile.Report().Error;
    if (error != 0) {
        errors.Step("LoadStatFile", [&] {
            throw std::system_error(error, std::generic_category(), statFile.StatFilePath().string());
        });
    }
    const bool looksOn = journalKeeper.LooksOn();
    using Source = OpenConnections::Source;
    openConnections.UseThoseOf(looksOn ? Source::Recorder : Source::Lines);
    monthSums.SetOpenElsewhere(looksOn ? std::optional(openConnections.Now()) : std::nullopt);
    monthSums.CalcStatsThisMonth(records, known);
}

void Program::LoadUserVar() {
    LoadRecords();
    errors.Step("LoadUserVar", [this] { autoStart.AutoStart(settings.Get(Keys::AutoStart)); });
}

} // namespace korvalin
