#include "platform/qt/QtNotificationArea.h"

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTextDocument>

#include <cmath>

namespace korvalin {
namespace {

// What hosts ask for that do not tell: the usual sizes of a panel's icons.
constexpr int usualSizes[] = {22, 32};

// A desktop that keeps a list of icons will show them; while it starts, a stand-in for older programs may
// already be there. So much time is given to it.
constexpr int patienceMilliseconds = 15'000;

} // namespace

QtNotificationArea::QtNotificationArea() {
    QObject::connect(&notifierHost_, &StatusNotifierHost::Changed, [this] { Refresh(); });
    QObject::connect(&embedHost_, &XEmbedHost::Changed, [this] { Refresh(); });
    QObject::connect(&patience_, &QTimer::timeout, [this] { Refresh(); });
    patience_.setSingleShot(true);
    patience_.start(patienceMilliseconds);
    host_ = FindHost();
}

QtNotificationArea::~QtNotificationArea() = default;

TrayHost QtNotificationArea::FindHost() const {
    using State = StatusNotifierHost::State;
    const auto presentIf = [](bool there) { return there ? TrayHost::Present : TrayHost::Absent; };
    if (protocol_ == Protocol::XEmbed) return presentIf(embedHost_.IsThere());
    const State notifier = notifierHost_.Now();
    if (protocol_ == Protocol::StatusNotifier) return presentIf(notifier == State::Present);
    switch (notifier) {
    case State::Unasked: return TrayHost::Unknown;
    case State::Present: return TrayHost::Present;
    case State::Silent: return TrayHost::Absent; // the toolkit would ask it too, and wait for the answer
    case State::Expected:
        if (patience_.isActive()) return TrayHost::Unknown;
        break;
    case State::Absent: break;
    }
    return presentIf(embedHost_.IsThere());
}

void QtNotificationArea::Refresh() {
    const TrayHost now = FindHost();
    if (now == host_) return;
    host_ = now;
    hooks_.HostChanged();
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
    icon_->show();
    SetTip(tip);
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
    if (QWidget* embedded = Embedded()) {
        embedded->setAccessibleName(QApplication::applicationName());
        embedded->setAccessibleDescription(text);
    }
}

// QSystemTrayIcon::geometry would ask the X server, every second.
QWidget* QtNotificationArea::Embedded() const {
    if (protocol_ != Protocol::XEmbed || embedded_ != nullptr) return embedded_;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        if (window->inherits("QSystemTrayIconSys")) embedded_ = window;
    return embedded_;
}

std::vector<int> QtNotificationArea::IconSizes() const {
    const double ratio = qApp->devicePixelRatio();
    const auto toPixels = [ratio](int length) { return static_cast<int>(std::lround(length * ratio)); };
    if (const QWidget* embedded = Embedded())
        return {toPixels(std::min(embedded->width(), embedded->height()))};
    std::vector<int> sizes;
    for (const int size : usualSizes)
        sizes.push_back(toPixels(size));
    return sizes;
}

} // namespace korvalin
