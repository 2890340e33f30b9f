#include "dialogs/QtDialDialog.h"

#include "dialogs/frmDial.h"
#include "dialogs/frmLogin.h"

namespace korvalin {

QtDialDialog::QtDialDialog() = default;

QtDialDialog::~QtDialDialog() = default;

void QtDialDialog::Begin(const std::string& entryName) {
    window_ = std::make_unique<frmDial>(texts_, entryName);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void QtDialDialog::ShowStage(DialStage stage) {
    if (window_) window_->ShowStage(stage);
}

bool QtDialDialog::Cancelled() const {
    return window_ && window_->Cancelled();
}

void QtDialDialog::End() {
    window_.reset();
}

std::optional<Login> QtDialDialog::AskLogin(const std::string& entryName, const std::string& userName) {
    return frmLogin::Ask(texts_, entryName, userName, window_.get());
}

} // namespace korvalin
