#include "fakes/CoreFixture.h"
#include "gui/Driver.h"
#include "stats/frmStatistik.h"

using namespace korvalin;

namespace {

// The second note only looks like a volume.
const char* const file = "\"Line1\",#2004-12-31 22:22:22#,#01:23:45#,1000000,2500000,\"one\",\"user1\"\r\n"
                         "\"Line2\",#2005-01-10 10:00:00#,#00:05:07#,0,1234,\"2 KB\",\"\"\r\n"
                         "\"Line2\",#2005-01-11 10:00:00#,#36:05:07#,0,1,\"bad\",\"\"\r\n"
                         "\"Line2\",#2005-02-01 00:00:00#,#00:00:30#,0,5000000,\"three\",\"\"\r\n"
                         "\"Line3\",#2005-01-31 23:59:00#,#00:00:59#,10,20,\"four\",\"\"\r\n";

class Statistics : public CoreFixture, protected Driver {
  protected:
    Statistics() {
        screen.Size = screen.Mode = ScreenSize{800, 800};
        clock.SetWallClock(DateSerial(2005, 2, 10) + TimeSerial(12, 0, 0));
        settings.SetReg("Line1_Alias", "Home");
        settings.SetReg("Line2_Alias", "Mobile");
        settings.SetReg("Line3_Alias", "Mobile");
        settings.SetReg("Stat_Dimension", std::string("KB"));
    }
    ~Statistics() override { window.reset(); }

