#pragma once

#include "platform/Notifier.h"

#include <QObject>
#include <QString>

#include <functional>
#include <set>

namespace korvalin {

/// Notices of the desktop's own (org.freedesktop.Notifications); where there is no such service, what the
/// program shows instead. Nothing waits: a service that hangs must not hang the program.
class DesktopNotifier : public QObject, public Notifier {
    Q_OBJECT

  public:
    using ShowInstead = std::function<void(const std::string& title, const std::string& text)>;
    explicit DesktopNotifier(ShowInstead showInstead);

    void Notify(const std::string& title, const std::string& text) override;

  signals:
    void Clicked();

  private slots:
    void TakeAction(uint id, const QString& action);
    void TakeEnd(uint id, uint reason);

  private:
    ShowInstead showInstead_;
    std::set<uint> shown_;
};

} // namespace korvalin
