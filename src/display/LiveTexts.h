#pragma once

#include "display/InfoTexts.h"
#include "display/RateHistory.h"
#include "lang/UnitFormat.h"
#include "traffic/LineRecord.h"

namespace korvalin {

class Language;
class MonthSums;
struct AliasUse;

/// Builds the texts of caption, tooltip and chart from the line table and the newest sample.
class LiveTexts {
  public:
    struct Parts {
        const korvalin::LineState& LineState;
        const korvalin::RateHistory& RateHistory;
        korvalin::MonthSums& MonthSums;
        korvalin::UnitFormat& UnitFormat;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
    };
    explicit LiveTexts(const Parts& parts) : parts_(parts) {}

    /// Chooses the newest sample of the charted line, whose number becomes that of the last line when there
    /// are fewer by now, and makes its texts.
    void Renew(InfoTexts& texts);

    /// Fills the output texts of the chosen line and sample; settings and choice stay.
    void FillInfoStrings(InfoTexts& texts);

  private:
    std::string Text(int number) const;
    void FillOffline(InfoTexts& texts) const;
    void FillAverages(InfoTexts& texts, const LineRecord& line) const;
    void FillVolumes(InfoTexts& texts, const LineRecord& line) const;
    std::string TrayTip(const InfoTexts& texts, const LineRecord& line, double freeBytes) const;

    std::string Outlook(const InfoTexts& texts, const AliasUse& use) const;

    Parts parts_;
};

} // namespace korvalin