    void Open(const std::string& content = file) {
        if (!program) {
            ASSERT_TRUE(StartProgram());
            WriteFile(content);
            program->LoadStatistics();
        }
        window = std::make_unique<frmStatistik>(frmStatistik::Parts{
            settings, program->language, program->errors, boxes, program->statFile, program->aliases,
            program->monthSums, program->periodSums, clock, program->locale, program->recorder});
        window->Plug([this](QWidget*, const QString&, const QString&) { return savePath; });
        window->Open();
        AwaitRecords();
    }
    void AwaitRecords() {
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window->Loading(); }));
    }
    void Append(const std::string& line) {
        std::ofstream(program->statFile.StatFilePath(), std::ios::app | std::ios::binary) << line;
    }
    // A connection in every hour since the year began, with its number as the note.
    static std::string Hourly(int count) {
        std::string content;
        for (int i = 0; i < count; ++i) {
            content += "\"Line1\",#" + FormatDateIso(DateSerial(2005, 1, 1) + (i + 0.5) / 24) +
                       "#,#00:00:10#,0,0,\"" + std::to_string(i) + "\",\"\"\r\n";
        }
        return content;
    }
    QWidget* Driven() const override { return window.get(); }
    QTableView* List(const char* name = "ListStats") { return Find<QTableView>(name); }
    // Chooses an entry of the menu; its question, if any, is answered like this.
    void Do(const char* name, std::optional<MessageAnswer> answer = {}) {
        if (answer) boxes.Answers = {*answer};
        Find<QAction>(name)->trigger();
    }
    void Page(int index) { Find<QTabWidget>("SSTab")->setCurrentIndex(index); }
    std::string Cell(int row, int column, const char* list = "ListStats") {
        return List(list)->model()->index(row, column).data().toString().toStdString();
    }
    std::string Cells(int row, int begin, int end) {
        std::string cells;
        for (int column = begin; column < end; ++column)
            cells += (column > begin ? "|" : "") + Cell(row, column);
        return cells;
    }
    // One column of the list, cell by cell.
    Lines Rows(int column = 7, const char* list = "ListStats") {
        Lines cells;
        for (int row = 0; row < List(list)->model()->rowCount(); ++row)
            cells.push_back(Cell(row, column, list));
        return cells;
    }
    void Select(const std::vector<int>& rows) {
        List()->clearSelection();
        for (const int row : rows)
            List()->selectionModel()->select(List()->model()->index(row, 0),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    std::set<int> Selected() {
        std::set<int> rows;
        for (const QModelIndex& index : List()->selectionModel()->selectedRows())
            rows.insert(index.row());
        return rows;
    }
    // Reads a file that is long enough for pauses in its load.
    void ReopenWithALongFile() {
        std::string content;
        for (int i = 0; i < 5000; ++i)
            content += file;
        WriteFile(content);
        window->close();
        window->Open();
    }
    std::string FileText() const { return folder.Read("data/Korvalin/Korvalin_Stats.db"); }
    void WriteFile(const std::string& content) {
        folder.Write((program->dataFolder.GetDataPath() / "Korvalin_Stats.db").string(), content);
    }

    QString savePath;
    std::unique_ptr<frmStatistik> window;
};

TEST_F(Statistics, ListsConnectionsAndSumsFilteredByAliasInTheChosenUnit) {
    Open();
    EXPECT_EQ(Rows(), (Lines{"three", "four", "2 KB", "one"})) << "newest first; the damaged line is none";
    EXPECT_EQ(Cells(3, 0, 7), "Home|2004-12-31 22:22:22|1:23:45|2004-12-31 23:46:07|1,000.00 KB|"
                              "2,500.00 KB|3,500.00 KB");
    EXPECT_TRUE(List()->isColumnHidden(8)) << "the position in the file is not for display";
    EXPECT_EQ(Rows(1, "ListStatsSum"),
              (Lines{"2004-12-31 Fri", "2005-02-01 Tue", "2005-01-31 Mon", "2005-01-10 Mon"}));

    Pick("cboFilter", "Mobile");
    EXPECT_EQ(Rows(), (Lines{"three", "four", "2 KB"}));
    EXPECT_EQ(Shown("cboGAlias"), "Mobile") << "the graph's, too";
    EXPECT_EQ(Rows(0, "ListStatsSum"), (Lines{"Mobile", "Mobile", "Mobile"}));
    EXPECT_EQ(settings.Get(Keys::Z_StatFilter), "Mobile");
    Pick("cboKBMB", "MB");
    EXPECT_EQ(Cell(0, 5), "5.00 MB");
    EXPECT_EQ(settings.Get(Keys::Stat_Dimension), "MB");
    Page(2);
    Click("optStatSum2");
    EXPECT_EQ(Rows(1, "ListStatsSum"), (Lines{"February 2005", "January 2005"}));
    EXPECT_EQ(Rows(2, "ListStatsSum"), (Lines{"1", "2"}));
    EXPECT_EQ(settings.Get(Keys::z_optStatSum), "2");
    ASSERT_TRUE(program->language.ChooseLanguage("GER - Deutsch"));
    QEvent changed(QEvent::LanguageChange);
    QCoreApplication::sendEvent(window.get(), &changed);
    EXPECT_EQ(List()->model()->headerData(5, Qt::Horizontal).toString(), QStringLiteral("Empfangen"));
    EXPECT_EQ(Rows(), (Lines{"three", "four", "2 KB"})) << "the filter stays";
}

TEST_F(Statistics, TheKeyboardReachesEverything) {
    Open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const auto pressTab = [&] {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        return QApplication::focusWidget()->objectName().toStdString();
    };
    EXPECT_TRUE(List()->hasFocus()) << "an arrow key moves in the list and changes no setting";
    EXPECT_EQ(pressTab(), "cboFilter") << "a list does not keep the key to itself";
    Page(2);
    Lines controls;
    while (controls.empty() || (controls.back() != "cboFilter" && controls.size() < 20))
        controls.push_back(pressTab());
    EXPECT_EQ(controls,
              (Lines{"cboKBMB", "qt_tabwidget_tabbar", "optStatSum0", "ListStatsSum", "cboLines", "txtAlias",
                     "cboFreeHours", "cboFreeVolume", "cboMonthStartDay", "cboRoundSeconds", "boxUp1MB",
                     "boxTrayVolumeLine", "txtProvider", "txtWarnAt", "cboFilter"}));
    EXPECT_FALSE(List()->accessibleName().isEmpty() || List("ListStatsSum")->accessibleName().isEmpty());
}

TEST_F(Statistics, AHeaderSortsWhileSelectionAndCurrentRowStay) {
    Open();
    List()->setCurrentIndex(List()->model()->index(0, 0)); // "three"
    Select({0, 3});
    auto* header = List()->horizontalHeader();
    const auto clickHeader = [&](int column) {
        const QPoint at(header->sectionViewportPosition(column) + 10, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    };
    clickHeader(5);
    EXPECT_EQ(Rows(), (Lines{"four", "2 KB", "one", "three"}));
    EXPECT_EQ(List()->currentIndex().row(), 3);
    EXPECT_EQ(Selected(), (std::set<int>{2, 3}));
    QCoreApplication::processEvents();
    EXPECT_EQ(Shown("lblRows"), "Rows: 4   Selected: 2   Duration: 1:24:15   Sent: 1,000.00 KB   "
                                "Received: 7,500.00 KB   Total: 8,500.00 KB");
    clickHeader(5);
    EXPECT_EQ(Rows(), (Lines{"three", "one", "2 KB", "four"}));
    Pick("cboFilter", "Mobile");
    EXPECT_EQ(Rows(), (Lines{"three", "2 KB", "four"})) << "sorted as before";
    EXPECT_EQ(Cell(List()->currentIndex().row(), 7), "three");
    EXPECT_EQ(Selected(), (std::set<int>{0}));
    window.reset();
    Open();
    EXPECT_EQ(Rows(), (Lines{"three", "2 KB", "four"})) << "the order is kept";
}

TEST_F(Statistics, SelectsAllNoneOrTheMonthAndCopiesForASpreadsheet) {
    Open();
    Do("mnuSelectAll");
    EXPECT_EQ(Selected().size(), 4U);
    Do("mnuSelectNone");
    EXPECT_TRUE(Selected().empty());
    List()->setCurrentIndex(List()->model()->index(1, 0));
    Do("mnuSelectMonth");
    EXPECT_EQ(Selected(), (std::set<int>{1, 2})) << "January 2005, its end not counted";
    Select({3, 2});
    Do("mnuCopy");
    EXPECT_EQ(
        QGuiApplication::clipboard()->text().toStdString(),
        "Alias\tConnected\tDuration\tDisconnected\tSent\tReceived\tTotal\tNote\t\r\n"
        "Mobile\t2005-01-10 10:00:00\t00:05:07\t2005-01-10 10:05:07\t0.00\t1.23\t1.23\t2 KB\t\r\n"
        "Home\t2004-12-31 22:22:22\t1:23:45\t2004-12-31 23:46:07\t1,000.00\t2,500.00\t3,500.00\tone\t\r\n");
}

TEST_F(Statistics, DeletesWhatTheUserConfirms) {
    Open();
    const std::string before = FileText();
    Select({1});
    Do("mnuDelete", MessageAnswer::Cancel);
    EXPECT_NE(boxes.Take().Text.find("selected connection"), std::string::npos);
    EXPECT_EQ(FileText(), before);

    // A connection that ended after the window was opened must not be lost.
    const std::string appended = "\"Line9\",#2005-02-10 11:00:00#,#00:10:00#,1,2,\"new\",\"\"\r\n";
    Append(appended);
    Select({0, 1, 3});
    Do("mnuDelete", MessageAnswer::Yes);
    EXPECT_EQ(boxes.Take().Text.substr(0, 19), "Total 3 connections");
    EXPECT_EQ(Rows(), (Lines{"2 KB"}));
    EXPECT_EQ(Rows(0, "ListStatsSum"), (Lines{"Mobile"}));
    EXPECT_EQ(FileText(), "\"Line2\",#2005-01-10 10:00:00#,#00:05:07#,0,1234,\"2 KB\",\"\"\r\n" + appended);
}

TEST_F(Statistics, ADeletionThatFailsSaysSoAndLosesNothing) {
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { files.Held = true; }, "Another program is using"},
        {[&] { files.DiskFull = true; }, "could not be written"},
        {[&] { WriteFile("short"); }, "has changed"}};
    Open();
    for (const auto& [breakIt, message] : rows) {
        breakIt();
        const std::string before = FileText();
        Select({0});
        clock.Advance(10);
        Do("mnuDelete", MessageAnswer::Yes);
        EXPECT_NE(TakeBoxes().at(1).find(message), std::string::npos) << message;
        EXPECT_EQ(FileText(), before) << message;
        EXPECT_EQ(Selected(), (std::set<int>{0})) << "to try again";
        files.Held = files.DiskFull = false;
    }
}

