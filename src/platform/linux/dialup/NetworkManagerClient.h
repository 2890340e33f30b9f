#pragma once

#include "platform/linux/dialup/GObjectPointer.h"

#include <functional>
#include <gio/gio.h>
#include <optional>

using NMActiveConnection = struct _NMActiveConnection;
using NMClient = struct _NMClient;

namespace korvalin {

class Clock;

/// This process's picture of NetworkManager, kept up to date by the service's own announcements: looking at
/// it costs no round trip. It lives in a main context of its own, so that it needs no particular event loop;
/// what has arrived is handled when the picture is asked for. No call waits for the bus or the service,
/// except the first one, a moment.
class NetworkManagerClient {
  public:
    explicit NetworkManagerClient(Clock& clock);
    ~NetworkManagerClient();
    NetworkManagerClient(const NetworkManagerClient&) = delete;
    NetworkManagerClient& operator=(const NetworkManagerClient&) = delete;

    /// The picture as of now; null while NetworkManager does not answer. Valid until the next call.
    NMClient* Running();

    /// Asks for a connection's end without waiting for it. `whenRefused` is called when NetworkManager does
    /// not grant it; it may be called at any later question. The end of this client waits for the answer, a
    /// moment.
    void Deactivate(NMActiveConnection* connection, std::function<void()> whenRefused = {});

    /// While it lives, asynchronous calls of libnm answer to this client.
    class CallScope {
      public:
        explicit CallScope(NetworkManagerClient& client);
        ~CallScope();
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

      private:
        GMainContext* context_;
    };

  private:
    struct ContextReleaser {
        void operator()(GMainContext* context) const { g_main_context_unref(context); }
    };

    struct Ending;

    static void TakeConnection(GObject* source, GAsyncResult* result, gpointer self);
    static void TakeClient(GObject* source, GAsyncResult* result, gpointer self);

    static void TakeEnding(GObject* source, GAsyncResult* result, gpointer ending);

    void BeginConnecting();
    void HandleWhile(const std::function<bool()>& pending, guint milliseconds);
    void HandleArrived();
    void Disconnect();
    void GiveUpForNow();

    Clock& clock_;
    std::unique_ptr<GMainContext, ContextReleaser> context_;
    GObjectPointer<GCancellable> cancellable_;
    GObjectPointer<GDBusConnection> connection_;
    GObjectPointer<NMClient> client_;
    int endings_ = 0; ///< requests to deactivate that have no answer
    bool isClosing_ = false;
    bool connecting_ = false;
    bool firstAnswerAwaited_ = false;
    std::optional<double> wasThere_; ///< seconds awake when the bus was lost
    double nextAttempt_ = 0;         // seconds awake
};

} // namespace korvalin
