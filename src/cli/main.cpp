#include "base/Locale.h"
#include "base/Numbers.h"
#include "cli/Commands.h"
#include "cli/ConsoleMessageBoxes.h"
#include "cli/Windowless.h"
#include "platform/Ports.h"
#include "platform/linux/store/VnstatDatabase.h"
#include "platform/linux/system/LinuxLocale.h"
#include "platform/linux/system/LinuxSystem.h"
#include "platform/linux/system/TerminationSignals.h"
#include "program/Program.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdlib>
#include <optional>

namespace korvalin {
namespace {

constexpr double mostMegabytes = 1e6; // as the allowance of a tariff

struct Arguments {
    std::string Name, Value;
    LinesFormat LineFormat = LinesFormat::Table;
    OutputFormat Format = OutputFormat::Table;
    SumPeriod Period = SumPeriod::BillingMonth;
    RecordFilter Filter;
    bool Watch = false;
    bool AsJson = false;
    bool Closed = false;
    std::optional<double> Megabytes;
    std::string MetricsFile;
    ImportChoice Import;
    std::string CompletedShell;
};

// An option that takes one of a few words.
template <typename Value>
CLI::Option* AddChoice(CLI::App* command, const char* name, const char* description, Value& value,
                       const std::map<std::string, Value>& choices) {
    std::string words;
    for (const auto& [word, meaning] : choices)
        words += (words.empty() ? "" : "|") + word;
    return command->add_option(name, value, description)
        ->transform(CLI::CheckedTransformer(choices).description(""))
        ->type_name(words);
}

// A plain range would take "nan", which is neither below nor above it.
std::string CheckMegabytes(const std::string& text) {
    const std::optional<double> number = ParseNumber(text);
    return number && *number >= 0 && *number <= mostMegabytes ? "" : "no number from 0 to 1000000: " + text;
}

class CommandLine {
  public:
    explicit CommandLine(const Locale& locale) : locale_(locale) {
        App.require_subcommand(0, 1);
        App.set_version_flag("--version", "korvalin-cli " + Program::Version().Numbers());
        AddSettings();
        AddLines();
        AddNetwork();
        AddUse();
        AddStatistics();
        AddImport();
        AddCompletion();
    }

    CLI::App App{"Korvalin on the command line: settings, monitored lines and statistics."};
    korvalin::Arguments Arguments;
    CLI::App* List = nullptr;
    CLI::App* Get = nullptr;
    CLI::App* Set = nullptr;
    CLI::App* Lines = nullptr;
    CLI::App* Network = nullptr;
    CLI::App* Status = nullptr;
    CLI::App* Metrics = nullptr;
    CLI::App* Provider = nullptr;
    CLI::App* Records = nullptr;
    CLI::App* Sums = nullptr;
    CLI::App* Repair = nullptr;
    CLI::App* Record = nullptr;
    CLI::App* ImportVnstat = nullptr;
    CLI::App* Completion = nullptr;

  private:
    void AddSettings() {
        CLI::App* settings = App.add_subcommand("settings", "Read and change settings");
        settings->require_subcommand(1);
        List = settings->add_subcommand("list",
                                        "All settings with their kind and value (stores missing defaults)");
        Get = settings->add_subcommand("get", "One setting, with its default and range applied");
        Get->add_option("NAME", Arguments.Name, "Name of the setting")->required();
        Set = settings->add_subcommand("set", "Store a setting in its corrected form; \"\" deletes it");
        Set->add_option("NAME", Arguments.Name, "Name of the setting")->required();
        Set->add_option("VALUE", Arguments.Value, "The new value")->required();
    }

    void AddLines() {
        Lines = App.add_subcommand("lines", "The monitored lines with their bytes and rates");
        Lines->add_flag("--watch", Arguments.Watch, "Every second, until interrupted");
        AddChoice<LinesFormat>(Lines, "--format", "With json one document a line", Arguments.LineFormat,
                               {{"table", LinesFormat::Table}, {"json", LinesFormat::Json}});
    }

    void AddNetwork() {
        Network =
            App.add_subcommand("network", "What the system tells of its network adapters and addresses");
        Network->add_flag("--json", Arguments.AsJson, "As one JSON document");
    }

    void AddUse() {
        Status = App.add_subcommand("status", "Rates, use, allowance and forecast on one line, for a panel");
        Status->add_option("--alias", Arguments.Name, "Of this alias instead of the first line's");
        Status->add_flag("--watch", Arguments.Watch, "Every second, until interrupted");
        AddChoice<bool>(Status, "--format", "With json one document a line", Arguments.AsJson,
                        {{"text", false}, {"json", true}});
        Metrics =
            App.add_subcommand("metrics", "Counters, rates, use and allowances for a monitoring system");
        Metrics->add_option("--output", Arguments.MetricsFile,
                            "Into this file, at every moment a whole one, instead of printed");
        Provider = App.add_subcommand("provider", "Correct the use of the running period to the provider's");
        Provider->add_option("ALIAS", Arguments.Name, "Whose period")->required();
        Provider
            ->add_option("MEGABYTES", Arguments.Megabytes,
                         "What the provider says is used; without it the correction ends")
            ->check(CheckMegabytes, "");
    }

    void AddStatistics() {
        Records = App.add_subcommand("records", "The recorded connections");
        AddFilter(Records);
        AddDate(Records, "--from", "First day on which a connection ended", Arguments.Filter.From);
        AddDate(Records, "--till", "Last day on which a connection ended", Arguments.Filter.Till);
        Sums = App.add_subcommand("sums", "Sums of the connections per alias and period");
        AddChoice<SumPeriod>(
            Sums, "--period", "Weeks begin on Sunday, months (the default) as the alias's tariff says",
            Arguments.Period,
            {{"day", SumPeriod::Day}, {"week", SumPeriod::Week}, {"month", SumPeriod::BillingMonth}});
        AddFilter(Sums);
        Repair = App.add_subcommand("repair",
                                    "Load the statistics as at the program's start, and repair their file");
        Record = App.add_subcommand("record", "Record connections without a window, until SIGTERM or SIGINT");
    }

