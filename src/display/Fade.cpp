#include "display/Fade.h"

#include "base/Numbers.h"

namespace korvalin {
namespace {
constexpr double stepWidth = 12.8; // a twentieth of the full range
}

Fade::Tick Fade::Next(int opacity) {
    const double next = step_ + stepWidth;
    if (next >= opacity) return {opacity, true};
    step_ = static_cast<std::int32_t>(RoundToEven(next));
    return {step_, false};
}

} // namespace korvalin
