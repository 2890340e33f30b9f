#pragma once

#include "settingsdlg/frmEinstellungen.h"

namespace korvalin {

class Program;

/// A settings dialog about this program and its main window; the caller owns it.
frmEinstellungen* MakeSettingsDialog(Program& program, MessageBoxes& messageBoxes, Clock& clock,
                                     frmMain& window);

} // namespace korvalin
