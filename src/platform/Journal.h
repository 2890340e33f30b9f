// What is known of this machine's byte counters between two runs of the program, however the first one ended.
#pragma once

#include "base/Date.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// The journal's file name in the data folder.
inline constexpr std::string_view JournalFileName = "Korvalin_Journal.db";

/// The part of an open connection that no record holds yet, and all that its record needs.
struct OpenConnection {
    std::string LineName; ///< phone-book entry, network or adapter
    Date LogIn = 0;
    Date End = 0; ///< of the part as it stands: a record made of it ends then
    double BytesReceived = 0;
    double BytesTransmitted = 0;
    std::string User;
    std::string IpAddress;
    bool IsRas = false;
    /// A dial-up line that was recorded when a run ended and may still be up: not to be recorded once more.
    bool Recorded = false;
    /// A dial-up line that an earlier run may have recorded up to its end: the record with the same beginning
    /// is replaced. Not kept in the journal.
    bool MayRepeat = false;
};

/// What is known of an interface's counters.
struct JournalEntry {
    std::uint32_t Index = 0; ///< the kernel's number, never given twice between two starts of the system
    std::string Adapter;     ///< the kernel's name
    /// The kernel's counters up to which bytes are accounted for.
    std::uint64_t Received = 0;
    std::uint64_t Transmitted = 0;
    Date ReadAt = 0;
    std::optional<OpenConnection> Open;
};

/// A record on its way into the statistics: written again at the next start unless the files have it. The
/// line of a file that is known to have it is empty.
struct PendingRecord {
    std::string StatLine;
    std::string ExportLine;
};

/// The journal as a whole.
struct JournalPicture {
    std::vector<JournalEntry> Entries;
    std::vector<PendingRecord> Pending;
    /// When the latest record of a line ends, by the line's name in lower case.
    std::map<std::string, Date> LastEnds;
};

/// What a start finds.
struct JournalFound {
    /// The program has run on this machine before: what its counters say belongs to lines.
    bool KnowsMachine = false;
    /// The counters have gone on since; otherwise they began again with the system.
    bool SameBoot = false;
    JournalPicture Picture = {};
    /// The journal is there, but could not be read now: the rest says nothing.
    bool IsUnreadable = false;

    /// The connections that the program has open which writes the journal.
    std::vector<OpenConnection> StillOpen() const {
        std::vector<OpenConnection> open;
        for (const JournalEntry& entry : Picture.Entries) {
            if (SameBoot && entry.Open && !entry.Open->Recorded) open.push_back(*entry.Open);
        }
        return open;
    }
};

/// A moment's counters of an entry that has an open connection, for the case that the program is killed.
struct JournalNote {
    std::uint32_t Index = 0;
    std::uint64_t Received = 0; ///< as JournalEntry has them
    std::uint64_t Transmitted = 0;
    Date ReadAt = 0;
    double OpenReceived = 0; ///< as OpenConnection has them
    double OpenTransmitted = 0;
    Date OpenEnd = 0;
};

/// One file in the data folder. Machines that share a folder do not see each other's entries.
class Journal {
  public:
    virtual ~Journal() = default;

    /// What this machine has written into the folder's journal, with the latest notes; nothing when there is
    /// none. A damaged file is moved aside.
    [[nodiscard]] virtual JournalFound Load(const std::filesystem::path& folder) = 0;

    /// Whether a picture is on the medium when Save returns, or only safe from the program's end.
    enum class Durability { Process, Medium };
    /// Replaces this machine's picture in one step: after a fault it is the old one or the new one, whole.
    /// The file is made when it is missing, and follows the program into another folder. False leaves the
    /// old picture.
    [[nodiscard]] virtual bool Save(const std::filesystem::path& folder, const JournalPicture& picture,
                                    Durability durability) = 0;

    /// Notes counters of the entries of the last Save, so that a kill loses none. Cheap enough for every
    /// second; not on the medium.
    virtual void Note(const std::vector<JournalNote>& notes) = 0;

    /// Like Load for a program that does not record, while another one does: leaves the file as it is.
    [[nodiscard]] virtual JournalFound Look(const std::filesystem::path& folder) = 0;
};

} // namespace korvalin
