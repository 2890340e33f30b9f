#include "display/LiveTexts.h"

#include "base/ProgramTitle.h"
#include "display/TrayModel.h"
#include "errors/Errors.h"
#include "lang/Language.h"
#include "stats/MonthSums.h"
#include "stats/UseTexts.h"

#include <algorithm>

namespace korvalin {

std::string LiveTexts::Text(int number) const {
    return parts_.Language.Lng("modAllgemein", number, {.TrimIt = true, .ReportMissing = true});
}

void LiveTexts::Renew(InfoTexts& texts) {
    const auto lines = static_cast<int>(parts_.LineState.LineCount);
    if (lines > 0) texts.ChartLineNo = std::clamp(texts.ChartLineNo, 1, lines);
    texts.LineIndex = lines > 0 ? static_cast<std::size_t>(texts.ChartLineNo) : 0;
    texts.SampleIndex = parts_.RateHistory.Samples();
    FillInfoStrings(texts);
}

void LiveTexts::FillInfoStrings(InfoTexts& texts) {
    parts_.Errors.Step("FillInfoStrings", [&] {
        if (parts_.LineState.LineCount == 0) {
            for (auto* text : {&texts.RateDLText, &texts.AvgDLText, &texts.RateULText, &texts.AvgULText,
                               &texts.VolumeDLText, &texts.VolumeULText, &texts.VolumeTotalText,
                               &texts.PeriodVolumeText}) {
                *text = parts_.UnitFormat.FormatKB(0, texts.KBFactor, "0.0");
            }
            return FillOffline(texts);
        }
        if (texts.LineIndex == 0) return;
        const LineRecord& line = parts_.LineState.LineTable(texts.LineIndex);
        const HistorySample& sample = parts_.RateHistory.At(texts.SampleIndex, texts.LineIndex);
        const auto rate = [&](const auto& rates, int choice) {
            return parts_.UnitFormat.FormatKB(rates.at(static_cast<std::size_t>(choice - 1)), texts.KBFactor,
                                              "0.0");
        };
        texts.RateDLText = rate(sample.RateDL, texts.DisplayChoiceDL);
        texts.RateULText = rate(sample.RateUL, texts.DisplayChoiceUL);
        FillAverages(texts, line);
        FillVolumes(texts, line);

        AliasUse use;
        if (!line.LineName.empty()) {
            use = parts_.MonthSums.UseOfLine(line.EntryName);
            texts.PeriodVolumeText = parts_.UnitFormat.FormatMB(use.Volume.Used, texts.MBFactor, "#,##0");
            texts.FreeVolumeText =
                parts_.UnitFormat.FormatMB(use.Volume.Allowance - use.Volume.Used, texts.MBFactor, "#,##0");
        }
        if (!parts_.LineState.AnyLineConnected) return FillOffline(texts);
        texts.CaptionText = std::string(ProgramTitle) + "  " + Text(22) + " " + texts.RateULText + " " +
                            texts.RateDLText + " " + texts.RateUnitText + "  ";
        texts.TrayTipText = CutTrayTip(TrayTip(texts, line, use.Volume.Allowance));
        texts.TrayTipText += Outlook(texts, use);
    });
}

// A line of its own below the month's.
std::string LiveTexts::Outlook(const InfoTexts& texts, const AliasUse& use) const {
    if ((texts.TrayTextFlags & TrayVolumeMonth) == 0) return {};
    const auto amount = [&](double value) {
        if (use.IsOfHours()) return FormatDuration(value);
        std::int32_t factor = texts.MBFactor;
        return parts_.UnitFormat.FormatMB(value, factor, "#,##0") + " " + texts.VolumeUnitText;
    };
    const std::string text = OutlookText(use.Counted(), parts_.Language, amount);
    return text.empty() ? text : "\n" + text;
}

void LiveTexts::FillOffline(InfoTexts& texts) const {
    texts.CaptionText = std::string(ProgramTitle) + " - " + Text(10);
    texts.TrayTipText = texts.CaptionText;
}

void LiveTexts::FillAverages(InfoTexts& texts, const LineRecord& line) const {
    double received = 0;
    double transmitted = 0;
    // What an adapter had moved before it was seen took longer than its online time.
    const double seconds =
        parts_.LineState.AnyLineConnected ? parts_.UnitFormat.SecondsSince(line.Duration, false) : 0;
    if (seconds > 0) {
        received = (line.BytesReceived - line.UnseenReceived) / seconds;
        transmitted = (line.BytesTransmitted - line.UnseenTransmitted) / seconds;
    }
    texts.AvgDLText = parts_.UnitFormat.FormatKB(received, texts.KBFactor, "0.0");
    texts.AvgULText = parts_.UnitFormat.FormatKB(transmitted, texts.KBFactor, "0.0");
}

void LiveTexts::FillVolumes(InfoTexts& texts, const LineRecord& line) const {
    const auto volume = [&](double bytes) {
        return parts_.UnitFormat.FormatMB(bytes, texts.MBFactor, "#,##0.0");
    };
    texts.VolumeDLText = volume(line.BytesReceived);
    texts.VolumeULText = volume(line.BytesTransmitted);
    texts.VolumeTotalText = volume(line.BytesReceived + line.BytesTransmitted);
}

std::string LiveTexts::TrayTip(const InfoTexts& texts, const LineRecord& line, double freeBytes) const {
    const auto shows = [&](int flags) { return (texts.TrayTextFlags & flags) != 0; };
    std::string tip;
    if (shows(TrayLineName)) tip += line.LineName + "\n";
    if (shows(TrayRateUL | TrayRateDL)) {
        tip += Text(11);
        if (shows(TrayRateUL)) tip += " " + Text(12) + " " + texts.RateULText;
        if (shows(TrayRateDL)) tip += " " + Text(13) + " " + texts.RateDLText;
        tip += " " + texts.RateUnitText + "\n";
    }
    if (shows(TrayVolumeUL | TrayVolumeDL)) {
        tip += Text(14);
        if (shows(TrayVolumeUL)) tip += " " + Text(12) + " " + texts.VolumeULText;
        if (shows(TrayVolumeDL)) tip += " " + Text(13) + " " + texts.VolumeDLText;
        tip += " " + texts.VolumeUnitText + "\n";
    }
    if (shows(TrayVolumeTotal))
        tip += Text(9) + " " + texts.VolumeTotalText + " " + texts.VolumeUnitText + " ";
    if (shows(TrayDuration) && (parts_.LineState.MonitoredLineType == LineType::Ras || texts.ShowDuration)) {
        tip += " " + parts_.Language.Lng("frmStatistik", 14) + " " + FormatDuration(line.Duration) + "\n";
    }
    if (shows(TrayVolumeMonth)) {
        tip += Text(16) + " " + texts.PeriodVolumeText + " " + texts.VolumeUnitText;
        if (freeBytes > 0) {
            tip += " " + Text(17) + " " + texts.FreeVolumeText + " " + texts.VolumeUnitText + "\n";
        }
    }
    if (tip.ends_with('\n')) tip.pop_back();
    return tip;
}

} // namespace korvalin
