#include "settingsdlg/frmEinstellungen.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "data/DataFolder.h"
#include "display/ChartPainter.h"
#include "display/LiveTexts.h"
#include "display/SamplingLoop.h"
#include "errors/Errors.h"
#include "forms/BoundBox.h"
#include "forms/Combos.h"
#include "forms/Enabling.h"
#include "forms/FocusedWheel.h"
#include "forms/KeptWhileAsking.h"
#include "forms/ProgramIcon.h"
#include "forms/SpokenName.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "platform/MessageBoxes.h"
#include "settings/Settings.h"
#include "settingsdlg/ChoiceLists.h"
#include "settingsdlg/TypedValues.h"
#include "ui_frmEinstellungen.h"

#include <QFileDialog>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>
#include <vector>

namespace korvalin {
namespace {

constexpr int previewMilliseconds = 1000;
constexpr int keyRole = Qt::UserRole;

using Form = Ui::frmEinstellungen;

/// A page of the tree, and the frames that it shows one below the other.
struct Page {
    const char* Key;
    const char* Parent; ///< nullptr at the root
    const char* Section;
    int TextNumber;
    std::vector<QWidget*> Frames;
    void (NetworkPages::*Fill)() = nullptr; ///< what the page shows is read when it is shown

    bool Has(const QWidget* frame) const {
        return std::find(Frames.begin(), Frames.end(), frame) != Frames.end();
    }
};

std::vector<Page> PagesOf(const Form& ui) {
    return {{"tvAllg", nullptr, "frmEinstellungen", 6, {ui.frmSystem, ui.frmConnection}},
            {"tvDarst", nullptr, "frmEinstellungenObj", 75, {ui.frmGrafikAllgemein}},
            {"tvEinheit", "tvDarst", "frmEinstellungen", 9, {ui.frmKBRate, ui.frmMBVol}},
            {"tvUpload", "tvDarst", "frmEinstellungen", 11, {ui.frmUpload, ui.frmTextUpDown}},
            {"tvDownload", "tvDarst", "frmEinstellungenObj", 19, {ui.frmDownload, ui.frmTextUpDown}},
            {"tvTray", nullptr, "frmEinstellungen", 14, {ui.frmTrayIcon, ui.frmTrayIconTxt}},
            {"tvInternet", nullptr, "frmEinstellungen", 27, {ui.frmFirewall, ui.frmUpdate}},
            {"tvNetInfo", nullptr, "frmEinstellungen", 16, {ui.frmConnInfo}, &NetworkPages::ShowConnection},
            {"tvNetAdapter", "tvNetInfo", "frmEinstellungen", 18, {}, &NetworkPages::ShowAdapters},
            {"tvNetIP", "tvNetInfo", "frmEinstellungen", 20, {}, &NetworkPages::ShowAddresses}};
}

// The check boxes of the tooltip's parts, by their flags.
struct TrayBox {
    QCheckBox* Form::*Box;
    int Flag;
};
constexpr TrayBox trayBoxes[] = {
    {&Form::boxTrayLine, TrayLineName},           {&Form::boxTrayRateUL, TrayRateUL},
    {&Form::boxTrayRateDL, TrayRateDL},           {&Form::boxTrayVolumeUL, TrayVolumeUL},
    {&Form::boxTrayVolumeDL, TrayVolumeDL},       {&Form::boxTrayVolumeTotal, TrayVolumeTotal},
    {&Form::boxTrayVolumeMonth, TrayVolumeMonth}, {&Form::boxTrayDuration, TrayDuration},
};

// The check boxes that show what is stored and count when the dialog is applied.
struct EnteredBox {
    QCheckBox* Form::*Box;
    SettingKey<bool> Key;
    bool EnteredSettings::*Field;
};
constexpr EnteredBox enteredBoxes[] = {
    {&Form::boxAutoStart, Keys::AutoStart, &EnteredSettings::AutoStart},
    {&Form::boxAutoZeigen, Keys::AutoShow, &EnteredSettings::AutoShow},
    {&Form::boxMultiInstance, Keys::MultiInstance, &EnteredSettings::MultiInstance},
    {&Form::boxAlwaysOnTop, Keys::ForeGround, &EnteredSettings::Foreground},
    {&Form::boxMultiScreen, Keys::MultiScreen, &EnteredSettings::MultiScreen},
    {&Form::boxFirewallUse, Keys::FirewallUse, &EnteredSettings::FirewallUse},
    {&Form::boxAutoUpdate, Keys::AutoUpdate, &EnteredSettings::AutoUpdate},
    {&Form::boxNoInet, Keys::NoInet, &EnteredSettings::NoInet},
};

QString AskForFolder(QWidget* parent, const QString& caption, const QString& current) {
    return QFileDialog::getExistingDirectory(parent, caption, current);
}

ChartPainter::Parts PainterParts(const frmEinstellungen::Parts& parts) {
    return {.LineState = parts.LineState,
            .RateHistory = parts.RateHistory,
            .Language = parts.Language,
            .Errors = parts.Errors,
            .Clock = parts.Clock,
            .Locale = parts.Locale};
}

SettingsApplier::Parts ApplierParts(const frmEinstellungen::Parts& parts) {
    return {.Settings = parts.Settings,
            .Language = parts.Language,
            .Errors = parts.Errors,
            .MessageBoxes = parts.MessageBoxes,
            .Locale = parts.Locale,
            .UnitFormat = parts.UnitFormat,
            .DataFolder = parts.DataFolder,
            .AutoStartEntry = parts.AutoStartEntry,
            .SamplingLoop = parts.SamplingLoop,
            .MonitorWindow = parts.MonitorWindow,
            .DisplaySettings = parts.InfoTexts,
            .TrafficOptions = parts.TrafficOptions};
}

} // namespace

frmEinstellungen::frmEinstellungen(const Parts& parts)
    : parts_(parts),
      chooseFolder_(AskForFolder),
      ui_(std::make_unique<Ui::frmEinstellungen>()),
      record_{parts.InfoTexts, parts.TrafficOptions},
      painter_(std::make_unique<ChartPainter>(PainterParts(parts))),
      applier_(ApplierParts(parts)) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint |
                   Qt::WindowContextHelpButtonHint);
    chart_ = std::make_unique<ChartEditor>(ChartEditor::Parts{.Dialog = *this,
                                                              .Controls = *ui_,
                                                              .Settings = parts_.Settings,
                                                              .Language = parts_.Language,
                                                              .UnitFormat = parts_.UnitFormat,
                                                              .Locale = parts_.Locale,
                                                              .SettingsRecord = record_});
    connect(chart_.get(), &ChartEditor::Changed, this, &frmEinstellungen::DrawPreview);
    network_ = std::make_unique<NetworkPages>(NetworkPages::Parts{.Controls = *ui_,
                                                                  .NetworkTables = parts_.NetworkTables,
                                                                  .Internet = parts_.Internet,
                                                                  .Language = parts_.Language,
                                                                  .Locale = parts_.Locale});
    new FocusedWheel(*this);
    Form_Load();
}

