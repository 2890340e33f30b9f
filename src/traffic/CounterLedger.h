#pragma once

#include "platform/Journal.h"
#include "platform/NetworkTables.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvalin {

/// Keeps account of the interfaces' counters: up to where their bytes belong to a connection, or to nobody,
/// so that each byte is counted once whatever comes and goes, the program included. An interface is known by
/// its index, which the kernel gives once.
class CounterLedger {
  public:
    struct Account {
        std::string Adapter; ///< the kernel's name
        std::uint64_t Received = 0;
        std::uint64_t Transmitted = 0;
        Date ReadAt = 0;
    };

    /// Takes up what an earlier run has left. Where the program has never run, what adapters have moved
    /// before the first look is nobody's; otherwise everything that is not accounted for is a line's.
    void Begin(const JournalFound& found);

    /// Opens accounts for the adapters that are new.
    void Meet(const std::vector<InterfaceRow>& rows, Date now);

    /// The account of an interface; one that nobody has met is at zero.
    Account Of(std::uint32_t index) const;

    /// Accounts for everything that the counters say now.
    void Count(const InterfaceRow& row, Date now);
    void Set(std::uint32_t index, Account account) { accounts_[index] = std::move(account); }

    /// Closes the accounts of all interfaces that are not in the table.
    void KeepOnly(const std::vector<InterfaceRow>& rows);
    /// Closes the account of an interface that was removed, accounted for to its end. One that was moved into
    /// another network namespace may come back, and count on.
    void Close(const InterfaceRow& removed);

    const std::map<std::uint32_t, Account>& Accounts() const { return accounts_; }

    /// The dial-up lines that were open when the last run ended, or this one was about to end, and may still
    /// be up. `Take` gives each once.
    std::optional<JournalEntry> TakeDialUp(std::uint32_t index, std::string_view lineName);
    const std::vector<JournalEntry>& DialUps() const { return dialUps_; }
    std::vector<JournalEntry> TakeDialUps() { return std::exchange(dialUps_, {}); }
    void KeepDialUps(std::vector<JournalEntry> dialUps) { dialUps_ = std::move(dialUps); }
    /// Those that were recorded on an earlier day begin anew with this one.
    void BeginDialUpsOn(Date today);

    /// When the latest record of a line ends, or that of its connection which may still be up; 0 when none is
    /// known.
    Date LastEnd(std::string_view lineName) const;
    /// A record of the line ends then: the next one begins no earlier.
    void NoteEnd(std::string_view lineName, Date end);
    const std::map<std::string, Date>& LastEnds() const { return lastEnds_; }

  private:
    Account BeginningOf(const InterfaceRow& row, Date now) const;

    std::map<std::uint32_t, Account> accounts_;
    std::map<std::uint32_t, Account> closed_; // of interfaces that were removed
    std::map<std::string, Date> lastEnds_;    // by lower-case name
    std::vector<JournalEntry> dialUps_;
    bool pastIsNobodys_ = false; // of the adapters that the first look finds
};

} // namespace korvalin
