#pragma once

#include <string>

namespace korvalin {

/// Tells the user something without waiting for an answer.
class Notifier {
  public:
    virtual ~Notifier() = default;

    /// Shows a notice.
    virtual void Notify(const std::string& title, const std::string& text) = 0;
};

} // namespace korvalin
