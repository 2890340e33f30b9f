#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/FlockInstanceLock.h"
#include "platform/linux/PasswdUser.h"
#include "platform/linux/SystemClock.h"

#include <chrono>
#include <cstdlib>

namespace korvalin {
namespace {

TEST(SystemClock, FollowsTheTimeZoneWhileItRuns) {
    SystemClock clock;
    const auto secondsAheadOfUtc = [&] {
        const double utc =
            static_cast<double>(std::chrono::system_clock::now().time_since_epoch().count()) * 1e-9;
        return (clock.Now() - DateSerial(1970, 1, 1)) * SecondsPerDay - utc;
    };
    const struct {
        const char* Zone;
        double SecondsAhead;
    } rows[] = {{"UTC0", 0}, {"AAA-5:30", 5.5 * 3600}, {"BBB11", -11.0 * 3600}};
    for (const auto& row : rows) {
        setenv("TZ", row.Zone, 1);
        const double giveUp = clock.AwakeSeconds() + 10;
        while (std::abs(secondsAheadOfUtc() - row.SecondsAhead) > 1 && clock.AwakeSeconds() < giveUp) {
        }
        EXPECT_NEAR(secondsAheadOfUtc(), row.SecondsAhead, 1) << row.Zone;
    }
    unsetenv("TZ");
}

TEST(SystemClock, TellsPartsOfASecondAndNeverSteps) {
    SystemClock clock;
    const double boot = clock.BootSeconds();
    const double awake = clock.AwakeSeconds();
    EXPECT_GE(boot, awake - 1e-3);
    const Date first = clock.Now();
    Date second = clock.Now();
    while (second == first)
        second = clock.Now();
    EXPECT_LT((second - first) * SecondsPerDay, 0.5);
    EXPECT_GT(clock.BootSeconds(), boot);
    EXPECT_GT(clock.AwakeSeconds(), awake);
}

TEST(FlockInstanceLock, IsHeldByTheEarlierProcessUntilItEnds) {
    const TemporaryFolder folder;
    Signal held;
    ChildProcess earlier([&] {
        FlockInstanceLock lock(folder / "new/folder", "Korvalin");
        held.Send(lock.PreviousInstanceRunning() || lock.PreviousInstanceRunning() ? 0 : 1);
        pause();
    });
    ASSERT_EQ(held.Await(), 1);
    FlockInstanceLock lock(folder / "new/folder", "Korvalin");
    EXPECT_TRUE(lock.PreviousInstanceRunning());
    EXPECT_FALSE(FlockInstanceLock(folder / "new/folder", "korvalin-cli").PreviousInstanceRunning());
    earlier.Kill();
    EXPECT_FALSE(lock.PreviousInstanceRunning());
    EXPECT_TRUE(FlockInstanceLock(folder / "new/folder", "Korvalin").PreviousInstanceRunning());
}

TEST(FlockInstanceLock, AnUnusableFolderHoldsNobodyUp) {
    const TemporaryFolder folder;
    folder.Write("file", "");
    EXPECT_FALSE(FlockInstanceLock(folder / "file", "Korvalin").PreviousInstanceRunning());
}

TEST(PasswdUser, FindsTheNameWithoutTheEnvironment) {
    if (std::system("getent passwd $(id -u) >/dev/null") != 0) GTEST_SKIP() << "this user has no entry";
    setenv("USER", "somebody else", 1);
    const std::string name = PasswdUser().Name();
    EXPECT_FALSE(name.empty());
    EXPECT_NE(name, "somebody else");
}

} // namespace
} // namespace korvalin