// Hiding it leaves the field that has the focus, whose check needs the whole dialog.
frmEinstellungen::~frmEinstellungen() {
    folderInQuestion_ = true;
    hide();
}

void frmEinstellungen::Warn(int textNumber) {
    parts_.MessageBoxes.Show(parts_.Language.Lng("frmEinstellungen", textNumber), std::string(ProgramTitle),
                             MessageIcon::Warning, MessageButtons::Ok);
}

// ---- loading

void frmEinstellungen::Form_Load() {
    unitCaption_ = ui_->optKB1->text();
    LoadSystem();
    LoadConnection();
    chart_->Load(record_.Display.ConnDataMax);
    LoadTransparency();
    LoadTray();
    LoadInternet();
    Connect();
    ApplyTexts();
    Timer1_.setInterval(previewMilliseconds);
    connect(&Timer1_, &QTimer::timeout, this, [this] { DrawPreview(); });
    Timer1_.start();
    loaded_ = true;
    FillTreeView();
    SizeForPages();
    adjustSize();
    DrawPreview();
}

QString frmEinstellungen::DialogText(int number) const {
    return QString::fromStdString(parts_.Language.Lng("frmEinstellungen", number));
}

void frmEinstellungen::ApplyTexts() {
    ApplyFormTexts(*this, parts_.Language);
    ui_->lbltxtUpDown1->setText(DialogText(1));
    ui_->lbltxtUpDown2->setText(DialogText(2));
    ui_->lbltxtUpDown3->setText(DialogText(3));
    // The controls in a frame without texts of their own answer with the frame's.
    const QString curves =
        DialogText(1) + QStringLiteral("\n\n") + DialogText(2) + QStringLiteral("\n\n") + DialogText(3);
    for (QWidget* frame :
         std::initializer_list<QWidget*>{ui_->frmDownload, ui_->frmUpload, ui_->frmTextUpDown})
        frame->setWhatsThis(curves);
    ui_->TreeView1->setWhatsThis(DialogText(37));
    for (QWidget* part : std::initializer_list<QWidget*>{ui_->ListView1, ui_->cmdButton1})
        part->setWhatsThis(DialogText(38));
    ui_->Pic->setWhatsThis(ui_->lblChartPreview->whatsThis());
    ui_->optKB1->setText(DialogText(4) + QLatin1Char(' ') + unitCaption_);
    ui_->TreeView1->setAccessibleName(windowTitle());
    SpeakAs(*ui_->cmdChooseDir, QString::fromStdString(parts_.Language.Lng("frmEinstellungenObj", 141)));
    network_->ApplyTexts(windowTitle());
    chart_->ApplyTexts();
}

