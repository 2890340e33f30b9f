#include "forms/ColorField.h"

#include "forms/Colors.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

namespace korvalin {
namespace {

constexpr int frame = 3; // room for the focus around the field

} // namespace

ColorField::ColorField(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColorField::SetColor(std::int32_t color) {
    color_ = color;
    update();
}

QSize ColorField::sizeHint() const {
    const int height = fontMetrics().height() + 2 * frame;
    return {3 * height, height};
}

void ColorField::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect field = rect().adjusted(frame, frame, -frame, -frame);
    painter.fillRect(field, ToColor(color_));
    painter.setPen(palette().color(QPalette::Dark));
    painter.drawRect(field.adjusted(0, 0, -1, -1));
    if (!hasFocus()) return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

} // namespace korvalin
