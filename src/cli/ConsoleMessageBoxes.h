#pragma once

#include "platform/MessageBoxes.h"

namespace korvalin {

/// Messages on standard error. Nobody is asked: every question is answered No.
class ConsoleMessageBoxes : public MessageBoxes {
  public:
    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override;
    void ShowWaiting(const std::string& text, const std::string& title) override;
    void CloseWaiting() override {}

    /// Whether an error was shown.
    bool ShowedError() const { return showedError_; }

  private:
    bool showedError_ = false;
};

} // namespace korvalin
