#pragma once

#include <string>

namespace korvalin {

enum class MessageIcon { Information, Warning, Critical, Question };
/// YesNoDefaultNo and YesNoCancel are for what may do harm: No is the button that the Return key presses.
enum class MessageButtons { Ok, YesNo, YesNoDefaultNo, YesNoCancel };
enum class MessageAnswer { Ok, Yes, No, Cancel };

/// Message windows. Where nobody can answer, a question is answered No.
class MessageBoxes {
  public:
    virtual ~MessageBoxes() = default;

    /// Shows a message and waits for the answer; a window closed without one counts as Ok, No or
    /// Cancel.
    virtual MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                               MessageButtons buttons) = 0;

    /// Shows a message that stays until CloseWaiting, and returns at once.
    virtual void ShowWaiting(const std::string& text, const std::string& title) = 0;

    /// Closes the waiting message if there is one.
    virtual void CloseWaiting() = 0;
};

} // namespace korvalin
