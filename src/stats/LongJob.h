#pragma once

#include <QObject>

#include <atomic>
#include <functional>

namespace korvalin {

/// Work on very many records in a thread of its own, while the window that waits for it stays alive.
class LongJob : public QObject {
    Q_OBJECT

  public:
    /// Returns when the work is done, letting events in; false when it was cancelled. What the work throws is
    /// thrown here. Nothing that the work reads may change meanwhile.
    bool Run(const std::function<void()>& work);

    /// For the work: how far it is. Ends it when it was cancelled.
    void At(double fraction);

    void Cancel() { cancelled_ = true; }

  signals:
    /// The work takes so long that the user wants to know; 0 at first.
    void Progress(double fraction);

  private:
    std::atomic<double> fraction_ = 0;
    std::atomic<bool> cancelled_ = false;
};

} // namespace korvalin
