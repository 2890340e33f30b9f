#include "display/WindowFrame.h"

#include "forms/Twips.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace korvalin {
namespace {
constexpr int checkMilliseconds = 30;
constexpr int checksAfterAChange =
    30; // a window manager that has not drawn a frame within a second draws none
constexpr int checksUntilSettled = 3;
} // namespace

WindowFrame::WindowFrame(QWidget& window) : window_(window) {
    settle_.setInterval(checkMilliseconds);
    QObject::connect(&settle_, &QTimer::timeout, [this] { CheckFrame(); });
}

// The platform window's own figure: the widget keeps the one of its first frame.
int WindowFrame::TopMargin() const {
    const QWindow* handle = window_.windowHandle();
    return captionShown_ && handle != nullptr ? handle->frameMargins().top() : 0;
}

TwipsRect WindowFrame::Place() const {
    const QRect inner = window_.geometry();
    const int top = TopMargin();
    return {PixelsToTwips(inner.left()), PixelsToTwips(inner.top() - top), PixelsToTwips(inner.width()),
            PixelsToTwips(inner.height() + top)};
}

void WindowFrame::SetInnerHeight(int pixels) {
    window_.resize(window_.width(), pixels);
    if (innerToKeep_) innerToKeep_->setHeight(window_.height());
}

void WindowFrame::MoveTo(const TwipsRect& place) {
    innerToKeep_.reset();
    const int top = TopMargin();
    window_.setGeometry(CaptionInSight({TwipsToPixels(place.Left), TwipsToPixels(place.Top) + top,
                                        TwipsToPixels(place.Width), TwipsToPixels(place.Height) - top}));
}

// A caption above the screen could not be taken hold of any more.
QRect WindowFrame::CaptionInSight(QRect inner) const {
    const QScreen* screen = QGuiApplication::screenAt(inner.center());
    if (captionShown_ && screen != nullptr)
        inner.moveTop(std::max(inner.top(), screen->availableGeometry().top() + TopMargin()));
    return inner;
}

void WindowFrame::ShowCaption(bool show) {
    if (show == captionShown_) return;
    if (window_.isVisible()) innerToKeep_ = window_.geometry();
    captionShown_ = show;
    measured_ = gaveUp_ = false;
    SetFlag(Qt::FramelessWindowHint, !show);
    AwaitFrame();
}

void WindowFrame::SetTopmost(bool topmost) {
    SetFlag(Qt::WindowStaysOnTopHint, topmost);
}

// Qt's own way to change a flag hides the window; the platform window takes it while it stays visible.
void WindowFrame::SetFlag(Qt::WindowType flag, bool on) {
    window_.overrideWindowFlags(window_.windowFlags().setFlag(flag, on));
    if (QWindow* handle = window_.windowHandle()) handle->setFlag(flag, on);
}

void WindowFrame::Raise() {
    window_.raise();
    window_.activateWindow();
}

void WindowFrame::AwaitShowing() {
    measured_ = gaveUp_ = false;
    AwaitFrame();
}

void WindowFrame::AwaitFrame() {
    checksLeft_ = checksAfterAChange;
    checksInPlace_ = 0;
    settle_.start();
}

void WindowFrame::CheckFrame() {
    const bool asWanted = !captionShown_ || TopMargin() > 0;
    if (asWanted && innerToKeep_) innerToKeep_ = CaptionInSight(*innerToKeep_);
    const bool inPlace = !innerToKeep_ || window_.geometry() == *innerToKeep_;
    // Drawing or removing a frame moves the window, a little later than the frame is reported.
    if (asWanted && !inPlace) window_.setGeometry(*innerToKeep_);
    checksInPlace_ = asWanted && inPlace ? checksInPlace_ + 1 : 0;
    if (checksInPlace_ < checksUntilSettled && --checksLeft_ > 0) return;

    settle_.stop();
    const bool switched = innerToKeep_.has_value();
    innerToKeep_.reset();
    gaveUp_ = !asWanted;
    if (!measured_) Measure(!switched);
    if (IsSettled()) emit Settled();
}

void WindowFrame::LookForFrame() {
    if (!measured_ && !settle_.isActive()) Measure(true);
}

void WindowFrame::Measure(bool placeAgain) {
    if (TopMargin() == 0) return;
    measured_ = true;
    captionHeight_ = PixelsToTwips(TopMargin());
    emit CaptionMeasured(captionHeight_);
    if (!placeAgain) return;
    emit PlaceAgain();
    // A window manager may place a window once more while it is coming to the screen.
    innerToKeep_ = window_.geometry();
    AwaitFrame();
}

} // namespace korvalin
