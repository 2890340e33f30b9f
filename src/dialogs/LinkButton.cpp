#include "dialogs/LinkButton.h"

#include <QStyleOptionFocusRect>
#include <QStylePainter>

namespace korvalin {
namespace {

constexpr int roomForFocus = 2;

} // namespace

LinkButton::LinkButton(QWidget* parent) : QPushButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    const QSize content = IsPicture() ? iconSize() : fontMetrics().size(Qt::TextSingleLine, text());
    return content + 2 * QSize(roomForFocus, roomForFocus);
}

void LinkButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    const QRect inside = rect().adjusted(roomForFocus, roomForFocus, -roomForFocus, -roomForFocus);
    if (IsPicture()) {
        icon().paint(&painter, inside);
    } else {
        QFont underlined = font();
        underlined.setUnderline(true);
        painter.setFont(underlined);
        painter.setPen(palette().color(isDown() ? QPalette::LinkVisited : QPalette::Link));
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
    }
    if (!hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
}

} // namespace korvalin
