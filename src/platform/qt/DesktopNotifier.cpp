#include "platform/qt/DesktopNotifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

namespace korvalin {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

constexpr int serverDecidesHowLong = -1;

} // namespace

DesktopNotifier::DesktopNotifier(ShowInstead showInstead) : showInstead_(std::move(showInstead)) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Of whatever service: a server may start later, and ids tell what is ours.
    bus.connect(QString(), path, service, QStringLiteral("ActionInvoked"), this,
                SLOT(TakeAction(uint, QString)));
    bus.connect(QString(), path, service, QStringLiteral("NotificationClosed"), this,
                SLOT(TakeEnd(uint, uint)));
}

void DesktopNotifier::Notify(const std::string& title, const std::string& text) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("Notify"));
    // A server may take the text, but not the title, for markup.
    call << QStringLiteral("Korvalin") << 0U << QStringLiteral("korvalin") << QString::fromStdString(title)
         << QString::fromStdString(text).toHtmlEscaped()
         << QStringList{QStringLiteral("default"), QStringLiteral("Korvalin")}
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("korvalin")}}
         << serverDecidesHowLong;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [=, this] {
        const QDBusPendingReply<uint> reply = *watcher;
        watcher->deleteLater();
        if (reply.isError()) return showInstead_(title, text);
        shown_.insert(reply.value());
    });
}

void DesktopNotifier::TakeAction(uint id, const QString&) {
    if (shown_.erase(id) > 0) emit Clicked();
}

void DesktopNotifier::TakeEnd(uint id, uint) {
    shown_.erase(id);
}

} // namespace korvalin
