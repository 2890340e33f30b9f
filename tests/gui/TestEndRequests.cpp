#include "desktop/EndRequests.h"
#include "platform/linux/system/TerminationSignals.h"

#include <csignal>

using namespace korvalin;

TEST(EndRequests, TellWhoAsksTheProgramToEnd) {
    const TerminationSignals termination;
    std::vector<CloseReason> reasons;
    const EndRequests requests(termination);
    QObject::connect(&requests, &EndRequests::EndRequested,
                     [&](CloseReason reason) { reasons.push_back(reason); });
    const std::pair<int, CloseReason> rows[] = {{SIGTERM, CloseReason::SystemEnd},
                                                {SIGINT, CloseReason::TaskManager},
                                                {SIGHUP, CloseReason::TaskManager}};
    for (const auto& [signal, reason] : rows) {
        reasons.clear();
        raise(signal);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !reasons.empty(); })) << signal;
        EXPECT_EQ(reasons, std::vector<CloseReason>{reason}) << signal;
    }
    reasons.clear();
    QEvent quit(QEvent::Quit); // the session manager's way
    QApplication::sendEvent(qApp, &quit);
    EXPECT_EQ(reasons, std::vector<CloseReason>{CloseReason::SystemEnd});
}
