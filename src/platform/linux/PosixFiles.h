#pragma once

#include "platform/Files.h"

namespace korvalin {

class PosixFiles : public Files {
  public:
    bool Append(const std::filesystem::path& path, std::string_view lines) override;
    bool Replace(const std::filesystem::path& path, std::string_view content) override;
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override;
    int CreateFolders(const std::filesystem::path& folder) override;
};

} // namespace korvalin
