#pragma once

#include "platform/DialDialog.h"

#include <QDialog>

#include <memory>
#include <optional>

namespace Ui {
class frmLogin;
}

namespace korvalin {

class MessageTexts;

/// Asks for user name and password of a phone book entry.
class frmLogin : public QDialog {
    Q_OBJECT

  public:
    ~frmLogin() override;

    /// Asks above all windows and waits; nothing when the user cancels or the window is taken away.
    static std::optional<Login> Ask(const MessageTexts& texts, const std::string& entryName,
                                    const std::string& userName, QWidget* parent);

  private:
    frmLogin(const MessageTexts& texts, const std::string& entryName, const std::string& userName,
             QWidget* parent);

    Login TakeLogin();

    std::unique_ptr<Ui::frmLogin> ui_;
};

} // namespace korvalin
