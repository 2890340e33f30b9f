#pragma once

#include "settingsdlg/frmEinstellungen.h"

namespace korvalin {

class Program;
struct Ports;

/// A settings dialog about this program and its main window; the caller owns it.
frmEinstellungen* MakeSettingsDialog(Program& program, const Ports& ports, MonitorWindow& window);

} // namespace korvalin
