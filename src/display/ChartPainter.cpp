#include "display/ChartPainter.h"

#include "base/Numbers.h"
#include "errors/Errors.h"
#include "forms/Colors.h"
#include "forms/PictureBox.h"
#include "forms/Twips.h"
#include "lang/Language.h"
#include "platform/Clock.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace korvalin {
namespace {

constexpr std::int32_t black = 0x000000;
constexpr std::int32_t red = 0x0000FF;
constexpr std::int32_t yellow = 0x00FFFF;

constexpr std::array<Date, 4> flagDays = {40342, 40347, 40352, 40356};

constexpr int smallestPictureTwips = 500;

// Above and below the drawing area is a band for a row of text: its whole cell, feet included, and a gap to
// the rule.
constexpr int gapPixels = 2;
constexpr int leastNeeded = 3; // the highest rank of a row's pieces

} // namespace

ChartPainter::ChartPainter(const Parts& parts) : parts_(parts) {}

std::string ChartPainter::Text(int number) const {
    return parts_.Language.Lng("modAllgemein", number);
}

bool ChartPainter::DrawChart(PictureBox& picture, const InfoTexts& texts, bool force, bool drawable) {
    bool isHighEnough = true;
    // Error logs have named it so, blank included, from the first version on.
    parts_.Errors.Step("DrawChart ", [&] {
        if (!force && !picture.isVisible()) return;
        if (!drawable) return;
        visibleSamples_ = VisibleSamplesFor(texts.picWidthMin);
        FindScale(texts);
        PreparePicture(picture, texts);
        DrawFlag(picture, texts);
        DrawTimeLines(picture, texts);
        DrawTopRow(picture, texts);
        DrawBottomRow(picture, texts);
        if (parts_.LineState.LineCount > 0) DrawLine(picture, texts, 1);
        picture.Refresh();
        isHighEnough = picture.HeightTwips() >= smallestPictureTwips;
    });
    return isHighEnough;
}

void ChartPainter::FindScale(const InfoTexts& texts) {
    double rounded = 0;
    if (parts_.LineState.LineCount > 0) {
        rounded = RoundUpToStep(LargestRate(parts_.RateHistory, texts.LineIndex, texts, visibleSamples_),
                                texts.KBFactor);
    }
    chartScale_[0] = korvalin::ScaleMaximum(rounded, texts);
}

void ChartPainter::PreparePicture(PictureBox& picture, const InfoTexts& texts) {
    picture.SetFont(texts.FontName, texts.FontSize, texts.FontBold);
    picture.SetDrawWidth(1);
    picture.SetDrawStyle(DrawStyle::Solid);
    const double scale = chartScale_[0];
    const double pictureHeight = picture.HeightTwips();
    const double band = picture.TextHeightTwips() + PixelsToTwips(gapPixels);
    // A picture lower than its text bands has no drawing area; the smallest there can be keeps the scale
    // finite.
    const double area = std::max(1 - 2 * band / pictureHeight, 0.01);
    picture.SetScaleLeft(1);
    picture.SetScaleWidth(static_cast<double>(visibleSamples_));
    picture.SetScaleHeight(-std::floor(scale / area));
    picture.SetScaleTop(scale - picture.ScaleY(band / TwipsPerPixel));
    picture.SetBackColor(texts.ChartBackgroundColor);
}

// Four match days of a summer.
void ChartPainter::DrawFlag(PictureBox& picture, const InfoTexts& texts) {
    const Date today = DayOf(parts_.Clock.Now());
    if (std::find(flagDays.begin(), flagDays.end(), today) == flagDays.end()) return;
    const double stripe = std::floor(chartScale_[0] / 2) / 3;
    double top = chartScale_[0];
    for (const std::int32_t color : {black, red, yellow}) {
        picture.Box(1, top, texts.TimeLinesSec / 2.0, top - stripe, color);
        top -= stripe;
    }
}

void ChartPainter::DrawTimeLines(PictureBox& picture, const InfoTexts& texts) {
    if (!texts.ShowTimeLines) return;
    picture.SetDrawStyle(DrawStyle::Dotted);
    for (const int x : TimeLinePositions(visibleSamples_, texts.TimeLinesSec)) {
        picture.Line(x, 0, x, chartScale_[0], ColorGrayText);
    }
    picture.SetDrawStyle(DrawStyle::Solid);
}

