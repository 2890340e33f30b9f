#include "stats/AllowanceBar.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>

namespace korvalin {
namespace {

constexpr double markSize = 5; // pixels, of the triangle above the bar

} // namespace

AllowanceBar::AllowanceBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize AllowanceBar::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 20, fontMetrics().height() + static_cast<int>(markSize)};
}

void AllowanceBar::ShowUse(const AllowanceUse& use, double fractionElapsed) {
    use_ = use;
    fractionElapsed_ = std::clamp(fractionElapsed, 0.0, 1.0);
    update();
}

// What goes beyond the allowance is shown beyond its frame.
double AllowanceBar::XOf(double amount) const {
    const double most = std::max({use_.Allowance, use_.Used, use_.Forecast()});
    return most > 0 ? 0.5 + (width() - 1) * amount / most : 0.5;
}

void AllowanceBar::PaintElapsed(QPainter& painter, double x) const {
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawLine(QPointF(x, markSize), QPointF(x, height() - 1));
    painter.setBrush(palette().color(QPalette::WindowText));
    painter.drawPolygon(QPolygonF({{x - markSize, 0}, {x + markSize, 0}, {x, markSize}}));
}

void AllowanceBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor used = palette().color(QPalette::Highlight);
    const auto part = [&](double from, double till) {
        return QRectF(QPointF(XOf(from), markSize), QPointF(XOf(till), height() - 1));
    };
    painter.fillRect(part(0, use_.Allowance), palette().color(QPalette::Base));
    painter.fillRect(part(0, use_.Used), used);
    painter.fillRect(part(use_.Used, use_.Forecast()), QBrush(used, Qt::BDiagPattern));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(part(0, use_.Allowance));
    painter.setRenderHint(QPainter::Antialiasing);
    PaintElapsed(painter, XOf(use_.Allowance * fractionElapsed_));
}

} // namespace korvalin
