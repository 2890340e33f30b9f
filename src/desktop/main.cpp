#include "desktop/Desktop.h"
#include "forms/ProgramIcon.h"
#include "platform/linux/system/TerminationSignals.h"

#include <QApplication>

#include <cstdlib>

namespace korvalin {
namespace {

// Before the toolkit starts: it reads these once.
void ChoosePlatform() {
    // Nothing here draws with OpenGL; looking for it costs a third of the start and ten megabytes.
    setenv("QT_XCB_GL_INTEGRATION", "none", 0);
    // A Wayland compositor lets no program place its window or keep it on top; XWayland does.
    if (getenv("WAYLAND_DISPLAY") != nullptr && getenv("DISPLAY") != nullptr)
        setenv("QT_QPA_PLATFORM", "xcb", 0);
}

// What the desktop knows the program by.
void NameApplication() {
    QApplication::setApplicationName(QStringLiteral("Korvalin"));
    QGuiApplication::setDesktopFileName(QStringLiteral("korvalin"));
    QApplication::setWindowIcon(ProgramIcon());
    QApplication::setQuitOnLastWindowClosed(false); // the window may be hidden and the program still wanted
}

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    const korvalin::TerminationSignals termination;
    korvalin::ChoosePlatform();
    const QApplication application(argc, argv);
    korvalin::NameApplication();
    return korvalin::Desktop(termination).Run();
}
