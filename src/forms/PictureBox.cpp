#include "forms/PictureBox.h"

#include "forms/Colors.h"
#include "forms/Twips.h"

#include <QPaintEvent>

#include <algorithm>
#include <cmath>

namespace korvalin {

PictureBox::PictureBox(QWidget* parent) : QWidget(parent), metrics_(font_) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
}

void PictureBox::SetFont(const std::string& name, int points, bool bold) {
    QFont font(QString::fromStdString(name), points);
    font.setBold(bold);
    if (font == font_) return;
    font_ = font;
    metrics_ = QFontMetricsF(font_, this);
    if (painter_) painter_->setFont(font_);
}

// The image follows the widget's size and the screen's pixel ratio, which changes when a window moves to another screen.
void PictureBox::EnsureImage() {
    const double ratio = devicePixelRatioF();
    const QSize pixels(std::max(1, static_cast<int>(std::lround(width() * ratio))),
                       std::max(1, static_cast<int>(std::lround(height() * ratio))));
    if (image_.size() == pixels && image_.devicePixelRatio() == ratio) return;
    painter_.reset();
    image_ = QImage(pixels, QImage::Format_RGB32);
    image_.setDevicePixelRatio(ratio);
    image_.fill(ToColor(backColor_));
}

QPainter& PictureBox::Painter() {
    EnsureImage();
    if (!painter_) {
        painter_.emplace(&image_);
        painter_->setFont(font_);
    }
    return *painter_;
}

void PictureBox::SetBackColor(std::int32_t color) {
    backColor_ = color;
    Painter().fillRect(rect(), ToColor(color));
}

QPointF PictureBox::ToPixels(double x, double y) const {
    return {(x - scaleLeft_) / scaleWidth_ * width(), (y - scaleTop_) / scaleHeight_ * height()};
}

double PictureBox::ScaleX(double pixels) const { return pixels * scaleWidth_ / std::max(width(), 1); }
double PictureBox::ScaleY(double pixels) const { return pixels * scaleHeight_ / std::max(height(), 1); }
double PictureBox::TextWidth(const std::string& text) const {
    return ScaleX(metrics_.horizontalAdvance(QString::fromStdString(text)));
}
double PictureBox::TextHeight() const { return ScaleY(metrics_.height()); }
double PictureBox::HeightTwips() const { return PixelsToTwips(height()); }
double PictureBox::TextHeightTwips() const { return metrics_.height() * TwipsPerPixel; }

QPen PictureBox::Pen(std::int32_t color) const {
    // Cosmetic: a line is as many pixels wide as it says, on any screen.
    QPen pen(ToColor(color), drawWidth_, drawStyle_ == DrawStyle::Dotted ? Qt::DotLine : Qt::SolidLine, Qt::FlatCap);
    pen.setCosmetic(true);
    return pen;
}

void PictureBox::Line(double x1, double y1, double x2, double y2, std::int32_t color) {
    QPainter& painter = Painter();
    painter.setPen(Pen(color));
    // From pixel centre to pixel centre: a rule is one crisp line, not two pale ones.
    const auto onPixel = [](QPointF point) { return QPointF(std::floor(point.x()) + 0.5, std::floor(point.y()) + 0.5); };
    painter.drawLine(onPixel(ToPixels(x1, y1)), onPixel(ToPixels(x2, y2)));
}

void PictureBox::Box(double x1, double y1, double x2, double y2, std::int32_t color) {
    const QRectF box = QRectF(ToPixels(x1, y1), ToPixels(x2, y2)).normalized();
    Painter().fillRect(box, ToColor(color));
}

void PictureBox::DrawPixels(std::int32_t color) {
    if (pixels_.size() < 2) return;
    QPainter& painter = Painter();
    painter.setPen(Pen(color));
    painter.drawPolyline(pixels_.data(), static_cast<int>(pixels_.size()));
}

void PictureBox::Print(const std::string& text) {
    QPainter& painter = Painter();
    painter.setPen(ToColor(foreColor_));
    const QString shown = QString::fromStdString(text);
    const QPointF corner = ToPixels(currentX_, currentY_);
    painter.drawText(QPointF(corner.x(), std::round(corner.y() + metrics_.ascent())), shown);
    currentX_ += ScaleX(metrics_.horizontalAdvance(shown));
}

void PictureBox::Refresh() {
    painter_.reset();
    update();
}

void PictureBox::paintEvent(QPaintEvent* event) {
    painter_.reset();
    EnsureImage();
    QPainter painter(this);
    const double ratio = image_.devicePixelRatio();
    const QRectF part(event->rect());
    painter.drawImage(part, image_, QRectF(part.topLeft() * ratio, part.size() * ratio));
}

void PictureBox::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    EnsureImage();
}

} // namespace korvalin
