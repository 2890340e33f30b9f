#include "forms/ProgramIcon.h"

// Resources of a static library are linked only when something asks for them; the macro wants no namespace.
static void LoadResources() {
    Q_INIT_RESOURCE(korvalin);
}

namespace korvalin {

QIcon ProgramIcon() {
    LoadResources();
    QIcon icon;
    for (const int size : {16, 32, 48, 256}) {
        icon.addFile(QStringLiteral(":/icons/korvalin-%1.png").arg(size), QSize(size, size));
    }
    return icon;
}

} // namespace korvalin
