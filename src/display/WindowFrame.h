#pragma once

#include "display/WindowGeometry.h"

#include <QMargins>
#include <QRect>
#include <QTimer>

#include <optional>

class QWidget;

namespace korvalin {

/// The frame that the window manager draws around a window: caption on and off, always on top, and the
/// window's place with its caption. A window manager decorates some time after it was asked to, or after the
/// program started, so places are put right when the caption's height becomes known.
class WindowFrame : public QObject {
    Q_OBJECT

  public:
    explicit WindowFrame(QWidget& window);

    /// The window's inner area plus its caption. Side and bottom borders are left out: they come and go with
    /// the caption, and the place must not change with it.
    TwipsRect Place() const;
    /// Puts the window, its frame included, to a place in twips.
    void MoveTo(const TwipsRect& place);

    /// The user moves the window: it is no longer put back to where it was while its frame settles.
    void LetGo() { innerToKeep_.reset(); }

    /// Sets the height of the inner area, also while the caption is being switched.
    void SetInnerHeight(int pixels);

    bool CaptionShown() const { return captionShown_; }
    /// Switches the caption on or off; the inner area stays where it is.
    void ShowCaption(bool show);

    /// Height of the caption in twips, also while it is switched off; 0 until one was measured.
    int CaptionHeight() const { return captionHeight_; }
    /// The height that was measured when the program ran before.
    void SetCaptionHeight(int twips) { captionHeight_ = twips; }

    /// Whether Place can be trusted: the window manager is done, and the caption is measured if there is one.
    bool IsSettled() const { return !settle_.isActive() && (!captionShown_ || measured_ || gaveUp_); }

    /// Whether the window stays above those of others.
    void SetTopmost(bool topmost);

    /// Brings the window to the front, without keeping it there.
    void Raise();

    /// Looks for a frame until the window manager has had time to draw it.
    void AwaitFrame();

    /// The same for a window that comes back to the screen, whose frame is drawn anew. To be called before it
    /// is shown and placed.
    void AwaitShowing();

    /// Looks once, for a window manager that came late. To be called now and then.
    void LookForFrame();

  signals:
    /// The window manager has drawn a caption of this height (twips).
    void CaptionMeasured(int height);
    /// ... around a window that was placed without knowing it.
    void PlaceAgain();
    /// Place can be trusted again.
    void Settled();

  private:
    int TopMargin() const;
    QRect CaptionInSight(QRect inner) const;
    void SetFlag(Qt::WindowType flag, bool on);
    void CheckFrame();
    void Measure(bool placeAgain);

    QWidget& window_;
    bool captionShown_ = true;
    int captionHeight_ = 0;
    bool measured_ = false; // since the caption is shown, or the window
    bool gaveUp_ = false;
    std::optional<QRect> innerToKeep_;
    QTimer settle_;
    int checksLeft_ = 0;
    int checksInPlace_ = 0;
};

} // namespace korvalin
