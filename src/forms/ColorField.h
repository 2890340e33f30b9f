#pragma once

#include <QAbstractButton>

#include <cstdint>

namespace korvalin {

/// A button that is a field of its colour, to be clicked for another one. Colours are values as in
/// forms/Colors.h.
class ColorField : public QAbstractButton {
    Q_OBJECT

  public:
    explicit ColorField(QWidget* parent = nullptr);

    std::int32_t Color() const { return color_; }
    void SetColor(std::int32_t color);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::int32_t color_ = 0;
};

} // namespace korvalin
