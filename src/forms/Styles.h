#pragma once

#include <QProxyStyle>

namespace korvalin {

/// The system's style for a menu with any number of entries: it scrolls instead of growing out of the screen
/// column by column.
class LongMenuStyle : public QProxyStyle {
    Q_OBJECT

  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override {
        if (hint == SH_Menu_Scrollable) return 1;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

/// The system's style with room between the columns of a list, where figures meet texts.
class RoomyStyle : public QProxyStyle {
    Q_OBJECT

  public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        constexpr int columnMargin = 6;
        if (metric == PM_FocusFrameHMargin || metric == PM_HeaderMargin) return columnMargin;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
};

} // namespace korvalin
