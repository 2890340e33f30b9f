#pragma once

#include "platform/Journal.h"

#include <algorithm>

namespace korvalin {

/// A journal in memory that tells what is on the medium from what a kill would leave.
class FakeJournal : public Journal {
  public:
    bool KnowsMachine = false;
    bool SameBoot = true;
    bool Fails = false; ///< outside SpareFolder
    bool SpareFails = false;
    std::filesystem::path SpareFolder;
    bool IsUnreadable = false;
    JournalPicture Kept;     ///< after a kill
    JournalPicture OnMedium; ///< after a power loss
    int Saves = 0;           ///< onto the medium
    std::filesystem::path Folder;

    JournalFound Load(const std::filesystem::path& folder) override { return Look(folder); }
    bool Save(const std::filesystem::path& folder, const JournalPicture& picture,
              Durability durability) override {
        if (FailsIn(folder)) return false;
        Folder = folder;
        KnowsMachine = SameBoot = savedInRun_ = true;
        Kept = picture;
        if (durability == Durability::Medium) {
            OnMedium = picture;
            ++Saves;
        }
        return true;
    }
    void Note(const std::vector<JournalNote>& notes) override {
        if (!savedInRun_) return; // there is nothing that they belong to
        for (const JournalNote& note : notes) {
            const auto entry = std::ranges::find(Kept.Entries, note.Index, &JournalEntry::Index);
            if (entry == Kept.Entries.end() || !entry->Open) continue;
            entry->Received = note.Received;
            entry->Transmitted = note.Transmitted;
            entry->ReadAt = note.ReadAt;
            entry->Open->BytesReceived = note.OpenReceived;
            entry->Open->BytesTransmitted = note.OpenTransmitted;
            entry->Open->End = note.OpenEnd;
        }
    }
    JournalFound Look(const std::filesystem::path& folder) override {
        if (folder == SpareFolder && Folder != SpareFolder) return {};
        if (IsUnreadable) return {.IsUnreadable = true};
        if (!KnowsMachine) return {};
        return {.KnowsMachine = true, .SameBoot = SameBoot, .Picture = Kept};
    }

  protected:
    bool FailsIn(const std::filesystem::path& folder) const {
        return folder == SpareFolder ? SpareFails : Fails;
    }
    bool savedInRun_ = false;
};

} // namespace korvalin
