#pragma once

#include "platform/DialDialog.h"
#include "platform/linux/dialup/NetworkManagerDialer.h"
#include "platform/linux/dialup/NetworkManagerLines.h"
#include "platform/linux/dialup/PppWatch.h"

#include <NetworkManager.h>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace korvalin {

/// One dial of one profile, from the request to the line that is up or the reason why there is none.
class DialAttempt {
  public:
    /// `dialog` may be null.
    DialAttempt(const DialerParts& parts, Events& events, DialDialog* dialog, NMRemoteConnection* profile);
    ~DialAttempt();
    DialAttempt(const DialAttempt&) = delete;
    DialAttempt& operator=(const DialAttempt&) = delete;

    /// Puts a login into the profile, whose other secrets stay. 0 or an error number: ErrorRetry, with
    /// nothing stored, when the profile no longer has this telephone number.
    [[nodiscard]] int StoreLogin(const Login& login, const std::string& number);

    /// Starts the profile, or joins the start that somebody else has made, and waits.
    [[nodiscard]] DialResult Run();

  private:
    struct Call;
    using SharedCall = std::shared_ptr<Call>;

    static void TakeAnswer(GObject* source, GAsyncResult* result, gpointer call);
    static void TakeDeviceState(NMDevice* device, NMDeviceState state, NMDeviceState oldState,
                                NMDeviceStateReason reason, gpointer attempt);

    [[nodiscard]] std::optional<int> Await(const Call& call);
    [[nodiscard]] std::optional<int> Wait();
    [[nodiscard]] bool ComesAtOnce(const Call& call);
    [[nodiscard]] int Activate();
    [[nodiscard]] DialResult Follow();
    [[nodiscard]] int ReasonOfEnd();
    [[nodiscard]] double SecondsAwake() const;
    [[nodiscard]] int FetchSecrets(NMConnection* changed);
    [[nodiscard]] int SendProfile(NMConnection* changed);
    GObjectPointer<NMActiveConnection> ActiveConnection();
    bool IsListed();
    void WatchDevices(NMClient* client);
    void Watch(NMDevice* device);
    void ShowStage();

    DialerParts parts_;
    Events& events_;
    DialDialog* dialog_;
    GObjectPointer<NMRemoteConnection> profile_;
    double startedAt_;
    GObjectPointer<NMActiveConnection> connection_;
    GObjectPointer<NMDevice> device_;
    std::vector<GObjectPointer<NMDevice>> watched_;
    std::map<NMDevice*, NMDeviceStateReason> failures_;
    PppWatch ppp_;
    std::optional<DialStage> stage_;
};

} // namespace korvalin
