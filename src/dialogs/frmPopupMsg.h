#pragma once

#include <QDialog>

#include <array>
#include <memory>
#include <optional>

namespace Ui {
class frmPopupMsg;
}

namespace korvalin {

class MessageTexts;

inline constexpr int IconStyleCritical = 16;
inline constexpr int IconStyleQuestion = 32;
inline constexpr int IconStyleExclamation = 48;
inline constexpr int IconStyleInformation = 64;

/// What ShowMsg shows.
struct PopupMessage {
    using ButtonCaptions = std::array<QString, 3>;

    QString Message;
    int IconStyle = IconStyleInformation;
    /// The button (from 0) that Esc and the close box stand for; without one, a cancel word tells it.
    std::optional<int> Cancel = {};
    QString Title = {};
    ButtonCaptions Captions = {};
    /// The button (from 0) that has the focus; one with a caption.
    int Default = 0;
};

/// The program's own message box: an icon, a text, and up to three buttons.
class frmPopupMsg : public QDialog {
    Q_OBJECT

  public:
    ~frmPopupMsg() override;

    /// Shows a message above all windows and waits; returns the index (from 0) of the pressed button. A box
    /// that is taken away unanswered counts as its cancel button, else as its last one.
    static int ShowMsg(const MessageTexts& texts, const PopupMessage& message, QWidget* parent = nullptr);

    /// Answers with the cancel button; without one it does nothing.
    void reject() override;

  private:
    frmPopupMsg(const MessageTexts& texts, const PopupMessage& message, QWidget* parent);

    void ShowIcon(int iconStyle);
    void ShowMessage(const QString& message);
    void ShowButtons(const PopupMessage::ButtonCaptions& captions, int defaultButton);
    void Place();
    int Unanswered() const { return cancel_.value_or(lastButton_); }

    const MessageTexts& texts_;
    std::unique_ptr<Ui::frmPopupMsg> ui_;
    std::optional<int> cancel_;
    int lastButton_ = 0;
};

} // namespace korvalin
