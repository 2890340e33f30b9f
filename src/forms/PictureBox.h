#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvalin {

enum class DrawStyle { Solid, Dotted };

/// A picture with a scale of the user's: coordinates from ScaleLeft and ScaleTop over ScaleWidth and ScaleHeight, the
/// height negative when the value axis points up. Everything is drawn into an image at the screen's own resolution and
/// stays until the next SetBackColor; the widget only shows it, so a picture can be drawn without a window.
/// Colours are values as in forms/Colors.h.
class PictureBox : public QWidget {
    Q_OBJECT

  public:
    explicit PictureBox(QWidget* parent = nullptr);

    void SetScaleLeft(double value) { scaleLeft_ = value; }
    void SetScaleTop(double value) { scaleTop_ = value; }
    void SetScaleWidth(double value) { scaleWidth_ = value; }
    void SetScaleHeight(double value) { scaleHeight_ = value; }

    void SetFont(const std::string& name, int points, bool bold);
    void SetDrawWidth(int pixels) { drawWidth_ = pixels; }
    void SetDrawStyle(DrawStyle style) { drawStyle_ = style; }
    void SetForeColor(std::int32_t color) { foreColor_ = color; }
    /// Also clears the picture.
    void SetBackColor(std::int32_t color);

    /// Where the next Print starts: the upper left corner of its text.
    void SetCurrentX(double x) { currentX_ = x; }
    void SetCurrentY(double y) { currentY_ = y; }
    double CurrentX() const { return currentX_; }

    void Line(double x1, double y1, double x2, double y2, std::int32_t color);
    /// A filled box between two corners, both included.
    void Box(double x1, double y1, double x2, double y2, std::int32_t color);
    /// Straight segments from point to point; each has members X and Y.
    template <typename Point>
    void Polyline(const std::vector<Point>& points, std::int32_t color) {
        pixels_.clear();
        pixels_.reserve(points.size());
        for (const Point& point : points) pixels_.emplace_back(ToPixels(point.X, point.Y));
        DrawPixels(color);
    }
    /// Prints in the fore colour and moves CurrentX behind the text.
    void Print(const std::string& text);

    // In units of the scale; a height has the sign of the scale's.
    double TextWidth(const std::string& text) const;
    double TextHeight() const;
    double ScaleX(double pixels) const;
    double ScaleY(double pixels) const;

    // In pixels: from the top of a text's cell to its base line, and the height of its capitals.
    double AscentPixels() const { return metrics_.ascent(); }
    double CapitalPixels() const { return metrics_.capHeight(); }

    double HeightTwips() const;
    double TextHeightTwips() const;

    /// Shows what was drawn.
    void Refresh();

    const QImage& Picture() const { return image_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QPointF ToPixels(double x, double y) const;
    QPainter& Painter();
    void EnsureImage();
    void DrawPixels(std::int32_t color);
    QPen Pen(std::int32_t color) const;

    QImage image_;
    std::optional<QPainter> painter_; // open from the first drawing call to Refresh
    QFont font_;
    QFontMetricsF metrics_;
    std::vector<QPointF> pixels_; // kept for its storage
    double scaleLeft_ = 0;
    double scaleTop_ = 0;
    double scaleWidth_ = 1;
    double scaleHeight_ = 1;
    double currentX_ = 0;
    double currentY_ = 0;
    int drawWidth_ = 1;
    DrawStyle drawStyle_ = DrawStyle::Solid;
    std::int32_t foreColor_ = 0;
    std::int32_t backColor_ = 0xFFFFFF;
};

} // namespace korvalin
