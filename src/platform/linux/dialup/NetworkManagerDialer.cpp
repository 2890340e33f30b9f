#include "platform/linux/dialup/NetworkManagerDialer.h"

#include "base/FlagGuard.h"
#include "platform/linux/dialup/DialAttempt.h"
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/ProfileLogin.h"
#include "platform/linux/dialup/RasErrors.h"

#include <cstring>

namespace korvalin {
namespace {

/// The dialog's window, from the first stage to the end of the dial.
class ShownDial {
  public:
    ShownDial(DialDialog* dialog, const std::string& entryName) : dialog_(dialog) {
        if (dialog_ != nullptr) dialog_->Begin(entryName);
    }
    ~ShownDial() {
        if (dialog_ != nullptr) dialog_->End();
    }
    ShownDial(const ShownDial&) = delete;
    ShownDial& operator=(const ShownDial&) = delete;

  private:
    DialDialog* dialog_;
};

/// Holds a login no longer than it is needed.
class ShortLivedLogin {
  public:
    explicit ShortLivedLogin(std::optional<Login> login) : login_(std::move(login)) {}
    ~ShortLivedLogin() {
        if (login_) explicit_bzero(login_->Password.data(), login_->Password.size());
    }
    ShortLivedLogin(const ShortLivedLogin&) = delete;
    ShortLivedLogin& operator=(const ShortLivedLogin&) = delete;
    const std::optional<Login>& Get() const { return login_; }

  private:
    std::optional<Login> login_;
};

} // namespace

DialResult NetworkManagerDialer::Dial(const std::string& entryName, std::uint32_t flags) {
    // Windows are alive during a dial: their menu can ask for one more.
    if (dialing_ || events_ == nullptr) return {ErrorDialAlreadyInProgress};
    const FlagGuard dialing(dialing_);
    const DialResult result = DialProfile(entryName, flags);
    const int error = result.Error;
    const bool goesOn = error == ErrorRetry ||
                        (error == ErrorAuthenticationFailure && (flags & InternetDialForcePrompt) == 0);
    if (error != ErrorSuccess && error != ErrorCancelled && !goesOn && dialog_ != nullptr)
        dialog_->ShowFailure(entryName, error);
    return result;
}

DialResult NetworkManagerDialer::DialProfile(const std::string& entryName, std::uint32_t flags) {
    const auto profile = ShareGObject(FindProfile(parts_.Client.Running(), entryName));
    if (!profile) return {ErrorCannotFindPhonebookEntry};
    if (const std::int32_t handle = parts_.Lines.HandleOfProfile(profile.get()); handle != 0)
        return {ErrorSuccess, handle};

    NMConnection* settings = NM_CONNECTION(profile.get());
    const bool asks = (flags & InternetDialForcePrompt) != 0 && (flags & InternetDialUnattended) == 0 &&
                      dialog_ != nullptr && TakesLogin(settings);
    const std::string number = DescribeProfile(settings).LocalPhoneNumber;
    const ShortLivedLogin login(asks ? dialog_->AskLogin(entryName, StoredUserName(settings)) : std::nullopt);
    if (asks && !login.Get()) return {ErrorCancelled};
    // Gone, or renamed, while the question stood.
    if (asks && FindProfile(parts_.Client.Running(), entryName) != profile.get())
        return {ErrorCannotFindPhonebookEntry};

    const ShownDial shown(dialog_, entryName);
    DialAttempt attempt(parts_, *events_, dialog_, profile.get());
    if (login.Get()) {
        if (const int error = attempt.StoreLogin(*login.Get(), number); error != ErrorSuccess) return {error};
    }
    return attempt.Run();
}

} // namespace korvalin
