#pragma once

#include "traffic/LanReader.h"
#include "traffic/RasReader.h"

namespace korvalin {

class Internet;
class User;

/// Decides once per pass what is monitored, dial-up lines or adapters, and has the line table filled.
class LineMonitor {
  public:
    struct Parts {
        korvalin::LineState& LineState;
        korvalin::LineBook& LineBook;
        korvalin::RasReader& RasReader;
        korvalin::LanReader& LanReader;
        korvalin::CounterLedger& CounterLedger;
        const korvalin::TrafficOptions& TrafficOptions;
        korvalin::Internet& Internet;
        korvalin::User& User;
        korvalin::Clock& Clock;
        korvalin::Errors& Errors;
    };
    explicit LineMonitor(const Parts& parts) : parts_(parts) {}

    /// One pass; called at the start of every update.
    void Get_Bytes_Transmitted();

    /// One more pass, after which PreviousLineTable holds what it has read: what is recorded when the program
    /// ends.
    void TakeLastReading();

    /// The wall clock was set by `days`: moves every moment remembered here with it, so that durations stay
    /// true. Connections that find themselves in another day are recorded up to here, with the moments of the
    /// clock before.
    void ShiftMoments(Date days);

    /// Whether dial-up lines too are recorded in parts that end with the day.
    bool DividesDialUps() const { return parts_.TrafficOptions.Split == SplitDays::All; }

  private:
    void Pass();
    void TakeSnapshot();
    bool IsDivided(const LineRecord& line) const;
    void DivideAtMidnight();
    void DetermineLineType();
    void AdvanceEndedCalls();
    void CloseLines();

    Parts parts_;
    bool firstPassDone_ = false;
};

} // namespace korvalin
