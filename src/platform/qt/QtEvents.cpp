#include "platform/qt/QtEvents.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>

namespace korvalin {

void QtEvents::ProcessPending() {
    QCoreApplication::processEvents();
}

void QtEvents::Sleep(int milliseconds) {
    QThread::msleep(static_cast<unsigned long>(std::max(milliseconds, 0)));
}

} // namespace korvalin
