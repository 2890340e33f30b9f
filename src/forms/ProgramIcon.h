#pragma once

#include <QIcon>

namespace korvalin {

/// The program's icon in all its sizes, from the resources inside the program.
QIcon ProgramIcon();

} // namespace korvalin
