#include "cli/ConsoleMessageBoxes.h"
#include "cli/LinesCommand.h"
#include "cli/NoScreen.h"
#include "cli/PlainEvents.h"
#include "cli/SettingsCommand.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxSystem.h"
#include "startup/Program.h"

#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
    using namespace korvalin;
    CLI::App app{"Korvalin on the command line: settings and monitored lines."};
    app.require_subcommand(1);

    std::string name;
    std::string value;
    CLI::App* settings = app.add_subcommand("settings", "Read and change settings");
    settings->require_subcommand(1);
    CLI::App* list =
        settings->add_subcommand("list", "All settings with their kind and value (stores missing defaults)");
    CLI::App* get = settings->add_subcommand("get", "One setting, with its default and range applied");
    get->add_option("NAME", name, "Name of the setting")->required();
    CLI::App* set = settings->add_subcommand("set", "Store a setting in its corrected form; \"\" deletes it");
    set->add_option("NAME", name, "Name of the setting")->required();
    set->add_option("VALUE", value, "The new value")->required();

    bool watch = false;
    LinesFormat format = LinesFormat::Table;
    CLI::App* lines = app.add_subcommand("lines", "The monitored lines with their bytes and rates");
    lines->add_flag("--watch", watch, "Every second, until interrupted");
    lines->add_option("--format", format, "table or json (one document a line)")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, LinesFormat>{{"table", LinesFormat::Table}, {"json", LinesFormat::Json}}));
    CLI11_PARSE(app, argc, argv);

    ConsoleMessageBoxes messageBoxes;
    NoScreen screen;
    PlainEvents events;
    LinuxSystem system;
    Program program(system.PortsWith(events, messageBoxes, screen), ReadSystemLocale());
    // Messages need words; without a choice of language they are English.
    if (program.language.LoadLanguageChoices()) {
        const std::string chosen = program.settings.GetText("Language");
        program.language.UseLanguage(chosen.empty() ? "ENG" : chosen);
    }
    system.TellNotes(program.errors);

    if (list->parsed()) ListSettings(program.settings);
    if (get->parsed()) PrintSetting(program.settings, name);
    if (set->parsed()) StoreSetting(program.settings, name, value);
    if (lines->parsed()) PrintLines(program, format, watch);
    return 0;
}