void frmEinstellungen::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::LanguageChange || !loaded_) return;
    ApplyTexts();
    FillTreeView();
    SizeForPages();
    resize(size().expandedTo(sizeHint())); // the user may have made it larger
}

void frmEinstellungen::LoadSystem() {
    for (const EnteredBox& row : enteredBoxes)
        ((*ui_).*row.Box)->setChecked(parts_.Settings.Get(row.Key));
    ui_->boxCloseTrayIcon->setChecked(record_.Display.CloseTrayOnly);
    acceptedFolder_ = parts_.DataFolder.GetDataPath().string();
    ui_->txtDataPath->setText(QString::fromStdString(acceptedFolder_));
    const Language::Choices choices = parts_.Language.FillLanguageChoices();
    for (const std::string& name : choices.Names)
        ui_->cboLanguage->addItem(QString::fromStdString(name));
    ui_->cboLanguage->setCurrentIndex(static_cast<int>(choices.Selected));
}

std::string frmEinstellungen::Grouped(int value) const {
    return FormatNumber(value, "#,##0", parts_.Locale);
}

void frmEinstellungen::LoadConnection() {
    Bind(*ui_->boxLANProt, record_.Traffic.LanProt);
    EnableWith(*ui_->boxLANProt, {ui_->boxLANByNetwork, ui_->boxLANVirtual, ui_->boxProgRunTime,
                                  ui_->cboLANactive, ui_->lblLANactive, ui_->lblLANByte});
    Bind(*ui_->boxLANByNetwork, record_.Traffic.LanByNetwork);
    Bind(*ui_->boxLANVirtual, record_.Traffic.LanVirtual);
    Bind(*ui_->boxProgRunTime, record_.Display.ShowDuration, [this] { DrawPreview(); });
    FillCombo(*ui_->cboLANactive, LanActiveChoices(), [this](int value) { return Grouped(value); });
    ShowText(*ui_->cboLANactive, Grouped(record_.Traffic.LanActive));
}

// The list's text decides about the transparency from now on, so that it begins with whole percent.
void frmEinstellungen::LoadTransparency() {
    const auto percent = [](int value) { return std::to_string(value) + "%"; };
    FillCombo(*ui_->cboOpacity, OpacityChoices(), percent);
    ShowText(*ui_->cboOpacity, percent(TransparencyOfAlpha(record_.Display.Opacity)));
    cboOpacity_Change();
}

void frmEinstellungen::LoadTray() {
    DisplaySettings& display = record_.Display;
    Bind(*ui_->boxTrayAnimated, display.TrayAnimated);
    FillCombo(*ui_->cboTrayMaxRate, TrayRateChoices(), [](int value) { return std::to_string(value); });
    ShowText(*ui_->cboTrayMaxRate, std::to_string(display.TrayMaxRate));
    FillCombo(*ui_->cboTrayMaxVol, TrayVolumeChoices(), [this](int value) { return Grouped(value); });
    ShowText(*ui_->cboTrayMaxVol, Grouped(display.TrayMaxVol));
    for (const TrayBox& box : trayBoxes)
        ((*ui_).*box.Box)->setChecked((display.TrayTextFlags & box.Flag) != 0);
}

