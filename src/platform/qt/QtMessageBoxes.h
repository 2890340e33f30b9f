#pragma once

#include "platform/MessageBoxes.h"

#include <functional>
#include <memory>

namespace korvalin {

class WaitingMessage;

/// Message windows of the desktop. Texts are shown as they are, never as rich text.
class QtMessageBoxes : public MessageBoxes {
  public:
    /// Caption of a button in the program's language; empty while there are no texts.
    using CaptionOf = std::function<std::string(MessageAnswer answer)>;

    QtMessageBoxes();
    ~QtMessageBoxes() override;

    /// Until then, and where a caption is empty, the buttons are English.
    void Plug(CaptionOf captionOf) { captionOf_ = std::move(captionOf); }

    /// From now on nobody can answer: the display is gone.
    void DisplayLost() { displayLost_ = true; }

    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override;
    void ShowWaiting(const std::string& text, const std::string& title) override;
    void CloseWaiting() override;

  private:
    CaptionOf captionOf_;
    std::unique_ptr<WaitingMessage> waiting_;
    bool displayLost_ = false;
};

} // namespace korvalin