TEST_F(Statistics, ATariffIsStoredAndSumsAndTrayFollow) {
    Open();
    Page(2);
    Pick("cboLines", "Line2");
    const auto use = [this] { return program->monthSums.UseOf("Line2"); };
    EXPECT_EQ(settings.Get(Keys::Z_StatLineChosen) + Shown("txtAlias"), "Line2Mobile");
    Type("cboFreeVolume", "2000000");
    EXPECT_EQ(Shown("cboFreeVolume"), "10000") << "corrected";
    EXPECT_EQ(use().FreeBytes, 1e10);
    EXPECT_EQ(use().UsedBytes, 6e6) << "5 MB, rounded up";
    Click("boxUp1MB");
    EXPECT_EQ(use().UsedBytes, 5e6);
    Click("boxTrayVolumeLine");
    EXPECT_TRUE(use().TrayVol);
    Pick("cboMonthStartDay", "5");
    EXPECT_EQ(use().UsedBytes, 0) << "the period began on the fifth";
    Pick("cboRoundSeconds", "60");
    EXPECT_EQ(Cell(3, 7, "ListStatsSum"), "6:00");

    Lines keys; // of all that an alias has
#define SETTING(...)
#define LINE_SETTING(kind, name, ...) keys.push_back("_" #name);
#include "settings/SettingRows.inc"
    settings.SetReg("Mobile_Warned", std::string("2005-02-05 V80"));
    Pick("cboLines", "Line3");
    Type("txtAlias", "Else");
    Pick("cboLines", "Line2");
    Type("txtProvider", "7");
    const std::string corrected = settings.Get(Keys::Alias("Line2")) + "_CorrectedFor";
    Type("txtAlias", "  Travel ");
    EXPECT_EQ(settings.Get(Keys::FreeVolume("Travel")), 10000) << "inherited";
    for (const std::string& key : keys)
        EXPECT_EQ(settings.GetReg("Travel" + key), settings.GetReg("Mobile" + key)) << key;
    EXPECT_EQ(use().UsedBytes, 7e6) << corrected;
    EXPECT_EQ(Rows(0), (Lines{"Travel", "Else", "Travel", "Home"}));
    Pick("cboLines", "Line3");
    Type("txtAlias", "Home");
    EXPECT_EQ(settings.Get(Keys::FreeVolume("Home")), 0) << "a line that joins an alias takes its tariff";
}

