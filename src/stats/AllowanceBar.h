#pragma once

#include "stats/Forecast.h"

#include <QWidget>

namespace korvalin {

/// The use of an allowance at a glance: filled what is used, hatched what the forecast adds, framed the
/// allowance, and a mark where the period is by now.
class AllowanceBar : public QWidget {
    Q_OBJECT

  public:
    explicit AllowanceBar(QWidget* parent = nullptr);

    /// The use has an allowance.
    void ShowUse(const AllowanceUse& use, double fractionElapsed);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    double XOf(double amount) const;
    void PaintElapsed(QPainter& painter, double x) const;

    AllowanceUse use_;
    double fractionElapsed_ = 0;
};

} // namespace korvalin
