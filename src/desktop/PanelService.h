#pragma once

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

namespace korvalin {

class MonitorWindow;
class Program;
struct AliasUse;
struct HistorySample;
struct LineRecord;

/// The program on the session bus, for panels: object /Korvalin of the service org.example.korvalin, as
/// packaging/org.example.korvalin.xml describes it. Without a bus there is none, and nothing waits for one.
class PanelService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.example.korvalin")
    Q_PROPERTY(QString LineName READ LineName)
    Q_PROPERTY(double ReceivedPerSecond READ ReceivedPerSecond)
    Q_PROPERTY(double TransmittedPerSecond READ TransmittedPerSecond)
    Q_PROPERTY(QString Alias READ Alias)
    Q_PROPERTY(double UsedToday READ UsedToday)
    Q_PROPERTY(double UsedInPeriod READ UsedInPeriod)
    Q_PROPERTY(double Allowance READ Allowance)
    Q_PROPERTY(double Forecast READ Forecast)

  public:
    /// `window` is what ShowWindow brings up.
    PanelService(Program& program, MonitorWindow& window);

    // Of the line in the chart: bytes a second.
    QString LineName() const;
    double ReceivedPerSecond() const;
    double TransmittedPerSecond() const;
    // Of its alias: bytes. No allowance is 0.
    QString Alias() const;
    double UsedToday() const;
    double UsedInPeriod() const;
    double Allowance() const;
    double Forecast() const;

  public slots:
    /// Until it calls Unwatch or leaves the bus the caller is told what has changed, once a second.
    Q_SCRIPTABLE void Watch(const QDBusMessage& call);
    Q_SCRIPTABLE void Unwatch(const QDBusMessage& call);
    Q_SCRIPTABLE void ShowWindow();

  private:
    void Forget(const QString& watcher);
    void TellChanges();
    QVariantMap Values() const;
    const LineRecord* Line() const;
    const HistorySample& Sample() const;
    AliasUse Use() const;

    Program& program_;
    MonitorWindow& window_;
    QDBusServiceWatcher watchers_;
    QTimer timer_; ///< runs while somebody watches
    QVariantMap told_;
};

} // namespace korvalin