TEST_F(Statistics, TheUseOfAnAllowanceStandsBesideItsTariff) {
    Open();
    Page(2);
    Pick("cboLines", "Line2");
    Pick("cboKBMB", "MB");
    struct Row {
        const char *Field, *Typed, *Shown, *Text, *Correction;
    };
    const Row rows[] = {
        {"cboFreeHours", "0", "0", "Used: 6.00 MB   Today: 0.00 MB", ""},
        {"cboFreeHours", "10", "10", "Used: 0:30 of 10:00:00 (0 %)   Today: 0:00   Left per day", ""},
        {"cboFreeVolume", "100", "100",
         "Used: 6.00 MB of 100.00 MB (6 %)   Today: 0.00 MB   Left per day until "
         "2005-02-28: 4.95 MB   Forecast: ",
         ""},
        {"cboFreeVolume", "10", "10", "Used: 6.00 MB of 10.00 MB (60 %)", ""},
        {"cboFreeVolume", "100", "100", "Used: 6.00 MB of 100.00 MB", ""},
        {"txtProvider", "43.6", "44", "Used: 44.00 MB of 100.00 MB (44 %)", "Correction: +38 MB"},
        {"txtProvider", "many", "44", "Used: 44.00 MB", "Correction: +38 MB"},
        {"txtProvider", "2", "2", "Used: 2.00 MB", "Correction: -4 MB"},
        {"txtProvider", "", "", "Used: 6.00 MB", ""},
        {"txtWarnAt", "90;50", "50, 90", "", ""},
        {"txtWarnAt", "never", "50, 90", "", ""},
        {"txtWarnAt", "0", "0", "", ""},
        {"txtWarnAt", "", "80, 95, 100", "", ""}};
    for (const Row& row : rows) {
        Type(row.Field, row.Typed);
        EXPECT_EQ(Shown(row.Field), row.Shown) << row.Typed;
        EXPECT_EQ(Shown("lblUse").substr(0, std::strlen(row.Text)), row.Text) << row.Typed;
        EXPECT_EQ(Shown("lblCorrection"), row.Correction) << row.Typed;
        EXPECT_EQ(Find("barUse")->isVisible(), Shown("lblUse").find(" of ") != std::string::npos);
        EXPECT_EQ(Find("barUse")->accessibleDescription().toStdString(), Shown("lblUse"));
    }
}

