#pragma once

#include <cstdlib>

/// Ends the target, whose input is then kept, when something does not hold.
inline void Require(bool holds) {
    if (!holds) std::abort();
}
