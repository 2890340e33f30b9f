#pragma once

#include "traffic/CloseReason.h"

#include <QObject>
#include <QSocketNotifier>

#include <functional>

namespace korvalin {

class TerminationSignals;

/// What asks the program from outside to end: signals and the session manager.
class EndRequests : public QObject {
    Q_OBJECT

  public:
    /// `end` may be called more than once. `termination` outlives this.
    EndRequests(const TerminationSignals& termination, std::function<void(CloseReason reason)> end);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::function<void(CloseReason)> end_;
    QSocketNotifier signalled_;
};

} // namespace korvalin
