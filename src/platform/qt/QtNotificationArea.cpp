#include "platform/qt/QtNotificationArea.h"

#include <QGuiApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTextDocument>

namespace korvalin {
namespace {

// What hosts ask for that do not tell: the usual sizes of a panel's icons.
constexpr int usualSizes[] = {22, 32};

// A desktop that keeps a list of icons will show them; while it starts, a stand-in for older programs may
// already be there. This many seconds are given to it.
constexpr int patience = 15;

} // namespace

QtNotificationArea::QtNotificationArea() : notifierHost_([this] { Refresh(); }) {
    host_ = FindHost();
}

QtNotificationArea::~QtNotificationArea() = default;

TrayHost QtNotificationArea::FindHost() {
    const StatusNotifierHost::State notifier = notifierHost_.Now();
    const bool mayNotify = protocol_ != Protocol::XEmbed;
    if (mayNotify && notifier == StatusNotifierHost::State::Present) return TrayHost::Present;
    if (protocol_ == Protocol::StatusNotifier) return TrayHost::Absent;
    const bool mayCome = notifier == StatusNotifierHost::State::Unasked ||
                         (notifier == StatusNotifierHost::State::Expected && looks_ < patience);
    if (mayNotify && mayCome) return TrayHost::Unknown;
    // The toolkit would ask it too, and wait for the answer.
    if (mayNotify && notifier == StatusNotifierHost::State::Silent) return TrayHost::Absent;
    return embedHost_.IsThere() ? TrayHost::Present : TrayHost::Absent;
}

void QtNotificationArea::Refresh() {
    const TrayHost now = FindHost();
    if (now == host_) return;
    host_ = now;
    hooks_.HostChanged();
}

void QtNotificationArea::LookForHost() {
    if (looks_ < patience) ++looks_;
    Refresh();
}

void QtNotificationArea::Add(const QIcon& icon, const std::string& tip, QMenu& menu) {
    if (host_ != TrayHost::Present) return;
    if (protocol_ == Protocol::Undecided) {
        protocol_ = notifierHost_.Now() == StatusNotifierHost::State::Present ? Protocol::StatusNotifier
                                                                              : Protocol::XEmbed;
    }
    if (icon_ == nullptr) {
        icon_ = std::make_unique<QSystemTrayIcon>();
        QObject::connect(icon_.get(), &QSystemTrayIcon::activated,
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             if (reason == QSystemTrayIcon::Trigger) hooks_.Clicked();
                         });
        icon_->setContextMenu(&menu);
    }
    SetIcon(icon);
    SetTip(tip);
    icon_->show();
}

void QtNotificationArea::Remove() {
    icon_.reset();
}

void QtNotificationArea::SetIcon(const QIcon& icon) {
    if (icon_ != nullptr) icon_->setIcon(icon);
}

void QtNotificationArea::SetTip(const std::string& tip) {
    if (icon_ == nullptr) return;
    const QString text = QString::fromStdString(tip);
    // The toolkit shows this one itself, and would take a name like "<b>" for markup.
    const bool looksLikeMarkup = protocol_ == Protocol::XEmbed && Qt::mightBeRichText(text);
    icon_->setToolTip(looksLikeMarkup ? Qt::convertFromPlainText(text) : text);
}

std::vector<int> QtNotificationArea::IconSizes() const {
    const double ratio = qGuiApp->devicePixelRatio();
    const auto toPixels = [ratio](int length) { return static_cast<int>(length * ratio + 0.5); };
    const QRect place = icon_ != nullptr ? icon_->geometry() : QRect();
    if (!place.isEmpty()) return {toPixels(std::min(place.width(), place.height()))};
    std::vector<int> sizes;
    for (const int size : usualSizes)
        sizes.push_back(toPixels(size));
    return sizes;
}

} // namespace korvalin
