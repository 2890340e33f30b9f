#pragma once

#include "display/TrayModel.h"

#include <QColor>
#include <QIcon>
#include <QImage>

#include <optional>
#include <string>
#include <vector>

class QMenu;

namespace korvalin {

class Errors;
class NotificationArea;
struct LineState;

/// Draws the bars in a square of this many device pixels, each cell of the scale rounded to whole pixels.
QImage DrawTrayPicture(const TrayBars& bars, const QColor& background, int pixels);

/// The program's icon in the tray: three bars while a line is online, the program's own picture otherwise.
class TrayIcon {
  public:
    struct Parts {
        korvalin::NotificationArea& NotificationArea;
        QMenu& Menu;
        const korvalin::LineState& LineState;
        korvalin::MonthSums& MonthSums;
        korvalin::Errors& Errors;
        const korvalin::Locale& Locale;
    };
    explicit TrayIcon(const Parts& parts);
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    /// Adds the icon, or removes it. Once removed it takes no more changes.
    void TrayIconSet(bool add, const QIcon& picture = {}, const std::string& tip = {});

    /// Changes picture and tooltip; an empty tooltip leaves the one there is.
    void TrayIconModify(const QIcon& picture, const std::string& tip);

    void TrayTipModify(const std::string& tip);

    /// Shows the texts of this second.
    void IconDraw(const InfoTexts& texts);

    /// Shows the program's own picture instead of bars.
    void ShowStatic(const std::string& tip);

    /// The picture of a machine that is offline.
    const QIcon& StaticPicture() const { return imgTrayIcon_; }

  private:
    // All that the picture depends on: what is unchanged is not sent again.
    struct Drawn {
        TrayBars Bars;
        QColor Background;
        std::vector<int> Sizes;
        bool operator==(const Drawn&) const = default;
    };

    PeriodUse UseOfChartLine(const InfoTexts& texts) const;
    void DrawBars(const InfoTexts& texts, const PeriodUse& use);

    Parts parts_;
    QIcon imgTrayIcon_;
    bool staticIconShown_ = false;
    std::optional<Drawn> drawn_;
    std::string tip_;
};

} // namespace korvalin
