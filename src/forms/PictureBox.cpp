#include "forms/PictureBox.h"

#include "forms/Colors.h"
#include "forms/CurveSpans.h"
#include "forms/Twips.h"

#include <QPaintEvent>

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

// Farther out nothing can be seen, and whole numbers still hold it.
constexpr double farthest = 100000;

// Also makes a number of what is none (a scale of zero width, for instance).
double Bounded(double pixels) {
    return std::fmin(std::fmax(pixels, -farthest), farthest);
}

QString ToText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent), metrics_(font_) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    EnsureImage();
}

PictureBox::~PictureBox() {
    EndPainting(); // the painter must go before its image
}

// ---- the image

// The image follows the widget's size and its screen's resolution, which changes when a window moves to
// another screen. True when there is a new one.
bool PictureBox::EnsureImage() {
    const double ratio = devicePixelRatioF();
    const auto pixels = [ratio](int length) {
        return std::max(1, static_cast<int>(std::lround(length * ratio)));
    };
    const QSize size(pixels(width()), pixels(height()));
    if (image_.size() == size && image_.devicePixelRatio() == ratio) return false;
    EndPainting();
    image_ = QImage(size, QImage::Format_RGB32);
    image_.setDevicePixelRatio(ratio);
    image_.fill(ToColor(backColor_));
    metrics_ = QFontMetricsF(font_, &image_);
    return true;
}

// Shapes are drawn in device pixels, so that a thin line covers whole ones at every resolution.
QPainter& PictureBox::Painter() {
    EnsureImage();
    if (!painter_) {
        painter_.emplace(&image_);
        painter_->setFont(font_);
        painter_->scale(1 / image_.devicePixelRatio(), 1 / image_.devicePixelRatio());
    }
    return *painter_;
}

void PictureBox::EndPainting() {
    painter_.reset();
}

void PictureBox::Cls() {
    EnsureImage();
    EndPainting();
    image_.fill(ToColor(backColor_));
    currentX_ = currentY_ = 0;
}

void PictureBox::SetBackColor(std::int32_t color) {
    backColor_ = color;
    Painter().fillRect(image_.rect(), ToColor(color));
}

void PictureBox::Refresh() {
    EndPainting();
    update();
}

QImage PictureBox::Picture() const {
    return image_.copy(); // the open painter goes on drawing into the original
}

void PictureBox::paintEvent(QPaintEvent* event) {
    if (EnsureImage()) emit DrawingLost();
    EndPainting();
    QPainter painter(this);
    painter.setClipRect(event->rect());
    painter.drawImage(QPointF(0, 0), image_);
}

void PictureBox::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (EnsureImage()) emit DrawingLost();
}

// ---- the scale

QPointF PictureBox::Scale::ToPixels(double x, double y) const {
    return {Bounded((x - Left) * FactorX), Bounded((y - Top) * FactorY)};
}

PictureBox::Scale PictureBox::PixelScale() {
    EnsureImage();
    return {scaleLeft_, scaleTop_, image_.width() / scaleWidth_, image_.height() / scaleHeight_};
}

QPoint PictureBox::PixelAt(double x, double y) {
    const QPointF point = PixelScale().ToPixels(x, y);
    return {static_cast<int>(std::floor(point.x())), static_cast<int>(std::floor(point.y()))};
}

double PictureBox::ScaleX(double pixels) const {
    return pixels * scaleWidth_ / std::max(width(), 1);
}

double PictureBox::ScaleY(double pixels) const {
    return pixels * scaleHeight_ / std::max(height(), 1);
}

int PictureBox::WidthTwips() const {
    return PixelsToTwips(width());
}

int PictureBox::HeightTwips() const {
    return PixelsToTwips(height());
}

// ---- shapes

int PictureBox::PenWidth() const {
    return std::max(1, static_cast<int>(std::lround(drawWidth_ * image_.devicePixelRatio())));
}

QPen PictureBox::PenOf(std::int32_t color) const {
    const Qt::PenStyle style = drawStyle_ == DrawStyle::Dotted ? Qt::DotLine : Qt::SolidLine;
    QPen pen(ToColor(color), PenWidth(), style, Qt::FlatCap, Qt::BevelJoin);
    pen.setCosmetic(true);
    return pen;
}

void PictureBox::FillSpans(std::int32_t color) {
    QPainter& painter = Painter();
    painter.setPen(Qt::NoPen);
    painter.setBrush(ToColor(color));
    painter.drawRects(spans_.data(), static_cast<int>(spans_.size()));
}

