#include "errors/ConnectionState.h"
#include "errors/Errors.h"
#include "errors/Paths.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeNetwork.h"
#include "fakes/TemporaryFolder.h"

namespace korvalin {
namespace {

class ErrorsTest : public testing::Test {
  protected:
    ErrorsTest() {
        errors.Plug({[](int number) { return "t" + std::to_string(number); }, [this] { return folder.Path(); },
                     [this] { ended = true; }});
    }

    TemporaryFolder folder;
    FakeClock clock;
    FakeFiles files;
    FakeMessageBoxes boxes;
    Locale locale;
    Errors errors{clock, files, boxes, locale, "Korvalin"};
    bool ended = false;
};

TEST_F(ErrorsTest, ShowsNumberTextAndProcedure) {
    errors.DisplayError("Main", 53, "Datei nicht gefunden@@intern");
    const auto box = boxes.Take();
    EXPECT_EQ(box.Title, "Korvalin t207");
    EXPECT_EQ(box.Text, "t203\n\nt204: Main\nt205: 53\nt206: Datei nicht gefunden");
    EXPECT_EQ(box.Icon, MessageIcon::Critical);
}

TEST_F(ErrorsTest, MarksInsideTheTextBecomeBlanks) {
    errors.DisplayError("p", 1, "a@b");
    EXPECT_TRUE(boxes.Take().Text.ends_with("t206: a b"));
}

TEST_F(ErrorsTest, AStepThatThrowsIsReportedWithItsNumberAndEndsAlone) {
    EXPECT_FALSE(errors.Step("GetDataPath", [] { throw NumberedError(691, "wrong password"); }));
    EXPECT_TRUE(errors.Step("GetDataPath", [] {}));
    EXPECT_NE(boxes.Take().Text.find("t205: 691\nt206: wrong password"), std::string::npos);
}

TEST_F(ErrorsTest, ASecondErrorWithinTwoSecondsAsksWhetherToEnd) {
    struct {
        double SecondsLater;
        bool Asks;
    } const rows[] = {{1, true}, {3, false}};
    for (const auto& row : rows) {
        clock.Advance(100);
        errors.DisplayError("p", 1, "first");
        boxes.Take();
        clock.Advance(row.SecondsLater);
        errors.DisplayError("p", 1, "second");
        if (row.Asks) {
            EXPECT_EQ(boxes.Take().Text, "t201\nt202");
        }
        EXPECT_NE(boxes.Take().Text.find("second"), std::string::npos) << "No goes on with the report";
    }
    EXPECT_FALSE(ended);
}

TEST_F(ErrorsTest, YesEndsTheProgramWithoutAnotherReport) {
    errors.DisplayError("p", 1, "first");
    boxes.Take();
    boxes.Answers = {MessageAnswer::Yes};
    errors.DisplayError("p", 1, "second");
    EXPECT_EQ(boxes.Take().Buttons, MessageButtons::YesNo);
    EXPECT_TRUE(ended);
}

TEST_F(ErrorsTest, AReportBeforeMidnightDoesNotCountAfterIt) {
    clock.SetWallClock(DateSerial(2024, 3, 15) + TimeSerial(23, 59, 59));
    errors.DisplayError("p", 1, "first");
    boxes.Take();
    clock.Advance(2);
    errors.DisplayError("p", 1, "second");
    EXPECT_NE(boxes.Take().Text.find("second"), std::string::npos);
}

TEST_F(ErrorsTest, LogLinesAreWholeAndOnOneLineEach) {
    errors.WriteErrorLog("first\r\nsecond", "Info");
    EXPECT_EQ(folder.Read("Korvalin_ErrorLog.txt"), "2024-03-15 12:00:00\tInfo\tfirst second\r\n");
}

TEST_F(ErrorsTest, TheLogStaysBelowOneMegabyte) {
    folder.Write("Korvalin_ErrorLog.txt", std::string(999'990, 'x'));
    folder.Write("Korvalin_ErrorLog.old.txt", "older");
    errors.WriteErrorLog("new", "Info");
    EXPECT_EQ(folder.Read("Korvalin_ErrorLog.txt"), "2024-03-15 12:00:00\tInfo\tnew\r\n");
    EXPECT_EQ(folder.Read("Korvalin_ErrorLog.old.txt").size(), 999'990U);
}

TEST_F(ErrorsTest, ALineThatCannotBeWrittenIsLostSilently) {
    files.DiskFull = true;
    errors.WriteErrorLog("lost", "Info");
    errors.Plug({[](int) { return ""; }, []() -> std::filesystem::path { throw std::runtime_error("gone"); }, [] {}});
    errors.WriteErrorLog("lost", "Info");
    EXPECT_EQ(folder.Read("Korvalin_ErrorLog.txt"), "");
}

TEST(Paths, AddBackslashEndsAPathOnce) {
    EXPECT_EQ(AddBackslash("C:\\"), "C:\\");
    EXPECT_EQ(AddBackslash("C:\\Data"), "C:\\Data\\");
    EXPECT_EQ(AddBackslash("/data"), "/data/");
    EXPECT_EQ(AddBackslash("/data/"), "/data/");
}

TEST(Paths, AFolderExistsButIsNoFile) {
    const TemporaryFolder folder;
    EXPECT_TRUE(FileExists(folder.Path()));
    EXPECT_FALSE(IsFileNotFolder(folder.Path()));
    EXPECT_TRUE(IsFileNotFolder(folder.Write("f", "")));
    EXPECT_FALSE(FileExists(folder / "none"));
}

TEST(ConnectionState, DescribesEveryFlagInItsOrder) {
    const auto text = [](int number) { return std::to_string(number); };
    FakeInternet internet;
    internet.State = {false, 0xFF};
    EXPECT_EQ(ConnectionInfoText(internet, text), "8");
    internet.State = {true, 0x7F};
    EXPECT_EQ(ConnectionInfoText(internet, text), "1\n2\n3 \n4 \n5 \n6 \n7");
    EXPECT_TRUE(IsRasInstalled(internet));
    internet.State = {true, InternetConnectionLan};
    EXPECT_EQ(ConnectionInfoText(internet, text), "2\n");
    EXPECT_FALSE(IsInternetViaModem(internet));
    EXPECT_TRUE(IsInternetViaLan(internet) && IsOnline(internet));
}

} // namespace
} // namespace korvalin
