#pragma once

#include <functional>
#include <string>

namespace korvalin {

/// Tells the user something without waiting for an answer.
class Notifier {
  public:
    virtual ~Notifier() = default;

    /// Shows a notice; `clicked` runs when the user clicks on it, perhaps never.
    virtual void Notify(const std::string& title, const std::string& text, std::function<void()> clicked) = 0;
};

} // namespace korvalin
