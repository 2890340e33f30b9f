#include "platform/linux/dialup/DialAttempt.h"

#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/Internet.h" // ErrorCancelled, ErrorRetry
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/DialResults.h"
#include "platform/linux/dialup/ProfileLogin.h"
#include "platform/linux/dialup/RasErrors.h"

#include <algorithm>
#include <functional>

namespace korvalin {
namespace {

constexpr double secondsUntilGivenUp = 90;
constexpr double secondsForAnswer = 1;
constexpr int millisecondsBetweenLooks = 20;

DialStage StageOfVpn(NMVpnConnectionState state) {
    switch (state) {
    case NM_VPN_CONNECTION_STATE_NEED_AUTH: return DialStage::LoggingIn;
    case NM_VPN_CONNECTION_STATE_CONNECT: return DialStage::Connecting;
    case NM_VPN_CONNECTION_STATE_IP_CONFIG_GET:
    case NM_VPN_CONNECTION_STATE_ACTIVATED: return DialStage::GettingAddress;
    default: return DialStage::Preparing;
    }
}

DialStage StageOfDevice(NMDeviceState state) {
    if (state < NM_DEVICE_STATE_CONFIG) return DialStage::Preparing;
    if (state < NM_DEVICE_STATE_NEED_AUTH) return DialStage::Connecting;
    if (state < NM_DEVICE_STATE_IP_CONFIG) return DialStage::LoggingIn;
    return DialStage::GettingAddress;
}

} // namespace

/// An asynchronous call. Once nobody waits for the answer any more it goes to `Late`, where that is set.
struct DialAttempt::Call {
    GObjectPointer<GObject> Source;
    GObjectPointer<GAsyncResult> Result;
    std::function<void(GObject*, GAsyncResult*)> Late{};
};

void DialAttempt::TakeAnswer(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<SharedCall> call(static_cast<SharedCall*>(data));
    if ((*call)->Late) return (*call)->Late(source, result);
    (*call)->Source = ShareGObject(source);
    (*call)->Result = ShareGObject(result);
}

DialAttempt::DialAttempt(const DialerParts& parts, Events& events, DialDialog* dialog,
                         NMRemoteConnection* profile)
    : parts_(parts),
      events_(events),
      dialog_(dialog),
      profile_(ShareGObject(profile)),
      startedAt_(parts.Clock.AwakeSeconds()) {}

DialAttempt::~DialAttempt() {
    for (const auto& device : watched_)
        g_signal_handlers_disconnect_by_data(device.get(), this);
}

double DialAttempt::SecondsAwake() const {
    return parts_.Clock.AwakeSeconds() - startedAt_;
}

// Lets a moment pass with windows alive; why the dial has to end meanwhile.
std::optional<int> DialAttempt::Wait() {
    events_.ProcessPending();
    if (dialog_ != nullptr && dialog_->Cancelled()) return ErrorCancelled;
    // The service waits without end for a login that is not stored and that nobody else tells it.
    if (SecondsAwake() >= secondsUntilGivenUp)
        return stage_ == DialStage::LoggingIn ? ErrorAuthenticationFailure : ErrorNoCarrier;
    if (parts_.Client.Running() == nullptr) return ErrorConnectionDropped;
    events_.Sleep(millisecondsBetweenLooks);
    return std::nullopt;
}

std::optional<int> DialAttempt::Await(const Call& call) {
    while (!call.Result) {
        if (const auto interrupted = Wait()) return interrupted;
    }
    return std::nullopt;
}

// Whether the answer to a call comes within a moment.
bool DialAttempt::ComesAtOnce(const Call& call) {
    const double limit = SecondsAwake() + secondsForAnswer;
    while (!call.Result && SecondsAwake() < limit && parts_.Client.Running() != nullptr)
        events_.Sleep(millisecondsBetweenLooks);
    return call.Result != nullptr;
}

int DialAttempt::StoreLogin(const Login& login, const std::string& number) {
    const GObjectPointer<NMConnection> changed(nm_simple_connection_new_clone(NM_CONNECTION(profile_.get())));
    if (const int error = FetchSecrets(changed.get()); error != ErrorSuccess) return error;
    // The service's answer came behind its announcements. What is sent from here on has that number.
    if (DescribeProfile(NM_CONNECTION(profile_.get())).LocalPhoneNumber != number) return ErrorRetry;
    korvalin::StoreLogin(changed.get(), login);
    return SendProfile(changed.get());
}

// A profile that is sent with a secret loses those that are not sent: the others come along.
int DialAttempt::FetchSecrets(NMConnection* changed) {
    const std::string setting = LoginSetting(changed);
    const auto call = std::make_shared<Call>();
    {
        const NetworkManagerClient::CallScope scope(parts_.Client);
        nm_remote_connection_get_secrets_async(profile_.get(), setting.c_str(), nullptr, TakeAnswer,
                                               new SharedCall(call));
    }
    if (const auto interrupted = Await(*call)) return *interrupted;
    GErrorPointer error;
    GVariant* secrets =
        nm_remote_connection_get_secrets_finish(profile_.get(), call->Result.get(), GErrorSlot(error));
    // Where nothing is stored and nobody could be asked there is nothing to lose.
    if (secrets == nullptr) return AreNoSecrets(*error) ? ErrorSuccess : ResultOfRefusal(*error);
    nm_connection_update_secrets(changed, setting.c_str(), secrets, nullptr);
    g_variant_unref(secrets);
    return ErrorSuccess;
}

int DialAttempt::SendProfile(NMConnection* changed) {
    const auto persistence = nm_remote_connection_get_unsaved(profile_.get())
                                 ? NM_SETTINGS_UPDATE2_FLAG_IN_MEMORY
                                 : NM_SETTINGS_UPDATE2_FLAG_TO_DISK;
    const auto call = std::make_shared<Call>();
    {
        const NetworkManagerClient::CallScope scope(parts_.Client);
        nm_remote_connection_update2(profile_.get(),
                                     nm_connection_to_dbus(changed, NM_CONNECTION_SERIALIZE_ALL), persistence,
                                     nullptr, nullptr, TakeAnswer, new SharedCall(call));
    }
    if (const auto interrupted = Await(*call)) return *interrupted;
    GErrorPointer error;
    GVariant* answer =
        nm_remote_connection_update2_finish(profile_.get(), call->Result.get(), GErrorSlot(error));
    if (answer == nullptr) return ResultOfRefusal(*error);
    g_variant_unref(answer);
    return ErrorSuccess;
}

DialResult DialAttempt::Run() {
    NMClient* client = parts_.Client.Running();
    if (client == nullptr) return {ErrorConnectionDropped};
    WatchDevices(client);
    connection_ = ActiveConnection();
    if (!connection_) {
        if (const int error = Activate(); error != ErrorSuccess) return {error};
    }
    return Follow();
}

// The profile's connection that is up or coming up; null when it has to be started.
GObjectPointer<NMActiveConnection> DialAttempt::ActiveConnection() {
    const GPtrArray* connections = nm_client_get_active_connections(parts_.Client.Running());
    for (guint i = 0; i < connections->len; ++i) {
        auto* connection = static_cast<NMActiveConnection*>(connections->pdata[i]);
        if (nm_active_connection_get_connection(connection) == profile_.get() &&
            nm_active_connection_get_state(connection) <= NM_ACTIVE_CONNECTION_STATE_ACTIVATED) {
            return ShareGObject(connection);
        }
    }
    return nullptr;
}

int DialAttempt::Activate() {
    const auto call = std::make_shared<Call>();
    {
        const NetworkManagerClient::CallScope scope(parts_.Client);
        nm_client_activate_connection_async(parts_.Client.Running(), NM_CONNECTION(profile_.get()), nullptr,
                                            nullptr, nullptr, TakeAnswer, new SharedCall(call));
    }
    const auto interrupted = Await(*call);
    // What was asked for cannot be taken back before it is granted.
    if (interrupted && !ComesAtOnce(*call)) {
        call->Late = [&client = parts_.Client](GObject* running, GAsyncResult* result) {
            const GObjectPointer<NMActiveConnection> late(
                nm_client_activate_connection_finish(NM_CLIENT(running), result, nullptr));
            if (late) client.Deactivate(late.get());
        };
        return *interrupted;
    }
    GErrorPointer error;
    connection_.reset(nm_client_activate_connection_finish(NM_CLIENT(call->Source.get()), call->Result.get(),
                                                           GErrorSlot(error)));
    if (interrupted && connection_) parts_.Client.Deactivate(connection_.get());
    if (interrupted) return *interrupted;
    return connection_ ? ErrorSuccess : ResultOfRefusal(*error);
}

DialResult DialAttempt::Follow() {
    for (;;) {
        const GPtrArray* devices = nm_active_connection_get_devices(connection_.get());
        if (devices->len > 0) {
            device_ = ShareGObject(static_cast<NMDevice*>(devices->pdata[0]));
            Watch(device_.get()); // one that is made for this dial was not there beforehand
        }
        const NMActiveConnectionState state = nm_active_connection_get_state(connection_.get());
        if (state == NM_ACTIVE_CONNECTION_STATE_ACTIVATED) {
            parts_.Lines.Refresh();
            const std::int32_t handle = parts_.Lines.HandleOf(connection_.get());
            if (handle != 0) return {ErrorSuccess, handle};
        }
        if (state >= NM_ACTIVE_CONNECTION_STATE_DEACTIVATING || !IsListed()) return {ReasonOfEnd()};
        ShowStage();
        if (const auto interrupted = Wait()) {
            parts_.Client.Deactivate(connection_.get());
            return {*interrupted};
        }
    }
}

// Whether NetworkManager still knows the connection.
bool DialAttempt::IsListed() {
    NMClient* client = parts_.Client.Running();
    if (client == nullptr) return false;
    return g_ptr_array_find(const_cast<GPtrArray*>(nm_client_get_active_connections(client)),
                            connection_.get(), nullptr) != FALSE;
}

// A VPN's device is the one it runs over, which has no part in its failure.
int DialAttempt::ReasonOfEnd() {
    const auto failure = failures_.find(device_.get());
    if (failure == failures_.end() || nm_active_connection_get_vpn(connection_.get()))
        return ResultOfConnectionEnd(nm_active_connection_get_state_reason(connection_.get()));
    return ResultOfDeviceFailure(failure->second, ppp_.HasSeenLink(), SecondsAwake());
}

// All of them, beforehand: a device that fails is back at rest, its reason forgotten, before one could look.
void DialAttempt::WatchDevices(NMClient* client) {
    const GPtrArray* devices = nm_client_get_devices(client);
    for (guint i = 0; i < devices->len; ++i)
        Watch(static_cast<NMDevice*>(devices->pdata[i]));
}

void DialAttempt::Watch(NMDevice* device) {
    const bool isWatched = std::any_of(watched_.begin(), watched_.end(),
                                       [&](const auto& watched) { return watched.get() == device; });
    if (isWatched) return;
    watched_.push_back(ShareGObject(device));
    g_signal_connect(device, "state-changed", G_CALLBACK(TakeDeviceState), this);
}

void DialAttempt::TakeDeviceState(NMDevice* device, NMDeviceState state, NMDeviceState,
                                  NMDeviceStateReason reason, gpointer attempt) {
    const bool ends = state == NM_DEVICE_STATE_DEACTIVATING || state == NM_DEVICE_STATE_FAILED ||
                      state <= NM_DEVICE_STATE_UNAVAILABLE;
    // It makes way, as a rule for this dial: that is no failure.
    const bool makesWay = reason == NM_DEVICE_STATE_REASON_NEW_ACTIVATION;
    if (ends && !makesWay) static_cast<DialAttempt*>(attempt)->failures_.emplace(device, reason);
}

void DialAttempt::ShowStage() {
    DialStage stage = DialStage::Preparing;
    if (NM_IS_VPN_CONNECTION(connection_.get())) {
        stage = StageOfVpn(nm_vpn_connection_get_vpn_state(NM_VPN_CONNECTION(connection_.get())));
    } else if (device_) {
        stage = StageOfDevice(nm_device_get_state(device_.get()));
    }
    if (dialog_ != nullptr && stage != stage_) dialog_->ShowStage(stage);
    stage_ = stage;
}

} // namespace korvalin
