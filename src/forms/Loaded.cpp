#include "forms/Loaded.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>

namespace korvalin {
namespace {

// Windows are what the program named; menus and tooltips are top levels of the toolkit.
bool IsForm(const QWidget* widget) { return widget->objectName().startsWith(QLatin1String("frm")); }

} // namespace

bool IsFormLoaded(std::string_view name) {
    const QString wanted = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [&](const QWidget* window) {
        return window->objectName().compare(wanted, Qt::CaseInsensitive) == 0;
    });
}

void UnloadOtherForms(const QWidget& form) {
    for (;;) {
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto other = std::find_if(windows.begin(), windows.end(), [&](const QWidget* window) {
            return window != &form && IsForm(window) && window->isVisible();
        });
        if (other == windows.end()) return;
        if (!(*other)->close()) (*other)->hide(); // one that will not close does not hold up the end
        QCoreApplication::processEvents();
    }
}

} // namespace korvalin
