#pragma once

#include "dialogs/MessageTexts.h"
#include "platform/MessageBoxes.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

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

    /// From now on nobody can answer: the program ends, or the display is gone. A message is given to `keep`
    /// instead, and a question is answered No.
    void NobodyAnswers(std::function<void(const std::string& text)> keep) { keep_ = std::move(keep); }

    /// Shows a message that nobody has to answer, and returns at once. `chosen` is called when the user
    /// clicks on it, or on a button with that caption.
    void ShowNotice(const std::string& text, const std::string& title, const QString& caption,
                    const std::function<void()>& chosen);

    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override;
    void ShowWaiting(const std::string& text, const std::string& title) override;
    void CloseWaiting() override;

  private:
    QString Caption(MessageAnswer answer) const;

    MessageTexts texts_;
    std::unique_ptr<frmMessage> waiting_;
    std::function<void(const std::string& text)> keep_; // set when nobody answers
};

} // namespace korvalin