void frmEinstellungen::LoadInternet() {
    Settings& settings = parts_.Settings;
    EnableWith(*ui_->boxFirewallUse, {ui_->txtFirewallUser, ui_->txtFirewallPassword, ui_->lblFirewallUser,
                                      ui_->lblFirewallPassword});
    ui_->txtFirewallUser->setText(QString::fromStdString(settings.Get(Keys::FirewallUser)));
    ui_->txtFirewallPassword->setText(
        QString::fromStdString(settings.GetRegPassword(Keys::FirewallPassword)));
    const bool isWeekly = settings.Get(Keys::UpdateInterval) == Weekly;
    (isWeekly ? ui_->optUpdateInterval0 : ui_->optUpdateInterval1)->setChecked(true);
}

// ---- pages

void frmEinstellungen::FillTreeView() {
    const QSignalBlocker quiet(ui_->TreeView1);
    ui_->TreeView1->clear();
    QHash<QString, QTreeWidgetItem*> nodes;
    for (const Page& page : PagesOf(*ui_)) {
        QTreeWidgetItem* parent =
            page.Parent == nullptr ? ui_->TreeView1->invisibleRootItem() : nodes[QLatin1String(page.Parent)];
        const std::string text = parts_.Language.Lng(page.Section, page.TextNumber);
        auto* node = new QTreeWidgetItem(parent, {QString::fromStdString(text).remove(QLatin1Char('&'))});
        node->setData(0, keyRole, QLatin1String(page.Key));
        nodes[QLatin1String(page.Key)] = node;
    }
    ui_->TreeView1->expandAll();
    ui_->TreeView1->setCurrentItem(nodes[QStringLiteral("tvAllg")]);
    TreeAct(QStringLiteral("tvAllg"));
}

void frmEinstellungen::TreeAct(const QString& key) {
    network_->Hide();
    const std::vector<Page> pages = PagesOf(*ui_);
    const auto shown = std::find_if(pages.begin(), pages.end(), [&key](const Page& page) {
        return key.compare(QLatin1String(page.Key), Qt::CaseInsensitive) == 0;
    });
    // What stays in sight is not hidden in between: it would lose the focus.
    for (const Page& page : pages) {
        for (QWidget* frame : page.Frames) {
            if (shown == pages.end() || !shown->Has(frame)) frame->hide();
        }
    }
    if (shown == pages.end()) return;
    setProperty("Manual", QLatin1String("settings#") + QLatin1String(shown->Key));
    for (QWidget* frame : shown->Frames)
        frame->show();
    if (shown->Fill != nullptr) (network_.get()->*shown->Fill)();
}

// As large as the largest page, so that the dialog stays as it is while the user looks around.
void frmEinstellungen::SizeForPages() {
    int width = 0;
    int height = 0;
    const int spacing = ui_->framesLayout->spacing();
    for (const Page& page : PagesOf(*ui_)) {
        int pageHeight = ui_->framesLayout->contentsMargins().top();
        for (const QWidget* frame : page.Frames) {
            const QSize size = frame->sizeHint();
            width = std::max(width, size.width());
            pageHeight += spacing + std::max(size.height(), frame->heightForWidth(size.width()));
        }
        height = std::max(height, pageHeight);
    }
    ui_->pageArea->setMinimumSize(width, height);
    const int scrollBar = ui_->scrPages->verticalScrollBar()->sizeHint().width();
    ui_->scrPages->setMinimumWidth(width + scrollBar);
    ui_->scrPages->setMinimumHeight(std::min(height, RoomForPages()));
    QTreeWidget& tree = *ui_->TreeView1;
    tree.resizeColumnToContents(0);
    tree.setFixedWidth(tree.columnWidth(0) + 2 * tree.frameWidth() + spacing);
}

// What the screen leaves beside the buttons, the preview and the window manager's frame.
int frmEinstellungen::RoomForPages() const {
    if (screen() == nullptr) return QWIDGETSIZE_MAX;
    constexpr int frame = 60;
    constexpr int leastRoom = 120;
    const QMargins margins = layout()->contentsMargins();
    const int others = ui_->bottomLayout->sizeHint().height() + layout()->spacing() + margins.top() +
                       margins.bottom() + frame;
    return std::max(screen()->availableSize().height() - others, leastRoom);
}

// ---- what the user does

