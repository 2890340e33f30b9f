#pragma once

#include "base/Locale.h"
#include "data/DataFolder.h"
#include "display/LiveTexts.h"
#include "display/SamplingLoop.h"
#include "errors/Errors.h"
#include "inet/UpdateCheck.h"
#include "inet/UpdateSchedule.h"
#include "inet/UpdateSite.h"
#include "inet/WebFetch.h"
#include "lang/Language.h"
#include "platform/Ports.h"
#include "program/Components.h"
#include "program/Startup.h"
#include "program/UpdateInstallation.h"
#include "settings/Settings.h"
#include "settingsdlg/AutoStart.h"
#include "stats/Aliases.h"
#include "stats/AllowanceWatch.h"
#include "stats/JournalKeeper.h"
#include "stats/MonthSums.h"
#include "stats/OpenConnections.h"
#include "stats/PeriodSums.h"
#include "stats/Recorder.h"
#include "stats/StatFile.h"
#include "traffic/Dialing.h"
#include "traffic/LineMonitor.h"
#include "traffic/PhoneNumberGuard.h"

namespace korvalin {

/// The composition root: owns every module of the core, builds them from the ground up and plugs what stands
/// above into what stands below. Runs with windows and without.
class Program {
    // Before everything that is built from it.
    Ports ports_;
    std::filesystem::path executable_;
    std::filesystem::path programFolder_;

  public:
    Program(const Ports& ports, Locale locale);

    static ProgramVersion Version();

    /// The start-up sequence; true when the main window is to be shown.
    [[nodiscard]] bool Main() { return startup.Main(); }

    /// Writes to the error log what the back ends could not: there was none yet.
    void LogNotes(const std::vector<std::string>& notes);

    /// Loads the settings into the records below, notes the program's start and sizes the history.
    void LoadRecords();

    /// Takes up what the last run has counted and begins to record. False while another program records.
    bool BeginToRecord();

    /// BeginToRecord, and loads the statistics file, repairing it, for the sums of the current billing
    /// periods.
    void LoadStatistics();

    /// A message that nobody can see: it goes to the log, and to TellKeptMessage of the next start.
    void KeepMessage(const std::string& text);

    /// Shows what KeepMessage has kept when the program ran before.
    void TellKeptMessage();

    /// LoadRecords, and brings the entry for starting with the system in line with the settings.
    void LoadUserVar();

    Locale locale;
    Errors errors;
    Settings settings;
    Language language;
    UnitFormat units;
    DataFolder dataFolder;
    WebFetch webFetch;
    UpdateSite updateSite;
    Components components;
    UpdateInstallation updateInstallation;
    AutoStartEntry autoStart;

    LineState lines;
    TrafficOptions trafficOptions;
    LineBook lineBook;
    CounterLedger counterLedger;
    LineNames lineNames;
    LanReader lanReader;
    RasReader rasReader;
    LineMonitor lineMonitor;
    PhoneBook phoneBook;
    PhoneNumberGuard phoneNumberGuard;
    Dialing dialing;

    Aliases aliases;
    MonthSums monthSums;
    OpenConnections openConnections;
    StatFile statFile;
    PeriodSums periodSums;
    Recorder recorder;
    JournalKeeper journalKeeper;
    AllowanceWatch allowanceWatch;

    InfoTexts infoTexts;
    RateHistory rateHistory;
    LiveTexts liveTexts;
    SamplingLoop samplingLoop;

    UpdateDownload updateDownload;
    UpdateCheck updateCheck;
    UpdateSchedule updateSchedule;

    Startup startup;

  private:
    void PlugHooks();
    void LoadSums(bool repair);
};

} // namespace korvalin
