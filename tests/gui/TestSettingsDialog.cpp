#include "base/Text.h"
#include "desktop/SettingsDialog.h"
#include "forms/Colors.h"
#include "forms/Loaded.h"
#include "gui/Driver.h"
#include "gui/MainWindowFixture.h"

#include <fmt/format.h>

using namespace korvalin;

namespace {

/// The settings dialog, opened from the main window's menu.
class SettingsDialog : public MainWindow, protected Driver {
  protected:
    SettingsDialog() {
        openSettings = [this] {
            dialog = MakeSettingsDialog(*program, AllPorts(), *window);
            dialog->setAttribute(Qt::WA_DeleteOnClose);
            dialog->Plug([this](QWidget&, std::int32_t initial, const CustomColors& custom) {
                askedFor.push_back(initial);
                offered = custom;
                whileAsked();
                return nextColor;
            });
            dialog->Plug([this](QWidget*, const QString&, const QString& current) {
                startFolders.push_back(current.toStdString());
                whileAsked();
                return QString::fromStdString(nextFolder);
            });
            dialog->Open();
        };
    }
    ~SettingsDialog() override { delete dialog; }

    void Open() {
        if (!window) Start();
        Choose("mnuEinstellungen");
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    }
    // By its close box, Esc, OK or Cancel it is gone altogether.
    void Gone() {
        QTest::qWait(0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(dialog.isNull());
        EXPECT_FALSE(IsFormLoaded("frmEinstellungen"));
    }
    QWidget* Driven() const override { return dialog; }
    std::string Stored(const std::string& name) { return Settings::TextForm(settings.GetReg(name)); }
    // All of them but the main window's place, which is stored once the window has settled.
    std::string StoredSettings() {
        std::string all;
        for (const std::string& name : settings.StoredNames()) {
            if (!StartsWithNoCase(name, "MON_")) all += name + "=" + Stored(name) + "\n";
        }
        return all;
    }
    void GoTo(const std::string& key) {
        auto* tree = Find<QTreeWidget>("TreeView1");
        for (QTreeWidgetItemIterator node(tree); *node != nullptr; ++node) {
            if ((*node)->data(0, Qt::UserRole).toString().toStdString() != key) continue;
            QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(*node).center());
            return;
        }
        FAIL() << key;
    }
    // The last character that there is cannot be stored as a password.
    void SetImpossiblePassword() {
        Find<QLineEdit>("txtFirewallPassword")->setText(QString::fromUtf8("\xf4\x8f\xbf\xbf"));
    }
    Lines VisibleFrames() {
        Lines names;
        for (const QGroupBox* frame : dialog->findChildren<QGroupBox*>()) {
            if (frame->isVisible()) names.push_back(frame->objectName().toStdString());
        }
        return names;
    }

