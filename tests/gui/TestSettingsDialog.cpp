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
                askedFor = initial;
                offered = custom;
                whileAsked();
                return nextColor;
            });
            dialog->Plug([this](QWidget*, const QString&, const QString& current) {
                startFolder = current.toStdString();
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
        EXPECT_TRUE(dialog.isNull() && !IsFormLoaded("frmEinstellungen"));
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
    std::int32_t askedFor = 0;
    CustomColors offered{};
    std::string nextFolder, startFolder;
    std::function<void()> whileAsked = [] {}; // for a colour or a folder
};

// What is typed into a control, or else it is clicked, what it shows then, corrected where it must be, and
// what stands in the store once it is applied.
struct Change {
    std::string Page, Control, Entry, Shows, Setting, Stored;
};

std::vector<Change> Changes() {
    std::vector<Change> changes = {
        {"tvAllg", "cboLANactive", "1.000", "1,000", "LANActive", "1000"},
        {"tvDarst", "boxChartUseMax", "", "True", "ChartUseMax", "True"},
        {"tvDarst", "txtChartMax", "250", "250", "ChartMax", "250"},
        {"tvDarst", "txtChartMinMax", "x", "1", "ChartMinMax", "1"},
        {"tvDarst", "cboFontSize", "12", "12", "FontSize", "12"},
        {"tvDarst", "cboTimeLinesSec", "400", "300", "TimeLinesSec", "300"},
        {"tvDarst", "cboPicWidthMin", "99", "60", "picWidthMin", "60"},
        {"tvDarst", "cboOpacity", "25.4", "25%", "Opacity", "191"},
        {"tvEinheit", "optKB2", "", "True", "UnitKB", "Kbit"},
        {"tvEinheit", "optMB0", "", "True", "UnitMB", "MiB"},
        {"tvTray", "cboTrayMaxRate", "45", "45", "TrayMaxRate", "45"},
        {"tvTray", "cboTrayMaxVol", "20,000", "20,000", "TrayMaxVol", "20000"},
        {"tvTray", "boxTrayLine", "", "False", "TrayTexts", "254"},
        {"tvTray", "boxTrayVolumeMonth", "", "False", "TrayTexts", "190"},
        {"tvInternet", "boxFirewallUse", "", "True", "FirewallUse", "True"},
        {"tvInternet", "txtFirewallUser", "alice", "alice", "FirewallUser", "alice"},
        {"tvInternet", "optUpdateInterval1", "", "True", "UpdateInterval", "4"},
        {"tvAllg", "boxAlwaysOnTop", "", "False", "ForeGround", "False"},
        {"tvAllg", "boxCloseTrayIcon", "", "False", "CloseTrayOnly", "False"},
        {"tvAllg", "boxAutoStart", "", "False", "AutoStart", "False"},
        {"tvAllg", "boxAutoZeigen", "", "False", "AutoShow", "False"},
        {"tvAllg", "boxMultiInstance", "", "True", "MultiInstance", "True"},
        {"tvAllg", "boxMultiScreen", "", "True", "MultiScreen", "True"},
        {"tvAllg", "boxProgRunTime", "", "False", "ProgRunTime", "False"},
        {"tvAllg", "boxLANByNetwork", "", "False", "LANByNetwork", "False"},
        {"tvAllg", "boxLANVirtual", "", "True", "LANVirtual", "True"},
        {"tvAllg", "boxLANProt", "", "False", "LANProt", "False"},
        {"tvDarst", "boxFett", "", "False", "FontBold", "False"},
        {"tvDarst", "boxShowTimeLines", "", "False", "ShowTimeLines", "False"},
        {"tvTray", "boxTrayAnimated", "", "False", "TrayAnimated", "False"},
        {"tvInternet", "boxAutoUpdate", "", "False", "AutoUpdate", "False"},
        {"tvInternet", "boxNoInet", "", "True", "NoInet", "True"}};
    for (int i = 0; i < 8; ++i) {
        const char* shown = i == 2 ? "False" : "True"; // the third curves are there from the start
        for (const auto& [page, way] : {std::pair("tvDownload", "DL"), {"tvUpload", "UL"}})
            changes.push_back({page, fmt::format("box{}{}", way, i), "", shown,
                               fmt::format("Line{}{}Show", way, i + 1), shown});
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
    EXPECT_FALSE(Item("mnuVordergrund")->isChecked() || program->trafficOptions.LanProt);
    EXPECT_EQ(program->rateHistory.Samples(), 600U);
    EXPECT_EQ(Picture()->grab().toImage().pixelColor(40, 40), QColor(Qt::green));
    EXPECT_EQ(area.Tip, "Korvalin");
    Run(2, 50000);
    EXPECT_LE(area.IconsSet, iconsSet + 1) << "the icon is drawn although it shows no values";
}

TEST_F(SettingsDialog, TheHistoryIsNeverShorterThanTheChart) {
    Open();
    GoTo("tvDarst");
    struct {
        const char *Chart, *History, *Shown, *Stored;
    } const rows[] = {{"3", "4", "5", "300"}, {"10", "60", "10", "600"}, {"10", "2", "10", "600"}};
    for (const auto& row : rows) {
        Type("cboPicWidthMin", row.Chart);
        Click("cmdApply");
        Type("cboConnDataMax", row.History);
        Click("cmdApply");
        EXPECT_EQ(Shown("cboConnDataMax"), row.Shown);
        EXPECT_NE(Shown("lblHistoryInForce").find(row.Shown + std::string(" min")), std::string::npos);
        EXPECT_EQ(Stored("ConnDataMax"), row.Stored);
    }
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
    Find<QLineEdit>("txtDataPath")
        ->setText(QString::fromStdString(program->dataFolder.GetDataPath().string()));
    registry.IsReadOnly = false;
    settings.SetReg("AutoStart", false);
    registry.ReadOnlyKey = RunKeyPath;
    Click("cmdOK");
    EXPECT_EQ(TakeBoxes(), Lines{program->language.Lng("frmEinstellungen", 140)});
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Stored("AutoStart") + Stored("CloseTrayOnly"), "FalseFalse") << "the rest is stored";
}

TEST_F(SettingsDialog, CancellingLeavesTheStoreAndKeepsTheOpacityThatIsNeverNone) {
    settings.SetReg("Opacity", 200);
    Open();
    const auto opacity = [this] { return std::lround(window->windowOpacity() * 255); };
    Click("boxMultiScreen");
    GoTo("tvDarst");
    EXPECT_EQ(Shown("cboOpacity"), "21%");
    Type("txtChartMinMax", "77");
    Pick("cboOpacity", "25%");
    EXPECT_EQ(opacity(), 191) << "at once";
    Reach("cboOpacity")->setFocus();
    Find<QComboBox>("cboOpacity")->lineEdit()->selectAll();
    QTest::keyClicks(Find("cboOpacity"), QStringLiteral("100"));
    EXPECT_EQ(opacity(), 0) << "as it is typed";
    const std::string stored = StoredSettings();
    Click("cmdCancel");
    Gone();
    EXPECT_EQ(StoredSettings(), stored);
    EXPECT_EQ(program->infoTexts.ChartMinMax, 5);
    EXPECT_EQ(opacity(), 13) << "never left invisible";
}

TEST_F(SettingsDialog, ColoursAreChosenSwappedAndPreviewed) {
    Open();
    GoTo("tvDownload");
    const std::int32_t old = 255; // the preset third colour
    for (const std::optional<std::int32_t> choice : {std::optional<std::int32_t>(), {0x123456}}) {
        nextColor = choice;
        Click("lblColorDL2");
        EXPECT_EQ(Shown("lblColorDL2"), std::to_string(choice.value_or(old)));
        EXPECT_EQ(askedFor, old);
    }
    EXPECT_EQ(offered[2], old) << "as it is stored";
    EXPECT_EQ(offered[8], Setting(Keys::LineUL1Color));
    GoTo("tvUpload");
    const std::string upload = Shown("lblColorUL2");
    Click("cmdSwapColors");
    Find("lblColorUL0")->setFocus();
    nextColor = 0x00ff00;
    QTest::keyClick(Find("lblColorUL0"), Qt::Key_Space);
    EXPECT_EQ(Setting(Keys::LineDL3Color), old);
    Click("cmdApply");
    EXPECT_EQ(Setting(Keys::LineUL3Color), 0x123456);
    EXPECT_EQ(Setting(Keys::LineUL1Color), 0x00ff00);
    EXPECT_EQ(std::to_string(Setting(Keys::LineDL3Color)), upload);

    GoTo("tvDarst");
    const QColor before = Picture()->grab().toImage().pixelColor(60, 50);
    nextColor = 0x0000ff;
    Click("lblColorBackground");
    EXPECT_EQ(askedFor, ToColorValue(before));
    EXPECT_EQ(Find<PictureBox>("Pic")->grab().toImage().pixelColor(60, 50), QColor(Qt::red));
    EXPECT_EQ(Picture()->grab().toImage().pixelColor(60, 50), before) << "only previewed";
}

TEST_F(SettingsDialog, TheTextOfTheChartIsTheChosenCurveOrThePresetOne) {
    Open();
    for (const auto& [button, choice] : {std::pair("optTextDL8", 8), {"optTextDL0", 3}}) {
        GoTo("tvDownload");
        Click(button);
        GoTo("tvUpload");
        Click("cmdSwapColors");
        Click("cmdApply");
        EXPECT_EQ(program->infoTexts.DisplayChoiceDL, choice) << "only the colours are swapped";
        EXPECT_EQ(Stored("DisplayChoiceDL"), "3") << "it holds for this run";
    }
    Run(2, 1000); // draws with it
}

TEST_F(SettingsDialog, PagesShowTheirFramesAloneInAnyLetterCase) {
    const std::pair<const char*, Lines> rows[] = {{"tvDarst", {"frmGrafikAllgemein"}},
                                                  {"tvUpload", {"frmUpload", "frmTextUpDown"}},
                                                  {"tvNetAdapter", {}},
                                                  {"tvAllg", {"frmSystem", "frmConnection"}}};
    Open();
    for (const auto& [key, frames] : rows) {
        dialog->TreeAct(QString::fromLatin1(key).toUpper());
        EXPECT_EQ(VisibleFrames(), frames) << key;
    }
    auto* tree = Find<QTreeWidget>("TreeView1");
    tree->setCurrentItem(tree->topLevelItem(1));
    QTest::keyClick(tree, Qt::Key_Down);
    EXPECT_EQ(VisibleFrames(), (Lines{"frmKBRate", "frmMBVol"})) << "by keyboard";
}

TEST_F(SettingsDialog, NetworkPagesShowWhatTheSystemTells) {
    network.Entries.emplace_back().Index = 2;
    Open();
    GoTo("tvNetInfo");
    EXPECT_EQ(Shown("txtConnInfo0") + Shown("txtConnInfo1") + Shown("txtConnInfo3"), "YesNoYes");
    EXPECT_FALSE(Find<QPlainTextEdit>("txtConnInfo5")->toPlainText().isEmpty());
    GoTo("tvNetAdapter");
    auto* list = Reach<QTableView>("ListView1");
    network.Entries.emplace_back().Index = 3;
    Click("cmdButton1");
    EXPECT_EQ(list->model()->columnCount(), 3) << "refreshed: the captions once, a column more";
    list->setFocus();
    list->selectRow(1);
    for (int i = 0; i < 2; ++i) { // without a selection the clipboard keeps what it holds
        QTest::keySequence(list, QKeySequence::Copy);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("interface index\t2\t3\n"));
        list->clearSelection();
    }
    GoTo("tvNetIP");
    EXPECT_EQ(list->model()->columnCount(), 7);
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
        {Find<QGroupBox>("frmSystem")->title(), "Programm"},
        {Find<QLabel>("lblLANactive")->text(), "&Adapter aktiv bei mehr als"},
        {Find<QTreeWidget>("TreeView1")->topLevelItem(0)->text(0), "Allgemein"},
        {Item("mnuBeenden")->text(), "&Beenden"},
        {toolkitText(), "Suchen in:"},
        {Find<QLabel>("lbltxtUpDown1")->text().left(10), "Mittelwert"},
        {Find<QAbstractButton>("optKB1")->text(), "Standard: KB/s (Kilobyte) = 1.000 Bytes"}};
    for (const auto& [shown, german] : rows)
        EXPECT_EQ(shown, QString::fromUtf8(german));
    EXPECT_EQ(Find("cboLANactive")->toolTip(), Find("lblLANactive")->toolTip());
    EXPECT_FALSE(Find("cboLANactive")->toolTip().isEmpty());
    Pick("cboLanguage", "ENG - English");
    EXPECT_EQ(toolkitText(), QStringLiteral("Look in:"));
}

