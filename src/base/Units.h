// The units of rates and volumes and the number of bytes each stands for.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace korvalin {

struct Unit {
    std::string_view Name;
    std::int32_t Bytes;
};

/// In the order in which a list offers them. A bit unit is the decimal unit divided by 8.
inline constexpr std::array<Unit, 10> Units = {{{"Byte", 1},
                                                {"Kbit", 1000 / 8},
                                                {"KB", 1000},
                                                {"KiB", 1024},
                                                {"Mbit", 1000000 / 8},
                                                {"MB", 1000000},
                                                {"MiB", 1048576},
                                                {"Gbit", 1000000000 / 8},
                                                {"GB", 1000000000},
                                                {"GiB", 1073741824}}};

/// Bytes per unit; names are compared with exact letter case. nullopt for a name that is no unit.
std::optional<std::int32_t> FindUnitFactor(std::string_view unitName);

/// Index of the unit option in the settings dialog: binary 0, decimal 1, Kbit 2, Mbit 3 among the rate
/// options
/// (`forRateUnits`) and 2 among the volume options; 0 for any other name.
int UnitOptionIndex(std::string_view unitName, bool forRateUnits);

} // namespace korvalin
