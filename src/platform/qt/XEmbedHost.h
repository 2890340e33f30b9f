#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>

namespace korvalin {

/// Knows whether a host for embedded icons is on the X server's screen: it owns a selection there and says so
/// to everybody when it takes it. Without an X server there is none.
class XEmbedHost : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    XEmbedHost();

    bool IsThere() const { return owner_ != 0; }

  signals:
    void Changed();

  protected:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  private:
    void Look();

    std::uint32_t selection_ = 0;
    std::uint32_t manager_ = 0; // the kind of message with which it is taken
    std::uint32_t owner_ = 0;   // a window; 0 = none
};

} // namespace korvalin
