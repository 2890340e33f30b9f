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
    const auto asked = [&] { return std::exchange(reasons, {}); };
    for (const auto& [signal, reason] :
         {std::pair(SIGTERM, CloseReason::SystemEnd), {SIGINT, CloseReason::TaskManager}}) {
        raise(signal);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !reasons.empty(); })) << signal;
        EXPECT_EQ(asked(), std::vector<CloseReason>{reason}) << signal;
    }
    QEvent quit(QEvent::Quit); // the session manager's way
    QApplication::sendEvent(qApp, &quit);
    EXPECT_EQ(asked(), std::vector<CloseReason>{CloseReason::SystemEnd});
}