void ChartPainter::DrawRule(PictureBox& picture, double y) {
    picture.Line(1, y, static_cast<double>(visibleSamples_) + 2, y, ColorApplicationWorkspace);
}

void ChartPainter::DrawTopRow(PictureBox& picture, const InfoTexts& texts) {
    DrawRule(picture, chartScale_[0]);
    const auto uploadColor = texts.LineULColor.at(static_cast<std::size_t>(texts.DisplayChoiceUL - 1));
    const auto downloadColor = texts.LineDLColor.at(static_cast<std::size_t>(texts.DisplayChoiceDL - 1));
    const double scaleUnits = chartScale_[0] / texts.KBFactor;
    const std::string scaleText = FormatNumber(scaleUnits, scaleUnits >= 1000 ? "0" : "0.0", parts_.Locale);
    picture.SetCurrentY(picture.ScaleTop());
    PrintRow(picture,
             {{black, Text(6) + " " + scaleText, 1},
              {black, "   Avg. ", 3},
              {uploadColor, texts.AvgULText + " ", 3},
              {downloadColor, texts.AvgDLText, 3}},
             {{black, Text(8) + " ", 2},
              {uploadColor, texts.RateULText + " ", 0},
              {downloadColor, texts.RateDLText, 0},
              {black, " " + texts.RateUnitText + "/s", 0}});
}

void ChartPainter::DrawBottomRow(PictureBox& picture, const InfoTexts& texts) {
    DrawRule(picture, 0);
    const auto uploadColor = texts.LineULColor.at(static_cast<std::size_t>(texts.DisplayChoiceUL - 1));
    const auto downloadColor = texts.LineDLColor.at(static_cast<std::size_t>(texts.DisplayChoiceDL - 1));
    picture.SetCurrentY(picture.ScaleY(1));
    PrintRow(
        picture,
        {{black, Text(9) + " ", 2},
         {uploadColor, texts.VolumeULText + " ", 0},
         {downloadColor, texts.VolumeDLText, 0},
         {black, " (" + texts.VolumeTotalText + ")", 3},
         {black, " " + texts.VolumeUnitText, 0}},
        {{black,
          LineLabel(parts_.LineState, texts, parts_.Language.Lng("modAllgemein", 10, {.TrimIt = true})), 1}});
}

void ChartPainter::PrintRow(PictureBox& picture, RowPieces left, RowPieces right) const {
    const auto width = [&picture](const RowPieces& pieces) {
        return std::accumulate(pieces.begin(), pieces.end(), 0.0, [&](double sum, const RowPiece& piece) {
            return sum + picture.TextWidth(piece.Text);
        });
    };
    const double leftEdge = 2;
    const double rightEdge = static_cast<double>(visibleSamples_) + 1;
    for (int dropped = leastNeeded; dropped > 0; --dropped) {
        const double gap = right.empty() ? 0 : picture.TextWidth(" ");
        if (leftEdge + width(left) + gap + width(right) <= rightEdge) break;
        for (RowPieces* pieces : {&left, &right})
            std::erase_if(*pieces, [dropped](const RowPiece& piece) { return piece.Rank == dropped; });
    }
    const auto print = [&picture](const RowPieces& pieces) {
        for (const RowPiece& piece : pieces) {
            picture.SetForeColor(piece.Color);
            picture.Print(piece.Text);
        }
    };
    picture.SetCurrentX(leftEdge);
    print(left);
    picture.SetCurrentX(rightEdge - width(right));
    print(right);
}

void ChartPainter::DrawLine(PictureBox& picture, const InfoTexts& texts, std::size_t slot) {
    parts_.Errors.Step("DrawLine", [&] {
        // A value beyond the scale is drawn one pixel above the top rule.
        chartScale_.at(slot) = chartScale_[0] + std::abs(picture.ScaleY(1));
        const auto draw = [&](std::size_t rateSlot, Direction direction, std::int32_t color) {
            CurvePoints(parts_.RateHistory, texts.LineIndex, rateSlot, direction, visibleSamples_,
                        chartScale_.at(slot), points_);
            picture.Polyline(points_, color);
        };
        for (std::size_t c = 0; c < RateSlots; ++c) {
            if (texts.LineDLShow[c]) draw(c, Direction::Received, texts.LineDLColor[c]);
            if (texts.LineULShow[c]) draw(c, Direction::Sent, texts.LineULColor[c]);
        }
    });
}

} // namespace korvalin
