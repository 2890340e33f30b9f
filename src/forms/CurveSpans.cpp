#include "forms/CurveSpans.h"

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

int Floor(double value) {
    return static_cast<int>(std::floor(value));
}

// Collects the rows that the curve touches in one column after the other.
class ColumnWriter {
  public:
    ColumnWriter(QPointF start, int penWidth, QSize picture, std::vector<QRect>& spans)
        : penWidth_(penWidth),
          picture_(picture),
          spans_(spans),
          column_(Floor(start.x())),
          row_(Floor(start.y())),
          top_(row_),
          bottom_(row_) {}

    int Column() const { return column_; }

    void Touch(int row) {
        row_ = row;
        top_ = std::min(top_, row);
        bottom_ = std::max(bottom_, row);
    }

    // Goes to the next column. A gap of several rows is shared by both, so that the curve has no hole; one of
    // a single row stays diagonal, as a thin line has it.
    void Step(int row) {
        const int gap = row - row_;
        const int middle = std::abs(gap) > 1 ? row_ + gap / 2 : row_;
        const int next = std::abs(gap) > 1 ? middle + (gap > 0 ? 1 : -1) : row;
        Touch(middle);
        Emit();
        ++column_;
        top_ = bottom_ = next;
        Touch(row);
    }

    // Columns that nobody sees.
    void SkipTo(int column, int row) {
        Emit();
        column_ = column;
        row_ = top_ = bottom_ = row;
    }

    void Emit() {
        const int reach = (penWidth_ - 1) / 2;
        if (column_ - reach >= picture_.width() || column_ - reach + penWidth_ <= 0) return;
        const QRect span(column_ - reach, top_ - reach, penWidth_, bottom_ - top_ + penWidth_);
        if (!spans_.empty()) {
            QRect& last = spans_.back();
            if (last.top() == span.top() && last.bottom() == span.bottom() &&
                last.right() + 1 >= span.left()) {
                last.setRight(span.right());
                return;
            }
        }
        spans_.push_back(span);
    }

  private:
    int penWidth_;
    QSize picture_;
    std::vector<QRect>& spans_;
    int column_;
    int row_;
    int top_;
    int bottom_;
};

} // namespace

bool RunsRightward(const std::vector<QPointF>& points) {
    return std::is_sorted(points.begin(), points.end(),
                          [](const QPointF& left, const QPointF& right) { return left.x() < right.x(); });
}

void FillCurveSpans(const std::vector<QPointF>& points, int penWidth, QSize picture,
                    std::vector<QRect>& spans) {
    spans.clear();
    if (points.empty()) return;
    ColumnWriter writer(points.front(), penWidth, picture, spans);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const QPointF from = points[i - 1];
        const QPointF to = points[i];
        const int target = Floor(to.x());
        const auto rowAt = [&](int column) { // at the middle of the column
            return Floor(from.y() + (to.y() - from.y()) * (column + 0.5 - from.x()) / (to.x() - from.x()));
        };
        const int firstSeen = std::min(-penWidth, target - 1);
        if (writer.Column() < firstSeen) writer.SkipTo(firstSeen, rowAt(firstSeen));
        const int lastSeen = std::min(target - 1, picture.width() + penWidth);
        while (writer.Column() < lastSeen)
            writer.Step(rowAt(writer.Column() + 1));
        if (writer.Column() > picture.width() + penWidth) return;
        if (writer.Column() < target) {
            writer.Step(Floor(to.y()));
        } else {
            writer.Touch(Floor(to.y()));
        }
    }
    writer.Emit();
}

} // namespace korvalin