void frmEinstellungen::Connect() {
    connect(ui_->TreeView1, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* node) {
        if (node != nullptr) TreeAct(node->data(0, keyRole).toString());
    });
    connect(ui_->TreeView1, &QTreeWidget::itemCollapsed, this,
            [](QTreeWidgetItem* node) { node->setExpanded(true); });
    connect(ui_->cmdOK, &QPushButton::clicked, this, [this] {
        if (ApplyChanges()) accept();
    });
    connect(ui_->cmdApply, &QPushButton::clicked, this, [this] { ApplyChanges(); });
    connect(ui_->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cboLanguage, &QComboBox::activated, this, [this] { cboLanguage_Click(); });
    connect(ui_->txtDataPath, &QLineEdit::editingFinished, this, [this] {
        // A user who is about to cancel the dialog is not asked about the folder.
        if (isVisible() && !ui_->cmdCancel->hasFocus()) txtDataPath_Validate();
    });
    connect(ui_->cmdChooseDir, &QPushButton::clicked, this, [this] { cmdChooseDir_Click(); });
    ConnectConnection();
    ConnectTransparency();
    ConnectTray();
}

void frmEinstellungen::ConnectConnection() {
    WhenEntered(*ui_->cboLANactive, *this, [this] { cboLANactive_Validate(); });
}

void frmEinstellungen::ConnectTransparency() {
    connect(ui_->cboOpacity, &QComboBox::editTextChanged, this, [this] { cboOpacity_Change(); });
    WhenEntered(*ui_->cboOpacity, *this, [this] { cboOpacity_Validate(); });
}

void frmEinstellungen::ConnectTray() {
    WhenEntered(*ui_->cboTrayMaxRate, *this, [this] { cboTrayMaxRate_Validate(); });
    WhenEntered(*ui_->cboTrayMaxVol, *this, [this] { cboTrayMaxVol_Validate(); });
    for (const TrayBox& box : trayBoxes) {
        connect((*ui_).*box.Box, &QCheckBox::toggled, this, [this, flag = box.Flag](bool on) {
            int& flags = record_.Display.TrayTextFlags;
            flags = on ? flags | flag : flags & ~flag;
        });
    }
}

void frmEinstellungen::cboLANactive_Validate() {
    const std::string typed = WithoutGrouping(TextOf(*ui_->cboLANactive), parts_.Locale, true);
    record_.Traffic.LanActive = CheckedNumber(parts_.Settings, Keys::LANActive, typed, parts_.Locale);
    ShowText(*ui_->cboLANactive, Grouped(record_.Traffic.LanActive));
}

void frmEinstellungen::cboTrayMaxRate_Validate() {
    int& rate = record_.Display.TrayMaxRate;
    rate = CheckedNumber(parts_.Settings, Keys::TrayMaxRate, TextOf(*ui_->cboTrayMaxRate), parts_.Locale);
    ShowText(*ui_->cboTrayMaxRate, std::to_string(rate));
}

void frmEinstellungen::cboTrayMaxVol_Validate() {
    const std::string typed = WithoutGrouping(TextOf(*ui_->cboTrayMaxVol), parts_.Locale);
    int& volume = record_.Display.TrayMaxVol;
    volume = CheckedNumber(parts_.Settings, Keys::TrayMaxVol, typed, parts_.Locale);
    ShowText(*ui_->cboTrayMaxVol, Grouped(volume));
}

void frmEinstellungen::cboOpacity_Change() {
    record_.Display.Opacity = AlphaOf(TransparencyOf(TextOf(*ui_->cboOpacity), parts_.Locale));
    parts_.MonitorWindow.SetOpacity(record_.Display.Opacity);
}

void frmEinstellungen::cboOpacity_Validate() {
    ShowText(*ui_->cboOpacity, CheckedTransparency(TextOf(*ui_->cboOpacity), parts_.Locale));
    cboOpacity_Change();
}

void frmEinstellungen::cboLanguage_Click() {
    if (parts_.Language.ChooseLanguage(TextOf(*ui_->cboLanguage))) ApplyTextsToLoadedForms(parts_.Language);
}

// ---- the data folder

