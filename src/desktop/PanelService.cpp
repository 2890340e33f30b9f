#include "desktop/PanelService.h"

#include "program/Program.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QMetaProperty>

#include <cmath>

namespace korvalin {
namespace {

const QString service = QStringLiteral("org.example.korvalin"); // the interface's name too
const QString objectPath = QStringLiteral("/Korvalin");
constexpr int second = 1000; // milliseconds

// Of several programs on a bus the first has the name. Asked for like this, nothing waits for the answer.
void TakeName(const QDBusConnection& bus) {
    constexpr uint doNotQueue = 4;
    const QString daemon = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage call = QDBusMessage::createMethodCall(daemon, QStringLiteral("/org/freedesktop/DBus"),
                                                       daemon, QStringLiteral("RequestName"));
    call << service << doNotQueue;
    bus.asyncCall(call);
}

} // namespace

PanelService::PanelService(Program& program, MonitorWindow& window) : program_(program), window_(window) {
    timer_.setInterval(second);
    connect(&timer_, &QTimer::timeout, this, &PanelService::TellChanges);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    watchers_.setConnection(bus);
    watchers_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&watchers_, &QDBusServiceWatcher::serviceUnregistered, this, &PanelService::Forget);
    bus.registerObject(objectPath, this,
                       QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAllProperties);
    TakeName(bus);
}

void PanelService::Watch(const QDBusMessage& call) {
    watchers_.addWatchedService(call.service());
    if (timer_.isActive()) return;
    told_ = Values();
    timer_.start();
}

void PanelService::Unwatch(const QDBusMessage& call) {
    Forget(call.service());
}

void PanelService::ShowWindow() {
    window_.ShowMainWindow(true);
}

void PanelService::Forget(const QString& watcher) {
    watchers_.removeWatchedService(watcher);
    if (watchers_.watchedServices().isEmpty()) timer_.stop();
}

void PanelService::TellChanges() {
    const QVariantMap now = Values();
    QVariantMap changed;
    for (auto value = now.begin(); value != now.end(); ++value) {
        if (told_.value(value.key()) != value.value()) changed.insert(value.key(), value.value());
    }
    told_ = now;
    if (changed.isEmpty()) return;
    QDBusMessage signal = QDBusMessage::createSignal(
        objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << service << changed << QStringList();
    QDBusConnection::sessionBus().send(signal);
}

QVariantMap PanelService::Values() const {
    QVariantMap values;
    const QMetaObject& meta = *metaObject();
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        values.insert(QString::fromLatin1(meta.property(i).name()), meta.property(i).read(this));
    return values;
}

const LineRecord* PanelService::Line() const {
    const std::size_t index = program_.infoTexts.LineIndex;
    return index >= 1 && index <= program_.lines.LineCount ? &program_.lines.LineTable(index) : nullptr;
}

const HistorySample& PanelService::Sample() const {
    constexpr std::size_t empty = 0;
    const bool has = Line() != nullptr && program_.infoTexts.LineIndex <= program_.rateHistory.Lines();
    return program_.rateHistory.At(has ? program_.rateHistory.Samples() : empty,
                                   has ? program_.infoTexts.LineIndex : 1);
}

AliasUse PanelService::Use() const {
    const LineRecord* line = Line();
    const std::size_t alias =
        line == nullptr ? 0 : program_.aliases.AliasIndex(program_.aliases.GetAlias(line->EntryName));
    return alias == 0 ? AliasUse() : program_.monthSums.UseOf(alias);
}

QString PanelService::LineName() const {
    const LineRecord* line = Line();
    return line == nullptr ? QString() : QString::fromStdString(line->EntryName);
}

double PanelService::ReceivedPerSecond() const {
    return Sample().RateDL[0];
}

double PanelService::TransmittedPerSecond() const {
    return Sample().RateUL[0];
}

QString PanelService::Alias() const {
    return QString::fromStdString(Use().Alias);
}

double PanelService::UsedToday() const {
    return Use().Volume.Today;
}

double PanelService::UsedInPeriod() const {
    return Use().Volume.Used;
}

double PanelService::Allowance() const {
    return Use().Volume.Allowance;
}

double PanelService::Forecast() const {
    return std::round(Use().Volume.Forecast());
}

} // namespace korvalin