void PictureBox::Line(double x1, double y1, double x2, double y2, std::int32_t color) {
    QPoint from = PixelAt(x1, y1);
    QPoint to = PixelAt(x2, y2);
    const bool straight = from.x() == to.x() || from.y() == to.y();
    if (straight && drawStyle_ == DrawStyle::Solid) {
        const int reach = (PenWidth() - 1) / 2;
        const QSize pen(PenWidth(), PenWidth());
        const QPoint corner(reach, reach);
        spans_ = {QRect(from - corner, pen).united(QRect(to - corner, pen))};
        FillSpans(color);
        return;
    }
    QPainter& painter = Painter();
    painter.setPen(PenOf(color));
    const QPointF middle(0.5, 0.5);
    painter.drawLine(from + middle, to + middle);
}

void PictureBox::Box(double x1, double y1, double x2, double y2, std::int32_t color) {
    const QSize pixel(1, 1);
    spans_ = {QRect(PixelAt(x1, y1), pixel).united(QRect(PixelAt(x2, y2), pixel))};
    FillSpans(color);
}

void PictureBox::Outline(double x1, double y1, double x2, double y2, std::int32_t color) {
    const QSize pixel(1, 1);
    const QRect box = QRect(PixelAt(x1, y1), pixel).united(QRect(PixelAt(x2, y2), pixel));
    const int pen = std::min({PenWidth(), box.width(), box.height()});
    const QSize row(box.width(), pen);
    const QSize column(pen, box.height());
    spans_ = {QRect(box.topLeft(), row), QRect(QPoint(box.left(), box.bottom() - pen + 1), row),
              QRect(box.topLeft(), column), QRect(QPoint(box.right() - pen + 1, box.top()), column)};
    FillSpans(color);
}

void PictureBox::DrawPoints(std::int32_t color) {
    if (points_.size() < 2) return;
    if (drawStyle_ == DrawStyle::Solid && RunsRightward(points_)) {
        FillCurveSpans(points_, PenWidth(), image_.size(), spans_);
        FillSpans(color);
        return;
    }
    QPainter& painter = Painter();
    painter.setPen(PenOf(color));
    painter.drawPolyline(points_.data(), static_cast<int>(points_.size()));
}

// ---- texts

void PictureBox::SetFont(const std::string& name, double points, bool bold) {
    QFont font(ToText(name));
    font.setPointSizeF(std::max(points, 1.0));
    font.setBold(bold);
    if (font == font_) return;
    font_ = font;
    metrics_ = QFontMetricsF(font_, &image_);
    if (painter_) painter_->setFont(font_);
}

// The base line begins at a device pixel; the font's size is in points, so the text is drawn in logical ones.
void PictureBox::DrawText(const QPointF& baseline, double angle, std::string_view text) {
    QPainter& painter = Painter();
    painter.setPen(ToColor(foreColor_));
    painter.save();
    painter.resetTransform();
    painter.translate(baseline / image_.devicePixelRatio());
    painter.rotate(angle);
    painter.drawText(QPointF(0, 0), ToText(text));
    painter.restore();
}

void PictureBox::Print(std::string_view text) {
    const QPointF corner = PixelScale().ToPixels(currentX_, currentY_);
    const double ascent = metrics_.ascent() * image_.devicePixelRatio();
    DrawText({corner.x(), std::round(corner.y() + ascent)}, 0, text);
    currentX_ += TextWidth(text);
}

void PictureBox::PrintUpwards(std::string_view text) {
    const QPointF corner = PixelScale().ToPixels(currentX_, currentY_);
    const double ascent = metrics_.ascent() * image_.devicePixelRatio();
    DrawText({std::round(corner.x() + ascent), corner.y()}, -90, text);
    currentY_ -= ScaleY(metrics_.horizontalAdvance(ToText(text)));
}

double PictureBox::TextWidth(std::string_view text) const {
    return ScaleX(metrics_.horizontalAdvance(ToText(text)));
}

double PictureBox::TextHeightPixels(std::string_view text) const {
    return metrics_.height() * static_cast<double>(1 + std::count(text.begin(), text.end(), '\n'));
}

double PictureBox::TextHeight(std::string_view text) const {
    return ScaleY(TextHeightPixels(text));
}

double PictureBox::TextHeightTwips(std::string_view text) const {
    return TextHeightPixels(text) * TwipsPerPixel;
}

} // namespace korvalin
