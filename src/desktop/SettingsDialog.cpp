#include "desktop/SettingsDialog.h"

#include "program/Program.h"

namespace korvalin {

frmEinstellungen* MakeSettingsDialog(Program& program, const Ports& ports, MonitorWindow& window) {
    return new frmEinstellungen({.Settings = program.settings,
                                 .Language = program.language,
                                 .Errors = program.errors,
                                 .MessageBoxes = ports.MessageBoxes,
                                 .Clock = ports.Clock,
                                 .Locale = program.locale,
                                 .LineState = program.lines,
                                 .RateHistory = program.rateHistory,
                                 .LiveTexts = program.liveTexts,
                                 .UnitFormat = program.units,
                                 .SamplingLoop = program.samplingLoop,
                                 .InfoTexts = program.infoTexts,
                                 .TrafficOptions = program.trafficOptions,
                                 .NetworkTables = ports.NetworkTables,
                                 .Internet = ports.Internet,
                                 .DataFolder = program.dataFolder,
                                 .AutoStartEntry = program.autoStart,
                                 .MonitorWindow = window});
}

} // namespace korvalin