TEST_F(SettingsDialog, DependentFieldsFollowTheirBoxes) {
    struct {
        const char *Page, *Box;
        Lines Fields;
    } const rows[] = {
        {"tvAllg", "boxLANProt", {"boxLANByNetwork", "boxLANVirtual", "boxProgRunTime", "cboLANactive"}},
        {"tvDarst", "boxChartUseMax", {"txtChartMax", "lblMaximum"}},
        {"tvDarst", "boxShowTimeLines", {"cboTimeLinesSec"}},
        {"tvInternet", "boxFirewallUse", {"txtFirewallUser", "txtFirewallPassword", "lblFirewallUser"}},
    };
    Open();
    for (const auto& row : rows) {
        GoTo(row.Page);
        for (int i = 0; i < 2; ++i) {
            for (const std::string& field : row.Fields)
                EXPECT_EQ(Find(field)->isEnabled(), Shown(row.Box) == "True") << field;
            Click(row.Box);
        }
    }
}

TEST_F(SettingsDialog, TheStatisticsMoveToTheChosenFolderUnlessThatFails) {
    Open();
    const std::filesystem::path oldFolder = program->dataFolder.GetDataPath();
    std::ofstream(oldFolder / "Korvalin_Stats.db") << "records";
    std::filesystem::create_directory(folder / "new");
    for (const bool fails : {true, false}) {
        nextFolder.clear();
        Click("cmdChooseDir");
        EXPECT_EQ(Shown("txtDataPath"), oldFolder.string()) << "nothing was chosen";
        nextFolder = (folder / "new").string();
        Click("cmdChooseDir");
        EXPECT_EQ(startFolder, oldFolder.string());
        EXPECT_EQ(Shown("txtDataPath"), nextFolder);
        files.CopyFails = fails;
        boxes.Answers = {MessageAnswer::Yes};
        Click("cmdApply");
        EXPECT_EQ(TakeBoxes().size(), fails ? 2U : 1U) << "the question, and the failure";
        const std::filesystem::path kept = fails ? oldFolder : folder / "new/";
        EXPECT_EQ(std::filesystem::path(Stored("DataPath")) / "", kept);
        EXPECT_EQ(std::filesystem::path(Shown("txtDataPath")) / "", kept);
        EXPECT_TRUE(std::filesystem::exists(kept / "Korvalin_Stats.db"));
    }
}

