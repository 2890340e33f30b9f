#pragma once

#include "dialogs/MessageTexts.h"
#include "platform/MessageBoxes.h"

#include <memory>

namespace korvalin {

class frmMessage;

/// Message windows of the desktop, all in the program's own look. Texts are shown as they are, never as rich
/// text.
class QtMessageBoxes : public MessageBoxes {
  public:
    QtMessageBoxes();
    ~QtMessageBoxes() override;

    /// Until then, and where a text is empty, the buttons are English.
    void Plug(Language& language) { texts_.Plug(language); }

    /// From now on nobody can answer: the display is gone.
    void DisplayLost() { displayLost_ = true; }

    /// Shows a message that nobody has to answer, and returns at once.
    void ShowNotice(const std::string& text, const std::string& title);

    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override;
    void ShowWaiting(const std::string& text, const std::string& title) override;
    void CloseWaiting() override;

  private:
    QString Caption(MessageAnswer answer) const;

    MessageTexts texts_;
    std::unique_ptr<frmMessage> waiting_;
    bool displayLost_ = false;
};

} // namespace korvalin
