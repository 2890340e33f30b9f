#pragma once

namespace korvalin {

/// Why open connections are recorded.
enum class CloseReason {
    WindowMenu = 0,  ///< the window's close box
    Program = 1,     ///< the program itself, for instance by its menu
    SystemEnd = 2,   ///< the system shuts down or the user logs off
    TaskManager = 3, ///< the user ends the program from outside
    LineEnded = 10,  ///< only the line went down
};

} // namespace korvalin
