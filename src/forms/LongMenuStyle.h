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

} // namespace korvalin
