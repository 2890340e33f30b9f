#include "desktop/SettingsDialog.h"

#include "program/Program.h"

namespace korvalin {
namespace {

frmEinstellungen::Hooks SettingsHooks(Program& program) {
    DataFolder& folder = program.dataFolder;
    return {[&folder] { return folder.GetDataPath(); },
            [&folder](const std::filesystem::path& path) { return folder.CheckDataFolder(path); },
            [&folder](const std::filesystem::path& from, const std::filesystem::path& to) {
                return folder.ChangeDataPath(from, to, true);
            },
            [&folder] { return folder.CommonFolder(); },
            [&program](bool enable) { program.autoStart.AutoStart(enable); }};
}

} // namespace

frmEinstellungen* MakeSettingsDialog(Program& program, const Ports& ports, frmMain& window) {
    return new frmEinstellungen({program.settings, program.language, program.errors, ports.MessageBoxes,
                                 ports.Clock, program.locale, program.lines, program.rateHistory,
                                 program.liveTexts, program.units, program.samplingLoop, program.infoTexts,
                                 program.trafficOptions, ports.NetworkTables, ports.Internet, window},
                                SettingsHooks(program));
}

} // namespace korvalin
