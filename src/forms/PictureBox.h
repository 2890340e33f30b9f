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
#include <string_view>
#include <vector>

namespace korvalin {

enum class DrawStyle { Solid, Dotted };

/// A picture with a scale of its user's choice: ScaleLeft and ScaleTop are the coordinates of the upper left
/// corner, the picture is ScaleWidth wide and ScaleHeight high; a negative height makes the value axis point
/// upwards.
///
/// Drawing goes into an image at the screen's own resolution and stays there until the picture is cleared or
/// resized; the widget only shows the image, so a picture can be drawn without a window. Colours are values
/// as in forms/Colors.h, texts are UTF-8.
class PictureBox : public QWidget {
    Q_OBJECT

  public:
    explicit PictureBox(QWidget* parent = nullptr);
    ~PictureBox() override;

    void SetScaleLeft(double value) { scaleLeft_ = value; }
    void SetScaleTop(double value) { scaleTop_ = value; }
    void SetScaleWidth(double value) { scaleWidth_ = value; }
    void SetScaleHeight(double value) { scaleHeight_ = value; }
    double ScaleLeft() const { return scaleLeft_; }
    double ScaleTop() const { return scaleTop_; }
    double ScaleWidth() const { return scaleWidth_; }
    double ScaleHeight() const { return scaleHeight_; }

    /// Where the next Print starts: the upper left corner of its text.
    void SetCurrentX(double x) { currentX_ = x; }
    void SetCurrentY(double y) { currentY_ = y; }
    double CurrentX() const { return currentX_; }
    double CurrentY() const { return currentY_; }

    /// The font of what is printed from now on.
    void SetFont(const std::string& name, double points, bool bold);
    void SetForeColor(std::int32_t color) { foreColor_ = color; }
    /// Also clears the picture.
    void SetBackColor(std::int32_t color);
    /// In logical pixels, at least 1.
    void SetDrawWidth(int pixels) { drawWidth_ = pixels; }
    void SetDrawStyle(DrawStyle style) { drawStyle_ = style; }

    /// A line in scale units, ends included, in the current style; color as red + 256 * green + 65536
    /// * blue.
    void Line(double x1, double y1, double x2, double y2, std::int32_t color);

    /// Fills the box between two corners; the pixels of both corners belong to it.
    void Box(double x1, double y1, double x2, double y2, std::int32_t color);

    /// The border of the box that Box would fill, as thick as a line.
    void Outline(double x1, double y1, double x2, double y2, std::int32_t color);

    /// Straight segments from point to point; a point has the members X and Y.
    template <typename Point>
    void Polyline(const std::vector<Point>& points, std::int32_t color) {
        const Scale scale = PixelScale();
        points_.clear();
        points_.reserve(points.size());
        for (const Point& point : points)
            points_.push_back(scale.ToPixels(point.X, point.Y));
        DrawPoints(color);
    }

    /// Prints in the fore colour and moves CurrentX behind the text.
    void Print(std::string_view text);
    /// Prints upwards: the text's cell, turned to the left, has its lower left corner at CurrentX, CurrentY,
    /// and CurrentY moves behind the text.
    void PrintUpwards(std::string_view text);

    // In units of the scale; a height is negative when the scale's is.
    double TextWidth(std::string_view text) const;
    /// Of all lines of the text.
    double TextHeight(std::string_view text = {}) const;
    double ScaleX(double pixels) const;
    double ScaleY(double pixels) const;

    /// Of the whole box.
    int WidthTwips() const;
    int HeightTwips() const;
    /// The height of the text's lines, of one line without a text.
    double TextHeightTwips(std::string_view text = {}) const;

    /// Clears the picture; the next text starts at 0, 0.
    void Cls();

    /// Shows what was drawn.
    void Refresh();

    /// The picture as it is now, at the screen's own resolution.
    QImage Picture() const;

  signals:
    /// The picture has another size or resolution than before, so what was drawn is gone.
    void DrawingLost();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    // From units of the scale to device pixels.
    struct Scale {
        double Left, Top, FactorX, FactorY;
        QPointF ToPixels(double x, double y) const;
    };
    Scale PixelScale();
    QPoint PixelAt(double x, double y);

    bool EnsureImage();
    void EndPainting();
    QPainter& Painter();
    int PenWidth() const;
    QPen PenOf(std::int32_t color) const;
    void FillSpans(std::int32_t color);
    void DrawPoints(std::int32_t color);
    double TextHeightPixels(std::string_view text) const;
    void DrawText(const QPointF& baseline, double angle, std::string_view text);

    QImage image_;
    std::optional<QPainter> painter_; // open from the first drawing call to the next showing
    QFont font_;
    QFontMetricsF metrics_;
    // Kept for their storage.
    std::vector<QPointF> points_;
    std::vector<QRect> spans_;
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
