#include "lang/frmLanguage.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "forms/ProgramIcon.h"
#include "forms/SpokenName.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "ui_frmLanguage.h"

#include <QEvent>
#include <QPushButton>

namespace korvalin {
namespace {

constexpr int imagePixels = 48;

} // namespace

frmLanguage::frmLanguage(Language& language) : language_(language), ui_(std::make_unique<Ui::frmLanguage>()) {
    ui_->setupUi(this);
    Form_Load();
    connect(ui_->cboLanguage, &QComboBox::currentIndexChanged, this, [this] { ApplySelection(); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, [this] {
        ApplySelection();
        language_.SetLanguageCode(SelectedCode());
        accept();
    });
}

frmLanguage::~frmLanguage() = default;

void frmLanguage::Form_Load() {
    const std::string title(ProgramTitle);
    setWindowIcon(ProgramIcon());
    ui_->imgIcon->setPixmap(ProgramIcon().pixmap(imagePixels));
    ui_->lblWelcome->setText(QString::fromStdString("Welcome to " + title + "."));
    const Language::Choices choices = language_.FillLanguageChoices();
    for (const std::string& name : choices.Names)
        ui_->cboLanguage->addItem(QString::fromStdString(name));
    ui_->cboLanguage->setCurrentIndex(static_cast<int>(choices.Selected));
    // Readable before anything is chosen; stored is only what the user chooses or confirms.
    if (language_.UseLanguage(SelectedCode())) ApplyTextsToLoadedForms(language_);
}

void frmLanguage::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) SpeakAs(*ui_->cboLanguage, windowTitle());
}

std::string frmLanguage::SelectedCode() const {
    return ui_->cboLanguage->currentText().left(3).toStdString();
}

void frmLanguage::ApplySelection() {
    if (language_.ChooseLanguage(ui_->cboLanguage->currentText().toStdString()))
        ApplyTextsToLoadedForms(language_);
}

} // namespace korvalin
