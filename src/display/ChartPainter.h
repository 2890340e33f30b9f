#pragma once

#include "base/Locale.h"
#include "display/ChartModel.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

class Clock;
class Errors;
class Language;
class PictureBox;

/// Paints the live rate chart of one line into a picture box.
class ChartPainter {
  public:
    struct Parts {
        const korvalin::LineState& LineState;
        const korvalin::RateHistory& RateHistory;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
        const korvalin::Locale& Locale;
    };
    explicit ChartPainter(const Parts& parts);

    /// Draws the whole chart, with its texts. Nothing is drawn while the picture is not visible, unless
    /// forced, nor while the main window does not show its chart (`drawable` false). False when the picture
    /// was too low for its texts.
    bool DrawChart(PictureBox& picture, const InfoTexts& texts, bool force, bool drawable);

    /// How many samples the chart's width holds.
    std::size_t VisibleSamples() const { return visibleSamples_; }

    /// Scale maximum of the last drawing in bytes per second.
    double ScaleMaximum() const { return chartScale_[0]; }

  private:
    /// A part of a row. Where both halves have not room enough, those of the highest rank go first; 0 stays.
    struct RowPiece {
        std::int32_t Color;
        std::string Text;
        int Rank;
    };
    using RowPieces = std::vector<RowPiece>;

    void FindScale(const InfoTexts& texts);
    void PreparePicture(PictureBox& picture, const InfoTexts& texts);
    void DrawFlag(PictureBox& picture, const InfoTexts& texts);
    void DrawTimeLines(PictureBox& picture, const InfoTexts& texts);
    void DrawTopRow(PictureBox& picture, const InfoTexts& texts);
    void DrawBottomRow(PictureBox& picture, const InfoTexts& texts);
    void PrintRow(PictureBox& picture, RowPieces left, RowPieces right) const;
    void DrawRule(PictureBox& picture, double y);
    void DrawLine(PictureBox& picture, const InfoTexts& texts, std::size_t slot);
    std::string Text(int number) const;

    Parts parts_;
    std::size_t visibleSamples_ = 0;
    std::array<double, 2> chartScale_{};
    std::vector<ChartPoint> points_; // kept for its storage
};

} // namespace korvalin
