#pragma once

#include "display/InfoTexts.h"
#include "display/RateHistory.h"
#include "display/UnitFormat.h"
#include "traffic/LineRecord.h"

#include <functional>

namespace korvalin {

class Language;

/// What the billing rules make of a line's volume in the current period.
struct PeriodVolume {
    double UsedBytes = 0;
    double FreeBytes = 0; ///< allowance of the period; 0 = none
};

/// Builds the texts of caption, tooltip and chart from the line table and the newest sample.
class LiveTexts {
  public:
    /// Volume of the current billing period, the running connection's included.
    using PeriodVolumeOf = std::function<PeriodVolume(const LineRecord& line)>;

    LiveTexts(const LineState& lines, const RateHistory& history, UnitFormat& units, Language& language,
              Errors& errors);

    void Plug(PeriodVolumeOf periodVolumeOf) { periodVolumeOf_ = std::move(periodVolumeOf); }

    void FillInfoStrings(InfoTexts& texts);

  private:
    std::string Text(int number) const;
    void FillOffline(InfoTexts& texts) const;
    void FillAverages(InfoTexts& texts, const LineRecord& line) const;
    void FillVolumes(InfoTexts& texts, const LineRecord& line) const;
    std::string TrayTip(const InfoTexts& texts, const LineRecord& line, double freeBytes) const;

    const LineState& lines_;
    const RateHistory& history_;
    UnitFormat& units_;
    Language& language_;
    Errors& errors_;
    PeriodVolumeOf periodVolumeOf_;
};

} // namespace korvalin
