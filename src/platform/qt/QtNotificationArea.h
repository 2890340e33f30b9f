#pragma once

#include "platform/NotificationArea.h"
#include "platform/qt/StatusNotifierHost.h"
#include "platform/qt/XEmbedHost.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

class QSystemTrayIcon;

namespace korvalin {

/// The toolkit's icon, over StatusNotifierItem or XEmbed. The toolkit decides once, when it is first asked,
/// which of them it uses for the rest of the run; so it is not asked before a host is there.
class QtNotificationArea : public NotificationArea {
  public:
    QtNotificationArea();
    ~QtNotificationArea() override;

    void Plug(Hooks hooks) override { hooks_ = std::move(hooks); }
    TrayHost Host() const override { return host_; }
    void Add(const QIcon& icon, const std::string& tip, QMenu& menu) override;
    void Remove() override;
    void SetIcon(const QIcon& icon) override;
    void SetTip(const std::string& tip) override;
    std::vector<int> IconSizes() const override;

  private:
    enum class Protocol { Undecided, StatusNotifier, XEmbed };

    TrayHost FindHost() const;
    QWidget* Embedded() const;
    void Refresh();

    Hooks hooks_;
    Protocol protocol_ = Protocol::Undecided;
    StatusNotifierHost notifierHost_;
    XEmbedHost embedHost_;
    TrayHost host_ = TrayHost::Unknown;
    QTimer patience_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    mutable QPointer<QWidget> embedded_;
};

} // namespace korvalin
