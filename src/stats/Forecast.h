// Where a billing period is going: from what is used so far, and from the days before.
#pragma once

#include "base/Date.h"

#include <string>

namespace korvalin {

/// What allowances and the provider's corrections are counted in, whatever unit the user chose for volumes.
inline constexpr double BytesPerAllowanceUnit = 1'000'000;

/// The use of an allowance, in bytes or, of hours, as a time span.
struct AllowanceUse {
    double Used = 0; ///< in the period so far
    double Today = 0;
    double MeanPerDay = 0;    ///< of the last days; 0 without a forecast
    double Allowance = 0;     ///< of the period; 0: none
    double DaysLeft = 0;      ///< of the period, the rest of today included
    int DaysToSpend = 1;      ///< the same in whole days with today
    bool HasForecast = false; ///< a day of use is over: the first hours of one say nothing of a month

    bool HasAllowance() const { return Allowance > 0; }
    /// What will be used at the end of the period when it goes on like the last days. Without a forecast what
    /// is used already.
    double Forecast() const { return Used + DaysLeft * MeanPerDay; }
    /// What is left of the allowance.
    double Left() const { return Used < Allowance ? Allowance - Used : 0; }
    /// What still fits on each day until the period ends.
    double LeftPerDay() const { return Left() / DaysToSpend; }
    /// How much of the allowance is used; 0 without one.
    double Percent() const { return HasAllowance() ? 100 * Used / Allowance : 0; }
};

/// The use of an alias in its running billing period.
struct AliasUse {
    std::string Alias;
    Date PeriodBegin = 0;
    Date PeriodEnd = 0; ///< its last day
    double FractionElapsed = 0;
    double Correction = 0; ///< bytes that the provider counts more, within Volume.Used
    AllowanceUse Volume;
    AllowanceUse Online;

    /// Whether hours are what runs out: volume counts unless only they have an allowance.
    bool IsOfHours() const { return !Volume.HasAllowance() && Online.HasAllowance(); }
    const AllowanceUse& Counted() const { return IsOfHours() ? Online : Volume; }
};

} // namespace korvalin
