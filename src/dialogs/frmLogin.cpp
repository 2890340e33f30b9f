#include "dialogs/frmLogin.h"

#include "dialogs/MessageTexts.h"
#include "forms/NameText.h"
#include "forms/ProgramIcon.h"
#include "ui_frmLogin.h"

#include <QPointer>

namespace korvalin {
namespace {

constexpr int widestEntry = 320; // logical pixels

} // namespace

std::optional<Login> frmLogin::Ask(const MessageTexts& texts, const std::string& entryName,
                                   const std::string& userName, QWidget* parent) {
    // The window above which this one stands may be deleted, and this one with it, while it waits.
    const QPointer<frmLogin> window = new frmLogin(texts, entryName, userName, parent);
    const bool accepted = window->exec() == QDialog::Accepted;
    std::optional<Login> login;
    if (accepted && window) login = window->TakeLogin();
    delete window;
    return login;
}

frmLogin::frmLogin(const MessageTexts& texts, const std::string& entryName, const std::string& userName,
                   QWidget* parent)
    : QDialog(parent,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      ui_(std::make_unique<Ui::frmLogin>()) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    texts.ApplyTo(*this);
    ui_->lblEntry->setText(ShortName(entryName, ui_->lblEntry->fontMetrics(), widestEntry));
    ui_->lblEntry->setToolTip(ToolTipName(entryName));
    setAccessibleDescription(ui_->lblQuestion->text() + QLatin1Char(' ') + ui_->lblEntry->text());
    ui_->txtUser->setText(QString::fromStdString(userName));
    (userName.empty() ? ui_->txtUser : ui_->txtPassword)->setFocus();
    connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmLogin::~frmLogin() = default;

Login frmLogin::TakeLogin() {
    Login login{ui_->txtUser->text().toStdString(), ui_->txtPassword->text().toStdString()};
    ui_->txtPassword->clear();
    return login;
}

} // namespace korvalin
