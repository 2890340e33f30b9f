#pragma once

namespace korvalin {

/// What the billing rules make of a line's current period, the running connection included.
struct PeriodUse {
    double UsedBytes = 0;
    double FreeBytes = 0;       ///< allowance of the period; 0 = none
    bool TrayVol = false;       ///< the tray shows what is left of the allowance instead of what is used
    double FractionElapsed = 0; ///< of the period
};

} // namespace korvalin
