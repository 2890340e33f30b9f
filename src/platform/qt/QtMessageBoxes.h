#pragma once

#include "platform/MessageBoxes.h"

#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QMessageBox;
class QWidget;

namespace korvalin {

/// Message windows of the desktop, with captions in the program's language.
class QtMessageBoxes : public MessageBoxes {
  public:
    /// Caption of a button; empty for the toolkit's own.
    using CaptionOf = std::function<QString(MessageAnswer answer)>;

    QtMessageBoxes();
    ~QtMessageBoxes() override;

    void Plug(CaptionOf captionOf) { captionOf_ = std::move(captionOf); }

    MessageAnswer Show(const std::string& text, const std::string& title, MessageIcon icon,
                       MessageButtons buttons) override;
    void ShowWaiting(const std::string& text, const std::string& title) override;
    void CloseWaiting() override;

  private:
    CaptionOf captionOf_;
    std::unique_ptr<QMessageBox> waiting_;
};

} // namespace korvalin
