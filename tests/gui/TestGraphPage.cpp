#include "fakes/CoreFixture.h"
#include "forms/PictureBox.h"
#include "gui/Driver.h"
#include "lang/ApplyFormTexts.h"
#include "lang/UnitFormat.h"
#include "stats/graph/GraphPage.h"

#include <QXmlStreamReader>

using namespace korvalin;

// These tests also run at another pixel ratio: see CMakeLists.txt.
namespace {

class GraphPageTest : public CoreFixture, protected Driver {
  protected:
    GraphPageTest() {
        window.setObjectName(QStringLiteral("frmStatistik"));
        locale.ShortDate = "dd.mm.yyyy";
        settings.SetReg("GFrom", DateSerial(2024, 3, 6));
        settings.SetReg("GPeriodType", 0);
        for (int day = 0; day < 2000; ++day)
            Add("dsl", DateSerial(2024, 3, 15 - day), 1.6e6, 0.4e6);
        Add("umts", DateSerial(2024, 3, 14), 7e6, 0);
        aliases.FillAlias(records);
    }
    void Add(const char* line, Date day, double received, double transmitted) {
        StatRecord& record = records.List.emplace_back();
        record.LineName = records.Texts.Intern(line);
        record.LogIn = day;
        record.LogOut = day + TimeSerial(1, 0, 0);
        record.BytesReceived = received;
        record.BytesTransmitted = transmitted;
    }
    // Ten days with 2 MB each on a scale up to 3 MB.
    void Open() {
        ASSERT_TRUE(program != nullptr || StartProgram());
        page = new GraphPage({settings, program->language, errors, aliases, boxes, clock, locale}, &window);
        page->setGeometry(0, 0, 640, 460);
        ApplyFormTexts(window, program->language);
        window.resize(640, 460);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        page->ShowRecords(records);
    }

    QWidget* Driven() const override { return page; }
    PictureBox* Picture() { return Find<PictureBox>("PicChart"); }
    QComboBox* Combo(const char* name) { return Find<QComboBox>(name); }
    std::string Stored(const char* name) { return registry.RegReadString(SettingsKeyPath, name); }

    bool NothingDrawn() {
        QImage blank = Picture()->Picture();
        blank.fill(Qt::white);
        return Picture()->Picture() == blank;
    }
    // What the tooltip says when the mouse rests there.
    std::string TipAt(int x) {
        QHelpEvent event(QEvent::ToolTip, QPoint(x, 50), Picture()->mapToGlobal(QPoint(x, 50)));
        QCoreApplication::sendEvent(Picture(), &event);
        return QToolTip::text().toStdString();
    }

    UnitFormat units{errors, locale, clock};
    Aliases aliases{settings, errors, clock, units};
    StatRecords records;
    QWidget window;
    GraphPage* page = nullptr;
};

TEST_F(GraphPageTest, EveryControlRedraws) {
    settings.SetReg("GFrom", DateSerial(2024, 1, 3));
    Open();
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"alias", [&] { Pick("cboGAlias", "umts"); }},
        {"alias", [&] { Pick("cboGAlias", "dsl"); }},
        {"maximum periods", [&] { Type("cboGMaxPeriods", "70"); }},
        {"from", [&] { Type("cboGFrom", "1.2.24"); }},
        {"till", [&] { Type("cboGTill", "1.3.2024"); }},
        {"top", [&] { Pick("cboGMax", "20 MB"); }},
        {"values", [&] { Click("boxShowValue"); }},
        {"colors", [&] { Pick("cboGPalette", "Blue and orange"); }},
        {"unit", [&] { page->SetUnit("KB", 1000); }},
        {"sent", [&] { Click("boxGSend"); }},
        {"week", [&] { Combo("cboGPeriodType")->setCurrentIndex(1); }},
        {"weekday", [&] { Combo("cboGWeekday")->setCurrentIndex(3); }},
        {"month", [&] { Combo("cboGPeriodType")->setCurrentIndex(2); }},
        {"records",
         [&] {
             records.List.erase(records.List.begin(), records.List.begin() + 31);
             page->ShowRecords(records);
         }},
        {"button", [&] { records.List.clear(), Click("cmdGDraw"); }}};
    QImage before = Picture()->Picture();
    for (const auto& [name, change] : changes) {
        change();
        EXPECT_NE(Picture()->Picture(), before) << name;
        before = Picture()->Picture();
    }
    EXPECT_TRUE(NothingDrawn());
}

