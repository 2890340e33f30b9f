#include "errors/Errors.h"
#include "errors/FileFailures.h"
#include "fakes/CoreFixture.h"

using namespace korvalin;

using ErrorsTest = CoreFixture;

TEST_F(ErrorsTest, AStepThatThrowsIsShownWithItsNumberTextAndProcedure) {
    EXPECT_TRUE(errors.Step("Main", [] {}));
    EXPECT_FALSE(errors.Step("Main", [] { throw NumberedError(53, "Datei@nicht gefunden@@intern"); }));
    const auto box = boxes.Take();
    EXPECT_EQ(box.Title, "Korvalin t207");
    EXPECT_EQ(box.Text, "t203\n\nt204: Main\nt205: 53\nt206: Datei nicht gefunden");
    EXPECT_EQ(box.Icon, MessageIcon::Critical);
}

TEST_F(ErrorsTest, WhatHappensToEveryFileIsToldInPlainWordsAndNotTwice) {
    const std::pair<int, const char*> rows[] = {{ENOSPC, "t209"}, {EDQUOT, "t209"}, {EROFS, "t210"},
                                                {EACCES, "t211"}, {EPERM, "t211"},  {EAGAIN, "t212"},
                                                {ENOENT, "t213"}, {EISDIR, "t233"}, {EIO, "t214"}};
    for (const auto& [number, cause] : rows) {
        const std::error_code code(number, std::generic_category());
        clock.Advance(3);
        errors.Step("Save", [&] { throw std::system_error(code, "/data: b/file"); });
        EXPECT_EQ(boxes.Take().Text, "t208\n/data: b/file\n\n" + std::string(cause) + " t230");
        errors.Step("Save", [&] {
            throw std::filesystem::filesystem_error("cannot copy", "/from", "/data: b/file", code);
        });
        EXPECT_TRUE(boxes.Shown.empty()) << "the same at once";
    }
    EXPECT_NE(Log().find("\tSave\tt208 /data: b/file  t214 t230\r\n"), std::string::npos) << Log();
    boxes.OnShow = [&] {
        clock.Advance(60);
        errors.Step("Save", [] { throw FileFailure(EIO, "/open", 231); });
    };
    clock.Advance(3);
    errors.Step("Save", [] { throw FileFailure(EIO, "/open", 231); });
    EXPECT_EQ(TakeBoxes(), Lines{"t208\n/open\n\nt214 t231"}) << "one box, as long as it is open";
}

TEST_F(ErrorsTest, ASecondErrorWithinTwoSecondsAsksWhetherToEnd) {
    const Date noon = clock.Now();
    struct {
        Date Start;
        double SecondsLater;
        std::deque<MessageAnswer> Answers;
        std::size_t Boxes;
    } const rows[] = {{noon, 1, {MessageAnswer::No}, 2},
                      {noon, 3, {}, 1},
                      {DateSerial(2024, 3, 15) + TimeSerial(23, 59, 59), 1.5, {}, 1}, // another day
                      {noon, 1, {MessageAnswer::Yes}, 1}};
    for (const auto& row : rows) {
        clock.SetWallClock(row.Start);
        clock.Advance(100);
        clock.SetWallClock(row.Start);
        errors.DisplayError("p", 1, "first");
        TakeBoxes();
        EXPECT_FALSE(ended);
        clock.Advance(row.SecondsLater);
        boxes.Answers = row.Answers;
        errors.DisplayError("p", 1, "second");
        EXPECT_TRUE(row.Answers.empty() || boxes.Shown.front().Buttons == MessageButtons::YesNoDefaultNo);
        const Lines shown = TakeBoxes();
        ASSERT_EQ(shown.size(), row.Boxes);
        EXPECT_EQ(shown.front() == "t201\nt202", !row.Answers.empty());
        EXPECT_EQ(shown.back().find("second") == std::string::npos, ended) << "No goes on with the report";
    }
    EXPECT_TRUE(ended);
    errors.DisplayError("end", 1, "third");
    EXPECT_TRUE(boxes.Shown.empty()) << "the end asks nothing more";
}

TEST_F(ErrorsTest, TheLogStaysBelowOneMegabyteAndItsWholeLinesBelow4Kilobytes) {
    folder.Write("Korvalin_ErrorLog.txt", std::string(999'990, 'x'));
    folder.Write("Korvalin_ErrorLog.old.txt", "older");
    errors.WriteErrorLog("new\r\nline", "Info");
    EXPECT_EQ(Log(), "2024-03-15 12:00:00\tInfo\tnew line\r\n");
    EXPECT_EQ(folder.Read("Korvalin_ErrorLog.old.txt").size(), 999'990U);
    for (std::size_t shift : {0U, 1U}) {
        const std::size_t before = Log().size();
        errors.WriteErrorLog(std::string(shift, 'x') + ReplaceAll(std::string(5000, 'x'), "x", "ö"),
                             std::string(5000, 'g'));
        EXPECT_LE(Log().size(), before + 4096);
        EXPECT_TRUE(IsValidUtf8(Log())) << "never cut within a character";
    }
}

TEST_F(ErrorsTest, ALineThatCannotBeWrittenGoesElsewhereOrIsLostSilently) {
    const auto plug = [&](std::function<std::filesystem::path()> data, const std::filesystem::path& spare) {
        errors.Plug({[](int) { return ""; }, std::move(data), [] {}, [spare] { return spare; }});
    };
    plug([&] { return folder / "none"; }, folder.Path());
    errors.WriteErrorLog("kept", "Info");
    const std::string kept = Log();
    EXPECT_NE(kept.find("\tkept\r\n"), std::string::npos);
    files.DiskFull = true;
    errors.WriteErrorLog("lost", "Info");
    plug([]() -> std::filesystem::path { throw std::runtime_error("gone"); }, "");
    errors.WriteErrorLog("lost", "Info");
    EXPECT_EQ(Log(), kept);
}
