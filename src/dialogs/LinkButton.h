#pragma once

#include <QPushButton>

namespace korvalin {

/// A link: an address, or a picture that stands for one. Like any button it is pressed by mouse, Space and
/// Enter.
class LinkButton : public QPushButton {
    Q_OBJECT

  public:
    explicit LinkButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool IsPicture() const { return !icon().isNull(); }
};

} // namespace korvalin