TEST_F(GraphPageTest, CorrectsWhatIsTypedAndRemembersIt) {
    QLocale::setDefault(QLocale(QLocale::German));
    Open();
    EXPECT_EQ(Shown("cboGAlias") + Shown("cboGMaxPeriods"), "dsl24") << "the first with records";
    EXPECT_EQ(Shown("cboGWeekday"), "Monday");
    struct {
        const char *Combo, *Setting, *Typed, *Shown, *Stored;
    } const rows[] = {{"cboGFrom", "GFrom", "31.2.24", "06.03.2024", "2024-03-06 00:00:00"},
                      {"cboGFrom", "GFrom", "1.1.1950", "15.03.2023", "2023-03-15 00:00:00"},
                      {"cboGFrom", "GFrom", "1.2.2024", "01.02.2024", "2024-02-01 00:00:00"},
                      {"cboGTill", "GTill", "15.3.2024", "15.03.2024", ""}, // today, tomorrow as well
                      {"cboGTill", "GTill", "3.3.2024", "03.03.2024", "2024-03-03 00:00:00"},
                      {"cboGMaxPeriods", "GMaxPeriods", "5000", "1000", "1000"},
                      {"cboGMaxPeriods", "GMaxPeriods", "3", "3", "3"}};
    for (const auto& row : rows) {
        Type(row.Combo, row.Typed);
        EXPECT_EQ(Shown(row.Combo), row.Shown) << row.Typed;
        EXPECT_EQ(registry.RegReadString(SettingsKeyPath, row.Setting), row.Stored) << row.Typed;
    }
    Pick("cboGAlias", "umts");
    Combo("cboGPeriodType")->setCurrentIndex(1);
    Click("boxShowValue");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    delete page;
    Open();
    EXPECT_EQ(Shown("cboGAlias") + Shown("cboGPeriodType") + Shown("cboGMaxPeriods"), "umtsWeek3");
    EXPECT_EQ(Shown("boxShowValue") + Shown("cboGWeekday"), "TrueSunday") << "weeks begin on Sunday here";
    EXPECT_EQ(Shown("cboGTill"), "09.03.2024");
    settings.SetReg("umts_MonthStartDay", 20);
    aliases.FillAliasInfo(aliases.AliasIndex("umts"));
    Combo("cboGPeriodType")->setCurrentIndex(2);
    EXPECT_EQ(Shown("cboGTill"), "19.03.2024");
}

TEST_F(GraphPageTest, ReachesUpToTodayOnEveryDay) {
    Open();
    EXPECT_FALSE(Find("lblGNote")->isVisible());
    Type("cboGMaxPeriods", "3");
    EXPECT_EQ(Shown("lblGNote"), "Only the newest periods (see Maximum periods): 3 / 10");
    for (const char* till : {"16.03.2024", "10.03.2024"}) {
        clock.Advance(SecondsPerDay);
        page->ShowRecords(records);
        EXPECT_EQ(Shown("cboGTill"), till) << "unless the user wants another day";
        Type("cboGTill", "10.03.2024");
    }
}

TEST_F(GraphPageTest, TellsThePeriodUnderTheMouse) {
    Open();
    int x = 0;
    while (x < Picture()->width() && TipAt(x).empty())
        ++x;
    EXPECT_GT(x, 10) << "beside the bars there is nothing to tell";
    EXPECT_EQ(TipAt(x), "06.03.2024\nSent: 0.4 MB\nReceived: 1.6 MB\nTotal: 2.0 MB");
    EXPECT_EQ(TipAt(Picture()->width() - 5).substr(0, 10), "15.03.2024");
    Click("boxGSend");
    Combo("cboGPeriodType")->setCurrentIndex(2);
    EXPECT_EQ(TipAt(x + 50), "01.03.2024 - 31.03.2024\nReceived: 24.0 MB");
    TipAt(5);
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(GraphPageTest, AnImpossibleScaleIsToldOnceInTheWindowsLanguage) {
    Open();
    Combo("cboGPeriodType")->setCurrentIndex(2);
    program->language.UseLanguage("GER");
    ApplyTextsToLoadedForms(program->language);
    EXPECT_EQ(Shown("cboGPeriodType") + Shown("cboGMax"), "AbrechnungsmonatAutomatisch");
    records.List[0].BytesReceived = INFINITY;
    Click("cmdGDraw");
    page->SetUnit("KB", 1000);
    EXPECT_EQ(TakeBoxes(), Lines{"Die Grafik konnte nicht gezeichnet werden."});
    EXPECT_TRUE(NothingDrawn() && page->Svg().empty() && TipAt(100).empty());
}

TEST_F(GraphPageTest, ExportsTheSameBars) {
    Open();
    EXPECT_EQ(page->Title(), "dsl, 06.03.2024 - 15.03.2024, MB");
    page->SetUnit("<&\"", 1e6);
    Click("boxShowValue");
    const std::string svg = page->Svg();
    QXmlStreamReader reader(QByteArray::fromStdString(svg));
    std::map<std::string, int> shown; // bars by colour and height, and texts
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const auto value = [&](const char* name) {
            return reader.attributes().value(QLatin1String(name)).toString().toStdString();
        };
        if (reader.name() == QLatin1String("rect")) ++shown[value("fill") + " " + value("height")];
        if (reader.name() == QLatin1String("text")) ++shown[reader.readElementText().toStdString()];
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    // The drawing area is 400 - 60 - 10 pixels high.
    for (const char* bar : {"#00ff00 44.00", "#ff0000 176.00", "2 <&\""})
        EXPECT_EQ(shown[bar], 10) << bar;
    EXPECT_TRUE(shown.contains("06.03.24") && shown.contains("3"));
    EXPECT_NE(svg.find("<span style=\"color:#ff0000\">\u25A0</span> Received"), std::string::npos);
    const ListTexts list = page->Texts();
    EXPECT_EQ(list.RowCount, 10U);
    EXPECT_EQ(list.Cell(9, 0) + "|" + list.Cell(9, 1) + "|" + list.Cell(9, 2) + "|" + list.Cell(9, 3),
              "15.03.2024|0.40 <&\"|1.60 <&\"|2.00 <&\"");
}

} // namespace
