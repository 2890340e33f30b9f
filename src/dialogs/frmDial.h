#pragma once

#include "platform/DialDialog.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmDial;
}

namespace korvalin {

class MessageTexts;

/// Shows, above all other windows, how far dialing is. Its button, Esc and the close box ask to cancel; who
/// dials takes the window away.
class frmDial : public QDialog {
    Q_OBJECT

  public:
    frmDial(const MessageTexts& texts, const std::string& entryName, QWidget* parent);
    ~frmDial() override;

    void ShowStage(DialStage stage);
    bool Cancelled() const { return cancelled_; }

    /// Asks to cancel.
    void reject() override;

  private:
    void ShowText(const QString& text);

    const MessageTexts& texts_;
    std::unique_ptr<Ui::frmDial> ui_;
    bool cancelled_ = false;
};

} // namespace korvalin
