#include "dialogs/Manual.h"

#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "lang/Language.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTabWidget>
#include <QUrl>

namespace korvalin {
namespace {

// A window without a mark belongs to one that has it, as a menu does; empty when there is none.
QString PlaceOf(const QWidget* asked) {
    for (; asked != nullptr; asked = asked->parentWidget()) {
        const QWidget* window = asked->window();
        const auto* tabs = window->findChild<QTabWidget*>();
        const QVariant ofPage = tabs != nullptr ? tabs->currentWidget()->property("Manual") : QVariant();
        const QVariant place = ofPage.isValid() ? ofPage : window->property("Manual");
        if (place.isValid()) return place.toString();
        asked = window;
    }
    return {};
}

} // namespace

Manual::Manual(const Parts& parts) : parts_(parts) {
    qApp->installEventFilter(this);
}

std::filesystem::path Manual::Folder() const {
    const std::filesystem::path program = parts_.Shell.ExecutablePath().parent_path();
    const std::filesystem::path beside = program / "manual";
    const std::filesystem::path shared = program.parent_path() / "share" / "doc" / "korvalin" / "manual";
    return !FileExists(beside) && FileExists(shared) ? shared : beside;
}

void Manual::Open(const QString& place) {
    const char* language = parts_.Language.LanguageCode() == "GER" ? "de" : "en";
    const std::string page = place.section(QLatin1Char('#'), 0, 0).toStdString() + ".html";
    const std::filesystem::path file = Folder() / language / page;
    if (!IsFileNotFolder(file)) return Tell(parts_.Language.Lng("modManual", 1) + "\n" + file.string());
    QUrl address = QUrl::fromLocalFile(QString::fromStdString(file.string()));
    if (const QString anchor = place.section(QLatin1Char('#'), 1); !anchor.isEmpty())
        address.setFragment(anchor);
    if (!parts_.Shell.OpenAddress(address.toEncoded().toStdString()))
        Tell(parts_.Language.Lng("modManual", 2) + "\n" + file.string());
}

void Manual::Tell(const std::string& text) {
    parts_.MessageBoxes.Show(text, std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
}

// The control with the focus gets the key first, then those around it: the first one is enough.
bool Manual::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier) return false;
    const QString place = PlaceOf(qobject_cast<QWidget*>(watched));
    if (place.isEmpty()) return false;
    // A message is not waited for within a key.
    if (!key.isAutoRepeat())
        QMetaObject::invokeMethod(
            this, [this, place] { Open(place); }, Qt::QueuedConnection);
    return true;
}

} // namespace korvalin