    QPointer<frmEinstellungen> dialog;
    std::optional<std::int32_t> nextColor;
    std::vector<std::int32_t> askedFor;
    CustomColors offered{};
    std::string nextFolder;
    std::vector<std::string> startFolders;
    std::function<void()> whileAsked = [] {}; // for a colour or a folder
};

// One change to a control: what is clicked or typed, what the control shows
// then, corrected where it must be, and what stands in the store once it is applied.
struct Change {
    std::string Page, Control, Entry, Shows, Setting, Stored;
};

std::vector<Change> Changes() {
    std::vector<Change> changes = {
        {"tvAllg", "boxAlwaysOnTop", "", "False", "ForeGround", "False"},
        {"tvAllg", "boxCloseTrayIcon", "", "False", "CloseTrayOnly", "False"},
        {"tvAllg", "boxAutoStart", "", "False", "AutoStart", "False"},
        {"tvAllg", "boxAutoZeigen", "", "False", "AutoShow", "False"},
        {"tvAllg", "boxMultiInstance", "", "True", "MultiInstance", "True"},
        {"tvAllg", "boxMultiScreen", "", "True", "MultiScreen", "True"},
        {"tvAllg", "boxProgRunTime", "", "False", "ProgRunTime", "False"},
        {"tvAllg", "cboLANactive", "1.000", "1,000", "LANActive", "1000"},
        {"tvAllg", "boxLANByNetwork", "", "False", "LANByNetwork", "False"},
        {"tvAllg", "boxLANVirtual", "", "True", "LANVirtual", "True"},
        {"tvAllg", "boxLANProt", "", "False", "LANProt", "False"},
        {"tvDarst", "boxChartUseMax", "", "True", "ChartUseMax", "True"},
        {"tvDarst", "txtChartMax", "250", "250", "ChartMax", "250"},
        {"tvDarst", "txtChartMinMax", "x", "1", "ChartMinMax", "1"},
        {"tvDarst", "cboFontSize", "12", "12", "FontSize", "12"},
        {"tvDarst", "boxFett", "", "False", "FontBold", "False"},
        {"tvDarst", "cboTimeLinesSec", "400", "300", "TimeLinesSec", "300"},
        {"tvDarst", "boxShowTimeLines", "", "False", "ShowTimeLines", "False"},
        {"tvDarst", "cboPicWidthMin", "99", "60", "picWidthMin", "60"},
        {"tvDarst", "cboOpacity", "25.4", "25%", "Opacity", "191"},
        {"tvEinheit", "optKB2", "", "True", "UnitKB", "Kbit"},
        {"tvEinheit", "optMB0", "", "True", "UnitMB", "MiB"},
        {"tvTray", "boxTrayAnimated", "", "False", "TrayAnimated", "False"},
        {"tvTray", "cboTrayMaxRate", "45", "45", "TrayMaxRate", "45"},
        {"tvTray", "cboTrayMaxVol", "20,000", "20,000", "TrayMaxVol", "20000"},
        {"tvTray", "boxTrayLine", "", "False", "TrayTexts", "254"},
        {"tvTray", "boxTrayVolumeMonth", "", "False", "TrayTexts", "190"},
        {"tvInternet", "boxFirewallUse", "", "True", "FirewallUse", "True"},
        {"tvInternet", "txtFirewallUser", "alice", "alice", "FirewallUser", "alice"},
        {"tvInternet", "optUpdateInterval1", "", "True", "UpdateInterval", "4"},
        {"tvInternet", "boxAutoUpdate", "", "False", "AutoUpdate", "False"},
        {"tvInternet", "boxNoInet", "", "True", "NoInet", "True"},
    };
    for (int i = 0; i < 8; ++i) {
        const std::string shown = i == 2 ? "False" : "True"; // the third curves are there from the start
        for (const std::string direction : {"DL", "UL"}) {
            const std::string page = direction == "DL" ? "tvDownload" : "tvUpload";
            changes.push_back({page, fmt::format("box{}{}", direction, i), "", shown,
                               fmt::format("Line{}{}Show", direction, i + 1), shown});
        }
    }
    return changes;
}

TEST_F(SettingsDialog, EveryControlIsAppliedAndFoundAgain) {
    Open();
    for (const Change& change : Changes()) {
        SCOPED_TRACE(change.Control);
        const std::string before = Stored(change.Setting);
        GoTo(change.Page);
        change.Entry.empty() ? Click(change.Control) : Type(change.Control, change.Entry);
        EXPECT_EQ(Shown(change.Control), change.Shows);
        EXPECT_EQ(Stored(change.Setting), before) << "stored before it was applied";
        Click("cmdApply");
        EXPECT_EQ(Stored(change.Setting), change.Stored);
        EXPECT_EQ(Shown(change.Control), change.Shows) << "after it was applied";
    }
    GoTo("tvInternet");
    Type("txtFirewallPassword", "secret");
    Click("cmdOK");
    Gone();
    EXPECT_EQ(settings.GetRegPassword(Keys::FirewallPassword), "secret");

    program->LoadRecords(); // as at the next start
    Open();
    for (const Change& change : Changes())
        EXPECT_EQ(Shown(change.Control), change.Shows) << change.Control;
    EXPECT_EQ(Shown("txtFirewallPassword"), "secret");
    EXPECT_EQ(Find<QLineEdit>("txtFirewallPassword")->displayText(), QStringLiteral("●●●●●●"));
}

TEST_F(SettingsDialog, WhatIsAppliedTakesEffectAtOnce) {
    area.State = TrayHost::Present;
    Start();
    Run(3, 50000);
    Open();
    const auto& live = program->infoTexts;
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    Click("boxAlwaysOnTop");
    Click("boxCloseTrayIcon");
    Click("boxLANProt");
    GoTo("tvDarst");
    Type("cboPicWidthMin", "10");
    nextColor = 0x00ff00;
    Click("cmdBackground");
    GoTo("tvEinheit");
    Click("optKB3");
    GoTo("tvTray");
    Click("boxTrayAnimated");
    const int iconsSet = area.IconsSet;
    EXPECT_EQ(live.RateUnitText, "KB") << "live before it was applied";
    EXPECT_EQ(program->rateHistory.Samples(), 240U);
    QTest::keyClick(dialog, Qt::Key_A, Qt::AltModifier);

    ASSERT_TRUE(QTest::qWaitFor([&] { return live.RateUnitText == "Mbit"; }));
    EXPECT_FALSE(window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_FALSE(Item("mnuVordergrund")->isChecked());
    EXPECT_FALSE(live.CloseTrayOnly);
    EXPECT_FALSE(program->trafficOptions.LanProt);
    EXPECT_EQ(program->rateHistory.Samples(), 600U);
    EXPECT_EQ(Picture()->grab().toImage().pixelColor(40, 40), QColor(Qt::green));
    EXPECT_EQ(live.KBFactor, 125000);
    EXPECT_EQ(area.Tip, "Korvalin");
    Run(2, 50000);
    EXPECT_LE(area.IconsSet, iconsSet + 1) << "the icon is drawn although it shows no values";
    EXPECT_EQ(Stored("ConnDataMax"), "600");
}

TEST_F(SettingsDialog, TheHistoryIsNeverShorterThanTheChart) {
    Open();
    GoTo("tvDarst");
    Type("cboPicWidthMin", "3");
    Type("cboConnDataMax", "4");
    Click("cmdApply");
    EXPECT_EQ(Stored("ConnDataMax"), "300");
    EXPECT_EQ(Shown("cboConnDataMax"), "5");
    Type("cboPicWidthMin", "10");
    Click("cmdApply");
    EXPECT_EQ(Stored("ConnDataMax"), "600");
    for (const char* minutes : {"60", "2"}) { // more than there is, less than the chart shows
        Type("cboConnDataMax", minutes);
        EXPECT_EQ(Shown("cboConnDataMax"), "10");
        EXPECT_NE(Find<QLabel>("lblHistoryInForce")->text().indexOf(QStringLiteral("10 min")), -1)
            << "the reason";
    }
    Type("cboPicWidthMin", "3");
    Click("cmdApply");
    EXPECT_EQ(Stored("ConnDataMax"), "300") << "at once";
}

TEST_F(SettingsDialog, AStoreThatCannotBeWrittenIsToldAndNothingChanges) {
    Open();
    const std::string stored = StoredSettings();
    Find<QLineEdit>("txtDataPath")->setText(QString::fromStdString((folder / "elsewhere").string()));
    Click("boxCloseTrayIcon");
    registry.IsReadOnly = true;
    Click("cmdOK");
    EXPECT_NE(boxes.Take().Text.find("cannot be saved"), std::string::npos);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(StoredSettings(), stored);
    EXPECT_TRUE(program->infoTexts.CloseTrayOnly);
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
}

TEST_F(SettingsDialog, CancellingLeavesTheStoreAndKeepsTheOpacity) {
    settings.SetReg("Opacity", 200);
    Open();
    Click("boxMultiScreen");
    GoTo("tvDarst");
    EXPECT_EQ(Shown("cboOpacity"), "21%");
    EXPECT_NEAR(window->windowOpacity() * 255, 201, 0.6);
    Type("txtChartMinMax", "77");
    Type("cboOpacity", "50");
    GoTo("tvTray");
    Click("boxTrayDuration");
    const std::string stored = StoredSettings();
    Click("cmdCancel");
    Gone();
    EXPECT_EQ(StoredSettings(), stored);
    EXPECT_EQ(program->infoTexts.ChartMinMax, 5);
    EXPECT_NEAR(window->windowOpacity() * 255, 128, 0.6);
}

TEST_F(SettingsDialog, TheMainWindowHasItsOpacityAtOnceButIsNeverLeftInvisible) {
    Open();
    GoTo("tvDarst");
    Pick("cboOpacity", "25%");
    EXPECT_NEAR(window->windowOpacity() * 255, 191, 0.6);
    Type("cboOpacity", "0");
    EXPECT_EQ(window->windowOpacity(), 1);
    Reach("cboOpacity")->setFocus();
    Find<QComboBox>("cboOpacity")->lineEdit()->selectAll();
    QTest::keyClicks(Find("cboOpacity"), QStringLiteral("100"));
    EXPECT_EQ(window->windowOpacity(), 0) << "as it is typed";
    QTest::keyClick(dialog, Qt::Key_Escape);
    Gone();
    EXPECT_NEAR(window->windowOpacity() * 255, 13, 0.6);
}

TEST_F(SettingsDialog, ColoursAreChosenSwappedAndPreviewed) {
    Open();
    GoTo("tvDownload");
    const std::int32_t old = 255; // the preset third colour
    nextColor = std::nullopt;
    Click("lblColorDL2");
    EXPECT_EQ(Shown("lblColorDL2"), std::to_string(old)) << "the choice was cancelled";
    nextColor = 0x123456;
    Click("lblColorDL2");
    EXPECT_EQ(Shown("lblColorDL2"), std::to_string(0x123456));
    EXPECT_EQ(askedFor, (std::vector<std::int32_t>{old, old}));
    EXPECT_EQ(offered[2], old) << "as it is stored";
    EXPECT_EQ(offered[8], Setting(Keys::LineUL1Color));
    EXPECT_EQ(Setting(Keys::LineDL3Color), old);
    GoTo("tvUpload");
    const std::string upload = Shown("lblColorUL2");
    Click("cmdSwapColors");
    EXPECT_EQ(Shown("lblColorUL2"), std::to_string(0x123456));
    EXPECT_EQ(Shown("lblColorDL2"), upload);
    Find<ColorField>("lblColorUL0")->setFocus();
    nextColor = 0x00ff00;
    QTest::keyClick(Find<ColorField>("lblColorUL0"), Qt::Key_Space);
    Click("cmdApply");
    EXPECT_EQ(Setting(Keys::LineUL3Color), 0x123456);
    EXPECT_EQ(Setting(Keys::LineUL1Color), 0x00ff00);
    EXPECT_EQ(std::to_string(Setting(Keys::LineDL3Color)), upload);

    GoTo("tvDarst");
    const QColor before = Find<PictureBox>("Pic")->grab().toImage().pixelColor(60, 50);
    EXPECT_EQ(before, ToColor(Setting(Keys::ChartBackgroundColor)));
    nextColor = 0x0000ff;
    Click("lblColorBackground");
    EXPECT_EQ(askedFor.back(), Setting(Keys::ChartBackgroundColor));
    EXPECT_EQ(Find<PictureBox>("Pic")->grab().toImage().pixelColor(60, 50), QColor(Qt::red));
    EXPECT_EQ(Picture()->grab().toImage().pixelColor(60, 50), before) << "only previewed";
}

TEST_F(SettingsDialog, TheTextOfTheChartIsTheChosenCurveOrThePresetOne) {
    Open();
    GoTo("tvDownload");
    Click("optTextDL8");
    Click("cmdApply");
    EXPECT_EQ(program->infoTexts.DisplayChoiceDL, 8);
    EXPECT_EQ(Stored("DisplayChoiceDL"), "3") << "it holds for this run";
    Click("optTextDL0");
    GoTo("tvUpload");
    Click("cmdSwapColors");
    EXPECT_EQ(Shown("optTextDL0"), "True") << "only the colours are swapped";
    Click("optTextUL1");
    Click("cmdApply");
    EXPECT_EQ(program->infoTexts.DisplayChoiceDL, 3);
    EXPECT_EQ(program->infoTexts.DisplayChoiceUL, 1);
    Run(2, 1000); // draws with it
}

TEST_F(SettingsDialog, PagesShowTheirFramesInAnyLetterCase) {
    const std::pair<const char*, Lines> rows[] = {{"tvDarst", {"frmGrafikAllgemein"}},
                                                  {"tvEinheit", {"frmKBRate", "frmMBVol"}},
                                                  {"tvDownload", {"frmDownload", "frmTextUpDown"}},
                                                  {"tvUpload", {"frmUpload", "frmTextUpDown"}},
                                                  {"tvTray", {"frmTrayIcon", "frmTrayIconTxt"}},
                                                  {"tvInternet", {"frmFirewall", "frmUpdate"}},
                                                  {"tvNetInfo", {"frmConnInfo"}},
                                                  {"tvNetAdapter", {}},
                                                  {"tvNetIP", {}},
                                                  {"tvAllg", {"frmSystem", "frmConnection"}}};
    Open();
    const QSize size = dialog->size();
    for (const auto& [key, frames] : rows) {
        GoTo(key);
        EXPECT_EQ(VisibleFrames(), frames) << key;
        dialog->TreeAct(QStringLiteral("tvallg"));
        dialog->TreeAct(QString::fromLatin1(key).toUpper());
        EXPECT_EQ(VisibleFrames(), frames) << key;
    }
    EXPECT_EQ(dialog->size(), size) << "the dialog keeps its size";
    auto* tree = Find<QTreeWidget>("TreeView1");
    tree->setCurrentItem(tree->topLevelItem(1));
    QTest::keyClick(tree, Qt::Key_Left);
    EXPECT_TRUE(tree->topLevelItem(1)->isExpanded());
    QTest::keyClick(tree, Qt::Key_Down);
    EXPECT_EQ(VisibleFrames(), (Lines{"frmKBRate", "frmMBVol"})) << "by keyboard";
}

TEST_F(SettingsDialog, NetworkPagesShowWhatTheSystemTells) {
    InterfaceEntry entry;
    entry.Index = 2;
    network.Entries = {entry};
    Open();
    GoTo("tvNetInfo");
    EXPECT_EQ(Shown("txtConnInfo0") + Shown("txtConnInfo1") + Shown("txtConnInfo3"), "YesNoYes");
    EXPECT_NE(Find<QPlainTextEdit>("txtConnInfo5")->toPlainText(), QString());

    GoTo("tvNetAdapter");
    auto* list = Reach<QTableView>("ListView1");
    entry.Index = 3;
    network.Entries.push_back(entry);
    EXPECT_EQ(list->model()->columnCount(), 2);
    Click("cmdButton1");
    EXPECT_EQ(list->model()->columnCount(), 3) << "refreshed: one column more, the captions once";
    list->setFocus();
    list->selectRow(1);
    QTest::keySequence(list, QKeySequence::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("interface index\t2\t3\n"));

    GoTo("tvNetIP");
    EXPECT_EQ(list->model()->columnCount(), 7);
    EXPECT_EQ(list->model()->rowCount(), 0);
    network.Addresses.emplace_back();
    Click("cmdButton1");
    EXPECT_EQ(list->model()->rowCount(), 1);
    GoTo("tvAllg");
    EXPECT_FALSE(list->isVisible() || Find("cmdButton1")->isVisible());
}

TEST_F(SettingsDialog, AnotherLanguageRelabelsEveryWindowAtOnce) {
    Open();
    const QSize size = dialog->size() + QSize(200, 150);
    dialog->resize(size);
    Pick("cboLanguage", "GER - Deutsch");
    EXPECT_TRUE(Find("cboLanguage")->hasFocus()) << "for the next choice by keyboard";
    EXPECT_EQ(dialog->size(), size) << "as the user made it";
    EXPECT_EQ(Stored("Language"), "GER");
    const auto toolkitText = [] { return QCoreApplication::translate("QFileDialog", "Look in:"); };
    const std::pair<QString, const char*> rows[] = {
        {dialog->windowTitle(), "Einstellungen"},
        {Find<QAbstractButton>("boxAlwaysOnTop")->text(), "Immer im &Vordergrund"},
        {Find<QTreeWidget>("TreeView1")->topLevelItem(0)->text(0), "Allgemein"},
        {Item("mnuBeenden")->text(), "&Beenden"},
        {toolkitText(), "Suchen in:"},
        {Find<QLabel>("lbltxtUpDown1")->text().left(10), "Mittelwert"},
        {Find<QAbstractButton>("optKB1")->text(), "Standard: KB/s (Kilobyte) = 1.000 Bytes"}};
    for (const auto& [shown, german] : rows)
        EXPECT_EQ(shown, QString::fromUtf8(german));
    Pick("cboLanguage", "ENG - English");
    EXPECT_EQ(toolkitText(), QStringLiteral("Look in:"));
    EXPECT_EQ(Find<QAbstractButton>("optKB1")->text(),
              QStringLiteral("Default: KB/s (Kilobyte) = 1.000 Bytes"));
    EXPECT_EQ(Find("cboLANactive")->toolTip(), Find("lblLANactive")->toolTip());
}

TEST_F(SettingsDialog, DependentFieldsFollowTheirBoxes) {
    struct {
        const char *Page, *Box;
        bool EnabledAtFirst;
        Lines Fields;
    } const rows[] = {{"tvAllg",
                       "boxLANProt",
                       true,
                       {"boxLANByNetwork", "boxLANVirtual", "boxProgRunTime", "cboLANactive"}},
                      {"tvDarst", "boxChartUseMax", false, {"txtChartMax", "lblMaximum"}},
                      {"tvDarst", "boxShowTimeLines", true, {"cboTimeLinesSec"}},
                      {"tvInternet",
                       "boxFirewallUse",
                       false,
                       {"txtFirewallUser", "txtFirewallPassword", "lblFirewallUser"}}};
    Open();
    for (const auto& row : rows) {
        GoTo(row.Page);
        for (const bool enabled : {row.EnabledAtFirst, !row.EnabledAtFirst}) {
            for (const std::string& field : row.Fields)
                EXPECT_EQ(Find(field)->isEnabled(), enabled) << field;
            Click(row.Box);
        }
    }
}

// ---- the data folder

TEST_F(SettingsDialog, TheStatisticsMoveToTheChosenFolderUnlessThatFails) {
    Open();
    const std::filesystem::path oldFolder = program->dataFolder.GetDataPath();
    std::ofstream(oldFolder / "Korvalin_Stats.db") << "records";
    const std::filesystem::path newFolder = folder / "new";
    std::filesystem::create_directory(newFolder);
    Click("cmdChooseDir");
    EXPECT_EQ(Shown("txtDataPath"), oldFolder.string()) << "nothing was chosen";
    nextFolder = newFolder.string();
    for (const bool fails : {true, false}) {
        files.CopyFails = fails;
        Click("cmdChooseDir");
        EXPECT_EQ(startFolders.back(), oldFolder.string());
        EXPECT_EQ(Shown("txtDataPath"), newFolder.string());
        boxes.Answers = {MessageAnswer::Yes};
        Click("cmdApply");
        EXPECT_EQ(TakeBoxes().size(), fails ? 2U : 1U) << "the question, and the failure";
        const std::filesystem::path kept = fails ? oldFolder : newFolder / "";
        EXPECT_EQ(std::filesystem::path(Stored("DataPath")) / "", kept);
        EXPECT_EQ(std::filesystem::path(Shown("txtDataPath")) / "", kept);
        EXPECT_EQ(std::filesystem::exists(newFolder / "Korvalin_Stats.db"), !fails);
        EXPECT_EQ(std::filesystem::exists(oldFolder / "Korvalin_Stats.db"), fails);
    }
}

TEST_F(SettingsDialog, AFolderThatDoesNotServeKeepsTheFocusAndTheOldOne) {
    Open();
    const std::string oldFolder = Stored("DataPath");
    auto* field = Find<QLineEdit>("txtDataPath");
    const auto focused = [field] {
        QTest::qWait(0);
        return QTest::qWaitFor([field] { return field->hasFocus(); });
    };
    // Left by the keyboard, and by the mouse on another page: asked once each time.
    const std::function<void()> ways[] = {[field] { QTest::keyClick(field, Qt::Key_Tab); },
                                          [field] { QTest::keyClick(field, Qt::Key_Return); },
                                          [this] { GoTo("tvTray"); }};
    for (const auto& leave : ways) {
        field->setFocus();
        field->setText(QString::fromStdString((folder / "missing").string()));
        leave();
        EXPECT_EQ(TakeBoxes().size(), 1U) << "whether to create it";
        EXPECT_TRUE(focused());
        EXPECT_TRUE(dialog && dialog->isVisible());
    }
    Type("txtDataPath", "");
    EXPECT_TRUE(focused());
    EXPECT_EQ(Shown("txtDataPath"), (folder / "data/Korvalin").string());
    field->setText(QStringLiteral("/nowhere"));
    Click("cmdCancel"); // who cancels is not asked
    Gone();
    EXPECT_EQ(Stored("DataPath"), oldFolder);
}

// The next start would not find the statistics there.
TEST_F(SettingsDialog, AFolderThatTheSettingsCannotHoldIsRefused) {
    Open();
    const std::string oldFolder = Stored("DataPath");
    nextFolder = folder.Path().string();
    while (nextFolder.size() < 1024)
        nextFolder += "/" + std::string(200, 'a');
    std::filesystem::create_directories(nextFolder);
    const std::function<void()> ways[] = {
        [this] { Click("cmdChooseDir"); },
        [this] {
            Find("txtDataPath")->setFocus();
            Find<QLineEdit>("txtDataPath")->setText(QString::fromStdString(nextFolder));
            Click("cmdOK");
        }};
    for (const auto& choose : ways) {
        choose();
        EXPECT_EQ(TakeBoxes(), Lines{program->language.Lng("frmEinstellungen", 33)});
        EXPECT_TRUE(dialog && dialog->isVisible());
        EXPECT_EQ(Stored("DataPath"), oldFolder);
    }
}

TEST_F(SettingsDialog, TheProgramMayEndWhileTheUserIsAsked) {
    Start();
    const std::filesystem::path oldFolder = program->dataFolder.GetDataPath();
    std::ofstream(oldFolder / "Korvalin_Stats.db") << "records";
    std::filesystem::create_directory(folder / "new");
    nextColor = 0x123456;
    nextFolder = (folder / "new").string();
    const auto end = [this] {
        UnloadOtherForms(*window);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ASSERT_FALSE(dialog.isNull()) << "whoever asks goes on with the answer";
        EXPECT_FALSE(dialog->isVisible());
    };
    boxes.OnShow = whileAsked = end;
    struct {
        const char* Asks;
        std::function<void()> Do;
        std::size_t Boxes;
    } const rows[] = {
        {"for a colour", [this] { GoTo("tvDownload"), Click("lblColorDL0"); }, 0},
        {"for the background", [this] { GoTo("tvDarst"), Click("cmdBackground"); }, 0},
        {"for a folder", [this] { Click("cmdChooseDir"); }, 0},
        {"whether to create it", [this] { Type("txtDataPath", (folder / "missing").string()); }, 1},
        {"whether to move", [this] { Type("txtDataPath", nextFolder), Click("cmdOK"); }, 1},
        {"about a password", [this] { SetImpossiblePassword(), Click("cmdApply"); }, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Asks);
        Open();
        row.Do();
        EXPECT_EQ(TakeBoxes().size(), row.Boxes);
        Gone();
        EXPECT_EQ(std::filesystem::path(Stored("DataPath")) / "", oldFolder) << "nobody agreed to it";
    }
}

// ---- the rest

TEST_F(SettingsDialog, APasswordThatCannotBeStoredIsToldAndTheOldOneStays) {
    settings.SetRegPassword(Keys::FirewallPassword, "old");
    Open();
    GoTo("tvInternet");
    Click("boxFirewallUse");
    SetImpossiblePassword();
    Click("cmdApply");
    EXPECT_EQ(TakeBoxes(), Lines{program->language.Lng("frmEinstellungen", 32)});
    EXPECT_EQ(settings.GetRegPassword(Keys::FirewallPassword), "old");
    EXPECT_EQ(Stored("FirewallUse"), "True") << "the rest is stored";
    Find<QLineEdit>("txtFirewallPassword")->clear();
    Click("cmdApply");
    EXPECT_EQ(settings.Get(Keys::FirewallPassword), "");
}

TEST_F(SettingsDialog, AFontThatIsNotInstalledStaysUntilAnotherIsChosen) {
    settings.SetReg("FontName", "Nowhere Sans");
    Open();
    EXPECT_EQ(Shown("cboFontName"), "Nowhere Sans");
    Click("cmdApply");
    EXPECT_EQ(Stored("FontName"), "Nowhere Sans");
    GoTo("tvDarst");
    auto* fonts = Find<QComboBox>("cboFontName");
    ASSERT_GT(fonts->count(), 1);
    fonts->setFocus();
    QTest::keyClick(fonts, Qt::Key_Down);
    Click("cmdApply");
    EXPECT_EQ(Stored("FontName"), fonts->itemText(1).toStdString());
}

TEST_F(SettingsDialog, StaysAboveAndKeepsTheMainWindowWhereItIs) {
    network.Add("eth1", 2000, 500);
    Open();
    EXPECT_TRUE(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    window->ShowMainWindow(false);
    EXPECT_TRUE(window->isVisible());
    // The line that is charted is chosen elsewhere while the dialog is open.
    program->infoTexts.ChartLineNo = 2;
    Click("cmdOK");
    Gone();
    EXPECT_EQ(program->infoTexts.ChartLineNo, 2);
    window->ShowMainWindow(false);
    EXPECT_FALSE(window->WindowShown());
}

TEST_F(SettingsDialog, EveryControlHasANameForThoseWhoCannotSeeIt) {
    Open();
    for (const QWidget* control : dialog->findChildren<QWidget*>()) {
        const bool isPart =
            control->objectName().isEmpty() || control->objectName().startsWith(QLatin1String("qt_"));
        if (control->focusPolicy() == Qt::NoFocus || isPart) continue;
        QAccessibleInterface* interface =
            QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
        EXPECT_FALSE(interface == nullptr || interface->text(QAccessible::Name).isEmpty())
            << control->objectName().toStdString();
    }
}

} // namespace