    void AddImport() {
        CLI::App* import = App.add_subcommand("import", "Take history over from another program");
        import->require_subcommand(1);
        ImportVnstat =
            import->add_subcommand("vnstat", "The days of vnStat's database that nothing is recorded of");
        ImportVnstat->add_option("FILE", Arguments.Import.File, "Mostly /var/lib/vnstat/vnstat.db")
            ->required();
        ImportVnstat->add_option("--interface", Arguments.Import.Interfaces, "Only this one, or these")
            ->type_name("NAME");
        ImportVnstat->add_flag("--dry-run", Arguments.Import.DryRun, "Only tell what would be taken");
    }

    void AddCompletion() {
        Completion = App.add_subcommand("completion", "Print the completion of these words for a shell");
        Completion->add_option("SHELL", Arguments.CompletedShell, "Whose")
            ->required()
            ->check(CLI::IsMember({"bash", "zsh", "fish"}).description(""))
            ->type_name("bash|zsh|fish");
    }

    void AddFilter(CLI::App* command) {
        command->add_option("--alias", Arguments.Filter.Alias, "Only this alias");
        command->add_flag("--closed", Arguments.Closed, "Without the connections that are open");
        AddChoice<OutputFormat>(
            command, "--format", "How it is printed", Arguments.Format,
            {{"table", OutputFormat::Table}, {"json", OutputFormat::Json}, {"csv", OutputFormat::Csv}});
    }

    void AddDate(CLI::App* command, const char* name, const char* description, std::optional<Date>& date) {
        command->add_option_function<std::string>(
            name,
            [this, name, &date](const std::string& text) {
                date = ParseDate(text, locale_);
                if (!date) throw CLI::ValidationError(name, "no date: " + text);
                date = DayOf(*date);
            },
            std::string(description) + ", as 2004-12-31 or in the locale's form");
    }

    const Locale& locale_;
};

// Messages need words; without a choice of language they are English.
void LoadTexts(Program& program) {
    if (!program.language.LoadLanguageChoices()) return;
    const std::string chosen = program.settings.Get(Keys::Language);
    program.language.UseLanguage(chosen.empty() ? "ENG" : chosen);
}

int Run(const CommandLine& line, const Ports& ports, Program& program, const TerminationSignals* signals) {
    const Arguments& arguments = line.Arguments;
    program.openConnections.UseThoseOf(arguments.Closed ? OpenConnections::Source::Nobody
                                                        : OpenConnections::Source::Recorder);
    if (line.List->parsed()) ListSettings(program.settings);
    if (line.Get->parsed()) return PrintSetting(program.settings, arguments.Name);
    if (line.Set->parsed())
        return StoreSetting(program.settings, program.locale, arguments.Name, arguments.Value);
    if (line.Lines->parsed()) PrintLines(program, arguments.LineFormat, arguments.Watch);
    if (line.Network->parsed()) {
        PrintNetwork(ports.NetworkTables, program.language, program.locale, arguments.AsJson);
    }
    if (line.Status->parsed()) return PrintStatus(program, arguments.Name, arguments.AsJson, arguments.Watch);
    if (line.Metrics->parsed()) return TellMetrics(program, ports.Files, arguments.MetricsFile);
    if (line.Provider->parsed()) return TakeProvidersFigure(program, arguments.Name, arguments.Megabytes);
    if (line.Records->parsed()) return PrintRecords(program, arguments.Filter, arguments.Format);
    if (line.Sums->parsed())
        return PrintSums(program, arguments.Period, arguments.Filter.Alias, arguments.Format);
    if (line.Repair->parsed()) return RepairStatistics(program);
    if (line.ImportVnstat->parsed())
        return ImportHistory(program, ports.Clock, VnstatDatabase().Read(arguments.Import.File),
                             arguments.Import);
    return signals != nullptr ? RecordUntilSignal(program, *signals) : EXIT_SUCCESS;
}

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    using namespace korvalin;
    const Locale locale = ReadSystemLocale();
    CommandLine line(locale);
    CLI11_PARSE(line.App, argc, argv);
    if (line.App.get_subcommands().empty()) {
        fmt::print("{}", line.App.help());
        return EXIT_SUCCESS;
    }
    if (line.Completion->parsed()) {
        PrintCompletion(line.Arguments.CompletedShell);
        return EXIT_SUCCESS;
    }

    // Blocked from the beginning: one that comes early must not end the program unrecorded.
    std::optional<TerminationSignals> signals;
    if (line.Record->parsed()) signals.emplace();
    ConsoleMessageBoxes messageBoxes;
    NoScreen screen;
    PlainEvents events;
    LinuxSystem system;
    const Ports ports = system.PortsWith(events, messageBoxes, screen);
    Program program(ports, locale);
    LoadTexts(program);
    program.LogNotes(system.TakeNotes());
    const int exitCode = Run(line, ports, program, signals ? &*signals : nullptr);
    const bool stores = line.Set->parsed() || line.Provider->parsed();
    if (stores && exitCode != ExitUsage && !system.SettingsAreKept()) {
        fmt::print(stderr, "The settings store cannot be written: nothing was kept.\n");
        return EXIT_FAILURE;
    }
    return messageBoxes.ShowedError() ? EXIT_FAILURE : exitCode;
}
