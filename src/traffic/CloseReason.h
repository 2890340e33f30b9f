#pragma once

namespace korvalin {

/// Why a line, or a part of it, is recorded; the first four are why the main window closes.
enum class CloseReason {
    WindowMenu = 0,  ///< the user closed the window
    Program = 1,     ///< the program closes it itself
    SystemEnd = 2,   ///< the system shuts down or the user logs off
    TaskManager = 3, ///< somebody ends the program from outside
    LineEnded = 10,
    DayEnded = 11,   ///< the connection goes on after midnight
    Renamed = 12,    ///< the adapter goes on under another name
    Interrupted = 13 ///< the program was ended without recording; noticed at its next start
};

} // namespace korvalin
