#pragma once

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

namespace korvalin {

/// Knows whether a host for StatusNotifierItem icons is on the session bus. Everything is asked without
/// waiting: a service that hangs must not hang the program. Without a session bus there is no host.
class StatusNotifierHost : public QObject {
    Q_OBJECT

  public:
    enum class State {
        Unasked, ///< the answer is still to come
        Absent,
        Expected, ///< the desktop keeps a list of icons, but nothing shows it yet
        Silent,   ///< the desktop keeps one, but does not answer; it is asked again and again
        Present
    };

    StatusNotifierHost();

    State Now() const { return state_; }

  signals:
    void Changed();

  private slots:
    void Ask();

  private:
    void TakeAnswer();
    void Become(State state);

    State state_ = State::Absent;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    std::unique_ptr<QDBusPendingCallWatcher> asked_;
};

} // namespace korvalin
