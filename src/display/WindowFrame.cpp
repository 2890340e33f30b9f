#include "display/WindowFrame.h"

#include "forms/Twips.h"

#include <QWidget>
#include <QWindow>

namespace korvalin {
namespace {
constexpr int checkMilliseconds = 30;
constexpr int checksAfterAChange = 30; // a window manager that has not drawn a frame within a second draws none
} // namespace

WindowFrame::WindowFrame(QWidget& window) : window_(window) {
    settle_.setInterval(checkMilliseconds);
    QObject::connect(&settle_, &QTimer::timeout, [this] { CheckFrame(); });
}

int WindowFrame::TopMargin() const {
    if (!captionShown_ || window_.windowHandle() == nullptr) return 0;
    return window_.geometry().top() - window_.frameGeometry().top();
}

int WindowFrame::CaptionHeight() const { return PixelsToTwips(captionPixels_); }

TwipsRect WindowFrame::Place() const {
    const QRect inner = window_.geometry();
    const int top = TopMargin();
    return {PixelsToTwips(inner.left()), PixelsToTwips(inner.top() - top), PixelsToTwips(inner.width()),
            PixelsToTwips(inner.height() + top)};
}

void WindowFrame::MoveTo(const TwipsRect& place) {
    const int top = TopMargin();
    window_.setGeometry(TwipsToPixels(place.Left), TwipsToPixels(place.Top) + top, TwipsToPixels(place.Width),
                        TwipsToPixels(place.Height) - top);
}

void WindowFrame::ShowCaption(bool show) {
    if (show == captionShown_) return;
    if (captionPixels_ == 0) captionPixels_ = TopMargin();
    innerToKeep_ = window_.geometry();
    captionShown_ = show;
    SetFlag(Qt::FramelessWindowHint, !show);
    AwaitFrame();
}

void WindowFrame::SetTopmost(bool topmost) { SetFlag(Qt::WindowStaysOnTopHint, topmost); }

// Qt's own way to change a flag hides the window; the platform window takes it while it stays visible.
void WindowFrame::SetFlag(Qt::WindowType flag, bool on) {
    window_.overrideWindowFlags(window_.windowFlags().setFlag(flag, on));
    if (QWindow* handle = window_.windowHandle()) handle->setFlag(flag, on);
}

void WindowFrame::Raise() {
    window_.raise();
    window_.activateWindow();
}

void WindowFrame::AwaitFrame() {
    checksLeft_ = checksAfterAChange;
    settle_.start();
}

void WindowFrame::CheckFrame() {
    const bool drawn = !captionShown_ || TopMargin() > 0;
    if (--checksLeft_ > 0 && (!drawn || innerToKeep_)) {
        // Keep the inner area where it was for as long as the window manager may still move it.
        if (innerToKeep_ && window_.geometry() != *innerToKeep_) window_.setGeometry(*innerToKeep_);
        if (!innerToKeep_ || checksLeft_ > checksAfterAChange / 2) return;
    }
    settle_.stop();
    const bool switched = innerToKeep_.has_value();
    innerToKeep_.reset();
    if (captionShown_) captionPixels_ = std::max(captionPixels_, TopMargin());
    if (!switched && drawn && captionShown_) frameKnown_();
}

} // namespace korvalin
