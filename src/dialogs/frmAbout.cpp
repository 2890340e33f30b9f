#include "dialogs/frmAbout.h"

#include "base/ProgramTitle.h"
#include "dialogs/MakerInfo.h"
#include "errors/Errors.h"
#include "forms/ProgramIcon.h"
#include "forms/SpokenName.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "platform/Shell.h"
#include "ui_frmAbout.h"

#include <QLocale>
#include <QPointer>

namespace korvalin {
namespace {

// Logical pixels; the icon brings a picture for four times as many.
constexpr int pictureSize = 64;
constexpr std::uint64_t mostMeasured = 1'000'000'000'000;

} // namespace

frmAbout::frmAbout(Parts parts) : parts_(std::move(parts)), ui_(std::make_unique<Ui::frmAbout>()) {
    ui_->setupUi(this);
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
    Form_Load();
    connect(ui_->lblLinkKorvalin, &QPushButton::clicked, this, [this] { lblLinkKorvalin_Click(); });
    connect(ui_->picKorvalin, &QPushButton::clicked, this, [this] { picKorvalin_Click(); });
    connect(ui_->lblInfoLink, &QPushButton::clicked, this, [this] { lblInfoLink_Click(); });
    connect(ui_->lblSupportMail, &QPushButton::clicked, this, [this] { lblSupportMail_Click(); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::close);
    connect(ui_->cmdUpdate, &QPushButton::clicked, this, [this] { cmdUpdate_Click(); });
    connect(ui_->cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    // Nobody would see what becomes of the check.
    connect(this, &QDialog::finished, this, [this] {
        if (checking_) hooks_.CancelUpdate();
    });
}

frmAbout::~frmAbout() = default;

void frmAbout::Plug(Hooks hooks) {
    hooks_ = std::move(hooks);
    ui_->cmdUpdate->setVisible(static_cast<bool>(hooks_.CheckUpdate));
}

void frmAbout::Open() {
    show();
    raise();
    activateWindow();
}

void frmAbout::Form_Load() {
    const QString title = QString::fromUtf8(ProgramTitle.data(), static_cast<qsizetype>(ProgramTitle.size()));
    setWindowIcon(ProgramIcon());
    ui_->picKorvalin->setIcon(ProgramIcon());
    ui_->picKorvalin->setIconSize({pictureSize, pictureSize});
    ui_->picKorvalin->setAccessibleName(title);
    ui_->lblTitle->setText(title);
    ui_->lblLinkKorvalin->setText(QString::fromUtf8(maker::ProgramPage));
    ui_->lblInfoLink->setText(QString::fromUtf8(maker::HelpPage));
    ui_->lblSupportMail->setText(QString::fromUtf8(maker::SupportMail));
    ui_->lblStatus->hide();
    ui_->cmdUpdate->hide();
    ShowRunning(false);
    ShowTexts();
    ui_->cmdOK->setFocus();
}

void frmAbout::ShowTexts() {
    ApplyFormTexts(*this, parts_.Language);
    const auto text = [](const std::string& utf8) { return QString::fromStdString(utf8); };
    Language& language = parts_.Language;
    setWindowTitle(text(std::string(ProgramTitle) + " " + language.Lng("frmAbout", 203)));
    ui_->lblVersion->setText(text(language.Lng("frmAbout", 201) + " Version " + parts_.Version));
    ui_->lblAuthor->setText(text(language.Lng("frmAbout", 202) + maker::Author));
    SpeakAs(*ui_->prgUpdate, text(language.Lng("frmAboutObj", 140)));
}

void frmAbout::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) ShowTexts();
}

void frmAbout::ShowStatus(const QString& text) {
    ui_->lblStatus->setText(text);
    ui_->lblStatus->setVisible(!text.isEmpty());
}

void frmAbout::ShowRunning(bool running) {
    ui_->cmdUpdate->setEnabled(!running);
    ui_->prgUpdate->setRange(0, 0); // busy, until there is something to measure
    ui_->prgUpdate->setVisible(running);
    ui_->lblBytes->clear();
    ui_->lblBytes->setVisible(running);
    ui_->cmdCancel->setVisible(running);
}

void frmAbout::ShowProgress(std::uint64_t received, std::optional<std::uint64_t> announced) {
    const auto kilobytes = [](std::uint64_t bytes) { return (bytes + 999) / 1000; };
    const auto text = [&](std::uint64_t bytes) {
        return QLocale::system().toString(static_cast<qulonglong>(kilobytes(bytes)));
    };
    // What is compressed on its way can become more than was announced; and anything can be announced.
    const bool measured = announced && received <= *announced && *announced > 0 && *announced < mostMeasured;
    ui_->prgUpdate->setRange(0, measured ? static_cast<int>(kilobytes(*announced)) : 0);
    ui_->prgUpdate->setValue(measured ? static_cast<int>(kilobytes(received)) : 0);
    ui_->lblBytes->setText(text(received) + (measured ? QLatin1String(" / ") + text(*announced) : QString()) +
                           QLatin1String(" KB"));
}

// A box that went although nothing opens would leave the user without the address too.
void frmAbout::OpenLink(const QString& address) {
    if (parts_.Shell.OpenAddress(address.toStdString())) {
        close();
    } else {
        ShowStatus(QString::fromStdString(parts_.Language.Lng("frmAbout", 204)));
    }
}

void frmAbout::lblLinkKorvalin_Click() {
    OpenLink(ui_->lblLinkKorvalin->text());
}

void frmAbout::picKorvalin_Click() {
    OpenLink(ui_->lblLinkKorvalin->text());
}

void frmAbout::lblInfoLink_Click() {
    OpenLink(ui_->lblInfoLink->text());
}

// In an address a blank is written as "%20".
void frmAbout::lblSupportMail_Click() {
    OpenLink(QLatin1String("mailto:") + ui_->lblSupportMail->text() + QLatin1String("?subject=Korvalin%20V") +
             QString::fromStdString(parts_.Version));
}

void frmAbout::cmdUpdate_Click() {
    // The check lets events pass: the box may be closed, and the button must not be pressed twice.
    const QPointer<frmAbout> box = this;
    const Hooks hooks = hooks_;
    ui_->cmdUpdate->setEnabled(false);
    checking_ = true;
    const int result = hooks.CheckUpdate();
    if (box) {
        checking_ = false;
        ui_->cmdUpdate->setEnabled(true);
    }
    if (result == NewProgramStarted) hooks.EndProgram();
}

void frmAbout::cmdCancel_Click() {
    hooks_.CancelUpdate();
}

} // namespace korvalin