TEST_F(Statistics, WhatIsOpenFollowsWithoutALoad) {
    settings.SetReg("Line2_FreeVolume", 100);
    settings.SetReg("Mobile_FreeVolume", 100);
    ASSERT_TRUE(StartProgram());
    LineRecord& line = program->lines.LineTable(1);
    line.EntryName = line.LineName = "Line2";
    line.LogIn = clock.Now();
    line.Connected = true;
    program->lines.LineCount = 1;
    WriteFile(file);
    program->LoadStatistics();
    Open();
    int loads = 0;
    events.OnProcessPending = [&] { ++loads; };
    line.BytesReceived = 20e6;
    line.Duration = 60 * OneSecond;
    EXPECT_TRUE(QTest::qWaitFor([&] { return Cell(0, 2) + Cell(0, 5) == "1:0020,000.00 KB"; }))
        << Cells(0, 0, 8);
    EXPECT_EQ(Cell(0, 7), "Still open");
    Page(2);
    Pick("cboLines", "Line2");
    EXPECT_EQ(Shown("lblUse").substr(0, 17), "Used: 27,000.00 K") << "each connection rounded up";
    Page(0);
    Select({1});
    Do("mnuDelete", MessageAnswer::Yes);
    EXPECT_EQ(Rows(), (Lines{"Still open", "four", "2 KB", "one"}));
    TakeBoxes();
    loads = 0;
    QTest::qWait(1200);
    EXPECT_EQ(loads, 0) << "the file is the one that is shown";
}

TEST_F(Statistics, AnAliasThatIsRenamedStaysChosenAndFitsTheSettingsAndTheWindow) {
    Open();
    Pick("cboFilter", "Home");
    Page(2);
    Type("txtAlias", "Office");
    EXPECT_EQ(Shown("cboFilter") + Shown("cboGAlias"), "OfficeOffice");
    EXPECT_EQ(settings.Get(Keys::Z_StatFilter) + settings.Get(Keys::GAlias), "OfficeOffice");
    EXPECT_EQ(Rows(0), (Lines{"Office"}));
    Pick("cboFilter", "Mobile");
    Pick("cboLines", "Line3");
    Type("txtAlias", "Office");
    EXPECT_EQ(Shown("cboFilter"), "Mobile") << "another line has it still";
    const int width = window->minimumSizeHint().width();
    Type("txtAlias", std::string(2000, 'x'));
    EXPECT_EQ(settings.Get(Keys::Alias("Line3")).size(), 255U);
    QCoreApplication::processEvents();
    EXPECT_LE(window->minimumSizeHint().width(), width + 200);
}

