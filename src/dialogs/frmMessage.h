#pragma once

#include <QDialog>

#include <cstdint>
#include <memory>

namespace Ui {
class frmMessage;
}

namespace korvalin {

class MessageTexts;

/// What a message window does beside showing its text.
enum MessageOption : std::uint32_t {
    /// The program closes the window when it is done; the user has nothing to click away.
    MessageWaits = 1,
};

/// A plain message above all other windows. It goes by its OK button only: the window manager cannot close
/// it.
class frmMessage : public QDialog {
    Q_OBJECT

  public:
    explicit frmMessage(const MessageTexts& texts);
    ~frmMessage() override;

    // To be set before the window is shown.
    QString Msg_Text;
    QString Msg_Action; ///< a second button's caption; a click on the text does the same. Empty: none
    std::uint32_t Msg_Options = 0; ///< MessageOption

    /// Does nothing.
    void reject() override {}

  signals:
    /// The user wants the action; the window has closed.
    void ActionChosen();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void Form_Load();
    void PlaceMessage();
    void ChooseAction();

    const MessageTexts& texts_;
    std::unique_ptr<Ui::frmMessage> ui_;
};

} // namespace korvalin
