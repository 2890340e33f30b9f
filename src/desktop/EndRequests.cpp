#include "desktop/EndRequests.h"

#include "platform/linux/system/TerminationSignals.h"

#include <QCoreApplication>
#include <QEvent>

#include <csignal>

namespace korvalin {
namespace {

// A session that ends sends SIGTERM; the others come from whoever sits at the keyboard or at a terminal.
CloseReason ReasonOf(int signal) {
    return signal == SIGTERM ? CloseReason::SystemEnd : CloseReason::TaskManager;
}

} // namespace

EndRequests::EndRequests(const TerminationSignals& termination)
    : signalled_(termination.Get(), QSocketNotifier::Read) {
    connect(&signalled_, &QSocketNotifier::activated, this, [this, &termination] {
        if (const int signal = termination.Take()) emit EndRequested(ReasonOf(signal));
    });
    qApp->installEventFilter(this);
}

// The toolkit would only try to close the windows, and one that stays in the tray would refuse.
bool EndRequests::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::Quit) emit EndRequested(CloseReason::SystemEnd);
    return QObject::eventFilter(watched, event);
}

} // namespace korvalin
