#include "dialogs/QtDialDialog.h"

#include "dialogs/frmDial.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmPopupMsg.h"
#include "forms/NameText.h"
#include "platform/Ras.h"

#include <QApplication>

namespace korvalin {

QtDialDialog::~QtDialDialog() {
    End();
}

void QtDialDialog::Begin(const std::string& entryName) {
    End();
    begun_ = true;
    window_ = new frmDial(texts_, entryName, QApplication::activeWindow());
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void QtDialDialog::ShowStage(DialStage stage) {
    if (window_) window_->ShowStage(stage);
}

bool QtDialDialog::Cancelled() const {
    return begun_ && (!window_ || window_->Cancelled());
}

void QtDialDialog::End() {
    begun_ = false;
    delete window_;
}

QString QtDialDialog::Reason(int error) const {
    switch (error) {
    case ErrorCannotFindPhonebookEntry:
        return texts_.Lng("frmDial", 7, "This entry is no longer in the phone book.");
    case ErrorNoCarrier: return texts_.Lng("frmDial", 8, "The remote station does not answer.");
    case ErrorNoDialtone: return texts_.Lng("frmDial", 9, "There is no dial tone.");
    case ErrorAuthenticationFailure:
        return texts_.Lng("frmDial", 10, "The user name or the password was not accepted.");
    default:
        return texts_.Lng(
            "frmDial", 11,
            "Please check the modem and the details of this entry in the phone book, then try again.");
    }
}

void QtDialDialog::ShowFailure(const std::string& entryName, int error) {
    const QStringList lines = {OneLineName(entryName),
                               texts_.Lng("frmDial", 6, "The connection could not be established."),
                               Reason(error)};
    PopupMessage message{lines.join(QLatin1Char('\n')), IconStyleExclamation, 0};
    if (window_) window_->hide();
    frmPopupMsg::ShowMsg(texts_, message, QApplication::activeWindow());
}

std::optional<Login> QtDialDialog::AskLogin(const std::string& entryName, const std::string& userName) {
    QWidget* const above = window_ ? window_ : QApplication::activeWindow();
    return frmLogin::Ask(texts_, entryName, userName, above);
}

} // namespace korvalin
