#include "forms/Loaded.h"

#include <QApplication>

#include <algorithm>

namespace korvalin {

QList<QPointer<QWidget>> LoadedForms() {
    QList<QPointer<QWidget>> forms;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->objectName().startsWith(QLatin1String("frm"), Qt::CaseInsensitive)) forms.append(window);
    }
    return forms;
}

bool IsFormLoaded(std::string_view name) {
    const QString wanted = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    const auto forms = LoadedForms();
    return std::any_of(forms.begin(), forms.end(), [&](const QPointer<QWidget>& form) {
        return form->objectName().compare(wanted, Qt::CaseInsensitive) == 0;
    });
}

void UnloadOtherForms(const QWidget& form) {
    const auto forms = LoadedForms();
    for (const QPointer<QWidget>& other : forms) {
        // Closing one may take others along.
        if (!other || other == &form || !other->isVisible()) continue;
        if (!other->close() && other) other->hide();
    }
}

} // namespace korvalin
