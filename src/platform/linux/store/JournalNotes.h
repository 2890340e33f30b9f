#pragma once

#include "platform/Journal.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/store/JournalStamp.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace korvalin {

/// The small file of a journal's notes. Its name contains the Id of the stamp, so that journals of several
/// folders do not meet. What it holds says itself whether it is whole and to which Save it belongs.
class JournalNotes {
  public:
    /// The file lies in the first of the folders that takes it.
    JournalNotes(const std::vector<std::filesystem::path>& folders, std::uint64_t id);

    /// Nothing is written when the file has these notes already.
    void Write(const JournalStamp& stamp, const std::vector<JournalNote>& notes);
    void Remove();

    enum class Applied {
        Done,  ///< or there are none that belong to the stamp
        Retry, ///< somebody is writing them at this moment, or has saved a later picture
    };
    Applied Apply(const JournalStamp& stamp, JournalPicture& picture) const;

  private:
    bool EnsureFile();

    std::vector<std::filesystem::path> files_;
    Descriptor file_;
    std::string written_;
};

} // namespace korvalin
