#pragma once

#include "base/Date.h"
#include "base/Locale.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace korvalin {

class Clock;
class Errors;

/// Byte counts in the units that the user chose.
class UnitFormat {
  public:
    UnitFormat(Errors& errors, const Locale& locale, Clock& clock);

    /// Bytes per unit; an unknown name counts as 1000 and is noted in the error log.
    std::int32_t UnitFactor(std::string_view unitName);

    /// Takes the program-wide units, by name.
    void SetUnits(std::string_view rateUnit, std::string_view volumeUnit);

    /// `value` bytes divided by `factor` and formatted ("0.0", "#,##0" ...); a factor of 0 becomes the rate
    /// unit's.
    std::string FormatKB(double value, std::int32_t& factor, std::string_view format) const;
    /// The same with the volume unit's factor.
    std::string FormatMB(double value, std::int32_t& factor, std::string_view format) const;

    /// Bytes of the program-wide volume unit.
    std::int32_t VolumeFactor() const { return volumeFactor_; }

    /// With `toNow` the whole seconds from `date` to now, otherwise `date` itself as a time span in whole
    /// seconds.
    std::int32_t SecondsSince(Date date, bool toNow) const;

  private:
    Errors& errors_;
    const Locale& locale_;
    Clock& clock_;
    std::int32_t rateFactor_ = 1000;
    std::int32_t volumeFactor_ = 1'000'000;
};

} // namespace korvalin
