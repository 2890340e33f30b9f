#include "lang/frmLanguage.h"

#include "ui_frmLanguage.h"

#include "errors/Errors.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"

#include <QIcon>

namespace korvalin {
namespace {
constexpr int iconPixels = 48;
}

frmLanguage::frmLanguage(Language& language, std::function<void()> textsChanged)
    : language_(language), textsChanged_(std::move(textsChanged)), ui_(std::make_unique<Ui::frmLanguage>()) {
    ui_->setupUi(this);
    Form_Load();
    // Only what the user does chooses: the preselected entry is a proposal until it is confirmed.
    connect(ui_->cboLanguage, &QComboBox::activated, this, [this] { ApplySelection(); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, [this] {
        ApplySelection();
        accept();
    });
}

frmLanguage::~frmLanguage() = default;

void frmLanguage::Form_Load() {
    ui_->imgIcon->setPixmap(windowIcon().pixmap(iconPixels));
    ui_->lblWelcome->setText(QStringLiteral("Welcome to %1.").arg(QString::fromLatin1(ProgramTitle.data(), static_cast<qsizetype>(ProgramTitle.size()))));
    const Language::Choices choices = language_.FillLanguageChoices();
    for (const std::string& name : choices.Names) ui_->cboLanguage->addItem(QString::fromStdString(name));
    ui_->cboLanguage->setCurrentIndex(static_cast<int>(choices.Selected));
    ApplyFormTexts(*this, language_);
    ui_->cboLanguage->setFocus();
}

void frmLanguage::ApplySelection() {
    if (!language_.ChooseLanguage(ui_->cboLanguage->currentText().toStdString())) return;
    ApplyFormTexts(*this, language_);
    textsChanged_();
}

} // namespace korvalin