TEST_F(SettingsDialog, AFolderThatDoesNotServeKeepsTheFocusAndTheOldOne) {
    Open();
    const std::string oldFolder = Stored("DataPath");
    auto* field = Find<QLineEdit>("txtDataPath");
    // Left by the keyboard, and by the mouse on another page: asked once each time.
    const std::function<void()> ways[] = {[field] { QTest::keyClick(field, Qt::Key_Tab); },
                                          [field] { QTest::keyClick(field, Qt::Key_Return); },
                                          [this] { GoTo("tvTray"); }};
    for (const auto& leave : ways) {
        field->setFocus();
        field->setText(QString::fromStdString((folder / "missing").string()));
        leave();
        EXPECT_EQ(TakeBoxes().size(), 1U) << "whether to create it";
        QTest::qWait(0);
        EXPECT_TRUE(QTest::qWaitFor([field] { return field->hasFocus(); }) && dialog->isVisible());
    }
    Type("txtDataPath", "");
    EXPECT_EQ(Shown("txtDataPath"), (folder / "data/Korvalin").string());
    // The settings cannot hold its name: the next start would not find the statistics there.
    nextFolder = folder.Path().string();
    while (nextFolder.size() < 1024)
        nextFolder += "/" + std::string(200, 'a');
    std::filesystem::create_directories(nextFolder);
    Click("cmdChooseDir");
    EXPECT_EQ(TakeBoxes(), Lines{program->language.Lng("frmEinstellungen", 33)});
    field->setText(QStringLiteral("/nowhere"));
    Click("cmdCancel"); // asks nothing
    Gone();
    EXPECT_EQ(Stored("DataPath"), oldFolder);
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
}

TEST_F(SettingsDialog, AFontThatIsNotInstalledStaysUntilAnotherIsChosen) {
    settings.SetReg("FontName", "Nowhere Sans");
    Open();
    Click("cmdApply");
    EXPECT_EQ(Stored("FontName") + Shown("cboFontName"), "Nowhere SansNowhere Sans");
    GoTo("tvDarst");
    auto* fonts = Find<QComboBox>("cboFontName");
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
    program->infoTexts.ChartLineNo = 2; // is chosen elsewhere meanwhile
    Click("cmdOK");
    Gone();
    EXPECT_EQ(program->infoTexts.ChartLineNo, 2);
    window->ShowMainWindow(false);
    EXPECT_FALSE(window->WindowShown());
}

TEST_F(SettingsDialog, TheWheelOverABoxWithoutTheFocusTurnsThePage) {
    Open();
    const std::string chosen = Shown("cboLanguage");
    auto* box = Reach<QComboBox>("cboLanguage");
    const QPoint at = box->rect().center();
    QWheelEvent notch(at, box->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(box, &notch);
    EXPECT_EQ(Shown("cboLanguage"), chosen);
}

} // namespace