TEST_F(Statistics, AnEditedLineStaysChosenAndWhatIsBeingTypedCountsAtTheClose) {
    Open();
    window->close();
    Append("\"A\",#2005-01-01 10:00:00#,#00:00:10#,0,0,\"\",\"\"\r\n"); // sorted before the others
    window->Open();
    AwaitRecords();
    Page(2);
    Type("txtAlias", "Office");
    EXPECT_EQ(Shown("cboLines") + Shown("txtAlias"), "Line1Office");
    Pick("cboLines", "Line2");
    const double used = program->monthSums.UseOf("Line2").UsedBytes;
    Type("txtAlias", "Travel", Qt::Key_End);
    window->close();
    QCoreApplication::processEvents();
    EXPECT_EQ(settings.Get(Keys::Alias("Line2")), "Travel");
    EXPECT_EQ(program->monthSums.UseOf("Line2").UsedBytes, used);
}

TEST_F(Statistics, AFileWithoutRecordsLeavesListsAndLinesEmpty) {
    Open("");
    EXPECT_TRUE(Rows().empty() && Rows(0, "ListStatsSum").empty());
    EXPECT_TRUE(Shown("cboLines").empty() && !Find("txtAlias")->isEnabled());
    EXPECT_EQ(List()->findChild<QLabel*>()->text(), QStringLiteral("Nothing has been recorded yet."));
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    for (const char* item : {"mnuSelectAll", "mnuSelectMonth", "mnuDelete", "mnuCopy"})
        Do(item);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
}

TEST_F(Statistics, ADeletionLeavesTheUserWhereHeWas) {
    Open(Hourly(500));
    List()->verticalScrollBar()->setValue(300);
    List()->setCurrentIndex(List()->model()->index(302, 0));
    for (const char* shown : {"196", "195"}) {
        Do("mnuDelete", MessageAnswer::Yes);
        clock.Advance(1);
        EXPECT_EQ(List()->verticalScrollBar()->value(), 300);
        ASSERT_EQ(List()->currentIndex().row(), 302);
        EXPECT_EQ(Cell(302, 7), shown);
        EXPECT_TRUE(Selected().empty()) << "nothing more is deleted by chance";
        Select({302});
    }
    TakeBoxes();
}

TEST_F(Statistics, ExportsWhatIsSelectedOrAllOfIt) {
    Open();
    savePath = QString::fromStdString((folder / "out").string());
    Select({1});
    Do("mnuExportTXT");
    EXPECT_EQ(Shown("lblRows").substr(0, 16), "Exported rows: 4") << "one is selected by a right click, too";
    const std::string text = folder.Read("out");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5) << "a header and all rows";
    Select({1, 2});
    Do("mnuExportHTML");
    EXPECT_EQ(Shown("lblRows").substr(0, 16), "Exported rows: 2");
    const std::string page = folder.Read("out");
    EXPECT_NE(page.find("<td>2 KB</td>"), std::string::npos);
    EXPECT_EQ(page.find("<td>one</td>"), std::string::npos);
    EXPECT_NE(page.find("All aliases, 2004-12-31 - 2005-02-01, KB"), std::string::npos);
    EXPECT_EQ(page.find("<svg"), std::string::npos);
    Page(1);
    Do("mnuExportHTML");
    EXPECT_NE(folder.Read("out").find("<svg"), std::string::npos) << "with the graph";
    for (const auto& [path, cause] : {std::pair("missing/out", "does not exist"), {"dir", "no permission"}}) {
        std::filesystem::create_directory(folder / "dir");
        savePath = QString::fromStdString((folder / path).string());
        clock.Advance(10);
        Do("mnuExportTXT");
        const std::string told = boxes.Take().Text;
        EXPECT_NE(told.find(path), std::string::npos) << told;
        EXPECT_NE(told.find(cause), std::string::npos) << told;
    }
}

TEST_F(Statistics, NewConnectionsAppearBelowTheUsersHands) {
    Open(Hourly(300));
    List()->verticalScrollBar()->setValue(100);
    Select({101, 103});
    Append("\"Line1\",#2005-02-10 11:00:00#,#00:10:00#,1,2,\"new\",\"\"\r\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 301; }));
    EXPECT_EQ(Cell(0, 7), "new");
    EXPECT_EQ(List()->verticalScrollBar()->value(), 101);
    EXPECT_EQ(Selected(), (std::set<int>{102, 104}));
    clock.Advance(20 * SecondsPerDay);
    Page(1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Shown("cboGTill") == "2005-03-31"; })) << Shown("cboGTill");
}

