#include "platform/qt/QtEvents.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace korvalin {

void QtEvents::ProcessPending() {
    QCoreApplication::processEvents();
}

void QtEvents::Sleep(int milliseconds) {
    QThread::msleep(static_cast<unsigned long>(std::max(milliseconds, 0)));
}

void QtEvents::Wait(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace korvalin
