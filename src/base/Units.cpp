#include "base/Units.h"

#include <algorithm>

namespace korvalin {

std::optional<std::int32_t> FindUnitFactor(std::string_view unitName) {
    const auto* const found =
        std::find_if(Units.begin(), Units.end(), [&](const Unit& unit) { return unit.Name == unitName; });
    if (found == Units.end()) return std::nullopt;
    return found->Bytes;
}

int UnitOptionIndex(std::string_view unitName, bool forRateUnits) {
    if (unitName == "KB" || unitName == "MB") return 1;
    if (unitName == "Kbit") return 2;
    if (unitName == "Mbit") return forRateUnits ? 3 : 2;
    return 0;
}

} // namespace korvalin