TEST_F(Statistics, KeysReloadAndClose) {
    Open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    Append("\"Line1\",#2005-02-10 11:00:00#,#00:10:00#,1,2,\"new\",\"\"\r\n");
    QTest::keyClick(List(), Qt::Key_F5);
    EXPECT_EQ(Rows().size(), 5U);
    QTest::keyClick(List(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Statistics, TheWheelIsForTheBoxWithTheFocus) {
    Open();
    Page(2);
    auto* box = Find<QComboBox>("cboMonthStartDay");
    for (const char* shown : {"1", "2"}) {
        QWheelEvent wheel({9, 9}, box->mapToGlobal(QPointF(9, 9)), {}, QPoint(0, -120), Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(box, &wheel);
        EXPECT_EQ(Shown("cboMonthStartDay"), shown);
        box->setFocus();
    }
}

TEST_F(Statistics, ColumnsFitWhatTheyShow) {
    settings.SetReg("Line1_Alias", "An alias of some length");
    Open("\"Line1\",#2004-12-31 22:22:22#,#23:23:45#,1234567890123,2500000,\"one\",\"user1\"\r\n");
    Pick("cboKBMB", "Byte");
    for (int column = 0; column < 7; ++column) {
        const QString text = QString::fromStdString(Cell(0, column));
        EXPECT_GT(List()->columnWidth(column), List()->fontMetrics().horizontalAdvance(text) + 14) << column;
    }
}

TEST(LongJob, RunsBesideTheWindowAndEndsWhenCancelled) {
    LongJob job;
    int told = 0;
    QObject::connect(&job, &LongJob::Progress, [&] {
        if (++told == 2) job.Cancel();
    });
    EXPECT_FALSE(job.Run([&] {
        for (;;)
            job.At(0.5);
    }));
    EXPECT_TRUE(job.Run([] {}));
    EXPECT_THROW(job.Run([] { throw std::runtime_error("full"); }), std::runtime_error);
}

TEST_F(Statistics, ComesBackWhereItWasLeft) {
    Open();
    window->setGeometry(50, 60, 700, 500);
    Pick("cboFilter", "Home");
    window->close();
    EXPECT_EQ(settings.Get(Keys::STATS_Width), 700 * TwipsPerPixel);
    window.reset();
    Open();
    EXPECT_EQ(window->geometry(), QRect(50, 60, 700, 500));
    EXPECT_EQ(Rows(), (Lines{"one"}));
    window->showMaximized();
    window->close();
    EXPECT_EQ(settings.Get(Keys::STATS_State), 2);
    EXPECT_EQ(settings.Get(Keys::STATS_Width), 700 * TwipsPerPixel) << "its size when it is not";
}

TEST_F(Statistics, ALongLoadShowsProgressCanBeCancelledAndRunsOnce) {
    Open();
    int pauses = 0;
    events.OnProcessPending = [&] {
        if (++pauses != 5) return;
        EXPECT_GT(Reach<QProgressBar>("prgLoading")->value(), 5);
        EXPECT_FALSE(Find("SSTab")->isEnabled());
        Click("cmdCancel");
    };
    ReopenWithALongFile();
    ASSERT_TRUE(QTest::qWaitFor([&] { return pauses == 5 && !window->isVisible(); }));
    EXPECT_TRUE(Rows().empty());
    pauses = 0;
    events.OnProcessPending = [&] {
        if (++pauses > 1) return;
        window->close();
        window->Open();
        QCoreApplication::processEvents(); // would begin a load within the load
        EXPECT_EQ(pauses, 1);
    };
    window->Open();
    AwaitRecords();
    EXPECT_EQ(Rows().size(), 4U);
    EXPECT_EQ(pauses, 25) << "a pause every thousand lines";
}

} // namespace
