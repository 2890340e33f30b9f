#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/files/FileLocks.h"
#include "platform/linux/system/ExitWatch.h"
#include "platform/linux/system/LinuxLocale.h"
#include "platform/linux/system/SystemClock.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

using namespace korvalin;

namespace fs = std::filesystem;

TEST(SystemClock, FollowsTheTimeZoneWhileItRunsAndTellsPartsOfASecond) {
    SystemClock clock;
    const auto secondsAheadOfUtc = [&] {
        const double utc =
            static_cast<double>(std::chrono::system_clock::now().time_since_epoch().count()) * 1e-9;
        return (clock.Now() - DateSerial(1970, 1, 1)) * SecondsPerDay - utc;
    };
    const std::pair<const char*, double> rows[] = {
        {"UTC0", 0}, {"AAA-5:30", 5.5 * 3600}, {"BBB11", -11.0 * 3600}};
    for (const auto& [zone, expected] : rows) {
        setenv("TZ", zone, 1);
        const double giveUp = clock.AwakeSeconds() + 10;
        while (std::abs(secondsAheadOfUtc() - expected) > 0.1 && clock.AwakeSeconds() < giveUp)
            continue;
        EXPECT_NEAR(secondsAheadOfUtc(), expected, 0.1) << zone;
        EXPECT_GE(clock.BootSeconds(), clock.AwakeSeconds() - 1e-3);
    }
    unsetenv("TZ");
}

TEST(FileInstanceLock, TellsWhoRunsAndWhoIsReadyAndIsNotTakenByAsking) {
    const TemporaryFolder folder;
    FileInstanceLock one(folder.Path(), "new"), second(folder.Path(), "new"), other(folder.Path(), "old");
    one.SayReady();
    EXPECT_FALSE(other.IsRunning("new") || other.IsReady("new")) << "without the lock";
    EXPECT_FALSE(one.PreviousInstanceRunning());
    EXPECT_TRUE(other.IsRunning("new") && second.PreviousInstanceRunning());
    EXPECT_FALSE(other.IsReady("new"));
    one.SayReady();
    EXPECT_TRUE(other.IsReady("new"));
    const std::jthread asks([&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            static_cast<void>(other.IsRunning("third"));
    });
    for (int i = 0; i < 2000; ++i)
        EXPECT_FALSE(FileInstanceLock(folder.Path(), "third").PreviousInstanceRunning());
}

TEST(FileRecordingLock, IsHeldForOneFolderByOneProcessUntilItEnds) {
    const TemporaryFolder folder, another;
    Signal held;
    ChildProcess earlier([&] {
        FileRecordingLock lock;
        EXPECT_TRUE(lock.Take(folder.Path()) && lock.Take(folder.Path()) && !lock.IsTaken(folder.Path()));
        held.Send(HasFailure() ? 0 : 1);
        pause();
    });
    ASSERT_EQ(held.Await(), 1);
    FileRecordingLock lock;
    EXPECT_TRUE(lock.Take(another.Path()));
    EXPECT_FALSE(lock.Take(folder.Path()));
    EXPECT_TRUE(lock.IsTaken(folder.Path()));
    EXPECT_FALSE(FileRecordingLock().Take(another.Path())) << "lost by asking for a folder in vain";
    EXPECT_TRUE(lock.Take(folder / "none")) << "holds nobody up";
    EXPECT_FALSE(lock.IsTaken(folder / "none"));
    earlier.Kill();
    EXPECT_TRUE(lock.Take(folder.Path()));
    EXPECT_TRUE(FileRecordingLock().Take(another.Path())) << "still held after another folder was taken";
}

TEST(FileRecordingLock, CannotBeTakenAwayByWhoCanReadOrWriteTheFolder) {
    const TemporaryFolder folder;
    const fs::path file = folder / fmt::format("Korvalin_Recording-{}.lock", geteuid());
    const fs::path victim = folder.Write("victim", "");
    const Descriptor bare(open(folder.Path().c_str(), O_RDONLY | O_DIRECTORY));
    ASSERT_EQ(flock(bare.Get(), LOCK_EX), 0);
    fs::create_symlink(victim, file);
    const Descriptor held(open(victim.c_str(), O_RDWR));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    ASSERT_EQ(fcntl(held.Get(), F_OFD_SETLK, &whole), 0);
    FileRecordingLock lock;
    EXPECT_FALSE(lock.IsTaken(folder.Path()));
    EXPECT_TRUE(lock.Take(folder.Path()));
    fs::remove(file);
    EXPECT_TRUE(lock.Take(folder.Path()));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
}

TEST(ExitWatch, RunsItsTaskOnlyWhenTheProcessIsEndedInsideItsScope) {
    Signal told;
    ChildProcess([&] {
        {
            const ExitWatch watch([&] { told.Send(1); });
        }
        std::exit(0);
    }).Finish();
    ChildProcess([&] {
        const ExitWatch watch([&] { told.Send(2); });
        std::exit(0);
    }).Finish();
    EXPECT_EQ(told.Await(), 2);
}

TEST(LinuxLocale, TranslatesPatternsThatLocaleCanExpress) {
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"%d.%m.%Y", "dd.mm.yyyy"},         {"%m/%d/%y", "mm/dd/yy"},    {"%-d/%-m/%Y", "d/m/yyyy"},
        {"%e. %m. %Y", "d. mm. yyyy"},      {"%r", "hh:nn:ss AMPM"},     {"%I:%M:%S %p", "hh:nn:ss AMPM"},
        {"%H:%M:%S %Z", "hh:nn:ss"},        {"%OH:%OM:%OS", "hh:nn:ss"}, {"%F", "yyyy-mm-dd"},
        {"%Y年%m月%d日", "yyyy年mm月dd日"}, {"%d %b %Y", std::nullopt},  {"%d de %m", std::nullopt},
        {"%d.%m.%", std::nullopt},          {"", std::nullopt}};
    for (const auto& [format, pattern] : rows)
        EXPECT_EQ(PatternFromStrftime(format), pattern) << format;
}
