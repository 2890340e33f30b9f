#pragma once

#include "display/WindowGeometry.h"

#include <QMargins>
#include <QRect>
#include <QTimer>

#include <functional>
#include <optional>

class QWidget;

namespace korvalin {

/// The frame that the window manager draws around a window: caption on and off, always on top, and the
/// window's place with its caption. A window manager decorates some time after it was asked to, so places are
/// put right when the caption's height becomes known.
class WindowFrame {
  public:
    explicit WindowFrame(QWidget& window);

    /// Called when the caption's height became known after the window was shown with a caption.
    void PlugFrameKnown(std::function<void()> frameKnown) { frameKnown_ = std::move(frameKnown); }

    /// The window's inner area plus its caption. Side and bottom borders are left out: they come and go with
    /// the caption, and the place must not change with it.
    TwipsRect Place() const;
    void MoveTo(const TwipsRect& place);

    /// Sets the height of the inner area, also while the caption is being switched.
    void SetInnerHeight(int pixels);

    bool CaptionShown() const { return captionShown_; }
    /// Switches the caption on or off; the inner area stays where it is.
    void ShowCaption(bool show);

    /// Height of the caption in twips, also while it is switched off; 0 until the window manager has drawn
    /// one.
    int CaptionHeight() const;

    void SetTopmost(bool topmost);

    /// Brings the window to the front, without keeping it there.
    void Raise();

    /// Looks for a frame until the window manager has had time to draw it. To be called when the window was
    /// shown.
    void AwaitFrame();

  private:
    int TopMargin() const;
    void SetFlag(Qt::WindowType flag, bool on);
    void CheckFrame();

    QWidget& window_;
    bool captionShown_ = true;
    int captionPixels_ = 0;
    std::optional<QRect> innerToKeep_;
    QTimer settle_;
    int checksLeft_ = 0;
    int checksInPlace_ = 0;
    std::function<void()> frameKnown_ = [] {};
};

} // namespace korvalin