bool frmEinstellungen::txtDataPath_Validate() {
    const std::string folder = TypedFolder(ui_->txtDataPath->text().toStdString());
    if (folder == acceptedFolder_) {
        ui_->txtDataPath->setText(QString::fromStdString(folder));
        return true;
    }
    // A question about the folder takes the focus from the field, which must not lead to the next one.
    if (folderInQuestion_) return false;
    folderInQuestion_ = true;
    const KeptWhileAsking kept(*this);
    const std::string shown = folder.empty() ? parts_.DataFolder.CommonFolder().string() : folder;
    ui_->txtDataPath->setText(QString::fromStdString(shown));
    const bool accepted = !folder.empty() && CheckDataFolder(folder);
    if (accepted) acceptedFolder_ = folder;
    // Return leaves the field and then presses the default button: the same folder would be asked about
    // twice.
    QMetaObject::invokeMethod(
        this,
        [this, accepted] {
            folderInQuestion_ = false;
            if (!accepted) KeepDataPathFocus();
        },
        Qt::QueuedConnection);
    return accepted;
}

// A name that the settings cannot hold would leave the statistics where the next start does not look.
bool frmEinstellungen::CheckDataFolder(const std::string& folder) {
    if (folder.size() < RegistryBufferBytes) return parts_.DataFolder.CheckDataFolder(folder);
    Warn(33);
    return false;
}

void frmEinstellungen::KeepDataPathFocus() {
    ui_->TreeView1->setCurrentItem(ui_->TreeView1->topLevelItem(0));
    ui_->txtDataPath->setFocus();
}

void frmEinstellungen::cmdChooseDir_Click() {
    const KeptWhileAsking kept(*this);
    const QString current = ui_->txtDataPath->text();
    const QString chosen = chooseFolder_(this, DialogText(25) + QLatin1Char(' ') + current, current);
    if (chosen.isEmpty() || !CheckDataFolder(chosen.toStdString())) return;
    acceptedFolder_ = chosen.toStdString();
    ui_->txtDataPath->setText(chosen);
}

// ---- applying

EnteredSettings frmEinstellungen::Entered() const {
    EnteredSettings entered;
    for (const EnteredBox& row : enteredBoxes)
        entered.*row.Field = ((*ui_).*row.Box)->isChecked();
    entered.DataPath = ui_->txtDataPath->text().toStdString();
    entered.CloseTrayOnly = ui_->boxCloseTrayIcon->isChecked();
    entered.LanActive = TextOf(*ui_->cboLANactive);
    entered.ChartMinutes = TextOf(*ui_->cboPicWidthMin);
    entered.FirewallUser = ui_->txtFirewallUser->text().toStdString();
    entered.FirewallPassword = ui_->txtFirewallPassword->text().toStdString();
    entered.UpdateWeekly = ui_->optUpdateInterval0->isChecked();
    return entered;
}

// An access key presses a button without leaving the field that was typed into.
void frmEinstellungen::CheckAll() {
    chart_->CheckAll();
    cboLANactive_Validate();
    cboTrayMaxRate_Validate();
    cboTrayMaxVol_Validate();
    cboOpacity_Validate();
}

bool frmEinstellungen::ApplyChanges() {
    const KeptWhileAsking kept(*this);
    if (!parts_.Settings.CanStore()) {
        Warn(34);
        return false;
    }
    if (!txtDataPath_Validate()) return false;
    CheckAll();
    EnteredSettings entered = Entered();
    // A question that the program's end has answered moves nothing.
    if (!applier_.MoveData(entered.DataPath) || !isVisible()) entered.DataPath.clear();
    const bool applied = applier_.ApplyChanges(entered, record_);
    acceptedFolder_ = parts_.DataFolder.GetDataPath().string();
    ui_->txtDataPath->setText(QString::fromStdString(acceptedFolder_));
    chart_->Refresh(record_.Display.ConnDataMax);
    DrawPreview();
    return applied;
}

void frmEinstellungen::DrawPreview() {
    InfoTexts preview = parts_.InfoTexts;
    static_cast<DisplaySettings&>(preview) = record_.Display;
    parts_.LiveTexts.Renew(preview);
    painter_->DrawChart(*ui_->Pic, preview, true, true);
    SpeakAs(*ui_->Pic, ui_->lblChartPreview->text(),
            QString::fromStdString(preview.CaptionText).simplified());
}

void frmEinstellungen::Open() {
    show();
    raise();
    activateWindow();
}

void frmEinstellungen::done(int result) {
    Timer1_.stop();
    folderInQuestion_ = true; // hiding the field leaves it
    parts_.MonitorWindow.SetOpacity(record_.Display.Opacity);
    QDialog::done(result);
}

} // namespace korvalin
