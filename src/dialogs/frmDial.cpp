#include "dialogs/frmDial.h"

#include "dialogs/MessageTexts.h"
#include "forms/NameText.h"
#include "forms/ProgramIcon.h"
#include "ui_frmDial.h"

namespace korvalin {
namespace {

QString TextOf(DialStage stage, const MessageTexts& texts) {
    switch (stage) {
    case DialStage::Preparing: return texts.Lng("frmDial", 1, "Preparing the connection …");
    case DialStage::Connecting: return texts.Lng("frmDial", 2, "Connecting …");
    case DialStage::LoggingIn: return texts.Lng("frmDial", 3, "Logging in …");
    case DialStage::GettingAddress: return texts.Lng("frmDial", 4, "Getting an address …");
    }
    return {};
}

} // namespace

frmDial::frmDial(const MessageTexts& texts, const std::string& entryName, QWidget* parent)
    : QDialog(parent,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint),
      texts_(texts),
      ui_(std::make_unique<Ui::frmDial>()) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    texts_.ApplyTo(*this);
    ui_->lblEntry->setText(ShortName(entryName, ui_->lblEntry->fontMetrics(), ui_->prgBusy->minimumWidth()));
    ui_->lblEntry->setToolTip(ToolTipName(entryName));
    ShowStage(DialStage::Preparing);
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmDial::~frmDial() = default;

void frmDial::ShowStage(DialStage stage) {
    if (!cancelled_) ShowText(TextOf(stage, texts_));
}

void frmDial::ShowText(const QString& text) {
    ui_->lblStage->setText(text);
    ui_->prgBusy->setAccessibleName(text);
    setAccessibleDescription(ui_->lblEntry->text() + QLatin1Char('\n') + text);
}

void frmDial::reject() {
    cancelled_ = true;
    ui_->cmdCancel->setEnabled(false);
    ShowText(texts_.Lng("frmDial", 5, "Canceling …"));
}

} // namespace korvalin
