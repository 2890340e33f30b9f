#pragma once

#include <cstdint>

namespace korvalin {

/// Opacity of a window that fades in, one step every 20 ms.
class Fade {
  public:
    static constexpr int StepMilliseconds = 20;

    void Start() { step_ = 0; }

    struct Tick {
        int Alpha; ///< 0 to 255
        bool Finished;
    };
    /// The next step towards `opacity` (10 to 255), the alpha of the window when it is wholly there.
    Tick Next(int opacity);

  private:
    std::int32_t step_ = 0;
};

} // namespace korvalin
