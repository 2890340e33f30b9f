#include "platform/qt/QtEvents.h"

#include <QCoreApplication>
#include <QThread>

namespace korvalin {

void QtEvents::ProcessPending() { QCoreApplication::processEvents(); }

void QtEvents::Sleep(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }

} // namespace korvalin
