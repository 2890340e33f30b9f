#include "platform/qt/StatusNotifierHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

namespace korvalin {
namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString objectPath = QStringLiteral("/StatusNotifierWatcher");
constexpr int answerMilliseconds = 5000;

} // namespace

StatusNotifierHost::StatusNotifierHost() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    watcher_ = std::make_unique<QDBusServiceWatcher>(service, bus, QDBusServiceWatcher::WatchForOwnerChange);
    connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                if (!owner.isEmpty()) return Ask();
                asked_.reset();
                Become(State::Absent);
            });
    // From whoever it comes: naming the service would wait for the bus to tell its owner.
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect(QString(), objectPath, service, QString::fromLatin1(signal), this, SLOT(Ask()));
    state_ = State::Unasked;
    Ask();
}

void StatusNotifierHost::Ask() {
    QDBusMessage question = QDBusMessage::createMethodCall(
        service, objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << service << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    // An earlier question that is still open has lost its interest.
    asked_ = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(question, answerMilliseconds));
    connect(asked_.get(), &QDBusPendingCallWatcher::finished, this, [this] { TakeAnswer(); });
}

void StatusNotifierHost::TakeAnswer() {
    const QDBusPendingReply<QVariant> reply = *asked_;
    asked_.release()->deleteLater();
    if (reply.error().type() == QDBusError::NoReply) {
        Become(State::Silent);
        return Ask();
    }
    if (reply.isError()) return Become(State::Absent);
    Become(reply.value().toBool() ? State::Present : State::Expected);
}

void StatusNotifierHost::Become(State state) {
    if (state == state_) return;
    state_ = state;
    emit Changed();
}

} // namespace korvalin
