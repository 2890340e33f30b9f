#pragma once

#include "platform/Journal.h"

namespace korvalin {

class SqliteJournal : public Journal {
  public:
    JournalFound Load(const std::filesystem::path& folder) override;
    bool Save(const std::filesystem::path& folder, const JournalPicture& picture,
              Durability durability) override;
    void Note(const std::vector<JournalNote>& notes) override;
    JournalFound Look(const std::filesystem::path& folder) override;
};

} // namespace korvalin
