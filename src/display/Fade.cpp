#include "display/Fade.h"

#include "base/Numbers.h"

#include <algorithm>

namespace korvalin {
namespace {
constexpr double stepWidth = 12.8; // a twentieth of the full range
}

void Fade::Start(Direction direction) {
    direction_ = direction;
    step_ = 0;
}

Fade::Tick Fade::Next(int opacity) {
    const double next = step_ + stepWidth;
    const bool fadesIn = direction_ == Direction::In;
    if (next >= (fadesIn ? opacity : 256)) {
        step_ = 0;
        return {fadesIn ? opacity : 0, true, !fadesIn};
    }
    step_ = static_cast<std::int32_t>(RoundToEven(next));
    return {fadesIn ? step_ : std::min(256 - step_, 255), false, false};
}

} // namespace korvalin
