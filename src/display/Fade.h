#pragma once

#include <cstdint>

namespace korvalin {

/// Opacity of a window that fades in or out, one step every 20 ms.
class Fade {
  public:
    enum class Direction { None, In, Out };

    static constexpr int StepMilliseconds = 20;

    void Start(Direction direction);

    struct Tick {
        int Alpha; ///< 0 to 255
        bool Finished;
        bool Unload; ///< the window has faded out and is to be closed
    };
    /// The next step towards `opacity` (10 to 255), the alpha of the window when it is wholly there.
    Tick Next(int opacity);

  private:
    Direction direction_ = Direction::None;
    std::int32_t step_ = 0;
};

} // namespace korvalin
