// What the system shows while it dials: the progress, and the question for the login.
#pragma once

#include <optional>
#include <string>

namespace korvalin {

enum class DialStage { Preparing, Connecting, LoggingIn, GettingAddress };

struct Login {
    std::string UserName;
    std::string Password;
};

class DialDialog {
  public:
    virtual ~DialDialog() = default;

    /// Dialing begins; the window stays until End.
    virtual void Begin(const std::string& entryName) = 0;
    /// Says how far the dial has come.
    virtual void ShowStage(DialStage stage) = 0;
    /// The user has pressed the cancel button or closed the window since Begin.
    [[nodiscard]] virtual bool Cancelled() const = 0;
    virtual void End() = 0;

    /// Tells why an entry could not be dialed (a RAS error number), and returns when the user has seen it.
    virtual void ShowFailure(const std::string& entryName, int error) = 0;

    /// Asks for user name and password; nothing when the user cancels. The password field begins empty
    /// whatever is stored.
    [[nodiscard]] virtual std::optional<Login> AskLogin(const std::string& entryName,
                                                        const std::string& userName) = 0;
};

} // namespace korvalin
