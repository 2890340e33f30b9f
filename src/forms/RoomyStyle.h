#pragma once

#include <QProxyStyle>

namespace korvalin {

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
