#include "platform/linux/dialup/NetworkManagerClient.h"

#include "platform/Clock.h"

#include <NetworkManager.h>
#include <utility>

namespace korvalin {
namespace {

// What is a dial-up line is settled at the first look at the lines, so that one is worth waiting for. A
// service that is there answers in a few milliseconds.
constexpr guint firstAnswerMilliseconds = 1000;
constexpr guint lastAnswerMilliseconds = 300;
constexpr double secondsBetweenAttempts = 10;
// A bus that was there a moment ago is being restarted.
constexpr double secondsOfRestart = 60;
constexpr double secondsBetweenAttemptsInRestart = 1;

struct SourceReleaser {
    void operator()(GSource* source) const {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

gboolean RaiseFlag(gpointer flag) {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_REMOVE;
}

} // namespace

struct NetworkManagerClient::Ending {
    NetworkManagerClient& Client;
    std::function<void()> WhenRefused;
};

NetworkManagerClient::CallScope::CallScope(NetworkManagerClient& client) : context_(client.context_.get()) {
    g_main_context_push_thread_default(context_);
}

NetworkManagerClient::CallScope::~CallScope() {
    g_main_context_pop_thread_default(context_);
}

NetworkManagerClient::NetworkManagerClient(Clock& clock)
    : clock_(clock), context_(g_main_context_new()), cancellable_(g_cancellable_new()) {}

// The service asks the bus who wants a connection to end: a request of a process that has gone is refused.
NetworkManagerClient::~NetworkManagerClient() {
    isClosing_ = true; // those who asked are gone
    HandleWhile([&] { return endings_ > 0; }, lastAnswerMilliseconds);
    // Answers that are still under way are never handled: nobody runs the context any more.
    g_cancellable_cancel(cancellable_.get());
    Disconnect();
}

void NetworkManagerClient::BeginConnecting() {
    if (connecting_ || client_ || clock_.AwakeSeconds() < nextAttempt_) return;
    connecting_ = true;
    const std::unique_ptr<char, decltype(&g_free)> address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr), g_free);
    if (!address) return GiveUpForNow();
    // A connection of our own: the process's shared one would end the program when the bus goes.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const CallScope scope(*this);
    g_dbus_connection_new_for_address(address.get(), flags, nullptr, cancellable_.get(), TakeConnection,
                                      this);
}

void NetworkManagerClient::TakeConnection(GObject*, GAsyncResult* result, gpointer self) {
    auto& client = *static_cast<NetworkManagerClient*>(self);
    client.connection_.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (!client.connection_) return client.GiveUpForNow();
    const CallScope scope(client);
    g_async_initable_new_async(
        NM_TYPE_CLIENT, G_PRIORITY_DEFAULT, client.cancellable_.get(), TakeClient, self,
        NM_CLIENT_DBUS_CONNECTION, client.connection_.get(), NM_CLIENT_INSTANCE_FLAGS,
        static_cast<guint>(NM_CLIENT_INSTANCE_FLAGS_NO_AUTO_FETCH_PERMISSIONS), nullptr);
}

void NetworkManagerClient::TakeClient(GObject*, GAsyncResult* result, gpointer self) {
    auto& client = *static_cast<NetworkManagerClient*>(self);
    client.client_.reset(nm_client_new_finish(result, nullptr));
    if (!client.client_) return client.GiveUpForNow();
    client.connecting_ = false;
}

void NetworkManagerClient::GiveUpForNow() {
    Disconnect();
    connecting_ = false;
    const double now = clock_.AwakeSeconds();
    const bool isRestarting = wasThere_ && now - *wasThere_ < secondsOfRestart;
    nextAttempt_ = now + (isRestarting ? secondsBetweenAttemptsInRestart : secondsBetweenAttempts);
}

void NetworkManagerClient::Disconnect() {
    client_.reset();
    connection_.reset();
}

void NetworkManagerClient::HandleWhile(const std::function<bool()>& pending, guint milliseconds) {
    bool timedOut = false;
    const std::unique_ptr<GSource, SourceReleaser> limit(g_timeout_source_new(milliseconds));
    g_source_set_callback(limit.get(), RaiseFlag, &timedOut, nullptr);
    g_source_attach(limit.get(), context_.get());
    while (pending() && !timedOut)
        g_main_context_iteration(context_.get(), TRUE);
}

void NetworkManagerClient::Deactivate(NMActiveConnection* connection, std::function<void()> whenRefused) {
    if (!client_) return;
    ++endings_;
    const CallScope scope(*this);
    nm_client_deactivate_connection_async(client_.get(), connection, nullptr, TakeEnding,
                                          new Ending{*this, std::move(whenRefused)});
}

void NetworkManagerClient::TakeEnding(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Ending> ending(static_cast<Ending*>(data));
    NetworkManagerClient& client = ending->Client;
    --client.endings_;
    const bool granted = nm_client_deactivate_connection_finish(NM_CLIENT(source), result, nullptr) != FALSE;
    if (!granted && !client.isClosing_ && ending->WhenRefused) ending->WhenRefused();
}

void NetworkManagerClient::HandleArrived() {
    while (g_main_context_iteration(context_.get(), FALSE)) {
    }
}

NMClient* NetworkManagerClient::Running() {
    HandleArrived();
    // The bus was stopped; when it comes back it knows nothing of this connection.
    if (client_ && g_dbus_connection_is_closed(connection_.get())) {
        wasThere_ = clock_.AwakeSeconds();
        GiveUpForNow();
    }
    BeginConnecting();
    // Once for a whole run: later answers are taken when they are there.
    if (!std::exchange(firstAnswerAwaited_, true))
        HandleWhile([&] { return connecting_; }, firstAnswerMilliseconds);
    return client_ && nm_client_get_nm_running(client_.get()) ? client_.get() : nullptr;
}

} // namespace korvalin
