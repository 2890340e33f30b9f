#pragma once

#include "platform/Internet.h"
#include "traffic/PhoneBook.h"

#include <string>
#include <vector>

namespace korvalin {

class Events;
class PhoneNumberGuard;
class Settings;
struct LineState;

/// What the user can do about dial-up lines: hang up, or else dial one of the entries.
struct DialChoices {
    bool HangUp = false;
    /// Sorted by name.
    std::vector<std::string> Entries;
    /// The entry dialed last, if it is one of these; else empty.
    std::string Quick;
};

/// Dials the entries of the phone book and hangs up.
class Dialing {
  public:
    struct Parts {
        korvalin::Internet& Internet;
        korvalin::Ras& Ras;
        korvalin::PhoneBook& PhoneBook;
        korvalin::PhoneNumberGuard& PhoneNumberGuard;
        const korvalin::LineState& LineState;
        korvalin::Settings& Settings;
        korvalin::Events& Events;
        korvalin::Errors& Errors;
    };

    explicit Dialing(const Parts& parts) : parts_(parts) {}

    /// Dials an entry and returns when it is up or has failed; windows stay alive meanwhile. A failure is
    /// told by the system's dial window only.
    void DialEntry(const std::string& entryName);

    /// Hangs up all connections, one after the other. Connections that remain are logged.
    void MONHangUp();

    /// Whether one of the two is under way; another is then left out.
    bool Busy() const { return busy_; }

    /// The program ends: nothing is dialed any more.
    void Stop() { stopped_ = true; }

    /// What the menus offer now.
    DialChoices Choices();

    /// Number of entries in the phone book.
    std::size_t EntriesCount() { return parts_.PhoneBook.RASGetEntriesCount(); }

  private:
    DialResult Dial(const std::string& entryName, std::uint32_t flags);
    bool ConnectionUp();
    std::vector<RasConnection> Connections();

    Parts parts_;
    bool busy_ = false;
    bool stopped_ = false;
};

} // namespace korvalin
