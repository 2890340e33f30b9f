#include "display/TrayIcon.h"

#include "base/Text.h"
#include "errors/Errors.h"
#include "forms/Colors.h"
#include "forms/ProgramIcon.h"
#include "platform/NotificationArea.h"
#include "traffic/LineRecord.h"

#include <QPainter>
#include <QPixmap>

namespace korvalin {
namespace {

// In cells, from the left edge.
struct Columns {
    int First, Count;
};
constexpr Columns volumeColumns = {0, 5};
constexpr Columns uploadColumns = {6, 5};
constexpr Columns downloadColumns = {11, 5};

} // namespace

QImage DrawTrayPicture(const TrayBars& bars, const QColor& background, int pixels) {
    QImage picture(pixels, pixels, QImage::Format_RGB32);
    picture.fill(background);
    QPainter painter(&picture);
    const auto edge = [pixels](int cell) { return (cell * pixels + TrayScale / 2) / TrayScale; };
    const auto fill = [&](const Columns& columns, const TrayBar& bar) {
        const QPoint upperLeft(edge(columns.First), edge(TrayScale - bar.Height));
        const QPoint beyond(edge(columns.First + columns.Count), pixels);
        if (bar.Height > 0) painter.fillRect(QRect(upperLeft, beyond - QPoint(1, 1)), ToColor(bar.Color));
    };
    fill(volumeColumns, bars.Volume);
    fill(uploadColumns, bars.Upload);
    fill(downloadColumns, bars.Download);
    return picture;
}

TrayIcon::TrayIcon(const Parts& parts) : parts_(parts), imgTrayIcon_(ProgramIcon()) {}

TrayIcon::~TrayIcon() {
    parts_.NotificationArea.Remove();
}

void TrayIcon::TrayIconSet(bool add, const QIcon& picture, const std::string& tip) {
    if (!add) return parts_.NotificationArea.Remove();
    tip_ = tip;
    staticIconShown_ = false;
    drawn_.reset();
    parts_.NotificationArea.Add(picture, tip_, parts_.Menu);
}

void TrayIcon::TrayIconModify(const QIcon& picture, const std::string& tip) {
    parts_.NotificationArea.SetIcon(picture);
    const std::string_view trimmed = Trim(tip);
    if (!trimmed.empty()) TrayTipModify(std::string(trimmed));
}

void TrayIcon::TrayTipModify(const std::string& tip) {
    if (tip == tip_) return;
    tip_ = tip;
    parts_.NotificationArea.SetTip(tip_);
}

void TrayIcon::IconDraw(const InfoTexts& texts) {
    parts_.Errors.Step("IconDraw", [&] {
        if (!texts.TrayAnimated) {
            // Bars that no longer move would tell what is not true.
            if (drawn_) ShowStatic(texts.TrayTipText);
            return TrayTipModify(texts.TrayTipText);
        }
        if (parts_.LineState.AnyLineConnected) return DrawBars(texts, UseOfChartLine(texts));
        if (!staticIconShown_) ShowStatic(texts.TrayTipText);
        staticIconShown_ = true;
    });
}

void TrayIcon::ShowStatic(const std::string& tip) {
    drawn_.reset();
    TrayIconModify(imgTrayIcon_, tip);
}

PeriodUse TrayIcon::UseOfChartLine(const InfoTexts& texts) const {
    const auto line = static_cast<std::size_t>(texts.ChartLineNo);
    if (line < 1 || line > parts_.LineState.LineTable.Size()) return {};
    return parts_.MonthSums.UseOf(parts_.LineState.LineTable(line).EntryName);
}

void TrayIcon::DrawBars(const InfoTexts& texts, const PeriodUse& use) {
    staticIconShown_ = false;
    Drawn now = {MakeTrayBars(texts, use, parts_.Locale), ToColor(texts.ChartBackgroundColor),
                 parts_.NotificationArea.IconSizes()};
    if (drawn_ == now) return TrayTipModify(texts.TrayTipText);
    QIcon picTrayIconChart;
    for (const int size : now.Sizes)
        picTrayIconChart.addPixmap(QPixmap::fromImage(DrawTrayPicture(now.Bars, now.Background, size)));
    drawn_ = std::move(now);
    TrayIconModify(picTrayIconChart, texts.TrayTipText);
}

} // namespace korvalin
