#pragma once

#include "platform/NotificationArea.h"

#include <QIcon>
#include <QMenu>
#include <QPixmap>

namespace korvalin {

/// Holds the icon and counts how often it was touched.
class FakeNotificationArea : public NotificationArea {
  public:
    TrayHost State = TrayHost::Absent;
    bool Shown = false;
    QIcon Icon;
    std::string Tip;
    int IconsSet = 0;
    int TipsSet = 0;
    std::vector<int> Sizes = {16};

    /// A host comes or goes, and an icon with it.
    void Become(TrayHost state) {
        State = state;
        Shown = Shown && state == TrayHost::Present;
        hooks_.HostChanged();
    }
    void Click() { hooks_.Clicked(); }
    QImage Picture(int size) const { return Icon.pixmap(size).toImage(); }

    void Plug(Hooks hooks) override { hooks_ = std::move(hooks); }
    TrayHost Host() const override { return State; }
    void Add(const QIcon& icon, const std::string& tip, QMenu&) override {
        if (State != TrayHost::Present) return;
        Shown = true;
        Icon = icon;
        Tip = tip;
    }
    void Remove() override { Shown = false; }
    void SetIcon(const QIcon& icon) override {
        if (!Shown) return;
        Icon = icon;
        ++IconsSet;
    }
    void SetTip(const std::string& tip) override {
        if (!Shown) return;
        Tip = tip;
        ++TipsSet;
    }
    std::vector<int> IconSizes() const override { return Sizes; }

  private:
    Hooks hooks_;
};

} // namespace korvalin
