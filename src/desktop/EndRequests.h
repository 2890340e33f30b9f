#pragma once

#include "traffic/CloseReason.h"

#include <QObject>
#include <QSocketNotifier>

namespace korvalin {

class TerminationSignals;

/// What asks the program from outside to end: signals and the session manager.
class EndRequests : public QObject {
    Q_OBJECT

  public:
    /// `termination` outlives this.
    explicit EndRequests(const TerminationSignals& termination);

  signals:
    /// May come more than once.
    void EndRequested(CloseReason reason);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QSocketNotifier signalled_;
};

} // namespace korvalin
